#include "core/values.h"

#include "core/dataset.h"

#include <QHash>

#include <charconv>
#include <cmath>

namespace {

// Compares an ASCII lower-case word with text in any case.
bool equalsWordIgnoringCase(QStringView text, const char *word)
{
    int i = 0;
    for (; word[i]; ++i) {
        if (i >= text.size())
            return false;
        ushort c = text.at(i).unicode();
        if (c >= 'A' && c <= 'Z')
            c += 'a' - 'A';
        if (c != ushort(word[i]))
            return false;
    }
    return i == text.size();
}

// QLocale reads these words, but a cell holding them isn't a number a user means.
bool isRefusedNumberWord(QStringView text)
{
    return text.size() <= 4
        && (equalsWordIgnoringCase(text, "nan") || equalsWordIgnoringCase(text, "inf")
            || equalsWordIgnoringCase(text, "-inf"));
}

QString withoutCurrency(QStringView text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c.category() != QChar::Symbol_Currency)
            result.append(c);
    }
    return result;
}

bool hasCurrency(QStringView text)
{
    for (const QChar c : text) {
        // Every currency symbol lies above '#'; most cells are plain digits.
        if (c.unicode() > '#' && c.category() == QChar::Symbol_Currency)
            return true;
    }
    return false;
}

// Most number cells are plain decimals such as "-12.50". When the locale writes them that
// way and they hold at most 15 digits, the digits as an integer divided by a power of ten
// up to 10^15 are both exact doubles, so the quotient is the correctly rounded value that
// QLocale's full reader gives, at a fraction of its cost. Anything else goes to QLocale.
bool readPlainDecimal(QStringView text, const QLocale &locale, double *value)
{
    static const double powersOfTen[] = {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const int n = text.size();
    int i = 0;
    const bool negative = n > 0 && text.at(0) == QLatin1Char('-');
    if (negative)
        ++i;
    qint64 mantissa = 0;
    int digits = 0;
    int decimals = -1;
    for (; i < n; ++i) {
        const ushort c = text.at(i).unicode();
        if (c >= '0' && c <= '9') {
            if (++digits > 15)
                return false;
            mantissa = mantissa * 10 + (c - '0');
            if (decimals >= 0)
                ++decimals;
        } else if (c == '.' && decimals < 0) {
            decimals = 0;
        } else {
            return false;
        }
    }
    if (digits == 0 || locale.decimalPoint() != QLatin1Char('.') || locale.negativeSign() != QLatin1Char('-')
        || locale.zeroDigit() != QLatin1Char('0')
        || (locale.numberOptions() & QLocale::RejectTrailingZeroesAfterDot))
        return false;
    const double magnitude = decimals > 0 ? double(mantissa) / powersOfTen[decimals] : double(mantissa);
    *value = negative ? -magnitude : magnitude;
    return true;
}

// Parsing a date or time with a format costs microseconds, and a literal separator of
// the format (such as "/" or ":") must appear in the text for it to parse. Counting
// them rejects most numbers and words at once. Blanks and quoted text are left to Qt.
bool lacksSeparators(const QString &text, const QString &format)
{
    if (format.contains(QLatin1Char('\'')))
        return false;
    for (int i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c.isLetter() || c.isSpace() || format.indexOf(c) != i)
            continue;
        if (text.count(c) < format.count(c))
            return true;
    }
    return false;
}

constexpr qint64 firstJulianDay = -784350574879LL;
constexpr qint64 lastJulianDay = 784354017364LL;

bool isDigit(ushort c)
{
    return c >= '0' && c <= '9';
}

struct NumberEntry
{
    double value;
    bool ok;
};

struct ValueCaches
{
    QHash<QString, NumberEntry> numbers;
    QHash<QString, QHash<QString, QDate>> datesByFormat;
    // For each text, bit i is set when format i of formatsOfMasks reads it.
    QStringList formatsOfMasks;
    QHash<QString, quint64> dateFormatMasks;
};

ValueCaches &valueCaches()
{
    static ValueCaches caches;
    return caches;
}

struct DateFormatState
{
    QStringList custom;
    QLocale defaultsLocale = QLocale::c();
    QStringList defaults;
};

DateFormatState &dateFormatState()
{
    static DateFormatState state;
    return state;
}

} // namespace

double toNumber(const QString &text, bool emptyIsZero, bool ignoreCurrency, bool *ok)
{
    return toNumber(text, emptyIsZero, ignoreCurrency, ok, QLocale());
}

double toNumber(const QString &text, bool emptyIsZero, bool ignoreCurrency, bool *ok, const QLocale &locale)
{
    QStringView view = QStringView(text).trimmed();
    bool parsed = false;
    double value = 0;
    if (!isRefusedNumberWord(view)) {
        QString stripped;
        if (ignoreCurrency && hasCurrency(view)) {
            stripped = withoutCurrency(view);
            view = stripped;
        }
        if (emptyIsZero && view.isEmpty()) {
            parsed = true;
        } else if (readPlainDecimal(view, locale, &value)) {
            parsed = true;
        } else {
            value = locale.toDouble(view, &parsed);
            if (!parsed)
                value = 0;
        }
    }
    if (ok)
        *ok = parsed;
    return value;
}

bool toBool(const QString &text, bool emptyIsInvalid, bool allowNumber, bool *ok)
{
    const QString trimmed = text.trimmed();
    bool valid = false;
    bool result = false;
    if (trimmed.isEmpty() && emptyIsInvalid) {
        valid = false;
    } else if (trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) {
        valid = true;
        result = true;
    } else if (trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0) {
        valid = true;
    } else if (allowNumber) {
        const double number = toNumber(trimmed, true, false, &valid);
        result = valid && number != 0;
    }
    if (ok)
        *ok = valid;
    return result;
}

QDate toDate(const QString &text, const QString &format)
{
    const QString trimmed = text.trimmed();
    if (lacksSeparators(trimmed, format))
        return QDate();
    const QDate date = QDate::fromString(trimmed, format);
    if (!date.isValid() || date.toJulianDay() < firstJulianDay || date.toJulianDay() > lastJulianDay)
        return QDate();
    return date;
}

QTime toTime(const QString &text)
{
    const QString trimmed = text.trimmed();
    for (const QString &format : {QStringLiteral("h:m:s"), QStringLiteral("h:m")}) {
        if (lacksSeparators(trimmed, format))
            continue;
        const QTime time = QTime::fromString(trimmed, format);
        if (time.isValid())
            return time;
    }
    return QTime();
}

// -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)? over the whole trimmed text, ASCII digits only.
bool isJsonNumber(const QString &text)
{
    const QStringView view = QStringView(text).trimmed();
    const int n = view.size();
    int i = 0;
    auto at = [&](int k) { return k < n ? view.at(k).unicode() : ushort(0); };
    auto skipDigits = [&]() {
        const int start = i;
        while (isDigit(at(i)))
            ++i;
        return i > start;
    };
    if (at(i) == '-')
        ++i;
    if (at(i) == '0')
        ++i;
    else if (!skipDigits())
        return false;
    if (at(i) == '.') {
        ++i;
        if (!skipDigits())
            return false;
    }
    if (at(i) == 'e' || at(i) == 'E') {
        ++i;
        if (at(i) == '+' || at(i) == '-')
            ++i;
        if (!skipDigits())
            return false;
    }
    return i == n;
}

void simplifyWhitespace(QString &text)
{
    auto isChanged = [](ushort c) {
        if (c < 0x80)
            return c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
        return QChar::isSpace(c);
    };
    const QChar *data = text.constData();
    int first = 0;
    while (first < text.size() && !isChanged(data[first].unicode()))
        ++first;
    if (first == text.size())
        return; // nothing to change: don't detach
    QChar *out = text.data();
    int kept = first;
    for (int i = first; i < text.size(); ++i) {
        const ushort c = out[i].unicode();
        if (c == '\r')
            continue;
        out[kept++] = isChanged(c) ? QChar(QLatin1Char(' ')) : out[i];
    }
    text.truncate(kept);
}

QString elideText(const QString &text, int maxLength, bool addEllipsis)
{
    if (maxLength < 0 || text.size() <= maxLength)
        return text;
    const QChar ellipsis(0x2026);
    if (!addEllipsis || maxLength <= 1)
        return text.left(maxLength);
    return text.left(maxLength - 1) + ellipsis;
}

QStringList defaultDateFormats(const QLocale &locale)
{
    QStringList formats;
    if (locale.country() == QLocale::UnitedStates) {
        formats = QStringList {
            QStringLiteral("M/d/yyyy"),
            QStringLiteral("d/M/yyyy"),
            QStringLiteral("yyyy/M/d"),
            QStringLiteral("M/d/yy"),
            QStringLiteral("d/M/yy"),
            QStringLiteral("yy/M/d"),
            QStringLiteral("M-d-yyyy"),
            QStringLiteral("d-M-yyyy"),
            QStringLiteral("yyyy-M-d"),
            QStringLiteral("M-d-yy"),
            QStringLiteral("d-M-yy"),
            QStringLiteral("yy-M-d"),
        };
    } else {
        // "d/M/yyyy" twice and no "d/M/yy": users' lists were saved from this one, keep it.
        formats = QStringList {
            QStringLiteral("d/M/yyyy"),
            QStringLiteral("M/d/yyyy"),
            QStringLiteral("yyyy/M/d"),
            QStringLiteral("d/M/yyyy"),
            QStringLiteral("M/d/yy"),
            QStringLiteral("yy/M/d"),
            QStringLiteral("d-M-yyyy"),
            QStringLiteral("M-d-yyyy"),
            QStringLiteral("yyyy-M-d"),
            QStringLiteral("d-M-yy"),
            QStringLiteral("M-d-yy"),
            QStringLiteral("yy-M-d"),
        };
    }
    const QString shortFormat = locale.dateFormat(QLocale::ShortFormat);
    if (!shortFormat.isEmpty() && !formats.contains(shortFormat))
        formats.prepend(shortFormat);
    return formats;
}

QStringList dateFormats()
{
    DateFormatState &state = dateFormatState();
    if (!state.custom.isEmpty())
        return state.custom;
    // Built once per default locale, so that callers get the same shared list each time.
    const QLocale locale;
    if (state.defaults.isEmpty() || !(locale == state.defaultsLocale)) {
        state.defaultsLocale = locale;
        state.defaults = defaultDateFormats(locale);
    }
    return state.defaults;
}

void setDateFormats(const QStringList &formats)
{
    dateFormatState().custom = formats;
}

double cachedNumber(const QString &text, bool *ok)
{
    QHash<QString, NumberEntry> &numbers = valueCaches().numbers;
    auto it = numbers.constFind(text);
    if (it == numbers.constEnd()) {
        NumberEntry entry;
        entry.value = toNumber(text, false, false, &entry.ok);
        it = numbers.insert(text, entry);
    }
    if (ok)
        *ok = it->ok;
    return it->value;
}

QDate cachedDate(const QString &text, const QString &format)
{
    QHash<QString, QDate> &dates = valueCaches().datesByFormat[format];
    auto it = dates.constFind(text);
    if (it == dates.constEnd())
        it = dates.insert(text, toDate(text, format));
    return *it;
}

namespace {

quint64 dateFormatMask(ValueCaches &caches, const QString &text)
{
    auto it = caches.dateFormatMasks.constFind(text);
    if (it != caches.dateFormatMasks.constEnd())
        return *it;
    quint64 mask = 0;
    for (int i = 0; i < caches.formatsOfMasks.size(); ++i) {
        if (cachedDate(text, caches.formatsOfMasks.at(i)).isValid())
            mask |= quint64(1) << i;
    }
    caches.dateFormatMasks.insert(text, mask);
    return mask;
}

int lowestBit(quint64 mask)
{
    int i = 0;
    while (!(mask & 1)) {
        mask >>= 1;
        ++i;
    }
    return i;
}

} // namespace

bool cachedDatePair(const QString &a, const QString &b, QDate *dateA, QDate *dateB)
{
    const QStringList formats = dateFormats();
    int formatA = -1;
    int formatB = -1;
    if (formats.size() <= 64) {
        // One lookup per text once seen: most comparisons are of numbers or words.
        ValueCaches &caches = valueCaches();
        if (caches.formatsOfMasks != formats) {
            caches.formatsOfMasks = formats;
            caches.dateFormatMasks.clear();
        }
        const quint64 maskA = dateFormatMask(caches, a);
        if (!maskA)
            return false;
        const quint64 maskB = dateFormatMask(caches, b);
        if (!maskB)
            return false;
        const quint64 common = maskA & maskB;
        formatA = lowestBit(common ? common : maskA);
        formatB = lowestBit(common ? common : maskB);
    } else {
        for (int i = 0; i < formats.size(); ++i) {
            const bool validA = cachedDate(a, formats.at(i)).isValid();
            const bool validB = cachedDate(b, formats.at(i)).isValid();
            if (validA && validB) {
                formatA = formatB = i;
                break;
            }
            if (validA && formatA < 0)
                formatA = i;
            if (validB && formatB < 0)
                formatB = i;
        }
        if (formatA < 0 || formatB < 0)
            return false;
    }
    if (dateA)
        *dateA = cachedDate(a, formats.at(formatA));
    if (dateB)
        *dateB = cachedDate(b, formats.at(formatB));
    return true;
}

void clearValueCaches()
{
    valueCaches() = ValueCaches();
}

QString renderNumber(double value)
{
    if (!std::isfinite(value))
        return QStringLiteral("NaN");
    if (value == 0)
        return QStringLiteral("0"); // also for -0
    // A whole number below 2^63 has the same digits as the integer.
    if (std::fabs(value) < 9.2e18 && value == std::trunc(value))
        return QString::number(qint64(value));
    // 15 significant digits, as a spreadsheet shows them: the decimals are 15 less the
    // digits before the point (82.8 has 2), so 12 * 6.9 reads 82.8, not 82.80000000000001.
    const int exponent = int(std::floor(std::log10(std::fabs(value)))) + 1;
    const int precision = qMax(0, 15 - exponent);
    // std::to_chars rounds correctly, as QString::number does, several times faster; they
    // differ only on an exact tie, which QString::number takes away from zero. A value
    // m * 2^-k with m odd has exactly k decimals, the last a 5, so it is a tie at this
    // precision only when k is precision + 1.
    int binaryExponent = 0;
    const double fraction = std::frexp(std::fabs(value), &binaryExponent);
    const quint64 mantissa = quint64(std::ldexp(fraction, 53));
    const int decimals = 53 - binaryExponent - __builtin_ctzll(mantissa);
    QString text;
    if (decimals == precision + 1) {
        text = QString::number(value, 'f', precision);
    } else {
        char buffer[400]; // at most 340: "0." and 338 decimals of the smallest
        const std::to_chars_result written =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, precision);
        text = QString::fromLatin1(buffer, int(written.ptr - buffer));
    }
    if (text.contains(QLatin1Char('.'))) {
        int end = text.size();
        while (text.at(end - 1) == QLatin1Char('0'))
            --end;
        if (text.at(end - 1) == QLatin1Char('.'))
            --end;
        text.truncate(end);
    }
    return text;
}

QString formatCount(qint64 count)
{
    return QLocale().toString(count);
}

// Column tests. Each looks at the first rows only, so that they can run for every column
// whenever a dialog or transform opens.

bool Dataset::isNumericColumn(DataColumnIndex column, bool ignoreCurrency, int maxRows) const
{
    if (!column.isValid() || column.toInt() >= columnCount())
        return false;
    const int rows = qMin(rowCount(), maxRows);
    int counted = 0;
    for (int r = 0; r < rows; ++r) {
        const QString value = cell(r, column).trimmed();
        if (value.isEmpty())
            continue;
        bool ok = false;
        toNumber(value, false, ignoreCurrency, &ok);
        if (ok)
            ++counted;
        else if (value.compare(QLatin1String("nan"), Qt::CaseInsensitive) != 0)
            return false;
    }
    return counted > 0;
}

namespace {

// True when every non-empty value of the first 100 rows passes, and there is at least one.
template<typename Test>
bool allSampledValuesPass(const Dataset &dataset, DataColumnIndex column, bool trim, Test test)
{
    if (!column.isValid() || column.toInt() >= dataset.columnCount())
        return false;
    const int rows = qMin(dataset.rowCount(), 100);
    int counted = 0;
    for (int r = 0; r < rows; ++r) {
        const QString &cell = dataset.cell(r, column);
        const QString value = trim ? cell.trimmed() : cell;
        if (value.isEmpty())
            continue;
        if (!test(value))
            return false;
        ++counted;
    }
    return counted > 0;
}

} // namespace

bool Dataset::isBooleanColumn(DataColumnIndex column) const
{
    return allSampledValuesPass(*this, column, false, [](const QString &value) {
        bool ok = false;
        toBool(value, false, false, &ok);
        return ok;
    });
}

bool Dataset::isTimeColumn(DataColumnIndex column) const
{
    return allSampledValuesPass(
        *this, column, false, [](const QString &value) { return toTime(value).isValid(); });
}

bool Dataset::isJsonNumberColumn(DataColumnIndex column) const
{
    return allSampledValuesPass(*this, column, true, isJsonNumber);
}

bool Dataset::guessDateFormat(
    DataColumnIndex column, const QStringList &formats, QString *outFormat, int maxValues) const
{
    if (!column.isValid() || column.toInt() >= columnCount())
        return false;
    QStringList values;
    for (int r = 0; r < rowCount() && values.size() < maxValues; ++r) {
        const QString &value = cell(r, column);
        if (!value.isEmpty())
            values.append(value);
    }
    if (values.isEmpty())
        return false;
    // Ties go to the earlier format: the list's order is the day-first or month-first preference.
    int best = 0;
    for (const QString &format : formats) {
        int count = 0;
        for (const QString &value : values) {
            if (cachedDate(value, format).isValid())
                ++count;
        }
        if (count > best) {
            best = count;
            if (outFormat)
                *outFormat = format;
        }
        if (count == values.size())
            break;
    }
    return best == values.size();
}

ColumnType Dataset::columnType(
    DataColumnIndex column, const QStringList &formats, QString *outFormat, bool ignoreCurrency) const
{
    // A column of 1 and 0 is a number and a column of years isn't a date: the order matters.
    if (isNumericColumn(column, ignoreCurrency, 100))
        return ColumnType::Number;
    if (isBooleanColumn(column))
        return ColumnType::Boolean;
    if (isTimeColumn(column))
        return ColumnType::Time;
    QString format;
    if (guessDateFormat(column, formats, &format, 50)) {
        if (outFormat)
            *outFormat = format;
        return ColumnType::Date;
    }
    return ColumnType::Text;
}

QList<DataColumnIndex> Dataset::numericColumns(int limit, bool ignoreCurrency) const
{
    QList<DataColumnIndex> columns;
    for (int c = 0; c < columnCount() && columns.size() < limit; ++c) {
        if (isNumericColumn(c, ignoreCurrency, 100))
            columns.append(c);
    }
    return columns;
}

bool Dataset::isPlainColumn(DataColumnIndex column, const QStringList &formats) const
{
    if (!column.isValid() || column.toInt() >= columnCount())
        return false;
    const int rows = qMin(rowCount(), 50);
    for (int r = 0; r < rows; ++r) {
        const QString &value = cell(r, column);
        for (const QChar c : value) {
            if (c == QLatin1Char(' ') || c == QLatin1Char('.') || c == QLatin1Char(','))
                return false;
        }
    }
    return !guessDateFormat(column, formats, nullptr, 50);
}
