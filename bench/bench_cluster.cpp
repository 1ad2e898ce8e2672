#include "core/settings.h"
#include "flow/graphscene.h"
#include "generate_orders.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"
#include "transforms/transformcluster.h"

#include <QApplication>
#include <QSet>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

// The Cluster transform over the names of the generated customers ("Last, First"):
// Manual with 50 terms over 100,000 names, as they are (320 different names) and made all
// different by a number, and Automatic over the first 10,000 names with 10 clusters.

namespace {

// An item holding a table whose columns have ids, as an upstream item's would.
class TableNode : public Node
{
public:
    explicit TableNode(Dataset dataset)
    {
        dataset.assignColumnIds(1);
        setDataset(dataset);
    }
    QString typeName() const override { return QStringLiteral("Bench"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

// The name column of customers.csv, read once through an input item.
const QStringList &customerNames()
{
    static QStringList names;
    if (names.isEmpty()) {
        QTemporaryDir dir;
        Settings settings(dir.filePath(QStringLiteral("tabrelle.ini")));
        GraphScene scene;
        scene.setSettings(&settings);
        auto *input = new InputNode;
        input->setPath(benchdata::ensureCustomers(QStringLiteral(TABRELLE_BENCH_DATA_DIR)));
        input->setFileType(IONode::DelimitedText);
        scene.addNode(input);
        input->process(false, false);
        names = input->dataset().columnValues(1);
    }
    return names;
}

Dataset nameTable(int rows, bool numbered)
{
    const QStringList &names = customerNames();
    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.setHeaders({QStringLiteral("name")});
    for (int r = 0; r < rows && r < names.size(); ++r)
        dataset.appendRow({numbered ? QStringLiteral("%1 %2").arg(names.at(r)).arg(r) : names.at(r)});
    return dataset;
}

// The first 50 different names, each with one letter changed, so that matches are close
// but seldom exact.
QString fiftyTerms()
{
    QStringList terms;
    QSet<QString> seen;
    for (const QString &name : customerNames()) {
        if (terms.size() == 50)
            break;
        if (seen.contains(name))
            continue;
        seen.insert(name);
        QString term = name;
        term[term.size() / 2] = QLatin1Char('x');
        terms << term;
    }
    return terms.join(QLatin1Char('\n'));
}

void runCluster(
    benchmark::State &state, const Dataset &table, const QString &clustering, const QString &terms)
{
    TableNode node(table);
    TransformCluster transform;
    transform.createParameters({&node}, false);
    transform.parameter(QStringLiteral("Column"))->setValue(QVariant::fromValue(node.dataset().columnId(0)));
    transform.parameter(QStringLiteral("Clustering"))->setValue(clustering);
    transform.parameter(QStringLiteral("Terms"))->setValue(terms);
    transform.parameter(QStringLiteral("Max_Auto_Clusters"))->setValue(10);
    QString result;
    QString tried;
    for (auto _ : state) {
        transform.clearMessages();
        bool failed = false;
        Dataset output = transform.process({&node}, failed);
        benchmark::DoNotOptimize(output);
        result = transform.result();
        tried = transform.information().value(0);
    }
    state.SetLabel((result + QStringLiteral("; ") + tried).toStdString());
    state.counters["rows"] = table.rowCount();
}

void manualNames(benchmark::State &state)
{
    runCluster(state, nameTable(100000, false), QStringLiteral("Manual"), fiftyTerms());
}

void manualDistinctNames(benchmark::State &state)
{
    runCluster(state, nameTable(100000, true), QStringLiteral("Manual"), fiftyTerms());
}

void automaticNames(benchmark::State &state)
{
    runCluster(state, nameTable(10000, false), QStringLiteral("Automatic"), QString());
}

void automaticDistinctNames(benchmark::State &state)
{
    runCluster(state, nameTable(10000, true), QStringLiteral("Automatic"), QString());
}

} // namespace

BENCHMARK(manualNames)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(manualDistinctNames)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(automaticNames)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(automaticDistinctNames)->Iterations(1)->Unit(benchmark::kMillisecond);

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
