#include "flow/filenamevariables.h"

#include <QSysInfo>
#include <QTest>

class TestFileNameVariables : public QObject
{
    Q_OBJECT
private slots:
    void expand_data();
    void expand();
};

void TestFileNameVariables::expand_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no braces") << "/out/report.csv"
                               << "/out/report.csv";
    QTest::newRow("date and time") << "r_{date}_{time}.csv"
                                   << "r_2026_03_04_05_06_07_089.csv";
    QTest::newRow("datetime") << "{datetime}"
                              << "2026_03_04_05_06_07_089";
    QTest::newRow("parts") << "{year}-{month}-{day} {hour}.{minute}.{second}"
                           << "2026-03-04 05.06.07";
    QTest::newRow("version") << "{version}.log"
                             << "v1_2_3.log";
    QTest::newRow("document name") << "{transformfname}.log"
                                   << "monthly.log";
    QTest::newRow("input stem") << "{sales.fname}_clean.csv"
                                << "sales-2026_clean.csv";
    QTest::newRow("input folder") << "{sales.folder}/x"
                                  << "/data/in/x";
    QTest::newRow("input extension") << "x.{sales.ext}"
                                     << "x.csv";
    QTest::newRow("input stem and sheet") << "{book}"
                                          << "budget_Q1";
    QTest::newRow("input sheet") << "{book.sheet}"
                                 << "Q1";
    QTest::newRow("alias trimmed") << "{ sales .fname}"
                                   << "sales-2026";
    QTest::newRow("unknown kept") << "{nothing}/{date}"
                                  << "{nothing}/2026_03_04";
    QTest::newRow("unknown alias part kept") << "{sales.size}"
                                             << "{sales.size}";
    QTest::newRow("unclosed brace") << "a{date"
                                    << "a{date";
    QTest::newRow("brace inside brace") << "{{date}}"
                                        << "{2026_03_04}";
    QTest::newRow("case matters") << "{DATE}"
                                  << "{DATE}";
    QTest::newRow("computer") << "{computername}" << QSysInfo::machineHostName();
}

void TestFileNameVariables::expand()
{
    QFETCH(QString, text);
    FileNameContext context;
    context.now = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7, 89));
    context.documentPath = QStringLiteral("/flows/monthly.tflow");
    context.versionMajor = 1;
    context.versionMinor = 2;
    context.versionPatch = 3;
    context.inputs << FileNameContext::Input {QStringLiteral("sales"),
        QStringLiteral("/data/in/sales-2026.csv"), {}}
                   << FileNameContext::Input {
                          QStringLiteral("book"), QStringLiteral("/data/budget.xlsx"), QStringLiteral("Q1")};
    QTEST(expandFileNameVariables(text, context), "expected");
}

QTEST_GUILESS_MAIN(TestFileNameVariables)
#include "tst_filenamevariables.moc"
