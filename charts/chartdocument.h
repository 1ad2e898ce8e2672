#pragma once

#include "flow/document.h"

class ChartNode;

// How a chart item is written to its document element and read back. Its columns are
// stored as positions in the upstream dataset: the X column as one number and the Y
// columns as a list, resolved once the upstream item has data.
namespace ChartDocument {

DocumentItemType itemType();
void write(const ChartNode &node, DocumentElement &element);
void read(ChartNode &node, const DocumentElement &element, DocumentReadContext &context);

} // namespace ChartDocument
