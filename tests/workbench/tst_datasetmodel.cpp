#include "testutil.h"

#include "workbench/datapanel.h"
#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"
#include "workbench/findbar.h"
#include "workbench/prompts.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMimeData>
#include <QProgressDialog>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>
#include <QtTest>

class TestDatasetModel : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void displayText_data();
    void displayText();
    void alignment_data();
    void alignment();
    void verifyBackground();
    void linksAndToolTip();
    void headers();
    void longTableReadsOnlyVisibleCells();
    void windowFollowsScrolling_data();
    void windowFollowsScrolling();
    void windowKeepsSelection_data();
    void windowKeepsSelection();
    void shiftClickAcrossWindows_data();
    void shiftClickAcrossWindows();
    void copy_data();
    void copy();
    void largeCopyAsks_data();
    void largeCopyAsks();
    void largeCopyCancels();
    void find_data();
    void find();
    void findInvalidPattern();
    void goToRow_data();
    void goToRow();
};

void TestDatasetModel::initTestCase()
{
    Dataset::setMemoryMode(1);
}

void TestDatasetModel::displayText_data()
{
    QTest::addColumn<QString>("cell");
    QTest::addColumn<int>("maxChars");
    QTest::addColumn<bool>("whitespace");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "abc" << 1000 << false << "abc";
    QTest::newRow("line feed") << "a\nb" << 1000 << false << "a↵b";
    QTest::newRow("crlf is one mark") << "a\r\nb" << 1000 << false << "a↵b";
    QTest::newRow("lone cr") << "a\rb\r" << 1000 << false << "a↵b↵";
    QTest::newRow("tab") << "a\tb" << 1000 << false << "a⇥b";
    QTest::newRow("spaces kept without whitespace view") << " a  b " << 1000 << false << " a  b ";
    QTest::newRow("spaces shown") << " a  b " << 1000 << true << "·a··b·";
    QTest::newRow("empty stays empty") << "" << 1000 << true << "";
    QTest::newRow("cut with ellipsis") << "abcdef" << 4 << false << "abcd…";
    QTest::newRow("exactly at limit") << "abcd" << 4 << false << "abcd";
    QTest::newRow("cut counts source characters") << "a\r\nbcdef" << 3 << false << "a↵…";
}

void TestDatasetModel::displayText()
{
    QFETCH(QString, cell);
    QFETCH(int, maxChars);
    QFETCH(bool, whitespace);
    QFETCH(QString, expected);
    QCOMPARE(DatasetTableModel::displayText(cell, maxChars, whitespace), expected);

    // Through the model, with the same settings.
    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.appendRow({cell});
    DatasetTableModel model;
    model.setMaxCellChars(maxChars);
    model.setShowWhitespace(whitespace);
    model.setDataset(dataset);
    QCOMPARE(model.data(model.index(0, 0)).toString(), expected);
}

void TestDatasetModel::alignment_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<bool>("rightAligned");
    QTest::newRow("numbers") << "1\n2.5\n-3" << true;
    QTest::newRow("text") << "a\nb" << false;
    QTest::newRow("mixed") << "1\nb" << false;
    QTest::newRow("dates") << "2021-01-05\n2021-02-07" << false;
}

void TestDatasetModel::alignment()
{
    QFETCH(QString, table);
    QFETCH(bool, rightAligned);
    DatasetTableModel model;
    model.setDataset(testutil::toDataset(table));
    const int alignment = model.data(model.index(0, 0), Qt::TextAlignmentRole).toInt();
    QCOMPARE(bool(alignment & Qt::AlignRight), rightAligned);
    QVERIFY(alignment & Qt::AlignVCenter);
}

void TestDatasetModel::verifyBackground()
{
    Dataset dataset = testutil::toDataset("a,b\nc,d");
    dataset.addColumnRuleFail(0, 1, 0, VerifyFailError);
    dataset.addCellFail(1, 0, VerifyFailWarning);
    DatasetTableModel model;
    model.setDataset(dataset);
    const auto colour = [&](int row, int column) {
        return model.data(model.index(row, column), Qt::BackgroundRole).value<QBrush>().color();
    };
    QCOMPARE(colour(0, 1), QColor(0xF8, 0xD0, 0xCC));
    QCOMPARE(colour(1, 0), QColor(0xFB, 0xE7, 0xB5));
    QVERIFY(!model.data(model.index(0, 0), Qt::BackgroundRole).isValid());
    // The row and the column of a failed column rule are marked in the headers too.
    QCOMPARE(model.headerData(0, Qt::Vertical, Qt::BackgroundRole).value<QBrush>().color(),
        QColor(0xF8, 0xD0, 0xCC));
    QCOMPARE(model.headerData(1, Qt::Horizontal, Qt::BackgroundRole).value<QBrush>().color(),
        QColor(0xF8, 0xD0, 0xCC));
    QVERIFY(!model.headerData(1, Qt::Vertical, Qt::BackgroundRole).isValid());
    QVERIFY(model.data(model.index(0, 1), Qt::ToolTipRole)
                .toString()
                .contains(QStringLiteral("\nError: Required")));
}

void TestDatasetModel::linksAndToolTip()
{
    Dataset dataset = testutil::toDataset("a,b\nc,d");
    dataset.addCellRowLinks(1, 1, {DataRowIndex(3), DataRowIndex(4)});
    DatasetTableModel model;
    model.setDataset(dataset);
    QVERIFY(model.data(model.index(1, 1), DatasetTableModel::HasLinksRole).toBool());
    QVERIFY(!model.data(model.index(0, 1), DatasetTableModel::HasLinksRole).toBool());
    QCOMPARE(model.data(model.index(1, 1), Qt::ToolTipRole).toString(),
        QStringLiteral("d\n\n2 linked row(s). Double-click to show them."));
    QCOMPARE(model.data(model.index(0, 0), Qt::ToolTipRole).toString(), QStringLiteral("a"));

    // A long cell's tool tip is cut at 4,000 characters.
    Dataset longCell;
    longCell.setColumnCount(1);
    longCell.appendRow({QString(5000, QLatin1Char('x'))});
    model.setDataset(longCell);
    QCOMPARE(model.data(model.index(0, 0), Qt::ToolTipRole).toString(),
        QString(4000, QLatin1Char('x')) + QStringLiteral("…"));
}

void TestDatasetModel::headers()
{
    Dataset dataset = testutil::toDataset("name,,amount\nx,y,1\nz,w,2", true);
    DatasetTableModel model;
    model.setDataset(dataset);
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QStringLiteral("name"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QStringLiteral("2"));
    QCOMPARE(model.headerData(2, Qt::Horizontal, Qt::ToolTipRole).toString(),
        QStringLiteral("Column 3 of 3: 'amount'\nType: number\n( 1, 2 )"));
    QCOMPARE(model.headerData(1, Qt::Vertical).toString(), QStringLiteral("2"));

    Dataset many;
    many.setColumnCount(1);
    for (int i = 0; i < 1234; ++i)
        many.appendRow({QString::number(i)});
    model.setDataset(many);
    QCOMPARE(model.headerData(1233, Qt::Vertical).toString(), QLocale().toString(1234));
}

void TestDatasetModel::longTableReadsOnlyVisibleCells()
{
    // Ten million rows that all share one row's storage.
    Dataset dataset;
    dataset.setColumnCount(5);
    const QStringList row = {QStringLiteral("alpha"), QStringLiteral("12.5"),
        QStringLiteral("a longer text cell"), QStringLiteral("x"), QStringLiteral("2021-03-04")};
    dataset.reserveRows(10000000);
    for (int i = 0; i < 10000000; ++i)
        dataset.appendRow(row);

    DataTableView view;
    view.resize(800, 600);
    DatasetTableModel model;
    model.setDataset(dataset);
    view.setDatasetModel(&model);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    model.resetCellReads();
    view.scrollToBottom();
    QApplication::processEvents();
    view.viewport()->repaint();
    QVERIFY2(model.cellReads() < 5000, qPrintable(QString::number(model.cellReads())));
    QVERIFY(model.cellReads() > 0);
    // The last rows of the table, not of its first window, are on screen, numbered from 1.
    const int bottom = view.rowAt(view.viewport()->height() - 2);
    QVERIFY(bottom >= 0);
    QCOMPARE(model.datasetRow(bottom) >= 9999990, true);
    QCOMPARE(model.headerData(bottom, Qt::Vertical).toString(), QLocale().toString(model.datasetRow(bottom) + 1));
    QVERIFY(view.rowScrollBar()->isVisible());
    QCOMPARE(view.rowScrollBar()->value(), view.rowScrollBar()->maximum());
    QVERIFY(!view.verticalScrollBar()->isVisible());
}

namespace {

// rows rows of (row number from 1, "v"), shown through a window of windowRows rows.
struct WindowedTable
{
    DatasetTableModel model;
    DataTableView view;

    WindowedTable(int rows, int windowRows)
    {
        Dataset dataset;
        dataset.setColumnCount(2);
        dataset.setHeaders({QStringLiteral("n"), QStringLiteral("v")});
        for (int i = 0; i < rows; ++i)
            dataset.appendRow({QString::number(i + 1), QStringLiteral("v")});
        model.setWindowRows(windowRows);
        model.setDataset(dataset);
        view.setDatasetModel(&model);
        view.resize(400, 300);
        view.show();
    }
    // The row number shown in the top row and in the current cell's row.
    int topNumber() const { return model.index(view.rowAt(0), 0).data().toInt(); }
    int currentNumber() const { return view.currentIndex().siblingAtColumn(0).data().toInt(); }
};

} // namespace

void TestDatasetModel::windowFollowsScrolling_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("argument");
    QTest::addColumn<int>("top"); // row number at the top of the view, 0 not checked
    QTest::addColumn<int>("current"); // row number of the current cell, 0 not checked
    // 1,000 rows through a window of 100.
    QTest::newRow("scroll bar to row 500") << "bar" << 499 << 500 << 0;
    QTest::newRow("scroll bar to the end shows the last row") << "end" << 0 << 0 << 0;
    QTest::newRow("go to row 750") << "goto" << 750 << 0 << 750;
    QTest::newRow("go to the last row") << "goto" << 1000 << 0 << 1000;
    QTest::newRow("Ctrl+End") << "ctrlEnd" << 0 << 0 << 1000;
    QTest::newRow("Ctrl+End then Ctrl+Home") << "ctrlHome" << 0 << 1 << 1;
    QTest::newRow("Page Down past the window") << "pageDown" << 20 << 0 << 0;
    QTest::newRow("Down past the window") << "down" << 150 << 0 << 151;
    QTest::newRow("wheel past the window") << "wheel" << 60 << 0 << 0;
    QTest::newRow("go to row 500, then the end: the current cell stays put")
        << "gotoThenEnd" << 500 << 0 << 0;
}

void TestDatasetModel::windowFollowsScrolling()
{
    QFETCH(QString, action);
    QFETCH(int, argument);
    QFETCH(int, top);
    QFETCH(int, current);
    WindowedTable table(1000, 100);
    QVERIFY(QTest::qWaitForWindowExposed(&table.view));
    QVERIFY(table.view.rowScrollBar()->isVisible());
    QCOMPARE(table.model.rowCount(), 100);
    table.view.setCurrentIndex(table.model.index(0, 0));
    const int page = table.view.verticalScrollBar()->pageStep();
    if (action == QLatin1String("bar")) {
        table.view.rowScrollBar()->setValue(argument);
    } else if (action == QLatin1String("end")) {
        table.view.rowScrollBar()->setValue(table.view.rowScrollBar()->maximum());
    } else if (action == QLatin1String("goto")) {
        QVERIFY(table.view.goToCell(argument - 1, 0));
    } else if (action == QLatin1String("gotoThenEnd")) {
        QVERIFY(table.view.goToCell(argument - 1, 0));
        table.view.scrollToBottom();
    } else if (action == QLatin1String("ctrlEnd")) {
        QTest::keyClick(&table.view, Qt::Key_End, Qt::ControlModifier);
    } else if (action == QLatin1String("ctrlHome")) {
        QTest::keyClick(&table.view, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(&table.view, Qt::Key_Home, Qt::ControlModifier);
    } else if (action == QLatin1String("pageDown")) {
        for (int i = 0; i < argument; ++i)
            QTest::keyClick(&table.view, Qt::Key_PageDown);
        // Each page moves on by about a screen.
        QVERIFY(table.currentNumber() >= 1 + argument * (page - 1));
        QVERIFY(table.currentNumber() <= 1 + argument * (page + 1));
    } else if (action == QLatin1String("down")) {
        for (int i = 0; i < argument; ++i)
            QTest::keyClick(&table.view, Qt::Key_Down);
    } else if (action == QLatin1String("wheel")) {
        for (int i = 0; i < argument; ++i) {
            QWheelEvent wheel(QPointF(50, 50), table.view.viewport()->mapToGlobal(QPoint(50, 50)), QPoint(),
                QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(table.view.viewport(), &wheel);
        }
        // Three rows a notch, by the platform's default.
        top = 1 + argument * QApplication::wheelScrollLines();
    }
    QApplication::processEvents();
    if (top > 0)
        QCOMPARE(table.topNumber(), top);
    if (current > 0)
        QVERIFY2(qAbs(table.currentNumber() - current) <= 1,
            qPrintable(QStringLiteral("%1 instead of %2").arg(table.currentNumber()).arg(current)));
    if (action == QLatin1String("end") || action == QLatin1String("ctrlEnd") || action == QLatin1String("gotoThenEnd")
        || current == 1000) {
        const int bottom = table.view.rowAt(table.view.viewport()->height() - 2);
        QCOMPARE(table.model.index(bottom < 0 ? table.model.rowCount() - 1 : bottom, 0).data().toInt(), 1000);
    }
    // The big scroll bar always says where the view is. At the very end the top row may
    // show in part, above the first whole one.
    QCOMPARE(table.view.rowScrollBar()->value(), table.view.firstVisibleRow());
    QVERIFY(qAbs(table.topNumber() - (table.view.firstVisibleRow() + 1)) <= 1);
}

void TestDatasetModel::windowKeepsSelection_data()
{
    QTest::addColumn<QString>("selection");
    QTest::addColumn<int>("scrollTo"); // dataset row put at the top before the copy
    QTest::addColumn<int>("copiedRows");
    QTest::addColumn<QString>("firstLine");
    QTest::newRow("cells stay selected as the window moves")
        << "cells" << 80 << 3 << "51\tv";
    QTest::newRow("a column header selects every row of the table")
        << "column" << 0 << 1000 << "1";
    QTest::newRow("a column stays whole after scrolling") << "column" << 700 << 1000 << "1";
    QTest::newRow("Select All copies the whole table") << "all" << 900 << 1000 << "1\tv";
    QTest::newRow("cells scrolled far out of the window are dropped")
        << "cells" << 800 << 0 << "";
}

void TestDatasetModel::windowKeepsSelection()
{
    QFETCH(QString, selection);
    QFETCH(int, scrollTo);
    QFETCH(int, copiedRows);
    QFETCH(QString, firstLine);
    WindowedTable table(1000, 100);
    QVERIFY(QTest::qWaitForWindowExposed(&table.view));
    if (selection == QLatin1String("cells")) {
        table.view.selectionModel()->select(
            QItemSelection(table.model.index(50, 0), table.model.index(52, 1)), QItemSelectionModel::Select);
    } else if (selection == QLatin1String("column")) {
        QTest::mouseClick(table.view.horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
            QPoint(table.view.horizontalHeader()->sectionViewportPosition(0) + 5, 5));
    } else {
        table.view.selectAll();
    }
    table.view.scrollToRow(scrollTo);
    QApplication::processEvents();
    QCOMPARE(table.view.firstVisibleRow(), scrollTo);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    table.view.copySelection(false);
    const QString text = QApplication::clipboard()->text();
    if (copiedRows == 0) {
        QCOMPARE(text, QStringLiteral("before"));
        return;
    }
    QCOMPARE(text.count(QLatin1Char('\n')), copiedRows);
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0), firstLine);
    QCOMPARE(table.view.selectedCellCount(), qint64(copiedRows) * firstLine.count(QLatin1Char('\t')) + copiedRows);
}

void TestDatasetModel::copy_data()
{
    QTest::addColumn<QString>("cell");
    QTest::addColumn<bool>("withHeaders");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "b" << false << "a\tb\n";
    QTest::newRow("tab quoted") << "x\ty" << false << "a\t\"x\ty\"\n";
    QTest::newRow("line feed quoted") << "x\ny" << false << "a\t\"x\ny\"\n";
    QTest::newRow("carriage return quoted") << "x\ry" << false << "a\t\"x\ry\"\n";
    QTest::newRow("quotes doubled") << "say \"hi\"" << false << "a\t\"say \"\"hi\"\"\"\n";
    QTest::newRow("with headers") << "b" << true << "h1\th2\na\tb\n";
}

void TestDatasetModel::copy()
{
    QFETCH(QString, cell);
    QFETCH(bool, withHeaders);
    QFETCH(QString, expected);
    Dataset dataset;
    dataset.setColumnCount(3);
    dataset.setHeaders({QStringLiteral("h1"), QStringLiteral("h2"), QStringLiteral("h3")});
    dataset.appendRow({QStringLiteral("a"), cell, QStringLiteral("not selected")});
    dataset.appendRow({QStringLiteral("below"), QStringLiteral("below"), QStringLiteral("below")});
    DatasetTableModel model;
    model.setDataset(dataset);
    DataTableView view;
    view.setDatasetModel(&model);
    view.selectionModel()->select(
        QItemSelection(model.index(0, 0), model.index(0, 1)), QItemSelectionModel::Select);
    view.copySelection(withHeaders);
    const QMimeData *mime = QApplication::clipboard()->mimeData();
    QVERIFY(mime);
    QCOMPARE(mime->text(), expected);
    QVERIFY(mime->html().contains(QStringLiteral("<td>a</td>")));
}

void TestDatasetModel::largeCopyAsks_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<bool>("copied");
    QTest::newRow("a million cells copy at once") << 1000000 << "" << false << true;
    QTest::newRow("one more asks, cancelled") << 1000001 << "Cancel" << true << false;
    QTest::newRow("one more asks, copied") << 1000001 << "Copy" << true << true;
}

void TestDatasetModel::largeCopyAsks()
{
    QFETCH(int, rows);
    QFETCH(QString, answer);
    QFETCH(bool, asked);
    QFETCH(bool, copied);
    Dataset dataset;
    dataset.setColumnCount(1);
    const QStringList row = {QStringLiteral("v")};
    for (int i = 0; i < rows; ++i)
        dataset.appendRow(row);
    DatasetTableModel model;
    model.setDataset(dataset);
    DataTableView view;
    view.setDatasetModel(&model);
    view.selectAll();
    ScriptedPrompts prompts;
    if (!answer.isEmpty())
        prompts.answers << answer;
    Prompts::setInstance(&prompts);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    view.copySelection(false);
    Prompts::setInstance(nullptr);
    QCOMPARE(!prompts.asked.isEmpty(), asked);
    QCOMPARE(QApplication::clipboard()->text() != QLatin1String("before"), copied);
    if (copied)
        QCOMPARE(QApplication::clipboard()->text().size(), rows * 2);
}

void TestDatasetModel::shiftClickAcrossWindows_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("anchor"); // row number clicked first
    QTest::addColumn<int>("scrollTo"); // dataset row put at the top before the Shift+click
    QTest::addColumn<bool>("taller"); // the range is taller than the window of 100 rows
    QTest::newRow("within the window") << 1000 << 11 << 0 << false;
    QTest::newRow("past the window's edge: it moves to hold both") << 1000 << 11 << 70 << false;
    QTest::newRow("taller than the window") << 1000 << 11 << 500 << true;
    QTest::newRow("upwards, taller than the window") << 1000 << 900 << 20 << true;
    QTest::newRow("a table shorter than the window") << 90 << 11 << 40 << false;
}

void TestDatasetModel::shiftClickAcrossWindows()
{
    QFETCH(int, rows);
    QFETCH(int, anchor);
    QFETCH(int, scrollTo);
    QFETCH(bool, taller);
    WindowedTable table(rows, 100);
    QVERIFY(QTest::qWaitForWindowExposed(&table.view));
    QVERIFY(table.view.goToCell(anchor - 1, 0));
    table.view.scrollToRow(scrollTo);
    QApplication::processEvents();
    // Shift+click the fifth row on screen, second column.
    const int modelRow = table.view.rowAt(0) + 4;
    const int clicked = table.model.datasetRow(modelRow);
    const QRect cell = table.view.visualRect(table.model.index(modelRow, 1));
    QTest::mouseClick(table.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, cell.center());
    const int copiedRows = qAbs(clicked - (anchor - 1)) + 1;
    QCOMPARE(copiedRows > 100, taller);
    QCOMPARE(table.view.selectedCellCount(), qint64(copiedRows) * 2);
    QCOMPARE(table.view.currentIndex().siblingAtColumn(0).data().toInt(), clicked + 1);
    QApplication::clipboard()->clear();
    table.view.copySelection(false);
    const QString text = QApplication::clipboard()->text();
    QCOMPARE(text.count(QLatin1Char('\n')), copiedRows);
    const int first = qMin(clicked, anchor - 1) + 1;
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0), QStringLiteral("%1\tv").arg(first));
    // Scrolled back to where the range starts, its rows show selected.
    table.view.scrollToRow(first - 1);
    QApplication::processEvents();
    QVERIFY(table.view.selectionModel()->isSelected(table.model.index(table.view.rowAt(0), 1)));
}

void TestDatasetModel::largeCopyCancels()
{
    // A copy too long to make at once shows its progress; Cancel leaves the clipboard alone.
    Dataset dataset;
    dataset.setColumnCount(2);
    const QStringList row = {QStringLiteral("a"), QStringLiteral("b")};
    for (int i = 0; i < 600000; ++i)
        dataset.appendRow(row);
    DatasetTableModel model;
    model.setDataset(dataset);
    DataTableView view;
    view.setDatasetModel(&model);
    view.show();
    view.selectAll();
    ScriptedPrompts prompts;
    prompts.answers << QStringLiteral("Copy");
    Prompts::setInstance(&prompts);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    int slices = 0;
    QTimer canceller;
    canceller.setInterval(0);
    connect(&canceller, &QTimer::timeout, &view, [&] {
        if (auto *progress = view.findChild<QProgressDialog *>(QStringLiteral("copyProgress"))) {
            ++slices;
            QVERIFY(progress->labelText().startsWith(QStringLiteral("Copying... ")));
            progress->cancel();
        }
    });
    canceller.start();
    view.copySelection(false);
    canceller.stop();
    Prompts::setInstance(nullptr);
    QCOMPARE(slices, 1);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("before"));
    // Without Cancel the same copy goes through whole.
    prompts.answers << QStringLiteral("Copy");
    Prompts::setInstance(&prompts);
    view.copySelection(false);
    Prompts::setInstance(nullptr);
    QCOMPARE(QApplication::clipboard()->text().size(), 600000 * 4);
}

void TestDatasetModel::find_data()
{
    QTest::addColumn<QString>("needle");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("wholeCell");
    QTest::addColumn<bool>("regex");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("forward");
    QTest::addColumn<QPoint>("start"); // (column, row); (-1, -1) for no current cell
    QTest::addColumn<QPoint>("expected"); // (-1, -1) not found
    QTest::addColumn<QString>("status");
    // Table:   row 0: apple  Pear   x
    //          row 1: pear   plum   apple pie
    //          row 2: fig    APPLE  y
    QTest::newRow("next from nothing") << "apple" << false << false << false << -1 << true << QPoint(-1, -1)
                                       << QPoint(0, 0) << "Row 1, column 'A'";
    QTest::newRow("next moves on") << "apple" << false << false << false << -1 << true << QPoint(0, 0)
                                   << QPoint(2, 1) << "Row 2, column 'C'";
    QTest::newRow("case insensitive") << "apple" << false << false << false << -1 << true << QPoint(2, 1)
                                      << QPoint(1, 2) << "Row 3, column 'B'";
    QTest::newRow("wraps") << "apple" << false << false << false << -1 << true << QPoint(1, 2) << QPoint(0, 0)
                           << "Search wrapped – Row 1, column 'A'";
    QTest::newRow("case sensitive") << "APPLE" << true << false << false << -1 << true << QPoint(0, 0)
                                    << QPoint(1, 2) << "Row 3, column 'B'";
    QTest::newRow("whole cell") << "apple" << false << true << false << -1 << true << QPoint(0, 0)
                                << QPoint(1, 2) << "Row 3, column 'B'";
    QTest::newRow("previous") << "apple" << false << false << false << -1 << false << QPoint(1, 2)
                              << QPoint(2, 1) << "Row 2, column 'C'";
    QTest::newRow("previous wraps") << "pear" << false << false << false << -1 << false << QPoint(1, 0)
                                    << QPoint(0, 1) << "Search wrapped – Row 2, column 'A'";
    QTest::newRow("regex") << "^p(ea|lu)" << false << false << true << -1 << true << QPoint(0, 0)
                           << QPoint(1, 0) << "Row 1, column 'B'";
    QTest::newRow("one column") << "apple" << false << false << false << 1 << true << QPoint(0, 0)
                                << QPoint(1, 2) << "Row 3, column 'B'";
    QTest::newRow("only match is the current cell")
        << "fig" << false << false << false << -1 << true << QPoint(0, 2) << QPoint(0, 2)
        << "Search wrapped – Row 3, column 'A'";
    QTest::newRow("not found") << "banana" << false << false << false << -1 << true << QPoint(0, 0)
                               << QPoint(-1, -1) << "Not found";
}

void TestDatasetModel::find()
{
    QFETCH(QString, needle);
    QFETCH(bool, caseSensitive);
    QFETCH(bool, wholeCell);
    QFETCH(bool, regex);
    QFETCH(int, column);
    QFETCH(bool, forward);
    QFETCH(QPoint, start);
    QFETCH(QPoint, expected);
    QFETCH(QString, status);
    Dataset dataset = testutil::toDataset("A,B,C\napple,Pear,x\npear,plum,apple pie\nfig,APPLE,y", true);
    DatasetTableModel model;
    model.setDataset(dataset);
    DataTableView view;
    view.setDatasetModel(&model);
    TableFindBar bar(&view);
    if (start.x() >= 0)
        view.setCurrentIndex(model.index(start.y(), start.x()));
    bar.setText(needle);
    bar.setCaseSensitive(caseSensitive);
    bar.setWholeCell(wholeCell);
    bar.setRegularExpression(regex);
    bar.setColumn(column);
    QSignalSpy finished(&bar, &TableFindBar::searchFinished);
    if (forward)
        bar.findNext();
    else
        bar.findPrevious();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toBool(), expected.x() >= 0);
    if (expected.x() >= 0)
        QCOMPARE(view.currentIndex(), model.index(expected.y(), expected.x()));
    QCOMPARE(bar.statusText(), status);
}

void TestDatasetModel::findInvalidPattern()
{
    DatasetTableModel model;
    model.setDataset(testutil::toDataset("a\nb"));
    DataTableView view;
    view.setDatasetModel(&model);
    TableFindBar bar(&view);
    bar.setRegularExpression(true);
    bar.setText(QStringLiteral("(unclosed"));
    bar.findNext();
    QVERIFY(bar.statusText().startsWith(QStringLiteral("Invalid regular expression: ")));
    QVERIFY(!bar.isSearching());
}

void TestDatasetModel::goToRow_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("ok");
    QTest::newRow("first") << 1 << true;
    QTest::newRow("last") << 500 << true;
    QTest::newRow("zero") << 0 << false;
    QTest::newRow("past the end") << 501 << false;
}

void TestDatasetModel::goToRow()
{
    QFETCH(int, row);
    QFETCH(bool, ok);
    Dataset dataset;
    dataset.setColumnCount(2);
    for (int i = 0; i < 500; ++i)
        dataset.appendRow({QString::number(i), QStringLiteral("v")});
    DataPanel panel;
    panel.model()->setDataset(dataset);
    QCOMPARE(panel.goToRow(row), ok);
    if (ok)
        QCOMPARE(panel.view()->currentIndex(), panel.model()->index(row - 1, 0));
}

QTEST_MAIN(TestDatasetModel)
#include "tst_datasetmodel.moc"
