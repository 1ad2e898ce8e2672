#include "testutil.h"

#include "flow/node.h"
#include "transforms/transformjavascript.h"

#include <QJSEngine>
#include <QLocale>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <memory>

namespace {

// An item that holds whatever dataset a test gives it.
class DataNode : public Node
{
public:
    explicit DataNode(const Dataset &dataset = Dataset()) { setDataset(dataset); }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

struct Outcome
{
    Dataset output;
    QStringList warnings;
    QStringList information;
    QString result;
};

// Runs the transform once over the table; the transform may be given to run it again.
Outcome run(TransformJavascript &transform, DataNode &node, const QString &script,
    const QString &typeAs = QStringLiteral("Number/Boolean/String"))
{
    if (transform.parameterList().isEmpty())
        transform.createParameters({&node}, false);
    transform.parameter(QStringLiteral("Script"))->setValue(script);
    transform.parameter(QStringLiteral("Type_As"))->setValue(typeAs);
    transform.clearMessages();
    bool failed = false;
    Outcome outcome;
    outcome.output = transform.process({&node}, failed);
    outcome.warnings = transform.warnings();
    outcome.information = transform.information();
    outcome.result = transform.result();
    return outcome;
}

QStringList newColumn(const Dataset &dataset)
{
    return dataset.columnValues(dataset.lastColumn());
}

} // namespace

class TestJavascript : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void values_data();
    void values();
    void numberText_data();
    void numberText();
    void numberTextMatchesEngine();
    void errors_data();
    void errors();
    void sameAsCallingPerRow();
    void ambiguousNames();
    void engineKeptBetweenRuns();
    void newColumnName_data();
    void newColumnName();
    void batches();
    void wrongInputs();
};

// Columns are typed from their first 100 rows; cells reach the script in that type.
void TestJavascript::values_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("typeAs");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QStringList>("notes");

    const QString typed = QStringLiteral("Number/Boolean/String");
    const QString strings = QStringLiteral("String");
    auto note = [](const QString &header, const QString &type) {
        return QStringLiteral("Column '%1' passed as Javascript %2 type").arg(header, type);
    };
    QTest::newRow("numbers add") << "a,b\n1,2\n3, 4.5"
                                 << "return $(a) + $(b);" << typed << QStringList {"3", "7.5"}
                                 << QStringList {note("a", "Number"), note("b", "Number")};
    QTest::newRow("all as strings") << "a,b\n1,2\n3,4"
                                    << "return $(a) + $(b);" << strings << QStringList {"12", "34"}
                                    << QStringList {note("a", "String"), note("b", "String")};
    QTest::newRow("text and number") << "a,b\nx,1\ny,2"
                                     << "return $(a) + $(b);" << typed << QStringList {"x1", "y2"}
                                     << QStringList {note("a", "String"), note("b", "Number")};
    QTest::newRow("booleans") << "flag\ntrue\n false "
                              << "return !$(flag);" << typed << QStringList {"false", "true"}
                              << QStringList {note("flag", "Boolean")};
    QTest::newRow("ones and zeros are numbers")
        << "flag\n1\n0"
        << "return typeof $(flag);" << typed << QStringList {"number", "number"}
        << QStringList {note("flag", "Number")};
    QTest::newRow("nan among numbers")
        << "a\nnan\n2"
        << "return $(a) * 2;" << typed << QStringList {"NaN", "4"} << QStringList {note("a", "Number")};
    QTest::newRow("currency is text") << "a\n$5\n6"
                                      << "return typeof $(a);" << typed << QStringList {"string", "string"}
                                      << QStringList {note("a", "String")};
    QTest::newRow("yes is text") << "a\nyes\nno"
                                 << "return typeof $(a);" << typed << QStringList {"string", "string"}
                                 << QStringList {note("a", "String")};
    QTest::newRow("blank column is text")
        << "a,b\n,1\n,2"
        << "return typeof $(a);" << typed << QStringList {"string", "string"}
        << QStringList {note("a", "String")};
    QTest::newRow("header as it stands")
        << " a ,b\n1,2"
        << "return $(a);" << typed << QStringList {"1"} << QStringList {note(" a ", "Number")};
    QTest::newRow("by number") << "a,b\n1,x\n2,y"
                               << "return $(2) + $(1);" << typed << QStringList {"x1", "y2"}
                               << QStringList {note("a", "Number"), note("b", "String")};
    QTest::newRow("names before numbers in the argument list")
        << "a,b\n1,x"
        << "return $(1) + $(b);" << typed << QStringList {"1x"}
        << QStringList {note("b", "String"), note("a", "Number")};
    QTest::newRow("same column by name and number")
        << "a,b\n5,x"
        << "return $(a) * $(1);" << typed << QStringList {"25"} << QStringList {note("a", "Number")};
    QTest::newRow("header 3 wins over the third column")
        << "x,3,y\n1,2,z"
        << "return $(3);" << typed << QStringList {"2"} << QStringList {note("3", "Number")};
    QTest::newRow("no reference") << "a\n1\n2"
                                  << "return 6 * 7;" << typed << QStringList {"42", "42"} << QStringList();
    QTest::newRow("null") << "a\n1"
                          << "return null;" << typed << QStringList {"null"} << QStringList();
    QTest::newRow("undefined") << "a\n1"
                               << "var x = 1;" << typed << QStringList {"undefined"} << QStringList();
    QTest::newRow("object") << "a\n1"
                            << "return {a: 1};" << typed << QStringList {"[object Object]"} << QStringList();
    QTest::newRow("array") << "a\n1"
                           << "return [1, 'b'];" << typed << QStringList {"1,b"} << QStringList();
    QTest::newRow("object with its own text")
        << "a\n1"
        << "return {toString: function () { return 'mine'; }, valueOf: function () { return 5; }};" << typed
        << QStringList {"mine"} << QStringList();
    QTest::newRow("unicode text") << "a\nd\u00e9j\u00e0"
                                  << "return $(a) + ' \u20ac\U0001F600';" << typed
                                  << QStringList {"d\u00e9j\u00e0 \u20ac\U0001F600"}
                                  << QStringList {note("a", "String")};
    QTest::newRow("multi-line script") << "a\n2"
                                       << "var x = $(a);\nvar y = x * x;\nreturn y;" << typed
                                       << QStringList {"4"} << QStringList {note("a", "Number")};
    QTest::newRow("no rows") << "a"
                             << "return 1;" << typed << QStringList() << QStringList();
}

void TestJavascript::values()
{
    QFETCH(QString, table);
    QFETCH(QString, script);
    QFETCH(QString, typeAs);
    QFETCH(QStringList, cells);
    QFETCH(QStringList, notes);

    const Dataset input = testutil::toDataset(table, true);
    DataNode node(input);
    TransformJavascript transform;
    const Outcome outcome = run(transform, node, script, typeAs);
    QCOMPARE(newColumn(outcome.output), cells);
    QCOMPARE(outcome.information, notes);
    QCOMPARE(outcome.warnings, QStringList());
    QCOMPARE(outcome.output.columnCount(), input.columnCount() + 1);
    QCOMPARE(outcome.output.headerText(outcome.output.lastColumn()), QStringLiteral("Javascript"));
    QCOMPARE(outcome.result, QStringLiteral("%1 evaluated, 0 Javascript errors").arg(cells.size()));
    // The input's own cells pass unchanged.
    for (int r = 0; r < input.rowCount(); ++r)
        QCOMPARE(outcome.output.row(r).mid(0, input.columnCount()), input.row(r));
}

void TestJavascript::numberText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("negative zero") << -0.0 << "0";
    QTest::newRow("integer") << 42.0 << "42";
    QTest::newRow("negative") << -1.5 << "-1.5";
    QTest::newRow("shortest digits") << 0.1 + 0.2 << "0.30000000000000004";
    QTest::newRow("21 digits plain") << 1e20 << "100000000000000000000";
    QTest::newRow("22 digits exponent") << 1e21 << "1e+21";
    QTest::newRow("six zeros plain") << 0.000001 << "0.000001";
    QTest::newRow("seven zeros exponent") << 0.0000001 << "1e-7";
    QTest::newRow("exponent with fraction") << -1.25e-10 << "-1.25e-10";
    QTest::newRow("largest") << 1.7976931348623157e308 << "1.7976931348623157e+308";
    QTest::newRow("smallest") << 5e-324 << "5e-324";
    QTest::newRow("not a number") << qQNaN() << "NaN";
    QTest::newRow("infinity") << qInf() << "Infinity";
    QTest::newRow("minus infinity") << -qInf() << "-Infinity";
}

void TestJavascript::numberText()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(TransformJavascript::scriptNumberText(value), text);
}

// Numbers a script returns read as the engine itself would write them.
void TestJavascript::numberTextMatchesEngine()
{
    QJSEngine engine;
    QJSValue toText = engine.evaluate(QStringLiteral("(function (x) { return String(x); })"));
    QRandomGenerator random(7);
    for (int i = 0; i < 20000; ++i) {
        double value = 0;
        switch (i % 4) {
        case 0: { // any bit pattern
            const quint64 bits = random.generate64();
            std::memcpy(&value, &bits, sizeof value);
            break;
        }
        case 1:
            value = random.bounded(1000000) / 100.0;
            break;
        case 2:
            value = std::ldexp(random.generateDouble(), int(random.bounded(200)) - 100);
            break;
        default:
            value = double(qint64(random.generate64()) >> int(random.bounded(64)));
            break;
        }
        const QString expected = toText.call({QJSValue(value)}).toString();
        QCOMPARE(TransformJavascript::scriptNumberText(value), expected);
    }
}

// What a script that fails tells, and what its cells show.
void TestJavascript::errors_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QString>("result");

    const QString eightRows = QStringLiteral("a\n1\n2\n3\n4\n5\n6\n7\n8");
    QStringList everyRow;
    QStringList everyRowWarnings {QStringLiteral("8 Javascript error(s)")};
    for (int r = 1; r <= 8; ++r) {
        everyRow << QStringLiteral("Error: boom");
        if (r <= 5)
            everyRowWarnings << QStringLiteral("Error: boom at script line 2 for dataset row %1").arg(r);
    }
    everyRowWarnings << QStringLiteral("...");
    QTest::newRow("throws on every row") << eightRows << "var x = $(a);\nthrow new Error('boom');" << everyRow
                                         << everyRowWarnings << "0 evaluated, 8 Javascript errors";

    QTest::newRow("throws on some rows")
        << "a\n1\n5\n2\n9"
        << "if ($(a) > 3)\n  throw new RangeError('too big: ' + $(a));\nreturn $(a);"
        << QStringList {"1", "RangeError: too big: 5", "2", "RangeError: too big: 9"}
        << QStringList {"2 Javascript error(s)", "RangeError: too big: 5 at script line 2 for dataset row 2",
               "RangeError: too big: 9 at script line 2 for dataset row 4"}
        << "2 evaluated, 2 Javascript errors";
    QTest::newRow("unknown variable")
        << "a\n1"
        << "var x = 1;\n\nreturn nothing + x;" << QStringList {"ReferenceError: nothing is not defined"}
        << QStringList {"1 Javascript error(s)",
               "ReferenceError: nothing is not defined at script line 3 for dataset row 1"}
        << "0 evaluated, 1 Javascript errors";
    QTest::newRow("thrown text is a value")
        << "a\n1"
        << "throw 'oops';" << QStringList {"oops"} << QStringList() << "1 evaluated, 0 Javascript errors";
    QTest::newRow("returned error counts")
        << "a\n1"
        << "return new TypeError('made');" << QStringList {"TypeError: made"}
        << QStringList {"1 Javascript error(s)", "TypeError: made at script line 1 for dataset row 1"}
        << "0 evaluated, 1 Javascript errors";
    QTest::newRow("syntax error") << "a\n1\n2\n3"
                                  << "return $(a) * ;" << QStringList {"undefined", "undefined", "undefined"}
                                  << QStringList() << "3 evaluated, 0 Javascript errors";
    // An unknown reference stays as it stands: "$(b)" calls a function "$" that doesn't
    // exist, and "$(no such)" doesn't compile.
    QTest::newRow("unknown name stays in the text")
        << "a\n1\n2"
        << "return $(b);"
        << QStringList {"ReferenceError: b is not defined", "ReferenceError: b is not defined"}
        << QStringList {"2 Javascript error(s)",
               "ReferenceError: b is not defined at script line 1 for dataset row 1",
               "ReferenceError: b is not defined at script line 1 for dataset row 2"}
        << "0 evaluated, 2 Javascript errors";
    QTest::newRow("unknown name with a blank")
        << "a\n1\n2"
        << "return $(no such);" << QStringList {"undefined", "undefined"} << QStringList()
        << "2 evaluated, 0 Javascript errors";
    QTest::newRow("stack overflow is an error")
        << "a\n1"
        << "function f(n) { return f(n + 1) + 1; }\nreturn f(0);"
        << QStringList {"RangeError: Maximum call stack size exceeded."}
        << QStringList {"1 Javascript error(s)",
               "RangeError: Maximum call stack size exceeded. at script line 0 for dataset row 1"}
        << "0 evaluated, 1 Javascript errors";

    // A column typed Number still fails on its empty cell, and one typed Boolean on "TRUE".
    QTest::newRow("empty cell in a number column")
        << "a\n1\n\n3"
        << "return $(a) === undefined ? 'none' : $(a);" << QStringList {"1", "none", "3"}
        << QStringList {"1 type error(s):", "Cannot convert value '' in column 'a' row 2 to Number"}
        << "3 evaluated, 0 Javascript errors";
    QTest::newRow("upper-case boolean")
        << "flag\nTRUE\nfalse"
        << "return String($(flag));" << QStringList {"undefined", "false"}
        << QStringList {"1 type error(s):", "Cannot convert value 'TRUE' in column 'flag' row 1 to Boolean"}
        << "2 evaluated, 0 Javascript errors";
    QTest::newRow("type errors in reading order")
        << "a,b\n1,true\n,TRUE\n,FALSE"
        << "var x = [$(a), $(b)];\nreturn 0;" << QStringList {"0", "0", "0"}
        << QStringList {"4 type error(s):", "Cannot convert value '' in column 'a' row 2 to Number",
               "Cannot convert value 'TRUE' in column 'b' row 2 to Boolean",
               "Cannot convert value '' in column 'a' row 3 to Number",
               "Cannot convert value 'FALSE' in column 'b' row 3 to Boolean"}
        << "3 evaluated, 0 Javascript errors";

    QStringList manyTypeErrors {QStringLiteral("7 type error(s):")};
    for (int r = 2; r <= 6; ++r)
        manyTypeErrors << QStringLiteral("Cannot convert value '' in column 'a' row %1 to Number").arg(r);
    manyTypeErrors << QStringLiteral("...");
    QTest::newRow("five type errors told")
        << "a\n1\n\n\n\n\n\n\n"
        << "var x = $(a);\nreturn 1;" << QStringList {"1", "1", "1", "1", "1", "1", "1", "1"}
        << manyTypeErrors << "8 evaluated, 0 Javascript errors";
    QTest::newRow("syntax error still counts type errors")
        << "a\n1\n"
        << "return ($(a);" << QStringList {"undefined", "undefined"}
        << QStringList {"1 type error(s):", "Cannot convert value '' in column 'a' row 2 to Number"}
        << "2 evaluated, 0 Javascript errors";
}

void TestJavascript::errors()
{
    QFETCH(QString, table);
    QFETCH(QString, script);
    QFETCH(QStringList, cells);
    QFETCH(QStringList, warnings);
    QFETCH(QString, result);

    DataNode node(testutil::toDataset(table, true));
    TransformJavascript transform;
    const Outcome outcome = run(transform, node, script);
    QCOMPARE(newColumn(outcome.output), cells);
    QCOMPARE(outcome.warnings, warnings);
    QCOMPARE(outcome.result, result);
}

// Rows are handed to the script in batches; every kind of value a script can return or
// throw must come out as calling the function once per row from C++ would give it.
void TestJavascript::sameAsCallingPerRow()
{
    const QStringList expressions = {"1", "0.1 + 0.2", "-0", "1 / 0", "NaN", "2e21", "'text'", "''",
        "'a\\u0000b'", "'\u00e9\U0001F600'", "null", "undefined", "true", "false", "[1, [2, 3]]", "({})",
        "new Date(0).getTime()", "new Error('e')", "new TypeError('t')", "Object.create(Error.prototype)",
        "new (class Sub extends Error {})('sub')", "Symbol('s')",
        "({toString: function () { throw new Error('no text'); }})",
        "({toString: function () { return Symbol('s'); }})", "(function () { throw 'str'; })()",
        "(function () { throw new Error('thrown'); })()", "(function () { throw null; })()",
        "(function () { throw {}; })()", "missing.property", "(function () {\n\n throw new Error('l3'); })()",
        "this === undefined", "typeof this"};
    Dataset input;
    input.setColumnCount(1);
    input.setHeaders({QStringLiteral("v")});
    for (const QString &expression : expressions)
        input.appendRow({expression});
    DataNode node(input);
    TransformJavascript transform;
    const Outcome outcome =
        run(transform, node, QStringLiteral("'use strict';\nreturn eval($(v));"), QStringLiteral("String"));

    QJSEngine engine;
    QJSValue function = engine.evaluate(
        QStringLiteral("(function( col_1_var ) { 'use strict';\nreturn eval(col_1_var); })"), QString(), 1);
    QStringList expected;
    QStringList expectedWarnings;
    int errors = 0;
    for (int r = 0; r < expressions.size(); ++r) {
        const QJSValue value = function.call({QJSValue(expressions.at(r))});
        expected << value.toString();
        if (value.isError()) {
            ++errors;
            if (expectedWarnings.size() < 5)
                expectedWarnings << QStringLiteral("%1 at script line %2 for dataset row %3")
                                        .arg(value.toString())
                                        .arg(value.property(QStringLiteral("lineNumber")).toInt())
                                        .arg(r + 1);
        }
    }
    expectedWarnings.prepend(QStringLiteral("%1 Javascript error(s)").arg(errors));
    expectedWarnings << QStringLiteral("...");
    QCOMPARE(newColumn(outcome.output), expected);
    QCOMPARE(outcome.warnings, expectedWarnings);
    QVERIFY(errors > 5);
}

void TestJavascript::ambiguousNames()
{
    DataNode node(testutil::toDataset(QStringLiteral("a, a ,b,b,c\n1,2,x,y,z"), true));
    TransformJavascript transform;
    const Outcome outcome = run(transform, node, QStringLiteral("return $(a) + $(b) + $(c);"));
    QCOMPARE(newColumn(outcome.output), QStringList {"1xz"});
    QCOMPARE(outcome.warnings, QStringList {"Ambiguous column name(s): a, b, first column with name used"});

    // A name the script doesn't use is not reported.
    const Outcome unused = run(transform, node, QStringLiteral("return $(c);"));
    QCOMPARE(unused.warnings, QStringList());
}

// Globals live in the engine, which the item keeps; a copy of the item starts afresh.
void TestJavascript::engineKeptBetweenRuns()
{
    DataNode node(testutil::toDataset(QStringLiteral("a\n1\n2"), true));
    const QString script = QStringLiteral("counter = (typeof counter === 'undefined') ? 1 : counter + 1;\n"
                                          "return counter;");
    TransformJavascript transform;
    QCOMPARE(newColumn(run(transform, node, script).output), QStringList({"1", "2"}));
    QCOMPARE(newColumn(run(transform, node, script).output), QStringList({"3", "4"}));

    std::unique_ptr<Transform> copy(transform.clone());
    auto *clone = static_cast<TransformJavascript *>(copy.get());
    QCOMPARE(newColumn(run(*clone, node, script).output), QStringList({"1", "2"}));

    // Replacing a built-in in one run doesn't change how the next one reads results.
    run(transform, node,
        QStringLiteral("Array.prototype.join = function () { return 'x'; };\n"
                       "String = function () { return 'y'; };\nreturn 1;"));
    QCOMPARE(newColumn(run(transform, node, QStringLiteral("return [1, 2].length + 'a';")).output),
        QStringList({"2a", "2a"}));
}

void TestJavascript::newColumnName_data()
{
    QTest::addColumn<bool>("headers");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("displayHeaders");
    QTest::newRow("named") << true << "Total" << QStringList {"a", "Total"};
    QTest::newRow("empty name keeps the new column's own") << true << "" << QStringList {"a", "2"};
    QTest::newRow("named without headers") << false << "Total" << QStringList {"1", "Total"};
    QTest::newRow("empty name without headers") << false << "" << QStringList {"1", "2"};
}

void TestJavascript::newColumnName()
{
    QFETCH(bool, headers);
    QFETCH(QString, name);
    QFETCH(QStringList, displayHeaders);
    DataNode node(testutil::toDataset(headers ? QStringLiteral("a\n1") : QStringLiteral("1"), headers));
    TransformJavascript transform;
    transform.createParameters({&node}, false);
    transform.parameter(QStringLiteral("New_Name"))->setValue(name);
    const Outcome outcome = run(transform, node, QStringLiteral("return 2;"));
    QCOMPARE(outcome.output.displayHeaders(), displayHeaders);
}

// Rows go to the script in batches; values, error rows and progress must not notice.
void TestJavascript::batches()
{
    Dataset input;
    input.setColumnCount(2);
    input.setHeaders({QStringLiteral("n"), QStringLiteral("s")});
    for (int r = 0; r < 2500; ++r)
        input.appendRow({QString::number(r), QStringLiteral("t%1").arg(r)});
    DataNode node(input);
    TransformJavascript transform;
    transform.createParameters({&node}, false);
    QSignalSpy progress(&transform, &Transform::processed);
    const Outcome outcome = run(transform, node,
        QStringLiteral("if ($(n) >= 998 && $(n) % 2 == 0)\n throw new Error('even ' + $(n));\n"
                       "return $(s) + ':' + $(n) * 2;"));
    const QStringList cells = newColumn(outcome.output);
    QCOMPARE(cells.size(), 2500);
    QCOMPARE(cells.at(0), QStringLiteral("t0:0"));
    QCOMPARE(cells.at(997), QStringLiteral("t997:1994"));
    QCOMPARE(cells.at(998), QStringLiteral("Error: even 998"));
    QCOMPARE(cells.at(999), QStringLiteral("t999:1998"));
    QCOMPARE(cells.at(1000), QStringLiteral("Error: even 1000"));
    QCOMPARE(cells.at(2499), QStringLiteral("t2499:4998"));
    QCOMPARE(outcome.warnings,
        QStringList({"751 Javascript error(s)", "Error: even 998 at script line 2 for dataset row 999",
            "Error: even 1000 at script line 2 for dataset row 1001",
            "Error: even 1002 at script line 2 for dataset row 1003",
            "Error: even 1004 at script line 2 for dataset row 1005",
            "Error: even 1006 at script line 2 for dataset row 1007", "..."}));
    QCOMPARE(outcome.result, QStringLiteral("1,749 evaluated, 751 Javascript errors"));
    QCOMPARE(progress.count(), 3);
    QCOMPARE(progress.at(1).at(0).toDouble(), 1000.0 / 2500.0);
}

void TestJavascript::wrongInputs()
{
    TransformJavascript transform;
    transform.createParameters({}, false);
    bool failed = false;
    const Dataset output = transform.process({}, failed);
    QCOMPARE(output.columnCount(), 0);
    QVERIFY(!failed);
}

QTEST_MAIN(TestJavascript)
#include "tst_javascript.moc"
