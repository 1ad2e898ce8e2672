#include "workbench/parametereditor.h"

#include "flow/document.h"
#include "flow/node.h"
#include "transforms/parameter.h"
#include "workbench/itemwidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSet>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const QColor MarkColour(0xFC, 0x33, 0x00);

// The display headers of a dataset, with " (col %1)" after a header that two columns share.
QStringList columnTexts(const Dataset &dataset)
{
    const QStringList headers = dataset.displayHeaders();
    QStringList texts;
    for (int c = 0; c < headers.size(); ++c) {
        const QString &header = headers.at(c);
        texts << (headers.count(header) > 1 ? ParameterEditor::tr("%1 (col %2)").arg(header).arg(c + 1)
                                            : header);
    }
    return texts;
}

// A spin box that frames itself in the marking colour while a required value is 0.
class MarkedSpinBox : public QSpinBox
{
public:
    using QSpinBox::QSpinBox;
    bool marked = false;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QSpinBox::paintEvent(event);
        if (!marked || !isEnabled())
            return;
        QPainter painter(this);
        painter.setPen(MarkColour);
        painter.drawRect(rect().adjusted(1, 1, -2, -2));
    }
};

// Shows and takes a Real with six significant digits, what a saved flow keeps.
class SignificantSpinBox : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;
    QString textFromValue(double value) const override { return QLocale().toString(value, 'g', 6); }
    double valueFromText(const QString &text) const override
    {
        bool ok = false;
        const double value = QLocale().toDouble(text, &ok);
        return ok ? value : this->value();
    }
    QValidator::State validate(QString &text, int &pos) const override
    {
        Q_UNUSED(pos)
        if (text.isEmpty() || text == QLatin1String("-")
            || text.endsWith(QLatin1Char('e'), Qt::CaseInsensitive))
            return QValidator::Intermediate;
        bool ok = false;
        QLocale().toDouble(text, &ok);
        return ok ? QValidator::Acceptable : QValidator::Invalid;
    }
};

class BoolEditor : public ParameterEditor
{
public:
    BoolEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_box = new QCheckBox(parameter->label(), this);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_box);
        connect(m_box, &QCheckBox::toggled, this, [this] { emit edited(false); });
    }
    LabelPlace labelPlace() const override { return OwnLabel; }
    QVariant value() const override { return m_box->isChecked(); }
    QWidget *focusWidget() const override { return m_box; }

protected:
    void load() override
    {
        m_box->setChecked(m_parameter->boolValue());
        // A checked "Disable" switch stands out in the marking colour.
        m_box->setStyleSheet(m_parameter->isDisableSwitch() && m_box->isChecked()
                ? QStringLiteral("QCheckBox { color: %1; }").arg(MarkColour.name())
                : QString());
    }

private:
    QCheckBox *m_box;
};

class SelectionEditor : public ParameterEditor
{
public:
    SelectionEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_combo = new QComboBox(this);
        ignoreWheelWithoutFocus(m_combo);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_combo);
        connect(m_combo, QOverload<int>::of(&QComboBox::activated), this, [this] { emit edited(false); });
    }
    QVariant value() const override { return m_combo->currentText(); }
    QWidget *focusWidget() const override { return m_combo; }

protected:
    void load() override
    {
        const QStringList options = m_parameter->selectionOptions();
        if (m_combo->count() != options.size()) {
            m_combo->clear();
            m_combo->addItems(options);
        }
        m_combo->setCurrentIndex(qMax(0, options.indexOf(m_parameter->stringValue())));
    }

private:
    QComboBox *m_combo;
};

class TextEditor : public ParameterEditor
{
public:
    TextEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_edit = new QLineEdit(this);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_edit);
        connect(m_edit, &QLineEdit::textEdited, this, [this] { emit edited(true); });
        connect(m_edit, &QLineEdit::returnPressed, this, [this] { emit edited(false); });
    }
    QVariant value() const override { return m_edit->text(); }
    QWidget *focusWidget() const override { return m_edit; }

protected:
    void load() override
    {
        const QString text = m_parameter->stringValue();
        if (m_edit->text() != text)
            m_edit->setText(text);
    }

private:
    QLineEdit *m_edit;
};

class LongTextEditor : public ParameterEditor
{
public:
    LongTextEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_edit = new QPlainTextEdit(this);
        m_edit->setTabChangesFocus(true);
        if (parameter->kind() == ParameterKind::Script)
            m_edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        const int line = m_edit->fontMetrics().lineSpacing();
        m_edit->setMinimumHeight(line * 4 + 12);
        m_edit->setMaximumHeight(line * (parameter->kind() == ParameterKind::Script ? 20 : 12) + 12);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        if (parameter->kind() == ParameterKind::Script) {
            auto *label = new QLabel(tr("%1:").arg(parameter->label()), this);
            label->setBuddy(m_edit);
            layout->addWidget(label);
        }
        layout->addWidget(m_edit);
        connect(m_edit, &QPlainTextEdit::textChanged, this, [this] { emit edited(true); });
    }
    LabelPlace labelPlace() const override
    {
        return m_parameter->kind() == ParameterKind::Script ? NoLabel : LeftLabel;
    }
    QVariant value() const override { return m_edit->toPlainText(); }
    QWidget *focusWidget() const override { return m_edit; }

protected:
    void load() override
    {
        const QString text = m_parameter->stringValue();
        if (m_edit->toPlainText() != text)
            m_edit->setPlainText(text);
    }

private:
    QPlainTextEdit *m_edit;
};

class IntEditor : public ParameterEditor
{
public:
    IntEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_spin = new MarkedSpinBox(this);
        ignoreWheelWithoutFocus(m_spin);
        m_spin->setKeyboardTracking(true);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_spin);
        layout->addStretch(1);
        m_spin->setSingleStep(parameter->intValue() >= 50 ? 10 : 1);
        connect(m_spin, QOverload<int>::of(&QSpinBox::valueChanged), this, [this] {
            // Typed digits come in bursts; arrow steps are single changes.
            emit edited(m_spin->hasFocus() && m_typing);
            m_typing = false;
        });
        connect(m_spin, &QSpinBox::editingFinished, this, [this] {
            if (m_spin->value() != m_parameter->intValue())
                emit edited(false);
        });
        m_spin->installEventFilter(this);
    }
    QVariant value() const override { return m_spin->value(); }
    QWidget *focusWidget() const override { return m_spin; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) {
            const auto *key = static_cast<QKeyEvent *>(event);
            m_typing =
                !key->text().isEmpty() || key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete;
        }
        return ParameterEditor::eventFilter(watched, event);
    }
    void load() override
    {
        m_spin->setRange(m_parameter->minimum(), m_parameter->maximum());
        m_spin->setSpecialValueText(m_parameter->specialValueText());
        m_spin->setSuffix(m_parameter->suffix());
        m_spin->setValue(m_parameter->intValue());
        m_spin->marked = m_parameter->isIntRequired() && m_parameter->intValue() == 0;
        m_spin->update();
    }

private:
    MarkedSpinBox *m_spin;
    bool m_typing = false;
};

class RealEditor : public ParameterEditor
{
public:
    RealEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_spin = new SignificantSpinBox(this);
        ignoreWheelWithoutFocus(m_spin);
        m_spin->setDecimals(15);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_spin);
        layout->addStretch(1);
        connect(m_spin, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this] { emit edited(true); });
    }
    QVariant value() const override { return QString::number(m_spin->value(), 'g', 6).toDouble(); }
    QWidget *focusWidget() const override { return m_spin; }

protected:
    void load() override
    {
        m_spin->setRange(m_parameter->realMinimum(), m_parameter->realMaximum());
        m_spin->setValue(m_parameter->realValue());
    }

private:
    SignificantSpinBox *m_spin;
};

class CharEditor : public ParameterEditor
{
public:
    CharEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_combo = new QComboBox(this);
        m_combo->setEditable(true);
        ignoreWheelWithoutFocus(m_combo);
        m_combo->addItem(tr("Space"), QString(QLatin1Char(' ')));
        m_combo->addItem(tr("Tab"), QString(QLatin1Char('\t')));
        m_combo->addItem(tr("Unit separator (0x1F)"), QString(QChar(0x1F)));
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_combo);
        layout->addStretch(1);
        connect(m_combo, QOverload<int>::of(&QComboBox::activated), this, [this] { emit edited(false); });
        connect(m_combo->lineEdit(), &QLineEdit::editingFinished, this, [this] {
            if (value().toString() != QString(m_parameter->charValue()))
                emit edited(false);
        });
    }
    QVariant value() const override
    {
        const QString text = m_combo->currentText();
        for (int i = 0; i < m_combo->count(); ++i) {
            if (m_combo->itemText(i) == text)
                return m_combo->itemData(i).toString();
        }
        return text.left(1);
    }
    QWidget *focusWidget() const override { return m_combo; }

protected:
    void load() override
    {
        const QChar c = m_parameter->charValue();
        const int index = c.isNull() ? -1 : m_combo->findData(QString(c));
        m_combo->setCurrentIndex(index);
        if (index < 0)
            m_combo->setEditText(c.isNull() ? QString() : QString(c));
    }

private:
    QComboBox *m_combo;
};

class DateEditor : public ParameterEditor
{
public:
    DateEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_edit = new QDateEdit(this);
        ignoreWheelWithoutFocus(m_edit);
        m_edit->setCalendarPopup(true);
        m_edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
        m_edit->setDateRange(QDate(100, 1, 1), QDate(9999, 12, 31));
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_edit);
        layout->addStretch(1);
        connect(m_edit, &QDateEdit::dateChanged, this, [this] { emit edited(m_edit->hasFocus()); });
    }
    QVariant value() const override { return m_edit->date(); }
    QWidget *focusWidget() const override { return m_edit; }

protected:
    void load() override { m_edit->setDate(m_parameter->dateValue()); }

private:
    QDateEdit *m_edit;
};

class LocaleEditor : public ParameterEditor
{
public:
    LocaleEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_combo = new QComboBox(this);
        m_combo->setEditable(true);
        m_combo->setInsertPolicy(QComboBox::NoInsert);
        ignoreWheelWithoutFocus(m_combo);
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
        for (const auto &entry : entries)
            m_combo->addItem(entry.first, entry.second);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_combo);
        connect(m_combo, QOverload<int>::of(&QComboBox::activated), this, [this] { emit edited(false); });
    }
    QVariant value() const override { return m_combo->currentData().toString(); }
    QWidget *focusWidget() const override { return m_combo; }

protected:
    void load() override
    {
        const int index = m_combo->findData(m_parameter->stringValue());
        m_combo->setCurrentIndex(index);
    }

private:
    QComboBox *m_combo;
};

class LabelEditor : public ParameterEditor
{
public:
    LabelEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_label = new QLabel(this);
        m_label->setWordWrap(true);
        m_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        QPalette palette = m_label->palette();
        palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
        m_label->setPalette(palette);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_label);
    }
    QVariant value() const override { return QVariant(); }

protected:
    void load() override { m_label->setText(m_parameter->options().toString()); }

private:
    QLabel *m_label;
};

class ColumnEditor : public ParameterEditor
{
public:
    ColumnEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        m_combo = new QComboBox(this);
        ignoreWheelWithoutFocus(m_combo);
        m_combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        m_combo->setMinimumContentsLength(12);
        auto *layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_combo);
        connect(m_combo, QOverload<int>::of(&QComboBox::activated), this, [this] { emit edited(false); });
    }
    QVariant value() const override
    {
        const int index = m_combo->currentIndex();
        const Dataset *dataset = m_parameter->upstreamDataset();
        if (index <= 0 || !dataset || index > dataset->columnCount()) {
            // A missing column stays as it was until another is chosen.
            if (index > 0 && m_missing)
                return m_parameter->value();
            return QVariant::fromValue(ColumnId());
        }
        return QVariant::fromValue(dataset->columnId(index - 1));
    }
    QWidget *focusWidget() const override { return m_combo; }

protected:
    void load() override
    {
        m_combo->clear();
        m_combo->addItem(m_parameter->noneText());
        const Dataset *dataset = m_parameter->upstreamDataset();
        if (dataset)
            m_combo->addItems(columnTexts(*dataset));
        m_combo->setEnabled(m_parameter->upstream() != nullptr);
        const ColumnId id = m_parameter->value().value<ColumnId>();
        const int index = dataset ? dataset->columnIndex(id).toInt() : -1;
        m_missing = !id.isUnset() && index < 0;
        if (m_missing) {
            m_combo->addItem(tr("<Missing column>"));
            m_combo->setItemData(m_combo->count() - 1, MarkColour, Qt::ForegroundRole);
            m_combo->setCurrentIndex(m_combo->count() - 1);
        } else {
            m_combo->setCurrentIndex(index + 1);
        }
    }

private:
    QComboBox *m_combo;
    bool m_missing = false;
};

class ColumnsEditor : public ParameterEditor
{
public:
    ColumnsEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *label = new QLabel(tr("%1:").arg(parameter->label()), this);
        m_list = new QListWidget(this);
        m_list->setAccessibleName(parameter->label());
        label->setBuddy(m_list);
        m_count = new QLabel(this);
        layout->addWidget(label);
        layout->addWidget(m_list);
        layout->addWidget(m_count);
        connect(m_list, &QListWidget::itemChanged, this, [this] {
            updateCount();
            emit edited(false);
        });
    }
    LabelPlace labelPlace() const override { return NoLabel; }
    QVariant value() const override
    {
        QList<ColumnId> ids;
        const Dataset *dataset = m_parameter->upstreamDataset();
        for (int i = 0; dataset && i < m_list->count() && i < dataset->columnCount(); ++i) {
            if (m_list->item(i)->checkState() == Qt::Checked)
                ids << dataset->columnId(i);
        }
        return QVariant::fromValue(ids);
    }
    QWidget *focusWidget() const override { return m_list; }

protected:
    void load() override
    {
        m_list->clear();
        const Dataset *dataset = m_parameter->upstreamDataset();
        const QList<ColumnId> chosen = m_parameter->value().value<QList<ColumnId>>();
        if (dataset) {
            const QStringList texts = columnTexts(*dataset);
            for (int c = 0; c < texts.size(); ++c) {
                auto *item = new QListWidgetItem(texts.at(c), m_list);
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
                item->setCheckState(chosen.contains(dataset->columnId(c)) ? Qt::Checked : Qt::Unchecked);
            }
        }
        const int rows = qBound(3, m_list->count(), 10);
        m_list->setFixedHeight(m_list->sizeHintForRow(0) * rows + 2 * m_list->frameWidth() + 4);
        m_list->setEnabled(m_parameter->upstream() != nullptr);
        updateCount();
    }

private:
    void updateCount()
    {
        int checked = 0;
        for (int i = 0; i < m_list->count(); ++i)
            checked += m_list->item(i)->checkState() == Qt::Checked;
        m_count->setText(tr("%1 of %2 selected").arg(checked).arg(m_list->count()));
    }

    QListWidget *m_list;
    QLabel *m_count;
};

// The structured kinds until their own editors exist: the option's saved text, one item
// a line. Each line is taken as it stands; only "%", the item separator and "^" are
// encoded, so markers and numbers keep their saved form.
class TextFormEditor : public ParameterEditor
{
public:
    TextFormEditor(Parameter *parameter, QWidget *parent)
        : ParameterEditor(parameter, parent)
    {
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *label = new QLabel(tr("%1:").arg(parameter->label()), this);
        m_edit = new QPlainTextEdit(this);
        m_edit->setTabChangesFocus(true);
        m_edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        m_edit->setAccessibleName(parameter->label());
        const int line = m_edit->fontMetrics().lineSpacing();
        m_edit->setFixedHeight(line * 5 + 12);
        label->setBuddy(m_edit);
        auto *note =
            new QLabel(tr("One item a line, as saved in the flow; columns by position from 1."), this);
        note->setWordWrap(true);
        QPalette palette = note->palette();
        palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
        note->setPalette(palette);
        layout->addWidget(label);
        layout->addWidget(m_edit);
        layout->addWidget(note);
        connect(m_edit, &QPlainTextEdit::textChanged, this, [this] { emit edited(true); });
    }
    LabelPlace labelPlace() const override { return NoLabel; }
    QVariant value() const override
    {
        QStringList items;
        const QStringList lines = m_edit->toPlainText().split(QLatin1Char('\n'));
        for (QString line : lines) {
            line.replace(QLatin1Char('%'), QLatin1String("%25"));
            line.replace(QChar(0x1F), QLatin1String("%1F"));
            line.replace(QLatin1Char('^'), QLatin1String("%5E"));
            items << line;
        }
        while (!items.isEmpty() && items.last().isEmpty())
            items.removeLast();
        Parameter copy(*m_parameter);
        copy.fromText(Parameter::joinItems(items), Document::CurrentVersion);
        return copy.value();
    }
    QWidget *focusWidget() const override { return m_edit; }

protected:
    void load() override
    {
        if (m_edit->hasFocus())
            return;
        QStringList lines;
        const QString text = m_parameter->toText();
        if (!text.isEmpty()) {
            const QStringList items = Parameter::splitItems(text);
            for (const QString &item : items)
                lines << Parameter::decodeItem(item);
        }
        m_edit->setPlainText(lines.join(QLatin1Char('\n')));
    }

private:
    QPlainTextEdit *m_edit;
};

} // namespace

ParameterEditor::ParameterEditor(Parameter *parameter, QWidget *parent)
    : QWidget(parent)
    , m_parameter(parameter)
{ }

void ParameterEditor::updateFromParameter()
{
    if (!m_parameter)
        return;
    const QList<QWidget *> children = findChildren<QWidget *>();
    QVector<bool> wereBlocked;
    for (QWidget *child : children)
        wereBlocked << child->blockSignals(true);
    const QSignalBlocker self(this);
    load();
    for (int i = 0; i < children.size(); ++i)
        children.at(i)->blockSignals(wereBlocked.at(i));
    if (!m_parameter->tooltip().isEmpty()) {
        focusWidget()->setToolTip(m_parameter->tooltip());
        focusWidget()->setAccessibleDescription(m_parameter->tooltip());
    }
    if (focusWidget()->accessibleName().isEmpty())
        focusWidget()->setAccessibleName(m_parameter->label());
}

void ParameterEditor::setMarked(QWidget *widget, bool marked)
{
    widget->setStyleSheet(
        marked ? QStringLiteral("border: 1px solid %1;").arg(MarkColour.name()) : QString());
}

ParameterEditor *ParameterEditor::create(Parameter *parameter, QWidget *parent)
{
    ParameterEditor *editor = nullptr;
    switch (parameter->kind()) {
    case ParameterKind::Column:
        editor = new ColumnEditor(parameter, parent);
        break;
    case ParameterKind::Columns:
    case ParameterKind::OptionalColumns:
        editor = new ColumnsEditor(parameter, parent);
        break;
    case ParameterKind::Bool:
        editor = new BoolEditor(parameter, parent);
        break;
    case ParameterKind::Selection:
        editor = new SelectionEditor(parameter, parent);
        break;
    case ParameterKind::Text:
        editor = new TextEditor(parameter, parent);
        break;
    case ParameterKind::Int:
        editor = new IntEditor(parameter, parent);
        break;
    case ParameterKind::Char:
        editor = new CharEditor(parameter, parent);
        break;
    case ParameterKind::Real:
        editor = new RealEditor(parameter, parent);
        break;
    case ParameterKind::LongText:
    case ParameterKind::Script:
        editor = new LongTextEditor(parameter, parent);
        break;
    case ParameterKind::Label:
        editor = new LabelEditor(parameter, parent);
        break;
    case ParameterKind::Date:
        editor = new DateEditor(parameter, parent);
        break;
    case ParameterKind::Locale:
        editor = new LocaleEditor(parameter, parent);
        break;
    case ParameterKind::SortColumns:
    case ParameterKind::FilterColumns:
    case ParameterKind::ReorderColumns:
    case ParameterKind::If:
    case ParameterKind::RenameColumns:
    case ParameterKind::SplitRows:
    case ParameterKind::UniqueColumns:
    case ParameterKind::ReplaceTerms:
    case ParameterKind::VerifyRules:
    case ParameterKind::GroupColumns:
        editor = new TextFormEditor(parameter, parent);
        break;
    }
    editor->updateFromParameter();
    return editor;
}
