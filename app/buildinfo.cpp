#include "app/buildinfo.h"

#include <QDate>
#include <QLocale>

namespace BuildInfo {

QString productName()
{
    return QStringLiteral("Tabrelle");
}

QString version()
{
    return QStringLiteral(TABRELLE_VERSION);
}

int versionMajor()
{
    return TABRELLE_VERSION_MAJOR;
}

int versionMinor()
{
    return TABRELLE_VERSION_MINOR;
}

int versionPatch()
{
    return TABRELLE_VERSION_PATCH;
}

QString buildDateTime()
{
    // __DATE__ reads "Nov  2 2026"; show it the ISO way.
    const QDate date =
        QLocale::c().toDate(QString::fromLatin1(__DATE__).simplified(), QStringLiteral("MMM d yyyy"));
    return date.toString(Qt::ISODate) + QLatin1Char(' ') + QString::fromLatin1(__TIME__);
}

QString supportAddress()
{
    return QStringLiteral(TABRELLE_SUPPORT_ADDRESS);
}

} // namespace BuildInfo
