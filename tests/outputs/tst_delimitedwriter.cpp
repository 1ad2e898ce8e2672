#include "outputs/delimitedwriter.h"
#include "outputs/textoutput.h"

#include <QBuffer>
#include <QtTest>

namespace {

// Accepts limit bytes, then refuses every write: a disk that fills part-way.
class FailingDevice : public QIODevice
{
public:
    explicit FailingDevice(qint64 limit)
        : m_limit(limit)
    {
        open(QIODevice::WriteOnly);
    }
    qint64 accepted = 0;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        if (accepted + size > m_limit)
            return -1;
        accepted += size;
        return size;
    }

private:
    qint64 m_limit;
};

// Cells separated by "|" and rows by "/", so that commas and line breaks can be data:
// "h1|h2/a|b". With headers the first row is the header row.
Dataset table(const QString &text, bool withHeaders)
{
    Dataset dataset;
    if (text.isNull())
        return dataset;
    const QStringList rows = text.split(QLatin1Char('/'));
    dataset.setColumnCount(rows.first().split(QLatin1Char('|')).size());
    for (int r = 0; r < rows.size(); ++r) {
        const QStringList cells = rows.at(r).split(QLatin1Char('|'));
        if (r == 0 && withHeaders)
            dataset.setHeaders(cells);
        else
            dataset.appendRow(cells, true);
    }
    return dataset;
}

QByteArray write(
    const Dataset &dataset, const OutputOptions &options, WriteReport &report, bool *ok = nullptr)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const bool written = writeDelimited(dataset, options, buffer, report);
    if (ok)
        *ok = written;
    return bytes;
}

OutputOptions lfOptions()
{
    OutputOptions options;
    options.lineEndings = OutputOptions::Lf;
    return options;
}

} // namespace

class TestDelimitedWriter : public QObject
{
    Q_OBJECT
private slots:
    void quoting_data();
    void quoting();
    void delimiters_data();
    void delimiters();
    void lineEndings_data();
    void lineEndings();
    void encodings_data();
    void encodings();
    void shapes_data();
    void shapes();
    void failingDevice_data();
    void failingDevice();
};

void TestDelimitedWriter::quoting_data()
{
    QTest::addColumn<int>("quoting");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<bool>("headers");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("warning");

    const int automatic = OutputOptions::QuotingAutomatic;
    const int quoted = OutputOptions::Quoted;
    const int unquoted = OutputOptions::Unquoted;
    QTest::newRow("plain cells") << automatic << "a|b" << false << QByteArray("a,b\n") << "";
    QTest::newRow("delimiter") << automatic << "a,b|c" << false << QByteArray("\"a,b\",c\n") << "";
    QTest::newRow("double quote doubled")
        << automatic << "say \"hi\"|x" << false << QByteArray("\"say \"\"hi\"\"\",x\n") << "";
    QTest::newRow("only a quote") << automatic << "\"" << false << QByteArray("\"\"\"\"\n") << "";
    QTest::newRow("line feed") << automatic << "a\nb|c" << false << QByteArray("\"a\nb\",c\n") << "";
    QTest::newRow("carriage return") << automatic << "a\rb|c" << false << QByteArray("\"a\rb\",c\n") << "";
    QTest::newRow("leading blank") << automatic << " a|b" << false << QByteArray("\" a\",b\n") << "";
    QTest::newRow("trailing blank") << automatic << "a |b" << false << QByteArray("\"a \",b\n") << "";
    QTest::newRow("leading tab") << automatic << "\ta|b" << false << QByteArray("\"\ta\",b\n") << "";
    QTest::newRow("inner blank") << automatic << "a b|c" << false << QByteArray("a b,c\n") << "";
    QTest::newRow("leading zeros and numbers")
        << automatic << "007|1.50|-3" << false << QByteArray("007,1.50,-3\n") << "";
    QTest::newRow("empty only cell") << automatic << "" << false << QByteArray("\"\"\n") << "";
    QTest::newRow("empty cells of a wider row") << automatic << "|" << false << QByteArray(",\n") << "";
    QTest::newRow("semicolon is not the delimiter")
        << automatic << "a;b" << false << QByteArray("a;b\n") << "";
    QTest::newRow("header by the same rules")
        << automatic << "a b |c/1|2" << true << QByteArray("\"a b \",c\n1,2\n") << "";
    QTest::newRow("quoted: every cell")
        << quoted << "a||1" << false << QByteArray("\"a\",\"\",\"1\"\n") << "";
    QTest::newRow("quoted: header too")
        << quoted << "h\"/x" << true << QByteArray("\"h\"\"\"\n\"x\"\n") << "";
    QTest::newRow("unquoted: plain") << unquoted << "a|\"b\"" << false << QByteArray("a,\"b\"\n") << "";
    QTest::newRow("unquoted: empty only cell") << unquoted << "" << false << QByteArray("\n") << "";
    QTest::newRow("unquoted: delimiter and break")
        << unquoted << "h|k/x|a,b/c\nd|y" << true << QByteArray("h,k\nx,a,b\nc\nd,y\n")
        << "2 values contain the delimiter or a line break and were written unquoted, so the file won't read "
           "back as written. E.g. row 1, column 'k'";
    QTest::newRow("unquoted: one value")
        << unquoted << "a|b\rc" << false << QByteArray("a,b\rc\n")
        << "1 value contain the delimiter or a line break and were written unquoted, so the file won't read "
           "back as written. E.g. row 1, column '2'";
}

void TestDelimitedWriter::quoting()
{
    QFETCH(int, quoting);
    QFETCH(QString, cells);
    QFETCH(bool, headers);
    QFETCH(QByteArray, expected);
    QFETCH(QString, warning);
    OutputOptions options = lfOptions();
    options.quoting = quoting;
    WriteReport report;
    QCOMPARE(write(table(cells, headers), options, report), expected);
    QCOMPARE(report.warnings.join(QLatin1Char('\n')), warning);
}

void TestDelimitedWriter::delimiters_data()
{
    QTest::addColumn<int>("delimiter");
    QTest::addColumn<QString>("custom");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("message");

    QTest::newRow("automatic csv")
        << 0 << ""
        << "out.csv" << QByteArray("a b,c\n")
        << "Delimiter=Automatic sets 'Comma (,)', set 'Delimiter' option to change";
    QTest::newRow("automatic tsv")
        << 0 << ""
        << "/x/out.tsv" << QByteArray("a b\tc\n")
        << "Delimiter=Automatic sets 'Tab (\\t)', set 'Delimiter' option to change";
    QTest::newRow("automatic TAB")
        << 0 << ""
        << "out.TAB" << QByteArray("a b\tc\n")
        << "Delimiter=Automatic sets 'Tab (\\t)', set 'Delimiter' option to change";
    QTest::newRow("comma") << 1 << ""
                           << "out.tsv" << QByteArray("a b,c\n") << "";
    QTest::newRow("semi-colon") << 2 << ""
                                << "" << QByteArray("a b;c\n") << "";
    QTest::newRow("colon") << 3 << ""
                           << "" << QByteArray("a b:c\n") << "";
    QTest::newRow("tab") << 4 << ""
                         << "" << QByteArray("a b\tc\n") << "";
    QTest::newRow("pipe") << 5 << ""
                          << "" << QByteArray("a b|c\n") << "";
    QTest::newRow("caret") << 6 << ""
                           << "" << QByteArray("a b^c\n") << "";
    QTest::newRow("space quotes the inner blank") << 7 << ""
                                                  << "" << QByteArray("\"a b\" c\n") << "";
    QTest::newRow("custom") << 8 << "#"
                            << "" << QByteArray("a b#c\n") << "";
    QTest::newRow("custom empty") << 8 << ""
                                  << "" << QByteArray("a b,c\n")
                                  << "The custom delimiter is empty; a comma was used";
    QTest::newRow("unit separator") << 9 << ""
                                    << ""
                                    << QByteArray("a b\x1f"
                                                  "c\n")
                                    << "";
    QTest::newRow("unknown number") << 42 << ""
                                    << "" << QByteArray("a b,c\n") << "";
    QTest::newRow("negative number") << -1 << ""
                                     << "" << QByteArray("a b,c\n") << "";
}

void TestDelimitedWriter::delimiters()
{
    QFETCH(int, delimiter);
    QFETCH(QString, custom);
    QFETCH(QString, path);
    QFETCH(QByteArray, expected);
    QFETCH(QString, message);
    OutputOptions options = lfOptions();
    options.delimiter = delimiter;
    options.customDelimiter = custom.isEmpty() ? QChar() : custom.at(0);
    options.path = path;
    WriteReport report;
    QCOMPARE(write(table(QStringLiteral("a b|c"), false), options, report), expected);
    QCOMPARE((report.warnings + report.information).join(QLatin1Char('\n')), message);
}

void TestDelimitedWriter::lineEndings_data()
{
    QTest::addColumn<int>("lineEndings");
    QTest::addColumn<QByteArray>("expected");

#ifdef Q_OS_WIN
    QTest::newRow("automatic") << 0 << QByteArray("h\r\n\"a\nb\"\r\nc\r\n");
#else
    QTest::newRow("automatic") << 0 << QByteArray("h\n\"a\nb\"\nc\n");
#endif
    QTest::newRow("windows") << 1 << QByteArray("h\r\n\"a\nb\"\r\nc\r\n");
    QTest::newRow("unix") << 2 << QByteArray("h\n\"a\nb\"\nc\n");
    QTest::newRow("old mac") << 3 << QByteArray("h\r\"a\nb\"\rc\r");
    QTest::newRow("record separator") << 4
                                      << QByteArray("h\x1e\"a\nb\"\x1e"
                                                    "c\x1e");
}

void TestDelimitedWriter::lineEndings()
{
    QFETCH(int, lineEndings);
    QFETCH(QByteArray, expected);
    OutputOptions options;
    options.lineEndings = lineEndings;
    WriteReport report;
    QCOMPARE(write(table(QStringLiteral("h/a\nb/c"), true), options, report), expected);
    QVERIFY(report.warnings.isEmpty());
}

void TestDelimitedWriter::encodings_data()
{
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("warning");

    QTest::newRow("utf-8, astral plane")
        << "UTF-8" << QString::fromUtf8("é😀") << QByteArray::fromHex("c3a9f09f98800a") << "";
    QTest::newRow("utf-16le, no mark from the writer") << "UTF-16LE"
                                                       << "a" << QByteArray::fromHex("61000a00") << "";
    QTest::newRow("utf-32le, astral plane")
        << "UTF-32LE" << QString::fromUtf8("a😀") << QByteArray::fromHex("6100000000f601000a000000") << "";
    QTest::newRow("utf-16be") << "UTF-16BE"
                              << "a" << QByteArray::fromHex("0061000a") << "";
    QTest::newRow("latin-1 counts a surrogate pair once")
        << "ISO-8859-1" << QString::fromUtf8("é€😀") << QByteArray::fromHex("e93f3f0a")
        << "2 characters can't be written in ISO-8859-1 and were written as '?'";
    QTest::newRow("windows-1252") << "windows-1252" << QString::fromUtf8("€Ж")
                                  << QByteArray::fromHex("803f0a")
                                  << "1 character can't be written in windows-1252 and were written as '?'";
    QTest::newRow("a question mark is not counted") << "ISO-8859-1"
                                                    << "?" << QByteArray("?\n") << "";
    QTest::newRow("unknown encoding")
        << "no-such-codec" << QString::fromUtf8("é") << QByteArray::fromHex("c3a90a")
        << "Unknown encoding 'no-such-codec'; UTF-8 was used";
}

void TestDelimitedWriter::encodings()
{
    QFETCH(QString, encoding);
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    QFETCH(QString, warning);
    OutputOptions options = lfOptions();
    options.encoding = encoding;
    WriteReport report;
    QCOMPARE(write(table(text, false), options, report), expected);
    QCOMPARE(report.warnings.join(QLatin1Char('\n')), warning);
}

void TestDelimitedWriter::shapes_data()
{
    QTest::addColumn<QString>("cells"); // null: no columns
    QTest::addColumn<bool>("headers");
    QTest::addColumn<bool>("writeHeader");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("information");

    QTest::newRow("no columns") << QString() << false << true << QByteArray()
                                << "The dataset has no columns, so the file is empty";
    QTest::newRow("columns without rows") << "a|b" << true << true << QByteArray("a,b\n") << "";
    QTest::newRow("header not wanted") << "a|b/1|2" << true << false << QByteArray("1,2\n") << "";
    QTest::newRow("no headers to write") << "1|2" << false << true << QByteArray("1,2\n") << "";
    QTest::newRow("empty header cell kept")
        << "a||c/1|2|3" << true << true << QByteArray("a,,c\n1,2,3\n") << "";
}

void TestDelimitedWriter::shapes()
{
    QFETCH(QString, cells);
    QFETCH(bool, headers);
    QFETCH(bool, writeHeader);
    QFETCH(QByteArray, expected);
    QFETCH(QString, information);
    OutputOptions options = lfOptions();
    options.writeHeader = writeHeader;
    WriteReport report;
    bool ok = false;
    QCOMPARE(write(table(cells, headers), options, report, &ok), expected);
    QVERIFY(ok);
    QCOMPARE(report.information.join(QLatin1Char('\n')), information);
}

void TestDelimitedWriter::failingDevice_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<qint64>("limit");
    QTest::addColumn<bool>("ok");

    // A row is "row n,xxxxxxxx...\n"; the large tables flush several blocks.
    QTest::newRow("small table, device full at once") << 10 << qint64(0) << false;
    QTest::newRow("small table, room enough") << 10 << qint64(1 << 20) << true;
    QTest::newRow("large table, full after the first block") << 100000 << qint64(1 << 20) << false;
    QTest::newRow("large table, full near the end") << 100000 << qint64(4000000) << false;
}

void TestDelimitedWriter::failingDevice()
{
    QFETCH(int, rows);
    QFETCH(qint64, limit);
    QFETCH(bool, ok);
    Dataset dataset;
    dataset.setColumnCount(2);
    const QString filler(32, QLatin1Char('x'));
    for (int r = 0; r < rows; ++r)
        dataset.appendRow({QStringLiteral("row %1").arg(r), filler});
    FailingDevice device(limit);
    WriteReport report;
    double progress = 0;
    report.progress = [&progress](double fraction) {
        QVERIFY(fraction >= progress);
        progress = fraction;
    };
    QCOMPARE(writeDelimited(dataset, lfOptions(), device, report), ok);
    QVERIFY(device.accepted <= limit);
    // A failed write is named by the pipeline, which knows the file.
    QVERIFY(report.warnings.isEmpty());
    QCOMPARE(progress == 1.0, ok);
}

QTEST_GUILESS_MAIN(TestDelimitedWriter)
#include "tst_delimitedwriter.moc"
