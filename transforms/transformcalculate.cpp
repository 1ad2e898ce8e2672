#include "transforms/transformcalculate.h"

#include "core/values.h"
#include "flow/node.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

// The "Type1" and "Type2" choices.
const int ColumnChoice = 0;
const int ConstantChoice = 1;

} // namespace

QString TransformCalculate::description() const
{
    return tr("Perform calculations on 1 or 2 columns to create a new column.");
}

QSet<QString> TransformCalculate::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"1970", "absolute", "add", "and", "arithmetic", "binary", "bitwise", "boolean",
             "calculate", "calendar", "ceiling", "columns", "compute", "convert", "conversions", "dates",
             "datetime", "days", "decrement", "difference", "divide", "epoch", "exponent", "find", "floor",
             "formula", "hours", "increment", "indexof", "julian", "lastindexof", "leap", "length",
             "levenshtein", "logarithm", "maximum", "milli", "milliseconds", "minimum", "minus", "minutes",
             "modulus", "months", "multiply", "msecs", "or", "plus", "power", "product", "put", "quarter",
             "rounding", "seconds", "sign", "substring", "subtract", "sum", "times", "timestamp", "unary",
             "unix", "variables", "weeks", "words", "xor", "years"})
        words.insert(QLatin1String(word));
    return words;
}

const QList<CalculateOperationInfo> &TransformCalculate::operations()
{
    using Op = CalculateOperation;
    static const QList<CalculateOperationInfo> list = {
        {Op::Add, QStringLiteral("+ Add"), true},
        {Op::Subtract, QStringLiteral("- Subtract"), true},
        {Op::Multiply, QStringLiteral("* Multiply"), true},
        {Op::Divide, QStringLiteral("/ Divide"), true},
        {Op::Power, QStringLiteral("^ Power"), true},
        {Op::Modulus, QStringLiteral("% Modulus"), true},
        {Op::Abs, QStringLiteral("Abs"), false},
        {Op::And, QStringLiteral("And"), true},
        {Op::AndBitwise, QStringLiteral("AndBitwise"), true},
        {Op::Ceiling, QStringLiteral("Ceiling"), false},
        {Op::DateTimeToMSecs, QStringLiteral("DateTimeToMSecs"), false},
        {Op::DateToJulianDay, QStringLiteral("DateToJulianDay"), false},
        {Op::DaysInMonth, QStringLiteral("DaysInMonth"), false},
        {Op::DaysInYear, QStringLiteral("DaysInYear"), false},
        {Op::DayOfWeek, QStringLiteral("DayOfWeek"), false},
        {Op::DayOfMonth, QStringLiteral("DayOfMonth"), false},
        {Op::DayOfYear, QStringLiteral("DayOfYear"), false},
        {Op::Decrement, QStringLiteral("Decrement"), false},
        {Op::Floor, QStringLiteral("Floor"), false},
        {Op::Increment, QStringLiteral("Increment"), false},
        {Op::IndexOf, QStringLiteral("IndexOf"), true},
        {Op::JulianDayToDate, QStringLiteral("JulianDayToDate"), false},
        {Op::LastIndexOf, QStringLiteral("LastIndexOf"), true},
        {Op::Length, QStringLiteral("Length"), false},
        {Op::LevDistance, QStringLiteral("LevDistance"), true},
        {Op::Log10, QStringLiteral("Log10"), false},
        {Op::Log2, QStringLiteral("Log2"), false},
        {Op::Ln, QStringLiteral("Ln"), false},
        {Op::Maximum, QStringLiteral("Maximum"), true},
        {Op::Minimum, QStringLiteral("Minimum"), true},
        {Op::Month, QStringLiteral("Month"), false},
        {Op::MSecsToDateTime, QStringLiteral("MSecsToDateTime"), false},
        {Op::MSecsToTime, QStringLiteral("MSecsToTime"), false},
        {Op::Occurrences, QStringLiteral("Occurrences"), true},
        {Op::Or, QStringLiteral("Or"), true},
        {Op::OrBitwise, QStringLiteral("OrBitwise"), true},
        {Op::Quarter, QStringLiteral("Quarter"), false},
        {Op::Round, QStringLiteral("Round"), false},
        {Op::Sign, QStringLiteral("Sign"), false},
        {Op::TimeToMSecs, QStringLiteral("TimeToMSecs"), false},
        {Op::WeekOfYear, QStringLiteral("WeekOfYear"), false},
        {Op::WordCount, QStringLiteral("WordCount"), false},
        {Op::Xor, QStringLiteral("Xor"), true},
        {Op::XorBitwise, QStringLiteral("XorBitwise"), true},
        {Op::Year, QStringLiteral("Year"), false},
    };
    return list;
}

QStringList TransformCalculate::operationTexts()
{
    QStringList texts;
    for (const CalculateOperationInfo &info : operations())
        texts << info.text;
    return texts;
}

CalculateOperationInfo TransformCalculate::operationInfo(const QString &text)
{
    for (const CalculateOperationInfo &info : operations()) {
        if (info.text == text)
            return info;
    }
    return operations().first();
}

QString TransformCalculate::shortOperator(const CalculateOperationInfo &info)
{
    switch (info.operation) {
    case CalculateOperation::Add:
    case CalculateOperation::Subtract:
    case CalculateOperation::Multiply:
    case CalculateOperation::Divide:
    case CalculateOperation::Power:
    case CalculateOperation::Modulus:
        return info.text.section(QLatin1Char(' '), 0, 0);
    default:
        return info.text;
    }
}

CalculateOperationInfo TransformCalculate::currentOperation() const
{
    const Parameter *operation = parameter(QStringLiteral("Operation"));
    return operationInfo(operation ? operation->selectionText() : QString());
}

QList<QPair<QString, bool>> TransformCalculate::parameterStates() const
{
    const Parameter *autoName = parameter(QStringLiteral("Auto_New_Name"));
    const Parameter *type1 = parameter(QStringLiteral("Type1"));
    const Parameter *type2 = parameter(QStringLiteral("Type2"));
    const bool twoValues = currentOperation().twoValues;
    // The tooltips of the value options speak of "the value" or of "the first value"
    // depending on the operation. The item pane asks for these states after every edit,
    // and there is no other call at that moment, so the tooltips follow the operation here.
    updateValueTooltips(twoValues);
    const bool constant1 = type1 && type1->selectionIndex() == ConstantChoice;
    const bool constant2 = type2 && type2->selectionIndex() == ConstantChoice;
    return {
        qMakePair(QStringLiteral("New_Name"), !(autoName && autoName->boolValue())),
        qMakePair(QStringLiteral("Column1"), !constant1),
        qMakePair(QStringLiteral("Constant1"), constant1),
        qMakePair(QStringLiteral("Type2"), twoValues),
        qMakePair(QStringLiteral("Column2"), twoValues && !constant2),
        qMakePair(QStringLiteral("Constant2"), twoValues && constant2),
    };
}

void TransformCalculate::updateValueTooltips(bool twoValues) const
{
    const auto setTooltip = [this](const char *name, const QString &tooltip) {
        if (Parameter *option = parameter(QLatin1String(name)))
            option->setTooltip(tooltip);
    };
    if (twoValues) {
        setTooltip("Type1", tr("Select whether the first value is a column or a constant."));
        setTooltip("Column1", tr("Set the first value as a column."));
        setTooltip("Constant1", tr("Set the first value as a constant."));
    } else {
        setTooltip("Type1", tr("Select whether the value is a column or a constant."));
        setTooltip("Column1", tr("Set the value as a column."));
        setTooltip("Constant1", tr("Set the value as a constant."));
    }
    setTooltip("Type2", tr("Select whether the second value is a column or a constant."));
    setTooltip("Column2", tr("Set the second value as a column."));
    setTooltip("Constant2", tr("Set the second value as a constant."));
}

void TransformCalculate::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *autoName = new Parameter(
        ParameterKind::Bool, QStringLiteral("Auto_New_Name"), tr("automatic new column name"), true);
    applyDefault(useDefaults, autoName);
    autoName->setTooltip(tr("Uncheck to manually set the new column name."));
    addParameter(autoName);

    auto *newName =
        new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), name());
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    auto *operation = new Parameter(ParameterKind::Selection, QStringLiteral("Operation"), tr("Operation"),
        operations().first().text, operationTexts());
    applyDefault(useDefaults, operation);
    operation->setTooltip(tr("The operation to perform.\nClick the ? button for details."));
    addParameter(operation);

    // Choices are stored in documents by their text.
    const QStringList types = {QStringLiteral("Column"), QStringLiteral("Constant")};
    for (int value = 1; value <= 2; ++value) {
        const QString number = QString::number(value);
        auto *type = new Parameter(ParameterKind::Selection, QStringLiteral("Type") + number,
            tr("Value %1 type").arg(value), types.at(ColumnChoice), types);
        applyDefault(useDefaults, type);
        addParameter(type);

        // Both values are read from the single input.
        addParameter(new Parameter(ParameterKind::Column, QStringLiteral("Column") + number,
            tr("Value %1").arg(value), inputs.value(0)));

        auto *constant = new Parameter(
            ParameterKind::Text, QStringLiteral("Constant") + number, tr("Value %1").arg(value), QString());
        applyDefault(useDefaults, constant);
        addParameter(constant);
    }
    updateValueTooltips(currentOperation().twoValues);
}

namespace {

using Op = CalculateOperation;

constexpr int FailuresTold = 5;
constexpr int DateDetectionCells = 50;
constexpr int DateCacheLimit = 100000;
constexpr int ResultPoolLimit = 50000;
constexpr int ResultPoolTrial = 4096;
constexpr qint64 FirstJulianDay = -784350574879LL;
constexpr qint64 LastJulianDay = 784354017364LL;
constexpr quint64 LastTimeMSecs = 1000000000000000ULL;
constexpr qint64 MSecsPerDay = 86400000;

// A row message in two forms: for a constant, and for a column, which names the column.
struct MessagePair
{
    const char *constant;
    const char *column;
};

#define CALCULATE_TEXT(text) QT_TRANSLATE_NOOP("TransformCalculate", text)

const MessagePair NotDate = {CALCULATE_TEXT("'%1' is not a valid date at row %2"),
    CALCULATE_TEXT("'%1' is not a valid date in column '%2' at row %3")};
const MessagePair NotInteger = {CALCULATE_TEXT("'%1' is not an integer at row %2"),
    CALCULATE_TEXT("'%1' is not an integer in column '%2' at row %3")};
const MessagePair NotValidForOperation = {
    CALCULATE_TEXT("'%1' is not a valid value for this operation at row %2"),
    CALCULATE_TEXT("'%1' is not a valid value for this operation in column '%2' at row %3")};
const MessagePair OnDate = {CALCULATE_TEXT("Operation not valid on a date at row %1"),
    CALCULATE_TEXT("Operation not valid on a date in column '%1' at row %2")};
const MessagePair DivideByZero = {
    CALCULATE_TEXT("Divide by 0 at row %1"), CALCULATE_TEXT("Divide by 0 in column '%1' at row %2")};
const MessagePair ModulusByZero = {
    CALCULATE_TEXT("Modulus by 0 at row %1"), CALCULATE_TEXT("Modulus by 0 in column '%1' at row %2")};
const MessagePair NotMSecsInteger = {CALCULATE_TEXT("'%1' is not a valid integer value for msecs at row %2"),
    CALCULATE_TEXT("'%1' is not a valid integer value for msecs in column '%2' at row %3")};
const MessagePair NotMSecsSinceEpoch = {CALCULATE_TEXT("'%1' is not valid msecs since epoch at row %2"),
    CALCULATE_TEXT("'%1' is not valid msecs since epoch in column '%2' at row %3")};
const MessagePair NotIsoDateTime = {CALCULATE_TEXT("'%1' is not a valid ISO datetime at row %2"),
    CALCULATE_TEXT("'%1' is not a valid ISO datetime in column '%2' at row %3")};
// "msecs" is what users have always read here, although the value is a Julian day.
const MessagePair NotJulianInteger = {
    CALCULATE_TEXT("'%1' is not a valid integer expected for msecs at row %2"),
    CALCULATE_TEXT("'%1' is not a valid integer expected for msecs in column '%2' at row %3")};
const MessagePair NotJulianDay = {CALCULATE_TEXT("'%1' is not a valid Julian day at row %2"),
    CALCULATE_TEXT("'%1' is not a valid Julian day in column '%2' at row %3")};
const MessagePair JulianDayOutOfRange = {
    CALCULATE_TEXT("'%1' is out of range to represent a Julian day as an ISO date at row %2"),
    CALCULATE_TEXT("'%1' is out of range to represent a Julian day as an ISO date in column '%2' at row %3")};
const MessagePair NotTimeMSecs = {CALCULATE_TEXT("'%1' integer msecs expected at row %2"),
    CALCULATE_TEXT("'%1' integer msecs expected in column '%2' at row %3")};
const MessagePair TimeMSecsOutOfRange = {CALCULATE_TEXT("'%1' msecs out of range at row %2"),
    CALCULATE_TEXT("'%1' msecs out of range in column '%2' at row %3")};
const MessagePair NotTime = {CALCULATE_TEXT("'%1' is not a valid time at row %2"),
    CALCULATE_TEXT("'%1' is not a valid time in column '%2' at row %3")};
const MessagePair OnNamedDate = {CALCULATE_TEXT("Operation not valid on date '%1' at row %2"),
    CALCULATE_TEXT("Operation not valid on date '%1' in column '%2' at row %3")};
// The constant form has no %2: arg() fills the lowest placeholders, so the row still goes in.
const MessagePair NotNumber = {CALCULATE_TEXT("'%1' is not a number at row %3"),
    CALCULATE_TEXT("'%1' is not a number in column '%2' at row %3")};
const MessagePair NotPositive = {
    CALCULATE_TEXT("'%1' <= 0 at row %2"), CALCULATE_TEXT("'%1' <= 0 in column '%2' at row %3")};

#undef CALCULATE_TEXT

QString translated(const char *text)
{
    return QCoreApplication::translate("TransformCalculate", text);
}

// The texts a failed cell holds, translated once per run and shared by every such cell.
struct ErrorTexts
{
    QString invalidOperation = TransformCalculate::tr("Error: invalid operation");
    QString numberExpected = TransformCalculate::tr("Error: number expected");
    QString integerExpected = TransformCalculate::tr("Error: integer expected");
    QString booleanExpected = TransformCalculate::tr("Error: boolean expected");
    QString dateExpected = TransformCalculate::tr("Error: date expected");
    QString divideByZero = TransformCalculate::tr("Error: divide by 0");
    QString msecsExpected = TransformCalculate::tr("Error: msecs since epoch expected");
    QString isoDateTimeExpected = TransformCalculate::tr("Error: ISO datetime expected");
    QString julianDaysExpected = TransformCalculate::tr("Error: Julian days expected");
    QString dateOutOfRange = TransformCalculate::tr("Error: Date out of range");
    QString integerOutOfRange = TransformCalculate::tr("Error: integer out of expected range");
    QString timeExpected = TransformCalculate::tr("Error: h:m:s(.z) time expected");
    QString positiveExpected = TransformCalculate::tr("Error: >0 expected");
};

bool isCurrency(QChar c)
{
    // Every currency symbol lies above '#'; most cells are plain digits.
    return c.unicode() > '#' && c.category() == QChar::Symbol_Currency;
}

// An integer read as numbers are: trimmed, currency symbols removed, in the default
// locale, so "1,000" is 1000 where the comma groups digits.
qint64 readInteger(QStringView text, const QLocale &locale, bool asciiDigits, bool *ok)
{
    text = text.trimmed();
    // Most cells are plain digits: up to 18 of them always fit in 64 bits.
    if (asciiDigits && !text.isEmpty() && text.size() <= 19) {
        int i = text.at(0) == QLatin1Char('-') ? 1 : 0;
        const int digits = text.size() - i;
        if (digits > 0 && digits <= 18) {
            qint64 value = 0;
            for (; i < text.size(); ++i) {
                const ushort c = text.at(i).unicode();
                if (c < '0' || c > '9')
                    break;
                value = value * 10 + (c - '0');
            }
            if (i == text.size()) {
                *ok = true;
                return text.at(0) == QLatin1Char('-') ? -value : value;
            }
        }
    }
    if (std::any_of(text.begin(), text.end(), isCurrency)) {
        QString stripped;
        for (const QChar c : text) {
            if (!isCurrency(c))
                stripped.append(c);
        }
        const qint64 value = locale.toLongLong(QStringView(stripped).trimmed(), ok);
        return *ok ? value : 0;
    }
    const qint64 value = locale.toLongLong(text, ok);
    return *ok ? value : 0;
}

int readInt32(QStringView text, const QLocale &locale, bool asciiDigits, bool *ok)
{
    const qint64 value = readInteger(text, locale, asciiDigits, ok);
    if (*ok && (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()))
        *ok = false;
    return *ok ? int(value) : 0;
}

// Beyond the 32-bit range a value saturates, as the processor's conversion does on most builds.
int toInt32(double value)
{
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return int(value);
}

int levenshtein(const QString &a, const QString &b)
{
    const int n = a.size();
    const int m = b.size();
    if (n == 0 || m == 0)
        return n + m;
    std::vector<int> row(size_t(m) + 1);
    for (int j = 0; j <= m; ++j)
        row[size_t(j)] = j;
    for (int i = 1; i <= n; ++i) {
        int diagonal = row[0];
        row[0] = i;
        const QChar ca = a.at(i - 1);
        for (int j = 1; j <= m; ++j) {
            const int above = row[size_t(j)];
            const int cost = ca == b.at(j - 1) ? 0 : 1;
            row[size_t(j)] = std::min({above + 1, row[size_t(j) - 1] + 1, diagonal + cost});
            diagonal = above;
        }
    }
    return row[size_t(m)];
}

// Words start at a character that is neither whitespace nor punctuation and follows one
// that is; digits and symbols belong to words.
int wordCount(const QString &text)
{
    int count = 0;
    bool inWord = false;
    for (const QChar c : text) {
        const bool wordCharacter = !c.isSpace() && !c.isPunct();
        if (wordCharacter && !inWord)
            ++count;
        inWord = wordCharacter;
    }
    return count;
}

QString twoDigits(qint64 value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

// One value of the calculation: a column of the input or a constant. Its kind (date or
// not) is settled before the row loop; a constant is read once, a column cell by cell.
class Operand
{
public:
    Operand(const Dataset &dataset, int column, const QString &constant, const QLocale &locale)
        : m_dataset(dataset)
        , m_column(column)
        , m_constant(constant)
        , m_locale(locale)
        , m_asciiDigits(locale.negativeSign() == QLatin1Char('-') && locale.zeroDigit() == QLatin1Char('0'))
    {
        if (!isColumn()) {
            m_constantNumber = readNumber(m_constant, &m_constantNumberOk);
            m_constantInteger = readInteger(m_constant, m_locale, m_asciiDigits, &m_constantIntegerOk);
            m_constantBool = toBool(m_constant, true, true, &m_constantBoolOk);
        }
    }

    bool isColumn() const { return m_column >= 0; }
    // The column's header, or the constant as typed.
    QString name() const { return isColumn() ? m_dataset.headerText(m_column) : m_constant; }
    const QString &text(int row) const { return isColumn() ? m_dataset.cell(row, m_column) : m_constant; }

    bool isDate() const { return m_isDate; }
    const QString &dateFormat() const { return m_dateFormat; }
    // A constant is a date when a format reads it, the first in the list winning; a column
    // when one format reads all of its first non-empty cells.
    void detectDate(const QStringList &formats)
    {
        if (isColumn()) {
            m_isDate = m_dataset.guessDateFormat(m_column, formats, &m_dateFormat, DateDetectionCells);
            return;
        }
        for (const QString &format : formats) {
            m_constantDate = toDate(m_constant, format);
            if (m_constantDate.isValid()) {
                m_isDate = true;
                m_dateFormat = format;
                return;
            }
        }
    }

    double number(int row, bool *ok) const
    {
        if (!isColumn()) {
            *ok = m_constantNumberOk;
            return m_constantNumber;
        }
        return readNumber(text(row), ok);
    }
    qint64 integer(int row, bool *ok) const
    {
        if (!isColumn()) {
            *ok = m_constantIntegerOk;
            return m_constantInteger;
        }
        return readInteger(text(row), m_locale, m_asciiDigits, ok);
    }
    int int32(int row, bool *ok) const
    {
        const qint64 value = integer(row, ok);
        if (*ok && (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()))
            *ok = false;
        return *ok ? int(value) : 0;
    }
    bool boolean(int row, bool *ok) const
    {
        if (!isColumn()) {
            *ok = m_constantBoolOk;
            return m_constantBool;
        }
        return toBool(text(row), true, true, ok);
    }
    // The cell read with the detected format; dates repeat, so each text is read once.
    QDate date(int row) const
    {
        if (!isColumn())
            return m_constantDate;
        const QString &cell = text(row);
        auto found = m_dates.constFind(cell);
        if (found != m_dates.constEnd())
            return *found;
        const QDate date = toDate(cell, m_dateFormat);
        if (m_dates.size() < DateCacheLimit)
            m_dates.insert(cell, date);
        return date;
    }
    // A date in the detected format; the few distinct dates of a column are written once.
    QString renderDate(const QDate &date) const
    {
        auto found = m_renderedDates.constFind(date.toJulianDay());
        if (found != m_renderedDates.constEnd())
            return *found;
        const QString text = date.toString(m_dateFormat);
        if (m_renderedDates.size() < DateCacheLimit)
            m_renderedDates.insert(date.toJulianDay(), text);
        return text;
    }
    bool asciiDigits() const { return m_asciiDigits; }
    const QLocale &locale() const { return m_locale; }

private:
    double readNumber(const QString &text, bool *ok) const
    {
        return toNumber(text, false, true, ok, m_locale);
    }

    const Dataset &m_dataset;
    const int m_column;
    const QString m_constant;
    const QLocale &m_locale;
    const bool m_asciiDigits;
    bool m_isDate = false;
    QString m_dateFormat;
    double m_constantNumber = 0;
    bool m_constantNumberOk = false;
    qint64 m_constantInteger = 0;
    bool m_constantIntegerOk = false;
    bool m_constantBool = false;
    bool m_constantBoolOk = false;
    QDate m_constantDate;
    mutable QHash<QString, QDate> m_dates;
    mutable QHash<qint64, QString> m_renderedDates;
};

// Repeated results share one string, as repeated cells read from a file do. Whether a
// column's results repeat shows in its first rows; when most of those are new, pooling
// would cost a lookup per row and save nothing, so it stops.
class ResultPool
{
public:
    void share(QString &text)
    {
        if (!m_enabled || text.isEmpty())
            return;
        const auto found = m_pool.constFind(text);
        if (found != m_pool.constEnd()) {
            text = *found;
            ++m_hits;
        } else if (m_pool.size() < ResultPoolLimit) {
            m_pool.insert(text);
        }
        if (++m_lookups == ResultPoolTrial && m_hits < m_lookups / 2) {
            m_enabled = false;
            m_pool.clear();
        }
    }

private:
    QSet<QString> m_pool;
    bool m_enabled = Dataset::memoryMode() != 1;
    int m_lookups = 0;
    int m_hits = 0;
};

// The row loop's work: one result text per row, with failures counted and the first
// few told word for word.
class Calculation
{
public:
    Calculation(Op op, const Operand &first, const Operand &second)
        : m_op(op)
        , m_first(first)
        , m_second(second)
    { }

    // The result or the error text of one row; false when the row failed.
    bool twoValues(int row, QString &result);
    bool oneValue(int row, QString &result);

    const QStringList &messages() const { return m_messages; }
    int failures() const { return m_failures; }

private:
    bool twoDates(int row, QString &result);
    bool dateAndNumber(int row, QString &result);
    bool booleans(int row, QString &result);
    bool numbers(int row, QString &result);
    bool integers(int row, QString &result);
    bool specialOneValue(int row, QString &result, bool *handled);
    bool dateOneValue(int row, QString &result);
    bool numberOneValue(int row, QString &result);
    bool timeToMSecs(int row, QString &result);

    template<typename Message>
    void fail(Message message)
    {
        if (m_failures++ < FailuresTold)
            m_messages << message();
    }
    // A message whose first placeholder is the cell text; the column form names the column next.
    void failValue(const Operand &value, int row, const MessagePair &messages)
    {
        fail([&]() {
            const QString rowText = formatCount(row + 1);
            return value.isColumn() ? translated(messages.column).arg(value.text(row), value.name(), rowText)
                                    : translated(messages.constant).arg(value.text(row), rowText);
        });
    }
    // A message that names only the column, for a column, and the row.
    void failAt(const Operand &value, int row, const MessagePair &messages)
    {
        fail([&]() {
            const QString rowText = formatCount(row + 1);
            return value.isColumn() ? translated(messages.column).arg(value.name(), rowText)
                                    : translated(messages.constant).arg(rowText);
        });
    }

    const Op m_op;
    const Operand &m_first;
    const Operand &m_second;
    const ErrorTexts m_errors;
    const QString m_true = QStringLiteral("true");
    const QString m_false = QStringLiteral("false");
    QStringList m_messages;
    int m_failures = 0;
};

bool Calculation::twoValues(int row, QString &result)
{
    // The text operations take the raw texts whatever they hold.
    const QString &first = m_first.text(row);
    const QString &second = m_second.text(row);
    switch (m_op) {
    case Op::LevDistance:
        result = QString::number(levenshtein(first, second));
        return true;
    case Op::IndexOf: {
        const int at = second.indexOf(first);
        result = at >= 0 ? QString::number(at + 1) : QString();
        return true;
    }
    case Op::LastIndexOf: {
        const int at = first.isEmpty() ? second.size() : second.lastIndexOf(first);
        result = at >= 0 ? QString::number(at + 1) : QString();
        return true;
    }
    case Op::Occurrences:
        result = first.isEmpty() ? QString() : QString::number(second.count(first));
        return true;
    default:
        break;
    }
    if (m_first.isDate())
        return m_second.isDate() ? twoDates(row, result) : dateAndNumber(row, result);
    if (m_op == Op::Or || m_op == Op::And || m_op == Op::Xor)
        return booleans(row, result);
    return numbers(row, result);
}

bool Calculation::twoDates(int row, QString &result)
{
    const QDate first = m_first.date(row);
    const QDate second = m_second.date(row);
    if (!first.isValid())
        failValue(m_first, row, NotDate);
    if (!second.isValid())
        failValue(m_second, row, NotDate);
    if (!first.isValid() || !second.isValid()) {
        result = m_errors.dateExpected;
        return false;
    }
    switch (m_op) {
    case Op::Subtract:
        result = QString::number(second.daysTo(first));
        return true;
    case Op::Maximum:
        result = m_first.renderDate(first < second ? second : first);
        return true;
    case Op::Minimum:
        result = m_first.renderDate(first < second ? first : second);
        return true;
    default:
        fail([&]() {
            return TransformCalculate::tr("Operation not valid on 2 dates at row %1")
                .arg(formatCount(row + 1));
        });
        result = m_errors.invalidOperation;
        return false;
    }
}

bool Calculation::dateAndNumber(int row, QString &result)
{
    const QDate date = m_first.date(row);
    if (!date.isValid()) {
        failValue(m_first, row, NotDate);
        result = m_errors.dateExpected;
        return false;
    }
    if (m_op != Op::Add && m_op != Op::Subtract) {
        failAt(m_first, row, OnDate);
        result = m_errors.invalidOperation;
        return false;
    }
    bool ok = false;
    const int days = m_second.int32(row, &ok);
    if (!ok) {
        failValue(m_second, row, NotInteger);
        result = m_errors.integerExpected;
        return false;
    }
    result = m_first.renderDate(date.addDays(m_op == Op::Subtract ? -qint64(days) : qint64(days)));
    return true;
}

bool Calculation::booleans(int row, QString &result)
{
    bool firstOk = false;
    bool secondOk = false;
    const bool first = m_first.boolean(row, &firstOk);
    const bool second = m_second.boolean(row, &secondOk);
    if (!firstOk)
        failValue(m_first, row, NotValidForOperation);
    if (!secondOk)
        failValue(m_second, row, NotValidForOperation);
    if (!firstOk || !secondOk) {
        result = m_errors.booleanExpected;
        return false;
    }
    const bool value = m_op == Op::And ? first && second : m_op == Op::Or ? first || second : first != second;
    result = value ? m_true : m_false;
    return true;
}

bool Calculation::numbers(int row, QString &result)
{
    bool firstOk = false;
    bool secondOk = false;
    const double first = m_first.number(row, &firstOk);
    const double second = m_second.number(row, &secondOk);
    if (!firstOk)
        failValue(m_first, row, NotValidForOperation);
    if (!secondOk)
        failValue(m_second, row, NotValidForOperation);
    if (!firstOk || !secondOk) {
        result = m_errors.numberExpected;
        return false;
    }
    switch (m_op) {
    case Op::Add:
        result = renderNumber(first + second);
        return true;
    case Op::Subtract:
        result = renderNumber(first - second);
        return true;
    case Op::Multiply:
        result = renderNumber(first * second);
        return true;
    case Op::Power:
        result = renderNumber(std::pow(first, second));
        return true;
    case Op::Divide:
        if (second == 0) {
            failAt(m_second, row, DivideByZero);
            result = m_errors.divideByZero;
            return false;
        }
        result = renderNumber(first / second);
        return true;
    case Op::Maximum:
        result = renderNumber(first < second ? second : first);
        return true;
    case Op::Minimum:
        result = renderNumber(first < second ? first : second);
        return true;
    default:
        return integers(row, result);
    }
}

// Modulus and the bitwise operations: both values again as 32-bit integers.
bool Calculation::integers(int row, QString &result)
{
    bool firstOk = false;
    bool secondOk = false;
    const int first = m_first.int32(row, &firstOk);
    const int second = m_second.int32(row, &secondOk);
    if (!firstOk)
        failValue(m_first, row, NotInteger);
    if (!secondOk)
        failValue(m_second, row, NotInteger);
    if (!firstOk || !secondOk) {
        result = m_errors.integerExpected;
        return false;
    }
    switch (m_op) {
    case Op::Modulus:
        if (second == 0) {
            failAt(m_second, row, ModulusByZero);
            result = m_errors.divideByZero;
            return false;
        }
        // The remainder takes the sign of the first value; -1 is special-cased because the
        // lowest integer divided by it overflows.
        result = QString::number(second == -1 ? 0 : first % second);
        return true;
    case Op::AndBitwise:
        result = renderNumber(double(first & second));
        return true;
    case Op::OrBitwise:
        result = renderNumber(double(first | second));
        return true;
    default: // XorBitwise
        result = renderNumber(double(first ^ second));
        return true;
    }
}

bool Calculation::oneValue(int row, QString &result)
{
    bool handled = false;
    const bool succeeded = specialOneValue(row, result, &handled);
    if (handled)
        return succeeded;
    switch (m_op) {
    case Op::DayOfWeek:
    case Op::DayOfMonth:
    case Op::DayOfYear:
    case Op::Month:
    case Op::Year:
    case Op::WeekOfYear:
    case Op::DateToJulianDay:
    case Op::Quarter:
    case Op::DaysInMonth:
    case Op::DaysInYear:
        if (m_first.isDate())
            return dateOneValue(row, result);
        failValue(m_first, row, NotDate);
        result = m_errors.dateExpected;
        return false;
    case Op::Increment:
    case Op::Decrement:
        return m_first.isDate() ? dateOneValue(row, result) : numberOneValue(row, result);
    default:
        if (m_first.isDate()) {
            failValue(m_first, row, OnNamedDate);
            result = m_errors.invalidOperation;
            return false;
        }
        return numberOneValue(row, result);
    }
}

// The operations whose reading doesn't depend on the value's kind.
bool Calculation::specialOneValue(int row, QString &result, bool *handled)
{
    const QString &text = m_first.text(row);
    *handled = true;
    bool ok = false;
    switch (m_op) {
    case Op::Length:
        result = QString::number(text.size());
        return true;
    case Op::WordCount:
        result = QString::number(wordCount(text));
        return true;
    case Op::MSecsToDateTime: {
        const qint64 msecs = m_first.integer(row, &ok);
        if (!ok) {
            failValue(m_first, row, NotMSecsInteger);
            result = m_errors.integerExpected;
            return false;
        }
        const QDateTime dateTime = QDateTime::fromMSecsSinceEpoch(msecs);
        result = dateTime.isValid() ? dateTime.toString(Qt::ISODateWithMs) : QString();
        if (result.isEmpty()) {
            failValue(m_first, row, NotMSecsSinceEpoch);
            result = m_errors.msecsExpected;
            return false;
        }
        return true;
    }
    case Op::DateTimeToMSecs: {
        const QDateTime dateTime = QDateTime::fromString(text.trimmed(), Qt::ISODateWithMs);
        if (!dateTime.isValid()) {
            failValue(m_first, row, NotIsoDateTime);
            result = m_errors.isoDateTimeExpected;
            return false;
        }
        result = QString::number(dateTime.toMSecsSinceEpoch());
        return true;
    }
    case Op::JulianDayToDate: {
        const qint64 day = m_first.integer(row, &ok);
        if (!ok) {
            failValue(m_first, row, NotJulianInteger);
            result = m_errors.integerExpected;
            return false;
        }
        if (day < FirstJulianDay || day > LastJulianDay) {
            failValue(m_first, row, NotJulianDay);
            result = m_errors.julianDaysExpected;
            return false;
        }
        result = QDate::fromJulianDay(day).toString(Qt::ISODate);
        if (result.isEmpty()) {
            failValue(m_first, row, JulianDayOutOfRange);
            result = m_errors.dateOutOfRange;
            return false;
        }
        return true;
    }
    case Op::MSecsToTime: {
        const qint64 msecs = m_first.integer(row, &ok);
        if (!ok) {
            failValue(m_first, row, NotTimeMSecs);
            result = m_errors.integerExpected;
            return false;
        }
        // Unsigned, so that a negative value is out of range too.
        if (quint64(msecs) > LastTimeMSecs) {
            failValue(m_first, row, TimeMSecsOutOfRange);
            result = m_errors.integerOutOfRange;
            return false;
        }
        const qint64 rest = msecs % MSecsPerDay;
        const qint64 hours = rest / 3600000 + 24 * (msecs / MSecsPerDay);
        result = twoDigits(hours) + QLatin1Char(':') + twoDigits(rest / 60000 % 60) + QLatin1Char(':')
            + twoDigits(rest / 1000 % 60);
        if (rest % 1000 > 0)
            result += QStringLiteral(".%1").arg(rest % 1000, 3, 10, QLatin1Char('0'));
        return true;
    }
    case Op::TimeToMSecs:
        return timeToMSecs(row, result);
    default:
        *handled = false;
        return false;
    }
}

bool Calculation::timeToMSecs(int row, QString &result)
{
    const QString &text = m_first.text(row);
    const QLocale &locale = m_first.locale();
    const bool ascii = m_first.asciiDigits();
    const QStringView view(text);
    const int firstColon = text.indexOf(QLatin1Char(':'));
    const int secondColon = firstColon < 0 ? -1 : text.indexOf(QLatin1Char(':'), firstColon + 1);
    const bool twoParts = firstColon >= 0 && secondColon < 0;
    const bool threeParts = secondColon >= 0 && text.indexOf(QLatin1Char(':'), secondColon + 1) < 0;
    bool ok = twoParts || threeParts;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    qint64 milliseconds = 0;
    if (ok) {
        bool hoursOk = false;
        bool minutesOk = false;
        hours = readInt32(view.left(firstColon), locale, ascii, &hoursOk);
        const int minutesEnd = threeParts ? secondColon : text.size();
        minutes = readInt32(view.mid(firstColon + 1, minutesEnd - firstColon - 1), locale, ascii, &minutesOk);
        ok = hoursOk && minutesOk;
    }
    if (ok && threeParts) {
        const QStringView last = view.mid(secondColon + 1);
        const int dot = last.indexOf(QLatin1Char('.'));
        if (dot < 0) {
            seconds = readInt32(last, locale, ascii, &ok);
        } else if (last.indexOf(QLatin1Char('.'), dot + 1) >= 0) {
            ok = false;
        } else {
            seconds = readInt32(last.left(dot), locale, ascii, &ok);
            bool fractionOk = false;
            const double fraction = toNumber(
                QLatin1String("0.") + last.mid(dot + 1).toString(), true, false, &fractionOk, locale);
            milliseconds = qint64(std::floor(fraction * 1000 + 0.5));
            ok = ok && fractionOk;
        }
    }
    // A fraction that rounds up to 1000 ms is refused rather than carried into the seconds.
    if (!ok || hours < 0 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59 || milliseconds < 0
        || milliseconds > 999) {
        failValue(m_first, row, NotTime);
        result = m_errors.timeExpected;
        return false;
    }
    result = QString::number(
        qint64(hours) * 3600000 + qint64(minutes) * 60000 + qint64(seconds) * 1000 + milliseconds);
    return true;
}

bool Calculation::dateOneValue(int row, QString &result)
{
    const QDate date = m_first.date(row);
    if (!date.isValid()) {
        failValue(m_first, row, NotDate);
        result = m_errors.dateExpected;
        return false;
    }
    switch (m_op) {
    case Op::Increment:
        result = m_first.renderDate(date.addDays(1));
        break;
    case Op::Decrement:
        result = m_first.renderDate(date.addDays(-1));
        break;
    case Op::DayOfWeek:
        result = QString::number(date.dayOfWeek());
        break;
    case Op::DayOfMonth:
        result = QString::number(date.day());
        break;
    case Op::DayOfYear:
        result = QString::number(date.dayOfYear());
        break;
    case Op::Month:
        result = QString::number(date.month());
        break;
    case Op::Year:
        result = QString::number(date.year());
        break;
    case Op::WeekOfYear: {
        int year = 0;
        const int week = date.weekNumber(&year);
        result =
            QStringLiteral("%1,%2").arg(year, 4, 10, QLatin1Char('0')).arg(week, 2, 10, QLatin1Char('0'));
        break;
    }
    case Op::DateToJulianDay:
        result = QString::number(date.toJulianDay());
        break;
    case Op::Quarter:
        result = QString::number((date.month() - 1) / 3 + 1);
        break;
    case Op::DaysInMonth:
        result = QString::number(date.daysInMonth());
        break;
    default: // DaysInYear
        result = QString::number(date.daysInYear());
        break;
    }
    return true;
}

bool Calculation::numberOneValue(int row, QString &result)
{
    bool ok = false;
    const double value = m_first.number(row, &ok);
    if (!ok) {
        failValue(m_first, row, NotNumber);
        result = m_errors.numberExpected;
        return false;
    }
    if (m_op == Op::Log10 || m_op == Op::Ln || m_op == Op::Log2) {
        if (value <= 0) {
            failValue(m_first, row, NotPositive);
            result = m_errors.positiveExpected;
            return false;
        }
        result = renderNumber(m_op == Op::Log10 ? std::log10(value)
                : m_op == Op::Ln                ? std::log(value)
                                                : std::log2(value));
        return true;
    }
    // An integer keeps all its digits, beyond what a double holds, unless the step would
    // run past the 64-bit range. A number with a fraction can't be an integer text, so
    // such cells aren't read a second time.
    ok = value == std::trunc(value);
    const qint64 integer = ok ? m_first.integer(row, &ok) : 0;
    if (ok) {
        constexpr qint64 lowest = std::numeric_limits<qint64>::min();
        constexpr qint64 highest = std::numeric_limits<qint64>::max();
        switch (m_op) {
        case Op::Abs:
            if (integer != lowest) {
                result = QString::number(integer < 0 ? -integer : integer);
                return true;
            }
            break;
        case Op::Ceiling:
        case Op::Floor:
        case Op::Round:
            result = QString::number(integer);
            return true;
        case Op::Sign:
            result = QString::number(integer > 0 ? 1 : integer < 0 ? -1 : 0);
            return true;
        case Op::Increment:
            if (integer != highest) {
                result = QString::number(integer + 1);
                return true;
            }
            break;
        default: // Decrement
            if (integer != lowest) {
                result = QString::number(integer - 1);
                return true;
            }
            break;
        }
    }
    switch (m_op) {
    case Op::Abs:
        result = renderNumber(std::fabs(value));
        break;
    case Op::Ceiling:
        result = QString::number(toInt32(std::ceil(value)));
        break;
    case Op::Floor:
        result = QString::number(toInt32(std::floor(value)));
        break;
    case Op::Round:
        // Halves go upward for both signs: 2.5 gives 3 and -2.5 gives -2.
        result = QString::number(toInt32(std::floor(value + 0.5)));
        break;
    case Op::Sign:
        result = QString::number(value > 0 ? 1 : value < 0 ? -1 : 0);
        break;
    case Op::Increment:
        result = renderNumber(value + 1);
        break;
    default: // Decrement
        result = renderNumber(value - 1);
        break;
    }
    return true;
}

} // namespace

Dataset TransformCalculate::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed) // only a verifying transform may stop the flow
    if (inputs.size() != 1 || !inputs.first())
        return Dataset();
    const Parameter *autoName = parameter(QStringLiteral("Auto_New_Name"));
    const Parameter *newName = parameter(QStringLiteral("New_Name"));
    const Parameter *operation = parameter(QStringLiteral("Operation"));
    const Parameter *types[] = {parameter(QStringLiteral("Type1")), parameter(QStringLiteral("Type2"))};
    const Parameter *columns[] = {parameter(QStringLiteral("Column1")), parameter(QStringLiteral("Column2"))};
    const Parameter *constants[] = {
        parameter(QStringLiteral("Constant1")), parameter(QStringLiteral("Constant2"))};
    for (const Parameter *option : {autoName, newName, operation, types[0], types[1], columns[0], columns[1],
             constants[0], constants[1]}) {
        if (!option)
            return Dataset();
    }

    const Dataset &input = inputs.first()->dataset();
    Dataset output = input;
    output.appendColumn();
    const int newColumn = output.columnCount() - 1;
    const int rowCount = input.rowCount();

    const CalculateOperationInfo info = operationInfo(operation->selectionText());
    const QLocale locale;
    std::vector<std::unique_ptr<Operand>> operands;
    for (int i = 0; i < 2; ++i) {
        int column = -1;
        if (types[i]->selectionIndex() != ConstantChoice) {
            column = input.columnIndex(columns[i]->columnId()).toInt();
            const bool missing = column < 0 || column >= input.columnCount();
            if (missing && (i == 0 || info.twoValues)) {
                // Nothing to compute from: the new column stays empty and unnamed.
                addInformation(
                    tr("%1 calculations succeeded, %2 failed").arg(formatCount(0), formatCount(rowCount)));
                return output;
            }
        }
        operands.push_back(std::make_unique<Operand>(input, column, constants[i]->stringValue(), locale));
    }
    Operand &first = *operands[0];
    Operand &second = *operands[1];

    // The kinds are settled once, before the rows. The second value can only be a date
    // when the first is, and then it prefers the first one's format.
    QStringList formats = dateFormats();
    formats.removeAll(QString());
    first.detectDate(formats);
    if (first.isDate() && info.twoValues) {
        formats.prepend(first.dateFormat());
        second.detectDate(formats);
    }

    Calculation calculation(info.operation, first, second);
    ResultPool pool;
    int successes = 0;
    QString result;
    for (int row = 0; row < rowCount; ++row) {
        reportRowProgress(row, rowCount);
        const bool succeeded =
            info.twoValues ? calculation.twoValues(row, result) : calculation.oneValue(row, result);
        if (succeeded)
            ++successes;
        if (!result.isEmpty()) {
            pool.share(result);
            output.mutableRow(row)[newColumn] = result;
        }
    }

    QString name;
    if (!autoName->boolValue()) {
        name = newName->stringValue();
    } else {
        const QString op = shortOperator(info);
        const auto valueName = [](const Operand &value) {
            return value.isColumn() ? value.name() : value.name().trimmed();
        };
        if (!info.twoValues)
            name = QStringLiteral("%1(%2)").arg(op, first.name());
        else if (op.size() == 1)
            name = valueName(first) + op + valueName(second);
        else
            name = QStringLiteral("%1(%2,%3)").arg(op, valueName(first), valueName(second));
    }
    QStringList headers = output.displayHeaders();
    headers.last() = name;
    output.setHeaders(headers);

    addRowFailures(calculation.messages(), calculation.failures());
    addInformation(tr("%1 calculations succeeded, %2 failed")
                       .arg(formatCount(successes), formatCount(rowCount - successes)));
    return output;
}
