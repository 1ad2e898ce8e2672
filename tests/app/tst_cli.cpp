#include <QDate>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

// The tabrelle executable run as a user runs it from a shell.
class TestCli : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void run_data();
    void run();
    void errorsAreRed();
    void needsNoDisplay();
    void logFile();
    void logFileAppendsUnlessOverwrite();

private:
    struct Result
    {
        int exitCode = -1;
        QStringList out;
        QStringList err;
        QString rawErr;
    };
    Result runTabrelle(const QStringList &arguments, const QProcessEnvironment &environment = {});
    QProcessEnvironment m_environment;
    QTemporaryDir m_dir;
};

static QStringList lines(const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    text.remove(QRegularExpression(QStringLiteral("\x1b\\[\\d+m")));
    QStringList result = text.split(QLatin1Char('\n'));
    if (!result.isEmpty() && result.last().isEmpty())
        result.removeLast();
    return result;
}

void TestCli::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QDir::setCurrent(m_dir.path());
    QFile flow(QStringLiteral("flow.tflow"));
    QVERIFY(flow.open(QIODevice::WriteOnly));
    flow.write("<?xml version=\"1.0\"?>\n");
    QVERIFY(QDir().mkdir(QStringLiteral("folder.tflow")));
    QFile data(QStringLiteral("data.csv"));
    QVERIFY(data.open(QIODevice::WriteOnly));
    // Keep the program's settings away from the user's own.
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("HOME"), m_dir.path());
    m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("config")));
}

TestCli::Result TestCli::runTabrelle(const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment.isEmpty() ? m_environment : environment);
    process.start(QStringLiteral(TABRELLE_EXECUTABLE), arguments);
    Result result;
    if (!process.waitForFinished(30000)) {
        process.kill();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    result.out = lines(process.readAllStandardOutput());
    const QByteArray err = process.readAllStandardError();
    result.rawErr = QString::fromUtf8(err);
    result.err = lines(err);
    return result;
}

void TestCli::run_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("out");
    QTest::addColumn<QStringList>("err");

    const QStringList aborted {"No .tflow file specified.", "Aborted processing"};
    const QString version = QStringLiteral("Version: Tabrelle " TABRELLE_VERSION);
    QTest::newRow("version without a document")
        << QStringList {"-cli", "-version"} << 255 << QStringList {"", version} << aborted;
    QTest::newRow("nothing but -cli") << QStringList {"-cli"} << 255 << QStringList {""} << aborted;
    QTest::newRow("--VERBOSE works as -verbose")
        << QStringList {"--VERBOSE", "-CLI"} << 255 << QStringList {""} << aborted;
    QTest::newRow("verbosity 5") << QStringList {"-cli", "-verbosity", "5"} << 255 << QStringList()
                                 << QStringList {"Verbosity value '5' not recognised, 0-4 expected",
                                        "Aborted processing"};
    QTest::newRow("verbosity x") << QStringList {"-cli", "-verbosity", "x"} << 255 << QStringList()
                                 << QStringList {"Verbosity value 'x' not recognised, 0-4 expected",
                                        "Aborted processing"};
    QTest::newRow("missing value") << QStringList {"-cli", "-log"} << 255 << QStringList()
                                   << QStringList {"No value following -log argument", "Aborted processing"};
    QTest::newRow("unknown option, even without -cli")
        << QStringList {"-colour"} << 255 << QStringList()
        << QStringList {"Unrecognized argument: -colour", "Aborted processing"};
    QTest::newRow("missing document") << QStringList {"-cli", "gone.tflow"} << 255 << QStringList()
                                      << QStringList {"'gone.tflow' not found", "Aborted processing"};
    QTest::newRow("wrong suffix") << QStringList {"-cli", "data.csv"} << 255 << QStringList()
                                  << QStringList {"Unrecognized file suffix 'csv' in 'data.csv'",
                                         "Aborted processing"};
    QTest::newRow("document is a folder")
        << QStringList {"-cli", "folder.tflow"} << 255 << QStringList()
        << QStringList {
               "Unable to open 'folder.tflow': Can't open file 'folder.tflow'.", "Aborted processing"};
    QTest::newRow("second document ignored")
        << QStringList {"-cli", "folder.tflow", "missing.tflow"} << 255 << QStringList()
        << QStringList {
               "Unable to open 'folder.tflow': Can't open file 'folder.tflow'.", "Aborted processing"};
    QTest::newRow("unwritable log path: one red line, then the run goes on")
        << QStringList {"-cli", "-log", "no/such/folder/run.log", "-version"} << 255
        << QStringList {"", version}
        << QStringList {"Could not open log file at 'no/such/folder/run.log'", "No .tflow file specified.",
               "Aborted processing"};
    QTest::newRow("a document that is not a flow: no retry, even when silent")
        << QStringList {"-version", "-cli", "-verbosity", "0", "flow.tflow"} << 255
        << QStringList {"", version}
        << QStringList {
               "Unable to open 'flow.tflow': Format error 'Premature end of document.' detected at line 2 "
               "column 0.",
               "Contact support if you are sure this a Tabrelle file.", "Aborted processing"};
}

void TestCli::run()
{
    QFETCH(QStringList, arguments);
    const Result result = runTabrelle(arguments);
    QTEST(result.exitCode, "exitCode");
    QTEST(result.out, "out");
    QTEST(result.err, "err");
}

void TestCli::errorsAreRed()
{
    const Result result = runTabrelle({QStringLiteral("-cli")});
    QVERIFY(result.rawErr.contains(QStringLiteral("\x1b[31mNo .tflow file specified.\x1b[0m")));
}

void TestCli::needsNoDisplay()
{
    QProcessEnvironment environment = m_environment;
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    const Result result = runTabrelle({QStringLiteral("-cli"), QStringLiteral("-build")}, environment);
    QCOMPARE(result.exitCode, 255);
    QCOMPARE(result.out.size(), 2);
    QVERIFY2(QRegularExpression(QStringLiteral("^Build: \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$"))
                 .match(result.out.at(1))
                 .hasMatch(),
        qPrintable(result.out.at(1)));
}

void TestCli::logFile()
{
    // Variables in the path are expanded; the log gets the same lines without colour.
    const Result result = runTabrelle({"-cli", "-version", "-overwrite", "-log", "run-{year}.log"});
    QCOMPARE(result.exitCode, 255);
    QFile log(QStringLiteral("run-%1.log").arg(QDate::currentDate().year()));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(log.readAll()),
        QStringLiteral(
            "\nVersion: Tabrelle " TABRELLE_VERSION "\nNo .tflow file specified.\nAborted processing\n"));
}

void TestCli::logFileAppendsUnlessOverwrite()
{
    const QStringList arguments {"-cli", "-log", "append.log"};
    QFile::remove(QStringLiteral("append.log"));
    runTabrelle(arguments);
    runTabrelle(arguments);
    QFile log(QStringLiteral("append.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll().count("Aborted processing"), 2);
    log.close();
    runTabrelle(QStringList(arguments) << QStringLiteral("-overwrite"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll().count("Aborted processing"), 1);
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
