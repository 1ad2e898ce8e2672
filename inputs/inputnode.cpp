#include "inputnode.h"

#include "core/settings.h"
#include "core/values.h"
#include "flow/fileformat.h"
#include "flow/filenamevariables.h"
#include "inputdocument.h"
#include "textsource.h"
#include "xmlreader.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHash>
#include <QTimer>

#include <new>

namespace {

// What is registered for one format: at most one of the three kinds is set.
struct ReaderEntry
{
    InputNode::Reader node;
    InputNode::TextReader text;
    InputNode::StreamReader stream;
    bool isEmpty() const { return !node && !text && !stream; }
};

QHash<int, ReaderEntry> &readers()
{
    static QHash<int, ReaderEntry> registry;
    return registry;
}

void setEntry(int fileType, const ReaderEntry &entry)
{
    if (entry.isEmpty())
        readers().remove(fileType);
    else
        readers().insert(fileType, entry);
}

bool isExcel(int fileType)
{
    return fileType == IONode::ExcelXlsx || fileType == IONode::ExcelXls;
}

QString defaultKey(const char *key)
{
    return QStringLiteral("defaults/inputs/%1").arg(QLatin1String(key));
}

} // namespace

InputNode::InputNode(QGraphicsItem *parent)
    : IONode(parent)
{
    setOptions(InputOptions());
    setFileType(NoFileType); // the extension or the content decides until the user does
}

InputNode::~InputNode() = default;

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
    if (isExcel(fileType()) && !worksheet().isEmpty())
        return tr("%1[%2]").arg(fileName, worksheet());
    return fileName;
}

InputOptions InputNode::options() const
{
    InputOptions options = m_options;
    options.source = medium();
    options.path = path();
    options.sheet = worksheet();
    options.fileType = fileType();
    options.delimiter = delimiter();
    options.customDelimiter = customDelimiter().isEmpty() ? QChar() : customDelimiter().at(0);
    options.encoding = encoding();
    return options;
}

void InputNode::setOptions(const InputOptions &options)
{
    m_options = options;
    setMedium(options.source);
    setPath(options.path);
    setWorksheet(options.sheet);
    setFileType(options.fileType);
    setDelimiter(options.delimiter);
    setCustomDelimiter(options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter));
    setEncoding(options.encoding);
}

InputOptions InputNode::defaultOptions(const Settings *settings)
{
    InputOptions options;
    options.fileType = NoFileType;
    if (!settings)
        return options;
    // Defaults are kept in their document text form: ints in decimal, bools as 0 or 1.
    const auto text = [settings](const char *key, QString *value) {
        const QString name = defaultKey(key);
        if (!settings->contains(name))
            return false;
        *value = settings->stringValue(name);
        return true;
    };
    const auto integer = [&text](const char *key, int *value) {
        QString stored;
        bool ok = false;
        const int number = text(key, &stored) ? stored.toInt(&ok) : 0;
        if (ok)
            *value = number;
    };
    const auto flag = [&integer](const char *key, bool *value) {
        int number = *value ? 1 : 0;
        integer(key, &number);
        *value = number != 0;
    };
    integer("delimiter", &options.delimiter);
    QString custom;
    if (text("custom_delimiter", &custom))
        options.customDelimiter = custom.isEmpty() ? QChar() : custom.at(0);
    flag("ignore_repeated_delim", &options.ignoreRepeatedDelimiter);
    integer("quoting", &options.quoting);
    text("encoding", &options.encoding);
    flag("trim_whitespace", &options.trimWhitespace);
    flag("simplify_whitespace", &options.simplifyWhitespace);
    flag("ignore_empty_rows", &options.ignoreEmptyRows);
    flag("ignore_hidden_excel_rows", &options.ignoreHiddenExcelRows);
    integer("show_meta_info", &options.metaInformation);
    text("meta_info_text", &options.metaInformationText);
    text("meta_info_col_name", &options.metaInformationColumnName);
    text("long_or_wide", &options.longOrWide);
    return options;
}

void InputNode::rememberDefaults(const InputOptions &options, Settings *settings)
{
    if (!settings)
        return;
    const auto store = [settings](const char *key, const QString &value) {
        settings->setValue(defaultKey(key), value);
    };
    const auto flag = [](bool value) { return value ? QStringLiteral("1") : QStringLiteral("0"); };
    store("delimiter", QString::number(options.delimiter));
    store(
        "custom_delimiter", options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter));
    store("ignore_repeated_delim", flag(options.ignoreRepeatedDelimiter));
    store("quoting", QString::number(options.quoting));
    store("encoding", options.encoding);
    store("trim_whitespace", flag(options.trimWhitespace));
    store("simplify_whitespace", flag(options.simplifyWhitespace));
    store("ignore_empty_rows", flag(options.ignoreEmptyRows));
    store("ignore_hidden_excel_rows", flag(options.ignoreHiddenExcelRows));
    store("show_meta_info", QString::number(options.metaInformation));
    store("meta_info_text", options.metaInformationText);
    store("meta_info_col_name", options.metaInformationColumnName);
    store("long_or_wide", options.longOrWide);
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
    read();
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

void InputNode::read()
{
    if (GraphScene::isStopRequested() || status() == UpToDate)
        return;
    m_dataset = Dataset();
    m_warnings.clear();
    m_information.clear();
    m_sampleLines.clear();
    setStatus(Updating, false);
    emit processingStart(this);
    QElapsedTimer timer;
    timer.start();
    reportProgress(0);

    const int fileType = effectiveFileType();
    readSource(fileType);
    const bool succeeded = status() != Error;
    // A failed read keeps the header option as it was: there was nothing to guess from.
    if (succeeded && m_dataset.hasColumns() && !readers().value(fileType).node) {
        const bool headers = m_options.hasHeader == 0 ? false
            : m_options.hasHeader == 1                ? true
                                                      : guessHasHeader(m_dataset);
        m_options.hasHeader = headers ? 1 : 0;
        m_dataset.setHasHeaders(headers);
    }
    applyMetaInformation();
    applySchema();
    assignColumnIds();
    if (m_options.ignoreEmptyColumns && m_dataset.hasColumns()) {
        const int removed = m_dataset.removeBlankColumns();
        if (removed > 0)
            addInformation(tr("%1 empty column(s) ignored").arg(removed));
    }
    setProcessingTime(int(timer.elapsed()));
    setLastProcessed(QDateTime::currentDateTime());
    m_dataset.releaseValuePools();
    emit processingEnd(this);
    emit nodeDataChanged(this);
}

void InputNode::readSource(int fileType)
{
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
            const bool ok = readFile(fileType, where);
            setStatus(ok ? UpToDate : Error, false);
            const int named = FileFormat::forExtension(info.suffix());
            if (named != NoFileType && named != fileType)
                addWarning(tr("File '%1' extension may not match data type: %2")
                               .arg(where, FileFormat::name(fileType)));
        }
        updateWatcher();
    } else if (medium() == Clipboard && !m_text.isEmpty()) {
        bool ok = false;
        const ReaderEntry entry = readers().value(fileType);
        if (entry.node) {
            ok = entry.node(*this, m_dataset, m_warnings, m_information);
        } else {
            TextSource source(m_text);
            ReadReport report;
            ok = readText(source, fileType, tr("Clipboard"), report);
        }
        setStatus(ok ? UpToDate : Error, false);
        updateWatcher();
    } else {
        setStatus(UpToDate, false);
        updateWatcher();
    }
    if (status() == Error)
        m_dataset = Dataset();
}

bool InputNode::readFile(int fileType, const QString &where)
{
    const ReaderEntry entry = readers().value(fileType);
    if (entry.node)
        return entry.node(*this, m_dataset, m_warnings, m_information);
    if (isExcel(fileType) && entry.text) {
        ReadReport report;
        report.progress = [this](double fraction) { reportProgress(fraction); };
        bool ok = false;
        try {
            ok = entry.text(path(), options(), m_dataset, report);
        } catch (const std::bad_alloc &) {
            m_dataset = Dataset();
            report.warnings.prepend(tr("'%1' is too big for Tabrelle to read").arg(where));
        }
        if (ok)
            addInformation(tr("Read file '%1'").arg(where));
        m_warnings += report.warnings;
        m_information += report.information;
        return ok;
    }
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly)) {
        addWarning(tr("Unable to open file '%1': %2").arg(where, file.errorString()));
        return false;
    }
    addInformation(tr("Read file '%1'").arg(where));
    const bool automatic = encoding().isEmpty() || encoding() == QLatin1String("Automatic");
    ReadReport report;
    // An XML file may name its encoding in its declaration.
    QString declared;
    if (automatic && fileType == Xml)
        declared = xmlDeclaredCodec(file.peek(XmlDeclarationBytes), report);
    TextSource source(&file, declared.isEmpty() ? encoding() : declared, fileType == Json);
    if (automatic
        && (fileType == DelimitedText || fileType == FixedWidth || fileType == Xml || fileType == VCard
            || fileType == PlainText)) {
        addInformation(
            tr("Encoding=Automatic guesses '%1', set 'Encoding' option to change").arg(source.codecName()));
    }
    return readText(source, fileType, where, report);
}

bool InputNode::readText(TextSource &source, int fileType, const QString &where, ReadReport &report)
{
    const ReaderEntry entry = readers().value(fileType);
    if (!entry.stream && !entry.text) {
        addWarning(tr("Reading %1 files is not available in this version").arg(FileFormat::name(fileType)));
        return false;
    }
    report.progress = [this](double fraction) { reportProgress(fraction); };
    const QString tooBig = tr("'%1' is too big for Tabrelle to read").arg(where);
    bool ok = false;
    try {
        if (entry.stream) {
            ok = entry.stream(source, options(), m_dataset, report);
        } else {
            QString text;
            if (source.readAll(text, maxTextChars()))
                ok = entry.text(text, options(), m_dataset, report);
            else
                report.warnings.prepend(tooBig);
        }
    } catch (const std::bad_alloc &) {
        m_dataset = Dataset();
        ok = false;
        report.warnings.prepend(tooBig);
    }
    if (!ok)
        m_dataset = Dataset();
    // Guessed widths are kept, so that switching Columns to "Manual" starts from them.
    if (ok && !report.columnWidths.isEmpty())
        m_options.columnWidths = report.columnWidths;
    m_sampleLines = report.sample;
    m_warnings += report.warnings;
    m_information += report.information;
    if (source.nulCount() > 0)
        addWarning(tr("'%1' holds %2 NUL character(s) and may not be a text file")
                       .arg(where)
                       .arg(source.nulCount()));
    if (source.hasInvalidBytes())
        addWarning(tr("'%1' holds bytes that are not valid %2; they were read as '%3'")
                       .arg(where, source.codecName(), QString(QChar::ReplacementCharacter)));
    return ok;
}

qint64 InputNode::maxTextChars() const
{
    // A text larger than the memory the preferences allow, less what is in use, can't be
    // held either: it is reported as too big rather than ending the program.
    const GraphScene *scene = graphScene();
    const Settings *settings = scene ? scene->settings() : nullptr;
    qint64 limit = TextSource::MaxChars;
    if (settings) {
        const double used = GraphScene::processMemoryGb();
        const double freeGb = settings->maxMemoryUsageGb() - qMax(0.0, used);
        const double chars = freeGb * 1024.0 * 1024.0 * 1024.0 / 2.0;
        limit = qMin(limit, qint64(qMax(0.0, chars)));
    }
    return limit;
}

void InputNode::applySchema()
{
    if (!m_options.usesSchema || status() == Error)
        return;
    const InputSchemaSettings schema = InputDocument::schemaSettings(*this);
    if (schema.columnNames.isEmpty())
        return;
    if (!m_dataset.hasHeaders()) {
        addWarning(tr("Schema needs a header row"));
        return;
    }
    // Columns are matched by their header, trimmed and without case; the first column of
    // a name matches.
    const auto key = [](const QString &name) { return name.trimmed().toCaseFolded(); };
    const QStringList headers = m_dataset.headers();
    QHash<QString, int> columnOfName;
    for (int c = headers.size() - 1; c >= 0; --c)
        columnOfName.insert(key(headers.at(c)), c);
    QVector<int> schemaColumn(schema.columnNames.size(), -1); // -1: missing
    QVector<bool> inSchema(headers.size(), false);
    for (int s = 0; s < schema.columnNames.size(); ++s) {
        const int column = columnOfName.value(key(schema.columnNames.at(s)), -1);
        if (column >= 0 && !inSchema.at(column)) {
            schemaColumn[s] = column;
            inSchema[column] = true;
        }
    }

    bool failed = false;
    for (int s = 0; s < schema.columnNames.size(); ++s) {
        if (schemaColumn.at(s) >= 0)
            continue;
        const QString name = schema.columnNames.at(s).trimmed();
        if (schema.missingColumns == 1) {
            addWarning(tr("Column '%1' missing").arg(name));
            failed = true;
        } else {
            addWarning(tr("Column '%1' missing, added").arg(name));
        }
    }
    QVector<bool> removed(headers.size(), false);
    for (int c = 0; c < headers.size(); ++c) {
        if (inSchema.at(c))
            continue;
        if (schema.extraColumns == 1) {
            addInformation(tr("Extra column '%1' removed").arg(headers.at(c)));
            removed[c] = true;
        } else if (schema.extraColumns == 2) {
            addWarning(tr("Extra column '%1'").arg(headers.at(c)));
            failed = true;
        } else {
            addInformation(tr("Extra column '%1'").arg(headers.at(c)));
        }
    }
    if (failed) {
        setStatus(Error, false);
        return;
    }

    // The new columns by source: a column of the table, or -1 - s for schema column s
    // that the table lacks, filled with its value.
    QVector<int> order;
    const auto addMissing = [&] {
        for (int s = 0; s < schemaColumn.size(); ++s) {
            if (schemaColumn.at(s) < 0)
                order << -1 - s;
        }
    };
    if (schema.reorderColumns == 1) {
        for (int s = 0; s < schemaColumn.size(); ++s)
            order << (schemaColumn.at(s) >= 0 ? schemaColumn.at(s) : -1 - s);
        for (int c = 0; c < headers.size(); ++c) {
            if (!inSchema.at(c) && !removed.at(c))
                order << c;
        }
    } else {
        for (int c = 0; c < headers.size(); ++c) {
            if (!removed.at(c))
                order << c;
        }
        addMissing();
    }
    bool unchanged = order.size() == headers.size();
    for (int i = 0; unchanged && i < order.size(); ++i)
        unchanged = order.at(i) == i;
    if (unchanged)
        return;

    QStringList newHeaders;
    QStringList fills;
    for (int source : order) {
        const int s = -1 - source;
        newHeaders << (source >= 0 ? headers.at(source) : schema.columnNames.at(s).trimmed());
        const QString fill = source >= 0 ? QString() : schema.missingValues.value(s);
        fills << (fill.isNull() ? QStringLiteral("") : fill); // blank cells are empty, not null
    }
    for (int r = 0; r < m_dataset.rowCount(); ++r) {
        QStringList &cells = m_dataset.mutableRow(DataRowIndex(r));
        QStringList arranged;
        arranged.reserve(order.size());
        for (int i = 0; i < order.size(); ++i)
            arranged << (order.at(i) >= 0 ? cells.value(order.at(i)) : fills.at(i));
        cells.swap(arranged);
    }
    m_dataset.setColumnCount(order.size());
    m_dataset.setHeaders(newHeaders);
}

void InputNode::applyMetaInformation()
{
    const int mode = m_options.metaInformation;
    if (status() == Error || !m_dataset.hasColumns() || mode < InputOptions::MetaAtStart
        || mode > InputOptions::MetaEveryRow)
        return;
    FileNameContext context;
    const QStringList version = QCoreApplication::applicationVersion().split(QLatin1Char('.'));
    context.versionMajor = version.value(0).toInt();
    context.versionMinor = version.value(1).toInt();
    context.versionPatch = version.value(2).toInt();
    if (const GraphScene *scene = graphScene()) {
        for (Node *node : scene->nodes()) {
            const auto *input = qobject_cast<const InputNode *>(node);
            if (input && !input->alias().trimmed().isEmpty())
                context.inputs.append({input->alias(), input->path(), input->worksheet()});
        }
    }
    const QString text = expandFileNameVariables(m_options.metaInformationText, context);
    if (mode == InputOptions::MetaAtStart) {
        m_dataset.prependRow({text}, true);
    } else if (mode == InputOptions::MetaAtEnd) {
        m_dataset.appendRow({text}, true);
    } else {
        m_dataset.appendColumn();
        const DataColumnIndex column = m_dataset.lastColumn();
        for (int r = 0; r < m_dataset.rowCount(); ++r)
            m_dataset.setCell(r, column, text);
        if (m_dataset.hasHeaders())
            m_dataset.setHeader(column, m_options.metaInformationColumnName);
    }
}

void InputNode::updateWatcher()
{
    const bool watchable =
        m_options.watch && medium() == File && !path().isEmpty() && QFileInfo(path()).isFile();
    if (!watchable) {
        delete m_watcher;
        m_watcher = nullptr;
        return;
    }
    if (!m_watcher) {
        m_watcher = new QFileSystemWatcher(this);
        connect(m_watcher, &QFileSystemWatcher::fileChanged, this, &InputNode::onFileChanged);
    }
    // A file that was replaced or deleted drops out of the watch list; the path goes back.
    const QStringList files = m_watcher->files();
    if (files.size() != 1 || files.first() != path()) {
        if (!files.isEmpty())
            m_watcher->removePaths(files);
        m_watcher->addPath(path());
    }
}

void InputNode::onFileChanged()
{
    if (!m_importTimer) {
        m_importTimer = new QTimer(this);
        m_importTimer->setSingleShot(true);
        m_importTimer->setInterval(ImportDelayMs);
        connect(m_importTimer, &QTimer::timeout, this, &InputNode::onDelayedImport);
    }
    m_importTimer->start();
}

void InputNode::onDelayedImport()
{
    GraphScene *scene = graphScene();
    if (scene && scene->isRunning()) {
        onFileChanged(); // a run is on: read once it is over
        return;
    }
    // With Auto Run the scene reads it and runs what lies below; otherwise the node reads
    // its file and the items below wait for the next run.
    if (scene)
        scene->invalidate(this);
    else
        setStatus(NeedsUpdating, true);
    if (status() != UpToDate)
        process(false, false);
}

void InputNode::setReader(int fileType, const TextReader &reader)
{
    ReaderEntry entry;
    entry.text = reader;
    setEntry(fileType, entry);
}

void InputNode::setReader(int fileType, const StreamReader &reader)
{
    ReaderEntry entry;
    entry.stream = reader;
    setEntry(fileType, entry);
}

void InputNode::setReader(int fileType, const Reader &reader)
{
    ReaderEntry entry;
    entry.node = reader;
    setEntry(fileType, entry);
}

bool InputNode::hasReader(int fileType)
{
    return readers().contains(fileType);
}

bool InputNode::guessHasHeader(const Dataset &table)
{
    if (table.hasHeaders())
        return true;
    if (table.rowCount() < 2)
        return false;
    const QStringList formats = dateFormats();
    for (const QString &cell : table.row(0)) {
        if (cell.isEmpty())
            continue;
        bool number = false;
        toNumber(cell, false, true, &number);
        if (number)
            return false;
        for (const QString &format : formats) {
            if (toDate(cell, format).isValid())
                return false;
        }
    }
    return true;
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
