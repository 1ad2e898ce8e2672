#include "ionode.h"

#include <QDir>
#include <QFileInfo>

IONode::IONode(QGraphicsItem *parent)
    : Node(parent)
{ }

void IONode::setMedium(int medium)
{
    m_medium = medium == Clipboard ? Clipboard : File;
}

void IONode::setFileType(int fileType)
{
    m_fileType = fileType >= DelimitedText && fileType <= NoFileType ? fileType : NoFileType;
}

QList<DetailRow> IONode::fileRows() const
{
    if (m_medium != File)
        return {};
    const QFileInfo info(m_path);
    const QString location = m_path.isEmpty() ? QString() : QDir::toNativeSeparators(info.absoluteFilePath());
    const QString missing = tr("File not found");
    if (m_path.isEmpty() || !info.exists() || !info.isFile()) {
        return {
            {tr("File location"), location},
            {tr("File readable"), missing},
            {tr("File writable"), missing},
            {tr("File size"), missing},
            {tr("File created"), missing},
            {tr("File modified"), missing},
        };
    }
    const auto yesNo = [](bool flag) { return flag ? tr("Yes") : tr("No"); };
    // Not every file system records a birth time; the last status change is the
    // nearest stand-in.
    QDateTime created = info.birthTime();
    if (!created.isValid())
        created = info.metadataChangeTime();
    return {
        {tr("File location"), location},
        {tr("File readable"), yesNo(info.isReadable())},
        {tr("File writable"), yesNo(info.isWritable())},
        {tr("File size"), tr("%1 bytes").arg(countText(info.size()))},
        {tr("File created"), dateTimeText(created)},
        {tr("File modified"), dateTimeText(info.lastModified())},
    };
}
