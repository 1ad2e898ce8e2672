#pragma once

#include "core/dataset.h"
#include "inputs/inputoptions.h"

// Reads vCards (versions 2.1, 3.0 and 4.0) into a table with one row per card, or more
// when repeated properties are read in the long form. Known properties get readable
// columns ("Formatted name", "Phone (work)", "Address (home) street"); others keep their
// names. Fails only when the text holds no card at all.
bool readVCard(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report);
