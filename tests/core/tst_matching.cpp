#include "core/matching.h"
#include "core/values.h"
#include "testutil.h"

#include <QRandomGenerator>
#include <QtTest>

#include <vector>

class TestMatching : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void matches_data();
    void matches();
    void matchesRow_data();
    void matchesRow();
    void closeness_data();
    void closeness();
    void closenessAgreesWithFullDistance();
    void operatorsInComboOrder();
};

void TestMatching::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    setDateFormats({});
    clearValueCaches();
}

static void addMatch(
    const char *name, int op, const char *value, const char *term, bool caseSensitive, bool expected)
{
    QTest::newRow(name) << op << QString::fromUtf8(value) << QString::fromUtf8(term) << caseSensitive
                        << expected;
}

void TestMatching::matches_data()
{
    QTest::addColumn<int>("op");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("term");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("expected");
    addMatch("contains, any case", 0, "Hello", "ELL", false, true);
    addMatch("contains, case sensitive", 0, "Hello", "ELL", true, false);
    addMatch("doesn't contain", 9, "Hello", "x", true, true);
    addMatch("starts with", 2, "Hello", "he", false, true);
    addMatch("doesn't start with", 11, "Hello", "he", true, true);
    addMatch("ends with", 3, "Hello", "LO", false, true);
    addMatch("doesn't end with", 12, "Hello", "lo", true, false);
    addMatch("equal numbers", 1, "1.0", " 1", true, true);
    addMatch("equal dates", 1, "1/2/2020", "01/02/2020", true, true);
    addMatch("empty equals empty", 1, "", "", true, true);
    addMatch("not equal, case sensitive", 10, "abc", "ABC", true, true);
    addMatch("10 > 9", 4, "10", "9", true, true);
    addMatch("10 < 9a", 5, "10", "9a", true, true);
    addMatch("empty < number is text", 5, "", "5", true, true);
    addMatch("later date, earlier text", 4, "10/1/2020", "9/30/2020", true, true);
    addMatch("shared format", 4, "13/1/2020", "12/1/2020", true, true);
    addMatch("each its own format", 4, "2020-12-05", "6/1/2020", true, true);
    addMatch(">= equal numbers", 6, "2", "2.00", true, true);
    addMatch("<= larger number", 7, "3", "2", true, false);
    addMatch("less, any case", 5, "a", "B", false, true);
    addMatch("less, case sensitive", 5, "a", "B", true, false);
    addMatch("regex is a search", 8, "abc123", "\\d+", true, true);
    addMatch("regex, any case", 8, "ABC", "abc", false, true);
    addMatch("regex, case sensitive", 8, "ABC", "abc", true, false);
    addMatch("invalid regex", 8, "(", "(", true, false);
    addMatch("invalid regex negated", 13, "(", "(", true, true);
    addMatch("doesn't match regex, found", 13, "abc123", "\\d+", true, false);
    addMatch("doesn't match regex, absent", 13, "9", "[a-z]", true, true);
    addMatch("fuzzy folds case", 14, "ABC", "abc", false, true);
    addMatch("fuzzy, case sensitive", 14, "ABC", "abc", true, false);
    addMatch("kitten 50%", 18, "kitten", "sitting", true, true);
    addMatch("kitten 60%", 17, "kitten", "sitting", true, false);
    addMatch("90% at one edit in ten", 14, "abcdefghij", "abcdefghiX", true, true);
    addMatch("is empty", 19, "", "x", true, true);
    addMatch("blank isn't empty", 19, " ", "", true, false);
    addMatch("is not empty", 20, " ", "", true, true);
    addMatch("unknown operator", 21, "a", "a", true, false);
}

void TestMatching::matches()
{
    QFETCH(int, op);
    QFETCH(QString, value);
    QFETCH(QString, term);
    QFETCH(bool, caseSensitive);
    QTEST(::matches(op, value, term, caseSensitive), "expected");
}

void TestMatching::matchesRow_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("term");
    QTest::addColumn<bool>("expected");
    QTest::newRow("by header") << 0 << "$(limit)" << true;
    QTest::newRow("by header, other row") << 1 << "$(limit)" << false;
    QTest::newRow("by number") << 0 << "$(2)" << true;
    QTest::newRow("inside text") << 1 << "1$(limit)" << false;
    QTest::newRow("no variable") << 1 << "0" << true;
}

void TestMatching::matchesRow()
{
    QFETCH(int, row);
    QFETCH(QString, term);
    const Dataset dataset = testutil::toDataset(QStringLiteral("value,limit\n5,3\n1,2"), true);
    QTEST(::matchesRow(OperatorGreater, dataset, row, dataset.cell(row, 0), term, true), "expected");
}

static void addCloseness(const char *name, const char *a, const char *b, int minimum, int expected)
{
    QTest::newRow(name) << QString(a) << QString(b) << minimum << expected;
}

void TestMatching::closeness_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("expected");
    addCloseness("two empty", "", "", 100, 100);
    addCloseness("equal at 100", "abc", "abc", 100, 100);
    addCloseness("distance 3 of 7 at 50", "kitten", "sitting", 50, 58);
    addCloseness("distance 3 of 7 at 60", "kitten", "sitting", 60, -1);
    addCloseness("case counts", "ABC", "abc", 0, 0);
    addCloseness("one empty at 0", "", "abc", 0, 0);
    addCloseness("one empty at 1", "", "abc", 1, -1);
    addCloseness("tolerance 2 of 10, distance 2", "abcdefghij", "abXdefghYj", 80, 80);
    addCloseness("tolerance 2 of 10, distance 3", "abcdefghij", "abXdeZghYj", 80, -1);
    addCloseness("lengths too far apart", "abcdefghij", "abcdefghijklm", 80, -1);
    addCloseness("swap is two edits", "abcd", "abdc", 0, 50);
    addCloseness("shifted text", "xabcdefghi", "abcdefghiy", 80, 80);
}

void TestMatching::closeness()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, minimum);
    QTEST(::closeness(a, b, minimum), "expected");
    QTEST(::closeness(b, a, minimum), "expected");
}

static int fullDistance(const QString &a, const QString &b)
{
    std::vector<int> previous(b.size() + 1), current(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        previous[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (int j = 1; j <= b.size(); ++j)
            current[j] = qMin(qMin(previous[j], current[j - 1]) + 1,
                previous[j - 1] + (a.at(i - 1) == b.at(j - 1) ? 0 : 1));
        std::swap(previous, current);
    }
    return previous[b.size()];
}

// The banded, cut-off distance must give the same percentage as the full table wherever
// it gives one.
void TestMatching::closenessAgreesWithFullDistance()
{
    QRandomGenerator random(11);
    auto randomText = [&](int length) {
        QString text;
        for (int k = 0; k < length; ++k)
            text += QChar('a' + random.bounded(4));
        return text;
    };
    for (int i = 0; i < 20000; ++i) {
        const QString a = randomText(random.bounded(0, 25));
        QString b = a;
        for (int edits = random.bounded(0, 6); edits > 0; --edits) {
            const int at = random.bounded(b.size() + 1);
            switch (random.bounded(3)) {
            case 0:
                b.insert(at, QChar('a' + random.bounded(4)));
                break;
            case 1:
                b.remove(at, 1);
                break;
            default:
                b.replace(at, 1, QChar('a' + random.bounded(4)));
            }
        }
        if (i % 5 == 0)
            b = randomText(random.bounded(0, 25));
        const int minimum = QVector<int> {0, 30, 50, 60, 80, 90, 100}.at(i % 7);
        const int longest = qMax(a.size(), b.size());
        const int distance = fullDistance(a, b);
        int expected = 100;
        if (longest > 0)
            expected = distance <= (100 - minimum) * longest / 100 ? 100 - distance * 100 / longest : -1;
        QCOMPARE(::closeness(a, b, minimum), expected);
    }
}

void TestMatching::operatorsInComboOrder()
{
    const QList<int> order = operatorDisplayOrder();
    QCOMPARE(order.size(), int(OperatorCount));
    QCOMPARE(order.indexOf(OperatorIsNotEmpty) + 1, order.indexOf(OperatorFuzzy90));
    QCOMPARE(QSet<int>(order.begin(), order.end()).size(), int(OperatorCount));
    QCOMPARE(operatorLabel(OperatorFuzzy90), QString::fromUtf8("≈9  90% fuzzy match"));
    QCOMPARE(operatorLabel(OperatorCount), QString());
    QCOMPARE(operatorLabel(OperatorIsEmpty), QString::fromUtf8("∅   Is empty"));
    QCOMPARE(operatorLabel(OperatorIsNotEmpty), QString::fromUtf8("!∅  Is not empty"));
    QCOMPARE(fuzzyPercent(OperatorFuzzy50), 50);
    QCOMPARE(fuzzyPercent(OperatorContains), 90);
    QVERIFY(needsNoTerm(OperatorIsEmpty) && !needsNoTerm(OperatorContains));
}

QTEST_APPLESS_MAIN(TestMatching)
#include "tst_matching.moc"
