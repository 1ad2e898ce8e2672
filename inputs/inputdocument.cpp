#include "inputdocument.h"

#include "inputs/inputnode.h"

#include <QVariant>

namespace {

const char SchemaColumnNames[] = "document_schema_col_name";
const char SchemaMissingValues[] = "document_schema_missing_value";
const char SchemaMissingColumns[] = "document_schema_missing_cols";
const char SchemaReorderColumns[] = "document_schema_reorder_cols";
const char SchemaExtraColumns[] = "document_schema_extra_cols";

// Documents before this version had one flag for hidden Excel rows and columns.
constexpr int SeparateHiddenFlagsVersion = 72;

} // namespace

namespace InputDocument {

DocumentItemType itemType()
{
    DocumentItemType type;
    type.group = QStringLiteral("inputs");
    type.element = QStringLiteral("input");
    type.nodeTypeName = QStringLiteral("Input");
    type.write = [](const Node &node, DocumentElement &element) {
        if (const auto *input = qobject_cast<const InputNode *>(&node))
            write(*input, element);
    };
    type.read = [](Node &node, const DocumentElement &element, DocumentReadContext &context) {
        if (auto *input = qobject_cast<InputNode *>(&node))
            read(*input, element, context);
    };
    return type;
}

void write(const InputNode &node, DocumentElement &element)
{
    const InputOptions options = node.options();
    const InputSchemaSettings schema = schemaSettings(node);
    element.setInt(QStringLiteral("medium"), options.source);
    element.setInt(QStringLiteral("id"), node.id());
    element.setText(QStringLiteral("name"), node.Node::name());
    element.setText(QStringLiteral("comment"), node.comment());
    element.setInt(QStringLiteral("ignored_rows"), options.ignoreFirstRows);
    element.setInt(QStringLiteral("header"), options.hasHeader);
    element.setBool(QStringLiteral("watching"), options.watch);
    element.setBool(QStringLiteral("json_arrays_as_rows"), options.arraysAsRows);
    element.setBool(QStringLiteral("trim"), options.trimWhitespace);
    element.setBool(QStringLiteral("simplify"), options.simplifyWhitespace);
    element.setBool(QStringLiteral("ignore_empty"), options.ignoreEmptyRows);
    element.setBool(QStringLiteral("ignore_empty_cols"), options.ignoreEmptyColumns);
    element.setBool(QStringLiteral("ignore_excel_hidden_cols"), options.ignoreHiddenExcelColumns);
    element.setBool(QStringLiteral("ignore_excel_hidden_rows"), options.ignoreHiddenExcelRows);
    element.setInt(QStringLiteral("show_meta"), options.metaInformation);
    element.setText(QStringLiteral("meta_text"), options.metaInformationText);
    element.setText(QStringLiteral("meta_col_name"), options.metaInformationColumnName);
    element.setBool(QStringLiteral("schema_in_use"), options.usesSchema);
    element.setTextList(QStringLiteral("schema_col_name"), schema.columnNames);
    element.setTextList(QStringLiteral("schema_missing_value"), schema.missingValues);
    element.setInt(QStringLiteral("schema_missing_cols"), schema.missingColumns);
    element.setInt(QStringLiteral("schema_reorder_cols"), schema.reorderColumns);
    element.setInt(QStringLiteral("schema_extra_cols"), schema.extraColumns);
    element.setText(QStringLiteral("path"), options.path);
    element.setInt(QStringLiteral("file_type"), options.fileType);
    element.setText(QStringLiteral("alias"), node.alias());
    element.setInt(QStringLiteral("delimiter"), options.delimiter);
    element.setText(QStringLiteral("custom_delimiter"),
        options.customDelimiter.isNull() ? QString() : QString(options.customDelimiter));
    element.setInt(QStringLiteral("quote"), options.quoting);
    element.setBool(QStringLiteral("ignore_repeated_delim"), options.ignoreRepeatedDelimiter);
    element.setBool(QStringLiteral("auto_fixed_widths"), options.fixedWidthColumns != 0);
    element.setIntList(QStringLiteral("fixed_widths"), options.columnWidths);
    element.setText(QStringLiteral("encoding"), options.encoding);
    element.setText(QStringLiteral("worksheet"), options.sheet);
    element.setText(QStringLiteral("text"), node.text());
    Document::writePosition(node, element);
}

void read(InputNode &node, const DocumentElement &element, DocumentReadContext &context)
{
    // Options a document doesn't hold keep the node's own values.
    InputOptions options = node.options();
    const QString path = element.text(QStringLiteral("path"));
    const QString text = element.text(QStringLiteral("text"));
    const int defaultMedium =
        path.isEmpty() && !text.isEmpty() ? InputOptions::Clipboard : InputOptions::File;
    options.source = element.intValue(QStringLiteral("medium"), defaultMedium) == InputOptions::Clipboard
        ? InputOptions::Clipboard
        : InputOptions::File;
    options.ignoreFirstRows = qMax(0, element.intValue(QStringLiteral("ignored_rows"), 0));
    options.hasHeader = element.intValue(QStringLiteral("header"), 0);
    options.watch = element.boolValue(QStringLiteral("watching"), false);
    options.arraysAsRows = element.boolValue(QStringLiteral("json_arrays_as_rows"), true);
    options.trimWhitespace = element.boolValue(QStringLiteral("trim"), false);
    options.simplifyWhitespace = element.boolValue(QStringLiteral("simplify"), false);
    options.ignoreEmptyRows = element.boolValue(QStringLiteral("ignore_empty"), true);
    options.ignoreEmptyColumns = element.boolValue(QStringLiteral("ignore_empty_cols"), false);
    if (context.version() < SeparateHiddenFlagsVersion) {
        const bool hidden = element.boolValue(QStringLiteral("ignore_excel_hidden"), false);
        options.ignoreHiddenExcelColumns = hidden;
        options.ignoreHiddenExcelRows = hidden;
    } else {
        options.ignoreHiddenExcelColumns =
            element.boolValue(QStringLiteral("ignore_excel_hidden_cols"), false);
        options.ignoreHiddenExcelRows = element.boolValue(QStringLiteral("ignore_excel_hidden_rows"), false);
    }
    const int meta = element.intValue(QStringLiteral("show_meta"), InputOptions::MetaNotAdded);
    options.metaInformation = meta >= InputOptions::MetaNotAdded && meta <= InputOptions::MetaEveryRow
        ? meta
        : InputOptions::MetaNotAdded;
    options.metaInformationText = element.text(QStringLiteral("meta_text"));
    options.metaInformationColumnName =
        element.text(QStringLiteral("meta_col_name"), QStringLiteral("Meta Info"));
    options.usesSchema = element.boolValue(QStringLiteral("schema_in_use"), false);
    options.path = context.repairedPath(path);
    options.fileType = element.intValue(QStringLiteral("file_type"), 11);
    options.delimiter = element.intValue(QStringLiteral("delimiter"), 1);
    const QString customDelimiter = element.text(QStringLiteral("custom_delimiter"));
    options.customDelimiter = customDelimiter.isEmpty() ? QChar() : customDelimiter.at(0);
    options.quoting = element.intValue(QStringLiteral("quote"), 0);
    options.ignoreRepeatedDelimiter = element.boolValue(QStringLiteral("ignore_repeated_delim"), false);
    options.fixedWidthColumns = element.boolValue(QStringLiteral("auto_fixed_widths"), true) ? 1 : 0;
    options.columnWidths = element.intList(QStringLiteral("fixed_widths"));
    options.encoding = element.text(QStringLiteral("encoding"), QStringLiteral("Automatic"));
    options.sheet = element.text(QStringLiteral("worksheet"));
    node.setOptions(options);
    node.setText(text);
    node.setName(element.text(QStringLiteral("name")));
    node.setComment(element.text(QStringLiteral("comment")));
    node.setAlias(element.text(QStringLiteral("alias")));

    InputSchemaSettings schema;
    schema.columnNames = element.textList(QStringLiteral("schema_col_name"));
    schema.missingValues = element.textList(QStringLiteral("schema_missing_value"));
    schema.missingColumns = element.intValue(QStringLiteral("schema_missing_cols"), 0);
    schema.reorderColumns = element.intValue(QStringLiteral("schema_reorder_cols"), 0);
    schema.extraColumns = element.intValue(QStringLiteral("schema_extra_cols"), 0);
    setSchemaSettings(node, schema);
    Document::readPosition(node, element);
}

InputSchemaSettings schemaSettings(const InputNode &node)
{
    InputSchemaSettings settings;
    settings.columnNames = node.property(SchemaColumnNames).toStringList();
    settings.missingValues = node.property(SchemaMissingValues).toStringList();
    settings.missingColumns = node.property(SchemaMissingColumns).toInt();
    settings.reorderColumns = node.property(SchemaReorderColumns).toInt();
    settings.extraColumns = node.property(SchemaExtraColumns).toInt();
    return settings;
}

void setSchemaSettings(InputNode &node, const InputSchemaSettings &settings)
{
    node.setProperty(SchemaColumnNames, settings.columnNames);
    node.setProperty(SchemaMissingValues, settings.missingValues);
    node.setProperty(SchemaMissingColumns, settings.missingColumns);
    node.setProperty(SchemaReorderColumns, settings.reorderColumns);
    node.setProperty(SchemaExtraColumns, settings.extraColumns);
}

} // namespace InputDocument
