#include "outputdocument.h"

#include "outputs/outputnode.h"

#include <QVariant>

namespace {

const QString FilesColumn = QStringLiteral("multi_file_column");
const QString ExcelFormats = QStringLiteral("excel_manual_col_formats");
const QString JsonTypes = QStringLiteral("json_manual_col_types");

// The node keeps the text read for a column-dependent attribute, and the value that text
// gave, under these property names.
QByteArray heldTextProperty(const QString &attribute)
{
    return "document_text_" + attribute.toLatin1();
}

QByteArray heldValueProperty(const QString &attribute)
{
    return "document_value_" + attribute.toLatin1();
}

bool upstreamProcessed(const OutputNode &node)
{
    const QList<Node *> above = node.upstream(false);
    return !above.isEmpty() && above.first()->status() == Node::UpToDate;
}

// The text read for the attribute while it still stands for the node's value: the
// upstream hasn't run and the value hasn't been edited since the read.
bool heldText(const OutputNode &node, const QString &attribute, const QVariant &liveValue, QString *text)
{
    const QVariant held = node.property(heldTextProperty(attribute).constData());
    if (!held.isValid() || upstreamProcessed(node))
        return false;
    if (node.property(heldValueProperty(attribute).constData()) != liveValue)
        return false;
    *text = held.toString();
    return true;
}

QVariant listValue(const QList<int> &values)
{
    QVariantList list;
    for (const int value : values)
        list << value;
    return list;
}

void writeIntList(
    const OutputNode &node, DocumentElement &element, const QString &attribute, const QList<int> &values)
{
    QString text;
    if (heldText(node, attribute, listValue(values), &text))
        element.setAttribute(attribute, text);
    else
        element.setIntList(attribute, values);
}

void holdText(
    OutputNode &node, const DocumentElement &element, const QString &attribute, const QVariant &value)
{
    if (element.hasAttribute(attribute))
        node.setProperty(heldTextProperty(attribute).constData(), element.attribute(attribute));
    else
        node.setProperty(heldTextProperty(attribute).constData(), QVariant());
    node.setProperty(heldValueProperty(attribute).constData(), value);
}

} // namespace

namespace OutputDocument {

DocumentItemType itemType()
{
    DocumentItemType type;
    type.group = QStringLiteral("outputs");
    type.element = QStringLiteral("output");
    type.nodeTypeName = QStringLiteral("Output");
    type.write = [](const Node &node, DocumentElement &element) {
        if (const auto *output = qobject_cast<const OutputNode *>(&node))
            write(*output, element);
    };
    type.read = [](Node &node, const DocumentElement &element, DocumentReadContext &context) {
        if (auto *output = qobject_cast<OutputNode *>(&node))
            read(*output, element, context);
    };
    return type;
}

void write(const OutputNode &node, DocumentElement &element)
{
    const OutputOptions options = node.options();
    element.setInt(QStringLiteral("id"), node.id());
    element.setInt(QStringLiteral("single_or_multi"), options.outputTo);
    QString filesColumn;
    if (heldText(node, FilesColumn, options.filesColumn, &filesColumn))
        element.setAttribute(FilesColumn, filesColumn);
    else if (options.filesColumn > 0)
        element.setInt(FilesColumn, options.filesColumn);
    element.setBool(QStringLiteral("multi_file_confirm"), options.confirmMultiFile);
    element.setText(QStringLiteral("name"), node.Node::name());
    element.setText(QStringLiteral("comment"), node.comment());
    Document::writePosition(node, element);
    element.setText(QStringLiteral("path"), options.path);
    element.setInt(QStringLiteral("file_type"), options.fileType);
    element.setText(QStringLiteral("alias"), node.alias());
    element.setText(QStringLiteral("custom_delimiter"),
        options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter));
    element.setInt(QStringLiteral("delimiter"), options.delimiter);
    element.setInt(QStringLiteral("line_endings"), options.lineEndings);
    element.setInt(QStringLiteral("quote"), options.quoting);
    element.setInt(QStringLiteral("excel_output"), options.excelFormatting);
    element.setBool(QStringLiteral("excel_use_style_template"), options.useStyleTemplate);
    element.setText(QStringLiteral("excel_style_template_path"), options.styleTemplate);
    writeIntList(node, element, ExcelFormats, options.excelManualColumnFormats);
    element.setInt(QStringLiteral("json_types"), options.jsonTypes);
    writeIntList(node, element, JsonTypes, options.jsonManualColumnTypes);
    element.setText(QStringLiteral("encoding"), options.encoding);
    element.setBool(QStringLiteral("bom"), options.byteOrderMark);
    element.setText(QStringLiteral("xml_above_root"), options.xmlAboveRoot);
    element.setText(QStringLiteral("xml_root"), options.xmlRootName);
    element.setText(QStringLiteral("xml_below_root"), options.xmlBelowRoot);
    element.setText(QStringLiteral("xml_row"), options.xmlRowName);
    element.setBool(QStringLiteral("html_encode"), options.escapeHtml);
    element.setInt(QStringLiteral("enable_output"), options.writeMode);
    element.setBool(QStringLiteral("overwrite_sheet"), options.replaceOnlyThisSheet);
    element.setBool(QStringLiteral("write_header"), options.writeHeader);
    element.setBool(QStringLiteral("write_header_first_append_only"), options.writeHeaderOnlyIfEmpty);
    element.setBool(QStringLiteral("remove_empty"), options.removeEmpty);
    element.setText(QStringLiteral("file_comment"), options.fileComment);
    // The Excel sheet has no attribute of its own in older documents; it comes last.
    element.setText(QStringLiteral("worksheet"), options.sheet);
}

void read(OutputNode &node, const DocumentElement &element, DocumentReadContext &context)
{
    Q_UNUSED(context)
    // Options a document doesn't hold keep the node's own values.
    OutputOptions options = node.options();
    options.outputTo = element.intValue(QStringLiteral("single_or_multi"), OutputOptions::SingleFile)
            == OutputOptions::MultipleFiles
        ? OutputOptions::MultipleFiles
        : OutputOptions::SingleFile;
    options.filesColumn = qMax(0, element.intValue(FilesColumn, 0));
    options.confirmMultiFile = element.boolValue(QStringLiteral("multi_file_confirm"), true);
    options.path = element.text(QStringLiteral("path"));
    options.fileType = element.intValue(QStringLiteral("file_type"), 11);
    const QString customDelimiter = element.text(QStringLiteral("custom_delimiter"));
    options.customDelimiter = customDelimiter.isEmpty() ? QChar() : customDelimiter.at(0);
    options.delimiter = element.intValue(QStringLiteral("delimiter"), 1);
    options.lineEndings =
        element.intValue(QStringLiteral("line_endings"), OutputOptions::LineEndingsAutomatic);
    options.quoting = element.intValue(QStringLiteral("quote"), OutputOptions::QuotingAutomatic);
    options.excelFormatting = element.intValue(QStringLiteral("excel_output"), OutputOptions::TypesAutomatic);
    options.useStyleTemplate = element.boolValue(QStringLiteral("excel_use_style_template"), false);
    options.styleTemplate = element.text(QStringLiteral("excel_style_template_path"));
    options.excelManualColumnFormats = element.intList(ExcelFormats);
    options.jsonTypes = element.intValue(QStringLiteral("json_types"), OutputOptions::TypesAutomatic);
    options.jsonManualColumnTypes = element.intList(JsonTypes);
    options.encoding = element.text(QStringLiteral("encoding"), QStringLiteral("UTF-8"));
    options.byteOrderMark = element.boolValue(QStringLiteral("bom"), true);
    options.xmlAboveRoot = element.text(QStringLiteral("xml_above_root"));
    options.xmlRootName = element.text(QStringLiteral("xml_root"), QStringLiteral("root"));
    options.xmlBelowRoot = element.text(QStringLiteral("xml_below_root"));
    options.xmlRowName = element.text(QStringLiteral("xml_row"), QStringLiteral("record"));
    options.escapeHtml = element.boolValue(QStringLiteral("html_encode"), true);
    const int writeMode = element.intValue(QStringLiteral("enable_output"), OutputOptions::Overwrite);
    options.writeMode = writeMode >= OutputOptions::Disabled && writeMode <= OutputOptions::New
        ? writeMode
        : OutputOptions::Overwrite;
    options.replaceOnlyThisSheet = element.boolValue(QStringLiteral("overwrite_sheet"), true);
    options.writeHeader = element.boolValue(QStringLiteral("write_header"), true);
    options.writeHeaderOnlyIfEmpty =
        element.boolValue(QStringLiteral("write_header_first_append_only"), true);
    options.removeEmpty = element.boolValue(QStringLiteral("remove_empty"), true);
    options.fileComment =
        element.text(QStringLiteral("file_comment"), QStringLiteral(" File created by %1 %2 at %3 %4 "));
    options.sheet = element.text(QStringLiteral("worksheet"));
    node.setOptions(options);
    node.setName(element.text(QStringLiteral("name")));
    node.setComment(element.text(QStringLiteral("comment")));
    node.setAlias(element.text(QStringLiteral("alias")));
    Document::readPosition(node, element);

    const OutputOptions set = node.options();
    holdText(node, element, FilesColumn, set.filesColumn);
    holdText(node, element, ExcelFormats, listValue(set.excelManualColumnFormats));
    holdText(node, element, JsonTypes, listValue(set.jsonManualColumnTypes));
}

} // namespace OutputDocument
