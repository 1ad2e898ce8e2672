#include "xlsxworkbookwriter.h"

#include "excelwriting.h"
#include "inputs/xlsxreader.h"
#include "outputnode.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <xlsxwriter.h>

using ExcelWriting::Cell;
using ExcelWriting::CellPlan;

namespace {

const int maxRows = 1048576;
const int maxColumns = 16384;

QString tr(const char *text)
{
    return QCoreApplication::translate("XlsxWorkbookWriter", text);
}

// One sheet of an existing workbook, as the texts its cells show.
struct ExistingSheet
{
    QString name;
    bool hidden = false;
    Dataset cells;
};

// Reads every sheet of the workbook at path, in workbook order, through the .xlsx reader:
// every row and column from A1 on, nothing left out, no header.
bool readExistingSheets(const QString &path, QList<ExistingSheet> *sheets, QString *error)
{
    const QList<ExcelSheetEntry> entries = xlsxSheetNames(path, error);
    if (entries.isEmpty())
        return false;
    for (const ExcelSheetEntry &entry : entries) {
        InputOptions options;
        options.path = path;
        options.sheet = entry.name;
        options.fileType = IONode::ExcelXlsx;
        options.hasHeader = 0;
        options.ignoreEmptyRows = false;
        ExistingSheet sheet;
        sheet.name = entry.name;
        sheet.hidden = entry.hidden;
        ExcelReadCounts counts;
        ReadReport report;
        if (!readXlsx(path, options, sheet.cells, counts, report)) {
            *error = report.warnings.value(0);
            return false;
        }
        sheets->append(sheet);
    }
    return true;
}

// A libxlsxwriter workbook in constant-memory mode, with its formats made once each.
class Workbook
{
public:
    explicit Workbook(const QString &path)
        : m_path(QFile::encodeName(path))
        , m_temporaryFolder(QFile::encodeName(QDir::tempPath()))
    {
        lxw_workbook_options options = {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = m_temporaryFolder.data();
        m_book = workbook_new_opt(m_path.constData(), &options);
    }
    ~Workbook()
    {
        if (m_book)
            lxw_workbook_free(m_book);
    }
    Workbook(const Workbook &) = delete;
    Workbook &operator=(const Workbook &) = delete;

    bool isOpen() const { return m_book; }

    lxw_worksheet *addSheet(const QString &name)
    {
        return workbook_add_worksheet(m_book, name.toUtf8().constData());
    }

    // The format with this number format code; null for General without bold.
    lxw_format *format(const QString &code, bool bold)
    {
        if (code.isEmpty() && !bold)
            return nullptr;
        lxw_format *&format = m_formats[bold ? 1 : 0][code];
        if (!format) {
            format = workbook_add_format(m_book);
            if (bold)
                format_set_bold(format);
            if (!code.isEmpty())
                format_set_num_format(format, code.toUtf8().constData());
        }
        return format;
    }

    // Writes the file and frees the workbook, whatever the result.
    lxw_error close()
    {
        const lxw_error error = workbook_close(m_book);
        m_book = nullptr;
        return error;
    }

private:
    QByteArray m_path;
    QByteArray m_temporaryFolder;
    lxw_workbook *m_book = nullptr;
    QHash<QString, lxw_format *> m_formats[2]; // by code, without and with bold
};

// Rows of one sheet that come from one table: an existing sheet's cells, or the new rows.
struct SheetPart
{
    const Dataset *dataset;
    CellPlan *plan;
    bool header;
    const WriteReport *progress; // null: no progress reported
};

lxw_error writeCell(Workbook &book, lxw_worksheet *sheet, int row, int column, const Cell &cell,
    const QString &columnFormat, bool bold)
{
    switch (cell.kind) {
    case Cell::Text:
        return worksheet_write_string(sheet, lxw_row_t(row), lxw_col_t(column),
            cell.text.toUtf8().constData(), book.format(columnFormat, bold));
    case Cell::Number:
        return worksheet_write_number(
            sheet, lxw_row_t(row), lxw_col_t(column), cell.number, book.format(cell.format, bold));
    case Cell::Empty:
        break;
    }
    return LXW_NO_ERROR;
}

// Writes the parts one after the other from the sheet's first row; widths and column
// formats go first, as constant-memory mode needs.
lxw_error writeSheet(Workbook &book, lxw_worksheet *sheet, const QList<SheetPart> &parts, bool freezeHeader)
{
    QVector<double> widths;
    QStringList formats;
    for (const SheetPart &part : parts) {
        const QVector<double> partWidths = part.plan->columnWidths(part.header);
        for (int c = 0; c < partWidths.size(); ++c) {
            if (c >= widths.size()) {
                widths << partWidths.at(c);
                formats << part.plan->columnFormat(c);
            } else {
                widths[c] = qMax(widths.at(c), partWidths.at(c));
            }
        }
    }
    for (int c = 0; c < widths.size() && c < maxColumns; ++c) {
        const lxw_error error = worksheet_set_column(
            sheet, lxw_col_t(c), lxw_col_t(c), widths.at(c), book.format(formats.at(c), false));
        if (error != LXW_NO_ERROR)
            return error;
    }
    if (freezeHeader)
        worksheet_freeze_panes(sheet, 1, 0);

    int sheetRow = 0;
    for (const SheetPart &part : parts) {
        const int columns = qMin(part.dataset->columnCount(), maxColumns);
        if (part.header && sheetRow < maxRows) {
            for (int c = 0; c < columns; ++c) {
                const lxw_error error = writeCell(
                    book, sheet, sheetRow, c, part.plan->header(c), part.plan->columnFormat(c), true);
                if (error != LXW_NO_ERROR)
                    return error;
            }
            ++sheetRow;
        }
        const int rows = part.dataset->rowCount();
        for (int r = 0; r < rows && sheetRow < maxRows; ++r, ++sheetRow) {
            for (int c = 0; c < columns; ++c) {
                const lxw_error error = writeCell(
                    book, sheet, sheetRow, c, part.plan->cell(r, c), part.plan->columnFormat(c), false);
                if (error != LXW_NO_ERROR)
                    return error;
            }
            if (part.progress && r % 1000 == 999)
                part.progress->reportProgress(double(r + 1) / rows);
        }
    }
    return LXW_NO_ERROR;
}

QString libraryError(lxw_error error)
{
    return QString::fromUtf8(lxw_strerror(error));
}

} // namespace

bool writeXlsxWorkbook(
    const QString &path, const Dataset &dataset, const OutputOptions &options, WriteReport &report)
{
    if (options.writeMode == OutputOptions::Disabled)
        return true;
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    const bool exists = QFileInfo::exists(path);
    if (exists && options.writeMode == OutputOptions::New) {
        report.information << tr("Write mode='%1' and '%2' already exists")
                                  .arg(OutputNode::writeModeName(OutputOptions::New), where);
        return true;
    }
    const bool append = options.writeMode == OutputOptions::Append;
    const bool rewrite = exists && (append || options.replaceOnlyThisSheet);
    const QString failure = rewrite ? tr("Unable to update '%1': %2") : tr("Unable to write '%1': %2");
    auto fail = [&](const QString &reason) {
        report.warnings.prepend(failure.arg(where, reason));
        return false;
    };

    QList<ExistingSheet> existing;
    QString error;
    if (rewrite && !readExistingSheets(path, &existing, &error))
        return fail(error);

    QStringList information;
    QString name = ExcelWriting::sheetName(options.sheet, &information);
    int target = -1;
    for (int i = 0; i < existing.size() && target < 0; ++i) {
        if (existing.at(i).name == name)
            target = i;
    }
    // Excel tells sheet names apart without case.
    for (int i = 0; i < existing.size() && target < 0; ++i) {
        if (existing.at(i).name.compare(name, Qt::CaseInsensitive) == 0)
            target = i;
    }
    if (target >= 0)
        name = existing.at(target).name;

    ExcelWriting::ReplacingFile file(path);
    if (!file.open(&error))
        return fail(error);
    Workbook book(file.temporaryPath());
    if (!book.isOpen())
        return fail(libraryError(LXW_ERROR_MEMORY_MALLOC_FAILED));

    CellPlan plan(dataset, options.excelFormatting, options.excelManualColumnFormats, maxColumns);
    const SheetPart newRows {&dataset, &plan, options.writeHeader, &report};
    // The other sheets' cells are texts now: "Automatic" gives back numbers and dates
    // where their texts allow it, and its messages are not the user's concern.
    QList<std::shared_ptr<CellPlan>> otherPlans;
    auto existingRows = [&](const ExistingSheet &sheet) {
        otherPlans << std::make_shared<CellPlan>(sheet.cells, CellPlan::Automatic, QList<int>(), maxColumns);
        return SheetPart {&sheet.cells, otherPlans.last().get(), false, nullptr};
    };

    lxw_worksheet *targetSheet = nullptr;
    lxw_error result = LXW_NO_ERROR;
    for (int i = 0; i < existing.size() && result == LXW_NO_ERROR; ++i) {
        const ExistingSheet &sheet = existing.at(i);
        lxw_worksheet *written = book.addSheet(sheet.name);
        if (!written)
            return fail(tr("sheet '%1' could not be added").arg(sheet.name));
        if (i == target) {
            targetSheet = written;
            if (append)
                result = writeSheet(book, written, {existingRows(sheet), newRows}, false);
            else
                result = writeSheet(book, written, {newRows}, options.writeHeader);
        } else {
            if (sheet.hidden)
                worksheet_hide(written);
            result = writeSheet(book, written, {existingRows(sheet)}, false);
        }
    }
    if (!targetSheet && result == LXW_NO_ERROR) {
        targetSheet = book.addSheet(name);
        if (!targetSheet)
            return fail(tr("sheet '%1' could not be added").arg(name));
        result = writeSheet(book, targetSheet, {newRows}, options.writeHeader);
    }
    if (result != LXW_NO_ERROR)
        return fail(libraryError(result));
    worksheet_activate(targetSheet);
    result = book.close();
    if (result != LXW_NO_ERROR)
        return fail(libraryError(result));
    if (!file.commit(&error))
        return fail(error);

    report.information << information << plan.information();
    if (options.useStyleTemplate && !options.styleTemplate.isEmpty()) {
        if (rewrite && append)
            report.information << tr("Style template not used when appending to an existing file");
        else
            report.warnings << tr("The style template '%1' was not applied: this version writes workbooks "
                                  "without style templates")
                                   .arg(QDir::toNativeSeparators(options.styleTemplate));
    }
    if (rewrite) {
        if (target < 0)
            report.information << tr("Added sheet '%1[%2]'").arg(where, name);
        else if (append)
            report.information << tr("Appended sheet '%1[%2]'").arg(where, name);
        else
            report.information << tr("Replaced sheet '%1[%2]'").arg(where, name);
    }
    report.warnings << plan.warnings();
    report.reportProgress(1);
    return true;
}
