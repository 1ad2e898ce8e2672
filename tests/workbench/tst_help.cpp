#include "canvastestutil.h"

#include "core/settings.h"
#include "flow/notenode.h"
#include "transforms/transformnode.h"
#include "workbench/helpindex.h"
#include "workbench/helpwindow.h"
#include "workbench/itempane.h"
#include "workbench/itemwidget.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QRegularExpression>
#include <QUndoStack>
#include <QTemporaryDir>
#include <QTextFrame>
#include <QTextTable>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <memory>

using namespace CanvasTest;

class TestHelp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void transformPage_data();
    void transformPage();
    void parameterLabels_data();
    void parameterLabels();
    void links_data();
    void links();
    void itemPage_data();
    void itemPage();
    void showTransform_data();
    void showTransform();
    void missingPage_data();
    void missingPage();
    void contentsTree();
    void treeShowsPages();
    void indexFromNodeFactory();
    void search_data();
    void search();
    void searchField_data();
    void searchField();
    void linkClicks_data();
    void linkClicks();
    void backAndForward();
    void shortcutsPage_data();
    void shortcutsPage();
    void shortcutsOfMainWindows();
    void findInPage_data();
    void findInPage();
    void helpButton_data();
    void helpButton();
    void onlyOneWindow();

private:
    static QString pageText(const QString &page);
    static void addTransformRows();
    QList<QUrl> m_opened;
};

QString TestHelp::pageText(const QString &page)
{
    QFile file(QStringLiteral(":/help/") + page);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

void TestHelp::initTestCase()
{
    HelpWindow::setTransformPrototypes(Application::instance()->transforms());
    HelpWindow::setUrlOpener([this](const QUrl &url) {
        m_opened << url;
        return true;
    });
    // Makes the window, which registers the resources.
    QVERIFY(HelpWindow::instance());
}

void TestHelp::addTransformRows()
{
    QTest::addColumn<QString>("id");
    for (const Transform *transform : Application::instance()->transforms())
        QTest::newRow(qPrintable(transform->id())) << transform->id();
}

void TestHelp::transformPage_data()
{
    addTransformRows();
}

void TestHelp::transformPage()
{
    QFETCH(QString, id);
    const Transform *transform = prototype(id);
    QVERIFY(transform);
    const QString page = QStringLiteral("transforms/%1.md").arg(id);
    const QString text = pageText(page);
    QVERIFY2(!text.isEmpty(), qPrintable(QStringLiteral("No help page %1").arg(page)));
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0).trimmed(), QStringLiteral("# ") + transform->name());
    QCOMPARE(HelpIndex::pageTitle(page), transform->name());
    for (const QString &section : {QStringLiteral("## What it does"), QStringLiteral("## Options"),
                                   QStringLiteral("## Example"), QStringLiteral("## Messages"),
                                   QStringLiteral("## See also")})
        QVERIFY2(text.contains(QLatin1Char('\n') + section + QLatin1Char('\n')), qPrintable(section));
}

void TestHelp::parameterLabels_data()
{
    addTransformRows();
}

void TestHelp::parameterLabels()
{
    QFETCH(QString, id);
    const QString text = pageText(QStringLiteral("transforms/%1.md").arg(id));
    QVERIFY(!text.isEmpty());
    // Options made with two inputs connected, so that per-input options exist too.
    GraphScene scene;
    InputNode *top = addInput(scene, QPointF(0, 0), QStringLiteral("a,b\n1,2\n"));
    InputNode *bottom = addInput(scene, QPointF(0, 100), QStringLiteral("a,c\n1,3\n"));
    std::unique_ptr<Transform> transform(prototype(id)->clone());
    QList<Node *> inputs{top};
    if (transform->maximumInputs() != 1)
        inputs << bottom;
    transform->createParameters(inputs, true);
    QStringList missing;
    for (const Parameter *parameter : transform->parameterList()) {
        QString label = parameter->label();
        label.remove(QLatin1Char('&'));
        if (label.endsWith(QLatin1Char(':')))
            label.chop(1);
        if (!label.trimmed().isEmpty() && !text.contains(label.trimmed()))
            missing << label;
    }
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QStringLiteral(", "))));
}

void TestHelp::links_data()
{
    QTest::addColumn<QString>("page");
    const QStringList pages = HelpIndex::resourcePages();
    for (const QString &page : pages) {
        if (page.endsWith(QLatin1String(".md")))
            QTest::newRow(qPrintable(page)) << page;
    }
}

void TestHelp::links()
{
    QFETCH(QString, page);
    const QString text = pageText(page);
    QVERIFY(!text.isEmpty());
    QVERIFY2(text.startsWith(QLatin1String("# ")), "a page starts with its title");
    // Markdown links and images, and HTML images.
    static const QRegularExpression markdownLink(QStringLiteral("\\]\\(([^)\\s]+)(?:\\s+\"[^\"]*\")?\\)"));
    static const QRegularExpression htmlImage(QStringLiteral("<img[^>]*src=\"([^\"]+)\""));
    QStringList targets;
    for (const QRegularExpression &pattern : {markdownLink, htmlImage}) {
        auto it = pattern.globalMatch(text);
        while (it.hasNext())
            targets << it.next().captured(1);
    }
    const QUrl base(QStringLiteral("qrc:/help/") + page);
    QStringList broken;
    for (const QString &target : qAsConst(targets)) {
        const QUrl url(target);
        if (!url.scheme().isEmpty() || target.startsWith(QLatin1Char('#')))
            continue;
        const QUrl resolved = base.resolved(url);
        // The page of keyboard shortcuts is written when shown, so it has no file.
        if (resolved.path() == QStringLiteral("/help/") + HelpIndex::shortcutsPage())
            continue;
        if (!QFile::exists(QLatin1Char(':') + resolved.path()))
            broken << target;
    }
    QVERIFY2(broken.isEmpty(), qPrintable(broken.join(QStringLiteral(", "))));
}

void TestHelp::itemPage_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("page");
    QTest::newRow("input") << "Input" << "items/input.md";
    QTest::newRow("output") << "Output" << "items/output.md";
    QTest::newRow("transform") << "Transform" << "items/transform.md";
    QTest::newRow("chart") << "Chart" << "items/chart.md";
    QTest::newRow("note") << "Note" << "items/note.md";
    QTest::newRow("flow") << "Flow" << "items/flow.md";
    QTest::newRow("unknown type shows the contents") << "Gadget" << "index.md";
}

void TestHelp::itemPage()
{
    QFETCH(QString, type);
    QFETCH(QString, page);
    QVERIFY2(QFile::exists(QStringLiteral(":/help/") + page), qPrintable(page));
    HelpWindow::showItem(type);
    HelpWindow *window = HelpWindow::existingInstance();
    QVERIFY(window && window->isVisible());
    QCOMPARE(window->currentPage(), page);
    const QString shown = window->browser()->toPlainText();
    QVERIFY(!shown.contains(QStringLiteral("Page not found")));
    QVERIFY(shown.startsWith(HelpIndex::pageTitle(page)));
    QVERIFY2(window->windowTitle().startsWith(HelpIndex::pageTitle(page)), qPrintable(window->windowTitle()));
}

void TestHelp::showTransform_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("treeText");
    QTest::newRow("merge") << "Join" << "Join";
    QTest::newRow("column, id differs from name") << "Compare_Cols" << "Compare Cols";
    QTest::newRow("column") << "Split_Name" << "Split Name";
}

void TestHelp::showTransform()
{
    QFETCH(QString, id);
    QFETCH(QString, treeText);
    HelpWindow::showTransform(id);
    HelpWindow *window = HelpWindow::existingInstance();
    QCOMPARE(window->currentPage(), QStringLiteral("transforms/%1.md").arg(id));
    QVERIFY(window->browser()->toPlainText().startsWith(prototype(id)->name()));
    // Its option table is drawn with padded cells.
    QTextTable *table = nullptr;
    for (QTextFrame::iterator it = window->browser()->document()->rootFrame()->begin(); !it.atEnd() && !table; ++it)
        table = qobject_cast<QTextTable *>(it.currentFrame());
    QVERIFY(table);
    QCOMPARE(table->format().cellPadding(), 4.0);
    // The contents tree follows the page shown.
    QVERIFY(window->contentsTree()->currentItem());
    QCOMPARE(window->contentsTree()->currentItem()->text(0), treeText);
}

void TestHelp::missingPage_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("unknown transform") << "NoSuchTransform";
    QTest::newRow("empty id") << "";
}

void TestHelp::missingPage()
{
    // A page that doesn't exist says so, rather than showing an empty window.
    QFETCH(QString, id);
    HelpWindow::showTransform(id);
    HelpWindow *window = HelpWindow::existingInstance();
    QVERIFY(window->isVisible());
    QVERIFY(window->browser()->toPlainText().startsWith(QStringLiteral("Page not found")));
    QCOMPARE(window->windowTitle(), QStringLiteral("Page not found - Tabrelle Help"));
}

void TestHelp::contentsTree()
{
    HelpWindow *window = HelpWindow::instance();
    QTreeWidget *tree = window->contentsTree();
    QStringList top;
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        top << tree->topLevelItem(i)->text(0);
    QCOMPARE(top, QStringList({"Getting started", "Items", "Transforms", "File formats", "Command line", "Batch",
                               "Preferences", "Keyboard shortcuts", "Troubleshooting"}));
    // One branch per category, each in name order, and every transform once.
    QTreeWidgetItem *transforms = tree->topLevelItem(2);
    QStringList categories;
    int listed = 0;
    for (int i = 0; i < transforms->childCount(); ++i) {
        QTreeWidgetItem *branch = transforms->child(i);
        categories << branch->text(0);
        QStringList names;
        for (int j = 0; j < branch->childCount(); ++j) {
            names << branch->child(j)->text(0);
            const QString id = branch->child(j)->data(0, Qt::UserRole).toString().section(QLatin1Char('/'), 1)
                                   .section(QLatin1Char('.'), 0, 0);
            QVERIFY(prototype(id));
            QCOMPARE(categoryText(prototype(id)->category()), branch->text(0));
        }
        QStringList sorted = names;
        std::sort(sorted.begin(), sorted.end(), [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
        QCOMPARE(names, sorted);
        listed += names.size();
    }
    QCOMPARE(categories, QStringList({"Merge", "Column", "Row", "Format", "Analysis", "Other"}));
    QCOMPARE(listed, Application::instance()->transforms().size());
}

void TestHelp::treeShowsPages()
{
    HelpWindow::showContents();
    HelpWindow *window = HelpWindow::existingInstance();
    QTreeWidget *tree = window->contentsTree();
    tree->setFocus();
    // Down from "Getting started" goes to the Items branch, which has no page of its own,
    // then to its first page.
    QTest::keyClick(tree, Qt::Key_Down);
    QCOMPARE(window->currentPage(), QStringLiteral("index.md"));
    QTest::keyClick(tree, Qt::Key_Down);
    QCOMPARE(window->currentPage(), QStringLiteral("items/input.md"));
    // Enter on a branch closes and opens it.
    QTreeWidgetItem *items = tree->topLevelItem(1);
    tree->setCurrentItem(items);
    QVERIFY(items->isExpanded());
    QTest::keyClick(tree, Qt::Key_Return);
    QVERIFY(!items->isExpanded());
    QTest::keyClick(tree, Qt::Key_Return);
    QVERIFY(items->isExpanded());
    QCOMPARE(window->currentPage(), QStringLiteral("items/input.md"));
}

void TestHelp::indexFromNodeFactory()
{
    // Without prototypes the index asks the node factory, which knows the same transforms.
    const QList<HelpIndex::TransformInfo> infos = HelpIndex::transformsFromNodeFactory();
    QCOMPARE(infos.size(), Application::instance()->transforms().size());
    const HelpIndex index(infos);
    QCOMPARE(index.transformPage(QStringLiteral("Join")), QStringLiteral("transforms/Join.md"));
    QVERIFY(index.transformPage(QStringLiteral("NoSuchTransform")).isEmpty());
}

void TestHelp::search_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("found");
    QTest::addColumn<QStringList>("notFound");
    QTest::newRow("a keyword of a transform") << "denormal" << QStringList{"transforms/Join.md"}
                                              << QStringList{"transforms/Stack.md"};
    QTest::newRow("a keyword, upper case") << "APPEND" << QStringList{"transforms/Stack.md"}
                                           << QStringList{"transforms/Join.md"};
    QTest::newRow("category keyword finds the category's transforms")
        << "merges" << QStringList{"transforms/Join.md", "transforms/Stack.md"} << QStringList{"transforms/Split.md"};
    QTest::newRow("every word must start a term") << "join denormal" << QStringList{"transforms/Join.md"}
                                                  << QStringList{"transforms/Stack.md"};
    QTest::newRow("a word starting no term finds nothing")
        << "join zzz" << QStringList{} << QStringList{"transforms/Join.md"};
    QTest::newRow("a word inside a keyword is no prefix") << "ormalise" << QStringList{}
                                                          << QStringList{"transforms/Join.md"};
    QTest::newRow("page title") << "troubleshoot" << QStringList{"troubleshooting.md"} << QStringList{};
    QTest::newRow("item page") << "input" << QStringList{"items/input.md"} << QStringList{};
    QTest::newRow("shortcuts") << "keyboard" << QStringList{"shortcuts.md"} << QStringList{};
    QTest::newRow("empty text finds nothing") << "   " << QStringList{} << QStringList{"index.md"};
}

void TestHelp::search()
{
    QFETCH(QString, text);
    QFETCH(QStringList, found);
    QFETCH(QStringList, notFound);
    QStringList pages;
    for (const HelpIndex::Entry &entry : HelpWindow::instance()->index().search(text))
        pages << entry.page;
    for (const QString &page : found)
        QVERIFY2(pages.contains(page), qPrintable(pages.join(QLatin1Char(','))));
    for (const QString &page : notFound)
        QVERIFY2(!pages.contains(page), qPrintable(page));
    if (found.isEmpty() && notFound.contains(QStringLiteral("index.md")))
        QVERIFY(pages.isEmpty());
}

void TestHelp::searchField_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("hint");
    QTest::newRow("Enter opens the first match") << "denormalise" << "transforms/Join.md" << "1 page(s) match";
    QTest::newRow("no match keeps the page") << "qqqzzz" << "" << "No page matches 'qqqzzz'";
}

void TestHelp::searchField()
{
    QFETCH(QString, text);
    QFETCH(QString, opened);
    QFETCH(QString, hint);
    HelpWindow::showContents();
    HelpWindow *window = HelpWindow::existingInstance();
    window->searchEdit()->clear();
    QTest::keyClicks(window->searchEdit(), text);
    QCOMPARE(window->searchHintLabel()->text(), hint);
    // Only the matches and their branches stay visible.
    int visibleLeaves = 0;
    QTreeWidgetItemIterator it(window->contentsTree(), QTreeWidgetItemIterator::NotHidden);
    while (*it) {
        if ((*it)->childCount() == 0)
            ++visibleLeaves;
        ++it;
    }
    QCOMPARE(visibleLeaves, opened.isEmpty() ? 0 : 1);
    QTest::keyClick(window->searchEdit(), Qt::Key_Return);
    QCOMPARE(window->currentPage(), opened.isEmpty() ? QStringLiteral("index.md") : opened);
    window->searchEdit()->clear();
    QVERIFY(window->searchHintLabel()->isHidden());
    QTreeWidgetItemIterator all(window->contentsTree(), QTreeWidgetItemIterator::Hidden);
    QVERIFY(!*all);
}

void TestHelp::linkClicks_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("opened");
    QTest::newRow("sibling page") << "transforms/Join.md" << "Stack.md" << "transforms/Stack.md" << "";
    QTest::newRow("parent folder") << "transforms/Join.md" << "../formats.md" << "formats.md" << "";
    QTest::newRow("into a folder") << "index.md" << "items/input.md" << "items/input.md" << "";
    QTest::newRow("the written page of shortcuts") << "index.md" << "shortcuts.md" << "shortcuts.md" << "";
    QTest::newRow("web link goes to the system browser")
        << "index.md" << "https://example.org/x" << "index.md" << "https://example.org/x";
    QTest::newRow("mail link goes to the system browser")
        << "index.md" << "mailto:someone@example.org" << "index.md" << "mailto:someone@example.org";
}

void TestHelp::linkClicks()
{
    QFETCH(QString, from);
    QFETCH(QString, link);
    QFETCH(QString, page);
    QFETCH(QString, opened);
    HelpWindow *window = HelpWindow::instance();
    window->showPage(from);
    m_opened.clear();
    emit window->browser()->anchorClicked(QUrl(link));
    QCOMPARE(window->currentPage(), page);
    QCOMPARE(m_opened.size(), opened.isEmpty() ? 0 : 1);
    if (!opened.isEmpty())
        QCOMPARE(m_opened.first(), QUrl(opened));
}

void TestHelp::backAndForward()
{
    HelpWindow *window = HelpWindow::instance();
    window->showPage(QStringLiteral("index.md"));
    window->showPage(QStringLiteral("formats.md"));
    window->showPage(QStringLiteral("transforms/Join.md"));
    QVERIFY(window->backAction()->isEnabled());
    QVERIFY(!window->forwardAction()->isEnabled());
    window->backAction()->trigger();
    QCOMPARE(window->currentPage(), QStringLiteral("formats.md"));
    // A page that comes back is still read as Markdown, not as plain text.
    QVERIFY(!window->browser()->toPlainText().startsWith(QLatin1Char('#')));
    QVERIFY(window->forwardAction()->isEnabled());
    window->forwardAction()->trigger();
    QCOMPARE(window->currentPage(), QStringLiteral("transforms/Join.md"));
    QVERIFY(!window->browser()->toPlainText().startsWith(QLatin1Char('#')));
    QCOMPARE(window->backAction()->shortcut(), QKeySequence(Qt::ALT | Qt::Key_Left));
    QCOMPARE(window->forwardAction()->shortcut(), QKeySequence(Qt::ALT | Qt::Key_Right));
}

void TestHelp::shortcutsPage_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("row");
    QTest::newRow("mnemonic and dots dropped") << "&Open..." << "Ctrl+O" << "| Open | Ctrl+O |";
    QTest::newRow("doubled ampersand is one") << "Save && &Close" << "Ctrl+W" << "| Save & Close | Ctrl+W |";
    QTest::newRow("a bar in a name is escaped") << "A|B" << "F7" << "| A\\|B | F7 |";
    QTest::newRow("no shortcut, not listed") << "&Nothing" << "" << "";
    QTest::newRow("undo without its step") << "&Undo move" << "Ctrl+Z" << "| Undo | Ctrl+Z |";
    QTest::newRow("redo without its step") << "&Redo rename" << "Ctrl+Y" << "| Redo | Ctrl+Y |";
    QTest::newRow("other words kept") << "Undock Panes" << "F8" << "| Undock Panes | F8 |";
}

void TestHelp::shortcutsPage()
{
    QFETCH(QString, text);
    QFETCH(QString, keys);
    QFETCH(QString, row);
    auto *action = new QAction(text);
    if (!keys.isEmpty())
        action->setShortcut(QKeySequence(keys));
    auto *other = new QAction(QStringLiteral("&Run Everything"));
    other->setShortcut(QKeySequence(QStringLiteral("F5")));
    HelpWindow::setShortcutActions({other, action});
    HelpWindow::showShortcuts();
    HelpWindow *window = HelpWindow::existingInstance();
    QCOMPARE(window->currentPage(), HelpIndex::shortcutsPage());
    const QString markdown = HelpWindow::shortcutsMarkdown({other, action});
    QVERIFY(markdown.contains(QStringLiteral("| Run Everything | F5 |")));
    if (row.isEmpty())
        QVERIFY(!markdown.contains(QStringLiteral("Nothing")));
    else
        QVERIFY2(markdown.contains(row), qPrintable(markdown));
    // The page shown is the same, written when shown; an action gone drops off it.
    QVERIFY(window->browser()->toPlainText().contains(QStringLiteral("Run Everything")));
    delete other;
    HelpWindow::showShortcuts();
    QVERIFY(!window->browser()->toPlainText().contains(QStringLiteral("Run Everything")));
    delete action;
}

void TestHelp::shortcutsOfMainWindows()
{
    // Without actions given, the page lists those of the program's main windows.
    HelpWindow::setShortcutActions({});
    QMainWindow main;
    auto *action = new QAction(QStringLiteral("&Batch Process..."), &main);
    action->setShortcut(QKeySequence(QStringLiteral("Ctrl+B")));
    main.addAction(action);
    HelpWindow::showShortcuts();
    HelpWindow *window = HelpWindow::existingInstance();
    QVERIFY(window->browser()->toPlainText().contains(QStringLiteral("Batch Process")));
    auto *given = new QAction(QStringLiteral("&Run Selected"), &main);
    given->setShortcut(QKeySequence(QStringLiteral("Ctrl+Return")));
    HelpWindow::setShortcutActions({given});
    HelpWindow::showShortcuts();
    QVERIFY(!window->browser()->toPlainText().contains(QStringLiteral("Batch Process")));
    QVERIFY(window->browser()->toPlainText().contains(QStringLiteral("Run Selected")));
    HelpWindow::setShortcutActions({});
}

void TestHelp::findInPage_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("found");
    QTest::newRow("word on the page") << "key" << true;
    QTest::newRow("not on the page") << "qqqzzzq" << false;
}

void TestHelp::findInPage()
{
    QFETCH(QString, text);
    QFETCH(bool, found);
    HelpWindow *window = HelpWindow::instance();
    window->showPage(QStringLiteral("transforms/Join.md"));
    window->activateWindow();
    window->findAction()->trigger();
    QVERIFY(window->findBar()->isVisible());
    window->findEdit()->clear();
    QTest::keyClicks(window->findEdit(), text);
    QCOMPARE(window->browser()->textCursor().hasSelection(), found);
    if (found) {
        QCOMPARE(window->browser()->textCursor().selectedText().toLower(), text.toLower());
        QTest::keyClick(window->findEdit(), Qt::Key_Return);
        QVERIFY(window->browser()->textCursor().hasSelection());
    } else {
        QCOMPARE(window->findStatusLabel()->text(), QStringLiteral("Not found"));
    }
    QTest::keyClick(window->findEdit(), Qt::Key_Escape);
    QVERIFY(!window->findBar()->isVisible());
}

void TestHelp::helpButton_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("page");
    QTest::newRow("merge transform") << "Join" << "transforms/Join.md";
    QTest::newRow("column transform, id differs from name") << "Compare_Cols" << "transforms/Compare_Cols.md";
    QTest::newRow("transform of another helper's category") << "Filter" << "transforms/Filter.md";
    QTest::newRow("input") << "Input" << "items/input.md";
    QTest::newRow("note") << "Note" << "items/note.md";
    QTest::newRow("no item: the flow") << "" << "items/flow.md";
}

void TestHelp::helpButton()
{
    QFETCH(QString, item);
    QFETCH(QString, page);
    QTemporaryDir folder;
    Settings settings(folder.filePath(QStringLiteral("tabrelle.ini")));
    GraphScene scene;
    scene.setSettings(&settings);
    QUndoStack undoStack;
    Node *node = nullptr;
    if (item == QLatin1String("Input"))
        node = addInput(scene, QPointF(0, 0));
    else if (item == QLatin1String("Note"))
        node = new NoteNode;
    else if (!item.isEmpty())
        node = new TransformNode(prototype(item)->clone());
    if (node && !node->scene())
        scene.addNode(node);
    ItemPane pane;
    pane.setScene(&scene, &undoStack);
    pane.setCurrentNode(node);
    pane.show();
    QToolButton *help = nullptr;
    for (QToolButton *button : pane.itemWidget()->findChildren<QToolButton *>()) {
        if (button->text() == QLatin1String("?"))
            help = button;
    }
    QVERIFY(help);
    HelpWindow::showContents();
    QTest::mouseClick(help, Qt::LeftButton);
    HelpWindow *window = HelpWindow::existingInstance();
    QCOMPARE(window->currentPage(), page);
    QVERIFY(window->isVisible());
    QVERIFY(!window->browser()->toPlainText().contains(QStringLiteral("Page not found")));
    pane.setCurrentNode(nullptr);
}

void TestHelp::onlyOneWindow()
{
    HelpWindow::showContents();
    HelpWindow *first = HelpWindow::existingInstance();
    HelpWindow::showTransform(QStringLiteral("Join"));
    QCOMPARE(HelpWindow::existingInstance(), first);
    QVERIFY(!first->isModal());
    // Help left open never keeps the program running when the main window closes.
    QVERIFY(!first->testAttribute(Qt::WA_QuitOnClose));
}

CANVAS_TEST_MAIN(TestHelp)
#include "tst_help.moc"
