#pragma once

#include "inputoptions.h"

class Dataset;
class TextSource;

// Plain text: each line is a row of one value; a carriage return inside a line also ends
// a row.
bool readPlainText(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report);
