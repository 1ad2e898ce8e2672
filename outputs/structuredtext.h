#pragma once

#include "outputoptions.h"
#include "textoutput.h"

#include <QByteArray>
#include <QDateTime>
#include <QIODevice>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextCodec>
#include <QVector>

class Dataset;

// What the JSON, XML, YAML, HTML, Markdown and vCard writers share: the encoded text
// stream, column names, value types, counted messages and appending before closing text.

// Text written through the output's codec by TextOutput, with the writer's own line breaks
// through endLine() and the encoded form of texts that appends look for.
class TextSink
{
public:
    TextSink(QIODevice &device, const QString &encoding, const QString &lineEnding);

    TextSink &operator<<(const QString &text)
    {
        m_output.buffer() += text;
        m_output.flushIfFull();
        return *this;
    }
    TextSink &operator<<(QLatin1String text)
    {
        m_output.buffer() += text;
        m_output.flushIfFull();
        return *this;
    }
    TextSink &operator<<(QChar c)
    {
        m_output.buffer() += c;
        return *this;
    }
    void endLine() { *this << m_lineEnding; }
    // The text not yet written, for writers that append to it in place; endLine() and the
    // next << write it once it holds a block.
    QString &buffer() { return m_output.buffer(); }

    QTextCodec *codec() const { return m_codec; }
    // The codec's own name, such as "UTF-8" or "ISO-8859-1".
    QString encodingName() const;
    QByteArray encode(const QString &text) const;
    // Bytes per character unit: 2 for UTF-16, 4 for UTF-32, else 1.
    int unitSize() const;

    // Writes what is buffered; false once the device has refused text.
    bool flush() { return m_output.flush(); }
    // Flushes and adds the encoding messages; false when the device refused text, which the
    // write pipeline names.
    bool finish(WriteReport &report);

private:
    TextOutput m_output;
    QTextCodec *m_codec = nullptr;
    QString m_lineEnding;
};

// Up to five messages word for word, then one "+ %1 %2" line for the rest.
class CountedMessages
{
public:
    void add(const QString &message);
    bool isEmpty() const { return m_shown.isEmpty(); }
    void appendTo(QStringList &list) const;

private:
    QStringList m_shown;
    qint64 m_more = 0;
};

// A JSON value parsed from a cell, number texts kept as written.
struct JsonValue
{
    enum Kind { Null, False, True, Number, String, Array, Object };
    Kind kind = Null;
    QString text; // Number and String
    QStringList keys; // Object, one per item
    QVector<JsonValue> items; // Array items and Object values
    bool isScalar() const { return kind < Array; }
};

namespace StructuredText {

// The whole text as one JSON value; false for anything else, and for nesting deeper than
// 200 levels.
bool parseJsonValue(const QString &text, JsonValue &value);

// The line break between lines and records. The record separator isn't possible in these
// formats: LF is used, with a warning naming the format.
QString lineEnding(const OutputOptions &options, int fileType, bool crlfWhenAutomatic, WriteReport &report);
QString lineEndingLabel(int lineEndings);

// Later columns of the same name get " 2", " 3", ..., skipping names already in use.
QStringList uniqueNames(const QStringList &names);

// The file comment with %1 to %4 filled with product name, version, date and time.
QString fileComment(const QString &comment, const QDateTime &when);
// The comment as "<!--%1-->" with "--" broken up; empty for an empty comment.
QString markupComment(const QString &comment, const QDateTime &when);

// "Types" of the JSON and YAML writers, per column.
enum ValueType { AutomaticType = 0, TextType = 1, NumberType = 2, BooleanType = 3, JsonType = 4 };
// Each column's type by the options, reporting the columns that "Automatic" made other
// than text.
QVector<int> valueTypes(const Dataset &dataset, const OutputOptions &options, WriteReport &report);
// "number", "boolean" or "JSON value", for the message about a cell written as text.
QString typeNoun(int type);
QString cellNotTypeMessage(const QString &cell, const QString &column, int row, int type);
// "true" or "false" for a boolean cell in any case, trimmed; empty otherwise.
QString booleanWord(const QString &cell);

QString absolutePath(const QString &path);
QString plural(qint64 count, const QString &one, const QString &many);

// True when the device holds nothing but, perhaps, a byte order mark.
bool holdsNoText(QIODevice &device);

// An appending write into a file whose closing text (JSON "]", XML root end tag, HTML
// "</tbody>") must stay last: prepare() finds it, the writer seeks to writeFrom, writes
// its rows, and finish() writes the kept tail again.
class ClosingText
{
public:
    // Looks for the last marker in the last 65,536 bytes; with onlyBlanksAfter only white
    // space may follow it. False when it isn't there or the device can't be read.
    bool find(QIODevice &device, const TextSink &sink, const QString &marker, bool onlyBlanksAfter);
    // The text just before the marker, up to 1,024 characters, for the writer's own checks.
    QString textBefore() const { return m_before; }
    // Moves the start back over the n characters just before the marker (they are rewritten).
    void startBefore(const TextSink &sink, const QString &characters);
    qint64 writeFrom() const { return m_writeFrom; }
    bool seekToStart(QIODevice &device) const { return device.seek(m_writeFrom); }
    // Writes the kept tail after the new rows and cuts what is left of the old file.
    bool finish(QIODevice &device, TextSink &sink) const;
    // Cuts the file where the new rows end: the closing text is replaced, not kept.
    bool cut(QIODevice &device, TextSink &sink) const;

private:
    qint64 m_writeFrom = 0;
    QByteArray m_tail;
    QString m_before;
};

// A QFile opened for appending can't write before its end; reopens it for reading and
// writing. False when that fails.
bool makeSeekable(QIODevice &device);

} // namespace StructuredText
