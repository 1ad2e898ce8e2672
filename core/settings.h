#pragma once

#include <QDate>
#include <QObject>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include <memory>

// The program's preferences and remembered state, in one of two stores: the portable
// "tabrelle.ini" beside the application when that file exists, else the platform's own
// store. Reading never fails: an absent, wrongly typed or out-of-range value reads as
// the key's default, and is left as it is in the store.
class Settings : public QObject
{
    Q_OBJECT
public:
    // The platform's native store.
    explicit Settings(QObject *parent = nullptr);
    // An ini file; used for the portable store and by tests.
    explicit Settings(const QString &iniPath, QObject *parent = nullptr);
    ~Settings() override;

    static QString portableFileName() { return QStringLiteral("tabrelle.ini"); }
    // The portable store when applicationDir holds the portable file, else the native one.
    static Settings *openFor(const QString &applicationDir, QObject *parent = nullptr);

    bool isPortable() const { return m_portable; }
    bool isWritable() const;
    QString fileName() const;

    QVariant value(const QString &key) const;
    QVariant defaultValue(const QString &key) const;
    bool isKnownKey(const QString &key) const;
    bool boolValue(const QString &key) const { return value(key).toBool(); }
    int intValue(const QString &key) const { return value(key).toInt(); }
    qint64 int64Value(const QString &key) const { return value(key).toLongLong(); }
    double doubleValue(const QString &key) const { return value(key).toDouble(); }
    QString stringValue(const QString &key) const { return value(key).toString(); }
    QStringList stringListValue(const QString &key) const { return value(key).toStringList(); }
    QByteArray byteArrayValue(const QString &key) const { return value(key).toByteArray(); }

    void setValue(const QString &key, const QVariant &value);
    void remove(const QString &key);
    bool contains(const QString &key) const;
    QStringList childKeys(const QString &group) const;
    void sync();

    // Compound values.
    QStringList dateFormats() const; // empty when the locale's default list applies
    double maxMemoryUsageGb() const;
    QStringList blockedExtensions(bool input) const;

    // Adds to a 64-bit counter kept as decimal text; several processes may add at once,
    // so the value is re-read from the store just before it is written.
    qint64 addToCounter(const QString &key, qint64 amount);
    // First and last day of use, and the number of days used.
    void recordUsage(const QDate &today);

    // Physical memory of the machine in GB, or 0 when it can't be read.
    static double physicalMemoryGb();

signals:
    void changed(const QString &key);

private:
    std::unique_ptr<QSettings> m_settings;
    bool m_portable = false;
};
