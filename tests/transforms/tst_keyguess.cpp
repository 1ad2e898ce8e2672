#include "testutil.h"

#include "flow/node.h"
#include "transforms/keyguess.h"
#include "transforms/parameter.h"

#include <QLocale>
#include <QtTest>

#include <cmath>

namespace {

// An item that holds whatever dataset a test gives it, with column ids assigned.
class DataNode : public Node
{
public:
    DataNode(int id, const Dataset &dataset)
    {
        assignId(id);
        Dataset copy = dataset;
        copy.assignColumnIds(id);
        setDataset(copy);
        setStatus(UpToDate, false);
    }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

// A column of text cells: "a b ~" gives rows a, b and an empty cell; "k*20/60" gives 60
// rows cycling through k0 to k19.
QStringList cells(const QString &text)
{
    static const QRegularExpression cycle(QStringLiteral("^(\\w+)\\*(\\d+)/(\\d+)$"));
    const QRegularExpressionMatch m = cycle.match(text);
    if (!m.hasMatch())
        return text.split(QLatin1Char(' '), Qt::SkipEmptyParts)
            .replaceInStrings(QStringLiteral("~"), QString());
    QStringList values;
    for (int i = 0; i < m.captured(3).toInt(); ++i)
        values << m.captured(1) + QString::number(i % m.captured(2).toInt());
    return values;
}

// Columns separated by "|", each with an optional header before ":": "id:1 2 3|name:x y".
Dataset table(const QString &text)
{
    Dataset dataset;
    const QStringList columns = text.split(QLatin1Char('|'), Qt::SkipEmptyParts);
    bool headers = false;
    QList<QStringList> values;
    QStringList names;
    int rows = 0;
    for (const QString &column : columns) {
        const int colon = column.indexOf(QLatin1Char(':'));
        headers = headers || colon >= 0;
        names << (colon >= 0 ? column.left(colon) : QString());
        values << cells(column.mid(colon + 1));
        rows = qMax(rows, int(values.last().size()));
    }
    dataset.resize(rows, columns.size());
    for (int c = 0; c < values.size(); ++c) {
        for (int r = 0; r < values.at(c).size(); ++r)
            dataset.setCell(r, c, values.at(c).at(r));
    }
    if (headers)
        dataset.setHeaders(names);
    return dataset;
}

QString join(const QStringList &lines)
{
    return lines.join(QLatin1Char('|'));
}

} // namespace

class TestKeyGuess : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void threshold_data();
    void threshold();
    void thresholdOfEmptyTables();
    void sample();
    void candidatePairs_data();
    void candidatePairs();
    void guess_data();
    void guess();
    void guessRefuses();
    void duplicates_data();
    void duplicates();
    void whitespace_data();
    void whitespace();
    void misses_data();
    void misses();
    void detailedReport();
};

void TestKeyGuess::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestKeyGuess::threshold_data()
{
    QTest::addColumn<int>("topRows");
    QTest::addColumn<int>("bottomRows");
    QTest::addColumn<bool>("strict");
    QTest::addColumn<double>("expected");
    QTest::newRow("plain") << 100 << 100 << false << 5.0;
    QTest::newRow("plain ignores sizes") << 0 << 0 << false << 5.0;
    QTest::newRow("strict, the smaller ratio") << 300 << 600 << true << 50.0;
    QTest::newRow("strict, 3000 rows reaches the floor") << 3000 << 3000 << true << 10.0;
    QTest::newRow("strict, never below 10") << 10000 << 10000 << true << 10.0;
    QTest::newRow("strict, the larger table decides") << 20 << 10000 << true << 10.0;
    QTest::newRow("strict, small tables") << 20 << 40 << true << 750.0;
    QTest::newRow("strict, one empty side") << 0 << 40 << true << 750.0;
}

void TestKeyGuess::threshold()
{
    QFETCH(int, topRows);
    QFETCH(int, bottomRows);
    QFETCH(bool, strict);
    QFETCH(double, expected);
    QCOMPARE(keyGuessThreshold(topRows, bottomRows, strict), expected);
}

void TestKeyGuess::thresholdOfEmptyTables()
{
    // Nothing can pass it, so guessing on empty tables sets nothing.
    QVERIFY(std::isinf(keyGuessThreshold(0, 0, true)));
}

void TestKeyGuess::sample()
{
    // 300 distinct values in the first 1000 rows: the 200 first in sort order remain.
    QStringList values;
    for (int i = 0; i < 1200; ++i)
        values << QStringLiteral("v%1").arg(i < 1000 ? i % 300 : 999, 3, 10, QLatin1Char('0'));
    Dataset dataset;
    dataset.resize(values.size(), 1);
    dataset.setColumnValues(0, values);
    const QSet<QString> sample = keySample(dataset, 0);
    QCOMPARE(sample.size(), 200);
    QVERIFY(sample.contains(QStringLiteral("v000")));
    QVERIFY(sample.contains(QStringLiteral("v199")));
    QVERIFY(!sample.contains(QStringLiteral("v200")));
    QVERIFY(!sample.contains(QStringLiteral("v999"))); // beyond row 1000
    QCOMPARE(keySample(testutil::toDataset(QStringLiteral("a\nb\na\n")), 0).size(), 3); // "" counts
}

void TestKeyGuess::candidatePairs_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<int>("limit");
    QTest::addColumn<QString>("expected"); // "t-b" pairs
    QTest::newRow("equal headers, then contained, then shared values")
        << "x:1 2|Cust:a b|id:q r"
        << "customer:z|ID:s|v:2 9" << 100 << "2-1 1-0 0-2";
    QTest::newRow("header of two letters is not contained") << "id:1|n:5"
                                                            << "idx:8" << 100 << "";
    QTest::newRow("empty cells are not shared") << "a:~ x|b:1"
                                                << "c:~ y|d:1" << 100 << "1-1";
    QTest::newRow("no headers: shared values in column order") << "1 2|3 4"
                                                               << "4 1|2 3" << 100 << "0-0 0-1 1-0 1-1";
    QTest::newRow("limit keeps the strongest") << "x:1 2|Cust:a b|id:q r"
                                               << "customer:z|ID:s|v:2 9" << 2 << "2-1 1-0";
    QTest::newRow("empty datasets") << ""
                                    << "a:1" << 100 << "";
}

void TestKeyGuess::candidatePairs()
{
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(int, limit);
    QStringList pairs;
    for (const ColumnPair &pair : candidateKeyPairs(table(top), table(bottom), limit))
        pairs << QStringLiteral("%1-%2").arg(pair.first.toInt()).arg(pair.second.toInt());
    QTEST(pairs.join(QLatin1Char(' ')), "expected");
}

void TestKeyGuess::guess_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<bool>("strict");
    QTest::addColumn<QString>("expected"); // "t-b" positions, or "" when nothing is set
    QTest::newRow("six shared values pass 5") << "a b|1 2 3 4 5 6"
                                              << "6 5 4 3 2 1 0" << false << "1-0";
    QTest::newRow("five shared values do not") << "1 2 3 4 5"
                                               << "1 2 3 4 5" << false << "";
    QTest::newRow("equal headers: (2 + 2) x 1.5 = 6 passes") << "Id:1 2 9"
                                                             << "ID:2 1 8" << false << "0-0";
    QTest::newRow("equal headers: (1 + 2) x 1.5 = 4.5 does not") << "Id:1 9"
                                                                 << "ID:1 8" << false << "";
    QTest::newRow("contained header: (4 + 1) x 1.25 = 6.25 passes") << "cust:1 2 3 4"
                                                                    << "Customer:4 3 2 1" << false << "0-0";
    QTest::newRow("contained header: (3 + 1) x 1.25 = 5 does not") << "cust:1 2 3"
                                                                   << "customer:3 2 1" << false << "";
    QTest::newRow("empty values are not shared") << "a:1 2 3 4 5 ~ ~ ~"
                                                 << "b:1 2 3 4 5 ~ ~" << false << "";
    QTest::newRow("the best pair wins") << "x:1 2 3 4 5 6|y:1 2 3 4 5 6 7 8"
                                        << "z:8 7 6 5 4 3 2 1" << false << "1-0";
    QTest::newRow("a tie keeps the first") << "x:1 2 3 4 5 6|y:1 2 3 4 5 6"
                                           << "z:1 2 3 4 5 6" << false << "0-0";
    QTest::newRow("strict on small tables refuses") << "k*20/300"
                                                    << "k*20/300" << true << "";
    QTest::newRow("strict: 20 shared values pass 10 at 3000 rows") << "k*20/3000"
                                                                   << "k*20/3000" << true << "0-0";
    QTest::newRow("strict: 10 shared values do not") << "k*10/3000"
                                                     << "k*10/3000" << true << "";
    QTest::newRow("empty datasets") << ""
                                    << "" << false << "";
    QTest::newRow("empty datasets, strict") << ""
                                            << "" << true << "";
}

void TestKeyGuess::guess()
{
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(bool, strict);
    QFETCH(QString, expected);
    DataNode topNode(1, table(top));
    DataNode bottomNode(2, table(bottom));
    Parameter topKey(
        ParameterKind::Column, QStringLiteral("Column_1"), QStringLiteral("Top key column"), &topNode);
    Parameter bottomKey(
        ParameterKind::Column, QStringLiteral("Column_2"), QStringLiteral("Bottom key column"), &bottomNode);
    const bool set = guessKeyColumns(&topKey, &bottomKey, strict);
    QCOMPARE(set, !expected.isEmpty());
    if (set) {
        QCOMPARE(
            QStringLiteral("%1-%2").arg(topKey.columnIndex().toInt()).arg(bottomKey.columnIndex().toInt()),
            expected);
    } else {
        QVERIFY(topKey.columnId().isUnset());
        QVERIFY(bottomKey.columnId().isUnset());
    }
}

void TestKeyGuess::guessRefuses()
{
    const Dataset shared = table(QStringLiteral("id:1 2 3 4 5 6 7 8"));
    DataNode topNode(1, shared);
    DataNode bottomNode(2, shared);
    Parameter topKey(ParameterKind::Column, QStringLiteral("Column_1"), QString(), &topNode);
    Parameter bottomKey(ParameterKind::Column, QStringLiteral("Column_2"), QString(), &bottomNode);
    Parameter columns(ParameterKind::Columns, QStringLiteral("Columns"), QString(), &bottomNode);
    Parameter orphan(ParameterKind::Column, QStringLiteral("Column_2"), QString(), nullptr);
    QVERIFY(!guessKeyColumns(&topKey, &columns, false));
    QVERIFY(!guessKeyColumns(&topKey, &orphan, false));
    QVERIFY(!guessKeyColumns(nullptr, &bottomKey, false));
    QVERIFY(topKey.columnId().isUnset());

    // Over 10000 rows on either side is too slow to guess at connection time.
    DataNode largeNode(3, table(QStringLiteral("id:k*50/10001")));
    DataNode fitNode(4, table(QStringLiteral("id:k*50/10000")));
    Parameter largeKey(ParameterKind::Column, QStringLiteral("Column_2"), QString(), &largeNode);
    Parameter fitKey(ParameterKind::Column, QStringLiteral("Column_1"), QString(), &fitNode);
    QVERIFY(!guessKeyColumns(&fitKey, &largeKey, false));
    QVERIFY(!guessKeyColumns(&largeKey, &fitKey, false));
    Parameter fitBottom(ParameterKind::Column, QStringLiteral("Column_2"), QString(), &fitNode);
    QVERIFY(guessKeyColumns(&fitKey, &fitBottom, false));
    QVERIFY(guessKeyColumns(&topKey, &bottomKey, false));
}

void TestKeyGuess::duplicates_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << "a b c" << true << "0 duplicated keys in the Top key column:";
    QTest::newRow("one, singular") << "a b a" << true
                                   << "1 duplicated key in the Top key column:|'a' occurs 2 times";
    QTest::newRow("case sensitive keeps A apart")
        << "a A b a c c c" << true
        << "2 duplicated keys in the Top key column:|'a' occurs 2 times|'c' occurs 3 times";
    QTest::newRow("case insensitive folds and says so")
        << "a A b a" << false
        << "1 duplicated key in the Top key column:|'a' occurs 3 times (case insensitive)";
    QTest::newRow("six: one other duplicate") << "a a b b c c d d e e f f" << true
                                              << "6 duplicated keys in the Top key column:|'a' occurs 2 "
                                                 "times|'b' occurs 2 times|'c' occurs 2 times|"
                                                 "'d' occurs 2 times|'e' occurs 2 times|+ 1 other duplicate";
    QTest::newRow("seven: other duplicates, in order of first occurrence")
        << "g a g b c d e f a b c d e f" << true
        << "7 duplicated keys in the Top key column:|'g' occurs 2 times|'a' occurs 2 times|'b' occurs 2 "
           "times|"
           "'c' occurs 2 times|'d' occurs 2 times|+ 2 other duplicates";
}

void TestKeyGuess::duplicates()
{
    QFETCH(QString, keys);
    QFETCH(bool, caseSensitive);
    const Dataset dataset = table(keys);
    QTEST(join(duplicateKeyReport(QStringLiteral("Top key column"), dataset, 0, caseSensitive)), "expected");
}

void TestKeyGuess::whitespace_data()
{
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("expected");
    const QString note = QStringLiteral("|(keys are whitespace and case sensitive)");
    QTest::newRow("none") << QStringList {"a", "b c", ""}
                          << "0 values with leading or trailing whitespace in the Bottom key column:" + note;
    QTest::newRow("blank, tab, no-break space, U+0085")
        << QStringList {" a", "b\t", "c", QStringLiteral("\u00a0d"), QStringLiteral("e\u0085")}
        << "4 values with leading or trailing whitespace in the Bottom key column:|' a' at row 1|'b\t' at "
           "row 2|"
            + QStringLiteral("'\u00a0d' at row 4|'e\u0085' at row 5") + note;
    QTest::newRow("six: one other")
        << QStringList {" 1", " 2", " 3", " 4", " 5", " 6"}
        << "6 values with leading or trailing whitespace in the Bottom key column:|"
           "' 1' at row 1|' 2' at row 2|' 3' at row 3|' 4' at row 4|' 5' at row 5|"
           "+ 1 other with whitespace"
            + note;
    QTest::newRow("seven: others")
        << QStringList {" 1", " 2", " 3", " 4", " 5", " 6", "7 "}
        << "7 values with leading or trailing whitespace in the Bottom key column:|"
           "' 1' at row 1|' 2' at row 2|' 3' at row 3|' 4' at row 4|' 5' at row 5|"
           "+ 2 others with whitespace"
            + note;
}

void TestKeyGuess::whitespace()
{
    QFETCH(QStringList, keys);
    Dataset dataset;
    dataset.resize(keys.size(), 1);
    dataset.setColumnValues(0, keys);
    QTEST(join(whitespaceKeyReport(QStringLiteral("Bottom key column"), dataset, 0)), "expected");
}

void TestKeyGuess::misses_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("expected");
    // The matched set is {"a", "b"}.
    QTest::newRow("none") << "a b a" << true << 0 << "0 misses in the Top key column:";
    QTest::newRow("one, singular") << "a c b" << true << 1 << "1 miss in the Top key column:|'c' at row 2";
    QTest::newRow("case sensitive: A misses")
        << "A b" << true << 1 << "1 miss in the Top key column:|'A' at row 1";
    QTest::newRow("case insensitive: A matches") << "A b" << false << 0 << "0 misses in the Top key column:";
    QTest::newRow("seven: other misses")
        << "c d e a f g h i" << true << 7
        << "7 misses in the Top key column:|'c' at row 1|'d' at row 2|'e' at row 3|'f' at row 5|'g' at row 6|"
           "+ 2 other misses";
    QTest::newRow("six: one other miss") << "c d e f g h" << true << 6
                                         << "6 misses in the Top key column:|'c' at row 1|'d' at row 2|"
                                            "'e' at row 3|'f' at row 4|'g' at row 5|+ 1 other miss";
}

void TestKeyGuess::misses()
{
    QFETCH(QString, keys);
    QFETCH(bool, caseSensitive);
    QStringList lines {QStringLiteral("before")};
    const int count = missedKeyReport(QStringLiteral("Top key column"), table(keys), 0, caseSensitive,
        {QStringLiteral("a"), QStringLiteral("b")}, lines);
    QTEST(count, "count");
    QCOMPARE(lines.takeFirst(), QStringLiteral("before")); // appended, not replaced
    QTEST(join(lines), "expected");
}

void TestKeyGuess::detailedReport()
{
    // Keys "x" and "y" in both; " z" only on top, "w" twice at the bottom, "W" once.
    const Dataset top = table(QStringLiteral("x y|1 2"));
    Dataset withSpace = top;
    withSpace.appendRow({QStringLiteral(" z"), QStringLiteral("3")});
    const Dataset bottom = table(QStringLiteral("y w x W w"));
    const KeySide topSide {QStringLiteral("Top key column"), withSpace, 0};
    const KeySide bottomSide {QStringLiteral("Bottom key column"), bottom, 0};
    const QSet<QString> matched = columnKeys(withSpace, 0, false) & columnKeys(bottom, 0, false);
    QCOMPARE(matched, (QSet<QString> {QStringLiteral("x"), QStringLiteral("y")}));
    QCOMPARE(join(detailedKeyReport(topSide, bottomSide, false, matched)),
        QStringLiteral("1 miss in the Top key column:|' z' at row 3|"
                       "3 misses in the Bottom key column:|'w' at row 2|'W' at row 4|'w' at row 5|"
                       "2 unique keys appear in both datasets|1 top only|3 bottom only|"
                       "0 duplicated keys in the Top key column:|"
                       "1 duplicated key in the Bottom key column:|'w' occurs 3 times (case insensitive)|"
                       "1 values with leading or trailing whitespace in the Top key column:|' z' at row 3|"
                       "(keys are whitespace and case sensitive)|"
                       "0 values with leading or trailing whitespace in the Bottom key column:|"
                       "(keys are whitespace and case sensitive)"));
}

QTEST_MAIN(TestKeyGuess)
#include "tst_keyguess.moc"
