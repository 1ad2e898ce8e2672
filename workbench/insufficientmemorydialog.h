#pragma once

#include <QDialog>

class QDoubleSpinBox;
class QWidget;

// Asked during a run when Tabrelle uses more memory than the maximum in the preferences:
// raise the maximum and go on, or close the program. Escape and the close button do
// nothing, so that the choice is always made on purpose.
class InsufficientMemoryDialog : public QDialog
{
    Q_OBJECT
public:
    // usedGb: memory in use; limitGb: the maximum set; physicalGb: the machine's memory,
    // 0 when unknown.
    InsufficientMemoryDialog(double usedGb, double limitGb, double physicalGb, QWidget *parent = nullptr);

    double newLimit() const;
    void setNewLimit(double gb);
    // The line shown, for tests and screen readers.
    QString message() const;

    // Shows the dialog: true with newLimitGb set when the user continues.
    static bool ask(QWidget *parent, double usedGb, double limitGb, double physicalGb, double &newLimitGb);

public slots:
    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QString m_message;
    QDoubleSpinBox *m_limitSpin;
};
