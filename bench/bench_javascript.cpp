#include "core/settings.h"
#include "flow/graphscene.h"
#include "generate_orders.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"
#include "transforms/transformjavascript.h"

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// The Javascript transform over the generated orders (1,000,000 rows): a script that
// multiplies two number columns, one that joins text, and one that throws on every row.
// The file is read once, outside the timing.

namespace {

// The orders read through an input item, as a run would hand them to the transform; made
// in main() and gone before the application.
struct Orders
{
    QTemporaryDir dir;
    Settings settings {dir.filePath(QStringLiteral("tabrelle.ini"))};
    GraphScene scene;
    InputNode *input = nullptr;

    Orders()
    {
        scene.setSettings(&settings);
        input = new InputNode;
        input->setPath(benchdata::ensureOrders(QStringLiteral(TABRELLE_BENCH_DATA_DIR)));
        input->setFileType(IONode::DelimitedText);
        scene.addNode(input);
        input->process(false, false);
    }
};

Orders *s_orders = nullptr;

InputNode &orders()
{
    return *s_orders->input;
}

void runScript(benchmark::State &state, const QString &script)
{
    InputNode &input = orders();
    const int rows = input.dataset().rowCount();
    TransformJavascript transform;
    transform.createParameters({&input}, false);
    transform.parameter(QStringLiteral("Script"))->setValue(script);
    QString result;
    for (auto _ : state) {
        transform.clearMessages();
        bool failed = false;
        Dataset output = transform.process({&input}, failed);
        benchmark::DoNotOptimize(output);
        result = transform.result();
        state.PauseTiming();
        output = Dataset(); // freed outside the timing
        state.ResumeTiming();
    }
    state.SetLabel(result.toStdString());
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(double(rows) * state.iterations(), benchmark::Counter::kIsRate);
}

void multiply(benchmark::State &state)
{
    runScript(state, QStringLiteral("return $(amount) * $(quantity);"));
}

void joinText(benchmark::State &state)
{
    runScript(state, QStringLiteral("return $(category) + ' / ' + $(paid);"));
}

void throwEveryRow(benchmark::State &state)
{
    runScript(state, QStringLiteral("throw new Error('no ' + $(id));"));
}

} // namespace

BENCHMARK(multiply)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(joinText)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(throwEveryRow)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    registerInputReaders();
    benchmark::Initialize(&argc, argv);
    Orders orders;
    s_orders = &orders;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
