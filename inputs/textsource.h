#pragma once

#include <QString>

#include <memory>

class QIODevice;
class QTextCodec;
class QTextDecoder;

// The text of an input, decoded as it is read: a file or buffer in large chunks, or pasted
// text as it stands. Readers take it in blocks, in lines or whole. It also counts what the
// messages tell: NUL characters, bytes the codec couldn't read, and how far it has got.
class TextSource
{
public:
    // The largest text held in one string: a QString stops a little short of 2^30
    // characters.
    static constexpr qint64 MaxChars = (qint64(1) << 30) - 64;

    // Decodes device, open for reading. "Automatic" (or automaticEncoding) reads UTF-8 unless
    // a byte order mark names UTF-16 or UTF-32; any other name is that codec, or UTF-8 when
    // no codec has the name.
    TextSource(QIODevice *device, const QString &encoding, bool automaticEncoding = false);
    // Pasted text: nothing to decode.
    explicit TextSource(const QString &text);
    ~TextSource();
    TextSource(const TextSource &) = delete;
    TextSource &operator=(const TextSource &) = delete;

    // The codec's name, such as "UTF-8"; empty for pasted text.
    QString codecName() const;

    // The next block of at most maxChars characters (more when it would end in a carriage
    // return, so that CR LF is never split), valid until the next read; false at the end.
    bool readBlock(int maxChars, const QChar *&data, int &length);
    // The next line without its line feed or CR LF; false at the end.
    bool readLine(QString &line);
    // The rest of the text. False, with nothing read, when it is longer than maxChars.
    bool readAll(QString &text, qint64 maxChars = MaxChars);
    // Up to chars characters from the current position, without reading them.
    QString peek(int chars);
    bool atEnd();

    // The fraction of the input read, 0 to 1.
    double progress() const;
    // The size of the input in characters, estimated from its bytes for a device.
    qint64 estimatedChars() const;
    qint64 nulCount() const { return m_nulCount; }
    // True when some bytes were not valid in the codec and were read as U+FFFD.
    bool hasInvalidBytes() const;

private:
    // Decodes the next chunk of bytes after what is left of the buffer; false at the end.
    bool fill();
    void countNuls(int from);

    QIODevice *m_device = nullptr;
    QTextCodec *m_codec = nullptr;
    std::unique_ptr<QTextDecoder> m_decoder;
    QString m_buffer;
    int m_position = 0;
    qint64 m_size = 0; // bytes of the device, or characters of pasted text
    qint64 m_bytesRead = 0; // bytes decoded before the buffer's chunk
    qint64 m_chunkBytes = 0;
    qint64 m_nulCount = 0;
    bool m_truncatedSequence = false;
    bool m_accumulating = false; // readAll: keep the reserved buffer
    int m_charWidth = 1;
};
