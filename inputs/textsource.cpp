#include "textsource.h"

#include <QIODevice>
#include <QTextCodec>
#include <QTextDecoder>

#include <algorithm>
#include <cstring>

namespace {

// Bytes decoded at a time: large enough that the per-chunk work vanishes, small enough
// that the decoded chunk is still in the cache when the reader walks it.
constexpr qint64 ChunkBytes = 64 * 1024;

// In a codec of one-byte units a NUL character is a zero byte, and memchr finds those
// far faster than a walk over the decoded text.
qint64 countZeroBytes(const QByteArray &bytes)
{
    qint64 count = 0;
    const char *position = bytes.constData();
    const char *const end = position + bytes.size();
    while ((position = static_cast<const char *>(std::memchr(position, 0, size_t(end - position))))) {
        ++count;
        ++position;
    }
    return count;
}

} // namespace

TextSource::TextSource(QIODevice *device, const QString &encoding, bool automaticEncoding)
    : m_device(device)
{
    QTextCodec *utf8 = QTextCodec::codecForName("UTF-8");
    if (automaticEncoding || encoding.isEmpty() || encoding == QLatin1String("Automatic")) {
        m_codec = QTextCodec::codecForUtfText(device ? device->peek(4) : QByteArray(), utf8);
    } else {
        m_codec = QTextCodec::codecForName(encoding.toLatin1());
        if (!m_codec)
            m_codec = utf8;
    }
    // The decoder's default flags drop a byte order mark at the start.
    m_decoder.reset(m_codec->makeDecoder());
    const QByteArray name = m_codec->name();
    if (name.contains("-16"))
        m_charWidth = 2;
    else if (name.contains("-32"))
        m_charWidth = 4;
    m_size = device ? device->size() : 0;
}

TextSource::TextSource(const QString &text)
    : m_buffer(text)
    , m_size(text.size())
{
    countNuls(0);
}

TextSource::~TextSource() = default;

QString TextSource::codecName() const
{
    return m_codec ? QString::fromLatin1(m_codec->name()) : QString();
}

bool TextSource::fill()
{
    if (!m_device)
        return false;
    QByteArray bytes = m_device->read(ChunkBytes);
    if (bytes.isEmpty()) {
        // A sequence cut off by the end of the file is an invalid one, not a silent loss.
        if (m_decoder->needsMoreData() && !m_truncatedSequence) {
            m_truncatedSequence = true;
            if (m_position > 0) {
                m_buffer.remove(0, m_position);
                m_position = 0;
            }
            m_buffer.append(QChar::ReplacementCharacter);
            return true;
        }
        return false;
    }
    m_chunkBytes += bytes.size();
    if (m_charWidth == 1)
        m_nulCount += countZeroBytes(bytes);
    QString decoded = m_decoder->toUnicode(bytes);
    // A chunk never ends in a carriage return unless the input does, so that a reader
    // sees CR LF in one piece.
    while (decoded.endsWith(QLatin1Char('\r')) && !m_device->atEnd()) {
        bytes = m_device->read(16);
        m_chunkBytes += bytes.size();
        if (m_charWidth == 1)
            m_nulCount += countZeroBytes(bytes);
        decoded += m_decoder->toUnicode(bytes);
    }
    int from = 0;
    if (m_position >= m_buffer.size() && !m_accumulating) {
        m_buffer = decoded;
    } else {
        m_buffer.remove(0, m_position);
        from = m_buffer.size();
        m_buffer += decoded;
    }
    m_position = 0;
    if (m_charWidth != 1)
        countNuls(from);
    return true;
}

void TextSource::countNuls(int from)
{
    const char16_t *begin = reinterpret_cast<const char16_t *>(m_buffer.constData());
    m_nulCount += std::count(begin + from, begin + m_buffer.size(), u'\0');
}

bool TextSource::readBlock(int maxChars, const QChar *&data, int &length)
{
    while (m_position >= m_buffer.size()) {
        if (!fill())
            return false;
    }
    const int available = m_buffer.size() - m_position;
    int count = qMin(qMax(maxChars, 1), available);
    const QChar *begin = m_buffer.constData() + m_position;
    while (count < available && begin[count - 1] == QLatin1Char('\r'))
        ++count;
    data = begin;
    length = count;
    m_position += count;
    return true;
}

bool TextSource::readLine(QString &line)
{
    QString carry;
    bool found = false;
    for (;;) {
        if (m_position >= m_buffer.size()) {
            if (!fill())
                break;
            continue;
        }
        const QChar *begin = m_buffer.constData() + m_position;
        const int available = m_buffer.size() - m_position;
        const QChar *end = begin + available;
        const QChar *feed = std::find(begin, end, QLatin1Char('\n'));
        found = true;
        if (feed == end) {
            carry.append(begin, available);
            m_position = m_buffer.size();
            continue;
        }
        const int count = int(feed - begin);
        m_position += count + 1;
        if (carry.isEmpty()) {
            line = QString(begin, count);
        } else {
            carry.append(begin, count);
            line = carry;
        }
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        return true;
    }
    if (!found)
        return false;
    // A carriage return that ends the text ends the line; it isn't part of it.
    if (carry.endsWith(QLatin1Char('\r')))
        carry.chop(1);
    line = carry;
    return true;
}

bool TextSource::readAll(QString &text, qint64 maxChars)
{
    const qint64 left = m_device ? (m_size - m_chunkBytes) / m_charWidth : 0;
    if (m_buffer.size() - m_position + left > maxChars)
        return false;
    if (m_device) {
        if (m_position > 0) {
            m_buffer.remove(0, m_position);
            m_position = 0;
        }
        m_buffer.reserve(int(m_buffer.size() + left + 16));
        m_accumulating = true;
        while (fill()) {
            if (m_buffer.size() > maxChars) {
                m_buffer.clear();
                return false;
            }
        }
    }
    text = m_position == 0 ? m_buffer : m_buffer.mid(m_position);
    m_buffer.clear();
    m_position = 0;
    return true;
}

QString TextSource::peek(int chars)
{
    while (m_buffer.size() - m_position < chars) {
        // fill() keeps what is left of the buffer and adds the next chunk after it.
        if (!fill())
            break;
    }
    return m_buffer.mid(m_position, chars);
}

bool TextSource::atEnd()
{
    while (m_position >= m_buffer.size()) {
        if (!fill())
            return true;
    }
    return false;
}

double TextSource::progress() const
{
    if (m_size <= 0)
        return 0;
    if (!m_device)
        return double(m_position) / double(m_size);
    const qint64 pending = qint64(m_buffer.size() - m_position) * m_charWidth;
    return qBound(0.0, double(m_chunkBytes - pending) / double(m_size), 1.0);
}

qint64 TextSource::estimatedChars() const
{
    return m_device ? m_size / m_charWidth : m_size;
}

bool TextSource::hasInvalidBytes() const
{
    return m_truncatedSequence || (m_decoder && m_decoder->hasFailure());
}
