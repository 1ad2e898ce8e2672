#include "testutil.h"

#include "core/settings.h"
#include "flow/connection.h"
#include "flow/graphscene.h"
#include "flow/maxmemoryexception.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/inputorder.h"
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
        if (m_kind == Join) {
            for (int i = 0; i < 2; ++i) {
                auto *key = new Parameter(ParameterKind::Column, QStringLiteral("Column_%1").arg(i + 1),
                    QStringLiteral("Key"), inputs.value(i));
                key->setColumnRequired(false);
                addParameter(key);
            }
        }
        if (m_kind == Pick)
            addParameter(new Parameter(
                ParameterKind::Column, QStringLiteral("Column"), QStringLiteral("Column"), inputs.value(0)));
    }

    bool reorderInputs(QList<Node *> &inputs) override
    {
        return m_kind == Join
            && swapInputsByPosition(
                inputs, parameter(QStringLiteral("Column_1")), parameter(QStringLiteral("Column_2")));
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
    explicit Flow(const QString &text)
        : settings(dir.filePath(QStringLiteral("tabrelle.ini")))
    {
        settings.setValue(QStringLiteral("input_blocked_extensions"), QStringList {QStringLiteral("bad")});
        scene.setSettings(&settings);
        QObject::connect(&scene, &GraphScene::statusMessage, [this](const QString &text) {
            if (text.startsWith(QLatin1String("Processing '")))
                order << text.section(QLatin1Char('\''), 1, 1);
        });
        QObject::connect(&scene, &GraphScene::logMessage, [this](const QString &text) { log << text; });
        const QStringList parts = text.split(QLatin1Char('|'));
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

    // "a=2 b=0": every item, by name.
    QString statuses() const
    {
        QStringList result;
        for (auto it = nodes.cbegin(); it != nodes.cend(); ++it)
            result << QStringLiteral("%1=%2").arg(it.key()).arg(it.value()->status());
        return result.join(QLatin1Char(' '));
    }
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
    void run_data();
    void run();
    void options_data();
    void options();
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

namespace {

// One row of a data table on one line: row("name", value, value, ...).
template<typename... Values>
void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

} // namespace

void TestRun::run_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<QString>("steps"); // run and edit steps, the last run is checked
    QTest::addColumn<QString>("order"); // items in the order the last run started them
    QTest::addColumn<QString>("statuses"); // every item, by name
    QTest::addColumn<QString>("check"); // "item:text" in its warnings or information, "output=cells" written

    const auto add = [](const char *name, const char *flow, const char *steps, const char *order,
                         const char *statuses,
                         const char *check = "") { row(name, flow, steps, order, statuses, check); };
    const char *chain = "a:in b:pass c:pass o:out | a>b b>c c>o";
    add("roots to ends", chain, "everything", "a,b,c,o", "a=2 b=2 c=2 o=2", "o=a,1");
    add("join waits for its second input", "a:in x:pass b:in j:join o:out | a>x x>j b>j j>o", "everything",
        "a,x,b,j,o", "a=2 b=2 j=2 o=2 x=2", "o=a,1\nb,1");
    add("merge inputs by canvas position, again on the next run", "b:in a:in j:join o:out | a>j b>j j>o",
        "everything everything", "b,a,j,o", "a=2 b=2 j=2 o=2", "o=b,1\na,1");
    add("roots in canvas order", "b:in a:in s:stack | a>s b>s", "everything", "b,a,s", "a=2 b=2 s=2");
    add("error holds back its branch only", "a:in f:fail g:pass b:pass o:out | a>f f>g a>b b>o", "everything",
        "a,f,b,o", "a=2 b=2 f=3 g=0 o=2", "o=a,1");
    add("missing file", "m:missing t:pass n:in u:pass | m>t n>u", "everything", "m,n,u", "m=3 n=2 t=0 u=2",
        "m:not found");
    add("blocked extension fails below too", "b:blocked t:pass | b>t", "everything", "b", "b=3 t=3",
        "b:The extension for this file is blocked in 'Preferences>Input Extensions':\n");
    add("format with no reader", "v:vcard t:pass | v>t", "everything", "v", "t=0 v=3",
        "v:Reading vCard files is not available in this version");
    add("nothing to read", "e:empty t:pass o:out | e>t t>o", "everything", "e,t,o", "e=2 o=2 t=2", "o=");
    add("output with nothing connected", "o:out", "everything", "", "o=2",
        "o:No transforms or inputs connected");
    add("output disabled", "a:in o:off | a>o", "everything", "a,o", "a=2 o=2", "o:Write mode='Disabled'");
    add("writer fails", "a:in o:out=fail.csv | a>o", "everything", "a,o", "a=2 o=3", "o:Unable to write");
    add("same file twice", "a:in o:out=same.csv p:out=same.csv | a>o a>p", "everything", "a,o,p",
        "a=2 o=2 p=2", "p:Overwrote '");
    add("two expected, one given", "a:in j:join o:out | a>j j>o", "everything", "a,j,o", "a=2 j=2 o=2",
        "j:2 upstream connections expected");
    add("at least two expected", "a:in s:stack | a>s", "everything", "a,s", "a=2 s=2",
        "s:At least 2 upstream connections expected");
    add("one expected, none given", "p:pass", "everything", "p", "p=2", "p:1 upstream connection expected");
    add("stop between roots", "a:in s:stop b:in c:pass | a>s b>c", "everything", "a,s", "a=2 b=0 c=0 s=2");

    add("changes: all up to date", chain, "everything changes", "", "a=2 b=2 c=2 o=2");
    add("changes: invalidated with auto run", chain, "everything auto invalidate:b", "b,c,o",
        "a=2 b=2 c=2 o=2");
    add("changes: invalidated without auto run", chain, "everything invalidate:b", "", "a=2 b=0 c=0 o=0");
    add("changes: outputs again", chain, "everything auto outputs", "o", "a=2 b=2 c=2 o=2");
    add("changes: outputs without auto run", chain, "everything outputs", "", "a=2 b=2 c=2 o=2");
    add("changes: error retried", "a:missing b:pass n:in | a>b", "everything changes", "a", "a=3 b=0 n=2");

    const char *line = "a:in b:pass c:pass | a>b b>c";
    add("selected: upstream runs first", line, "select:b", "a,b", "a=2 b=2 c=0");
    add("selected: only the selected after a run", line, "everything select:b", "b", "a=2 b=2 c=0");
    add("selected: two, the lower first", line, "everything select:c,a", "a,b,c", "a=2 b=2 c=2");
    add("selected: upstream error retried, selected waits", "m:missing b:pass c:pass | m>b b>c",
        "everything select:c", "m", "b=0 c=0 m=3");
    add("selected: branch not selected stays", "a:in b:pass x:pass j:join | a>b a>x b>j x>j", "select:b",
        "a,b", "a=2 b=2 j=0 x=0");
}

void TestRun::run()
{
    QFETCH(QString, flow);
    QFETCH(QString, steps);
    QFETCH(QString, order);
    QFETCH(QString, statuses);
    QFETCH(QString, check);
    Flow f(flow);
    QVERIFY(f.valid);
    for (const QString &step : steps.split(QLatin1Char(' '))) {
        f.order.clear();
        f.log.clear();
        const QString argument = step.section(QLatin1Char(':'), 1);
        if (step == QLatin1String("everything"))
            f.scene.runEverything();
        else if (step == QLatin1String("changes"))
            f.scene.runChanges();
        else if (step == QLatin1String("auto"))
            f.scene.setAutoRun(true);
        else if (step == QLatin1String("outputs"))
            f.scene.rerunOutputs();
        else if (step.startsWith(QLatin1String("invalidate:")))
            f.scene.invalidate(f[argument]);
        else if (step.startsWith(QLatin1String("select:"))) {
            for (const QString &name : argument.split(QLatin1Char(',')))
                f[name]->setSelected(true);
            f.scene.runSelected();
        }
    }
    QCOMPARE(f.order.join(QLatin1Char(',')), order);
    QCOMPARE(f.statuses(), statuses);
    QVERIFY(!GraphScene::isStopRequested());
    QVERIFY(!f.scene.isRunning());
    QCOMPARE(f.log.contains(QStringLiteral("  Stopped by user")), flow.contains(QLatin1String(":stop")));
    // A run that processed nothing reports no count.
    const bool counted = std::any_of(f.log.cbegin(), f.log.cend(),
        [](const QString &line) { return line.contains(QLatin1String("item(s) processed in")); });
    QCOMPARE(counted, !order.isEmpty());
    const int split = check.indexOf(QRegularExpression(QStringLiteral("[:=]")));
    const QString item = check.left(split);
    if (split > 0 && check.at(split) == QLatin1Char(':')) {
        const QString all = (f[item]->warnings() + f[item]->information()).join(QLatin1Char('|'));
        QVERIFY2(all.contains(check.mid(split + 1)), qPrintable(all));
    } else if (split > 0) {
        QCOMPARE(f.written(item), check.mid(split + 1));
    }
    if (flow.contains(QLatin1String("same.csv"))) {
        const QString path = QDir::toNativeSeparators(f.dir.filePath(QStringLiteral("same.csv")));
        QCOMPARE(f.scene.overwrittenPaths().value(path), 2);
        QVERIFY(f.log.contains(QStringLiteral("Overwrote '%1' 2 times").arg(path)));
    }
}

void TestRun::options_data()
{
    QTest::addColumn<QString>("input"); // "in" or "missing"
    QTest::addColumn<QString>("pending"); // a document's text, or "" for the column chosen by id
    QTest::addColumn<QString>("shape");
    QTest::addColumn<QString>("picked");
    QTest::addColumn<QString>("warning");

    row("by id, unchanged", "in", "", "", "z", "");
    row("by id, column moved to the front", "in", "", "rotate", "z", "");
    row("by id, column gone", "in", "", "drop", "", "1 option not set ('Column')");
    row("document, third column", "in", "3", "", "z", "");
    row("document, positions after the upstream change", "in", "3", "rotate", "y", "");
    row("document, past the last column", "in", "4", "", "", "1 option not set ('Column')");
    row("document, upstream never read", "missing", "3", "", "", "");
}

void TestRun::options()
{
    QFETCH(QString, input);
    QFETCH(QString, pending);
    QFETCH(QString, shape);
    QFETCH(QString, picked);
    QFETCH(QString, warning);
    Flow f(QStringLiteral("a:%1=x,y,z r:shape p:pick | a>r r>p").arg(input));
    QVERIFY(f.valid);
    Parameter *column = f.column(QStringLiteral("p"));
    if (pending.isEmpty()) {
        f.scene.runEverything();
        column->setValue(QVariant::fromValue(f[QStringLiteral("r")]->dataset().columnId(2)));
        TestTransform::shape = shape;
        f.scene.setAutoRun(true);
        f.order.clear();
        f.scene.invalidate(f[QStringLiteral("r")]);
        QCOMPARE(f.order.join(QLatin1Char(',')), QStringLiteral("r,p"));
    } else {
        TestTransform::shape = shape;
        column->setPendingText(pending, 84);
        f.scene.runEverything();
        // What could not be read yet is written back as it came.
        QCOMPARE(column->isPending(), input == QLatin1String("missing"));
        if (column->isPending())
            QCOMPARE(column->toText(), pending);
    }
    QCOMPARE(testutil::toText(f[QStringLiteral("p")]->dataset()), picked);
    QCOMPARE(f[QStringLiteral("p")]->warnings().join(QLatin1Char('|')), warning);
}

void TestRun::memorySaver_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("noData");

    const QString chain = QStringLiteral("a:in b:pass c:pass o:out | a>b b>c c>o");
    row("batch frees what is no longer needed", chain, int(GraphScene::RunBatch), "a b c");
    row("everything keeps all", chain, int(GraphScene::RunEverything), "");
    row("kept while a branch still waits", "a:in b:in f:fail x:pass g:join | a>x a>g b>f f>g",
        int(GraphScene::RunBatch), "b g");
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
}

void TestRun::memoryLimit_data()
{
    QTest::addColumn<int>("handler"); // -1 none, 0 declines, 1 raises the limit
    QTest::addColumn<bool>("thrown");
    QTest::addColumn<double>("limit");

    row("no one to ask", -1, true, 0.5);
    row("declined", 0, true, 0.5);
    row("raised", 1, false, 0.7);
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

    row("first report passes", "0.5", "0.5");
    row("too soon", "0 0.5 0.7", "0");
    row("end always passes", "0 0.5 1", "0 1");
    row("past the interval", "0 wait 0.5", "0 0.5");
    row("too small a step", "0.5 wait 0.51 wait 0.53", "0.5 0.53");
    row("start again too soon", "0.5 0", "0.5");
    row("start passes the step rule", "0.01 wait 0", "0.01 0");
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

    row("no time", qint64(0), "<0.001 second(s)");
    row("a second and a half", qint64(1500), "1.5 second(s)");
    row("six digits", qint64(1234567), "1234.57 second(s)");
}

void TestRun::runTimeText()
{
    QFETCH(qint64, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(GraphScene::runTimeText(milliseconds), text);
}

QTEST_MAIN(TestRun)
#include "tst_run.moc"
