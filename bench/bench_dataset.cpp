#include "benchutil.h"
#include "core/dataset.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

constexpr int Columns = 10;
constexpr int DistinctValues = 100;

// The value texts, made once outside the timing as plain UTF-16 arrays: rows copy from
// them and never share with them.
QVector<QVector<QChar>> valueTexts()
{
    QVector<QVector<QChar>> texts;
    for (int v = 0; v < DistinctValues; ++v) {
        const QString text = QStringLiteral("value-%1").arg(v);
        texts.append(QVector<QChar>(text.constData(), text.constData() + text.size()));
    }
    return texts;
}

// One row of new strings, as a reader makes it; at most 100 distinct values per column.
QStringList freshRow(const QVector<QVector<QChar>> &texts, int r)
{
    QStringList row;
    row.reserve(Columns);
    for (int c = 0; c < Columns; ++c) {
        const QVector<QChar> &text = texts.at((r * 7 + c * 13) % DistinctValues);
        row.append(QString(text.constData(), text.size()));
    }
    return row;
}

// Builds rows x 10 with appendRow, as a reader does: every row is a list of freshly made
// strings, so that without interning the table holds one string per cell. The memory
// counter is the resident growth while the table is alive.
void appendRows(benchmark::State &state)
{
    const int mode = int(state.range(0));
    const int rows = int(state.range(1));
    Dataset::setMemoryMode(mode);

    const QVector<QVector<QChar>> texts = valueTexts();

    double mebibytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        const long before = benchutil::residentKiB();
        state.ResumeTiming();

        Dataset dataset;
        dataset.setColumnCount(Columns);
        dataset.reserveRows(rows);
        for (int r = 0; r < rows; ++r)
            dataset.appendRow(freshRow(texts, r));
        dataset.releaseValuePools();

        state.PauseTiming();
        mebibytes = (benchutil::residentKiB() - before) / 1024.0;
        benchmark::DoNotOptimize(dataset.cell(rows - 1, Columns - 1).constData());
        dataset.clear();
        state.ResumeTiming();
    }
    state.counters["table_MiB"] = mebibytes;
    state.counters["rows_per_s"] =
        benchmark::Counter(double(rows) * state.iterations(), benchmark::Counter::kIsRate);
    Dataset::setMemoryMode(0);
}

// The reader's share of appendRows: the same rows made and dropped, with no table.
void makeRowsOnly(benchmark::State &state)
{
    const int rows = int(state.range(0));
    const QVector<QVector<QChar>> texts = valueTexts();
    for (auto _ : state) {
        for (int r = 0; r < rows; ++r) {
            QStringList row = freshRow(texts, r);
            benchmark::DoNotOptimize(row.constFirst().constData());
        }
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

// Reading every cell: two list lookups each.
void readCells(benchmark::State &state)
{
    Dataset::setMemoryMode(0);
    const int rows = int(state.range(0));
    Dataset dataset;
    dataset.setColumnCount(Columns);
    for (int r = 0; r < rows; ++r) {
        QStringList row;
        for (int c = 0; c < Columns; ++c)
            row.append(QStringLiteral("value-%1").arg((r + c) % DistinctValues));
        dataset.appendRow(row);
    }
    for (auto _ : state) {
        qsizetype total = 0;
        for (int r = 0; r < rows; ++r) {
            for (int c = 0; c < Columns; ++c)
                total += dataset.cell(r, c).size();
        }
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * rows * Columns);
}

// Sorting a table by one column, stable, marks kept in step.
void sortRows(benchmark::State &state)
{
    const int rows = int(state.range(0));
    Dataset source;
    source.setColumnCount(Columns);
    for (int r = 0; r < rows; ++r) {
        QStringList row;
        for (int c = 0; c < Columns; ++c)
            row.append(QString::number((r * 7919 + c) % 100003));
        source.appendRow(row);
    }
    for (auto _ : state) {
        state.PauseTiming();
        Dataset dataset = source;
        state.ResumeTiming();
        dataset.sortRows(0, Qt::AscendingOrder);
        benchmark::DoNotOptimize(dataset.cell(0, 0).constData());
    }
    state.SetItemsProcessed(state.iterations() * rows);
}

} // namespace

BENCHMARK(appendRows)
    ->ArgNames({"mode", "rows"})
    ->Args({0, 1000000})
    ->Args({1, 1000000})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(makeRowsOnly)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(readCells)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(sortRows)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
