#include "transforms/transformdiff.h"

#include "flow/node.h"

namespace {

// Moves what a key column option holds (its node and its value, or the document text
// still waiting to be read) onto another option.
struct KeyOption
{
    Node *upstream;
    QVariant value;
    bool pending;
    QString pendingText;
    int pendingVersion;

    explicit KeyOption(const Parameter &parameter)
        : upstream(parameter.upstream())
        , value(parameter.value())
        , pending(parameter.isPending())
        , pendingText(parameter.pendingText())
        , pendingVersion(parameter.pendingVersion())
    { }

    void applyTo(Parameter *parameter) const
    {
        parameter->setUpstream(upstream, false);
        parameter->setValue(value);
        if (pending)
            parameter->setPendingText(pendingText, pendingVersion);
    }
};

} // namespace

void TransformDiff::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text, so they are not translated.
    auto *compareBy = new Parameter(ParameterKind::Selection, QStringLiteral("Compare_By"), tr("Compare by"),
        QStringLiteral("Whole rows"),
        QStringList {QStringLiteral("Whole rows"), QStringLiteral("Key column")});
    compareBy->setTooltip(
        tr("Compare complete rows, or match rows on a key and compare their other values."));
    applyDefault(useDefaults, compareBy);
    addParameter(compareBy);

    // Each key column watches its own input: the first the top (old), the second the bottom (new).
    auto *topKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_1"), tr("Top key column"), inputs.value(0));
    topKey->setTooltip(tr("The key column in the top (old) dataset."));
    addParameter(topKey);

    auto *bottomKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_2"), tr("Bottom key column"), inputs.value(1));
    bottomKey->setTooltip(tr("The key column in the bottom (new) dataset."));
    addParameter(bottomKey);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    caseSensitive->setTooltip(tr("Uncheck to treat values that differ only in case as the same."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *ignoreWhitespace = new Parameter(ParameterKind::Bool, QStringLiteral("Ignore_Whitespace"),
        tr("ignore leading and trailing whitespace"), false);
    ignoreWhitespace->setTooltip(tr("Check to treat \"a \" and \"a\" as the same."));
    applyDefault(useDefaults, ignoreWhitespace);
    addParameter(ignoreWhitespace);

    auto *showSame = new Parameter(
        ParameterKind::Bool, QStringLiteral("Show_Same"), tr("include rows that are the same"), false);
    showSame->setTooltip(tr("Check to list unchanged rows too."));
    applyDefault(useDefaults, showSame);
    addParameter(showSame);
}

QList<QPair<QString, bool>> TransformDiff::parameterStates() const
{
    const Parameter *compareBy = parameter(QStringLiteral("Compare_By"));
    if (!compareBy)
        return {};
    const bool byKey = compareBy->selectionText() != QLatin1String("Whole rows");
    return {
        {QStringLiteral("Column_1"), byKey},
        {QStringLiteral("Column_2"), byKey},
    };
}

bool TransformDiff::reorderInputs(QList<Node *> &inputs)
{
    // The old dataset is the one higher on the canvas, whatever the order of connection.
    Parameter *top = parameter(QStringLiteral("Column_1"));
    Parameter *bottom = parameter(QStringLiteral("Column_2"));
    if (!top || !bottom || !top->upstream() || !bottom->upstream())
        return false;
    if (!(top->upstream()->pos().y() > bottom->upstream()->pos().y()))
        return false;

    const int topIndex = inputs.indexOf(top->upstream());
    const int bottomIndex = inputs.indexOf(bottom->upstream());
    if (topIndex >= 0 && bottomIndex >= 0)
        inputs.swapItemsAt(topIndex, bottomIndex);

    const KeyOption wasTop(*top);
    const KeyOption wasBottom(*bottom);
    wasBottom.applyTo(top);
    wasTop.applyTo(bottom);
    return true;
}

Dataset TransformDiff::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
