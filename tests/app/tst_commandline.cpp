#include "app/commandline.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// Argument parsing on its own; the whole process is tried in tst_cli.
class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void parse_data();
    void parse();
    void optionName_data();
    void optionName();

private:
    QTemporaryDir m_dir;
};

void TestCommandLine::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QDir::setCurrent(m_dir.path());
    QFile flow(QStringLiteral("flow.tflow"));
    QVERIFY(flow.open(QIODevice::WriteOnly));
    QFile other(QStringLiteral("other.TFLOW"));
    QVERIFY(other.open(QIODevice::WriteOnly));
    QVERIFY(QDir().mkdir(QStringLiteral("folder")));
}

void TestCommandLine::parse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("cli");
    QTest::addColumn<int>("verbosity");
    QTest::addColumn<QString>("document");
    QTest::addColumn<QStringList>("aliases");

    const QStringList none;
    QTest::newRow("nothing") << none << "" << false << 0 << "" << none;
    QTest::newRow("two dashes, any case")
        << QStringList {"--CLI", "--VERBOSE"} << "" << true << 2 << "" << none;
    QTest::newRow("three dashes are not an option")
        << QStringList {"---cli"} << "Unrecognized argument: ---cli" << false << 0 << "" << none;
    QTest::newRow("verbosity 4") << QStringList {"-cli", "-verbosity", "4"} << "" << true << 4 << "" << none;
    QTest::newRow("verbosity 5") << QStringList {"-cli", "-verbosity", "5"}
                                 << "Verbosity value '5' not recognised, 0-4 expected" << true << 0 << ""
                                 << none;
    QTest::newRow("verbosity x") << QStringList {"-verbosity", "x"}
                                 << "Verbosity value 'x' not recognised, 0-4 expected" << false << 0 << ""
                                 << none;
    QTest::newRow("verbosity -1") << QStringList {"-verbosity", "-1"}
                                  << "Verbosity value '-1' not recognised, 0-4 expected" << false << 0 << ""
                                  << none;
    QTest::newRow("later option wins")
        << QStringList {"-verbosity", "1", "-verbose"} << "" << false << 2 << "" << none;
    QTest::newRow("log without value")
        << QStringList {"-cli", "-LOG"} << "No value following -LOG argument" << true << 0 << "" << none;
    QTest::newRow("file without value")
        << QStringList {"-file"} << "No value following -file argument" << false << 0 << "" << none;
    QTest::newRow("verbosity without value")
        << QStringList {"-verbosity"} << "No value following -verbosity argument" << false << 0 << "" << none;
    QTest::newRow("unknown option") << QStringList {"-cli", "-fast"} << "Unrecognized argument: -fast" << true
                                    << 0 << "" << none;
    QTest::newRow("lone dash") << QStringList {"-"} << "Unrecognized argument: -" << false << 0 << "" << none;
    QTest::newRow("files in order") << QStringList {"-file", "a=x.csv", "-FILE", "b=y.csv[Sheet 1]"} << ""
                                    << false << 0 << "" << QStringList {"a=x.csv", "b=y.csv[Sheet 1]"};
    QTest::newRow("a value that looks like an option is a value")
        << QStringList {"-log", "-cli"} << "" << false << 0 << "" << none;
    QTest::newRow("document") << QStringList {"flow.tflow", "-cli"} << "" << true << 0 << "flow.tflow"
                              << none;
    QTest::newRow("second document not even checked")
        << QStringList {"flow.tflow", "missing.tflow"} << "" << false << 0 << "flow.tflow" << none;
    QTest::newRow("missing document")
        << QStringList {"-cli", "missing.tflow"} << "'missing.tflow' not found" << true << 0 << "" << none;
    QTest::newRow("suffix is case-sensitive")
        << QStringList {"other.TFLOW"} << "Unrecognized file suffix 'TFLOW' in 'other.TFLOW'" << false << 0
        << "" << none;
    QTest::newRow("folder without suffix")
        << QStringList {"folder"} << "Unrecognized file suffix '' in 'folder'" << false << 0 << "" << none;
}

void TestCommandLine::parse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const CommandLine line = CommandLine::parse(arguments);
    QCOMPARE(line.error, error);
    if (!error.isEmpty())
        return;
    QTEST(line.cli, "cli");
    QTEST(line.verbosity, "verbosity");
    QTEST(line.documentPath, "document");
    QTEST(line.aliasAssignments, "aliases");
}

void TestCommandLine::optionName_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("name");
    QTest::newRow("one dash") << "-cli"
                              << "cli";
    QTest::newRow("two dashes upper case") << "--New_Window"
                                           << "new_window";
    QTest::newRow("three dashes keep one") << "---cli"
                                           << "-cli";
    QTest::newRow("not an option") << "flow.tflow"
                                   << "";
}

void TestCommandLine::optionName()
{
    QFETCH(QString, argument);
    QTEST(CommandLine::optionName(argument), "name");
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
