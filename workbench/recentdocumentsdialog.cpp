#include "workbench/recentdocumentsdialog.h"

#include "core/settings.h"
#include "workbench/dialogutil.h"
#include "workbench/prompts.h"
#include "workbench/recentdocuments.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
constexpr int PathRole = Qt::UserRole + 1;
constexpr int PinnedRole = Qt::UserRole + 2;
} // namespace

RecentDocumentsDialog::RecentDocumentsDialog(Settings *settings, QWidget *parent)
    : QDialog(parent)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("RecentDocumentsDialog"));
    setWindowTitle(tr("Recent Documents"));
    setModal(true);

    auto *layout = new QVBoxLayout(this);
    m_filter = new QLineEdit(this);
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    layout->addWidget(m_filter);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("documentList"));
    m_list->setAccessibleName(tr("Recent documents"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("Name"), tr("Folder"), tr("Opened")});
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    m_list->setColumnWidth(0, 220);
    layout->addWidget(m_list, 1);

    auto *buttons = new QDialogButtonBox(this);
    m_openButton = buttons->addButton(tr("&Open"), QDialogButtonBox::AcceptRole);
    m_openButton->setObjectName(QStringLiteral("openButton"));
    m_openButton->setDefault(true);
    QPushButton *newButton = buttons->addButton(tr("&New Flow"), QDialogButtonBox::ActionRole);
    newButton->setObjectName(QStringLiteral("newButton"));
    QPushButton *otherButton = buttons->addButton(tr("Open O&ther..."), QDialogButtonBox::ActionRole);
    otherButton->setObjectName(QStringLiteral("otherButton"));
    m_pinButton = buttons->addButton(tr("&Pin"), QDialogButtonBox::ActionRole);
    m_pinButton->setObjectName(QStringLiteral("pinButton"));
    m_removeButton = buttons->addButton(tr("&Remove from List"), QDialogButtonBox::ActionRole);
    m_removeButton->setObjectName(QStringLiteral("removeButton"));
    QPushButton *close = buttons->addButton(QDialogButtonBox::Close);
    close->setObjectName(QStringLiteral("closeButton"));
    for (QPushButton *button : {newButton, otherButton, m_pinButton, m_removeButton, close})
        button->setAutoDefault(false);

    m_showAtStart = new QCheckBox(tr("&Show this at start-up"), this);
    m_showAtStart->setObjectName(QStringLiteral("showAtStart"));
    m_showAtStart->setChecked(settings && settings->intValue(QStringLiteral("startup_action")) == 0);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_showAtStart);
    bottom->addStretch(1);
    layout->addLayout(bottom);
    layout->addWidget(buttons);

    connect(m_filter, &QLineEdit::textChanged, this, &RecentDocumentsDialog::reload);
    connect(m_list, &QTreeWidget::itemActivated, this, &RecentDocumentsDialog::openSelected);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &RecentDocumentsDialog::updateButtons);
    connect(m_openButton, &QPushButton::clicked, this, &RecentDocumentsDialog::openSelected);
    connect(newButton, &QPushButton::clicked, this, [this] {
        m_choice = NewFlow;
        accept();
    });
    connect(otherButton, &QPushButton::clicked, this, [this] {
        m_choice = OpenOther;
        accept();
    });
    connect(m_pinButton, &QPushButton::clicked, this, &RecentDocumentsDialog::togglePin);
    connect(m_removeButton, &QPushButton::clicked, this, &RecentDocumentsDialog::removeSelected);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_showAtStart, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_settings)
            return;
        const int action = m_settings->intValue(QStringLiteral("startup_action"));
        if (on && action != 0)
            m_settings->setValue(QStringLiteral("startup_action"), 0);
        else if (!on && action == 0)
            m_settings->setValue(QStringLiteral("startup_action"), 1);
    });
    reload();
    DialogGeometry::restore(this, QSize(680, 420));
}

void RecentDocumentsDialog::reload()
{
    const QString previous = selectedPath();
    m_list->clear();
    if (!m_settings)
        return;
    const QString filter = m_filter->text().trimmed();
    const QStringList words = filter.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QTreeWidgetItem *select = nullptr;
    for (const RecentDocuments::Entry &entry : RecentDocuments::entries(m_settings)) {
        const QString native = QDir::toNativeSeparators(entry.path);
        bool shown = true;
        for (const QString &word : words)
            shown = shown && native.contains(word, Qt::CaseInsensitive);
        if (!shown)
            continue;
        const QFileInfo info(entry.path);
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(0, (entry.pinned ? QStringLiteral("\u2605 ") : QString()) + info.fileName());
        item->setText(1, QDir::toNativeSeparators(info.absolutePath()));
        item->setText(2, QLocale().toString(entry.opened.toLocalTime(), QLocale::ShortFormat));
        item->setData(0, PathRole, entry.path);
        item->setData(0, PinnedRole, entry.pinned);
        item->setToolTip(0, native);
        if (!info.exists()) {
            for (int c = 0; c < 3; ++c) {
                QFont font = item->font(c);
                font.setItalic(true);
                item->setFont(c, font);
                item->setToolTip(c, tr("File not found"));
            }
        }
        if (RecentDocuments::samePath(entry.path, previous))
            select = item;
    }
    m_list->setCurrentItem(select ? select : m_list->topLevelItem(0));
    updateButtons();
}

void RecentDocumentsDialog::updateButtons()
{
    QTreeWidgetItem *item = m_list->currentItem();
    m_openButton->setEnabled(item);
    m_pinButton->setEnabled(item);
    m_removeButton->setEnabled(item);
    m_pinButton->setText(item && item->data(0, PinnedRole).toBool() ? tr("&Unpin") : tr("&Pin"));
}

QString RecentDocumentsDialog::selectedPath() const
{
    QTreeWidgetItem *item = m_list ? m_list->currentItem() : nullptr;
    return item ? item->data(0, PathRole).toString() : QString();
}

QStringList RecentDocumentsDialog::shownPaths() const
{
    QStringList paths;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i)
        paths << m_list->topLevelItem(i)->data(0, PathRole).toString();
    return paths;
}

void RecentDocumentsDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

void RecentDocumentsDialog::selectPath(const QString &path)
{
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        if (RecentDocuments::samePath(m_list->topLevelItem(i)->data(0, PathRole).toString(), path))
            m_list->setCurrentItem(m_list->topLevelItem(i));
    }
}

void RecentDocumentsDialog::openSelected()
{
    const QString path = selectedPath();
    if (path.isEmpty())
        return;
    if (!QFileInfo::exists(path)) {
        const int answer = Prompts::instance()->ask(this, tr("Recent Documents"),
            tr("'%1' not found.").arg(QDir::toNativeSeparators(path)),
            tr("Remove it from the list of recent documents?"), {tr("&Remove"), tr("&Keep")}, 0, 1);
        if (answer == 0 && m_settings) {
            RecentDocuments::remove(m_settings, path);
            reload();
        }
        return;
    }
    m_choice = OpenDocument;
    m_chosenPath = path;
    accept();
}

void RecentDocumentsDialog::togglePin()
{
    QTreeWidgetItem *item = m_list->currentItem();
    if (!item || !m_settings)
        return;
    RecentDocuments::setPinned(m_settings, selectedPath(), !item->data(0, PinnedRole).toBool());
    reload();
}

void RecentDocumentsDialog::removeSelected()
{
    const QString path = selectedPath();
    if (path.isEmpty() || !m_settings)
        return;
    RecentDocuments::remove(m_settings, path);
    reload();
}

void RecentDocumentsDialog::done(int result)
{
    DialogGeometry::save(this);
    QDialog::done(result);
}
