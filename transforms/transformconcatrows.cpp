#include "transforms/transformconcatrows.h"

QString TransformConcatRows::description() const
{
    return tr("Join groups of consecutive rows into one row, concatenating their values column by column.");
}

QSet<QString> TransformConcatRows::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("merge") << QStringLiteral("combine") << QStringLiteral("wrapped")
          << QStringLiteral("continuation") << QStringLiteral("multiline") << QStringLiteral("lines")
          << QStringLiteral("unwrap");
    return words;
}

QList<QPair<QString, bool>> TransformConcatRows::parameterStates() const
{
    const Parameter *type = parameter(QStringLiteral("Concat_Type"));
    const QString mode = type ? type->selectionText() : QString();
    return {{QStringLiteral("Column"), mode == QLatin1String("Continuation rows")},
        {QStringLiteral("Rows"), mode == QLatin1String("Fixed number of rows")}};
}

void TransformConcatRows::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *type = new Parameter(ParameterKind::Selection, QStringLiteral("Concat_Type"), tr("Concatenate"),
        QStringLiteral("Continuation rows"),
        QStringList {QStringLiteral("Continuation rows"), QStringLiteral("Fixed number of rows")});
    applyDefault(useDefaults, type);
    type->setTooltip(
        tr("Choose how rows are grouped: a row with an empty key cell joins the row above, or every N "
           "rows form one row."));
    addParameter(type);

    auto *key =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Key column"), inputs.value(0));
    key->setTooltip(tr("A row whose cell in this column is empty is joined to the row above it."));
    addParameter(key);

    auto *rows = new Parameter(ParameterKind::Int, QStringLiteral("Rows"), tr("Rows per group"), 2);
    rows->setMinimum(2);
    rows->setMaximum(1000000);
    applyDefault(useDefaults, rows);
    rows->setTooltip(tr("The number of consecutive rows joined into one row."));
    addParameter(rows);

    auto *separator =
        new Parameter(ParameterKind::Text, QStringLiteral("Separator"), tr("Separator"), QStringLiteral(" "));
    separator->setTextRequired(false);
    applyDefault(useDefaults, separator);
    separator->setTooltip(tr("The text put between joined values."));
    addParameter(separator);

    auto *skipEmpty =
        new Parameter(ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("skip empty values"), true);
    applyDefault(useDefaults, skipEmpty);
    skipEmpty->setTooltip(tr("Check to leave out empty values, so that separators do not pile up."));
    addParameter(skipEmpty);
}

Dataset TransformConcatRows::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
