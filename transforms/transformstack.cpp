#include "transforms/transformstack.h"

#include "transforms/inputorder.h"

QString TransformStack::description() const
{
    return tr("Stack the rows of one or more datasets on top of each other, matching columns by header or by "
              "position.");
}

QSet<QString> TransformStack::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("append") << QStringLiteral("union") << QStringLiteral("combine")
          << QStringLiteral("vertically") << QStringLiteral("concatenate") << QStringLiteral("files");
    return words;
}

void TransformStack::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *stackBy =
        new Parameter(ParameterKind::Selection, QStringLiteral("Stack_By"), tr("Match columns by"),
            QStringLiteral("Header"), QStringList {QStringLiteral("Header"), QStringLiteral("Position")});
    applyDefault(useDefaults, stackBy);
    stackBy->setTooltip(tr("Match the columns of the datasets by header text or by position."));
    addParameter(stackBy);

    auto *addSource =
        new Parameter(ParameterKind::Bool, QStringLiteral("Add_Source"), tr("add source column"), false);
    applyDefault(useDefaults, addSource);
    addSource->setTooltip(tr("Check to add a column 'Source' telling which dataset each row came from."));
    addParameter(addSource);
}

bool TransformStack::reorderInputs(QList<Node *> &inputs)
{
    return sortInputsByPosition(inputs);
}

Dataset TransformStack::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
