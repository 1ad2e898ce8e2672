#pragma once

#include "transforms/parameter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSpinBox>
#include <QVariant>

#include <functional>

class GraphScene;
class Node;
class QTableWidget;
class QUndoStack;

// The editor of one transform option, mixed in beside the Qt widget that edits it, so
// that IntParameterWidget is both a QSpinBox and a ParameterWidget. Every widget class
// has the signals parameterValueChanged(bool), startTimer(), processNow() and
// userInteraction(), and the slot onChanged(); the item widget connects them by name.
// startTimer means more changes are likely soon (typing), processNow a discrete change.
class ParameterWidget
{
public:
    enum LabelPlace { LeftLabel, OwnLabel, NoLabel };

    virtual ~ParameterWidget() = default;
    // Loads the widget from the parameter with signals blocked; loading is never an edit.
    virtual void updateFromParameter() = 0;
    // Whether the widget is a large editor that spans its row under a title line.
    virtual bool isLarge() const { return false; }
    // Called when the upstream dataset may have changed shape; most widgets reload anyway.
    virtual void upstreamChanged() { updateFromParameter(); }
    // The value the widget holds now, in the parameter's value type.
    virtual QVariant value() const = 0;
    // The widget that first takes focus, the buddy of the row's label.
    virtual QWidget *focusTarget() const { return m_widget; }

    Parameter *parameter() const { return m_parameter; }
    QWidget *widget() const { return m_widget; }
    static LabelPlace labelPlace(ParameterKind kind);
    // Where edits are recorded: one undo step each on the stack, keyed by the node's id.
    // Without a scene an edit only sets the value.
    void setUndoContext(GraphScene *scene, QUndoStack *stack, Node *node);

protected:
    ParameterWidget(Parameter *parameter, QWidget *widget);
    // The shared edit routine: inside one undo step "'%1' change" sets the parameter to
    // value(), then emits parameterValueChanged(true) and startTimer (burst) or processNow.
    // Nothing happens when the value is unchanged.
    void commitChange(bool burst);
    // Enter or leaving a field: typing that waits for the Auto Run delay applies now.
    // Nothing happens when no typing is waiting, so leaving a field unchanged never runs.
    void flushBurst();
    // Runs fill with the signals of the widget and its children blocked, then copies the
    // tool tip and the accessible name and description.
    void load(const std::function<void()> &fill);
    // Whether the widget already shows the parameter's value on the same upstream columns.
    // The pane reloads after every edit; a widget that shows the value is left alone, so
    // that the field being typed in keeps its focus and cursor.
    bool showsCurrentValue();

    Parameter *m_parameter; // owned by the transform

private:
    QWidget *m_widget;
    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_stack;
    QPointer<Node> m_node;
    bool m_burstPending = false;
    bool m_loaded = false;
    QString m_signature; // the upstream columns last shown
};

// The editor of the parameter's kind; every kind has one.
ParameterWidget *createParameterWidget(Parameter *parameter, QWidget *parent);

namespace parameterwidgets {
// The marking colour of unset and broken options.
QColor markColour();
// A column as lists show it: the display header, with " (col %1)" when two share it.
QStringList columnTexts(const Dataset &dataset);
// The tool tip of a column: its first five values.
QString columnSummary(const Dataset &dataset, int column);
// Fills a combo with first (when not empty; its data is an unset ColumnId) and the
// dataset's columns, each with its ColumnId as data, and selects current. A current
// column the dataset no longer holds is added as "<Missing column>" and selected, so that
// it is kept until another is chosen. Returns whether it was missing.
bool fillColumnCombo(QComboBox *combo, const Dataset *dataset, const QString &first, ColumnId current);
// A one-pixel frame in the marking colour with the tool tip, or none with the normal tip.
void setMarked(
    QWidget *widget, bool marked, const QString &tip = QString(), const QString &normalTip = QString());
// Puts the controls of a table's cell widgets in the tab order right after the table, row
// by row, so that rows added later are reached in their place and not at the window's end.
void chainTableTabOrder(QTableWidget *table);
} // namespace parameterwidgets

// Column (0): the none text, then the upstream columns.
class SingleColumnFilteredParameterWidget : public QComboBox, public ParameterWidget
{
    Q_OBJECT
public:
    SingleColumnFilteredParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();

    // Typing while the list is open keeps the columns holding the typed text; the list's
    // first line shows it. Backspace takes a character off.
    void showPopup() override;
    void hidePopup() override;
    QString popupFilter() const { return m_filter; }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void applyFilter();
    QString m_typed; // typed while the popup is closed: selects the first column holding it
    QString m_filter; // typed while the popup is open
};

// Bool (5): a check box with the label as its text.
class BoolParameterWidget : public QCheckBox, public ParameterWidget
{
    Q_OBJECT
public:
    BoolParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return isChecked(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();

private:
    void applySwitchColour();
};

// Selection (6): a combo of the parameter's options.
class SelectionParameterWidget : public QComboBox, public ParameterWidget
{
    Q_OBJECT
public:
    SelectionParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return currentText(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// Text (7): typing is a burst, Enter applies at once.
class TextParameterWidget : public QLineEdit, public ParameterWidget
{
    Q_OBJECT
public:
    TextParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return text(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// Int (8): range, special text and suffix from the parameter; a required 0 is framed.
class IntParameterWidget : public QSpinBox, public ParameterWidget
{
    Q_OBJECT
public:
    IntParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return QSpinBox::value(); }
    bool isMarked() const;
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_typing = false;
};

// Char (9): one character; "Space", "Tab" and "Unit separator (0x1F)" stand for those.
class CharParameterWidget : public QComboBox, public ParameterWidget
{
    Q_OBJECT
public:
    CharParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// Real (17): shows and takes six significant digits, what a saved flow keeps.
class RealParameterWidget : public QDoubleSpinBox, public ParameterWidget
{
    Q_OBJECT
public:
    RealParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QString textFromValue(double value) const override;
    double valueFromText(const QString &text) const override;
    QValidator::State validate(QString &text, int &pos) const override;
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// LongText (18): four lines tall, growing to twelve; Tab moves focus.
class LongTextParameterWidget : public QPlainTextEdit, public ParameterWidget
{
    Q_OBJECT
public:
    LongTextParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return toPlainText(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();

private:
    void fitHeight();
};

// Label (20): words in the secondary colour; no value.
class LabelParameterWidget : public QLabel, public ParameterWidget
{
    Q_OBJECT
public:
    LabelParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return QVariant(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// Date (21): calendar popup, yyyy-MM-dd.
class DateParameterWidget : public QDateEdit, public ParameterWidget
{
    Q_OBJECT
public:
    DateParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override { return date(); }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// Locale (23): every locale by language, country and BCP 47 name; typing filters.
class LocaleParameterWidget : public QComboBox, public ParameterWidget
{
    Q_OBJECT
public:
    LocaleParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged();
};

// The base of the large editors, which are plain containers of several controls.
class CompositeParameterWidget : public QWidget, public ParameterWidget
{
    Q_OBJECT
public:
    bool isLarge() const override { return true; }
signals:
    void parameterValueChanged(bool processNow);
    void startTimer();
    void processNow();
    void userInteraction();
public slots:
    void onChanged() { commitChange(false); }
    void onTyped() { commitChange(true); }

protected:
    CompositeParameterWidget(Parameter *parameter, QWidget *parent);
};
