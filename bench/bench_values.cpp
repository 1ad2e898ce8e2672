#include "core/matching.h"
#include "core/values.h"

#include <benchmark/benchmark.h>

#include <QRandomGenerator>
#include <QStringList>
#include <QVector>

namespace {

constexpr int Cells = 1000000;

// A million number cells with two decimals, about 1000 distinct values, each cell its own
// string as a reader makes them.
const QVector<QString> &numberCells()
{
    static const QVector<QString> cells = [] {
        QRandomGenerator random(1);
        QVector<QString> values;
        for (int v = 0; v < 1000; ++v)
            values.append(QString::number(random.bounded(100000) / 100.0, 'f', 2));
        QVector<QString> result;
        result.reserve(Cells);
        for (int i = 0; i < Cells; ++i) {
            const QString &value = values.at(random.bounded(values.size()));
            result.append(QString(value.constData(), value.size()));
        }
        return result;
    }();
    return cells;
}

void toNumberPlain(benchmark::State &state)
{
    const QVector<QString> &cells = numberCells();
    for (auto _ : state) {
        double sum = 0;
        for (const QString &cell : cells) {
            bool ok = false;
            sum += toNumber(cell, false, false, &ok);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * cells.size());
}

void cachedNumberCold(benchmark::State &state)
{
    const QVector<QString> &cells = numberCells();
    for (auto _ : state) {
        state.PauseTiming();
        clearValueCaches();
        state.ResumeTiming();
        double sum = 0;
        for (const QString &cell : cells) {
            bool ok = false;
            sum += cachedNumber(cell, &ok);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * cells.size());
}

void cachedNumberWarm(benchmark::State &state)
{
    const QVector<QString> &cells = numberCells();
    clearValueCaches();
    for (const QString &cell : cells)
        cachedNumber(cell, nullptr);
    for (auto _ : state) {
        double sum = 0;
        for (const QString &cell : cells) {
            bool ok = false;
            sum += cachedNumber(cell, &ok);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * cells.size());
}

// "Greater than" over the number cells, as a filter row does: each value is first tried
// as a date with the whole format list, then as a number, both through the caches.
void greaterThanWarm(benchmark::State &state)
{
    const QVector<QString> &cells = numberCells();
    const QString term = QStringLiteral("500.00");
    clearValueCaches();
    for (const QString &cell : cells)
        matches(OperatorGreater, cell, term, true);
    for (auto _ : state) {
        int count = 0;
        for (const QString &cell : cells)
            count += matches(OperatorGreater, cell, term, true);
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(state.iterations() * cells.size());
}

// A million pairs of 10 to 30 letters: four in five a copy with up to three edits,
// the rest unrelated texts.
const QVector<QPair<QString, QString>> &textPairs()
{
    static const QVector<QPair<QString, QString>> pairs = [] {
        QRandomGenerator random(2);
        auto letter = [&] { return QChar('a' + random.bounded(26)); };
        QVector<QPair<QString, QString>> result;
        result.reserve(Cells);
        for (int i = 0; i < Cells; ++i) {
            QString a;
            for (int k = random.bounded(10, 31); k > 0; --k)
                a += letter();
            QString b;
            if (random.bounded(5) == 0) {
                for (int k = random.bounded(10, 31); k > 0; --k)
                    b += letter();
            } else {
                b = a;
                for (int edits = random.bounded(4); edits > 0; --edits) {
                    const int at = random.bounded(b.size());
                    switch (random.bounded(3)) {
                    case 0:
                        b.insert(at, letter());
                        break;
                    case 1:
                        b.remove(at, 1);
                        break;
                    default:
                        b[at] = letter();
                    }
                }
            }
            result.append(qMakePair(a, b));
        }
        return result;
    }();
    return pairs;
}

void closenessAt80(benchmark::State &state)
{
    const QVector<QPair<QString, QString>> &pairs = textPairs();
    for (auto _ : state) {
        int within = 0;
        for (const auto &pair : pairs)
            within += closeness(pair.first, pair.second, 80) >= 0;
        benchmark::DoNotOptimize(within);
        state.counters["within_tolerance"] = within;
    }
    state.SetItemsProcessed(state.iterations() * pairs.size());
}

} // namespace

BENCHMARK(toNumberPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(cachedNumberCold)->Unit(benchmark::kMillisecond);
BENCHMARK(cachedNumberWarm)->Unit(benchmark::kMillisecond);
BENCHMARK(greaterThanWarm)->Unit(benchmark::kMillisecond);
BENCHMARK(closenessAt80)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
