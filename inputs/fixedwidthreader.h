#pragma once

#include "inputoptions.h"

class Dataset;
class TextSource;

// Fixed-width text: lines cut at column widths, given or guessed from the blank
// positions that run through blocks of lines.
namespace FixedWidthReader {

enum Columns : int { Manual = 0, Automatic = 1 };

// The widths that the lines' blank positions suggest; one column of the longest line's
// width when none stand out, none when every line is blank.
QList<int> guessWidths(const QStringList &lines);

} // namespace FixedWidthReader

bool readFixedWidth(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report);
