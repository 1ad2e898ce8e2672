#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// The read options of an input item, as every reader sees them.
struct InputOptions
{
    enum Source { File = 0, Clipboard = 1 };
    enum MetaInformation { MetaNotAdded = 0, MetaAtStart = 1, MetaAtEnd = 2, MetaEveryRow = 3 };

    int source = File;
    QString path;
    QString sheet; // Excel sheet; empty for the first
    int fileType = 0; // the format numbers shared with outputs
    int delimiter = 0; // 0 "Automatic", 1 "Comma (,)", ... 9 "Unit separator (0x1F)"
    QChar customDelimiter;
    bool ignoreRepeatedDelimiter = false;
    int quoting = 0; // 0 "Automatic", 1 "Quoted", 2 "Unquoted"
    int fixedWidthColumns = 1; // 0 "Manual", 1 "Automatic"
    QList<int> columnWidths; // fixed width, manual
    QString encoding = QStringLiteral("Automatic");
    int ignoreFirstRows = 0;
    int hasHeader = 2; // 0 no, 1 yes, anything else guessed
    bool trimWhitespace = false;
    bool simplifyWhitespace = false;
    bool ignoreEmptyRows = true;
    bool ignoreEmptyColumns = false;
    bool ignoreHiddenExcelRows = false;
    bool ignoreHiddenExcelColumns = false;
    bool arraysAsRows = true; // JSON
    int metaInformation = MetaNotAdded;
    QString metaInformationText;
    QString metaInformationColumnName = QStringLiteral("Meta Info");
    bool usesSchema = false;
    QString longOrWide = QStringLiteral("Wide (more columns)");
    bool watch = false;

    // The source as messages name it: the file's absolute native path, or "Clipboard".
    QString sourceName() const
    {
        if (source == Clipboard)
            return QCoreApplication::translate("InputNode", "Clipboard");
        return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    }
};

// What a reader tells besides the table: messages, and how far it has got.
struct ReadReport
{
    QStringList warnings;
    QStringList information;
    std::function<void(double)> progress; // fraction 0 to 1; may be empty
    // Fixed width: the column widths read with, and the first raw lines read.
    QList<int> columnWidths;
    QStringList sample;
    void reportProgress(double fraction) const
    {
        if (progress)
            progress(fraction);
    }
};
