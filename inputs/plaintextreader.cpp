#include "plaintextreader.h"

#include "delimitedreader.h"

bool readPlainText(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report)
{
    return DelimitedReader::readUnquoted(source, options, QChar(), table, report);
}
