#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// The write options of an output item, as every writer sees them. The copy a writer is
// given describes one file: path and sheet have their variables expanded, fileType is the
// format being written, and writeHeader and byteOrderMark are the decisions for that file
// (the byte order mark itself is written by the pipeline, never by a writer).
struct OutputOptions
{
    enum WriteMode { Disabled = 0, Overwrite = 1, Append = 2, New = 3 };
    enum OutputTo { SingleFile = 0, MultipleFiles = 1 };
    enum LineEndings { LineEndingsAutomatic = 0, Crlf = 1, Lf = 2, Cr = 3, RecordSeparator = 4 };
    enum Quoting { QuotingAutomatic = 0, Quoted = 1, Unquoted = 2 };
    enum Types { TypesAutomatic = 0, TypesAllText = 1, TypesManual = 2 };

    QString path = QStringLiteral("Output.csv");
    QString sheet;
    int fileType = 0; // the format numbers shared with inputs
    int outputTo = SingleFile;
    int filesColumn = 0; // position from 1 of the "Files column"; 0 none
    int writeMode = Overwrite;
    int delimiter = 1; // input numbering: 0 "Automatic", 1 "Comma (,)", ... 9 "Unit separator (0x1F)"
    QChar customDelimiter;
    int quoting = QuotingAutomatic;
    int lineEndings = LineEndingsAutomatic;
    QString encoding = QStringLiteral("UTF-8");
    bool byteOrderMark = true;
    bool writeHeader = true;
    bool writeHeaderOnlyIfEmpty = true; // " (if empty)" when appending
    bool removeEmpty = true; // JSON, XML, YAML, vCard
    QString xmlAboveRoot;
    QString xmlRootName = QStringLiteral("root");
    QString xmlBelowRoot;
    QString xmlRowName = QStringLiteral("record");
    bool escapeHtml = true;
    int jsonTypes = TypesAutomatic;
    QList<int> jsonManualColumnTypes;
    int excelFormatting = TypesAutomatic;
    QList<int> excelManualColumnFormats;
    bool replaceOnlyThisSheet = true;
    bool useStyleTemplate = false;
    QString styleTemplate;
    bool confirmMultiFile = true;
    QString fileComment = QStringLiteral(" File created by %1 %2 at %3 %4 ");
};

// What a writer tells besides the file: messages, and how far it has got.
struct WriteReport
{
    QStringList warnings;
    QStringList information;
    std::function<void(double)> progress; // fraction 0 to 1; may be empty
    void reportProgress(double fraction) const
    {
        if (progress)
            progress(fraction);
    }
};
