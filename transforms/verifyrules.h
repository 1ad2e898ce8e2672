#pragma once

#include "transforms/parameter.h"

class Dataset;

// The types a Verify column can be checked as.
enum VerifyColumnType : int {
    VerifyTypeText = 0,
    VerifyTypeInteger = 1,
    VerifyTypeNumber = 2,
    VerifyTypeDate = 3,
    VerifyTypeTime = 4,
    VerifyTypeBoolean = 5,
};
constexpr int VerifyColumnTypeCount = 6;

// Rules on the whole dataset, by VerifyDatasetRuleId.
enum VerifyDatasetRule : int {
    VerifyMinimumRows = 0,
    VerifyMaximumRows = 1,
    VerifyRequiredColumns = 2,
    VerifyNoDuplicateRows = 3,
    VerifyNoBlankRows = 4,
    VerifyUniqueHeaders = 5,
};
constexpr int VerifyDatasetRuleCount = 6;

// Rules on one column, by VerifyColumnRuleId.
enum VerifyColumnRule : int {
    VerifyRequired = 0,
    VerifyUnique = 1,
    VerifyType = 2,
    VerifyMinimumValue = 3,
    VerifyMaximumValue = 4,
    VerifyMinimumLength = 5,
    VerifyMaximumLength = 6,
    VerifyMatchesRegex = 7,
    VerifyAllowedValues = 8,
    VerifyNoSurroundingWhitespace = 9,
};
constexpr int VerifyColumnRuleCount = 10;

// Whether a column rule can be set on a column of the type: Type has nothing to test on
// Text, and a Boolean has no order for the value limits.
bool verifyRuleAppliesTo(int rule, int type);
// The rules a column of the type offers, in id order.
QList<int> verifyColumnRuleIds(int type);

// Every rule of the type, off (severity 3) with an empty value; a Date column's Type rule
// holds its format.
VerifyColumnRules verifyColumnRulesOff(int type, const QString &dateFormat = QString());

// The type a column is guessed to have: a number column is Integer when every number
// among its first 100 non-empty values is whole, and a date column gives its format.
int guessVerifyColumnType(const Dataset &dataset, DataColumnIndex column, QString *dateFormat);

// The rules with nothing switched on, for a dataset: the six dataset rules with their
// starting values, and every column with its guessed type.
VerifyRulesValue verifyRulesOff(const Dataset &dataset);
