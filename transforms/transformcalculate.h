#pragma once

#include "transforms/transform.h"

// The operations of Calculate. The numbers are what processing switches on; the choice
// list shows them in another order (see TransformCalculate::operations()).
enum class CalculateOperation : int {
    Add = 0,
    Subtract = 1,
    Multiply = 2,
    Divide = 3,
    Power = 4,
    Abs = 5,
    Ceiling = 6,
    Floor = 7,
    Round = 8,
    Sign = 9,
    Increment = 10,
    Decrement = 11,
    DayOfWeek = 12,
    DayOfMonth = 13,
    DayOfYear = 14,
    Month = 15,
    Year = 16,
    MSecsToDateTime = 17,
    DateTimeToMSecs = 18,
    Length = 19,
    Log10 = 20,
    Ln = 21,
    Modulus = 22,
    WeekOfYear = 23,
    DateToJulianDay = 24,
    LevDistance = 25,
    Maximum = 26,
    Minimum = 27,
    Or = 28,
    And = 29,
    Xor = 30,
    Log2 = 31,
    IndexOf = 32,
    LastIndexOf = 33,
    JulianDayToDate = 34,
    Quarter = 35,
    WordCount = 36,
    DaysInMonth = 37,
    DaysInYear = 38,
    Occurrences = 39,
    MSecsToTime = 40,
    TimeToMSecs = 41,
    AndBitwise = 42,
    OrBitwise = 43,
    XorBitwise = 44,
};

// One entry of the operation choice list.
struct CalculateOperationInfo
{
    CalculateOperation operation;
    QString text; // the choice text, as stored in documents
    bool twoValues; // false: the second value's options don't apply
};

// Derives one new column from one or two values, each a column or a constant.
class TransformCalculate : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 1; }
    QString id() const override { return QStringLiteral("Calculate"); }
    QString name() const override { return tr("Calculate"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return true; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformCalculate)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

    // The 45 operations in the order of the choice list.
    static const QList<CalculateOperationInfo> &operations();
    static QStringList operationTexts();
    // A text that names no operation reads as Add.
    static CalculateOperationInfo operationInfo(const QString &text);
    // "+" for "+ Add" and the other five symbol operations; the whole text otherwise.
    static QString shortOperator(const CalculateOperationInfo &info);
    // The operation the "Operation" option holds now.
    CalculateOperationInfo currentOperation() const;

private:
    void updateValueTooltips(bool twoValues) const;
};
