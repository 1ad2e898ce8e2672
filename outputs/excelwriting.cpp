#include "excelwriting.h"

#include "core/excelnumberformat.h"
#include "core/values.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace ExcelWriting {

namespace {

const int sampleCount = 50;

QString tr(const char *text)
{
    return QCoreApplication::translate("ExcelWriting", text);
}

// The first non-empty texts of a column, as the date guess samples them.
QStringList samples(const Dataset &dataset, int column)
{
    QStringList values;
    for (int r = 0; r < dataset.rowCount() && values.size() < sampleCount; ++r) {
        const QString &value = dataset.cell(r, column);
        if (!value.isEmpty())
            values << value;
    }
    return values;
}

// A date format with its single "d" (or "M") tokens doubled, quoted parts left alone.
QString padded(const QString &format, QChar token)
{
    QString result;
    bool quoted = false;
    for (int i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c == QLatin1Char('\''))
            quoted = !quoted;
        if (quoted || c != token) {
            result += c;
            continue;
        }
        int run = 1;
        while (i + run < format.size() && format.at(i + run) == token)
            ++run;
        result += QString(run == 1 ? 2 : run, token);
        i += run - 1;
    }
    return result;
}

// True when the text is an optional "-", digits without a leading zero (a lone "0"
// excepted) and optionally "." and digits; not a negative zero; with at most 15
// significant digits. Such a text and the double read from it show alike in Excel.
bool isExactNumber(const QString &text, int *decimals, int *integerDigits)
{
    const int n = text.size();
    int i = 0;
    const bool negative = n > 0 && text.at(0) == QLatin1Char('-');
    if (negative)
        ++i;
    const int integerStart = i;
    while (i < n && text.at(i).unicode() >= '0' && text.at(i).unicode() <= '9')
        ++i;
    const int integerLength = i - integerStart;
    if (integerLength == 0 || (integerLength > 1 && text.at(integerStart) == QLatin1Char('0')))
        return false;
    int fractionLength = 0;
    if (i < n && text.at(i) == QLatin1Char('.')) {
        ++i;
        const int fractionStart = i;
        while (i < n && text.at(i).unicode() >= '0' && text.at(i).unicode() <= '9')
            ++i;
        fractionLength = i - fractionStart;
        if (fractionLength == 0)
            return false;
    }
    if (i != n || fractionLength > 30)
        return false;
    int significant = 0;
    bool leading = true;
    bool nonZero = false;
    for (int k = integerStart; k < n; ++k) {
        const QChar c = text.at(k);
        if (c == QLatin1Char('.'))
            continue;
        if (c != QLatin1Char('0'))
            nonZero = true;
        if (leading && c == QLatin1Char('0'))
            continue;
        leading = false;
        ++significant;
    }
    if ((negative && !nonZero) || significant > 15)
        return false;
    *decimals = fractionLength;
    *integerDigits = integerLength;
    return true;
}

// General shows whole numbers of up to 11 digits as they are and longer ones in
// scientific notation, so those take "0"; d decimals take "0." and d zeros.
QString numberFormat(int decimals, int integerDigits)
{
    // Made once: a table of numbers asks for these formats cell after cell.
    static const QVector<QString> formats = [] {
        QVector<QString> result {QStringLiteral("0")};
        for (int d = 1; d <= 30; ++d)
            result << QStringLiteral("0.") + QString(d, QLatin1Char('0'));
        return result;
    }();
    if (decimals > 0)
        return formats.at(qMin(decimals, 30));
    return integerDigits > 11 ? formats.at(0) : QString();
}

// The digits after the locale's decimal point of a number text, or 0 with an exponent.
int decimalsOf(const QString &text)
{
    if (text.contains(QLatin1Char('e'), Qt::CaseInsensitive))
        return 0;
    const int point = text.lastIndexOf(QLocale().decimalPoint());
    if (point < 0)
        return 0;
    int digits = 0;
    while (point + 1 + digits < text.size() && text.at(point + 1 + digits).isDigit())
        ++digits;
    return qMin(digits, 30);
}

// The longest line of a text, which is what a column must be wide enough for.
int longestLine(const QString &text)
{
    int longest = 0;
    int start = 0;
    while (start <= text.size()) {
        int end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = text.size();
        longest = qMax(longest, end - start);
        start = end + 1;
    }
    return longest;
}

} // namespace

QString sheetName(const QString &name, QStringList *information)
{
    QString result = name;
    for (QChar &c : result) {
        if (QStringLiteral("[]:*?/\\").contains(c))
            c = QLatin1Char('_');
    }
    if (result.startsWith(QLatin1Char('\'')))
        result.remove(0, 1);
    if (result.endsWith(QLatin1Char('\'')))
        result.chop(1);
    if (result.size() > 31)
        result.truncate(result.at(30).isHighSurrogate() ? 30 : 31);
    if (result.isEmpty())
        result = QStringLiteral("Tabrelle");
    if (result != name && !name.isEmpty() && information)
        *information << tr("Sheet name '%1' written as '%2'").arg(name, result);
    return result;
}

bool dateSerial(const QDate &date, double *serial)
{
    if (!date.isValid() || date < QDate(1900, 1, 1) || date > QDate(9999, 12, 31))
        return false;
    *serial = ExcelNumberFormat::serialFromDateTime(QDateTime(date, QTime(0, 0)));
    return true;
}

struct CellPlan::Column
{
    enum Kind { Text, ManualText, ExactNumber, Number, Date, Time, DateTime };
    Kind kind = Text;
    bool exact = false; // Date and Time: the cell must be given back exactly
    QString parseFormat; // Date: the QDate format that reads the cells
    QString showFormat; // Date and Time: the Qt format that shows them as Excel will
    QString excelFormat; // Date and Time
};

CellPlan::CellPlan(const Dataset &dataset, int formatting, const QList<int> &manualFormats, int columns)
    : m_dataset(dataset)
    , m_headers(dataset.displayHeaders())
{
    columns = qMin(columns, dataset.columnCount());
    m_columns.reserve(columns);
    for (int c = 0; c < columns; ++c) {
        int format = 0;
        if (formatting == AllText)
            format = 1;
        else if (formatting == Manual)
            format = manualFormats.value(c, 0);
        m_columns.append(planColumn(c, format));
    }
}

CellPlan::~CellPlan() = default;

CellPlan::Column CellPlan::planColumn(int column, int format)
{
    Column plan;
    const QString name = m_headers.value(column);
    auto tell = [&](const QString &kind) {
        m_information << tr("Column '%1' written as %2, set 'Formatting' option to change").arg(name, kind);
    };
    // The first of the formats that shows every sample as it is, else the one that shows most.
    auto chooseShowFormat = [&](const QStringList &candidates, auto read, bool needAll) {
        const QStringList values = samples(m_dataset, column);
        int best = 0;
        QString chosen;
        for (const QString &candidate : candidates) {
            int count = 0;
            for (const QString &value : values) {
                if (read(value, candidate))
                    ++count;
            }
            if (count > best) {
                best = count;
                chosen = candidate;
            }
            if (count == values.size())
                break;
        }
        return needAll && best != values.size() ? QString() : chosen;
    };
    auto dateShows = [&](const QString &parseFormat) {
        return [parseFormat](const QString &value, const QString &candidate) {
            const QDate date = toDate(value, parseFormat);
            return date.isValid() && date.toString(candidate) == value;
        };
    };
    auto dateVariants = [](const QString &f) {
        return QStringList {f, padded(f, QLatin1Char('d')), padded(f, QLatin1Char('M')),
            padded(padded(f, QLatin1Char('d')), QLatin1Char('M'))};
    };
    auto timeShows = [](const QString &value, const QString &candidate) {
        const QTime time = toTime(value);
        return time.isValid() && time.toString(candidate) == value;
    };
    const QStringList timeVariants {QStringLiteral("h:mm:ss"), QStringLiteral("hh:mm:ss"),
        QStringLiteral("h:mm"), QStringLiteral("hh:mm")};

    switch (format) {
    case 1:
        plan.kind = Column::ManualText;
        return plan;
    case 2:
        plan.kind = Column::Number;
        return plan;
    case 3: {
        plan.kind = Column::Date;
        QString found;
        m_dataset.guessDateFormat(column, dateFormats(), &found, sampleCount);
        plan.parseFormat = found;
        if (!found.isEmpty()) {
            plan.showFormat = chooseShowFormat(dateVariants(found), dateShows(found), true);
            if (plan.showFormat.isEmpty())
                plan.showFormat = found;
            plan.excelFormat = ExcelNumberFormat::excelCodeFromDateFormat(plan.showFormat);
        }
        return plan;
    }
    case 4:
        plan.kind = Column::Time;
        return plan;
    case 5:
        plan.kind = Column::DateTime;
        return plan;
    default:
        break;
    }

    QString dateFormat;
    switch (m_dataset.columnType(column, dateFormats(), &dateFormat, false)) {
    case ColumnType::Number:
        plan.kind = Column::ExactNumber;
        tell(tr("numbers"));
        break;
    case ColumnType::Date:
        plan.showFormat = chooseShowFormat(dateVariants(dateFormat), dateShows(dateFormat), true);
        if (plan.showFormat.isEmpty()) {
            m_information
                << tr("Column '%1' holds dates in more than one form and was written as text").arg(name);
            break;
        }
        plan.kind = Column::Date;
        plan.exact = true;
        plan.parseFormat = dateFormat;
        plan.excelFormat = ExcelNumberFormat::excelCodeFromDateFormat(plan.showFormat);
        tell(tr("dates"));
        break;
    case ColumnType::Time:
        plan.showFormat = chooseShowFormat(timeVariants, timeShows, false);
        if (plan.showFormat.isEmpty())
            break;
        plan.kind = Column::Time;
        plan.exact = true;
        plan.excelFormat = plan.showFormat;
        tell(tr("times"));
        break;
    default:
        break;
    }
    return plan;
}

Cell CellPlan::textCell(const QString &text)
{
    Cell cell;
    cell.kind = Cell::Text;
    if (text.size() <= maxTextLength) {
        cell.text = text;
    } else {
        ++m_cutCount;
        cell.text =
            text.left(text.at(maxTextLength - 1).isHighSurrogate() ? maxTextLength - 1 : maxTextLength);
    }
    return cell;
}

Cell CellPlan::misfit(const QString &text, int row, int column, const QString &kind)
{
    if (++m_misfitCount <= 5)
        m_misfits << tr("'%1' in column '%2' at row %3 is not a %4 and was written as text")
                         .arg(elideText(text, 100, true), m_headers.value(column))
                         .arg(row + 1)
                         .arg(kind);
    return textCell(text);
}

Cell CellPlan::cell(int row, int column)
{
    const QString &text = m_dataset.cell(row, column);
    if (text.isEmpty())
        return Cell();
    const Column &plan = m_columns.at(column);
    Cell result;
    result.kind = Cell::Number;
    switch (plan.kind) {
    case Column::Text:
    case Column::ManualText:
        return textCell(text);
    case Column::ExactNumber: {
        int decimals = 0;
        int integerDigits = 0;
        if (!isExactNumber(text, &decimals, &integerDigits))
            return misfit(text, row, column, tr("number"));
        result.number = text.toDouble();
        result.format = numberFormat(decimals, integerDigits);
        return result;
    }
    case Column::Number: {
        bool ok = false;
        result.number = toNumber(text, false, true, &ok);
        if (!ok)
            return misfit(text, row, column, tr("number"));
        const int decimals = decimalsOf(text.trimmed());
        result.format = numberFormat(decimals, qAbs(result.number) >= 1e11 ? 12 : 1);
        return result;
    }
    case Column::Date: {
        const QDate date = plan.parseFormat.isEmpty() ? QDate() : toDate(text, plan.parseFormat);
        if (!date.isValid() || (plan.exact && date.toString(plan.showFormat) != text)
            || !dateSerial(date, &result.number))
            return misfit(text, row, column, tr("date"));
        result.format = plan.excelFormat;
        return result;
    }
    case Column::Time: {
        const QTime time = toTime(text);
        if (!time.isValid() || (plan.exact && time.toString(plan.showFormat) != text))
            return misfit(text, row, column, tr("time"));
        result.number = time.msecsSinceStartOfDay() / 86400000.0;
        if (plan.exact)
            result.format = plan.excelFormat;
        else
            result.format =
                text.count(QLatin1Char(':')) > 1 ? QStringLiteral("h:mm:ss") : QStringLiteral("h:mm");
        return result;
    }
    case Column::DateTime: {
        const QString trimmed = text.trimmed();
        static const QStringList formats {QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"),
            QStringLiteral("yyyy-MM-dd HH:mm:ss"), QStringLiteral("yyyy-MM-dd'T'HH:mm:ss.zzz"),
            QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")};
        for (const QString &format : formats) {
            const QDateTime dateTime = QDateTime::fromString(trimmed, format);
            if (!dateTime.isValid() || !dateSerial(dateTime.date(), &result.number))
                continue;
            result.number += dateTime.time().msecsSinceStartOfDay() / 86400000.0;
            result.format = format.contains(QLatin1Char('T')) ? QStringLiteral("yyyy-mm-dd\"T\"hh:mm:ss")
                                                              : QStringLiteral("yyyy-mm-dd hh:mm:ss");
            if (format.endsWith(QLatin1String(".zzz")))
                result.format += QStringLiteral(".000");
            return result;
        }
        return misfit(text, row, column, tr("date and time"));
    }
    }
    return textCell(text);
}

Cell CellPlan::header(int column)
{
    return textCell(m_headers.value(column));
}

QString CellPlan::columnFormat(int column) const
{
    return m_columns.value(column).kind == Column::ManualText ? QStringLiteral("@") : QString();
}

QStringList CellPlan::warnings() const
{
    QStringList result = m_misfits;
    const int more = m_misfitCount - m_misfits.size();
    if (more > 0)
        result << QStringLiteral("+ %1 %2").arg(more).arg(more == 1 ? tr("other") : tr("others"));
    if (m_cutCount > 0)
        result << tr("%1 %2 longer than 32,767 characters were cut, which is Excel's limit for a cell")
                      .arg(m_cutCount)
                      .arg(m_cutCount == 1 ? tr("value") : tr("values"));
    return result;
}

QVector<double> CellPlan::columnWidths(bool withHeader) const
{
    QVector<double> widths;
    const int rows = qMin(m_dataset.rowCount(), 1000);
    for (int c = 0; c < m_columns.size(); ++c) {
        int longest = withHeader ? longestLine(m_headers.value(c)) : 0;
        for (int r = 0; r < rows; ++r)
            longest = qMax(longest, longestLine(m_dataset.cell(r, c)));
        widths << double(qBound(minColumnWidth, longest + 1, maxColumnWidth));
    }
    return widths;
}

ReplacingFile::ReplacingFile(const QString &target)
{
    const QFileInfo info(target);
    m_target = info.isSymLink() ? info.symLinkTarget() : info.absoluteFilePath();
}

ReplacingFile::~ReplacingFile()
{
    if (!m_committed && !m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
}

bool ReplacingFile::open(QString *error)
{
    const QFileInfo info(m_target);
    QTemporaryFile file(
        info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".XXXXXX"));
    file.setAutoRemove(false);
    if (!file.open()) {
        *error = file.errorString();
        return false;
    }
    m_temporaryPath = file.fileName();
    return true;
}

bool ReplacingFile::commit(QString *error)
{
    if (QFile::exists(m_target)) {
        QFile::setPermissions(m_temporaryPath, QFile::permissions(m_target));
    } else {
#ifndef Q_OS_WIN
        // As a file created by QFile would be: read and write for all, less the umask.
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::chmod(QFile::encodeName(m_temporaryPath).constData(), 0666 & ~mask);
#endif
    }
#ifdef Q_OS_WIN
    const bool moved = MoveFileExW(reinterpret_cast<const wchar_t *>(m_temporaryPath.utf16()),
        reinterpret_cast<const wchar_t *>(m_target.utf16()),
        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    if (!moved) {
        *error = qt_error_string(int(GetLastError()));
        return false;
    }
#else
    if (std::rename(QFile::encodeName(m_temporaryPath).constData(), QFile::encodeName(m_target).constData())
        != 0) {
        *error = qt_error_string(errno);
        return false;
    }
#endif
    m_committed = true;
    return true;
}

} // namespace ExcelWriting
