// The window while it reads the 1,000,000-row orders file: a 10 ms timer stands for the
// user, and the longest gap between two of its turns is how long the window stopped
// answering. Target: no gap over 500 ms, from adding the input until its table shows.
// Also reports the whole time and the three longest gaps with what the window was doing.
#include "generate_orders.h"

#include "app/application.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/datapanel.h"
#include "workbench/datasettablemodel.h"
#include "workbench/graphview.h"
#include "workbench/itempane.h"
#include "workbench/mainwindow.h"
#include "workbench/prompts.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

QString dataFolder()
{
    return QStringLiteral(TABRELLE_BENCH_DATA_DIR);
}

// Records the time between the turns of a 10 ms timer.
struct GapMeter
{
    QTimer timer;
    QElapsedTimer clock;
    qint64 last = 0;
    std::vector<std::pair<qint64, qint64>> gaps; // (length, end) in ms

    GapMeter()
    {
        timer.setInterval(10);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, [this] { turn(); });
    }
    void start()
    {
        gaps.clear();
        clock.start();
        last = 0;
        timer.start();
    }
    void turn()
    {
        const qint64 now = clock.elapsed();
        if (now - last > 200 && qEnvironmentVariableIsSet("BENCH_RESPONSIVE_TRACE"))
            std::fprintf(stderr, "  %6lld ms turn after %lld ms\n", now, now - last);
        gaps.emplace_back(now - last, now);
        last = now;
    }
    qint64 stop()
    {
        turn();
        timer.stop();
        return clock.elapsed();
    }
    qint64 longest() const
    {
        qint64 result = 0;
        for (const auto &gap : gaps)
            result = std::max(result, gap.first);
        return result;
    }
};

void readInWindow(benchmark::State &state)
{
    const QString path = benchdata::ensureOrders(dataFolder(), int(state.range(0)));
    ScriptedPrompts prompts;
    prompts.answers << QStringLiteral("Don't Save");
    Prompts::setInstance(&prompts);
    qint64 worst = 0;
    double totalMs = 0;
    for (auto _ : state) {
        MainWindow window(Application::instance()->settings(), Application::instance()->transforms());
        window.resize(1400, 900);
        window.show();
        window.newDocument();
        QApplication::processEvents();
        GapMeter meter;
        meter.start();
        QList<Node *> added = window.view()->addInputFiles({path});
        Node *input = added.value(0);
        if (!input) {
            state.SkipWithError("the input was not added");
            return;
        }
        window.view()->setCurrentNode(input);
        // BENCH_RESPONSIVE_TRACE=1 prints when the steps of the read happen, to put the
        // gaps in their place.
        if (qEnvironmentVariableIsSet("BENCH_RESPONSIVE_TRACE")) {
            auto trace = [&meter](const char *what) {
                std::fprintf(stderr, "  %6lld ms %s\n", meter.clock.elapsed(), what);
            };
            QObject::connect(input, &Node::processingStart, [trace] { trace("processing start"); });
            QObject::connect(input, &Node::processed, [trace](Node *, qreal f) {
                std::fprintf(stderr, "         progress %.2f\n", f);
                trace("progress");
            });
            QObject::connect(input, &Node::processingEnd, [trace] { trace("processing end"); });
            QObject::connect(input, &Node::nodeDataChanged, [trace] { trace("data changed"); });
            QObject::connect(window.scene(), &GraphScene::runningChanged,
                [trace](bool on) { trace(on ? "run starts" : "run ends"); });
            QObject::connect(window.scene(), &GraphScene::refreshRequested, [trace] { trace("refresh"); });
        }
        // Until the read is over and its table has been shown.
        QElapsedTimer limit;
        limit.start();
        while ((input->status() != Node::UpToDate && input->status() != Node::Error)
            || window.scene()->isRunning()) {
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
            if (limit.elapsed() > 600000) {
                state.SkipWithError("the read did not end within 10 minutes");
                return;
            }
        }
        // Queued refreshes of the item pane and its table.
        QElapsedTimer settle;
        settle.start();
        while (settle.elapsed() < 300)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        totalMs += meter.stop();
        worst = std::max(worst, meter.longest());
        std::vector<std::pair<qint64, qint64>> gaps = meter.gaps;
        std::sort(gaps.rbegin(), gaps.rend());
        for (size_t i = 0; i < std::min<size_t>(3, gaps.size()); ++i)
            std::fprintf(stderr, "  gap %lld ms ending at %lld ms\n", gaps[i].first, gaps[i].second);
        if (input->dataset().rowCount() != state.range(0))
            state.SkipWithError("the table does not hold every row");
    }
    Prompts::setInstance(nullptr);
    state.counters["longest_gap_ms"] = double(worst);
    state.counters["ms_total"] = totalMs / double(state.iterations());
}
BENCHMARK(readInWindow)->Arg(1000000)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    Application application(argc, argv, false);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
