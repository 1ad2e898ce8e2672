#include "canvastestutil.h"

#include "flow/connection.h"
#include "flow/document.h"
#include "transforms/transformnode.h"
#include "workbench/graphview.h"
#include "workbench/prompts.h"
#include "workbench/undo.h"

#include <QClipboard>
#include <QMimeData>
#include <QUndoStack>

using namespace CanvasTest;

class TestClipboard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void copyThenPaste();
    void pasteRefused_data();
    void pasteRefused();
    void pasteText_data();
    void pasteText();
    void duplicateKeepsUpstreamConnections();
    void cutIsOneStep();

private:
    // input -> sort -> filter, with sort and filter selected.
    void buildChain();

    GraphScene *m_scene = nullptr;
    QUndoStack *m_stack = nullptr;
    GraphView *m_view = nullptr;
    ScriptedPrompts m_prompts;
    Node *m_input = nullptr;
    Node *m_sort = nullptr;
    Node *m_filter = nullptr;
};

void TestClipboard::init()
{
    m_prompts = ScriptedPrompts();
    Prompts::setInstance(&m_prompts);
    m_scene = new GraphScene;
    m_stack = new QUndoStack;
    m_view = new GraphView;
    m_view->setGraphScene(m_scene, m_stack);
}

void TestClipboard::cleanup()
{
    m_view->setGraphScene(nullptr, nullptr);
    delete m_view;
    delete m_stack;
    delete m_scene;
    Prompts::setInstance(nullptr);
}

void TestClipboard::buildChain()
{
    m_input = addInput(*m_scene, QPointF(0, 0));
    m_sort = new TransformNode(prototype(QStringLiteral("Sort"))->clone());
    m_sort->setPos(200, 0);
    m_scene->addNode(m_sort);
    m_filter = new TransformNode(prototype(QStringLiteral("Filter"))->clone());
    m_filter->setPos(400, 0);
    m_scene->addNode(m_filter);
    m_scene->connectNodes(m_input, m_sort);
    m_scene->connectNodes(m_sort, m_filter);
    m_sort->setSelected(true);
    m_filter->setSelected(true);
}

void TestClipboard::copyThenPaste()
{
    buildChain();
    QSignalSpy messages(m_view, &GraphView::statusMessage);
    m_view->copySelection();
    QCOMPARE(messages.last().first().toString(), QStringLiteral("Copied 2 item(s)"));
    const QByteArray before = UndoState::capture(*m_scene);
    QVERIFY(Document::canPaste(QApplication::clipboard()->mimeData()));
    m_view->paste(QApplication::clipboard()->mimeData());

    QCOMPARE(m_scene->nodes().size(), 5);
    const QList<Node *> pasted = m_scene->selectedNodes();
    QCOMPARE(pasted.size(), 2);
    QSet<int> oldIds {m_input->id(), m_sort->id(), m_filter->id()};
    for (const Node *node : pasted)
        QVERIFY(!oldIds.contains(node->id()));
    // The connection between the two copies came along; the one from the input did not.
    QCOMPARE(m_scene->connections().size(), 3);
    Node *pastedSort = pasted.first()->upstream(false).isEmpty() ? pasted.first() : pasted.last();
    Node *pastedFilter = pastedSort == pasted.first() ? pasted.last() : pasted.first();
    QVERIFY(pastedFilter->isConnectedFrom(pastedSort));
    QVERIFY(pastedSort->upstream(false).isEmpty());
    // Moved by (24, 24) when the pointer is not over the canvas.
    QCOMPARE(pastedSort->pos(), m_sort->pos() + QPointF(24, 24));

    QCOMPARE(m_stack->undoText(), QStringLiteral("paste"));
    m_stack->undo();
    QCOMPARE(UndoState::capture(*m_scene), before);
}

void TestClipboard::pasteRefused_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("warningStart");
    QTest::newRow("XML of another program") << Document::xmlMimeType().toUtf8()
                                            << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE Other><root/>")
                                            << "Incorrect document type pasted.";
    QTest::newRow("broken payload") << Document::mimeType().toUtf8() << QByteArray("<?xml version=\"1.0\"?><root><inputs>")
                                    << "Paste error=";
    QTest::newRow("garbage bytes") << Document::mimeType().toUtf8() << QByteArray("\x00\xff\xfe garbage", 12)
                                   << "Paste error=";
}

void TestClipboard::pasteRefused()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, payload);
    QFETCH(QString, warningStart);
    QMimeData data;
    data.setData(QString::fromUtf8(format), payload);
    m_view->paste(&data);
    QCOMPARE(m_scene->nodes().size(), 0);
    QCOMPARE(m_stack->count(), 0);
    QCOMPARE(m_prompts.warnings.size(), 1);
    QVERIFY2(m_prompts.warnings.first().startsWith(warningStart), qPrintable(m_prompts.warnings.first()));
}

void TestClipboard::pasteText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("fileType");
    QTest::newRow("comma separated") << "name,age\nAnn,31\nBob,42\n" << int(IONode::DelimitedText);
    QTest::newRow("JSON") << "[{\"a\": 1}, {\"a\": 2}]" << int(IONode::Json);
    QTest::newRow("XML") << "<rows><row><a>1</a></row></rows>" << int(IONode::Xml);
}

void TestClipboard::pasteText()
{
    QFETCH(QString, text);
    QFETCH(int, fileType);
    QMimeData data;
    data.setText(text);
    QSignalSpy messages(m_view, &GraphView::statusMessage);
    m_view->paste(&data);
    QCOMPARE(m_scene->nodes().size(), 1);
    auto *input = qobject_cast<InputNode *>(m_scene->nodes().first());
    QVERIFY(input);
    QCOMPARE(input->medium(), int(IONode::Clipboard));
    QCOMPARE(input->text(), text);
    QCOMPARE(input->fileType(), fileType);
    QCOMPARE(m_stack->undoText(), QStringLiteral("paste text"));
    QVERIFY(messages.last().first().toString().startsWith(QStringLiteral("Pasted text read as ")));
}

void TestClipboard::duplicateKeepsUpstreamConnections()
{
    buildChain();
    m_filter->setSelected(false);
    m_view->duplicateSelection();
    QCOMPARE(m_scene->nodes().size(), 4);
    Node *copy = m_scene->selectedNodes().value(0);
    QVERIFY(copy && copy != m_sort);
    QCOMPARE(copy->pos(), m_sort->pos() + QPointF(24, 24));
    // The copy is fed by the original's input, so that a variant can be tried beside it.
    QVERIFY(copy->isConnectedFrom(m_input));
    QVERIFY(copy->downstream(false).isEmpty());
    QCOMPARE(m_stack->count(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("duplicate"));
}

void TestClipboard::cutIsOneStep()
{
    buildChain();
    const QByteArray before = UndoState::capture(*m_scene);
    m_view->cutSelection();
    QCOMPARE(m_scene->nodes().size(), 1);
    QCOMPARE(m_stack->count(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("cut"));
    QVERIFY(Document::canPaste(QApplication::clipboard()->mimeData()));
    m_stack->undo();
    QCOMPARE(UndoState::capture(*m_scene), before);
    m_stack->redo();
    QCOMPARE(m_scene->nodes().size(), 1);
}

CANVAS_TEST_MAIN(TestClipboard)
#include "tst_clipboard.moc"
