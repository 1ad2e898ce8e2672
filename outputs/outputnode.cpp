#include "outputnode.h"

#include "core/settings.h"
#include "flow/fileformat.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHash>

namespace {

QHash<int, OutputNode::Writer> &writers()
{
    static QHash<int, OutputNode::Writer> registry;
    return registry;
}

} // namespace

OutputNode::OutputNode(QGraphicsItem *parent)
    : IONode(parent)
{ }

QString OutputNode::name() const
{
    const QString given = IONode::name();
    if (!given.isEmpty())
        return given;
    if (path().isEmpty())
        return tr("<no file name>");
    return QFileInfo(path()).fileName();
}

void OutputNode::setWriteMode(int mode)
{
    m_writeMode = mode >= Disabled && mode <= New ? mode : Overwrite;
}

QString OutputNode::writeModeName(int mode)
{
    switch (mode) {
    case Disabled:
        return tr("Disabled");
    case Overwrite:
        return tr("Overwrite");
    case Append:
        return tr("Append");
    case New:
        return tr("New");
    default:
        return QString();
    }
}

int OutputNode::effectiveFileType() const
{
    if (fileType() != NoFileType)
        return fileType();
    const int named = FileFormat::forExtension(QFileInfo(path()).suffix());
    return named == NoFileType ? DelimitedText : named;
}

void OutputNode::process(bool recursive, bool freeMemory)
{
    Q_UNUSED(recursive) // nothing is downstream of an output
    if (GraphScene::isStopRequested() || status() == UpToDate)
        return;
    const QList<Node *> above = upstream(false);
    // An output waits for its input like any item; an input in error holds it back.
    if (above.size() == 1 && above.first()->status() != UpToDate)
        return;
    m_dataset = Dataset();
    m_warnings.clear();
    m_information.clear();
    m_writtenFiles.clear();
    if (above.size() != 1) {
        addWarning(tr("No transforms or inputs connected"));
        setStatus(UpToDate, false);
        return;
    }
    const QFileInfo info(path());
    const GraphScene *scene = graphScene();
    const Settings *settings = scene ? scene->settings() : nullptr;
    if (settings && settings->blockedExtensions(false).contains(info.suffix().toLower())) {
        addWarning(tr("The extension for this file is blocked in 'Preferences>Output Extensions':\n%1")
                       .arg(QDir::toNativeSeparators(info.absoluteFilePath())));
        setStatus(Error, true);
        return;
    }
    setStatus(Updating, false);
    emit processingStart(this);
    QElapsedTimer timer;
    timer.start();
    reportProgress(0);
    m_dataset = above.first()->dataset();
    int status = UpToDate;
    if (m_writeMode == Disabled) {
        addInformation(tr("Write mode='%1'").arg(writeModeName(Disabled)));
    } else {
        const int type = effectiveFileType();
        const Writer writer = writers().value(type);
        if (!writer) {
            addWarning(tr("Writing %1 files is not available in this version").arg(FileFormat::name(type)));
            status = Error;
        } else if (!writer(*this, m_dataset, m_warnings, m_information)) {
            status = Error;
        }
    }
    assignColumnIds();
    setProcessingTime(int(timer.elapsed()));
    setLastProcessed(QDateTime::currentDateTime());
    setStatus(status, false);
    m_dataset.releaseValuePools();
    emit processingEnd(this);
    emit nodeDataChanged(this);
    update();
    if (freeMemory)
        GraphScene::freeUpstreamMemory(this);
}

void OutputNode::addWrittenFile(const QString &path)
{
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (!m_writtenFiles.contains(where))
        m_writtenFiles << where;
    GraphScene *scene = graphScene();
    if (!scene)
        return;
    const int times = scene->recordWrite(where);
    if (times > 1)
        addWarning(tr("Overwrote '%1' %2 times").arg(where).arg(times));
}

void OutputNode::setWriter(int fileType, const Writer &writer)
{
    if (writer)
        writers().insert(fileType, writer);
    else
        writers().remove(fileType);
}

bool OutputNode::hasWriter(int fileType)
{
    return writers().contains(fileType);
}
