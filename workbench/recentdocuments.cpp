#include "recentdocuments.h"

#include "core/settings.h"

#include <QDir>
#include <QFileInfo>
#include <QVariantMap>

namespace {

const QString Key = QStringLiteral("recent_documents");

QString cleanPath(const QString &path)
{
    if (path.trimmed().isEmpty())
        return QString();
    return QDir::cleanPath(QDir::fromNativeSeparators(QFileInfo(path).absoluteFilePath()));
}

QList<RecentDocuments::Entry> readRaw(Settings *settings)
{
    QList<RecentDocuments::Entry> result;
    settings->sync();
    const QVariantList list = settings->value(Key).toList();
    for (const QVariant &value : list) {
        const QVariantMap map = value.toMap();
        RecentDocuments::Entry entry;
        entry.path = cleanPath(map.value(QStringLiteral("path")).toString());
        entry.opened = QDateTime::fromString(map.value(QStringLiteral("opened")).toString(), Qt::ISODate);
        entry.pinned = map.value(QStringLiteral("pinned")).toBool();
        if (entry.path.isEmpty())
            continue;
        bool duplicate = false;
        for (const RecentDocuments::Entry &other : qAsConst(result))
            duplicate = duplicate || RecentDocuments::samePath(other.path, entry.path);
        if (!duplicate)
            result << entry;
    }
    return result;
}

void write(Settings *settings, QList<RecentDocuments::Entry> list)
{
    std::stable_sort(list.begin(), list.end(), [](const RecentDocuments::Entry &a, const RecentDocuments::Entry &b) {
        if (a.pinned != b.pinned)
            return a.pinned;
        return a.opened > b.opened;
    });
    const int maximum = settings->intValue(QStringLiteral("recent_documents_max"));
    QVariantList out;
    int unpinned = 0;
    for (const RecentDocuments::Entry &entry : qAsConst(list)) {
        if (!entry.pinned && ++unpinned > maximum)
            continue;
        QVariantMap map;
        map.insert(QStringLiteral("path"), entry.path);
        map.insert(QStringLiteral("opened"), entry.opened.toUTC().toString(Qt::ISODate));
        map.insert(QStringLiteral("pinned"), entry.pinned);
        out << map;
    }
    settings->setValue(Key, out);
    settings->sync();
}

} // namespace

namespace RecentDocuments {

bool samePath(const QString &a, const QString &b)
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return a.compare(b, Qt::CaseInsensitive) == 0;
#else
    return a == b;
#endif
}

QList<Entry> entries(Settings *settings)
{
    QList<Entry> list = readRaw(settings);
    std::stable_sort(list.begin(), list.end(), [](const Entry &a, const Entry &b) {
        if (a.pinned != b.pinned)
            return a.pinned;
        return a.opened > b.opened;
    });
    return list;
}

void add(Settings *settings, const QString &path, const QDateTime &when)
{
    const QString clean = cleanPath(path);
    if (clean.isEmpty())
        return;
    QList<Entry> list = readRaw(settings);
    bool pinned = false;
    for (int i = list.size() - 1; i >= 0; --i) {
        if (samePath(list.at(i).path, clean)) {
            pinned = list.at(i).pinned;
            list.removeAt(i);
        }
    }
    list.prepend(Entry {clean, when, pinned});
    write(settings, list);
}

void remove(Settings *settings, const QString &path)
{
    QList<Entry> list = readRaw(settings);
    for (int i = list.size() - 1; i >= 0; --i) {
        if (samePath(list.at(i).path, cleanPath(path)))
            list.removeAt(i);
    }
    write(settings, list);
}

void setPinned(Settings *settings, const QString &path, bool pinned)
{
    QList<Entry> list = readRaw(settings);
    for (Entry &entry : list) {
        if (samePath(entry.path, cleanPath(path)))
            entry.pinned = pinned;
    }
    write(settings, list);
}

void clearUnpinned(Settings *settings)
{
    QList<Entry> list = readRaw(settings);
    list.erase(std::remove_if(list.begin(), list.end(), [](const Entry &entry) { return !entry.pinned; }), list.end());
    write(settings, list);
}

} // namespace RecentDocuments
