#include "transforms/transformcross.h"

#include "transforms/inputorder.h"

QString TransformCross::description() const
{
    return tr(
        "Combine every row of each input dataset with every row of the other input datasets (cross join).");
}

QSet<QString> TransformCross::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("cartesian") << QStringLiteral("product") << QStringLiteral("combinations")
          << QStringLiteral("every") << QStringLiteral("all") << QStringLiteral("grid");
    return words;
}

bool TransformCross::reorderInputs(QList<Node *> &inputs)
{
    return sortInputsByPosition(inputs);
}

Dataset TransformCross::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
