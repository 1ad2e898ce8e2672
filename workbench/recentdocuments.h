#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

class Settings;

// The list of recently opened and saved documents, kept in the settings as
// "recent_documents": each entry a path (absolute, clean, "/" separators), when it was
// last opened (UTC) and whether it is pinned. Every change re-reads the store first, so
// that several windows add to one list.
namespace RecentDocuments {

struct Entry
{
    QString path;
    QDateTime opened;
    bool pinned = false;
};

// Pinned entries first, then by last opened; empty paths and duplicates dropped.
QList<Entry> entries(Settings *settings);
// Moves path to the front with the current time; unpinned entries beyond
// recent_documents_max are dropped.
void add(Settings *settings, const QString &path, const QDateTime &when = QDateTime::currentDateTimeUtc());
void remove(Settings *settings, const QString &path);
void setPinned(Settings *settings, const QString &path, bool pinned);
// "Clear Menu": the unpinned entries go.
void clearUnpinned(Settings *settings);
bool samePath(const QString &a, const QString &b);

} // namespace RecentDocuments
