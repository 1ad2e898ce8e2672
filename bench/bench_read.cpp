#include "benchutil.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "generate_orders.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

// Reads the generated delimited files through the whole input pipeline, as a run does,
// and reads the same files with pandas in the same run for comparison; each read of
// either runs in a fresh process. Data is made once
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

// One read through the input pipeline, as a run does, in a process of its own (this
// program started with --read-once), so that it starts from a fresh heap as the program
// does and as the pandas peer does. Prints seconds, rows and the process's peak memory.
int readOnce(const QString &path)
{
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("tabrelle.ini")));
    GraphScene scene;
    scene.setSettings(&settings);
    auto *input = new InputNode;
    input->setPath(path);
    input->setFileType(IONode::DelimitedText);
    scene.addNode(input);
    QElapsedTimer timer;
    timer.start();
    input->process(false, false);
    const double seconds = timer.nsecsElapsed() / 1e9;
    std::printf("%.6f %d %ld\n", seconds, input->dataset().rowCount(), benchutil::peakResidentKiB());
    std::fflush(stdout);
    std::_Exit(0); // the table isn't freed: that is not part of reading
}

void readFile(benchmark::State &state)
{
    const QString path = benchFile(int(state.range(0)));
    state.SetLabel(QFileInfo(path).fileName().toStdString());
    const qint64 bytes = QFileInfo(path).size();
    double peak = 0;
    double rows = 0;
    if (!benchutil::timeChildRuns(state, QCoreApplication::applicationFilePath(),
            {QStringLiteral("--read-once"), path}, "the read in a child process failed", rows, peak))
        return;
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] = benchmark::Counter(rows * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak;
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
    if (!benchutil::timeChildRuns(state, QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"), script, path}, "pandas could not be run with /usr/bin/python3", rows,
            peak))
        return;
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["rows"] = rows;
    state.counters["rows_per_s"] = benchmark::Counter(rows * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak;
}

} // namespace

// 0 orders.csv (1,000,000 rows, 7 columns, LF), 1 customers.csv (100,000 rows, 8 columns, CRLF).
BENCHMARK(readFile)->Arg(0)->Arg(1)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(pandasReadCsv)->Arg(0)->Arg(1)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    registerInputReaders();
    if (argc == 3 && qstrcmp(argv[1], "--read-once") == 0)
        return readOnce(QString::fromLocal8Bit(argv[2]));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
