#include "core/settings.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

class TestSettings : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void badValuesReadAsDefault_data();
    void badValuesReadAsDefault();
    void roundTrip_data();
    void roundTrip();
    void storeChoice();
    void countersAddAcrossProcesses();
    void unknownKeysSurvive();
    void usageDays();
    void compoundValues();

private:
    QString iniPath() const { return m_dir.filePath(QStringLiteral("tabrelle.ini")); }
    void writeRaw(const QString &key, const QVariant &value)
    {
        QSettings raw(iniPath(), QSettings::IniFormat);
        raw.setValue(key, value);
    }
    QTemporaryDir m_dir;
};

void TestSettings::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // Never touch the user's own store, even by accident.
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, m_dir.filePath(QStringLiteral("native")));
}

void TestSettings::init()
{
    QFile::remove(iniPath());
}

void TestSettings::badValuesReadAsDefault_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("absent int") << "undo_limit" << QVariant() << QVariant(200);
    QTest::newRow("int below range") << "undo_limit" << QVariant(5) << QVariant(200);
    QTest::newRow("int above range") << "recent_documents_max" << QVariant(31) << QVariant(10);
    QTest::newRow("int at range end") << "recent_documents_max" << QVariant(30) << QVariant(30);
    QTest::newRow("int as words") << "auto_run_delay_ms" << QVariant("soon") << QVariant(1000);
    QTest::newRow("int as real") << "theme" << QVariant("1.5") << QVariant(0);
    QTest::newRow("bool as text") << "beep_when_finished" << QVariant("yes") << QVariant(false);
    QTest::newRow("bool true") << "beep_when_finished" << QVariant(true) << QVariant(true);
    QTest::newRow("memory below minimum")
        << "max_memory_usage" << QVariant(0.1) << Settings(iniPath()).defaultValue("max_memory_usage");
    QTest::newRow("counter negative") << "lifetime_rows_processed" << QVariant("-5") << QVariant("0");
    QTest::newRow("counter beyond 32 bits")
        << "lifetime_rows_processed" << QVariant("123456789012") << QVariant(qlonglong(123456789012));
    QTest::newRow("date not a date") << "first_used_date" << QVariant("yesterday") << QVariant(QString());
    QTest::newRow("optimize_for out of range") << "optimize_for" << QVariant(7) << QVariant(0);
}

void TestSettings::badValuesReadAsDefault()
{
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QVariant, expected);
    if (stored.isValid())
        writeRaw(key, stored);
    Settings settings(iniPath());
    QCOMPARE(settings.value(key).toString(), expected.toString());
    // Reading never rewrites what is stored.
    if (stored.isValid())
        QCOMPARE(QSettings(iniPath(), QSettings::IniFormat).value(key).toString(), stored.toString());
}

void TestSettings::roundTrip_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("bool") << "show_advanced_transforms" << QVariant(true);
    QTest::newRow("int") << "auto_recovery_minutes" << QVariant(60);
    QTest::newRow("double") << "max_memory_usage" << QVariant(0.5);
    QTest::newRow("text with non-ASCII") << "user_name" << QVariant(QStringLiteral("Zoë Ångström"));
    QTest::newRow("list") << "input_blocked_extensions" << QVariant(QStringList {"exe", "bat"});
    QTest::newRow("one-item list") << "input_blocked_extensions" << QVariant(QStringList {"exe"});
    QTest::newRow("empty list") << "output_blocked_extensions" << QVariant(QStringList());
    QTest::newRow("bytes") << "window_state" << QVariant(QByteArray("\x00\x01\xff", 3));
    QTest::newRow("remembered option")
        << "defaults/transforms/Join/Column_1" << QVariant(QStringLiteral("2"));
}

void TestSettings::roundTrip()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    {
        Settings settings(iniPath());
        settings.setValue(key, value);
    }
    Settings settings(iniPath());
    QVariant read = settings.value(key);
    if (value.type() == QVariant::StringList)
        QCOMPARE(read.toStringList(), value.toStringList());
    else if (value.type() == QVariant::ByteArray)
        QCOMPARE(read.toByteArray(), value.toByteArray());
    else
        QCOMPARE(read.toString(), value.toString());
}

void TestSettings::storeChoice()
{
    QTemporaryDir application;
    std::unique_ptr<Settings> native(Settings::openFor(application.path()));
    QVERIFY(!native->isPortable());
    QVERIFY(native->fileName().startsWith(m_dir.filePath(QStringLiteral("native"))));

    QFile portable(application.filePath(Settings::portableFileName()));
    QVERIFY(portable.open(QIODevice::WriteOnly)); // an empty file is enough
    portable.close();
    std::unique_ptr<Settings> chosen(Settings::openFor(application.path()));
    QVERIFY(chosen->isPortable());
    QCOMPARE(chosen->fileName(), portable.fileName());
    QVERIFY(chosen->isWritable());
}

void TestSettings::countersAddAcrossProcesses()
{
    Settings first(iniPath());
    Settings second(iniPath());
    first.addToCounter(QStringLiteral("lifetime_rows_processed"), 1000);
    second.addToCounter(QStringLiteral("lifetime_rows_processed"), 5000000000LL);
    first.addToCounter(QStringLiteral("lifetime_rows_processed"), 1);
    QCOMPARE(Settings(iniPath()).int64Value(QStringLiteral("lifetime_rows_processed")), 5000001001LL);
}

void TestSettings::unknownKeysSurvive()
{
    writeRaw(QStringLiteral("from_a_newer_version"), QStringLiteral("keep me"));
    {
        Settings settings(iniPath());
        settings.setValue(QStringLiteral("theme"), 2);
        QCOMPARE(
            settings.value(QStringLiteral("from_a_newer_version")).toString(), QStringLiteral("keep me"));
    }
    QCOMPARE(QSettings(iniPath(), QSettings::IniFormat).value("from_a_newer_version").toString(),
        QStringLiteral("keep me"));
}

void TestSettings::usageDays()
{
    Settings settings(iniPath());
    settings.recordUsage(QDate(2026, 1, 1));
    settings.recordUsage(QDate(2026, 1, 1));
    settings.recordUsage(QDate(2026, 1, 3));
    QCOMPARE(settings.stringValue(QStringLiteral("first_used_date")), QStringLiteral("2026-01-01"));
    QCOMPARE(settings.stringValue(QStringLiteral("last_used_date")), QStringLiteral("2026-01-03"));
    QCOMPARE(settings.intValue(QStringLiteral("days_used")), 2);
}

void TestSettings::compoundValues()
{
    Settings settings(iniPath());
    QVERIFY(settings.dateFormats().isEmpty());
    settings.setValue(QStringLiteral("date_formats"), QStringLiteral("d.M.yyyy\n\n  yyyy-MM-dd \n"));
    QCOMPARE(settings.dateFormats(), (QStringList {"d.M.yyyy", "yyyy-MM-dd"}));
    QVERIFY(settings.blockedExtensions(false).contains(QStringLiteral("tflow")));
    settings.setValue(QStringLiteral("input_blocked_extensions"), QStringList {".EXE", "exe", " bat "});
    QCOMPARE(settings.blockedExtensions(true), (QStringList {"exe", "bat"}));
    const double memory = settings.maxMemoryUsageGb();
    QVERIFY(memory >= 1.0);
    QVERIFY(memory <= qMax(1.0, Settings::physicalMemoryGb()));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
