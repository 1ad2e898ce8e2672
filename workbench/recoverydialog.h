#pragma once

#include <QDialog>

class QListWidget;
class QPushButton;

// Offered at start and by File > Recovered Flows: the flows kept for recovery when
// Tabrelle did not close normally. The caller opens, discards or keeps them.
class RecoveryDialog : public QDialog
{
    Q_OBJECT
public:
    enum Choice { DecideLater, Open, Discard };

    // files: the recovery files this process may offer, newest first.
    explicit RecoveryDialog(const QStringList &files, QWidget *parent = nullptr);

    Choice choice() const { return m_choice; }
    QString chosenFile() const;
    void selectFile(const QString &path);
    // The rows as shown: "%1 - saved %2".
    QStringList rows() const;

    // The document a recovery file was kept for, from its doc_path; empty for an untitled
    // one or a file that can't be read.
    static QString documentPath(const QString &recoveryFile);

private:
    QListWidget *m_list;
    Choice m_choice = DecideLater;
};
