#pragma once

#include "core/dataset.h"
#include "inputs/inputoptions.h"

#include <QByteArray>

// Reads XML text into a table: the most repeated element with attributes or children is
// the record, and each record's attributes and inner elements become columns named by
// their path ("address.city", "@id"). On failure the table is cleared and the first
// warning says what and where.
bool readXml(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report);

// The text of an XML file's bytes under encoding "Automatic": a byte order mark decides,
// else the XML declaration's encoding, else UTF-8. A declared encoding other than UTF-8 is
// told as information; one that is unknown is told as a warning and UTF-8 is used.
QString decodeXmlBytes(const QByteArray &bytes, ReadReport &report);

// How many bytes at the start of a file hold the declaration, if it has one.
constexpr int XmlDeclarationBytes = 1024;
// The codec that an XML file's first bytes declare, when it isn't UTF-8 and there is no
// byte order mark; empty otherwise. Tells what it found as decodeXmlBytes does.
QString xmlDeclaredCodec(const QByteArray &head, ReadReport &report);
