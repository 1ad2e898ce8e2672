#include "benchutil.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "outputs/writerregistry.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <malloc.h>

// Writes the orders table (1,000,000 rows of 7 columns, made in memory) as delimited text
// through an output item, as a run does, and has pandas write the same table with to_csv
// in the same run for comparison.

namespace {

// splitmix64, as the read benchmarks' generator uses, so that the tables match in shape.
class Random
{
public:
    explicit Random(quint64 seed)
        : m_state(seed)
    { }
    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    int below(int n) { return int(next() % quint64(n)); }

private:
    quint64 m_state;
};

const char *const Categories[] = {"books", "garden", "kitchen", "toys", "music", "sports", "office",
    "clothing", "tools", "health", "beauty", "travel"};
const char *const Words[] = {"blue", "small", "large", "steel", "wooden", "cotton", "set", "pack", "classic",
    "premium", "basic", "deluxe", "mini", "pro", "lamp", "chair", "table", "mug", "pen", "notebook", "bottle",
    "bag", "box", "cable", "charger", "shirt", "sock", "glove", "hat", "ball", "racket", "brush", "cream",
    "soap", "towel", "pillow", "blanket", "candle", "frame", "clock", "red", "green", "black", "white",
    "silver", "organic", "travel", "kids", "garden", "kitchen", "with", "and", "for", "extra", "soft",
    "light", "heavy", "duty", "eco", "refill"};

template<int N>
const char *pick(Random &random, const char *const (&list)[N])
{
    return list[random.below(N)];
}

void appendWords(QString &text, Random &random, int count)
{
    for (int w = 0; w < count; ++w) {
        if (w > 0)
            text += QLatin1Char(' ');
        text += QLatin1String(pick(random, Words));
    }
}

// id, date (d/M/yyyy), amount (two decimals), quantity, category, description and paid;
// about 6% of the descriptions hold a comma or double quotes.
const Dataset &orders(int rows)
{
    static Dataset table;
    if (table.rowCount() == rows)
        return table;
    table = Dataset();
    table.setColumnCount(7);
    table.setHeaders(
        {QStringLiteral("id"), QStringLiteral("date"), QStringLiteral("amount"), QStringLiteral("quantity"),
            QStringLiteral("category"), QStringLiteral("description"), QStringLiteral("paid")});
    table.reserveRows(rows);
    Random random(20240601);
    char number[32];
    for (int r = 1; r <= rows; ++r) {
        const int day = 1 + random.below(28);
        const int month = 1 + random.below(12);
        const int year = 2015 + random.below(10);
        const int cents = random.below(100000);
        const int quantity = 1 + random.below(50);
        QStringList row;
        row.reserve(7);
        row << QString::number(r) << QStringLiteral("%1/%2/%3").arg(day).arg(month).arg(year);
        std::snprintf(number, sizeof number, "%d.%02d", cents / 100, cents % 100);
        row << QString::fromLatin1(number) << QString::number(quantity)
            << QLatin1String(pick(random, Categories));
        const int kind = random.below(100);
        const int words = 3 + random.below(5);
        QString description;
        if (kind < 3) {
            appendWords(description, random, 2);
            description += QStringLiteral(", ");
            appendWords(description, random, words - 2);
        } else if (kind < 6) {
            appendWords(description, random, 1);
            description += QStringLiteral(" \"");
            appendWords(description, random, 1);
            description += QStringLiteral("\" ");
            appendWords(description, random, words - 2);
        } else {
            appendWords(description, random, words);
        }
        row << description << (random.below(2) ? QStringLiteral("true") : QStringLiteral("false"));
        table.appendRow(row);
    }
    table.releaseValuePools();
    return table;
}

constexpr int Rows = 1000000;

QString outputFolder()
{
    static QTemporaryDir dir;
    return dir.path();
}

// The file this program wrote, which pandas then reads and writes again.
QString writtenPath()
{
    return outputFolder() + QStringLiteral("/orders.csv");
}

void writeCsv(benchmark::State &state)
{
    const Dataset &table = orders(Rows);
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("tabrelle.ini")));
    const long tableKiB = benchutil::residentKiB();
    long peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        benchutil::resetPeak();
        GraphScene scene;
        scene.setSettings(&settings);
        auto *source = new InputNode; // stands in for the item above: only its table is read
        source->setDataset(table);
        source->setStatus(Node::UpToDate, false);
        auto *output = new OutputNode;
        OutputOptions options = output->options();
        options.path = writtenPath();
        options.byteOrderMark = false;
        options.lineEndings = OutputOptions::Lf;
        output->setOptions(options);
        scene.addNode(source);
        scene.addNode(output);
        scene.connectNodes(source, output);
        state.ResumeTiming();
        output->process(false, false);
        state.PauseTiming();
        peak = qMax(peak, benchutil::peakResidentKiB());
        if (output->status() != Node::UpToDate)
            state.SkipWithError(output->warnings().value(0).toStdString().c_str());
        state.ResumeTiming();
    }
    const qint64 bytes = QFileInfo(writtenPath()).size();
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["rows_per_s"] =
        benchmark::Counter(double(Rows) * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak / 1024.0;
    state.counters["table_MiB"] = tableKiB / 1024.0;
}

// pandas reads the file written above (every column as text), then to_csv alone is timed;
// its peak memory is the child's own maximum resident size, table included.
void pandasToCsv(benchmark::State &state)
{
    if (!QFileInfo::exists(writtenPath())) {
        state.SkipWithError("run writeCsv first: pandas writes the table it wrote");
        return;
    }
    const QString script =
        QStringLiteral("import sys, time, resource\n"
                       "import pandas as pd\n"
                       "frame = pd.read_csv(sys.argv[1], dtype=str, keep_default_na=False)\n"
                       "start = time.perf_counter()\n"
                       "frame.to_csv(sys.argv[2], index=False)\n"
                       "seconds = time.perf_counter() - start\n"
                       "print(seconds, len(frame), resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)\n");
    const QString target = outputFolder() + QStringLiteral("/pandas.csv");
    double peak = 0;
    double rows = 0;
    if (!benchutil::timeChildRuns(state, QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"), script, writtenPath(), target},
            "pandas could not be run with /usr/bin/python3", rows, peak))
        return;
    state.SetBytesProcessed(state.iterations() * QFileInfo(target).size());
    state.counters["rows_per_s"] = benchmark::Counter(rows * state.iterations(), benchmark::Counter::kIsRate);
    state.counters["peak_MiB"] = peak;
    // The two files must say the same: pandas quotes the same cells this program does.
    QFile ours(writtenPath());
    QFile theirs(target);
    if (ours.open(QIODevice::ReadOnly) && theirs.open(QIODevice::ReadOnly))
        state.counters["same_bytes"] = ours.readAll() == theirs.readAll() ? 1 : 0;
}

} // namespace

BENCHMARK(writeCsv)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(pandasToCsv)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    registerOutputWriters();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
