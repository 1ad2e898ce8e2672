#include "document.h"

#include "flow/connection.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "flow/nodefactory.h"
#include "flow/notenode.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMimeData>
#include <QSaveFile>
#include <QSet>
#include <QSysInfo>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("Document", text);
}

struct Program
{
    QString productName = QStringLiteral("Tabrelle");
    QString edition = QStringLiteral("Free");
    int major = 0;
    int minor = 1;
    int patch = 0;
    QString userName;
};

Program &program()
{
    static Program value;
    return value;
}

std::function<QDateTime()> &saveClock()
{
    static std::function<QDateTime()> value;
    return value;
}

const NodeFactory *&factory()
{
    static const NodeFactory *value = nullptr;
    return value;
}

// The groups in written order; notes are the flow's own.
const QStringList &groupNames()
{
    static const QStringList names {QStringLiteral("inputs"), QStringLiteral("transforms"),
        QStringLiteral("outputs"), QStringLiteral("charts"), QStringLiteral("notes")};
    return names;
}

void writeNote(const Node &node, DocumentElement &element)
{
    const auto &note = static_cast<const NoteNode &>(node);
    element.setInt(QStringLiteral("id"), note.id());
    element.setText(QStringLiteral("comment"), note.comment());
    Document::writePosition(note, element, false);
    element.setColor(QStringLiteral("color"), note.color());
    element.setInt(QStringLiteral("arrow"), note.arrow());
}

void readNote(Node &node, const DocumentElement &element, DocumentReadContext &context)
{
    Q_UNUSED(context)
    auto *note = qobject_cast<NoteNode *>(&node);
    if (!note)
        return;
    note->setText(element.text(QStringLiteral("comment")));
    Document::readPosition(*note, element);
    const QColor color = element.color(QStringLiteral("color"));
    note->setColor(color.isValid() ? color : NoteNode::defaultColor());
    note->setArrow(element.intValue(QStringLiteral("arrow"), 0));
}

QList<DocumentItemType> &itemTypes()
{
    static QList<DocumentItemType> types {
        {QStringLiteral("notes"), QStringLiteral("note"), QStringLiteral("Note"), writeNote,
            [](const DocumentElement &, DocumentReadContext &) -> Node * { return new NoteNode; }, readNote},
    };
    return types;
}

const DocumentItemType *typeForGroup(const QString &group)
{
    for (const DocumentItemType &type : itemTypes()) {
        if (type.group == group)
            return &type;
    }
    return nullptr;
}

void appendMeta(DocumentElement &meta, const QString &name, const QString &value)
{
    meta.appendChild(name).setAttribute(QStringLiteral("value"), DocumentElement::encode(value));
}

QString metaValue(const DocumentElement *meta, const QString &name, const QString &defaultValue)
{
    const DocumentElement *element = meta ? meta->firstChild(name) : nullptr;
    if (!element || !element->hasAttribute(QStringLiteral("value")))
        return defaultValue;
    return element->text(QStringLiteral("value"));
}

int metaInt(const DocumentElement *meta, const QString &name, int defaultValue)
{
    bool ok = false;
    const int value = metaValue(meta, name, QString()).trimmed().toInt(&ok);
    return ok ? value : defaultValue;
}

QString boolText(bool value)
{
    return value ? QStringLiteral("1") : QStringLiteral("0");
}

constexpr int MaximumFileId = 999999999;
// Canvas positions further out than this are taken as unreadable.
constexpr double MaximumCoordinate = 1e7;

QString pluralText(int count, const QString &singular, const QString &plural)
{
    return count == 1 ? singular : plural;
}

QString formatErrorText(const DocumentParseResult &parsed)
{
    return tr(
        "Format error '%1' detected at line %2 column %3.\nContact support if you are sure this a %4 file.")
        .arg(parsed.errorMessage)
        .arg(parsed.errorLine)
        .arg(parsed.errorColumn)
        .arg(program().productName);
}

// An item's id, or -1 for none. Ids past a billion are taken as none, so that the id
// counter, which moves past every id read, can never run over.
int fileIdOf(const DocumentElement &element)
{
    const int id = element.intValue(QStringLiteral("id"), -1);
    return id >= 0 && id <= MaximumFileId ? id : -1;
}

// Makes the items of root in the scene and connects them. With newIds every item gets
// a fresh id (a paste); otherwise each keeps the id it was saved with, unless another
// item already has it. Returns what the read dropped.
QString buildItems(const DocumentElement &root, GraphScene &scene, DocumentReadContext &context, bool newIds,
    QList<Node *> *created, bool *changed)
{
    // The counter moves past every id of the file first, so that an item whose id is
    // taken gets one that no later item of the file claims.
    int largestId = -1;
    for (const QString &group : groupNames()) {
        if (const DocumentElement *groupElement = root.firstChild(group)) {
            for (const DocumentElement &element : groupElement->children())
                largestId = qMax(largestId, fileIdOf(element));
        }
    }
    if (!newIds && largestId >= 0)
        Node::raiseNextId(largestId);

    QSet<int> usedIds;
    if (!newIds) {
        for (const Node *node : scene.nodes())
            usedIds.insert(node->id());
    }
    QHash<int, Node *> byFileId;
    QStringList dropped;
    int chartsNotRead = 0;
    for (const QString &group : groupNames()) {
        const DocumentElement *groupElement = root.firstChild(group);
        if (!groupElement)
            continue;
        const DocumentItemType *type = typeForGroup(group);
        if (!type) {
            if (group == QLatin1String("charts"))
                chartsNotRead += groupElement->childElements(QStringLiteral("chart")).size();
            continue;
        }
        for (const DocumentElement *element : groupElement->childElements(type->element)) {
            Node *node = nullptr;
            if (type->create)
                node = type->create(*element, context);
            else if (factory())
                node = factory()->create(type->nodeTypeName);
            if (!node)
                continue;
            const int fileId = fileIdOf(*element);
            if (type->read)
                type->read(*node, *element, context);
            const bool keepId = !newIds && fileId >= 0 && !usedIds.contains(fileId);
            node->assignId(keepId ? fileId : -1);
            usedIds.insert(node->id());
            if (fileId != -1 && !byFileId.contains(fileId))
                byFileId.insert(fileId, node);
            scene.addNode(node);
            if (created)
                *created << node;
        }
    }

    if (const DocumentElement *connections = root.firstChild(QStringLiteral("connections"))) {
        for (const DocumentElement *element : connections->childElements(QStringLiteral("connection"))) {
            const int startId = element->intValue(QStringLiteral("start_id"), -1);
            const int endId = element->intValue(QStringLiteral("end_id"), -1);
            if (startId == -1 || endId == -1 || startId == endId)
                continue;
            Node *start = byFileId.value(startId);
            Node *end = byFileId.value(endId);
            if (start && end)
                scene.connectNodes(start, end);
        }
    }
    context.runDeferred();

    const QString skipped = context.skippedTransformsText();
    if (!skipped.isEmpty())
        dropped << skipped;
    if (chartsNotRead > 0) {
        const QString items = pluralText(chartsNotRead, tr("item"), tr("items"));
        dropped << tr("%1 chart %2 not read (charts are not supported in this version of %3).\n\nSaving this "
                      ".tflow file from this version will remove the chart %2.")
                       .arg(chartsNotRead)
                       .arg(items, program().productName);
    }
    if (changed && !dropped.isEmpty())
        *changed = true;
    return dropped.join(QStringLiteral("\n\n"));
}

QString absoluteClean(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

QString DocumentReadContext::repairedPath(const QString &storedPath) const
{
    if (storedPath.isEmpty() || m_savedDocumentPath.isEmpty() || m_currentDocumentPath.isEmpty())
        return storedPath;
    const QString saved = absoluteClean(QDir::fromNativeSeparators(m_savedDocumentPath));
    const QString current = absoluteClean(m_currentDocumentPath);
    if (saved == current || QFileInfo::exists(storedPath))
        return storedPath;
    const QString relative =
        QDir(QFileInfo(saved).path()).relativeFilePath(QDir::fromNativeSeparators(storedPath));
    const QString candidate = QDir::cleanPath(QDir(QFileInfo(current).path()).absoluteFilePath(relative));
    return QFileInfo::exists(candidate) ? QDir::toNativeSeparators(candidate) : storedPath;
}

void DocumentReadContext::addSkippedTransform(const QString &name)
{
    if (!m_skippedCounts.contains(name))
        m_skippedOrder << name;
    ++m_skippedCounts[name];
}

void DocumentReadContext::setPaths(const QString &savedDocumentPath, const QString &currentDocumentPath)
{
    m_savedDocumentPath = savedDocumentPath;
    m_currentDocumentPath = currentDocumentPath;
}

void DocumentReadContext::runDeferred()
{
    const QList<std::function<void()>> work = m_deferred;
    m_deferred.clear();
    for (const auto &step : work)
        step();
}

QString DocumentReadContext::skippedTransformsText() const
{
    static const QHash<QString, QString> newer {
        {QStringLiteral("Replace"), QStringLiteral(" - use the newer 'Replace' transform.")},
        {QStringLiteral("Trim"), QStringLiteral(" - use the newer 'Whitespace' transform.")},
        {QStringLiteral("Rename"), QStringLiteral(" - use the newer 'Rename' transform.")},
    };
    QStringList deprecated;
    QStringList unknown;
    for (const QString &name : m_skippedOrder) {
        const int count = m_skippedCounts.value(name);
        const QString line = tr("'%1' (%2 %3)")
                                 .arg(name)
                                 .arg(count)
                                 .arg(pluralText(count, tr("occurrence"), tr("occurrences")));
        if (newer.contains(name))
            deprecated << line + newer.value(name);
        else
            unknown << line;
    }
    QStringList groups;
    if (!deprecated.isEmpty())
        groups << tr("The following deprecated transforms were not added:") + QLatin1Char('\n')
                + deprecated.join(QLatin1Char('\n'));
    if (!unknown.isEmpty())
        groups << tr("The following unknown transforms were not added:") + QLatin1Char('\n')
                + unknown.join(QLatin1Char('\n'));
    return groups.join(QStringLiteral("\n\n"));
}

namespace Document {

QString documentType()
{
    return QStringLiteral("Tabrelle");
}

QString rootElementName()
{
    return QStringLiteral("root");
}

QString mimeType()
{
    return QStringLiteral("application/tabrelle-transformfile");
}

QString xmlMimeType()
{
    return QStringLiteral("application/xml");
}

void registerItemType(const DocumentItemType &type)
{
    QList<DocumentItemType> &types = itemTypes();
    for (DocumentItemType &known : types) {
        if (known.group == type.group) {
            known = type;
            return;
        }
    }
    types << type;
}

void setNodeFactory(const NodeFactory *nodeFactory)
{
    factory() = nodeFactory;
}

const NodeFactory *nodeFactory()
{
    return factory();
}

void setProgram(const QString &productName, const QString &edition, int major, int minor, int patch)
{
    Program &p = program();
    p.productName = productName;
    p.edition = edition;
    p.major = major;
    p.minor = minor;
    p.patch = patch;
}

void setUserName(const QString &userName)
{
    program().userName = userName;
}

void setClock(const std::function<QDateTime()> &now)
{
    saveClock() = now;
}

QString lastSavedByText()
{
    const Program &p = program();
    const QDateTime now = saveClock() ? saveClock()() : QDateTime::currentDateTime();
    QString system = QSysInfo::prettyProductName();
    system.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
    QString text = QStringLiteral("%1_%2_v%3_%4_%5_on_%6_%7_at_%8_%9")
                       .arg(p.productName, p.edition)
                       .arg(p.major)
                       .arg(p.minor)
                       .arg(p.patch)
                       .arg(system, QSysInfo::currentCpuArchitecture(),
                           now.date().toString(QStringLiteral("yyyy-MM-dd")),
                           now.time().toString(QStringLiteral("HH:mm:ss")));
    if (!p.userName.isEmpty())
        text.prepend(QStringLiteral("%1_using_").arg(p.userName));
    for (const QChar c : {QLatin1Char(' '), QLatin1Char(':'), QLatin1Char('.')})
        text.replace(c, QLatin1Char('_'));
    return text;
}

void writeItems(
    const GraphScene &scene, bool selectedOnly, const DocumentProperties &properties, DocumentElement &root)
{
    root = DocumentElement(rootElementName());
    DocumentElement &meta = root.appendChild(QStringLiteral("meta"));
    appendMeta(meta, QStringLiteral("version"), QString::number(CurrentVersion));
    appendMeta(meta, QStringLiteral("last_saved_by"), lastSavedByText());
    appendMeta(meta, QStringLiteral("locale"), QLocale().name());
    if (!properties.id.isEmpty())
        appendMeta(meta, QStringLiteral("id"), properties.id);
    appendMeta(meta, QStringLiteral("snap_to_grid"), boolText(properties.snapToGrid));
    appendMeta(meta, QStringLiteral("notes"), properties.notes);
    appendMeta(meta, QStringLiteral("doc_path"), QDir::toNativeSeparators(properties.docPath));
    appendMeta(meta, QStringLiteral("auto_run_on"), boolText(properties.autoRun));

    const QList<Node *> nodes = scene.nodes();
    QSet<const Node *> written;
    for (const QString &group : groupNames()) {
        DocumentElement &groupElement = root.appendChild(group);
        const DocumentItemType *type = typeForGroup(group);
        if (!type || !type->write)
            continue;
        for (const Node *node : nodes) {
            if (node->typeName() != type->nodeTypeName || (selectedOnly && !node->isSelected()))
                continue;
            type->write(*node, groupElement.appendChild(type->element));
            written.insert(node);
        }
    }

    DocumentElement &connections = root.appendChild(QStringLiteral("connections"));
    for (const Connection *connection : scene.connections()) {
        if (!written.contains(connection->start()) || !written.contains(connection->end()))
            continue;
        if (selectedOnly && !connection->isSelected())
            continue;
        DocumentElement &element = connections.appendChild(QStringLiteral("connection"));
        element.setInt(QStringLiteral("start_id"), connection->start()->id());
        element.setInt(QStringLiteral("end_id"), connection->end()->id());
    }
}

QByteArray documentText(const GraphScene &scene, const DocumentProperties &properties)
{
    DocumentElement root;
    writeItems(scene, false, properties, root);
    DocumentElement &values = root.appendChild(QStringLiteral("batch_values"));
    for (const BatchValue &value : properties.batch.values) {
        DocumentElement &element = values.appendChild(QStringLiteral("batch_value"));
        element.setInt(QStringLiteral("row"), value.row);
        element.setText(QStringLiteral("alias"), value.alias);
        element.setText(QStringLiteral("value"), value.value);
    }
    DocumentElement &logging = root.appendChild(QStringLiteral("batch_logging"));
    logging.setInt(QStringLiteral("verbosity"), properties.batch.verbosity);
    logging.setBool(QStringLiteral("enabled"), properties.batch.logEnabled);
    logging.setText(QStringLiteral("path"), properties.batch.logPath);
    logging.setInt(QStringLiteral("mode"), properties.batch.logMode);
    return root.toXml(documentType());
}

bool writeDocument(
    const QString &path, const GraphScene &scene, const DocumentProperties &properties, QString *errorText)
{
    DocumentProperties saved = properties;
    saved.docPath = QFileInfo(path).absoluteFilePath();
    const QByteArray text = documentText(scene, saved);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (errorText)
            *errorText = tr("Can't open file '%1' to write.").arg(QDir::toNativeSeparators(path));
        return false;
    }
    if (file.write(text) != text.size() || file.error() != QFileDevice::NoError) {
        if (errorText)
            *errorText = tr("Can't save to file. %1").arg(file.errorString());
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        if (errorText)
            *errorText = tr("Can't commit to file. %1").arg(file.errorString());
        return false;
    }
    return true;
}

bool readDocument(const QString &path, GraphScene &scene, DocumentProperties *properties, QString *errorText,
    QString *information)
{
    QFile file(path);
    const QString shownPath = QDir::toNativeSeparators(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly)) {
        if (errorText)
            *errorText = tr("Can't open file '%1'.").arg(shownPath);
        return false;
    }
    if (file.size() == 0) {
        if (errorText)
            *errorText = tr("File '%1' is empty (size=0).").arg(shownPath);
        return false;
    }
    const QByteArray text = file.readAll();
    if (text.isEmpty() && file.error() != QFileDevice::NoError) {
        if (errorText)
            *errorText = tr("Can't open file '%1'.").arg(shownPath);
        return false;
    }
    return readDocumentText(
        text, QFileInfo(path).absoluteFilePath(), scene, properties, errorText, information);
}

bool readDocumentText(const QByteArray &text, const QString &currentPath, GraphScene &scene,
    DocumentProperties *properties, QString *errorText, QString *information)
{
    const DocumentParseResult parsed = parseDocumentText(text);
    QString error;
    if (!parsed.ok)
        error = formatErrorText(parsed);
    else if (parsed.documentType != documentType())
        error = tr("Incorrect document type.");
    else if (parsed.root.name() != rootElementName())
        error = tr("Document root not found.");
    if (!error.isEmpty()) {
        if (errorText)
            *errorText = error;
        return false;
    }
    if (QCoreApplication::instance())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);

    const DocumentElement &root = parsed.root;
    const DocumentElement *meta = root.firstChild(QStringLiteral("meta"));
    DocumentProperties read;
    read.version = metaInt(meta, QStringLiteral("version"), CurrentVersion);
    read.laterVersion = read.version > CurrentVersion;
    read.locale = metaValue(meta, QStringLiteral("locale"), QString());
    read.id = metaValue(meta, QStringLiteral("id"), QString());
    read.snapToGrid = metaInt(meta, QStringLiteral("snap_to_grid"), 0) != 0;
    read.notes = metaValue(meta, QStringLiteral("notes"), QString());
    read.docPath = QDir::fromNativeSeparators(metaValue(meta, QStringLiteral("doc_path"), QString()));
    read.autoRun = metaInt(meta, QStringLiteral("auto_run_on"), 1) != 0;

    DocumentReadContext context;
    context.setVersion(read.version);
    context.setFactory(factory());
    context.setPaths(read.docPath, currentPath);
    const QString dropped = buildItems(root, scene, context, false, nullptr, &read.changed);

    if (const DocumentElement *values = root.firstChild(QStringLiteral("batch_values"))) {
        for (const DocumentElement *element : values->childElements(QStringLiteral("batch_value"))) {
            BatchValue value;
            value.row = element->intValue(QStringLiteral("row"), 0);
            value.alias = element->text(QStringLiteral("alias"));
            value.value = element->text(QStringLiteral("value"));
            read.batch.values << value;
        }
    }
    if (const DocumentElement *logging = root.firstChild(QStringLiteral("batch_logging"))) {
        if (read.version < CurrentVersion)
            read.batch.verbosity = logging->boolValue(QStringLiteral("verbose"), true) ? 2 : 1;
        else
            read.batch.verbosity = logging->intValue(QStringLiteral("verbosity"), 2);
        read.batch.logEnabled = logging->boolValue(QStringLiteral("enabled"), false);
        read.batch.logPath = logging->text(QStringLiteral("path"));
        read.batch.logMode = logging->intValue(QStringLiteral("mode"), 0);
    }
    if (properties)
        *properties = read;
    if (information)
        *information = dropped;
    return true;
}

QString laterVersionMessage()
{
    return tr(
        "This document was created with a later version of the software.\nSome information may not be "
        "readable and information may be lost if you overwrite the existing document.\nIt is recommended "
        "that you click 'Save' and save to a new document before continuing.");
}

QByteArray copyText(const GraphScene &scene)
{
    DocumentElement root;
    writeItems(scene, true, DocumentProperties(), root);
    return root.toXml(documentType());
}

bool pasteText(const QByteArray &text, GraphScene &scene, QString *errorText, QList<Node *> *pasted,
    QString *information)
{
    const DocumentParseResult parsed = parseDocumentText(text);
    if (!parsed.ok) {
        if (errorText)
            *errorText = tr("Paste error=%1 line=%2 col=%3")
                             .arg(parsed.errorMessage)
                             .arg(parsed.errorLine)
                             .arg(parsed.errorColumn);
        return false;
    }
    if (parsed.documentType != documentType() || parsed.root.name() != rootElementName()) {
        if (errorText)
            *errorText = tr("Incorrect document type pasted.");
        return false;
    }
    DocumentReadContext context;
    context.setVersion(
        metaInt(parsed.root.firstChild(QStringLiteral("meta")), QStringLiteral("version"), CurrentVersion));
    context.setFactory(factory());
    QList<Node *> created;
    const QString dropped = buildItems(parsed.root, scene, context, true, &created, nullptr);
    scene.clearSelection();
    for (Node *node : qAsConst(created))
        node->setSelected(true);
    if (pasted)
        *pasted = created;
    if (information)
        *information = dropped;
    return true;
}

QMimeData *copyMimeData(const GraphScene &scene)
{
    const QByteArray payload = copyText(scene);
    auto *data = new QMimeData;
    data->setData(mimeType(), payload);
    data->setData(xmlMimeType(), payload);
    return data;
}

bool canPaste(const QMimeData *data)
{
    return data && data->hasFormat(mimeType());
}

bool pasteMimeData(
    const QMimeData *data, GraphScene &scene, QString *errorText, QList<Node *> *pasted, QString *information)
{
    if (!canPaste(data)) {
        if (errorText)
            *errorText = tr("Incorrect document type pasted.");
        return false;
    }
    return pasteText(data->data(mimeType()), scene, errorText, pasted, information);
}

bool openDocument(GraphScene &scene, const QString &path, QString *errorText, QString *readWarnings,
    DocumentProperties *properties)
{
    DocumentProperties read;
    QString information;
    if (!readDocument(path, scene, &read, errorText, &information))
        return false;
    QStringList warnings;
    if (read.laterVersion)
        warnings << laterVersionMessage();
    if (!information.isEmpty())
        warnings << information;
    if (readWarnings)
        *readWarnings = warnings.join(QStringLiteral("\n\n"));
    if (properties)
        *properties = read;
    return true;
}

void writePosition(const Node &node, DocumentElement &element, bool withOldForm)
{
    element.setPoint(QStringLiteral("pos_v12"), node.pos());
    if (withOldForm)
        element.setAttribute(QStringLiteral("pos"),
            QString::number(node.pos().x(), 'g', 6) + QLatin1Char('^')
                + QString::number(node.pos().y(), 'g', 6));
}

void readPosition(Node &node, const DocumentElement &element)
{
    const QString name =
        element.hasAttribute(QStringLiteral("pos_v12")) ? QStringLiteral("pos_v12") : QStringLiteral("pos");
    const QPointF point = element.point(name);
    const bool near = qAbs(point.x()) <= MaximumCoordinate && qAbs(point.y()) <= MaximumCoordinate;
    node.setPos(near ? point : QPointF());
}

} // namespace Document
