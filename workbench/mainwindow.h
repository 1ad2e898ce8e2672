#pragma once

#include "flow/document.h"

#include <QDateTime>
#include <QMainWindow>
#include <QPointer>

#include <functional>

class Connection;
class GraphScene;
class GraphView;
class Node;
class QAction;
class QActionGroup;
class QDockWidget;
class QLabel;
class QLockFile;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QSplitter;
class QTimer;
class QToolBar;
class QToolButton;
class QUndoStack;
class Settings;
class Transform;
class TransformPane;
class ItemPane;

// The workbench window: the transform pane, the canvas and the item pane side by side,
// with the menus, tool bar, run controls and status bar around them. It holds one
// document at a time: its scene, its undo stack and where it is saved.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    MainWindow(Settings *settings, const QList<Transform *> &prototypes, QWidget *parent = nullptr);
    ~MainWindow() override;

    GraphScene *scene() const { return m_scene; }
    GraphView *view() const { return m_view; }
    QUndoStack *undoStack() const { return m_undoStack; }
    TransformPane *transformPane() const { return m_transformPane; }
    QString documentPath() const { return m_documentPath; }
    bool isDocumentModified() const;

    // Opens path in this window, after asking about unsaved changes when askToSave.
    bool openDocument(const QString &path, bool askToSave = true);
    // An empty untitled flow with Auto Run on.
    void newDocument();
    bool saveDocument();
    bool saveDocumentAs(const QString &path);
    // Asks about unsaved changes: false when the user cancelled.
    bool maybeSave();

    // Every action of the menus and the tool bar, for tests and the shortcut page.
    QList<QAction *> allActions() const;
    QAction *action(const QString &objectName) const;
    QString logText() const;
    QString currentStatusMessage() const;
    // The balloon text showing, empty when none.
    QString balloonText() const;

    // The recovery file of this process, written on a timer while there are changes.
    QString recoveryPath() const;
    void writeRecovery();
    static QString recoveryFolder(Settings *settings);
    // At start: offers the recovery files that no running window holds. True when one was
    // opened.
    bool offerRecovery();
    // The recovery files no running window holds, newest first; each is locked by this
    // window until released with releaseRecoveryLocks.
    QStringList recoverableFiles();
    // What a start without a document on the command line opens: a recovered flow first,
    // then the start-up preference (recent documents, an empty flow or a chosen flow).
    // commandLinePath, when set, is opened instead of the preference.
    void startUp(const QString &commandLinePath = QString());
    // The start-up preference alone, as File > Close also follows it.
    void applyStartupPreference();

    // The dialogs of the menus, opened modally or, for the explore dialogs, as the
    // caller's exec() does.
    void showRecentDocuments();
    void showPreferences();
    void showAbout();
    void showConnectDialog(bool to);
    void showCompareDialog();
    void exploreKeys();
    void exploreDuplicates();
    // Asked by a run that passed the memory limit.
    bool askMemoryLimit(double usedGb, double &newLimitGb);

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void createActions();
    void createMenus();
    void createToolBar();
    void createDocks();
    void createStatusBar();
    void setScene(GraphScene *scene);
    void updateTitle();
    void updateActions();
    void updateRunActions();
    void showStatus(const QString &text, int timeoutMs = 5000);
    void appendLog(const QString &text);
    void showBalloon(const QString &title, const QString &text, QAction *action, const std::function<void()> &onClick);
    void setUnrecordedChange();
    void markSaved(const QString &path);
    void rebuildRecentMenu();
    void showContextMenu(Node *node, Connection *connection, const QPoint &globalPos, const QPointF &scenePos);
    void onRunningChanged(bool running);
    void onRunChangesMaybeAvailable();
    void onFocusChanged();
    void updateMemoryLabel();
    void restoreWindowState();
    void saveWindowState();
    void removeRecovery();
    QWidget *focusTarget() const;
    QMenu *createTransformMenu(const QString &title, QWidget *parent, const QPointF *at);
    void afterInteractiveOpen(const DocumentProperties &properties);
    void applySettingChange(const QString &key);
    void releaseRecoveryLocks();
    // The panes F6 and Shift+F6 move through, in order, those that can take focus.
    QList<QWidget *> paneCycle() const;
    // Whether another process left a recovery file: File > Recovered Flows has work.
    bool hasOtherRecoveryFiles() const;
    void focusPane(int step);

    Settings *m_settings;
    QList<Transform *> m_prototypes;
    GraphScene *m_scene = nullptr;
    QUndoStack *m_undoStack;
    GraphView *m_view;
    TransformPane *m_transformPane = nullptr;
    QWidget *m_itemPaneWidget = nullptr;
    ItemPane *m_itemPane = nullptr;
    QSplitter *m_mainSplitter;
    QDockWidget *m_messagesDock = nullptr;
    QDockWidget *m_undoDock = nullptr;
    QPlainTextEdit *m_logTextEdit = nullptr;
    QProgressBar *m_progressBar = nullptr;
    QToolButton *m_stopButton = nullptr;
    QLabel *m_memoryLabel = nullptr;
    QLabel *m_autoRunLabel = nullptr;
    QWidget *m_balloon = nullptr;
    QLabel *m_balloonLabel = nullptr;
    QTimer *m_memoryTimer = nullptr;
    QTimer *m_recoveryTimer = nullptr;
    QToolBar *m_toolBar = nullptr;
    QMenu *m_recentMenu = nullptr;
    QMenu *m_addTransformMenu = nullptr;
    QMenu *m_viewMenuForDocks = nullptr;
    std::function<void()> m_balloonClick;

    QString m_documentPath;
    DocumentProperties m_properties;
    bool m_unrecordedChange = false;
    bool m_recovered = false;
    bool m_closeAfterRun = false;
    bool m_runActive = false;
    bool m_reading = false;
    qint64 m_lastRunChangesBalloon = -1;
    bool m_runChangesWasEnabled = false;
    QByteArray m_lastRecoveryState;
    QLockFile *m_recoveryLock = nullptr;
    bool m_recoveryOff = false;
    QList<QLockFile *> m_offeredLocks;
    QDateTime m_recoveredAt; // when the recovery file of a recovered flow was written

public:
    // Actions, by the names of the menus.
    QAction *m_newAction, *m_newWindowAction, *m_openAction, *m_saveAction, *m_saveAsAction, *m_revertAction,
        *m_closeAction, *m_quitAction, *m_clearRecentAction;
    QAction *m_undoAction, *m_redoAction, *m_cutAction, *m_copyAction, *m_pasteAction, *m_pasteAsInputAction,
        *m_deleteAction, *m_duplicateAction, *m_selectAllAction, *m_renameAction;
    QAction *m_zoomInAction, *m_zoomOutAction, *m_actualSizeAction, *m_zoomToFitAction, *m_snapToGridAction,
        *m_rowColChangesAction, *m_showAdvancedAction, *m_showTransformPaneAction, *m_fullScreenAction,
        *m_lightThemeAction, *m_darkThemeAction, *m_desktopThemeAction;
    QAction *m_addInputAction, *m_addOutputAction, *m_addChartAction, *m_addChartFileAction, *m_addNoteAction, *m_findTransformAction, *m_tidyLayoutAction,
        *m_openFileAction, *m_openFolderAction;
    QAction *m_runChangesAction, *m_runEverythingAction, *m_runSelectedAction, *m_runStopAction, *m_autoRunAction;
    QAction *m_aboutAction;
    QAction *m_recentDocumentsAction, *m_recoveredFlowsAction, *m_connectToAction, *m_connectFromAction,
        *m_compareAction, *m_exploreKeysAction, *m_exploreDuplicatesAction, *m_preferencesAction;
    QAction *m_helpAction, *m_shortcutsAction, *m_itemHelpAction;
    QAction *m_findAction, *m_findNextAction, *m_findPreviousAction, *m_goToRowAction, *m_showWhitespaceAction,
        *m_nextPaneAction, *m_previousPaneAction, *m_saveDefaultsAction, *m_restoreDefaultsAction;
    QMenu *m_examplesMenu = nullptr;
};
