#include "testutil.h"

#include "core/settings.h"
#include "flow/maxmemoryexception.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "outputs/writerregistry.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

namespace {

// An item that holds whatever dataset a test gives it.
class DataNode : public Node
{
public:
    explicit DataNode(const Dataset &dataset)
    {
        setDataset(dataset);
        setStatus(UpToDate, false);
    }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

const QByteArray Bom("\xEF\xBB\xBF");
const QByteArray NoFile("<none>");

// One output below one dataset, writing into a temporary folder; the scene has settings
// from an ini file there, so that the default blocked extensions apply.
struct Flow
{
    explicit Flow(const QString &cells = QStringLiteral("a,b\n1,2"))
        : settings(dir.filePath(QStringLiteral("settings.ini")))
    {
        scene.setSettings(&settings);
        source = new DataNode(testutil::toDataset(cells, true));
        output = new OutputNode;
        OutputOptions options = output->options();
        options.path = path(QStringLiteral("out.csv"));
        options.lineEndings = OutputOptions::Lf;
        options.byteOrderMark = false;
        output->setOptions(options);
        scene.addNode(source);
        scene.addNode(output);
        scene.connectNodes(source, output);
    }
    QString path(const QString &name) const { return dir.filePath(name); }
    void set(const std::function<void(OutputOptions &)> &change)
    {
        OutputOptions options = output->options();
        change(options);
        output->setOptions(options);
    }
    void run()
    {
        output->setStatus(Node::NeedsUpdating, false);
        output->process(false, false);
    }
    // Warnings, then information, one a line, with the folder shown as "<dir>".
    QString messages() const
    {
        return (output->warnings() + output->information())
            .join(QLatin1Char('\n'))
            .replace(QDir::toNativeSeparators(dir.path()), QStringLiteral("<dir>"));
    }

    QTemporaryDir dir;
    Settings settings;
    GraphScene scene;
    DataNode *source = nullptr;
    OutputNode *output = nullptr;
};

QByteArray contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return NoFile;
    return file.readAll();
}

void putFile(const QString &path, const QByteArray &bytes)
{
    if (bytes == NoFile)
        return;
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// "key=value;...": mode, bom, header, ifempty, encoding, lines.
void applyOptionText(OutputOptions &options, const QString &optionText)
{
    for (const QString &item : optionText.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QString key = item.section(QLatin1Char('='), 0, 0);
        const QString value = item.section(QLatin1Char('='), 1);
        if (key == QLatin1String("mode"))
            options.writeMode = value.toInt();
        else if (key == QLatin1String("bom"))
            options.byteOrderMark = value == QLatin1String("1");
        else if (key == QLatin1String("header"))
            options.writeHeader = value == QLatin1String("1");
        else if (key == QLatin1String("ifempty"))
            options.writeHeaderOnlyIfEmpty = value == QLatin1String("1");
        else if (key == QLatin1String("encoding"))
            options.encoding = value;
        else if (key == QLatin1String("lines"))
            options.lineEndings = value.toInt();
        else
            qFatal("unknown key %s", qPrintable(key));
    }
}

// A sheet reader stand-in: sheet "Full" has columns, "Bad" fails, any other is empty.
bool readTestSheet(InputNode &node, Dataset &dataset, QStringList &warnings, QStringList &)
{
    if (node.worksheet() == QLatin1String("Bad")) {
        warnings << QStringLiteral("Unreadable");
        return false;
    }
    if (node.worksheet() == QLatin1String("Full"))
        dataset = testutil::toDataset(QStringLiteral("a,b"));
    return true;
}

// A small file system of its own for the fault cases: a tmpfs mount, which needs root.
struct SmallDisk
{
    explicit SmallDisk(const QString &where, const char *size = "size=64k")
        : path(where)
    {
        QDir().mkpath(where);
        mounted = geteuid() == 0
            && QProcess::execute(QStringLiteral("mount"),
                   {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"), QLatin1String(size),
                       QStringLiteral("tmpfs"), where})
                == 0;
    }
    ~SmallDisk()
    {
        if (mounted)
            QProcess::execute(QStringLiteral("umount"), {path});
    }
    bool makeReadOnly() const
    {
        return QProcess::execute(QStringLiteral("mount"),
                   {QStringLiteral("-o"), QStringLiteral("remount,ro"), QStringLiteral("tmpfs"), path})
            == 0;
    }
    QString path;
    bool mounted = false;
};

} // namespace

class TestOutputPipeline : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void modes_data();
    void modes();
    void messages_data();
    void messages();
    void decisions_data();
    void decisions();
    void variables_data();
    void variables();
    void multiFile_data();
    void multiFile();
    void confirmation_data();
    void confirmation();
    void faults_data();
    void faults();
    void stoppedPartWay_data();
    void stoppedPartWay();
    void defaults();
};

void TestOutputPipeline::initTestCase()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("2.12.3"));
    registerOutputWriters();
    OutputNode::setWriter(IONode::Markdown, OutputNode::Writer());
    InputNode::setReader(IONode::ExcelXlsx, readTestSheet);
    InputNode::setReader(IONode::ExcelXls, InputNode::Reader());
}

void TestOutputPipeline::modes_data()
{
    QTest::addColumn<QString>("optionText");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("messages");

    const int ok = Node::UpToDate;
    const int error = Node::Error;
    const QByteArray written = Bom + "a,b\n1,2\n";
    QTest::newRow("overwrite creates")
        << "mode=1;bom=1" << NoFile << written << ok << "Created file '<dir>/out.csv'";
    QTest::newRow("overwrite replaces")
        << "mode=1;bom=1" << QByteArray("old\n") << written << ok << "Overwrote file '<dir>/out.csv'";
    QTest::newRow("append after rows")
        << "mode=2;bom=1" << QByteArray("x,y\n9,9\n") << QByteArray("x,y\n9,9\n1,2\n") << ok
        << "Appended file '<dir>/out.csv'";
    QTest::newRow("append to a mark alone: header, no second mark")
        << "mode=2;bom=1" << Bom << written << ok << "Appended file '<dir>/out.csv'";
    QTest::newRow("append to three bytes of text")
        << "mode=2" << QByteArray("abc") << QByteArray("abca,b\n1,2\n") << ok
        << "Appended file '<dir>/out.csv'";
    QTest::newRow("append to four bytes") << "mode=2" << QByteArray("x,y\n") << QByteArray("x,y\n1,2\n") << ok
                                          << "Appended file '<dir>/out.csv'";
    QTest::newRow("append with header always")
        << "mode=2;ifempty=0" << QByteArray("x,y\n") << QByteArray("x,y\na,b\n1,2\n") << ok
        << "Appended file '<dir>/out.csv'";
    QTest::newRow("append to an empty file")
        << "mode=2;bom=1" << QByteArray() << written << ok << "Appended file '<dir>/out.csv'";
    QTest::newRow("append creates") << "mode=2;bom=1" << NoFile << written << ok
                                    << "Created file '<dir>/out.csv'";
    QTest::newRow("append ignores another column order")
        << "mode=2" << QByteArray("b,a\n2,1\n") << QByteArray("b,a\n2,1\n1,2\n") << ok
        << "Appended file '<dir>/out.csv'";
    QTest::newRow("new creates") << "mode=3;bom=1" << NoFile << written << ok
                                 << "Created file '<dir>/out.csv'";
    QTest::newRow("new refuses an existing file")
        << "mode=3" << QByteArray("old") << QByteArray("old") << error
        << "Write mode='New' and '<dir>/out.csv' already exists";
    QTest::newRow("new refuses an empty file") << "mode=3" << QByteArray() << QByteArray() << error
                                               << "Write mode='New' and '<dir>/out.csv' already exists";
    QTest::newRow("mark needs a unicode encoding")
        << "bom=1;encoding=ISO-8859-1" << NoFile << QByteArray("a,b\n1,2\n") << ok
        << "Created file '<dir>/out.csv'";
    QTest::newRow("utf-16 mark in its byte order")
        << "bom=1;encoding=UTF-16LE" << NoFile << QByteArray::fromHex("fffe61002c0062000a0031002c0032000a00")
        << ok << "Created file '<dir>/out.csv'";
    QTest::newRow("header off") << "header=0" << NoFile << QByteArray("1,2\n") << ok
                                << "Created file '<dir>/out.csv'";
    QTest::newRow("header off when appending to nothing")
        << "mode=2;header=0" << QByteArray() << QByteArray("1,2\n") << ok << "Appended file '<dir>/out.csv'";
    QTest::newRow("disabled") << "mode=0" << QByteArray("old") << QByteArray("old") << ok
                              << "Write mode='Disabled'";
}

void TestOutputPipeline::modes()
{
    QFETCH(QString, optionText);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(int, status);
    QFETCH(QString, messages);
    Flow flow;
    flow.set([&optionText](OutputOptions &options) { applyOptionText(options, optionText); });
    putFile(flow.path(QStringLiteral("out.csv")), before);
    flow.run();
    QCOMPARE(contents(flow.path(QStringLiteral("out.csv"))), after);
    QCOMPARE(flow.output->status(), status);
    QCOMPARE(flow.messages(), messages);
    // Nothing is left beside the file: no temporary copy of a replaced file.
    QStringList files = QDir(flow.dir.path()).entryList(QDir::Files | QDir::Hidden);
    files.removeAll(QStringLiteral("settings.ini"));
    QCOMPARE(files, after == NoFile ? QStringList() : QStringList {QStringLiteral("out.csv")});
}

void TestOutputPipeline::messages_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("fileType");
    QTest::addColumn<int>("lineEndings");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("messages");

    const int ok = Node::UpToDate;
    const int error = Node::Error;
    const int none = IONode::NoFileType;
    const int lf = OutputOptions::Lf;
    QTest::newRow("automatic line endings")
        << "out.csv" << none << 0 << true << ok
#ifdef Q_OS_WIN
        << "Line endings=Automatic sets line endings as Windows (CRLF), set "
#else
        << "Line endings=Automatic sets line endings as Mac\\Unix (LF), set "
#endif
           "'Line endings' option to change\nCreated file '<dir>/out.csv'";
    QTest::newRow("extension of another format")
        << "out.txt" << int(IONode::DelimitedText) << lf << true << ok
        << "'out.txt' extension is 'txt' but file type is Delimited text\nCreated file '<dir>/out.txt'";
    QTest::newRow("format from the extension")
        << "out.txt" << none << lf << true << ok
        << "Column widths for reading: 2, 1\nCreated file '<dir>/out.txt'";
    QTest::newRow("plain text from .log")
        << "out.log" << none << lf << true << ok << "Created file '<dir>/out.log'";
    QTest::newRow("tsv is delimited text")
        << "out.tsv" << int(IONode::DelimitedText) << lf << true << ok << "Created file '<dir>/out.tsv'";
    QTest::newRow("unknown extension")
        << "out.dat" << int(IONode::DelimitedText) << lf << true << ok << "Created file '<dir>/out.dat'";
    QTest::newRow("blocked extension")
        << "out.sh" << int(IONode::DelimitedText) << lf << true << error
        << "The extension for this file is blocked in 'Preferences>Output Extensions':\n<dir>/out.sh";
    QTest::newRow("blocked in capitals")
        << "out.EXE" << int(IONode::DelimitedText) << lf << true << error
        << "The extension for this file is blocked in 'Preferences>Output Extensions':\n<dir>/out.EXE";
    QTest::newRow("nothing connected")
        << "out.csv" << none << lf << false << ok << "No transforms or inputs connected";
}

void TestOutputPipeline::messages()
{
    QFETCH(QString, name);
    QFETCH(int, fileType);
    QFETCH(int, lineEndings);
    QFETCH(bool, connected);
    QFETCH(int, status);
    QFETCH(QString, messages);
    Flow flow;
    flow.set([&](OutputOptions &options) {
        options.path = flow.path(name);
        options.fileType = fileType;
        options.lineEndings = lineEndings;
    });
    if (!connected)
        flow.scene.disconnectNodes(flow.source, flow.output);
    flow.run();
    QCOMPARE(flow.messages(), messages);
    QCOMPARE(flow.output->status(), status);
    QCOMPARE(QFile::exists(flow.path(name)), status == Node::UpToDate && connected);
}

void TestOutputPipeline::decisions_data()
{
    QTest::addColumn<QString>("optionText");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<bool>("bom");
    QTest::addColumn<bool>("header");

    QTest::newRow("overwrite") << "mode=1;bom=1"
                               << "out.csv" << QByteArray("full file") << "" << true << true;
    QTest::newRow("overwrite, bom off") << "mode=1;bom=0"
                                        << "out.csv" << QByteArray() << "" << false << true;
    QTest::newRow("new, utf-16") << "mode=3;bom=1;encoding=UTF-16"
                                 << "out.csv" << NoFile << "" << true << true;
    QTest::newRow("latin-1 never") << "mode=1;bom=1;encoding=ISO-8859-1"
                                   << "out.csv" << NoFile << "" << false << true;
    QTest::newRow("append, missing") << "mode=2;bom=1"
                                     << "out.csv" << NoFile << "" << true << true;
    QTest::newRow("append, empty") << "mode=2;bom=1"
                                   << "out.csv" << QByteArray() << "" << true << true;
    QTest::newRow("append, 3 bytes") << "mode=2;bom=1"
                                     << "out.csv" << QByteArray("abc") << "" << false << true;
    QTest::newRow("append, 4 bytes") << "mode=2;bom=1"
                                     << "out.csv" << QByteArray("abcd") << "" << false << false;
    QTest::newRow("append, if empty off") << "mode=2;ifempty=0"
                                          << "out.csv" << QByteArray("abcd") << "" << false << true;
    QTest::newRow("header off") << "mode=2;header=0"
                                << "out.csv" << NoFile << "" << false << false;
    QTest::newRow("sheet with columns") << "mode=2"
                                        << "book.xlsx" << QByteArray("PK..") << "Full" << false << false;
    QTest::newRow("empty sheet") << "mode=2"
                                 << "book.xlsx" << QByteArray("PK..") << "Empty" << false << true;
    QTest::newRow("unreadable sheet") << "mode=2"
                                      << "book.xlsx" << QByteArray("PK..") << "Bad" << false << true;
    QTest::newRow("no sheet named") << "mode=2"
                                    << "book.xlsx" << QByteArray("PK..") << "" << false << false;
    QTest::newRow("sheet of a text file") << "mode=2"
                                          << "out.csv" << QByteArray("abcd") << "Empty" << false << false;
    QTest::newRow("no reader for the sheet")
        << "mode=2"
        << "book.xls" << QByteArray("\xd0\xcf..") << "Full" << false << true;
}

void TestOutputPipeline::decisions()
{
    QFETCH(QString, optionText);
    QFETCH(QString, name);
    QFETCH(QByteArray, before);
    QFETCH(QString, sheet);
    QFETCH(bool, bom);
    QFETCH(bool, header);
    Flow flow;
    flow.set([&optionText](OutputOptions &options) { applyOptionText(options, optionText); });
    const QString path = flow.path(name);
    putFile(path, before);
    QCOMPARE(flow.output->byteOrderMarkDecision(path), bom);
    QCOMPARE(flow.output->headerDecision(path, sheet), header);
}

void TestOutputPipeline::variables_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("expectedPath");
    QTest::addColumn<QString>("expectedSheet");

    QTest::newRow("excel input alias") << "{sales}.csv"
                                       << ""
                                       << "orders_North.csv"
                                       << "";
    QTest::newRow("alias parts") << "{sales.fname}-{sales.ext}-{sales.sheet}.csv"
                                 << ""
                                 << "orders-xlsx-North.csv"
                                 << "";
    QTest::newRow("text input has no sheet") << "{people}_{people.sheet}.csv"
                                             << ""
                                             << "people_.csv"
                                             << "";
    QTest::newRow("document name") << "{transformfname}.csv"
                                   << ""
                                   << "monthly.csv"
                                   << "";
    QTest::newRow("version") << "{version}.csv"
                             << ""
                             << "v2_12_3.csv"
                             << "";
    QTest::newRow("unknown left alone") << "{nobody}.csv"
                                        << ""
                                        << "{nobody}.csv"
                                        << "";
    QTest::newRow("sheet expanded too") << "out.csv"
                                        << "{sales.sheet} copy"
                                        << "out.csv"
                                        << "North copy";
}

void TestOutputPipeline::variables()
{
    QFETCH(QString, path);
    QFETCH(QString, sheet);
    QFETCH(QString, expectedPath);
    QFETCH(QString, expectedSheet);
    Flow flow;
    flow.scene.setProperty("documentPath", flow.path(QStringLiteral("monthly.tflow")));
    auto *sales = new InputNode;
    sales->setPath(QStringLiteral("/data/orders.xlsx"));
    sales->setWorksheet(QStringLiteral("North"));
    sales->setAlias(QStringLiteral("sales"));
    auto *people = new InputNode;
    people->setPath(QStringLiteral("/data/people.csv"));
    people->setWorksheet(QStringLiteral("ignored"));
    people->setAlias(QStringLiteral("people"));
    flow.scene.addNode(sales);
    flow.scene.addNode(people);
    flow.set([&](OutputOptions &options) {
        options.path = flow.dir.path() + QLatin1Char('/') + path;
        options.sheet = sheet;
    });
    flow.run();
    QCOMPARE(QFileInfo(flow.output->targetPath()).fileName(), expectedPath);
    QCOMPARE(flow.output->targetSheet(), expectedSheet);
    QVERIFY(QFile::exists(flow.path(expectedPath)));
    QCOMPARE(flow.output->writtenFiles(), QStringList {QDir::toNativeSeparators(flow.path(expectedPath))});
}

void TestOutputPipeline::multiFile_data()
{
    QTest::addColumn<QString>("cells"); // "<dir>" stands for the flow's folder, "^" for a control character
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<QString>("existing"); // "name=contents;..."; a name ending in "/" is a folder
    QTest::addColumn<QString>("expected"); // "name=contents;..."
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("messages");

    const int ok = Node::UpToDate;
    const int error = Node::Error;
    const QString nothing;
    QTest::newRow("rows to their files")
        << "file,v\na.csv,1\nb.csv,2\na.csv,3" << 1 << 1 << true << nothing << "a.csv=v|1|3|;b.csv=v|2|" << ok
        << "Created file '<dir>/a.csv'\nCreated file '<dir>/b.csv'\n2 file(s) written";
    QTest::newRow("files column in the middle")
        << "k,file,v\nx,a.csv,1" << 2 << 1 << true << nothing << "a.csv=k,v|x,1|" << ok
        << "Created file '<dir>/a.csv'\n1 file(s) written";
    QTest::newRow("two spellings of one file")
        << "file,v\na.csv,1\n./a.csv,2\n<dir>/a.csv,3" << 1 << 1 << true << nothing << "a.csv=v|1|2|3|" << ok
        << "Created file '<dir>/a.csv'\n1 file(s) written";
    QTest::newRow("sub folder") << "file,v\nsub/a.csv,1" << 1 << 1 << true << "sub/="
                                << "sub/a.csv=v|1|" << ok
                                << "Created file '<dir>/sub/a.csv'\n1 file(s) written";
    QTest::newRow("absolute path without a saved document")
        << "file,v\n<dir>/a.csv,1" << 1 << 1 << false << nothing << "a.csv=v|1|" << ok
        << "Created file '<dir>/a.csv'\n1 file(s) written";
    QTest::newRow("append") << "file,v\na.csv,1" << 1 << 2 << true << "a.csv=v|0|"
                            << "a.csv=v|0|1|" << ok << "Appended file '<dir>/a.csv'\n1 file(s) written";
    QTest::newRow("new keeps an existing file")
        << "file,v\na.csv,1\nb.csv,2" << 1 << 3 << true << "a.csv=old"
        << "a.csv=old;b.csv=v|2|" << error
        << "Write mode='New' and '<dir>/a.csv' already exists\nCreated file '<dir>/b.csv'\n1 file(s) written";
    QTest::newRow("no rows") << "file,v" << 1 << 1 << true << nothing << nothing << ok << "0 files written";
    QTest::newRow("extension of another format told once")
        << "file,v\na.json,1\nb.json,2" << 1 << 1 << true << nothing << "a.json=v|1|;b.json=v|2|" << ok
        << "'a.json' extension is 'json' but file type is Delimited text\nCreated file '<dir>/a.json'\n"
           "Created file '<dir>/b.json'\n2 file(s) written";
    QTest::newRow("no files column") << "file,v\na.csv,1" << 0 << 1 << true << nothing << nothing << error
                                     << "No column set for 'Files column'";
    QTest::newRow("files column past the end") << "file,v\na.csv,1" << 3 << 1 << true << nothing << nothing
                                               << error << "No column set for 'Files column'";
    QTest::newRow("empty value writes nothing")
        << "file,v\na.csv,1\n,2" << 1 << 1 << true << nothing << nothing << error << "Empty value for row 2";
    QTest::newRow("blank name") << "file,v\n  ,1" << 1 << 1 << true << nothing << nothing << error
                                << "no file name for row 1";
    QTest::newRow("folder without a name") << "file,v\nsub/,1" << 1 << 1 << true << "sub/=" << nothing
                                           << error << "No file name for 'sub/' at row 1";
    QTest::newRow("control character") << "file,v\na^.csv,1" << 1 << 1 << true << nothing << nothing << error
                                       << "File path not valid for 'a\x01.csv' at row 1";
    QTest::newRow("missing folder") << "file,v\nnone/a.csv,1" << 1 << 1 << true << nothing << nothing << error
                                    << "Folder does not exist for 'none/a.csv' at row 1";
    QTest::newRow("relative without a saved document")
        << "file,v\na.csv,1" << 1 << 1 << false << nothing << nothing << error
        << "Relative file path for 'a.csv' at row 1, but .tflow not saved for it to be relative to.";
    QTest::newRow("blocked extension")
        << "file,v\na.exe,1" << 1 << 1 << true << nothing << nothing << error
        << "Extension for 'a.exe' is blocked in 'Preferences>Output Extensions'.";
    QTest::newRow("a bad value told once")
        << "file,v\nnone/a.csv,1\nnone/a.csv,2" << 1 << 1 << true << nothing << nothing << error
        << "Folder does not exist for 'none/a.csv' at row 1";
    QTest::newRow("six problems") << "file,v\n,1\n,2\n,3\n,4\n,5\n,6" << 1 << 1 << true << nothing << nothing
                                  << error
                                  << "Empty value for row 1\nEmpty value for row 2\nEmpty value for row 3\n"
                                     "Empty value for row 4\nEmpty value for row 5\n+ 1 other";
    QTest::newRow("seven problems")
        << "file,v\n,1\n,2\n,3\n,4\nx/a,5\n,6\n,7" << 1 << 1 << true << nothing << nothing << error
        << "Empty value for row 1\nEmpty value for row 2\nEmpty value for row 3\n"
           "Empty value for row 4\nFolder does not exist for 'x/a' at row 5\n+ 2 others";
}

void TestOutputPipeline::multiFile()
{
    QFETCH(QString, cells);
    QFETCH(int, column);
    QFETCH(int, mode);
    QFETCH(bool, saved);
    QFETCH(QString, existing);
    QFETCH(QString, expected);
    QFETCH(int, status);
    QFETCH(QString, messages);
    Flow flow;
    cells.replace(QStringLiteral("<dir>"), flow.dir.path()).replace(QLatin1Char('^'), QChar(1));
    flow.source->setDataset(testutil::toDataset(cells, true));
    const QDir dir(flow.dir.path());
    if (saved)
        flow.scene.setProperty("documentPath", flow.path(QStringLiteral("flow.tflow")));
    flow.set([&](OutputOptions &options) {
        options.outputTo = OutputOptions::MultipleFiles;
        options.filesColumn = column;
        options.writeMode = mode;
    });
    const auto files = [](const QString &list) {
        QMap<QString, QByteArray> result;
        for (const QString &item : list.split(QLatin1Char(';'), Qt::SkipEmptyParts))
            result.insert(item.section(QLatin1Char('='), 0, 0),
                item.section(QLatin1Char('='), 1).replace(QLatin1Char('|'), QLatin1Char('\n')).toUtf8());
        return result;
    };
    const QMap<QString, QByteArray> before = files(existing);
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (it.key().endsWith(QLatin1Char('/')))
            QVERIFY(dir.mkpath(it.key()));
        else
            putFile(flow.path(it.key()), it.value());
    }
    flow.run();
    QCOMPARE(flow.messages(), messages);
    QCOMPARE(flow.output->status(), status);
    QMap<QString, QByteArray> after;
    for (const QString &name :
        dir.entryList({QStringLiteral("*.csv"), QStringLiteral("*.json")}, QDir::Files))
        after.insert(name, contents(flow.path(name)));
    if (QFileInfo(flow.path(QStringLiteral("sub"))).isDir()) {
        for (const QString &name : QDir(flow.path(QStringLiteral("sub"))).entryList(QDir::Files))
            after.insert(QStringLiteral("sub/") + name, contents(flow.path(QStringLiteral("sub/") + name)));
    }
    QMap<QString, QByteArray> wanted = files(expected);
    wanted.remove(QStringLiteral("sub/"));
    QCOMPARE(after, wanted);
}

void TestOutputPipeline::confirmation_data()
{
    QTest::addColumn<QString>("values"); // files in row order; "*" marks one that exists
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("messages");

    QTest::newRow("new and overwritten")
        << "b *a b" << 1 << true
        << "1 new file(s) to be created:\n<dir>/b.csv\n1 existing file(s) to be overwritten:\n<dir>/a.csv\n"
           "2 file(s) will be written"
        << "Created file '<dir>/b.csv'\nOverwrote file '<dir>/a.csv'\n2 file(s) written";
    QTest::newRow("appended")
        << "*a" << 2 << true
        << "1 existing file(s) to be appended to:\n<dir>/a.csv\n1 file(s) will be written"
        << "Appended file '<dir>/a.csv'\n1 file(s) written";
    QTest::newRow("new mode spares existing")
        << "*a b" << 3 << true
        << "1 new file(s) to be created:\n<dir>/b.csv\n1 existing file(s) will not be "
           "overwritten:\n<dir>/a.csv\n"
           "1 file(s) will be written"
        << "Write mode='New' and '<dir>/a.csv' already exists\nCreated file '<dir>/b.csv'\n1 file(s) written";
    QTest::newRow("long list cut")
        << "f01 f02 f03 f04 f05 f06 f07 f08 f09 f10 f11" << 1 << false
        << "11 new file(s) to be created:\n<dir>/f01.csv\n<dir>/f02.csv\n<dir>/f03.csv\n<dir>/f04.csv\n"
           "<dir>/f05.csv\n<dir>/f06.csv\n<dir>/f07.csv\n<dir>/f08.csv\n<dir>/f09.csv\n<dir>/"
           "f10.csv\n...etc\n"
           "11 file(s) will be written"
        << "Output cancelled by user";
    QTest::newRow("cancelled")
        << "*a b" << 1 << false
        << "1 new file(s) to be created:\n<dir>/b.csv\n1 existing file(s) to be overwritten:\n"
           "<dir>/a.csv\n2 file(s) will be written"
        << "Output cancelled by user";
}

void TestOutputPipeline::confirmation()
{
    QFETCH(QString, values);
    QFETCH(int, mode);
    QFETCH(bool, answer);
    QFETCH(QString, summary);
    QFETCH(QString, messages);
    QStringList rows {QStringLiteral("file,v")};
    QStringList existing;
    for (QString value : values.split(QLatin1Char(' '))) {
        if (value.startsWith(QLatin1Char('*')))
            existing << value.remove(0, 1);
        rows << value + QStringLiteral(".csv,1");
    }
    Flow flow(rows.join(QLatin1Char('\n')));
    flow.scene.setProperty("documentPath", flow.path(QStringLiteral("flow.tflow")));
    for (const QString &name : existing)
        putFile(flow.path(name + QStringLiteral(".csv")), "old\n");
    flow.set([&](OutputOptions &options) {
        options.outputTo = OutputOptions::MultipleFiles;
        options.filesColumn = 1;
        options.writeMode = mode;
    });
    QString title;
    QString text;
    OutputNode::setConfirmation([&](const QString &t, const QString &x) {
        title = t;
        text = x;
        return answer;
    });
    flow.run();
    QCOMPARE(title, QStringLiteral("Multi file output"));
    QCOMPARE(text.replace(QDir::toNativeSeparators(flow.dir.path()), QStringLiteral("<dir>")), summary);
    QCOMPARE(flow.messages(), messages);
    QCOMPARE(flow.output->status(), answer && mode != OutputOptions::New ? Node::UpToDate : Node::Error);
    if (!answer) {
        for (const QString &name : existing)
            QCOMPARE(contents(flow.path(name + QStringLiteral(".csv"))), QByteArray("old\n"));
        QCOMPARE(QDir(flow.dir.path()).entryList({QStringLiteral("*.csv")}).size(), existing.size());
    }
    // Without its option the question isn't asked.
    text.clear();
    flow.set([](OutputOptions &options) { options.confirmMultiFile = false; });
    flow.run();
    QVERIFY(text.isEmpty());
    OutputNode::setConfirmation(OutputNode::Confirmation());
}

void TestOutputPipeline::faults_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("message");

    const QStringList faults {QStringLiteral("full disk"), QStringLiteral("read-only folder"),
        QStringLiteral("path is a folder"), QStringLiteral("missing folder")};
    for (const QString &fault : faults) {
        const bool folder = fault == QLatin1String("path is a folder");
        QTest::addRow("%s, overwrite", qPrintable(fault)) << fault << 1 << "Unable to write '%1'";
        QTest::addRow("%s, append", qPrintable(fault)) << fault << 2 << "Unable to append to '%1'";
        QTest::addRow("%s, new", qPrintable(fault))
            << fault << 3 << (folder ? "Write mode='New' and '%1' already exists" : "Unable to create '%1'");
    }
}

void TestOutputPipeline::faults()
{
    QFETCH(QString, fault);
    QFETCH(int, mode);
    QFETCH(QString, message);
    // Enough rows to fill the small disk several times over.
    QStringList rows {QStringLiteral("id,text")};
    for (int r = 0; r < 5000; ++r)
        rows << QStringLiteral("%1,%2").arg(r).arg(QString(40, QLatin1Char('x')));
    Flow flow(rows.join(QLatin1Char('\n')));
    const QByteArray previous("id,text\nprevious,contents\n");
    QString folder = flow.path(QStringLiteral("disk"));
    std::unique_ptr<SmallDisk> disk;
    if (fault == QLatin1String("full disk") || fault == QLatin1String("read-only folder")) {
        disk = std::make_unique<SmallDisk>(folder);
        if (!disk->mounted && fault == QLatin1String("full disk"))
            QSKIP("A full disk needs a tmpfs mount, which needs root");
    } else {
        QDir().mkpath(folder);
    }
    // New writes a file of its own; the other modes meet the previous file.
    const QString path =
        folder + (mode == OutputOptions::New ? QStringLiteral("/fresh.csv") : QStringLiteral("/out.csv"));
    if (fault == QLatin1String("missing folder")) {
        folder = flow.path(QStringLiteral("missing"));
    } else if (fault == QLatin1String("path is a folder")) {
        QDir().mkpath(path);
    } else {
        putFile(folder + QStringLiteral("/out.csv"), previous);
    }
    const QString target =
        fault == QLatin1String("missing folder") ? folder + QStringLiteral("/out.csv") : path;
    if (fault == QLatin1String("read-only folder")) {
        if (disk->mounted)
            QVERIFY(disk->makeReadOnly());
        else
            QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    }
    flow.set([&](OutputOptions &options) {
        options.path = target;
        options.writeMode = mode;
    });
    flow.run();
    if (fault == QLatin1String("read-only folder") && !disk->mounted)
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(flow.messages(), message.arg(QStringLiteral("<dir>") + target.mid(flow.dir.path().size())));
    QCOMPARE(flow.output->status(), int(Node::Error));
    QVERIFY(flow.output->writtenFiles().isEmpty());
    if (fault == QLatin1String("path is a folder"))
        QVERIFY(QFileInfo(target).isDir());
    else if (mode == OutputOptions::New || fault == QLatin1String("missing folder"))
        QVERIFY(!QFile::exists(target));
    else
        QCOMPARE(contents(target), previous);
    // Nothing is left behind beside the file.
    if (QFileInfo(folder).isDir() && fault != QLatin1String("path is a folder")) {
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList {QStringLiteral("out.csv")});
    }
}

void TestOutputPipeline::stoppedPartWay_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("before");

    QTest::newRow("overwrite") << 1 << QByteArray("old,file\n");
    QTest::newRow("append") << 2 << QByteArray("old,file\n");
    QTest::newRow("append creating") << 2 << NoFile;
    QTest::newRow("new") << 3 << NoFile;
}

// A run stopped by the memory limit leaves a write by an exception: the file must still be
// as it was.
void TestOutputPipeline::stoppedPartWay()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, before);
    QStringList rows {QStringLiteral("id,text")};
    for (int r = 0; r < 3000; ++r)
        rows << QStringLiteral("%1,%2").arg(r).arg(QString(600, QLatin1Char('y')));
    Flow flow(rows.join(QLatin1Char('\n')));
    const QString path = flow.path(QStringLiteral("out.csv"));
    putFile(path, before);
    flow.set([mode](OutputOptions &options) { options.writeMode = mode; });
    int probes = 0;
    flow.scene.setMemoryProbe([&probes] { return ++probes > 1 ? 1e9 : 0.0; });
    bool thrown = false;
    try {
        flow.run();
    } catch (const MaxMemoryException &) {
        thrown = true;
    }
    QVERIFY(thrown);
    QCOMPARE(contents(path), before);
    QStringList files = QDir(flow.dir.path()).entryList(QDir::Files | QDir::Hidden);
    files.removeAll(QStringLiteral("settings.ini"));
    QCOMPARE(files, before == NoFile ? QStringList() : QStringList {QStringLiteral("out.csv")});
}

void TestOutputPipeline::defaults()
{
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("settings.ini")));
    OutputNode factory;
    factory.applyDefaults(&settings);
    const OutputOptions made = factory.options();
    QCOMPARE(made.delimiter, 1);
    QCOMPARE(made.quoting, int(OutputOptions::QuotingAutomatic));
    QCOMPARE(made.encoding, QStringLiteral("UTF-8"));
    QCOMPARE(made.writeMode, int(OutputOptions::Overwrite));
    QCOMPARE(made.fileComment, QStringLiteral(" File created by %1 %2 at %3 %4 "));
    QVERIFY(made.byteOrderMark && made.writeHeader && made.writeHeaderOnlyIfEmpty && made.confirmMultiFile);

    // What one output remembers, the next new one starts with.
    OutputNode chosen;
    OutputOptions options = chosen.options();
    options.delimiter = 5;
    options.customDelimiter = QLatin1Char('#');
    options.lineEndings = OutputOptions::Crlf;
    options.byteOrderMark = false;
    options.xmlRootName = QStringLiteral("rows");
    options.writeHeader = false;
    options.fileComment = QStringLiteral("made, by hand");
    chosen.setOptions(options);
    chosen.saveDefaults(&settings);
    OutputNode next;
    next.applyDefaults(&settings);
    const OutputOptions taken = next.options();
    QCOMPARE(taken.delimiter, 5);
    QCOMPARE(taken.customDelimiter, QLatin1Char('#'));
    QCOMPARE(taken.lineEndings, int(OutputOptions::Crlf));
    QVERIFY(!taken.byteOrderMark && !taken.writeHeader);
    QCOMPARE(taken.xmlRootName, QStringLiteral("rows"));
    QCOMPARE(taken.fileComment, QStringLiteral("made, by hand"));

    // A number that doesn't read keeps the factory value.
    settings.setValue(QStringLiteral("defaults/outputs/delimiter"), QStringLiteral("pipe"));
    OutputNode edited;
    edited.applyDefaults(&settings);
    QCOMPARE(edited.options().delimiter, 1);
}

QTEST_MAIN(TestOutputPipeline)
#include "tst_outputpipeline.moc"
