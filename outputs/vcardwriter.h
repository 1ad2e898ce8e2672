#pragma once

#include "outputoptions.h"

#include <QIODevice>
#include <QString>

class Dataset;

// Writes the table as vCards, one per row, into a device that is open and positioned.
// Columns named as the vCard reader names them ("Given name", "Email (work)", "Address (home)
// street", ...) are gathered back into their properties; any other column becomes a
// property of its own name.
bool writeVCard(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);

// A content line folded so that no line passes 75 bytes of UTF-8: each further line starts
// with one blank. No UTF-8 sequence is split.
QString foldVCardLine(const QString &line, const QString &lineEnding);
// A vCard 2.1 value in quoted-printable, the UTF-8 bytes of value encoded after the line's
// prefix (its name and parameters with the ":"), with soft line breaks so that no line passes
// 76 characters.
QString quotedPrintableLine(const QString &prefix, const QString &value, const QString &lineEnding);
