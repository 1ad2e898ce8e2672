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

    // Reading a large file in two parts at once. Parts can be made of a file in a codec
    // where a byte below 0x80 always is that ASCII character, such as UTF-8 or Latin-1,
    // so that line breaks and quotes can be found in the bytes.
    bool canSplit() const;
    // The file's name, when the text comes from a file.
    QString fileName() const;
    // The size of the input in bytes.
    qint64 byteSize() const { return m_size; }
    // Ends the text at byte end of the file, before anything past it has been read: the
    // first part. False when that much has already been read.
    bool setByteLimit(qint64 end);
    // The rest of the file from byte start on, opened again, in the same codec: the second
    // part. Null when the file can't be opened again.
    std::unique_ptr<TextSource> openPart(qint64 start) const;
    // Adds what the messages tell of a second part: its NULs and invalid bytes.
    void addCounts(const TextSource &part);
    // Back to the start of the file, as if nothing had been read; false when the device
    // can't seek.
    bool restart();

private:
    // Decodes the next chunk of bytes after what is left of the buffer; false at the end.
    bool fill();
    void countNuls(int from);

    QIODevice *m_device = nullptr;
    std::unique_ptr<QIODevice> m_ownDevice; // a part's own opening of the file
    QTextCodec *m_codec = nullptr;
    std::unique_ptr<QTextDecoder> m_decoder;
    QString m_buffer;
    int m_position = 0;
    qint64 m_size = 0; // bytes of the device, or characters of pasted text
    qint64 m_bytesRead = 0; // bytes decoded before the buffer's chunk
    qint64 m_chunkBytes = 0;
    qint64 m_nulCount = 0;
    qint64 m_byteLimit = -1; // the end of a first part, or none
    bool m_truncatedSequence = false;
    bool m_partFailure = false; // a second part met invalid bytes
    bool m_accumulating = false; // readAll: keep the reserved buffer
    int m_charWidth = 1;
};
