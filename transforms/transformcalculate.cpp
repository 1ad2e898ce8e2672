#include "transforms/transformcalculate.h"

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

Dataset TransformCalculate::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
