#pragma once

#include "core/dataset.h"

#include <QList>
#include <QString>

// Conditions on a cell: the operators that a filter row offers, stored in options by
// number, and the closeness measure that the fuzzy operators and clustering share, so
// that a percentage means the same thing wherever a user sets one.
enum Operator : int {
    OperatorContains = 0,
    OperatorEqual = 1,
    OperatorStartsWith = 2,
    OperatorEndsWith = 3,
    OperatorGreater = 4,
    OperatorLess = 5,
    OperatorGreaterOrEqual = 6,
    OperatorLessOrEqual = 7,
    OperatorMatchesRegex = 8,
    OperatorNotContains = 9,
    OperatorNotEqual = 10,
    OperatorNotStartsWith = 11,
    OperatorNotEndsWith = 12,
    OperatorNotMatchesRegex = 13,
    OperatorFuzzy90 = 14,
    OperatorFuzzy80 = 15,
    OperatorFuzzy70 = 16,
    OperatorFuzzy60 = 17,
    OperatorFuzzy50 = 18,
    OperatorIsEmpty = 19,
    OperatorIsNotEmpty = 20,
    OperatorCount = 21,
};

// Whether value meets the condition (operator, term). An unknown operator is false.
bool matches(int op, const QString &value, const QString &term, bool caseSensitive);
// The same after replacing the column variables "$(…)" in term by that row's cells.
bool matchesRow(int op, const Dataset &dataset, DataRowIndex row, const QString &cellValue,
    const QString &term, bool caseSensitive);

// Compares as dates when both texts are dates, else as numbers when both are numbers,
// else as text: so "10" > "9" but "10" < "9a". Negative, 0 or positive.
int compareValues(const QString &a, const QString &b, bool caseSensitive);

// The closeness in percent that a fuzzy operator asks for.
int fuzzyPercent(int op);
// 100 less the edit distance as a percentage of the longer text, or -1 when the texts
// are too far apart to reach minimum. Two empty texts are 100.
int closeness(const QString &a, const QString &b, int minimum);

// True for the operators that ignore the term (the empty tests).
bool needsNoTerm(int op);
// The label of an operator in combo boxes, translated; empty for an unknown operator.
QString operatorLabel(int op);
// The operators in the order combo boxes show them: the empty tests before the fuzzy ones.
QList<int> operatorDisplayOrder();
