#pragma once

#include "core/dataset.h"
#include "inputs/inputoptions.h"

// Reads JSON text into a table of records: the elements of a top-level array, of the
// largest array of objects under a top-level object, or each value of JSON Lines. Objects
// are flattened into dotted column names and number texts are kept exactly as written.
// On failure the table is cleared and the first warning says what and where.
bool readJson(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report);
