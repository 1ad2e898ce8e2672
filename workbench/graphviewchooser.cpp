#include "graphviewchooser.h"

#include "transformpane.h"

#include "transforms/transform.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

namespace {

const int PrototypeRole = Qt::UserRole + 1;
const int KindRole = Qt::UserRole + 2;

} // namespace

ItemChooserPopup::ItemChooserPopup(
    const QString &startName, const QList<Transform *> &prototypes, bool showAdvanced, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_prototypes(prototypes)
    , m_showAdvanced(showAdvanced)
{
    setObjectName(QStringLiteral("itemChooserPopup"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    m_search = new QLineEdit(this);
    m_search->setPlaceholderText(tr("Add item connected from '%1'").arg(startName));
    m_search->installEventFilter(this);
    m_list = new QListWidget(this);
    m_list->installEventFilter(this);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    resize(280, 320);
    connect(m_search, &QLineEdit::textChanged, this, &ItemChooserPopup::filter);
    connect(m_list, &QListWidget::itemClicked, this, &ItemChooserPopup::choose);
    filter();
    m_search->setFocus();
}

QStringList ItemChooserPopup::listedTexts() const
{
    QStringList texts;
    for (int row = 0; row < m_list->count(); ++row)
        texts << m_list->item(row)->text();
    return texts;
}

void ItemChooserPopup::filter()
{
    m_list->clear();
    const QStringList words = TransformPane::searchWords(m_search->text());
    const QString typed = words.join(QLatin1Char(' '));
    auto addKind = [this, &typed](const QString &text, const QString &word, Kind kind) {
        if (!typed.isEmpty() && !word.startsWith(typed) && !text.toLower().startsWith(typed))
            return;
        auto *item = new QListWidgetItem(text, m_list);
        item->setData(KindRole, int(kind));
    };
    addKind(tr("Output"), QStringLiteral("output"), OutputItem);
    addKind(tr("Chart"), QStringLiteral("chart"), ChartItem);
    QList<Transform *> listed;
    for (Transform *transform : qAsConst(m_prototypes)) {
        if (transform->isAdvanced() && !m_showAdvanced)
            continue;
        if (words.isEmpty() || TransformPane::matches(transform, words))
            listed << transform;
    }
    std::sort(listed.begin(), listed.end(),
        [](Transform *a, Transform *b) { return QString::localeAwareCompare(a->name(), b->name()) < 0; });
    for (Transform *transform : qAsConst(listed)) {
        auto *item = new QListWidgetItem(transform->name(), m_list);
        item->setData(PrototypeRole, QVariant::fromValue<void *>(transform));
        item->setData(KindRole, int(TransformItem));
    }
    m_list->setCurrentRow(0);
}

void ItemChooserPopup::choose(QListWidgetItem *item)
{
    if (!item)
        return;
    const auto *prototype = static_cast<const Transform *>(item->data(PrototypeRole).value<void *>());
    emit chosen(item->data(KindRole).toInt(), prototype);
    close();
}

bool ItemChooserPopup::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            choose(m_list->currentItem());
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            close();
            return true;
        }
        if (watched == m_search && (key->key() == Qt::Key_Down || key->key() == Qt::Key_Up)) {
            const int row = m_list->currentRow() + (key->key() == Qt::Key_Down ? 1 : -1);
            if (row >= 0 && row < m_list->count())
                m_list->setCurrentRow(row);
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}
