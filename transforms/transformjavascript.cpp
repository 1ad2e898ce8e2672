#include "transforms/transformjavascript.h"

#include "core/values.h"
#include "flow/node.h"

#include <QJSEngine>
#include <QSet>

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

// How a column's cells reach the script.
enum ScriptType : int { ScriptString = 0, ScriptNumber = 1, ScriptBoolean = 2 };

// What the script returned for a row, as the batch loop reports it.
enum ResultKind : quint8 {
    ResultNumber = 0,
    ResultText = 1,
    ResultUndefined = 2,
    ResultTrue = 3,
    ResultFalse = 4,
    ResultNull = 5,
    ResultObject = 6,
};

// Rows handed to the script engine at once. Calling a script function from C++ costs a
// conversion of every argument and of the result; a loop inside the engine over typed
// arrays costs a fraction of that. A multiple of 1000, so that progress falls on each batch.
constexpr int BatchRows = 1000;
// Messages told word for word before the rest are only counted.
constexpr int MessagesShown = 5;

// Taken once per engine, so that a script that replaces a built-in (globals outlive a run)
// cannot change how rows are passed or results read.
const char HelpersScript[] = R"((function () {
    var call = Function.prototype.call;
    var join = call.bind(Array.prototype.join);
    return {
        F64: Float64Array, U8: Uint8Array, I32: Int32Array,
        bind: call.bind(Function.prototype.bind),
        join: function (parts) { return join(parts, ''); }
    };
})())";

// Stores the value r of row i; the same text follows a return and a throw. Primitive values
// are sorted by kind here; objects (errors among them) go back as they are, to be read the
// way a value returned to C++ is read.
const char StoreResult[] = R"(switch (typeof r) {
        case 'number': num[i] = r; break;
        case 'string': kind[i] = 1; lens[i] = r.length; parts[parts.length] = r; break;
        case 'undefined': kind[i] = 2; break;
        case 'boolean': kind[i] = r ? 3 : 4; break;
        default:
            if (r === null) { kind[i] = 5; break; }
            kind[i] = 6; objs[objs.length] = r;
        })";

// The loop that calls the user's function for a batch of rows. Its arguments are the
// function (bound to the global object, as a direct call from C++ would have it), the row
// count, the helpers, and per column: numbers with a mask of failed cells, boolean codes
// (0 false, 1 true, 2 failed), or the cells' text with their offsets.
QString batchScript(const QVector<int> &types)
{
    QStringList parameters {QStringLiteral("f"), QStringLiteral("n"), QStringLiteral("h")};
    QStringList views;
    QStringList arguments;
    for (int k = 0; k < types.size(); ++k) {
        const QString n = QString::number(k);
        switch (types.at(k)) {
        case ScriptNumber:
            parameters << QStringLiteral("a%1").arg(n) << QStringLiteral("m%1").arg(n);
            views << QStringLiteral("v%1 = new h.F64(a%1), k%1 = new h.U8(m%1)").arg(n);
            arguments << QStringLiteral("k%1[i] ? undefined : v%1[i]").arg(n);
            break;
        case ScriptBoolean:
            parameters << QStringLiteral("a%1").arg(n);
            views << QStringLiteral("v%1 = new h.U8(a%1)").arg(n);
            arguments << QStringLiteral("v%1[i] === 2 ? undefined : v%1[i] === 1").arg(n);
            break;
        default:
            parameters << QStringLiteral("t%1").arg(n) << QStringLiteral("o%1").arg(n);
            views << QStringLiteral("p%1 = new h.I32(o%1)").arg(n);
            arguments << QStringLiteral("t%1.substring(p%1[i], p%1[i + 1])").arg(n);
            break;
        }
    }
    views << QStringLiteral("kind = new h.U8(n), num = new h.F64(n), lens = new h.I32(n)")
          << QStringLiteral("parts = [], objs = [], i = 0, r");
    const QString store = QString::fromLatin1(StoreResult);
    return QStringLiteral("(function (%1) {\n    var %2;\n"
                          "    for (;;) {\n"
                          "        try {\n"
                          "            for (; i < n; ++i) {\n"
                          "                r = f(%3);\n"
                          "                %4\n"
                          "            }\n"
                          "            break;\n"
                          "        } catch (e) {\n"
                          "            r = e;\n"
                          "            %4\n"
                          "            ++i;\n"
                          "        }\n"
                          "    }\n"
                          "    return [kind.buffer, num.buffer, lens.buffer, h.join(parts), objs];\n"
                          "})")
        .arg(parameters.join(QStringLiteral(", ")), views.join(QStringLiteral(", ")),
            arguments.join(QStringLiteral(", ")), store);
}

QString variableName(int column)
{
    return QStringLiteral("col_%1_var").arg(column + 1);
}

QString typeName(int type)
{
    switch (type) {
    case ScriptNumber:
        return QStringLiteral("Number");
    case ScriptBoolean:
        return QStringLiteral("Boolean");
    default:
        return QStringLiteral("String");
    }
}

} // namespace

TransformJavascript::TransformJavascript() = default;

TransformJavascript::~TransformJavascript()
{
    // The helpers belong to the engine and must go first.
    m_helpers = QJSValue();
}

QString TransformJavascript::description() const
{
    return tr("Script your own custom transform in Javascript.");
}

void TransformJavascript::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *newName = new Parameter(
        ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), QStringLiteral("Javascript"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    // Choices are stored in documents by their text.
    const QStringList typings = {QStringLiteral("Number/Boolean/String"), QStringLiteral("String")};
    auto *typeAs = new Parameter(
        ParameterKind::Selection, QStringLiteral("Type_As"), tr("Type columns as"), typings.first(), typings);
    applyDefault(useDefaults, typeAs);
    typeAs->setTooltip(
        tr("Whether to type values as Number/Boolean/String (according to column contents) or all as "
           "String."));
    addParameter(typeAs);

    // The script names columns as $(name) or $(3), so it follows the input; it has no tooltip.
    auto *script =
        new Parameter(ParameterKind::Script, QStringLiteral("Script"), tr("Javascript"), inputs.value(0));
    script->setValue(
        QStringLiteral("// see help (? button top right) for details\nreturn \"Hello world!\";"));
    addParameter(script);
}

void TransformJavascript::createEngine()
{
    m_engine = std::make_unique<QJSEngine>();
    m_helpers = m_engine->evaluate(QString::fromLatin1(HelpersScript));
}

QString TransformJavascript::scriptNumberText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    if (value == 0)
        return QStringLiteral("0");

    // The shortest digits that read back as the same double, then the layout the script
    // language prescribes: plain up to 21 integer digits, "0.000001" down to 6 zeros, else
    // an exponent with its sign.
    char buffer[64];
    const std::to_chars_result written =
        std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific);
    const char *end = written.ptr;
    const char *e = static_cast<const char *>(std::memchr(buffer, 'e', size_t(end - buffer)));
    if (!e)
        return QString::number(value, 'g', 17);
    QByteArray digits;
    for (const char *p = buffer; p < e; ++p) {
        if (*p != '.')
            digits += *p;
    }
    const int k = digits.size();
    int exponent = 0;
    const char *exponentStart = e + 1;
    if (exponentStart < end && *exponentStart == '+')
        ++exponentStart;
    std::from_chars(exponentStart, end, exponent);
    const int n = exponent + 1;

    QByteArray text;
    if (value < 0)
        text += '-';
    if (k <= n && n <= 21) {
        text += digits;
        text += QByteArray(n - k, '0');
    } else if (0 < n && n <= 21) {
        text += digits.left(n);
        text += '.';
        text += digits.mid(n);
    } else if (-6 < n && n <= 0) {
        text += "0.";
        text += QByteArray(-n, '0');
        text += digits;
    } else {
        text += digits.at(0);
        if (k > 1) {
            text += '.';
            text += digits.mid(1);
        }
        text += 'e';
        text += n - 1 < 0 ? '-' : '+';
        text += QByteArray::number(std::abs(n - 1));
    }
    return QString::fromLatin1(text);
}

Dataset TransformJavascript::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    if (inputs.size() != 1 || !inputs.first())
        return Dataset();
    const Parameter *newName = parameter(QStringLiteral("New_Name"));
    const Parameter *typeAs = parameter(QStringLiteral("Type_As"));
    const Parameter *script = parameter(QStringLiteral("Script"));
    if (!newName || !typeAs || !script)
        return Dataset();

    const Dataset &input = inputs.first()->dataset();
    Dataset output = input;
    output.appendColumn();
    const DataColumnIndex newColumn = output.lastColumn();
    if (!m_engine)
        createEngine();

    // Column references, by header first and then by number: a header "3" wins over the
    // third column. The leftmost of two columns with the same header is the one used.
    QString body = script->stringValue();
    const QLatin1String referenceStart("$(");
    const int columnCount = input.columnCount();
    QVector<int> used;
    QStringList ambiguous;
    for (int c = 0; c < columnCount && body.contains(referenceStart); ++c) {
        const QString reference = Dataset::columnVariable(input.headerText(c));
        if (!body.contains(reference))
            continue;
        body.replace(reference, variableName(c));
        used << c;
        for (int later = c + 1; later < columnCount; ++later) {
            if (Dataset::columnVariable(input.headerText(later)) == reference) {
                const QString name = input.headerText(c).trimmed();
                if (!ambiguous.contains(name))
                    ambiguous << name;
                break;
            }
        }
    }
    for (int c = 0; c < columnCount && body.contains(referenceStart); ++c) {
        const QString reference = Dataset::columnVariable(QString::number(c + 1));
        if (!body.contains(reference))
            continue;
        body.replace(reference, variableName(c));
        if (!used.contains(c))
            used << c;
    }

    QStringList variables;
    QVector<int> types;
    const bool allStrings = typeAs->selectionIndex() == 1;
    for (int c : qAsConst(used)) {
        variables << variableName(c);
        int type = ScriptString;
        if (!allStrings) {
            if (input.isNumericColumn(c, false, 100))
                type = ScriptNumber;
            else if (input.isBooleanColumn(c))
                type = ScriptBoolean;
        }
        types << type;
        const QString header = input.headerText(c);
        if (type == ScriptNumber)
            addInformation(tr("Column '%1' passed as Javascript Number type").arg(header));
        else if (type == ScriptBoolean)
            addInformation(tr("Column '%1' passed as Javascript Boolean type").arg(header));
        else
            addInformation(tr("Column '%1' passed as Javascript String type").arg(header));
    }

    // One line, so that a line number in an error is the line of the user's script.
    const QString functionText =
        QStringLiteral("(function( %1 ) { %2 })").arg(variables.join(QStringLiteral(", ")), body);
    const QJSValue function = m_engine->evaluate(functionText, QString(), 1);
    // A script that doesn't compile gives a value that can't be called: every call of it
    // gives undefined, and that is not counted as an error.
    const bool callable = function.isCallable();
    QJSValue batch;
    QJSValue bound;
    if (callable) {
        batch = m_engine->evaluate(batchScript(types));
        bound = m_helpers.property(QStringLiteral("bind")).call({function, m_engine->globalObject()});
    }

    const int usedCount = used.size();
    const int rowCount = input.rowCount();
    QStringList warnings;
    QStringList typeMessages;
    int typeErrors = 0;
    int scriptErrors = 0;

    QVector<QByteArray> numbers(usedCount);
    QVector<QByteArray> codes(usedCount);
    QVector<QString> texts(usedCount);
    QVector<QByteArray> offsets(usedCount);
    QJSValueList arguments;
    const QString undefinedText = QStringLiteral("undefined");
    const QString trueText = QStringLiteral("true");
    const QString falseText = QStringLiteral("false");
    const QString nullText = QStringLiteral("null");
    bool pooling = true;

    for (int start = 0; start < rowCount; start += BatchRows) {
        reportRowProgress(start, rowCount);
        const int count = qMin(BatchRows, rowCount - start);

        // Arguments, row by row so that type errors are told in reading order.
        for (int k = 0; k < usedCount; ++k) {
            if (types.at(k) == ScriptNumber) {
                numbers[k].fill(0, count * int(sizeof(double)));
                codes[k].fill(0, count);
            } else if (types.at(k) == ScriptBoolean) {
                codes[k].fill(0, count);
            } else {
                texts[k].clear();
                offsets[k].fill(0, (count + 1) * int(sizeof(qint32)));
            }
        }
        for (int i = 0; i < count; ++i) {
            const int row = start + i;
            const QStringList &cells = input.row(row);
            for (int k = 0; k < usedCount; ++k) {
                const int c = used.at(k);
                const QString &cell = cells.at(c);
                bool ok = true;
                switch (types.at(k)) {
                case ScriptNumber: {
                    const double value = cell.toDouble(&ok);
                    reinterpret_cast<double *>(numbers[k].data())[i] = value;
                    codes[k][i] = ok ? 0 : 1;
                    break;
                }
                case ScriptBoolean: {
                    const QString trimmed = cell.trimmed();
                    if (trimmed == QLatin1String("true"))
                        codes[k][i] = 1;
                    else if (trimmed == QLatin1String("false"))
                        codes[k][i] = 0;
                    else
                        ok = false;
                    if (!ok)
                        codes[k][i] = 2;
                    break;
                }
                default:
                    texts[k] += cell;
                    reinterpret_cast<qint32 *>(offsets[k].data())[i + 1] = texts[k].size();
                    break;
                }
                if (!ok) {
                    ++typeErrors;
                    if (typeMessages.size() < MessagesShown)
                        typeMessages << tr("Cannot convert value '%1' in column '%2' row %3 to %4")
                                            .arg(cell, input.headerText(c), QString::number(row + 1),
                                                typeName(types.at(k)));
                }
            }
        }

        if (!callable) {
            for (int i = 0; i < count; ++i)
                output.setCell(start + i, newColumn, undefinedText);
            continue;
        }

        arguments.clear();
        arguments << bound << count << m_helpers;
        for (int k = 0; k < usedCount; ++k) {
            switch (types.at(k)) {
            case ScriptNumber:
                arguments << m_engine->toScriptValue(numbers.at(k)) << m_engine->toScriptValue(codes.at(k));
                break;
            case ScriptBoolean:
                arguments << m_engine->toScriptValue(codes.at(k));
                break;
            default:
                arguments << QJSValue(texts.at(k)) << m_engine->toScriptValue(offsets.at(k));
                break;
            }
        }
        const QJSValue results = batch.call(arguments);
        if (!results.isArray()) {
            // Only the engine itself failing gets here (the loop catches what the script
            // throws): the rows of this batch take its message.
            const QString text = results.toString();
            for (int i = 0; i < count; ++i)
                output.setCell(start + i, newColumn, text);
            if (results.isError())
                scriptErrors += count;
            continue;
        }

        const QByteArray kinds = results.property(0).toVariant().toByteArray();
        const QByteArray values = results.property(1).toVariant().toByteArray();
        const QByteArray lengths = results.property(2).toVariant().toByteArray();
        const QString joined = results.property(3).toString();
        const QJSValue objects = results.property(4);
        if (kinds.size() < count || values.size() < count * int(sizeof(double))
            || lengths.size() < count * int(sizeof(qint32)))
            continue;
        const auto *kind = reinterpret_cast<const quint8 *>(kinds.constData());
        const auto *value = reinterpret_cast<const double *>(values.constData());
        const auto *length = reinterpret_cast<const qint32 *>(lengths.constData());
        int offset = 0;
        quint32 objectIndex = 0;
        for (int i = 0; i < count; ++i) {
            const int row = start + i;
            QString text;
            switch (kind[i]) {
            case ResultNumber:
                text = scriptNumberText(value[i]);
                break;
            case ResultText:
                text = joined.mid(offset, length[i]);
                offset += length[i];
                break;
            case ResultUndefined:
                text = undefinedText;
                break;
            case ResultTrue:
                text = trueText;
                break;
            case ResultFalse:
                text = falseText;
                break;
            case ResultNull:
                text = nullText;
                break;
            default: {
                const QJSValue object = objects.property(objectIndex++);
                text = object.toString();
                if (!object.isError())
                    break;
                ++scriptErrors;
                const int line = object.property(QStringLiteral("lineNumber")).toInt();
                if (warnings.size() < MessagesShown)
                    warnings << tr("%1 at script line %2 for dataset row %3")
                                    .arg(text, QString::number(line), QString::number(row + 1));
                else if (warnings.size() == MessagesShown)
                    warnings << QStringLiteral("...");
                break;
            }
            }
            if (pooling)
                output.setCell(row, newColumn, text);
            else
                output.mutableRow(row)[newColumn.toInt()] = text;
        }
        // Sharing repeated results saves memory, but a column of distinct results (most
        // computed numbers) only pays for the lookups: the first batch decides.
        if (pooling && start == 0) {
            QSet<QString> distinct;
            for (int i = 0; i < count; ++i)
                distinct.insert(output.cell(i, newColumn));
            pooling = distinct.size() * 2 <= count;
        }
    }

    if (scriptErrors > 0)
        warnings.prepend(tr("%1 Javascript error(s)").arg(scriptErrors));
    if (typeErrors > 0) {
        warnings << tr("%1 type error(s):").arg(typeErrors);
        warnings << typeMessages;
        if (typeErrors > typeMessages.size())
            warnings << QStringLiteral("...");
    }
    if (!ambiguous.isEmpty())
        warnings << tr("Ambiguous column name(s): %1, first column with name used")
                        .arg(ambiguous.join(QStringLiteral(", ")));
    for (const QString &warning : qAsConst(warnings))
        addWarning(warning);

    const QString name = newName->stringValue();
    if (!name.isEmpty())
        output.setHeader(newColumn, name);
    setResult(tr("%1 evaluated, %2 Javascript errors")
                  .arg(formatCount(rowCount - scriptErrors), formatCount(scriptErrors)));
    return output;
}
