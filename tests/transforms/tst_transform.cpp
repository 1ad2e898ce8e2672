#include "testutil.h"

#include "core/settings.h"
#include "flow/node.h"
#include "transforms/transform.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// An item that holds whatever dataset a test gives it.
class DataNode : public Node
{
public:
    explicit DataNode(const QString &name = QString(), const Dataset &dataset = Dataset())
    {
        setName(name);
        setDataset(dataset);
    }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

// A transform whose name, category, input counts and options a test chooses. Options
// are written "Kind:Name" with kinds Text, Int, Column, Columns, Filter and Bool; a Text is
// created empty, so it is unset, and its label is its name.
class TestTransform : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 99; }
    QString id() const override { return QStringLiteral("Test"); }
    QString name() const override { return m_name; }
    TransformCategory category() const override { return m_category; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return m_minimum; }
    int maximumInputs() const override { return m_maximum; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override { return QString(); }
    QList<QPair<QString, bool>> parameterStates() const override { return m_states; }
    TABRELLE_TRANSFORM_CLONE(TestTransform)
    Dataset process(const QList<Node *> &inputs, bool &failed) override
    {
        Q_UNUSED(failed)
        return notAvailableYet(inputs);
    }

    void addOptions(const QStringList &options, bool useDefaults = false)
    {
        for (const QString &option : options) {
            const QString kind = option.section(QLatin1Char(':'), 0, 0);
            const QString name = option.section(QLatin1Char(':'), 1);
            Parameter *parameter = nullptr;
            if (kind == QLatin1String("Int"))
                parameter = new Parameter(ParameterKind::Int, name, name, 7);
            else if (kind == QLatin1String("Bool"))
                parameter = new Parameter(ParameterKind::Bool, name, name, false);
            else if (kind == QLatin1String("Column"))
                parameter = new Parameter(ParameterKind::Column, name, name, nullptr);
            else if (kind == QLatin1String("Columns"))
                parameter = new Parameter(ParameterKind::Columns, name, name, nullptr);
            else if (kind == QLatin1String("Filter"))
                parameter = new Parameter(ParameterKind::FilterColumns, name, name, nullptr);
            else
                parameter = new Parameter(ParameterKind::Text, name, name, QString());
            applyDefault(useDefaults, parameter);
            addParameter(parameter);
        }
    }

    using Transform::addRowFailures;
    using Transform::notAvailableYet;
    using Transform::reportRowProgress;
    using Transform::rewriteColumns;

    QString m_name = QStringLiteral("Test");
    TransformCategory m_category = TransformCategory::Other;
    int m_minimum = 1;
    int m_maximum = 1;
    QList<QPair<QString, bool>> m_states;
};

QString upstreamNames(const Transform &transform)
{
    QStringList names;
    for (const Parameter *parameter : transform.parameterList())
        names << (parameter->upstream() ? parameter->upstream()->name() : QStringLiteral("-"));
    return names.join(QLatin1Char(','));
}

} // namespace

class TestTransformBase : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void categoryText_data();
    void categoryText();
    void keywords_data();
    void keywords();
    void keywordMatches_data();
    void keywordMatches();
    void buttonTip_data();
    void buttonTip();
    void checkParameters_data();
    void checkParameters();
    void reportRowProgress_data();
    void reportRowProgress();
    void setUpstream_data();
    void setUpstream();
    void setUpstreamKeepsValues_data();
    void setUpstreamKeepsValues();
    void applyDefault_data();
    void applyDefault();
    void rewriteColumns_data();
    void rewriteColumns();
    void addRowFailures_data();
    void addRowFailures();
    void notAvailableYet_data();
    void notAvailableYet();
    void cloneCopiesParameters();
};

void TestTransformBase::initTestCase()
{
    // Counts are shown with group separators, which the C locale leaves out.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestTransformBase::categoryText_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("mnemonic");
    QTest::addColumn<QString>("keywords");
    QTest::newRow("all") << 0 << "All"
                         << "&All"
                         << "";
    QTest::newRow("merge") << 1 << "Merge"
                           << "&Merge"
                           << "blends,merges";
    QTest::newRow("column") << 2 << "Column"
                            << "&Column"
                            << "columns";
    QTest::newRow("row") << 3 << "Row"
                         << "&Row"
                         << "rows";
    QTest::newRow("format") << 4 << "Format"
                            << "&Format"
                            << "formatting,formats";
    QTest::newRow("analysis: mnemonic inside") << 5 << "Analysis"
                                               << "Anal&ysis"
                                               << "analyse,analyze,analysis";
    QTest::newRow("other") << 6 << "Other"
                           << "&Other"
                           << "";
    QTest::newRow("unknown reads as other") << 9 << "Other"
                                            << "&Other"
                                            << "";
    QTest::newRow("negative reads as other") << -1 << "Other"
                                             << "&Other"
                                             << "";
}

void TestTransformBase::categoryText()
{
    QFETCH(int, category);
    const auto value = TransformCategory(category);
    QTEST(::categoryText(value), "text");
    QTEST(::categoryText(value, true), "mnemonic");
    QTEST(categoryKeywords(value).join(QLatin1Char(',')), "keywords");
}

void TestTransformBase::keywords_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("expected");
    QTest::newRow("lower-cased words and category words") << "Split Col" << 2 << "col,columns,split";
    QTest::newRow("double blank gives no empty word") << "Num  Base" << 6 << "base,num";
    QTest::newRow("only single blanks split") << "Date\tTime" << 4 << "date\ttime,formats,formatting";
    QTest::newRow("repeated word once") << "Row Row" << 3 << "row,rows";
}

void TestTransformBase::keywords()
{
    QFETCH(QString, name);
    QFETCH(int, category);
    TestTransform transform;
    transform.m_name = name;
    transform.m_category = TransformCategory(category);
    QStringList words = transform.keywords().values();
    words.sort();
    QTEST(words.join(QLatin1Char(',')), "expected");
}

void TestTransformBase::keywordMatches_data()
{
    // The transform is "Split Col" in Column: keywords split, col, columns.
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("expected");
    QTest::newRow("two words both matching") << QStringList {"spl", "col"} << 2;
    QTest::newRow("a word fitting two keywords counts once") << QStringList {"co"} << 1;
    QTest::newRow("whole keyword") << QStringList {"columns"} << 1;
    QTest::newRow("prefix is case sensitive") << QStringList {"Split"} << 0;
    QTest::newRow("inside a keyword is no prefix") << QStringList {"lit"} << 0;
    QTest::newRow("longer than any keyword") << QStringList {"columnsx"} << 0;
    QTest::newRow("one of three") << QStringList {"join", "s", "x"} << 1;
    QTest::newRow("same word twice counts twice") << QStringList {"col", "col"} << 2;
    QTest::newRow("no words") << QStringList {} << 0;
}

void TestTransformBase::keywordMatches()
{
    QFETCH(QStringList, words);
    TestTransform transform;
    transform.m_name = QStringLiteral("Split Col");
    transform.m_category = TransformCategory::Column;
    QTEST(transform.keywordMatches(words), "expected");
}

void TestTransformBase::buttonTip_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("expected");
    const QString tail =
        QStringLiteral(" in the Center pane\nand then click this button to perform this transform.");
    QTest::newRow("1 to 1") << 1 << 1 << "Select 1 Input/Transform item" + tail;
    QTest::newRow("2 to 2") << 2 << 2 << "Select 2 Input/Transform items" + tail;
    QTest::newRow("2 to no limit") << 2 << int(Transform::NoLimit)
                                   << "Select 2 or more Input/Transform items" + tail;
    QTest::newRow("1 to no limit") << 1 << int(Transform::NoLimit)
                                   << "Select 1 or more Input/Transform items" + tail;
    QTest::newRow("1 to 3") << 1 << 3 << "Select 1 to 3 Input/Transform items" + tail;
    QTest::newRow("maximum below minimum: no tip") << 3 << 1 << "";
}

void TestTransformBase::buttonTip()
{
    TestTransform transform;
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    transform.m_minimum = minimum;
    transform.m_maximum = maximum;
    QTEST(transform.buttonTip(), "expected");
}

void TestTransformBase::checkParameters_data()
{
    // Text options are unset (empty); Int and Bool options are set.
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("falseStates");
    QTest::addColumn<QString>("trueStates");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one unset: singular") << QStringList {"Text:Top key column", "Bool:Case"} << ""
                                         << ""
                                         << "1 option not set ('Top key column')";
    QTest::newRow("two unset: comma without blank")
        << QStringList {"Text:Top key column", "Int:N", "Text:Bottom key column"} << ""
        << ""
        << "2 options not set ('Top key column','Bottom key column')";
    QTest::newRow("false pair excludes") << QStringList {"Text:A", "Text:B"} << "B"
                                         << ""
                                         << "1 option not set ('A')";
    QTest::newRow("true pair keeps") << QStringList {"Text:A", "Text:B"} << ""
                                     << "A,B"
                                     << "2 options not set ('A','B')";
    QTest::newRow("true pair then false pair excludes") << QStringList {"Text:A", "Text:B"} << "A"
                                                        << "A"
                                                        << "1 option not set ('B')";
    QTest::newRow("all excluded: no warning") << QStringList {"Text:A"} << "A"
                                              << ""
                                              << "";
    QTest::newRow("false pair of a set option changes nothing") << QStringList {"Int:N", "Text:A"} << "N"
                                                                << ""
                                                                << "1 option not set ('A')";
    QTest::newRow("nothing unset") << QStringList {"Int:N", "Bool:B"} << ""
                                   << ""
                                   << "";
    QTest::newRow("no options") << QStringList {} << ""
                                << ""
                                << "";
}

void TestTransformBase::checkParameters()
{
    QFETCH(QStringList, options);
    QFETCH(QString, falseStates);
    QFETCH(QString, trueStates);
    TestTransform transform;
    transform.addOptions(options);
    for (const QString &name : trueStates.split(QLatin1Char(','), Qt::SkipEmptyParts))
        transform.m_states << qMakePair(name, true);
    for (const QString &name : falseStates.split(QLatin1Char(','), Qt::SkipEmptyParts))
        transform.m_states << qMakePair(name, false);
    transform.checkParameters();
    QTEST(transform.warnings().join(QLatin1Char('|')), "expected");
}

void TestTransformBase::reportRowProgress_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<QList<qreal>>("expected");
    QTest::newRow("empty input: none") << 0 << QList<qreal> {};
    QTest::newRow("one row: row 0") << 1 << QList<qreal> {0.0};
    QTest::newRow("1000 rows: row 0 only") << 1000 << QList<qreal> {0.0};
    QTest::newRow("1001 rows: rows 0 and 1000") << 1001 << QList<qreal> {0.0, 1000.0 / 1001.0};
    QTest::newRow("2500 rows: 0, 1000, 2000") << 2500 << QList<qreal> {0.0, 0.4, 0.8};
}

void TestTransformBase::reportRowProgress()
{
    QFETCH(int, rowCount);
    QFETCH(QList<qreal>, expected);
    TestTransform transform;
    QSignalSpy spy(&transform, &Transform::processed);
    for (int row = 0; row < rowCount; ++row)
        transform.reportRowProgress(row, rowCount);
    QList<qreal> fractions;
    for (const QList<QVariant> &arguments : qAsConst(spy))
        fractions << arguments.at(0).toReal();
    QCOMPARE(fractions, expected);

    // Rewriting columns walks the rows with the same rule.
    Dataset dataset;
    dataset.resize(rowCount, 1);
    spy.clear();
    transform.rewriteColumns(
        dataset, {0}, [](const QString &cell, DataRowIndex, DataColumnIndex) { return cell; });
    QCOMPARE(spy.size(), expected.size());
}

void TestTransformBase::setUpstream_data()
{
    QTest::addColumn<int>("maximumInputs");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("nodes");
    QTest::addColumn<QString>("expected"); // upstream of each option, "-" for none
    const QStringList three {"Column:A", "Bool:B", "Columns:C"};
    QTest::newRow("single input: every column option takes the first") << 1 << three << "a"
                                                                       << "a,-,a";
    QTest::newRow("single input with two nodes still takes the first") << 1 << three << "a,b"
                                                                       << "a,-,a";
    QTest::newRow("two inputs: consumed in order") << 2 << three << "a,b"
                                                   << "a,-,b";
    QTest::newRow("two inputs, one node: the rest cleared") << 2 << three << "a"
                                                            << "a,-,-";
    QTest::newRow("no limit: consumed in order") << int(Transform::NoLimit) << three << "b,a"
                                                 << "b,-,a";
    QTest::newRow("more nodes than options") << 2 << QStringList {"Column:A"} << "a,b"
                                             << "a";
    QTest::newRow("no nodes clears") << 1 << three << ""
                                     << "-,-,-";
    QTest::newRow("no nodes clears a merge") << 2 << three << ""
                                             << "-,-,-";
}

void TestTransformBase::setUpstream()
{
    QFETCH(int, maximumInputs);
    QFETCH(QStringList, options);
    QFETCH(QString, nodes);
    DataNode a(QStringLiteral("a"));
    DataNode b(QStringLiteral("b"));
    DataNode old(QStringLiteral("old"));
    TestTransform transform;
    transform.m_maximum = maximumInputs;
    transform.addOptions(options);
    transform.setUpstream({&old, &old, &old}); // a previous connection that must not survive
    QList<Node *> list;
    for (const QString &name : nodes.split(QLatin1Char(','), Qt::SkipEmptyParts))
        list << (name == QLatin1String("a") ? &a : &b);
    transform.setUpstream(list);
    QTEST(upstreamNames(transform), "expected");
}

void TestTransformBase::setUpstreamKeepsValues_data()
{
    QTest::addColumn<QString>("steps"); // nodes given in turn, "-" for none
    QTest::addColumn<int>("conditions");
    QTest::newRow("same node keeps the conditions") << "a a" << 1;
    QTest::newRow("another node empties them") << "a b" << 0;
    QTest::newRow("disconnected keeps them") << "a -" << 1;
    QTest::newRow("reconnected after a disconnection keeps them") << "a - b" << 1;
}

void TestTransformBase::setUpstreamKeepsValues()
{
    QFETCH(QString, steps);
    DataNode a(QStringLiteral("a"));
    DataNode b(QStringLiteral("b"));
    TestTransform transform;
    transform.addOptions({"Filter:Rows"});
    Parameter *rows = transform.parameter(QStringLiteral("Rows"));
    FilterColumnsValue value;
    value.conditions << Condition {false, ColumnId(1, 1), 0, QStringLiteral("x")};
    const QStringList nodes = steps.split(QLatin1Char(' '));
    transform.setUpstream({&a});
    rows->setValue(QVariant::fromValue(value));
    for (const QString &node : nodes.mid(1)) {
        if (node == QLatin1String("-"))
            transform.setUpstream({});
        else
            transform.setUpstream({node == QLatin1String("a") ? &a : &b});
    }
    QTEST(int(rows->filterColumns().conditions.size()), "conditions");
}

void TestTransformBase::applyDefault_data()
{
    QTest::addColumn<QString>("iniText");
    QTest::addColumn<bool>("useDefaults");
    QTest::addColumn<QString>("expected"); // "Text|Int" after createParameters
    QTest::addColumn<bool>("defaultable");
    QTest::newRow("stored values apply")
        << "[defaults]\ntransforms\\Test\\Note=hello\ntransforms\\Test\\Count=42\n"
        << true << "hello|42" << true;
    QTest::newRow("not asked: values stay and options are not defaultable")
        << "[defaults]\ntransforms\\Test\\Note=hello\ntransforms\\Test\\Count=42\n"
        << false << "|7" << false;
    QTest::newRow("nothing stored: defaultable all the same") << "" << true << "|7" << true;
    QTest::newRow("another transform's value is not read") << "[defaults]\ntransforms\\Join\\Note=hello\n"
                                                           << true << "|7" << true;
    QTest::newRow("a bad number leaves the value") << "[defaults]\ntransforms\\Test\\Count=many\n"
                                                   << true << "|7" << true;
    QTest::newRow("a comma typed into the file stays in the text")
        << "[defaults]\ntransforms\\Test\\Note=a,b\n"
        << true << "a,b|7" << true;
    QTest::newRow("text form is percent-decoded") << "[defaults]\ntransforms\\Test\\Note=50%25\n"
                                                  << true << "50%|7" << true;
}

void TestTransformBase::applyDefault()
{
    QFETCH(QString, iniText);
    QFETCH(bool, useDefaults);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("tabrelle.ini"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(iniText.toUtf8());
    file.close();
    Settings settings(path);
    Transform::setSettings(&settings);

    TestTransform transform;
    transform.addOptions({"Text:Note", "Int:Count"}, useDefaults);
    const QString values = transform.parameter(QStringLiteral("Note"))->stringValue() + QLatin1Char('|')
        + QString::number(transform.parameter(QStringLiteral("Count"))->intValue());
    Transform::setSettings(nullptr);
    QTEST(values, "expected");
    QTEST(transform.parameter(QStringLiteral("Note"))->isDefaultable(), "defaultable");
    QCOMPARE(Transform::defaultKey(QStringLiteral("Join"), QStringLiteral("Column_1")),
        QStringLiteral("defaults/transforms/Join/Column_1"));
}

void TestTransformBase::rewriteColumns_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QList<int>>("columns");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("changed");
    QTest::addColumn<QString>("visits"); // "row:column" in the order rewrite was called
    QTest::newRow("one column") << "a,b\nc,d" << QList<int> {1} << "a,B\nc,D" << 2 << "0:1 1:1";
    QTest::newRow("ascending order whatever the list")
        << "a,b\nc,d" << QList<int> {1, 0} << "A,B\nC,D" << 4 << "0:0 0:1 1:0 1:1";
    QTest::newRow("unchanged cells are not counted")
        << "A,b\nc,D" << QList<int> {0, 1} << "A,B\nC,D" << 2 << "0:0 0:1 1:0 1:1";
    QTest::newRow("a repeated column once") << "a,b" << QList<int> {0, 0} << "A,b" << 1 << "0:0";
    QTest::newRow("columns out of range ignored") << "a,b" << QList<int> {-1, 2, 1} << "a,B" << 1 << "0:1";
    QTest::newRow("no columns") << "a,b" << QList<int> {} << "a,b" << 0 << "";
    QTest::newRow("empty cells are offered too") << "a,\n,b" << QList<int> {1} << "a,\n,B" << 1 << "0:1 1:1";
}

void TestTransformBase::rewriteColumns()
{
    QFETCH(QString, input);
    QFETCH(QList<int>, columns);
    Dataset dataset = testutil::toDataset(input);
    dataset.assignColumnIds(5);
    const QList<ColumnId> ids = dataset.columnIds();
    QList<DataColumnIndex> indexes;
    for (int column : columns)
        indexes << DataColumnIndex(column);
    QStringList visits;
    TestTransform transform;
    const int changed = transform.rewriteColumns(
        dataset, indexes, [&](const QString &cell, DataRowIndex row, DataColumnIndex column) {
            visits << QStringLiteral("%1:%2").arg(row.toInt()).arg(column.toInt());
            return cell.toUpper();
        });
    QTEST(testutil::toText(dataset), "expected");
    QTEST(changed, "changed");
    QTEST(visits.join(QLatin1Char(' ')), "visits");
    QCOMPARE(dataset.columnIds(), ids);
}

void TestTransformBase::addRowFailures_data()
{
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("total");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << 0 << 0 << "";
    QTest::newRow("three, all told") << 3 << 3 << "f1|f2|f3";
    QTest::newRow("five, all told") << 5 << 5 << "f1|f2|f3|f4|f5";
    QTest::newRow("six: one other") << 6 << 6 << "f1|f2|f3|f4|f5|+ 1 other";
    QTest::newRow("five collected of 1,234: grouped others") << 5 << 1234 << "f1|f2|f3|f4|f5|+ 1,229 others";
    QTest::newRow("total below the list: the list counts") << 7 << 0 << "f1|f2|f3|f4|f5|+ 2 others";
}

void TestTransformBase::addRowFailures()
{
    QFETCH(int, given);
    QFETCH(int, total);
    QStringList failures;
    for (int i = 1; i <= given; ++i)
        failures << QStringLiteral("f%1").arg(i);
    TestTransform transform;
    transform.addRowFailures(failures, total);
    QTEST(transform.warnings().join(QLatin1Char('|')), "expected");
}

void TestTransformBase::notAvailableYet_data()
{
    QTest::addColumn<int>("inputs");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no input: empty") << 0 << "";
    QTest::newRow("one input: a copy") << 1 << "a,b\n1,2";
    QTest::newRow("two inputs: the first") << 2 << "a,b\n1,2";
}

void TestTransformBase::notAvailableYet()
{
    QFETCH(int, inputs);
    DataNode first(QStringLiteral("first"), testutil::toDataset(QStringLiteral("a,b\n1,2")));
    DataNode second(QStringLiteral("second"), testutil::toDataset(QStringLiteral("x")));
    const QList<Node *> nodes = QList<Node *> {&first, &second}.mid(0, inputs);
    TestTransform transform;
    transform.m_name = QStringLiteral("Cluster");
    bool failed = false;
    const Dataset result = transform.process(nodes, failed);
    QTEST(testutil::toText(result), "expected");
    QVERIFY(!failed);
    QCOMPARE(transform.result(), QStringLiteral("Not available yet"));
    QCOMPARE(
        transform.warnings(), QStringList {QStringLiteral("'Cluster' is not available in this version")});
    if (inputs > 0) // shared with the input, not copied cell by cell
        QCOMPARE(result.cell(0, 0).constData(), first.dataset().cell(0, 0).constData());
}

void TestTransformBase::cloneCopiesParameters()
{
    DataNode a(QStringLiteral("a"));
    TestTransform transform;
    transform.addOptions({"Text:Note", "Column:Key"});
    transform.setUpstream({&a});
    transform.parameter(QStringLiteral("Note"))->setValue(QStringLiteral("kept"));
    std::unique_ptr<Transform> copy(transform.clone());
    QCOMPARE(copy->parameterList().size(), 2);
    QVERIFY(copy->parameter(QStringLiteral("Note")) != transform.parameter(QStringLiteral("Note")));
    QCOMPARE(copy->parameter(QStringLiteral("Note"))->stringValue(), QStringLiteral("kept"));
    QCOMPARE(copy->parameterForUpstream(&a), copy->parameter(QStringLiteral("Key")));
    // The copy is its own: changing it leaves the original alone.
    copy->parameter(QStringLiteral("Note"))->setValue(QStringLiteral("changed"));
    QCOMPARE(transform.parameter(QStringLiteral("Note"))->stringValue(), QStringLiteral("kept"));
    QCOMPARE(copy->columnParameterCount(), 1);
    QVERIFY(copy->hasUniqueParameterNames());
    transform.addOptions({"Int:Note"});
    QVERIFY(!transform.hasUniqueParameterNames());
}

QTEST_MAIN(TestTransformBase)
#include "tst_transform.moc"
