#include "transformdocument.h"

#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include "flow/nodefactory.h"

#include <QDate>
#include <QPointer>

#include <climits>

namespace {

QString migratedSequenceBound(const QString &name, const QString &text, QString *value)
{
    const QString decoded = Parameter::decodeItem(text);
    const QDate date = QDate::fromString(decoded, QStringLiteral("yyyy-M-d"));
    if (date.isValid()) {
        *value = date.toString(QStringLiteral("yyyy-MM-dd"));
        return name + QStringLiteral("_Date");
    }
    bool ok = false;
    const int number = decoded.trimmed().toInt(&ok);
    *value = ok ? QString::number(number) : QStringLiteral("0");
    return name + QStringLiteral("_Int");
}

} // namespace

namespace TransformDocument {

DocumentItemType itemType()
{
    DocumentItemType type;
    type.group = QStringLiteral("transforms");
    type.element = QStringLiteral("transform");
    type.nodeTypeName = QStringLiteral("Transform");
    type.write = [](const Node &node, DocumentElement &element) {
        if (const auto *transform = qobject_cast<const TransformNode *>(&node))
            write(*transform, element);
    };
    type.create = create;
    type.read = [](Node &node, const DocumentElement &element, DocumentReadContext &context) {
        if (auto *transform = qobject_cast<TransformNode *>(&node))
            read(*transform, element, context);
    };
    return type;
}

void write(const TransformNode &node, DocumentElement &element)
{
    element.setInt(QStringLiteral("id"), node.id());
    element.setText(QStringLiteral("name"), node.transform()->id());
    element.setText(QStringLiteral("comment"), node.comment());
    Document::writePosition(node, element);
    DocumentElement &parameters = element.appendChild(QStringLiteral("parameters"));
    for (const Parameter *parameter : node.transform()->parameterList()) {
        if (parameter->kind() == ParameterKind::Label)
            continue;
        DocumentElement &item = parameters.appendChild(QStringLiteral("parameter"));
        item.setText(QStringLiteral("name"), parameter->name());
        item.setInt(QStringLiteral("type"), int(parameter->kind()));
        // The text form encodes its own items, and stays even when empty.
        item.setAttribute(QStringLiteral("value"), parameter->toText());
    }
}

Node *create(const DocumentElement &element, DocumentReadContext &context)
{
    const QString id = element.text(QStringLiteral("name"));
    const QString typeName = QStringLiteral("Transform:%1").arg(id);
    Node *node = context.factory() && !id.isEmpty() ? context.factory()->create(typeName) : nullptr;
    if (!qobject_cast<TransformNode *>(node)) {
        delete node;
        context.addSkippedTransform(id);
        return nullptr;
    }
    return node;
}

void read(TransformNode &node, const DocumentElement &element, DocumentReadContext &context)
{
    node.setComment(element.text(QStringLiteral("comment")));
    Document::readPosition(node, element);
    // Built now, with no inputs yet: the first connection would otherwise build them with
    // remembered defaults and the texts below would land on options about to be replaced.
    node.createParameters(false);

    QList<ParameterText> texts;
    if (const DocumentElement *parameters = element.firstChild(QStringLiteral("parameters"))) {
        for (const DocumentElement *parameter : parameters->childElements(QStringLiteral("parameter")))
            texts << ParameterText(
                parameter->text(QStringLiteral("name")), parameter->attribute(QStringLiteral("value")));
    }
    texts = migrate(node.transform()->id(), texts, context.version());
    const int version = context.version();
    QPointer<TransformNode> target(&node);
    context.defer([target, texts, version] {
        if (!target)
            return;
        for (const ParameterText &text : texts) {
            Parameter *parameter = target->transform()->parameter(text.first);
            if (!parameter)
                continue;
            parameter->setPendingText(text.second, version);
            // An option that names no column needs no upstream data: it takes its value at
            // once, so that the item pane shows it before the first run.
            if (!parameter->isColumnOption())
                parameter->applyPending();
        }
    });
}

QList<ParameterText> migrate(const QString &transformId, const QList<ParameterText> &parameters, int version)
{
    QList<ParameterText> result = parameters;
    for (ParameterText &parameter : result) {
        const QString &name = parameter.first;
        QString &text = parameter.second;
        if (version < 59 && transformId == QLatin1String("Split")
            && name == QLatin1String("Delimiter_Type")) {
            const QString choice = Parameter::decodeItem(text);
            if (choice == QLatin1String("Text "))
                text = Parameter::encodeItem(QStringLiteral("Text delimiter"));
            else if (choice == QLatin1String("Regex "))
                text = Parameter::encodeItem(QStringLiteral("Regex delimiter"));
        }
        if (version < 68 && transformId == QLatin1String("Calculate") && name == QLatin1String("Operation")
            && Parameter::decodeItem(text) == QLatin1String("JulianDay"))
            text = Parameter::encodeItem(QStringLiteral("DateToJulianDay"));
        if (version < 78 && transformId == QLatin1String("Random") && name == QLatin1String("Maximum_Int")) {
            bool ok = false;
            const int maximum = text.trimmed().toInt(&ok);
            if (ok && maximum > INT_MIN)
                text = QString::number(maximum - 1);
        }
        if (version < 79 && transformId == QLatin1String("Sequence")
            && (name == QLatin1String("User_Define_Minimum_Missing")
                || name == QLatin1String("User_Define_Maximum_Missing"))) {
            QString value;
            parameter.first = migratedSequenceBound(name, text, &value);
            text = value;
        }
    }
    return result;
}

} // namespace TransformDocument
