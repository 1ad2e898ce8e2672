#pragma once

#include <QDialog>

class Settings;

// Help > About Tabrelle: the version and edition, the build, the settings location, how
// many rows this computer has processed, whether the program file is as installed, and
// the libraries used with their licences.
class AboutDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(Settings *settings, QWidget *parent = nullptr);

    // The lines shown above the libraries, for tests and copying.
    QStringList lines() const { return m_lines; }

    // "Program file: ..." from the installation record beside the executable.
    static QString integrityLine(const QString &executablePath);

private:
    QStringList m_lines;
};
