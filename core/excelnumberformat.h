#pragma once

#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QString>

#include <memory>

// Renders cell values with Excel number format codes, so that a cell read from a
// workbook holds the text Excel shows for it; and converts the program's date formats
// to Excel codes and back. One object per read: it keeps each code it has parsed and
// counts the cells it could only show with the General format.
class ExcelNumberFormat
{
public:
    explicit ExcelNumberFormat(const QLocale &locale = QLocale(), bool date1904 = false);
    ~ExcelNumberFormat();
    ExcelNumberFormat(const ExcelNumberFormat &) = delete;
    ExcelNumberFormat &operator=(const ExcelNumberFormat &) = delete;

    bool date1904() const { return m_date1904; }
    void setDate1904(bool date1904) { m_date1904 = date1904; }

    // The value as the code shows it. A code that can't be parsed, a negative date and a
    // date after 9999-12-31 give the General form and count as a fallback.
    QString format(double value, const QString &code);
    // A text cell: the code's text section with "@" replaced by the text, or the text as
    // it stands when the code has no text section.
    QString formatText(const QString &text, const QString &code);
    // Cells shown with General because their code couldn't be followed.
    int fallbackCount() const { return m_fallbacks; }
    // The information line for the fallbacks, empty when there were none.
    QString fallbackMessage() const;

    // The code of a built-in format id; empty for an id that has none (shown as General).
    static QString builtInCode(int id, const QLocale &locale = QLocale());
    // Excel's General form: whole values up to 15 digits as integers, else 15 significant
    // digits, in plain notation for 1e-5 <= |x| < 1e15 and as "1.5E+20" outside.
    static QString general(double value, const QLocale &locale = QLocale());
    // True when the code shows dates or times (its first section has date or time tokens).
    static bool isDateCode(const QString &code);

    // A date or time of the program ("d/M/yyyy", "h:m:s") as an Excel code ("d\"/\"m\"/\"yyyy",
    // "h:mm:ss"): day, month and year tokens as they stand, other characters as quoted text.
    static QString excelCodeFromDateFormat(const QString &dateFormat);
    // An Excel date or time code as a QDate/QTime format text ("dd/mm/yyyy" gives "dd/MM/yyyy");
    // colours, conditions and padding are dropped.
    static QString dateFormatFromExcelCode(const QString &code);

    // Serial numbers: days since the system's epoch with the time as the fraction.
    // The 1900 system counts the 29 February 1900 that Excel shows.
    static double serialFromDateTime(const QDateTime &dateTime, bool date1904 = false);
    static QDateTime dateTimeFromSerial(double serial, bool date1904 = false, bool *ok = nullptr);

    struct Section;
    struct Parsed;

private:
    const Parsed *parsed(const QString &code);

    QLocale m_locale;
    bool m_date1904;
    int m_fallbacks = 0;
    QHash<QString, std::shared_ptr<const Parsed>> m_cache;
};
