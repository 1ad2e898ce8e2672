#pragma once

#include "workbench/helpindex.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QTextBrowser>
#include <QUrl>

#include <functional>

class QAction;
class QLabel;
class QLineEdit;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;
class Transform;

// The page view of the help window: pages come from the resources under ":/help/", and
// the page of keyboard shortcuts is written when asked for.
class HelpBrowser : public QTextBrowser
{
    Q_OBJECT
public:
    explicit HelpBrowser(QWidget *parent = nullptr);
    void setShortcutsMarkdown(const std::function<QString()> &writer) { m_shortcutsWriter = writer; }
    QVariant loadResource(int type, const QUrl &name) override;
    // Gives the page shown margins, and its tables padded cells with light borders.
    void polishPage();

private:
    std::function<QString()> m_shortcutsWriter;
};

// The help window: one per process, not modal. A tool bar with Back, Forward, Contents,
// Find in Page, Zoom In and Zoom Out; a search field over the contents tree on the left;
// the page on the right. Links to other pages open in the window; web links open in the
// system browser, and only when clicked.
class HelpWindow : public QMainWindow
{
    Q_OBJECT
public:
    // Show the window, raised, at a page.
    static void showTransform(const QString &id);
    // By item type: "Input", "Output", "Transform", "Chart", "Note" or "Flow".
    static void showItem(const QString &type);
    static void showContents();
    static void showShortcuts();
    // The actions listed on the page of keyboard shortcuts; the window keeps guarded
    // pointers, so actions that go away drop off the page.
    static void setShortcutActions(const QList<QAction *> &actions);
    // The transforms the contents lists. Without them, the window asks the document's
    // node factory for every transform it can make.
    static void setTransformPrototypes(const QList<Transform *> &prototypes);
    // Opens web addresses; tests replace it so that nothing leaves the process.
    static void setUrlOpener(const std::function<bool(const QUrl &)> &opener);

    // The one window, made on first use.
    static HelpWindow *instance();
    // The window if it was made, else nullptr.
    static HelpWindow *existingInstance();

    // The page shown, relative to ":/help/" ("transforms/Join.md"), or empty.
    QString currentPage() const;
    void showPage(const QString &page);
    const HelpIndex &index() const { return m_index; }

    HelpBrowser *browser() const { return m_browser; }
    QLineEdit *searchEdit() const { return m_searchEdit; }
    QTreeWidget *contentsTree() const { return m_tree; }
    QLineEdit *findEdit() const { return m_findEdit; }
    QWidget *findBar() const { return m_findBar; }
    QAction *backAction() const { return m_backAction; }
    QAction *forwardAction() const { return m_forwardAction; }
    QAction *findAction() const { return m_findAction; }
    QLabel *findStatusLabel() const { return m_findStatus; }
    QLabel *searchHintLabel() const { return m_searchHint; }

    // The Markdown of the page of keyboard shortcuts, from the actions given.
    static QString shortcutsMarkdown(const QList<QAction *> &actions);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void onAnchorClicked(const QUrl &url);
    void onSourceChanged(const QUrl &url);
    void onSearchChanged(const QString &text);
    void onSearchReturn();
    void onTreeItemActivated(QTreeWidgetItem *item);
    void onFindNext();
    void onFindPrevious();

private:
    explicit HelpWindow(QWidget *parent = nullptr);
    void buildTree();
    void addEntries(QTreeWidgetItem *parent, const QList<HelpIndex::Entry> &entries);
    void selectPageInTree(const QString &page);
    void openFindBar();
    void closeFindBar();
    void find(bool backward);
    void rebuildIndexIfNeeded();

    HelpIndex m_index;
    bool m_indexFromPrototypes = false;
    HelpBrowser *m_browser;
    QLineEdit *m_searchEdit;
    QTreeWidget *m_tree;
    QWidget *m_findBar;
    QLineEdit *m_findEdit;
    QLabel *m_findStatus;
    QLabel *m_searchHint;
    QAction *m_backAction;
    QAction *m_forwardAction;
    QAction *m_contentsAction;
    QAction *m_findAction;
    QAction *m_zoomInAction;
    QAction *m_zoomOutAction;
};
