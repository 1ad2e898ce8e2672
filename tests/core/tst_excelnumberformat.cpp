#include "core/excelnumberformat.h"

#include <QtTest>

class TestExcelNumberFormat : public QObject
{
    Q_OBJECT
private slots:
    void format_data();
    void format();
    void builtIn_data();
    void builtIn();
    void otherLocale_data();
    void otherLocale();
    void text_data();
    void text();
    void fallback_data();
    void fallback();
    void toExcelCode_data();
    void toExcelCode();
    void toDateFormat_data();
    void toDateFormat();
    void serials_data();
    void serials();

private:
    const QLocale m_us {QLocale::English, QLocale::UnitedStates};
};

void TestExcelNumberFormat::format_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("date1904");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, double value, const char *code, const char *expected,
                   bool date1904 = false) {
        QTest::newRow(name) << value << QString::fromUtf8(code) << date1904 << QString::fromUtf8(expected);
    };
    // General
    row("general zero", 0, "General", "0");
    row("general 15 digits whole", 123456789012345, "General", "123456789012345");
    row("general 16 digits", 1234567890123456, "General", "1.23456789012346E+15");
    row("general 1e15", 1e15, "General", "1E+15");
    row("general below 1e15", 999999999999999, "General", "999999999999999");
    row("general binary noise", 0.1 + 0.2, "General", "0.3");
    row("general 1e-5 plain", 1e-5, "General", "0.00001");
    row("general 1e-6 scientific", 1e-6, "General", "1E-06");
    row("general small digits", 0.000012345, "General", "0.000012345");
    row("general third", 1.0 / 3, "General", "0.333333333333333");
    row("general 15 significant", 12345.678901234567, "General", "12345.6789012346");
    row("general negative", -2.5, "General", "-2.5");
    row("general big", 1.5e20, "General", "1.5E+20");
    row("general big rounded", 1.23456789012345678e20, "General", "1.23456789012346E+20");
    row("general huge exponent", 1e300, "General", "1E+300");
    row("empty code", 1.5, "", "1.5");
    row("general word in section", 5, "\"x\"General", "x5");
    row("general in negative section", -5, "General;(General)", "(5)");
    // Decimals, padding, thousands
    row("integer rounds", 1234.567, "0", "1235");
    row("two decimals", 1234.567, "0.00", "1234.57");
    row("thousands", 1234.567, "#,##0", "1,235");
    row("thousands decimals", 1234567.891, "#,##0.00", "1,234,567.89");
    row("thousands below 1000", 999, "#,##0", "999");
    row("leading zero kept", 0.5, "#,##0.00", "0.50");
    row("hash drops zero", 0.5, "#.00", ".50");
    row("no integer place", 12.5, ".00", "12.50");
    row("hash decimals keep point", 1, "0.##", "1.");
    row("optional decimal", 1.5, "0.0#", "1.5");
    row("optional decimal used", 1.25, "0.0#", "1.25");
    row("zero padding", 5, "000", "005");
    row("blank padding", 5, "???", "  5");
    row("blank decimals", 1.5, "0.???", "1.5  ");
    row("grouped zero padding", 5, "0,000", "0,005");
    row("rounding 2.675", 2.675, "0.00", "2.68");
    row("rounding 0.125", 0.125, "0.00", "0.13");
    row("half away positive", 2.5, "0", "3");
    row("half away negative", -2.5, "0", "-3");
    row("negative zero shown", -0.4, "0", "-0");
    row("carry to new digit", 9.996, "0.00", "10.00");
    row("scale thousands", 1234567, "#,##0,", "1,235");
    row("scale millions", 1234567, "0.0,,", "1.2");
    row("comma as text", 5, "0\\,0", "0,5");
    row("percent", 0.256, "0%", "26%");
    row("percent decimals", 0.12345, "0.00%", "12.35%");
    row("digits spread over text", 5551234, "000-0000", "555-1234");
    row("extra digits to first place", 123456, "0-00", "1234-56");
    // Scientific
    row("scientific", 1234, "0.00E+00", "1.23E+03");
    row("scientific small", 0.000123, "0.00E+00", "1.23E-04");
    row("scientific minus sign small", 0.000123, "0.00E-00", "1.23E-04");
    row("scientific minus sign big", 1234, "0.00E-00", "1.23E03");
    row("scientific lower e", 1234, "0.0e+0", "1.2e+3");
    row("scientific zero", 0, "0.00E+00", "0.00E+00");
    row("scientific carry", 9.999, "0.00E+00", "1.00E+01");
    row("scientific negative", -1234, "0.00E+00", "-1.23E+03");
    row("engineering", 12345, "##0.0E+0", "12.3E+3");
    row("engineering small", 0.001234, "##0.0E+0", "1.2E-3");
    // Fractions
    row("fraction mixed", 1.5, "# ?/?", "1 1/2");
    row("fraction below one", 0.5, "# ?/?", " 1/2");
    row("fraction whole", 5, "# ?/?", "5    ");
    row("fraction zero", 0, "# ?/?", "0    ");
    row("fraction two digits", 3.14159, "# ?\?/??", "3 14/99");
    row("fraction denominator padded", 0.5, "# ?\?/??", "  1/2 ");
    row("fraction improper", 1.25, "?/?", "5/4");
    row("fraction three quarters", 0.75, "?/?", "3/4");
    row("fraction fixed eighths", 2.3, "# ?/8", "2 2/8");
    row("fraction fixed tenths", 0.3, "# ?/10", " 3/10");
    row("fraction negative", -1.5, "# ?/?", "-1 1/2");
    row("fraction rounds up to whole", 1.99, "# ?/?", "2    ");
    // Literals, escapes, fill and skip
    row("quoted prefix", 123, "\"No. \"0", "No. 123");
    row("quoted suffix", 123, "0\" kg\"", "123 kg");
    row("escaped dollar", 5, "\\$0", "$5");
    row("plain dollar", 5, "$0", "$5");
    row("literal characters", 5, "(+0)!^&'~{}<>=", "(+5)!^&'~{}<>=");
    row("skip gives blank", 5, "0_)", "5 ");
    row("fill gives nothing", 5, "**0", "5");
    row("fill between", 5, "\"$\"* 0", "$5");
    row("only text", 5, "\"abc\"", "abc");
    // Brackets
    row("currency tag before", 1234.5, "[$€-407]#,##0.00", "€1,234.50");
    row("currency tag after", 1234.5, "#,##0.00 [$€-407]", "1,234.50 €");
    row("currency tag without locale", 5, "[$USD] 0", "USD 5");
    row("locale tag ignored", 5, "[$-409]0", "5");
    row("colour ignored", 5, "[Red]0", "5");
    row("numbered colour ignored", -5, "[Color10]0;[Red]-0", "-5");
    row("colour only section", 5, "[Blue]", "5");
    // Sections and conditions
    row("negative section", -5, "0;(0)", "(5)");
    row("zero section", 0, "0;(0);\"zero\"", "zero");
    row("two sections zero uses first", 0, "0.0;(0.0)", "0.0");
    row("red negative", -1234.5, "#,##0.00;[Red]\\(#,##0.00\\)", "(1,234.50)");
    row("condition met", 150, "[>=100]\"big\";\"small\"", "big");
    row("condition else", 50, "[>=100]\"big\";\"small\"", "small");
    row("condition keeps sign", -5, "[>=100]0;0", "-5");
    row("two conditions", 5, "[<0]\"neg\";[>10]\"big\";\"mid\"", "mid");
    row("negative condition drops sign", -5, "[<0]0\" below\";0", "5 below");
    row("hidden", 5, ";;;", "");
    row("empty zero section", 0, "0;-0;;@", "");
    row("text section ignored for numbers", 5, "0;-0;;@", "5");
    row("number through text format", 5, "@", "5");
    // Dates
    row("iso date", 43831, "yyyy-mm-dd", "2020-01-01");
    row("short year", 43831, "d/m/yy", "1/1/20");
    row("dotted date", 43831, "dd.mm.yyyy", "01.01.2020");
    row("date and time", 43831.5, "yyyy-mm-dd hh:mm:ss", "2020-01-01 12:00:00");
    row("names", 43831, "dddd, mmmm d, yyyy", "Wednesday, January 1, 2020");
    row("short names", 43831, "ddd mmm", "Wed Jan");
    row("month letter", 43831, "mmmmm", "J");
    row("three y", 43831, "yyy", "2020");
    row("one y", 43831, "y", "20");
    row("upper case tokens", 43831, "DD/MM/YYYY", "01/01/2020");
    row("system long date tag", 43831, "[$-F800]dddd, mmmm dd, yyyy", "Wednesday, January 01, 2020");
    row("month and year", 43831, "mmm-yy", "Jan-20");
    row("minutes after hours", 44000.75, "m/d/yyyy h:mm", "6/18/2020 18:00");
    row("unpadded time", 0.5, "h:m:s", "12:0:0");
    row("quoted letter in time", 0.5, "hh\"h\"mm", "12h00");
    row("minutes before seconds", 0.000694444444444444, "m:ss", "1:00");
    row("pm", 0.75, "h:mm AM/PM", "6:00 PM");
    row("am lower", 0.25, "hh:mm am/pm", "06:00 am");
    row("a/p", 0.5, "h A/P", "12 P");
    row("midnight am", 0, "h:mm AM/PM", "12:00 AM");
    row("one minute", 0.000694444444444444, "h:mm", "0:01");
    row("elapsed hours", 1.5, "[h]:mm:ss", "36:00:00");
    row("elapsed minutes", 0.0625, "[mm]:ss", "90:00");
    row("elapsed seconds", 0.001, "[ss]", "86");
    row("rounds into next day", 0.99999999, "h:mm:ss", "0:00:00");
    row("rounds into 24 hours", 0.99999999, "[h]:mm:ss", "24:00:00");
    row("minutes not rounded", 0.99999, "h:mm", "23:59");
    row("seconds rounded", 0.5 + 0.6 / 86400, "h:mm:ss", "12:00:01");
    row("tenths kept", 0.5 + 0.6 / 86400, "h:mm:ss.0", "12:00:00.6");
    row("hundredths", 1.0 / 86400, "mm:ss.00", "00:01.00");
    row("serial 1", 1, "yyyy-mm-dd", "1900-01-01");
    row("serial 59", 59, "yyyy-mm-dd", "1900-02-28");
    row("leap day 1900", 60, "yyyy-mm-dd", "1900-02-29");
    row("serial 61", 61, "yyyy-mm-dd", "1900-03-01");
    row("day zero", 0, "yyyy-mm-dd", "1900-01-00");
    row("serial 1 is a Sunday", 1, "dddd", "Sunday");
    row("serial 61 is a Thursday", 61, "dddd", "Thursday");
    row("last date", 2958465, "yyyy-mm-dd", "9999-12-31");
    row("after last date", 2958466, "yyyy-mm-dd", "2958466");
    row("negative date", -1, "yyyy-mm-dd", "-1");
    row("1904 start", 0, "yyyy-mm-dd", "1904-01-01", true);
    row("1904 weekday", 0, "dddd", "Friday", true);
    row("1904 later", 42369, "yyyy-mm-dd", "2020-01-01", true);
}

void TestExcelNumberFormat::format()
{
    QFETCH(double, value);
    QFETCH(QString, code);
    QFETCH(bool, date1904);
    QFETCH(QString, expected);
    ExcelNumberFormat formatter(m_us, date1904);
    QCOMPARE(formatter.format(value, code), expected);
}

void TestExcelNumberFormat::builtIn_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("0 general") << 0 << 1.5 << "1.5";
    QTest::newRow("3 thousands") << 3 << 1234.5 << "1,235";
    QTest::newRow("5 currency negative") << 5 << -1234.0 << "($1,234)";
    QTest::newRow("7 currency positive") << 7 << 1234.5 << "$1,234.50 ";
    QTest::newRow("10 percent") << 10 << 0.5 << "50.00%";
    QTest::newRow("11 scientific") << 11 << 12345.0 << "1.23E+04";
    QTest::newRow("12 fraction") << 12 << 0.5 << " 1/2";
    QTest::newRow("14 short date") << 14 << 43831.0 << "1/1/2020";
    QTest::newRow("15") << 15 << 43831.0 << "1-Jan-20";
    QTest::newRow("17") << 17 << 43831.0 << "Jan-20";
    QTest::newRow("19") << 19 << 0.75 << "6:00:00 PM";
    QTest::newRow("22 date and time") << 22 << 43831.5 << "1/1/2020 12:00";
    QTest::newRow("27 East Asian date") << 27 << 43831.0 << "1/1/2020";
    QTest::newRow("37 positive") << 37 << 1234.0 << "1,234 ";
    QTest::newRow("37 negative") << 37 << -1234.0 << "(1,234)";
    QTest::newRow("41 zero") << 41 << 0.0 << " - ";
    QTest::newRow("44 accounting") << 44 << 1234.5 << " $1,234.50 ";
    QTest::newRow("45") << 45 << 0.0625 << "30:00";
    QTest::newRow("46") << 46 << 1.5 << "36:00:00";
    QTest::newRow("47") << 47 << (61.5 / 86400) << "0101.5";
    QTest::newRow("48") << 48 << 12345.0 << "12.3E+3";
    QTest::newRow("49 text") << 49 << 5.0 << "5";
    QTest::newRow("unknown id") << 100 << 1.5 << "1.5";
}

void TestExcelNumberFormat::builtIn()
{
    QFETCH(int, id);
    QFETCH(double, value);
    QFETCH(QString, expected);
    ExcelNumberFormat formatter(m_us);
    QCOMPARE(formatter.format(value, ExcelNumberFormat::builtInCode(id, m_us)), expected);
    QCOMPARE(formatter.fallbackCount(), 0);
}

void TestExcelNumberFormat::otherLocale_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("general decimal comma") << 1.5 << "General"
                                           << "1,5";
    QTest::newRow("thousands") << 1234.5 << "#,##0.00"
                               << "1.234,50";
    QTest::newRow("short date") << 43831.0
                                << ExcelNumberFormat::builtInCode(
                                       14, QLocale(QLocale::German, QLocale::Germany))
                                << "01.01.2020";
    QTest::newRow("fraction of second") << (1.5 / 86400) << "ss.0"
                                        << "01,5";
}

void TestExcelNumberFormat::otherLocale()
{
    QFETCH(double, value);
    QFETCH(QString, code);
    QFETCH(QString, expected);
    ExcelNumberFormat formatter(QLocale(QLocale::German, QLocale::Germany));
    QCOMPARE(formatter.format(value, code), expected);
}

void TestExcelNumberFormat::text_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text format") << "@"
                                 << "abc";
    QTest::newRow("fourth section") << "0;0;0;\"<\"@\">\""
                                    << "<abc>";
    QTest::newRow("number format leaves text") << "0.00"
                                               << "abc";
    QTest::newRow("single text section") << "\"Name: \"@"
                                         << "Name: abc";
    QTest::newRow("accounting text") << "_(* #,##0_);_(* \\(#,##0\\);_(* \"-\"_);_(@_)"
                                     << " abc ";
    QTest::newRow("unparsable code") << "\"open"
                                     << "abc";
}

void TestExcelNumberFormat::text()
{
    QFETCH(QString, code);
    QFETCH(QString, expected);
    ExcelNumberFormat formatter(m_us);
    QCOMPARE(formatter.formatText(QStringLiteral("abc"), code), expected);
}

void TestExcelNumberFormat::fallback_data()
{
    QTest::addColumn<QStringList>("codes");
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("fallbacks");
    QTest::newRow("five sections") << QStringList {"0;0;0;@;0"} << QList<double> {2.5} << QStringList {"2.5"}
                                   << 1;
    QTest::newRow("open quote") << QStringList {"0\"x"} << QList<double> {2.5} << QStringList {"2.5"} << 1;
    QTest::newRow("open bracket") << QStringList {"[Red0"} << QList<double> {2.5} << QStringList {"2.5"} << 1;
    QTest::newRow("date mixed with digits")
        << QStringList {"yyyy 0.0#"} << QList<double> {2.5} << QStringList {"2.5"} << 1;
    QTest::newRow("no section matches")
        << QStringList {"[>100]0;[<-100]0"} << QList<double> {5} << QStringList {"5"} << 1;
    QTest::newRow("counted per cell") << QStringList {"0\"x", "0\"x", "0.0"} << QList<double> {1, 2, 3}
                                      << QStringList {"1", "2", "3.0"} << 2;
    QTest::newRow("dates out of range") << QStringList {"d/m/yyyy", "d/m/yyyy"} << QList<double> {-2, 3e6}
                                        << QStringList {"-2", "3000000"} << 2;
}

void TestExcelNumberFormat::fallback()
{
    QFETCH(QStringList, codes);
    QFETCH(QList<double>, values);
    QFETCH(QStringList, expected);
    QFETCH(int, fallbacks);
    ExcelNumberFormat formatter(m_us);
    for (int i = 0; i < codes.size(); ++i)
        QCOMPARE(formatter.format(values.at(i), codes.at(i)), expected.at(i));
    QCOMPARE(formatter.fallbackCount(), fallbacks);
    QCOMPARE(formatter.fallbackMessage(),
        QStringLiteral("%1 cell(s) used number formats that could not be shown as in Excel and were read "
                       "with the General format")
            .arg(fallbacks));
}

void TestExcelNumberFormat::toExcelCode_data()
{
    QTest::addColumn<QString>("dateFormat");
    QTest::addColumn<QString>("expected");
    QTest::newRow("day first") << "d/M/yyyy"
                               << "d\"/\"m\"/\"yyyy";
    QTest::newRow("dotted short year") << "dd.MM.yy"
                                       << "dd\".\"mm\".\"yy";
    QTest::newRow("iso") << "yyyy-MM-dd"
                         << "yyyy\"-\"mm\"-\"dd";
    QTest::newRow("names") << "dddd d MMMM yyyy"
                           << "dddd d mmmm yyyy";
    QTest::newRow("short names") << "ddd, MMM d"
                                 << "ddd\",\" mmm d";
    QTest::newRow("time with seconds") << "h:m:s"
                                       << "h:mm:ss";
    QTest::newRow("time") << "h:m"
                          << "h:mm";
    QTest::newRow("milliseconds") << "HH:mm:ss.zzz"
                                  << "hh:mm:ss.000";
    QTest::newRow("am pm") << "h:mm AP"
                           << "h:mm AM/PM";
    QTest::newRow("quoted text") << "d 'de' MMMM"
                                 << "d \"de\" mmmm";
    QTest::newRow("escaped quote") << "d''M"
                                   << "d\"'\"m";
    QTest::newRow("double quote") << "d\"M"
                                  << "d\\\"m";
}

void TestExcelNumberFormat::toExcelCode()
{
    QFETCH(QString, dateFormat);
    QFETCH(QString, expected);
    const QString code = ExcelNumberFormat::excelCodeFromDateFormat(dateFormat);
    QCOMPARE(code, expected);
    // Excel shows the code as Qt shows the format (padding aside for times).
    if (!dateFormat.contains(QLatin1Char('h')) && !dateFormat.contains(QLatin1Char('H'))) {
        const QDateTime when(QDate(2020, 1, 5), QTime(10, 7, 3));
        ExcelNumberFormat formatter(m_us);
        QCOMPARE(formatter.format(ExcelNumberFormat::serialFromDateTime(when), code),
            m_us.toString(when, dateFormat));
    }
}

void TestExcelNumberFormat::toDateFormat_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("day first") << "dd/mm/yyyy"
                               << "dd/MM/yyyy";
    QTest::newRow("date and time") << "m/d/yy h:mm"
                                   << "M/d/yy h:mm";
    QTest::newRow("milliseconds") << "yyyy-mm-dd hh:mm:ss.000"
                                  << "yyyy-MM-dd hh:mm:ss.zzz";
    QTest::newRow("locale tag") << "[$-409]mmmm d, yyyy"
                                << "MMMM d, yyyy";
    QTest::newRow("am pm") << "h:mm AM/PM"
                           << "h:mm AP";
    QTest::newRow("quoted word") << "d \"de\" mmmm"
                                 << "d 'de' MMMM";
    QTest::newRow("round trip") << "d\"/\"m\"/\"yyyy"
                                << "d/M/yyyy";
    QTest::newRow("not a date") << "0.00"
                                << "";
    QTest::newRow("general") << "General"
                             << "";
}

void TestExcelNumberFormat::toDateFormat()
{
    QFETCH(QString, code);
    QFETCH(QString, expected);
    QCOMPARE(ExcelNumberFormat::dateFormatFromExcelCode(code), expected);
    QCOMPARE(ExcelNumberFormat::isDateCode(code), !expected.isEmpty());
}

void TestExcelNumberFormat::serials_data()
{
    QTest::addColumn<QDateTime>("dateTime");
    QTest::addColumn<bool>("date1904");
    QTest::addColumn<double>("serial");
    QTest::newRow("2020") << QDateTime(QDate(2020, 1, 1), QTime(0, 0)) << false << 43831.0;
    QTest::newRow("noon") << QDateTime(QDate(2020, 1, 1), QTime(12, 0)) << false << 43831.5;
    QTest::newRow("first day") << QDateTime(QDate(1900, 1, 1), QTime(0, 0)) << false << 1.0;
    QTest::newRow("before the leap day") << QDateTime(QDate(1900, 2, 28), QTime(0, 0)) << false << 59.0;
    QTest::newRow("after the leap day") << QDateTime(QDate(1900, 3, 1), QTime(0, 0)) << false << 61.0;
    QTest::newRow("1904 start") << QDateTime(QDate(1904, 1, 1), QTime(0, 0)) << true << 0.0;
    QTest::newRow("1904 2020") << QDateTime(QDate(2020, 1, 1), QTime(6, 0)) << true << 42369.25;
}

void TestExcelNumberFormat::serials()
{
    QFETCH(QDateTime, dateTime);
    QFETCH(bool, date1904);
    QFETCH(double, serial);
    QCOMPARE(ExcelNumberFormat::serialFromDateTime(dateTime, date1904), serial);
    bool ok = false;
    QCOMPARE(ExcelNumberFormat::dateTimeFromSerial(serial, date1904, &ok), dateTime);
    QVERIFY(ok);
    ExcelNumberFormat::dateTimeFromSerial(60, false, &ok);
    QVERIFY2(!ok, "Excel's 29 February 1900 is no real date");
    ExcelNumberFormat::dateTimeFromSerial(-1, date1904, &ok);
    QVERIFY(!ok);
}

QTEST_APPLESS_MAIN(TestExcelNumberFormat)
#include "tst_excelnumberformat.moc"
