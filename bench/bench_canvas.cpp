// The canvas with 500 items and 600 connections: one frame of panning and one of zooming,
// painted into the view's backing store as the window would. Target: under 16 ms a frame.

#include "app/transformregistry.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/graphview.h"

#include <QApplication>
#include <QScrollBar>
#include <QUndoStack>

#include <benchmark/benchmark.h>

namespace {

struct Canvas
{
    GraphScene scene;
    QUndoStack stack;
    GraphView view;
    QList<Transform *> prototypes;

    Canvas()
    {
        prototypes = createTransformPrototypes();
        const Transform *sort = nullptr;
        const Transform *join = nullptr;
        for (const Transform *prototype : qAsConst(prototypes)) {
            if (prototype->id() == QLatin1String("Sort"))
                sort = prototype;
            if (prototype->id() == QLatin1String("Join"))
                join = prototype;
        }
        // 100 inputs, 200 one-input and 200 two-input transforms: 500 items, 600 connections.
        QList<Node *> made;
        for (int i = 0; i < 100; ++i) {
            auto *input = new InputNode;
            input->setMedium(IONode::Clipboard);
            input->setText(QStringLiteral("a\n1\n"));
            input->setPos(0, i * 96);
            scene.addNode(input);
            made << input;
        }
        for (int i = 0; i < 400; ++i) {
            const bool merge = i % 2 == 1;
            auto *node = new TransformNode((merge ? join : sort)->clone());
            node->setPos(200 + (i / 100) * 200, (i % 100) * 96);
            scene.addNode(node);
            scene.connectNodes(made.at(made.size() - 100), node);
            if (merge)
                scene.connectNodes(made.at(made.size() - 99), node);
            made << node;
        }
        // As after a run: everything up to date, so connections are drawn solid.
        if (qEnvironmentVariableIsSet("BENCH_CANVAS_UP_TO_DATE"))
            for (Node *node : scene.nodes())
                node->setStatus(Node::UpToDate, false);
        view.resize(1400, 900);
        view.setGraphScene(&scene, &stack);
        view.show();
        view.zoomToFit();
        QCoreApplication::processEvents();
    }
    ~Canvas()
    {
        view.setGraphScene(nullptr, nullptr);
        qDeleteAll(prototypes);
    }
};

Canvas *canvas()
{
    static Canvas *shared = new Canvas;
    return shared;
}

void BM_CanvasPan(benchmark::State &state)
{
    Canvas *c = canvas();
    c->view.setZoom(state.range(0) / 100.0);
    QScrollBar *bar = c->view.horizontalScrollBar();
    int step = 40;
    for (auto _ : state) {
        if (bar->value() + step > bar->maximum() || bar->value() + step < bar->minimum())
            step = -step;
        bar->setValue(bar->value() + step);
        c->view.viewport()->repaint();
    }
    state.counters["items"] = c->scene.nodes().size();
    state.counters["connections"] = c->scene.connections().size();
}
BENCHMARK(BM_CanvasPan)->Arg(30)->Arg(100)->Unit(benchmark::kMillisecond);

void BM_CanvasZoom(benchmark::State &state)
{
    Canvas *c = canvas();
    c->view.zoomToFit();
    bool in = true;
    for (auto _ : state) {
        c->view.zoomBy(in ? 1.15 : 1 / 1.15);
        in = !in;
        c->view.viewport()->repaint();
    }
}
BENCHMARK(BM_CanvasZoom)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
