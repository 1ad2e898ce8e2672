// The window's dialogs, each filled in as a user would see it on the example flow.

#include "screens.h"

#include "core/settings.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/aboutdialog.h"
#include "workbench/comparedialog.h"
#include "workbench/connectdialog.h"
#include "workbench/exploreduplicatesdialog.h"
#include "workbench/explorekeysdialog.h"
#include "workbench/insufficientmemorydialog.h"
#include "workbench/mainwindow.h"
#include "workbench/missingfilesdialog.h"
#include "workbench/preferencesdialog.h"
#include "workbench/recentdocuments.h"
#include "workbench/recentdocumentsdialog.h"
#include "workbench/recoverydialog.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QTreeWidget>
#include <QUndoStack>

namespace {

Node *firstOfType(GraphScene *scene, const QString &type, const QString &transformId = QString())
{
    QList<Node *> nodes = scene->nodes();
    GraphScene::sortNodes(nodes);
    for (Node *node : qAsConst(nodes)) {
        if (node->typeName() != type)
            continue;
        auto *transform = qobject_cast<TransformNode *>(node);
        if (transformId.isEmpty() || (transform && transform->transform()->id() == transformId))
            return node;
    }
    return nullptr;
}

void show(QDialog &dialog, const QString &name)
{
    dialog.show();
    screens::settle(400);
    screens::shoot(dialog, name);
    dialog.hide();
}

} // namespace

TABRELLE_SCREENS(dialogs)
{
    GraphScene *scene = window.scene();
    Settings *settings = Transform::settings();
    scene->runEverything();
    screens::waitForRun(window);

    if (auto *join = qobject_cast<TransformNode *>(firstOfType(scene, QStringLiteral("Transform"), QStringLiteral("Join")))) {
        ExploreKeysDialog keys(join, &window, window.undoStack());
        keys.findChild<QComboBox *>(QStringLiteral("showCombo"))->setCurrentIndex(0);
        QTableView *table = keys.findChild<QTableView *>(QStringLiteral("keyTable"));
        table->setCurrentIndex(table->model()->index(0, 0));
        show(keys, QStringLiteral("dialog_explore_keys"));
    }

    Node *input = firstOfType(scene, QStringLiteral("Input"));
    if (input) {
        auto *dedupe = new TransformNode(screens::prototype(QStringLiteral("Dedupe"))->clone());
        dedupe->setPos(input->pos() + QPointF(0, 300));
        scene->addNode(dedupe);
        scene->connectNodes(input, dedupe);
        {
            ExploreDuplicatesDialog duplicates(dedupe, &window, window.undoStack());
            QListWidget *columns = duplicates.findChild<QListWidget *>(QStringLiteral("columnsList"));
            if (columns->count() > 1)
                columns->item(1)->setCheckState(Qt::Checked);
            QComboBox *match = duplicates.findChild<QComboBox *>(QStringLiteral("matchCombo"));
            match->setCurrentIndex(match->findText(QStringLiteral("Fuzzy")));
            duplicates.find();
            while (duplicates.isFinding())
                screens::settle(50);
            QTreeWidget *tree = duplicates.findChild<QTreeWidget *>(QStringLiteral("groupTree"));
            if (tree->topLevelItemCount() > 0 && tree->topLevelItem(0)->childCount() > 0)
                tree->setCurrentItem(tree->topLevelItem(0)->child(0));
            show(duplicates, QStringLiteral("dialog_explore_duplicates"));
        }
        scene->removeNode(dedupe);

        auto *sort = new TransformNode(screens::prototype(QStringLiteral("Sort"))->clone());
        sort->setPos(input->pos() + QPointF(200, 300));
        scene->addNode(sort);
        ConnectDialog connect(scene, input, ConnectDialog::To, window.undoStack(), &window);
        show(connect, QStringLiteral("dialog_connect_to"));
        scene->removeNode(sort);
    }

    {
        CompareDialog compare(scene, &window);
        QList<Node *> inputs;
        for (Node *node : scene->nodes()) {
            if (node->typeName() == QLatin1String("Input") || node->typeName() == QLatin1String("Transform"))
                inputs << node;
        }
        GraphScene::sortNodes(inputs);
        if (inputs.size() >= 2)
            compare.setItems(inputs.at(0), inputs.at(1));
        compare.compare();
        while (compare.isComparing())
            screens::settle(50);
        compare.nextDifference();
        show(compare, QStringLiteral("dialog_compare"));
    }

    {
        PreferencesDialog preferences(settings, &window);
        const QStringList pages = preferences.pageTitles();
        for (int page = 0; page < pages.size(); ++page) {
            preferences.setCurrentPage(page);
            if (page == 2)
                preferences.findChild<QLineEdit *>(QStringLiteral("dateTest"))->setText(QStringLiteral("31/12/2024"));
            show(preferences, QStringLiteral("dialog_preferences_%1").arg(pages.at(page).toLower().replace(QLatin1Char(' '), QLatin1Char('_'))));
        }
    }

    if (settings) {
        const QDir examples(QStringLiteral(TABRELLE_EXAMPLES));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        RecentDocuments::add(settings, QDir(workFolder).filePath(QStringLiteral("moved away.tflow")), now.addDays(-3));
        for (const QString &path : {examples.filePath(QStringLiteral("contacts/contacts.tflow")),
                 examples.filePath(QStringLiteral("sales/clean-and-merge.tflow"))})
            RecentDocuments::add(settings, path, now.addSecs(-600));
        RecentDocumentsDialog recent(settings, &window);
        show(recent, QStringLiteral("dialog_recent_documents"));
    }

    {
        AboutDialog about(settings, &window);
        show(about, QStringLiteral("dialog_about"));
    }

    {
        InsufficientMemoryDialog memory(7.4, 6.0, 15.6, &window);
        show(memory, QStringLiteral("dialog_insufficient_memory"));
    }

    {
        const QString file = QDir(workFolder).filePath(QStringLiteral("recovery-4242.tflow"));
        DocumentProperties properties;
        properties.docPath = QDir(workFolder).filePath(QStringLiteral("quarterly report.tflow"));
        QFile out(file);
        if (out.open(QIODevice::WriteOnly))
            out.write(Document::documentText(*scene, properties));
        out.close();
        RecoveryDialog recovery({file}, &window);
        show(recovery, QStringLiteral("dialog_recovery"));
    }

    {
        GraphScene missingScene;
        for (const QString &name : {QStringLiteral("orders 2023.csv"), QStringLiteral("customers.xlsx")}) {
            auto *missing = new InputNode;
            missing->setPath(QDir(workFolder).filePath(QStringLiteral("gone/") + name));
            missing->setName(name);
            missingScene.addNode(missing);
        }
        QUndoStack stack;
        MissingFilesDialog missing(&missingScene, &stack, &window);
        show(missing, QStringLiteral("dialog_missing_files"));
    }
}
