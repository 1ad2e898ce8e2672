#include "excelnumberformat.h"

#include <QCoreApplication>
#include <QVector>

#include <cmath>
#include <cstdio>

namespace {

enum class TokenKind {
    Literal,
    Placeholder, // '0', '#' or '?'
    DigitLiteral, // a digit written in the code, as in a fixed denominator
    Point,
    Comma,
    Percent,
    Exponent, // text "E+", "E-", "e+" or "e-"
    Slash,
    At,
    General,
    Year,
    Month, // month or minute until the section is resolved
    Minute,
    Day,
    Hour,
    Second,
    SubSecond, // count of digits after the seconds
    AmPm, // text as written: "AM/PM", "am/pm", "A/P" or "a/p"
    ElapsedHours,
    ElapsedMinutes,
    ElapsedSeconds,
};

struct Token
{
    Token(TokenKind kind = TokenKind::Literal, const QString &text = QString(), int count = 1,
        QChar ch = QChar())
        : kind(kind)
        , text(text)
        , count(count)
        , ch(ch)
    { }
    TokenKind kind;
    QString text;
    int count;
    QChar ch;
};

enum class SectionKind { Number, Date, Text, General, Empty };
enum class Compare { None, Less, LessEqual, Greater, GreaterEqual, Equal, NotEqual };

bool isDateKind(TokenKind kind)
{
    switch (kind) {
    case TokenKind::Year:
    case TokenKind::Month:
    case TokenKind::Minute:
    case TokenKind::Day:
    case TokenKind::Hour:
    case TokenKind::Second:
    case TokenKind::SubSecond:
    case TokenKind::AmPm:
    case TokenKind::ElapsedHours:
    case TokenKind::ElapsedMinutes:
    case TokenKind::ElapsedSeconds:
        return true;
    default:
        return false;
    }
}

// A value >= 0 as at most 15 significant decimal digits: value = 0.digits × 10^point.
struct Decimal
{
    QByteArray digits; // no leading or trailing zeros; empty for zero
    int point = 0;
};

Decimal toDecimal(double value)
{
    Decimal d;
    if (!(value > 0))
        return d;
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.14e", value);
    const QByteArray text(buffer);
    const int e = text.indexOf('e');
    d.digits = text.left(1) + text.mid(2, e - 2);
    d.point = text.mid(e + 1).toInt() + 1;
    while (d.digits.endsWith('0'))
        d.digits.chop(1);
    return d;
}

// Rounds half away from zero to the given decimals: the integer digits (empty for zero)
// and exactly `decimals` fraction digits.
void roundDecimal(const Decimal &d, int decimals, QByteArray *integer, QByteArray *fraction)
{
    const int keep = d.point + decimals;
    QByteArray kept;
    int point = d.point;
    if (keep >= 0) {
        kept = d.digits.left(keep);
        while (kept.size() < keep)
            kept.append('0');
        if (keep < d.digits.size() && d.digits.at(keep) >= '5') {
            int i = kept.size() - 1;
            while (i >= 0 && kept.at(i) == '9')
                kept[i--] = '0';
            if (i >= 0) {
                kept[i] = char(kept.at(i) + 1);
            } else {
                kept.prepend('1');
                ++point;
            }
        }
    }
    // kept holds the digits from position 0.digits up to the last decimal kept.
    if (point > 0) {
        *integer = kept.left(point);
        *fraction = kept.mid(point);
    } else {
        integer->clear();
        *fraction = QByteArray(-point, '0') + kept;
    }
    fraction->truncate(decimals);
    while (fraction->size() < decimals)
        fraction->append('0');
    int lead = 0;
    while (lead < integer->size() && integer->at(lead) == '0')
        ++lead;
    integer->remove(0, lead);
}

QString latin(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes);
}

} // namespace

struct ExcelNumberFormat::Section
{
    SectionKind kind = SectionKind::Number;
    QVector<Token> tokens;
    Compare compare = Compare::None;
    double operand = 0;
    // Numbers
    int percents = 0;
    int scaling = 0; // trailing commas: divide by 1,000 each
    bool grouping = false;
    bool fraction = false;
    int exponent = -1; // index of the exponent token
    // Dates
    bool hour12 = false;
    int subSecondDigits = 0;
    bool elapsed = false;
};

struct ExcelNumberFormat::Parsed
{
    QVector<Section> sections;
    bool ok = true;
};

namespace {

using Section = ExcelNumberFormat::Section;
using Parsed = ExcelNumberFormat::Parsed;

bool startsWithNoCase(const QString &code, int at, const char *word)
{
    return QStringView(code).mid(at).startsWith(QLatin1String(word), Qt::CaseInsensitive);
}

// Splits at ";" outside quotes, brackets and escapes.
QStringList splitSections(const QString &code)
{
    QStringList sections;
    QString current;
    bool quoted = false;
    bool bracket = false;
    for (int i = 0; i < code.size(); ++i) {
        const QChar c = code.at(i);
        if (quoted) {
            quoted = c != QLatin1Char('"');
        } else if (bracket) {
            bracket = c != QLatin1Char(']');
        } else if (c == QLatin1Char('"')) {
            quoted = true;
        } else if (c == QLatin1Char('[')) {
            bracket = true;
        } else if ((c == QLatin1Char('\\') || c == QLatin1Char('_') || c == QLatin1Char('*'))
            && i + 1 < code.size()) {
            current += c;
            current += code.at(++i);
            continue;
        } else if (c == QLatin1Char(';')) {
            sections << current;
            current.clear();
            continue;
        }
        current += c;
    }
    sections << current;
    return sections;
}

bool parseBracket(const QString &inside, Section &section)
{
    if (inside.isEmpty())
        return false;
    const QChar first = inside.at(0);
    if (first == QLatin1Char('$')) {
        const int dash = inside.indexOf(QLatin1Char('-'));
        const QString symbol = inside.mid(1, dash < 0 ? -1 : dash - 1);
        if (!symbol.isEmpty())
            section.tokens.append(Token(TokenKind::Literal, symbol));
        return true;
    }
    if (first == QLatin1Char('<') || first == QLatin1Char('>') || first == QLatin1Char('=')) {
        int length = 1;
        if (inside.startsWith(QLatin1String("<="))) {
            section.compare = Compare::LessEqual;
            length = 2;
        } else if (inside.startsWith(QLatin1String(">="))) {
            section.compare = Compare::GreaterEqual;
            length = 2;
        } else if (inside.startsWith(QLatin1String("<>"))) {
            section.compare = Compare::NotEqual;
            length = 2;
        } else if (first == QLatin1Char('<')) {
            section.compare = Compare::Less;
        } else if (first == QLatin1Char('>')) {
            section.compare = Compare::Greater;
        } else {
            section.compare = Compare::Equal;
        }
        bool ok = false;
        section.operand = inside.mid(length).trimmed().toDouble(&ok);
        return ok;
    }
    const QChar lower = first.toLower();
    if (lower == QLatin1Char('h') || lower == QLatin1Char('m') || lower == QLatin1Char('s')) {
        bool same = true;
        for (const QChar c : inside)
            same = same && c.toLower() == lower;
        if (same) {
            const TokenKind kind = lower == QLatin1Char('h')
                ? TokenKind::ElapsedHours
                : (lower == QLatin1Char('m') ? TokenKind::ElapsedMinutes : TokenKind::ElapsedSeconds);
            section.tokens.append({kind, QString(), int(inside.size())});
            section.elapsed = true;
            return true;
        }
    }
    // Colours, locale and calendar tags change nothing in the text.
    return true;
}

int runLength(const QString &code, int at)
{
    const QChar c = code.at(at).toLower();
    int end = at;
    while (end < code.size() && code.at(end).toLower() == c)
        ++end;
    return end - at;
}

bool tokenize(const QString &code, Section &section)
{
    for (int i = 0; i < code.size();) {
        const QChar c = code.at(i);
        const QChar lower = c.toLower();
        if (c == QLatin1Char('"')) {
            const int end = code.indexOf(QLatin1Char('"'), i + 1);
            if (end < 0)
                return false;
            section.tokens.append(Token(TokenKind::Literal, code.mid(i + 1, end - i - 1)));
            i = end + 1;
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 >= code.size())
                return false;
            section.tokens.append(Token(TokenKind::Literal, code.mid(i + 1, 1)));
            i += 2;
        } else if (c == QLatin1Char('_')) {
            section.tokens.append(Token(TokenKind::Literal, QStringLiteral(" ")));
            i += 2;
        } else if (c == QLatin1Char('*')) {
            i += 2;
        } else if (c == QLatin1Char('[')) {
            const int end = code.indexOf(QLatin1Char(']'), i + 1);
            if (end < 0 || !parseBracket(code.mid(i + 1, end - i - 1), section))
                return false;
            i = end + 1;
        } else if (c == QLatin1Char('0') || c == QLatin1Char('#') || c == QLatin1Char('?')) {
            section.tokens.append(Token(TokenKind::Placeholder, QString(), 1, c));
            ++i;
        } else if (c >= QLatin1Char('1') && c <= QLatin1Char('9')) {
            section.tokens.append(Token(TokenKind::DigitLiteral, QString(c), 1, c));
            ++i;
        } else if (c == QLatin1Char('.')) {
            section.tokens.append(Token(TokenKind::Point));
            ++i;
        } else if (c == QLatin1Char(',')) {
            section.tokens.append(Token(TokenKind::Comma));
            ++i;
        } else if (c == QLatin1Char('%')) {
            section.tokens.append(Token(TokenKind::Percent));
            ++i;
        } else if (lower == QLatin1Char('e') && i + 1 < code.size()
            && (code.at(i + 1) == QLatin1Char('+') || code.at(i + 1) == QLatin1Char('-'))) {
            section.tokens.append(Token(TokenKind::Exponent, code.mid(i, 2)));
            i += 2;
        } else if (c == QLatin1Char('/')) {
            section.tokens.append(Token(TokenKind::Slash));
            ++i;
        } else if (c == QLatin1Char('@')) {
            section.tokens.append(Token(TokenKind::At));
            ++i;
        } else if (startsWithNoCase(code, i, "General")) {
            section.tokens.append(Token(TokenKind::General));
            i += 7;
        } else if (startsWithNoCase(code, i, "AM/PM")) {
            section.tokens.append(Token(TokenKind::AmPm, code.mid(i, 5)));
            section.hour12 = true;
            i += 5;
        } else if (startsWithNoCase(code, i, "A/P")) {
            section.tokens.append(Token(TokenKind::AmPm, code.mid(i, 3)));
            section.hour12 = true;
            i += 3;
        } else if (lower == QLatin1Char('y') || lower == QLatin1Char('m') || lower == QLatin1Char('d')
            || lower == QLatin1Char('h') || lower == QLatin1Char('s')) {
            const int length = runLength(code, i);
            TokenKind kind = TokenKind::Year;
            if (lower == QLatin1Char('m'))
                kind = TokenKind::Month;
            else if (lower == QLatin1Char('d'))
                kind = TokenKind::Day;
            else if (lower == QLatin1Char('h'))
                kind = TokenKind::Hour;
            else if (lower == QLatin1Char('s'))
                kind = TokenKind::Second;
            section.tokens.append({kind, QString(), length});
            i += length;
        } else {
            section.tokens.append(Token(TokenKind::Literal, QString(c)));
            ++i;
        }
    }
    return true;
}

bool resolveDate(Section &section)
{
    QVector<Token> &tokens = section.tokens;
    // "m" and "mm" are minutes after an hour or before a second, months otherwise.
    for (int i = 0; i < tokens.size(); ++i) {
        if (tokens.at(i).kind != TokenKind::Month || tokens.at(i).count > 2)
            continue;
        TokenKind before = TokenKind::Literal;
        for (int j = i - 1; j >= 0 && before == TokenKind::Literal; --j)
            if (isDateKind(tokens.at(j).kind))
                before = tokens.at(j).kind;
        TokenKind after = TokenKind::Literal;
        for (int j = i + 1; j < tokens.size() && after == TokenKind::Literal; ++j)
            if (isDateKind(tokens.at(j).kind))
                after = tokens.at(j).kind;
        if (before == TokenKind::Hour || before == TokenKind::ElapsedHours || after == TokenKind::Second
            || after == TokenKind::ElapsedSeconds)
            tokens[i].kind = TokenKind::Minute;
    }
    QVector<Token> resolved;
    for (int i = 0; i < tokens.size(); ++i) {
        const Token &token = tokens.at(i);
        if (token.kind == TokenKind::Point && !resolved.isEmpty()
            && (resolved.last().kind == TokenKind::Second
                || resolved.last().kind == TokenKind::ElapsedSeconds)
            && i + 1 < tokens.size() && tokens.at(i + 1).kind == TokenKind::Placeholder
            && tokens.at(i + 1).ch == QLatin1Char('0')) {
            int digits = 0;
            while (i + 1 < tokens.size() && tokens.at(i + 1).kind == TokenKind::Placeholder
                && tokens.at(i + 1).ch == QLatin1Char('0')) {
                ++digits;
                ++i;
            }
            digits = qMin(digits, 3);
            resolved.append(Token(TokenKind::SubSecond, QString(), digits));
            section.subSecondDigits = qMax(section.subSecondDigits, digits);
        } else if (token.kind == TokenKind::Point) {
            resolved.append(Token(TokenKind::Literal, QStringLiteral(".")));
        } else if (token.kind == TokenKind::Comma) {
            resolved.append(Token(TokenKind::Literal, QStringLiteral(",")));
        } else if (token.kind == TokenKind::Slash) {
            resolved.append(Token(TokenKind::Literal, QStringLiteral("/")));
        } else if (token.kind == TokenKind::DigitLiteral) {
            resolved.append(Token(TokenKind::Literal, token.text));
        } else if (token.kind == TokenKind::Placeholder || token.kind == TokenKind::Percent
            || token.kind == TokenKind::Exponent || token.kind == TokenKind::At
            || token.kind == TokenKind::General) {
            return false; // numbers and dates don't mix
        } else {
            resolved.append(token);
        }
    }
    tokens = resolved;
    return true;
}

bool isPlaceholder(const Token &token)
{
    return token.kind == TokenKind::Placeholder;
}

bool resolveNumber(Section &section)
{
    QVector<Token> &tokens = section.tokens;
    for (int i = 0; i < tokens.size(); ++i) {
        if (tokens.at(i).kind == TokenKind::Exponent && section.exponent < 0)
            section.exponent = i;
        else if (tokens.at(i).kind == TokenKind::Exponent)
            tokens[i] = Token(TokenKind::Literal, tokens.at(i).text);
        if (tokens.at(i).kind == TokenKind::Percent)
            ++section.percents;
    }
    const int mantissaEnd = section.exponent < 0 ? tokens.size() : section.exponent;
    // A slash between placeholders, or before a written denominator, makes a fraction.
    for (int i = 1; i + 1 < mantissaEnd && section.exponent < 0; ++i) {
        if (tokens.at(i).kind != TokenKind::Slash)
            continue;
        const bool numerator = isPlaceholder(tokens.at(i - 1));
        const TokenKind next = tokens.at(i + 1).kind;
        if (numerator && (next == TokenKind::Placeholder || next == TokenKind::DigitLiteral)) {
            section.fraction = true;
            break;
        }
    }
    int lastPlaceholder = -1;
    int point = -1;
    for (int i = 0; i < mantissaEnd; ++i) {
        if (isPlaceholder(tokens.at(i)))
            lastPlaceholder = i;
        if (tokens.at(i).kind == TokenKind::Point && point < 0 && !section.fraction)
            point = i;
    }
    for (int i = 0; i < tokens.size(); ++i) {
        Token &token = tokens[i];
        if (token.kind == TokenKind::Slash && !section.fraction) {
            token = Token(TokenKind::Literal, QStringLiteral("/"));
        } else if (token.kind == TokenKind::DigitLiteral && !section.fraction) {
            token.kind = TokenKind::Literal;
        } else if (token.kind == TokenKind::Point && (i != point)) {
            token = Token(TokenKind::Literal, QStringLiteral("."));
        } else if (token.kind == TokenKind::Comma) {
            const bool afterDigit =
                i > 0 && (isPlaceholder(tokens.at(i - 1)) || tokens.at(i - 1).count == -1);
            const bool beforeDigit = i + 1 < mantissaEnd && isPlaceholder(tokens.at(i + 1));
            const bool inInteger = point < 0 || i < point;
            if (afterDigit && beforeDigit && inInteger) {
                section.grouping = true;
                token.count = 0;
            } else if (afterDigit && i > lastPlaceholder && i < mantissaEnd) {
                ++section.scaling;
                token.count = -1; // marks a scaling comma, so that a run of them scales each
            } else {
                token = Token(TokenKind::Literal, QStringLiteral(","));
            }
        } else if (token.kind == TokenKind::At) {
            return false;
        }
    }
    return true;
}

bool parseSection(const QString &text, Section &section)
{
    if (text.isEmpty()) {
        section.kind = SectionKind::Empty;
        return true;
    }
    if (!tokenize(text, section))
        return false;
    bool date = false;
    bool at = false;
    bool general = false;
    for (const Token &token : qAsConst(section.tokens)) {
        date = date || isDateKind(token.kind);
        at = at || token.kind == TokenKind::At;
        general = general || token.kind == TokenKind::General;
    }
    if (date) {
        section.kind = SectionKind::Date;
        return resolveDate(section);
    }
    if (at) {
        section.kind = SectionKind::Text;
        for (const Token &token : qAsConst(section.tokens))
            if (token.kind != TokenKind::At && token.kind != TokenKind::Literal
                && token.kind != TokenKind::DigitLiteral && token.kind != TokenKind::Point
                && token.kind != TokenKind::Comma && token.kind != TokenKind::Slash)
                return false;
        return true;
    }
    // Only colours or conditions: the value in its General form.
    if (section.tokens.isEmpty() || (general && section.tokens.size() == 1)) {
        section.kind = SectionKind::General;
        return true;
    }
    section.kind = SectionKind::Number;
    return resolveNumber(section);
}

QString tokenText(const Token &token)
{
    switch (token.kind) {
    case TokenKind::Literal:
    case TokenKind::DigitLiteral:
        return token.text;
    case TokenKind::Point:
        return QStringLiteral(".");
    case TokenKind::Slash:
        return QStringLiteral("/");
    case TokenKind::Comma:
        return QStringLiteral(",");
    case TokenKind::Percent:
        return QStringLiteral("%");
    default:
        return QString();
    }
}

bool matches(Compare compare, double operand, double value)
{
    switch (compare) {
    case Compare::Less:
        return value < operand;
    case Compare::LessEqual:
        return value <= operand;
    case Compare::Greater:
        return value > operand;
    case Compare::GreaterEqual:
        return value >= operand;
    case Compare::Equal:
        return value == operand;
    case Compare::NotEqual:
        return value != operand;
    case Compare::None:
        break;
    }
    return true;
}

// ---- Numbers ----

struct NumberRenderer
{
    const Section &section;
    const QLocale &locale;

    // Writes the integer placeholders of tokens[begin, end) with the digits, padding
    // as each placeholder says, extra digits going to the first.
    QString integerPart(int begin, int end, const QByteArray &digits, bool group) const
    {
        QVector<int> places;
        for (int i = begin; i < end; ++i)
            if (isPlaceholder(section.tokens.at(i)))
                places.append(i);
        QVector<QString> fill(places.size());
        const int n = places.size();
        const int extra = digits.size() - n;
        for (int k = 0; k < n; ++k) {
            const int at = k + extra; // index in digits
            if (at >= 0 && k == 0 && extra > 0)
                fill[k] = latin(digits.left(extra + 1));
            else if (at >= 0)
                fill[k] = QChar(digits.at(at));
            else if (section.tokens.at(places.at(k)).ch == QLatin1Char('0'))
                fill[k] = QStringLiteral("0");
            else if (section.tokens.at(places.at(k)).ch == QLatin1Char('?'))
                fill[k] = QStringLiteral(" ");
        }
        int remaining = 0;
        for (const QString &part : qAsConst(fill))
            for (const QChar c : part)
                remaining += c.isDigit() ? 1 : 0;
        QString out;
        int k = 0;
        for (int i = begin; i < end; ++i) {
            const Token &token = section.tokens.at(i);
            if (!isPlaceholder(token)) {
                if (token.kind != TokenKind::Comma || (token.count != 0 && token.count != -1))
                    out += tokenText(token);
                continue;
            }
            for (const QChar c : qAsConst(fill[k])) {
                out += c;
                if (c.isDigit() && --remaining > 0 && group && remaining % 3 == 0)
                    out += locale.groupSeparator();
            }
            ++k;
        }
        return out;
    }

    // The decimal placeholders of tokens[begin, end): trailing zeros vanish under "#"
    // and turn blank under "?".
    QString fractionPart(int begin, int end, const QByteArray &digits) const
    {
        QVector<int> places;
        for (int i = begin; i < end; ++i)
            if (isPlaceholder(section.tokens.at(i)))
                places.append(i);
        QVector<QString> fill(places.size());
        bool trailing = true;
        for (int k = places.size() - 1; k >= 0; --k) {
            const QChar ch = section.tokens.at(places.at(k)).ch;
            const char digit = k < digits.size() ? digits.at(k) : '0';
            if (trailing && digit == '0' && ch == QLatin1Char('#')) {
                fill[k] = QString();
            } else if (trailing && digit == '0' && ch == QLatin1Char('?')) {
                fill[k] = QStringLiteral(" ");
            } else {
                trailing = false;
                fill[k] = QChar(digit);
            }
        }
        QString out;
        int k = 0;
        for (int i = begin; i < end; ++i) {
            const Token &token = section.tokens.at(i);
            if (isPlaceholder(token))
                out += fill[k++];
            else if (!(token.kind == TokenKind::Comma && token.count == -1))
                out += tokenText(token);
        }
        return out;
    }

    QString literalsAndGeneral(int begin, int end, double value) const
    {
        QString out;
        for (int i = begin; i < end; ++i) {
            const Token &token = section.tokens.at(i);
            if (token.kind == TokenKind::General)
                out += ExcelNumberFormat::general(value, locale);
            else if (!(token.kind == TokenKind::Comma && (token.count == -1 || token.count == 0)))
                out += tokenText(token);
        }
        return out;
    }

    QString plain(double value, int begin, int end) const
    {
        int point = -1;
        int decimals = 0;
        for (int i = begin; i < end; ++i) {
            if (section.tokens.at(i).kind == TokenKind::Point)
                point = i;
            else if (point >= 0 && isPlaceholder(section.tokens.at(i)))
                ++decimals;
        }
        QByteArray integer;
        QByteArray fraction;
        roundDecimal(toDecimal(value), decimals, &integer, &fraction);
        const int integerEnd = point < 0 ? end : point;
        bool anyIntegerPlace = false;
        for (int i = begin; i < integerEnd; ++i)
            anyIntegerPlace = anyIntegerPlace || isPlaceholder(section.tokens.at(i));
        QString out;
        if (anyIntegerPlace) {
            out = integerPart(begin, integerEnd, integer, section.grouping);
        } else {
            // No integer placeholder: digits go in front of the point (".00" shows 12.50).
            out = literalsAndGeneral(begin, integerEnd, value);
            if (point >= 0)
                out += latin(integer);
        }
        if (point >= 0) {
            out += locale.decimalPoint();
            out += fractionPart(point + 1, end, fraction);
        }
        return out;
    }

    QString scientific(double value) const
    {
        const int e = section.exponent;
        int integerPlaces = 0;
        int decimals = 0;
        bool afterPoint = false;
        QChar firstPlace;
        for (int i = 0; i < e; ++i) {
            const Token &token = section.tokens.at(i);
            if (token.kind == TokenKind::Point)
                afterPoint = true;
            else if (isPlaceholder(token) && afterPoint)
                ++decimals;
            else if (isPlaceholder(token) && integerPlaces++ == 0)
                firstPlace = token.ch;
        }
        const Decimal d = toDecimal(value);
        int exponent = 0;
        const bool engineering = integerPlaces > 1 && firstPlace == QLatin1Char('#');
        if (!d.digits.isEmpty()) {
            const int magnitude = d.point - 1;
            if (engineering)
                exponent = int(std::floor(double(magnitude) / integerPlaces)) * integerPlaces;
            else
                exponent = magnitude - qMax(integerPlaces, 1) + 1;
        }
        QByteArray integer;
        QByteArray fraction;
        for (int attempt = 0; attempt < 2; ++attempt) {
            Decimal shifted = d;
            shifted.point -= exponent;
            roundDecimal(shifted, decimals, &integer, &fraction);
            const int limit = engineering ? integerPlaces : qMax(integerPlaces, 1);
            if (integer.size() <= limit)
                break;
            exponent += engineering ? integerPlaces : 1; // 9.99 rounded up to 10.0
        }
        QString out = integerPart(0, e, integer, false);
        int point = -1;
        for (int i = 0; i < e && point < 0; ++i)
            if (section.tokens.at(i).kind == TokenKind::Point)
                point = i;
        if (point >= 0) {
            out = integerPart(0, point, integer, false) + locale.decimalPoint()
                + fractionPart(point + 1, e, fraction);
        }
        const QString mark = section.tokens.at(e).text;
        out += mark.at(0);
        if (exponent < 0)
            out += QLatin1Char('-');
        else if (mark.at(1) == QLatin1Char('+'))
            out += QLatin1Char('+');
        const QByteArray exponentDigits = QByteArray::number(std::abs(exponent));
        out += integerPart(
            e + 1, section.tokens.size(), exponentDigits == "0" ? QByteArray() : exponentDigits, false);
        return out;
    }

    QString fractionFormat(double value) const
    {
        const QVector<Token> &tokens = section.tokens;
        int slash = -1;
        for (int i = 1; i + 1 < tokens.size() && slash < 0; ++i)
            if (tokens.at(i).kind == TokenKind::Slash && isPlaceholder(tokens.at(i - 1)))
                slash = i;
        int numeratorBegin = slash;
        while (numeratorBegin > 0 && isPlaceholder(tokens.at(numeratorBegin - 1)))
            --numeratorBegin;
        int denominatorEnd = slash + 1;
        bool fixed = tokens.at(denominatorEnd).kind == TokenKind::DigitLiteral;
        QByteArray fixedDigits;
        while (denominatorEnd < tokens.size()
            && (fixed ? (tokens.at(denominatorEnd).kind == TokenKind::DigitLiteral
                    || (tokens.at(denominatorEnd).kind == TokenKind::Placeholder
                        && tokens.at(denominatorEnd).ch == QLatin1Char('0')))
                      : isPlaceholder(tokens.at(denominatorEnd)))) {
            if (fixed)
                fixedDigits.append(tokens.at(denominatorEnd).kind == TokenKind::DigitLiteral
                        ? tokens.at(denominatorEnd).ch.toLatin1()
                        : '0');
            ++denominatorEnd;
        }
        bool wholePart = false;
        for (int i = 0; i < numeratorBegin; ++i)
            wholePart = wholePart || isPlaceholder(tokens.at(i));
        double whole = 0;
        double rest = value;
        if (wholePart) {
            whole = std::floor(value);
            rest = value - whole;
        }
        qint64 numerator = 0;
        qint64 denominator = 1;
        if (fixed) {
            denominator = qMax<qint64>(1, fixedDigits.toLongLong());
            numerator = qint64(std::floor(rest * denominator + 0.5));
        } else {
            const int places = qMin(denominatorEnd - slash - 1, 4);
            const qint64 largest = qint64(std::pow(10, places)) - 1;
            double best = 2;
            for (qint64 d = 1; d <= largest; ++d) {
                const qint64 n = qint64(std::floor(rest * d + 0.5));
                const double error = std::fabs(rest - double(n) / d);
                if (error < best) {
                    best = error;
                    numerator = n;
                    denominator = d;
                }
                if (error == 0)
                    break;
            }
        }
        if (wholePart && numerator == denominator) {
            whole += 1;
            numerator = 0;
        }
        QString out;
        const QByteArray wholeDigits = whole == 0 ? QByteArray() : QByteArray::number(qint64(whole));
        if (wholePart) {
            // A value below one shows no whole part, except zero itself.
            const QByteArray shown = (whole == 0 && numerator == 0) ? QByteArray("0") : wholeDigits;
            out += integerPart(0, numeratorBegin, shown, section.grouping);
        } else {
            out += literalsAndGeneral(0, numeratorBegin, value);
        }
        if (wholePart && numerator == 0) {
            // The fraction is left blank, keeping its width so that columns align.
            const int width = (slash - numeratorBegin) + 1 + (denominatorEnd - slash - 1);
            out += QString(width, QLatin1Char(' '));
        } else {
            out += integerPart(numeratorBegin, slash, QByteArray::number(numerator), false);
            out += QLatin1Char('/');
            if (fixed) {
                out += latin(fixedDigits);
            } else {
                QString denominatorText = QString::number(denominator);
                for (int i = slash + 1 + denominatorText.size(); i < denominatorEnd; ++i) {
                    const QChar ch = tokens.at(i).ch;
                    if (ch == QLatin1Char('?'))
                        denominatorText += QLatin1Char(' ');
                    else if (ch == QLatin1Char('0'))
                        denominatorText += QLatin1Char('0');
                }
                out += denominatorText;
            }
        }
        out += literalsAndGeneral(denominatorEnd, tokens.size(), value);
        return out;
    }

    QString render(double value) const
    {
        value *= std::pow(100.0, section.percents);
        value /= std::pow(1000.0, section.scaling);
        if (section.fraction)
            return fractionFormat(value);
        if (section.exponent >= 0)
            return scientific(value);
        return plain(value, 0, section.tokens.size());
    }
};

// ---- Dates ----

struct ExcelDate
{
    int year = 1900;
    int month = 1;
    int day = 0;
    int weekday = 6; // 0 Sunday to 6 Saturday
};

constexpr qint64 lastSerial1900 = 2958465; // 9999-12-31

bool serialToDate(qint64 days, bool date1904, ExcelDate *out)
{
    if (days < 0)
        return false;
    if (date1904) {
        if (days + 1462 > lastSerial1900)
            return false;
        const QDate date = QDate(1904, 1, 1).addDays(days);
        *out = {date.year(), date.month(), date.day(), date.dayOfWeek() % 7};
        return true;
    }
    if (days > lastSerial1900)
        return false;
    // Excel's calendar counts a 29 February 1900; its weekdays follow from serial 1
    // being a Sunday.
    const int weekday = int((days + 6) % 7);
    if (days == 0) {
        *out = {1900, 1, 0, weekday};
    } else if (days == 60) {
        *out = {1900, 2, 29, weekday};
    } else {
        const QDate date = days < 60 ? QDate(1899, 12, 31).addDays(days) : QDate(1899, 12, 30).addDays(days);
        *out = {date.year(), date.month(), date.day(), weekday};
    }
    return true;
}

QString padded(qint64 number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

} // namespace

ExcelNumberFormat::ExcelNumberFormat(const QLocale &locale, bool date1904)
    : m_locale(locale)
    , m_date1904(date1904)
{ }

ExcelNumberFormat::~ExcelNumberFormat() = default;

const ExcelNumberFormat::Parsed *ExcelNumberFormat::parsed(const QString &code)
{
    auto it = m_cache.constFind(code);
    if (it != m_cache.constEnd())
        return it.value().get();
    auto result = std::make_shared<Parsed>();
    const QStringList texts = splitSections(code);
    if (texts.size() > 4)
        result->ok = false;
    for (int i = 0; i < texts.size() && result->ok; ++i) {
        Section section;
        QString text = texts.at(i);
        // Chinese versions of Excel name the General format "G/通用格式".
        if (text == QString::fromUtf8("G/通用格式"))
            text = QStringLiteral("General");
        result->ok = parseSection(text, section);
        result->sections.append(section);
    }
    if (result->sections.isEmpty())
        result->ok = false;
    m_cache.insert(code, result);
    return result.get();
}

QString ExcelNumberFormat::format(double value, const QString &code)
{
    if (code.isEmpty() || code.compare(QLatin1String("General"), Qt::CaseInsensitive) == 0)
        return general(value, m_locale);
    const Parsed *p = parsed(code);
    if (!p->ok || !std::isfinite(value)) {
        ++m_fallbacks;
        return general(value, m_locale);
    }
    // The number sections: up to three, not counting a trailing text section.
    int count = qMin(p->sections.size(), 3);
    if (count > 1 && p->sections.at(count - 1).kind == SectionKind::Text)
        --count;
    const bool conditional = p->sections.at(0).compare != Compare::None
        || (count > 1 && p->sections.at(1).compare != Compare::None);
    int chosen = -1;
    bool absolute = false;
    if (!conditional) {
        if (value < 0 && count >= 2) {
            chosen = 1;
            absolute = true;
        } else if (value == 0 && count >= 3) {
            chosen = 2;
        } else {
            chosen = 0;
        }
    } else {
        for (int i = 0; i < count && chosen < 0; ++i) {
            const Section &section = p->sections.at(i);
            Compare compare = section.compare;
            double operand = section.operand;
            if (compare == Compare::None && i == 0) {
                compare = Compare::Greater;
            } else if (compare == Compare::None && i == 1) {
                // Second of two is "everything else"; of three, the negatives.
                compare = count == 2 ? Compare::None : Compare::Less;
            }
            if (i == 2 || matches(compare, operand, value)) {
                chosen = i;
                // A section for negative values shows them without their sign.
                absolute = (compare == Compare::Less && operand <= 0)
                    || (compare == Compare::LessEqual && operand < 0)
                    || (i == 1 && section.compare == Compare::None && count == 3);
            }
        }
        if (chosen < 0) {
            ++m_fallbacks;
            return general(value, m_locale);
        }
    }
    const Section &section = p->sections.at(chosen);
    const double shown = absolute ? std::fabs(value) : value;
    switch (section.kind) {
    case SectionKind::Empty:
        return QString();
    case SectionKind::General:
        return general(shown, m_locale);
    case SectionKind::Text: {
        // A number shown through a text section keeps its General form in place of "@".
        QString out;
        for (const Token &token : section.tokens)
            out += token.kind == TokenKind::At ? general(shown, m_locale) : tokenText(token);
        return out;
    }
    case SectionKind::Number: {
        const NumberRenderer renderer {section, m_locale};
        const QString text = renderer.render(std::fabs(shown));
        return shown < 0 ? QLatin1Char('-') + text : text;
    }
    case SectionKind::Date:
        break;
    }
    // Dates and times: rounded to the shown fraction of a second before splitting.
    if (shown < 0) {
        ++m_fallbacks;
        return general(value, m_locale);
    }
    qint64 scale = 1;
    for (int i = 0; i < section.subSecondDigits; ++i)
        scale *= 10;
    const double units = std::floor(shown * 86400.0 * scale + 0.5);
    if (units > double(lastSerial1900 + 1) * 86400.0 * scale) {
        ++m_fallbacks;
        return general(value, m_locale);
    }
    const qint64 total = qint64(units);
    const qint64 perDay = 86400 * scale;
    ExcelDate date;
    if (!serialToDate(total / perDay, m_date1904, &date)) {
        ++m_fallbacks;
        return general(value, m_locale);
    }
    const qint64 totalSeconds = total / scale;
    const qint64 secondOfDay = totalSeconds % 86400;
    const int hour = int(secondOfDay / 3600);
    const int minute = int(secondOfDay / 60 % 60);
    const int second = int(secondOfDay % 60);
    const qint64 subSecond = total % scale;
    QString out;
    for (const Token &token : section.tokens) {
        switch (token.kind) {
        case TokenKind::Year:
            out += token.count <= 2 ? padded(date.year % 100, 2) : padded(date.year, 4);
            break;
        case TokenKind::Month:
            if (token.count == 1)
                out += QString::number(date.month);
            else if (token.count == 2)
                out += padded(date.month, 2);
            else if (token.count == 3)
                out += m_locale.monthName(date.month, QLocale::ShortFormat);
            else if (token.count == 5)
                out += m_locale.monthName(date.month, QLocale::LongFormat).left(1);
            else
                out += m_locale.monthName(date.month, QLocale::LongFormat);
            break;
        case TokenKind::Minute:
            out += token.count == 1 ? QString::number(minute) : padded(minute, 2);
            break;
        case TokenKind::Day: {
            const int qtDay = date.weekday == 0 ? 7 : date.weekday;
            if (token.count == 1)
                out += QString::number(date.day);
            else if (token.count == 2)
                out += padded(date.day, 2);
            else if (token.count == 3)
                out += m_locale.dayName(qtDay, QLocale::ShortFormat);
            else
                out += m_locale.dayName(qtDay, QLocale::LongFormat);
            break;
        }
        case TokenKind::Hour: {
            int shownHour = hour;
            if (section.hour12)
                shownHour = hour % 12 == 0 ? 12 : hour % 12;
            out += token.count == 1 ? QString::number(shownHour) : padded(shownHour, 2);
            break;
        }
        case TokenKind::Second:
            out += token.count == 1 ? QString::number(second) : padded(second, 2);
            break;
        case TokenKind::SubSecond: {
            const QString digits = padded(subSecond, section.subSecondDigits);
            out += m_locale.decimalPoint() + digits.left(token.count);
            break;
        }
        case TokenKind::AmPm: {
            const bool pm = hour >= 12;
            if (token.text.size() == 3) {
                const QChar letter = pm ? token.text.at(2) : token.text.at(0);
                out += letter;
            } else {
                const bool lower = token.text.at(0).isLower();
                const QString text = pm ? QStringLiteral("PM") : QStringLiteral("AM");
                out += lower ? text.toLower() : text;
            }
            break;
        }
        case TokenKind::ElapsedHours:
            out += padded(totalSeconds / 3600, token.count);
            break;
        case TokenKind::ElapsedMinutes:
            out += padded(totalSeconds / 60, token.count);
            break;
        case TokenKind::ElapsedSeconds:
            out += padded(totalSeconds, token.count);
            break;
        default:
            out += tokenText(token);
            break;
        }
    }
    return out;
}

QString ExcelNumberFormat::formatText(const QString &text, const QString &code)
{
    if (code.isEmpty())
        return text;
    const Parsed *p = parsed(code);
    if (!p->ok)
        return text;
    const Section *section = nullptr;
    if (p->sections.size() == 4)
        section = &p->sections.at(3);
    else if (p->sections.last().kind == SectionKind::Text)
        section = &p->sections.last();
    if (!section)
        return text;
    QString out;
    for (const Token &token : section->tokens)
        out += token.kind == TokenKind::At ? text : tokenText(token);
    return out;
}

QString ExcelNumberFormat::fallbackMessage() const
{
    if (m_fallbacks == 0)
        return QString();
    return QCoreApplication::translate("ExcelNumberFormat",
        "%1 cell(s) used number formats that could not be shown as in Excel "
        "and were read with the General format")
        .arg(m_fallbacks);
}

QString ExcelNumberFormat::general(double value, const QLocale &locale)
{
    if (!std::isfinite(value))
        return QString::number(value);
    if (value == 0)
        return QStringLiteral("0");
    const QString sign = value < 0 ? QStringLiteral("-") : QString();
    const double magnitude = std::fabs(value);
    if (magnitude < 1e15 && magnitude == std::floor(magnitude))
        return sign + QString::number(magnitude, 'f', 0);
    const Decimal d = toDecimal(magnitude);
    const int exponent = d.point - 1;
    const QString digits = latin(d.digits);
    if (exponent >= -5 && exponent < 15) {
        if (d.point <= 0)
            return sign + QLatin1Char('0') + locale.decimalPoint() + QString(-d.point, QLatin1Char('0'))
                + digits;
        QString integer = digits.left(d.point);
        while (integer.size() < d.point)
            integer += QLatin1Char('0');
        const QString fraction = digits.mid(d.point);
        return sign + integer + (fraction.isEmpty() ? QString() : locale.decimalPoint() + fraction);
    }
    QString mantissa = digits.left(1);
    if (digits.size() > 1)
        mantissa += locale.decimalPoint() + digits.mid(1);
    return sign + mantissa + QLatin1Char('E') + (exponent < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        + padded(std::abs(exponent), 2);
}

bool ExcelNumberFormat::isDateCode(const QString &code)
{
    if (code.isEmpty())
        return false;
    Section section;
    return parseSection(splitSections(code).constFirst(), section) && section.kind == SectionKind::Date;
}

QString ExcelNumberFormat::builtInCode(int id, const QLocale &locale)
{
    QString currency = locale.currencySymbol(QLocale::CurrencySymbol);
    if (currency.isEmpty())
        currency = QStringLiteral("$");
    currency = QLatin1Char('"') + currency + QLatin1Char('"');
    QString shortDate = excelCodeFromDateFormat(locale.dateFormat(QLocale::ShortFormat));
    if (!shortDate.contains(QLatin1String("yyyy")))
        shortDate.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    if ((id >= 27 && id <= 36) || (id >= 50 && id <= 58))
        id = 14;
    switch (id) {
    case 0:
        return QStringLiteral("General");
    case 1:
        return QStringLiteral("0");
    case 2:
        return QStringLiteral("0.00");
    case 3:
        return QStringLiteral("#,##0");
    case 4:
        return QStringLiteral("#,##0.00");
    case 5:
        return QStringLiteral("%1#,##0_);\\(%1#,##0\\)").arg(currency);
    case 6:
        return QStringLiteral("%1#,##0_);[Red]\\(%1#,##0\\)").arg(currency);
    case 7:
        return QStringLiteral("%1#,##0.00_);\\(%1#,##0.00\\)").arg(currency);
    case 8:
        return QStringLiteral("%1#,##0.00_);[Red]\\(%1#,##0.00\\)").arg(currency);
    case 9:
        return QStringLiteral("0%");
    case 10:
        return QStringLiteral("0.00%");
    case 11:
        return QStringLiteral("0.00E+00");
    case 12:
        return QStringLiteral("# ?/?");
    case 13:
        return QStringLiteral("# ?\?/??");
    case 14:
        return shortDate;
    case 15:
        return QStringLiteral("d-mmm-yy");
    case 16:
        return QStringLiteral("d-mmm");
    case 17:
        return QStringLiteral("mmm-yy");
    case 18:
        return QStringLiteral("h:mm AM/PM");
    case 19:
        return QStringLiteral("h:mm:ss AM/PM");
    case 20:
        return QStringLiteral("h:mm");
    case 21:
        return QStringLiteral("h:mm:ss");
    case 22:
        return shortDate + QStringLiteral(" h:mm");
    case 37:
        return QStringLiteral("#,##0 ;(#,##0)");
    case 38:
        return QStringLiteral("#,##0 ;[Red](#,##0)");
    case 39:
        return QStringLiteral("#,##0.00;(#,##0.00)");
    case 40:
        return QStringLiteral("#,##0.00;[Red](#,##0.00)");
    case 41:
        return QStringLiteral("_(* #,##0_);_(* \\(#,##0\\);_(* \"-\"_);_(@_)");
    case 42:
        return QStringLiteral("_(%1* #,##0_);_(%1* \\(#,##0\\);_(%1* \"-\"_);_(@_)").arg(currency);
    case 43:
        return QStringLiteral("_(* #,##0.00_);_(* \\(#,##0.00\\);_(* \"-\"??_);_(@_)");
    case 44:
        return QStringLiteral("_(%1* #,##0.00_);_(%1* \\(#,##0.00\\);_(%1* \"-\"??_);_(@_)").arg(currency);
    case 45:
        return QStringLiteral("mm:ss");
    case 46:
        return QStringLiteral("[h]:mm:ss");
    case 47:
        return QStringLiteral("mmss.0");
    case 48:
        return QStringLiteral("##0.0E+0");
    case 49:
        return QStringLiteral("@");
    default:
        return QString();
    }
}

QString ExcelNumberFormat::excelCodeFromDateFormat(const QString &dateFormat)
{
    QString out;
    QString literal;
    auto flush = [&]() {
        if (literal.isEmpty())
            return;
        out += QLatin1Char('"') + literal + QLatin1Char('"');
        literal.clear();
    };
    const QString &f = dateFormat;
    for (int i = 0; i < f.size();) {
        const QChar c = f.at(i);
        const int length = [&]() {
            int end = i;
            while (end < f.size() && f.at(end) == c)
                ++end;
            return end - i;
        }();
        if (c == QLatin1Char('\'')) {
            // Quoted text; two quotes are one quote.
            if (i + 1 < f.size() && f.at(i + 1) == QLatin1Char('\'')) {
                literal += QLatin1Char('\'');
                i += 2;
                continue;
            }
            const int end = f.indexOf(QLatin1Char('\''), i + 1);
            const QString text = f.mid(i + 1, end < 0 ? -1 : end - i - 1);
            for (const QChar t : text) {
                if (t == QLatin1Char('"')) {
                    flush();
                    out += QStringLiteral("\\\"");
                } else {
                    literal += t;
                }
            }
            i = end < 0 ? f.size() : end + 1;
            continue;
        }
        QString token;
        if (c == QLatin1Char('d'))
            token = QString(qMin(length, 4), QLatin1Char('d'));
        else if (c == QLatin1Char('M'))
            token = QString(qMin(length, 4), QLatin1Char('m'));
        else if (c == QLatin1Char('y'))
            token = length <= 2 ? QStringLiteral("yy") : QStringLiteral("yyyy");
        else if (c == QLatin1Char('h') || c == QLatin1Char('H'))
            token = length == 1 ? QStringLiteral("h") : QStringLiteral("hh");
        else if (c == QLatin1Char('m'))
            token = QStringLiteral("mm");
        else if (c == QLatin1Char('s'))
            token = QStringLiteral("ss");
        else if (c == QLatin1Char('z'))
            token = QStringLiteral("000");
        else if (c == QLatin1Char('A') || c == QLatin1Char('a'))
            token = c == QLatin1Char('A') ? QStringLiteral("AM/PM") : QStringLiteral("am/pm");
        else if (c == QLatin1Char('t'))
            token = QStringLiteral(""); // time zones have no Excel form
        if (token.isNull()) {
            if (c == QLatin1Char('.') && i + 1 < f.size() && f.at(i + 1) == QLatin1Char('z')) {
                flush();
                out += QLatin1Char('.');
            } else if (c == QLatin1Char('"')) {
                flush();
                out += QStringLiteral("\\\"");
            } else if (c == QLatin1Char(':') || c == QLatin1Char(' ')) {
                // Time separators and blanks read as themselves in every Excel.
                flush();
                out += c;
            } else {
                literal += c;
            }
            ++i;
            continue;
        }
        flush();
        out += token;
        // "AP" is one token; "A" alone too.
        if (c == QLatin1Char('A') || c == QLatin1Char('a'))
            i += (i + 1 < f.size() && f.at(i + 1).toLower() == QLatin1Char('p')) ? 2 : 1;
        else
            i += length;
    }
    flush();
    return out;
}

QString ExcelNumberFormat::dateFormatFromExcelCode(const QString &code)
{
    Section section;
    const QStringList sections = splitSections(code);
    if (!parseSection(sections.constFirst(), section) || section.kind != SectionKind::Date)
        return QString();
    QString out;
    auto literal = [&out](const QString &text) {
        QString run;
        for (const QChar c : text) {
            if (c == QLatin1Char('\''))
                run += QStringLiteral("''");
            else
                run += c;
        }
        bool letters = false;
        for (const QChar c : text)
            letters = letters || c.isLetter();
        out += letters ? QLatin1Char('\'') + run + QLatin1Char('\'') : run;
    };
    for (const Token &token : qAsConst(section.tokens)) {
        switch (token.kind) {
        case TokenKind::Year:
            out += token.count <= 2 ? QStringLiteral("yy") : QStringLiteral("yyyy");
            break;
        case TokenKind::Month:
            out += QString(qMin(token.count, 4), QLatin1Char('M'));
            break;
        case TokenKind::Minute:
        case TokenKind::ElapsedMinutes:
            out += QString(qMin(token.count, 2), QLatin1Char('m'));
            break;
        case TokenKind::Day:
            out += QString(qMin(token.count, 4), QLatin1Char('d'));
            break;
        case TokenKind::Hour:
        case TokenKind::ElapsedHours:
            out += QString(qMin(token.count, 2), QLatin1Char('h'));
            break;
        case TokenKind::Second:
        case TokenKind::ElapsedSeconds:
            out += QString(qMin(token.count, 2), QLatin1Char('s'));
            break;
        case TokenKind::SubSecond:
            out += QStringLiteral(".zzz");
            break;
        case TokenKind::AmPm:
            out += token.text.at(0).isLower() ? QStringLiteral("ap") : QStringLiteral("AP");
            break;
        default:
            literal(tokenText(token));
            break;
        }
    }
    return out;
}

double ExcelNumberFormat::serialFromDateTime(const QDateTime &dateTime, bool date1904)
{
    const QDate date = dateTime.date();
    const double time = dateTime.time().isValid() ? dateTime.time().msecsSinceStartOfDay() / 86400000.0 : 0;
    if (date1904)
        return double(QDate(1904, 1, 1).daysTo(date)) + time;
    const QDate first(1900, 3, 1);
    const qint64 days = date < first ? QDate(1899, 12, 31).daysTo(date) : QDate(1899, 12, 30).daysTo(date);
    return double(days) + time;
}

QDateTime ExcelNumberFormat::dateTimeFromSerial(double serial, bool date1904, bool *ok)
{
    if (ok)
        *ok = false;
    if (!std::isfinite(serial) || serial < 0)
        return QDateTime();
    const double ms = std::floor(serial * 86400000.0 + 0.5);
    const qint64 total = qint64(ms);
    const qint64 days = total / 86400000;
    const QTime time = QTime::fromMSecsSinceStartOfDay(int(total % 86400000));
    QDate date;
    if (date1904) {
        if (days + 1462 > lastSerial1900)
            return QDateTime();
        date = QDate(1904, 1, 1).addDays(days);
    } else {
        if (days > lastSerial1900 || days == 60)
            return QDateTime();
        date = days < 60 ? QDate(1899, 12, 31).addDays(days) : QDate(1899, 12, 30).addDays(days);
    }
    if (ok)
        *ok = true;
    return QDateTime(date, time);
}
