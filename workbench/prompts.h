#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QWidget;

// The questions and messages the window asks and shows, behind one small interface, so
// that tests can answer them from a script instead of waiting on a modal box.
class Prompts
{
public:
    virtual ~Prompts() = default;

    // Asks text with the given buttons (texts with mnemonics); returns the index of the
    // button chosen, or -1 when the box was closed. defaultButton is pressed by Enter,
    // escapeButton by Escape.
    virtual int ask(QWidget *parent, const QString &title, const QString &text, const QString &informativeText,
        const QStringList &buttons, int defaultButton, int escapeButton) = 0;
    virtual void warning(QWidget *parent, const QString &title, const QString &text) = 0;
    virtual void information(QWidget *parent, const QString &title, const QString &text) = 0;

    // The prompts in use: message boxes unless a test set others. Never null.
    static Prompts *instance();
    // Takes no ownership; nullptr goes back to message boxes.
    static void setInstance(Prompts *prompts);
};

// Message boxes.
class MessageBoxPrompts : public Prompts
{
public:
    int ask(QWidget *parent, const QString &title, const QString &text, const QString &informativeText,
        const QStringList &buttons, int defaultButton, int escapeButton) override;
    void warning(QWidget *parent, const QString &title, const QString &text) override;
    void information(QWidget *parent, const QString &title, const QString &text) override;
};

// Answers from a queue, and keeps what was asked and shown.
class ScriptedPrompts : public Prompts
{
public:
    // The answers to the next questions, by button text without "&" ("Save", "Don't Save").
    // With the queue empty, a question is answered by its escape button.
    QStringList answers;
    QStringList asked; // the question texts, in order
    QStringList warnings;
    QStringList informations;

    int ask(QWidget *parent, const QString &title, const QString &text, const QString &informativeText,
        const QStringList &buttons, int defaultButton, int escapeButton) override;
    void warning(QWidget *parent, const QString &title, const QString &text) override;
    void information(QWidget *parent, const QString &title, const QString &text) override;
};

// File choosers, behind an interface for the same reason.
class FileDialogs
{
public:
    virtual ~FileDialogs() = default;
    // Empty when cancelled.
    virtual QStringList openFiles(
        QWidget *parent, const QString &caption, const QString &folder, const QString &filter) = 0;
    virtual QString openFile(QWidget *parent, const QString &caption, const QString &folder, const QString &filter) = 0;
    // path is the proposed file (folder and name); the chooser confirms an overwrite.
    virtual QString saveFile(QWidget *parent, const QString &caption, const QString &path, const QString &filter) = 0;

    static FileDialogs *instance();
    static void setInstance(FileDialogs *dialogs);
};

class NativeFileDialogs : public FileDialogs
{
public:
    QStringList openFiles(QWidget *parent, const QString &caption, const QString &folder, const QString &filter) override;
    QString openFile(QWidget *parent, const QString &caption, const QString &folder, const QString &filter) override;
    QString saveFile(QWidget *parent, const QString &caption, const QString &path, const QString &filter) override;
};

// Hands out queued answers; an empty queue is a cancel.
class ScriptedFileDialogs : public FileDialogs
{
public:
    QList<QStringList> answers;
    QStringList captions;
    QStringList proposedPaths; // what saveFile was offered

    QStringList openFiles(QWidget *parent, const QString &caption, const QString &folder, const QString &filter) override;
    QString openFile(QWidget *parent, const QString &caption, const QString &folder, const QString &filter) override;
    QString saveFile(QWidget *parent, const QString &caption, const QString &path, const QString &filter) override;
};
