#include "benchutil.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int Columns = 10;

// Hands its one input on unchanged: the run's own cost per item, and proof that passing a
// dataset down shares its cells rather than copying them.
class PassTransform : public Transform
{
public:
    int type() const override { return 1000; }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(PassTransform)
    QString name() const override { return QStringLiteral("Pass"); }
    QString id() const override { return QStringLiteral("Pass"); }
    QString description() const override { return QString(); }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    Dataset process(const QList<Node *> &inputs, bool &failed) override
    {
        Q_UNUSED(failed)
        return inputs.value(0) ? inputs.first()->dataset() : Dataset();
    }
};

long s_tableKiB = 0;

// rows x 10 of distinct strings, made once: the input hands out shared copies of it.
// s_tableKiB is the resident growth while it was made.
const Dataset &table(int rows)
{
    static Dataset dataset;
    if (dataset.rowCount() != rows) {
        const long before = benchutil::residentKiB();
        dataset = Dataset();
        dataset.setColumnCount(Columns);
        for (int r = 0; r < rows; ++r) {
            QStringList row;
            for (int c = 0; c < Columns; ++c)
                row << QStringLiteral("r%1c%2").arg(r).arg(c);
            dataset.appendRow(row);
        }
        dataset.releaseValuePools();
        s_tableKiB = benchutil::residentKiB() - before;
    }
    return dataset;
}

// Runs everything in a chain of items pass-through transforms below one input of
// 100,000 rows. The counters give the growth of resident memory over the run, against
// the size of the table itself: one copy of the cells means a growth near 0.
void chain(benchmark::State &state)
{
    const int items = int(state.range(0));
    const int rows = 100000;
    InputNode::setReader(
        IONode::DelimitedText, [rows](InputNode &, Dataset &dataset, QStringList &, QStringList &) {
            dataset = table(rows);
            return true;
        });
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("tabrelle.ini")));
    GraphScene scene;
    scene.setSettings(&settings);
    table(rows);

    auto *input = new InputNode;
    input->setMedium(IONode::Clipboard);
    input->setText(QStringLiteral("rows"));
    scene.addNode(input);
    Node *above = input;
    for (int i = 0; i < items; ++i) {
        auto *node = new TransformNode(new PassTransform);
        node->setPos(0, 100 * (i + 1));
        scene.addNode(node);
        scene.connectNodes(above, node);
        above = node;
    }
    const long built = benchutil::residentKiB();
    benchutil::resetPeak();
    for (auto _ : state)
        scene.runEverything();
    state.counters["table_MiB"] = s_tableKiB / 1024.0;
    state.counters["peak_MiB"] = benchutil::peakResidentKiB() / 1024.0;
    state.counters["run_growth_MiB"] = (benchutil::peakResidentKiB() - built) / 1024.0;
    state.counters["last_rows"] = above->dataset().rowCount();
}

} // namespace

BENCHMARK(chain)->Arg(1000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
