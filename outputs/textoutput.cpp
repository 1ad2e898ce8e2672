#include "outputs/textoutput.h"

#include "flow/ionode.h"

#include <QCoreApplication>
#include <QIODevice>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("TextOutput", text);
}

constexpr int Latin1Mib = 4;
constexpr int Utf32Mib = 1017; // then 1018 UTF-32BE and 1019 UTF-32LE
constexpr int Utf32LeMib = 1019;

} // namespace

namespace TextOutputFormat {

int codePointCount(const QString &text)
{
    int count = text.size();
    const ushort *p = text.utf16();
    for (int i = 1, size = text.size(); i < size; ++i) {
        if (QChar::isLowSurrogate(p[i]) && QChar::isHighSurrogate(p[i - 1]))
            --count;
    }
    return count;
}

int automaticLineEndings(int fileType)
{
    if (fileType == IONode::VCard)
        return OutputOptions::Crlf;
#ifdef Q_OS_WIN
    return OutputOptions::Crlf;
#else
    return OutputOptions::Lf;
#endif
}

QString lineEnding(int lineEndings, int fileType)
{
    if (lineEndings == OutputOptions::LineEndingsAutomatic)
        lineEndings = automaticLineEndings(fileType);
    switch (lineEndings) {
    case OutputOptions::Crlf:
        return QStringLiteral("\r\n");
    case OutputOptions::Cr:
        return QStringLiteral("\r");
    case OutputOptions::RecordSeparator:
        return QString(QChar(0x1E));
    default:
        return QStringLiteral("\n");
    }
}

QString lineEndingsLabel(int lineEndings, int fileType)
{
    if (lineEndings == OutputOptions::LineEndingsAutomatic)
        lineEndings = automaticLineEndings(fileType);
    switch (lineEndings) {
    case OutputOptions::Crlf:
        return tr("Windows (CRLF)");
    case OutputOptions::Cr:
        return tr("Old Mac (CR)");
    case OutputOptions::RecordSeparator:
        return tr("Record separator (0x1E)");
    default:
        return tr("Mac\\Unix (LF)");
    }
}

bool isUnicode(const QString &encoding)
{
    return encoding.contains(QLatin1String("utf"), Qt::CaseInsensitive);
}

QByteArray byteOrderMark(const QString &encoding)
{
    if (!isUnicode(encoding))
        return QByteArray();
    QTextCodec *codec = QTextCodec::codecForName(encoding.toLatin1());
    if (!codec)
        codec = QTextCodec::codecForMib(106);
    // Encoding the mark itself gives it in the byte order the codec writes text in.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QChar mark(0xFEFF);
    return codec->fromUnicode(&mark, 1, &state);
}

QString plural(qint64 count, const QString &one, const QString &many)
{
    return count == 1 ? one : many;
}

} // namespace TextOutputFormat

TextOutput::TextOutput(QIODevice &device, const QString &encoding)
    : m_device(device)
    , m_encoding(encoding)
    , m_state(QTextCodec::IgnoreHeader)
{
    m_codec = QTextCodec::codecForName(encoding.toLatin1());
    if (!m_codec) {
        m_known = false;
        m_codec = QTextCodec::codecForMib(106);
    }
    // Qt's Latin-1 codec writes a character outside the BMP as two "?"; this program
    // writes one, as the other codecs do.
    m_latin1 = m_codec->mibEnum() == Latin1Mib;
    m_utf32 = m_codec->mibEnum() >= Utf32Mib && m_codec->mibEnum() <= Utf32LeMib;
    m_buffer.reserve(BlockSize + 4096);
}

bool TextOutput::flush()
{
    if (m_buffer.isEmpty() || m_failed)
        return !m_failed;
    if (m_latin1) {
        const int size = m_buffer.size();
        m_bytes.resize(size);
        const ushort *in = m_buffer.utf16();
        char *out = m_bytes.data();
        int written = 0;
        for (int i = 0; i < size; ++i) {
            const ushort c = in[i];
            if (c < 0x100) {
                out[written++] = char(c);
                continue;
            }
            if (QChar::isHighSurrogate(c) && i + 1 < size && QChar::isLowSurrogate(in[i + 1]))
                ++i;
            out[written++] = '?';
            ++m_replaced;
        }
        m_bytes.resize(written);
    } else {
        const int before = m_state.invalidChars;
        m_bytes = m_codec->fromUnicode(m_buffer.constData(), m_buffer.size(), &m_state);
        m_replaced += m_state.invalidChars - before;
        if (m_utf32) {
            // Qt's UTF-32 encoder sizes its result by UTF-16 units and leaves the four bytes
            // it saves on each surrogate pair as garbage at the end.
            m_bytes.resize(4 * TextOutputFormat::codePointCount(m_buffer));
        }
    }
    m_buffer.resize(0);
    if (m_device.write(m_bytes) != m_bytes.size())
        m_failed = true;
    return !m_failed;
}

QStringList TextOutput::messages() const
{
    QStringList result;
    if (!m_known)
        result << tr("Unknown encoding '%1'; UTF-8 was used").arg(m_encoding);
    if (m_replaced > 0) {
        result << tr("%1 %2 can't be written in %3 and were written as '?'")
                      .arg(m_replaced)
                      .arg(TextOutputFormat::plural(m_replaced, tr("character"), tr("characters")),
                          m_known ? m_encoding : QStringLiteral("UTF-8"));
    }
    return result;
}
