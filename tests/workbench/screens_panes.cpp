// The item pane for each kind of item, its tabs and its dialogs, in the light and the dark
// theme.

#include "screens.h"

#include "charts/chartnode.h"
#include "flow/graphscene.h"
#include "flow/notenode.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "workbench/graphview.h"
#include "workbench/itempane.h"
#include "workbench/itemwidget.h"
#include "workbench/itemwidgetchart.h"
#include "workbench/mainwindow.h"
#include "workbench/optiondialogs.h"
#include "workbench/prompts.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QSplitter>
#include <QTabWidget>

namespace {

Node *firstOfType(GraphScene *scene, const QString &type)
{
    for (Node *node : scene->nodes()) {
        if (node->typeName() == type)
            return node;
    }
    return nullptr;
}

void shootDialog(QDialog &dialog, const QString &name)
{
    dialog.show();
    screens::settle();
    screens::shoot(dialog, name);
    dialog.close();
}

void shootPane(MainWindow &window, Node *node, const QString &name, int optionsTab = 0)
{
    auto *pane = window.findChild<ItemPane *>();
    window.view()->setCurrentNode(node);
    screens::settle();
    if (pane->itemWidget())
        pane->itemWidget()->tabs()->setCurrentIndex(optionsTab);
    screens::settle();
    screens::shoot(*pane, name);
}

} // namespace

TABRELLE_SCREENS(panes)
{
    // The chart example, copied so that its outputs stay out of the source tree.
    const QString source = QStringLiteral(TABRELLE_EXAMPLES "/charts");
    const QString folder = QDir(workFolder).filePath(QStringLiteral("panes"));
    QDir().mkpath(folder + QStringLiteral("/output"));
    for (const QString &file : QDir(source).entryList(QDir::Files))
        QFile::copy(QDir(source).filePath(file), QDir(folder).filePath(file));
    window.openDocument(QDir(folder).filePath(QStringLiteral("monthly-sales.tflow")), false);
    screens::waitForRun(window);
    window.action(QStringLiteral("runEverythingAction"))->trigger();
    screens::waitForRun(window);

    GraphScene *scene = window.scene();
    Node *input = firstOfType(scene, QStringLiteral("Input"));
    Node *chart = firstOfType(scene, QStringLiteral("Chart"));
    if (!input || !chart)
        return;
    window.view()->setCurrentNode(input);
    Node *output = window.view()->addOutput(QDir(folder).filePath(QStringLiteral("output/sales.json")));
    Node *note = window.view()->addNote();
    if (auto *noteNode = qobject_cast<NoteNode *>(note))
        noteNode->setText(QStringLiteral("Regions come from the sales system; check the totals each month."));
    // The pane wide enough to read.
    if (auto *splitter = window.findChild<QSplitter *>(QStringLiteral("mainSplitter")))
        splitter->setSizes({250, 700, 550});

    const QStringList sample = {QStringLiteral("Month     North   South   East    West"),
        QStringLiteral("2024-01   120.5   98.0    110.2   87.9"), QStringLiteral("2024-02   131.0   102.4   99.8    91.3"),
        QStringLiteral("2024-03   128.7   99.1    104.6   95.0")};
    const QStringList columns = {QStringLiteral("Month"), QStringLiteral("North"), QStringLiteral("South"),
        QStringLiteral("East"), QStringLiteral("West")};

    for (const QString &theme : {QStringLiteral("light"), QStringLiteral("dark")}) {
        window.action(theme + QStringLiteral("ThemeAction"))->trigger();
        screens::settle();
        shootPane(window, input, QStringLiteral("panes-input-") + theme);
        shootPane(window, input, QStringLiteral("panes-details-") + theme, 1);
        if (output) {
            // Warnings as a run leaves them: the first three and a link to the rest.
            screens::waitForRun(window);
            output->clearWarnings();
            output->addWarning(QStringLiteral("Column 'Region' has empty values in 3 rows"));
            for (int i = 1; i <= 4; ++i)
                output->addWarning(QStringLiteral("Row %1 has a value that is not a number").arg(i * 7));
            shootPane(window, output, QStringLiteral("panes-output-") + theme);
        }
        shootPane(window, chart, QStringLiteral("panes-chart-general-") + theme);
        if (auto *widget = qobject_cast<ChartItemWidget *>(window.findChild<ItemPane *>()->itemWidget())) {
            widget->optionTabs()->setCurrentIndex(1);
            screens::settle();
            screens::shoot(*window.findChild<ItemPane *>(), QStringLiteral("panes-chart-xaxis-") + theme);
            widget->optionTabs()->setCurrentIndex(2);
            screens::settle();
            screens::shoot(*window.findChild<ItemPane *>(), QStringLiteral("panes-chart-yaxis-") + theme);
        }
        if (note)
            shootPane(window, note, QStringLiteral("panes-note-") + theme);
        shootPane(window, nullptr, QStringLiteral("panes-flow-") + theme);

        FixedWidthsDialog widths(sample, {10, 8, 8, 8}, &window);
        shootDialog(widths, QStringLiteral("panes-dialog-widths-") + theme);
        SchemaDialog::Schema schema;
        schema.columnNames = QStringList({QStringLiteral("Month"), QStringLiteral("North"), QStringLiteral("South")});
        schema.missingValues = QStringList({QString(), QStringLiteral("0"), QStringLiteral("0")});
        schema.extraColumns = 1;
        SchemaDialog schemaDialog(schema, columns, &window);
        shootDialog(schemaDialog, QStringLiteral("panes-dialog-schema-") + theme);
        ColumnTypesDialog types(columns, {1, 2, 2}, &window);
        shootDialog(types, QStringLiteral("panes-dialog-types-") + theme);
        ColumnFormatsDialog formats(columns, {3, 2}, &window);
        shootDialog(formats, QStringLiteral("panes-dialog-formats-") + theme);
    }
    window.action(QStringLiteral("lightThemeAction"))->trigger();
    screens::settle();
}
