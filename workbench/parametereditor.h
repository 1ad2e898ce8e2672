#pragma once

#include <QVariant>
#include <QWidget>

class Parameter;

// A plain editor of one transform option, one per kind: a check box, a combo, a field, a
// spin box, a column list, and for the structured kinds the option's saved text, one item
// a line. It shows the Parameter's value and reports what the user typed or chose; the
// item widget makes that an undo step and sets the value.
class ParameterEditor : public QWidget
{
    Q_OBJECT
public:
    // How the label is laid out: beside the editor, by the editor itself, or not at all.
    enum LabelPlace { LeftLabel, OwnLabel, NoLabel };

    // The editor of the parameter's kind; every kind has one.
    static ParameterEditor *create(Parameter *parameter, QWidget *parent = nullptr);

    Parameter *parameter() const { return m_parameter; }
    virtual LabelPlace labelPlace() const { return LeftLabel; }
    // Loads the editor from the parameter with signals blocked; loading is never an edit.
    void updateFromParameter();
    // The value the editor holds now, in the parameter's value type.
    virtual QVariant value() const = 0;
    // The widget that takes focus and carries the tool tip.
    virtual QWidget *focusWidget() const { return const_cast<ParameterEditor *>(this); }

signals:
    // The user changed the value. burst: more changes are likely to follow soon
    // (typing), so the item waits for the Auto Run delay; else it is invalidated at once.
    void edited(bool burst);

protected:
    ParameterEditor(Parameter *parameter, QWidget *parent);
    virtual void load() = 0;
    // A one-pixel frame in 0xFC3300, or none.
    void setMarked(QWidget *widget, bool marked);

    Parameter *m_parameter; // owned by the transform
};
