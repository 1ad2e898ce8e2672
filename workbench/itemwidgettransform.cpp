#include "workbench/itemwidgettransform.h"

#include "core/settings.h"
#include "flow/graphscene.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/exploreduplicatesdialog.h"
#include "workbench/explorekeysdialog.h"
#include "workbench/parameterwidget.h"
#include "workbench/prompts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
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
        delete row.widget->widget();
        delete row.label;
    }
    m_rows.clear();
    if (m_exploreRow) {
        m_exploreRow->hide();
        m_exploreRow->deleteLater();
    }
    m_exploreRow = nullptr;
    m_exploreButton = nullptr;
    TransformNode *transformNode = this->transformNode();
    m_builtFor = transformNode ? transformNode->transform()->parameterList() : QList<Parameter *>();
    QGridLayout *grid = formLayout();
    const Transform *transform = transformNode ? transformNode->transform() : nullptr;
    if (transform && (transform->canExploreKeys() || transform->canExploreDuplicates())) {
        // The explore button sits above the options, centred.
        m_exploreRow = new QWidget(formWidget());
        auto *layout = new QHBoxLayout(m_exploreRow);
        layout->setContentsMargins(0, 0, 0, 4);
        const bool keys = transform->canExploreKeys();
        m_exploreButton =
            new QPushButton(keys ? tr("Explore Keys...") : tr("Explore Duplicates..."), m_exploreRow);
        m_exploreButton->setToolTip(keys
                ? tr("Click to compare keys between the 2 input datasets.")
                : tr("Click to explorer duplicates in the dataset.\nMay be slow for large "
                     "datasets, especially for fuzzy match."));
        layout->addStretch(1);
        layout->addWidget(m_exploreButton);
        layout->addStretch(1);
        grid->addWidget(m_exploreRow, grid->rowCount(), 0, 1, 2);
        connect(m_exploreButton, &QPushButton::clicked, this, &TransformItemWidget::onExplore);
    }
    const Qt::Alignment labelAlignment =
        Qt::Alignment(style()->styleHint(QStyle::SH_FormLayoutLabelAlignment)) | Qt::AlignVCenter;
    for (Parameter *parameter : qAsConst(m_builtFor)) {
        Row row;
        row.parameter = parameter;
        row.widget = createParameterWidget(parameter, formWidget());
        row.widget->setUndoContext(scene(), undoStack(), transformNode);
        QWidget *widget = row.widget->widget();
        const ParameterWidget::LabelPlace place = ParameterWidget::labelPlace(parameter->kind());
        if (place != ParameterWidget::OwnLabel) {
            row.label = new QLabel(tr("%1:").arg(parameter->label()), formWidget());
            row.label->setBuddy(row.widget->focusTarget());
            row.label->setToolTip(parameter->tooltip());
        }
        int at = grid->rowCount();
        if (place == ParameterWidget::LeftLabel) {
            row.label->setAlignment(labelAlignment);
            // A label beside a tall editor stays by its first line.
            const bool tall =
                parameter->kind() == ParameterKind::LongText || parameter->kind() == ParameterKind::Label;
            grid->addWidget(row.label, at, 0, tall ? Qt::AlignTop : Qt::Alignment());
            grid->addWidget(widget, at, 1);
        } else if (place == ParameterWidget::NoLabel) {
            // A large editor spans the row under its own title line.
            grid->addWidget(row.label, at, 0, 1, 2);
            grid->addWidget(widget, at + 1, 0, 1, 2);
        } else {
            grid->addWidget(widget, at, 0, 1, 2);
        }
        connect(widget, SIGNAL(parameterValueChanged(bool)), this, SLOT(onParameterChange(bool)));
        connect(widget, SIGNAL(startTimer()), this, SLOT(onStartTimer()));
        connect(widget, SIGNAL(processNow()), this, SLOT(onProcessNow()));
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
            row.widget->updateFromParameter();
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
    // The first pair of a name decides, as the run's check of unset options reads them.
    for (const auto &pair : pairs) {
        if (!states.contains(pair.first))
            states.insert(pair.first, pair.second);
    }
    const bool hides = transform->hidesDisabledParameters();
    for (const Row &row : qAsConst(m_rows)) {
        const bool on = states.value(row.parameter->name(), true);
        const bool visible = on || !hides;
        QWidget *widget = row.widget->widget();
        widget->setVisible(visible);
        widget->setEnabled(on);
        // A column option with nothing upstream has no columns to offer.
        if (row.parameter->isColumnOption() && !row.parameter->upstream())
            widget->setEnabled(false);
        widget->update();
        if (row.label) {
            row.label->setVisible(visible);
            row.label->setEnabled(on);
            const bool unset = on && row.parameter->isUnset();
            QPalette palette = widget->palette();
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

ParameterWidget *TransformItemWidget::parameterWidget(const QString &parameterName) const
{
    for (const Row &row : m_rows) {
        if (row.parameter->name() == parameterName)
            return row.widget;
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

void TransformItemWidget::onParameterChange(bool processNow)
{
    Q_UNUSED(processNow)
    // The widget that changed keeps what the user typed; the others follow the states.
    applyParameterStates();
}

void TransformItemWidget::onExplore()
{
    TransformNode *transformNode = this->transformNode();
    if (!transformNode || isRunning())
        return;
    const QPointer<TransformItemWidget> self(this);
    if (transformNode->transform()->canExploreKeys()) {
        ExploreKeysDialog dialog(transformNode, window(), undoStack());
        dialog.exec();
    } else {
        ExploreDuplicatesDialog dialog(transformNode, window(), undoStack());
        dialog.exec();
    }
    // The dialog may have set options; an undo step may even have replaced this widget.
    if (self)
        updateFromNode();
}

void TransformItemWidget::onStartTimer()
{
    startInvalidateTimer();
}

void TransformItemWidget::onProcessNow()
{
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
