#include "workbench/itemwidget.h"

#include "core/settings.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/helpwindow.h"
#include "workbench/prompts.h"
#include "workbench/undo.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateTime>
#include <QFrame>
#include <QGridLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QStyle>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {

constexpr int WarningsShown = 3;

// Keeps the mouse wheel for the scroll area unless the control has focus.
class WheelGuard : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Wheel) {
            auto *widget = qobject_cast<QWidget *>(watched);
            if (widget && !widget->hasFocus()) {
                event->ignore();
                return true;
            }
        }
        return false;
    }
};

bool isDark(const QWidget *widget)
{
    return widget->palette().color(QPalette::Window).lightness() < 128;
}

} // namespace

void ignoreWheelWithoutFocus(QWidget *widget)
{
    static WheelGuard *guard = new WheelGuard(qApp);
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(guard);
}

ItemEditCommand::ItemEditCommand(GraphScene *scene, int nodeId, const QString &name, const Apply &undo,
    const Apply &redo, int mergeId, const QString &mergeKey)
    : QUndoCommand(name)
    , m_scene(scene)
    , m_nodeId(nodeId)
    , m_undo(undo)
    , m_redo(redo)
    , m_mergeId(mergeId)
    , m_mergeKey(mergeKey)
    , m_lastChange(QDateTime::currentMSecsSinceEpoch())
{ }

void ItemEditCommand::undo()
{
    m_done = false;
    if (!m_scene)
        return;
    if (m_nodeId < 0) {
        m_undo(nullptr);
        return;
    }
    Node *node = m_scene->node(m_nodeId);
    if (!node)
        return;
    m_undo(node);
    m_scene->invalidate(node);
}

void ItemEditCommand::redo()
{
    if (m_done)
        return;
    m_done = true;
    if (!m_scene)
        return;
    if (m_nodeId < 0) {
        m_redo(nullptr);
        return;
    }
    Node *node = m_scene->node(m_nodeId);
    if (!node)
        return;
    m_redo(node);
    m_scene->invalidate(node);
}

bool ItemEditCommand::mergeWith(const QUndoCommand *other)
{
    const auto *edit = dynamic_cast<const ItemEditCommand *>(other);
    if (!edit || m_mergeId == NoMerge || edit->m_mergeKey != m_mergeKey || edit->m_nodeId != m_nodeId
        || edit->m_lastChange - m_lastChange >= MergeIntervalMs)
        return false;
    m_redo = edit->m_redo;
    m_lastChange = edit->m_lastChange;
    return true;
}

ItemWidget::ItemWidget(Node *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : QWidget(parent)
    , m_node(node)
    , m_scene(scene)
    , m_undoStack(undoStack)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 0);
    layout->setSpacing(4);
    buildHeader(layout);

    m_tabs = new QTabWidget(this);
    m_tabs->setDocumentMode(true);
    layout->addWidget(m_tabs, 1);

    m_scrollArea = new QScrollArea(m_tabs);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setAccessibleName(tr("Item options"));
    auto *content = new QWidget(m_scrollArea);
    auto *contentLayout = new QVBoxLayout(content);
    contentLayout->setContentsMargins(4, 6, 8, 6);
    contentLayout->setSpacing(6);

    m_descriptionLabel = new QLabel(content);
    m_descriptionLabel->setWordWrap(true);
    m_descriptionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    contentLayout->addWidget(m_descriptionLabel);
    m_imageLabel = new QLabel(content);
    m_imageLabel->setVisible(false);
    contentLayout->addWidget(m_imageLabel);

    m_hintLabel = new QLabel(content);
    m_hintLabel->setWordWrap(true);
    contentLayout->addWidget(m_hintLabel);

    m_messagesLabel = new QLabel(content);
    m_messagesLabel->setWordWrap(true);
    m_messagesLabel->setTextFormat(Qt::RichText);
    m_messagesLabel->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_messagesLabel->setAccessibleName(tr("Item messages"));
    connect(m_messagesLabel, &QLabel::linkActivated, this, [this] {
        m_showAllWarnings = true;
        refreshMessages();
    });
    contentLayout->addWidget(m_messagesLabel);

    m_informationButton = new QToolButton(content);
    m_informationButton->setCheckable(true);
    m_informationButton->setAutoRaise(true);
    m_informationButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_informationButton->setArrowType(Qt::RightArrow);
    m_informationLabel = new QLabel(content);
    m_informationLabel->setWordWrap(true);
    m_informationLabel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_informationLabel->setVisible(false);
    connect(m_informationButton, &QToolButton::toggled, this, [this](bool open) {
        m_informationButton->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        m_informationLabel->setVisible(open);
    });
    contentLayout->addWidget(m_informationButton, 0, Qt::AlignLeft);
    contentLayout->addWidget(m_informationLabel);

    m_form = new QWidget(content);
    m_formLayout = new QGridLayout(m_form);
    m_formLayout->setContentsMargins(0, 4, 0, 4);
    m_formLayout->setColumnStretch(1, 1);
    m_formLayout->setHorizontalSpacing(8);
    contentLayout->addWidget(m_form);

    m_itemSection = new QWidget(content);
    auto *itemLayout = new QGridLayout(m_itemSection);
    itemLayout->setContentsMargins(0, 0, 0, 0);
    auto *line = new QFrame(m_itemSection);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    itemLayout->addWidget(line, 0, 0, 1, 2);
    m_aliasEdit = new QLineEdit(m_itemSection);
    m_aliasEdit->setPlaceholderText(tr("Name for batch and command line use"));
    m_aliasEdit->setAccessibleName(tr("Alias"));
    m_aliasLabel = new QLabel(tr("Alias:"), m_itemSection);
    m_aliasLabel->setBuddy(m_aliasEdit);
    itemLayout->addWidget(m_aliasLabel, 1, 0);
    itemLayout->addWidget(m_aliasEdit, 1, 1);
    m_commentEdit = new QPlainTextEdit(m_itemSection);
    m_commentEdit->setAccessibleName(tr("Comment"));
    m_commentEdit->setTabChangesFocus(true);
    const int lineHeight = m_commentEdit->fontMetrics().lineSpacing();
    m_commentEdit->setFixedHeight(lineHeight * 2 + 12);
    auto *commentLabel = new QLabel(tr("Comment:"), m_itemSection);
    commentLabel->setBuddy(m_commentEdit);
    itemLayout->addWidget(commentLabel, 2, 0, Qt::AlignTop);
    itemLayout->addWidget(m_commentEdit, 2, 1);
    contentLayout->addWidget(m_itemSection);
    contentLayout->addStretch(1);
    m_scrollArea->setWidget(content);
    m_tabs->addTab(m_scrollArea, tr("Options"));

    m_detailsTable = new QTableWidget(0, 2, m_tabs);
    m_detailsTable->setHorizontalHeaderLabels({tr("Property"), tr("Value")});
    m_detailsTable->verticalHeader()->setVisible(false);
    m_detailsTable->horizontalHeader()->setStretchLastSection(true);
    m_detailsTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_detailsTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_detailsTable->setWordWrap(false);
    m_detailsTable->verticalHeader()->setDefaultSectionSize(m_detailsTable->fontMetrics().height() + 8);
    m_detailsTable->setAccessibleName(tr("Item details"));
    m_detailsTable->installEventFilter(this);
    m_tabs->addTab(m_detailsTable, tr("Details"));

    m_invalidateTimer = new QTimer(this);
    m_invalidateTimer->setSingleShot(true);
    connect(m_invalidateTimer, &QTimer::timeout, this, &ItemWidget::invalidateNow);
    connect(qApp, &QApplication::focusChanged, this, &ItemWidget::onFocusChanged);

    connect(m_aliasEdit, &QLineEdit::editingFinished, this, &ItemWidget::onAliasEdited);
    connect(m_commentEdit, &QPlainTextEdit::textChanged, this, &ItemWidget::onCommentChanged);
    if (m_node) {
        connect(m_node, &Node::nodeStatusChanged, this, &ItemWidget::onNodeChanged);
        connect(m_node, &Node::nodeDataChanged, this, &ItemWidget::onNodeChanged);
    }
}

void ItemWidget::buildHeader(QVBoxLayout *layout)
{
    auto *header = new QHBoxLayout;
    header->setSpacing(6);
    m_iconLabel = new QLabel(this);
    m_iconLabel->setFixedSize(24, 24);
    m_nameLabel = new QLabel(this);
    QFont bold = m_nameLabel->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    m_nameLabel->setFont(bold);
    m_nameLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_nameEdit = new QLineEdit(this);
    m_nameEdit->setFont(bold);
    m_nameEdit->setFrame(false);
    m_nameEdit->setAccessibleName(tr("Item name"));
    m_nameEdit->setStyleSheet(QStringLiteral("QLineEdit { background: transparent; }"));
    m_statusLabel = new QLabel(this);
    m_helpButton = new QToolButton(this);
    m_helpButton->setText(QStringLiteral("?"));
    m_helpButton->setAutoRaise(true);
    m_menuButton = new QToolButton(this);
    m_menuButton->setText(QStringLiteral("⋯"));
    m_menuButton->setToolTip(tr("Defaults of this item's options"));
    m_menuButton->setAccessibleName(tr("Defaults"));
    m_menuButton->setAutoRaise(true);
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(m_menuButton);
    menu->addAction(tr("Save Options as Defaults"), this, [this] { saveDefaults(); });
    menu->addAction(tr("Restore Default Options"), this, [this] { restoreDefaults(false); });
    menu->addAction(tr("Reset to Factory Options"), this, [this] { restoreDefaults(true); });
    m_menuButton->setMenu(menu);
    header->addWidget(m_iconLabel);
    header->addWidget(m_nameLabel, 1);
    header->addWidget(m_nameEdit, 1);
    header->addWidget(m_statusLabel);
    header->addWidget(m_helpButton);
    header->addWidget(m_menuButton);
    layout->addLayout(header);
    connect(m_helpButton, &QToolButton::clicked, this, &ItemWidget::showHelp);
    connect(m_nameEdit, &QLineEdit::editingFinished, this, &ItemWidget::onNameEdited);
}

QString ItemWidget::displayName() const
{
    return m_node ? m_node->name() : QString();
}

QString ItemWidget::helpTopic() const
{
    return m_node ? m_node->typeName() : QStringLiteral("Flow");
}

QColor ItemWidget::secondaryColour(bool dark)
{
    return dark ? QColor(0xA8, 0xA8, 0xA8) : QColor(0x66, 0x66, 0x66);
}

QColor ItemWidget::statusColour(int status, bool dark)
{
    switch (status) {
    case Node::NeedsUpdating:
        return dark ? QColor(0xE0, 0xA5, 0x26) : QColor(0xB7, 0x79, 0x1F);
    case Node::Updating:
        return dark ? QColor(0x4C, 0x9A, 0xFF) : QColor(0x1E, 0x6F, 0xD9);
    case Node::UpToDate:
        return dark ? QColor(0x4C, 0xB8, 0x60) : QColor(0x2E, 0x85, 0x40);
    case Node::Error:
        return dark ? QColor(0xFF, 0x6B, 0x5E) : QColor(0xC8, 0x37, 0x2D);
    default:
        break;
    }
    return dark ? QColor(0xA8, 0xA8, 0xA8) : QColor(0x66, 0x66, 0x66);
}

int ItemWidget::fullHeightHint() const
{
    const int content = m_scrollArea->widget() ? m_scrollArea->widget()->sizeHint().height() : 0;
    return sizeHint().height() - m_scrollArea->sizeHint().height() + content + 8;
}

void ItemWidget::refresh()
{
    refreshHeader();
    refreshMessages();
    refreshDetails();
    refreshItemSection();
    updateFromNode();
}

void ItemWidget::refreshHeader()
{
    const bool editable = hasEditableName() && m_node;
    m_nameEdit->setVisible(editable);
    m_nameLabel->setVisible(!editable);
    const QString name = displayName();
    if (editable) {
        if (!m_nameEdit->hasFocus() && m_nameEdit->text() != name) {
            const QSignalBlocker blocker(m_nameEdit);
            m_nameEdit->setText(name);
            m_nameEdit->setCursorPosition(0);
        }
    } else {
        m_nameLabel->setText(name);
    }
    m_helpButton->setToolTip(tr("Help on %1").arg(m_node ? m_node->displayTypeName() : tr("Flow")));
    m_helpButton->setAccessibleName(m_helpButton->toolTip());
    m_menuButton->setVisible(canSaveDefaults());
    if (m_node && hasStatusAndComment()) {
        m_statusLabel->setText(Node::statusName(m_node->status()));
        QPalette palette = m_statusLabel->palette();
        palette.setColor(QPalette::WindowText, statusColour(m_node->status(), isDark(this)));
        m_statusLabel->setPalette(palette);
    } else {
        m_statusLabel->clear();
    }
    QStyle::StandardPixmap icon = QStyle::SP_FileDialogInfoView;
    if (m_node && m_node->typeName() == QLatin1String("Input"))
        icon = QStyle::SP_DialogOpenButton;
    else if (m_node && m_node->typeName() == QLatin1String("Output"))
        icon = QStyle::SP_DialogSaveButton;
    else if (m_node && m_node->typeName() == QLatin1String("Transform"))
        icon = QStyle::SP_BrowserReload;
    else if (m_node)
        icon = QStyle::SP_FileIcon;
    m_iconLabel->setPixmap(style()->standardIcon(icon).pixmap(24, 24));
}

void ItemWidget::refreshMessages()
{
    const QString description = descriptionText();
    m_descriptionLabel->setText(description);
    m_descriptionLabel->setVisible(!description.isEmpty());
    const QString hint = connectionHint();
    m_hintLabel->setText(hint);
    m_hintLabel->setVisible(!hint.isEmpty());

    // A transform's picture of what it does, at most 240 pixels wide.
    const auto *transformNode = qobject_cast<const TransformNode *>(m_node.data());
    const QString image = transformNode && transformNode->transform() ? transformNode->transform()->imageName() : QString();
    QPixmap picture = image.isEmpty() ? QPixmap() : QPixmap(QStringLiteral(":/images/") + image);
    if (!picture.isNull() && picture.width() > 240)
        picture = picture.scaledToWidth(240, Qt::SmoothTransformation);
    m_imageLabel->setPixmap(picture);
    m_imageLabel->setVisible(!picture.isNull());

    QPalette secondary = m_descriptionLabel->palette();
    secondary.setColor(QPalette::WindowText, secondaryColour(isDark(this)));
    m_descriptionLabel->setPalette(secondary);

    // The result in bold, then the warnings: the first three and a link to the rest. An
    // item in error shows every warning, before the result, since they say what went wrong.
    QString resultHtml;
    const QString result = resultText();
    if (!result.isEmpty())
        resultHtml = QStringLiteral("<p style=\"margin:0 0 4px 0\"><b>%1</b>%2</p>")
                         .arg(tr("Result: ").toHtmlEscaped(), result.toHtmlEscaped());
    QString warningsHtml;
    const QStringList warnings = m_node ? m_node->warnings() : QStringList();
    const bool error = m_node && m_node->status() == Node::Error;
    const int shown = (m_showAllWarnings || error) ? warnings.size() : qMin(WarningsShown, warnings.size());
    const QString colour = statusColour(error ? Node::Error : Node::NeedsUpdating, isDark(this)).name();
    for (int i = 0; i < shown; ++i) {
        QString text = warnings.at(i).toHtmlEscaped();
        text.replace(QLatin1Char('\n'), QLatin1String("<br>"));
        warningsHtml += QStringLiteral("<p style=\"margin:0\"><span style=\"color:%1\">⚠</span> %2</p>")
                            .arg(colour, text);
    }
    if (shown < warnings.size())
        warningsHtml += QStringLiteral("<p style=\"margin:2px 0 0 0\"><a href=\"#warnings\" style=\"color:%1\">%2</a></p>")
                            .arg(palette().color(QPalette::Link).name(), tr("Show all %1 warnings").arg(warnings.size()));
    const QString html = error ? warningsHtml + resultHtml : resultHtml + warningsHtml;
    m_messagesLabel->setText(html);
    m_messagesLabel->setVisible(!html.isEmpty());

    const QStringList information = m_node ? m_node->information() : QStringList();
    m_informationButton->setText(tr("Information (%1)").arg(information.size()));
    m_informationButton->setVisible(!information.isEmpty());
    m_informationLabel->setText(information.join(QLatin1Char('\n')));
    if (information.isEmpty())
        m_informationButton->setChecked(false);
}

void ItemWidget::refreshDetails()
{
    const QList<DetailRow> rows = m_node ? m_node->details() : QList<DetailRow>();
    m_detailsTable->setRowCount(rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        m_detailsTable->setItem(i, 0, new QTableWidgetItem(rows.at(i).first));
        auto *value = new QTableWidgetItem(rows.at(i).second);
        value->setToolTip(rows.at(i).second);
        m_detailsTable->setItem(i, 1, value);
    }
    m_detailsTable->resizeColumnToContents(0);
}

void ItemWidget::refreshItemSection()
{
    m_itemSection->setVisible(m_node != nullptr && hasStatusAndComment());
    if (!m_node)
        return;
    m_aliasLabel->setVisible(hasAlias());
    m_aliasEdit->setVisible(hasAlias());
    if (!m_aliasEdit->hasFocus() && m_aliasEdit->text() != m_node->alias()) {
        const QSignalBlocker blocker(m_aliasEdit);
        m_aliasEdit->setText(m_node->alias());
    }
    if (m_commentEdit->toPlainText() != m_node->comment()) {
        const QSignalBlocker blocker(m_commentEdit);
        m_commentEdit->setPlainText(m_node->comment());
    }
}

QString ItemWidget::connectionHint() const
{
    return QString();
}

int ItemWidget::addFormRow(const QString &label, QWidget *widget)
{
    const int row = m_formLayout->rowCount();
    QList<QWidget *> widgets;
    if (label.isEmpty()) {
        m_formLayout->addWidget(widget, row, 0, 1, 2);
    } else {
        auto *labelWidget = new QLabel(tr("%1:").arg(label), m_form);
        labelWidget->setBuddy(widget);
        // Beside a tall editor the label reads best at its first line.
        const bool tall = qobject_cast<QPlainTextEdit *>(widget) != nullptr;
        labelWidget->setAlignment(Qt::AlignLeft | (tall ? Qt::AlignTop : Qt::AlignVCenter));
        if (tall)
            labelWidget->setContentsMargins(0, 4, 0, 0);
        m_formLayout->addWidget(labelWidget, row, 0);
        m_formLayout->addWidget(widget, row, 1);
        widgets << labelWidget;
        if (widget->accessibleName().isEmpty())
            widget->setAccessibleName(label);
    }
    if (widget->accessibleDescription().isEmpty() && !widget->toolTip().isEmpty())
        widget->setAccessibleDescription(widget->toolTip());
    widgets << widget;
    while (m_rows.size() <= row)
        m_rows.append(QList<QWidget *>());
    m_rows[row] = widgets;
    return row;
}

void ItemWidget::setRowVisible(int row, bool visible)
{
    for (QWidget *widget : m_rows.value(row))
        widget->setVisible(visible);
}

bool ItemWidget::isRowVisible(int row) const
{
    const QList<QWidget *> widgets = m_rows.value(row);
    return !widgets.isEmpty() && !widgets.last()->isHidden();
}

void ItemWidget::blockFormSignals(bool block)
{
    // Item models stay live: a list or combo box filled while its model is silent would
    // show none of its rows.
    const QList<QObject *> children = m_form->findChildren<QObject *>();
    for (QObject *child : children) {
        if (!qobject_cast<QAbstractItemModel *>(child) && !qobject_cast<QItemSelectionModel *>(child))
            child->blockSignals(block);
    }
}

void ItemWidget::setRowEnabled(int row, bool enabled)
{
    for (QWidget *widget : m_rows.value(row))
        widget->setEnabled(enabled);
}

void ItemWidget::setRunning(bool running)
{
    m_running = running;
    m_form->setEnabled(!running);
    m_itemSection->setEnabled(!running);
    m_nameEdit->setReadOnly(running);
    m_menuButton->setEnabled(!running);
}

void ItemWidget::recordEdit(
    const QString &name, const std::function<void(Node *node)> &change, int mergeId, const QString &mergeKey)
{
    if (!m_node)
        return;
    UndoScope scope(
        m_scene, m_undoStack, name, mergeId, QStringLiteral("%1/%2").arg(m_node->id()).arg(mergeKey));
    change(m_node);
}

void ItemWidget::startInvalidateTimer()
{
    int delay = 1000;
    if (m_scene && m_scene->settings())
        delay = m_scene->settings()->intValue(QStringLiteral("auto_run_delay_ms"));
    m_invalidateTimer->start(qMax(0, delay));
}

void ItemWidget::invalidateNow()
{
    m_invalidateTimer->stop();
    if (m_scene && m_node)
        m_scene->invalidate(m_node);
}

bool ItemWidget::isInvalidatePending() const
{
    return m_invalidateTimer->isActive();
}

void ItemWidget::onFocusChanged(QWidget *old, QWidget *now)
{
    Q_UNUSED(now)
    // Leaving a field whose typing is waiting for the delay applies it at once.
    if (old && m_invalidateTimer->isActive() && isAncestorOf(old))
        invalidateNow();
}

void ItemWidget::showHelp()
{
    const QString topic = helpTopic();
    emit helpRequested(topic);
    // A transform's page by its id; the other items' pages by their type.
    if (qobject_cast<const TransformNode *>(m_node.data()))
        HelpWindow::showTransform(topic);
    else
        HelpWindow::showItem(topic);
}

bool ItemWidget::offerToForgetDefaults(const QString &group, const QString &typeName)
{
    Settings *settings = m_scene ? m_scene->settings() : nullptr;
    if (!settings)
        return false;
    QStringList keys = settings->childKeys(group);
    // The choice of long or wide repeated values is a setting of every input, not a default.
    keys.removeAll(QStringLiteral("long_or_wide"));
    if (keys.isEmpty())
        return false;
    const int answer = Prompts::instance()->ask(this, tr("Reset to Factory Options"),
        tr("Also forget the saved defaults for %1?").arg(typeName), QString(), {tr("Forget"), tr("Keep")}, 1, 1);
    if (answer != 0)
        return false;
    for (const QString &key : qAsConst(keys))
        settings->remove(group + QLatin1Char('/') + key);
    return true;
}

void ItemWidget::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // A theme change: the status, secondary and warning colours follow the new palette.
    if (m_detailsTable && (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)) {
        refreshHeader();
        refreshMessages();
    }
}

void ItemWidget::onNameEdited()
{
    if (!m_node || !hasEditableName())
        return;
    const QString before = m_node->Node::name();
    const QString after = m_nameEdit->text().trimmed();
    if (after == before)
        return;
    recordEdit(tr("rename"), [after](Node *node) { node->setName(after); });
    refreshHeader();
}

void ItemWidget::onAliasEdited()
{
    if (!m_node)
        return;
    const QString before = m_node->alias();
    const QString after = m_aliasEdit->text().trimmed();
    if (after == before)
        return;
    recordEdit(tr("alias change"), [after](Node *node) { node->setAlias(after); });
    // An alias changes nothing in the data; no run is needed.
}

void ItemWidget::onCommentChanged()
{
    if (!m_node)
        return;
    const QString before = m_node->comment();
    const QString after = m_commentEdit->toPlainText();
    if (after == before)
        return;
    recordEdit(
        tr("comment change"), [after](Node *node) { node->setComment(after); }, ItemEditCommand::CommentMerge,
        QStringLiteral("comment"));
    // Grow from two lines to six as the text does.
    const int lines = qBound(2, m_commentEdit->document()->lineCount(), 6);
    m_commentEdit->setFixedHeight(m_commentEdit->fontMetrics().lineSpacing() * lines + 12);
}

void ItemWidget::onNodeChanged()
{
    refreshHeader();
    refreshMessages();
    refreshDetails();
}

bool ItemWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_detailsTable && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy)) {
        QStringList lines;
        const QModelIndexList rows = m_detailsTable->selectionModel()->selectedRows();
        for (const QModelIndex &index : rows) {
            lines << m_detailsTable->item(index.row(), 0)->text() + QLatin1Char('\t')
                    + m_detailsTable->item(index.row(), 1)->text();
        }
        QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
