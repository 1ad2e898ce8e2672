#pragma once

#include "outputs/outputoptions.h"

#include <QByteArray>
#include <QString>
#include <QTextCodec>

class QIODevice;

// What text writers share: the line ending each choice gives, and an encoder that writes
// to a device in large blocks.
namespace TextOutputFormat {

// "\r\n", "\n", "\r" or the record separator; 0 "Automatic" is "\r\n" on Windows and "\n"
// elsewhere, and "\r\n" for vCard on every platform.
QString lineEnding(int lineEndings, int fileType);
// The choice Automatic stands for: Crlf or Lf.
int automaticLineEndings(int fileType);
// "Windows (CRLF)", "Mac\Unix (LF)", ...; Automatic gives the label of what it stands for.
QString lineEndingsLabel(int lineEndings, int fileType);
// True when the encoding's name shows a Unicode encoding (it contains "utf").
bool isUnicode(const QString &encoding);
// The byte order mark in the encoding and in the byte order its text is written in;
// empty unless the encoding is Unicode.
QByteArray byteOrderMark(const QString &encoding);
// Characters in text as code points: a surrogate pair counts once.
int codePointCount(const QString &text);
// one for a count of 1, else many.
QString plural(qint64 count, const QString &one, const QString &many);

} // namespace TextOutputFormat

// Collects text in a buffer and writes it encoded once the buffer holds a block, so that a
// writer appends cells to one string and the codec and the device see few, large calls.
// The codec never writes a byte order mark. A character the codec can't represent is
// written as "?" and counted.
class TextOutput
{
public:
    // Characters collected before they are encoded and written.
    static constexpr int BlockSize = 1 << 19;

    // An encoding QTextCodec doesn't know writes UTF-8, and messages() says so.
    TextOutput(QIODevice &device, const QString &encoding);

    // The text still to be written; append to it, then call flushIfFull between rows.
    QString &buffer() { return m_buffer; }
    bool flushIfFull() { return m_buffer.size() < BlockSize || flush(); }
    // Writes what the buffer holds; false once any write to the device has failed.
    bool flush();
    bool failed() const { return m_failed; }

    qint64 replacedCount() const { return m_replaced; }
    // The warnings about the encoding: an unknown name, and the characters written as "?".
    QStringList messages() const;

private:
    QIODevice &m_device;
    QString m_encoding;
    QTextCodec *m_codec = nullptr;
    QTextCodec::ConverterState m_state;
    bool m_latin1 = false;
    bool m_utf32 = false;
    bool m_known = true;
    bool m_failed = false;
    qint64 m_replaced = 0;
    QString m_buffer;
    QByteArray m_bytes;
};
