#pragma once

#include "flow/document.h"

class OutputNode;

// How an output item is written to its document element and read back.
//
// Three attributes depend on the upstream columns: the files column and the manual
// column lists of Excel and JSON. Until the upstream item has run, the text read for
// them is written back as it was, so that saving a document before its first run
// loses nothing.
namespace OutputDocument {

DocumentItemType itemType();
void write(const OutputNode &node, DocumentElement &element);
void read(OutputNode &node, const DocumentElement &element, DocumentReadContext &context);

} // namespace OutputDocument
