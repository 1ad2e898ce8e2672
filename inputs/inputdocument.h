#pragma once

#include "flow/document.h"

#include <QStringList>

class InputNode;

// The schema settings an input's element keeps. The read pipeline doesn't use them yet,
// so they ride on the node until it does, and a saved document loses none of them.
struct InputSchemaSettings
{
    QStringList columnNames;
    QStringList missingValues;
    int missingColumns = 0;
    int reorderColumns = 0;
    int extraColumns = 0;
};

// How an input item is written to its document element and read back.
namespace InputDocument {

DocumentItemType itemType();
void write(const InputNode &node, DocumentElement &element);
void read(InputNode &node, const DocumentElement &element, DocumentReadContext &context);

InputSchemaSettings schemaSettings(const InputNode &node);
void setSchemaSettings(InputNode &node, const InputSchemaSettings &settings);

} // namespace InputDocument
