#include "app/transformregistry.h"
#include "flow/connection.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "flow/nodefactory.h"
#include "flow/notenode.h"
#include "inputs/inputdocument.h"
#include "inputs/inputnode.h"
#include "outputs/outputdocument.h"
#include "outputs/outputnode.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformdocument.h"
#include "transforms/transformnode.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

// Texts with "~" standing for the list separator U+001F.
QString sep(const char *text)
{
    return QString::fromUtf8(text).replace(QLatin1Char('~'), QChar(0x1F));
}

// A document of the given version around body, which holds the groups after meta.
QByteArray documentWith(const QString &body, int version = 84, const QString &meta = QString())
{
    return QStringLiteral(
        "<!DOCTYPE Tabrelle>\n<root>\n<meta><version value=\"%1\"/>%2</meta>\n%3\n</root>\n")
        .arg(version)
        .arg(meta, body)
        .toUtf8();
}

QString describeConnections(const GraphScene &scene)
{
    QStringList result;
    for (const Connection *connection : scene.connections())
        result << QStringLiteral("%1>%2").arg(connection->start()->id()).arg(connection->end()->id());
    return result.join(QLatin1Char(','));
}

// The element of the first item in a group of a written document, e.g. "outputs".
DocumentElement firstItem(const QByteArray &text, const QString &group)
{
    const DocumentParseResult parsed = parseDocumentText(text);
    const DocumentElement *groupElement = parsed.root.firstChild(group);
    if (!groupElement || groupElement->children().isEmpty())
        return DocumentElement();
    return groupElement->children().first();
}

} // namespace

class TestDocument : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void readErrors_data();
    void readErrors();
    void attributes_data();
    void attributes();
    void roundTrip_data();
    void roundTrip();
    void optionsToAttributes();
    void textsSurvive_data();
    void textsSurvive();
    void connections_data();
    void connections();
    void migrations_data();
    void migrations();
    void skippedItems_data();
    void skippedItems();
    void laterVersion_data();
    void laterVersion();
    void idCounter();
    void movedFile_data();
    void movedFile();
    void columnTextsKeptBeforeRun_data();
    void columnTextsKeptBeforeRun();
    void batchSettings_data();
    void batchSettings();
    void clipboard();
    void pasteErrors_data();
    void pasteErrors();
    void saveFailures();
    void writtenText();

private:
    bool read(const QByteArray &text, GraphScene &scene, DocumentProperties *properties = nullptr,
        QString *information = nullptr, const QString &currentPath = QString());

    QList<Transform *> m_prototypes;
    NodeFactory m_factory;
};

void TestDocument::initTestCase()
{
    m_prototypes = createTransformPrototypes();
    m_factory.registerCreator(QStringLiteral("Input"), [] { return new InputNode; });
    m_factory.registerCreator(QStringLiteral("Output"), [] { return new OutputNode; });
    m_factory.registerCreator(QStringLiteral("Note"), [] { return new NoteNode; });
    for (const Transform *prototype : qAsConst(m_prototypes)) {
        m_factory.registerCreator(QStringLiteral("Transform:%1").arg(prototype->id()),
            [prototype] { return new TransformNode(prototype->clone()); });
    }
    Document::setNodeFactory(&m_factory);
    Document::setProgram(QStringLiteral("Tabrelle"), QStringLiteral("Free"), 0, 1, 0);
    Document::registerItemType(InputDocument::itemType());
    Document::registerItemType(TransformDocument::itemType());
    Document::registerItemType(OutputDocument::itemType());
    Document::setClock([] { return QDateTime(QDate(2024, 5, 1), QTime(10, 0, 0)); });
}

void TestDocument::cleanupTestCase()
{
    Document::setNodeFactory(nullptr);
    qDeleteAll(m_prototypes);
}

bool TestDocument::read(const QByteArray &text, GraphScene &scene, DocumentProperties *properties,
    QString *information, const QString &currentPath)
{
    QString error;
    const bool ok = Document::readDocumentText(text, currentPath, scene, properties, &error, information);
    if (!ok)
        qWarning().noquote() << error;
    return ok;
}

void TestDocument::readErrors_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected"); // a pattern; %1 is the file's path
    const QString format = QStringLiteral("^Format error '.+' detected at line %1 column \\d+\\.\nContact "
                                          "support if you are sure this a Tabrelle file\\.$");
    QString deep = QStringLiteral("<!DOCTYPE Tabrelle>\n<root>");
    for (int i = 0; i < 50000; ++i)
        deep += QStringLiteral("<a>");
    QString laughs = QStringLiteral("<?xml version=\"1.0\"?>\n<!DOCTYPE Tabrelle [\n<!ENTITY a \"%1\">\n")
                         .arg(QString(1000, QLatin1Char('x')));
    for (int i = 1; i < 10; ++i)
        laughs += QStringLiteral("<!ENTITY %1 \"%2\">\n")
                      .arg(QChar('a' + i))
                      .arg(QString(QStringLiteral("&%1;").arg(QChar('a' + i - 1))).repeated(10));
    laughs += QStringLiteral("]>\n<root><meta><notes value=\"&j;\"/></meta></root>\n");

    QTest::newRow("missing file") << QByteArray() << QStringLiteral("^Can't open file '%1'\\.$");
    QTest::newRow("empty file") << QByteArray("") << QStringLiteral("^File '%1' is empty \\(size=0\\)\\.$");
    QTest::newRow("not XML") << QByteArray("a,b\n1,2\n") << format.arg(QStringLiteral("\\d+"));
    QTest::newRow("unclosed element")
        << QByteArray("<!DOCTYPE Tabrelle>\n<root>\n<meta>\n</root>\n") << format.arg(4);
    QTest::newRow("only a declaration")
        << QByteArray("<?xml version=\"1.0\"?>") << format.arg(QStringLiteral("\\d+"));
    QTest::newRow("binary") << QByteArray("\x00\x01\xff\xfe", 4) << format.arg(QStringLiteral("\\d+"));
    QTest::newRow("other type") << QByteArray("<!DOCTYPE Other>\n<root/>")
                                << QStringLiteral("^Incorrect document type\\.$");
    QTest::newRow("no type") << QByteArray("<root/>") << QStringLiteral("^Incorrect document type\\.$");
    QTest::newRow("other root") << QByteArray("<!DOCTYPE Tabrelle>\n<flow/>")
                                << QStringLiteral("^Document root not found\\.$");
    QTest::newRow("50,000 nested elements") << deep.toUtf8() << format.arg(2);
    QTest::newRow("entity blow-up") << laughs.toUtf8() << format.arg(QStringLiteral("\\d+"));
    QTest::newRow("undeclared entity")
        << QByteArray("<!DOCTYPE Tabrelle>\n<root a=\"&x;\"/>") << format.arg(2);
}

void TestDocument::readErrors()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("flow.tflow"));
    if (!content.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    GraphScene scene;
    auto *existing = new NoteNode;
    scene.addNode(existing);
    QString error;
    QString information;
    DocumentProperties properties;
    QVERIFY(!Document::readDocument(path, scene, &properties, &error, &information));
    const QString shownPath = QRegularExpression::escape(QDir::toNativeSeparators(path));
    const QRegularExpression pattern(
        expected.contains(QLatin1String("%1")) ? expected.arg(shownPath) : expected);
    QVERIFY2(pattern.match(error).hasMatch(), qPrintable(error));
    QCOMPARE(scene.nodes(), QList<Node *> {existing});
}

void TestDocument::attributes_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("expected"); // attributes of the item as written back, "~" for U+001F

    struct Row
    {
        const char *name;
        const char *body;
        int version;
        const char *expected;
    };
    const Row rows[] = {
        {"input defaults", "<inputs><input id=\"1\"/></inputs>", 84,
            "medium=0 ignored_rows=0 header=0 watching=0 json_arrays_as_rows=1 trim=0 simplify=0 "
            "ignore_empty=1 "
            "ignore_empty_cols=0 ignore_excel_hidden_cols=0 ignore_excel_hidden_rows=0 show_meta=0 "
            "meta_col_name=Meta%20Info schema_in_use=0 schema_missing_cols=0 file_type=11 delimiter=1 "
            "quote=0 "
            "ignore_repeated_delim=0 auto_fixed_widths=1 encoding=Automatic pos_v12=0~0 pos=0^0"},
        {"input medium: clipboard for text alone", "<inputs><input id=\"1\" text=\"a%2Cb\"/></inputs>", 84,
            "medium=1"},
        {"input medium: file for path and text", "<inputs><input id=\"1\" text=\"a\" path=\"x\"/></inputs>",
            84, "medium=0"},
        {"input medium: nonsense", "<inputs><input id=\"1\" medium=\"7\"/></inputs>", 84, "medium=0"},
        {"input header guessed", "<inputs><input id=\"1\" header=\"2\"/></inputs>", 84, "header=2"},
        {"input meta mode 3", "<inputs><input id=\"1\" show_meta=\"3\"/></inputs>", 84, "show_meta=3"},
        {"input meta mode nonsense", "<inputs><input id=\"1\" show_meta=\"9\"/></inputs>", 84, "show_meta=0"},
        {"input numbers not numbers",
            "<inputs><input id=\"1\" delimiter=\"tab\" trim=\"yes\" file_type=\"99\"/></inputs>", 84,
            "delimiter=1 trim=0 file_type=11"},
        {"input ignored rows negative", "<inputs><input id=\"1\" ignored_rows=\"-4\"/></inputs>", 84,
            "ignored_rows=0"},
        {"input custom delimiter one character",
            "<inputs><input id=\"1\" custom_delimiter=\"%3B%3B\"/></inputs>", 84, "custom_delimiter=%3B"},
        {"input widths joined with ^", "<inputs><input id=\"1\" fixed_widths=\"3^4^x^5\"/></inputs>", 84,
            "fixed_widths=3~4~5"},
        {"input schema names with ^", "<inputs><input id=\"1\" schema_col_name=\"a^b%5Ec\"/></inputs>", 84,
            "schema_col_name=a~b%5Ec"},
        {"hidden flags of version 71 from one",
            "<inputs><input id=\"1\" ignore_excel_hidden=\"1\"/></inputs>", 71,
            "ignore_excel_hidden_cols=1 ignore_excel_hidden_rows=1"},
        {"hidden flags of version 71 ignore the new ones",
            "<inputs><input id=\"1\" ignore_excel_hidden_cols=\"1\"/></inputs>", 71,
            "ignore_excel_hidden_cols=0 ignore_excel_hidden_rows=0"},
        {"hidden flags of version 72 apart",
            "<inputs><input id=\"1\" ignore_excel_hidden=\"1\" ignore_excel_hidden_rows=\"1\"/></inputs>", 72,
            "ignore_excel_hidden_cols=0 ignore_excel_hidden_rows=1"},
        {"position from pos_v12", "<inputs><input id=\"1\" pos_v12=\"10.5~-20\" pos=\"1^2\"/></inputs>", 84,
            "pos_v12=10.5~-20 pos=10.5^-20"},
        {"position from pos", "<inputs><input id=\"1\" pos=\"30^40\"/></inputs>", 50, "pos_v12=30~40"},
        {"position of three numbers", "<inputs><input id=\"1\" pos=\"1^2^3\"/></inputs>", 84, "pos_v12=0~0"},
        {"position not numbers", "<inputs><input id=\"1\" pos_v12=\"a~b\"/></inputs>", 84, "pos_v12=0~0"},
        {"position far away", "<inputs><input id=\"1\" pos=\"1e300^5\"/></inputs>", 84, "pos_v12=0~0"},
        {"position not finite", "<inputs><input id=\"1\" pos=\"nan^inf\"/></inputs>", 84, "pos_v12=0~0"},
        {"output defaults", "<outputs><output id=\"1\"/></outputs>", 84,
            "single_or_multi=0 multi_file_confirm=1 file_type=11 delimiter=1 line_endings=0 quote=0 "
            "excel_output=0 "
            "excel_use_style_template=0 json_types=0 encoding=UTF-8 bom=1 xml_root=root xml_row=record "
            "html_encode=1 "
            "enable_output=1 overwrite_sheet=1 write_header=1 write_header_first_append_only=1 "
            "remove_empty=1 "
            "file_comment=%20File%20created%20by%20%251%20%252%20at%20%253%20%254%20"},
        {"output write mode new", "<outputs><output id=\"1\" enable_output=\"3\"/></outputs>", 84,
            "enable_output=3"},
        {"output write mode nonsense", "<outputs><output id=\"1\" enable_output=\"7\"/></outputs>", 84,
            "enable_output=1"},
        {"output files column negative", "<outputs><output id=\"1\" multi_file_column=\"-2\"/></outputs>", 84,
            "multi_file_column=-2"},
        {"output many files of nonsense", "<outputs><output id=\"1\" single_or_multi=\"5\"/></outputs>", 84,
            "single_or_multi=0"},
        {"note defaults", "<notes><note id=\"1\"/></notes>", 84, "arrow=0 pos_v12=0~0"},
        {"note colour", "<notes><note id=\"1\" color=\"255~128~0\" arrow=\"2\"/></notes>", 84,
            "color=255~128~0 arrow=2"},
        {"note colour out of range", "<notes><note id=\"1\" color=\"256~128~0\"/></notes>", 84,
            "color=default"},
        {"note colour empty", "<notes><note id=\"1\" color=\"\"/></notes>", 84, "color=default"},
        {"transform", "<transforms><transform id=\"1\" name=\"Sort\" comment=\"a%20b\"/></transforms>", 84,
            "name=Sort comment=a%20b pos_v12=0~0"},
    };
    const QColor color = NoteNode::defaultColor();
    const QString defaultColor = QStringList {QString::number(color.red()), QString::number(color.green()),
        QString::number(color.blue())}
                                     .join(QChar(0x1F));
    for (const Row &row : rows)
        QTest::newRow(row.name) << sep(row.body) << row.version
                                << sep(row.expected).replace(QLatin1String("default"), defaultColor);
}

void TestDocument::attributes()
{
    QFETCH(QString, body);
    QFETCH(int, version);
    QFETCH(QString, expected);
    GraphScene scene;
    QVERIFY(read(documentWith(body, version), scene));
    QCOMPARE(scene.nodes().size(), 1);
    // Read defaults are written back explicitly, so the written item shows them.
    const DocumentParseResult written =
        parseDocumentText(Document::documentText(scene, DocumentProperties()));
    DocumentElement item;
    for (const DocumentElement &group : written.root.children()) {
        if (group.name() != QLatin1String("meta") && !group.children().isEmpty())
            item = group.children().first();
    }
    for (const QString &pair : expected.split(QLatin1Char(' '))) {
        const QString name = pair.section(QLatin1Char('='), 0, 0);
        QCOMPARE(name + QLatin1Char('=') + item.attribute(name, QStringLiteral("<none>")), pair);
    }
}

void TestDocument::roundTrip_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("meta");

    QTest::newRow("empty flow") << QString() << QString();
    QTest::newRow("meta settings") << QString()
                                   << "<id value=\"doc-1\"/><snap_to_grid value=\"1\"/><notes "
                                      "value=\"line%0Aline\"/><auto_run_on value=\"0\"/>";
    QTest::newRow("clipboard input") << "<inputs><input id=\"3\" name=\"Pasted\" text=\"a%2Cb%0A1%2C2\" "
                                        "header=\"1\" pos_v12=\"5^6\"/></inputs>"
                                     << QString();
    QTest::newRow("file input, every option set")
        << "<inputs><input medium=\"0\" id=\"7\" name=\"n\" comment=\"c\" ignored_rows=\"2\" header=\"2\" "
           "watching=\"1\" "
           "json_arrays_as_rows=\"0\" trim=\"1\" simplify=\"1\" ignore_empty=\"0\" ignore_empty_cols=\"1\" "
           "ignore_excel_hidden_cols=\"1\" ignore_excel_hidden_rows=\"1\" show_meta=\"2\" meta_text=\"m\" "
           "meta_col_name=\"Source\" schema_in_use=\"1\" schema_col_name=\"a^b\" schema_missing_value=\"NA\" "
           "schema_missing_cols=\"1\" schema_reorder_cols=\"2\" schema_extra_cols=\"1\" "
           "path=\"%2Fdata%2Fin.csv\" "
           "file_type=\"3\" alias=\"in\" delimiter=\"7\" custom_delimiter=\"%7C\" quote=\"2\" "
           "ignore_repeated_delim=\"1\" auto_fixed_widths=\"0\" fixed_widths=\"3^4\" encoding=\"UTF-16LE\" "
           "worksheet=\"Sheet%202\" pos=\"-10^20\"/></inputs>"
        << QString();
    QTest::newRow("transform with options")
        << "<inputs><input id=\"1\" path=\"in.csv\"/></inputs>"
           "<transforms><transform id=\"2\" name=\"Sort\" comment=\"by%20b\" pos=\"100^0\"><parameters>"
           "<parameter name=\"Columns\" type=\"2\" value=\"2^-1\"/>"
           "<parameter name=\"Sort_Type\" type=\"6\" value=\"Text\"/>"
           "<parameter name=\"Case_Sensitive\" type=\"5\" value=\"1\"/>"
           "</parameters></transform>"
           "<transform id=\"4\" name=\"Filter\"><parameters><parameter name=\"Columns\" value=\"\"/>"
           "</parameters></transform></transforms>"
           "<connections><connection start_id=\"1\" end_id=\"2\"/><connection start_id=\"1\" end_id=\"4\"/>"
           "</connections>"
        << QString();
    QTest::newRow("output, every option set")
        << "<outputs><output id=\"9\" single_or_multi=\"1\" multi_file_column=\"2\" multi_file_confirm=\"0\" "
           "name=\"out\" comment=\"x\" pos=\"1.5^2.25\" path=\"out.xml\" file_type=\"5\" alias=\"o\" "
           "custom_delimiter=\"%3B\" delimiter=\"4\" line_endings=\"2\" quote=\"1\" excel_output=\"2\" "
           "excel_use_style_template=\"1\" excel_style_template_path=\"t.xlsx\" "
           "excel_manual_col_formats=\"1^2^3\" "
           "json_types=\"2\" json_manual_col_types=\"0^1\" encoding=\"ISO-8859-1\" bom=\"0\" "
           "xml_above_root=\"a\" "
           "xml_root=\"rows\" xml_below_root=\"b\" xml_row=\"row\" html_encode=\"0\" enable_output=\"2\" "
           "overwrite_sheet=\"0\" write_header=\"0\" write_header_first_append_only=\"0\" remove_empty=\"0\" "
           "file_comment=\"made\"/></outputs>"
        << QString();
    QTest::newRow("notes") << sep("<notes><note id=\"2\" comment=\"hello\" pos_v12=\"1~3\" color=\"1~2~3\" "
                                  "arrow=\"4\"/><note id=\"1\"/></notes>")
                           << QString();
}

void TestDocument::roundTrip()
{
    QFETCH(QString, body);
    QFETCH(QString, meta);
    GraphScene first;
    DocumentProperties properties;
    QVERIFY(read(documentWith(body, 84, meta), first, &properties));
    const QByteArray written = Document::documentText(first, properties);

    GraphScene second;
    DocumentProperties reread;
    QVERIFY(read(written, second, &reread));
    QCOMPARE(QString::fromUtf8(Document::documentText(second, reread)), QString::fromUtf8(written));
    QCOMPARE(second.nodes().size(), first.nodes().size());
    QCOMPARE(describeConnections(second), describeConnections(first));
    QCOMPARE(reread.id, properties.id);
    QCOMPARE(reread.notes, properties.notes);
    QCOMPARE(reread.snapToGrid, properties.snapToGrid);
    QCOMPARE(reread.autoRun, properties.autoRun);
    // Every attribute read is written again.
    for (const QString &group : {QStringLiteral("inputs"), QStringLiteral("outputs")}) {
        const DocumentElement original = firstItem(documentWith(body, 84, meta), group);
        const DocumentElement saved = firstItem(written, group);
        for (const auto &attribute : original.attributes()) {
            if (attribute.first != QLatin1String("pos"))
                QCOMPARE(saved.textList(attribute.first), original.textList(attribute.first));
        }
    }
}

void TestDocument::optionsToAttributes()
{
    // Each option set apart from its default lands in its own attribute and comes back.
    GraphScene scene;
    auto *input = new InputNode;
    InputOptions in = input->options();
    in.trimWhitespace = true;
    in.ignoreHiddenExcelRows = true;
    in.arraysAsRows = false;
    in.metaInformation = InputOptions::MetaAtEnd;
    in.quoting = 2;
    in.fixedWidthColumns = 0;
    in.columnWidths = {1, 20};
    in.customDelimiter = QLatin1Char('^');
    in.sheet = QStringLiteral("S 1");
    input->setOptions(in);
    scene.addNode(input);
    auto *output = new OutputNode;
    OutputOptions out = output->options();
    out.outputTo = OutputOptions::MultipleFiles;
    out.filesColumn = 3;
    out.writeMode = OutputOptions::Append;
    out.jsonManualColumnTypes = {2, 0};
    out.removeEmpty = false;
    out.writeHeaderOnlyIfEmpty = false;
    out.useStyleTemplate = true;
    out.sheet = QStringLiteral("Data");
    output->setOptions(out);
    scene.addNode(output);

    const QByteArray text = Document::documentText(scene, DocumentProperties());
    const auto attributes = [&text](const QString &group, const QStringList &names) {
        const DocumentElement item = firstItem(text, group);
        QStringList pairs;
        for (const QString &name : names)
            pairs << name + QLatin1Char('=') + item.attribute(name);
        return pairs.join(QLatin1Char(' '));
    };
    QCOMPARE(attributes(QStringLiteral("inputs"),
                 {"trim", "simplify", "ignore_excel_hidden_cols", "ignore_excel_hidden_rows",
                     "json_arrays_as_rows", "show_meta", "quote", "auto_fixed_widths", "fixed_widths",
                     "custom_delimiter", "worksheet"}),
        sep("trim=1 simplify=0 ignore_excel_hidden_cols=0 ignore_excel_hidden_rows=1 json_arrays_as_rows=0 "
            "show_meta=2 quote=2 auto_fixed_widths=0 fixed_widths=1~20 custom_delimiter=%5E "
            "worksheet=S%201"));
    QCOMPARE(
        attributes(QStringLiteral("outputs"),
            {"single_or_multi", "multi_file_column", "enable_output", "json_manual_col_types", "remove_empty",
                "write_header_first_append_only", "write_header", "excel_use_style_template", "worksheet"}),
        sep("single_or_multi=1 multi_file_column=3 enable_output=2 json_manual_col_types=2~0 remove_empty=0 "
            "write_header_first_append_only=0 write_header=1 excel_use_style_template=1 worksheet=Data"));
    GraphScene copy;
    QVERIFY(read(text, copy));
    QCOMPARE(Document::documentText(copy, DocumentProperties()), text);
}

void TestDocument::textsSurvive_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("caret and percent") << "a^b%20c%";
    QTest::newRow("list separator") << sep("a~b");
    QTest::newRow("markup characters") << "<a href=\"x\">&amp;</a>";
    QTest::newRow("line breaks and tabs") << "one\ntwo\r\n\tthree";
    QTest::newRow("other scripts") << QStringLiteral("Grüße, 東京 \U0001F600");
    QTest::newRow("private use") << QStringLiteral("\uF71F\uF700");
}

void TestDocument::textsSurvive()
{
    QFETCH(QString, text);
    GraphScene scene;
    auto *input = new InputNode;
    input->setName(text);
    input->setText(text);
    scene.addNode(input);
    auto *note = new NoteNode;
    note->setText(text);
    scene.addNode(note);
    DocumentProperties properties;
    properties.notes = text;
    properties.batch.values << BatchValue {1, text, text};

    GraphScene copy;
    DocumentProperties reread;
    QVERIFY(read(Document::documentText(scene, properties), copy, &reread));
    QCOMPARE(qobject_cast<InputNode *>(copy.nodes().value(0))->text(), text);
    QCOMPARE(copy.nodes().value(0)->Node::name(), text);
    QCOMPARE(copy.nodes().value(1)->comment(), text);
    QCOMPARE(reread.notes, text);
    QCOMPARE(reread.batch.values, properties.batch.values);
}

void TestDocument::connections_data()
{
    QTest::addColumn<QString>("connections");
    QTest::addColumn<QString>("expected");
    QTest::newRow("chain") << "1>2 2>3"
                           << "1>2,2>3";
    QTest::newRow("written order does not matter") << "2>3 1>2"
                                                   << "1>2,2>3";
    QTest::newRow("to itself") << "2>2 1>2"
                               << "1>2";
    QTest::newRow("missing end") << "1>2 2>9"
                                 << "1>2";
    QTest::newRow("missing start") << "9>3 1>2"
                                   << "1>2";
    QTest::newRow("unset ids") << "-1>2 1>-1 1>2"
                               << "1>2";
    QTest::newRow("not numbers") << "a>2 1>b 1>2"
                                 << "1>2";
    QTest::newRow("twice") << "1>2 1>2"
                           << "1>2";
    QTest::newRow("into an input") << "2>1"
                                   << "";
    QTest::newRow("cycle refused") << "1>2 2>3 3>2"
                                   << "1>2,2>3";
    QTest::newRow("second input of a one-input transform") << "1>2 1>3 3>2"
                                                           << "1>2,1>3";
}

void TestDocument::connections()
{
    QFETCH(QString, connections);
    QFETCH(QString, expected);
    QString body = QStringLiteral("<inputs><input id=\"1\"/></inputs><transforms>"
                                  "<transform id=\"2\" name=\"Sort\"/><transform id=\"3\" name=\"Sort\"/>"
                                  "</transforms><connections>");
    for (const QString &pair : connections.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QStringList ends = pair.split(QLatin1Char('>'));
        body += QStringLiteral("<connection start_id=\"%1\" end_id=\"%2\"/>").arg(ends.at(0), ends.at(1));
    }
    body += QStringLiteral("</connections>");
    GraphScene scene;
    QVERIFY(read(documentWith(body), scene));
    QCOMPARE(scene.nodes().size(), 3);
    QCOMPARE(describeConnections(scene), expected);
}

void TestDocument::migrations_data()
{
    QTest::addColumn<QString>("transform");
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("expectedParameter"); // empty: no option takes the text
    QTest::addColumn<QString>("expectedText");

    struct Row
    {
        const char *name, *transform, *parameter, *value;
        int version;
        const char *expectedParameter, *expectedText;
    };
    const Row rows[] = {
        {"split text, 58", "Split", "Delimiter_Type", "Text%20", 58, "Delimiter_Type", "Text%20delimiter"},
        {"split regex unencoded, 58", "Split", "Delimiter_Type", "Regex ", 58, "Delimiter_Type",
            "Regex%20delimiter"},
        // Not migrated at this version, the text is no choice: the option keeps its default.
        {"split text, 59", "Split", "Delimiter_Type", "Text%20", 59, "Delimiter_Type", "Text%20delimiter"},
        {"calculate julian day, 67", "Calculate", "Operation", "JulianDay", 67, "Operation",
            "DateToJulianDay"},
        {"calculate julian day, 68", "Calculate", "Operation", "JulianDay", 68, "Operation", "%2B%20Add"},
        {"calculate other, 67", "Calculate", "Operation", "JulianDayToDate", 67, "Operation",
            "JulianDayToDate"},
        {"random maximum, 77", "Random", "Maximum_Int", "100", 77, "Maximum_Int", "99"},
        {"random maximum, 78", "Random", "Maximum_Int", "100", 78, "Maximum_Int", "100"},
        {"random maximum no number, 77", "Random", "Maximum_Int", "ten", 77, "Maximum_Int", "100"},
        {"maximum of another transform, 77", "Sort", "Maximum_Int", "100", 77, "", ""},
        {"sequence minimum date, 78", "Sequence", "User_Define_Minimum_Missing", "2020-1-5", 78,
            "User_Define_Minimum_Missing_Date", "2020-01-05"},
        {"sequence maximum integer, 78", "Sequence", "User_Define_Maximum_Missing", "42", 78,
            "User_Define_Maximum_Missing_Int", "42"},
        {"sequence minimum neither, 78", "Sequence", "User_Define_Minimum_Missing", "soon", 78,
            "User_Define_Minimum_Missing_Int", "0"},
        {"sequence bad date, 78", "Sequence", "User_Define_Minimum_Missing", "2020-13-45", 78,
            "User_Define_Minimum_Missing_Int", "0"},
        {"sequence minimum, 79", "Sequence", "User_Define_Minimum_Missing", "2020-1-5", 79, "", ""},
    };
    for (const Row &row : rows)
        QTest::newRow(row.name) << row.transform << row.parameter << row.value << row.version
                                << row.expectedParameter << row.expectedText;
}

void TestDocument::migrations()
{
    QFETCH(QString, transform);
    QFETCH(QString, parameter);
    QFETCH(QString, value);
    QFETCH(int, version);
    QFETCH(QString, expectedParameter);
    QFETCH(QString, expectedText);
    const QString body = QStringLiteral("<transforms><transform id=\"1\" name=\"%1\"><parameters>"
                                        "<parameter name=\"%2\" type=\"6\" value=\"%3\"/></parameters>"
                                        "</transform></transforms>")
                             .arg(transform, parameter, value);
    GraphScene scene;
    QVERIFY(read(documentWith(body, version), scene));
    auto *node = qobject_cast<TransformNode *>(scene.nodes().value(0));
    QVERIFY(node);
    if (expectedParameter.isEmpty()) {
        // No such option in this version: the text finds no parameter and is dropped.
        for (const Parameter *p : node->transform()->parameterList())
            QVERIFY2(!p->isPending(), qPrintable(p->name()));
        return;
    }
    const Parameter *target = node->transform()->parameter(expectedParameter);
    QVERIFY(target);
    // Options naming columns wait for their upstream data; the others take their value at
    // once, and their text then shows what was read.
    if (target->isColumnOption()) {
        QVERIFY(target->isPending());
        QCOMPARE(target->pendingText(), expectedText);
        QCOMPARE(target->pendingVersion(), version);
    } else {
        QVERIFY(!target->isPending());
        QCOMPARE(target->toText(), expectedText);
    }
}

void TestDocument::skippedItems_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("itemsRead");

    QTest::newRow("nothing skipped") << "<transforms><transform id=\"1\" name=\"Sort\"/></transforms>"
                                     << "" << 1;
    QTest::newRow("deprecated and unknown")
        << "<transforms><transform id=\"1\" name=\"Replace\"/><transform id=\"2\" name=\"Trim\"/>"
           "<transform id=\"3\" name=\"Replace\"/><transform id=\"4\" name=\"Sort\"/>"
           "<transform id=\"5\" name=\"Frobnicate\"/><transform id=\"6\" name=\"Rename\"/></transforms>"
           "<connections><connection start_id=\"4\" end_id=\"5\"/></connections>"
        << "The following deprecated transforms were not added:\n"
           "'Replace' (2 occurrences) - use the newer 'Replace' transform.\n"
           "'Trim' (1 occurrence) - use the newer 'Whitespace' transform.\n"
           "'Rename' (1 occurrence) - use the newer 'Rename' transform.\n\n"
           "The following unknown transforms were not added:\n"
           "'Frobnicate' (1 occurrence)"
        << 1;
    QTest::newRow("unknown only")
        << "<transforms><transform id=\"1\" name=\"X\"/><transform id=\"2\"/></transforms>"
        << "The following unknown transforms were not added:\n'X' (1 occurrence)\n'' (1 "
           "occurrence)"
        << 0;
    QTest::newRow("charts")
        << "<charts><chart id=\"1\" chart_type=\"2\"/><chart id=\"2\"/></charts>"
           "<notes><note id=\"3\"/></notes>"
        << "2 chart items not read (charts are not supported in this version of Tabrelle).\n\n"
           "Saving this .tflow file from this version will remove the chart items."
        << 1;
}

void TestDocument::skippedItems()
{
    QFETCH(QString, body);
    QFETCH(QString, expected);
    QFETCH(int, itemsRead);
    GraphScene scene;
    DocumentProperties properties;
    QString information;
    QVERIFY(read(documentWith(body), scene, &properties, &information));
    QCOMPARE(information, expected);
    QCOMPARE(properties.changed, !expected.isEmpty());
    QCOMPARE(scene.nodes().size(), itemsRead);
    QCOMPARE(scene.connections().size(), 0);
}

void TestDocument::laterVersion_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("later");
    QTest::newRow("current") << 84 << false;
    QTest::newRow("older") << 12 << false;
    QTest::newRow("next") << 85 << true;
}

void TestDocument::laterVersion()
{
    QFETCH(int, version);
    QFETCH(bool, later);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("later.tflow"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(documentWith(
        QStringLiteral("<transforms><transform id=\"1\" name=\"Gone\"/></transforms>"), version));
    file.close();
    GraphScene scene;
    QString error;
    QString warnings;
    DocumentProperties properties;
    QVERIFY(Document::openDocument(scene, path, &error, &warnings, &properties));
    QCOMPARE(properties.version, version);
    QCOMPARE(properties.laterVersion, later);
    const QString unknown =
        QStringLiteral("The following unknown transforms were not added:\n'Gone' (1 occurrence)");
    QCOMPARE(warnings, later ? Document::laterVersionMessage() + QStringLiteral("\n\n") + unknown : unknown);
    QVERIFY(Document::laterVersionMessage().startsWith(
        QStringLiteral("This document was created with a later version of the software.\n")));
}

void TestDocument::idCounter()
{
    Node::setNextId(10);
    GraphScene scene;
    QVERIFY(read(documentWith(QStringLiteral("<inputs><input id=\"5\"/></inputs><notes><note id=\"40\"/>"
                                             "<note id=\"5\"/><note/></notes>")),
        scene));
    QCOMPARE(Node::nextId(), 43);
    QList<int> ids;
    for (const Node *node : scene.nodes())
        ids << node->id();
    // The second 5 and the item without id take fresh ids past every id of the file.
    QCOMPARE(ids, (QList<int> {5, 40, 41, 42}));

    // Ids past a billion are none: the counter never nears the end of int.
    GraphScene huge;
    QVERIFY(read(documentWith(QStringLiteral("<notes><note id=\"2147483647\"/></notes>")), huge));
    QCOMPARE(huge.nodes().first()->id(), 43);
    QCOMPARE(Node::nextId(), 44);

    Node::setNextId(500);
    GraphScene other;
    QVERIFY(read(documentWith(QStringLiteral("<notes><note id=\"7\"/></notes>")), other));
    QCOMPARE(Node::nextId(), 500);
}

void TestDocument::movedFile_data()
{
    QTest::addColumn<QString>("storedInput"); // relative to the saved document's folder
    QTest::addColumn<QString>("existingFile"); // relative to the current document's folder
    QTest::addColumn<bool>("sameFolder");
    QTest::addColumn<QString>("expected"); // relative to the current folder, or "stored"

    QTest::newRow("beside the document") << "in.csv"
                                         << "in.csv" << false << "in.csv";
    QTest::newRow("in a subfolder") << "data/in.csv"
                                    << "data/in.csv" << false << "data/in.csv";
    QTest::newRow("in a sibling folder") << "../shared/in.csv"
                                         << "../shared/in.csv" << false << "../shared/in.csv";
    QTest::newRow("not found at the new place either") << "data/in.csv"
                                                       << "other.csv" << false << "stored";
    QTest::newRow("document not moved") << "in.csv"
                                        << "in.csv" << true << "stored";
}

void TestDocument::movedFile()
{
    QFETCH(QString, storedInput);
    QFETCH(QString, existingFile);
    QFETCH(bool, sameFolder);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    QDir root(dir.path());
    QVERIFY(root.mkpath(QStringLiteral("old/flows")));
    QVERIFY(root.mkpath(QStringLiteral("new/flows")));
    const QString current = root.filePath(QStringLiteral("new/flows/flow.tflow"));
    const QString saved = sameFolder ? current : root.filePath(QStringLiteral("old/flows/flow.tflow"));
    const QString stored = QDir::cleanPath(QFileInfo(saved).dir().filePath(storedInput));
    const QString existing = QDir::cleanPath(QFileInfo(current).dir().filePath(existingFile));
    QVERIFY(QDir().mkpath(QFileInfo(existing).path()));
    QFile file(existing);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    const QString body = QStringLiteral("<inputs><input id=\"1\" path=\"%1\"/></inputs>")
                             .arg(DocumentElement::encode(QDir::toNativeSeparators(stored)));
    const QString meta = QStringLiteral("<doc_path value=\"%1\"/>")
                             .arg(DocumentElement::encode(QDir::toNativeSeparators(saved)));
    GraphScene scene;
    QVERIFY(read(documentWith(body, 84, meta), scene, nullptr, nullptr, current));
    const QString path = qobject_cast<InputNode *>(scene.nodes().value(0))->path();
    QCOMPARE(QDir::fromNativeSeparators(path), expected == QLatin1String("stored") ? stored : existing);
}

void TestDocument::columnTextsKeptBeforeRun_data()
{
    QTest::addColumn<bool>("upstreamProcessed");
    QTest::addColumn<bool>("edited");
    QTest::addColumn<QString>("filesColumn");
    QTest::addColumn<QString>("excelFormats");
    QTest::newRow("before the first run") << false << false << "03"
                                          << "1^x^2";
    QTest::newRow("upstream has run") << true << false << "3" << sep("1~2");
    QTest::newRow("edited before the first run") << false << true << "5"
                                                 << "1^x^2";
}

void TestDocument::columnTextsKeptBeforeRun()
{
    QFETCH(bool, upstreamProcessed);
    QFETCH(bool, edited);
    QFETCH(QString, filesColumn);
    QFETCH(QString, excelFormats);
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("missing.csv"));
    const QString body =
        QStringLiteral("<inputs><input id=\"1\" path=\"%1\" file_type=\"0\"/></inputs>"
                       "<transforms><transform id=\"2\" name=\"Sort\"><parameters>"
                       "<parameter name=\"Columns\" type=\"2\" value=\"3^-1\"/></parameters></transform>"
                       "</transforms><outputs><output id=\"3\" multi_file_column=\"03\" "
                       "excel_manual_col_formats=\"1^x^2\" path=\"out.csv\"/></outputs>"
                       "<connections><connection start_id=\"1\" end_id=\"2\"/>"
                       "<connection start_id=\"2\" end_id=\"3\"/></connections>")
            .arg(DocumentElement::encode(missing));
    GraphScene scene;
    QVERIFY(read(documentWith(body), scene));
    QCOMPARE(scene.nodes().size(), 3);
    scene.runEverything();
    QCOMPARE(scene.nodes().at(0)->status(), int(Node::Error));
    auto *output = qobject_cast<OutputNode *>(scene.nodes().at(2));
    if (upstreamProcessed)
        scene.nodes().at(1)->setStatus(Node::UpToDate, false);
    if (edited) {
        OutputOptions options = output->options();
        options.filesColumn = 5;
        output->setOptions(options);
    }
    const QByteArray text = Document::documentText(scene, DocumentProperties());
    const DocumentElement written = firstItem(text, QStringLiteral("outputs"));
    QCOMPARE(written.attribute(QStringLiteral("multi_file_column")), filesColumn);
    QCOMPARE(written.attribute(QStringLiteral("excel_manual_col_formats")), excelFormats);
    // The sort columns wait for the input that failed, and are written as they were read.
    const DocumentElement transform = firstItem(text, QStringLiteral("transforms"));
    QCOMPARE(transform.firstChild(QStringLiteral("parameters"))
                 ->childElements(QStringLiteral("parameter"))
                 .first()
                 ->attribute(QStringLiteral("value")),
        sep("3~-1"));
}

void TestDocument::batchSettings_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("verbosity");
    QTest::addColumn<QString>("values"); // "row:alias=value" joined with ";"
    QTest::newRow("none") << "" << 84 << 2 << "";
    QTest::newRow("current verbosity")
        << "<batch_logging verbosity=\"4\" enabled=\"1\" path=\"l%20og\" mode=\"1\"/>" << 84 << 4 << "";
    QTest::newRow("old verbose on") << "<batch_logging verbose=\"1\" verbosity=\"4\"/>" << 83 << 2 << "";
    QTest::newRow("old verbose off") << "<batch_logging verbose=\"0\"/>" << 60 << 1 << "";
    QTest::newRow("values")
        << "<batch_values><batch_value row=\"0\" alias=\"in\" value=\"%2Fa.csv\"/>"
           "<batch_value row=\"2\" alias=\"out\"/><batch_value alias=\"x\" row=\"y\"/></batch_values>"
        << 84 << 2 << "0:in=/a.csv;2:out=;0:x=";
}

void TestDocument::batchSettings()
{
    QFETCH(QString, body);
    QFETCH(int, version);
    QFETCH(int, verbosity);
    QFETCH(QString, values);
    GraphScene scene;
    DocumentProperties properties;
    QVERIFY(read(documentWith(body, version), scene, &properties));
    QCOMPARE(properties.batch.verbosity, verbosity);
    QStringList cells;
    for (const BatchValue &value : properties.batch.values)
        cells << QStringLiteral("%1:%2=%3").arg(value.row).arg(value.alias, value.value);
    QCOMPARE(cells.join(QLatin1Char(';')), values);

    GraphScene copy;
    DocumentProperties reread;
    QVERIFY(read(Document::documentText(scene, properties), copy, &reread));
    QCOMPARE(reread.batch, properties.batch);
}

void TestDocument::clipboard()
{
    GraphScene scene;
    QVERIFY(read(
        documentWith(QStringLiteral(
            "<inputs><input id=\"1\" path=\"in.csv\"/></inputs>"
            "<transforms><transform id=\"2\" name=\"Sort\" pos=\"0^100\"><parameters>"
            "<parameter name=\"Columns\" value=\"2\"/><parameter name=\"Case_Sensitive\" value=\"1\"/>"
            "</parameters></transform></transforms>"
            "<outputs><output id=\"3\" path=\"out.csv\" pos=\"0^200\"/></outputs>"
            "<notes><note id=\"4\" comment=\"n\"/></notes>"
            "<connections><connection start_id=\"1\" end_id=\"2\"/><connection start_id=\"2\" end_id=\"3\"/>"
            "</connections>")),
        scene));
    const QList<Node *> original = scene.nodes();
    for (const int index : {1, 2, 3})
        original.at(index)->setSelected(true);
    for (Connection *connection : scene.connections())
        connection->setSelected(true);

    const QByteArray payload = Document::copyText(scene);
    const std::unique_ptr<QMimeData> data(Document::copyMimeData(scene));
    QCOMPARE(data->data(QStringLiteral("application/tabrelle-transformfile")), payload);
    QCOMPARE(data->data(QStringLiteral("application/xml")), payload);
    QVERIFY(Document::canPaste(data.get()));
    const DocumentParseResult parsed = parseDocumentText(payload);
    QVERIFY(parsed.ok);
    QCOMPARE(parsed.documentType, Document::documentType());
    QVERIFY(!parsed.root.firstChild(QStringLiteral("batch_values")));
    QCOMPARE(parsed.root.firstChild(QStringLiteral("inputs"))->children().size(), 0);
    // The connection from the input is dropped: its far end isn't copied.
    QCOMPARE(parsed.root.firstChild(QStringLiteral("connections"))->children().size(), 1);

    Node::setNextId(100);
    QString error;
    QList<Node *> pasted;
    QVERIFY(Document::pasteMimeData(data.get(), scene, &error, &pasted));
    QCOMPARE(pasted.size(), 3);
    QList<int> ids;
    for (const Node *node : pasted) {
        ids << node->id();
        QVERIFY(node->isSelected());
    }
    QCOMPARE(ids, (QList<int> {100, 101, 102}));
    for (const int index : {1, 2, 3})
        QVERIFY(!original.at(index)->isSelected());
    QCOMPARE(describeConnections(scene), QStringLiteral("1>2,2>3,100>101"));
    const auto *sort = qobject_cast<TransformNode *>(pasted.at(0));
    QVERIFY(sort);
    QCOMPARE(sort->transform()->parameter(QStringLiteral("Columns"))->toText(), QStringLiteral("2"));
    QCOMPARE(sort->transform()->parameter(QStringLiteral("Case_Sensitive"))->toText(), QStringLiteral("1"));
    QCOMPARE(pasted.at(2)->comment(), QStringLiteral("n"));

    // A copy of nothing pastes nothing.
    scene.clearSelection();
    QVERIFY(Document::pasteText(Document::copyText(scene), scene, &error, &pasted));
    QCOMPARE(pasted.size(), 0);
}

void TestDocument::pasteErrors_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain text") << QByteArray("hello") << "^Paste error=.+ line=1 col=\\d+$";
    QTest::newRow("empty") << QByteArray() << "^Paste error=.+ line=\\d+ col=\\d+$";
    QTest::newRow("broken") << QByteArray("<!DOCTYPE Tabrelle>\n<root>\n<a></b>")
                            << "^Paste error=.+ line=3 col=\\d+$";
    QTest::newRow("another document type")
        << QByteArray("<!DOCTYPE html><root/>") << "^Incorrect document type pasted\\.$";
    QTest::newRow("another root") << QByteArray("<!DOCTYPE Tabrelle><html/>")
                                  << "^Incorrect document type pasted\\.$";
}

void TestDocument::pasteErrors()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, expected);
    GraphScene scene;
    QString error;
    QVERIFY(!Document::pasteText(payload, scene, &error));
    QVERIFY2(QRegularExpression(expected).match(error).hasMatch(), qPrintable(error));
    QCOMPARE(scene.nodes().size(), 0);

    // The same text offered only as XML or plain text is not a payload.
    QMimeData data;
    data.setData(QStringLiteral("application/xml"), payload);
    data.setText(QString::fromUtf8(payload));
    QVERIFY(!Document::canPaste(&data));
    QVERIFY(!Document::pasteMimeData(&data, scene, &error));
    QCOMPARE(error, QStringLiteral("Incorrect document type pasted."));
}

void TestDocument::saveFailures()
{
    QTemporaryDir dir;
    GraphScene scene;
    scene.addNode(new NoteNode);
    QString error;
    const QString missingFolder = dir.filePath(QStringLiteral("no/such/flow.tflow"));
    QVERIFY(!Document::writeDocument(missingFolder, scene, DocumentProperties(), &error));
    QCOMPARE(
        error, QStringLiteral("Can't open file '%1' to write.").arg(QDir::toNativeSeparators(missingFolder)));

    // A save that fails leaves the old document whole.
    const QString path = dir.filePath(QStringLiteral("flow.tflow"));
    QVERIFY(Document::writeDocument(path, scene, DocumentProperties(), &error));
    QFile saved(path);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray before = saved.readAll();
    saved.close();
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("flow.tflow.d")));
    QVERIFY(!Document::writeDocument(
        dir.filePath(QStringLiteral("flow.tflow.d")), scene, DocumentProperties(), &error));
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(saved.readAll(), before);

    GraphScene reread;
    DocumentProperties properties;
    QVERIFY(Document::readDocument(path, reread, &properties, &error, nullptr));
    QCOMPARE(properties.docPath, QFileInfo(path).absoluteFilePath());
    QCOMPARE(reread.nodes().size(), 1);
}

void TestDocument::writtenText()
{
    Document::setUserName(QStringLiteral("ann lee"));
    const QString text = Document::lastSavedByText();
    Document::setUserName(QString());
    QVERIFY2(
        QRegularExpression(QStringLiteral("^ann_lee_using_Tabrelle_Free_v0_1_0_on_[^ :.()]+_[^ :.()]+_at_"
                                          "2024-05-01_10_00_00$"))
            .match(text)
            .hasMatch(),
        qPrintable(text));
    QVERIFY(Document::lastSavedByText().startsWith(QStringLiteral("Tabrelle_Free_v0_1_0_on_")));

    // An empty comment leaves no attribute; an empty option value stays.
    GraphScene scene;
    QVERIFY(read(documentWith(QStringLiteral("<transforms><transform id=\"5\" name=\"Sort\" comment=\"\"/>"
                                             "</transforms>")),
        scene));
    const QByteArray written = Document::documentText(scene, DocumentProperties());
    QVERIFY(written.startsWith("<!DOCTYPE Tabrelle>\n<root>\n    <meta>\n        <version value=\"84\"/>\n"));
    QVERIFY2(
        written.contains(sep("\n    <transforms>\n        <transform id=\"5\" name=\"Sort\" pos_v12=\"0~0\" "
                             "pos=\"0^0\">\n            <parameters>\n                <parameter "
                             "name=\"Columns\" type=\"2\" value=\"\"/>\n")
                             .toUtf8()),
        written.constData());
    QVERIFY(written.endsWith(
        "    <batch_values/>\n    <batch_logging verbosity=\"2\" enabled=\"0\" mode=\"0\"/>\n</root>\n"));
}

QTEST_MAIN(TestDocument)
#include "tst_document.moc"
