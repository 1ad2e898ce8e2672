#pragma once

#include "flow/document.h"

#include <QList>
#include <QPair>
#include <QString>

class TransformNode;

// How a transform item is written to its document element and read back. Its options are
// held as text and handed to the parameters once the item's connections exist, so that
// column options wait for their upstream columns.
namespace TransformDocument {

// Option name and text form, as read from a document.
using ParameterText = QPair<QString, QString>;

DocumentItemType itemType();
void write(const TransformNode &node, DocumentElement &element);
// Makes the transform item the element names, or nullptr when no transform has that id.
Node *create(const DocumentElement &element, DocumentReadContext &context);
void read(TransformNode &node, const DocumentElement &element, DocumentReadContext &context);

// Brings option texts of older documents up to date: renamed choices and options, and
// the Random maximum that became inclusive.
QList<ParameterText> migrate(const QString &transformId, const QList<ParameterText> &parameters, int version);

} // namespace TransformDocument
