#include "workbench/helpindex.h"

#include "flow/document.h"
#include "flow/node.h"
#include "flow/nodefactory.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QCollator>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

const QString resourceRoot = QStringLiteral(":/help/");

// The lower-case words of a text, for the search.
QSet<QString> wordsOf(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[^\\w]+"), QRegularExpression::UseUnicodePropertiesOption);
    QSet<QString> words;
    const QStringList parts = text.toLower().split(separators, Qt::SkipEmptyParts);
    for (const QString &part : parts)
        words.insert(part);
    return words;
}

QString readPage(const QString &page)
{
    QFile file(resourceRoot + page);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

} // namespace

HelpIndex::HelpIndex(const QList<TransformInfo> &transforms)
    : m_transforms(transforms)
{
    m_entries << pageEntry(contentsPage(), tr("Getting started"));

    Entry items;
    items.title = tr("Items");
    for (const QString &type : {QStringLiteral("Input"), QStringLiteral("Output"), QStringLiteral("Transform"),
                                QStringLiteral("Chart"), QStringLiteral("Note"), QStringLiteral("Flow")})
        items.children << pageEntry(itemPage(type));
    m_entries << items;

    Entry transformsEntry;
    transformsEntry.title = tr("Transforms");
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    QList<TransformInfo> sorted = m_transforms;
    std::stable_sort(sorted.begin(), sorted.end(),
        [&collator](const TransformInfo &a, const TransformInfo &b) { return collator.compare(a.name, b.name) < 0; });
    for (int category = int(TransformCategory::Merge); category <= int(TransformCategory::Other); ++category) {
        Entry branch;
        branch.title = categoryText(TransformCategory(category));
        for (const TransformInfo &info : qAsConst(sorted)) {
            if (info.category != category)
                continue;
            Entry entry;
            entry.title = info.name;
            entry.page = QStringLiteral("transforms/%1.md").arg(info.id);
            entry.transformId = info.id;
            entry.terms = wordsOf(info.name);
            for (const QString &keyword : info.keywords)
                entry.terms.insert(keyword.toLower());
            branch.children << entry;
        }
        if (!branch.children.isEmpty())
            transformsEntry.children << branch;
    }
    m_entries << transformsEntry;

    m_entries << pageEntry(QStringLiteral("formats.md"), tr("File formats"));
    m_entries << pageEntry(QStringLiteral("command-line.md"), tr("Command line"));
    m_entries << pageEntry(QStringLiteral("batch.md"), tr("Batch"));
    m_entries << pageEntry(QStringLiteral("preferences.md"), tr("Preferences"));
    Entry shortcuts;
    shortcuts.title = tr("Keyboard shortcuts");
    shortcuts.page = shortcutsPage();
    shortcuts.terms = wordsOf(shortcuts.title + QStringLiteral(" keys keyboard shortcut"));
    m_entries << shortcuts;
    m_entries << pageEntry(QStringLiteral("troubleshooting.md"), tr("Troubleshooting"));
}

HelpIndex::Entry HelpIndex::pageEntry(const QString &page, const QString &title) const
{
    Entry entry;
    entry.page = page;
    entry.title = title.isEmpty() ? pageTitle(page) : title;
    entry.terms = wordsOf(entry.title);
    // A general page is also found by the words of its own title and section headings.
    const QStringList lines = readPage(page).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1Char('#')))
            entry.terms.unite(wordsOf(line.mid(line.indexOf(QLatin1Char(' ')) + 1)));
    }
    return entry;
}

HelpIndex::TransformInfo HelpIndex::infoOf(const Transform *transform)
{
    TransformInfo info;
    info.id = transform->id();
    info.name = transform->name();
    info.category = int(transform->category());
    info.keywords = transform->keywords();
    return info;
}

QList<HelpIndex::TransformInfo> HelpIndex::transformsFromNodeFactory()
{
    QList<TransformInfo> infos;
    const NodeFactory *factory = Document::nodeFactory();
    if (!factory)
        return infos;
    const QString prefix = QStringLiteral("Transform:");
    const QStringList names = factory->typeNames();
    for (const QString &name : names) {
        if (!name.startsWith(prefix))
            continue;
        std::unique_ptr<Node> node(factory->create(name));
        if (auto *transformNode = dynamic_cast<TransformNode *>(node.get())) {
            if (transformNode->transform())
                infos << infoOf(transformNode->transform());
        }
    }
    return infos;
}

QString HelpIndex::transformPage(const QString &id) const
{
    for (const TransformInfo &info : m_transforms) {
        if (info.id == id)
            return QStringLiteral("transforms/%1.md").arg(id);
    }
    return QString();
}

QString HelpIndex::itemPage(const QString &typeName)
{
    static const QStringList types = {QStringLiteral("Input"), QStringLiteral("Output"), QStringLiteral("Transform"),
                                      QStringLiteral("Chart"), QStringLiteral("Note"), QStringLiteral("Flow")};
    for (const QString &type : types) {
        if (type.compare(typeName, Qt::CaseInsensitive) == 0)
            return QStringLiteral("items/%1.md").arg(type.toLower());
    }
    return QString();
}

QString HelpIndex::pageTitle(const QString &page)
{
    const QStringList lines = readPage(page).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1String("# ")))
            return line.mid(2).trimmed();
    }
    return QFileInfo(page).completeBaseName();
}

QStringList HelpIndex::searchWords(const QString &text)
{
    return text.toLower().split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

bool HelpIndex::matches(const Entry &entry, const QStringList &words)
{
    if (entry.page.isEmpty() || words.isEmpty())
        return false;
    for (const QString &word : words) {
        const bool found = std::any_of(entry.terms.cbegin(), entry.terms.cend(),
            [&word](const QString &term) { return term.startsWith(word); });
        if (!found)
            return false;
    }
    return true;
}

QList<HelpIndex::Entry> HelpIndex::search(const QString &text) const
{
    const QStringList words = searchWords(text);
    QList<Entry> found;
    QSet<QString> pages;
    std::function<void(const QList<Entry> &)> walk = [&](const QList<Entry> &entries) {
        for (const Entry &entry : entries) {
            if (matches(entry, words) && !pages.contains(entry.page)) {
                pages.insert(entry.page);
                found << entry;
            }
            walk(entry.children);
        }
    };
    walk(m_entries);
    return found;
}

QStringList HelpIndex::resourcePages()
{
    QStringList pages;
    QDirIterator it(resourceRoot, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        pages << it.next().mid(resourceRoot.size());
    pages.sort();
    return pages;
}
