#include "transforms/verifyrules.h"

#include "core/dataset.h"
#include "core/values.h"

#include <cmath>

namespace {

// Per rule, a bit for each type it applies to (bit n is VerifyColumnType n).
constexpr int AllTypes = (1 << VerifyColumnTypeCount) - 1;
constexpr int RuleTypes[VerifyColumnRuleCount] = {
    AllTypes, // Required
    AllTypes, // Unique
    AllTypes & ~(1 << VerifyTypeText), // Type
    AllTypes & ~(1 << VerifyTypeBoolean), // Minimum value
    AllTypes & ~(1 << VerifyTypeBoolean), // Maximum value
    AllTypes, // Minimum length
    AllTypes, // Maximum length
    AllTypes, // Matches regex
    AllTypes, // Allowed values
    AllTypes, // No surrounding whitespace
};

// Numbers beyond 2^53 are no longer exact, so they don't count as whole.
bool isWholeNumber(double value)
{
    return std::floor(value) == value && std::fabs(value) <= 9007199254740992.0;
}

} // namespace

bool verifyRuleAppliesTo(int rule, int type)
{
    if (rule < 0 || rule >= VerifyColumnRuleCount || type < 0 || type >= VerifyColumnTypeCount)
        return false;
    return (RuleTypes[rule] >> type) & 1;
}

QList<int> verifyColumnRuleIds(int type)
{
    QList<int> ids;
    for (int rule = 0; rule < VerifyColumnRuleCount; ++rule) {
        if (verifyRuleAppliesTo(rule, type))
            ids.append(rule);
    }
    return ids;
}

VerifyColumnRules verifyColumnRulesOff(int type, const QString &dateFormat)
{
    VerifyColumnRules rules;
    rules.type = type;
    for (int id : verifyColumnRuleIds(type)) {
        VerifyRule rule;
        rule.id = id;
        if (id == VerifyType && type == VerifyTypeDate)
            rule.value = dateFormat;
        rules.rules.append(rule);
    }
    return rules;
}

int guessVerifyColumnType(const Dataset &dataset, DataColumnIndex column, QString *dateFormat)
{
    QString format;
    switch (dataset.columnType(column, dateFormats(), &format, false)) {
    case ColumnType::Number: {
        int seen = 0;
        for (int r = 0; r < dataset.rowCount() && seen < 100; ++r) {
            const QString &text = dataset.cell(r, column);
            if (text.trimmed().isEmpty())
                continue;
            ++seen;
            bool ok = false;
            const double number = toNumber(text, false, false, &ok);
            if (ok && !isWholeNumber(number))
                return VerifyTypeNumber;
        }
        return VerifyTypeInteger;
    }
    case ColumnType::Boolean:
        return VerifyTypeBoolean;
    case ColumnType::Date:
        if (dateFormat)
            *dateFormat = format;
        return VerifyTypeDate;
    case ColumnType::Time:
        return VerifyTypeTime;
    case ColumnType::Text:
        break;
    }
    return VerifyTypeText;
}

VerifyRulesValue verifyRulesOff(const Dataset &dataset)
{
    VerifyRulesValue value;
    const QString values[VerifyDatasetRuleCount] = {
        QStringLiteral("1"),
        QStringLiteral("1000000"),
        dataset.hasHeaders() ? dataset.headers().join(QLatin1Char('\n')) : QString(),
        QString(),
        QString(),
        QString(),
    };
    for (int id = 0; id < VerifyDatasetRuleCount; ++id) {
        VerifyRule rule;
        rule.id = id;
        rule.value = values[id];
        value.datasetRules.append(rule);
    }
    for (int c = 0; c < dataset.columnCount(); ++c) {
        const ColumnId id = dataset.columnId(c);
        if (id.isUnset())
            continue;
        QString format;
        const int type = guessVerifyColumnType(dataset, c, &format);
        value.columns.insert(id, verifyColumnRulesOff(type, format));
    }
    return value;
}
