#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QString>

// The file formats that inputs read and outputs write, by the numbers of IONode::FileType,
// with their names, default extensions and the extension to format map.
namespace FileFormat {

// "Delimited text", ...; empty for a number outside 0..10.
inline QString name(int fileType)
{
    static const char *const names[] = {
        QT_TRANSLATE_NOOP("FileFormat", "Delimited text"),
        QT_TRANSLATE_NOOP("FileFormat", "Excel XLSX"),
        QT_TRANSLATE_NOOP("FileFormat", "Excel XLS"),
        QT_TRANSLATE_NOOP("FileFormat", "Fixed width"),
        QT_TRANSLATE_NOOP("FileFormat", "JSON"),
        QT_TRANSLATE_NOOP("FileFormat", "XML"),
        QT_TRANSLATE_NOOP("FileFormat", "vCard"),
        QT_TRANSLATE_NOOP("FileFormat", "YAML"),
        QT_TRANSLATE_NOOP("FileFormat", "HTML"),
        QT_TRANSLATE_NOOP("FileFormat", "Markdown"),
        QT_TRANSLATE_NOOP("FileFormat", "Plain text"),
    };
    if (fileType < 0 || fileType > 10)
        return QString();
    return QCoreApplication::translate("FileFormat", names[fileType]);
}

// "csv", ...; empty for a number outside 0..10.
inline QString defaultExtension(int fileType)
{
    static const char *const extensions[] = {
        "csv", "xlsx", "xls", "txt", "json", "xml", "vcf", "yaml", "html", "md", "log"};
    if (fileType < 0 || fileType > 10)
        return QString();
    return QString::fromLatin1(extensions[fileType]);
}

// The format an extension (without the dot, any case) stands for, or 11 when none.
inline int forExtension(const QString &extension)
{
    static const QHash<QString, int> map = [] {
        QHash<QString, int> result;
        for (int type = 0; type <= 10; ++type)
            result.insert(defaultExtension(type), type);
        result.insert(QStringLiteral("geojson"), 4);
        result.insert(QStringLiteral("tsv"), 0);
        result.insert(QStringLiteral("opml"), 5);
        return result;
    }();
    return map.value(extension.toLower(), 11);
}

} // namespace FileFormat
