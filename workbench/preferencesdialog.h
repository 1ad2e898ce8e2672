#pragma once

#include <QDialog>
#include <QVariant>

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QStackedWidget;
class Settings;

// Tools > Preferences: the program's settings on pages, written to the store on OK or
// Apply only. Restore Defaults puts the current page's controls back to the defaults,
// still to be applied.
class PreferencesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PreferencesDialog(Settings *settings, QWidget *parent = nullptr);

    // The page titles, in order; each page's keys.
    QStringList pageTitles() const;
    static QStringList pageKeys(int page);
    void setCurrentPage(int page);
    int currentPage() const;

    // The values the controls hold, by settings key, in the stored form.
    QVariantMap values() const;

    // Extensions as stored: lower-case, trimmed, without a leading dot, each once.
    static QStringList cleanExtensions(const QStringList &extensions);

public slots:
    void apply();
    void restoreDefaults();

private:
    void load(const QVariantMap &values, int page);
    QVariant stored(const QString &key) const;
    QWidget *generalPage();
    QWidget *performancePage();
    QWidget *datesPage();
    QWidget *appearancePage();
    QWidget *extensionsPage(bool input);
    void updateDateTest();
    void updateFontButton(QPushButton *button, const QString &font);

    Settings *m_settings;
    QListWidget *m_pageList;
    QStackedWidget *m_pages;

    QRadioButton *m_startupRecent;
    QRadioButton *m_startupEmpty;
    QRadioButton *m_startupDocument;
    QLineEdit *m_startupPath;
    QSpinBox *m_recentMax;
    QLineEdit *m_userName;
    QCheckBox *m_beep;
    QSpinBox *m_recoveryMinutes;
    QSpinBox *m_undoLimit;
    QCheckBox *m_checkUpdates;
    QLineEdit *m_updateUrl;

    QComboBox *m_optimizeFor;
    QLabel *m_optimizeNote;
    QDoubleSpinBox *m_maxMemory;
    QSpinBox *m_autoRunDelay;

    QComboBox *m_locale;
    QListWidget *m_dateFormats;
    QLineEdit *m_dateTest;
    QLabel *m_dateTestResult;

    QComboBox *m_theme;
    QPushButton *m_uiFont;
    QPushButton *m_tableFont;
    QString m_uiFontText;
    QString m_tableFontText;
    QSpinBox *m_maxCellChars;
    QCheckBox *m_showAdvanced;

    QListWidget *m_inputBlocked;
    QListWidget *m_outputBlocked;
};
