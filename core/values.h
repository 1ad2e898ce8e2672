#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTime>

// What a cell's text means. Every cell is text; these functions decide, at the moment
// of use, whether it is a number, boolean, date or time, so that the whole program
// agrees. Parsing uses the process's default QLocale.

// The trimmed text as a number of the locale. "nan", "inf" and "-inf" (any case) are
// refused. With ignoreCurrency every currency symbol is removed first; with emptyIsZero
// an empty text is 0 and ok.
double toNumber(const QString &text, bool emptyIsZero, bool ignoreCurrency, bool *ok);
// The same with a given locale in place of the default one.
double toNumber(const QString &text, bool emptyIsZero, bool ignoreCurrency, bool *ok, const QLocale &locale);

// "true" or "false" in any case, trimmed. With allowNumber a number is true when it isn't
// 0, and an empty text reads as 0 unless emptyIsInvalid. Anything else is false, not ok.
bool toBool(const QString &text, bool emptyIsInvalid, bool allowNumber, bool *ok);

// The trimmed text read with a QDate format; invalid when it doesn't fit.
QDate toDate(const QString &text, const QString &format);
// The trimmed text as "h:m:s" or "h:m"; invalid otherwise.
QTime toTime(const QString &text);
// True when the trimmed text is a bare JSON number: no "+", no leading zero, no bare ".5".
bool isJsonNumber(const QString &text);

// Turns every kind of whitespace into a plain space and removes carriage returns, so
// that a cell fits on one line. Runs of spaces are kept.
void simplifyWhitespace(QString &text);
// The text cut to maxLength characters, the last one "…" when addEllipsis; a negative
// maxLength keeps the whole text.
QString elideText(const QString &text, int maxLength, bool addEllipsis);

// The date formats tried, in order of preference, when the program guesses a date: the
// order decides between day-first and month-first.
QStringList defaultDateFormats(const QLocale &locale);
// The list in force for the process: the one set, or the default for the default QLocale.
QStringList dateFormats();
// Replaces the default list entirely; an empty list goes back to the default.
void setDateFormats(const QStringList &formats);

// Process-wide caches, so that comparing many cells parses each distinct value once.
// They are filled on the main thread and live for the process; clear them after
// changing the default locale.
double cachedNumber(const QString &text, bool *ok); // toNumber without empty or currency rules
QDate cachedDate(const QString &text, const QString &format);
// Both texts as dates by the date format list: the first format that reads both, else the
// first that reads each. False unless both are dates.
bool cachedDatePair(const QString &a, const QString &b, QDate *dateA, QDate *dateB);
void clearValueCaches();

// A number as the program writes it: fixed notation with 15 significant digits,
// no trailing zeros, no group separators, "." as decimal point, "NaN" when not finite.
QString renderNumber(double value);
// A count for messages, with the default locale's group separators.
QString formatCount(qint64 count);
