#pragma once

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class Settings;

// File > Recent Documents, and the start-up choice: the recent flows with a filter,
// pinned ones first. The caller acts on the choice made.
class RecentDocumentsDialog : public QDialog
{
    Q_OBJECT
public:
    enum Choice { NoChoice, OpenDocument, NewFlow, OpenOther };

    explicit RecentDocumentsDialog(Settings *settings, QWidget *parent = nullptr);

    Choice choice() const { return m_choice; }
    // The document chosen with Open.
    QString chosenPath() const { return m_chosenPath; }

    // The paths listed, in order, after the filter.
    QStringList shownPaths() const;
    void setFilter(const QString &text);
    void selectPath(const QString &path);

public slots:
    void openSelected();
    void togglePin();
    void removeSelected();

protected:
    void done(int result) override;

private:
    void reload();
    void updateButtons();
    QString selectedPath() const;

    Settings *m_settings;
    Choice m_choice = NoChoice;
    QString m_chosenPath;
    QLineEdit *m_filter;
    QTreeWidget *m_list;
    QPushButton *m_openButton;
    QPushButton *m_pinButton;
    QPushButton *m_removeButton;
    QCheckBox *m_showAtStart;
};
