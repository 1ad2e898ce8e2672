#include "workbench/itemwidgettransform.h"

#include "core/settings.h"
#include "flow/graphscene.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/parametereditor.h"
#include "workbench/prompts.h"

#include <QGridLayout>
#include <QLabel>
#include <QStyle>

#include <memory>

namespace {

const QColor MarkColour(0xFC, 0x33, 0x00);

// "1 Input/Transform item", "2 Input/Transform items", ... as the transform's button tip
// counts them.
QString inputCountText(const Transform *transform)
{
    const int minimum = transform->minimumInputs();
    const int maximum = transform->maximumInputs();
    if (minimum == 1)
        return TransformItemWidget::tr("1 Input/Transform item");
    if (minimum == maximum || maximum == Transform::NoLimit)
        return TransformItemWidget::tr("%1 Input/Transform items").arg(minimum);
    return TransformItemWidget::tr("%1 to %2 Input/Transform items").arg(minimum).arg(maximum);
}

Parameter *findParameter(Node *node, const QString &name)
{
    auto *transformNode = qobject_cast<TransformNode *>(node);
    return transformNode && transformNode->transform() ? transformNode->transform()->parameter(name)
                                                       : nullptr;
}

} // namespace

TransformItemWidget::TransformItemWidget(
    TransformNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    connect(node, &TransformNode::nodeParametersChanged, this, [this] { updateFromNode(); });
}

TransformNode *TransformItemWidget::transformNode() const
{
    return qobject_cast<TransformNode *>(node());
}

QString TransformItemWidget::helpTopic() const
{
    const TransformNode *transformNode = this->transformNode();
    return transformNode ? transformNode->transform()->id() : QString();
}

QString TransformItemWidget::descriptionText() const
{
    const TransformNode *transformNode = this->transformNode();
    return transformNode ? transformNode->transform()->description() : QString();
}

QString TransformItemWidget::resultText() const
{
    const TransformNode *transformNode = this->transformNode();
    return transformNode ? transformNode->transform()->result() : QString();
}

QString TransformItemWidget::connectionHint() const
{
    const TransformNode *transformNode = this->transformNode();
    if (!transformNode)
        return QString();
    const Transform *transform = transformNode->transform();
    if (transformNode->upstream(false).size() >= transform->minimumInputs())
        return QString();
    return tr("Connect %1 to this item.").arg(inputCountText(transform));
}

void TransformItemWidget::buildRows()
{
    for (const Row &row : qAsConst(m_rows)) {
        delete row.editor;
        delete row.label;
    }
    m_rows.clear();
    const TransformNode *transformNode = this->transformNode();
    m_builtFor = transformNode ? transformNode->transform()->parameterList() : QList<Parameter *>();
    QGridLayout *grid = formLayout();
    for (Parameter *parameter : qAsConst(m_builtFor)) {
        Row row;
        row.parameter = parameter;
        row.editor = ParameterEditor::create(parameter, formWidget());
        row.row = grid->rowCount();
        if (row.editor->labelPlace() == ParameterEditor::LeftLabel) {
            row.label = new QLabel(tr("%1:").arg(parameter->label()), formWidget());
            row.label->setBuddy(row.editor->focusWidget());
            row.label->setToolTip(parameter->tooltip());
            row.label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
            grid->addWidget(row.label, row.row, 0);
            grid->addWidget(row.editor, row.row, 1);
        } else {
            grid->addWidget(row.editor, row.row, 0, 1, 2);
        }
        connect(row.editor, &ParameterEditor::edited, this, &TransformItemWidget::onEdited);
        m_rows.append(row);
    }
}

void TransformItemWidget::updateFromNode()
{
    const TransformNode *transformNode = this->transformNode();
    const QList<Parameter *> parameters =
        transformNode ? transformNode->transform()->parameterList() : QList<Parameter *>();
    if (parameters != m_builtFor || m_rows.size() != parameters.size())
        buildRows();
    else {
        for (const Row &row : qAsConst(m_rows))
            row.editor->updateFromParameter();
    }
    applyParameterStates();
}

void TransformItemWidget::applyParameterStates()
{
    const TransformNode *transformNode = this->transformNode();
    if (!transformNode)
        return;
    const Transform *transform = transformNode->transform();
    QHash<QString, bool> states;
    const QList<QPair<QString, bool>> pairs = transform->parameterStates();
    for (const auto &pair : pairs)
        states.insert(pair.first, pair.second);
    const bool hides = transform->hidesDisabledParameters();
    for (const Row &row : qAsConst(m_rows)) {
        const bool on = states.value(row.parameter->name(), true);
        const bool visible = on || !hides;
        row.editor->setVisible(visible);
        row.editor->setEnabled(on);
        if (row.label) {
            row.label->setVisible(visible);
            row.label->setEnabled(on);
            const bool unset = on && row.parameter->isUnset();
            QPalette palette = row.editor->palette();
            if (unset)
                palette.setColor(QPalette::WindowText, MarkColour);
            row.label->setPalette(palette);
            QString tip = row.parameter->tooltip();
            if (unset)
                tip += tr("\nThis option is not set.");
            row.label->setToolTip(tip);
        }
    }
}

ParameterEditor *TransformItemWidget::editor(const QString &parameterName) const
{
    for (const Row &row : m_rows) {
        if (row.parameter->name() == parameterName)
            return row.editor;
    }
    return nullptr;
}

QLabel *TransformItemWidget::label(const QString &parameterName) const
{
    for (const Row &row : m_rows) {
        if (row.parameter->name() == parameterName)
            return row.label;
    }
    return nullptr;
}

void TransformItemWidget::onEdited(bool burst)
{
    auto *editor = qobject_cast<ParameterEditor *>(sender());
    if (!editor || !node() || isRunning())
        return;
    Parameter *parameter = editor->parameter();
    const QVariant value = editor->value();
    if (value == parameter->value() && !parameter->isPending())
        return;
    const QString name = parameter->name();
    const QString label = parameter->label();
    recordEdit(
        label.isEmpty() ? tr("change") : tr("'%1' change").arg(label),
        [name, value](Node *node) {
            if (Parameter *p = findParameter(node, name))
                p->setValue(value);
        },
        ItemEditCommand::OptionMerge, name);
    // The editor that changed keeps what the user typed; the others follow the states.
    applyParameterStates();
    if (burst)
        startInvalidateTimer();
    else
        invalidateNow();
}

void TransformItemWidget::saveDefaults()
{
    const TransformNode *transformNode = this->transformNode();
    Settings *settings = Transform::settings();
    if (!transformNode || !settings)
        return;
    const Transform *transform = transformNode->transform();
    const QList<Parameter *> parameters = transform->parameterList();
    for (const Parameter *parameter : parameters) {
        if (parameter->isDefaultable() && !parameter->isColumnOption())
            settings->setValue(
                Transform::defaultKey(transform->id(), parameter->name()), parameter->toText());
    }
}

void TransformItemWidget::restoreDefaults(bool factoryOnly)
{
    TransformNode *transformNode = this->transformNode();
    if (!transformNode)
        return;
    Transform *transform = transformNode->transform();
    // A fresh set of options, made the way a new item gets them; column options stay.
    std::unique_ptr<Transform> fresh(transform->clone());
    Settings *settings = Transform::settings();
    if (factoryOnly)
        Transform::setSettings(nullptr);
    fresh->createParameters(transformNode->inputs(), true);
    if (factoryOnly)
        Transform::setSettings(settings);
    QHash<QString, QVariant> after;
    const QList<Parameter *> parameters = transform->parameterList();
    for (Parameter *parameter : parameters) {
        const Parameter *factory = fresh->parameter(parameter->name());
        if (!factory || parameter->isColumnOption() || parameter->kind() == ParameterKind::Label)
            continue;
        after.insert(parameter->name(), factory->value());
    }
    recordEdit(tr("restore defaults"), [after](Node *node) {
        for (auto it = after.cbegin(); it != after.cend(); ++it) {
            if (Parameter *p = findParameter(node, it.key()))
                p->setValue(it.value());
        }
    });
    if (factoryOnly && settings) {
        const QString group = QStringLiteral("defaults/transforms/%1").arg(transform->id());
        if (!settings->childKeys(group).isEmpty()
            && Prompts::instance()->ask(this, tr("Reset to Factory Options"),
                   tr("Also forget the saved defaults for %1?").arg(transform->name()), QString(),
                   {tr("Forget"), tr("Keep")}, 1, 1)
                == 0) {
            const QStringList keys = settings->childKeys(group);
            for (const QString &key : keys)
                settings->remove(group + QLatin1Char('/') + key);
        }
    }
    updateFromNode();
    invalidateNow();
}
