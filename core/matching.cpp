#include "core/matching.h"

#include "core/values.h"

#include <QCoreApplication>
#include <QDate>
#include <QRegularExpression>

#include <cmath>
#include <utility>
#include <vector>

namespace {

const char *const operatorLabels[OperatorCount] = {
    QT_TRANSLATE_NOOP("Operator", "c   Contains"),
    QT_TRANSLATE_NOOP("Operator", "=   Equal to"),
    QT_TRANSLATE_NOOP("Operator", "^   Starts with"),
    QT_TRANSLATE_NOOP("Operator", "$   Ends with"),
    QT_TRANSLATE_NOOP("Operator", ">   Greater than"),
    QT_TRANSLATE_NOOP("Operator", "<   Less than"),
    QT_TRANSLATE_NOOP("Operator", ">=  Greater than equal"),
    QT_TRANSLATE_NOOP("Operator", "<=  Less than equal"),
    QT_TRANSLATE_NOOP("Operator", "rx  Matches regex"),
    QT_TRANSLATE_NOOP("Operator", "!c   Doesn't contain"),
    QT_TRANSLATE_NOOP("Operator", "!=  Not equal to"),
    QT_TRANSLATE_NOOP("Operator", "!^  Doesn't start with"),
    QT_TRANSLATE_NOOP("Operator", "!$  Doesn't end with"),
    QT_TRANSLATE_NOOP("Operator", "!rx Doesn't match regex"),
    QT_TRANSLATE_NOOP("Operator", "≈9  90% fuzzy match"),
    QT_TRANSLATE_NOOP("Operator", "≈8  80% fuzzy match"),
    QT_TRANSLATE_NOOP("Operator", "≈7  70% fuzzy match"),
    QT_TRANSLATE_NOOP("Operator", "≈6  60% fuzzy match"),
    QT_TRANSLATE_NOOP("Operator", "≈5  50% fuzzy match"),
    QT_TRANSLATE_NOOP("Operator", "%1   Is empty"),
    QT_TRANSLATE_NOOP("Operator", "!%1  Is not empty"),
};

// A filter tests the same pattern on every row; compiling it once per run of equal
// patterns gives the same answers as compiling it for every test.
bool regexFound(const QString &value, const QString &pattern, bool caseSensitive)
{
    struct Compiled
    {
        QString pattern;
        bool caseSensitive = true;
        bool filled = false;
        QRegularExpression expression;
    };
    thread_local Compiled last;
    if (!last.filled || last.caseSensitive != caseSensitive || last.pattern != pattern) {
        last.expression = QRegularExpression(pattern,
            caseSensitive ? QRegularExpression::NoPatternOption : QRegularExpression::CaseInsensitiveOption);
        last.pattern = pattern;
        last.caseSensitive = caseSensitive;
        last.filled = true;
    }
    // An invalid pattern finds nothing, so its negation holds.
    return last.expression.isValid() && last.expression.match(value).hasMatch();
}

// The edit distance of a and b when it is at most limit, else limit + 1. A cell whose
// diagonal lies d away from the main one needs at least |d| + |d - (m - n)| edits, so only
// a band of about limit + 1 cells per row is computed, and the work stops once a whole row
// is past the limit: the cost grows with length × limit, not length squared.
int boundedDistance(const QChar *a, int n, const QChar *b, int m, int limit)
{
    if (n > m) {
        std::swap(a, b);
        std::swap(n, m);
    }
    if (m - n > limit)
        return limit + 1;
    while (n > 0 && a[0] == b[0]) {
        ++a;
        ++b;
        --n;
        --m;
    }
    while (n > 0 && a[n - 1] == b[m - 1]) {
        --n;
        --m;
    }
    if (n == 0)
        return m;
    const int infinity = limit + 1;
    const int k = m - n;
    const int half = (limit - k) / 2;

    thread_local std::vector<int> buffer;
    if (int(buffer.size()) < m + 1)
        buffer.resize(m + 1);
    int *row = buffer.data();
    const int firstHigh = qMin(m, k + half);
    for (int j = 0; j <= firstHigh; ++j)
        row[j] = j;
    for (int j = firstHigh + 1; j <= m; ++j)
        row[j] = infinity;

    for (int i = 1; i <= n; ++i) {
        const int low = qMax(1, i - half);
        const int high = qMin(m, i + k + half);
        const ushort ca = a[i - 1].unicode();
        int diagonal = row[low - 1];
        int left = infinity;
        if (low == 1) {
            left = i;
            row[0] = i;
        }
        int rowMinimum = infinity;
        for (int j = low; j <= high; ++j) {
            const int up = row[j];
            int cost = diagonal + (ca == b[j - 1].unicode() ? 0 : 1);
            cost = qMin(cost, qMin(up, left) + 1);
            cost = qMin(cost, infinity);
            diagonal = up;
            row[j] = cost;
            left = cost;
            rowMinimum = qMin(rowMinimum, cost);
        }
        if (rowMinimum > limit)
            return infinity;
    }
    return row[m];
}

} // namespace

int compareValues(const QString &a, const QString &b, bool caseSensitive)
{
    if (!a.isEmpty() && !b.isEmpty()) {
        QDate dateA;
        QDate dateB;
        if (cachedDatePair(a, b, &dateA, &dateB))
            return dateA < dateB ? -1 : (dateB < dateA ? 1 : 0);
        bool okA = false;
        const double numberA = cachedNumber(a, &okA);
        if (okA) {
            bool okB = false;
            const double numberB = cachedNumber(b, &okB);
            if (okB)
                return numberA < numberB ? -1 : (numberB < numberA ? 1 : 0);
        }
    }
    // An empty text is neither date nor number.
    return QString::compare(a, b, caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
}

bool matches(int op, const QString &value, const QString &term, bool caseSensitive)
{
    const Qt::CaseSensitivity cs = caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    switch (op) {
    case OperatorContains:
        return value.contains(term, cs);
    case OperatorEqual:
        return compareValues(value, term, caseSensitive) == 0;
    case OperatorStartsWith:
        return value.startsWith(term, cs);
    case OperatorEndsWith:
        return value.endsWith(term, cs);
    case OperatorGreater:
        return compareValues(value, term, caseSensitive) > 0;
    case OperatorLess:
        return compareValues(value, term, caseSensitive) < 0;
    case OperatorGreaterOrEqual:
        return compareValues(value, term, caseSensitive) >= 0;
    case OperatorLessOrEqual:
        return compareValues(value, term, caseSensitive) <= 0;
    case OperatorMatchesRegex:
        return regexFound(value, term, caseSensitive);
    case OperatorNotContains:
    case OperatorNotEqual:
    case OperatorNotStartsWith:
    case OperatorNotEndsWith:
        return !matches(op - OperatorNotContains, value, term, caseSensitive);
    case OperatorNotMatchesRegex:
        return !regexFound(value, term, caseSensitive);
    case OperatorFuzzy90:
    case OperatorFuzzy80:
    case OperatorFuzzy70:
    case OperatorFuzzy60:
    case OperatorFuzzy50: {
        const int minimum = fuzzyPercent(op);
        if (caseSensitive)
            return minimum <= closeness(value, term, minimum);
        return minimum <= closeness(value.toLower(), term.toLower(), minimum);
    }
    case OperatorIsEmpty:
        return value.isEmpty();
    case OperatorIsNotEmpty:
        return !value.isEmpty();
    default:
        return false;
    }
}

bool matchesRow(int op, const Dataset &dataset, DataRowIndex row, const QString &cellValue,
    const QString &term, bool caseSensitive)
{
    // Most terms hold no variable: skip the substitution and its copy.
    if (!term.contains(QLatin1String("$(")))
        return matches(op, cellValue, term, caseSensitive);
    return matches(op, cellValue, dataset.substituteVariables(row, term), caseSensitive);
}

int fuzzyPercent(int op)
{
    switch (op) {
    case OperatorFuzzy80:
        return 80;
    case OperatorFuzzy70:
        return 70;
    case OperatorFuzzy60:
        return 60;
    case OperatorFuzzy50:
        return 50;
    default:
        return 90;
    }
}

int closeness(const QString &a, const QString &b, int minimum)
{
    const int longest = qMax(a.size(), b.size());
    if (longest == 0)
        return 100;
    const double tolerance = std::trunc((100.0 - minimum) * longest / 100);
    if (tolerance < 0)
        return -1;
    // No distance exceeds the longer length, so a larger tolerance changes nothing.
    const int limit = tolerance < longest ? int(tolerance) : longest;
    const int distance = boundedDistance(a.constData(), a.size(), b.constData(), b.size(), limit);
    if (distance > limit)
        return -1;
    return 100 - int(distance * 100.0 / longest);
}

bool needsNoTerm(int op)
{
    return op == OperatorIsEmpty || op == OperatorIsNotEmpty;
}

QString operatorLabel(int op)
{
    if (op < 0 || op >= OperatorCount)
        return QString();
    const QString label = QCoreApplication::translate("Operator", operatorLabels[op]);
    // The empty tests show the empty set sign where their label leaves room for it.
    return label.contains(QLatin1String("%1")) ? label.arg(QChar(0x2205)) : label;
}

QList<int> operatorDisplayOrder()
{
    QList<int> order;
    for (int op = OperatorContains; op <= OperatorNotMatchesRegex; ++op)
        order << op;
    order << OperatorIsEmpty << OperatorIsNotEmpty;
    for (int op = OperatorFuzzy90; op <= OperatorFuzzy50; ++op)
        order << op;
    return order;
}
