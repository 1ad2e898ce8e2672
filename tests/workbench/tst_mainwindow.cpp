#include "canvastestutil.h"

#include "workbench/graphview.h"
#include "workbench/mainwindow.h"
#include "workbench/prompts.h"
#include "workbench/recentdocuments.h"
#include "workbench/dialogutil.h"
#include "workbench/recoverydialog.h"
#include "transforms/transformnode.h"
#include <QPushButton>

#include "core/settings.h"
#include "flow/document.h"

#include <QLockFile>

#include <QAction>
#include <QMenuBar>
#include <QUndoStack>

using namespace CanvasTest;

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void runActionsEnabled_data();
    void runActionsEnabled();
    void editingOffDuringRun();
    void stopDuringAutoRunOffersBalloon();
    void quitDuringRunWaitsForTheRun();
    void titleFollowsModifiedState();
    void unsavedChangesPrompt_data();
    void unsavedChangesPrompt();
    void saveAndReopen();
    void openFailureSaysWhy();
    void recoveryOffered_data();
    void recoveryOffered();
    void recoveryDiscardAndLater_data();
    void recoveryDiscardAndLater();
    void recoveredFlowSaveOverChangedFile_data();
    void recoveredFlowSaveOverChangedFile();
    void startupChoice_data();
    void startupChoice();
    void dialogsOpenFromTheirActions_data();
    void dialogsOpenFromTheirActions();
    void preferencesTakeEffect_data();
    void preferencesTakeEffect();
    void panesCycleWithF6_data();
    void panesCycleWithF6();
    void shortcutsAreUnique();
    void mnemonicsAreUniqueInEachMenu();
    void everyActionHasText();

private:
    MainWindow *m_window = nullptr;
    ScriptedPrompts m_prompts;
    ScriptedFileDialogs m_dialogs;
    QTemporaryDir m_folder;
};

void TestMainWindow::init()
{
    m_prompts = ScriptedPrompts();
    m_dialogs = ScriptedFileDialogs();
    Prompts::setInstance(&m_prompts);
    FileDialogs::setInstance(&m_dialogs);
    m_window = new MainWindow(Application::instance()->settings(), Application::instance()->transforms());
    m_window->show();
}

void TestMainWindow::cleanup()
{
    m_prompts.answers = QStringList({QStringLiteral("Don't Save")});
    DialogRunner::setScript(DialogRunner::Script());
    delete m_window;
    Prompts::setInstance(nullptr);
    FileDialogs::setInstance(nullptr);
}

void TestMainWindow::runActionsEnabled_data()
{
    QTest::addColumn<bool>("autoRun");
    QTest::addColumn<bool>("withNode");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<bool>("running");
    QTest::addColumn<QString>("enabled"); // C changes, E everything, S selected, T stop, A auto run
    QTest::newRow("empty flow, auto run on") << true << false << false << false << "A";
    QTest::newRow("empty flow, auto run off") << false << false << false << false << "A";
    QTest::newRow("item needing an update, auto run off") << false << true << false << false << "CEA";
    QTest::newRow("selected item, auto run off") << false << true << true << false << "CESA";
    QTest::newRow("selected item, auto run on") << true << true << true << false << "A";
    QTest::newRow("during a run") << false << true << true << true << "T";
}

void TestMainWindow::runActionsEnabled()
{
    QFETCH(bool, autoRun);
    QFETCH(bool, withNode);
    QFETCH(bool, selected);
    QFETCH(bool, running);
    QFETCH(QString, enabled);
    if (m_window->action(QStringLiteral("autoRunAction"))->isChecked() != autoRun)
        m_window->action(QStringLiteral("autoRunAction"))->trigger();
    GraphScene *scene = m_window->scene();
    if (withNode) {
        Node *input = addInput(*scene, QPointF(0, 0));
        input->setStatus(Node::NeedsUpdating, false);
        input->setSelected(selected);
    }
    if (running)
        emit scene->runningChanged(true);
    else
        QCoreApplication::processEvents();
    QString actual;
    const QList<QPair<QChar, QString>> names = {{QLatin1Char('C'), QStringLiteral("runChangesAction")},
        {QLatin1Char('E'), QStringLiteral("runEverythingAction")}, {QLatin1Char('S'), QStringLiteral("runSelectedAction")},
        {QLatin1Char('T'), QStringLiteral("runStopAction")}, {QLatin1Char('A'), QStringLiteral("autoRunAction")}};
    for (const auto &name : names) {
        if (m_window->action(name.second)->isEnabled())
            actual += name.first;
    }
    if (running)
        emit scene->runningChanged(false);
    QCOMPARE(actual, enabled);
}

void TestMainWindow::editingOffDuringRun()
{
    GraphScene *scene = m_window->scene();
    Node *input = addInput(*scene, QPointF(0, 0));
    input->setSelected(true);
    emit scene->runningChanged(true);
    QVERIFY(!m_window->view()->isEditingEnabled());
    QVERIFY(!m_window->action(QStringLiteral("deleteAction"))->isEnabled());
    QVERIFY(!m_window->action(QStringLiteral("newAction"))->isEnabled());
    // A delete during a run is refused.
    m_window->view()->deleteSelection();
    QCOMPARE(scene->nodes().size(), 1);
    emit scene->runningChanged(false);
    QVERIFY(m_window->view()->isEditingEnabled());
}

void TestMainWindow::stopDuringAutoRunOffersBalloon()
{
    GraphScene *scene = m_window->scene();
    QVERIFY(scene->isAutoRun());
    scene->setRunning(true);
    emit scene->runningChanged(true);
    m_window->action(QStringLiteral("runStopAction"))->trigger();
    QVERIFY(GraphScene::isStopRequested());
    QVERIFY(!scene->isAutoRun());
    QCOMPARE(m_window->balloonText(), QStringLiteral("Click here to go back to auto running changes."));
    scene->setRunning(false);
    emit scene->runningChanged(false);
    GraphScene::setStopRequested(false);
}

void TestMainWindow::quitDuringRunWaitsForTheRun()
{
    GraphScene *scene = m_window->scene();
    emit scene->runningChanged(true);
    m_prompts.answers << QStringLiteral("Stop and Quit");
    QVERIFY(!m_window->close());
    QCOMPARE(m_prompts.asked.last(), QStringLiteral("A run is in progress. Stop it and quit?"));
    QVERIFY(GraphScene::isStopRequested());
    QVERIFY(m_window->isVisible());
    emit scene->runningChanged(false);
    QTRY_VERIFY(!m_window->isVisible());
    GraphScene::setStopRequested(false);
}

void TestMainWindow::titleFollowsModifiedState()
{
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Untitled[*] - Tabrelle"));
    QVERIFY(!m_window->isWindowModified());
    m_window->view()->addNote();
    QVERIFY(m_window->isWindowModified());
    m_window->undoStack()->undo();
    QVERIFY(!m_window->isWindowModified());
    // Switching Auto Run is saved but is no undo step.
    m_window->action(QStringLiteral("autoRunAction"))->trigger();
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(m_window->undoStack()->count(), 1);
}

void TestMainWindow::unsavedChangesPrompt_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("cleared");
    QTest::newRow("don't save") << "Don't Save" << true;
    QTest::newRow("cancel") << "Cancel" << false;
}

void TestMainWindow::unsavedChangesPrompt()
{
    QFETCH(QString, answer);
    QFETCH(bool, cleared);
    m_window->view()->addNote();
    m_prompts.answers << answer;
    m_window->action(QStringLiteral("newAction"))->trigger();
    QCOMPARE(m_prompts.asked.value(0), QStringLiteral("Do you want to save the changes you made to 'Untitled'?"));
    QCOMPARE(m_window->scene()->nodes().isEmpty(), cleared);
    QCOMPARE(m_window->isWindowModified(), !cleared);
}

void TestMainWindow::saveAndReopen()
{
    addInput(*m_window->scene(), QPointF(0, 0));
    m_window->view()->addNote();
    const QString path = m_folder.filePath(QStringLiteral("flow"));
    m_dialogs.answers << QStringList({path});
    m_window->action(QStringLiteral("saveAction"))->trigger();
    // The suffix is added, the title names the file, the document is clean.
    QCOMPARE(m_window->documentPath(), path + QStringLiteral(".tflow"));
    QVERIFY(QFileInfo::exists(path + QStringLiteral(".tflow")));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("flow.tflow[*] - Tabrelle"));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(RecentDocuments::entries(Application::instance()->settings()).value(0).path,
        QDir::cleanPath(path + QStringLiteral(".tflow")));

    m_window->action(QStringLiteral("closeAction"))->trigger();
    QCOMPARE(m_window->scene()->nodes().size(), 0);
    m_dialogs.answers << QStringList({path + QStringLiteral(".tflow")});
    m_window->action(QStringLiteral("openAction"))->trigger();
    QCOMPARE(m_window->scene()->nodes().size(), 2);
    QCOMPARE(m_window->undoStack()->count(), 0);
    QVERIFY(!m_window->isWindowModified());
}

void TestMainWindow::openFailureSaysWhy()
{
    const QString path = m_folder.filePath(QStringLiteral("broken.tflow"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("not a flow");
    file.close();
    QVERIFY(!m_window->openDocument(path, false));
    QCOMPARE(m_prompts.warnings.size(), 1);
    QVERIFY(m_prompts.warnings.first().startsWith(QStringLiteral("Unable to open '%1': ").arg(QDir::toNativeSeparators(path))));
    QCOMPARE(m_window->documentPath(), QString());
}

void TestMainWindow::recoveryOffered_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("heldByLiveWindow");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<int>("warnings");
    QTest::newRow("a flow left by a crash") << QByteArray() << false << true << 0;
    QTest::newRow("held by an open window") << QByteArray() << true << false << 0;
    QTest::newRow("unreadable file") << QByteArray("garbage <not a flow") << false << false << 1;
}

void TestMainWindow::recoveryOffered()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, heldByLiveWindow);
    QFETCH(bool, opened);
    QFETCH(int, warnings);
    const QString folder = MainWindow::recoveryFolder(Application::instance()->settings());
    QVERIFY(QDir().mkpath(folder));
    const QString path = QDir(folder).filePath(QStringLiteral("recovery-999999.tflow"));
    if (content.isEmpty()) {
        GraphScene scene;
        addInput(scene, QPointF(0, 0));
        addInput(scene, QPointF(0, 100));
        DocumentProperties properties;
        properties.docPath = m_folder.filePath(QStringLiteral("lost.tflow"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Document::documentText(scene, properties));
    } else {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QLockFile other(path + QStringLiteral(".lock"));
    if (heldByLiveWindow)
        QVERIFY(other.tryLock(0));
    QStringList rows;
    DialogRunner::setScript([&rows](QDialog *dialog) {
        auto *recovery = qobject_cast<RecoveryDialog *>(dialog);
        QVERIFY(recovery);
        rows = recovery->rows();
        dialog->findChild<QPushButton *>(QStringLiteral("openButton"))->click();
    });
    QCOMPARE(m_window->offerRecovery(), opened);
    if (!heldByLiveWindow) {
        QCOMPARE(rows.size(), 1);
        QVERIFY(rows.first().startsWith(content.isEmpty() ? QStringLiteral("lost.tflow - saved ")
                                                          : QStringLiteral("Untitled - saved ")));
    } else {
        QVERIFY(rows.isEmpty());
    }
    QCOMPARE(m_prompts.warnings.size(), warnings);
    if (opened) {
        QCOMPARE(m_window->scene()->nodes().size(), 2);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("lost.tflow (recovered)[*] - Tabrelle"));
        QVERIFY(m_window->isWindowModified());
        // The file opened is replaced by this window's own.
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(QFileInfo::exists(m_window->recoveryPath()));
    } else {
        QCOMPARE(m_window->scene()->nodes().size(), 0);
    }
    other.unlock();
    QFile::remove(path);
    QFile::remove(m_window->recoveryPath());
}

void TestMainWindow::recoveryDiscardAndLater_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<bool>("fileKept");
    QTest::addColumn<int>("offers");
    QTest::newRow("decide later") << "laterButton" << QStringList() << true << 1;
    QTest::newRow("discard") << "discardButton" << QStringList {"Discard"} << false << 1;
    QTest::newRow("discard, then cancel") << "discardButton" << QStringList {"Cancel"} << true << 2;
}

void TestMainWindow::recoveryDiscardAndLater()
{
    QFETCH(QString, button);
    QFETCH(QStringList, answers);
    QFETCH(bool, fileKept);
    QFETCH(int, offers);
    const QString folder = MainWindow::recoveryFolder(Application::instance()->settings());
    QVERIFY(QDir().mkpath(folder));
    const QString path = QDir(folder).filePath(QStringLiteral("recovery-999998.tflow"));
    {
        GraphScene scene;
        addInput(scene, QPointF(0, 0));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Document::documentText(scene, DocumentProperties()));
    }
    m_prompts.answers = answers;
    int offered = 0;
    DialogRunner::setScript([&](QDialog *dialog) {
        // After a cancelled discard the flow is offered again; then it is left for later.
        dialog->findChild<QPushButton *>(++offered == 1 ? button : QStringLiteral("laterButton"))->click();
    });
    QVERIFY(!m_window->offerRecovery());
    QCOMPARE(offered, offers);
    QCOMPARE(QFileInfo::exists(path), fileKept);
    // Decide Later lets go of the file: another window may take it.
    if (fileKept) {
        QLockFile lock(path + QStringLiteral(".lock"));
        QVERIFY(lock.tryLock(0));
    }
    QFile::remove(path);
    QFile::remove(path + QStringLiteral(".lock"));
}

void TestMainWindow::recoveredFlowSaveOverChangedFile_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("replace") << "Replace" << true;
    QTest::newRow("cancel") << "Cancel" << false;
}

void TestMainWindow::recoveredFlowSaveOverChangedFile()
{
    QFETCH(QString, answer);
    QFETCH(bool, replaced);
    const QString folder = MainWindow::recoveryFolder(Application::instance()->settings());
    QVERIFY(QDir().mkpath(folder));
    const QString path = QDir(folder).filePath(QStringLiteral("recovery-999997.tflow"));
    const QString document = m_folder.filePath(QStringLiteral("changed.tflow"));
    {
        GraphScene scene;
        addInput(scene, QPointF(0, 0));
        DocumentProperties properties;
        properties.docPath = document;
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Document::documentText(scene, properties));
    }
    {
        QFile recovery(path);
        QVERIFY(recovery.open(QIODevice::ReadWrite));
        QVERIFY(recovery.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
    }
    {
        QFile file(document);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("changed by someone else");
    }
    DialogRunner::setScript([](QDialog *dialog) { dialog->findChild<QPushButton *>(QStringLiteral("openButton"))->click(); });
    QVERIFY(m_window->offerRecovery());
    m_prompts.answers << answer;
    QCOMPARE(m_window->saveDocument(), replaced);
    QVERIFY(!m_prompts.asked.isEmpty());
    QCOMPARE(m_prompts.asked.last(),
        QStringLiteral("'changed.tflow' has changed since this flow was saved for recovery. Replace it with the recovered flow?"));
    QFile file(document);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll() != "changed by someone else", replaced);
    QFile::remove(m_window->recoveryPath());
}

void TestMainWindow::startupChoice_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("withRecent");
    QTest::addColumn<bool>("withDocument");
    QTest::addColumn<QString>("dialogShown");
    QTest::addColumn<int>("nodes");
    QTest::newRow("recent documents") << 0 << true << false << "RecentDocumentsDialog" << 0;
    QTest::newRow("recent documents, none yet") << 0 << false << false << "" << 0;
    QTest::newRow("empty flow") << 1 << true << false << "" << 0;
    QTest::newRow("this flow") << 2 << true << true << "" << 2;
    QTest::newRow("this flow, missing") << 2 << false << false << "" << 0;
}

void TestMainWindow::startupChoice()
{
    QFETCH(int, action);
    QFETCH(bool, withRecent);
    QFETCH(bool, withDocument);
    QFETCH(QString, dialogShown);
    QFETCH(int, nodes);
    Settings *settings = Application::instance()->settings();
    const QString flow = m_folder.filePath(QStringLiteral("start.tflow"));
    {
        GraphScene scene;
        addInput(scene, QPointF(0, 0));
        addInput(scene, QPointF(0, 100));
        QFile file(flow);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Document::documentText(scene, DocumentProperties()));
    }
    settings->setValue(QStringLiteral("recent_documents"), QVariant());
    settings->remove(QStringLiteral("recent_documents"));
    if (withRecent)
        RecentDocuments::add(settings, flow);
    settings->setValue(QStringLiteral("startup_action"), action);
    settings->setValue(QStringLiteral("startup_document"),
        withDocument ? flow : m_folder.filePath(QStringLiteral("missing.tflow")));
    QString shown;
    DialogRunner::setScript([&shown](QDialog *dialog) {
        shown = dialog->objectName();
        dialog->reject();
    });
    m_window->startUp();
    QCOMPARE(shown, dialogShown);
    QCOMPARE(m_window->scene()->nodes().size(), nodes);
    QCOMPARE(m_prompts.warnings.size(), action == 2 && !withDocument ? 1 : 0);
    settings->remove(QStringLiteral("startup_action"));
    settings->remove(QStringLiteral("startup_document"));
    settings->remove(QStringLiteral("recent_documents"));
}

void TestMainWindow::dialogsOpenFromTheirActions_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("dialog");
    QTest::newRow("preferences") << "preferencesAction" << "PreferencesDialog";
    QTest::newRow("about") << "aboutAction" << "AboutDialog";
    QTest::newRow("compare") << "compareAction" << "CompareDialog";
    QTest::newRow("connect to") << "connectToAction" << "ConnectDialog";
    QTest::newRow("connect from") << "connectFromAction" << "ConnectDialog";
    QTest::newRow("explore keys") << "exploreKeysAction" << "ExploreKeysDialog";
    QTest::newRow("recent documents") << "recentDocumentsAction" << "RecentDocumentsDialog";
}

void TestMainWindow::dialogsOpenFromTheirActions()
{
    QFETCH(QString, action);
    QFETCH(QString, dialog);
    m_window->scene()->setAutoRun(false);
    Node *top = addInput(*m_window->scene(), QPointF(0, 0), QStringLiteral("k\na\n"));
    Node *bottom = addInput(*m_window->scene(), QPointF(0, 150), QStringLiteral("k\na\n"));
    auto *join = new TransformNode(prototype(QStringLiteral("Join"))->clone());
    join->setPos(200, 50);
    m_window->scene()->addNode(join);
    m_window->scene()->connectNodes(top, join);
    m_window->scene()->connectNodes(bottom, join);
    m_window->scene()->runEverything();
    m_window->view()->setCurrentNode(join);
    QString shown;
    DialogRunner::setScript([&shown](QDialog *d) {
        shown = d->objectName();
        d->reject();
    });
    QAction *trigger = m_window->action(action);
    QVERIFY(trigger);
    QVERIFY2(trigger->isEnabled(), qPrintable(action));
    trigger->trigger();
    QCOMPARE(shown, dialog);
}

void TestMainWindow::preferencesTakeEffect_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("check");
    QTest::newRow("name in saved flows") << "user_name" << QVariant(QStringLiteral("AdaLovelace")) << "saved";
    QTest::newRow("advanced transforms") << "show_advanced_transforms" << QVariant(true) << "showAdvancedAction";
    QTest::newRow("dark theme") << "theme" << QVariant(2) << "darkThemeAction";
}

void TestMainWindow::preferencesTakeEffect()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QString, check);
    Settings *settings = Application::instance()->settings();
    const QVariant before = settings->value(key);
    settings->setValue(key, value);
    if (check == QLatin1String("saved")) {
        const QString path = m_folder.filePath(QStringLiteral("named.tflow"));
        QVERIFY(m_window->saveDocumentAs(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(QString::fromUtf8(file.readAll()).contains(value.toString()));
    } else {
        QVERIFY(m_window->action(check)->isChecked());
    }
    settings->setValue(key, before);
    if (key == QLatin1String("theme"))
        QVERIFY(m_window->action(QStringLiteral("desktopThemeAction"))->isChecked());
}

void TestMainWindow::panesCycleWithF6_data()
{
    QTest::addColumn<QString>("keys"); // n: F6, p: Shift+F6, starting on the canvas
    QTest::addColumn<QString>("focused"); // accessible name of the focused widget or its pane
    QTest::newRow("canvas back to the transform list") << "p" << "Transform list";
    QTest::newRow("list back to the search") << "pp" << "Search transforms";
    QTest::newRow("there and back") << "np" << "Canvas";
    QTest::newRow("search wraps back to messages") << "ppp" << "Messages";
    QTest::newRow("messages wrap on to the search") << "pppn" << "Search transforms";
}

void TestMainWindow::panesCycleWithF6()
{
    QFETCH(QString, keys);
    QFETCH(QString, focused);
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window));
    m_window->view()->setFocus();
    QTRY_VERIFY(m_window->view()->hasFocus());
    for (const QChar key : keys)
        m_window->action(key == QLatin1Char('n') ? QStringLiteral("nextPaneAction") : QStringLiteral("previousPaneAction"))
            ->trigger();
    QString name;
    for (QWidget *widget = QApplication::focusWidget(); widget && name.isEmpty(); widget = widget->parentWidget())
        name = widget->accessibleName();
    QCOMPARE(name, focused);
}

void TestMainWindow::shortcutsAreUnique()
{
    QHash<QString, QString> seen;
    for (QAction *action : m_window->allActions()) {
        if (action->parent() != m_window)
            continue;
        for (const QKeySequence &sequence : action->shortcuts()) {
            const QString key = sequence.toString();
            QVERIFY2(!seen.contains(key),
                qPrintable(QStringLiteral("%1 on '%2' and '%3'").arg(key, seen.value(key), action->text())));
            seen.insert(key, action->text());
        }
    }
    QVERIFY(seen.size() > 20);
}

void TestMainWindow::mnemonicsAreUniqueInEachMenu()
{
    const QList<QMenu *> menus = m_window->menuBar()->findChildren<QMenu *>();
    QVERIFY(!menus.isEmpty());
    for (QMenu *menu : menus) {
        emit menu->aboutToShow();
        QHash<QChar, QString> letters;
        for (QAction *action : menu->actions()) {
            const QString text = action->text();
            const int amp = text.indexOf(QLatin1Char('&'));
            if (amp < 0 || amp + 1 >= text.size())
                continue;
            const QChar letter = text.at(amp + 1).toLower();
            QVERIFY2(!letters.contains(letter),
                qPrintable(QStringLiteral("'%1' and '%2' in %3").arg(letters.value(letter), text, menu->title())));
            letters.insert(letter, text);
        }
    }
}

void TestMainWindow::everyActionHasText()
{
    for (QAction *action : m_window->allActions()) {
        if (action->isSeparator() || action->parent() != m_window)
            continue;
        QVERIFY2(!action->text().isEmpty(), qPrintable(action->objectName()));
    }
}

CANVAS_TEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
