#include "workbench/insufficientmemorydialog.h"

#include "workbench/dialogutil.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <cmath>

namespace {
QString gb(double value)
{
    return QString::number(value, 'f', 1);
}
} // namespace

InsufficientMemoryDialog::InsufficientMemoryDialog(double usedGb, double limitGb, double physicalGb, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("InsufficientMemoryDialog"));
    setWindowTitle(tr("Insufficient Memory"));
    setModal(true);
    // No close button in the title bar: the choice is made with the two buttons.
    setWindowFlags((windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint) & ~Qt::WindowCloseButtonHint
        & ~Qt::WindowContextHelpButtonHint);

    const double physical = physicalGb > 0 ? physicalGb : qMax(usedGb * 2, usedGb + 1.0);
    m_message = tr("Tabrelle is using %1 GB of memory, more than the maximum of %2 GB set in 'Preferences'.\n\n"
                   "This computer has %3 GB of memory. You can raise the maximum and continue, or close Tabrelle. "
                   "If you close it, your flow is kept in a recovery file, without its data.")
                    .arg(gb(usedGb), gb(limitGb), physicalGb > 0 ? gb(physicalGb) : tr("an unknown amount of"));

    auto *layout = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    auto *icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(48, 48));
    icon->setAlignment(Qt::AlignTop);
    auto *text = new QLabel(m_message, this);
    text->setObjectName(QStringLiteral("messageLabel"));
    text->setWordWrap(true);
    text->setMinimumWidth(420);
    top->addWidget(icon);
    top->addWidget(text, 1);
    layout->addLayout(top);

    auto *form = new QFormLayout;
    m_limitSpin = new QDoubleSpinBox(this);
    m_limitSpin->setObjectName(QStringLiteral("limitSpin"));
    m_limitSpin->setDecimals(1);
    m_limitSpin->setSingleStep(0.5);
    m_limitSpin->setSuffix(tr(" GB"));
    const double minimum = std::ceil((usedGb + 0.1) * 10) / 10;
    m_limitSpin->setRange(minimum, qMax(minimum, std::floor(physical * 10) / 10));
    m_limitSpin->setValue(qMin(1.5 * usedGb, 0.9 * physical));
    m_limitSpin->setAccessibleName(tr("New maximum"));
    form->addRow(tr("&New maximum:"), m_limitSpin);
    layout->addLayout(form);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *continueButton = buttons->addButton(tr("&Continue"), QDialogButtonBox::AcceptRole);
    continueButton->setObjectName(QStringLiteral("continueButton"));
    continueButton->setDefault(true);
    QPushButton *closeButton = buttons->addButton(tr("Close &Tabrelle"), QDialogButtonBox::DestructiveRole);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(continueButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(closeButton, &QPushButton::clicked, this, [this] { QDialog::done(QDialog::Rejected); });
}

double InsufficientMemoryDialog::newLimit() const
{
    return m_limitSpin->value();
}

void InsufficientMemoryDialog::setNewLimit(double gb)
{
    m_limitSpin->setValue(gb);
}

QString InsufficientMemoryDialog::message() const
{
    return m_message;
}

void InsufficientMemoryDialog::reject()
{
    // Escape does nothing: Continue or Close Tabrelle must be chosen.
}

void InsufficientMemoryDialog::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

bool InsufficientMemoryDialog::ask(QWidget *parent, double usedGb, double limitGb, double physicalGb, double &newLimitGb)
{
    InsufficientMemoryDialog dialog(usedGb, limitGb, physicalGb, parent);
    if (DialogRunner::exec(&dialog) != QDialog::Accepted)
        return false;
    newLimitGb = dialog.newLimit();
    return true;
}
