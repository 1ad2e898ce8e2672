#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSize>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

// Whole flows run by the tabrelle executable with -cli, as a user runs them from a shell:
// the report at each verbosity, the return value, -file assignments, the log file and
// the files written.
class TestHeadless : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void run_data();
    void run();
    void aliasesChooseFiles();
    void logFileHoldsTheReport();
    void rowCounterGrows();
    void examples_data();
    void examples();
    void examplesAreWhatTheBuilderMakes();

private:
    struct Result
    {
        int exitCode = -1;
        QStringList out;
        QStringList err;
    };
    Result runTabrelle(const QStringList &arguments, const QString &workingDirectory = QString());
    QProcessEnvironment m_environment;
    QTemporaryDir m_dir;
};

namespace {

// A document of items given as elements, connected as "1>2 2>3".
QByteArray flowText(const QString &items, const QString &connections)
{
    QString text = QStringLiteral("<?xml version=\"1.0\"?>\n<!DOCTYPE Tabrelle>\n<root>\n"
                                  "<meta><version value=\"84\"/></meta>\n");
    text += items;
    text += QStringLiteral("<connections>");
    for (const QString &pair : connections.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QStringList ends = pair.split(QLatin1Char('>'));
        text += QStringLiteral("<connection start_id=\"%1\" end_id=\"%2\"/>").arg(ends.at(0), ends.at(1));
    }
    text += QStringLiteral("</connections>\n</root>\n");
    return text.toUtf8();
}

QString input(int id, const QString &path, const QString &alias = QString())
{
    return QStringLiteral("<inputs><input id=\"%1\" path=\"%2\" alias=\"%3\" header=\"1\"/></inputs>\n")
        .arg(id)
        .arg(path, alias);
}

QString output(int id, const QString &path, const QString &alias = QString(), int writeMode = 1)
{
    return QStringLiteral("<output id=\"%1\" path=\"%2\" alias=\"%3\" enable_output=\"%4\"/>")
        .arg(id)
        .arg(path, alias)
        .arg(writeMode);
}

QString outputs(const QStringList &elements)
{
    return QStringLiteral("<outputs>") + elements.join(QString()) + QStringLiteral("</outputs>\n");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write(bytes);
}

// The pixel size a PNG or JPEG file declares, read from its header; invalid when the file
// is neither.
QSize imageSize(const QByteArray &bytes)
{
    const auto byteAt = [&bytes](int i) { return int(uchar(bytes.at(i))); };
    const auto word = [&](int i) { return (byteAt(i) << 8) | byteAt(i + 1); };
    if (bytes.startsWith("\x89PNG\r\n\x1a\n") && bytes.size() >= 24)
        return QSize((word(16) << 16) | word(18), (word(20) << 16) | word(22));
    if (!bytes.startsWith("\xff\xd8"))
        return QSize();
    for (int i = 2; i + 9 < bytes.size();) {
        if (byteAt(i) != 0xFF)
            return QSize();
        const int marker = byteAt(i + 1);
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC)
            return QSize(word(i + 7), word(i + 5));
        i += 2 + word(i + 2);
    }
    return QSize();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Output lines without colour codes, with the times and dates that change from run to run
// replaced by "*" and the test folder by "$DIR".
QStringList lines(const QByteArray &bytes, const QString &dir)
{
    QString text = QString::fromUtf8(bytes);
    text.remove(QRegularExpression(QStringLiteral("\x1b\\[\\d+m")));
    text.replace(
        QRegularExpression(QStringLiteral("^(Started|Finished): .+$"), QRegularExpression::MultilineOption),
        QStringLiteral("\\1: *"));
    text.replace(QRegularExpression(QStringLiteral("^Elapsed: \\d+\\.\\d\\d\\d second\\(s\\)$"),
                     QRegularExpression::MultilineOption),
        QStringLiteral("Elapsed: * second(s)"));
    text.replace(dir, QStringLiteral("$DIR"));
    QStringList result = text.split(QLatin1Char('\n'));
    if (!result.isEmpty() && result.last().isEmpty())
        result.removeLast();
    return result;
}

} // namespace

void TestHeadless::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QDir::setCurrent(m_dir.path());
    m_environment = QProcessEnvironment::systemEnvironment();
    // Keep the program's settings away from the user's own.
    m_environment.insert(QStringLiteral("HOME"), m_dir.path());
    m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("config")));
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));

    writeFile(QStringLiteral("in.csv"), "name,qty\nAnn,1\nBob,2\nCy,3\n");
    writeFile(QStringLiteral("other.csv"), "city\nOslo\n");
    writeFile(QStringLiteral("empty.tflow"), QByteArray());
    writeFile(QStringLiteral("pass.tflow"),
        flowText(input(1, "in.csv", "in") + outputs({output(2, "out.csv", "out")}), "1>2"));
    writeFile(QStringLiteral("broken.tflow"),
        flowText(input(1, "missing.csv", "in") + outputs({output(2, "never.csv")}), "1>2"));
    // Two outputs on one path, and one that writes nothing.
    writeFile(QStringLiteral("twice.tflow"),
        flowText(input(1, "in.csv")
                + outputs({output(2, "same.csv"), output(3, "same.csv"), output(4, "off.csv", "", 0)}),
            "1>2 1>3 1>4"));
    writeFile(QStringLiteral("unknown.tflow"),
        flowText(input(1, "in.csv")
                + QStringLiteral("<transforms><transform id=\"2\" name=\"Frobnicate\"/>"
                                 "</transforms>\n")
                + outputs({output(3, "unknown.csv")}),
            "1>3"));
}

TestHeadless::Result TestHeadless::runTabrelle(const QStringList &arguments, const QString &workingDirectory)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    if (!workingDirectory.isEmpty())
        process.setWorkingDirectory(workingDirectory);
    process.start(QStringLiteral(TABRELLE_EXECUTABLE), arguments);
    Result result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    result.out = lines(process.readAllStandardOutput(), m_dir.path());
    result.err = lines(process.readAllStandardError(), m_dir.path());
    return result;
}

void TestHeadless::run_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("out");
    QTest::addColumn<QStringList>("err");

    const QString inLine = "'in.csv', Id=1, [Up to date],   Input: 2 cols x 3 rows";
    const QString outLine = "'out.csv', Id=2, [Up to date],   Output: 2 cols x 3 rows";
    const QString processed = "Processed: 1 Input(s), 0 Transform(s), 1 Output(s), 0 Chart(s)";
    const QString elapsed = "Elapsed: * second(s)";
    const QStringList aborted {"Aborted processing"};

    QTest::newRow("0: nothing printed")
        << QStringList {"-cli", "pass.tflow"} << 0 << QStringList() << QStringList();
    QTest::newRow("1: summary only") << QStringList {"-cli", "-verbosity", "1", "pass.tflow"} << 0
                                     << QStringList {"", processed, "Outputs written: 1", elapsed,
                                            "Results: 0 error(s)"}
                                     << QStringList();
    QTest::newRow("2: status lines and warnings counted")
        << QStringList {"-cli", "-verbose", "pass.tflow"} << 0
        << QStringList {"", "File: 'pass.tflow'", "Started: *", inLine, outLine, "Finished: *", processed,
               "Outputs written: 1", elapsed, "Results: 0 error(s), 0 warning(s)"}
        << QStringList();
    QTest::newRow("3: extended status lines, paths written")
        << QStringList {"-cli", "-verbosity", "3", "pass.tflow"} << 0
        << QStringList {"", "File: 'pass.tflow'", "Started: *", inLine + ", 0 warning(s)",
               outLine + ", 0 warning(s)", "Finished: *", processed, "Outputs written: 1", "  $DIR/out.csv",
               elapsed, "Results: 0 error(s), 0 warning(s)"}
        << QStringList();

    QTest::newRow("4: information lines too")
        << QStringList {"-cli", "-verbosity", "4", "pass.tflow"} << 0
        << QStringList {"", "File: 'pass.tflow'", "Started: *", inLine + ", 0 warning(s)",
               "    Info: Read file '$DIR/in.csv'",
               "    Info: Encoding=Automatic guesses 'UTF-8', set 'Encoding' option to change",
               "    Info: Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change",
               outLine + ", 0 warning(s)",
               "    Info: Line endings=Automatic sets line endings as Mac\\Unix (LF), set 'Line endings' "
               "option to "
               "change",
               "    Info: Overwrote file '$DIR/out.csv'", "Finished: *", processed, "Outputs written: 1",
               "  $DIR/out.csv", elapsed, "Results: 0 error(s), 0 warning(s)"}
        << QStringList();

    QTest::newRow("a failed item at verbosity 0 still returns 0")
        << QStringList {"-cli", "broken.tflow"} << 0 << QStringList() << QStringList();
    QTest::newRow("a failed item at verbosity 1 returns 1")
        << QStringList {"-cli", "-verbosity", "1", "broken.tflow"} << 1
        << QStringList {"", "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 0 Chart(s)", "Outputs written: 0",
               elapsed, "Results: 2 error(s)"}
        << QStringList();
    QTest::newRow("failed items are red at verbosity 2")
        << QStringList {"-cli", "-verbosity", "2", "broken.tflow"} << 1
        << QStringList {"", "File: 'broken.tflow'", "Started: *", "Finished: *",
               "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 0 Chart(s)", "Outputs written: 0", elapsed,
               "Results: 2 error(s), 1 warning(s)"}
        << QStringList {"'missing.csv', Id=1, [Error],   Input: No data",
               "'never.csv', Id=2, [Needs updating],   Output: No data"};

    QTest::newRow("one path written twice; a disabled output is passed over")
        << QStringList {"-cli", "-verbosity", "3", "twice.tflow"} << 0
        << QStringList {"", "File: 'twice.tflow'", "Started: *", inLine + ", 0 warning(s)",
               "'same.csv', Id=2, [Up to date],   Output: 2 cols x 3 rows, 0 warning(s)",
               "'same.csv', Id=3, [Up to date],   Output: 2 cols x 3 rows, 1 warning(s)",
               "    Warning: Overwrote '$DIR/same.csv' 2 times", "Finished: *",
               "Processed: 1 Input(s), 0 Transform(s), 2 Output(s), 0 Chart(s)", "Outputs written: 1", "  $DIR/same.csv",
               "Overwritten multiple times: 1", "  Warning: Overwrote '$DIR/same.csv' 2 times", elapsed,
               "Results: 0 error(s), 2 warning(s)"}
        << QStringList();

    QTest::newRow("what the read dropped is told even when silent")
        << QStringList {"-cli", "unknown.tflow"} << 0 << QStringList()
        << QStringList {"The following unknown transforms were not added:", "'Frobnicate' (1 occurrence)"};

    QTest::newRow("-file with two '='")
        << QStringList {"-cli", "pass.tflow", "-file", "a=b=c"} << 255 << QStringList()
        << QStringList {"Expected <alias>=<value> for a=b=c argument"} + aborted;
    QTest::newRow("-file without '='") << QStringList {"-cli", "pass.tflow", "-file",
        "in"} << 255 << QStringList() << QStringList {"Expected <alias>=<value> for in argument"} + aborted;
    QTest::newRow("-file with an unknown alias") << QStringList {"-cli", "-file", "sales=other.csv",
        "pass.tflow"} << 255 << QStringList() << QStringList {"Alias 'sales' not recognized"} + aborted;
    QTest::newRow("-file naming a missing input file") << QStringList {"-cli", "-file", "in=gone.csv[Sheet1]",
        "pass.tflow"} << 255 << QStringList() << QStringList {"File 'gone.csv' does not exist"} + aborted;
    QTest::newRow("an empty document")
        << QStringList {"-cli", "-verbosity", "1", "empty.tflow"} << 255 << QStringList {""}
        << QStringList {"Unable to open 'empty.tflow': File 'empty.tflow' is empty (size=0)."} + aborted;
}

void TestHeadless::run()
{
    QFETCH(QStringList, arguments);
    const Result result = runTabrelle(arguments);
    QTEST(result.err, "err");
    QTEST(result.out, "out");
    QTEST(result.exitCode, "exitCode");
}

void TestHeadless::aliasesChooseFiles()
{
    // Aliases are trimmed; the output path is not checked, the input path is.
    const Result result = runTabrelle(
        {"-cli", "-verbosity", "1", "-file", " in =other.csv", "-file", "out=chosen.csv", "pass.tflow"});
    QCOMPARE(result.err, QStringList());
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(readFile(QStringLiteral("chosen.csv")),
        QByteArray("\xef\xbb\xbf"
                   "city\nOslo\n"));
}

void TestHeadless::logFileHoldsTheReport()
{
    const QString log = m_dir.filePath(QStringLiteral("run.log"));
    const Result result = runTabrelle({"-cli", "-verbose", "-overwrite", "-log", log, "broken.tflow"});
    QCOMPARE(result.exitCode, 1);
    // The console names the log; the log holds the rest, error lines without colour.
    QCOMPARE(result.out.last(), QStringLiteral("Log: $DIR/run.log"));
    QStringList logLines = lines(readFile(log), m_dir.path());
    QCOMPARE(logLines,
        (QStringList {"", "File: 'broken.tflow'", "Started: *",
            "'missing.csv', Id=1, [Error],   Input: No data",
            "'never.csv', Id=2, [Needs updating],   Output: No data", "Finished: *",
            "Processed: 0 Input(s), 0 Transform(s), 0 Output(s), 0 Chart(s)", "Outputs written: 0",
            "Elapsed: * second(s)", "Results: 2 error(s), 1 warning(s)"}));
    QVERIFY(!readFile(log).contains('\x1b'));
}

void TestHeadless::rowCounterGrows()
{
    const QString store = m_dir.filePath(QStringLiteral("config/Tabrelle/Tabrelle.conf"));
    const auto counter = [&store] {
        return QSettings(store, QSettings::IniFormat)
            .value(QStringLiteral("lifetime_rows_processed"))
            .toLongLong();
    };
    const qint64 before = counter();
    writeFile(QStringLiteral("counted.tflow"),
        flowText(input(1, "in.csv")
                + QStringLiteral("<transforms><transform id=\"2\" name=\"Filter\"/>"
                                 "<transform id=\"3\" name=\"Sort\"/></transforms>\n")
                + outputs({output(4, "counted.csv")}),
            "1>2 2>3 3>4"));
    QCOMPARE(runTabrelle({"-cli", "counted.tflow"}).exitCode, 0);
    // Rows count once per transform that made them.
    QCOMPARE(counter(), before + 6);
}

void TestHeadless::examples_data()
{
    QTest::addColumn<QString>("flow");
    QTest::addColumn<QStringList>("written"); // under the example's folder
    QTest::addColumn<QList<QSize>>("imageSizes"); // of the PNG and JPEG files written, in order

    // The sales flow filters, joins and calculates: 38 of the 48 orders with their customers.
    QTest::newRow("sales") << "sales/clean-and-merge.tflow"
                           << QStringList {"output/sales-by-customer.csv", "output/sales-by-customer.xlsx"}
                           << QList<QSize>();
    QTest::newRow("contacts") << "contacts/contacts.tflow"
                              << QStringList {"output/contacts.json", "output/contacts.xml",
                                     "output/contacts.yaml", "output/contacts.vcf"}
                              << QList<QSize>();
    QTest::newRow("charts") << "charts/monthly-sales.tflow"
                            << QStringList {"output/monthly-sales-lines.png", "output/monthly-sales-stacked.pdf",
                                   "output/monthly-sales-by-region.jpg"}
                            << QList<QSize> {QSize(1200, 800), QSize(1600, 1000)};
}

void TestHeadless::examples()
{
    // A copy, so that the run writes nothing into the source tree.
    QFETCH(QString, flow);
    const QString exampleFolder = QFileInfo(flow).path();
    const QString source = QStringLiteral(TABRELLE_EXAMPLES "/") + exampleFolder;
    const QString copy = m_dir.filePath(QStringLiteral("examples/") + exampleFolder);
    QVERIFY(QDir().mkpath(copy + QStringLiteral("/output")));
    for (const QString &name : QDir(source).entryList(QDir::Files)) {
        QFile::remove(copy + '/' + name);
        QVERIFY(QFile::copy(source + '/' + name, copy + '/' + name));
    }
    const Result result = runTabrelle({"-cli", "-verbosity", "1", QFileInfo(flow).fileName()}, copy);
    QCOMPARE(result.err, QStringList());
    QCOMPARE(result.exitCode, 0);
    QFETCH(QStringList, written);
    QFETCH(QList<QSize>, imageSizes);
    // Charts write images and PDF pages, which are counted apart from outputs.
    const QRegularExpression chartFile(QStringLiteral("\\.(png|jpg|pdf)$"));
    const int charts = written.filter(chartFile).size();
    QCOMPARE(result.out.value(2), QStringLiteral("Outputs written: %1").arg(written.size() - charts));
    if (charts > 0)
        QCOMPARE(result.out.value(3), QStringLiteral("Charts written: %1").arg(charts));
    const QString expected = QStringLiteral(TABRELLE_TEST_DATA "/examples/") + exampleFolder;
    // Write times in file comments change from run to run.
    const auto timeless = [](const QByteArray &bytes) {
        return QString::fromUtf8(bytes).replace(
            QRegularExpression(QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d")),
            QStringLiteral("*"));
    };
    for (const QString &path : written) {
        if (path.contains(chartFile)) {
            // Images differ in their bytes from one build of the libraries to another: the
            // size they declare is checked, and that a PDF is one.
            const QByteArray bytes = readFile(copy + '/' + path);
            QVERIFY2(bytes.size() > 2000, qPrintable(path));
            if (path.endsWith(QLatin1String(".pdf")))
                QVERIFY(bytes.startsWith("%PDF-"));
            else
                QCOMPARE(imageSize(bytes), imageSizes.takeFirst());
        } else if (path.endsWith(QLatin1String(".xlsx"))) {
            // A workbook is read back into CSV, which must match the CSV output.
            writeFile(copy + QStringLiteral("/readback.tflow"),
                flowText(
                    QStringLiteral("<inputs><input id=\"1\" path=\"%1\" worksheet=\"Sales\" header=\"1\"/>"
                                   "</inputs>\n")
                            .arg(path)
                        + outputs({output(2, "readback.csv")}),
                    "1>2"));
            QCOMPARE(runTabrelle({"-cli", "-verbosity", "1", "readback.tflow"}, copy).exitCode, 0);
            QCOMPARE(readFile(copy + QStringLiteral("/readback.csv")),
                readFile(copy + '/' + QString(path).replace(QLatin1String(".xlsx"), QLatin1String(".csv"))));
        } else {
            QCOMPARE(timeless(readFile(copy + '/' + path)),
                timeless(readFile(expected + '/' + QFileInfo(path).fileName())));
        }
    }
}

void TestHeadless::examplesAreWhatTheBuilderMakes()
{
    // The committed documents are those make_examples writes, apart from who saved them
    // and where: after changing the builder or the document format, run make_examples.
    const QString folder = m_dir.filePath(QStringLiteral("made"));
    for (const QString &sub : {QStringLiteral("sales"), QStringLiteral("contacts"), QStringLiteral("charts")})
        QVERIFY(QDir().mkpath(folder + '/' + sub));
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral(MAKE_EXAMPLES), {folder});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 0);
    const auto portable = [](const QByteArray &bytes) {
        return QString::fromUtf8(bytes).remove(
            QRegularExpression(QStringLiteral("<(last_saved_by|doc_path) value=\"[^\"]*\"/>")));
    };
    for (const QString &flow :
        {QStringLiteral("sales/clean-and-merge.tflow"), QStringLiteral("contacts/contacts.tflow"),
            QStringLiteral("charts/monthly-sales.tflow")})
        QCOMPARE(portable(readFile(folder + '/' + flow)),
            portable(readFile(QStringLiteral(TABRELLE_EXAMPLES "/") + flow)));
}

QTEST_GUILESS_MAIN(TestHeadless)
#include "tst_headless.moc"
