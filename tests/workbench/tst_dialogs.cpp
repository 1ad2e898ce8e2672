#include "canvastestutil.h"

#include "core/settings.h"
#include "flow/maxmemoryexception.h"
#include "outputs/outputnode.h"
#include "transforms/parameter.h"
#include "transforms/transformnode.h"
#include "workbench/aboutdialog.h"
#include "workbench/comparedialog.h"
#include "workbench/missingfilesdialog.h"
#include "workbench/recoverydialog.h"
#include "workbench/connectdialog.h"
#include "workbench/dialogutil.h"
#include "workbench/exploreduplicatesdialog.h"
#include "workbench/explorekeysdialog.h"
#include "workbench/insufficientmemorydialog.h"
#include "workbench/preferencesdialog.h"
#include "workbench/prompts.h"
#include "workbench/recentdocuments.h"
#include "workbench/recentdocumentsdialog.h"

#include <QCryptographicHash>
#include <QDoubleSpinBox>
#include <QRadioButton>
#include <QLineEdit>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTreeWidget>
#include <QUndoStack>

using namespace CanvasTest;

class TestDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void exploreKeysCountsMatchTheJoin_data();
    void exploreKeysCountsMatchTheJoin();
    void exploreKeysShowFilter_data();
    void exploreKeysShowFilter();
    void exploreKeysUseTheseColumnsIsOneStep();
    void exploreKeysWithoutDataOffersRun();
    void exploreKeysCountsLargeTablesInSlices();

    void exploreDuplicatesGroups_data();
    void exploreDuplicatesGroups();
    void exploreDuplicatesUseTheseOptionsIsOneStep();

    void compareCounts_data();
    void compareCounts();
    void compareNextDifference();

    void preferencesWriteOnOkAndApplyOnly_data();
    void preferencesWriteOnOkAndApplyOnly();
    void preferencesRestoreDefaults();
    void blockedExtensionsAreCleaned_data();
    void blockedExtensionsAreCleaned();

    void recentDocumentsFilter_data();
    void recentDocumentsFilter();
    void recentDocumentsPinAndMissing();

    void insufficientMemory_data();
    void insufficientMemory();

    void connectDialog_data();
    void connectDialog();

    void missingFilesLocated_data();
    void missingFilesLocated();
    void aboutIntegrityLine_data();
    void aboutIntegrityLine();
    void mnemonicsAreUniqueInEachDialog_data();
    void mnemonicsAreUniqueInEachDialog();

private:
    // Two pasted inputs, top above bottom, joined; everything run.
    TransformNode *addJoin(const QString &top, const QString &bottom);
    TransformNode *addDedupe(const QString &text);
    static void setColumn(TransformNode *node, const QString &name, int column);
    static QString groupsText(const DuplicateFinder &finder);

    GraphScene *m_scene = nullptr;
    QUndoStack *m_undo = nullptr;
};

void TestDialogs::init()
{
    m_scene = new GraphScene;
    m_undo = new QUndoStack;
}

void TestDialogs::cleanup()
{
    delete m_undo;
    delete m_scene;
}

TransformNode *TestDialogs::addJoin(const QString &top, const QString &bottom)
{
    Node *topInput = addInput(*m_scene, QPointF(0, 0), top);
    Node *bottomInput = addInput(*m_scene, QPointF(0, 150), bottom);
    m_scene->runEverything();
    auto *join = new TransformNode(prototype(QStringLiteral("Join"))->clone());
    join->setPos(200, 50);
    m_scene->addNode(join);
    m_scene->connectNodes(topInput, join);
    m_scene->connectNodes(bottomInput, join);
    return join;
}

void TestDialogs::setColumn(TransformNode *node, const QString &name, int column)
{
    Parameter *parameter = node->transform()->parameter(name);
    QVERIFY(parameter && parameter->upstream());
    parameter->setValue(QVariant::fromValue(parameter->upstream()->dataset().columnId(DataColumnIndex(column))));
}

// ----- Explore Keys

void TestDialogs::exploreKeysCountsMatchTheJoin_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<int>("topColumn");
    QTest::addColumn<int>("bottomColumn");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<qint64>("matching");
    QTest::addColumn<QString>("bothLine");

    QTest::newRow("unique keys") << "id,name\n1,a\n2,b\n3,c\n"
                                 << "id,price\n2,20\n3,30\n4,40\n"
                                 << 0 << 0 << false << qint64(2) << "In both: 2 keys (2 top rows, 2 bottom rows)";
    QTest::newRow("repeated keys multiply") << "id,name\n1,a\n1,b\n2,c\n"
                                            << "id,price\n1,10\n1,11\n1,12\n2,20\n"
                                            << 0 << 0 << false << qint64(7)
                                            << "In both: 2 keys (3 top rows, 4 bottom rows)";
    QTest::newRow("case folded") << "code,n\nAB,1\nab,2\ncd,3\n"
                                 << "code,m\naB,x\nCD,y\n"
                                 << 0 << 0 << false << qint64(3) << "In both: 2 keys (3 top rows, 2 bottom rows)";
    QTest::newRow("case sensitive") << "code,n\nAB,1\nab,2\ncd,3\n"
                                    << "code,m\naB,x\nCD,y\nab,z\n"
                                    << 0 << 0 << true << qint64(1) << "In both: 1 keys (1 top rows, 1 bottom rows)";
    QTest::newRow("whitespace is part of the key") << "k,v\nx,1\n x,2\n"
                                                   << "k,w\nx,3\nx ,4\n"
                                                   << 0 << 0 << false << qint64(1)
                                                   << "In both: 1 keys (1 top rows, 1 bottom rows)";
    QTest::newRow("empty keys match each other") << "k,v\n,1\na,2\n,3\n"
                                                 << "k,w\n,x\nb,y\n"
                                                 << 0 << 0 << false << qint64(2)
                                                 << "In both: 1 keys (2 top rows, 1 bottom rows)";
    QTest::newRow("second columns") << "a,key\n1,p\n2,q\n"
                                    << "b,c,key\n9,8,q\n7,6,q\n"
                                    << 1 << 2 << false << qint64(2) << "In both: 1 keys (1 top rows, 2 bottom rows)";
    QTest::newRow("nothing shared") << "k\na\nb\n"
                                    << "k\nc\n"
                                    << 0 << 0 << false << qint64(0) << "In both: 0 keys (0 top rows, 0 bottom rows)";
}

void TestDialogs::exploreKeysCountsMatchTheJoin()
{
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(int, topColumn);
    QFETCH(int, bottomColumn);
    QFETCH(bool, caseSensitive);
    QFETCH(qint64, matching);
    QFETCH(QString, bothLine);

    TransformNode *join = addJoin(top, bottom);
    setColumn(join, QStringLiteral("Column_1"), topColumn);
    setColumn(join, QStringLiteral("Column_2"), bottomColumn);
    join->transform()->parameter(QStringLiteral("Case_Sensitive"))->setValue(caseSensitive);
    m_scene->invalidate(join);
    m_scene->runEverything();
    QCOMPARE(join->status(), int(Node::UpToDate));

    ExploreKeysDialog dialog(join, nullptr, m_undo);
    QCOMPARE(dialog.findChild<QComboBox *>(QStringLiteral("topKeyCombo"))->currentIndex(), topColumn);
    QCOMPARE(dialog.findChild<QComboBox *>(QStringLiteral("bottomKeyCombo"))->currentIndex(), bottomColumn);
    QCOMPARE(dialog.findChild<QCheckBox *>(QStringLiteral("caseSensitiveCheck"))->isChecked(), caseSensitive);
    QVERIFY(!dialog.isCounting());
    QCOMPARE(dialog.counter().summary().matchingRows, qint64(join->dataset().rowCount()));
    QCOMPARE(dialog.counter().summary().matchingRows, matching);
    const QStringList lines = dialog.summaryLines();
    QCOMPARE(lines.size(), 6);
    QCOMPARE(lines.at(2), bothLine);
    QCOMPARE(lines.at(5), QStringLiteral("A join by these keys gives %1 matching rows.").arg(matching));

    // Flipping case sensitivity in the dialog counts again, still as the join would.
    QCheckBox *caseCheck = dialog.findChild<QCheckBox *>(QStringLiteral("caseSensitiveCheck"));
    caseCheck->click();
    join->transform()->parameter(QStringLiteral("Case_Sensitive"))->setValue(!caseSensitive);
    m_scene->invalidate(join);
    m_scene->runEverything();
    QCOMPARE(dialog.counter().summary().matchingRows, qint64(join->dataset().rowCount()));
}

void TestDialogs::exploreKeysShowFilter_data()
{
    QTest::addColumn<int>("show");
    QTest::addColumn<QStringList>("keys");

    // Top: a, a, b, " c", "" ; bottom: A, c, d, d
    QTest::newRow("all keys") << 0 << QStringList {"a", "b", "·c", "", "c", "d"};
    QTest::newRow("in both") << 1 << QStringList {"a"};
    QTest::newRow("top only") << 2 << QStringList {"b", "·c", ""};
    QTest::newRow("bottom only") << 3 << QStringList {"c", "d"};
    QTest::newRow("duplicated") << 4 << QStringList {"a", "d"};
    QTest::newRow("whitespace") << 5 << QStringList {"·c"};
    QTest::newRow("empty") << 6 << QStringList {""};
}

void TestDialogs::exploreKeysShowFilter()
{
    QFETCH(int, show);
    QFETCH(QStringList, keys);
    TransformNode *join = addJoin(QStringLiteral("k,n\na,1\na,2\nb,3\n\" c\",4\n,5\n"),
                                  QStringLiteral("k,m\nA,1\nc,2\nd,3\nd,4\n"));
    setColumn(join, QStringLiteral("Column_1"), 0);
    setColumn(join, QStringLiteral("Column_2"), 0);
    join->transform()->parameter(QStringLiteral("Case_Sensitive"))->setValue(false);
    ExploreKeysDialog dialog(join, nullptr, m_undo);
    dialog.findChild<QComboBox *>(QStringLiteral("showCombo"))->setCurrentIndex(show);
    QTableView *table = dialog.findChild<QTableView *>(QStringLiteral("keyTable"));
    QStringList shown;
    for (int row = 0; row < table->model()->rowCount(); ++row)
        shown << table->model()->index(row, 0).data().toString();
    QCOMPARE(shown, keys);

    // Selecting a key lists its rows on both sides, numbered from 1.
    if (!keys.isEmpty()) {
        table->setCurrentIndex(table->model()->index(0, 0));
        const QAbstractItemModel *topRows = dialog.findChild<QTableView *>(QStringLiteral("topRowsTable"))->model();
        const QString first = table->model()->index(0, 1).data().toString();
        QCOMPARE(QString::number(topRows->rowCount()), first);
        if (topRows->rowCount() > 0)
            QVERIFY(topRows->index(0, 0).data().toString().toInt() >= 1);
    }
}

void TestDialogs::exploreKeysUseTheseColumnsIsOneStep()
{
    TransformNode *join = addJoin(QStringLiteral("x,id\n1,a\n2,b\n"), QStringLiteral("id,y\nA,1\nb,2\n"));
    setColumn(join, QStringLiteral("Column_1"), 0);
    setColumn(join, QStringLiteral("Column_2"), 1);
    join->transform()->parameter(QStringLiteral("Case_Sensitive"))->setValue(false);
    const int nodeId = join->id();
    const QString bottomBefore = join->transform()->parameter(QStringLiteral("Column_2"))->toText();
    ExploreKeysDialog dialog(join, nullptr, m_undo);
    QComboBox *topCombo = dialog.findChild<QComboBox *>(QStringLiteral("topKeyCombo"));
    QComboBox *bottomCombo = dialog.findChild<QComboBox *>(QStringLiteral("bottomKeyCombo"));
    topCombo->setCurrentIndex(1);
    emit topCombo->activated(1);
    bottomCombo->setCurrentIndex(0);
    emit bottomCombo->activated(0);
    dialog.findChild<QCheckBox *>(QStringLiteral("caseSensitiveCheck"))->setChecked(true);
    QCOMPARE(dialog.counter().summary().matchingRows, qint64(1));
    QCOMPARE(m_undo->count(), 0);

    dialog.findChild<QPushButton *>(QStringLiteral("useButton"))->click();
    QCOMPARE(m_undo->count(), 1);
    QCOMPARE(m_undo->undoText(), QStringLiteral("explore keys"));
    QCOMPARE(join->transform()->parameter(QStringLiteral("Column_1"))->columnIndex().toInt(), 1);
    QCOMPARE(join->transform()->parameter(QStringLiteral("Column_2"))->columnIndex().toInt(), 0);
    QVERIFY(join->transform()->parameter(QStringLiteral("Case_Sensitive"))->boolValue());
    QCOMPARE(join->status(), int(Node::NeedsUpdating));

    m_undo->undo();
    auto *restored = qobject_cast<TransformNode *>(m_scene->node(nodeId));
    QVERIFY(restored);
    QCOMPARE(restored->transform()->parameter(QStringLiteral("Column_2"))->toText(), bottomBefore);
    QCOMPARE(restored->transform()->parameter(QStringLiteral("Case_Sensitive"))->toText(), QStringLiteral("0"));
}

void TestDialogs::exploreKeysWithoutDataOffersRun()
{
    Node *topInput = addInput(*m_scene, QPointF(0, 0), QStringLiteral("k\na\nb\n"));
    Node *bottomInput = addInput(*m_scene, QPointF(0, 150), QStringLiteral("k\nb\nb\n"));
    auto *join = new TransformNode(prototype(QStringLiteral("Join"))->clone());
    join->setPos(200, 50);
    m_scene->addNode(join);
    m_scene->connectNodes(topInput, join);
    m_scene->connectNodes(bottomInput, join);
    ExploreKeysDialog dialog(join, nullptr, m_undo);
    QLabel *noData = dialog.findChild<QLabel *>(QStringLiteral("noDataLabel"));
    QCOMPARE(noData->text(), QStringLiteral("Run the flow to explore keys: '%1' has no data.").arg(topInput->name()));
    QPushButton *run = dialog.findChild<QPushButton *>(QStringLiteral("runButton"));
    QVERIFY(!run->isHidden());
    run->click();
    QCOMPARE(topInput->status(), int(Node::UpToDate));
    QCOMPARE(bottomInput->status(), int(Node::UpToDate));
    QVERIFY(run->isHidden());
    QComboBox *topCombo = dialog.findChild<QComboBox *>(QStringLiteral("topKeyCombo"));
    QComboBox *bottomCombo = dialog.findChild<QComboBox *>(QStringLiteral("bottomKeyCombo"));
    topCombo->setCurrentIndex(0);
    emit topCombo->activated(0);
    bottomCombo->setCurrentIndex(0);
    emit bottomCombo->activated(0);
    QCOMPARE(dialog.counter().summary().matchingRows, qint64(2));
}

void TestDialogs::exploreKeysCountsLargeTablesInSlices()
{
    // 150,000 rows a side: keys 0..74,999 twice on top, every third of them once below.
    QString top = QStringLiteral("k\n");
    QString bottom = QStringLiteral("k\n");
    for (int i = 0; i < 150000; ++i)
        top += QString::number(i % 75000) + QLatin1Char('\n');
    for (int i = 0; i < 150000; ++i)
        bottom += QString::number(i * 3) + QLatin1Char('\n');
    TransformNode *join = addJoin(top, bottom);
    setColumn(join, QStringLiteral("Column_1"), 0);
    setColumn(join, QStringLiteral("Column_2"), 0);
    ExploreKeysDialog dialog(join, nullptr, m_undo);
    QVERIFY(dialog.isCounting());
    QPushButton *stop = dialog.findChild<QPushButton *>(QStringLiteral("stopButton"));
    QVERIFY(!stop->isHidden());
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.isCounting(), 60000);
    QVERIFY(stop->isHidden());
    // Keys 0, 3, ..., 74,997 meet: 25,000 keys of 2 top rows and 1 bottom row each.
    QCOMPARE(dialog.counter().summary().matchingRows, qint64(50000));
    QCOMPARE(dialog.counter().summary().bothKeys, qint64(25000));

    dialog.refresh();
    QVERIFY(dialog.isCounting());
    stop->click();
    QVERIFY(!dialog.isCounting());
    QVERIFY(dialog.summaryLines().value(0).startsWith(QStringLiteral("Stopped")));
}

// ----- Explore Duplicates

TransformNode *TestDialogs::addDedupe(const QString &text)
{
    Node *input = addInput(*m_scene, QPointF(0, 0), text);
    m_scene->runEverything();
    auto *dedupe = new TransformNode(prototype(QStringLiteral("Dedupe"))->clone());
    dedupe->setPos(200, 0);
    m_scene->addNode(dedupe);
    m_scene->connectNodes(input, dedupe);
    return dedupe;
}

QString TestDialogs::groupsText(const DuplicateFinder &finder)
{
    QStringList groups;
    for (int g : finder.duplicateGroups()) {
        QStringList rows;
        for (int row : finder.groups()[size_t(g)].rows)
            rows << QString::number(row + 1);
        groups << rows.join(QLatin1Char(','));
    }
    return groups.join(QLatin1Char('|'));
}

void TestDialogs::exploreDuplicatesGroups_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QList<int>>("columns");
    QTest::addColumn<QString>("match");
    QTest::addColumn<int>("fuzziness");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("ignoreSpaces");
    QTest::addColumn<bool>("ignorePunctuation");
    QTest::addColumn<QString>("groups"); // rows from 1, groups by their first rows
    QTest::addColumn<QString>("summary");

    const QString people = QStringLiteral("name,town\n"
                                          "John Smith,York\n"
                                          "john smith ,York\n"
                                          "Jon Smith,York\n"
                                          "Ann Lee,Leeds\n"
                                          "J. Smith,York\n"
                                          "John Smith,Hull\n"
                                          "ann lee,Leeds\n");
    QTest::newRow("exact, case folded")
        << people << QList<int> {0} << "Exact" << 90 << false << false << false << "1,6|4,7"
        << "2 duplicate group(s) with 4 rows; 'Remove duplicates' would remove 2 rows.";
    QTest::newRow("exact, case sensitive")
        << people << QList<int> {0} << "Exact" << 90 << true << false << false << "1,6"
        << "1 duplicate group(s) with 2 rows; 'Remove duplicates' would remove 1 rows.";
    QTest::newRow("ignoring whitespace")
        << people << QList<int> {0} << "Exact" << 90 << false << true << false << "1,2,6|4,7"
        << "2 duplicate group(s) with 5 rows; 'Remove duplicates' would remove 3 rows.";
    QTest::newRow("two columns") << people << QList<int> {0, 1} << "Exact" << 90 << false << true << false << "1,2|4,7"
                                 << "2 duplicate group(s) with 4 rows; 'Remove duplicates' would remove 2 rows.";
    QTest::newRow("punctuation only") << QStringLiteral("v\na.b\nab\na-b\na b\n") << QList<int> {0} << "Exact" << 90
                                      << false << false << true << "1,2,3" << "1 duplicate group(s) with 3 rows; "
                                                                             "'Remove duplicates' would remove 2 rows.";
    QTest::newRow("fuzzy 85") << people << QList<int> {0, 1} << "Fuzzy" << 85 << false << true << false << "1,2,3|4,7"
                              << "2 duplicate group(s) with 5 rows; 'Remove duplicates' would remove 3 rows.";
    QTest::newRow("fuzzy 60 with punctuation ignored")
        << people << QList<int> {0} << "Fuzzy" << 60 << false << true << true << "1,2,3,5,6|4,7"
        << "2 duplicate group(s) with 7 rows; 'Remove duplicates' would remove 5 rows.";
    // "abcd" starts a group; "abce" fits it; "abfe" fits "abce" but not "abcd": no chain.
    QTest::newRow("fuzzy compares with first rows only")
        << QStringLiteral("v\nabcd\nabce\nabfe\n") << QList<int> {0} << "Fuzzy" << 75 << false << false << false
        << "1,2" << "1 duplicate group(s) with 2 rows; 'Remove duplicates' would remove 1 rows.";
    QTest::newRow("fuzzy goes to the closest group")
        << QStringLiteral("v\naaaaaaaaaa\naaaaabbbbb\naaaaaaabbb\naaaaaaaaab\n") << QList<int> {0} << "Fuzzy" << 60
        << false << false << false << "1,4|2,3"
        << "2 duplicate group(s) with 4 rows; 'Remove duplicates' would remove 2 rows.";
    QTest::newRow("no duplicates") << QStringLiteral("v\na\nb\nc\n") << QList<int> {0} << "Exact" << 90 << false
                                   << false << false << "" << "No duplicates found";
    QTest::newRow("empty cells match") << QStringLiteral("v,w\n,1\nx,2\n,3\n") << QList<int> {0} << "Exact" << 90
                                       << false << false << false << "1,3"
                                       << "1 duplicate group(s) with 2 rows; 'Remove duplicates' would remove 1 rows.";
    QTest::newRow("no column chosen") << people << QList<int> {} << "Exact" << 90 << false << false << false << ""
                                      << "Choose the columns to compare.";
}

void TestDialogs::exploreDuplicatesGroups()
{
    QFETCH(QString, table);
    QFETCH(QList<int>, columns);
    QFETCH(QString, match);
    QFETCH(int, fuzziness);
    QFETCH(bool, caseSensitive);
    QFETCH(bool, ignoreSpaces);
    QFETCH(bool, ignorePunctuation);
    QFETCH(QString, groups);
    QFETCH(QString, summary);

    TransformNode *dedupe = addDedupe(table);
    ExploreDuplicatesDialog dialog(dedupe, nullptr, m_undo);
    QListWidget *list = dialog.findChild<QListWidget *>(QStringLiteral("columnsList"));
    for (int c = 0; c < list->count(); ++c)
        list->item(c)->setCheckState(columns.contains(c) ? Qt::Checked : Qt::Unchecked);
    QComboBox *matchCombo = dialog.findChild<QComboBox *>(QStringLiteral("matchCombo"));
    matchCombo->setCurrentIndex(matchCombo->findText(match));
    QSpinBox *fuzzinessSpin = dialog.findChild<QSpinBox *>(QStringLiteral("fuzzinessSpin"));
    QCOMPARE(fuzzinessSpin->isEnabled(), match == QLatin1String("Fuzzy"));
    fuzzinessSpin->setValue(fuzziness);
    dialog.findChild<QCheckBox *>(QStringLiteral("caseSensitiveCheck"))->setChecked(caseSensitive);
    dialog.findChild<QCheckBox *>(QStringLiteral("ignoreSpacesCheck"))->setChecked(ignoreSpaces);
    dialog.findChild<QCheckBox *>(QStringLiteral("ignorePunctuationCheck"))->setChecked(ignorePunctuation);
    dialog.findChild<QPushButton *>(QStringLiteral("findButton"))->click();
    QTRY_VERIFY(!dialog.isFinding());
    QCOMPARE(groupsText(dialog.finder()), groups);
    QCOMPARE(dialog.summaryText(), summary);

    // The tree lists the same groups, largest first, numbered by their first rows.
    QTreeWidget *tree = dialog.findChild<QTreeWidget *>(QStringLiteral("groupTree"));
    const QStringList expected = groups.isEmpty() ? QStringList() : groups.split(QLatin1Char('|'));
    QCOMPARE(tree->topLevelItemCount(), expected.size());
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = tree->topLevelItem(i);
        QVERIFY(item->text(0).startsWith(QStringLiteral("Group ")));
        if (i > 0)
            QVERIFY(tree->topLevelItem(i - 1)->childCount() >= item->childCount());
        const int number = item->text(0).section(QLatin1Char(' '), 1, 1).toInt();
        QStringList rows;
        for (int r = 0; r < item->childCount(); ++r)
            rows << item->child(r)->text(0);
        QCOMPARE(rows.join(QLatin1Char(',')), expected.value(number - 1));
    }

    // Once the Dedupe transform marks groups, its groups must be these.
    Parameter *columnsOption = dedupe->transform()->parameter(QStringLiteral("Columns"));
    QList<ColumnId> ids;
    for (int c : columns)
        ids << columnsOption->upstream()->dataset().columnId(DataColumnIndex(c));
    columnsOption->setValue(QVariant::fromValue(ids));
    dedupe->transform()->parameter(QStringLiteral("Match_Type"))->setValue(match);
    dedupe->transform()->parameter(QStringLiteral("Fuzziness"))->setValue(fuzziness);
    dedupe->transform()->parameter(QStringLiteral("Case_Sensitive"))->setValue(caseSensitive);
    dedupe->transform()->parameter(QStringLiteral("Ignore_Spaces"))->setValue(ignoreSpaces);
    dedupe->transform()->parameter(QStringLiteral("Ignore_Punctuation"))->setValue(ignorePunctuation);
    dedupe->transform()->parameter(QStringLiteral("Dedupe_Mode"))->setValue(QStringLiteral("Mark duplicates"));
    m_scene->invalidate(dedupe);
    m_scene->runEverything();
    const Dataset &marked = dedupe->dataset();
    if (marked.columnCount() > 0 && marked.headerText(marked.lastColumn()) == QLatin1String("Duplicate group")) {
        QMap<int, QStringList> byGroup;
        for (int row = 0; row < marked.rowCount(); ++row) {
            const QString group = marked.cell(row, marked.lastColumn().toInt());
            if (!group.isEmpty())
                byGroup[group.toInt()] << QString::number(row + 1);
        }
        QStringList fromTransform;
        for (const QStringList &rows : qAsConst(byGroup))
            fromTransform << rows.join(QLatin1Char(','));
        QCOMPARE(fromTransform.join(QLatin1Char('|')), groups);
    }
}

void TestDialogs::exploreDuplicatesUseTheseOptionsIsOneStep()
{
    TransformNode *dedupe = addDedupe(QStringLiteral("a,b\nx,1\nX,2\n"));
    ExploreDuplicatesDialog dialog(dedupe, nullptr, m_undo);
    QListWidget *list = dialog.findChild<QListWidget *>(QStringLiteral("columnsList"));
    list->item(0)->setCheckState(Qt::Checked);
    QComboBox *matchCombo = dialog.findChild<QComboBox *>(QStringLiteral("matchCombo"));
    matchCombo->setCurrentIndex(matchCombo->findText(QStringLiteral("Fuzzy")));
    dialog.findChild<QSpinBox *>(QStringLiteral("fuzzinessSpin"))->setValue(70);
    dialog.findChild<QCheckBox *>(QStringLiteral("ignorePunctuationCheck"))->setChecked(true);
    QComboBox *mode = dialog.findChild<QComboBox *>(QStringLiteral("modeCombo"));
    mode->setCurrentIndex(mode->findText(QStringLiteral("Mark duplicates")));
    QCOMPARE(m_undo->count(), 0);

    dialog.findChild<QPushButton *>(QStringLiteral("useButton"))->click();
    QCOMPARE(m_undo->count(), 1);
    QCOMPARE(m_undo->undoText(), QStringLiteral("explore duplicates"));
    const Transform *transform = dedupe->transform();
    QCOMPARE(transform->parameter(QStringLiteral("Columns"))->columnIndexes(), QList<DataColumnIndex> {DataColumnIndex(0)});
    QCOMPARE(transform->parameter(QStringLiteral("Match_Type"))->selectionText(), QStringLiteral("Fuzzy"));
    QCOMPARE(transform->parameter(QStringLiteral("Fuzziness"))->intValue(), 70);
    QVERIFY(transform->parameter(QStringLiteral("Ignore_Punctuation"))->boolValue());
    QVERIFY(!transform->parameter(QStringLiteral("Ignore_Spaces"))->boolValue());
    QCOMPARE(transform->parameter(QStringLiteral("Dedupe_Mode"))->selectionText(), QStringLiteral("Mark duplicates"));
}

// ----- Compare

void TestDialogs::compareCounts_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("byKey");
    QTest::addColumn<bool>("byHeader");
    QTest::addColumn<QString>("options"); // c: case insensitive, w: trim, n: numbers
    QTest::addColumn<QString>("rowsLine");
    QTest::addColumn<QString>("columnsLine");
    QTest::addColumn<QString>("cellsLine");

    QTest::newRow("identical") << "a,b\n1,x\n2,y\n" << "a,b\n1,x\n2,y\n" << false << false << ""
                               << "2 matched rows, 0 only in left, 0 only in right"
                               << "2 matched columns, 0 only in left, 0 only in right" << "The datasets are identical";
    QTest::newRow("by row number, longer right") << "a,b\n1,x\n2,y\n" << "a,b\n1,x\n2,Y\n3,z\n" << false << false << ""
                                                 << "2 matched rows, 0 only in left, 1 only in right"
                                                 << "2 matched columns, 0 only in left, 0 only in right"
                                                 << "1 cells differ in 1 rows";
    QTest::newRow("case ignored") << "a,b\n1,x\n2,y\n" << "a,b\n1,X\n2,y\n" << false << false << "c"
                                  << "2 matched rows, 0 only in left, 0 only in right"
                                  << "2 matched columns, 0 only in left, 0 only in right" << "The datasets are identical";
    QTest::newRow("numbers as numbers") << "a,b\n1,1.50\n2,3\n" << "a,b\n1,1.5\n2,3.0\n" << false << false << "n"
                                        << "2 matched rows, 0 only in left, 0 only in right"
                                        << "2 matched columns, 0 only in left, 0 only in right"
                                        << "The datasets are identical";
    QTest::newRow("numbers as text") << "a,b\n1,1.50\n2,3\n" << "a,b\n1,1.5\n2,3.0\n" << false << false << ""
                                     << "2 matched rows, 0 only in left, 0 only in right"
                                     << "2 matched columns, 0 only in left, 0 only in right"
                                     << "2 cells differ in 2 rows";
    QTest::newRow("by key, reordered") << "id,v\n1,a\n2,b\n3,c\n" << "id,v\n3,c\n1,A\n4,d\n" << true << false << ""
                                       << "2 matched rows, 1 only in left, 1 only in right"
                                       << "2 matched columns, 0 only in left, 0 only in right"
                                       << "1 cells differ in 1 rows";
    QTest::newRow("columns by header") << "id,v,w\n1,a,b\n" << "w,id,z\n b,1,q\n" << false << true << "w"
                                       << "1 matched rows, 0 only in left, 0 only in right"
                                       << "2 matched columns, 1 only in left, 1 only in right"
                                       << "0 cells differ in 0 rows";
}

void TestDialogs::compareCounts()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(bool, byKey);
    QFETCH(bool, byHeader);
    QFETCH(QString, options);
    QFETCH(QString, rowsLine);
    QFETCH(QString, columnsLine);
    QFETCH(QString, cellsLine);
    Node *a = addInput(*m_scene, QPointF(0, 0), left);
    Node *b = addInput(*m_scene, QPointF(0, 150), right);
    m_scene->runEverything();
    CompareDialog dialog(m_scene);
    dialog.setItems(a, b);
    if (byKey) {
        QComboBox *match = dialog.findChild<QComboBox *>(QStringLiteral("matchRowsCombo"));
        match->setCurrentIndex(1);
        dialog.findChild<QComboBox *>(QStringLiteral("leftKeyCombo"))->setCurrentIndex(0);
        dialog.findChild<QComboBox *>(QStringLiteral("rightKeyCombo"))->setCurrentIndex(0);
    }
    dialog.findChild<QComboBox *>(QStringLiteral("matchColumnsCombo"))->setCurrentIndex(byHeader ? 1 : 0);
    dialog.findChild<QCheckBox *>(QStringLiteral("caseSensitiveCheck"))->setChecked(!options.contains(QLatin1Char('c')));
    dialog.findChild<QCheckBox *>(QStringLiteral("whitespaceCheck"))->setChecked(options.contains(QLatin1Char('w')));
    dialog.findChild<QCheckBox *>(QStringLiteral("numbersCheck"))->setChecked(options.contains(QLatin1Char('n')));
    dialog.findChild<QPushButton *>(QStringLiteral("compareButton"))->click();
    QTRY_VERIFY(!dialog.isComparing());
    const QStringList lines = dialog.summaryLines();
    QVERIFY2(lines.contains(rowsLine), qPrintable(lines.join(QLatin1Char('|'))));
    QVERIFY2(lines.contains(columnsLine), qPrintable(lines.join(QLatin1Char('|'))));
    QVERIFY2(lines.contains(cellsLine), qPrintable(lines.join(QLatin1Char('|'))));
}

void TestDialogs::compareNextDifference()
{
    Node *a = addInput(*m_scene, QPointF(0, 0), QStringLiteral("a,b\n1,x\n2,y\n3,z\n"));
    Node *b = addInput(*m_scene, QPointF(0, 150), QStringLiteral("a,b\n1,X\n2,y\n4,z\n"));
    m_scene->runEverything();
    CompareDialog dialog(m_scene);
    dialog.setItems(a, b);
    dialog.compare();
    QTableView *grid = dialog.findChild<QTableView *>(QStringLiteral("compareGrid"));
    dialog.nextDifference();
    QCOMPARE(grid->currentIndex().row(), 0);
    QCOMPARE(grid->currentIndex().column(), 2);
    QCOMPARE(grid->currentIndex().data(Qt::ToolTipRole).toString(), QStringLiteral("Left: 'x'\nRight: 'X'"));
    dialog.nextDifference();
    QCOMPARE(grid->currentIndex().row(), 2);
    QCOMPARE(grid->currentIndex().column(), 1);
    dialog.nextDifference(); // wraps
    QCOMPARE(grid->currentIndex().row(), 0);
    dialog.previousDifference();
    QCOMPARE(grid->currentIndex().row(), 2);
    QVERIFY(dialog.report().contains(QStringLiteral("1\tb\tx\tX")));
}

// ----- Preferences

void TestDialogs::preferencesWriteOnOkAndApplyOnly_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("written");
    QTest::addColumn<bool>("open");
    QTest::newRow("OK") << "okButton" << true << false;
    QTest::newRow("Apply") << "applyButton" << true << true;
    QTest::newRow("Cancel") << "cancelButton" << false << false;
}

void TestDialogs::preferencesWriteOnOkAndApplyOnly()
{
    QFETCH(QString, button);
    QFETCH(bool, written);
    QFETCH(bool, open);
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("prefs.ini")));
    PreferencesDialog dialog(&settings);
    dialog.show();
    QCOMPARE(dialog.pageTitles(), (QStringList {"General", "Performance", "Dates", "Appearance", "Input Extensions",
                                      "Output Extensions"}));
    dialog.findChild<QSpinBox *>(QStringLiteral("recentMax"))->setValue(25);
    dialog.findChild<QLineEdit *>(QStringLiteral("userName"))->setText(QStringLiteral("Ada"));
    dialog.findChild<QRadioButton *>(QStringLiteral("startupEmpty"))->setChecked(true);
    dialog.findChild<QSpinBox *>(QStringLiteral("maxCellChars"))->setValue(500);
    dialog.findChild<QListWidget *>(QStringLiteral("inputBlocked"))->addItem(QStringLiteral(".EXE "));
    dialog.findChild<QPushButton *>(button)->click();
    QCOMPARE(settings.intValue(QStringLiteral("recent_documents_max")), written ? 25 : 10);
    QCOMPARE(settings.stringValue(QStringLiteral("user_name")), written ? QStringLiteral("Ada") : QString());
    QCOMPARE(settings.intValue(QStringLiteral("startup_action")), written ? 1 : 0);
    QCOMPARE(settings.intValue(QStringLiteral("table_max_cell_chars")), written ? 500 : 1000);
    QCOMPARE(settings.blockedExtensions(true), written ? QStringList {"exe"} : QStringList());
    // Keys the user left alone are not written.
    QVERIFY(!settings.contains(QStringLiteral("undo_limit")));
    QCOMPARE(dialog.isVisible(), open);
}

void TestDialogs::preferencesRestoreDefaults()
{
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("prefs.ini")));
    settings.setValue(QStringLiteral("undo_limit"), 50);
    settings.setValue(QStringLiteral("theme"), 2);
    PreferencesDialog dialog(&settings);
    QSpinBox *undo = dialog.findChild<QSpinBox *>(QStringLiteral("undoLimit"));
    QComboBox *theme = dialog.findChild<QComboBox *>(QStringLiteral("theme"));
    QCOMPARE(undo->value(), 50);
    QCOMPARE(theme->currentIndex(), 2);
    // Restore Defaults acts on the page shown, and writes nothing until applied.
    dialog.setCurrentPage(0);
    dialog.findChild<QPushButton *>(QStringLiteral("restoreDefaultsButton"))->click();
    QCOMPARE(undo->value(), 200);
    QCOMPARE(theme->currentIndex(), 2);
    QCOMPARE(settings.intValue(QStringLiteral("undo_limit")), 50);
    dialog.setCurrentPage(3);
    dialog.findChild<QPushButton *>(QStringLiteral("restoreDefaultsButton"))->click();
    QCOMPARE(theme->currentIndex(), 0);
    dialog.findChild<QPushButton *>(QStringLiteral("applyButton"))->click();
    QCOMPARE(settings.intValue(QStringLiteral("undo_limit")), 200);
    QCOMPARE(settings.intValue(QStringLiteral("theme")), 0);
}

void TestDialogs::blockedExtensionsAreCleaned_data()
{
    QTest::addColumn<QStringList>("typed");
    QTest::addColumn<QStringList>("stored");
    QTest::newRow("dots, case and blanks") << QStringList {".EXE", " Bat ", "..sh"} << QStringList {"exe", "bat", "sh"};
    QTest::newRow("duplicates once") << QStringList {"exe", "EXE", ".exe"} << QStringList {"exe"};
    QTest::newRow("empty lines dropped") << QStringList {"", " ", ".", "csv"} << QStringList {"csv"};
}

void TestDialogs::blockedExtensionsAreCleaned()
{
    QFETCH(QStringList, typed);
    QFETCH(QStringList, stored);
    QCOMPARE(PreferencesDialog::cleanExtensions(typed), stored);
}

// ----- Recent documents

void TestDialogs::recentDocumentsFilter_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("no filter") << "" << QStringList {"sales.tflow", "gone.tflow", "contacts.tflow"};
    QTest::newRow("one word") << "sales" << QStringList {"sales.tflow"};
    QTest::newRow("case folded") << "CONTACTS" << QStringList {"contacts.tflow"};
    QTest::newRow("two words") << "tflow gone" << QStringList {"gone.tflow"};
    QTest::newRow("no match") << "nothing" << QStringList {};
}

void TestDialogs::recentDocumentsFilter()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, names);
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("recent.ini")));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const QString &name : {QStringLiteral("contacts.tflow"), QStringLiteral("gone.tflow"), QStringLiteral("sales.tflow")}) {
        const QString path = folder.filePath(name);
        if (name != QLatin1String("gone.tflow")) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        RecentDocuments::add(&settings, path, now.addSecs(RecentDocuments::entries(&settings).size()));
    }
    RecentDocumentsDialog dialog(&settings);
    dialog.setFilter(filter);
    QStringList shown;
    for (const QString &path : dialog.shownPaths())
        shown << QFileInfo(path).fileName();
    QCOMPARE(shown, names);
}

void TestDialogs::recentDocumentsPinAndMissing()
{
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("recent.ini")));
    const QString first = folder.filePath(QStringLiteral("first.tflow"));
    const QString second = folder.filePath(QStringLiteral("second.tflow"));
    const QString gone = folder.filePath(QStringLiteral("gone.tflow"));
    for (const QString &path : {first, second}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    RecentDocuments::add(&settings, first, now.addSecs(-30));
    RecentDocuments::add(&settings, gone, now.addSecs(-20));
    RecentDocuments::add(&settings, second, now.addSecs(-10));
    RecentDocumentsDialog dialog(&settings);
    QCOMPARE(dialog.shownPaths(), (QStringList {second, gone, first}));

    // Pinning puts an entry first and the button then unpins.
    dialog.selectPath(first);
    QPushButton *pin = dialog.findChild<QPushButton *>(QStringLiteral("pinButton"));
    pin->click();
    QCOMPARE(dialog.shownPaths(), (QStringList {first, second, gone}));
    QCOMPARE(pin->text(), QStringLiteral("&Unpin"));
    pin->click();
    QCOMPARE(dialog.shownPaths(), (QStringList {second, gone, first}));

    // A missing file is in italics, and opening it offers to remove it.
    QTreeWidget *list = dialog.findChild<QTreeWidget *>(QStringLiteral("documentList"));
    QVERIFY(list->topLevelItem(1)->font(0).italic());
    QVERIFY(!list->topLevelItem(0)->font(0).italic());
    QCOMPARE(list->topLevelItem(1)->toolTip(1), QStringLiteral("File not found"));
    ScriptedPrompts prompts;
    Prompts::setInstance(&prompts);
    prompts.answers << QStringLiteral("Keep");
    dialog.selectPath(gone);
    dialog.openSelected();
    QCOMPARE(prompts.asked, QStringList {QStringLiteral("'%1' not found.").arg(QDir::toNativeSeparators(gone))});
    QCOMPARE(dialog.shownPaths().size(), 3);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    prompts.answers << QStringLiteral("Remove");
    dialog.openSelected();
    QCOMPARE(dialog.shownPaths(), (QStringList {second, first}));
    QCOMPARE(RecentDocuments::entries(&settings).size(), 2);
    // An existing file is the choice.
    dialog.selectPath(first);
    dialog.openSelected();
    QCOMPARE(dialog.choice(), RecentDocumentsDialog::OpenDocument);
    QCOMPARE(dialog.chosenPath(), first);
    Prompts::setInstance(nullptr);
}

// ----- Insufficient Memory

void TestDialogs::insufficientMemory_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<double>("typed");
    QTest::addColumn<bool>("throws");
    QTest::addColumn<double>("storedLimit");
    QTest::newRow("continue with the offered maximum") << "continueButton" << 0.0 << false << 9.0;
    QTest::newRow("continue with a typed maximum") << "continueButton" << 12.5 << false << 12.5;
    QTest::newRow("close Tabrelle") << "closeButton" << 0.0 << true << 4.0;
}

void TestDialogs::insufficientMemory()
{
    QFETCH(QString, button);
    QFETCH(double, typed);
    QFETCH(bool, throws);
    QFETCH(double, storedLimit);
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("memory.ini")));
    settings.setValue(QStringLiteral("max_memory_usage"), 4.0);
    m_scene->setSettings(&settings);
    m_scene->setMemoryProbe([] { return 6.0; });
    QString message;
    m_scene->setMemoryLimitHandler([&](double used, double &newLimit) {
        return InsufficientMemoryDialog::ask(nullptr, used, settings.maxMemoryUsageGb(), 16.0, newLimit);
    });
    DialogRunner::setScript([&](QDialog *dialog) {
        auto *memory = qobject_cast<InsufficientMemoryDialog *>(dialog);
        QVERIFY(memory);
        message = memory->message();
        // Escape and closing the window decide nothing.
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(!dialog->close());
        if (typed > 0)
            memory->setNewLimit(typed);
        dialog->findChild<QPushButton *>(button)->click();
    });
    Node *input = addInput(*m_scene, QPointF(0, 0));
    bool thrown = false;
    try {
        GraphScene::reportProgress(input, 0.5);
    } catch (const MaxMemoryException &) {
        thrown = true;
    }
    DialogRunner::setScript(DialogRunner::Script());
    m_scene->setSettings(nullptr);
    QCOMPARE(thrown, throws);
    QCOMPARE(settings.maxMemoryUsageGb(), storedLimit);
    QVERIFY(message.startsWith(
        QStringLiteral("Tabrelle is using 6.0 GB of memory, more than the maximum of 4.0 GB set in 'Preferences'.")));
    QVERIFY(message.contains(QStringLiteral("This computer has 16.0 GB of memory.")));
}

// ----- Connect To and Connect From

void TestDialogs::connectDialog_data()
{
    QTest::addColumn<bool>("to");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("to: transforms and outputs") << true << "" << QStringList {"Sort (Transform)", "Output (Output)"};
    QTest::newRow("to, filtered") << true << "out" << QStringList {"Output (Output)"};
    QTest::newRow("from: the inputs") << false << "" << QStringList {"Input (Input)"};
    QTest::newRow("from, filtered to none") << false << "zzz" << QStringList {};
}

void TestDialogs::connectDialog()
{
    QFETCH(bool, to);
    QFETCH(QString, filter);
    QFETCH(QStringList, shown);
    Node *input = addInput(*m_scene, QPointF(0, 0));
    input->setName(QStringLiteral("Input"));
    auto *sort = new TransformNode(prototype(QStringLiteral("Sort"))->clone());
    sort->setPos(200, 0);
    m_scene->addNode(sort);
    auto *output = new OutputNode;
    output->setPos(400, 0);
    output->setName(QStringLiteral("Output"));
    m_scene->addNode(output);
    Node *node = to ? input : sort;
    ConnectDialog dialog(m_scene, node, to ? ConnectDialog::To : ConnectDialog::From, m_undo);
    QCOMPARE(dialog.windowTitle(), to ? QStringLiteral("Connect 'Input' To") : QStringLiteral("Connect 'Sort' From"));
    dialog.setFilter(filter);
    QCOMPARE(dialog.shownItems(), shown);
    // Enter connects to the first candidate shown, as one step.
    QTest::keyClick(dialog.findChild<QLineEdit *>(QStringLiteral("filter")), Qt::Key_Return);
    QCOMPARE(m_undo->count(), shown.isEmpty() ? 0 : 1);
    QCOMPARE(m_scene->connections().size(), shown.isEmpty() ? 0 : 1);
    if (!shown.isEmpty())
        QCOMPARE(m_undo->undoText(), QStringLiteral("connect"));
}

// ----- Missing input files

void TestDialogs::missingFilesLocated_data()
{
    QTest::addColumn<QStringList>("inNewFolder"); // files that exist in the folder moved to
    QTest::addColumn<int>("stillMissing");
    QTest::addColumn<int>("steps");
    QTest::newRow("all moved together") << QStringList {"a.csv", "b.csv", "c.csv"} << 0 << 3;
    QTest::newRow("one left behind") << QStringList {"a.csv", "b.csv"} << 1 << 2;
    QTest::newRow("only the one located") << QStringList {"a.csv"} << 2 << 1;
}

void TestDialogs::missingFilesLocated()
{
    QFETCH(QStringList, inNewFolder);
    QFETCH(int, stillMissing);
    QFETCH(int, steps);
    QTemporaryDir folder;
    QDir(folder.path()).mkpath(QStringLiteral("new"));
    for (const QString &name : inNewFolder) {
        QFile file(folder.filePath(QStringLiteral("new/") + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x\n1\n");
    }
    QList<InputNode *> inputs;
    for (const QString &name : {QStringLiteral("a.csv"), QStringLiteral("b.csv"), QStringLiteral("c.csv")}) {
        auto *input = new InputNode;
        input->setPath(folder.filePath(QStringLiteral("old/") + name));
        m_scene->addNode(input);
        inputs << input;
    }
    QCOMPARE(MissingFilesDialog::missingInputs(m_scene).size(), 3);
    MissingFilesDialog dialog(m_scene, m_undo);
    QCOMPARE(dialog.findChild<QLabel *>()->text(), QStringLiteral("3 input file(s) of this flow can't be found:"));
    ScriptedFileDialogs files;
    files.answers << QStringList {folder.filePath(QStringLiteral("new/a.csv"))};
    FileDialogs::setInstance(&files);
    QVERIFY(dialog.locate(0));
    FileDialogs::setInstance(nullptr);
    QCOMPARE(MissingFilesDialog::missingInputs(m_scene).size(), stillMissing);
    QCOMPARE(m_undo->count(), steps);
    QCOMPARE(m_undo->undoText(), QStringLiteral("'File' change"));
    QCOMPARE(dialog.findChild<QLabel *>()->text(),
        QStringLiteral("%1 input file(s) of this flow can't be found:").arg(stillMissing));
    QCOMPARE(inputs.first()->path(), QFileInfo(folder.filePath(QStringLiteral("new/a.csv"))).absoluteFilePath());
}

// ----- About

void TestDialogs::aboutIntegrityLine_data()
{
    QTest::addColumn<QByteArray>("record"); // empty: no record file
    QTest::addColumn<QString>("startsWith");
    const QByteArray digest = QCryptographicHash::hash("program", QCryptographicHash::Sha256).toHex();
    const QString hex = QString::fromLatin1(digest);
    QTest::newRow("no record") << QByteArray() << QStringLiteral("Program file: not checked (no installation record)");
    QTest::newRow("malformed record") << QByteArray("not a digest  tabrelle\n")
                                      << QStringLiteral("Program file: not checked (no installation record)");
    QTest::newRow("same digest") << QByteArray(digest + "  tabrelle\n") << QStringLiteral("Program file: verified (SHA-256 ") + hex;
    QTest::newRow("same digest, upper case") << QByteArray(digest.toUpper() + "  tabrelle\n")
                                             << QStringLiteral("Program file: verified (SHA-256 ") + hex;
    QTest::newRow("changed") << QByteArray(QByteArray(64, 'a') + "  tabrelle\n")
                             << QStringLiteral("Program file: changed since installation (SHA-256 ") + hex
            + QStringLiteral(", expected ") + QString(64, QLatin1Char('a'));
}

void TestDialogs::aboutIntegrityLine()
{
    QFETCH(QByteArray, record);
    QFETCH(QString, startsWith);
    QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("tabrelle"));
    {
        QFile file(program);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("program");
    }
    if (!record.isEmpty()) {
        QFile file(folder.filePath(QStringLiteral("tabrelle.sha256")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(record);
    }
    const QString line = AboutDialog::integrityLine(program);
    QVERIFY2(line.startsWith(startsWith), qPrintable(line));
    // The About box says which edition this is and how many rows were processed.
    Settings settings(folder.filePath(QStringLiteral("about.ini")));
    settings.setValue(QStringLiteral("lifetime_rows_processed"), QStringLiteral("1234567"));
    settings.setValue(QStringLiteral("first_used_date"), QStringLiteral("2024-05-01"));
    AboutDialog about(&settings);
    QVERIFY(about.lines().contains(QStringLiteral("Free Edition")));
    QVERIFY(about.lines().contains(QStringLiteral("%1 rows processed since %2")
                                       .arg(QLocale().toString(1234567), QLocale().toString(QDate(2024, 5, 1), QLocale::ShortFormat))));
}

// ----- Keyboard

void TestDialogs::mnemonicsAreUniqueInEachDialog_data()
{
    QTest::addColumn<QString>("dialog");
    for (const char *name : {"keys", "duplicates", "compare", "recent", "connect", "recovery", "missing", "memory"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestDialogs::mnemonicsAreUniqueInEachDialog()
{
    QFETCH(QString, dialog);
    TransformNode *join = addJoin(QStringLiteral("k\na\n"), QStringLiteral("k\na\n"));
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("keys.ini")));
    QScopedPointer<QDialog> shown;
    if (dialog == QLatin1String("keys"))
        shown.reset(new ExploreKeysDialog(join, nullptr, m_undo));
    else if (dialog == QLatin1String("duplicates"))
        shown.reset(new ExploreDuplicatesDialog(addDedupe(QStringLiteral("a\n1\n")), nullptr, m_undo));
    else if (dialog == QLatin1String("compare"))
        shown.reset(new CompareDialog(m_scene));
    else if (dialog == QLatin1String("recent"))
        shown.reset(new RecentDocumentsDialog(&settings));
    else if (dialog == QLatin1String("connect"))
        shown.reset(new ConnectDialog(m_scene, join, ConnectDialog::From, m_undo));
    else if (dialog == QLatin1String("recovery"))
        shown.reset(new RecoveryDialog({}));
    else if (dialog == QLatin1String("missing"))
        shown.reset(new MissingFilesDialog(m_scene, m_undo));
    else
        shown.reset(new InsufficientMemoryDialog(3, 2, 8));
    QHash<QChar, QString> letters;
    QStringList texts;
    for (QAbstractButton *button : shown->findChildren<QAbstractButton *>())
        texts << button->text();
    for (QLabel *label : shown->findChildren<QLabel *>())
        texts << label->text();
    for (const QString &text : qAsConst(texts)) {
        const int amp = QString(text).replace(QLatin1String("&&"), QLatin1String("__")).indexOf(QLatin1Char('&'));
        if (amp < 0 || amp + 1 >= text.size())
            continue;
        const QChar letter = text.at(amp + 1).toLower();
        QVERIFY2(!letters.contains(letter), qPrintable(QStringLiteral("'%1' and '%2'").arg(letters.value(letter), text)));
        letters.insert(letter, text);
    }
    QVERIFY(!letters.isEmpty());
}

CANVAS_TEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
