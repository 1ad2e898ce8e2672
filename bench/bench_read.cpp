#include "benchutil.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "generate_orders.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <malloc.h>

// Reads the generated delimited files through the whole input pipeline, as a run does,
// and reads the same files with pandas in the same run for comparison. Data is made once
// into bench-data under the build directory.

namespace {

QString dataFolder()
{
    return QStringLiteral(TABRELLE_BENCH_DATA_DIR);
}

QString benchFile(int which)
{
    return which == 0 ? benchdata::ensureOrders(dataFolder()) : benchdata::ensureCustomers(dataFolder());
}

void readFile(benchmark::State &state)
{
    const QString path = benchFile(int(state.range(0)));
    state.SetLabel(QFileInfo(path).fileName().toStdString());
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("tabrelle.ini")));
    const qint64 bytes = QFileInfo(path).size();
    long peak = 0;
    int rows = 0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        benchutil::resetPeak();
        state.ResumeTiming();
        {
            GraphScene scene;
            scene.setSettings(&settings);
            auto *input = new InputNode;
            input->setPath(path);
            input->setFileType(IONode::DelimitedText);
            scene.addNode(input);
            input->process(false, false);
            rows = input->dataset().rowCount();
            peak = qMax(peak, benchutil::peakResidentKiB());
            state.PauseTiming();
            // The scene and its table go here, outside the timing.
        }
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(double(rows) * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak / 1024.0;
}

// pandas.read_csv on the same file with every column as text, timed by the script itself;
// its peak memory is the child's own maximum resident size.
void pandasReadCsv(benchmark::State &state)
{
    const QString path = benchFile(int(state.range(0)));
    state.SetLabel(QFileInfo(path).fileName().toStdString());
    const qint64 bytes = QFileInfo(path).size();
    const QString script =
        QStringLiteral("import sys, time, resource\n"
                       "import pandas as pd\n"
                       "start = time.perf_counter()\n"
                       "frame = pd.read_csv(sys.argv[1], dtype=str, keep_default_na=False)\n"
                       "seconds = time.perf_counter() - start\n"
                       "print(seconds, len(frame), resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)\n");
    double peak = 0;
    double rows = 0;
    for (auto _ : state) {
        QProcess python;
        python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), script, path});
        if (!python.waitForFinished(600000) || python.exitCode() != 0) {
            state.SkipWithError("pandas could not be run with /usr/bin/python3");
            return;
        }
        const QStringList fields = QString::fromUtf8(python.readAllStandardOutput()).simplified().split(' ');
        state.SetIterationTime(fields.value(0).toDouble());
        rows = fields.value(1).toDouble();
        peak = qMax(peak, fields.value(2).toDouble() / 1024.0);
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] = benchmark::Counter(rows * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak;
}

} // namespace

// 0 orders.csv (1,000,000 rows, 7 columns, LF), 1 customers.csv (100,000 rows, 8 columns, CRLF).
BENCHMARK(readFile)->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(pandasReadCsv)->Arg(0)->Arg(1)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    registerInputReaders();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
