#pragma once

#include "flow/documentelement.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class GraphScene;
class Node;
class NodeFactory;
class QMimeData;

// One filled cell of the batch table: row counted from 0, the item alias it belongs to,
// and its value.
struct BatchValue
{
    int row = 0;
    QString alias;
    QString value;
    friend bool operator==(const BatchValue &a, const BatchValue &b)
    {
        return a.row == b.row && a.alias == b.alias && a.value == b.value;
    }
};

// The batch table and its log settings, as a document stores them.
struct DocumentBatch
{
    QList<BatchValue> values;
    int verbosity = 2; // 0 "Silent" to 4 "Maximum"
    bool logEnabled = false;
    QString logPath;
    int logMode = 0; // 0 append, 1 overwrite
    friend bool operator==(const DocumentBatch &a, const DocumentBatch &b)
    {
        return a.values == b.values && a.verbosity == b.verbosity && a.logEnabled == b.logEnabled
            && a.logPath == b.logPath && a.logMode == b.logMode;
    }
};

// What a document holds besides its items; filled by a read, given to a save.
struct DocumentProperties
{
    int version = 84; // of the file read; a save always writes the current one
    QString locale; // a locale name; empty when the file names none
    QString id; // document id; empty for none
    bool snapToGrid = false;
    QString notes;
    QString docPath; // where the file was when it was last saved
    bool autoRun = true;
    DocumentBatch batch;

    // Set by a read: the file comes from a later version of the program, or the read
    // dropped something, so that saving would change the file.
    bool laterVersion = false;
    bool changed = false;
};

class DocumentReadContext;

// How one kind of item is written to and read from its element. The document writes the
// groups in a fixed order (inputs, transforms, outputs, charts, notes); the application
// registers the types whose classes the flow doesn't know.
struct DocumentItemType
{
    QString group; // "inputs"
    QString element; // "input"
    QString nodeTypeName; // Node::typeName() of the items this type writes, and the
                          // factory name that makes one unless create says otherwise
    // Writes every attribute and child of the node's element, id and position included,
    // in the document's order.
    std::function<void(const Node &node, DocumentElement &element)> write;
    // Makes the node that the element describes, or returns nullptr after telling the
    // context why (an unknown transform). Empty: the factory makes nodeTypeName.
    std::function<Node *(const DocumentElement &element, DocumentReadContext &context)> create;
    // Sets the node from its element, everything but its id. Work that must wait until
    // the connections exist is handed to the context's defer().
    std::function<void(Node &node, const DocumentElement &element, DocumentReadContext &context)> read;
};

// What an item's read function may ask while a document is read.
class DocumentReadContext
{
public:
    // The version of the file being read.
    int version() const { return m_version; }
    const NodeFactory *factory() const { return m_factory; }
    // A stored input path, or the path with the same relation to the current document
    // as it had to the saved one, when only that one exists.
    QString repairedPath(const QString &storedPath) const;
    // Runs once all items are made and connected, in the order handed over.
    void defer(const std::function<void()> &work) { m_deferred << work; }
    // A transform the read skipped: deprecated ones are told apart by name.
    void addSkippedTransform(const QString &name);

    // For the reader itself.
    void setVersion(int version) { m_version = version; }
    void setFactory(const NodeFactory *factory) { m_factory = factory; }
    void setPaths(const QString &savedDocumentPath, const QString &currentDocumentPath);
    void runDeferred();
    // "The following deprecated transforms were not added:" and the unknown ones, or empty.
    QString skippedTransformsText() const;

private:
    int m_version = 84;
    const NodeFactory *m_factory = nullptr;
    QString m_savedDocumentPath;
    QString m_currentDocumentPath;
    QList<std::function<void()>> m_deferred;
    QStringList m_skippedOrder;
    QHash<QString, int> m_skippedCounts;
};

// The flow document: the registry of item types and the reading and writing of whole
// documents and of the clipboard payload.
namespace Document {

constexpr int CurrentVersion = 84;
QString documentType(); // "Tabrelle"
QString rootElementName(); // "root"
QString mimeType(); // "application/tabrelle-transformfile"
QString xmlMimeType(); // "application/xml"

// Item types, and the factory that makes their nodes; filled once at start. Notes are
// known without registration; a group nobody registered is written empty.
void registerItemType(const DocumentItemType &type);
void setNodeFactory(const NodeFactory *factory);
const NodeFactory *nodeFactory();

// The program named in last_saved_by: product name, edition text and version numbers,
// and the user name prefixed when not empty.
void setProgram(const QString &productName, const QString &edition, int major, int minor, int patch);
void setUserName(const QString &userName);
// The clock of last_saved_by; tests fix it so that two saves compare equal.
void setClock(const std::function<QDateTime()> &clock);
// "Tabrelle_Free_v0_1_0_on_Debian_GNU_Linux_12_bookworm_x86_64_at_2024-05-01_10_00_00".
QString lastSavedByText();

// Fills root with meta and every item group down to connections. With selectedOnly,
// only the selected items and the connections whose two ends are both selected.
void writeItems(
    const GraphScene &scene, bool selectedOnly, const DocumentProperties &properties, DocumentElement &root);
// The text of a whole document, batch table included.
QByteArray documentText(const GraphScene &scene, const DocumentProperties &properties);
// Saves through a save file, so that a failed save leaves the old file whole. False with
// "Can't open file '%1' to write.", "Can't save to file. %1" or "Can't commit to file. %1".
bool writeDocument(
    const QString &path, const GraphScene &scene, const DocumentProperties &properties, QString *errorText);

// Reads a document into the scene. False with the error text when the file can't be
// opened, is empty, isn't a well-formed document of this program ("Format error ..."),
// has another document type or no root; a failure leaves the scene as it was. True
// otherwise, whatever the attributes hold: each missing or unreadable one takes its
// default. information gets what the read dropped (skipped transforms, charts), and
// properties the document's own settings, with laterVersion set for a newer file.
bool readDocument(const QString &path, GraphScene &scene, DocumentProperties *properties, QString *errorText,
    QString *information);
// The same, from document text; currentPath is where the document now is (moved input
// files are looked for relative to it), empty for none.
bool readDocumentText(const QByteArray &text, const QString &currentPath, GraphScene &scene,
    DocumentProperties *properties, QString *errorText, QString *information);

// "This document was created with a later version of the software. ..."
QString laterVersionMessage();

// The clipboard payload of copy and cut: the selected items and the connections between
// them, offered under mimeType() and xmlMimeType().
QByteArray copyText(const GraphScene &scene);
// Adds the items of a payload to the scene with new ids, their connections mapped to the
// new items, and selects them. False with "Incorrect document type pasted." or
// "Paste error=%1 line=%2 col=%3". pasted gets the new nodes in document order.
bool pasteText(const QByteArray &text, GraphScene &scene, QString *errorText, QList<Node *> *pasted = nullptr,
    QString *information = nullptr);

// The same payload as clipboard data, under both mime types; the caller owns it.
QMimeData *copyMimeData(const GraphScene &scene);
// Whether data holds a payload under mimeType().
bool canPaste(const QMimeData *data);
// Pastes the payload of data; without one, false with "Incorrect document type pasted.".
bool pasteMimeData(const QMimeData *data, GraphScene &scene, QString *errorText,
    QList<Node *> *pasted = nullptr, QString *information = nullptr);

// For the headless run and the window: reads path into the scene; errorText gets why the
// read failed, readWarnings what the read dropped and the later-version message.
bool openDocument(GraphScene &scene, const QString &path, QString *errorText, QString *readWarnings,
    DocumentProperties *properties = nullptr);

// Positions: pos_v12, a point, and pos, the same two numbers joined with "^" for
// older versions of the program. Reading prefers pos_v12.
void writePosition(const Node &node, DocumentElement &element, bool withOldForm = true);
void readPosition(Node &node, const DocumentElement &element);

} // namespace Document
