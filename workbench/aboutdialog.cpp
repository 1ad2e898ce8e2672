#include "workbench/aboutdialog.h"

#include "core/settings.h"
#include "core/values.h"
#include "workbench/dialogutil.h"

#include <QApplication>
#include <QClipboard>
#include <QCryptographicHash>
#include <QDate>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QVBoxLayout>

QString AboutDialog::integrityLine(const QString &executablePath)
{
    const QFileInfo executable(executablePath);
    QFile record(executable.dir().filePath(QStringLiteral("tabrelle.sha256")));
    QString expected;
    if (record.open(QIODevice::ReadOnly))
        expected = QString::fromLatin1(record.readLine()).left(64);
    static const QRegularExpression hex(QStringLiteral("^[0-9A-Fa-f]{64}$"));
    if (!hex.match(expected).hasMatch())
        return tr("Program file: not checked (no installation record)");
    QFile file(executablePath);
    if (!file.open(QIODevice::ReadOnly))
        return tr("Program file: not checked (no installation record)");
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!file.atEnd())
        hash.addData(file.read(1024 * 1024));
    const QString found = QString::fromLatin1(hash.result().toHex());
    if (found.compare(expected, Qt::CaseInsensitive) == 0)
        return tr("Program file: verified (SHA-256 %1)").arg(found);
    return tr("Program file: changed since installation (SHA-256 %1, expected %2)").arg(found, expected.toLower());
}

AboutDialog::AboutDialog(Settings *settings, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AboutDialog"));
    setWindowTitle(tr("About Tabrelle"));

    QString where = tr("(not available)");
    if (settings) {
        where = QDir::toNativeSeparators(settings->fileName());
        if (settings->isPortable())
            where += tr(" (portable)");
    }
    const qint64 rows = settings ? settings->int64Value(QStringLiteral("lifetime_rows_processed")) : 0;
    const QDate first = settings ? QDate::fromString(settings->stringValue(QStringLiteral("first_used_date")), Qt::ISODate)
                                 : QDate();
    const QString since = first.isValid() ? QLocale().toString(first, QLocale::ShortFormat)
                                          : QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);

    m_lines << tr("Tabrelle %1").arg(QCoreApplication::applicationVersion())
            << tr("Free Edition")
            << tr("Build: %1").arg(QStringLiteral(__DATE__ " " __TIME__))
            << tr("Qt %1").arg(QString::fromLatin1(qVersion()))
            << tr("Settings are stored in: %1").arg(where)
            << tr("%1 rows processed since %2").arg(formatCount(rows), since)
            << integrityLine(QCoreApplication::applicationFilePath())
            << tr("Support: %1").arg(tr("the Tabrelle issue tracker"));

    auto *layout = new QVBoxLayout(this);
    auto *title = new QLabel(m_lines.at(0), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    title->setFont(big);
    layout->addWidget(title);
    auto *body = new QLabel(m_lines.mid(1).join(QLatin1Char('\n')), this);
    body->setObjectName(QStringLiteral("aboutText"));
    body->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    body->setWordWrap(true);
    layout->addWidget(body);

    auto *libraries = new QTextBrowser(this);
    libraries->setObjectName(QStringLiteral("librariesText"));
    libraries->setAccessibleName(tr("Libraries"));
    libraries->setOpenExternalLinks(true);
    libraries->setHtml(tr("<p><b>Libraries used</b></p>"
                          "<table cellpadding='2'>"
                          "<tr><td>Qt %1 (Core, GUI, Widgets, XML, QML, Charts, Network, Print Support)</td>"
                          "<td>GNU LGPL version 3</td></tr>"
                          "<tr><td>The C++ standard library of the compiler</td><td>GPL version 3 with the GCC "
                          "Runtime Library Exception</td></tr>"
                          "</table>"
                          "<p>Tabrelle itself is free software under the GNU GPL version 3.</p>")
                           .arg(QString::fromLatin1(qVersion())));
    libraries->setMinimumHeight(120);
    layout->addWidget(libraries, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *copy = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    copy->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(copy, &QPushButton::clicked, this, [this] { QApplication::clipboard()->setText(m_lines.join(QLatin1Char('\n'))); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    DialogGeometry::restore(this, QSize(560, 420));
}
