#include "prompts.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {

Prompts *s_prompts = nullptr;
FileDialogs *s_fileDialogs = nullptr;

QString plainText(QString text)
{
    // "&&" stays a literal ampersand.
    text.replace(QLatin1String("&&"), QLatin1String("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1Char('\x01'), QLatin1Char('&'));
    return text;
}

} // namespace

Prompts *Prompts::instance()
{
    static MessageBoxPrompts boxes;
    return s_prompts ? s_prompts : &boxes;
}

void Prompts::setInstance(Prompts *prompts)
{
    s_prompts = prompts;
}

int MessageBoxPrompts::ask(QWidget *parent, const QString &title, const QString &text, const QString &informativeText,
    const QStringList &buttons, int defaultButton, int escapeButton)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::NoButton, parent);
    box.setInformativeText(informativeText);
    QList<QAbstractButton *> made;
    for (int i = 0; i < buttons.size(); ++i) {
        const QString plain = plainText(buttons.at(i));
        QMessageBox::ButtonRole role = QMessageBox::AcceptRole;
        if (i == escapeButton)
            role = QMessageBox::RejectRole;
        else if (plain == QLatin1String("Don't Save") || plain == QLatin1String("Discard"))
            role = QMessageBox::DestructiveRole;
        QPushButton *button = box.addButton(buttons.at(i), role);
        made << button;
        if (i == defaultButton)
            box.setDefaultButton(button);
    }
    if (escapeButton >= 0 && escapeButton < made.size())
        box.setEscapeButton(made.at(escapeButton));
    box.exec();
    const int index = made.indexOf(box.clickedButton());
    return index >= 0 ? index : escapeButton;
}

void MessageBoxPrompts::warning(QWidget *parent, const QString &title, const QString &text)
{
    QMessageBox::warning(parent, title, text);
}

void MessageBoxPrompts::information(QWidget *parent, const QString &title, const QString &text)
{
    QMessageBox::information(parent, title, text);
}

int ScriptedPrompts::ask(QWidget *parent, const QString &title, const QString &text, const QString &informativeText,
    const QStringList &buttons, int defaultButton, int escapeButton)
{
    Q_UNUSED(parent)
    Q_UNUSED(title)
    Q_UNUSED(informativeText)
    Q_UNUSED(defaultButton)
    asked << text;
    if (answers.isEmpty())
        return escapeButton;
    const QString answer = answers.takeFirst();
    for (int i = 0; i < buttons.size(); ++i) {
        if (plainText(buttons.at(i)) == answer)
            return i;
    }
    return escapeButton;
}

void ScriptedPrompts::warning(QWidget *parent, const QString &title, const QString &text)
{
    Q_UNUSED(parent)
    Q_UNUSED(title)
    warnings << text;
}

void ScriptedPrompts::information(QWidget *parent, const QString &title, const QString &text)
{
    Q_UNUSED(parent)
    Q_UNUSED(title)
    informations << text;
}

FileDialogs *FileDialogs::instance()
{
    static NativeFileDialogs native;
    return s_fileDialogs ? s_fileDialogs : &native;
}

void FileDialogs::setInstance(FileDialogs *dialogs)
{
    s_fileDialogs = dialogs;
}

QStringList NativeFileDialogs::openFiles(
    QWidget *parent, const QString &caption, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileNames(parent, caption, folder, filter);
}

QString NativeFileDialogs::openFile(QWidget *parent, const QString &caption, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, caption, folder, filter);
}

QString NativeFileDialogs::saveFile(QWidget *parent, const QString &caption, const QString &path, const QString &filter)
{
    return QFileDialog::getSaveFileName(parent, caption, path, filter);
}

QStringList ScriptedFileDialogs::openFiles(
    QWidget *parent, const QString &caption, const QString &folder, const QString &filter)
{
    Q_UNUSED(parent)
    Q_UNUSED(folder)
    Q_UNUSED(filter)
    captions << caption;
    return answers.isEmpty() ? QStringList() : answers.takeFirst();
}

QString ScriptedFileDialogs::openFile(QWidget *parent, const QString &caption, const QString &folder, const QString &filter)
{
    return openFiles(parent, caption, folder, filter).value(0);
}

QString ScriptedFileDialogs::saveFile(QWidget *parent, const QString &caption, const QString &path, const QString &filter)
{
    Q_UNUSED(parent)
    Q_UNUSED(filter)
    captions << caption;
    proposedPaths << path;
    return answers.isEmpty() ? QString() : answers.takeFirst().value(0);
}
