// The item pane of each transform with a large option editor, filled in as a user would.

#include "screens.h"

#include "flow/graphscene.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/graphview.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgettransform.h"
#include "workbench/mainwindow.h"

#include <QAction>
#include <QSplitter>

namespace {

QList<Node *> inputNodes(GraphScene *scene)
{
    QList<Node *> nodes = scene->nodes();
    GraphScene::sortNodes(nodes);
    QList<Node *> inputs;
    for (Node *node : qAsConst(nodes)) {
        if (node->typeName() == QLatin1String("Input"))
            inputs << node;
    }
    return inputs;
}

// Example values for the structured kinds, on the columns of the upstream dataset.
void fill(Parameter *parameter)
{
    if (parameter->kind() == ParameterKind::ReplaceTerms) {
        parameter->setValue(QVariant::fromValue(ReplaceTermList {
            {0, QStringLiteral(" N. "), QStringLiteral("North  ")}, {3, QStringLiteral("^\\s+("), QString()},
            {4, QStringLiteral("*-old"), QStringLiteral("archived")}}));
        return;
    }
    const Dataset *dataset = parameter->upstreamDataset();
    if (!dataset || dataset->columnCount() < 3)
        return;
    const ColumnId first = dataset->columnId(0);
    const ColumnId second = dataset->columnId(1);
    const ColumnId third = dataset->columnId(2);
    switch (parameter->kind()) {
    case ParameterKind::FilterColumns: {
        FilterColumnsValue value;
        value.conditions << Condition {false, second, 4, QStringLiteral("100")};
        value.conditions << Condition {false, third, 8, QStringLiteral("^(North|South")};
        value.conditions << Condition {true, ColumnId(), 20, QString()};
        parameter->setValue(QVariant::fromValue(value));
        break;
    }
    case ParameterKind::If: {
        IfValue value;
        value.blocks << IfBlock {
            {Condition {false, second, 6, QStringLiteral("1000")}}, QStringLiteral("large")};
        value.blocks << IfBlock {{Condition {false, second, 6, QStringLiteral("100")},
                                     Condition {false, third, 1, QStringLiteral("North")}},
            QStringLiteral("medium $(Region)")};
        value.elseText = QStringLiteral("small");
        parameter->setValue(QVariant::fromValue(value));
        break;
    }
    case ParameterKind::SortColumns:
        parameter->setValue(QVariant::fromValue(SortColumnList {{third, true}, {second, false}}));
        break;
    case ParameterKind::RenameColumns:
        parameter->setValue(QVariant::fromValue(RenameColumnsValue {
            {first, QStringLiteral("Order id")}, {third, dataset->displayHeaders().at(1)}}));
        break;
    case ParameterKind::Columns:
        parameter->setValue(QVariant::fromValue(QList<ColumnId> {second, third}));
        break;
    case ParameterKind::SplitRows: {
        SplitRule rule;
        rule.text = QStringLiteral(";");
        parameter->setValue(QVariant::fromValue(rule));
        break;
    }
    case ParameterKind::UniqueColumns: {
        UniqueColumnsValue value = parameter->uniqueColumns();
        value.insert(third, UniqueKey);
        value.insert(second, UniqueMaximum);
        parameter->setValue(QVariant::fromValue(value));
        break;
    }
    case ParameterKind::ReorderColumns: {
        QList<ColumnId> order = dataset->columnIds();
        std::reverse(order.begin(), order.end());
        order.removeLast(); // the first column shows as new
        parameter->setValue(QVariant::fromValue(order));
        break;
    }
    case ParameterKind::Script:
        parameter->setValue(QStringLiteral("// Net price after tax\nvar net = $(Quantity) * 1.2;\n"
                                           "if (net > 100) {\n    return 'big';\n}\nreturn net +;"));
        break;
    default:
        break;
    }
}

} // namespace

TABRELLE_SCREENS(parameterWidgets)
{
    Q_UNUSED(workFolder)
    GraphScene *scene = window.scene();
    auto *pane = window.findChild<ItemPane *>();
    const QList<Node *> inputs = inputNodes(scene);
    if (!pane || inputs.size() < 2)
        return;
    // The inputs need their data for the column lists.
    window.action(QStringLiteral("runEverythingAction"))->trigger();
    screens::waitForRun(window);
    // The item pane as tall as the window allows, so that the large editors show whole.
    if (auto *splitter = pane->findChild<QSplitter *>(QStringLiteral("m_itemSplitter")))
        splitter->setSizes({800, 100});
    const QList<QPair<QString, int>> transforms = {{QStringLiteral("Filter"), 1}, {QStringLiteral("Join"), 2},
        {QStringLiteral("If"), 1}, {QStringLiteral("Sort"), 1}, {QStringLiteral("Rename_Cols"), 1},
        {QStringLiteral("Split_Rows"), 1}, {QStringLiteral("Unique"), 1}, {QStringLiteral("Dedupe"), 1},
        {QStringLiteral("Replace_Multi"), 1}, {QStringLiteral("Verify"), 1}, {QStringLiteral("Reorder"), 1},
        {QStringLiteral("Javascript"), 1}, {QStringLiteral("Calculate"), 1}};
    for (const auto &entry : transforms) {
        const Transform *prototype = screens::prototype(entry.first);
        if (!prototype)
            continue;
        scene->clearSelection();
        for (int i = 0; i < entry.second; ++i)
            inputs.at(i)->setSelected(true);
        window.view()->setCurrentNode(inputs.first());
        Node *added = window.view()->addTransform(prototype);
        screens::waitForRun(window);
        auto *node = qobject_cast<TransformNode *>(added);
        if (!node)
            continue;
        const QList<Parameter *> parameters = node->transform()->parameterList();
        for (Parameter *parameter : parameters)
            fill(parameter);
        scene->invalidate(node);
        window.action(QStringLiteral("runEverythingAction"))->trigger();
        screens::waitForRun(window);
        window.view()->setCurrentNode(node);
        pane->refresh();
        screens::settle();
        screens::shoot(*pane, QStringLiteral("params-%1").arg(entry.first.toLower()));
        // The whole form as well, however tall, for the editors the pane scrolls past.
        if (auto *item = qobject_cast<TransformItemWidget *>(pane->itemWidget()))
            screens::shoot(*item->formWidget(), QStringLiteral("params-%1-form").arg(entry.first.toLower()));
    }
}
