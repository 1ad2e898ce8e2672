#include "core/settings.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QtMath>

#include <unistd.h>

namespace {

enum class Kind { Bool, Int, Double, String, StringList, Int64Text, Bytes, DateText };

struct KeyInfo
{
    Kind kind;
    QVariant defaultValue;
    double minimum = 0;
    double maximum = -1; // below minimum: no range
};

double defaultMaxMemoryGb()
{
    const double physical = Settings::physicalMemoryGb();
    if (physical <= 0)
        return 8.0;
    return qMax(1.0, std::floor(physical * 0.8 * 10.0) / 10.0);
}

const QHash<QString, KeyInfo> &keyTable()
{
    static const QHash<QString, KeyInfo> table = [] {
        QHash<QString, KeyInfo> t;
        auto add = [&t](const char *key, Kind kind, QVariant def, double min = 0, double max = -1) {
            t.insert(QString::fromLatin1(key), KeyInfo {kind, def, min, max});
        };
        // Preferences
        add("startup_action", Kind::Int, 0, 0, 2);
        add("startup_document", Kind::String, QString());
        add("recent_documents_max", Kind::Int, 10, 0, 30);
        add("user_name", Kind::String, QString());
        add("beep_when_finished", Kind::Bool, false);
        add("auto_recovery_minutes", Kind::Int, 2, 0, 60);
        add("undo_limit", Kind::Int, 200, 10, 10000);
        add("check_for_updates", Kind::Bool, false);
        add("update_base_url", Kind::String, QString());
        add("optimize_for", Kind::Int, 0, 0, 1);
        const double physical = Settings::physicalMemoryGb();
        add("max_memory_usage", Kind::Double, defaultMaxMemoryGb(), 0.5, physical > 0 ? physical : 1e6);
        add("auto_run_delay_ms", Kind::Int, 1000, 0, 10000);
        add("locale", Kind::String, QString());
        add("date_formats", Kind::String, QString());
        add("theme", Kind::Int, 0, 0, 2);
        add("ui_font", Kind::String, QString());
        add("table_font", Kind::String, QString());
        add("table_max_cell_chars", Kind::Int, 1000, 50, 100000);
        add("show_advanced_transforms", Kind::Bool, false);
        add("input_blocked_extensions", Kind::StringList, QStringList());
        add("output_blocked_extensions", Kind::StringList,
            QStringList {QStringLiteral("bat"), QStringLiteral("cmd"), QStringLiteral("com"),
                QStringLiteral("cpl"), QStringLiteral("dll"), QStringLiteral("exe"), QStringLiteral("msi"),
                QStringLiteral("ps1"), QStringLiteral("scr"), QStringLiteral("sh"), QStringLiteral("vbs"),
                QStringLiteral("tflow")});
        // Kept by the window and the services
        add("show_row_col_changes", Kind::Bool, false);
        add("table_show_whitespace", Kind::Bool, false);
        add("transform_category", Kind::Int, 0, 0, 6);
        for (const char *key :
            {"window_geometry", "window_state", "main_splitter_state", "item_splitter_state"})
            add(key, Kind::Bytes, QByteArray());
        for (const char *key : {"last_document_folder", "last_input_folder", "last_output_folder",
                 "update_last_check", "update_skipped_version", "integrity_accepted_sha256"})
            add(key, Kind::String, QString());
        add("lifetime_rows_processed", Kind::Int64Text, QStringLiteral("0"));
        add("lifetime_rows_milestone", Kind::Int64Text, QStringLiteral("0"));
        add("first_used_date", Kind::DateText, QString());
        add("last_used_date", Kind::DateText, QString());
        add("days_used", Kind::Int, 0, 0, 2147483647.0);
        return t;
    }();
    return table;
}

bool toBoolStrict(const QVariant &v, bool *ok)
{
    if (v.type() == QVariant::Bool) {
        *ok = true;
        return v.toBool();
    }
    const QString text = v.toString().trimmed().toLower();
    *ok = text == QLatin1String("true") || text == QLatin1String("false");
    return text == QLatin1String("true");
}

bool inRange(const KeyInfo &info, double value)
{
    return info.maximum < info.minimum || (value >= info.minimum && value <= info.maximum);
}

// The stored value in the key's type, or an invalid QVariant when it doesn't fit.
QVariant checked(const KeyInfo &info, const QVariant &stored)
{
    bool ok = false;
    switch (info.kind) {
    case Kind::Bool: {
        const bool b = toBoolStrict(stored, &ok);
        return ok ? QVariant(b) : QVariant();
    }
    case Kind::Int: {
        const qlonglong i = stored.toString().trimmed().toLongLong(&ok);
        return ok && inRange(info, double(i)) && i == int(i) ? QVariant(int(i)) : QVariant();
    }
    case Kind::Double: {
        const double d = stored.toString().trimmed().toDouble(&ok);
        return ok && qIsFinite(d) && inRange(info, d) ? QVariant(d) : QVariant();
    }
    case Kind::Int64Text: {
        const qlonglong i = stored.toString().trimmed().toLongLong(&ok);
        return ok && i >= 0 ? QVariant(i) : QVariant();
    }
    case Kind::DateText: {
        const QDate date = QDate::fromString(stored.toString(), Qt::ISODate);
        return date.isValid() ? QVariant(stored.toString()) : QVariant();
    }
    case Kind::String:
        return stored.canConvert<QString>() && stored.type() != QVariant::StringList
            ? QVariant(stored.toString())
            : QVariant();
    case Kind::StringList:
        if (stored.type() == QVariant::StringList || stored.type() == QVariant::List)
            return stored.toStringList();
        if (stored.type() == QVariant::String) // an ini file gives a one-item list as a string
            return stored.toString().isEmpty() ? QStringList() : QStringList(stored.toString());
        return QVariant();
    case Kind::Bytes:
        return stored.canConvert<QByteArray>() ? QVariant(stored.toByteArray()) : QVariant();
    }
    return QVariant();
}

} // namespace

Settings::Settings(QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
          QStringLiteral("Tabrelle"), QStringLiteral("Tabrelle")))
{ }

Settings::Settings(const QString &iniPath, QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
    , m_portable(true)
{
    m_settings->setIniCodec("UTF-8");
}

Settings::~Settings() = default;

Settings *Settings::openFor(const QString &applicationDir, QObject *parent)
{
    const QString portable = QDir(applicationDir).filePath(portableFileName());
    if (QFileInfo(portable).isFile())
        return new Settings(portable, parent);
    return new Settings(parent);
}

bool Settings::isWritable() const
{
    if (!m_settings->isWritable())
        return false;
    if (m_portable) {
        const QFileInfo info(m_settings->fileName());
        return info.exists() ? info.isWritable() : QFileInfo(info.absolutePath()).isWritable();
    }
    return true;
}

QString Settings::fileName() const
{
    return m_settings->fileName();
}

bool Settings::isKnownKey(const QString &key) const
{
    return keyTable().contains(key);
}

QVariant Settings::defaultValue(const QString &key) const
{
    return keyTable().value(key).defaultValue;
}

QVariant Settings::value(const QString &key) const
{
    const auto it = keyTable().constFind(key);
    const QVariant stored = m_settings->value(key);
    if (it == keyTable().constEnd())
        return stored;
    if (!stored.isValid())
        return it->defaultValue;
    const QVariant result = checked(*it, stored);
    return result.isValid() ? result : it->defaultValue;
}

void Settings::setValue(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
    emit changed(key);
}

void Settings::remove(const QString &key)
{
    m_settings->remove(key);
    emit changed(key);
}

bool Settings::contains(const QString &key) const
{
    return m_settings->contains(key);
}

QStringList Settings::childKeys(const QString &group) const
{
    m_settings->beginGroup(group);
    const QStringList keys = m_settings->childKeys();
    m_settings->endGroup();
    return keys;
}

void Settings::sync()
{
    m_settings->sync();
}

QStringList Settings::dateFormats() const
{
    QStringList formats;
    const QStringList lines = stringValue(QStringLiteral("date_formats")).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QString format = line.trimmed();
        if (!format.isEmpty())
            formats << format;
    }
    return formats;
}

double Settings::maxMemoryUsageGb() const
{
    return doubleValue(QStringLiteral("max_memory_usage"));
}

QStringList Settings::blockedExtensions(bool input) const
{
    QStringList extensions;
    const QStringList stored = stringListValue(
        input ? QStringLiteral("input_blocked_extensions") : QStringLiteral("output_blocked_extensions"));
    for (const QString &extension : stored) {
        QString e = extension.trimmed().toLower();
        if (e.startsWith(QLatin1Char('.')))
            e.remove(0, 1);
        if (!e.isEmpty() && !extensions.contains(e))
            extensions << e;
    }
    return extensions;
}

qint64 Settings::addToCounter(const QString &key, qint64 amount)
{
    m_settings->sync();
    const qint64 total = int64Value(key) + amount;
    m_settings->setValue(key, QString::number(total));
    m_settings->sync();
    emit changed(key);
    return total;
}

void Settings::recordUsage(const QDate &today)
{
    m_settings->sync();
    const QString day = today.toString(Qt::ISODate);
    if (stringValue(QStringLiteral("first_used_date")).isEmpty())
        m_settings->setValue(QStringLiteral("first_used_date"), day);
    if (stringValue(QStringLiteral("last_used_date")) != day) {
        m_settings->setValue(QStringLiteral("last_used_date"), day);
        m_settings->setValue(QStringLiteral("days_used"), intValue(QStringLiteral("days_used")) + 1);
    }
    m_settings->sync();
}

double Settings::physicalMemoryGb()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGE_SIZE);
    if (pages <= 0 || pageSize <= 0)
        return 0;
    return double(pages) * double(pageSize) / (1024.0 * 1024.0 * 1024.0);
}
