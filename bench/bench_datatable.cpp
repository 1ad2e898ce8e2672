// The data table on very long tables: opening the item pane on an item of 1,000,000 and
// 10,000,000 rows, scrolling to the end, and paging down. Each reports milliseconds per
// operation; the scroll also reports how many cells the view read (data() calls), which
// must stay near what one screen shows however long the table is.
#include "core/dataset.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "workbench/datapanel.h"
#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"
#include "workbench/itempane.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QUndoStack>

#include <memory>

namespace {

// A scene with one input item holding rows x 8 cells that all share one row's storage,
// shown in an item pane of window size.
struct Fixture
{
    GraphScene scene;
    QUndoStack undoStack;
    InputNode *node = nullptr;
    std::unique_ptr<ItemPane> pane;

    explicit Fixture(int rows)
    {
        Dataset dataset;
        dataset.setColumnCount(8);
        dataset.setHeaders({QStringLiteral("Order"), QStringLiteral("Date"), QStringLiteral("Customer"),
            QStringLiteral("Product"), QStringLiteral("Quantity"), QStringLiteral("Price"),
            QStringLiteral("Status"), QStringLiteral("Notes")});
        const QStringList row = {QStringLiteral("100234"), QStringLiteral("2021-03-04"),
            QStringLiteral("Acme Ltd"), QStringLiteral("Widget, large"), QStringLiteral("12"),
            QStringLiteral("19.99"), QStringLiteral("Shipped"), QStringLiteral("Leave at the back door")};
        dataset.reserveRows(rows);
        for (int i = 0; i < rows; ++i)
            dataset.appendRow(row);
        node = new InputNode;
        scene.addNode(node);
        node->setDataset(dataset);
        node->setStatus(Node::UpToDate, false);
        pane = std::make_unique<ItemPane>();
        pane->setScene(&scene, &undoStack);
        pane->resize(600, 900);
        pane->show();
        QApplication::processEvents();
    }
};

void openTable(benchmark::State &state)
{
    Fixture fixture(int(state.range(0)));
    double totalMs = 0;
    for (auto _ : state) {
        fixture.pane->setCurrentNode(nullptr);
        QApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        fixture.pane->setCurrentNode(fixture.node);
        // Until the table has been laid out and painted once.
        fixture.pane->dataPanel()->view()->viewport()->repaint();
        QApplication::processEvents();
        totalMs += clock.nsecsElapsed() / 1e6;
    }
    state.counters["ms_per_open"] = totalMs / double(state.iterations());
}
BENCHMARK(openTable)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond)->Iterations(5);

// The data panel alone, without the option form above it.
void openDataPanel(benchmark::State &state)
{
    Fixture fixture(int(state.range(0)));
    DataPanel panel;
    panel.resize(600, 500);
    panel.show();
    QApplication::processEvents();
    double totalMs = 0;
    for (auto _ : state) {
        panel.setNode(nullptr, &fixture.scene);
        QApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        panel.setNode(fixture.node, &fixture.scene);
        panel.view()->viewport()->repaint();
        QApplication::processEvents();
        totalMs += clock.nsecsElapsed() / 1e6;
    }
    state.counters["ms_per_open"] = totalMs / double(state.iterations());
}
BENCHMARK(openDataPanel)->Arg(10000000)->Unit(benchmark::kMillisecond)->Iterations(5);

// The toolkit's own share: a plain table view with fixed rows over the same model.
void openPlainView(benchmark::State &state)
{
    Fixture fixture(int(state.range(0)));
    DatasetTableModel model;
    QTableView view;
    view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view.setModel(&model);
    view.resize(600, 500);
    view.show();
    QApplication::processEvents();
    double resetMs = 0;
    double totalMs = 0;
    for (auto _ : state) {
        model.setDataset(Dataset());
        QApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        model.setDataset(fixture.node->dataset());
        resetMs += clock.nsecsElapsed() / 1e6;
        view.viewport()->repaint();
        QApplication::processEvents();
        totalMs += clock.nsecsElapsed() / 1e6;
    }
    state.counters["ms_reset"] = resetMs / double(state.iterations());
    state.counters["ms_per_open"] = totalMs / double(state.iterations());
}
BENCHMARK(openPlainView)->Arg(10000000)->Unit(benchmark::kMillisecond)->Iterations(5);

void scrollToEnd(benchmark::State &state)
{
    Fixture fixture(int(state.range(0)));
    fixture.pane->setCurrentNode(fixture.node);
    DataTableView *view = fixture.pane->dataPanel()->view();
    DatasetTableModel *model = fixture.pane->dataPanel()->model();
    QApplication::processEvents();
    qint64 cells = 0;
    for (auto _ : state) {
        view->scrollToTop();
        QApplication::processEvents();
        model->resetCellReads();
        view->scrollToBottom();
        view->viewport()->repaint();
        QApplication::processEvents();
        cells += model->cellReads();
    }
    state.counters["cells_read"] = double(cells) / double(state.iterations());
}
BENCHMARK(scrollToEnd)->Arg(10000000)->Unit(benchmark::kMillisecond)->Iterations(5);

void pageDown(benchmark::State &state)
{
    Fixture fixture(int(state.range(0)));
    fixture.pane->setCurrentNode(fixture.node);
    DataTableView *view = fixture.pane->dataPanel()->view();
    QApplication::processEvents();
    QScrollBar *bar = view->verticalScrollBar();
    for (auto _ : state) {
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        view->viewport()->repaint();
    }
}
BENCHMARK(pageDown)->Arg(10000000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // Rows share one list, so the table costs little memory; interning would only slow
    // the set-up.
    Dataset::setMemoryMode(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
