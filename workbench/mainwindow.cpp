#include "mainwindow.h"

#include "aboutdialog.h"
#include "comparedialog.h"
#include "connectdialog.h"
#include "dialogutil.h"
#include "exploreduplicatesdialog.h"
#include "explorekeysdialog.h"
#include "graphview.h"
#include "helpwindow.h"
#include "insufficientmemorydialog.h"
#include "missingfilesdialog.h"
#include "preferencesdialog.h"
#include "recentdocumentsdialog.h"
#include "recoverydialog.h"
#include "graphviewpainter.h"
#include "prompts.h"
#include "recentdocuments.h"
#include "transformpane.h"
#include "undo.h"

#if __has_include("itempane.h")
#include "datapanel.h"
#include "datatableview.h"
#include "findbar.h"
#include "itempane.h"
#include "itemwidget.h"
#define TABRELLE_HAS_ITEM_PANE 1
#endif

#include "core/settings.h"
#include "core/values.h"
#include "flow/connection.h"
#include "flow/graphscene.h"
#include "flow/ionode.h"
#include "flow/node.h"
#include "flow/notenode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLockFile>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProcess>
#include <QProgressBar>
#include <QSaveFile>
#include <QScreen>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QTextEdit>
#include <QTime>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>
#include <QUndoView>
#include <QUrl>
#include <QAbstractSpinBox>
#include <QAbstractItemView>
#include <QFrame>
#include <QVBoxLayout>
#include <QKeyEvent>

namespace {

const char *const FlowFilter = QT_TRANSLATE_NOOP("MainWindow", "Tabrelle flows (*.tflow);;All files (*)");
const char *const SaveFilter = QT_TRANSLATE_NOOP("MainWindow", "Tabrelle flows (*.tflow)");
const char *const DataFilter = QT_TRANSLATE_NOOP("MainWindow",
    "Data files (*.csv *.tsv *.txt *.log *.xlsx *.xlsm *.xls *.json *.geojson *.xml *.opml *.vcf);;All files (*)");

bool isTextField(QWidget *widget)
{
    if (!widget)
        return false;
    if (qobject_cast<QLineEdit *>(widget) || qobject_cast<QAbstractSpinBox *>(widget)
        || qobject_cast<QPlainTextEdit *>(widget) || qobject_cast<QTextEdit *>(widget))
        return true;
    if (auto *combo = qobject_cast<QComboBox *>(widget))
        return combo->isEditable();
    return false;
}

QIcon standardIcon(QStyle::StandardPixmap pixmap)
{
    return QApplication::style()->standardIcon(pixmap);
}

} // namespace

MainWindow::MainWindow(Settings *settings, const QList<Transform *> &prototypes, QWidget *parent)
    : QMainWindow(parent)
    , m_settings(settings)
    , m_prototypes(prototypes)
    , m_undoStack(new QUndoStack(this))
{
    setObjectName(QStringLiteral("MainWindow"));
    if (m_settings)
        m_undoStack->setUndoLimit(m_settings->intValue(QStringLiteral("undo_limit")));
    m_view = new GraphView(this);
    createActions();

    TransformPane::ItemActions itemActions;
    itemActions.addInput = m_addInputAction;
    itemActions.pasteAsInput = m_pasteAsInputAction;
    itemActions.addOutput = m_addOutputAction;
    itemActions.addChart = m_addChartAction;
    itemActions.addChartFile = m_addChartFileAction;
    itemActions.addNote = m_addNoteAction;
    m_transformPane = new TransformPane(m_prototypes, m_settings, itemActions, this);
    m_transformPane->setMinimumWidth(200);

#ifdef TABRELLE_HAS_ITEM_PANE
    m_itemPane = new ItemPane(this);
    m_itemPaneWidget = m_itemPane;
#else
    m_itemPaneWidget = new QWidget(this);
#endif
    m_itemPaneWidget->setMinimumWidth(320);

    m_mainSplitter = new QSplitter(Qt::Horizontal, this);
    m_mainSplitter->setObjectName(QStringLiteral("mainSplitter"));
    m_mainSplitter->addWidget(m_transformPane);
    m_mainSplitter->addWidget(m_view);
    m_mainSplitter->addWidget(m_itemPaneWidget);
    m_mainSplitter->setCollapsible(0, true);
    m_mainSplitter->setCollapsible(1, false);
    m_mainSplitter->setCollapsible(2, false);
    m_mainSplitter->setStretchFactor(1, 1);
    m_view->setMinimumWidth(300);
    setCentralWidget(m_mainSplitter);

    createMenus();
    createToolBar();
    createDocks();
    createStatusBar();

    connect(m_transformPane, &TransformPane::transformActivated, this,
        [this](const Transform *prototype) { m_view->addTransform(prototype); });
    connect(m_transformPane, &TransformPane::showAdvancedChanged, m_showAdvancedAction, &QAction::setChecked);
    m_view->setTransformPrototypes(m_prototypes);
    m_view->setShowAdvanced(m_transformPane->showAdvanced());
    connect(m_transformPane, &TransformPane::showAdvancedChanged, m_view, &GraphView::setShowAdvanced);
    connect(m_view, &GraphView::statusMessage, this, &MainWindow::showStatus);
    connect(m_view, &GraphView::currentNodeChanged, this, [this](Node *node) {
#ifdef TABRELLE_HAS_ITEM_PANE
        m_itemPane->setCurrentNode(node);
#else
        Q_UNUSED(node)
#endif
        updateActions();
    });
#ifdef TABRELLE_HAS_ITEM_PANE
    if (m_itemPane->dataPanel()) {
        connect(m_itemPane->dataPanel(), &DataPanel::showWhitespaceToggled, m_showWhitespaceAction, &QAction::setChecked);
        if (m_itemPane->dataPanel()->showWhitespace() != m_showWhitespaceAction->isChecked())
            m_itemPane->dataPanel()->setShowWhitespace(m_showWhitespaceAction->isChecked());
    }
    connect(m_itemPane, &ItemPane::runRequested, this, [this](Node *node) {
        if (!m_scene || m_runActive || !node || !m_scene->nodes().contains(node))
            return;
        m_scene->clearSelection();
        node->setSelected(true);
        m_scene->runSelected();
    });
#endif
    connect(m_view, &GraphView::openDocumentRequested, this, [this](const QString &path) { openDocument(path); });
    connect(m_view, &GraphView::contextMenuWanted, this, &MainWindow::showContextMenu);
    connect(m_view, &GraphView::editingDone, this, &MainWindow::updateActions);
    connect(m_undoStack, &QUndoStack::cleanChanged, this, &MainWindow::updateTitle);
    connect(m_undoStack, &QUndoStack::indexChanged, this, [this] {
        updateTitle();
        updateActions();
    });
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::onFocusChanged);
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &MainWindow::updateActions);

    // The name saved flows carry, and the interface font chosen in the preferences.
    if (m_settings) {
        Document::setUserName(m_settings->stringValue(QStringLiteral("user_name")));
        QFont font;
        const QString fontText = m_settings->stringValue(QStringLiteral("ui_font"));
        if (!fontText.isEmpty() && font.fromString(fontText))
            QApplication::setFont(font);
    }

    m_recoveryTimer = new QTimer(this);
    const int minutes = m_settings ? m_settings->intValue(QStringLiteral("auto_recovery_minutes")) : 0;
    if (minutes > 0) {
        m_recoveryTimer->start(minutes * 60 * 1000);
        connect(m_recoveryTimer, &QTimer::timeout, this, &MainWindow::writeRecovery);
    }

    restoreWindowState();
    newDocument();
}

MainWindow::~MainWindow()
{
    disconnect(qApp, nullptr, this, nullptr);
    disconnect(QApplication::clipboard(), nullptr, this, nullptr);
    disconnect(m_undoStack, nullptr, this, nullptr);
    if (m_scene)
        disconnect(m_scene, nullptr, this, nullptr);
    // The scene's nodes go before the view and the painter's state that point at them.
    m_view->setGraphScene(nullptr, nullptr);
#ifdef TABRELLE_HAS_ITEM_PANE
    m_itemPane->setScene(nullptr, m_undoStack);
#endif
    m_undoStack->clear();
    delete m_scene;
    m_scene = nullptr;
    releaseRecoveryLocks();
    delete m_recoveryLock;
}

// ----- actions and menus

void MainWindow::createActions()
{
    const auto make = [this](const QString &text, const QString &name, const QKeySequence &shortcut = QKeySequence()) {
        auto *action = new QAction(text, this);
        action->setObjectName(name);
        if (!shortcut.isEmpty())
            action->setShortcut(shortcut);
        return action;
    };
    m_newAction = make(tr("&New"), QStringLiteral("newAction"), QKeySequence::New);
    m_newAction->setIcon(standardIcon(QStyle::SP_FileIcon));
    m_newWindowAction = make(tr("New &Window"), QStringLiteral("newWindowAction"), QKeySequence(tr("Ctrl+Shift+N")));
    m_openAction = make(tr("&Open..."), QStringLiteral("openAction"), QKeySequence::Open);
    m_openAction->setIcon(standardIcon(QStyle::SP_DialogOpenButton));
    m_saveAction = make(tr("&Save"), QStringLiteral("saveAction"), QKeySequence::Save);
    m_saveAction->setIcon(standardIcon(QStyle::SP_DialogSaveButton));
    m_saveAsAction = make(tr("Save &As..."), QStringLiteral("saveAsAction"), QKeySequence::SaveAs);
    m_revertAction = make(tr("Re&vert"), QStringLiteral("revertAction"));
    m_closeAction = make(tr("&Close"), QStringLiteral("closeAction"), QKeySequence::Close);
    m_quitAction = make(tr("&Quit"), QStringLiteral("quitAction"));
    m_quitAction->setShortcuts({QKeySequence(tr("Ctrl+Q"))});
    m_quitAction->setMenuRole(QAction::QuitRole);
    m_clearRecentAction = make(tr("&Clear Menu"), QStringLiteral("clearRecentAction"));

    m_undoAction = m_undoStack->createUndoAction(this, tr("&Undo"));
    m_undoAction->setObjectName(QStringLiteral("undoAction"));
    m_undoAction->setShortcut(QKeySequence::Undo);
    m_undoAction->setIcon(standardIcon(QStyle::SP_ArrowBack));
    m_redoAction = m_undoStack->createRedoAction(this, tr("&Redo"));
    m_redoAction->setObjectName(QStringLiteral("redoAction"));
    m_redoAction->setShortcuts({QKeySequence(tr("Ctrl+Shift+Z")), QKeySequence(tr("Ctrl+Y"))});
    m_redoAction->setIcon(standardIcon(QStyle::SP_ArrowForward));
    m_cutAction = make(tr("Cu&t"), QStringLiteral("cutAction"), QKeySequence::Cut);
    m_copyAction = make(tr("&Copy"), QStringLiteral("copyAction"), QKeySequence::Copy);
    m_pasteAction = make(tr("&Paste"), QStringLiteral("pasteAction"), QKeySequence::Paste);
    m_pasteAsInputAction = make(tr("Paste as &Input"), QStringLiteral("pasteAsInputAction"), QKeySequence(tr("Ctrl+Shift+V")));
    m_deleteAction = make(tr("&Delete"), QStringLiteral("deleteAction"), QKeySequence::Delete);
    m_duplicateAction = make(tr("Dup&licate"), QStringLiteral("duplicateAction"), QKeySequence(tr("Ctrl+D")));
    m_selectAllAction = make(tr("Select &All"), QStringLiteral("selectAllAction"), QKeySequence::SelectAll);
    m_renameAction = make(tr("Rena&me Item"), QStringLiteral("renameAction"), QKeySequence(Qt::Key_F2));
    for (QAction *action : {m_cutAction, m_copyAction, m_pasteAction, m_deleteAction, m_selectAllAction})
        action->setShortcutContext(Qt::WindowShortcut);

    m_zoomInAction = make(tr("Zoom &In"), QStringLiteral("zoomInAction"));
    m_zoomInAction->setShortcuts({QKeySequence::ZoomIn, QKeySequence(tr("Ctrl+="))});
    m_zoomOutAction = make(tr("Zoom &Out"), QStringLiteral("zoomOutAction"), QKeySequence::ZoomOut);
    m_actualSizeAction = make(tr("&Actual Size"), QStringLiteral("actualSizeAction"), QKeySequence(tr("Ctrl+0")));
    m_zoomToFitAction = make(tr("Zoom to &Fit"), QStringLiteral("zoomToFitAction"), QKeySequence(tr("Ctrl+9")));
    m_zoomToFitAction->setIcon(standardIcon(QStyle::SP_TitleBarMaxButton));
    m_snapToGridAction = make(tr("Snap to &Grid"), QStringLiteral("snapToGridAction"));
    m_snapToGridAction->setCheckable(true);
    m_rowColChangesAction = make(tr("Show &Row/Col Changes"), QStringLiteral("rowColChangesAction"));
    m_rowColChangesAction->setCheckable(true);
    m_showAdvancedAction = make(tr("Show Ad&vanced Transforms"), QStringLiteral("showAdvancedAction"));
    m_showAdvancedAction->setCheckable(true);
    m_showTransformPaneAction = make(tr("Show &Transforms Pane"), QStringLiteral("showTransformPaneAction"));
    m_showTransformPaneAction->setCheckable(true);
    m_showTransformPaneAction->setChecked(true);
    m_fullScreenAction = make(tr("F&ull Screen"), QStringLiteral("fullScreenAction"), QKeySequence::FullScreen);
    m_fullScreenAction->setCheckable(true);
    m_desktopThemeAction = make(tr("Follow &Desktop"), QStringLiteral("desktopThemeAction"));
    m_lightThemeAction = make(tr("&Light"), QStringLiteral("lightThemeAction"));
    m_darkThemeAction = make(tr("Dar&k"), QStringLiteral("darkThemeAction"));

    m_addInputAction = make(tr("Add &Input File..."), QStringLiteral("addInputAction"), QKeySequence(tr("Ctrl+I")));
    m_addOutputAction = make(tr("Add &Output File..."), QStringLiteral("addOutputAction"), QKeySequence(tr("Ctrl+E")));
    m_addChartAction = make(tr("Add &Chart"), QStringLiteral("addChartAction"));
    m_addChartAction->setToolTip(tr("Create chart."));
    m_addChartFileAction = make(tr("Add Chart &File..."), QStringLiteral("addChartFileAction"));
    m_addChartFileAction->setToolTip(tr("Create chart and write to file."));
    m_addNoteAction = make(tr("Add &Note"), QStringLiteral("addNoteAction"));
    m_findTransformAction = make(tr("Find Tran&sform..."), QStringLiteral("findTransformAction"), QKeySequence(tr("Ctrl+T")));
    m_tidyLayoutAction = make(tr("Tidy &Layout"), QStringLiteral("tidyLayoutAction"));
    m_openFileAction = make(tr("O&pen File"), QStringLiteral("openFileAction"));
    m_openFolderAction = make(tr("Open Containing Fol&der"), QStringLiteral("openFolderAction"));

    m_runChangesAction = make(tr("Run &Changes"), QStringLiteral("runChangesAction"), QKeySequence::Refresh);
    m_runChangesAction->setIcon(standardIcon(QStyle::SP_MediaPlay));
    m_runEverythingAction = make(tr("Run &Everything"), QStringLiteral("runEverythingAction"), QKeySequence(tr("Ctrl+F5")));
    m_runEverythingAction->setIcon(standardIcon(QStyle::SP_BrowserReload));
    m_runSelectedAction = make(tr("Run &Selected"), QStringLiteral("runSelectedAction"), QKeySequence(tr("Ctrl+Return")));
    m_runSelectedAction->setIcon(standardIcon(QStyle::SP_MediaSeekForward));
    m_runStopAction = make(tr("S&top"), QStringLiteral("runStopAction"), QKeySequence(tr("Shift+F5")));
    m_runStopAction->setIcon(standardIcon(QStyle::SP_MediaStop));
    m_autoRunAction = make(tr("&Auto Run"), QStringLiteral("autoRunAction"), QKeySequence(tr("Ctrl+Shift+R")));
    m_autoRunAction->setCheckable(true);
    m_autoRunAction->setIcon(standardIcon(QStyle::SP_BrowserReload));
    m_aboutAction = make(tr("&About Tabrelle"), QStringLiteral("aboutAction"));
    m_aboutAction->setMenuRole(QAction::AboutRole);
    m_recentDocumentsAction = make(tr("Recent &Documents..."), QStringLiteral("recentDocumentsAction"));
    m_recoveredFlowsAction = make(tr("Recovered &Flows..."), QStringLiteral("recoveredFlowsAction"));
    m_connectToAction = make(tr("Conn&ect To..."), QStringLiteral("connectToAction"), QKeySequence(tr("Ctrl+L")));
    m_connectFromAction =
        make(tr("Connect Fro&m..."), QStringLiteral("connectFromAction"), QKeySequence(tr("Ctrl+Shift+L")));
    m_compareAction = make(tr("&Compare Items..."), QStringLiteral("compareAction"));
    m_exploreKeysAction = make(tr("Explore &Keys..."), QStringLiteral("exploreKeysAction"));
    m_exploreDuplicatesAction = make(tr("Explore &Duplicates..."), QStringLiteral("exploreDuplicatesAction"));
    m_preferencesAction = make(tr("&Preferences..."), QStringLiteral("preferencesAction"));
    m_preferencesAction->setShortcuts(QKeySequence::keyBindings(QKeySequence::Preferences).isEmpty()
            ? QList<QKeySequence> {QKeySequence(tr("Ctrl+,"))}
            : QKeySequence::keyBindings(QKeySequence::Preferences));
    m_preferencesAction->setMenuRole(QAction::PreferencesRole);
    m_findAction = make(tr("&Find in Table..."), QStringLiteral("findAction"), QKeySequence::Find);
    m_findNextAction = make(tr("Find &Next"), QStringLiteral("findNextAction"), QKeySequence::FindNext);
    m_findPreviousAction = make(tr("Find Pre&vious"), QStringLiteral("findPreviousAction"), QKeySequence::FindPrevious);
    m_goToRowAction = make(tr("&Go to Row..."), QStringLiteral("goToRowAction"), QKeySequence(tr("Ctrl+G")));
    m_showWhitespaceAction = make(tr("Show &Whitespace in Table"), QStringLiteral("showWhitespaceAction"));
    m_showWhitespaceAction->setCheckable(true);
    m_showWhitespaceAction->setChecked(m_settings && m_settings->boolValue(QStringLiteral("table_show_whitespace")));
    m_nextPaneAction = make(tr("Next &Pane"), QStringLiteral("nextPaneAction"), QKeySequence(Qt::Key_F6));
    m_previousPaneAction = make(tr("Previous Pa&ne"), QStringLiteral("previousPaneAction"), QKeySequence(Qt::SHIFT + Qt::Key_F6));
    m_saveDefaultsAction = make(tr("Save Options as Defa&ults"), QStringLiteral("saveDefaultsAction"));
    m_restoreDefaultsAction = make(tr("&Restore Default Options"), QStringLiteral("restoreDefaultsAction"));
#ifdef TABRELLE_HAS_ITEM_PANE
    const auto dataPanel = [this]() -> DataPanel * {
        return m_itemPane && m_itemPane->dataPanel() && m_itemPane->dataPanel()->node() ? m_itemPane->dataPanel() : nullptr;
    };
    connect(m_findAction, &QAction::triggered, this, [dataPanel] {
        if (DataPanel *panel = dataPanel())
            panel->openFindBar();
    });
    connect(m_findNextAction, &QAction::triggered, this, [dataPanel] {
        if (DataPanel *panel = dataPanel())
            panel->findBar()->findNext();
    });
    connect(m_findPreviousAction, &QAction::triggered, this, [dataPanel] {
        if (DataPanel *panel = dataPanel())
            panel->findBar()->findPrevious();
    });
    connect(m_goToRowAction, &QAction::triggered, this, [dataPanel] {
        if (DataPanel *panel = dataPanel())
            panel->onGoToRow();
    });
    connect(m_showWhitespaceAction, &QAction::toggled, this, [this](bool on) {
        if (m_settings)
            m_settings->setValue(QStringLiteral("table_show_whitespace"), on);
        if (m_itemPane && m_itemPane->dataPanel() && m_itemPane->dataPanel()->showWhitespace() != on)
            m_itemPane->dataPanel()->setShowWhitespace(on);
    });
    connect(m_saveDefaultsAction, &QAction::triggered, this, [this] {
        if (m_itemPane && m_itemPane->itemWidget() && m_itemPane->itemWidget()->canSaveDefaults())
            m_itemPane->itemWidget()->saveDefaults();
    });
    connect(m_restoreDefaultsAction, &QAction::triggered, this, [this] {
        if (m_itemPane && m_itemPane->itemWidget() && m_itemPane->itemWidget()->canSaveDefaults())
            m_itemPane->itemWidget()->restoreDefaults(false);
    });
#endif
    connect(m_nextPaneAction, &QAction::triggered, this, [this] { focusPane(1); });
    connect(m_previousPaneAction, &QAction::triggered, this, [this] { focusPane(-1); });
    m_helpAction = make(tr("Tabrelle &Help"), QStringLiteral("helpAction"));
    m_shortcutsAction = make(tr("&Keyboard Shortcuts"), QStringLiteral("shortcutsAction"));
    m_itemHelpAction = make(tr("&Help for Item"), QStringLiteral("itemHelpAction"), QKeySequence::HelpContents);
    connect(m_helpAction, &QAction::triggered, this, [] { HelpWindow::showContents(); });
    connect(m_shortcutsAction, &QAction::triggered, this, [this] {
        HelpWindow::setShortcutActions(allActions());
        HelpWindow::showShortcuts();
    });
    connect(m_itemHelpAction, &QAction::triggered, this, [this] {
        HelpWindow::setTransformPrototypes(m_prototypes);
        HelpWindow::setShortcutActions(allActions());
        Node *node = m_view->currentNode();
        if (auto *transformNode = qobject_cast<TransformNode *>(node))
            HelpWindow::showTransform(transformNode->transform()->id());
        else if (node)
            HelpWindow::showItem(node->typeName());
        else
            HelpWindow::showContents();
    });
    connect(m_recentDocumentsAction, &QAction::triggered, this, &MainWindow::showRecentDocuments);
    connect(m_recoveredFlowsAction, &QAction::triggered, this, [this] {
        if (maybeSave())
            offerRecovery();
    });
    connect(m_connectToAction, &QAction::triggered, this, [this] { showConnectDialog(true); });
    connect(m_connectFromAction, &QAction::triggered, this, [this] { showConnectDialog(false); });
    connect(m_compareAction, &QAction::triggered, this, &MainWindow::showCompareDialog);
    connect(m_exploreKeysAction, &QAction::triggered, this, &MainWindow::exploreKeys);
    connect(m_exploreDuplicatesAction, &QAction::triggered, this, &MainWindow::exploreDuplicates);
    connect(m_preferencesAction, &QAction::triggered, this, &MainWindow::showPreferences);
    if (m_settings)
        connect(m_settings, &Settings::changed, this, &MainWindow::applySettingChange);

    // File.
    connect(m_newAction, &QAction::triggered, this, [this] {
        if (maybeSave())
            newDocument();
    });
    connect(m_newWindowAction, &QAction::triggered, this, [] {
        QProcess::startDetached(QCoreApplication::applicationFilePath(), {QStringLiteral("-new_window")});
    });
    connect(m_openAction, &QAction::triggered, this, [this] {
        if (!maybeSave())
            return;
        const QString folder = m_settings ? m_settings->stringValue(QStringLiteral("last_document_folder")) : QString();
        const QString path = FileDialogs::instance()->openFile(this, tr("Open"), folder, tr(FlowFilter));
        if (!path.isEmpty())
            openDocument(path, false);
    });
    connect(m_saveAction, &QAction::triggered, this, &MainWindow::saveDocument);
    connect(m_saveAsAction, &QAction::triggered, this, [this] { saveDocumentAs(QString()); });
    connect(m_revertAction, &QAction::triggered, this, [this] {
        const QString name = QFileInfo(m_documentPath).fileName();
        const int answer = Prompts::instance()->ask(this, tr("Revert"),
            tr("Revert '%1' to its saved version? Changes made since it was saved will be lost.").arg(name), QString(),
            {tr("&Revert"), tr("Cancel")}, 1, 1);
        if (answer == 0)
            openDocument(m_documentPath, false);
    });
    connect(m_closeAction, &QAction::triggered, this, [this] {
        if (maybeSave()) {
            removeRecovery();
            newDocument();
            applyStartupPreference();
        }
    });
    connect(m_quitAction, &QAction::triggered, this, &QWidget::close);
    connect(m_clearRecentAction, &QAction::triggered, this, [this] {
        if (m_settings)
            RecentDocuments::clearUnpinned(m_settings);
    });

    // Edit: the clipboard actions act on the focused text field, else on the canvas.
    connect(m_cutAction, &QAction::triggered, this, [this] {
        QWidget *target = focusTarget();
        if (auto *line = qobject_cast<QLineEdit *>(target))
            line->cut();
        else if (auto *plain = qobject_cast<QPlainTextEdit *>(target))
            plain->cut();
        else if (auto *text = qobject_cast<QTextEdit *>(target))
            text->cut();
        else if (target == m_view)
            m_view->cutSelection();
    });
    connect(m_copyAction, &QAction::triggered, this, [this] {
        QWidget *target = focusTarget();
        if (auto *line = qobject_cast<QLineEdit *>(target))
            line->copy();
        else if (auto *plain = qobject_cast<QPlainTextEdit *>(target))
            plain->copy();
        else if (auto *text = qobject_cast<QTextEdit *>(target))
            text->copy();
        else if (target == m_view)
            m_view->copySelection();
        else if (target) {
            // The data table copies its own cells.
            QKeyEvent press(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
            QCoreApplication::sendEvent(target, &press);
        }
    });
    connect(m_pasteAction, &QAction::triggered, this, [this] {
        QWidget *target = focusTarget();
        if (auto *line = qobject_cast<QLineEdit *>(target))
            line->paste();
        else if (auto *plain = qobject_cast<QPlainTextEdit *>(target))
            plain->paste();
        else if (auto *text = qobject_cast<QTextEdit *>(target))
            text->paste();
        else if (target == m_view)
            m_view->paste(QApplication::clipboard()->mimeData());
    });
    connect(m_pasteAsInputAction, &QAction::triggered, this,
        [this] { m_view->pasteAsInput(QApplication::clipboard()->text()); });
    connect(m_deleteAction, &QAction::triggered, this, [this] {
        QWidget *target = focusTarget();
        if (auto *line = qobject_cast<QLineEdit *>(target))
            line->del();
        else if (auto *plain = qobject_cast<QPlainTextEdit *>(target))
            plain->textCursor().removeSelectedText();
        else if (target == m_view)
            m_view->deleteSelection();
    });
    connect(m_duplicateAction, &QAction::triggered, m_view, &GraphView::duplicateSelection);
    connect(m_renameAction, &QAction::triggered, this, [this] {
        Node *node = m_view->currentNode();
        if (!qobject_cast<IONode *>(node) || m_runActive)
            return;
        bool ok = false;
        const QString name =
            QInputDialog::getText(this, tr("Rename"), tr("Name"), QLineEdit::Normal, node->name(), &ok);
        if (ok && name != node->name()) {
            UndoScope scope(m_scene, m_undoStack, tr("rename"));
            node->setName(name);
        }
    });
    connect(m_selectAllAction, &QAction::triggered, this, [this] {
        QWidget *target = focusTarget();
        if (auto *line = qobject_cast<QLineEdit *>(target))
            line->selectAll();
        else if (auto *plain = qobject_cast<QPlainTextEdit *>(target))
            plain->selectAll();
        else if (auto *view = qobject_cast<QAbstractItemView *>(target))
            view->selectAll();
        else
            m_view->selectAllItems();
    });

    // View.
    connect(m_zoomInAction, &QAction::triggered, this, [this] { m_view->zoomBy(1.25); });
    connect(m_zoomOutAction, &QAction::triggered, this, [this] { m_view->zoomBy(0.8); });
    connect(m_actualSizeAction, &QAction::triggered, this, [this] { m_view->setZoom(1.0); });
    connect(m_zoomToFitAction, &QAction::triggered, m_view, &GraphView::zoomToFit);
    connect(m_snapToGridAction, &QAction::triggered, this, [this](bool on) {
        m_view->setSnapToGrid(on);
        m_properties.snapToGrid = on;
        setUnrecordedChange();
    });
    connect(m_rowColChangesAction, &QAction::toggled, this, [this](bool on) {
        GraphViewPainter::instance()->setShowSizeChanges(on);
        if (m_settings)
            m_settings->setValue(QStringLiteral("show_row_col_changes"), on);
        m_view->viewport()->update();
    });
    connect(m_showAdvancedAction, &QAction::toggled, this, [this](bool on) {
        if (m_transformPane)
            m_transformPane->setShowAdvanced(on);
    });
    connect(m_showTransformPaneAction, &QAction::toggled, this, [this](bool on) {
        QList<int> sizes = m_mainSplitter->sizes();
        if (on && sizes.value(0) == 0) {
            sizes[0] = 260;
            sizes[1] = qMax(300, sizes[1] - 260);
        } else if (!on) {
            sizes[1] += sizes[0];
            sizes[0] = 0;
        }
        m_mainSplitter->setSizes(sizes);
    });
    connect(m_fullScreenAction, &QAction::toggled, this, [this](bool on) { on ? showFullScreen() : showNormal(); });
    auto *themes = new QActionGroup(this);
    for (QAction *action : {m_desktopThemeAction, m_lightThemeAction, m_darkThemeAction}) {
        action->setCheckable(true);
        themes->addAction(action);
    }
    const int theme = m_settings ? m_settings->intValue(QStringLiteral("theme")) : 0;
    (theme == 1 ? m_lightThemeAction : theme == 2 ? m_darkThemeAction : m_desktopThemeAction)->setChecked(true);
    const auto applyTheme = [this](int which) {
        if (m_settings)
            m_settings->setValue(QStringLiteral("theme"), which);
        bool dark = which == 2;
        if (which == 0) {
            dark = QApplication::palette().color(QPalette::Window).lightness() < 128;
        } else {
            // A forced theme: the Fusion style with a palette built from the canvas colours.
            QApplication::setStyle(QStringLiteral("Fusion"));
            const CanvasTheme colours = dark ? CanvasTheme::dark() : CanvasTheme::light();
            QPalette palette;
            const QColor window = dark ? QColor(0x2B, 0x2B, 0x2B) : QColor(0xEF, 0xEF, 0xEF);
            palette.setColor(QPalette::Window, window);
            palette.setColor(QPalette::WindowText, colours.text);
            palette.setColor(QPalette::Base, colours.itemFill);
            palette.setColor(QPalette::AlternateBase, dark ? QColor(0x33, 0x33, 0x33) : QColor(0xF5, 0xF5, 0xF5));
            palette.setColor(QPalette::Text, colours.text);
            palette.setColor(QPalette::Button, window);
            palette.setColor(QPalette::ButtonText, colours.text);
            palette.setColor(QPalette::ToolTipBase, colours.itemFill);
            palette.setColor(QPalette::ToolTipText, colours.text);
            palette.setColor(QPalette::Highlight, colours.accent);
            palette.setColor(QPalette::HighlightedText, Qt::white);
            palette.setColor(QPalette::Link, colours.accent);
            palette.setColor(QPalette::PlaceholderText, colours.secondaryText);
            for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
                palette.setColor(QPalette::Disabled, role, colours.secondaryText);
            QApplication::setPalette(palette);
        }
        CanvasTheme::setDark(dark);
        if (m_scene)
            m_scene->update();
        m_view->viewport()->update();
    };
    connect(m_desktopThemeAction, &QAction::triggered, this, [applyTheme] { applyTheme(0); });
    connect(m_lightThemeAction, &QAction::triggered, this, [applyTheme] { applyTheme(1); });
    connect(m_darkThemeAction, &QAction::triggered, this, [applyTheme] { applyTheme(2); });
    applyTheme(theme);
    if (m_settings) {
        m_rowColChangesAction->setChecked(m_settings->boolValue(QStringLiteral("show_row_col_changes")));
        m_showAdvancedAction->setChecked(m_settings->boolValue(QStringLiteral("show_advanced_transforms")));
    }

    // Item.
    connect(m_addInputAction, &QAction::triggered, this, [this] {
        const QString folder = m_settings ? m_settings->stringValue(QStringLiteral("last_input_folder")) : QString();
        const QStringList files = FileDialogs::instance()->openFiles(this, tr("Add Input File"), folder, tr(DataFilter));
        if (files.isEmpty())
            return;
        if (m_settings)
            m_settings->setValue(QStringLiteral("last_input_folder"), QFileInfo(files.first()).absolutePath());
        m_view->addInputFiles(files);
    });
    connect(m_addOutputAction, &QAction::triggered, this, [this] {
        QString folder = m_settings ? m_settings->stringValue(QStringLiteral("last_output_folder")) : QString();
        if (folder.isEmpty() && !m_documentPath.isEmpty())
            folder = QFileInfo(m_documentPath).absolutePath();
        const QString proposed = folder.isEmpty() ? tr("Output.csv") : QDir(folder).filePath(tr("Output.csv"));
        const QString path = FileDialogs::instance()->saveFile(this, tr("Add Output File"), proposed, tr(DataFilter));
        if (path.isEmpty())
            return;
        if (m_settings)
            m_settings->setValue(QStringLiteral("last_output_folder"), QFileInfo(path).absolutePath());
        m_view->addOutput(path);
    });
    connect(m_addChartAction, &QAction::triggered, this, [this] { m_view->addChart(); });
    connect(m_addChartFileAction, &QAction::triggered, this, [this] {
        QString folder = m_settings ? m_settings->stringValue(QStringLiteral("last_output_folder")) : QString();
        if (folder.isEmpty() && !m_documentPath.isEmpty())
            folder = QFileInfo(m_documentPath).absolutePath();
        const QString proposed = folder.isEmpty() ? tr("Chart.png") : QDir(folder).filePath(tr("Chart.png"));
        const QString path = FileDialogs::instance()->saveFile(
            this, tr("Add Chart File"), proposed, tr("Images (*.png *.jpg *.jpeg);;PDF (*.pdf)"));
        if (path.isEmpty())
            return;
        if (m_settings)
            m_settings->setValue(QStringLiteral("last_output_folder"), QFileInfo(path).absolutePath());
        m_view->addChart(path);
    });
    connect(m_addNoteAction, &QAction::triggered, this, [this] { m_view->addNote(); });
    connect(m_findTransformAction, &QAction::triggered, this, [this] {
        m_showTransformPaneAction->setChecked(true);
        m_transformPane->focusSearch();
    });
    connect(m_tidyLayoutAction, &QAction::triggered, m_view, &GraphView::tidyLayout);
    connect(m_openFileAction, &QAction::triggered, this, [this] {
        if (auto *io = qobject_cast<IONode *>(m_view->currentNode()))
            QDesktopServices::openUrl(QUrl::fromLocalFile(io->path()));
    });
    connect(m_openFolderAction, &QAction::triggered, this, [this] {
        if (auto *io = qobject_cast<IONode *>(m_view->currentNode()))
            QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(io->path()).absolutePath()));
    });

    // Run.
    connect(m_runChangesAction, &QAction::triggered, this, [this] {
        if (m_scene && !m_scene->isRunning())
            m_scene->runChanges();
    });
    connect(m_runEverythingAction, &QAction::triggered, this, [this] {
        if (m_scene && !m_scene->isRunning())
            m_scene->runEverything();
    });
    connect(m_runSelectedAction, &QAction::triggered, this, [this] {
        if (m_scene && !m_scene->isRunning())
            m_scene->runSelected();
    });
    connect(m_runStopAction, &QAction::triggered, this, [this] {
        if (!m_scene || !m_scene->isRunning())
            return;
        const bool wasAuto = m_scene->isAutoRun();
        m_scene->stopRun();
        showStatus(tr("Run stopped by user"), 2000);
        if (wasAuto) {
            m_autoRunAction->setChecked(false);
            showBalloon(tr("Auto run"), tr("Click here to go back to auto running changes."), m_autoRunAction,
                [this] { m_autoRunAction->trigger(); });
        }
    });
    connect(m_autoRunAction, &QAction::triggered, this, [this](bool on) {
        if (!m_scene)
            return;
        m_scene->setAutoRun(on);
        m_properties.autoRun = on;
        setUnrecordedChange();
        updateRunActions();
        if (on)
            m_scene->runChanges();
    });
    connect(m_aboutAction, &QAction::triggered, this, &MainWindow::showAbout);

    // Escape stops a run while the canvas has focus.
    auto *escape = new QAction(m_view);
    escape->setShortcut(Qt::Key_Escape);
    escape->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    escape->setEnabled(false);
    m_view->addAction(escape);
    connect(escape, &QAction::triggered, m_runStopAction, &QAction::trigger);
    connect(m_runStopAction, &QAction::changed, escape, [this, escape] { escape->setEnabled(m_runStopAction->isEnabled()); });
    auto *home = new QAction(m_view);
    home->setShortcut(Qt::Key_Home);
    home->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_view->addAction(home);
    connect(home, &QAction::triggered, m_view, &GraphView::zoomToFit);
}

QMenu *MainWindow::createTransformMenu(const QString &title, QWidget *parent, const QPointF *at)
{
    auto *menu = new QMenu(title, parent);
    const bool advanced = m_transformPane ? m_transformPane->showAdvanced() : false;
    for (int c = 1; c <= int(TransformCategory::Other); ++c) {
        QMenu *sub = menu->addMenu(categoryText(TransformCategory(c), true));
        QList<Transform *> list;
        for (Transform *transform : qAsConst(m_prototypes)) {
            if (int(transform->category()) == c && (advanced || !transform->isAdvanced()))
                list << transform;
        }
        std::sort(list.begin(), list.end(), [](Transform *a, Transform *b) {
            return QString::localeAwareCompare(a->name(), b->name()) < 0;
        });
        for (Transform *transform : qAsConst(list)) {
            QAction *action = sub->addAction(transform->name());
            action->setEnabled(!m_scene || !m_scene->isRunning());
            const QPointF point = at ? *at : QPointF();
            const bool hasPoint = at != nullptr;
            connect(action, &QAction::triggered, this, [this, transform, point, hasPoint] {
                m_view->addTransform(transform, hasPoint ? &point : nullptr);
            });
        }
    }
    return menu;
}

void MainWindow::createMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(m_newAction);
    file->addAction(m_newWindowAction);
    file->addAction(m_openAction);
    m_recentMenu = file->addMenu(tr("Open &Recent"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &MainWindow::rebuildRecentMenu);
    file->addAction(m_recentDocumentsAction);
    file->addSeparator();
    file->addAction(m_saveAction);
    file->addAction(m_saveAsAction);
    file->addAction(m_revertAction);
    file->addAction(m_recoveredFlowsAction);
    file->addSeparator();
    file->addAction(m_closeAction);
    file->addAction(m_quitAction);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(m_undoAction);
    edit->addAction(m_redoAction);
    edit->addSeparator();
    edit->addAction(m_cutAction);
    edit->addAction(m_copyAction);
    edit->addAction(m_pasteAction);
    edit->addAction(m_pasteAsInputAction);
    edit->addAction(m_deleteAction);
    edit->addAction(m_duplicateAction);
    edit->addAction(m_selectAllAction);
    edit->addSeparator();
    edit->addAction(m_findAction);
    edit->addAction(m_findNextAction);
    edit->addAction(m_findPreviousAction);
    edit->addAction(m_goToRowAction);
    edit->addSeparator();
    edit->addAction(m_renameAction);

    QMenu *view = menuBar()->addMenu(tr("&View"));
    view->addAction(m_zoomInAction);
    view->addAction(m_zoomOutAction);
    view->addAction(m_actualSizeAction);
    view->addAction(m_zoomToFitAction);
    view->addSeparator();
    view->addAction(m_snapToGridAction);
    view->addAction(m_rowColChangesAction);
    view->addAction(m_showWhitespaceAction);
    view->addAction(m_showAdvancedAction);
    view->addAction(m_showTransformPaneAction);
    m_viewMenuForDocks = view;
    QMenu *theme = view->addMenu(tr("Th&eme"));
    theme->addAction(m_desktopThemeAction);
    theme->addAction(m_lightThemeAction);
    theme->addAction(m_darkThemeAction);
    view->addAction(m_fullScreenAction);
    view->addSeparator();
    view->addAction(m_nextPaneAction);
    view->addAction(m_previousPaneAction);

    QMenu *item = menuBar()->addMenu(tr("&Item"));
    item->addAction(m_addInputAction);
    item->addAction(m_addOutputAction);
    item->addAction(m_addChartAction);
    item->addAction(m_addChartFileAction);
    item->addAction(m_addNoteAction);
    m_addTransformMenu = item->addMenu(tr("Add &Transform"));
    connect(m_addTransformMenu, &QMenu::aboutToShow, this, [this] {
        m_addTransformMenu->clear();
        QMenu *built = createTransformMenu(QString(), m_addTransformMenu, nullptr);
        for (QAction *action : built->actions())
            m_addTransformMenu->addAction(action);
    });
    item->addAction(m_findTransformAction);
    item->addSeparator();
    item->addAction(m_connectToAction);
    item->addAction(m_connectFromAction);
    item->addAction(m_tidyLayoutAction);
    item->addAction(m_openFileAction);
    item->addAction(m_openFolderAction);
    item->addSeparator();
    item->addAction(m_saveDefaultsAction);
    item->addAction(m_restoreDefaultsAction);
    item->addAction(m_itemHelpAction);

    QMenu *run = menuBar()->addMenu(tr("&Run"));
    run->addAction(m_runChangesAction);
    run->addAction(m_runEverythingAction);
    run->addAction(m_runSelectedAction);
    run->addAction(m_runStopAction);
    run->addSeparator();
    run->addAction(m_autoRunAction);

    QMenu *tools = menuBar()->addMenu(tr("&Tools"));
    tools->addAction(m_compareAction);
    tools->addAction(m_exploreKeysAction);
    tools->addAction(m_exploreDuplicatesAction);
    tools->addSeparator();
    tools->addAction(m_preferencesAction);

    QMenu *help = menuBar()->addMenu(tr("&Help"));
    help->addAction(m_helpAction);
    help->addAction(m_shortcutsAction);
    m_examplesMenu = help->addMenu(tr("&Examples"));
    connect(m_examplesMenu, &QMenu::aboutToShow, this, [this] {
        m_examplesMenu->clear();
        const QString base = QCoreApplication::applicationDirPath();
        QStringList folders {QDir(base).filePath(QStringLiteral("examples")),
            QDir(base).filePath(QStringLiteral("../examples")), QDir(base).filePath(QStringLiteral("../share/tabrelle/examples"))};
        for (const QString &folder : qAsConst(folders)) {
            const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.tflow")}, QDir::Files, QDir::Name);
            for (const QFileInfo &file : files) {
                const QString path = file.absoluteFilePath();
                QAction *action = m_examplesMenu->addAction(file.fileName());
                action->setStatusTip(QDir::toNativeSeparators(path));
                connect(action, &QAction::triggered, this, [this, path] { openDocument(path); });
            }
            if (!files.isEmpty())
                break;
        }
        if (m_examplesMenu->isEmpty())
            m_examplesMenu->addAction(tr("No examples found"))->setEnabled(false);
    });
    help->addSeparator();
    help->addAction(m_aboutAction);
}

void MainWindow::createToolBar()
{
    m_toolBar = addToolBar(tr("Main"));
    m_toolBar->setObjectName(QStringLiteral("mainToolBar"));

    m_toolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_toolBar->addAction(m_newAction);
    m_toolBar->addAction(m_openAction);
    m_toolBar->addAction(m_saveAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_undoAction);
    m_toolBar->addAction(m_redoAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_runChangesAction);
    m_toolBar->addAction(m_runEverythingAction);
    m_toolBar->addAction(m_runSelectedAction);
    m_toolBar->addAction(m_runStopAction);
    m_toolBar->addAction(m_autoRunAction);
    m_toolBar->addSeparator();
    m_toolBar->addAction(m_zoomToFitAction);
    // Tool tips: the text without mnemonics, and the shortcut in brackets.
    for (QAction *action : m_toolBar->actions()) {
        if (action->isSeparator())
            continue;
        QString tip = action->text().remove(QLatin1Char('&'));
        if (!action->shortcut().isEmpty())
            tip += QStringLiteral(" (%1)").arg(action->shortcut().toString(QKeySequence::NativeText));
        action->setToolTip(tip);
    }
    m_toolBar->toggleViewAction()->setText(tr("Tool &Bar"));
    m_viewMenuForDocks->addAction(m_toolBar->toggleViewAction());
}

void MainWindow::createDocks()
{
    m_messagesDock = new QDockWidget(tr("Messages"), this);
    m_messagesDock->setObjectName(QStringLiteral("messagesDock"));
    m_logTextEdit = new QPlainTextEdit(m_messagesDock);
    m_logTextEdit->setReadOnly(true);
    m_logTextEdit->setMaximumBlockCount(10000);
    m_logTextEdit->setAccessibleName(tr("Messages"));
    m_messagesDock->setWidget(m_logTextEdit);
    addDockWidget(Qt::BottomDockWidgetArea, m_messagesDock);
    resizeDocks({m_messagesDock}, {120}, Qt::Vertical);
    QAction *messages = m_messagesDock->toggleViewAction();
    messages->setText(tr("&Messages"));
    messages->setShortcut(QKeySequence(tr("Ctrl+Shift+M")));
    m_viewMenuForDocks->addAction(messages);

    m_undoDock = new QDockWidget(tr("Undo History"), this);
    m_undoDock->setObjectName(QStringLiteral("undoDock"));
    m_undoDock->setWidget(new QUndoView(m_undoStack, m_undoDock));
    addDockWidget(Qt::RightDockWidgetArea, m_undoDock);
    m_undoDock->hide();
    QAction *history = m_undoDock->toggleViewAction();
    history->setText(tr("Undo &History"));
    m_viewMenuForDocks->addAction(history);
}

void MainWindow::createStatusBar()
{
    m_progressBar = new QProgressBar(this);
    m_progressBar->setFixedWidth(120);
    m_progressBar->setRange(0, 100);
    m_progressBar->setFormat(QStringLiteral("%p%"));
    m_progressBar->setAccessibleName(tr("Run progress"));
    m_progressBar->hide();
    m_stopButton = new QToolButton(this);
    m_stopButton->setDefaultAction(m_runStopAction);
    m_stopButton->hide();
    m_memoryLabel = new QLabel(this);
    m_memoryLabel->setAccessibleName(tr("Memory use"));
    m_memoryLabel->setToolTip(tr("Memory used by Tabrelle, and the maximum set in 'Preferences'"));
    m_autoRunLabel = new QLabel(this);
    m_autoRunLabel->setAccessibleName(tr("Auto Run"));
    m_autoRunLabel->setCursor(Qt::PointingHandCursor);
    m_autoRunLabel->installEventFilter(this);
    statusBar()->addPermanentWidget(m_progressBar);
    statusBar()->addPermanentWidget(m_stopButton);
    statusBar()->addPermanentWidget(m_memoryLabel);
    statusBar()->addPermanentWidget(m_autoRunLabel);
    statusBar()->showMessage(tr("Ready"));
    m_memoryTimer = new QTimer(this);
    connect(m_memoryTimer, &QTimer::timeout, this, &MainWindow::updateMemoryLabel);
    m_memoryTimer->start(2000);
    updateMemoryLabel();
}

QList<QAction *> MainWindow::allActions() const
{
    return findChildren<QAction *>();
}

QAction *MainWindow::action(const QString &objectName) const
{
    return findChild<QAction *>(objectName);
}

// ----- documents

void MainWindow::setScene(GraphScene *scene)
{
    GraphScene *old = m_scene;
    m_view->setGraphScene(nullptr, nullptr);
#ifdef TABRELLE_HAS_ITEM_PANE
    m_itemPane->setCurrentNode(nullptr);
    m_itemPane->setScene(nullptr, m_undoStack);
#endif
    m_undoStack->clear();
    m_scene = scene;
    m_scene->setSettings(m_settings);
    m_scene->setMemoryLimitHandler([this](double used, double &newLimit) { return askMemoryLimit(used, newLimit); });
    connect(m_scene, &GraphScene::statusMessage, this, &MainWindow::showStatus);
    connect(m_scene, &GraphScene::logMessage, this, &MainWindow::appendLog);
    connect(m_scene, &GraphScene::runningChanged, this, &MainWindow::onRunningChanged);
    connect(m_scene, &GraphScene::progressChanged, this, [this](int percent) {
        m_progressBar->setValue(percent);
        m_progressBar->setToolTip(
            tr("%1 of %2 item(s)").arg(m_scene->itemsProcessed()).arg(m_scene->itemsToProcess()));
    });
    connect(m_scene, &GraphScene::refreshRequested, this, [this] {
#ifdef TABRELLE_HAS_ITEM_PANE
        m_itemPane->refresh();
#endif
        updateRunActions();
    });
    connect(m_scene, &GraphScene::autoRunChanged, this, [this](bool on) {
        m_autoRunAction->setChecked(on);
        updateRunActions();
    });
    connect(m_scene, &GraphScene::memoryUsageChanged, this, [this] { updateMemoryLabel(); });
    connect(m_scene, &QGraphicsScene::selectionChanged, this, &MainWindow::updateActions);
    connect(m_scene, &QGraphicsScene::changed, this, [this] { onRunChangesMaybeAvailable(); });
    m_view->setGraphScene(m_scene, m_undoStack);
#ifdef TABRELLE_HAS_ITEM_PANE
    m_itemPane->setScene(m_scene, m_undoStack);
#endif
    delete old;
    m_view->setSnapToGrid(m_properties.snapToGrid);
    m_snapToGridAction->setChecked(m_properties.snapToGrid);
    m_scene->setAutoRun(m_properties.autoRun);
    m_autoRunAction->setChecked(m_properties.autoRun);
    m_unrecordedChange = false;
    m_undoStack->setClean();
    updateTitle();
    updateActions();
}

void MainWindow::newDocument()
{
    m_properties = DocumentProperties();
    m_properties.autoRun = true;
    m_documentPath.clear();
    m_recovered = false;
    setScene(new GraphScene(this));
    m_view->setZoom(1.0);
    m_view->centerOn(QPointF(300, 200));
}

bool MainWindow::openDocument(const QString &path, bool askToSave)
{
    if (m_runActive)
        return false;
    if (askToSave && !maybeSave())
        return false;
    auto *scene = new GraphScene(this);
    QString error;
    QString warnings;
    DocumentProperties properties;
    m_reading = true;
    const bool ok = Document::openDocument(*scene, path, &error, &warnings, &properties);
    m_reading = false;
    if (!ok) {
        delete scene;
        Prompts::instance()->warning(this, tr("Open"), tr("Unable to open '%1': %2").arg(QDir::toNativeSeparators(path), error));
        return false;
    }
    removeRecovery();
    m_properties = properties;
    m_documentPath = QFileInfo(path).absoluteFilePath();
    m_recovered = false;
    setScene(scene);
    m_unrecordedChange = properties.changed;
    updateTitle();
    if (m_settings) {
        m_settings->setValue(QStringLiteral("last_document_folder"), QFileInfo(path).absolutePath());
        RecentDocuments::add(m_settings, m_documentPath);
    }
    appendLog(tr("Opened: %1").arg(QDir::toNativeSeparators(m_documentPath)));
    // A flow from a later version may have lost what this version can't read: a warning.
    if (!warnings.isEmpty() && properties.laterVersion)
        Prompts::instance()->warning(this, tr("Open"), warnings);
    else if (!warnings.isEmpty())
        Prompts::instance()->information(this, tr("Open"), warnings);
    afterInteractiveOpen(properties);
    QTimer::singleShot(0, this, [this] {
        m_view->zoomToFit();
        if (m_scene && m_scene->isAutoRun())
            m_scene->runChanges();
    });
    return true;
}

bool MainWindow::saveDocument()
{
    if (m_documentPath.isEmpty())
        return saveDocumentAs(QString());
    // A recovered flow must not silently replace a file changed since it was kept.
    if (m_recovered && m_recoveredAt.isValid() && QFileInfo::exists(m_documentPath)
        && QFileInfo(m_documentPath).lastModified() > m_recoveredAt) {
        const int answer = Prompts::instance()->ask(this, tr("Save"),
            tr("'%1' has changed since this flow was saved for recovery. Replace it with the recovered flow?")
                .arg(QFileInfo(m_documentPath).fileName()),
            QString(), {tr("&Replace"), tr("Save &As..."), tr("Cancel")}, 2, 2);
        if (answer == 1) {
            const QDateTime kept = m_recoveredAt;
            m_recoveredAt = QDateTime();
            const bool saved = saveDocumentAs(QString());
            if (!saved)
                m_recoveredAt = kept;
            return saved;
        }
        if (answer != 0)
            return false;
    }
    QString error;
    m_properties.autoRun = m_scene->isAutoRun();
    m_properties.snapToGrid = m_view->snapToGrid();
    m_properties.docPath = m_documentPath;
    if (!Document::writeDocument(m_documentPath, *m_scene, m_properties, &error)) {
        Prompts::instance()->warning(this, tr("Save"), error);
        return false;
    }
    markSaved(m_documentPath);
    return true;
}

bool MainWindow::saveDocumentAs(const QString &givenPath)
{
    QString path = givenPath;
    if (path.isEmpty()) {
        QString folder = m_settings ? m_settings->stringValue(QStringLiteral("last_document_folder")) : QString();
        const QString name = m_documentPath.isEmpty() ? tr("Untitled.tflow") : QFileInfo(m_documentPath).fileName();
        const QString proposed = m_documentPath.isEmpty() ? (folder.isEmpty() ? name : QDir(folder).filePath(name))
                                                          : m_documentPath;
        path = FileDialogs::instance()->saveFile(this, tr("Save As"), proposed, tr(SaveFilter));
        if (path.isEmpty())
            return false;
    }
    if (QFileInfo(path).suffix().compare(QLatin1String("tflow"), Qt::CaseInsensitive) != 0)
        path += QStringLiteral(".tflow");
    const QString previous = m_documentPath;
    m_documentPath = QFileInfo(path).absoluteFilePath();
    if (!saveDocument()) {
        m_documentPath = previous;
        return false;
    }
    if (m_settings)
        m_settings->setValue(QStringLiteral("last_document_folder"), QFileInfo(path).absolutePath());
    return true;
}

void MainWindow::markSaved(const QString &path)
{
    m_undoStack->setClean();
    m_unrecordedChange = false;
    m_recovered = false;
    removeRecovery();
    if (m_settings)
        RecentDocuments::add(m_settings, path);
    showStatus(tr("Saved '%1'").arg(QDir::toNativeSeparators(path)));
    updateTitle();
    updateActions();
}

bool MainWindow::isDocumentModified() const
{
    return !m_undoStack->isClean() || m_unrecordedChange;
}

void MainWindow::setUnrecordedChange()
{
    m_unrecordedChange = true;
    updateTitle();
}

bool MainWindow::maybeSave()
{
    if (!isDocumentModified())
        return true;
    const QString name = m_documentPath.isEmpty() ? tr("Untitled") : QFileInfo(m_documentPath).fileName();
    const int answer = Prompts::instance()->ask(this, QCoreApplication::applicationName(),
        tr("Do you want to save the changes you made to '%1'?").arg(name),
        tr("Your changes will be lost if you don't save them."), {tr("Save"), tr("Don't Save"), tr("Cancel")}, 0, 2);
    if (answer == 0)
        return saveDocument();
    return answer == 1;
}

void MainWindow::updateTitle()
{
    QString name = m_documentPath.isEmpty() ? tr("Untitled") : QFileInfo(m_documentPath).fileName();
    if (m_recovered)
        name += tr(" (recovered)");
    setWindowTitle(tr("%1[*] - Tabrelle").arg(name));
    setWindowModified(isDocumentModified());
}

void MainWindow::rebuildRecentMenu()
{
    m_recentMenu->clear();
    const QList<RecentDocuments::Entry> entries = m_settings ? RecentDocuments::entries(m_settings)
                                                             : QList<RecentDocuments::Entry>();
    int number = 1;
    for (const RecentDocuments::Entry &entry : entries) {
        const QString name = QFileInfo(entry.path).fileName();
        QString text;
        if (number <= 9)
            text = QStringLiteral("&%1 %2").arg(number).arg(name);
        else if (number == 10)
            text = QStringLiteral("1&0 %1").arg(name);
        else
            text = name;
        ++number;
        QAction *action = m_recentMenu->addAction(text);
        action->setStatusTip(QDir::toNativeSeparators(entry.path));
        const QString path = entry.path;
        connect(action, &QAction::triggered, this, [this, path] {
            if (!QFileInfo::exists(path)) {
                const int answer = Prompts::instance()->ask(this, tr("Open Recent"),
                    tr("'%1' not found.").arg(QDir::toNativeSeparators(path)),
                    tr("Remove it from the list of recent documents?"), {tr("Remove"), tr("Keep")}, 1, 1);
                if (answer == 0 && m_settings)
                    RecentDocuments::remove(m_settings, path);
                return;
            }
            openDocument(path);
        });
    }
    m_recentMenu->addSeparator();
    m_recentMenu->addAction(m_clearRecentAction);
}

// ----- recovery

QString MainWindow::recoveryFolder(Settings *settings)
{
    if (settings && settings->isPortable())
        return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("recovery"));
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)).filePath(QStringLiteral("recovery"));
}

QString MainWindow::recoveryPath() const
{
    return QDir(recoveryFolder(m_settings)).filePath(QStringLiteral("recovery-%1.tflow").arg(QCoreApplication::applicationPid()));
}

void MainWindow::writeRecovery()
{
    if (m_recoveryOff || m_reading || !m_scene || !isDocumentModified())
        return;
    const QByteArray state = UndoState::capture(*m_scene);
    if (state == m_lastRecoveryState)
        return;
    const QString folder = recoveryFolder(m_settings);
    if (!QDir().mkpath(folder)) {
        m_recoveryOff = true;
        const QString message = tr("Recovery information can't be saved in '%1'.").arg(QDir::toNativeSeparators(folder));
        showStatus(message);
        appendLog(message);
        return;
    }
    if (!m_recoveryLock) {
        m_recoveryLock = new QLockFile(recoveryPath() + QStringLiteral(".lock"));
        m_recoveryLock->setStaleLockTime(0);
        m_recoveryLock->tryLock(0);
    }
    DocumentProperties properties = m_properties;
    properties.docPath = m_documentPath;
    // Written through a save file, so that a crash while writing leaves the last one whole;
    // doc_path names the document itself, not the recovery file.
    const QByteArray text = Document::documentText(*m_scene, properties);
    QSaveFile file(recoveryPath());
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
        m_lastRecoveryState = state;
}

QStringList MainWindow::recoverableFiles()
{
    releaseRecoveryLocks();
    const QDir folder(recoveryFolder(m_settings));
    const QStringList files = folder.entryList({QStringLiteral("recovery-*.tflow")}, QDir::Files, QDir::Time);
    const QString own = QFileInfo(recoveryPath()).fileName();
    QStringList offered;
    for (const QString &file : files) {
        if (file == own)
            continue;
        const QString path = folder.filePath(file);
        // A lock held by a live process belongs to an open window; a stale one is taken over.
        auto *lock = new QLockFile(path + QStringLiteral(".lock"));
        if (!lock->tryLock(0)) {
            delete lock;
            continue;
        }
        m_offeredLocks << lock;
        offered << path;
    }
    return offered;
}

void MainWindow::releaseRecoveryLocks()
{
    qDeleteAll(m_offeredLocks);
    m_offeredLocks.clear();
}

bool MainWindow::offerRecovery()
{
    for (;;) {
        const QStringList files = recoverableFiles();
        if (files.isEmpty())
            return false;
        RecoveryDialog dialog(files, this);
        const bool accepted = DialogRunner::exec(&dialog) == QDialog::Accepted;
        const QString path = dialog.chosenFile();
        if (!accepted || dialog.choice() == RecoveryDialog::DecideLater || path.isEmpty()) {
            releaseRecoveryLocks();
            return false;
        }
        const QString name = QFileInfo(RecoveryDialog::documentPath(path)).fileName();
        if (dialog.choice() == RecoveryDialog::Discard) {
            const int sure = Prompts::instance()->ask(this, tr("Recover Flows"),
                tr("Discard the recovered flow '%1'? This can't be undone.").arg(name.isEmpty() ? tr("Untitled") : name),
                QString(), {tr("&Discard"), tr("Cancel")}, 1, 1);
            if (sure == 0) {
                releaseRecoveryLocks();
                QFile::remove(path);
                QFile::remove(path + QStringLiteral(".lock"));
            }
            continue;
        }
        auto *scene = new GraphScene(this);
        QString error;
        QString warnings;
        DocumentProperties properties;
        if (!Document::openDocument(*scene, path, &error, &warnings, &properties)) {
            delete scene;
            releaseRecoveryLocks();
            Prompts::instance()->warning(
                this, tr("Recover Flows"), tr("Unable to open '%1': %2").arg(QDir::toNativeSeparators(path), error));
            return false;
        }
        m_properties = properties;
        m_documentPath = properties.docPath.isEmpty() ? QString() : QFileInfo(properties.docPath).absoluteFilePath();
        m_recoveredAt = QFileInfo(path).lastModified();
        setScene(scene);
        m_recovered = true;
        m_unrecordedChange = true;
        updateTitle();
        // This process keeps its own recovery file from now on.
        releaseRecoveryLocks();
        QFile::remove(path);
        QFile::remove(path + QStringLiteral(".lock"));
        writeRecovery();
        if (!warnings.isEmpty())
            Prompts::instance()->information(this, tr("Recover Flows"), warnings);
        return true;
    }
}

void MainWindow::startUp(const QString &commandLinePath)
{
    if (offerRecovery())
        return;
    if (!commandLinePath.isEmpty()) {
        openDocument(commandLinePath, false);
        return;
    }
    applyStartupPreference();
}

void MainWindow::applyStartupPreference()
{
    const int action = m_settings ? m_settings->intValue(QStringLiteral("startup_action")) : 1;
    if (action == 2) {
        QString path = m_settings->stringValue(QStringLiteral("startup_document"));
        if (!path.isEmpty() && QFileInfo(path).isRelative())
            path = QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(path);
        if (!path.isEmpty()) {
            if (!QFileInfo::exists(path))
                Prompts::instance()->warning(this, tr("Open"),
                    tr("Unable to open '%1': %2").arg(QDir::toNativeSeparators(path), tr("the file does not exist")));
            else
                openDocument(path, false);
        }
        return;
    }
    // With nothing recent, the recent documents dialog would be empty: an empty flow it is.
    if (action == 0 && m_settings && !RecentDocuments::entries(m_settings).isEmpty())
        showRecentDocuments();
}

void MainWindow::showRecentDocuments()
{
    if (m_runActive)
        return;
    RecentDocumentsDialog dialog(m_settings, this);
    if (DialogRunner::exec(&dialog) != QDialog::Accepted)
        return;
    switch (dialog.choice()) {
    case RecentDocumentsDialog::OpenDocument:
        openDocument(dialog.chosenPath());
        break;
    case RecentDocumentsDialog::NewFlow:
        if (maybeSave())
            newDocument();
        break;
    case RecentDocumentsDialog::OpenOther:
        m_openAction->trigger();
        break;
    default:
        break;
    }
}

void MainWindow::showPreferences()
{
    PreferencesDialog dialog(m_settings, this);
    DialogRunner::exec(&dialog);
}

void MainWindow::showAbout()
{
    if (m_scene)
        m_scene->flushRowCounter();
    AboutDialog dialog(m_settings, this);
    DialogRunner::exec(&dialog);
}

void MainWindow::showConnectDialog(bool to)
{
    Node *node = m_view->currentNode();
    if (!node || !m_scene || m_runActive)
        return;
    ConnectDialog dialog(m_scene, node, to ? ConnectDialog::To : ConnectDialog::From, m_undoStack, this);
    DialogRunner::exec(&dialog);
    updateActions();
}

void MainWindow::showCompareDialog()
{
    if (!m_scene)
        return;
    QList<Node *> preset;
    for (Node *node : m_scene->selectedNodes()) {
        if (node->status() == Node::UpToDate)
            preset << node;
    }
    auto *dialog = new CompareDialog(m_scene, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (preset.size() == 2)
        dialog->setItems(preset.at(0), preset.at(1));
    if (DialogRunner::isScripted())
        DialogRunner::exec(dialog);
    else
        dialog->show();
}

void MainWindow::exploreKeys()
{
    auto *node = qobject_cast<TransformNode *>(m_view->currentNode());
    if (!node || !node->transform()->canExploreKeys() || m_runActive)
        return;
    ExploreKeysDialog dialog(node, this, m_undoStack);
    DialogRunner::exec(&dialog);
}

void MainWindow::exploreDuplicates()
{
    auto *node = qobject_cast<TransformNode *>(m_view->currentNode());
    if (!node || !node->transform()->canExploreDuplicates() || m_runActive)
        return;
    ExploreDuplicatesDialog dialog(node, this, m_undoStack);
    DialogRunner::exec(&dialog);
}

bool MainWindow::askMemoryLimit(double usedGb, double &newLimitGb)
{
    const double limit = m_settings ? m_settings->maxMemoryUsageGb() : 0;
    return InsufficientMemoryDialog::ask(this, usedGb, limit, Settings::physicalMemoryGb(), newLimitGb);
}

void MainWindow::afterInteractiveOpen(const DocumentProperties &properties)
{
    if (!properties.locale.isEmpty()) {
        const QLocale locale(properties.locale);
        if (locale.bcp47Name() != QLocale().bcp47Name()) {
            QLocale::setDefault(locale);
            Prompts::instance()->information(this, tr("Open"),
                tr("This flow uses the locale %1 (%2), so numbers and dates are now read and written as in that locale.")
                    .arg(locale.bcp47Name(),
                        QStringLiteral("%1, %2").arg(locale.nativeLanguageName(), locale.nativeCountryName())));
        }
    }
    if (!MissingFilesDialog::missingInputs(m_scene).isEmpty()) {
        MissingFilesDialog dialog(m_scene, m_undoStack, this);
        DialogRunner::exec(&dialog);
    }
}

void MainWindow::applySettingChange(const QString &key)
{
    if (!m_settings)
        return;
    if (key == QLatin1String("theme")) {
        const int theme = m_settings->intValue(key);
        QAction *action = theme == 1 ? m_lightThemeAction : theme == 2 ? m_darkThemeAction : m_desktopThemeAction;
        if (!action->isChecked())
            action->trigger();
    } else if (key == QLatin1String("show_advanced_transforms")) {
        m_showAdvancedAction->setChecked(m_settings->boolValue(key));
    } else if (key == QLatin1String("auto_recovery_minutes")) {
        const int minutes = m_settings->intValue(key);
        m_recoveryTimer->stop();
        disconnect(m_recoveryTimer, &QTimer::timeout, this, &MainWindow::writeRecovery);
        if (minutes > 0) {
            connect(m_recoveryTimer, &QTimer::timeout, this, &MainWindow::writeRecovery);
            m_recoveryTimer->start(minutes * 60 * 1000);
        }
    } else if (key == QLatin1String("undo_limit") && m_undoStack->count() == 0) {
        m_undoStack->setUndoLimit(m_settings->intValue(key));
    } else if (key == QLatin1String("max_memory_usage")) {
        updateMemoryLabel();
    } else if (key == QLatin1String("user_name")) {
        Document::setUserName(m_settings->stringValue(key));
    } else if (key == QLatin1String("date_formats")) {
        setDateFormats(m_settings->dateFormats());
    } else if (key == QLatin1String("locale")) {
        const QString name = m_settings->stringValue(key);
        QLocale::setDefault(name.isEmpty() ? QLocale::system() : QLocale(name));
        setDateFormats(m_settings->dateFormats());
    } else if (key == QLatin1String("ui_font")) {
        const QString text = m_settings->stringValue(key);
        QFont font = QGuiApplication::font();
        if (text.isEmpty() || font.fromString(text))
            QApplication::setFont(text.isEmpty() ? QFontDatabase::systemFont(QFontDatabase::GeneralFont) : font);
    }
}

bool MainWindow::hasOtherRecoveryFiles() const
{
    const QString own = QFileInfo(recoveryPath()).fileName();
    const QStringList files =
        QDir(recoveryFolder(m_settings)).entryList({QStringLiteral("recovery-*.tflow")}, QDir::Files);
    return files.size() > (files.contains(own) ? 1 : 0);
}

QList<QWidget *> MainWindow::paneCycle() const
{
    QList<QWidget *> panes;
    const auto add = [&panes](QWidget *widget) {
        if (widget && widget->isVisible() && widget->isEnabled() && widget->focusPolicy() != Qt::NoFocus)
            panes << widget;
    };
    for (const QString &name : {QStringLiteral("Search transforms"), QStringLiteral("Transform list")}) {
        for (QWidget *widget : m_transformPane->findChildren<QWidget *>()) {
            if (widget->accessibleName() == name) {
                add(widget);
                break;
            }
        }
    }
    add(m_view);
#ifdef TABRELLE_HAS_ITEM_PANE
    if (m_itemPane && m_itemPane->itemWidget()) {
        QWidget *first = m_itemPane->itemWidget();
        // The first field of the options takes the focus.
        while (first && first->focusPolicy() == Qt::NoFocus && first->nextInFocusChain() != first
            && m_itemPane->itemWidget()->isAncestorOf(first->nextInFocusChain()))
            first = first->nextInFocusChain();
        add(first);
    }
    if (m_itemPane && m_itemPane->dataPanel())
        add(m_itemPane->dataPanel()->view());
#endif
    add(m_logTextEdit);
    return panes;
}

void MainWindow::focusPane(int step)
{
    const QList<QWidget *> panes = paneCycle();
    if (panes.isEmpty())
        return;
    QWidget *focus = QApplication::focusWidget();
    int at = -1;
    for (int i = 0; i < panes.size(); ++i) {
        if (focus && (panes.at(i) == focus || panes.at(i)->isAncestorOf(focus)))
            at = i;
    }
    const int next = at < 0 ? (step > 0 ? 0 : panes.size() - 1) : (at + step + panes.size()) % panes.size();
    panes.at(next)->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void MainWindow::removeRecovery()
{
    QFile::remove(recoveryPath());
    m_lastRecoveryState.clear();
}

// ----- runs and actions

void MainWindow::onRunningChanged(bool running)
{
    // The scene still says it runs while it reports the end.
    m_runActive = running;
    m_progressBar->setVisible(running);
    m_stopButton->setVisible(running);
    m_progressBar->setValue(0);
    m_transformPane->setEnabled(!running);
    m_view->setEditingEnabled(!running);
#ifdef TABRELLE_HAS_ITEM_PANE
    m_itemPane->setRunning(running);
#endif
    if (running)
        QApplication::setOverrideCursor(Qt::BusyCursor);
    else
        QApplication::restoreOverrideCursor();
    updateActions();
    if (!running) {
#ifdef TABRELLE_HAS_ITEM_PANE
        m_itemPane->refresh();
#endif
        m_view->viewport()->update();
        if (m_closeAfterRun)
            QTimer::singleShot(0, this, &QWidget::close);
    }
}

void MainWindow::onRunChangesMaybeAvailable()
{
    const bool wasEnabled = m_runChangesAction->isEnabled();
    updateRunActions();
    if (!wasEnabled && m_runChangesAction->isEnabled() && isActiveWindow() && !QApplication::activeModalWidget()) {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        if (m_lastRunChangesBalloon < 0 || now - m_lastRunChangesBalloon >= 30000) {
            m_lastRunChangesBalloon = now;
            showBalloon(tr("Run unprocessed"), tr("Click here to run unprocessed changes."), m_runChangesAction,
                [this] { m_runChangesAction->trigger(); });
        }
    }
}

void MainWindow::updateRunActions()
{
    const bool running = m_runActive;
    const bool autoRun = m_scene && m_scene->isAutoRun();
    const bool hasNodes = m_scene && !m_scene->nodes().isEmpty();
    m_runChangesAction->setEnabled(!running && !autoRun && m_scene && m_scene->hasChanges());
    m_runEverythingAction->setEnabled(!running && !autoRun && hasNodes);
    m_runSelectedAction->setEnabled(!running && !autoRun && m_scene && !m_scene->selectedNodes().isEmpty());
    m_runStopAction->setEnabled(running);
    m_autoRunAction->setEnabled(!running);
    m_autoRunLabel->setText(autoRun ? tr("Auto Run: On") : tr("Auto Run: Off"));
}

QWidget *MainWindow::focusTarget() const
{
    QWidget *focus = QApplication::focusWidget();
    if (isTextField(focus))
        return focus;
    if (focus && focus != m_view && qobject_cast<QAbstractItemView *>(focus) && m_itemPaneWidget->isAncestorOf(focus))
        return focus;
    return m_view;
}

void MainWindow::onFocusChanged()
{
    updateActions();
}

void MainWindow::updateActions()
{
    const bool running = m_runActive;
    QWidget *target = focusTarget();
    const bool onCanvas = target == m_view;
    const bool text = isTextField(target);
    const bool selection = m_view->hasSelection();
    const bool nodesSelected = m_scene && !m_scene->selectedNodes().isEmpty();
    const QMimeData *clipboard = QApplication::clipboard()->mimeData();
    const bool clipboardHasSomething = clipboard && (clipboard->hasText() || clipboard->hasUrls() || Document::canPaste(clipboard));
    m_cutAction->setEnabled(text || (onCanvas && nodesSelected && !running));
    m_copyAction->setEnabled(text || (onCanvas && nodesSelected) || (!onCanvas && !text));
    m_pasteAction->setEnabled(text || (onCanvas && clipboardHasSomething && !running));
    m_deleteAction->setEnabled(text || (onCanvas && selection && !running));
    m_selectAllAction->setEnabled(true);
    m_duplicateAction->setEnabled(nodesSelected && !running);
    m_pasteAsInputAction->setEnabled(clipboard && clipboard->hasText() && !running);
    m_newAction->setEnabled(!running);
    m_openAction->setEnabled(!running);
    m_recentMenu->setEnabled(!running);
    m_closeAction->setEnabled(!running);
    m_saveAction->setEnabled(!m_reading);
    m_saveAsAction->setEnabled(!m_reading);
    m_revertAction->setEnabled(!m_documentPath.isEmpty() && isDocumentModified() && !running);
    m_undoAction->setEnabled(m_undoStack->canUndo() && !running && !m_reading);
    m_redoAction->setEnabled(m_undoStack->canRedo() && !running && !m_reading);
    for (QAction *action : {m_addInputAction, m_addOutputAction, m_addChartAction, m_addChartFileAction, m_addNoteAction,
             m_tidyLayoutAction})
        action->setEnabled(!running);
    Node *current = m_view->currentNode();
    auto *io = qobject_cast<IONode *>(current);
    m_openFileAction->setEnabled(io && !io->path().isEmpty());
    m_openFolderAction->setEnabled(io && !io->path().isEmpty());
    m_renameAction->setEnabled(io != nullptr);
    auto *transformNode = qobject_cast<TransformNode *>(current);
    const Transform *transform = transformNode ? transformNode->transform() : nullptr;
    m_exploreKeysAction->setEnabled(transform && transform->canExploreKeys() && !running);
    m_exploreDuplicatesAction->setEnabled(transform && transform->canExploreDuplicates() && !running);
    m_connectToAction->setEnabled(current && !running);
    m_connectFromAction->setEnabled(current && !running);
    m_recentDocumentsAction->setEnabled(!running);
    m_recoveredFlowsAction->setEnabled(!running && hasOtherRecoveryFiles());
#ifdef TABRELLE_HAS_ITEM_PANE
    const bool hasTable = m_itemPane && m_itemPane->dataPanel() && m_itemPane->dataPanel()->node()
        && current && current->status() == Node::UpToDate;
    const bool hasFindText = hasTable && !m_itemPane->dataPanel()->findBar()->text().isEmpty();
    const bool defaults = m_itemPane && m_itemPane->itemWidget() && m_itemPane->itemWidget()->canSaveDefaults();
#else
    const bool hasTable = false, hasFindText = false, defaults = false;
#endif
    m_findAction->setEnabled(hasTable);
    m_findNextAction->setEnabled(hasFindText);
    m_findPreviousAction->setEnabled(hasFindText);
    m_goToRowAction->setEnabled(hasTable && current->dataset().rowCount() > 0);
    m_saveDefaultsAction->setEnabled(defaults && !running);
    m_restoreDefaultsAction->setEnabled(defaults && !running);
    m_compareAction->setEnabled(m_scene && m_scene->nodes().size() >= 2);
    updateRunActions();
}

void MainWindow::showStatus(const QString &text, int timeoutMs)
{
    statusBar()->showMessage(text, timeoutMs);
}

QString MainWindow::currentStatusMessage() const
{
    return statusBar()->currentMessage();
}

void MainWindow::appendLog(const QString &text)
{
    m_logTextEdit->appendPlainText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss ")) + text);
}

QString MainWindow::logText() const
{
    return m_logTextEdit->toPlainText();
}

void MainWindow::showBalloon(const QString &title, const QString &text, QAction *action, const std::function<void()> &onClick)
{
    showStatus(QStringLiteral("%1: %2").arg(title, text), 4000);
    if (!m_balloon) {
        m_balloon = new QFrame(this, Qt::ToolTip);
        m_balloon->setObjectName(QStringLiteral("balloon"));
        static_cast<QFrame *>(m_balloon)->setFrameShape(QFrame::Box);
        auto *layout = new QVBoxLayout(m_balloon);
        m_balloonLabel = new QLabel(m_balloon);
        m_balloonLabel->setTextFormat(Qt::RichText);
        layout->addWidget(m_balloonLabel);
        m_balloon->installEventFilter(this);
    }
    m_balloonLabel->setText(QStringLiteral("<b>%1</b><br>%2").arg(title.toHtmlEscaped(), text.toHtmlEscaped()));
    m_balloon->setProperty("tabrelleBalloonText", text);
    m_balloon->adjustSize();
    QWidget *anchor = m_toolBar && m_toolBar->isVisible() ? m_toolBar->widgetForAction(action) : nullptr;
    const QPoint at = anchor ? anchor->mapToGlobal(QPoint(0, anchor->height()))
                             : statusBar()->mapToGlobal(QPoint(8, -m_balloon->height()));
    m_balloon->move(at);
    m_balloon->setAttribute(Qt::WA_ShowWithoutActivating);
    m_balloon->show();
    disconnect(m_balloon, nullptr, this, nullptr);
    m_balloonClick = onClick;
    QTimer::singleShot(4000, m_balloon, [this] { m_balloon->hide(); });
}

QString MainWindow::balloonText() const
{
    return m_balloon && m_balloon->isVisible() ? m_balloon->property("tabrelleBalloonText").toString() : QString();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        if (watched == m_autoRunLabel && m_autoRunAction->isEnabled()) {
            m_autoRunAction->trigger();
            return true;
        }
        if (watched == m_balloon) {
            m_balloon->hide();
            if (m_balloonClick)
                m_balloonClick();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::updateMemoryLabel()
{
    const double used = GraphScene::processMemoryGb();
    if (used < 0) {
        m_memoryLabel->hide();
        return;
    }
    const double limit = m_settings ? m_settings->maxMemoryUsageGb() : 0;
    m_memoryLabel->setText(tr("Memory: %1 GB / %2 GB").arg(used, 0, 'f', 1).arg(limit, 0, 'f', 1));
    m_memoryLabel->setStyleSheet(limit > 0 && used >= 0.8 * limit ? QStringLiteral("color: #B7791F;") : QString());
    m_memoryLabel->show();
}

void MainWindow::showContextMenu(Node *node, Connection *connection, const QPoint &globalPos, const QPointF &scenePos)
{
    QMenu menu(this);
    const bool running = m_runActive;
    if (node && qobject_cast<NoteNode *>(node)) {
        auto *note = static_cast<NoteNode *>(node);
        menu.addAction(tr("&Edit Text"), this, [this, note] {
            bool ok = false;
            const QString text = QInputDialog::getMultiLineText(this, tr("Note"), tr("Text"), note->text(), &ok);
            if (ok && text != note->text()) {
                UndoScope scope(m_scene, m_undoStack, tr("note change"));
                note->setText(text);
            }
        });
        QMenu *colours = menu.addMenu(tr("C&olour"));
        const QList<QPair<QString, QColor>> choices = {{tr("Yellow"), QColor(0xFF, 0xF2, 0xA8)},
            {tr("Green"), QColor(0xCD, 0xEF, 0xC4)}, {tr("Blue"), QColor(0xC9, 0xE2, 0xFF)},
            {tr("Pink"), QColor(0xFB, 0xD0, 0xE0)}, {tr("Orange"), QColor(0xFF, 0xD8, 0xA8)},
            {tr("Grey"), QColor(0xE2, 0xE2, 0xE2)}};
        for (const auto &choice : choices) {
            const QColor colour = choice.second;
            colours->addAction(choice.first, this, [this, note, colour] {
                UndoScope scope(m_scene, m_undoStack, tr("note change"));
                note->setColor(colour);
            });
        }
        QMenu *pointer = menu.addMenu(tr("&Pointer"));
        const QStringList pointers = {tr("None"), tr("Left"), tr("Right"), tr("Up"), tr("Down")};
        for (int i = 0; i < pointers.size(); ++i) {
            pointer->addAction(pointers.at(i), this, [this, note, i] {
                UndoScope scope(m_scene, m_undoStack, tr("note change"));
                note->setArrow(i);
            });
        }
        menu.addSeparator();
        menu.addAction(m_cutAction);
        menu.addAction(m_copyAction);
        menu.addAction(m_deleteAction);
    } else if (node) {
        menu.addAction(tr("Run &Selected"), m_runSelectedAction, &QAction::trigger)->setEnabled(m_runSelectedAction->isEnabled());
        if (qobject_cast<IONode *>(node)) {
            menu.addAction(tr("&Rename"), this, [this, node] {
                bool ok = false;
                const QString name = QInputDialog::getText(this, tr("Rename"), tr("Name"), QLineEdit::Normal, node->name(), &ok);
                if (ok) {
                    UndoScope scope(m_scene, m_undoStack, tr("rename"));
                    node->setName(name);
                }
            })->setEnabled(!running);
        }
        menu.addAction(tr("Co&mment..."), this, [this, node] {
            bool ok = false;
            const QString comment = QInputDialog::getMultiLineText(
                this, tr("Comment for '%1'").arg(node->name()), QString(), node->comment(), &ok);
            if (ok && comment != node->comment()) {
                UndoScope scope(m_scene, m_undoStack, tr("comment change"));
                node->setComment(comment);
            }
        })->setEnabled(!running);
        menu.addAction(tr("Dup&licate"), m_duplicateAction, &QAction::trigger)->setEnabled(!running);
        menu.addAction(tr("Cu&t"), m_view, &GraphView::cutSelection)->setEnabled(!running);
        menu.addAction(tr("&Copy"), m_view, &GraphView::copySelection);
        menu.addAction(tr("&Delete"), m_view, &GraphView::deleteSelection)->setEnabled(!running);
        if (auto *io = qobject_cast<IONode *>(node)) {
            if (io->medium() == IONode::File && !io->path().isEmpty()) {
                menu.addSeparator();
                menu.addAction(tr("O&pen File"), m_openFileAction, &QAction::trigger);
                menu.addAction(tr("Open Containing F&older"), m_openFolderAction, &QAction::trigger);
            }
        }
    } else if (connection) {
        menu.addAction(tr("&Delete"), m_view, &GraphView::deleteSelection)->setEnabled(!running);
        QMenu *insert = createTransformMenu(tr("&Insert Transform"), &menu, nullptr);
        insert->setEnabled(!running);
        menu.addMenu(insert);
    } else {
        menu.addAction(tr("Add &Input File..."), m_addInputAction, &QAction::trigger)->setEnabled(!running);
        menu.addAction(tr("Add &Output File..."), m_addOutputAction, &QAction::trigger)->setEnabled(!running);
        menu.addAction(tr("Add &Chart"), m_addChartAction, &QAction::trigger)->setEnabled(!running);
        const QPointF at = scenePos;
        menu.addAction(tr("Add &Note"), this, [this, at] { m_view->addNote(&at); })->setEnabled(!running);
        menu.addAction(tr("&Paste"), this, [this] { m_view->paste(QApplication::clipboard()->mimeData()); })
            ->setEnabled(!running);
        menu.addAction(tr("Select &All"), m_view, &GraphView::selectAllItems);
        menu.addAction(tr("Zoom to &Fit"), m_view, &GraphView::zoomToFit);
    }
    menu.exec(globalPos);
}

// ----- window state

void MainWindow::restoreWindowState()
{
    bool placed = false;
    if (m_settings) {
        placed = restoreGeometry(m_settings->byteArrayValue(QStringLiteral("window_geometry")));
        restoreState(m_settings->byteArrayValue(QStringLiteral("window_state")));
        m_mainSplitter->restoreState(m_settings->byteArrayValue(QStringLiteral("main_splitter_state")));
#ifdef TABRELLE_HAS_ITEM_PANE
        m_itemPane->restoreSplitterState(m_settings->byteArrayValue(QStringLiteral("item_splitter_state")));
#endif
    }
    if (!placed) {
        const QRect screen = QGuiApplication::primaryScreen() ? QGuiApplication::primaryScreen()->availableGeometry()
                                                              : QRect(0, 0, 1600, 1000);
        if (screen.width() > 1400 && screen.height() > 900) {
            resize(1400, 900);
            move(screen.center() - QPoint(700, 450));
        } else {
            resize(screen.size());
            setWindowState(windowState() | Qt::WindowMaximized);
        }
        const int right = qMax(420, int(width() * 0.35));
        m_mainSplitter->setSizes({260, qMax(300, width() - 260 - right), right});
    }
}

void MainWindow::saveWindowState()
{
    if (!m_settings)
        return;
    m_settings->setValue(QStringLiteral("window_geometry"), saveGeometry());
    m_settings->setValue(QStringLiteral("window_state"), saveState());
    m_settings->setValue(QStringLiteral("main_splitter_state"), m_mainSplitter->saveState());
#ifdef TABRELLE_HAS_ITEM_PANE
    m_settings->setValue(QStringLiteral("item_splitter_state"), m_itemPane->saveSplitterState());
#endif
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_runActive) {
        event->ignore();
        if (m_closeAfterRun)
            return;
        const int answer = Prompts::instance()->ask(this, QCoreApplication::applicationName(),
            tr("A run is in progress. Stop it and quit?"), QString(), {tr("Stop and &Quit"), tr("Cancel")}, 1, 1);
        if (answer == 0) {
            m_closeAfterRun = true;
            GraphScene::setStopRequested(true);
        }
        return;
    }
    m_closeAfterRun = false;
    if (!maybeSave()) {
        event->ignore();
        return;
    }
    saveWindowState();
    removeRecovery();
    if (m_recoveryLock)
        m_recoveryLock->unlock();
    if (m_balloon)
        m_balloon->hide();
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && m_desktopThemeAction->isChecked()) {
        CanvasTheme::setDark(QApplication::palette().color(QPalette::Window).lightness() < 128);
        if (m_scene)
            m_scene->update();
    }
    QMainWindow::changeEvent(event);
}
