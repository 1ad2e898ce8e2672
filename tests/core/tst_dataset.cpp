#include "core/dataset.h"
#include "testutil.h"

#include <QtTest>

using testutil::toDataset;
using testutil::toText;

Q_DECLARE_METATYPE(QList<ColumnId>)

namespace {

// A table of the given width whose rows are given as text; "" means no rows.
Dataset table(int columns, const QString &rows)
{
    Dataset dataset = toDataset(rows);
    if (rows.isEmpty())
        dataset.setColumnCount(columns);
    return dataset;
}

// Fresh strings on every call, so that nothing is shared unless the table shares it.
QStringList freshRow(const QString &text)
{
    QStringList row;
    for (const QString &value : text.split(QLatin1Char(',')))
        row.append(QString(value.constData(), value.size()));
    return row;
}

} // namespace

class TestDataset : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { Dataset::setMemoryMode(0); }

    void addRow_data();
    void addRow();
    void walkCells_data();
    void walkCells();
    void columns_data();
    void columns();
    void headersRoundTrip_data();
    void headersRoundTrip();
    void equality_data();
    void equality();
    void interning_data();
    void interning();
    void copyOnWrite_data();
    void copyOnWrite();
    void columnIds_data();
    void columnIds();
    void columnIndexFollowsEdits();
    void verifyMarks();
    void variables_data();
    void variables();
    void sortRows_data();
    void sortRows();
    void columnSummaries_data();
    void columnSummaries();
    void textForms();
    void queries_data();
    void queries();
};

void TestDataset::addRow_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("rows");
    QTest::addColumn<bool>("prepend");
    QTest::addColumn<bool>("fit");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("expected");
    QTest::newRow("append one too long is dropped") << 2 << "a,b" << false << false << "1,2,3"
                                                    << "a,b";
    QTest::newRow("append one too short is dropped") << 2 << "a,b" << false << false << "1"
                                                     << "a,b";
    QTest::newRow("append to no rows takes any length") << 2 << "" << false << false << "1,2,3"
                                                        << "1,2,3";
    QTest::newRow("prepend to no rows checks length") << 2 << "" << true << false << "1,2,3"
                                                      << "";
    QTest::newRow("prepend of right length goes first") << 2 << "a,b" << true << false << "1,2"
                                                        << "1,2\na,b";
    QTest::newRow("append fitted is cut") << 2 << "a,b" << false << true << "1,2,3"
                                          << "a,b\n1,2";
    QTest::newRow("append fitted is padded") << 3 << "a,b,c" << false << true << "1"
                                             << "a,b,c\n1,,";
    QTest::newRow("prepend fitted is cut") << 2 << "" << true << true << "1,2,3"
                                           << "1,2";
    QTest::newRow("prepend fitted is padded") << 2 << "a,b" << true << true << "1"
                                              << "1,\na,b";
}

void TestDataset::addRow()
{
    QFETCH(int, columns);
    QFETCH(QString, rows);
    QFETCH(bool, prepend);
    QFETCH(bool, fit);
    QFETCH(QString, values);
    QFETCH(QString, expected);
    Dataset dataset = table(columns, rows);
    if (prepend)
        dataset.prependRow(values.split(QLatin1Char(',')), fit);
    else
        dataset.appendRow(values.split(QLatin1Char(',')), fit);
    QCOMPARE(toText(dataset), expected);
    QCOMPARE(dataset.columnCount(), columns);
}

void TestDataset::walkCells_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<bool>("forward");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("moved");
    QTest::addColumn<int>("toRow");
    QTest::addColumn<int>("toColumn");
    QTest::newRow("next within row") << "a,b\nc,d" << true << 0 << 0 << true << 0 << 1;
    QTest::newRow("next wraps") << "a,b\nc,d" << true << 0 << 1 << true << 1 << 0;
    QTest::newRow("next stops at last") << "a,b\nc,d" << true << 1 << 1 << false << 1 << 1;
    QTest::newRow("next on no rows") << "" << true << 0 << 0 << false << 0 << 0;
    QTest::newRow("previous wraps") << "a,b\nc,d" << false << 1 << 0 << true << 0 << 1;
    QTest::newRow("previous stops at first") << "a,b\nc,d" << false << 0 << 0 << false << 0 << 0;
    QTest::newRow("previous on no rows") << "" << false << 0 << 1 << false << 0 << 1;
}

void TestDataset::walkCells()
{
    QFETCH(QString, rows);
    QFETCH(bool, forward);
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(bool, moved);
    QFETCH(int, toRow);
    QFETCH(int, toColumn);
    const Dataset dataset = table(2, rows);
    DataRowIndex r(row);
    DataColumnIndex c(column);
    QCOMPARE(forward ? dataset.nextCell(r, c) : dataset.previousCell(r, c), moved);
    QCOMPARE(r.toInt(), toRow);
    QCOMPARE(c.toInt(), toColumn);
    QCOMPARE(dataset.lastRow().toInt(), rows.count(QLatin1Char('\n')) - rows.isEmpty());
}

void TestDataset::columns_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("expected"); // display headers first
    QTest::addColumn<bool>("hasHeaders");
    QTest::newRow("removing the only column clears all") << "h\n1\n2"
                                                         << "remove 0"
                                                         << "" << false;
    QTest::newRow("remove middle") << "a,b,c\n1,2,3"
                                   << "remove 1"
                                   << "a,c\n1,3" << true;
    QTest::newRow("remove out of range") << "a,b\n1,2"
                                         << "remove 2"
                                         << "a,b\n1,2" << true;
    QTest::newRow("new header reads 0-based") << "a,b\n1,2"
                                              << "count 3"
                                              << "a,b,2\n1,2," << true;
    QTest::newRow("blank header reads 1-based") << "a,b,\n1,2,3"
                                                << "count 3"
                                                << "a,b,3\n1,2,3" << true;
    QTest::newRow("shrink") << "a,b,c\n1,2,3"
                            << "count 1"
                            << "a\n1" << true;
    QTest::newRow("count 0 clears") << "a,b\n1,2"
                                    << "count 0"
                                    << "" << false;
    QTest::newRow("append") << "a,b\n1,2"
                            << "append"
                            << "a,b,3\n1,2," << true;
    QTest::newRow("prepend") << "a,b\n1,2"
                             << "prepend"
                             << "1,a,b\n,1,2" << true;
    QTest::newRow("blank columns go") << "a,b,c\n,2,\n,,"
                                      << "blank"
                                      << "b\n2\n"
                                      << true;
    QTest::newRow("resize an empty table") << ""
                                           << "resize 2 2"
                                           << "1,2\n,\n," << false;
}

void TestDataset::columns()
{
    QFETCH(QString, rows);
    QFETCH(QString, operation);
    QFETCH(QString, expected);
    QFETCH(bool, hasHeaders);
    Dataset dataset = toDataset(rows, true);
    const QStringList words = operation.split(QLatin1Char(' '));
    if (words.at(0) == QLatin1String("remove"))
        dataset.removeColumn(words.at(1).toInt());
    else if (words.at(0) == QLatin1String("count"))
        dataset.setColumnCount(words.at(1).toInt());
    else if (words.at(0) == QLatin1String("append"))
        dataset.appendColumn();
    else if (words.at(0) == QLatin1String("prepend"))
        dataset.prependColumn();
    else if (words.at(0) == QLatin1String("blank"))
        QCOMPARE(dataset.removeBlankColumns(), 2);
    else if (words.at(0) == QLatin1String("resize"))
        dataset.resize(words.at(1).toInt(), words.at(2).toInt());
    QCOMPARE(dataset.hasNoColumns() ? QString() : toText(dataset, true), expected);
    QCOMPARE(dataset.hasHeaders(), hasHeaders);
    QCOMPARE(dataset.columnIds().size(), dataset.columnCount());
}

void TestDataset::headersRoundTrip_data()
{
    QTest::addColumn<QString>("rows");
    QTest::newRow("plain") << "a,b\n1,2";
    QTest::newRow("blanks stay blank") << ",b,\n1,,3";
    QTest::newRow("numbers as headers") << "2,1\nx,y";
    QTest::newRow("one row") << "a,";
}

void TestDataset::headersRoundTrip()
{
    QFETCH(QString, rows);
    Dataset dataset = toDataset(rows);
    const QStringList firstRow = dataset.row(0);
    const QList<ColumnId> ids = {ColumnId(4, 1), ColumnId(4, 2)};
    dataset.setColumnIds(ids);
    dataset.setHasHeaders(true);
    QCOMPARE(dataset.headers(), firstRow);
    QCOMPARE(dataset.rowCount(), rows.count(QLatin1Char('\n')));
    dataset.setHasHeaders(false);
    QCOMPARE(toText(dataset), rows);
    QVERIFY(dataset.headers().isEmpty());
    QCOMPARE(dataset.columnIds(), ids);
}

void TestDataset::equality_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<bool>("aHeaders");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("bHeaders");
    QTest::addColumn<bool>("equal");
    QTest::newRow("number headers equal none") << "1,2\nx,y" << true << "x,y" << false << true;
    QTest::newRow("blank headers equal none") << ",\nx,y" << true << "x,y" << false << true;
    QTest::newRow("named headers differ") << "a,2\nx,y" << true << "x,y" << false << false;
    QTest::newRow("cells differ") << "x,y" << false << "x,z" << false << false;
    QTest::newRow("row counts differ") << "x,y\nx,y" << false << "x,y" << false << false;
    QTest::newRow("widths differ") << "x,y" << false << "x,y," << false << false;
}

void TestDataset::equality()
{
    QFETCH(QString, a);
    QFETCH(bool, aHeaders);
    QFETCH(QString, b);
    QFETCH(bool, bHeaders);
    QFETCH(bool, equal);
    Dataset first = toDataset(a, aHeaders);
    const Dataset second = toDataset(b, bHeaders);
    first.setColumnIds({ColumnId(1, 1), ColumnId(1, 2)}); // ids are not compared
    QCOMPARE(first == second, equal);
    QCOMPARE(second != first, !equal);
}

void TestDataset::interning_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("minimum memory") << 0;
    QTest::newRow("maximum speed") << 1;
}

void TestDataset::interning()
{
    QFETCH(int, mode);
    Dataset::setMemoryMode(mode);
    Dataset dataset;
    dataset.setColumnCount(3);
    dataset.setHeaders(freshRow("x,b,"));
    dataset.appendRow(freshRow("x,y,"));
    dataset.appendRow(freshRow("x,x,"), true);
    dataset.prependRow(freshRow("x,z,"));
    dataset.setRow(1, freshRow("x,y,w"));
    dataset.setCell(2, 2, QString::fromLatin1("w"));
    dataset.setHeader(2, QString::fromLatin1("w"));
    QCOMPARE(toText(dataset, true), QString("x,b,w\nx,z,\nx,y,w\nx,x,w"));

    const bool shared = mode != 1;
    QCOMPARE(dataset.valuePoolCount(), shared ? 3 : 0);
    // Equal values of one column share one buffer; a column's pool is its own.
    QCOMPARE(dataset.cell(0, 0).constData() == dataset.cell(2, 0).constData(), shared);
    QCOMPARE(dataset.cell(1, 2).constData() == dataset.cell(2, 2).constData(), shared);
    QCOMPARE(dataset.headers().at(0).constData() == dataset.cell(0, 0).constData(), shared);
    QCOMPARE(dataset.headers().at(2).constData() == dataset.cell(1, 2).constData(), shared);
    QVERIFY(dataset.cell(2, 0).constData() != dataset.cell(2, 1).constData());
    // A blank with a buffer of its own gives way to the one shared empty string.
    QString blank;
    blank.reserve(16);
    dataset.setCell(0, 1, blank);
    QVERIFY(dataset.cell(0, 1).isEmpty());
    QCOMPARE(dataset.cell(0, 1).constData() == QString(QLatin1String("")).constData(), shared);
    dataset.setCell(0, 1, QStringLiteral("z"));

    dataset.releaseValuePools();
    QCOMPARE(dataset.valuePoolCount(), 0);
    QCOMPARE(toText(dataset, true), QString("x,b,w\nx,z,\nx,y,w\nx,x,w"));
    QCOMPARE(dataset.cell(0, 0).constData() == dataset.cell(2, 0).constData(), shared);
}

void TestDataset::copyOnWrite_data()
{
    QTest::addColumn<QString>("edit");
    QTest::newRow("setCell") << "setCell";
    QTest::newRow("mutableRow") << "mutableRow";
    QTest::newRow("setHeader") << "setHeader";
    QTest::newRow("appendColumn") << "appendColumn";
    QTest::newRow("removeRow") << "removeRow";
    QTest::newRow("sortRows") << "sortRows";
    QTest::newRow("setHasHeaders") << "setHasHeaders";
}

void TestDataset::copyOnWrite()
{
    QFETCH(QString, edit);
    const Dataset original = toDataset("h,k\nb,2\na,1", true);
    Dataset copy = original;
    QVERIFY(copy.cell(0, 0).constData() == original.cell(0, 0).constData());
    if (edit == QLatin1String("setCell"))
        copy.setCell(0, 0, QStringLiteral("z"));
    else if (edit == QLatin1String("mutableRow"))
        copy.mutableRow(1)[1] = QStringLiteral("z");
    else if (edit == QLatin1String("setHeader"))
        copy.setHeader(1, QStringLiteral("z"));
    else if (edit == QLatin1String("appendColumn"))
        copy.appendColumn();
    else if (edit == QLatin1String("removeRow"))
        copy.removeRow(0);
    else if (edit == QLatin1String("sortRows"))
        copy.sortRows(0, Qt::AscendingOrder);
    else if (edit == QLatin1String("setHasHeaders"))
        copy.setHasHeaders(false);
    QVERIFY(copy != original);
    QCOMPARE(toText(original, true), QString("h,k\nb,2\na,1"));
    QVERIFY(original.hasHeaders());
}

void TestDataset::columnIds_data()
{
    QTest::addColumn<QList<ColumnId>>("ids");
    QTest::addColumn<QList<ColumnId>>("cleared");
    const ColumnId a(1, 1), b(1, 2), u;
    QTest::newRow("no duplicates") << QList<ColumnId> {a, b, u} << QList<ColumnId> {a, b, u};
    QTest::newRow("later copy loses id") << QList<ColumnId> {a, b, a} << QList<ColumnId> {a, b, u};
    QTest::newRow("several copies") << QList<ColumnId> {b, b, a, b} << QList<ColumnId> {b, u, a, u};
    QTest::newRow("same sequence, other node")
        << QList<ColumnId> {a, ColumnId(2, 1)} << QList<ColumnId> {a, ColumnId(2, 1)};
    QTest::newRow("unset twice") << QList<ColumnId> {u, a, u} << QList<ColumnId> {u, a, u};
}

void TestDataset::columnIds()
{
    QFETCH(QList<ColumnId>, ids);
    QFETCH(QList<ColumnId>, cleared);
    Dataset dataset;
    dataset.setColumnCount(ids.size());
    dataset.setColumnIds(ids);
    dataset.clearDuplicateColumnIds();
    QCOMPARE(dataset.columnIds(), cleared);
    for (int c = 0; c < cleared.size(); ++c) {
        if (!cleared.at(c).isUnset())
            QCOMPARE(dataset.columnIndex(cleared.at(c)).toInt(), c);
    }
    QCOMPARE(dataset.columnIndex(ColumnId()).toInt(), -1);
    QCOMPARE(dataset.columnIndex(ColumnId(9, 9)).toInt(), -1);
}

void TestDataset::columnIndexFollowsEdits()
{
    Dataset dataset = toDataset("a,b,c");
    dataset.assignColumnIds(5);
    QCOMPARE(dataset.columnIds(), (QList<ColumnId> {ColumnId(5, 1), ColumnId(5, 2), ColumnId(5, 3)}));
    QCOMPARE(dataset.columnIndex(ColumnId(5, 3)).toInt(), 2);
    dataset.removeColumn(0);
    QCOMPARE(dataset.columnIndex(ColumnId(5, 3)).toInt(), 1);
    QCOMPARE(dataset.columnIndex(ColumnId(5, 1)).toInt(), -1);
    dataset.setColumnId(0, ColumnId(5, 3)); // a later equal id wins
    QCOMPARE(dataset.columnIndex(ColumnId(5, 3)).toInt(), 1);
    dataset.appendColumn();
    dataset.assignColumnIds(6); // the new column only, numbered from 1
    QCOMPARE(dataset.columnId(2), ColumnId(6, 1));
    QCOMPARE(dataset.columnIndexes({ColumnId(6, 1), ColumnId(7, 7), ColumnId(5, 3)}),
        (QList<DataColumnIndex> {2, 1}));
    QVERIFY(dataset.columnId(-1).isUnset());
    QVERIFY(dataset.columnId(3).isUnset());
}

void TestDataset::verifyMarks()
{
    Dataset dataset = toDataset("a,b\nc,d\ne,f");
    QCOMPARE(dataset.verifyFail(0, 0), VerifyFailNone);
    dataset.addColumnRuleFail(1, 0, 7, VerifyFailStop);
    dataset.addColumnRuleFail(1, 0, 8, VerifyFailError); // never lowers
    dataset.addCellFail(2, 1, VerifyFailWarning);
    dataset.addRowDatasetRuleFail(2, 3, VerifyFailError);
    dataset.addColumnDatasetRuleFail(1, 4, VerifyFailError);
    dataset.addColumnColumnRuleFail(1, 5, VerifyFailStop);
    QCOMPARE(dataset.verifyFail(1, 0), VerifyFailStop);
    QCOMPARE(dataset.verifyFail(1, -1), VerifyFailStop);
    QCOMPARE(dataset.verifyFail(-1, 0), VerifyFailStop);
    QCOMPARE(dataset.verifyFail(2, 1), VerifyFailWarning);
    QCOMPARE(dataset.verifyFail(2, -1), VerifyFailError);
    QCOMPARE(dataset.verifyFail(-1, 1), VerifyFailStop);
    QCOMPARE(dataset.cellColumnRules(1, 0), (QList<VerifyColumnRuleId> {7, 8}));
    QCOMPARE(dataset.rowColumnRuleCounts().value(1).value(8), 1);
    QCOMPARE(dataset.columnColumnRuleCounts().value(1).value(5), 1);

    // Sorting moves marks and links with their rows.
    dataset.addCellRowLinks(0, 0, {4, 5});
    dataset.sortRows(0, Qt::DescendingOrder);
    QCOMPARE(toText(dataset), QString("e,f\nc,d\na,b"));
    QCOMPARE(dataset.verifyFail(0, 1), VerifyFailWarning);
    QCOMPARE(dataset.verifyFail(0, -1), VerifyFailError);
    QCOMPARE(dataset.rowDatasetRuleCounts().value(0).value(3), 1);
    QCOMPARE(dataset.cellRowLinks(2, 0), (QList<DataRowIndex> {4, 5}));
    QCOMPARE(dataset.cellColumnRules(1, 0), (QList<VerifyColumnRuleId> {7, 8}));

    dataset.clearVerifyMarks();
    QVERIFY(!dataset.hasVerifyFails());
    QVERIFY(dataset.cellColumnRules(1, 0).isEmpty());
    QVERIFY(dataset.rowDatasetRuleCounts().isEmpty());
    QCOMPARE(dataset.columnDatasetRuleCounts().value(1).value(4), 1); // left on purpose
    QVERIFY(dataset.hasCellRowLinks());
}

void TestDataset::variables_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("variables");
    QTest::newRow("by header") << "name,age\nAnn,7"
                               << "$(name) is $(age)"
                               << "Ann is 7" << QStringList {"$(name)", "$(age)"};
    QTest::newRow("by number") << "name,age\nAnn,7"
                               << "$(2)$(1)"
                               << "7Ann" << QStringList {"$(name)", "$(age)"};
    QTest::newRow("header trimmed") << " name ,age\nAnn,7"
                                    << "$(name)"
                                    << "Ann" << QStringList {"$(name)", "$(age)"};
    QTest::newRow("first header wins") << "x,x\n1,2"
                                       << "$(x)"
                                       << "1" << QStringList {"$(x)", "$(x)"};
    QTest::newRow("header beats number") << "2,a\n1,2"
                                         << "$(2)"
                                         << "1" << QStringList {"$(2)", "$(a)"};
    QTest::newRow("blank header by number") << "a, \n1,2"
                                            << "$(2)"
                                            << "2" << QStringList {"$(a)", "$(2)"};
    QTest::newRow("unknown left alone") << "a\n1"
                                        << "$(b) $(a"
                                        << "$(b) $(a" << QStringList {"$(a)"};
    QTest::newRow("bracket in header") << "f(x),b\n1,2"
                                       << "$(f(x))"
                                       << "1" << QStringList {"$(f(x))", "$(b)"};
}

void TestDataset::variables()
{
    QFETCH(QString, rows);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QFETCH(QStringList, variables);
    const Dataset dataset = toDataset(rows, true);
    QCOMPARE(dataset.substituteVariables(0, text), expected);
    QStringList built;
    for (int c = 0; c < dataset.columnCount(); ++c)
        built << dataset.columnVariable(c);
    QCOMPARE(built, variables);
}

void TestDataset::sortRows_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<int>("order");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<QString>("expected");
    QTest::newRow("ties keep order") << "b,1\na,2\nb,3\na,4" << int(Qt::AscendingOrder) << true
                                     << "a,2\na,4\nb,1\nb,3";
    QTest::newRow("descending ties keep order")
        << "b,1\na,2\nb,3\na,4" << int(Qt::DescendingOrder) << true << "b,1\nb,3\na,2\na,4";
    QTest::newRow("case-insensitive ties")
        << "B,1\na,2\nb,3\nA,4" << int(Qt::AscendingOrder) << false << "a,2\nA,4\nB,1\nb,3";
    QTest::newRow("text, not numbers")
        << "10,1\n9,2\n,3" << int(Qt::AscendingOrder) << true << ",3\n10,1\n9,2";
}

void TestDataset::sortRows()
{
    QFETCH(QString, rows);
    QFETCH(int, order);
    QFETCH(bool, caseSensitive);
    QFETCH(QString, expected);
    Dataset dataset = toDataset(rows);
    dataset.sortRows(0, Qt::SortOrder(order), caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
    QCOMPARE(toText(dataset), expected);
}

void TestDataset::columnSummaries_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<int>("maxValues");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("all shown") << "a,b\n1,2" << 5 << QStringList {"( a, 1 )", "( b, 2 )"};
    QTest::newRow("more rows") << "a\n1\n2" << 2 << QStringList {"( a, 1, \u2026 )"};
    QTest::newRow("no rows") << "" << 3 << QStringList {"( No values )", "( No values )"};
    QTest::newRow("elided") << "abcdefgh\nabcde" << 3 << QStringList {"( abcd\u2026, abcde )"};
}

void TestDataset::columnSummaries()
{
    QFETCH(QString, rows);
    QFETCH(int, maxValues);
    QFETCH(QStringList, expected);
    QCOMPARE(table(2, rows).columnSummaries(maxValues, 5), expected);
}

void TestDataset::textForms()
{
    Dataset dataset;
    dataset.setColumnCount(2);
    dataset.setHeaders({"a", ""});
    dataset.appendRow({"1\t2", "\"q\""});
    dataset.appendRow({"x\ny", "<&>"});
    QCOMPARE(dataset.toTabSeparatedText(true), QString("a\t2\n\"1\t2\"\t\"\"\"q\"\"\"\n\"x\ny\"\t<&>\n"));
    QCOMPARE(dataset.toTabSeparatedText(false).count(QLatin1Char('\n')), 3);
    QCOMPARE(dataset.toHtml(true),
        QString("<table>\n<tr><th>a</th><th>2</th></tr>\n"
                "<tr><td>1\t2</td><td>&quot;q&quot;</td></tr>\n"
                "<tr><td>x\ny</td><td>&lt;&amp;&gt;</td></tr>\n</table>\n"));
}

void TestDataset::queries_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("expected");
    QTest::newRow("duplicate within limit") << "a\nb\na"
                                            << "duplicate 3" << 1;
    QTest::newRow("duplicate past limit") << "a\nb\na"
                                          << "duplicate 2" << 0;
    QTest::newRow("blank rows removed") << ",\na,\n,\n,"
                                        << "removeBlankRows" << 3;
    QTest::newRow("blank cells") << ",\na,\n,b"
                                 << "countBlankCells" << 4;
    QTest::newRow("empty text always found") << ""
                                             << "contains" << 1;
    QTest::newRow("case-insensitive find") << "aBc,d"
                                           << "contains bC" << 1;
    QTest::newRow("columns equal") << "a,a\nb,b"
                                   << "columnsEqual 1" << 1;
    QTest::newRow("column out of range") << "a,a\nb,b"
                                         << "columnsEqual 2" << 0;
    QTest::newRow("rows equal") << "a,b\na,b"
                                << "rowsEqual 1" << 1;
    QTest::newRow("row out of range") << "a,b\na,b"
                                      << "rowsEqual 2" << 0;
    QTest::newRow("no rows added without columns") << ""
                                                   << "setRowCount" << 0;
}

void TestDataset::queries()
{
    QFETCH(QString, rows);
    QFETCH(QString, query);
    QFETCH(int, expected);
    Dataset dataset = toDataset(rows);
    const QStringList words = query.split(QLatin1Char(' '));
    const QString &name = words.at(0);
    const int argument = words.value(1).toInt();
    int result = -1;
    if (name == QLatin1String("duplicate"))
        result = dataset.columnHasDuplicate(0, argument);
    else if (name == QLatin1String("removeBlankRows"))
        result = dataset.removeBlankRows();
    else if (name == QLatin1String("countBlankCells"))
        result = dataset.countBlankCells();
    else if (name == QLatin1String("contains"))
        result = dataset.anyCellContains(words.value(1), Qt::CaseInsensitive);
    else if (name == QLatin1String("columnsEqual"))
        result = Dataset::columnsEqual(&dataset, 0, &dataset, argument)
            && !Dataset::columnsEqual(nullptr, 0, &dataset, 0);
    else if (name == QLatin1String("rowsEqual"))
        result = Dataset::rowsEqual(&dataset, 0, &dataset, argument);
    else if (name == QLatin1String("setRowCount")) {
        dataset.setRowCount(4);
        result = dataset.rowCount();
    }
    QCOMPARE(result, expected);
}

QTEST_APPLESS_MAIN(TestDataset)
#include "tst_dataset.moc"
