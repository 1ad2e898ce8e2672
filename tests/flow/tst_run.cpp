#include "testutil.h"

#include "core/settings.h"
#include "flow/connection.h"
#include "flow/graphscene.h"
#include "flow/maxmemoryexception.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// Small transforms with one behaviour each, named after their item.
class TestTransform : public Transform
{
public:
    enum Kind { Pass, Join, Stack, Fail, Stop, Pick, Shape };

    TestTransform(const QString &name, Kind kind)
        : m_name(name)
        , m_kind(kind)
    { }

    int type() const override { return 1000 + m_kind; }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    Transform *clone() const override
    {
        auto *copy = new TestTransform(m_name, m_kind);
        copyParametersTo(copy);
        return copy;
    }
    QString name() const override { return m_name; }
    QString id() const override { return m_name; }
    QString description() const override { return QStringLiteral("For tests"); }
    int minimumInputs() const override { return m_kind == Join || m_kind == Stack ? 2 : 1; }
    int maximumInputs() const override { return m_kind == Join ? 2 : m_kind == Stack ? NoLimit : 1; }
    bool hasMinimumOptions() const override { return false; }

    void createParameters(const QList<Node *> &inputs, bool useDefaults) override
    {
        Transform::createParameters(inputs, useDefaults);
        if (m_kind == Pick)
            addParameter(new Parameter(
                ParameterKind::Column, QStringLiteral("Column"), QStringLiteral("Column"), inputs.value(0)));
    }

    Dataset process(const QList<Node *> &inputs, bool &failed) override
    {
        const Dataset first = inputs.isEmpty() ? Dataset() : inputs.first()->dataset();
        switch (m_kind) {
        case Join:
        case Stack: {
            QStringList texts;
            for (const Node *input : inputs)
                texts << testutil::toText(input->dataset());
            return testutil::toDataset(texts.join(QLatin1Char('\n')));
        }
        case Fail:
            failed = true;
            return first;
        case Stop:
            GraphScene::setStopRequested(true);
            return first;
        case Pick: {
            const DataColumnIndex column = parameter(QStringLiteral("Column"))->columnIndex();
            if (!column.isValid())
                return Dataset();
            return testutil::toDataset(first.columnValues(column).join(QLatin1Char('\n')));
        }
        case Shape:
            return shaped(first);
        default:
            return first;
        }
    }

    // How Shape items change their input: "" not at all, "rotate" moves the last column
    // to the front, "drop" removes the last column. Column ids go with their columns.
    static QString shape;

private:
    static Dataset shaped(const Dataset &input)
    {
        Dataset output = input;
        if (shape == QLatin1String("drop")) {
            output.removeColumn(output.lastColumn());
        } else if (shape == QLatin1String("rotate")) {
            for (int r = 0; r < output.rowCount(); ++r) {
                QStringList row = output.row(r);
                row.prepend(row.takeLast());
                output.setRow(r, row);
            }
            QList<ColumnId> ids = output.columnIds();
            ids.prepend(ids.takeLast());
            output.setColumnIds(ids);
        }
        return output;
    }

    QString m_name;
    Kind m_kind;
};

QString TestTransform::shape;

// What the test writer wrote, by path.
QHash<QString, QString> s_written;

// A flow written as text, so that a case fits on a line: "a:in b:pass o:out | a>b b>o".
// Inputs: in[=text] (pasted, ";" between rows, "name,1" by default), missing (a file that
// isn't there), blocked (a file with a blocked extension), empty (nothing to read), vcard
// (pasted, in a format with no reader). Transforms: pass, join, stack, fail, stop, pick,
// shape. Outputs: out[=file] (name.csv by default; a name holding "fail" fails), off
// (disabled). Items stand one below the other in the order named.
class Flow
{
public:
    explicit Flow(const QString &spec)
        : settings(dir.filePath(QStringLiteral("tabrelle.ini")))
    {
        settings.setValue(QStringLiteral("input_blocked_extensions"), QStringList {QStringLiteral("bad")});
        scene.setSettings(&settings);
        QObject::connect(&scene, &GraphScene::statusMessage, [this](const QString &text) {
            if (text.startsWith(QLatin1String("Processing '")))
                order << text.section(QLatin1Char('\''), 1, 1);
        });
        QObject::connect(&scene, &GraphScene::logMessage, [this](const QString &text) { log << text; });
        const QStringList parts = spec.split(QLatin1Char('|'));
        for (const QString &word : parts.value(0).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            add(word);
        for (const QString &edge : parts.value(1).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            if (!scene.connectNodes(nodes.value(edge.section(QLatin1Char('>'), 0, 0)),
                    nodes.value(edge.section(QLatin1Char('>'), 1))))
                valid = false;
        }
    }

    Node *operator[](const QString &name) const { return nodes.value(name); }
    Parameter *column(const QString &name) const
    {
        auto *node = qobject_cast<TransformNode *>(nodes.value(name));
        return node ? node->transform()->parameter(QStringLiteral("Column")) : nullptr;
    }

    // "a=2 b=0" for the named items.
    QString statuses(const QString &names) const
    {
        QStringList result;
        for (const QString &name : names.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            result << QStringLiteral("%1=%2").arg(name).arg(nodes.value(name)->status());
        return result.join(QLatin1Char(' '));
    }
    QString statuses() const { return statuses(QStringList(nodes.keys()).join(QLatin1Char(' '))); }
    QString written(const QString &output) const
    {
        auto *node = qobject_cast<OutputNode *>(nodes.value(output));
        return s_written.value(node->path());
    }

    QTemporaryDir dir;
    Settings settings;
    GraphScene scene;
    QMap<QString, Node *> nodes;
    QStringList order;
    QStringList log;
    bool valid = true;

private:
    void add(const QString &word)
    {
        const QString name = word.section(QLatin1Char(':'), 0, 0);
        const QString kind = word.section(QLatin1Char(':'), 1).section(QLatin1Char('='), 0, 0);
        const QString argument = word.section(QLatin1Char('='), 1);
        static const QMap<QString, TestTransform::Kind> transforms {
            {QStringLiteral("pass"), TestTransform::Pass}, {QStringLiteral("join"), TestTransform::Join},
            {QStringLiteral("stack"), TestTransform::Stack}, {QStringLiteral("fail"), TestTransform::Fail},
            {QStringLiteral("stop"), TestTransform::Stop}, {QStringLiteral("pick"), TestTransform::Pick},
            {QStringLiteral("shape"), TestTransform::Shape}};
        Node *node = nullptr;
        if (transforms.contains(kind)) {
            node = new TransformNode(new TestTransform(name, transforms.value(kind)));
        } else if (kind == QLatin1String("out") || kind == QLatin1String("off")) {
            auto *output = new OutputNode;
            output->setPath(dir.filePath(argument.isEmpty() ? name + QStringLiteral(".csv") : argument));
            output->setWriteMode(kind == QLatin1String("off") ? OutputNode::Disabled : OutputNode::Overwrite);
            output->setName(name);
            node = output;
        } else {
            auto *input = new InputNode;
            input->setName(name);
            input->setMedium(IONode::Clipboard);
            if (kind == QLatin1String("in")) {
                input->setText(argument.isEmpty()
                        ? name + QStringLiteral(",1")
                        : QString(argument).replace(QLatin1Char(';'), QLatin1Char('\n')));
            } else if (kind == QLatin1String("vcard")) {
                input->setText(name);
                input->setFileType(IONode::VCard);
            } else if (kind == QLatin1String("missing") || kind == QLatin1String("blocked")) {
                input->setMedium(IONode::File);
                input->setPath(dir.filePath(name + (kind == QLatin1String("blocked") ? ".bad" : ".csv")));
                if (kind == QLatin1String("blocked")) {
                    QFile file(input->path());
                    file.open(QIODevice::WriteOnly);
                }
            } else if (kind != QLatin1String("empty")) {
                valid = false;
            }
            node = input;
        }
        node->setPos(0, 100 * nodes.size());
        scene.addNode(node);
        nodes.insert(name, node);
    }
};

} // namespace

class TestRun : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void walk_data();
    void walk();
    void runChanges_data();
    void runChanges();
    void runSelected_data();
    void runSelected();
    void columnOptions_data();
    void columnOptions();
    void pendingOptions_data();
    void pendingOptions();
    void memorySaver_data();
    void memorySaver();
    void memoryLimit_data();
    void memoryLimit();
    void progressRules_data();
    void progressRules();
    void reportAndCounter();
    void runTimeText_data();
    void runTimeText();
};

void TestRun::initTestCase()
{
    InputNode::setReader(
        IONode::DelimitedText, [](InputNode &node, Dataset &dataset, QStringList &, QStringList &) {
            dataset = testutil::toDataset(node.text());
            return true;
        });
    OutputNode::setWriter(IONode::DelimitedText,
        [](OutputNode &node, const Dataset &dataset, QStringList &warnings, QStringList &) {
            if (node.path().contains(QLatin1String("fail"))) {
                warnings << QStringLiteral("Unable to write");
                return false;
            }
            s_written.insert(node.path(), testutil::toText(dataset));
            node.addWrittenFile(node.path());
            return true;
        });
}

void TestRun::init()
{
    s_written.clear();
    TestTransform::shape.clear();
    GraphScene::setStopRequested(false);
}

void TestRun::walk_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<QString>("order"); // items in the order they started
    QTest::addColumn<QString>("statuses"); // every item, by name
    QTest::addColumn<QString>("message"); // "item: text" found in its warnings or information
    QTest::addColumn<QString>("written"); // "output: cells"

    QTest::newRow("roots to ends") << "a:in b:pass c:pass o:out | a>b b>c c>o"
                                   << "a,b,c,o"
                                   << "a=2 b=2 c=2 o=2"
                                   << ""
                                   << "o:a,1";
    QTest::newRow("join waits for its second input") << "a:in x:pass b:in j:join o:out | a>x x>j b>j j>o"
                                                     << "a,x,b,j,o"
                                                     << "a=2 b=2 j=2 o=2 x=2"
                                                     << ""
                                                     << "o:a,1\nb,1";
    QTest::newRow("roots in canvas order") << "b:in a:in s:stack | a>s b>s"
                                           << "b,a,s"
                                           << "a=2 b=2 s=2"
                                           << ""
                                           << "";
    QTest::newRow("error holds back its branch only") << "a:in f:fail g:pass b:pass o:out | a>f f>g a>b b>o"
                                                      << "a,f,b,o"
                                                      << "a=2 b=2 f=3 g=0 o=2"
                                                      << ""
                                                      << "o:a,1";
    QTest::newRow("missing file") << "m:missing t:pass n:in u:pass | m>t n>u"
                                  << "m,n,u"
                                  << "m=3 n=2 t=0 u=2"
                                  << "m:not found"
                                  << "";
    QTest::newRow("blocked extension fails below too")
        << "b:blocked t:pass | b>t"
        << "b"
        << "b=3 t=3"
        << "b:The extension for this file is blocked in 'Preferences>Input Extensions':\n"
        << "";
    QTest::newRow("format with no reader") << "v:vcard t:pass | v>t"
                                           << "v"
                                           << "t=0 v=3"
                                           << "v:Reading vCard files is not available in this version"
                                           << "";
    QTest::newRow("nothing to read") << "e:empty t:pass o:out | e>t t>o"
                                     << "e,t,o"
                                     << "e=2 o=2 t=2"
                                     << ""
                                     << "o:";
    QTest::newRow("output with nothing connected") << "o:out"
                                                   << ""
                                                   << "o=2"
                                                   << "o:No transforms or inputs connected"
                                                   << "";
    QTest::newRow("output disabled") << "a:in o:off | a>o"
                                     << "a,o"
                                     << "a=2 o=2"
                                     << "o:Write mode='Disabled'"
                                     << "";
    QTest::newRow("writer fails") << "a:in o:out=fail.csv | a>o"
                                  << "a,o"
                                  << "a=2 o=3"
                                  << "o:Unable to write"
                                  << "";
    QTest::newRow("same file twice") << "a:in o:out=same.csv p:out=same.csv | a>o a>p"
                                     << "a,o,p"
                                     << "a=2 o=2 p=2"
                                     << "p:Overwrote '"
                                     << "p:a,1";
    QTest::newRow("two expected, one given") << "a:in j:join o:out | a>j j>o"
                                             << "a,j,o"
                                             << "a=2 j=2 o=2"
                                             << "j:2 upstream connections expected"
                                             << "o:a,1";
    QTest::newRow("at least two expected") << "a:in s:stack | a>s"
                                           << "a,s"
                                           << "a=2 s=2"
                                           << "s:At least 2 upstream connections expected"
                                           << "";
    QTest::newRow("one expected, none given") << "p:pass"
                                              << "p"
                                              << "p=2"
                                              << "p:1 upstream connection expected"
                                              << "";
    QTest::newRow("stop between roots") << "a:in s:stop b:in c:pass | a>s b>c"
                                        << "a,s"
                                        << "a=2 b=0 c=0 s=2"
                                        << ""
                                        << "";
}

void TestRun::walk()
{
    QFETCH(QString, flow);
    QFETCH(QString, order);
    QFETCH(QString, statuses);
    QFETCH(QString, message);
    QFETCH(QString, written);
    Flow f(flow);
    QVERIFY(f.valid);
    f.scene.runEverything();
    QCOMPARE(f.order.join(QLatin1Char(',')), order);
    QCOMPARE(f.statuses(), statuses);
    QVERIFY(!GraphScene::isStopRequested());
    QVERIFY(!f.scene.isRunning());
    QCOMPARE(f.log.contains(QStringLiteral("  Stopped by user")), flow.contains(QLatin1String(":stop")));
    if (!message.isEmpty()) {
        const Node *node = f[message.section(QLatin1Char(':'), 0, 0)];
        const QString text = message.section(QLatin1Char(':'), 1);
        const QString all = (node->warnings() + node->information()).join(QLatin1Char('|'));
        QVERIFY2(all.contains(text), qPrintable(all));
    }
    if (!written.isEmpty())
        QCOMPARE(f.written(written.section(QLatin1Char(':'), 0, 0)), written.section(QLatin1Char(':'), 1));
    if (flow.contains(QLatin1String("same.csv"))) {
        const QString path = QDir::toNativeSeparators(f.dir.filePath(QStringLiteral("same.csv")));
        QCOMPARE(f.scene.overwrittenPaths().value(path), 2);
        QVERIFY(f.log.contains(QStringLiteral("Overwrote '%1' 2 times").arg(path)));
    }
}

void TestRun::runChanges_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("statuses");

    const QString chain = QStringLiteral("a:in b:pass c:pass o:out | a>b b>c c>o");
    QTest::newRow("all up to date") << chain << "runChanges"
                                    << ""
                                    << "a=2 b=2 c=2 o=2";
    QTest::newRow("invalidated with auto run") << chain << "invalidate b"
                                               << "b,c,o"
                                               << "a=2 b=2 c=2 o=2";
    QTest::newRow("invalidated without auto run") << chain << "invalidate b, auto off"
                                                  << ""
                                                  << "a=2 b=0 c=0 o=0";
    QTest::newRow("outputs again") << chain << "rerunOutputs"
                                   << "o"
                                   << "a=2 b=2 c=2 o=2";
    QTest::newRow("error retried") << "a:missing b:pass n:in | a>b"
                                   << "runChanges"
                                   << "a"
                                   << "a=3 b=0 n=2";
}

void TestRun::runChanges()
{
    QFETCH(QString, flow);
    QFETCH(QString, action);
    QFETCH(QString, order);
    QFETCH(QString, statuses);
    Flow f(flow);
    QVERIFY(f.valid);
    f.scene.runEverything();
    f.order.clear();
    f.log.clear();
    f.scene.setAutoRun(!action.endsWith(QLatin1String("auto off")));
    if (action.startsWith(QLatin1String("invalidate")))
        f.scene.invalidate(f[action.section(QLatin1Char(' '), 1, 1).remove(QLatin1Char(','))]);
    else if (action == QLatin1String("rerunOutputs"))
        f.scene.rerunOutputs();
    else
        f.scene.runChanges();
    QCOMPARE(f.order.join(QLatin1Char(',')), order);
    QCOMPARE(f.statuses(), statuses);
    // A run that processed nothing reports no count.
    const bool counted = std::any_of(f.log.cbegin(), f.log.cend(),
        [](const QString &line) { return line.contains(QLatin1String("item(s) processed in")); });
    QCOMPARE(counted, !order.isEmpty());
}

void TestRun::runSelected_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<bool>("runFirst");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("statuses");

    const QString chain = QStringLiteral("a:in b:pass c:pass | a>b b>c");
    QTest::newRow("fresh: upstream runs first") << chain << false << "b"
                                                << "a,b"
                                                << "a=2 b=2 c=0";
    QTest::newRow("after a run: only the selected") << chain << true << "b"
                                                    << "b"
                                                    << "a=2 b=2 c=0";
    QTest::newRow("two selected, below first") << chain << true << "c a"
                                               << "a,b,c"
                                               << "a=2 b=2 c=2";
    QTest::newRow("upstream in error retried, selected waits")
        << "m:missing b:pass c:pass | m>b b>c" << true << "c"
        << "m"
        << "b=0 c=0 m=3";
    QTest::newRow("branch not selected stays")
        << "a:in b:pass x:pass j:join | a>b a>x b>j x>j" << false << "b"
        << "a,b"
        << "a=2 b=2 j=0 x=0";
}

void TestRun::runSelected()
{
    QFETCH(QString, flow);
    QFETCH(bool, runFirst);
    QFETCH(QString, selected);
    QFETCH(QString, order);
    QFETCH(QString, statuses);
    Flow f(flow);
    QVERIFY(f.valid);
    if (runFirst)
        f.scene.runEverything();
    f.order.clear();
    for (const QString &name : selected.split(QLatin1Char(' ')))
        f[name]->setSelected(true);
    f.scene.runSelected();
    QCOMPARE(f.order.join(QLatin1Char(',')), order);
    QCOMPARE(f.statuses(), statuses);
}

void TestRun::columnOptions_data()
{
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QString>("picked");
    QTest::addColumn<QString>("warning");

    QTest::newRow("unchanged") << ""
                               << "z"
                               << "";
    QTest::newRow("column moved to the front") << "rotate"
                                               << "z"
                                               << "";
    QTest::newRow("column gone") << "drop"
                                 << ""
                                 << "1 option not set ('Column')";
}

void TestRun::columnOptions()
{
    QFETCH(QString, shape);
    QFETCH(QString, picked);
    QFETCH(QString, warning);
    Flow f(QStringLiteral("a:in=x,y,z r:shape p:pick | a>r r>p"));
    QVERIFY(f.valid);
    f.scene.runEverything();
    f.column(QStringLiteral("p"))
        ->setValue(QVariant::fromValue(f[QStringLiteral("r")]->dataset().columnId(2)));
    f.scene.setAutoRun(true);
    f.scene.invalidate(f[QStringLiteral("p")]);
    QCOMPARE(testutil::toText(f[QStringLiteral("p")]->dataset()), QStringLiteral("z"));

    TestTransform::shape = shape;
    f.scene.invalidate(f[QStringLiteral("r")]);
    QCOMPARE(f.order.mid(f.order.size() - 2).join(QLatin1Char(',')), QStringLiteral("r,p"));
    QCOMPARE(testutil::toText(f[QStringLiteral("p")]->dataset()), picked);
    QCOMPARE(f[QStringLiteral("p")]->warnings().join(QLatin1Char('|')), warning);
}

void TestRun::pendingOptions_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("picked");
    QTest::addColumn<bool>("stillPending");

    const QString flow = QStringLiteral("a:in=x,y,z p:pick | a>p");
    QTest::newRow("third column") << flow << "3"
                                  << "z" << false;
    QTest::newRow("first column") << flow << "1"
                                  << "x" << false;
    QTest::newRow("past the last column") << flow << "4"
                                          << "" << false;
    QTest::newRow("two items down") << "a:in=x,y,z b:pass p:pick | a>b b>p"
                                    << "2"
                                    << "y" << false;
    QTest::newRow("upstream never read") << "a:missing p:pick | a>p"
                                         << "3"
                                         << "" << true;
}

void TestRun::pendingOptions()
{
    QFETCH(QString, flow);
    QFETCH(QString, text);
    QFETCH(QString, picked);
    QFETCH(bool, stillPending);
    Flow f(flow);
    QVERIFY(f.valid);
    Parameter *column = f.column(QStringLiteral("p"));
    column->setPendingText(text, 84);
    f.scene.runEverything();
    QCOMPARE(testutil::toText(f[QStringLiteral("p")]->dataset()), picked);
    QCOMPARE(column->isPending(), stillPending);
    // What could not be read yet is written back as it came.
    if (stillPending)
        QCOMPARE(column->toText(), text);
}

void TestRun::memorySaver_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("noData");

    const QString chain = QStringLiteral("a:in b:pass c:pass o:out | a>b b>c c>o");
    QTest::newRow("batch frees what is no longer needed") << chain << int(GraphScene::RunBatch) << "a b c";
    QTest::newRow("everything keeps all") << chain << int(GraphScene::RunEverything) << "";
    QTest::newRow("kept while a branch still waits")
        << "a:in b:in f:fail x:pass g:join | a>x a>g b>f f>g" << int(GraphScene::RunBatch) << "b g";
}

void TestRun::memorySaver()
{
    QFETCH(QString, flow);
    QFETCH(int, mode);
    QFETCH(QString, noData);
    Flow f(flow);
    QVERIFY(f.valid);
    f.scene.run(mode, true);
    QStringList empty;
    for (auto it = f.nodes.cbegin(); it != f.nodes.cend(); ++it) {
        if (it.value()->dataset().hasNoColumns())
            empty << it.key();
    }
    QCOMPARE(empty.join(QLatin1Char(' ')), noData);
    // Freeing data is no change of status.
    QCOMPARE(f.statuses(QStringLiteral("a b")).count(QLatin1String("=0")), 0);
}

void TestRun::memoryLimit_data()
{
    QTest::addColumn<int>("handler"); // -1 none, 0 declines, 1 raises the limit
    QTest::addColumn<bool>("thrown");
    QTest::addColumn<double>("limit");

    QTest::newRow("no one to ask") << -1 << true << 0.5;
    QTest::newRow("declined") << 0 << true << 0.5;
    QTest::newRow("raised") << 1 << false << 0.7;
}

void TestRun::memoryLimit()
{
    QFETCH(int, handler);
    QFETCH(bool, thrown);
    QFETCH(double, limit);
    Flow f(QStringLiteral("a:in b:pass | a>b"));
    f.settings.setValue(QStringLiteral("max_memory_usage"), 0.5);
    f.scene.setMemoryProbe([] { return 0.6; });
    int asked = 0;
    if (handler >= 0) {
        f.scene.setMemoryLimitHandler([&asked, handler](double used, double &newLimit) {
            ++asked;
            newLimit = used + 0.1;
            return handler == 1;
        });
    }
    bool caught = false;
    try {
        f.scene.runEverything();
    } catch (const MaxMemoryException &) {
        caught = true;
    }
    QCOMPARE(caught, thrown);
    QCOMPARE(asked, handler >= 0 ? 1 : 0);
    QCOMPARE(f.settings.maxMemoryUsageGb(), limit);
    // A run ended by the exception doesn't keep the next one out.
    QVERIFY(!f.scene.isRunning());
}

void TestRun::progressRules_data()
{
    QTest::addColumn<QString>("reports"); // fraction, or "wait" for 300 ms
    QTest::addColumn<QString>("passed");

    QTest::newRow("first report passes") << "0.5"
                                         << "0.5";
    QTest::newRow("too soon") << "0 0.5 0.7"
                              << "0";
    QTest::newRow("end always passes") << "0 0.5 1"
                                       << "0 1";
    QTest::newRow("past the interval") << "0 wait 0.5"
                                       << "0 0.5";
    QTest::newRow("too small a step") << "0.5 wait 0.51 wait 0.53"
                                      << "0.5 0.53";
    QTest::newRow("start again too soon") << "0.5 0"
                                          << "0.5";
    QTest::newRow("start passes the step rule") << "0.01 wait 0"
                                                << "0.01 0";
}

void TestRun::progressRules()
{
    QFETCH(QString, reports);
    QFETCH(QString, passed);
    Flow f(QStringLiteral("a:in"));
    Node *node = f[QStringLiteral("a")];
    QSignalSpy spy(node, &Node::processed);
    for (const QString &report : reports.split(QLatin1Char(' '))) {
        if (report == QLatin1String("wait"))
            QTest::qSleep(300);
        else
            GraphScene::reportProgress(node, report.toDouble());
    }
    QStringList seen;
    for (const QList<QVariant> &arguments : qAsConst(spy))
        seen << QString::number(arguments.at(1).toDouble());
    QCOMPARE(seen.join(QLatin1Char(' ')), passed);
}

void TestRun::reportAndCounter()
{
    Flow f(QStringLiteral("a:in=x;y;z b:pass c:fail d:pass | a>b b>c c>d"));
    f.settings.setValue(QStringLiteral("lifetime_rows_processed"), QStringLiteral("10"));
    QSignalSpy percents(&f.scene, &GraphScene::progressChanged);
    f.scene.runEverything();
    QCOMPARE(f.log.size(), 5);
    QVERIFY(f.log.at(0).startsWith(QLatin1String("Started: ")));
    QVERIFY(f.log.at(1).startsWith(QLatin1String("Finished: ")));
    QVERIFY(f.log.at(2).startsWith(QLatin1String("3 item(s) processed in ")));
    QVERIFY(f.log.at(2).endsWith(QLatin1String("second(s)")));
    QCOMPARE(f.log.at(3), QStringLiteral("0 item(s) with warnings"));
    QCOMPARE(f.log.at(4), QStringLiteral("Needs updating: 1, Up to date: 2, Error: 1\n"));
    QCOMPARE(f.scene.itemsToProcess(), 4);
    QCOMPARE(f.scene.itemsProcessed(), 3);
    QStringList steps;
    for (const QList<QVariant> &arguments : qAsConst(percents))
        steps << arguments.at(0).toString();
    QCOMPARE(steps.join(QLatin1Char(' ')), QStringLiteral("0 25 50 75 100"));
    // Rows made by transforms count, rows read don't; the failed item's rows count too.
    QCOMPARE(f.settings.int64Value(QStringLiteral("lifetime_rows_processed")), qint64(16));
    QCOMPARE(f.scene.rowsNotCounted(), qint64(0));
}

void TestRun::runTimeText_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");

    QTest::newRow("no time") << qint64(0) << "<0.001 second(s)";
    QTest::newRow("one millisecond") << qint64(1) << "0.001 second(s)";
    QTest::newRow("a second and a half") << qint64(1500) << "1.5 second(s)";
    QTest::newRow("six digits") << qint64(1234567) << "1234.57 second(s)";
}

void TestRun::runTimeText()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(GraphScene::runTimeText(milliseconds), text);
}

QTEST_MAIN(TestRun)
#include "tst_run.moc"
