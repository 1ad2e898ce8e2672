#include "canvastestutil.h"

#include "transforms/parameter.h"
#include "transforms/transformnode.h"
#include "workbench/exploreduplicatesdialog.h"
#include "workbench/explorekeysdialog.h"

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

CANVAS_TEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
