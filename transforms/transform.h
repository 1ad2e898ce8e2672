#pragma once

#include "core/dataset.h"
#include "transforms/parameter.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QSet>
#include <QStringList>

#include <functional>

class Node;
class Settings;

enum class TransformCategory : int { All = 0, Merge = 1, Column = 2, Row = 3, Format = 4, Analysis = 5, Other = 6 };

// "Merge", or "&Merge" with its mnemonic; any unknown value reads as Other.
QString categoryText(TransformCategory category, bool withMnemonic = false);
QStringList categoryKeywords(TransformCategory category);

// The operation a transform item carries out: one instance per item, cloned from the
// prototype in the registry. A subclass holds no state beyond its parameters, so a clone
// is its parameter list.
class Transform : public QObject
{
    Q_OBJECT
public:
    static constexpr int NoLimit = 2147483647;

    Transform();
    ~Transform() override;

    virtual int type() const = 0;
    virtual QSet<QString> keywords() const;
    virtual TransformCategory category() const = 0;
    virtual bool isAdvanced() const = 0;
    virtual bool isInPlace() const = 0;
    virtual bool keepsDrilldown() const = 0;
    virtual bool keepsVerifyResults() const { return false; }
    virtual void createParameters(const QList<Node *> &inputs, bool useDefaults);
    virtual Transform *clone() const = 0;
    virtual QList<Parameter *> parameterList() const { return m_parameters; }
    virtual Parameter *parameter(const QString &name) const;
    virtual Parameter *parameterForUpstream(const Node *node) const;
    virtual QList<Parameter *> parametersForUpstream(const Node *node) const;
    virtual QString name() const = 0;
    virtual QString id() const = 0;
    virtual Dataset process(const QList<Node *> &inputs, bool &failed) = 0;
    virtual bool reorderInputs(QList<Node *> &inputs);
    virtual QString description() const = 0;
    virtual QString imageTag() const;
    virtual QString imageName() const { return QString(); }
    virtual QString buttonTip() const;
    virtual int minimumInputs() const = 0;
    virtual int maximumInputs() const = 0;
    virtual void setParameterList(const QList<Parameter *> &parameters);
    virtual void setUpstream(const QList<Node *> &nodes);
    virtual bool hasMinimumOptions() const = 0;
    virtual bool canExploreKeys() const { return false; }
    virtual bool canExploreDuplicates() const { return false; }
    virtual QString topKeyColumnParameterName() const { return QString(); }
    virtual QString bottomKeyColumnParameterName() const { return QString(); }
    virtual QString caseSensitiveParameterName() const { return QString(); }
    virtual QString columnsParameterName() const { return QString(); }
    virtual QString matchTypeParameterName() const { return QString(); }
    virtual QString ignoreSpacesParameterName() const { return QString(); }
    virtual QString ignorePunctuationParameterName() const { return QString(); }
    virtual QString fuzzinessParameterName() const { return QString(); }
    virtual QString dedupeModeParameterName() const { return QString(); }
    virtual bool hidesDisabledParameters() const { return false; }
    virtual bool reservedFlag() const { return false; }
    virtual QList<QPair<QString, bool>> parameterStates() const { return {}; }
    virtual void checkParameters();
    // Called by the item after process(), for work that must follow the result.
    virtual void processingEnded() { }

    // How many of the words are a prefix of some keyword (case-sensitive), each once.
    int keywordMatches(const QStringList &words) const;

    const QStringList &warnings() const { return m_warnings; }
    const QStringList &information() const { return m_information; }
    const QString &result() const { return m_result; }
    void clearMessages();

    int columnParameterCount() const;
    bool hasUniqueParameterNames() const;

    // Where remembered defaults come from; set once by the application.
    static void setSettings(Settings *settings);
    static Settings *settings();
    static QString defaultKey(const QString &transformId, const QString &parameterName);

signals:
    void processed(qreal fraction);

protected:
    void addParameter(Parameter *parameter);
    void applyDefault(bool useDefaults, Parameter *parameter);
    void deleteParameters();
    // For clone(): copies every parameter of this transform into copy.
    void copyParametersTo(Transform *copy) const;

    void addWarning(const QString &text) { m_warnings << text; }
    void addInformation(const QString &text) { m_information << text; }
    void setResult(const QString &text) { m_result = text; }

    // Emits processed(row / rowCount) when row is a multiple of 1000 and rowCount isn't 0.
    void reportRowProgress(int row, int rowCount)
    {
        if (rowCount != 0 && row % 1000 == 0)
            emit processed(double(row) / double(rowCount));
    }
    // Rewrites each cell of the given columns through rewrite(cell, row, column), with
    // row progress; returns how many cells changed. The shape and column ids stay.
    int rewriteColumns(Dataset &dataset, const QList<DataColumnIndex> &columns,
                       const std::function<QString(const QString &, DataRowIndex, DataColumnIndex)> &rewrite);
    // The first five failures word for word, then "+ %1 %2" with "other" or "others".
    void addRowFailures(const QStringList &failures, int totalFailures);
    // "row"/"rows" style: singular for exactly 1.
    static QString plural(qint64 count, const QString &singular, const QString &pluralForm);
    // The "too few inputs" case: the first input passed through with result text, or an
    // empty dataset with no input.
    Dataset passThrough(const QList<Node *> &inputs, const QString &resultText);
    // Until a transform's processing is built: the first input unchanged, with a warning
    // the user sees.
    Dataset notAvailableYet(const QList<Node *> &inputs);

private:
    QList<Parameter *> m_parameters;
    QStringList m_warnings;
    QStringList m_information;
    QString m_result;
};

// One line per transform class, for clone(): "Transform *clone() const override".
#define TABRELLE_TRANSFORM_CLONE(Class)                                                                        \
    Transform *clone() const override                                                                          \
    {                                                                                                          \
        auto *copy = new Class;                                                                                \
        copyParametersTo(copy);                                                                                \
        return copy;                                                                                           \
    }
