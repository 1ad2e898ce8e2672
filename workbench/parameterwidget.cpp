#include "workbench/parameterwidget.h"

#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/itemwidget.h"
#include "workbench/parameterwidgets.h"
#include "workbench/undo.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QCompleter>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QListView>
#include <QLocale>
#include <QPainter>
#include <QSet>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QUndoStack>

#include <algorithm>

namespace parameterwidgets {

QColor markColour()
{
    return QColor(0xFC, 0x33, 0x00);
}

QStringList columnTexts(const Dataset &dataset)
{
    const QStringList headers = dataset.displayHeaders();
    QStringList texts;
    for (int c = 0; c < headers.size(); ++c) {
        const QString &header = headers.at(c);
        texts << (headers.count(header) > 1 ? QObject::tr("%1 (col %2)").arg(header).arg(c + 1) : header);
    }
    return texts;
}

QString columnSummary(const Dataset &dataset, int column)
{
    QStringList values;
    for (int r = 0; r < dataset.rowCount() && values.size() < 5; ++r)
        values << dataset.cell(r, column);
    return QObject::tr("( %1 )").arg(values.join(QStringLiteral(", ")));
}

bool fillColumnCombo(QComboBox *combo, const Dataset *dataset, const QString &first, ColumnId current)
{
    combo->clear();
    if (!first.isEmpty())
        combo->addItem(first, QVariant::fromValue(ColumnId()));
    if (dataset) {
        const QStringList texts = columnTexts(*dataset);
        for (int c = 0; c < texts.size(); ++c) {
            combo->addItem(texts.at(c), QVariant::fromValue(dataset->columnId(c)));
            combo->setItemData(combo->count() - 1, columnSummary(*dataset, c), Qt::ToolTipRole);
        }
    }
    const int index = dataset && !current.isUnset() ? dataset->columnIndex(current).toInt() : -1;
    const bool missing = !current.isUnset() && index < 0;
    if (missing) {
        combo->addItem(QObject::tr("<Missing column>"), QVariant::fromValue(current));
        QFont italic = combo->font();
        italic.setItalic(true);
        combo->setItemData(combo->count() - 1, italic, Qt::FontRole);
        combo->setItemData(combo->count() - 1, markColour(), Qt::ForegroundRole);
        combo->setCurrentIndex(combo->count() - 1);
    } else if (current.isUnset()) {
        combo->setCurrentIndex(first.isEmpty() ? -1 : 0);
    } else {
        combo->setCurrentIndex(index + (first.isEmpty() ? 0 : 1));
    }
    return missing;
}

void setMarked(QWidget *widget, bool marked, const QString &tip, const QString &normalTip)
{
    const QString sheet = marked
        ? QStringLiteral("%1 { border: 1px solid %2; }")
              .arg(QString::fromLatin1(widget->metaObject()->className()), markColour().name())
        : QString();
    if (widget->styleSheet() != sheet)
        widget->setStyleSheet(sheet);
    widget->setToolTip(marked ? tip : normalTip);
}

void chainTableTabOrder(QTableWidget *table)
{
    QWidget *previous = table;
    for (int r = 0; r < table->rowCount(); ++r) {
        for (int c = 0; c < table->columnCount(); ++c) {
            QWidget *cell = table->cellWidget(r, c);
            if (!cell)
                continue;
            QList<QWidget *> controls;
            if (cell->focusPolicy() != Qt::NoFocus)
                controls << cell;
            const QList<QWidget *> children =
                cell->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
            for (QWidget *child : children) {
                if (child->focusPolicy() != Qt::NoFocus)
                    controls << child;
            }
            for (QWidget *control : qAsConst(controls)) {
                QWidget::setTabOrder(previous, control);
                previous = control;
            }
        }
    }
}

} // namespace parameterwidgets

using namespace parameterwidgets;

ParameterWidget::ParameterWidget(Parameter *parameter, QWidget *widget)
    : m_parameter(parameter)
    , m_widget(widget)
{ }

ParameterWidget::LabelPlace ParameterWidget::labelPlace(ParameterKind kind)
{
    switch (kind) {
    case ParameterKind::Column:
    case ParameterKind::Selection:
    case ParameterKind::Text:
    case ParameterKind::Int:
    case ParameterKind::Char:
    case ParameterKind::Real:
    case ParameterKind::LongText:
    case ParameterKind::Label:
    case ParameterKind::Date:
    case ParameterKind::Locale:
        return LeftLabel;
    case ParameterKind::Bool:
        return OwnLabel;
    case ParameterKind::Columns:
    case ParameterKind::SortColumns:
    case ParameterKind::FilterColumns:
    case ParameterKind::ReorderColumns:
    case ParameterKind::If:
    case ParameterKind::OptionalColumns:
    case ParameterKind::Script:
    case ParameterKind::RenameColumns:
    case ParameterKind::SplitRows:
    case ParameterKind::UniqueColumns:
    case ParameterKind::ReplaceTerms:
    case ParameterKind::VerifyRules:
    case ParameterKind::GroupColumns:
        return NoLabel;
    }
    return LeftLabel;
}

void ParameterWidget::setUndoContext(GraphScene *scene, QUndoStack *stack, Node *node)
{
    m_scene = scene;
    m_stack = stack;
    m_node = node;
}

void ParameterWidget::commitChange(bool burst)
{
    if (!m_parameter)
        return;
    const QVariant after = value();
    if (after == m_parameter->value() && !m_parameter->isPending())
        return;
    {
        const QString label = m_parameter->label();
        const QString name = label.isEmpty()
            ? QString()
            : QCoreApplication::translate("ParameterWidget", "'%1' change").arg(label);
        const QString key =
            m_node ? QStringLiteral("%1/%2").arg(m_node->id()).arg(m_parameter->name()) : QString();
        UndoScope scope(m_scene, m_stack, name, UndoScope::OptionMerge, key);
        m_parameter->setValue(after);
    }
    QMetaObject::invokeMethod(m_widget, "parameterValueChanged", Q_ARG(bool, true));
    QMetaObject::invokeMethod(m_widget, burst ? "startTimer" : "processNow");
    m_burstPending = burst;
}

void ParameterWidget::flushBurst()
{
    if (!m_burstPending)
        return;
    m_burstPending = false;
    QMetaObject::invokeMethod(m_widget, "processNow");
}

bool ParameterWidget::showsCurrentValue()
{
    QString signature;
    if (const Dataset *dataset = m_parameter->upstreamDataset()) {
        signature = dataset->displayHeaders().join(QChar(0x1F));
        for (int c = 0; c < dataset->columnCount(); ++c) {
            const ColumnId id = dataset->columnId(c);
            signature += QStringLiteral("|%1.%2").arg(id.nodeId()).arg(id.sequence());
        }
    }
    const bool same = m_loaded && signature == m_signature && value() == m_parameter->value();
    m_loaded = true;
    m_signature = signature;
    return same;
}

void ParameterWidget::load(const std::function<void()> &fill)
{
    QList<QWidget *> widgets = m_widget->findChildren<QWidget *>();
    widgets.prepend(m_widget);
    QVector<bool> wereBlocked;
    for (QWidget *widget : qAsConst(widgets))
        wereBlocked << widget->blockSignals(true);
    fill();
    for (int i = 0; i < widgets.size(); ++i)
        widgets.at(i)->blockSignals(wereBlocked.at(i));
    QWidget *target = focusTarget();
    if (!m_parameter->tooltip().isEmpty()) {
        m_widget->setToolTip(m_parameter->tooltip());
        target->setToolTip(m_parameter->tooltip());
    }
    target->setAccessibleName(m_parameter->label());
    target->setAccessibleDescription(m_parameter->tooltip());
}

// Column

SingleColumnFilteredParameterWidget::SingleColumnFilteredParameterWidget(
    Parameter *parameter, QWidget *parent)
    : QComboBox(parent)
    , ParameterWidget(parameter, this)
{
    ignoreWheelWithoutFocus(this);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(14);
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
        &SingleColumnFilteredParameterWidget::onChanged);
    updateFromParameter();
}

void SingleColumnFilteredParameterWidget::updateFromParameter()
{
    load([this] {
        fillColumnCombo(
            this, m_parameter->upstreamDataset(), m_parameter->noneText(), m_parameter->columnId());
        setEnabled(m_parameter->upstream() != nullptr);
    });
}

QVariant SingleColumnFilteredParameterWidget::value() const
{
    return QVariant::fromValue(currentData().value<ColumnId>());
}

void SingleColumnFilteredParameterWidget::onChanged()
{
    commitChange(false);
}

void SingleColumnFilteredParameterWidget::keyPressEvent(QKeyEvent *event)
{
    // Typing picks the first column whose name holds the typed text, anywhere in it, so
    // that a column among thousands is a few keys away.
    const QString text = event->text();
    if (!text.isEmpty() && text.at(0).isPrint()
        && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        m_typed += text;
        int found = -1;
        for (int i = 1; i < count() && found < 0; ++i) {
            if (itemText(i).contains(m_typed, Qt::CaseInsensitive))
                found = i;
        }
        if (found < 0) {
            m_typed = text;
            for (int i = 1; i < count() && found < 0; ++i) {
                if (itemText(i).contains(m_typed, Qt::CaseInsensitive))
                    found = i;
            }
        }
        if (found >= 0 && found != currentIndex()) {
            setCurrentIndex(found);
            onChanged();
        }
        return;
    }
    m_typed.clear();
    QComboBox::keyPressEvent(event);
}

void SingleColumnFilteredParameterWidget::showPopup()
{
    m_filter.clear();
    applyFilter();
    view()->installEventFilter(this);
    QComboBox::showPopup();
}

void SingleColumnFilteredParameterWidget::hidePopup()
{
    QComboBox::hidePopup();
    view()->removeEventFilter(this);
    if (!m_filter.isEmpty()) {
        m_filter.clear();
        applyFilter();
    }
}

void SingleColumnFilteredParameterWidget::applyFilter()
{
    auto *list = qobject_cast<QListView *>(view());
    if (!list || count() == 0)
        return;
    int first = -1;
    for (int i = 1; i < count(); ++i) {
        const bool shown = m_filter.isEmpty() || itemText(i).contains(m_filter, Qt::CaseInsensitive);
        list->setRowHidden(i, !shown);
        if (shown && first < 0)
            first = i;
    }
    {
        const QSignalBlocker blocker(this);
        setItemText(0, m_filter.isEmpty() ? m_parameter->noneText() : tr("Filter: %1").arg(m_filter));
    }
    // Enter takes the first column that fits.
    if (!m_filter.isEmpty() && first >= 0)
        list->setCurrentIndex(model()->index(first, 0));
}

bool SingleColumnFilteredParameterWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == view() && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const QString text = key->text();
        if (key->key() == Qt::Key_Backspace && !m_filter.isEmpty()) {
            m_filter.chop(1);
            applyFilter();
            return true;
        }
        if (!text.isEmpty() && text.at(0).isPrint()
            && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            m_filter += text;
            applyFilter();
            return true;
        }
    }
    return QComboBox::eventFilter(watched, event);
}

// Bool

BoolParameterWidget::BoolParameterWidget(Parameter *parameter, QWidget *parent)
    : QCheckBox(parameter->label(), parent)
    , ParameterWidget(parameter, this)
{
    connect(this, &QCheckBox::toggled, this, &BoolParameterWidget::onChanged);
    updateFromParameter();
}

void BoolParameterWidget::updateFromParameter()
{
    load([this] { setChecked(m_parameter->boolValue()); });
    applySwitchColour();
}

void BoolParameterWidget::applySwitchColour()
{
    // A checked "Disable" switch stands out, so that a switched-off transform is seen.
    setStyleSheet(m_parameter->isDisableSwitch() && isChecked()
            ? QStringLiteral("BoolParameterWidget{ color: %1; }").arg(markColour().name())
            : QString());
}

void BoolParameterWidget::onChanged()
{
    applySwitchColour();
    commitChange(false);
}

// Selection

SelectionParameterWidget::SelectionParameterWidget(Parameter *parameter, QWidget *parent)
    : QComboBox(parent)
    , ParameterWidget(parameter, this)
{
    ignoreWheelWithoutFocus(this);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &SelectionParameterWidget::onChanged);
    updateFromParameter();
}

void SelectionParameterWidget::updateFromParameter()
{
    load([this] {
        const QStringList options = m_parameter->selectionOptions();
        QStringList shown;
        for (int i = 0; i < count(); ++i)
            shown << itemText(i);
        if (shown != options) {
            clear();
            addItems(options);
        }
        setCurrentIndex(qMax(0, options.indexOf(m_parameter->stringValue())));
    });
}

void SelectionParameterWidget::onChanged()
{
    commitChange(false);
}

// Text

TextParameterWidget::TextParameterWidget(Parameter *parameter, QWidget *parent)
    : QLineEdit(parent)
    , ParameterWidget(parameter, this)
{
    connect(this, &QLineEdit::textEdited, this, [this] { commitChange(true); });
    connect(this, &QLineEdit::returnPressed, this, &TextParameterWidget::onChanged);
    updateFromParameter();
}

void TextParameterWidget::updateFromParameter()
{
    load([this] {
        const QString text = m_parameter->stringValue();
        if (this->text() != text)
            setText(text);
    });
}

void TextParameterWidget::onChanged()
{
    // Enter runs what was typed at once, even when the value itself was set by typing.
    if (m_parameter && value() == m_parameter->value()) {
        flushBurst();
        return;
    }
    commitChange(false);
}

// Int

IntParameterWidget::IntParameterWidget(Parameter *parameter, QWidget *parent)
    : QSpinBox(parent)
    , ParameterWidget(parameter, this)
{
    ignoreWheelWithoutFocus(this);
    setSingleStep(parameter->intValue() >= 50 ? 10 : 1);
    connect(this, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
        // Typed digits come in bursts; arrow steps are single changes.
        const bool burst = m_typing;
        m_typing = false;
        update();
        commitChange(burst);
    });
    connect(this, &QSpinBox::editingFinished, this, &IntParameterWidget::onChanged);
    updateFromParameter();
}

void IntParameterWidget::updateFromParameter()
{
    load([this] {
        setRange(m_parameter->minimum(), m_parameter->maximum());
        setSpecialValueText(m_parameter->specialValueText());
        setSuffix(m_parameter->suffix());
        setValue(m_parameter->intValue());
    });
    update();
}

bool IntParameterWidget::isMarked() const
{
    return m_parameter->isIntRequired() && QSpinBox::value() == 0;
}

void IntParameterWidget::onChanged()
{
    if (m_parameter && value() == m_parameter->value()) {
        flushBurst();
        return;
    }
    commitChange(false);
}

void IntParameterWidget::keyPressEvent(QKeyEvent *event)
{
    m_typing =
        !event->text().isEmpty() || event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down || event->key() == Qt::Key_PageUp
        || event->key() == Qt::Key_PageDown)
        m_typing = false;
    QSpinBox::keyPressEvent(event);
    m_typing = false;
}

void IntParameterWidget::paintEvent(QPaintEvent *event)
{
    QSpinBox::paintEvent(event);
    if (!isMarked() || !isEnabled())
        return;
    QPainter painter(this);
    painter.setPen(markColour());
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
}

// Char

CharParameterWidget::CharParameterWidget(Parameter *parameter, QWidget *parent)
    : QComboBox(parent)
    , ParameterWidget(parameter, this)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    ignoreWheelWithoutFocus(this);
    addItem(tr("Space"), QStringLiteral(" "));
    addItem(tr("Tab"), QStringLiteral("\t"));
    addItem(tr("Unit separator (0x1F)"), QString(QChar(0x1F)));
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &CharParameterWidget::onChanged);
    connect(lineEdit(), &QLineEdit::editingFinished, this, &CharParameterWidget::onChanged);
    updateFromParameter();
}

void CharParameterWidget::updateFromParameter()
{
    load([this] {
        const QChar c = m_parameter->charValue();
        const int index = c.isNull() ? -1 : findData(QString(c));
        setCurrentIndex(index);
        if (index < 0)
            setEditText(c.isNull() ? QString() : QString(c));
    });
}

QVariant CharParameterWidget::value() const
{
    const QString text = currentText();
    for (int i = 0; i < count(); ++i) {
        if (itemText(i) == text)
            return itemData(i).toString();
    }
    return text.left(1);
}

void CharParameterWidget::onChanged()
{
    commitChange(false);
    // "abc" keeps its first character, and the field shows what was kept.
    if (currentIndex() < 0 && currentText().size() > 1) {
        const QSignalBlocker blocker(this);
        setEditText(currentText().left(1));
    }
}

// Real

RealParameterWidget::RealParameterWidget(Parameter *parameter, QWidget *parent)
    : QDoubleSpinBox(parent)
    , ParameterWidget(parameter, this)
{
    ignoreWheelWithoutFocus(this);
    setDecimals(15);
    connect(this, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, [this] { commitChange(true); });
    connect(this, &QDoubleSpinBox::editingFinished, this, &RealParameterWidget::onChanged);
    updateFromParameter();
}

void RealParameterWidget::updateFromParameter()
{
    load([this] {
        setRange(m_parameter->realMinimum(), m_parameter->realMaximum());
        setValue(m_parameter->realValue());
    });
}

QVariant RealParameterWidget::value() const
{
    return QString::number(QDoubleSpinBox::value(), 'g', 6).toDouble();
}

QString RealParameterWidget::textFromValue(double value) const
{
    return QLocale().toString(value, 'g', 6);
}

double RealParameterWidget::valueFromText(const QString &text) const
{
    bool ok = false;
    const double value = QLocale().toDouble(text, &ok);
    return ok ? value : QDoubleSpinBox::value();
}

QValidator::State RealParameterWidget::validate(QString &text, int &pos) const
{
    Q_UNUSED(pos)
    if (text.isEmpty() || text == QLatin1String("-") || text.endsWith(QLatin1Char('e'), Qt::CaseInsensitive))
        return QValidator::Intermediate;
    bool ok = false;
    QLocale().toDouble(text, &ok);
    return ok ? QValidator::Acceptable : QValidator::Invalid;
}

void RealParameterWidget::onChanged()
{
    if (m_parameter && value() == m_parameter->value()) {
        flushBurst();
        return;
    }
    commitChange(false);
}

// LongText

LongTextParameterWidget::LongTextParameterWidget(Parameter *parameter, QWidget *parent)
    : QPlainTextEdit(parent)
    , ParameterWidget(parameter, this)
{
    setTabChangesFocus(true);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        fitHeight();
        commitChange(true);
    });
    updateFromParameter();
}

void LongTextParameterWidget::updateFromParameter()
{
    load([this] {
        const QString text = m_parameter->stringValue();
        if (toPlainText() != text)
            setPlainText(text);
    });
    fitHeight();
}

void LongTextParameterWidget::fitHeight()
{
    const int lines = qBound(4, document()->lineCount(), 12);
    setFixedHeight(fontMetrics().lineSpacing() * lines + 2 * frameWidth() + 8);
}

void LongTextParameterWidget::onChanged()
{
    commitChange(false);
}

// Label

LabelParameterWidget::LabelParameterWidget(Parameter *parameter, QWidget *parent)
    : QLabel(parent)
    , ParameterWidget(parameter, this)
{
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
    setPalette(palette);
    updateFromParameter();
}

void LabelParameterWidget::updateFromParameter()
{
    load([this] { setText(m_parameter->options().toString()); });
}

void LabelParameterWidget::onChanged()
{ }

// Date

DateParameterWidget::DateParameterWidget(Parameter *parameter, QWidget *parent)
    : QDateEdit(parent)
    , ParameterWidget(parameter, this)
{
    ignoreWheelWithoutFocus(this);
    setCalendarPopup(true);
    setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
    connect(this, &QDateEdit::dateChanged, this,
        [this] { commitChange(hasFocus() && !calendarWidget()->isVisible()); });
    connect(this, &QDateEdit::editingFinished, this, &DateParameterWidget::onChanged);
    updateFromParameter();
}

void DateParameterWidget::updateFromParameter()
{
    load([this] { setDate(m_parameter->dateValue()); });
}

void DateParameterWidget::onChanged()
{
    if (m_parameter && value() == m_parameter->value()) {
        flushBurst();
        return;
    }
    commitChange(false);
}

// Locale

LocaleParameterWidget::LocaleParameterWidget(Parameter *parameter, QWidget *parent)
    : QComboBox(parent)
    , ParameterWidget(parameter, this)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    ignoreWheelWithoutFocus(this);
    QList<QPair<QString, QString>> entries;
    QSet<QString> seen;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    for (const QLocale &locale : locales) {
        const QString name = locale.bcp47Name();
        const QString text = tr("%1 (%2) - %3")
                                 .arg(QLocale::languageToString(locale.language()),
                                     QLocale::countryToString(locale.country()), name);
        if (!seen.contains(text)) {
            seen.insert(text);
            entries.append({text, name});
        }
    }
    std::sort(entries.begin(), entries.end());
    for (const auto &entry : qAsConst(entries))
        addItem(entry.first, entry.second);
    // Typing filters the list to the locales holding the text anywhere.
    completer()->setCompletionMode(QCompleter::PopupCompletion);
    completer()->setFilterMode(Qt::MatchContains);
    completer()->setCaseSensitivity(Qt::CaseInsensitive);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &LocaleParameterWidget::onChanged);
    updateFromParameter();
}

void LocaleParameterWidget::updateFromParameter()
{
    load([this] { setCurrentIndex(findData(m_parameter->stringValue())); });
}

QVariant LocaleParameterWidget::value() const
{
    const int index = findText(currentText());
    return index >= 0 ? itemData(index).toString() : m_parameter->stringValue();
}

void LocaleParameterWidget::onChanged()
{
    commitChange(false);
}

CompositeParameterWidget::CompositeParameterWidget(Parameter *parameter, QWidget *parent)
    : QWidget(parent)
    , ParameterWidget(parameter, this)
{ }

ParameterWidget *createParameterWidget(Parameter *parameter, QWidget *parent)
{
    switch (parameter->kind()) {
    case ParameterKind::Column:
        return new SingleColumnFilteredParameterWidget(parameter, parent);
    case ParameterKind::Columns:
    case ParameterKind::OptionalColumns:
        return new MultipleColumnsParameterWidget(parameter, parent);
    case ParameterKind::SortColumns:
    case ParameterKind::GroupColumns:
        return new SortColumnsParameterWidget(parameter, parent);
    case ParameterKind::FilterColumns:
        return new FilterColumnsParameterWidget(parameter, parent);
    case ParameterKind::ReorderColumns:
        return new ReorderColumnsParameterWidget(parameter, parent);
    case ParameterKind::Bool:
        return new BoolParameterWidget(parameter, parent);
    case ParameterKind::Selection:
        return new SelectionParameterWidget(parameter, parent);
    case ParameterKind::Text:
        return new TextParameterWidget(parameter, parent);
    case ParameterKind::Int:
        return new IntParameterWidget(parameter, parent);
    case ParameterKind::Char:
        return new CharParameterWidget(parameter, parent);
    case ParameterKind::If:
        return new IfParameterWidget(parameter, parent);
    case ParameterKind::Script:
        return new ScriptParameterWidget(parameter, parent);
    case ParameterKind::RenameColumns:
        return new RenameColumnsParameterWidget(parameter, parent);
    case ParameterKind::SplitRows:
        return new SplitRowsParameterWidget(parameter, parent);
    case ParameterKind::UniqueColumns:
        return new UniqueParameterWidget(parameter, parent);
    case ParameterKind::ReplaceTerms:
        return new ReplaceTermsParameterWidget(parameter, parent);
    case ParameterKind::Real:
        return new RealParameterWidget(parameter, parent);
    case ParameterKind::LongText:
        return new LongTextParameterWidget(parameter, parent);
    case ParameterKind::VerifyRules:
        return new VerifyRulesParameterWidget(parameter, parent);
    case ParameterKind::Label:
        return new LabelParameterWidget(parameter, parent);
    case ParameterKind::Date:
        return new DateParameterWidget(parameter, parent);
    case ParameterKind::Locale:
        return new LocaleParameterWidget(parameter, parent);
    }
    return nullptr;
}
