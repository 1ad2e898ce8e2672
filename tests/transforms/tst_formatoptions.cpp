#include "transforms/transformcase.h"
#include "transforms/transformchop.h"
#include "transforms/transformdateformat.h"
#include "transforms/transformdecode.h"
#include "transforms/transformextract.h"
#include "transforms/transformfilldown.h"
#include "transforms/transforminsert.h"
#include "transforms/transformnumbase.h"
#include "transforms/transformnumberformat.h"
#include "transforms/transformpad.h"
#include "transforms/transformreplacemulti.h"
#include "transforms/transformscale.h"
#include "transforms/transformslide.h"
#include "transforms/transformunfill.h"
#include "transforms/transformwhitespace.h"

#include <QLocale>
#include <QtTest>

#include <memory>

namespace {

// A fresh transform of the given id with its options built from their defaults.
std::unique_ptr<Transform> make(const QString &id)
{
    const QList<Transform *> all {new TransformCase, new TransformChop, new TransformDateFormat,
        new TransformDecode, new TransformExtract, new TransformFillDown, new TransformInsert,
        new TransformNumBase, new TransformNumberFormat, new TransformPad, new TransformReplaceMulti,
        new TransformScale, new TransformSlide, new TransformUnfill, new TransformWhitespace};
    std::unique_ptr<Transform> found;
    for (Transform *transform : all) {
        if (!found && transform->id() == id)
            found.reset(transform);
        else
            delete transform;
    }
    if (found)
        found->createParameters({}, false);
    return found;
}

// "Name=value|Name=value": a Bool takes 1 or 0, every other option its text.
bool setValues(Transform *transform, const QString &values)
{
    for (const QString &assignment : values.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        Parameter *parameter = transform->parameter(assignment.section(QLatin1Char('='), 0, 0));
        const QString value = assignment.section(QLatin1Char('='), 1);
        if (!parameter)
            return false;
        if (parameter->kind() == ParameterKind::Bool) {
            parameter->setValue(value == QLatin1String("1"));
        } else {
            // A choice that isn't offered would leave the test silently on the default.
            if (parameter->kind() == ParameterKind::Selection
                && !parameter->selectionOptions().contains(value))
                return false;
            parameter->setValue(value);
        }
    }
    return true;
}

} // namespace

class TestFormatOptions : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void defaults_data();
    void defaults();
    void parameterStates_data();
    void parameterStates();
    void unsetOptions_data();
    void unsetOptions();
};

void TestFormatOptions::initTestCase()
{
    // Locale options start on the default locale; en-GB keeps its region in its name.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
}

// Options in display order, each as name=text form (items decoded), so a renamed,
// reordered or re-defaulted option shows.
void TestFormatOptions::defaults_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Case") << "Case"
                          << "Columns=|Case=lower case";
    QTest::newRow("Chop") << "Chop"
                          << "Columns=|Mode=Remove from end|Characters=1";
    QTest::newRow("DateTime Format")
        << "Date_Format"
        << "Columns=|Input_Format=Automatic|Input_Custom=d/M/yyyy|Two_Digit_Years=1950|Output_Format=Custom"
           "|Output_Custom=yyyy-MM-dd|Locale=en-GB|If_Invalid=Leave unchanged";
    QTest::newRow("Decode") << "Decode"
                            << "Columns=|Direction=Decode|Encoding=URL percent";
    QTest::newRow("Extract") << "Extract"
                             << "Columns=|Extract=Number|Regex=|Start_Text=|End_Text=|Occurrence=First"
                                "|Separator=, |Case_Sensitive=0|If_Not_Found=Make empty";
    QTest::newRow("Fill") << "Fill"
                          << "Columns=|Fill_From=Value above|Fixed_Value=|Blank_Whitespace=0|Limit=0";
    QTest::newRow("Insert") << "Insert"
                            << "Columns=|Text=|Where=At start|Position=1|From_End=0|Skip_Empty=1";
    QTest::newRow("Num Base")
        << "Num_Base"
        << "Columns=|From_Base=10|To_Base=16|Upper_Case=1|Add_Prefix=0|Minimum_Digits=0";
    QTest::newRow("Num Format")
        << "Num_Format"
        << "Columns=|Notation=Fixed decimal places|Decimal_Places=2|Significant_Figures=3"
           "|Group_Separators=1|Negative=Minus sign|Prefix=|Suffix=|Input_Locale=en-GB"
           "|Output_Locale=en-GB";
    QTest::newRow("Pad") << "Pad"
                         << "Columns=|Length=5|Pad_Character=0|Side=Left|Skip_Empty=1";
    QTest::newRow("Replace") << "Replace_Multi"
                             << "Columns=|Terms=|Case_Sensitive=0";
    QTest::newRow("Scale") << "Scale"
                           << "Columns=|Method=Range|New_Minimum=0|New_Maximum=1|Factor=1|Decimal_Places=-1";
    QTest::newRow("Slide") << "Slide"
                           << "Columns=|Direction=Left|Blank_Whitespace=0";
    QTest::newRow("Unfill") << "Unfill"
                            << "Columns=|Case_Sensitive=1|Hierarchical=1";
    QTest::newRow("Whitespace") << "Whitespace"
                                << "Columns=|Trim_Leading=1|Trim_Trailing=1|Collapse=1|Convert=1|Remove_All=0"
                                   "|Remove_Invisible=0";
}

void TestFormatOptions::defaults()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(transform->hasUniqueParameterNames());
    QStringList options;
    for (const Parameter *parameter : transform->parameterList())
        options << parameter->name() + QLatin1Char('=') + Parameter::decodeItem(parameter->toText());
    QCOMPARE(options.join(QLatin1Char('|')), expected);
}

// The options that don't apply for the given values, in display order.
void TestFormatOptions::parameterStates_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("disabled");

    QTest::newRow("date: automatic to custom") << "Date_Format"
                                               << ""
                                               << "Input_Custom";
    QTest::newRow("date: custom to custom") << "Date_Format"
                                            << "Input_Format=Custom"
                                            << "";
    QTest::newRow("date: ISO to ISO") << "Date_Format"
                                      << "Input_Format=ISO 8601|Output_Format=ISO 8601 date"
                                      << "Input_Custom,Two_Digit_Years,Output_Custom,Locale";
    QTest::newRow("date: Unix to long date") << "Date_Format"
                                             << "Input_Format=Unix seconds|Output_Format=Long date"
                                             << "Input_Custom,Two_Digit_Years,Output_Custom";
    QTest::newRow("date: Excel to short date-time")
        << "Date_Format"
        << "Input_Format=Excel serial number|Output_Format=Short date-time"
        << "Input_Custom,Two_Digit_Years,Output_Custom";
    QTest::newRow("date: automatic to Unix") << "Date_Format"
                                             << "Output_Format=Unix milliseconds"
                                             << "Input_Custom,Output_Custom,Locale";
    QTest::newRow("date: custom to Excel") << "Date_Format"
                                           << "Input_Format=Custom|Output_Format=Excel serial number"
                                           << "Output_Custom";

    QTest::newRow("extract: number") << "Extract"
                                     << ""
                                     << "Regex,Start_Text,End_Text,Separator,Case_Sensitive";
    QTest::newRow("extract: regex, all") << "Extract"
                                         << "Extract=Regex match|Occurrence=All"
                                         << "Start_Text,End_Text";
    QTest::newRow("extract: text before") << "Extract"
                                          << "Extract=Text before"
                                          << "Regex,End_Text,Separator";
    QTest::newRow("extract: text after, last") << "Extract"
                                               << "Extract=Text after|Occurrence=Last"
                                               << "Regex,End_Text,Separator";
    QTest::newRow("extract: text between") << "Extract"
                                           << "Extract=Text between"
                                           << "Regex,Separator";
    QTest::newRow("extract: web address, all") << "Extract"
                                               << "Extract=Web address|Occurrence=All"
                                               << "Regex,Start_Text,End_Text,Case_Sensitive";

    QTest::newRow("fill: above") << "Fill"
                                 << ""
                                 << "Fixed_Value";
    QTest::newRow("fill: below") << "Fill"
                                 << "Fill_From=Value below"
                                 << "Fixed_Value";
    QTest::newRow("fill: fixed") << "Fill"
                                 << "Fill_From=Fixed value"
                                 << "Limit";

    QTest::newRow("insert: at start") << "Insert"
                                      << ""
                                      << "Position,From_End";
    QTest::newRow("insert: at end") << "Insert"
                                    << "Where=At end"
                                    << "Position,From_End";
    QTest::newRow("insert: at position") << "Insert"
                                         << "Where=At position"
                                         << "";

    QTest::newRow("num format: fixed") << "Num_Format"
                                       << ""
                                       << "Significant_Figures";
    QTest::newRow("num format: significant") << "Num_Format"
                                             << "Notation=Significant figures"
                                             << "Decimal_Places";
    QTest::newRow("num format: scientific") << "Num_Format"
                                            << "Notation=Scientific"
                                            << "Significant_Figures,Group_Separators";
    QTest::newRow("num format: percentage") << "Num_Format"
                                            << "Notation=Percentage"
                                            << "Significant_Figures";

    QTest::newRow("scale: range") << "Scale"
                                  << ""
                                  << "Factor";
    QTest::newRow("scale: z-score") << "Scale"
                                    << "Method=Z-score"
                                    << "New_Minimum,New_Maximum,Factor";
    QTest::newRow("scale: fraction") << "Scale"
                                     << "Method=Fraction of total"
                                     << "New_Minimum,New_Maximum,Factor";
    QTest::newRow("scale: factor") << "Scale"
                                   << "Method=Factor"
                                   << "New_Minimum,New_Maximum";

    QTest::newRow("whitespace: defaults") << "Whitespace"
                                          << ""
                                          << "";
    QTest::newRow("whitespace: remove all") << "Whitespace"
                                            << "Remove_All=1|Remove_Invisible=1"
                                            << "Trim_Leading,Trim_Trailing,Collapse,Convert";

    QTest::newRow("case: none") << "Case"
                                << "Case=Title Case"
                                << "";
    QTest::newRow("replace: none") << "Replace_Multi"
                                   << "Case_Sensitive=1"
                                   << "";
}

void TestFormatOptions::parameterStates()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, disabled);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));

    QStringList off;
    QStringList stated;
    for (const auto &state : transform->parameterStates()) {
        QVERIFY2(transform->parameter(state.first), qPrintable(state.first));
        QVERIFY2(!stated.contains(state.first), qPrintable(state.first));
        stated << state.first;
        if (!state.second)
            off << state.first;
    }
    QCOMPARE(off.join(QLatin1Char(',')), disabled);
}

// The warning for unset options: options that don't apply are never asked for, and
// texts that may be empty never are either.
void TestFormatOptions::unsetOptions_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("warning");

    const QString columnsOnly = QStringLiteral("1 option not set ('Columns')");
    QTest::newRow("extract: empty delimiters off") << "Extract"
                                                   << "Occurrence=All|Separator=" << columnsOnly;
    QTest::newRow("extract: regex wanted") << "Extract"
                                           << "Extract=Regex match"
                                           << "2 options not set ('Columns','Regex')";
    QTest::newRow("extract: between wants both") << "Extract"
                                                 << "Extract=Text between"
                                                 << "3 options not set ('Columns','Start text','End text')";
    QTest::newRow("date: custom emptied") << "Date_Format"
                                          << "Input_Format=Custom|Input_Custom="
                                          << "2 options not set ('Columns','Custom input format')";
    QTest::newRow("date: unused custom emptied")
        << "Date_Format"
        << "Input_Custom=|Output_Format=ISO 8601 date|Output_Custom=" << columnsOnly;
    QTest::newRow("fill: fixed value wanted") << "Fill"
                                              << "Fill_From=Fixed value"
                                              << "2 options not set ('Columns','Fixed value')";
    QTest::newRow("fill: above") << "Fill"
                                 << "" << columnsOnly;
    QTest::newRow("insert: text wanted") << "Insert"
                                         << ""
                                         << "2 options not set ('Columns','Text')";
    QTest::newRow("num format: no prefix or suffix") << "Num_Format"
                                                     << "" << columnsOnly;
    QTest::newRow("scale: factor emptied") << "Scale"
                                           << "Method=Factor|Factor="
                                           << "2 options not set ('Columns','Factor')";
    QTest::newRow("scale: unused factor emptied") << "Scale"
                                                  << "Factor=" << columnsOnly;
    QTest::newRow("replace: terms wanted") << "Replace_Multi"
                                           << ""
                                           << "2 options not set ('Columns','Replace')";
}

void TestFormatOptions::unsetOptions()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, warning);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));
    transform->clearMessages();
    transform->checkParameters();
    QCOMPARE(transform->warnings().join(QLatin1Char('\n')), warning);
}

QTEST_MAIN(TestFormatOptions)
#include "tst_formatoptions.moc"
