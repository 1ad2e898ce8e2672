#include "workbench/explorekeysdialog.h"

#include "core/matching.h"
#include "core/values.h"
#include "flow/graphscene.h"
#include "transforms/keyguess.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/datasettablemodel.h"
#include "workbench/dialogutil.h"
#include "workbench/undo.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTimer>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>

// ----- counting

void KeyCounter::start(const Dataset &top, int topColumn, const Dataset &bottom, int bottomColumn, bool caseSensitive)
{
    m_top = top;
    m_bottom = bottom;
    m_topColumn = topColumn;
    m_bottomColumn = bottomColumn;
    m_caseSensitive = caseSensitive;
    m_index.clear();
    m_keys.clear();
    m_nextTop.assign(size_t(topColumn >= 0 ? top.rowCount() : 0), -1);
    m_nextBottom.assign(size_t(bottomColumn >= 0 ? bottom.rowCount() : 0), -1);
    m_side = 0;
    m_row = 0;
}

bool KeyCounter::step(int budgetMs)
{
    QElapsedTimer timer;
    timer.start();
    while (m_side <= 1) {
        const Dataset &data = m_side == 0 ? m_top : m_bottom;
        const int column = m_side == 0 ? m_topColumn : m_bottomColumn;
        const int rows = column >= 0 ? data.rowCount() : 0;
        std::vector<int> &next = m_side == 0 ? m_nextTop : m_nextBottom;
        while (m_row < rows) {
            const QString &cell = data.cell(m_row, column);
            const QString key = matchKey(cell, m_caseSensitive);
            auto found = m_index.constFind(key);
            int k;
            if (found == m_index.constEnd()) {
                k = int(m_keys.size());
                m_index.insert(key, k);
                Key entry;
                entry.text = cell;
                m_keys.push_back(entry);
            } else {
                k = found.value();
            }
            Key &entry = m_keys[size_t(k)];
            if (m_side == 0) {
                if (entry.topLast >= 0)
                    next[size_t(entry.topLast)] = m_row;
                else
                    entry.topFirst = m_row;
                entry.topLast = m_row;
                ++entry.top;
            } else {
                if (entry.bottomLast >= 0)
                    next[size_t(entry.bottomLast)] = m_row;
                else
                    entry.bottomFirst = m_row;
                entry.bottomLast = m_row;
                ++entry.bottom;
            }
            ++m_row;
            if (budgetMs >= 0 && (m_row & 1023) == 0 && timer.elapsed() >= budgetMs)
                return false;
        }
        ++m_side;
        m_row = 0;
    }
    return true;
}

double KeyCounter::progress() const
{
    const double total = double(m_nextTop.size() + m_nextBottom.size());
    if (isDone() || total <= 0)
        return 1.0;
    const double done = m_side == 0 ? m_row : double(m_nextTop.size()) + m_row;
    return done / total;
}

KeyCounter::Summary KeyCounter::summary() const
{
    Summary s;
    s.topRows = qint64(m_nextTop.size());
    s.bottomRows = qint64(m_nextBottom.size());
    for (const Key &key : m_keys) {
        if (key.top > 0) {
            ++s.topKeys;
            if (key.top > 1)
                ++s.topDuplicated;
        }
        if (key.bottom > 0) {
            ++s.bottomKeys;
            if (key.bottom > 1)
                ++s.bottomDuplicated;
        }
        if (key.top > 0 && key.bottom > 0) {
            ++s.bothKeys;
            s.bothTopRows += key.top;
            s.bothBottomRows += key.bottom;
            s.matchingRows += qint64(key.top) * qint64(key.bottom);
        } else if (key.top > 0) {
            ++s.topOnlyKeys;
            s.topOnlyRows += key.top;
        } else if (key.bottom > 0) {
            ++s.bottomOnlyKeys;
            s.bottomOnlyRows += key.bottom;
        }
    }
    return s;
}

QList<int> KeyCounter::rows(int keyIndex, int side, int limit) const
{
    QList<int> result;
    if (keyIndex < 0 || keyIndex >= int(m_keys.size()))
        return result;
    const Key &key = m_keys[size_t(keyIndex)];
    const std::vector<int> &next = side == 0 ? m_nextTop : m_nextBottom;
    for (int row = side == 0 ? key.topFirst : key.bottomFirst; row >= 0 && result.size() < limit;
         row = next[size_t(row)])
        result.append(row);
    return result;
}

// ----- the key table

namespace {

enum ShowFilter { ShowAll, ShowBoth, ShowTopOnly, ShowBottomOnly, ShowDuplicated, ShowWhitespace, ShowEmpty };

bool hasOuterWhitespace(const QString &text)
{
    return !text.isEmpty() && (text.front().isSpace() || text.back().isSpace());
}

QString inText(const KeyCounter::Key &key)
{
    if (key.top > 0 && key.bottom > 0)
        return ExploreKeysDialog::tr("Both");
    return key.top > 0 ? ExploreKeysDialog::tr("Top only") : ExploreKeysDialog::tr("Bottom only");
}

} // namespace

class KeyTableModel : public QAbstractTableModel
{
public:
    explicit KeyTableModel(QObject *parent)
        : QAbstractTableModel(parent)
    {
    }

    void setKeys(const std::vector<KeyCounter::Key> *keys, int filter)
    {
        beginResetModel();
        m_keys = keys;
        m_shown.clear();
        if (keys) {
            for (int i = 0; i < int(keys->size()); ++i) {
                if (accepts((*keys)[size_t(i)], filter))
                    m_shown.push_back(i);
            }
        }
        sortShown();
        endResetModel();
    }

    int keyIndex(int row) const { return row >= 0 && row < int(m_shown.size()) ? m_shown[size_t(row)] : -1; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : int(m_shown.size());
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override { return parent.isValid() ? 0 : 4; }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!m_keys || !index.isValid())
            return QVariant();
        const KeyCounter::Key &key = (*m_keys)[size_t(m_shown[size_t(index.row())])];
        if (role == Qt::DisplayRole) {
            switch (index.column()) {
            case 0:
                return DatasetTableModel::displayText(key.text, 1000, true);
            case 1:
                return formatCount(key.top);
            case 2:
                return formatCount(key.bottom);
            default:
                return inText(key);
            }
        }
        if (role == Qt::TextAlignmentRole && (index.column() == 1 || index.column() == 2))
            return int(Qt::AlignRight | Qt::AlignVCenter);
        if (role == Qt::ToolTipRole && index.column() == 0 && key.text.isEmpty())
            return ExploreKeysDialog::tr("Empty key");
        return QVariant();
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return QAbstractTableModel::headerData(section, orientation, role);
        switch (section) {
        case 0:
            return ExploreKeysDialog::tr("Key");
        case 1:
            return ExploreKeysDialog::tr("Top rows");
        case 2:
            return ExploreKeysDialog::tr("Bottom rows");
        default:
            return ExploreKeysDialog::tr("In");
        }
    }

    void sort(int column, Qt::SortOrder order) override
    {
        m_sortColumn = column;
        m_sortOrder = order;
        emit layoutAboutToBeChanged();
        sortShown();
        emit layoutChanged();
    }

    // The shown rows as tab-separated lines, headers first.
    QString text() const
    {
        QStringList lines;
        lines << QStringList {headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(),
                     headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
                     headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(),
                     headerData(3, Qt::Horizontal, Qt::DisplayRole).toString()}
                     .join(QLatin1Char('\t'));
        for (int i : m_shown) {
            const KeyCounter::Key &key = (*m_keys)[size_t(i)];
            lines << QStringList {key.text, QString::number(key.top), QString::number(key.bottom), inText(key)}.join(
                QLatin1Char('\t'));
        }
        return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
    }

private:
    static bool accepts(const KeyCounter::Key &key, int filter)
    {
        switch (filter) {
        case ShowBoth:
            return key.top > 0 && key.bottom > 0;
        case ShowTopOnly:
            return key.top > 0 && key.bottom == 0;
        case ShowBottomOnly:
            return key.top == 0 && key.bottom > 0;
        case ShowDuplicated:
            return key.top > 1 || key.bottom > 1;
        case ShowWhitespace:
            return hasOuterWhitespace(key.text);
        case ShowEmpty:
            return key.text.isEmpty();
        default:
            return true;
        }
    }

    void sortShown()
    {
        if (!m_keys || m_sortColumn < 0)
            return;
        const std::vector<KeyCounter::Key> &keys = *m_keys;
        const int column = m_sortColumn;
        auto less = [&keys, column](int a, int b) {
            const KeyCounter::Key &x = keys[size_t(a)];
            const KeyCounter::Key &y = keys[size_t(b)];
            switch (column) {
            case 0: {
                const int c = compareValues(x.text, y.text, true);
                return c != 0 ? c < 0 : a < b;
            }
            case 1:
                return x.top != y.top ? x.top < y.top : a < b;
            case 2:
                return x.bottom != y.bottom ? x.bottom < y.bottom : a < b;
            default: {
                const QString p = inText(x), q = inText(y);
                return p != q ? p < q : a < b;
            }
            }
        };
        if (m_sortOrder == Qt::AscendingOrder)
            std::stable_sort(m_shown.begin(), m_shown.end(), less);
        else
            std::stable_sort(m_shown.begin(), m_shown.end(), [&less](int a, int b) { return less(b, a); });
    }

    const std::vector<KeyCounter::Key> *m_keys = nullptr;
    std::vector<int> m_shown;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

// ----- the dialog

namespace {
constexpr int ShownRowLimit = 1000;

Parameter *namedParameter(const TransformNode *node, const QString &name)
{
    if (!node || !node->transform() || name.isEmpty())
        return nullptr;
    return node->transform()->parameter(name);
}
} // namespace

ExploreKeysDialog::ExploreKeysDialog(TransformNode *node, QWidget *parent, QUndoStack *undoStack)
    : QDialog(parent)
    , m_node(node)
    , m_scene(node ? node->graphScene() : nullptr)
    , m_undoStack(undoStack ? undoStack : findUndoStack(parent))
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("ExploreKeysDialog"));
    setWindowTitle(tr("Explore Keys - %1").arg(node ? node->name() : QString()));
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &ExploreKeysDialog::countStep);

    auto *layout = new QVBoxLayout(this);

    auto *top = new QHBoxLayout;
    m_topCombo = new QComboBox(this);
    m_topCombo->setObjectName(QStringLiteral("topKeyCombo"));
    m_topCombo->setAccessibleName(tr("Top key column"));
    m_bottomCombo = new QComboBox(this);
    m_bottomCombo->setObjectName(QStringLiteral("bottomKeyCombo"));
    m_bottomCombo->setAccessibleName(tr("Bottom key column"));
    m_caseCheck = new QCheckBox(tr("ca&se sensitive"), this);
    m_caseCheck->setObjectName(QStringLiteral("caseSensitiveCheck"));
    m_guessButton = new QPushButton(tr("&Guess"), this);
    m_guessButton->setObjectName(QStringLiteral("guessButton"));
    m_guessButton->setToolTip(tr("Guess the key columns from the headers and values of both datasets."));
    m_refreshButton = new QPushButton(tr("Re&fresh"), this);
    m_refreshButton->setObjectName(QStringLiteral("refreshButton"));
    auto *topLabel = new QLabel(tr("&Top key column:"), this);
    topLabel->setBuddy(m_topCombo);
    auto *bottomLabel = new QLabel(tr("&Bottom key column:"), this);
    bottomLabel->setBuddy(m_bottomCombo);
    top->addWidget(topLabel);
    top->addWidget(m_topCombo, 1);
    top->addSpacing(8);
    top->addWidget(bottomLabel);
    top->addWidget(m_bottomCombo, 1);
    top->addSpacing(8);
    top->addWidget(m_caseCheck);
    top->addWidget(m_guessButton);
    top->addWidget(m_refreshButton);
    layout->addLayout(top);

    auto *noData = new QHBoxLayout;
    m_noDataLabel = new QLabel(this);
    m_noDataLabel->setObjectName(QStringLiteral("noDataLabel"));
    m_noDataLabel->setWordWrap(true);
    m_runButton = new QPushButton(tr("&Run"), this);
    m_runButton->setObjectName(QStringLiteral("runButton"));
    noData->addWidget(m_noDataLabel, 1);
    noData->addWidget(m_runButton);
    layout->addLayout(noData);

    m_summaryLabel = new QLabel(this);
    m_summaryLabel->setObjectName(QStringLiteral("summaryLabel"));
    m_summaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_summaryLabel->setAccessibleName(tr("Summary"));
    layout->addWidget(m_summaryLabel);

    auto *progress = new QHBoxLayout;
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_progress->setAccessibleName(tr("Progress"));
    m_stopButton = new QPushButton(tr("St&op"), this);
    m_stopButton->setObjectName(QStringLiteral("stopButton"));
    progress->addWidget(m_progress, 1);
    progress->addWidget(m_stopButton);
    layout->addLayout(progress);

    auto *show = new QHBoxLayout;
    m_showCombo = new QComboBox(this);
    m_showCombo->setObjectName(QStringLiteral("showCombo"));
    m_showCombo->addItems({tr("All keys"), tr("In both"), tr("Top only"), tr("Bottom only"), tr("Duplicated"),
        tr("With leading or trailing whitespace"), tr("Empty key")});
    auto *showLabel = new QLabel(tr("S&how:"), this);
    showLabel->setBuddy(m_showCombo);
    show->addWidget(showLabel);
    show->addWidget(m_showCombo);
    show->addStretch(1);
    layout->addLayout(show);

    auto *splitter = new QSplitter(Qt::Vertical, this);
    m_keyModel = new KeyTableModel(this);
    m_keyView = new QTableView(splitter);
    m_keyView->setObjectName(QStringLiteral("keyTable"));
    m_keyView->setAccessibleName(tr("Keys"));
    m_keyView->setModel(m_keyModel);
    m_keyView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_keyView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_keyView->setSortingEnabled(true);
    m_keyView->sortByColumn(-1, Qt::AscendingOrder);
    m_keyView->horizontalHeader()->setSortIndicatorShown(true);
    m_keyView->horizontalHeader()->setStretchLastSection(true);
    m_keyView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Interactive);
    m_keyView->setColumnWidth(0, 260);
    m_keyView->verticalHeader()->hide();

    auto *rowsWidget = new QWidget(splitter);
    auto *rowsLayout = new QGridLayout(rowsWidget);
    rowsLayout->setContentsMargins(0, 0, 0, 0);
    m_topRowsModel = new DatasetTableModel(this);
    m_bottomRowsModel = new DatasetTableModel(this);
    m_topRowsView = new QTableView(rowsWidget);
    m_topRowsView->setObjectName(QStringLiteral("topRowsTable"));
    m_topRowsView->setAccessibleName(tr("Top rows with the key"));
    m_topRowsView->setModel(m_topRowsModel);
    m_bottomRowsView = new QTableView(rowsWidget);
    m_bottomRowsView->setObjectName(QStringLiteral("bottomRowsTable"));
    m_bottomRowsView->setAccessibleName(tr("Bottom rows with the key"));
    m_bottomRowsView->setModel(m_bottomRowsModel);
    m_topMoreLabel = new QLabel(rowsWidget);
    m_bottomMoreLabel = new QLabel(rowsWidget);
    rowsLayout->addWidget(new QLabel(tr("Top rows:"), rowsWidget), 0, 0);
    rowsLayout->addWidget(new QLabel(tr("Bottom rows:"), rowsWidget), 0, 1);
    rowsLayout->addWidget(m_topRowsView, 1, 0);
    rowsLayout->addWidget(m_bottomRowsView, 1, 1);
    rowsLayout->addWidget(m_topMoreLabel, 2, 0);
    rowsLayout->addWidget(m_bottomMoreLabel, 2, 1);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    layout->addWidget(splitter, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_useButton = buttons->addButton(tr("&Use These Columns"), QDialogButtonBox::ApplyRole);
    m_useButton->setObjectName(QStringLiteral("useButton"));
    m_useButton->setToolTip(tr("Set the item's key columns and case sensitivity to these."));
    m_copyButton = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    m_copyButton->setObjectName(QStringLiteral("copyButton"));
    m_copyButton->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_useButton, &QPushButton::clicked, this, &ExploreKeysDialog::useTheseColumns);
    connect(m_copyButton, &QPushButton::clicked, this, &ExploreKeysDialog::copyTable);
    connect(m_guessButton, &QPushButton::clicked, this, &ExploreKeysDialog::guess);
    connect(m_refreshButton, &QPushButton::clicked, this, &ExploreKeysDialog::refresh);
    connect(m_stopButton, &QPushButton::clicked, this, &ExploreKeysDialog::stop);
    connect(m_runButton, &QPushButton::clicked, this, &ExploreKeysDialog::runUpstream);
    connect(m_topCombo, QOverload<int>::of(&QComboBox::activated), this, &ExploreKeysDialog::refresh);
    connect(m_bottomCombo, QOverload<int>::of(&QComboBox::activated), this, &ExploreKeysDialog::refresh);
    connect(m_caseCheck, &QCheckBox::toggled, this, &ExploreKeysDialog::refresh);
    connect(m_showCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        if (!isCounting())
            m_keyModel->setKeys(&m_counter.keys(), m_showCombo->currentIndex());
        showSelectedKey();
    });
    connect(m_keyView->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &ExploreKeysDialog::showSelectedKey);
    // An undo or redo replaces every item: this dialog's item is gone.
    connect(UndoNotifier::instance(), &UndoNotifier::aboutToRestore, this, [this](GraphScene *scene) {
        if (scene == m_scene)
            reject();
    });

    const QList<Node *> inputs = node ? node->inputs() : QList<Node *>();
    m_topInput = inputs.value(0);
    m_bottomInput = inputs.value(1);
    const Parameter *topKey = namedParameter(node, node ? node->transform()->topKeyColumnParameterName() : QString());
    const Parameter *bottomKey =
        namedParameter(node, node ? node->transform()->bottomKeyColumnParameterName() : QString());
    const Parameter *caseSensitive =
        namedParameter(node, node ? node->transform()->caseSensitiveParameterName() : QString());
    fillColumnCombo(m_topCombo, m_topInput, topKey ? topKey->columnIndex().toInt() : -1);
    fillColumnCombo(m_bottomCombo, m_bottomInput, bottomKey ? bottomKey->columnIndex().toInt() : -1);
    {
        const QSignalBlocker blocker(m_caseCheck);
        m_caseCheck->setChecked(caseSensitive && caseSensitive->boolValue());
    }

    DialogGeometry::restore(this, QSize(860, 640));
    refresh();
}

ExploreKeysDialog::~ExploreKeysDialog() = default;

QUndoStack *ExploreKeysDialog::findUndoStack(QWidget *parent)
{
    for (QObject *object = parent; object; object = object->parent()) {
        const QVariant stack = object->property("undoStack");
        if (stack.canConvert<QObject *>()) {
            if (auto *undo = qobject_cast<QUndoStack *>(stack.value<QObject *>()))
                return undo;
        }
        if (auto *undo = object->findChild<QUndoStack *>(QString(), Qt::FindDirectChildrenOnly))
            return undo;
    }
    return nullptr;
}

void ExploreKeysDialog::done(int result)
{
    m_timer->stop();
    DialogGeometry::save(this);
    QDialog::done(result);
}

bool ExploreKeysDialog::isCounting() const
{
    return m_timer->isActive();
}

void ExploreKeysDialog::fillColumnCombo(QComboBox *combo, const Node *input, int column)
{
    const QSignalBlocker blocker(combo);
    combo->clear();
    if (!input)
        return;
    const QStringList headers = input->dataset().displayHeaders();
    for (int c = 0; c < headers.size(); ++c)
        combo->addItem(headers.at(c), c);
    combo->setCurrentIndex(column >= 0 && column < headers.size() ? column : -1);
}

void ExploreKeysDialog::setWorking(bool working)
{
    m_progress->setVisible(working);
    m_stopButton->setVisible(working);
    m_useButton->setEnabled(!working && m_node && m_topCombo->currentIndex() >= 0 && m_bottomCombo->currentIndex() >= 0);
    m_copyButton->setEnabled(!working);
}

void ExploreKeysDialog::refresh()
{
    m_timer->stop();
    m_keyModel->setKeys(nullptr, 0);
    m_topRowsModel->setDataset(Dataset());
    m_bottomRowsModel->setDataset(Dataset());
    m_topMoreLabel->clear();
    m_bottomMoreLabel->clear();

    // Whichever input has no data is named; the flow must run first.
    const Node *missing = nullptr;
    for (const Node *input : {m_topInput.data(), m_bottomInput.data()}) {
        if (!missing && (!input || input->status() != Node::UpToDate))
            missing = input;
    }
    const bool haveInputs = m_topInput && m_bottomInput;
    if (!haveInputs) {
        m_noDataLabel->setText(tr("Connect a top and a bottom item to explore their keys."));
    } else if (missing) {
        m_noDataLabel->setText(tr("Run the flow to explore keys: '%1' has no data.").arg(missing->name()));
    }
    m_noDataLabel->setVisible(!haveInputs || missing);
    m_runButton->setVisible(haveInputs && missing);
    m_runButton->setEnabled(m_scene && !m_scene->isRunning());
    m_guessButton->setEnabled(haveInputs && !missing);

    // Columns may have come since the combos were filled.
    if (m_topInput && m_topCombo->count() != m_topInput->dataset().columnCount())
        fillColumnCombo(m_topCombo, m_topInput, m_topCombo->currentIndex());
    if (m_bottomInput && m_bottomCombo->count() != m_bottomInput->dataset().columnCount())
        fillColumnCombo(m_bottomCombo, m_bottomInput, m_bottomCombo->currentIndex());

    if (!haveInputs || missing) {
        m_counter = KeyCounter();
        m_summaryLabel->clear();
        setWorking(false);
        return;
    }
    const Dataset &top = m_topInput->dataset();
    const Dataset &bottom = m_bottomInput->dataset();
    m_counter.start(top, m_topCombo->currentData().isValid() ? m_topCombo->currentData().toInt() : -1, bottom,
        m_bottomCombo->currentData().isValid() ? m_bottomCombo->currentData().toInt() : -1, m_caseCheck->isChecked());
    if (qint64(top.rowCount()) + bottom.rowCount() <= SlicedRows) {
        m_counter.step(-1);
        showCounts();
        return;
    }
    m_summaryLabel->setText(tr("Counting keys..."));
    m_progress->setValue(0);
    setWorking(true);
    m_timer->start();
}

void ExploreKeysDialog::countStep()
{
    if (!m_counter.step(50)) {
        m_progress->setValue(int(m_counter.progress() * 100));
        return;
    }
    m_timer->stop();
    showCounts();
}

void ExploreKeysDialog::stop()
{
    if (!m_timer->isActive())
        return;
    m_timer->stop();
    m_counter = KeyCounter();
    setWorking(false);
    m_summaryLabel->setText(tr("Stopped: press Refresh to count the keys."));
}

QStringList ExploreKeysDialog::summaryLines() const
{
    return m_summaryLabel->text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void ExploreKeysDialog::showCounts()
{
    setWorking(false);
    if (m_topCombo->currentIndex() < 0 || m_bottomCombo->currentIndex() < 0) {
        m_summaryLabel->setText(tr("Choose a top and a bottom key column."));
        m_keyModel->setKeys(nullptr, 0);
        return;
    }
    const KeyCounter::Summary s = m_counter.summary();
    QStringList lines;
    lines << tr("Top: %1 rows, %2 distinct keys, %3 duplicated keys")
                 .arg(formatCount(s.topRows), formatCount(s.topKeys), formatCount(s.topDuplicated));
    lines << tr("Bottom: %1 rows, %2 distinct keys, %3 duplicated keys")
                 .arg(formatCount(s.bottomRows), formatCount(s.bottomKeys), formatCount(s.bottomDuplicated));
    lines << tr("In both: %1 keys (%2 top rows, %3 bottom rows)")
                 .arg(formatCount(s.bothKeys), formatCount(s.bothTopRows), formatCount(s.bothBottomRows));
    lines << tr("Top only: %1 keys (%2 rows)").arg(formatCount(s.topOnlyKeys), formatCount(s.topOnlyRows));
    lines << tr("Bottom only: %1 keys (%2 rows)").arg(formatCount(s.bottomOnlyKeys), formatCount(s.bottomOnlyRows));
    lines << tr("A join by these keys gives %1 matching rows.").arg(formatCount(s.matchingRows));
    m_summaryLabel->setText(lines.join(QLatin1Char('\n')));
    m_keyModel->setKeys(&m_counter.keys(), m_showCombo->currentIndex());
    const int sortColumn = m_keyView->horizontalHeader()->sortIndicatorSection();
    if (sortColumn >= 0 && sortColumn < 4)
        m_keyModel->sort(sortColumn, m_keyView->horizontalHeader()->sortIndicatorOrder());
}

void ExploreKeysDialog::showSelectedKey()
{
    const int key = m_keyModel->keyIndex(m_keyView->currentIndex().row());
    const Node *inputs[2] = {m_topInput.data(), m_bottomInput.data()};
    DatasetTableModel *models[2] = {m_topRowsModel, m_bottomRowsModel};
    QLabel *more[2] = {m_topMoreLabel, m_bottomMoreLabel};
    for (int side = 0; side < 2; ++side) {
        models[side]->setDataset(Dataset());
        more[side]->clear();
        if (key < 0 || !inputs[side] || !m_counter.isDone())
            continue;
        const Dataset &source = inputs[side]->dataset();
        const KeyCounter::Key &entry = m_counter.keys()[size_t(key)];
        const int total = side == 0 ? entry.top : entry.bottom;
        Dataset rows;
        rows.setColumnCount(source.columnCount() + 1);
        rows.setHeaders(QStringList(tr("Row")) + source.displayHeaders());
        for (int row : m_counter.rows(key, side, ShownRowLimit))
            rows.appendRow(QStringList(QString::number(row + 1)) + source.row(DataRowIndex(row)), true);
        models[side]->setDataset(rows);
        if (total > ShownRowLimit)
            more[side]->setText(tr("+ %1 more").arg(formatCount(total - ShownRowLimit)));
    }
}

void ExploreKeysDialog::guess()
{
    Parameter *topKey = namedParameter(m_node, m_node ? m_node->transform()->topKeyColumnParameterName() : QString());
    Parameter *bottomKey =
        namedParameter(m_node, m_node ? m_node->transform()->bottomKeyColumnParameterName() : QString());
    if (!topKey || !bottomKey || !m_topInput || !m_bottomInput)
        return;
    // On copies, so that the item keeps its options until Use These Columns.
    Parameter top(*topKey);
    Parameter bottom(*bottomKey);
    top.setUpstream(m_topInput, false);
    bottom.setUpstream(m_bottomInput, false);
    if (!guessKeyColumns(&top, &bottom, false)) {
        m_summaryLabel->setText(tr("No likely pair of key columns was found.") + QLatin1Char('\n') +
            m_summaryLabel->text());
        return;
    }
    fillColumnCombo(m_topCombo, m_topInput, top.columnIndex().toInt());
    fillColumnCombo(m_bottomCombo, m_bottomInput, bottom.columnIndex().toInt());
    refresh();
}

void ExploreKeysDialog::useTheseColumns()
{
    if (!m_node || !m_scene || !m_topInput || !m_bottomInput)
        return;
    Transform *transform = m_node->transform();
    Parameter *topKey = namedParameter(m_node, transform->topKeyColumnParameterName());
    Parameter *bottomKey = namedParameter(m_node, transform->bottomKeyColumnParameterName());
    Parameter *caseSensitive = namedParameter(m_node, transform->caseSensitiveParameterName());
    const int topColumn = m_topCombo->currentIndex();
    const int bottomColumn = m_bottomCombo->currentIndex();
    if (!topKey || !bottomKey || topColumn < 0 || bottomColumn < 0)
        return;
    {
        UndoScope scope(m_scene, m_undoStack, tr("explore keys"));
        topKey->setValue(QVariant::fromValue(m_topInput->dataset().columnId(DataColumnIndex(topColumn))));
        bottomKey->setValue(QVariant::fromValue(m_bottomInput->dataset().columnId(DataColumnIndex(bottomColumn))));
        if (caseSensitive)
            caseSensitive->setValue(m_caseCheck->isChecked());
    }
    TransformNode *node = m_node;
    emit node->nodeParametersChanged(node);
    accept();
    m_scene->invalidate(node);
}

void ExploreKeysDialog::copyTable()
{
    QApplication::clipboard()->setText(m_keyModel->text());
}

void ExploreKeysDialog::runUpstream()
{
    if (!m_scene || m_scene->isRunning())
        return;
    const QList<Node *> selected = m_scene->selectedNodes();
    for (Node *node : selected)
        node->setSelected(false);
    for (Node *input : {m_topInput.data(), m_bottomInput.data()}) {
        if (input && input->status() != Node::UpToDate)
            input->setSelected(true);
    }
    m_scene->runSelected();
    for (Node *node : m_scene->selectedNodes())
        node->setSelected(false);
    for (Node *node : selected)
        node->setSelected(true);
    refresh();
}
