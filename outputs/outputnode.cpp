#include "outputnode.h"

#include "core/settings.h"
#include "flow/fileformat.h"
#include "inputs/inputnode.h"
#include "outputs/textoutput.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHash>
#include <QSaveFile>
#include <QSet>
#include <QVector>

namespace {

QHash<int, OutputNode::Writer> &writers()
{
    static QHash<int, OutputNode::Writer> registry;
    return registry;
}

OutputNode::Confirmation &confirmation()
{
    static OutputNode::Confirmation confirm;
    return confirm;
}

QString nativePath(const QString &path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

// The most bytes at the end of a file that an appending writer may rewrite (to put rows
// before a closing tag); they are restored when the write fails.
constexpr qint64 AppendTailSize = 65536;

// Undoes an append that didn't finish, also when it is left by an exception: cuts the
// file back to its old size and puts back its old last bytes, or removes a file the
// append created.
class AppendRollback
{
public:
    AppendRollback(QFile &file, bool existed)
        : m_file(file)
        , m_existed(existed)
        , m_size(file.size())
    {
        if (existed && file.isReadable() && m_size > 0) {
            const qint64 start = qMax<qint64>(0, m_size - AppendTailSize);
            if (file.seek(start))
                m_tail = file.read(m_size - start);
        }
    }
    ~AppendRollback()
    {
        if (!m_done)
            rollBack();
    }
    void release() { m_done = true; }
    void rollBack()
    {
        m_done = true;
        if (!m_existed) {
            m_file.close();
            m_file.remove();
            return;
        }
        m_file.resize(m_size);
        if (!m_tail.isEmpty() && m_file.seek(m_size - m_tail.size()))
            m_file.write(m_tail);
        m_file.close();
    }

private:
    QFile &m_file;
    const bool m_existed;
    const qint64 m_size;
    QByteArray m_tail;
    bool m_done = false;
};

// Removes a file created in New mode unless the write completed.
class NewFileRollback
{
public:
    explicit NewFileRollback(QFile &file)
        : m_file(file)
    { }
    ~NewFileRollback()
    {
        if (!m_done) {
            m_file.close();
            m_file.remove();
        }
    }
    void release() { m_done = true; }

private:
    QFile &m_file;
    bool m_done = false;
};

// Option keys under which new outputs find their remembered defaults.
const char *const DefaultKeys[] = {"delimiter", "custom_delimiter", "quoting", "line_endings", "bom",
    "remove_empty", "xml_above_root", "xml_below_root", "xml_root_name", "xml_row_name", "escape_html",
    "write_header", "file_comment"};

QString defaultKey(const char *key)
{
    return QStringLiteral("defaults/outputs/") + QLatin1String(key);
}

QString boolText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

} // namespace

OutputNode::OutputNode(QGraphicsItem *parent)
    : IONode(parent)
{
    setEncoding(m_options.encoding);
    setDelimiter(m_options.delimiter);
}

QString OutputNode::name() const
{
    const QString given = IONode::name();
    if (!given.isEmpty())
        return given;
    if (path().isEmpty())
        return tr("<no file name>");
    return QFileInfo(path()).fileName();
}

OutputOptions OutputNode::options() const
{
    OutputOptions result = m_options;
    result.path = path();
    result.sheet = worksheet();
    result.fileType = fileType();
    result.delimiter = delimiter();
    result.customDelimiter = customDelimiter().isEmpty() ? QChar() : customDelimiter().at(0);
    result.encoding = encoding();
    return result;
}

void OutputNode::setOptions(const OutputOptions &options)
{
    m_options = options;
    setWriteMode(options.writeMode);
    setPath(options.path);
    setWorksheet(options.sheet);
    setFileType(options.fileType);
    setDelimiter(options.delimiter);
    setCustomDelimiter(options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter));
    setEncoding(options.encoding);
}

void OutputNode::setWriteMode(int mode)
{
    m_options.writeMode = mode >= Disabled && mode <= New ? mode : Overwrite;
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

void OutputNode::applyDefaults(const Settings *settings)
{
    OutputOptions values = options();
    const OutputOptions factory;
    values.delimiter = factory.delimiter;
    values.customDelimiter = QChar();
    values.quoting = factory.quoting;
    values.lineEndings = factory.lineEndings;
    values.byteOrderMark = factory.byteOrderMark;
    values.removeEmpty = factory.removeEmpty;
    values.xmlAboveRoot = factory.xmlAboveRoot;
    values.xmlBelowRoot = factory.xmlBelowRoot;
    values.xmlRootName = factory.xmlRootName;
    values.xmlRowName = factory.xmlRowName;
    values.escapeHtml = factory.escapeHtml;
    values.writeHeader = factory.writeHeader;
    values.fileComment = factory.fileComment;
    if (settings) {
        for (const char *key : DefaultKeys) {
            if (!settings->contains(defaultKey(key)))
                continue;
            const QVariant stored = settings->value(defaultKey(key));
            // An ini file edited by hand reads "a,b" as a list: it was meant as one text.
            const QString text = stored.type() == QVariant::StringList
                ? stored.toStringList().join(QLatin1Char(','))
                : stored.toString();
            const QLatin1String name(key);
            bool number = false;
            const int value = text.toInt(&number);
            if (name == QLatin1String("custom_delimiter"))
                values.customDelimiter = text.isEmpty() ? QChar() : text.at(0);
            else if (name == QLatin1String("xml_above_root"))
                values.xmlAboveRoot = text;
            else if (name == QLatin1String("xml_below_root"))
                values.xmlBelowRoot = text;
            else if (name == QLatin1String("xml_root_name"))
                values.xmlRootName = text;
            else if (name == QLatin1String("xml_row_name"))
                values.xmlRowName = text;
            else if (name == QLatin1String("file_comment"))
                values.fileComment = text;
            else if (!number)
                continue; // a number that doesn't read keeps the factory value
            else if (name == QLatin1String("delimiter"))
                values.delimiter = value;
            else if (name == QLatin1String("quoting"))
                values.quoting = value;
            else if (name == QLatin1String("line_endings"))
                values.lineEndings = value;
            else if (name == QLatin1String("bom"))
                values.byteOrderMark = value != 0;
            else if (name == QLatin1String("remove_empty"))
                values.removeEmpty = value != 0;
            else if (name == QLatin1String("escape_html"))
                values.escapeHtml = value != 0;
            else if (name == QLatin1String("write_header"))
                values.writeHeader = value != 0;
        }
    }
    setOptions(values);
}

void OutputNode::saveDefaults(Settings *settings) const
{
    if (!settings)
        return;
    const OutputOptions values = options();
    const QString texts[] = {QString::number(values.delimiter),
        values.customDelimiter.isNull() ? QString() : QString(values.customDelimiter),
        QString::number(values.quoting), QString::number(values.lineEndings), boolText(values.byteOrderMark),
        boolText(values.removeEmpty), values.xmlAboveRoot, values.xmlBelowRoot, values.xmlRootName,
        values.xmlRowName, boolText(values.escapeHtml), boolText(values.writeHeader), values.fileComment};
    int i = 0;
    for (const char *key : DefaultKeys)
        settings->setValue(defaultKey(key), texts[i++]);
}

int OutputNode::effectiveFileType() const
{
    if (fileType() != NoFileType)
        return fileType();
    const int named = FileFormat::forExtension(QFileInfo(path()).suffix());
    return named == NoFileType ? DelimitedText : named;
}

bool OutputNode::isTextFormat(int fileType)
{
    return fileType != ExcelXlsx && fileType != ExcelXls;
}

FileNameContext OutputNode::fileNameContext() const
{
    FileNameContext context;
    const QStringList version = QCoreApplication::applicationVersion().split(QLatin1Char('.'));
    context.versionMajor = version.value(0).toInt();
    context.versionMinor = version.value(1).toInt();
    context.versionPatch = version.value(2).toInt();
    const GraphScene *scene = graphScene();
    if (!scene)
        return context;
    context.documentPath = scene->property("documentPath").toString();
    for (Node *node : scene->nodes()) {
        const auto *input = qobject_cast<InputNode *>(node);
        if (!input || input->alias().trimmed().isEmpty())
            continue;
        const int type = input->effectiveFileType();
        const bool excel = type == ExcelXlsx || type == ExcelXls;
        context.inputs.append({input->alias(), input->path(), excel ? input->worksheet() : QString()});
    }
    return context;
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
    m_targetPath.clear();
    m_targetSheet.clear();
    if (above.size() != 1) {
        addWarning(tr("No transforms or inputs connected"));
        setStatus(UpToDate, false);
        return;
    }
    const GraphScene *scene = graphScene();
    const Settings *settings = scene ? scene->settings() : nullptr;
    if (m_options.outputTo != MultipleFiles) {
        const FileNameContext context = fileNameContext();
        m_targetPath = expandFileNameVariables(path(), context);
        m_targetSheet = expandFileNameVariables(worksheet(), context);
        const QFileInfo info(m_targetPath);
        if (settings && settings->blockedExtensions(false).contains(info.suffix().toLower())) {
            addWarning(tr("The extension for this file is blocked in 'Preferences>Output Extensions':\n%1")
                           .arg(nativePath(m_targetPath)));
            setStatus(Error, true);
            return;
        }
    }
    setStatus(Updating, false);
    emit processingStart(this);
    QElapsedTimer timer;
    timer.start();
    m_progressBase = 0;
    m_progressSpan = 1;
    reportProgress(0);
    m_dataset = above.first()->dataset();
    int status = UpToDate;
    if (writeMode() == Disabled)
        addInformation(tr("Write mode='%1'").arg(writeModeName(Disabled)));
    else if (!write(effectiveFileType()))
        status = Error;
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

bool OutputNode::write(int fileType)
{
    const Writer writer = writers().value(fileType);
    if (!writer) {
        addWarning(tr("Writing %1 files is not available in this version").arg(FileFormat::name(fileType)));
        return false;
    }
    if (isTextFormat(fileType) && m_options.lineEndings == OutputOptions::LineEndingsAutomatic) {
        addInformation(
            tr("Line endings=Automatic sets line endings as %1, set 'Line endings' option to change")
                .arg(TextOutputFormat::lineEndingsLabel(OutputOptions::LineEndingsAutomatic, fileType)));
    }
    if (m_options.outputTo == MultipleFiles)
        return writeMultiple(fileType);
    const bool written = writer(*this, m_dataset, m_warnings, m_information);
    checkExtension(m_targetPath, fileType);
    return written;
}

void OutputNode::checkExtension(const QString &path, int fileType)
{
    const QFileInfo info(path);
    const int named = FileFormat::forExtension(info.suffix());
    if (named != NoFileType && named != fileType) {
        addWarning(tr("'%1' extension is '%2' but file type is %3")
                       .arg(info.fileName(), info.suffix(), FileFormat::name(fileType)));
    }
}

void OutputNode::addCountedWarnings(const QStringList &warnings)
{
    const int told = 5;
    for (int i = 0; i < warnings.size() && i < told; ++i)
        addWarning(warnings.at(i));
    const int rest = warnings.size() - told;
    if (rest > 0)
        addWarning(tr("+ %1 %2").arg(rest).arg(rest == 1 ? tr("other") : tr("others")));
}

void OutputNode::reportPartProgress(double fraction)
{
    reportProgress(m_progressBase + fraction * m_progressSpan);
}

OutputOptions OutputNode::writerOptions() const
{
    OutputOptions result = options();
    result.path = m_targetPath;
    result.sheet = m_targetSheet;
    result.fileType = effectiveFileType();
    result.byteOrderMark = byteOrderMarkDecision(m_targetPath);
    result.writeHeader = headerDecision(m_targetPath, m_targetSheet);
    return result;
}

bool OutputNode::byteOrderMarkDecision(const QString &path) const
{
    if (!m_options.byteOrderMark || !TextOutputFormat::isUnicode(encoding()))
        return false;
    if (writeMode() != Append)
        return true;
    const QFileInfo info(path);
    return !info.exists() || info.size() == 0;
}

bool OutputNode::headerDecision(const QString &path, const QString &sheet) const
{
    if (!m_options.writeHeader)
        return false;
    if (writeMode() != Append || !m_options.writeHeaderOnlyIfEmpty)
        return true;
    const QFileInfo info(path);
    if (!info.exists() || info.size() < 4)
        return true;
    const int named = FileFormat::forExtension(info.suffix());
    if (sheet.isEmpty() || (named != ExcelXlsx && named != ExcelXls))
        return false;
    // The sheet gets a header when it has no columns yet, or can't be read.
    if (!InputNode::hasReader(named))
        return true;
    InputNode reader;
    reader.setPath(path);
    reader.setWorksheet(sheet);
    reader.setFileType(named);
    reader.process(false, false);
    return reader.status() != UpToDate || reader.dataset().hasNoColumns();
}

bool OutputNode::writeTextFile(
    const DeviceWriter &write, const Dataset &dataset, QStringList &warnings, QStringList &information)
{
    const QString path = m_targetPath;
    const QString where = nativePath(path);
    const QFileInfo info(path);
    const bool existed = info.exists();
    const OutputOptions options = writerOptions();
    const QByteArray mark =
        options.byteOrderMark ? TextOutputFormat::byteOrderMark(options.encoding) : QByteArray();
    WriteReport report;
    report.progress = [this](double fraction) { reportPartProgress(fraction); };

    // Runs the writer on an open device; a failing device is the pipeline's to name.
    bool deviceFailed = false;
    const auto writeTo = [&](QFileDevice &device) {
        if (!mark.isEmpty() && device.write(mark) != mark.size()) {
            deviceFailed = true;
            return false;
        }
        const bool ok = write(dataset, options, device, report);
        deviceFailed = device.error() != QFileDevice::NoError || (!ok && report.warnings.isEmpty());
        return ok && !deviceFailed;
    };
    const auto fail = [&](const QString &message) {
        if (deviceFailed || report.warnings.isEmpty())
            warnings << message.arg(where);
        else
            warnings << report.warnings;
        return false;
    };

    const int mode = writeMode();
    if (mode == New) {
        QFile file(path);
        if (existed || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
            if (existed || info.exists())
                warnings << tr("Write mode='%1' and '%2' already exists").arg(writeModeName(New), where);
            else
                warnings << tr("Unable to create '%1'").arg(where);
            return false;
        }
        NewFileRollback rollback(file);
        if (!writeTo(file))
            return fail(tr("Unable to create '%1'"));
        file.close();
        if (file.error() != QFileDevice::NoError)
            return fail(tr("Unable to create '%1'"));
        rollback.release();
    } else if (mode == Append) {
        QFile file(path);
        // Read access lets a writer find the closing text of a file it appends to.
        if (info.isDir()
            || (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)
                && !file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))) {
            warnings << tr("Unable to append to '%1'").arg(where);
            return false;
        }
        AppendRollback rollback(file, existed);
        if (!file.seek(file.size()) || !writeTo(file)) {
            rollback.rollBack();
            return fail(tr("Unable to append to '%1'"));
        }
        rollback.release();
        file.close();
    } else {
        // The old file stays whole until the new one is complete: a full disk or a failing
        // writer leaves it byte for byte as it was.
        QSaveFile file(path);
        if (info.isDir() || (existed && !info.isWritable()) || !file.open(QIODevice::WriteOnly)) {
            warnings << tr("Unable to write '%1'").arg(where);
            return false;
        }
        if (!writeTo(file) || !file.flush()) {
            deviceFailed = deviceFailed || file.error() != QFileDevice::NoError;
            file.cancelWriting();
            return fail(tr("Unable to write '%1'"));
        }
        if (!file.commit()) {
            deviceFailed = true;
            return fail(tr("Unable to write '%1'"));
        }
    }
    warnings << report.warnings;
    information << report.information;
    if (!existed)
        information << tr("Created file '%1'").arg(where);
    else if (mode == Append)
        information << tr("Appended file '%1'").arg(where);
    else
        information << tr("Overwrote file '%1'").arg(where);
    addWrittenFile(path);
    return true;
}

bool OutputNode::writeWorkbook(
    const WorkbookWriter &write, const Dataset &dataset, QStringList &warnings, QStringList &information)
{
    const QString where = nativePath(m_targetPath);
    const bool existed = QFileInfo::exists(m_targetPath);
    const int mode = writeMode();
    if (mode == Disabled)
        return true;
    if (mode == New && existed) {
        information << tr("Write mode='%1' and '%2' already exists").arg(writeModeName(New), where);
        return true;
    }
    if (m_targetSheet.isEmpty())
        m_targetSheet = QStringLiteral("Tabrelle");
    const int type = effectiveFileType();
    const bool xls = type == ExcelXls;
    const int maxRows = xls ? 65536 : 1048576;
    const int maxColumns = xls ? 256 : 16384;
    if (dataset.rowCount() > maxRows || dataset.columnCount() > maxColumns) {
        if (xls) {
            warnings << tr(
                "The output dataset exceeds the maximum size for an Excel .xls file of %1 rows x %2 "
                "columns, it may be truncated by Excel (the Excel .xlsx format supports larger files)")
                            .arg(maxRows)
                            .arg(maxColumns);
        } else {
            warnings << tr(
                "The output dataset exceeds the maximum size for an Excel .xlsx file of %1 rows x %2 "
                "columns, it may be truncated by Excel")
                            .arg(maxRows)
                            .arg(maxColumns);
        }
    }
    const OutputOptions options = writerOptions();
    WriteReport report;
    report.progress = [this](double fraction) { reportPartProgress(fraction); };
    if (!write(m_targetPath, dataset, options, report)) {
        if (report.warnings.isEmpty())
            warnings << tr("Unable to write '%1'").arg(where);
        warnings << report.warnings;
        return false;
    }
    warnings << report.warnings;
    information << report.information;
    if (!existed)
        information << tr("Created file '%1'").arg(where);
    else if (mode == Overwrite && !m_options.replaceOnlyThisSheet)
        information << tr("Overwrote file '%1'").arg(where);
    addWrittenFile(m_targetPath);
    return true;
}

namespace {

// One file of a multi-file write and the rows that go to it.
struct FileTarget
{
    QString path;
    QString sheet;
    QString shown; // native absolute path, with "[sheet]" for a workbook
    QVector<int> rows;
};

bool isValidPathText(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x20)
            return false;
#ifdef Q_OS_WIN
        if (c == QLatin1Char('<') || c == QLatin1Char('>') || c == QLatin1Char('"') || c == QLatin1Char('|')
            || c == QLatin1Char('?') || c == QLatin1Char('*'))
            return false;
#endif
    }
    return true;
}

// The names of a summary's list, one a line, cut after ten.
QString shortList(const QStringList &names)
{
    const int shown = 10;
    QString text = names.mid(0, shown).join(QLatin1Char('\n'));
    if (names.size() > shown)
        text += QStringLiteral("\n...etc");
    return text;
}

// The rows of table that go to one file, without the column that named the file.
Dataset filePart(const Dataset &table, int column, const QVector<int> &rows)
{
    Dataset part;
    part.setColumnCount(table.columnCount() - 1);
    if (table.hasHeaders()) {
        QStringList headers = table.headers();
        headers.removeAt(column);
        part.setHeaders(headers);
    }
    part.reserveRows(rows.size());
    for (const int r : rows) {
        QStringList cells = table.row(r);
        cells.removeAt(column);
        part.appendRow(cells);
    }
    return part;
}

} // namespace

bool OutputNode::writeMultiple(int fileType)
{
    const int column = m_options.filesColumn - 1;
    if (column < 0 || column >= m_dataset.columnCount()) {
        addWarning(tr("No column set for 'Files column'"));
        return false;
    }
    const bool workbook = !isTextFormat(fileType);
    const FileNameContext context = fileNameContext();
    const GraphScene *scene = graphScene();
    const Settings *settings = scene ? scene->settings() : nullptr;
    const QStringList blocked = settings ? settings->blockedExtensions(false) : QStringList();
    const QString documentFolder =
        context.documentPath.isEmpty() ? QString() : QFileInfo(context.documentPath).absolutePath();

    // Each distinct value is checked once, at the first row that holds it; values that
    // name the same file share it.
    QVector<FileTarget> targets;
    QHash<QString, int> targetOfValue; // -1: a value that failed its checks
    QHash<QString, int> targetOfPath;
    QStringList problems;
    for (int r = 0; r < m_dataset.rowCount(); ++r) {
        const QString &value = m_dataset.cell(r, column);
        const int row = r + 1;
        if (value.isEmpty()) {
            problems << tr("Empty value for row %1").arg(row);
            continue;
        }
        const auto known = targetOfValue.constFind(value);
        if (known != targetOfValue.constEnd()) {
            if (known.value() >= 0)
                targets[known.value()].rows << r;
            continue;
        }
        QString text = expandFileNameVariables(value, context);
        QString sheet;
        if (workbook && text.endsWith(QLatin1Char(']')) && text.contains(QLatin1Char('['))) {
            const int open = text.lastIndexOf(QLatin1Char('['));
            sheet = text.mid(open + 1, text.size() - open - 2).trimmed();
            text = text.left(open);
        }
        QString problem;
        const QString fileName = QFileInfo(text).fileName();
        if (text.trimmed().isEmpty()) {
            problem = tr("no file name for row %1").arg(row);
        } else if (!isValidPathText(text)) {
            problem = tr("File path not valid for '%1' at row %2").arg(value).arg(row);
        } else if (fileName.trimmed().isEmpty() || fileName == QLatin1String(".")
            || fileName == QLatin1String("..") || text.endsWith(QLatin1Char('\\'))) {
            problem = tr("No file name for '%1' at row %2").arg(value).arg(row);
        } else if (QDir::isRelativePath(text) && documentFolder.isEmpty()) {
            problem =
                tr("Relative file path for '%1' at row %2, but .tflow not saved for it to be relative to.")
                    .arg(value)
                    .arg(row);
        } else {
            const QFileInfo info(QDir::cleanPath(QDir(documentFolder).absoluteFilePath(text)));
            if (!info.absoluteDir().exists())
                problem = tr("Folder does not exist for '%1' at row %2").arg(value).arg(row);
            else if (blocked.contains(info.suffix().toLower()))
                problem = tr("Extension for '%1' is blocked in 'Preferences>Output Extensions'.").arg(value);
            else
                text = info.absoluteFilePath();
        }
        if (!problem.isEmpty()) {
            problems << problem;
            targetOfValue.insert(value, -1);
            continue;
        }
        QString key = text + QLatin1Char('[') + sheet + QLatin1Char(']');
#ifdef Q_OS_WIN
        key = key.toLower();
#endif
        int index = targetOfPath.value(key, -1);
        if (index < 0) {
            index = targets.size();
            const QString shown = QDir::toNativeSeparators(text);
            targets.append(
                {text, sheet, sheet.isEmpty() ? shown : QStringLiteral("%1[%2]").arg(shown, sheet), {}});
            targetOfPath.insert(key, index);
        }
        targets[index].rows << r;
        targetOfValue.insert(value, index);
    }
    if (!problems.isEmpty()) {
        addCountedWarnings(problems);
        return false;
    }

    const Confirmation &confirm = confirmation();
    if (confirm && m_options.confirmMultiFile) {
        const QString kind = workbook ? tr("file(s)/sheets(s)") : tr("file(s)");
        QStringList created;
        QStringList existing;
        for (const FileTarget &target : qAsConst(targets))
            (QFileInfo::exists(target.path) ? existing : created) << target.shown;
        QString text;
        if (!created.isEmpty())
            text += tr("%1 new %2 to be created:\n%3\n").arg(created.size()).arg(kind, shortList(created));
        if (!existing.isEmpty()) {
            const char *const templates[] = {QT_TR_NOOP("%1 existing %2 will not be overwritten:\n%3\n"),
                QT_TR_NOOP("%1 existing %2 to be overwritten:\n%3\n"),
                QT_TR_NOOP("%1 existing %2 to be appended to:\n%3\n"),
                QT_TR_NOOP("%1 existing %2 will not be overwritten:\n%3\n")};
            text += tr(templates[writeMode()]).arg(existing.size()).arg(kind, shortList(existing));
        }
        const int toWrite = created.size() + (writeMode() == New ? 0 : existing.size());
        text += tr("%1 %2 will be written").arg(toWrite).arg(kind);
        if (!confirm(tr("Multi file output"), text)) {
            addWarning(tr("Output cancelled by user"));
            return false;
        }
    }

    const Writer writer = writers().value(fileType);
    QSet<QString> checkedSuffixes;
    int written = 0;
    bool allWritten = true;
    for (int i = 0; i < targets.size(); ++i) {
        const FileTarget &target = targets.at(i);
        m_targetPath = target.path;
        m_targetSheet = target.sheet;
        m_progressBase = double(i) / targets.size();
        m_progressSpan = 1.0 / targets.size();
        if (writer(*this, filePart(m_dataset, column, target.rows), m_warnings, m_information))
            ++written;
        else
            allWritten = false;
        const QString suffix = QFileInfo(target.path).suffix().toLower();
        if (!checkedSuffixes.contains(suffix)) {
            checkedSuffixes.insert(suffix);
            checkExtension(target.path, fileType);
        }
    }
    if (written == 0)
        addInformation(tr("0 files written"));
    else
        addInformation(tr("%1 file(s) written").arg(written));
    return allWritten;
}

void OutputNode::addWrittenFile(const QString &path)
{
    const QString where = nativePath(path);
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

OutputNode::Writer OutputNode::textFileWriter(const DeviceWriter &write)
{
    return
        [write](OutputNode &node, const Dataset &dataset, QStringList &warnings, QStringList &information) {
            return node.writeTextFile(write, dataset, warnings, information);
        };
}

OutputNode::Writer OutputNode::workbookFileWriter(const WorkbookWriter &write)
{
    return
        [write](OutputNode &node, const Dataset &dataset, QStringList &warnings, QStringList &information) {
            return node.writeWorkbook(write, dataset, warnings, information);
        };
}

void OutputNode::setConfirmation(const Confirmation &confirm)
{
    confirmation() = confirm;
}
