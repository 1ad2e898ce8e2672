#include "workbench/helpwindow.h"

#include "transforms/transform.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSplitter>
#include <QStyle>
#include <QTextCursor>
#include <QTextFrame>
#include <QTextTable>
#include <QTextDocument>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

// Resources in a static library are registered by hand, once, and only when help is shown.
static void initHelpResources()
{
    static bool done = false;
    if (!done)
        Q_INIT_RESOURCE(help);
    done = true;
}

namespace {

const QString resourceUrlBase = QStringLiteral("qrc:/help/");

QPointer<HelpWindow> s_window;
QList<QPointer<QAction>> s_actions;
QList<HelpIndex::TransformInfo> s_transforms;
bool s_transformsGiven = false;
std::function<bool(const QUrl &)> s_urlOpener;

bool isWebUrl(const QUrl &url)
{
    const QString scheme = url.scheme().toLower();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") || scheme == QLatin1String("mailto")
        || scheme == QLatin1String("ftp");
}

// An action's text as a reader sees it in a menu: no mnemonic marks, no trailing dots.
QString plainActionText(const QAction *action)
{
    QString text = action->text();
    text.replace(QLatin1String("&&"), QStringLiteral("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QStringLiteral("\x01"), QStringLiteral("&"));
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    if (text.endsWith(QChar(0x2026)))
        text.chop(1);
    return text.trimmed();
}

QString tableCell(QString text)
{
    text.replace(QLatin1Char('|'), QLatin1String("\\|"));
    return text;
}

} // namespace

HelpBrowser::HelpBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
}

QVariant HelpBrowser::loadResource(int type, const QUrl &name)
{
    const QUrl url = name.isRelative() ? source().resolved(name) : name;
    if (url.scheme() == QLatin1String("qrc") && url.path() == QLatin1String("/help/") + HelpIndex::shortcutsPage()) {
        return m_shortcutsWriter ? m_shortcutsWriter() : HelpWindow::shortcutsMarkdown({});
    }
    if (url.scheme() == QLatin1String("qrc") && url.path().endsWith(QLatin1String(".md"))
        && !QFile::exists(QLatin1Char(':') + url.path())) {
        return tr("# Page not found\n\nThere is no help page \"%1\". Choose a page from the contents.\n")
            .arg(url.path().mid(QStringLiteral("/help/").size()));
    }
    return QTextBrowser::loadResource(type, name);
}

void HelpBrowser::polishPage()
{
    QTextDocument *page = document();
    page->setDocumentMargin(12);
    const QColor border = palette().color(QPalette::Mid);
    for (QTextFrame::iterator it = page->rootFrame()->begin(); !it.atEnd(); ++it) {
        auto *table = qobject_cast<QTextTable *>(it.currentFrame());
        if (!table)
            continue;
        QTextTableFormat format = table->format();
        format.setCellPadding(4);
        format.setCellSpacing(0);
        format.setBorder(1);
        format.setBorderBrush(border);
        format.setBorderCollapse(true);
        format.setBottomMargin(8);
        table->setFormat(format);
    }
}

HelpWindow::HelpWindow(QWidget *parent)
    : QMainWindow(parent)
{
    initHelpResources();
    setAttribute(Qt::WA_QuitOnClose, false); // help left open never keeps the program running
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(tr("Tabrelle Help"));

    m_browser = new HelpBrowser(this);
    m_browser->setOpenLinks(false);
    m_browser->setOpenExternalLinks(false);
    m_browser->setSearchPaths({QStringLiteral(":/help")});
    m_browser->setShortcutsMarkdown([this] {
        QList<QAction *> actions;
        for (const QPointer<QAction> &action : qAsConst(s_actions)) {
            if (action)
                actions << action.data();
        }
        // Without actions given, those of the program's other main windows.
        if (s_actions.isEmpty()) {
            const QWidgetList windows = QApplication::topLevelWidgets();
            for (QWidget *widget : windows) {
                if (widget != this && qobject_cast<QMainWindow *>(widget))
                    actions << widget->findChildren<QAction *>();
            }
        }
        return shortcutsMarkdown(actions);
    });
    connect(m_browser, &QTextBrowser::anchorClicked, this, &HelpWindow::onAnchorClicked);
    connect(m_browser, &QTextBrowser::sourceChanged, this, &HelpWindow::onSourceChanged);

    QToolBar *toolBar = addToolBar(tr("Help"));
    toolBar->setObjectName(QStringLiteral("HelpToolBar"));
    toolBar->setMovable(false);
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_backAction = toolBar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), tr("Back"));
    m_backAction->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
    m_backAction->setToolTip(tr("Back (%1)").arg(m_backAction->shortcut().toString(QKeySequence::NativeText)));
    m_backAction->setEnabled(false);
    connect(m_backAction, &QAction::triggered, m_browser, &QTextBrowser::backward);
    connect(m_browser, &QTextBrowser::backwardAvailable, m_backAction, &QAction::setEnabled);
    m_forwardAction = toolBar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), tr("Forward"));
    m_forwardAction->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
    m_forwardAction->setToolTip(
        tr("Forward (%1)").arg(m_forwardAction->shortcut().toString(QKeySequence::NativeText)));
    m_forwardAction->setEnabled(false);
    connect(m_forwardAction, &QAction::triggered, m_browser, &QTextBrowser::forward);
    connect(m_browser, &QTextBrowser::forwardAvailable, m_forwardAction, &QAction::setEnabled);
    m_contentsAction = toolBar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), tr("Contents"));
    m_contentsAction->setToolTip(tr("Show the contents page"));
    connect(m_contentsAction, &QAction::triggered, this, [this] { showPage(HelpIndex::contentsPage()); });
    toolBar->addSeparator();
    m_findAction = toolBar->addAction(tr("Find in Page"));
    m_findAction->setShortcut(QKeySequence::Find);
    m_findAction->setToolTip(tr("Find in Page (%1)").arg(m_findAction->shortcut().toString(QKeySequence::NativeText)));
    connect(m_findAction, &QAction::triggered, this, &HelpWindow::openFindBar);
    m_zoomInAction = toolBar->addAction(tr("Zoom In"));
    m_zoomInAction->setShortcuts(QKeySequence::ZoomIn);
    m_zoomInAction->setToolTip(tr("Zoom In (%1)").arg(m_zoomInAction->shortcut().toString(QKeySequence::NativeText)));
    connect(m_zoomInAction, &QAction::triggered, this, [this] { m_browser->zoomIn(1); });
    m_zoomOutAction = toolBar->addAction(tr("Zoom Out"));
    m_zoomOutAction->setShortcuts(QKeySequence::ZoomOut);
    m_zoomOutAction->setToolTip(
        tr("Zoom Out (%1)").arg(m_zoomOutAction->shortcut().toString(QKeySequence::NativeText)));
    connect(m_zoomOutAction, &QAction::triggered, this, [this] { m_browser->zoomOut(1); });

    // Left: search over the contents.
    auto *left = new QWidget(this);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    m_searchEdit = new QLineEdit(left);
    m_searchEdit->setPlaceholderText(tr("Search help"));
    m_searchEdit->setClearButtonEnabled(true);
    m_searchEdit->installEventFilter(this);
    connect(m_searchEdit, &QLineEdit::textChanged, this, &HelpWindow::onSearchChanged);
    connect(m_searchEdit, &QLineEdit::returnPressed, this, &HelpWindow::onSearchReturn);
    m_searchHint = new QLabel(left);
    m_searchHint->setWordWrap(true);
    m_searchHint->hide();
    m_tree = new QTreeWidget(left);
    m_tree->setHeaderHidden(true);
    m_tree->setColumnCount(1);
    m_tree->setUniformRowHeights(true);
    // Moving through the tree, by mouse or keys, shows each page; Enter or a double-click on
    // a branch opens or closes it.
    m_tree->setExpandsOnDoubleClick(false);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        const QString page = item ? item->data(0, Qt::UserRole).toString() : QString();
        if (!page.isEmpty() && page != currentPage())
            showPage(page);
    });
    connect(m_tree, &QTreeWidget::itemActivated, this, &HelpWindow::onTreeItemActivated);
    leftLayout->addWidget(m_searchEdit);
    leftLayout->addWidget(m_searchHint);
    leftLayout->addWidget(m_tree, 1);

    // Right: the page, with the find bar below it.
    auto *right = new QWidget(this);
    auto *rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    rightLayout->addWidget(m_browser, 1);
    m_findBar = new QWidget(right);
    auto *findLayout = new QHBoxLayout(m_findBar);
    findLayout->setContentsMargins(4, 2, 4, 2);
    auto *findLabel = new QLabel(tr("Find:"), m_findBar);
    m_findEdit = new QLineEdit(m_findBar);
    m_findEdit->setClearButtonEnabled(true);
    findLabel->setBuddy(m_findEdit);
    m_findEdit->installEventFilter(this);
    auto *previousButton = new QToolButton(m_findBar);
    previousButton->setText(tr("Previous"));
    previousButton->setToolTip(tr("Find the previous match (Shift+Enter)"));
    auto *nextButton = new QToolButton(m_findBar);
    nextButton->setText(tr("Next"));
    nextButton->setToolTip(tr("Find the next match (Enter)"));
    m_findStatus = new QLabel(m_findBar);
    auto *closeButton = new QToolButton(m_findBar);
    closeButton->setText(tr("Close"));
    closeButton->setToolTip(tr("Close the find bar (Escape)"));
    findLayout->addWidget(findLabel);
    findLayout->addWidget(m_findEdit, 1);
    findLayout->addWidget(previousButton);
    findLayout->addWidget(nextButton);
    findLayout->addWidget(m_findStatus);
    findLayout->addWidget(closeButton);
    rightLayout->addWidget(m_findBar);
    m_findBar->hide();
    connect(nextButton, &QToolButton::clicked, this, &HelpWindow::onFindNext);
    connect(previousButton, &QToolButton::clicked, this, &HelpWindow::onFindPrevious);
    connect(closeButton, &QToolButton::clicked, this, &HelpWindow::closeFindBar);
    connect(m_findEdit, &QLineEdit::textEdited, this, [this] {
        // Typing searches again from the start of the current match.
        QTextCursor cursor = m_browser->textCursor();
        cursor.setPosition(cursor.selectionStart());
        m_browser->setTextCursor(cursor);
        find(false);
    });

    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(left);
    splitter->addWidget(right);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({260, 740});
    setCentralWidget(splitter);
    resize(1000, 700);

    rebuildIndexIfNeeded();
    if (qApp)
        connect(qApp, &QCoreApplication::aboutToQuit, this, &QObject::deleteLater);
}

HelpWindow *HelpWindow::instance()
{
    if (!s_window)
        s_window = new HelpWindow;
    return s_window;
}

HelpWindow *HelpWindow::existingInstance()
{
    return s_window;
}

void HelpWindow::showTransform(const QString &id)
{
    HelpWindow *window = instance();
    window->rebuildIndexIfNeeded();
    window->showPage(QStringLiteral("transforms/%1.md").arg(id));
}

void HelpWindow::showItem(const QString &type)
{
    const QString page = HelpIndex::itemPage(type);
    instance()->showPage(page.isEmpty() ? HelpIndex::contentsPage() : page);
}

void HelpWindow::showContents()
{
    instance()->showPage(HelpIndex::contentsPage());
}

void HelpWindow::showShortcuts()
{
    instance()->showPage(HelpIndex::shortcutsPage());
}

void HelpWindow::setShortcutActions(const QList<QAction *> &actions)
{
    s_actions.clear();
    for (QAction *action : actions)
        s_actions << QPointer<QAction>(action);
}

void HelpWindow::setTransformPrototypes(const QList<Transform *> &prototypes)
{
    s_transforms.clear();
    for (const Transform *prototype : prototypes)
        s_transforms << HelpIndex::infoOf(prototype);
    s_transformsGiven = true;
    if (s_window) {
        s_window->m_indexFromPrototypes = false;
        s_window->rebuildIndexIfNeeded();
    }
}

void HelpWindow::setUrlOpener(const std::function<bool(const QUrl &)> &opener)
{
    s_urlOpener = opener;
}

void HelpWindow::rebuildIndexIfNeeded()
{
    // Given prototypes win; without them, the node factory is asked again until it knows
    // some transforms.
    const bool build = s_transformsGiven ? !m_indexFromPrototypes
                                         : (m_index.entries().isEmpty() || m_index.transforms().isEmpty());
    if (!build)
        return;
    m_index = HelpIndex(s_transformsGiven ? s_transforms : HelpIndex::transformsFromNodeFactory());
    m_indexFromPrototypes = s_transformsGiven;
    buildTree();
}

// The page of a help address, relative to ":/help/", or empty for any other address.
static QString pageOfUrl(const QUrl &url)
{
    const QString path = url.path();
    const QString prefix = QStringLiteral("/help/");
    if (url.scheme() != QLatin1String("qrc") || !path.startsWith(prefix))
        return QString();
    return path.mid(prefix.size());
}

QString HelpWindow::currentPage() const
{
    return pageOfUrl(m_browser->source());
}

void HelpWindow::showPage(const QString &page)
{
    const QUrl url(resourceUrlBase + page);
    if (currentPage() == page)
        m_browser->reload(); // the page of shortcuts is written anew each time it is shown
    else
        m_browser->setSource(url, QTextDocument::MarkdownResource);
    selectPageInTree(page);
    show();
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

QString HelpWindow::shortcutsMarkdown(const QList<QAction *> &actions)
{
    QString text = tr("# Keyboard shortcuts") + QStringLiteral("\n\n");
    QStringList rows;
    QSet<QString> seen;
    for (const QAction *action : actions) {
        if (!action || action->isSeparator() || action->shortcuts().isEmpty())
            continue;
        QStringList keys;
        for (const QKeySequence &sequence : action->shortcuts())
            keys << sequence.toString(QKeySequence::NativeText);
        QString name = plainActionText(action);
        // Undo and Redo carry the step they would take back; the page names the command.
        for (const QString &command : {tr("Undo"), tr("Redo")}) {
            if (name.startsWith(command + QLatin1Char(' ')))
                name = command;
        }
        const QString row = QStringLiteral("| %1 | %2 |").arg(tableCell(name), tableCell(keys.join(QStringLiteral(", "))));
        if (name.isEmpty() || seen.contains(row))
            continue;
        seen.insert(row);
        rows << row;
    }
    if (rows.isEmpty()) {
        text += tr("Open the help from the main window to see the shortcuts of its commands.") + QLatin1Char('\n');
    } else {
        text += tr("The keys of the main window's commands, as they are set now.") + QStringLiteral("\n\n");
        text += tr("| Command | Keys |") + QStringLiteral("\n|---|---|\n");
        text += rows.join(QLatin1Char('\n')) + QLatin1Char('\n');
    }
    text += QLatin1Char('\n') + tr("In the help window: Back (%1), Forward (%2), Find in Page (%3), Zoom In (%4), Zoom Out (%5).")
        .arg(QKeySequence(Qt::ALT | Qt::Key_Left).toString(QKeySequence::NativeText),
            QKeySequence(Qt::ALT | Qt::Key_Right).toString(QKeySequence::NativeText),
            QKeySequence(QKeySequence::Find).toString(QKeySequence::NativeText),
            QKeySequence(QKeySequence::ZoomIn).toString(QKeySequence::NativeText),
            QKeySequence(QKeySequence::ZoomOut).toString(QKeySequence::NativeText))
        + QLatin1Char('\n');
    return text;
}

void HelpWindow::buildTree()
{
    m_tree->clear();
    addEntries(m_tree->invisibleRootItem(), m_index.entries());
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        m_tree->topLevelItem(i)->setExpanded(true);
    if (!m_searchEdit->text().isEmpty())
        onSearchChanged(m_searchEdit->text());
    selectPageInTree(currentPage());
}

void HelpWindow::addEntries(QTreeWidgetItem *parent, const QList<HelpIndex::Entry> &entries)
{
    for (const HelpIndex::Entry &entry : entries) {
        auto *item = new QTreeWidgetItem(parent, {entry.title});
        item->setData(0, Qt::UserRole, entry.page);
        if (entry.page.isEmpty())
            item->setFlags(item->flags() & ~Qt::ItemIsSelectable);
        addEntries(item, entry.children);
    }
}

void HelpWindow::selectPageInTree(const QString &page)
{
    if (page.isEmpty())
        return;
    QTreeWidgetItemIterator it(m_tree);
    while (*it) {
        if ((*it)->data(0, Qt::UserRole).toString() == page) {
            for (QTreeWidgetItem *parent = (*it)->parent(); parent; parent = parent->parent())
                parent->setExpanded(true);
            const QSignalBlocker blocker(m_tree);
            m_tree->setCurrentItem(*it);
            m_tree->scrollToItem(*it);
            return;
        }
        ++it;
    }
    m_tree->clearSelection();
}

void HelpWindow::onAnchorClicked(const QUrl &url)
{
    if (isWebUrl(url)) {
        if (s_urlOpener)
            s_urlOpener(url);
        else
            QDesktopServices::openUrl(url);
        return;
    }
    const QUrl resolved = m_browser->source().resolved(url);
    if (resolved.path() == m_browser->source().path() && url.hasFragment()) {
        m_browser->scrollToAnchor(url.fragment());
        return;
    }
    if (resolved.path().endsWith(QLatin1String(".md")))
        m_browser->setSource(resolved, QTextDocument::MarkdownResource);
    else
        m_browser->setSource(resolved);
}

void HelpWindow::onSourceChanged(const QUrl &url)
{
    // The signal comes before source() reads the new address.
    const QString page = pageOfUrl(url);
    m_browser->polishPage();
    QString title = HelpIndex::pageTitle(page);
    if (page == HelpIndex::shortcutsPage())
        title = HelpIndex::tr("Keyboard shortcuts");
    else if (!page.isEmpty() && !QFile::exists(QStringLiteral(":/help/") + page))
        title = tr("Page not found");
    const QString base = tr("Tabrelle Help");
    setWindowTitle(title.isEmpty() || title == base ? base : tr("%1 - Tabrelle Help").arg(title));
    selectPageInTree(page);
    if (m_findBar->isVisible() && !m_findEdit->text().isEmpty())
        find(false);
}

void HelpWindow::onSearchChanged(const QString &text)
{
    const QStringList words = HelpIndex::searchWords(text);
    int shown = 0;
    QSet<QString> matching;
    for (const HelpIndex::Entry &entry : m_index.search(text))
        matching.insert(entry.page);
    // Leaves show when they match; a branch shows when any child shows.
    std::function<bool(QTreeWidgetItem *)> filter = [&](QTreeWidgetItem *item) {
        bool visible = false;
        for (int i = 0; i < item->childCount(); ++i)
            visible = filter(item->child(i)) || visible;
        if (item == m_tree->invisibleRootItem())
            return visible;
        const QString page = item->data(0, Qt::UserRole).toString();
        const bool self = words.isEmpty() || (!page.isEmpty() && matching.contains(page));
        if (self && !page.isEmpty() && !words.isEmpty())
            ++shown;
        visible = visible || self;
        item->setHidden(!visible);
        if (!words.isEmpty() && visible && item->childCount() > 0)
            item->setExpanded(true);
        return visible;
    };
    filter(m_tree->invisibleRootItem());
    if (words.isEmpty()) {
        m_searchHint->hide();
        selectPageInTree(currentPage());
    } else if (shown == 0) {
        m_searchHint->setText(tr("No page matches '%1'").arg(text.trimmed()));
        m_searchHint->show();
    } else {
        m_searchHint->setText(tr("%n page(s) match", nullptr, shown));
        m_searchHint->show();
    }
}

void HelpWindow::onSearchReturn()
{
    const QList<HelpIndex::Entry> found = m_index.search(m_searchEdit->text());
    if (!found.isEmpty())
        showPage(found.first().page);
}

void HelpWindow::onTreeItemActivated(QTreeWidgetItem *item)
{
    if (!item)
        return;
    const QString page = item->data(0, Qt::UserRole).toString();
    if (page.isEmpty()) {
        item->setExpanded(!item->isExpanded());
        return;
    }
    if (page != currentPage() || page == HelpIndex::shortcutsPage())
        showPage(page);
}

void HelpWindow::openFindBar()
{
    m_findBar->show();
    m_findEdit->setFocus(Qt::ShortcutFocusReason);
    m_findEdit->selectAll();
}

void HelpWindow::closeFindBar()
{
    m_findBar->hide();
    m_findStatus->clear();
    m_browser->setFocus();
}

void HelpWindow::onFindNext()
{
    find(false);
}

void HelpWindow::onFindPrevious()
{
    find(true);
}

void HelpWindow::find(bool backward)
{
    const QString text = m_findEdit->text();
    m_findStatus->clear();
    if (text.isEmpty())
        return;
    const QTextDocument::FindFlags flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (m_browser->find(text, flags))
        return;
    // Round the page once before saying there is none.
    QTextCursor cursor = m_browser->textCursor();
    cursor.movePosition(backward ? QTextCursor::End : QTextCursor::Start);
    m_browser->setTextCursor(cursor);
    if (m_browser->find(text, flags)) {
        m_findStatus->setText(backward ? tr("Continued from the end") : tr("Continued from the top"));
        return;
    }
    m_findStatus->setText(tr("Not found"));
}

bool HelpWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *keyEvent = static_cast<QKeyEvent *>(event);
        if (watched == m_searchEdit && keyEvent->key() == Qt::Key_Down) {
            m_tree->setFocus();
            if (!m_tree->currentItem() || m_tree->currentItem()->isHidden()) {
                QTreeWidgetItemIterator it(m_tree, QTreeWidgetItemIterator::NotHidden | QTreeWidgetItemIterator::Selectable);
                if (*it)
                    m_tree->setCurrentItem(*it);
            }
            return true;
        }
        if (watched == m_findEdit) {
            if (keyEvent->key() == Qt::Key_Escape) {
                closeFindBar();
                return true;
            }
            if (keyEvent->key() == Qt::Key_Return || keyEvent->key() == Qt::Key_Enter) {
                find(keyEvent->modifiers().testFlag(Qt::ShiftModifier));
                return true;
            }
        }
    }
    return QMainWindow::eventFilter(watched, event);
}
