#include "inputnode.h"

#include "core/settings.h"
#include "flow/fileformat.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHash>

namespace {

QHash<int, InputNode::Reader> &readers()
{
    static QHash<int, InputNode::Reader> registry;
    return registry;
}

} // namespace

InputNode::InputNode(QGraphicsItem *parent)
    : IONode(parent)
{ }

QString InputNode::name() const
{
    const QString given = IONode::name();
    return given.isEmpty() ? sourceText() : given;
}

QString InputNode::sourceText() const
{
    if (medium() == Clipboard)
        return tr("Clipboard");
    if (path().isEmpty())
        return tr("<unset>");
    const QString fileName = QFileInfo(path()).fileName();
    const bool excel = fileType() == ExcelXlsx || fileType() == ExcelXls;
    if (excel && !worksheet().isEmpty())
        return tr("%1[%2]").arg(fileName, worksheet());
    return fileName;
}

int InputNode::effectiveFileType() const
{
    if (fileType() != NoFileType)
        return fileType();
    int guessed = NoFileType;
    if (medium() == File)
        guessed = FileFormat::forExtension(QFileInfo(path()).suffix());
    else if (!m_text.isEmpty())
        guessed = guessTextFormat(m_text);
    return guessed == NoFileType ? DelimitedText : guessed;
}

void InputNode::process(bool recursive, bool freeMemory)
{
    if (GraphScene::isStopRequested())
        return;
    if (status() != UpToDate) {
        m_dataset = Dataset();
        m_warnings.clear();
        m_information.clear();
        setStatus(Updating, false);
        emit processingStart(this);
        QElapsedTimer timer;
        timer.start();
        reportProgress(0);
        const int type = effectiveFileType();
        if (medium() == File && !path().isEmpty()) {
            const QFileInfo info(path());
            const QString where = QDir::toNativeSeparators(info.absoluteFilePath());
            const GraphScene *scene = graphScene();
            const Settings *settings = scene ? scene->settings() : nullptr;
            if (!info.isFile()) {
                addWarning(tr("File '%1' not found").arg(where));
                setStatus(Error, false);
            } else if (settings && settings->blockedExtensions(true).contains(info.suffix().toLower())) {
                addWarning(tr("The extension for this file is blocked in 'Preferences>Input Extensions':\n%1")
                               .arg(where));
                setStatus(Error, true);
            } else {
                read(type);
                const int named = FileFormat::forExtension(info.suffix());
                if (named != NoFileType && named != type)
                    addWarning(tr("File '%1' extension may not match data type: %2")
                                   .arg(where, FileFormat::name(type)));
            }
        } else if (medium() == Clipboard && !m_text.isEmpty()) {
            read(type);
        } else {
            setStatus(UpToDate, false);
        }
        assignColumnIds();
        setProcessingTime(int(timer.elapsed()));
        setLastProcessed(QDateTime::currentDateTime());
        m_dataset.releaseValuePools();
        emit processingEnd(this);
        emit nodeDataChanged(this);
    }
    const QList<Node *> below = downstream(false);
    for (Node *node : below)
        node->update();
    update();
    if (!recursive)
        return;
    for (Node *node : below) {
        if (status() == Error)
            break;
        node->process(true, freeMemory);
    }
}

void InputNode::read(int fileType)
{
    const Reader reader = readers().value(fileType);
    if (!reader) {
        addWarning(tr("Reading %1 files is not available in this version").arg(FileFormat::name(fileType)));
        setStatus(Error, false);
        return;
    }
    const bool ok = reader(*this, m_dataset, m_warnings, m_information);
    setStatus(ok ? UpToDate : Error, false);
}

void InputNode::setReader(int fileType, const Reader &reader)
{
    if (reader)
        readers().insert(fileType, reader);
    else
        readers().remove(fileType);
}

bool InputNode::hasReader(int fileType)
{
    return readers().contains(fileType);
}

int InputNode::guessTextFormat(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return DelimitedText;
    const QChar first = trimmed.front();
    const QChar last = trimmed.back();
    if (first == QLatin1Char('<') && last == QLatin1Char('>'))
        return Xml;
    if ((first == QLatin1Char('{') && last == QLatin1Char('}'))
        || (first == QLatin1Char('[') && last == QLatin1Char(']')))
        return Json;
    if (trimmed.startsWith(QLatin1String("BEGIN:VCARD")) && trimmed.endsWith(QLatin1String("END:VCARD")))
        return VCard;
    if (trimmed.size() <= 100)
        return DelimitedText;
    const int sampleSize = 1000;
    const QString sample =
        trimmed.size() <= sampleSize ? trimmed : trimmed.mid((trimmed.size() - sampleSize) / 2, sampleSize);
    int delimiters = 0;
    for (const QChar delimiter : {QChar(','), QChar(';'), QChar('|'), QChar('^'), QChar('\t'), QChar(0x1F)})
        delimiters = qMax(delimiters, int(sample.count(delimiter)));
    int spaces = 0;
    int runs = 0;
    int run = 0;
    for (const QChar c : sample) {
        if (c == QLatin1Char(' ')) {
            ++spaces;
            if (++run == 3)
                ++runs;
        } else {
            run = 0;
        }
    }
    if (runs >= 2 && spaces >= 3 * delimiters)
        return FixedWidth;
    return delimiters >= 0.025 * sample.size() ? DelimitedText : PlainText;
}
