#include "outputs/htmlwriter.h"
#include "writertest.h"

#include <QtTest>

class TestHtmlWriter : public QObject
{
    Q_OBJECT
private slots:
    void write_data();
    void write();
    void encoding();
    void append_data();
    void append();
};

namespace {

QString page(const QString &title, const QString &table, const QString &comment = QString())
{
    return "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"UTF-8\">\n<title>" + title
        + "</title>\n<style>\ntable { border-collapse: collapse; }\n"
          "th, td { border: 1px solid #bbb; padding: 2px 6px; vertical-align: top; }\n"
          "th { background: #eee; text-align: left; }\n</style>\n</head>\n<body>\n"
        + comment + "<table>\n" + table + "</table>\n</body>\n</html>\n";
}

} // namespace

void TestHtmlWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");

    QTest::newRow("header and rows") << "Name,Age\nBob,42"
                                     << "path=/data/sales.html"
                                     << page("sales",
                                            "<thead>\n<tr><th>Name</th><th>Age</th></tr>\n</thead>\n<tbody>\n"
                                            "<tr><td>Bob</td><td>42</td></tr>\n</tbody>\n");
    QTest::newRow("no header") << "Name\nBob"
                               << "path=t.html;header=0"
                               << page("t", "<tbody>\n<tr><td>Bob</td></tr>\n</tbody>\n");
    QTest::newRow("escaped, line breaks as <br>")
        << "<b>\na&b \"q\" 'x'\\r\\ny\\nz\\rw"
        << "path=t.html"
        << page("t",
               "<thead>\n<tr><th>&lt;b&gt;</th></tr>\n</thead>\n<tbody>\n"
               "<tr><td>a&amp;b &quot;q&quot; &#39;x&#39;<br>y<br>z<br>w</td></tr>\n</tbody>\n");
    QTest::newRow("not escaped, markup kept")
        << "<b>\n<a href=\"x\">link</a>\\ny"
        << "path=t.html;escape=0"
        << page("t",
               "<thead>\n<tr><th><b></th></tr>\n</thead>\n<tbody>\n<tr><td><a "
               "href=\"x\">link</a>\ny</td></tr>\n"
               "</tbody>\n");
    QTest::newRow("title escaped, dots kept")
        << "a"
        << "path=/x/a&b.v2.html"
        << page("a&amp;b.v2", "<thead>\n<tr><th>a</th></tr>\n</thead>\n<tbody>\n</tbody>\n");
    QTest::newRow("file comment") << "a"
                                  << "path=t.html;header=0;comment= made -- here "
                                  << page("t", "<tbody>\n</tbody>\n", "<!-- made - - here -->\n");
    QTest::newRow("CRLF") << "a\n1"
                          << "path=t.html;header=0;lines=1"
                          << page("t", "<tbody>\n<tr><td>1</td></tr>\n</tbody>\n").replace("\n", "\r\n");
}

void TestHtmlWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    QStringList warnings;
    QTEST(writertest::write(writeHtml, table, options, &warnings), "expected");
    QCOMPARE(warnings, QStringList());
}

void TestHtmlWriter::encoding()
{
    WriteReport report;
    bool ok = false;
    const QByteArray bytes = writertest::write(writeHtml, writertest::table("a\n€é"),
        writertest::options("encoding=ISO-8859-1;header=0;path=t.html"), report, ok);
    QVERIFY(ok);
    QVERIFY(bytes.contains("<meta charset=\"ISO-8859-1\">"));
    QVERIFY(bytes.contains("<tr><td>?\xE9</td></tr>"));
    QCOMPARE(
        report.warnings, QStringList {"1 character can't be written in ISO-8859-1 and were written as '?'"});
}

void TestHtmlWriter::append_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("warning");

    const QByteArray end = "</tbody>\n</table>\n</body>\n</html>\n";
    QTest::newRow("before the last </tbody>")
        << "<table><tbody>\n<tr><td>1</td></tr>\n" + end
        << "<table><tbody>\n<tr><td>1</td></tr>\n<tr><td>2</td></tr>\n" + end << "";
    QTest::newRow("second table") << "<tbody></tbody>\n<tbody>\n" + end
                                  << "<tbody></tbody>\n<tbody>\n<tr><td>2</td></tr>\n" + end << "";
    QTest::newRow("no tbody") << QByteArray("<html><table></table></html>\n")
                              << QByteArray("<html><table></table></html>\n")
                              << "Unable to append to '%1': it has no '</tbody>'";
}

void TestHtmlWriter::append()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, warning);
    WriteReport report;
    bool ok = false;
    QTEST(writertest::write(writeHtml, writertest::table("a\n2"),
              writertest::options("mode=2;path=/tmp/t.html"), report, ok, before),
        "expected");
    QCOMPARE(ok, warning.isEmpty());
    if (!warning.isEmpty())
        QCOMPARE(report.warnings.value(0), warning.arg(QDir::toNativeSeparators("/tmp/t.html")));
}

QTEST_GUILESS_MAIN(TestHtmlWriter)
#include "tst_htmlwriter.moc"
