#pragma once

#include "inputoptions.h"

class Dataset;
class TextSource;

// Delimited text: the delimiter and quoting guesses, the quoted reader (a state machine
// over blocks of characters) and the unquoted reader (one line at a time).
namespace DelimitedReader {

enum Delimiter : int {
    Automatic = 0,
    Comma = 1,
    Semicolon = 2,
    Colon = 3,
    Tab = 4,
    Pipe = 5,
    Caret = 6,
    Space = 7,
    Custom = 8,
    UnitSeparator = 9,
};
enum Quoting : int { QuotingAutomatic = 0, Quoted = 1, Unquoted = 2 };

// The character of a delimiter value; a value not listed, or Custom without a character,
// is the comma.
QChar character(int delimiter, QChar custom);
// "Comma (,)", ...
QString label(int delimiter);
// The delimiter that sample uses most, among comma, semi-colon, pipe, caret, tab and unit
// separator (the first of those that tie; comma when none occurs). Adds its two lines.
int guess(const QString &sample, ReadReport &report);
// Rows at line breaks, cells at the delimiter, quotes as text; a null delimiter makes
// each line one cell.
bool readUnquoted(
    TextSource &source, const InputOptions &options, QChar delimiter, Dataset &table, ReadReport &report);

} // namespace DelimitedReader

bool readDelimited(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report);
