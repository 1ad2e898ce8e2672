#include "transformpane.h"

#include "graphviewpainter.h"

#include "core/settings.h"
#include "transforms/transform.h"

#include <algorithm>
#include <QAction>
#include <QCheckBox>
#include <QCollator>
#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QStandardItemModel>
#include <QToolButton>
#include <QVBoxLayout>
#include <QApplication>
#include <QRegularExpression>

namespace {

const int PrototypeRole = Qt::UserRole + 1;
const int HeaderRole = Qt::UserRole + 2;

void sortByName(QList<Transform *> &transforms)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(transforms.begin(), transforms.end(),
        [&collator](const Transform *a, const Transform *b) { return collator.compare(a->name(), b->name()) < 0; });
}

QToolButton *itemButton(const QString &text, const QString &tip, QAction *action, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(text);
    button->setToolTip(tip);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setAutoRaise(false);
    if (action) {
        QObject::connect(button, &QToolButton::clicked, action, &QAction::trigger);
        QObject::connect(action, &QAction::changed, button, [button, action] { button->setEnabled(action->isEnabled()); });
        button->setIcon(action->icon());
    }
    button->setAccessibleName(text);
    return button;
}

} // namespace

TransformPane::TransformPane(
    const QList<Transform *> &prototypes, Settings *settings, const ItemActions &actions, QWidget *parent)
    : QWidget(parent)
    , m_prototypes(prototypes)
    , m_settings(settings)
{
    setAccessibleName(tr("Transforms"));
    setMinimumWidth(200);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);

    auto *buttons = new QGridLayout;
    QToolButton *input = itemButton(tr("Input"),
        tr("Read a file into a dataset.\nYou can also drop files on the canvas or paste text."), actions.addInput, this);
    if (actions.addInput && actions.pasteAsInput) {
        auto *menu = new QMenu(input);
        menu->addAction(tr("Input from &File..."), actions.addInput, &QAction::trigger);
        menu->addAction(tr("Input from &Clipboard"), actions.pasteAsInput, &QAction::trigger);
        input->setMenu(menu);
        input->setPopupMode(QToolButton::MenuButtonPopup);
    }
    QToolButton *output =
        itemButton(tr("Output"), tr("Write the selected item's dataset to a file."), actions.addOutput, this);
    QToolButton *chart = itemButton(tr("Chart"), tr("Create chart."), actions.addChart, this);
    if (actions.addChart && actions.addChartFile) {
        auto *menu = new QMenu(chart);
        menu->addAction(tr("&Chart"), actions.addChart, &QAction::trigger);
        menu->addAction(tr("Chart and &File..."), actions.addChartFile, &QAction::trigger);
        chart->setMenu(menu);
        chart->setPopupMode(QToolButton::MenuButtonPopup);
    }
    if (!actions.addChart)
        chart->setEnabled(false);
    QToolButton *note = itemButton(tr("Note"), tr("Add a note to the canvas."), actions.addNote, this);
    buttons->addWidget(input, 0, 0);
    buttons->addWidget(output, 0, 1);
    buttons->addWidget(chart, 1, 0);
    buttons->addWidget(note, 1, 1);
    layout->addLayout(buttons);

    m_searchEdit = new QLineEdit(this);
    m_searchEdit->setPlaceholderText(tr("Search transforms"));
    m_searchEdit->setClearButtonEnabled(true);
    m_searchEdit->setAccessibleName(tr("Search transforms"));
    m_searchEdit->installEventFilter(this);
    layout->addWidget(m_searchEdit);

    auto *row = new QHBoxLayout;
    m_categoryCombo = new QComboBox(this);
    m_categoryCombo->setAccessibleName(tr("Transform category"));
    for (int i = 0; i <= int(TransformCategory::Other); ++i)
        m_categoryCombo->addItem(categoryText(TransformCategory(i)));
    m_showAdvancedCheckBox = new QCheckBox(tr("show advanced"), this);
    m_showAdvancedCheckBox->setAccessibleName(tr("Show advanced transforms"));
    row->addWidget(m_categoryCombo, 1);
    row->addWidget(m_showAdvancedCheckBox);
    layout->addLayout(row);

    m_model = new QStandardItemModel(this);
    m_transformList = new QListView(this);
    m_transformList->setModel(m_model);
    m_transformList->setAccessibleName(tr("Transform list"));
    m_transformList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_transformList->setUniformItemSizes(true);
    m_transformList->installEventFilter(this);
    layout->addWidget(m_transformList, 1);

    m_hintLabel = new QLabel(this);
    m_hintLabel->setWordWrap(true);
    m_hintLabel->hide();
    layout->addWidget(m_hintLabel);

    if (m_settings) {
        m_categoryCombo->setCurrentIndex(m_settings->intValue(QStringLiteral("transform_category")));
        m_showAdvancedCheckBox->setChecked(m_settings->boolValue(QStringLiteral("show_advanced_transforms")));
    }
    connect(m_searchEdit, &QLineEdit::textChanged, this, &TransformPane::rebuild);
    connect(m_categoryCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        if (m_settings)
            m_settings->setValue(QStringLiteral("transform_category"), index);
        rebuild();
    });
    connect(m_showAdvancedCheckBox, &QCheckBox::toggled, this, [this](bool on) {
        if (m_settings)
            m_settings->setValue(QStringLiteral("show_advanced_transforms"), on);
        rebuild();
        emit showAdvancedChanged(on);
    });
    connect(m_transformList, &QListView::clicked, this, &TransformPane::activate);
    connect(m_transformList, &QListView::activated, this, [this](const QModelIndex &index) {
        // A click already activated the row; activated also comes from a double-click.
        if (!QApplication::mouseButtons())
            activate(index);
    });
    rebuild();
}

bool TransformPane::showAdvanced() const
{
    return m_showAdvancedCheckBox->isChecked();
}

void TransformPane::setShowAdvanced(bool on)
{
    m_showAdvancedCheckBox->setChecked(on);
}

int TransformPane::category() const
{
    return m_categoryCombo->currentIndex();
}

void TransformPane::setCategory(int category)
{
    m_categoryCombo->setCurrentIndex(category);
}

void TransformPane::setSearchText(const QString &text)
{
    m_searchEdit->setText(text);
}

void TransformPane::focusSearch()
{
    m_searchEdit->setFocus(Qt::ShortcutFocusReason);
    m_searchEdit->selectAll();
}

QStringList TransformPane::searchWords(const QString &text)
{
    return text.toLower().split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

bool TransformPane::matches(const Transform *transform, const QStringList &words)
{
    return !words.isEmpty() && transform->keywordMatches(words) == words.size();
}

bool TransformPane::nameMatches(const Transform *transform, const QStringList &words)
{
    const QStringList nameWords = searchWords(transform->name());
    for (const QString &word : words) {
        const bool found = std::any_of(nameWords.begin(), nameWords.end(),
            [&word](const QString &nameWord) { return nameWord.startsWith(word); });
        if (!found)
            return false;
    }
    return true;
}

bool TransformPane::isListed(const Transform *transform, bool ignoreAdvanced) const
{
    return ignoreAdvanced || !transform->isAdvanced() || showAdvanced();
}

void TransformPane::rebuild()
{
    m_model->clear();
    const QStringList words = searchWords(m_searchEdit->text());
    const auto addTransform = [this](Transform *transform) {
        auto *item = new QStandardItem(transform->name());
        item->setData(QVariant::fromValue<void *>(transform), PrototypeRole);
        QString tip = QStringLiteral("<b>%1</b><br>%2<br><br>%3")
                          .arg(transform->name().toHtmlEscaped(), transform->description().toHtmlEscaped(),
                              transform->buttonTip().toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")));
        if (!transform->imageName().isEmpty())
            tip += transform->imageTag();
        item->setToolTip(tip);
        item->setAccessibleText(transform->name());
        m_model->appendRow(item);
    };
    QString hint;
    if (!words.isEmpty()) {
        QList<Transform *> found;
        int hiddenAdvanced = 0;
        for (Transform *transform : qAsConst(m_prototypes)) {
            if (!matches(transform, words))
                continue;
            if (isListed(transform, false))
                found << transform;
            else
                ++hiddenAdvanced;
        }
        // Transforms whose own name the words begin come first, so that typing a name and
        // pressing Enter adds that transform; then the others, each group by name.
        sortByName(found);
        std::stable_sort(found.begin(), found.end(), [&words](const Transform *a, const Transform *b) {
            return nameMatches(a, words) && !nameMatches(b, words);
        });
        for (Transform *transform : qAsConst(found))
            addTransform(transform);
        if (found.isEmpty() && hiddenAdvanced == 0) {
            hint = tr("No transform matches '%1'").arg(m_searchEdit->text().trimmed());
        } else {
            hint = tr("%1 match(es)").arg(found.size());
            if (hiddenAdvanced > 0)
                hint += QLatin1Char(' ')
                    + tr("%1 advanced transform(s) also match. Check 'show advanced' to see them.").arg(hiddenAdvanced);
        }
    } else {
        const int chosen = m_categoryCombo->currentIndex();
        for (int c = 1; c <= int(TransformCategory::Other); ++c) {
            if (chosen != 0 && chosen != c)
                continue;
            QList<Transform *> inCategory;
            for (Transform *transform : qAsConst(m_prototypes)) {
                if (int(transform->category()) == c && isListed(transform, false))
                    inCategory << transform;
            }
            if (inCategory.isEmpty())
                continue;
            sortByName(inCategory);
            if (chosen == 0) {
                auto *header = new QStandardItem(categoryText(TransformCategory(c)));
                QFont bold = header->font();
                bold.setBold(true);
                header->setFont(bold);
                header->setFlags(Qt::ItemIsEnabled);
                header->setData(true, HeaderRole);
                m_model->appendRow(header);
            }
            for (Transform *transform : qAsConst(inCategory))
                addTransform(transform);
        }
    }
    m_hintLabel->setText(hint);
    m_hintLabel->setVisible(!hint.isEmpty());
}

QStringList TransformPane::listedTexts() const
{
    QStringList texts;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QStandardItem *item = m_model->item(row);
        texts << (item->data(HeaderRole).toBool() ? QStringLiteral("[%1]").arg(item->text()) : item->text());
    }
    return texts;
}

QString TransformPane::hintText() const
{
    return m_hintLabel->text();
}

void TransformPane::activate(const QModelIndex &index)
{
    if (!index.isValid() || index.data(HeaderRole).toBool())
        return;
    const auto *transform = static_cast<const Transform *>(index.data(PrototypeRole).value<void *>());
    if (transform)
        emit transformActivated(transform);
}

bool TransformPane::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_searchEdit) {
            if (key->key() == Qt::Key_Down) {
                m_transformList->setFocus();
                for (int row = 0; row < m_model->rowCount(); ++row) {
                    if (!m_model->item(row)->data(HeaderRole).toBool()) {
                        m_transformList->setCurrentIndex(m_model->index(row, 0));
                        break;
                    }
                }
                return true;
            }
            if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
                for (int row = 0; row < m_model->rowCount(); ++row) {
                    if (!m_model->item(row)->data(HeaderRole).toBool()) {
                        activate(m_model->index(row, 0));
                        break;
                    }
                }
                return true;
            }
        } else if (watched == m_transformList) {
            if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter || key->key() == Qt::Key_Space) {
                activate(m_transformList->currentIndex());
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}
