#pragma once

#include "transforms/transform.h"

#include <QJSValue>

#include <memory>

class QJSEngine;

// Adds a column computed by the user's script, called once for each row.
//
// Unlike other transforms it keeps one piece of state besides its options: the script
// engine, made on the first run and kept for the item's life, so that a global set by one
// run is still there in the next. A clone starts without one.
class TransformJavascript : public Transform
{
    Q_OBJECT
public:
    TransformJavascript();
    ~TransformJavascript() override;

    int type() const override { return 28; }
    QString id() const override { return QStringLiteral("Javascript"); }
    QString name() const override { return tr("Javascript"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformJavascript)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

    // A number as the script language writes it ("0.30000000000000004", "1e+21", "-0" as
    // "0"), so that a number returned by a script reads as the script would print it.
    static QString scriptNumberText(double value);

private:
    void createEngine();

    std::unique_ptr<QJSEngine> m_engine;
    // Built-ins taken when the engine is made, before any script can replace them.
    QJSValue m_helpers;
};
