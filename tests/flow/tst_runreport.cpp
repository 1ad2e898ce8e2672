#include "flow/aliasassignment.h"
#include "flow/ionode.h"
#include "flow/node.h"
#include "flow/runreport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

// An item of any kind, with the status, messages and written files a test gives it.
class FakeNode : public Node
{
public:
    FakeNode(const QString &type, const QString &name, int status)
        : m_type(type)
    {
        assignId(-1);
        setName(name);
        setStatus(status, false);
    }
    QString typeName() const override { return m_type; }
    int maxUpstream() const override { return 1; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
    bool isReportedInRun() const override { return m_reported; }
    QStringList writtenFiles() const override { return m_files; }
    void setAliasPath(const QString &path) override { m_aliasPath = path; }

    QString m_type;
    bool m_reported = true;
    QStringList m_files;
    QString m_aliasPath;
};

// An input or output: IONode holds its path and sheet.
class FakeIONode : public IONode
{
public:
    FakeIONode(const QString &type, const QString &alias)
        : m_type(type)
    {
        setAlias(alias);
    }
    QString typeName() const override { return m_type; }
    int maxUpstream() const override { return 1; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }

    QString m_type;
};

// Lines as text, one a line; lines for the error channel start with "E ".
QString joined(const QList<RunReport::Line> &lines)
{
    QStringList texts;
    for (const RunReport::Line &line : lines)
        texts << (line.error ? QStringLiteral("E ") : QString()) + line.text;
    return texts.join(QLatin1Char('\n'));
}

} // namespace

class TestRunReport : public QObject
{
    Q_OBJECT
private slots:
    void init() { Node::setNextId(1); }
    void lines_data();
    void lines();
    void counts_data();
    void counts();
    void secondsText_data();
    void secondsText();
    void alias_data();
    void alias();
};

void TestRunReport::lines_data()
{
    QTest::addColumn<int>("verbosity");
    QTest::addColumn<QString>("items");
    QTest::addColumn<QString>("summary");

    const QString input = "'orders', Id=1, [Up to date],   Input: No data";
    const QString transform = "E 'Filter', Id=2, [Error],   Transform: No data";
    const QString output = "'out', Id=3, [Up to date],   Output: No data";
    QTest::newRow("0 Silent: counts only") << 0 << ""
                                           << "";
    QTest::newRow("1 Summary") << 1 << ""
                               << "Processed: 1 Input(s), 0 Transform(s), 1 Output(s), 0 Chart(s)\n"
                                  "Outputs written: 2\n"
                                  "Overwritten multiple times: 1\n"
                                  "Elapsed: 1.235 second(s)\n"
                                  "Results: 1 error(s)";
    QTest::newRow("2 Normal: status lines, errors red, warnings counted")
        << 2 << QStringList {input, transform, output}.join('\n')
        << "Processed: 1 Input(s), 0 Transform(s), 1 Output(s), 0 Chart(s)\n"
           "Outputs written: 2\n"
           "Overwritten multiple times: 1\n"
           "Elapsed: 1.235 second(s)\n"
           "Results: 1 error(s), 3 warning(s)";
    const QString extended = "'orders', Id=1, [Up to date],   Input: No data, 1 warning(s)\n"
                             "    Warning: Guessed ','\n"
                             "    Warning: second line\n"
                             "E 'Filter', Id=2, [Error],   Transform: No data, 1 warning(s)\n"
                             "    Warning: Bad value\n"
                             "'out', Id=3, [Up to date],   Output: No data, 0 warning(s)";
    const QString fullSummary = "Processed: 1 Input(s), 0 Transform(s), 1 Output(s), 0 Chart(s)\n"
                                "Outputs written: 2\n"
                                "  /data/a.csv\n"
                                "  /data/b.csv\n"
                                "Overwritten multiple times: 1\n"
                                "  Warning: Overwrote '/data/a.csv' 2 times\n"
                                "Elapsed: 1.235 second(s)\n"
                                "Results: 1 error(s), 3 warning(s)";
    QTest::newRow("3 Extra: extended status, warnings, paths") << 3 << extended << fullSummary;
    QString maximum = extended;
    maximum.replace(
        "1 warning(s)\n    Warning: Guessed", "1 warning(s)\n    Info: Read 3 rows\n    Warning: Guessed");
    QTest::newRow("4 Maximum: information too") << 4 << maximum << fullSummary;
}

void TestRunReport::lines()
{
    QFETCH(int, verbosity);
    // Given out of order, with a disabled output and a note that the report passes over.
    FakeNode in("Input", "orders", Node::UpToDate);
    FakeNode filter("Transform", "Filter", Node::Error);
    FakeNode out("Output", "out", Node::UpToDate);
    FakeNode off("Output", "off", Node::Error);
    FakeNode note("Note", "note", Node::Error);
    in.addInformation("Read 3 rows");
    in.addWarning("Guessed ','\nsecond line");
    filter.addWarning("Bad value");
    out.m_files = QStringList {"/data/b.csv", "/data/a.csv", "/data/b.csv"};
    off.m_reported = false;
    off.addWarning("not counted");
    RunReport report(verbosity);
    report.count({&out, &note, &off, &filter, &in}, {{"/data/a.csv", 2}});
    QTEST(joined(report.itemLines()), "items");
    QTEST(joined(report.summaryLines(1234567890)), "summary");
    QCOMPARE(report.errorCount(), 1);
    QCOMPARE(report.warningCount(), 3);
    QCOMPARE(report.failedStatusLines(), QStringList {"'Filter', Id=2, [Error],   Transform: No data"});
}

void TestRunReport::counts_data()
{
    QTest::addColumn<QString>("items"); // type:status[:files][:-] each, "-" for not reported
    QTest::addColumn<bool>("charts");
    QTest::addColumn<QString>("summary");

    QTest::newRow("an empty flow")
        << "" << true
        << "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 0 Chart(s)\nOutputs written: 0\n"
           "Elapsed: 0.000 second(s)\nResults: 0 error(s), 0 warning(s)";
    QTest::newRow("an edition without charts has no chart piece")
        << "Input:2 Output:2:o.csv" << false
        << "Processed: 1 Input(s), 0 Transform(s), 1 Output(s)\nOutputs written: 1\n  o.csv\n"
           "Elapsed: 0.000 second(s)\nResults: 0 error(s), 0 warning(s)";
    QTest::newRow("a chart that writes lists its file")
        << "Chart:2:c.png,c.pdf Chart:2::-" << true
        << "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 1 Chart(s)\nOutputs written: 0\n"
           "Charts written: 2\n  c.pdf\n  c.png\nElapsed: 0.000 second(s)\nResults: 0 error(s), 0 warning(s)";
    QTest::newRow("a failed output's files are not counted")
        << "Output:3:x.csv Output:0 Transform:1" << true
        << "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 0 Chart(s)\nOutputs written: 0\n"
           "Elapsed: 0.000 second(s)\nResults: 3 error(s), 0 warning(s)";
    QTest::newRow("two outputs writing one path count it once")
        << "Output:2:same.csv Output:2:same.csv" << true
        << "Processed: 0 Input(s), 0 Transform(s), 2 Output(s), 0 Chart(s)\nOutputs written: 1\n"
           "  same.csv\nElapsed: 0.000 second(s)\nResults: 0 error(s), 0 warning(s)";
}

void TestRunReport::counts()
{
    QFETCH(QString, items);
    std::vector<std::unique_ptr<FakeNode>> owned;
    QList<Node *> nodes;
    for (const QString &item : items.split(' ', Qt::SkipEmptyParts)) {
        const QStringList parts = item.split(':');
        owned.push_back(std::make_unique<FakeNode>(parts.at(0), QStringLiteral("n"), parts.at(1).toInt()));
        owned.back()->m_files = parts.value(2).split(',', Qt::SkipEmptyParts);
        owned.back()->m_reported = parts.value(3) != QLatin1String("-");
        nodes << owned.back().get();
    }
    QFETCH(bool, charts);
    RunReport report(3, charts);
    report.count(nodes, {});
    QTEST(joined(report.summaryLines(0)), "summary");
}

void TestRunReport::secondsText_data()
{
    QTest::addColumn<qint64>("nanoseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << qint64(0) << "0.000";
    QTest::newRow("rounds half a millisecond up") << qint64(1500000) << "0.002";
    QTest::newRow("below half a millisecond") << qint64(400000) << "0.000";
    QTest::newRow("minutes, no group separator") << qint64(1234567000000) << "1234.567";
}

void TestRunReport::secondsText()
{
    QFETCH(qint64, nanoseconds);
    QTEST(RunReport::secondsText(nanoseconds), "text");
}

void TestRunReport::alias_data()
{
    QTest::addColumn<QString>("alias");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("error");
    // Paths and sheets afterwards: the input "in", the output "out", the second output
    // also "out", the chart "pic".
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("inputChanged");

    const QString before = "old.csv[] | o.csv[] | o.csv[] | ";
    QTest::newRow("input with a sheet") << "in"
                                        << "data.xlsx[ 2024 ]"
                                        << ""
                                        << "data.xlsx[2024] | o.csv[] | o.csv[] | " << true;
    QTest::newRow("aliases are trimmed on both sides") << " in "
                                                       << "data.xlsx"
                                                       << ""
                                                       << "data.xlsx[] | o.csv[] | o.csv[] | " << true;
    QTest::newRow("every item with the alias takes the value")
        << "out"
        << "new.xlsx[Totals]"
        << ""
        << "old.csv[] | new.xlsx[Totals] | new.xlsx[Totals] | " << false;
    QTest::newRow("output files are not checked")
        << "out"
        << "no/such/folder/x.csv"
        << ""
        << "old.csv[] | no/such/folder/x.csv[] | no/such/folder/x.csv[] | " << false;
    QTest::newRow("a chart takes the whole value") << "pic"
                                                   << "chart[1].png"
                                                   << ""
                                                   << "old.csv[] | o.csv[] | o.csv[] | chart[1].png" << false;
    QTest::newRow("missing input file") << "in"
                                        << "gone.csv[x]"
                                        << "File 'gone.csv' does not exist" << before << false;
    QTest::newRow("unknown alias") << "nobody"
                                   << "data.xlsx"
                                   << "Alias 'nobody' not recognized" << before << false;
    QTest::newRow("case counts") << "IN"
                                 << "data.xlsx"
                                 << "Alias 'IN' not recognized" << before << false;
    QTest::newRow("an empty alias matches nothing aliased") << ""
                                                            << "data.xlsx"
                                                            << "Alias '' not recognized" << before << false;
}

void TestRunReport::alias()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QDir::setCurrent(dir.path());
    QFile data(QStringLiteral("data.xlsx"));
    QVERIFY(data.open(QIODevice::WriteOnly));
    data.close();

    FakeIONode in("Input", " in");
    FakeIONode out("Output", "out ");
    FakeIONode out2("Output", "out");
    FakeIONode other("Output", "");
    FakeNode pic("Chart", "pic", Node::NeedsUpdating);
    pic.setAlias("pic");
    in.setPath("old.csv");
    out.setPath("o.csv");
    out2.setPath("o.csv");
    QFETCH(QString, alias);
    QFETCH(QString, value);
    bool changed = true;
    const QString error = AliasAssignment::apply({&pic, &out, &other, &in, &out2}, alias, value, &changed);
    QTEST(error, "error");
    const auto place = [](const IONode &node) { return node.path() + '[' + node.worksheet() + ']'; };
    QTEST(QStringList({place(in), place(out), place(out2), pic.m_aliasPath}).join(" | "), "after");
    QTEST(changed, "inputChanged");
    QCOMPARE(other.path(), QString());
}

QTEST_MAIN(TestRunReport)
#include "tst_runreport.moc"
