#pragma once

#include <QCoreApplication>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

class Transform;

// The contents of the help: a tree of pages built from the transforms and the pages in
// the resources, and a search over it. A page is named by its path under ":/help/"
// ("transforms/Join.md"); a branch has no page of its own unless it says so.
class HelpIndex
{
    Q_DECLARE_TR_FUNCTIONS(HelpIndex)
public:
    // The page of keyboard shortcuts is written when shown, from the window's actions.
    static QString shortcutsPage() { return QStringLiteral("shortcuts.md"); }
    static QString contentsPage() { return QStringLiteral("index.md"); }

    struct Entry
    {
        QString title;
        QString page; // empty for a branch without a page
        QString transformId; // set on a transform's page
        QSet<QString> terms; // lower-case words the search matches by prefix
        QList<Entry> children;
    };

    // What the index needs of one transform, copied so the index outlives the prototypes.
    struct TransformInfo
    {
        QString id;
        QString name;
        int category = 0;
        QSet<QString> keywords;
    };

    HelpIndex() = default;
    explicit HelpIndex(const QList<TransformInfo> &transforms);

    static TransformInfo infoOf(const Transform *transform);
    // Every transform the node factory of the documents can make, for when nobody gave
    // the prototypes.
    static QList<TransformInfo> transformsFromNodeFactory();

    const QList<Entry> &entries() const { return m_entries; }
    QList<TransformInfo> transforms() const { return m_transforms; }

    // The page of a transform or item type ("Input", "Output", "Transform", "Chart",
    // "Note", "Flow"); empty when there is none.
    QString transformPage(const QString &id) const;
    static QString itemPage(const QString &typeName);

    // The title of a page: its first "# " line, or the file name without it.
    static QString pageTitle(const QString &page);
    // Words of a search text: lower case, split on white space.
    static QStringList searchWords(const QString &text);
    // Whether every word is the start of one of the entry's terms.
    static bool matches(const Entry &entry, const QStringList &words);
    // The pages that match the words, in contents order, each once.
    QList<Entry> search(const QString &text) const;

    // Every page of the resources, relative to ":/help/", sorted.
    static QStringList resourcePages();

private:
    Entry pageEntry(const QString &page, const QString &title = QString()) const;

    QList<TransformInfo> m_transforms;
    QList<Entry> m_entries;
};
