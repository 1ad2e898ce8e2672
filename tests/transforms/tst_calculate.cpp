#include "testutil.h"

#include "core/values.h"
#include "flow/node.h"
#include "transforms/transformcalculate.h"

#include <QLocale>
#include <QtTest>

#include <ctime>

namespace {

// An item that holds whatever dataset a test gives it.
class DataNode : public Node
{
public:
    explicit DataNode(const Dataset &dataset) { setDataset(dataset); }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

struct Outcome
{
    Dataset output;
    QString header; // the new column's header
    QString cells; // the new column, cells joined by "|"
    QString warnings; // joined by "\n"
    QString information;
};

// A table written as text: rows split on "\n", cells on ",", and "\\," is a comma in a cell.
Dataset toDataset(const QString &text, bool withHeaders)
{
    const QChar comma(0xE000);
    QString escaped = text;
    escaped.replace(QLatin1String("\\,"), comma);
    Dataset dataset = testutil::toDataset(escaped, withHeaders);
    QStringList headers = dataset.headers();
    headers.replaceInStrings(comma, QStringLiteral(","));
    if (withHeaders)
        dataset.setHeaders(headers);
    for (int r = 0; r < dataset.rowCount(); ++r) {
        for (int c = 0; c < dataset.columnCount(); ++c)
            dataset.setCell(r, c, QString(dataset.cell(r, c)).replace(comma, QLatin1Char(',')));
    }
    return dataset;
}

// Runs Calculate on a table written as text with headers. A value is "#n" for column n
// (counted from 1) or "=text" for a constant.
Outcome calculate(const QString &operation, const QString &table, const QString &value1,
    const QString &value2 = QStringLiteral("=0"), const QString &newName = QString(), bool withHeaders = true)
{
    Dataset dataset = toDataset(table, withHeaders);
    dataset.assignColumnIds(1);
    DataNode node(dataset);
    TransformCalculate transform;
    transform.createParameters({&node}, false);
    transform.parameter(QStringLiteral("Operation"))->setValue(operation);
    if (!newName.isNull()) {
        transform.parameter(QStringLiteral("Auto_New_Name"))->setValue(false);
        transform.parameter(QStringLiteral("New_Name"))->setValue(newName);
    }
    const QStringList values = {value1, value2};
    for (int i = 0; i < 2; ++i) {
        const QString number = QString::number(i + 1);
        const QString &value = values.at(i);
        const bool constant = value.startsWith(QLatin1Char('='));
        transform.parameter(QStringLiteral("Type") + number)
            ->setValue(constant ? QStringLiteral("Constant") : QStringLiteral("Column"));
        if (constant) {
            transform.parameter(QStringLiteral("Constant") + number)->setValue(value.mid(1));
        } else {
            const int column = value.mid(1).toInt() - 1;
            transform.parameter(QStringLiteral("Column") + number)
                ->setValue(QVariant::fromValue(
                    column < dataset.columnCount() ? dataset.columnId(column) : ColumnId(7, 99)));
        }
    }
    bool failed = false;
    Outcome outcome;
    outcome.output = transform.process({&node}, failed);
    const int last = outcome.output.columnCount() - 1;
    if (last >= 0) {
        outcome.header = outcome.output.headerText(last);
        QStringList cells;
        for (int r = 0; r < outcome.output.rowCount(); ++r)
            cells << outcome.output.cell(r, last);
        outcome.cells = cells.join(QLatin1Char('|'));
    }
    outcome.warnings = transform.warnings().join(QLatin1Char('\n'));
    outcome.information = transform.information().join(QLatin1Char('\n'));
    return outcome;
}

// A one-column table from cells written "a|b|c" under the header "x".
QString column(const QString &cells)
{
    return QStringLiteral("x\n") + QString(cells).replace(QLatin1Char('|'), QLatin1Char('\n'));
}

} // namespace

class TestCalculate : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void numbers_data();
    void numbers();
    void integers_data();
    void integers();
    void booleans_data();
    void booleans();
    void texts_data();
    void texts();
    void dates_data();
    void dates();
    void oneNumber_data();
    void oneNumber();
    void oneDate_data();
    void oneDate();
    void conversions_data();
    void conversions();
    void messages_data();
    void messages();
    void names_data();
    void names();
    void locales_data();
    void locales();
    void dateDetectionLooksAtFiftyCells();
    void failuresAfterFiveAreCounted();
    void emptyAndMissing_data();
    void emptyAndMissing();
    void keepsInputColumnsAndIds();
};

void TestCalculate::initTestCase()
{
    // Milliseconds since the epoch are local time; counts in messages carry the locale's
    // group separators, and the US date list reads month first.
    qputenv("TZ", "UTC");
    tzset();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestCalculate::cleanup()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    setDateFormats({});
    clearValueCaches();
}

void TestCalculate::numbers_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("value1");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("expected");
    const QString pairs = QStringLiteral("a,b\n1,2\n1.5,2.25\n-1,1\n0.1,0.2\n 4 , 2 ");
    QTest::newRow("add") << "+ Add" << pairs << "#1"
                         << "#2"
                         << "3|3.75|0|0.3|6";
    QTest::newRow("subtract") << "- Subtract" << pairs << "#1"
                              << "#2"
                              << "-1|-0.75|-2|-0.1|2";
    QTest::newRow("multiply") << "* Multiply" << pairs << "#1"
                              << "#2"
                              << "2|3.375|-1|0.02|8";
    QTest::newRow("divide") << "/ Divide" << pairs << "#1"
                            << "#2"
                            << "0.5|0.666666666666667|-1|0.5|2";
    QTest::newRow("divide by constant") << "/ Divide" << column("1|10|-7") << "#1"
                                        << "=3"
                                        << "0.333333333333333|3.33333333333333|-2.33333333333333";
    QTest::newRow("power") << "^ Power" << column("2|-2|4|0") << "#1"
                           << "=0.5"
                           << "1.4142135623731|NaN|2|0";
    QTest::newRow("power beyond double renders NaN") << "^ Power" << column("2") << "#1"
                                                     << "=5000"
                                                     << "NaN";
    QTest::newRow("large and small results keep 15 digits")
        << "* Multiply" << column("123456789|0.000001234") << "#1"
        << "=1000000"
        << "123456789000000|1.234";
    QTest::newRow("maximum") << "Maximum" << pairs << "#1"
                             << "#2"
                             << "2|2.25|1|0.2|4";
    QTest::newRow("minimum") << "Minimum" << pairs << "#1"
                             << "#2"
                             << "1|1.5|-1|0.1|2";
    QTest::newRow("maximum of text fails") << "Maximum" << column("b|") << "#1"
                                           << "=a"
                                           << "Error: number expected|Error: number expected";
    QTest::newRow("constant first") << "- Subtract" << column("1|2") << "=10"
                                    << "#1"
                                    << "9|8";
    QTest::newRow("empty cells are not numbers") << "+ Add" << column("|1") << "#1"
                                                 << "=1"
                                                 << "Error: number expected|2";
    QTest::newRow("nan, inf and 1e400 are not numbers")
        << "+ Add" << column("nan|INF|-inf|1e400|1e3") << "#1"
        << "=1"
        << "Error: number expected|Error: number expected|Error: number expected|Error: number "
           "expected|1001";
    QTest::newRow("currency symbols are dropped") << "* Multiply" << column("$3|4 €|£1\\,000") << "#1"
                                                  << "=2"
                                                  << "6|8|2000";
    QTest::newRow("divide by 0") << "/ Divide" << column("1|0") << "#1"
                                 << "=0"
                                 << "Error: divide by 0|Error: divide by 0";
    QTest::newRow("divide by -0") << "/ Divide" << column("1") << "#1"
                                  << "=-0"
                                  << "Error: divide by 0";
}

void TestCalculate::numbers()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, value1);
    QFETCH(QString, value2);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, table, value1, value2).cells, expected);
}

void TestCalculate::integers_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("expected");
    QTest::newRow("modulus takes the sign of value 1") << "% Modulus" << column("7|-7|7|-7|0") << "=3"
                                                       << "1|-1|1|-1|0";
    QTest::newRow("modulus by negative") << "% Modulus" << column("7|-7") << "=-3"
                                         << "1|-1";
    QTest::newRow("modulus of the lowest integer by -1") << "% Modulus" << column("-2147483648") << "=-1"
                                                         << "0";
    QTest::newRow("modulus by 0") << "% Modulus" << column("5") << "=0"
                                  << "Error: divide by 0";
    QTest::newRow("modulus needs integers") << "% Modulus" << column("7.5|2147483648|x") << "=2"
                                            << "Error: integer expected|Error: integer expected|Error: "
                                               "number expected";
    QTest::newRow("and") << "AndBitwise" << column("12|-1|0") << "=10"
                         << "8|10|0";
    QTest::newRow("or") << "OrBitwise" << column("12|-16") << "=10"
                        << "14|-6";
    QTest::newRow("xor") << "XorBitwise" << column("12|-1") << "=10"
                         << "6|-11";
    QTest::newRow("bitwise needs 32-bit integers")
        << "AndBitwise" << column("1.5|4294967296|-2147483648") << "=1"
        << "Error: integer expected|Error: integer expected|0";
}

void TestCalculate::integers()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, value2);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, table, QStringLiteral("#1"), value2).cells, expected);
}

void TestCalculate::booleans_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("expected");
    // Value 1 against value 2, row by row.
    QTest::newRow("and") << "And"
                         << "true|false|false|false|true|true|Error: boolean expected|Error: boolean "
                            "expected|Error: boolean expected";
    QTest::newRow("or") << "Or"
                        << "true|true|true|false|true|true|Error: boolean expected|Error: boolean "
                           "expected|Error: boolean expected";
    QTest::newRow("xor") << "Xor"
                         << "false|true|true|false|false|false|Error: boolean expected|Error: boolean "
                            "expected|Error: boolean expected";
}

void TestCalculate::booleans()
{
    QFETCH(QString, operation);
    QFETCH(QString, expected);
    const QString table = QStringLiteral(
        "a,b\ntrue,TRUE\ntrue,false\n False ,true\nfalse,false\n2.5,1\n-1, true\nyes,true\n,true\ntrue,no");
    QCOMPARE(calculate(operation, table, QStringLiteral("#1"), QStringLiteral("#2")).cells, expected);
}

void TestCalculate::texts_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("information");
    QTest::newRow("lev distance") << "LevDistance"
                                  << "a,b\nkitten,sitting\n,abc\nsame,same\nAbc,abc\n12,13"
                                  << "3|3|0|1|1"
                                  << "5 calculations succeeded, 0 failed";
    QTest::newRow("index of") << "IndexOf"
                              << "a,b\nb,abcb\nB,abc\nx,abc\n,abc\n,"
                              << "2|||1|1"
                              << "5 calculations succeeded, 0 failed";
    QTest::newRow("last index of") << "LastIndexOf"
                                   << "a,b\nb,abcb\na,banana\nx,abc\n,abc\n,"
                                   << "4|6||4|1"
                                   << "5 calculations succeeded, 0 failed";
    QTest::newRow("occurrences") << "Occurrences"
                                 << "a,b\nan,banana\naa,aaa\nA,aaa\n,aaa\nx,"
                                 << "2|2|0||0"
                                 << "5 calculations succeeded, 0 failed";
    QTest::newRow("text operations ignore dates") << "LevDistance"
                                                  << "a,b\n1/2/2021,1/12/2021"
                                                  << "1"
                                                  << "1 calculations succeeded, 0 failed";
}

void TestCalculate::texts()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, expected);
    QFETCH(QString, information);
    const Outcome outcome = calculate(operation, table, QStringLiteral("#1"), QStringLiteral("#2"));
    QCOMPARE(outcome.cells, expected);
    QCOMPARE(outcome.information, information);
    QCOMPARE(outcome.warnings, QString());
}

void TestCalculate::dates_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("value1");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("expected");
    const QString two = QStringLiteral("a,b\n3/1/2021,2/1/2021\n1/1/2021,12/25/2020\n2/1/2021,2/1/2021");
    QTest::newRow("date minus date in days") << "- Subtract" << two << "#1"
                                             << "#2"
                                             << "28|7|0";
    QTest::newRow("maximum date in value 1's format") << "Maximum"
                                                      << "a,b\n2021-03-01,2/1/2021\n2021-01-01,12/25/2021"
                                                      << "#1"
                                                      << "#2"
                                                      << "2021-3-1|2021-12-25";
    QTest::newRow("minimum date") << "Minimum" << two << "#1"
                                  << "#2"
                                  << "2/1/2021|12/25/2020|2/1/2021";
    QTest::newRow("two dates can't be added") << "+ Add" << two << "#1"
                                              << "#2"
                                              << "Error: invalid operation|Error: invalid operation|Error: "
                                                 "invalid operation";
    QTest::newRow("date plus days") << "+ Add" << column("1/31/2021|12/31/2020") << "#1"
                                    << "=1"
                                    << "2/1/2021|1/1/2021";
    QTest::newRow("date minus days") << "- Subtract" << column("3/1/2020") << "#1"
                                     << "=1"
                                     << "2/29/2020";
    QTest::newRow("date plus days of a column") << "+ Add"
                                                << "a,b\n1/1/2021,31\n1/1/2021,-1\n1/1/2021,x"
                                                << "#1"
                                                << "#2"
                                                << "2/1/2021|12/31/2020|Error: integer expected";
    QTest::newRow("days must be whole") << "+ Add" << column("1/1/2021") << "#1"
                                        << "=1.5"
                                        << "Error: integer expected";
    QTest::newRow("date constant minus integer") << "- Subtract" << column("1|10") << "=2021-01-11"
                                                 << "#1"
                                                 << "2021-1-10|2021-1-1";
    QTest::newRow("integer minus date is not a date") << "- Subtract" << column("10") << "#1"
                                                      << "=2021-01-11"
                                                      << "Error: number expected";
    QTest::newRow("dates can't be multiplied") << "* Multiply" << column("1/1/2021") << "#1"
                                               << "=2"
                                               << "Error: invalid operation";
    QTest::newRow("value 2 prefers value 1's format") << "- Subtract"
                                                      << "a,b\n13/1/2021,2/3/2021"
                                                      << "#1"
                                                      << "#2"
                                                      << "-48";
    QTest::newRow("bad cell after detection") << "- Subtract"
                                              << "a,b\n3/1/2021,2/1/2021\n3/1/2021,soon"
                                              << "#1"
                                              << "=2/1/2021"
                                              << "28|28";
    QTest::newRow("empty cells fail as dates") << "- Subtract"
                                               << "a,b\n3/1/2021,2/1/2021\n,2/1/2021"
                                               << "#1"
                                               << "#2"
                                               << "28|Error: date expected";
}

void TestCalculate::dates()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, value1);
    QFETCH(QString, value2);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, table, value1, value2).cells, expected);
}

void TestCalculate::oneNumber_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("expected");
    QTest::newRow("abs") << "Abs"
                         << "-2.5|3| -4 |0|-0"
                         << "2.5|3|4|0|0";
    QTest::newRow("abs keeps 64-bit integers") << "Abs"
                                               << "-9223372036854775807|-9223372036854775808"
                                               << "9223372036854775807|9223372036854775808";
    QTest::newRow("round halves upward") << "Round"
                                         << "2.5|-2.5|0.5|-0.5|1.49|-1.51|3"
                                         << "3|-2|1|0|1|-2|3";
    QTest::newRow("round keeps 64-bit integers") << "Round"
                                                 << "9007199254740993|-9007199254740993"
                                                 << "9007199254740993|-9007199254740993";
    QTest::newRow("round saturates in 32 bits") << "Round"
                                                << "3000000000.5|-3000000000.5"
                                                << "2147483647|-2147483648";
    QTest::newRow("ceiling") << "Ceiling"
                             << "1.2|-1.2|-0.5|5"
                             << "2|-1|0|5";
    QTest::newRow("floor") << "Floor"
                           << "1.8|-1.2|5|1e3"
                           << "1|-2|5|1000";
    QTest::newRow("sign") << "Sign"
                          << "-0.1|0|7|-9223372036854775807"
                          << "-1|0|1|-1";
    QTest::newRow("increment") << "Increment"
                               << "1|1.5|-1|9223372036854775806|9223372036854775807"
                               << "2|2.5|0|9223372036854775807|9223372036854775808";
    QTest::newRow("decrement") << "Decrement"
                               << "1|0.25|-9223372036854775807"
                               << "0|-0.75|-9223372036854775808";
    QTest::newRow("log10") << "Log10"
                           << "100|0.001|2"
                           << "2|-3|0.301029995663981";
    QTest::newRow("ln") << "Ln"
                        << "1|2.718281828459045"
                        << "0|1";
    QTest::newRow("log2") << "Log2"
                          << "8|0.5"
                          << "3|-1";
    QTest::newRow("logarithm of 0 or less") << "Log10"
                                            << "0|-1"
                                            << "Error: >0 expected|Error: >0 expected";
    QTest::newRow("not a number") << "Abs"
                                  << "x|"
                                  << "Error: number expected|Error: number expected";
    QTest::newRow("empty and text for a date operation") << "Year"
                                                         << "x|"
                                                         << "Error: date expected|Error: date expected";
}

void TestCalculate::oneNumber()
{
    QFETCH(QString, operation);
    QFETCH(QString, cells);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, column(cells), QStringLiteral("#1")).cells, expected);
}

void TestCalculate::oneDate_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("expected");
    // Cells: 2/29/2020, 3/1/2021, 12/31/2021, 1/1/2021.
    QTest::newRow("day of week") << "DayOfWeek"
                                 << "6|1|5|5";
    QTest::newRow("day of month") << "DayOfMonth"
                                  << "29|1|31|1";
    QTest::newRow("day of year") << "DayOfYear"
                                 << "60|60|365|1";
    QTest::newRow("month") << "Month"
                           << "2|3|12|1";
    QTest::newRow("year") << "Year"
                          << "2020|2021|2021|2021";
    QTest::newRow("quarter") << "Quarter"
                             << "1|1|4|1";
    QTest::newRow("ISO week with its year") << "WeekOfYear"
                                            << "2020,09|2021,09|2021,52|2020,53";
    QTest::newRow("Julian day") << "DateToJulianDay"
                                << "2458909|2459275|2459580|2459216";
    QTest::newRow("days in month") << "DaysInMonth"
                                   << "29|31|31|31";
    QTest::newRow("days in year") << "DaysInYear"
                                  << "366|365|365|365";
    QTest::newRow("increment in the column's format") << "Increment"
                                                      << "3/1/2020|3/2/2021|1/1/2022|1/2/2021";
    QTest::newRow("decrement") << "Decrement"
                               << "2/28/2020|2/28/2021|12/30/2021|12/31/2020";
    QTest::newRow("no arithmetic on dates") << "Abs"
                                            << "Error: invalid operation|Error: invalid operation|Error: "
                                               "invalid operation|Error: invalid operation";
}

void TestCalculate::oneDate()
{
    QFETCH(QString, operation);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, column(QStringLiteral("2/29/2020|3/1/2021|12/31/2021|1/1/2021")),
                 QStringLiteral("#1"))
                 .cells,
        expected);
}

void TestCalculate::conversions_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("expected");
    QTest::newRow("msecs to time") << "MSecsToTime"
                                   << "90061001|0|59999|3600000|1000000000000000"
                                   << "25:01:01.001|00:00:00|00:00:59.999|01:00:00|277777777:46:40";
    QTest::newRow("msecs to time out of range") << "MSecsToTime"
                                                << "-1|1000000000000001|1.5"
                                                << "Error: integer out of expected range|Error: integer out "
                                                   "of expected range|Error: integer expected";
    QTest::newRow("time to msecs") << "TimeToMSecs"
                                   << "25:01|1:02:03.5|0:0:0| 2:03 |1:02:03.0005|100:0:0.999"
                                   << "90060000|3723500|0|7380000|3723001|360000999";
    QTest::newRow("time to msecs refuses")
        << "TimeToMSecs"
        << "1:60|0:0:59.9996|1:2:3:4|1|-1:00|1:2:60|1:2:3.4.5|:|a:b"
        << "Error: h:m:s(.z) time expected|Error: h:m:s(.z) time expected|Error: h:m:s(.z) time "
           "expected|Error: h:m:s(.z) time expected|Error: h:m:s(.z) time expected|Error: h:m:s(.z) time "
           "expected|Error: h:m:s(.z) time expected|Error: h:m:s(.z) time expected|Error: h:m:s(.z) time "
           "expected";
    QTest::newRow("Julian day to date") << "JulianDayToDate"
                                        << "2459216|0|x|784354017365|5373485"
                                        << "2021-01-01|Error: Date out of range|Error: integer "
                                           "expected|Error: Julian days expected|Error: Date out of range";
    QTest::newRow("msecs to date-time") << "MSecsToDateTime"
                                        << "0|1609459200123|-86400000|x|253402300800000"
                                        << "1970-01-01T00:00:00.000|2021-01-01T00:00:00.123|1969-12-31T00:00:"
                                           "00.000|Error: integer expected|Error: msecs since epoch expected";
    QTest::newRow("date-time to msecs")
        << "DateTimeToMSecs"
        << "1970-01-02T00:00:00.000| 2021-01-01T00:00:00.123 |2021-01-01|1/1/2021"
        << "86400000|1609459200123|1609459200000|Error: ISO datetime expected";
    QTest::newRow("length in UTF-16 units") << "Length"
                                            << "héllo| a |😀|"
                                            << "5|3|2|0";
    QTest::newRow("word count") << "WordCount"
                                << "Hello\\, world!|  a-b  c |$5 x|...|"
                                << "2|3|2|0|0";
}

void TestCalculate::conversions()
{
    QFETCH(QString, operation);
    QFETCH(QString, cells);
    QFETCH(QString, expected);
    QCOMPARE(calculate(operation, column(cells), QStringLiteral("#1")).cells, expected);
}

void TestCalculate::messages_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("value1");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("warnings");
    QTest::addColumn<QString>("information");
    const QString ab = QStringLiteral("a,b\nx,y\n1,0");
    QTest::newRow("both values fail, each told")
        << "+ Add" << ab << "#1"
        << "#2"
        << "'x' is not a valid value for this operation in column 'a' at "
           "row 1\n'y' is not a valid value for this operation in column "
           "'b' at row 1"
        << "1 calculations succeeded, 1 failed";
    QTest::newRow("constant failing") << "* Multiply" << column("2") << "#1"
                                      << "=two"
                                      << "'two' is not a valid value for this operation at row 1"
                                      << "0 calculations succeeded, 1 failed";
    QTest::newRow("divide by column")
        << "/ Divide" << ab << "#2"
        << "#2"
        << "'y' is not a valid value for this operation in column 'b' at row "
           "1\n'y' is not a valid value for this operation in column 'b' at row "
           "1\nDivide by 0 in column 'b' at row 2"
        << "0 calculations succeeded, 2 failed";
    QTest::newRow("divide by constant") << "/ Divide" << column("1") << "#1"
                                        << "=0"
                                        << "Divide by 0 at row 1"
                                        << "0 calculations succeeded, 1 failed";
    QTest::newRow("modulus") << "% Modulus" << column("1|1.5") << "#1"
                             << "=0"
                             << "Modulus by 0 at row 1\n'1.5' is not an integer in column 'x' at row 2"
                             << "0 calculations succeeded, 2 failed";
    QTest::newRow("booleans") << "Or" << column("maybe") << "=yes"
                              << "#1"
                              << "'yes' is not a valid value for this operation at row 1\n'maybe' is not a "
                                 "valid value for this operation in column 'x' at row 1"
                              << "0 calculations succeeded, 1 failed";
    // Dates in the first 50 cells make date columns; a bad date after them fails in both.
    const QString dates = QStringLiteral("a,b") + QStringLiteral("\n1/1/2021,1/1/2021").repeated(50);
    QTest::newRow("two bad dates count twice")
        << "- Subtract" << dates + QStringLiteral("\nsoon,later") << "#1"
        << "#2"
        << "'soon' is not a valid date in column 'a' at row 51\n'later' is not a valid date in column 'b' at "
           "row 51"
        << "50 calculations succeeded, 1 failed";
    QTest::newRow("two dates") << "* Multiply"
                               << "a,b\n1/1/2021,1/1/2021"
                               << "#1"
                               << "#2"
                               << "Operation not valid on 2 dates at row 1"
                               << "0 calculations succeeded, 1 failed";
    QTest::newRow("a date column") << "Maximum" << column("1/1/2021") << "#1"
                                   << "=3"
                                   << "Operation not valid on a date in column 'x' at row 1"
                                   << "0 calculations succeeded, 1 failed";
    QTest::newRow("a date constant") << "/ Divide" << column("3") << "=1/1/2021"
                                     << "#1"
                                     << "Operation not valid on a date at row 1"
                                     << "0 calculations succeeded, 1 failed";
    QTest::newRow("days not an integer") << "+ Add"
                                         << "a,b\n1/1/2021,x"
                                         << "#1"
                                         << "#2"
                                         << "'x' is not an integer in column 'b' at row 1"
                                         << "0 calculations succeeded, 1 failed";
    QTest::newRow("not a number, constant") << "Abs" << column("1") << "=x"
                                            << "=0"
                                            << "'x' is not a number at row 1"
                                            << "0 calculations succeeded, 1 failed";
    QTest::newRow("not a number, column") << "Ceiling" << column("x") << "#1"
                                          << "=0"
                                          << "'x' is not a number in column 'x' at row 1"
                                          << "0 calculations succeeded, 1 failed";
    QTest::newRow("operation on a date") << "Sign" << column("1/1/2021") << "#1"
                                         << "=0"
                                         << "Operation not valid on date '1/1/2021' in column 'x' at row 1"
                                         << "0 calculations succeeded, 1 failed";
    QTest::newRow("not a date") << "Month" << column("13") << "#1"
                                << "=0"
                                << "'13' is not a valid date in column 'x' at row 1"
                                << "0 calculations succeeded, 1 failed";
    QTest::newRow("logarithm") << "Ln" << column("0") << "=-1"
                               << "=0"
                               << "'-1' <= 0 at row 1"
                               << "0 calculations succeeded, 1 failed";
    QTest::newRow("msecs") << "MSecsToDateTime" << column("1.5") << "#1"
                           << "=0"
                           << "'1.5' is not a valid integer value for msecs in column 'x' at row 1"
                           << "0 calculations succeeded, 1 failed";
    QTest::newRow("ISO date-time") << "DateTimeToMSecs" << column("1") << "=noon"
                                   << "=0"
                                   << "'noon' is not a valid ISO datetime at row 1"
                                   << "0 calculations succeeded, 1 failed";
    QTest::newRow("Julian day") << "JulianDayToDate" << column("x|-784350574880|5373485") << "#1"
                                << "=0"
                                << "'x' is not a valid integer expected for msecs in column 'x' at row "
                                   "1\n'-784350574880' is not a valid Julian day in column 'x' at row "
                                   "2\n'5373485' is out of range to represent a Julian day as an ISO date in "
                                   "column 'x' at row 3"
                                << "0 calculations succeeded, 3 failed";
    QTest::newRow("msecs to time") << "MSecsToTime" << column("x|-5") << "#1"
                                   << "=0"
                                   << "'x' integer msecs expected in column 'x' at row 1\n'-5' msecs out of "
                                      "range in column 'x' at row 2"
                                   << "0 calculations succeeded, 2 failed";
    QTest::newRow("time") << "TimeToMSecs" << column("1") << "=1:99"
                          << "=0"
                          << "'1:99' is not a valid time at row 1"
                          << "0 calculations succeeded, 1 failed";
    QTest::newRow("empty results succeed") << "IndexOf" << column("abc") << "=z"
                                           << "#1"
                                           << ""
                                           << "1 calculations succeeded, 0 failed";
}

void TestCalculate::messages()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, value1);
    QFETCH(QString, value2);
    QFETCH(QString, warnings);
    QFETCH(QString, information);
    const Outcome outcome = calculate(operation, table, value1, value2);
    QCOMPARE(outcome.warnings, warnings);
    QCOMPARE(outcome.information, information);
}

void TestCalculate::names_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("value1");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<bool>("withHeaders");
    QTest::addColumn<QString>("headers");
    const QString none; // automatic name
    QTest::newRow("symbol between") << "* Multiply"
                                    << "#1"
                                    << "#2" << none << true << "price,qty,price*qty";
    QTest::newRow("constant trimmed") << "+ Add"
                                      << "#2"
                                      << "= 2 " << none << true << "price,qty,qty+2";
    QTest::newRow("word operation") << "LevDistance"
                                    << "=a b"
                                    << "#1" << none << true << "price,qty,LevDistance(a b,price)";
    QTest::newRow("one value") << "Abs"
                               << "#1"
                               << "#2" << none << true << "price,qty,Abs(price)";
    QTest::newRow("one constant kept raw") << "Abs"
                                           << "= -5 "
                                           << "#2" << none << true << "price,qty,Abs( -5 )";
    QTest::newRow("own name") << "Abs"
                              << "#1"
                              << "#2"
                              << "Amount" << true << "price,qty,Amount";
    QTest::newRow("headerless input") << "- Subtract"
                                      << "#2"
                                      << "#1" << none << false << "1,2,2-1";
}

void TestCalculate::names()
{
    QFETCH(QString, operation);
    QFETCH(QString, value1);
    QFETCH(QString, value2);
    QFETCH(QString, newName);
    QFETCH(bool, withHeaders);
    QFETCH(QString, headers);
    const Outcome outcome =
        calculate(operation, QStringLiteral("price,qty\n1,2"), value1, value2, newName, withHeaders);
    QCOMPARE(outcome.output.displayHeaders().join(QLatin1Char(',')), headers);
    QVERIFY(outcome.output.hasHeaders());
}

void TestCalculate::locales_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("information");
    QTest::newRow("German decimals, rendered with a point") << "de_DE"
                                                            << "* Multiply"
                                                            << "1.234\\,5|1\\,5|€ 2"
                                                            << "2469|3|4"
                                                            << "3 calculations succeeded, 0 failed";
    QTest::newRow("US groups") << "en_US"
                               << "* Multiply"
                               << "1\\,234.5|$1\\,000"
                               << "2469|2000"
                               << "2 calculations succeeded, 0 failed";
    QTest::newRow("German integers") << "de_DE"
                                     << "% Modulus"
                                     << "1.001|7\\,0"
                                     << "1|Error: integer expected"
                                     << "1 calculations succeeded, 1 failed";
    QTest::newRow("German dates") << "de_DE"
                                  << "Month"
                                  << "13.01.21|01.02.21"
                                  << "1|2"
                                  << "2 calculations succeeded, 0 failed";
}

void TestCalculate::locales()
{
    QFETCH(QString, locale);
    QFETCH(QString, operation);
    QFETCH(QString, cells);
    QFETCH(QString, expected);
    QFETCH(QString, information);
    QLocale::setDefault(QLocale(locale));
    const Outcome outcome = calculate(operation, column(cells), QStringLiteral("#1"), QStringLiteral("=2"));
    QCOMPARE(outcome.cells, expected);
    QCOMPARE(outcome.information, information);
}

void TestCalculate::dateDetectionLooksAtFiftyCells()
{
    // 50 dates, with blanks between them that don't count, then a bad cell: the column is
    // a date column and only the bad cell fails.
    QStringList cells;
    for (int i = 0; i < 50; ++i)
        cells << QStringLiteral("1/%1/2021").arg(i % 28 + 1) << QString();
    cells << QStringLiteral("soon");
    Outcome outcome =
        calculate(QStringLiteral("Increment"), column(cells.join(QLatin1Char('|'))), QStringLiteral("#1"));
    QCOMPARE(outcome.cells.split(QLatin1Char('|')).first(), QStringLiteral("1/2/2021"));
    QCOMPARE(outcome.cells.split(QLatin1Char('|')).last(), QStringLiteral("Error: date expected"));
    QCOMPARE(outcome.information, QStringLiteral("50 calculations succeeded, 51 failed"));

    // The same bad cell among the first 50 makes it a column of numbers, which all fail.
    cells.move(cells.size() - 1, 10);
    outcome =
        calculate(QStringLiteral("Increment"), column(cells.join(QLatin1Char('|'))), QStringLiteral("#1"));
    QCOMPARE(outcome.cells.split(QLatin1Char('|')).first(), QStringLiteral("Error: number expected"));
    QCOMPARE(outcome.information, QStringLiteral("0 calculations succeeded, 101 failed"));
    QVERIFY(
        outcome.warnings.startsWith(QStringLiteral("'1/1/2021' is not a number in column 'x' at row 1\n")));
}

void TestCalculate::failuresAfterFiveAreCounted()
{
    // Two failures in each of 1,001 rows but the first: five told, the rest counted, and the
    // row numbers and counts with group separators.
    QStringList lines = {QStringLiteral("a,b"), QStringLiteral("1,2")};
    for (int i = 1; i <= 1000; ++i)
        lines << QStringLiteral("x,y");
    Outcome outcome = calculate(
        QStringLiteral("+ Add"), lines.join(QLatin1Char('\n')), QStringLiteral("#1"), QStringLiteral("#2"));
    QStringList warnings = outcome.warnings.split(QLatin1Char('\n'));
    QCOMPARE(warnings.size(), 6);
    QCOMPARE(
        warnings.at(4), QStringLiteral("'x' is not a valid value for this operation in column 'a' at row 4"));
    QCOMPARE(warnings.at(5), QStringLiteral("+ 1,995 others"));
    QCOMPARE(outcome.information, QStringLiteral("1 calculations succeeded, 1,000 failed"));

    lines = QStringList {QStringLiteral("x"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
        QStringLiteral("d"), QStringLiteral("e"), QStringLiteral("f")};
    outcome = calculate(QStringLiteral("Abs"), lines.join(QLatin1Char('\n')), QStringLiteral("#1"));
    warnings = outcome.warnings.split(QLatin1Char('\n'));
    QCOMPARE(warnings.size(), 6);
    QCOMPARE(warnings.last(), QStringLiteral("+ 1 other"));
}

void TestCalculate::emptyAndMissing_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("value1");
    QTest::addColumn<QString>("value2");
    QTest::addColumn<QString>("headers");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("information");
    QTest::newRow("empty table") << "+ Add"
                                 << "a,b"
                                 << "#1"
                                 << "#2"
                                 << "a,b,a+b" << QString() << "0 calculations succeeded, 0 failed";
    QTest::newRow("missing value 1") << "+ Add"
                                     << "a,b\n1,2\n3,4"
                                     << "#9"
                                     << "#2"
                                     << "a,b,3"
                                     << "|"
                                     << "0 calculations succeeded, 2 failed";
    QTest::newRow("missing value 2") << "+ Add"
                                     << "a,b\n1,2"
                                     << "#1"
                                     << "#9"
                                     << "a,b,3" << QString() << "0 calculations succeeded, 1 failed";
    QTest::newRow("one value ignores value 2") << "Abs"
                                               << "a,b\n-1,2"
                                               << "#1"
                                               << "#9"
                                               << "a,b,Abs(a)"
                                               << "1"
                                               << "1 calculations succeeded, 0 failed";
}

void TestCalculate::emptyAndMissing()
{
    QFETCH(QString, operation);
    QFETCH(QString, table);
    QFETCH(QString, value1);
    QFETCH(QString, value2);
    QFETCH(QString, headers);
    QFETCH(QString, cells);
    QFETCH(QString, information);
    const Outcome outcome = calculate(operation, table, value1, value2);
    QCOMPARE(outcome.output.displayHeaders().join(QLatin1Char(',')), headers);
    QCOMPARE(outcome.cells, cells);
    QCOMPARE(outcome.information, information);
    QCOMPARE(outcome.warnings, QString());
}

void TestCalculate::keepsInputColumnsAndIds()
{
    Dataset dataset = testutil::toDataset(QStringLiteral("a,b\n1,2\n3,4"), true);
    dataset.assignColumnIds(4);
    DataNode node(dataset);
    TransformCalculate transform;
    transform.createParameters({&node}, false);
    transform.parameter(QStringLiteral("Column1"))->setValue(QVariant::fromValue(dataset.columnId(0)));
    transform.parameter(QStringLiteral("Column2"))->setValue(QVariant::fromValue(dataset.columnId(1)));
    bool failed = false;
    const Dataset output = transform.process({&node}, failed);
    QCOMPARE(testutil::toText(output, true), QStringLiteral("a,b,a+b\n1,2,3\n3,4,7"));
    QCOMPARE(output.columnIds().mid(0, 2), dataset.columnIds());
    QVERIFY(output.columnId(2).isUnset());
    QVERIFY(!failed);
    // Any other number of inputs gives nothing.
    QCOMPARE(transform.process({}, failed).columnCount(), 0);
    QCOMPARE(transform.process({&node, &node}, failed).columnCount(), 0);
}

QTEST_MAIN(TestCalculate)
#include "tst_calculate.moc"
