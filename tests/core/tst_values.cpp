#include "core/dataset.h"
#include "core/values.h"
#include "testutil.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

class TestValues : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void toNumber_data();
    void toNumber();
    void toNumberAgreesWithQLocale();
    void toBool_data();
    void toBool();
    void dateAndTime_data();
    void dateAndTime();
    void toDateAgreesWithQDate();
    void isJsonNumber_data();
    void isJsonNumber();
    void textForms_data();
    void textForms();
    void renderNumber_data();
    void renderNumber();
    void dateFormatLists();
    void columnType_data();
    void columnType();
    void sampling_data();
    void sampling();
    void otherColumnTests();
};

static const QStringList usFormats = defaultDateFormats(QLocale(QLocale::English, QLocale::UnitedStates));

void TestValues::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    clearValueCaches();
}

void TestValues::toNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("emptyIsZero");
    QTest::addColumn<bool>("ignoreCurrency");
    QTest::addColumn<QString>("locale"); // empty: the default one
    QTest::addColumn<double>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("trimmed, grouped") << " -1,000.5\t" << false << false << "" << -1000.5 << true;
    QTest::newRow("currency kept") << "$1,000" << false << false << "" << 0.0 << false;
    QTest::newRow("currency ignored") << "$1,000" << false << true << "" << 1000.0 << true;
    QTest::newRow("currency anywhere") << "€ 12 ¥" << false << true << "" << 12.0 << true;
    QTest::newRow("NaN refused") << "NaN" << false << false << "" << 0.0 << false;
    QTest::newRow("inf refused") << " INF " << false << false << "" << 0.0 << false;
    QTest::newRow("-inf refused") << "-Inf" << false << false << "" << 0.0 << false;
    QTest::newRow("overflow") << "1e999" << false << false << "" << 0.0 << false;
    QTest::newRow("empty") << "" << false << false << "" << 0.0 << false;
    QTest::newRow("blank is zero") << "  " << true << false << "" << 0.0 << true;
    QTest::newRow("only currency is zero") << "$" << true << true << "" << 0.0 << true;
    QTest::newRow("word") << "12 apples" << true << true << "" << 0.0 << false;
    QTest::newRow("German") << "1.234,5" << false << false << "de_DE" << 1234.5 << true;
    QTest::newRow("English misplaced group") << "1,5" << false << false << "en_US" << 0.0 << false;
}

void TestValues::toNumber()
{
    QFETCH(QString, text);
    QFETCH(bool, emptyIsZero);
    QFETCH(bool, ignoreCurrency);
    QFETCH(QString, locale);
    QFETCH(bool, ok);
    bool actualOk = !ok;
    const double number = locale.isEmpty()
        ? ::toNumber(text, emptyIsZero, ignoreCurrency, &actualOk)
        : ::toNumber(text, emptyIsZero, ignoreCurrency, &actualOk, QLocale(locale));
    QTEST(number, "expected");
    QCOMPARE(actualOk, ok);
}

// Plain decimals are read without QLocale; the result must still be QLocale's to the bit.
void TestValues::toNumberAgreesWithQLocale()
{
    const QString alphabet = QStringLiteral("0123456789.-+,e ");
    QRandomGenerator random(5);
    int valid = 0;
    for (const QLocale &locale : {QLocale(), QLocale(QLocale::German, QLocale::Germany)}) {
        for (int i = 0; i < 20000; ++i) {
            QString text;
            // Mostly digits with a point or a sign here and there, sometimes anything.
            for (int length = random.bounded(1, 20); length > 0; --length)
                text += alphabet.at(random.bounded(random.bounded(8) ? 10 : i % 2 ? 12 : alphabet.size()));
            bool ok = false;
            bool expectedOk = false;
            const double number = ::toNumber(text, false, false, &ok, locale);
            const double expected = locale.toDouble(text, &expectedOk);
            QCOMPARE(ok, expectedOk);
            valid += ok;
            if (ok)
                QVERIFY2(
                    number == expected && std::signbit(number) == std::signbit(expected), qPrintable(text));
        }
    }
}

void TestValues::toBool_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("emptyIsInvalid");
    QTest::addColumn<bool>("allowNumber");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("TRUE") << " TRUE" << true << false << true << true;
    QTest::newRow("yes isn't a boolean") << "yes" << false << true << false << false;
    QTest::newRow("number not allowed") << "1" << false << false << false << false;
    QTest::newRow("fraction") << "-0.5" << false << true << true << true;
    QTest::newRow("zero") << "0.0" << false << true << false << true;
    QTest::newRow("empty invalid") << "" << true << true << false << false;
    QTest::newRow("blank reads as zero") << " " << false << true << false << true;
    QTest::newRow("empty without numbers") << "" << false << false << false << false;
}

void TestValues::toBool()
{
    QFETCH(QString, text);
    QFETCH(bool, emptyIsInvalid);
    QFETCH(bool, allowNumber);
    bool ok = false;
    QTEST(::toBool(text, emptyIsInvalid, allowNumber, &ok), "expected");
    QTEST(ok, "ok");
}

static void addDateOrTime(const char *name, const char *text, const char *format, const char *expected)
{
    QTest::newRow(name) << QString(text) << QString(format) << QString(expected);
}

// A date read with a format, or with the format "time" a time; "" when invalid.
void TestValues::dateAndTime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    addDateOrTime("trimmed, padded", " 01/02/2020 ", "M/d/yyyy", "2020-01-02");
    addDateOrTime("no month 13", "13/1/2020", "M/d/yyyy", "");
    addDateOrTime("trailing text", "1/2/2020x", "M/d/yyyy", "");
    addDateOrTime("other separator", "1.2.2020", "d/M/yyyy", "");
    addDateOrTime("no separator", "2020", "yyyy", "2020-01-01");
    addDateOrTime("English month names", "Jan 5 2020", "MMM d yyyy", "2020-01-05");
    addDateOrTime("quoted literal", "day 5/1/2020", "'day' d/M/yyyy", "2020-01-05");
    addDateOrTime("h:m", " 1:2 ", "time", "01:02:00");
    addDateOrTime("h:m:s", "13:45:07", "time", "13:45:07");
    addDateOrTime("no AM/PM", "1:2:3 PM", "time", "");
    addDateOrTime("no hour 25", "25:00", "time", "");
    addDateOrTime("no fraction", "1:2:3.5", "time", "");
}

void TestValues::dateAndTime()
{
    QFETCH(QString, text);
    QFETCH(QString, format);
    if (format == QLatin1String("time"))
        QTEST(::toTime(text).toString(Qt::ISODate), "expected");
    else
        QTEST(::toDate(text, format).toString(Qt::ISODate), "expected");
}

// Texts are rejected before parsing when they lack the format's separators; the answer
// must still be Qt's own on any text.
void TestValues::toDateAgreesWithQDate()
{
    QStringList formats = usFormats;
    formats << QStringLiteral("dd.MM.yy") << QStringLiteral("yyyy-MM-dd") << QStringLiteral("d");
    const QString noise = QStringLiteral("/-.: 0123456789x");
    QRandomGenerator random(7);
    int valid = 0;
    for (int i = 0; i < 3000; ++i) {
        // A date written in one format and read in another, one character changed in half.
        const QDate date(random.bounded(1900, 2100), random.bounded(1, 13), random.bounded(1, 29));
        QString text = date.toString(formats.at(random.bounded(formats.size())));
        if (random.bounded(2))
            text[random.bounded(text.size())] = noise.at(random.bounded(noise.size()));
        const QString &format = formats.at(i % formats.size());
        const QDate expected = QDate::fromString(text.trimmed(), format);
        QCOMPARE(::toDate(text, format), expected);
        valid += expected.isValid();
    }
    QVERIFY(valid > 100);
}

void TestValues::isJsonNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    const QStringList good = {"0", "-0", " 7 ", "-1.5e+10", "2E5", "0.0e-0"};
    const QStringList bad = {"+1", "01", ".5", "1.", "1e+", "--1", "", "1.5.2", "0x1", "1 2", "\u0661"};
    for (const QString &text : good + bad)
        QTest::addRow("[%s]", qPrintable(text)) << text << good.contains(text);
}

void TestValues::isJsonNumber()
{
    QFETCH(QString, text);
    QTEST(::isJsonNumber(text), "expected");
}

// simplifyWhitespace when maxLength is absent, else elideText with or without "…".
void TestValues::textForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("maxLength");
    QTest::addColumn<bool>("addEllipsis");
    QTest::addColumn<QString>("expected");
    QTest::newRow("tab and two spaces") << "a\t  b" << QVariant() << false << "a   b";
    QTest::newRow("CRLF") << "a\r\nb\r" << QVariant() << false << "a b";
    QTest::newRow("vertical tab, form feed") << "a\vb\fc" << QVariant() << false << "a b c";
    QTest::newRow("unicode spaces") << "a\u00a0b\u2003c\u0085d\u2028" << QVariant() << false << "a b c d ";
    QTest::newRow("runs kept, controls kept") << "  a\x01  " << QVariant() << false << "  a\x01  ";
    QTest::newRow("negative keeps all") << "abcdef" << QVariant(-1) << true << "abcdef";
    QTest::newRow("fits exactly") << "abc" << QVariant(3) << true << "abc";
    QTest::newRow("ellipsis") << "abcdef" << QVariant(4) << true << "abc…";
    QTest::newRow("no ellipsis") << "abcdef" << QVariant(4) << false << "abcd";
    QTest::newRow("room for one") << "abcdef" << QVariant(1) << true << "a";
}

void TestValues::textForms()
{
    QFETCH(QString, text);
    QFETCH(QVariant, maxLength);
    QFETCH(bool, addEllipsis);
    if (maxLength.isValid())
        text = elideText(text, maxLength.toInt(), addEllipsis);
    else
        simplifyWhitespace(text);
    QTEST(text, "expected");
}

void TestValues::renderNumber_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("negative zero") << -0.0 << "0";
    QTest::newRow("whole") << 1234567.0 << "1234567";
    QTest::newRow("sum error hidden") << 0.1 + 0.2 << "0.3";
    QTest::newRow("product error hidden") << 1.1 * 1.1 << "1.21";
    QTest::newRow("binary noise in the 16th digit hidden") << 12 * 6.9 << "82.8";
    QTest::newRow("third") << 1.0 / 3 << "0.333333333333333";
    QTest::newRow("hundredth of a third") << 1.0 / 300 << "0.00333333333333333";
    QTest::newRow("large fraction") << 123456789.123456789 << "123456789.123457";
    QTest::newRow("small") << -1e-7 << "-0.0000001";
    QTest::newRow("huge") << 1e20 << "100000000000000000000";
    QTest::newRow("exact tie away from zero") << 4156355813254686.5 << "4156355813254687";
    QTest::newRow("negative exact tie") << -2280803135139850.5 << "-2280803135139851";
    QTest::newRow("tie in the decimals") << 35685554121029.25 << "35685554121029.3";
    QTest::newRow("smallest") << 5e-324
                              << QStringLiteral("0.") + QString(323, QLatin1Char('0'))
            + QStringLiteral("494065645841247");
    QTest::newRow("largest") << 1.7976931348623157e308 << QString::number(1.7976931348623157e308, 'f', 0);
    QTest::newRow("infinite") << HUGE_VAL << "NaN";
    QTest::newRow("not a number") << std::nan("") << "NaN";
}

void TestValues::renderNumber()
{
    QFETCH(double, value);
    QTEST(::renderNumber(value), "expected");
}

void TestValues::dateFormatLists()
{
    const QStringList other = {"d/M/yyyy", "M/d/yyyy", "yyyy/M/d", "d/M/yyyy", "M/d/yy", "yy/M/d", "d-M-yyyy",
        "M-d-yyyy", "yyyy-M-d", "d-M-yy", "M-d-yy", "yy-M-d"};
    QCOMPARE(usFormats,
        (QStringList {"M/d/yyyy", "d/M/yyyy", "yyyy/M/d", "M/d/yy", "d/M/yy", "yy/M/d", "M-d-yyyy",
            "d-M-yyyy", "yyyy-M-d", "M-d-yy", "d-M-yy", "yy-M-d"}));
    QCOMPARE(defaultDateFormats(QLocale(QLocale::English, QLocale::UnitedKingdom)),
        QStringList {"dd/MM/yyyy"} + other);
    QCOMPARE(
        defaultDateFormats(QLocale(QLocale::German, QLocale::Germany)), QStringList {"dd.MM.yy"} + other);

    QCOMPARE(dateFormats(), usFormats);
    setDateFormats({QStringLiteral("yyyy.M.d")});
    QCOMPARE(dateFormats(), QStringList {QStringLiteral("yyyy.M.d")});
    setDateFormats({});
    QCOMPARE(dateFormats(), usFormats);
    QCOMPARE(formatCount(-1234567), QStringLiteral("-1,234,567"));
}

void TestValues::columnType_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<bool>("ignoreCurrency");
    QTest::addColumn<int>("expected");
    QTest::addColumn<QString>("format");
    const int text = int(ColumnType::Text);
    const int number = int(ColumnType::Number);
    QTest::newRow("numbers with NaN") << "1\nNaN\n2.5" << false << number << "";
    QTest::newRow("inf isn't a number") << "1\ninf\n2" << false << text << "";
    QTest::newRow("blanks") << "\n\n" << false << text << "";
    QTest::newRow("spaces") << " \n  " << false << text << "";
    QTest::newRow("ones and zeros") << "1\n0\n1" << false << number << "";
    QTest::newRow("years") << "2019\n2020" << false << number << "";
    QTest::newRow("currency") << "$1,000\n$5" << true << number << "";
    QTest::newRow("currency not ignored") << "$1,000\n$5" << false << text << "";
    QTest::newRow("text at row 101") << QString("7\n").repeated(100) + "x" << false << number << "";
    QTest::newRow("booleans") << "true\n\nFALSE" << false << int(ColumnType::Boolean) << "";
    QTest::newRow("times") << "1:2\n13:45:00" << false << int(ColumnType::Time) << "";
    QTest::newRow("PM isn't a time") << "1:2:3 PM" << false << text << "";
    QTest::newRow("day 13 decides") << "13/01/2020\n01/02/2020" << false << int(ColumnType::Date)
                                    << "d/M/yyyy";
    QTest::newRow("ties go first") << "01/02/2020\n03/04/2020" << false << int(ColumnType::Date)
                                   << "M/d/yyyy";
    QTest::newRow("no common format") << "1/2/2020\n2020-1-2" << false << text << "";
}

void TestValues::columnType()
{
    QFETCH(QString, cells);
    QFETCH(bool, ignoreCurrency);
    QFETCH(int, expected);
    QString format;
    QCOMPARE(int(testutil::toDataset(cells).columnType(0, usFormats, &format, ignoreCurrency)), expected);
    QTEST(format, "format");
}

// isNumericColumn with maxRows when it is given, else guessDateFormat with maxValues.
void TestValues::sampling_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<int>("maxRows");
    QTest::addColumn<int>("maxValues");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<QString>("format");
    QTest::newRow("text past maxRows") << "1\n2\nx" << 2 << 0 << true << "";
    QTest::newRow("text within maxRows") << "1\n2\nx" << 3 << 0 << false << "";
    QTest::newRow("only nan") << "nan\nNAN" << 100 << 0 << false << "";
    QTest::newRow("blanks skipped") << "\n 3 \n" << 100 << 0 << true << "";
    QTest::newRow("best of a partial fit") << "1/2/2020\n13/2/2020\nx" << 0 << 50 << false << "d/M/yyyy";
    QTest::newRow("only maxValues read") << "\n1/2/2020\n13/2/2020" << 0 << 1 << true << "M/d/yyyy";
    QTest::newRow("nothing parses") << "x\ny" << 0 << 50 << false << "unchanged";
    QTest::newRow("no values") << "\n" << 0 << 50 << false << "unchanged";
}

void TestValues::sampling()
{
    QFETCH(QString, cells);
    QFETCH(int, maxRows);
    QFETCH(int, maxValues);
    const Dataset dataset = testutil::toDataset(cells);
    QString format = QStringLiteral("unchanged");
    if (maxRows > 0) {
        QTEST(dataset.isNumericColumn(0, false, maxRows), "expected");
    } else {
        QTEST(dataset.guessDateFormat(0, usFormats, &format, maxValues), "expected");
        QTEST(format, "format");
    }
}

void TestValues::otherColumnTests()
{
    const Dataset dataset =
        testutil::toDataset(QStringLiteral(" 1 ,a b,1/2/2020,abc,$4\n-2.5e3,c,3/4/2020,,01"));
    QCOMPARE(dataset.numericColumns(10, false), (QList<DataColumnIndex> {0}));
    QCOMPARE(dataset.numericColumns(10, true), (QList<DataColumnIndex> {0, 4}));
    QCOMPARE(dataset.numericColumns(1, true), (QList<DataColumnIndex> {0}));
    QVERIFY(dataset.isJsonNumberColumn(0));
    QVERIFY(!dataset.isJsonNumberColumn(4));
    QVERIFY(!dataset.isPlainColumn(1, usFormats)); // a space
    QVERIFY(!dataset.isPlainColumn(2, usFormats)); // dates
    QVERIFY(dataset.isPlainColumn(3, usFormats));
}

QTEST_APPLESS_MAIN(TestValues)
#include "tst_values.moc"
