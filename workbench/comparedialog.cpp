#include "workbench/comparedialog.h"

#include "core/values.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/datasettablemodel.h"
#include "workbench/dialogutil.h"

#include <QAbstractTableModel>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

// ----- comparing

QString TableComparison::keyOf(const QString &cell) const
{
    QString key = m_options.ignoreWhitespace ? cell.trimmed() : cell;
    return m_options.caseSensitive ? key : key.toLower();
}

bool TableComparison::cellsEqual(const QString &a, const QString &b) const
{
    const QString x = m_options.ignoreWhitespace ? a.trimmed() : a;
    const QString y = m_options.ignoreWhitespace ? b.trimmed() : b;
    if (m_options.numbersAsNumbers) {
        bool okX = false, okY = false;
        const double p = toNumber(x, false, false, &okX);
        const double q = toNumber(y, false, false, &okY);
        if (okX && okY)
            return p == q;
    }
    return x.compare(y, m_options.caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive) == 0;
}

void TableComparison::start(const Dataset &left, const Dataset &right, const Options &options)
{
    m_left = left;
    m_right = right;
    m_options = options;
    m_phase = 0;
    m_row = 0;
    m_rightRowOfKey.clear();
    m_rightKeyCount.clear();
    m_leftKeyCount.clear();
    m_rightMatched.assign(size_t(right.rowCount()), 0);
    m_rows.clear();
    m_columns.clear();
    m_matchedRows = 0;
    m_differentCells = 0;
    m_differentRows = 0;
    m_repeats.clear();
    if (m_options.byKey
        && (m_options.leftKey < 0 || m_options.leftKey >= left.columnCount() || m_options.rightKey < 0
            || m_options.rightKey >= right.columnCount()))
        m_options.byKey = false;

    // Columns: by position, or by header text.
    if (m_options.columnsByHeader) {
        std::vector<char> rightUsed(size_t(right.columnCount()), 0);
        std::vector<Column> leftOnly;
        for (int l = 0; l < left.columnCount(); ++l) {
            int found = -1;
            for (int r = 0; r < right.columnCount() && found < 0; ++r) {
                if (!rightUsed[size_t(r)] && left.headerText(DataColumnIndex(l)).trimmed().compare(
                                                 right.headerText(DataColumnIndex(r)).trimmed(), Qt::CaseInsensitive) == 0)
                    found = r;
            }
            if (found >= 0) {
                rightUsed[size_t(found)] = 1;
                m_columns.push_back({l, found});
            } else {
                leftOnly.push_back({l, -1});
            }
        }
        m_matchedColumns = int(m_columns.size());
        m_columns.insert(m_columns.end(), leftOnly.begin(), leftOnly.end());
        for (int r = 0; r < right.columnCount(); ++r) {
            if (!rightUsed[size_t(r)])
                m_columns.push_back({-1, r});
        }
    } else {
        m_matchedColumns = qMin(left.columnCount(), right.columnCount());
        for (int c = 0; c < qMax(left.columnCount(), right.columnCount()); ++c)
            m_columns.push_back({c < left.columnCount() ? c : -1, c < right.columnCount() ? c : -1});
    }
}

double TableComparison::progress() const
{
    const double total = double(m_left.rowCount()) + m_right.rowCount() * (m_options.byKey ? 2 : 1);
    if (isDone() || total <= 0)
        return 1.0;
    double done = 0;
    if (m_phase == 0)
        done = m_row;
    else if (m_phase == 1)
        done = (m_options.byKey ? m_right.rowCount() : 0) + m_row;
    else
        done = (m_options.byKey ? m_right.rowCount() : 0) + m_left.rowCount() + m_row;
    return done / total;
}

bool TableComparison::step(int budgetMs)
{
    QElapsedTimer timer;
    timer.start();
    const auto outOfTime = [&] { return budgetMs >= 0 && (m_row & 511) == 0 && timer.elapsed() >= budgetMs; };
    // Phase 0: the right keys, each key's first row.
    if (m_phase == 0) {
        if (m_options.byKey) {
            while (m_row < m_right.rowCount()) {
                const QString key = keyOf(m_right.cell(m_row, m_options.rightKey));
                if (!m_rightRowOfKey.contains(key))
                    m_rightRowOfKey.insert(key, m_row);
                ++m_rightKeyCount[key];
                ++m_row;
                if (outOfTime())
                    return false;
            }
        }
        m_phase = 1;
        m_row = 0;
    }
    // Phase 1: each left row, matched and compared cell by cell.
    if (m_phase == 1) {
        while (m_row < m_left.rowCount()) {
            const int l = m_row++;
            int r = -1;
            bool skip = false;
            if (m_options.byKey) {
                const QString key = keyOf(m_left.cell(l, m_options.leftKey));
                const int seen = ++m_leftKeyCount[key];
                skip = seen > 1; // only the first row of a repeated key is compared
                if (!skip)
                    r = m_rightRowOfKey.value(key, -1);
            } else if (l < m_right.rowCount()) {
                r = l;
            }
            if (skip)
                continue;
            Row row;
            row.left = l;
            row.right = r;
            if (r >= 0) {
                m_rightMatched[size_t(r)] = 1;
                ++m_matchedRows;
                for (int c = 0; c < m_matchedColumns; ++c) {
                    const Column &column = m_columns[size_t(c)];
                    if (!cellsEqual(m_left.cell(l, column.left), m_right.cell(r, column.right)))
                        ++row.differences;
                }
                m_differentCells += row.differences;
                if (row.differences > 0)
                    ++m_differentRows;
            }
            m_rows.push_back(row);
            if (outOfTime())
                return false;
        }
        // Matched rows first, then the left ones without a match.
        std::stable_partition(m_rows.begin(), m_rows.end(), [](const Row &row) { return row.right >= 0; });
        m_phase = 2;
        m_row = 0;
    }
    // Phase 2: right rows nobody matched (the first of each key only).
    if (m_phase == 2) {
        while (m_row < m_right.rowCount()) {
            const int r = m_row++;
            if (m_rightMatched[size_t(r)])
                continue;
            if (m_options.byKey && m_rightRowOfKey.value(keyOf(m_right.cell(r, m_options.rightKey))) != r)
                continue;
            Row row;
            row.right = r;
            m_rows.push_back(row);
            if (outOfTime())
                return false;
        }
        if (m_options.byKey) {
            for (auto it = m_leftKeyCount.constBegin(); it != m_leftKeyCount.constEnd(); ++it) {
                if (it.value() > 1)
                    m_repeats.append({it.key(), it.value(), true});
            }
            for (auto it = m_rightKeyCount.constBegin(); it != m_rightKeyCount.constEnd(); ++it) {
                if (it.value() > 1)
                    m_repeats.append({it.key(), it.value(), false});
            }
            std::sort(m_repeats.begin(), m_repeats.end(), [](const Repeat &a, const Repeat &b) {
                return a.left != b.left ? a.left : a.key < b.key;
            });
        }
        m_phase = 3;
    }
    return true;
}

// ----- the grid

class CompareModel : public QAbstractTableModel
{
public:
    CompareModel(const TableComparison &comparison, QObject *parent)
        : QAbstractTableModel(parent)
        , m_comparison(comparison)
    {
    }

    void reset(bool showRight, bool onlyDifferences)
    {
        beginResetModel();
        m_showRight = showRight;
        m_shown.clear();
        if (m_comparison.isDone()) {
            const auto &rows = m_comparison.rows();
            for (int i = 0; i < int(rows.size()); ++i) {
                if (!onlyDifferences || rows[size_t(i)].differences > 0 || rows[size_t(i)].side() != TableComparison::Both)
                    m_shown.push_back(i);
            }
        }
        endResetModel();
    }

    const TableComparison::Row &rowAt(int row) const { return m_comparison.rows()[size_t(m_shown[size_t(row)])]; }

    bool differs(int row, int column) const
    {
        if (column == 0)
            return false;
        const TableComparison::Row &r = rowAt(row);
        const TableComparison::Column &c = m_comparison.columns()[size_t(column - 1)];
        if (r.side() != TableComparison::Both || c.left < 0 || c.right < 0)
            return false;
        return !m_comparison.cellsEqual(m_comparison.left().cell(r.left, c.left), m_comparison.right().cell(r.right, c.right));
    }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : int(m_shown.size());
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() || !m_comparison.isDone() || m_comparison.columns().empty() ? 0 : int(m_comparison.columns().size()) + 1;
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid())
            return QVariant();
        const TableComparison::Row &r = rowAt(index.row());
        if (index.column() == 0) {
            if (role == Qt::DisplayRole)
                return r.side() == TableComparison::Both ? CompareDialog::tr("Both")
                    : r.side() == TableComparison::LeftOnly ? CompareDialog::tr("Left only")
                                                            : CompareDialog::tr("Right only");
            return QVariant();
        }
        const TableComparison::Column &c = m_comparison.columns()[size_t(index.column() - 1)];
        const bool useRight = (m_showRight && c.right >= 0 && r.right >= 0) || r.left < 0 || c.left < 0;
        const QString leftText = r.left >= 0 && c.left >= 0 ? m_comparison.left().cell(r.left, c.left) : QString();
        const QString rightText = r.right >= 0 && c.right >= 0 ? m_comparison.right().cell(r.right, c.right) : QString();
        switch (role) {
        case Qt::DisplayRole:
            return DatasetTableModel::displayText(useRight ? rightText : leftText, 1000, false);
        case Qt::BackgroundRole:
            if (differs(index.row(), index.column()))
                return DatasetTableModel::verifyColour(VerifyFailWarning, false);
            if (r.side() != TableComparison::Both || c.left < 0 || c.right < 0)
                return QColor(0xE0, 0xE0, 0xE0);
            return QVariant();
        case Qt::ForegroundRole:
            if (differs(index.row(), index.column()) || r.side() != TableComparison::Both || c.left < 0 || c.right < 0)
                return QColor(Qt::black);
            return QVariant();
        case Qt::ToolTipRole:
            if (differs(index.row(), index.column()))
                return CompareDialog::tr("Left: '%1'\nRight: '%2'").arg(leftText, rightText);
            return QVariant();
        default:
            return QVariant();
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role != Qt::DisplayRole)
            return QVariant();
        if (orientation == Qt::Vertical) {
            const TableComparison::Row &r = rowAt(section);
            if (r.left >= 0 && r.right >= 0 && r.left != r.right)
                return QStringLiteral("%1 / %2").arg(r.left + 1).arg(r.right + 1);
            return QString::number((r.left >= 0 ? r.left : r.right) + 1);
        }
        if (section == 0)
            return CompareDialog::tr("Side");
        const TableComparison::Column &c = m_comparison.columns()[size_t(section - 1)];
        return c.left >= 0 ? m_comparison.left().displayHeaders().value(c.left)
                           : m_comparison.right().displayHeaders().value(c.right);
    }

private:
    const TableComparison &m_comparison;
    std::vector<int> m_shown;
    bool m_showRight = false;
};

// ----- the dialog

CompareDialog::CompareDialog(GraphScene *scene, QWidget *parent)
    : QDialog(parent)
    , m_scene(scene)
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("CompareDialog"));
    setWindowTitle(tr("Compare Items"));
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &CompareDialog::compareStep);

    auto *layout = new QVBoxLayout(this);
    auto *grid = new QGridLayout;
    m_leftCombo = new QComboBox(this);
    m_leftCombo->setObjectName(QStringLiteral("leftCombo"));
    m_rightCombo = new QComboBox(this);
    m_rightCombo->setObjectName(QStringLiteral("rightCombo"));
    auto *leftLabel = new QLabel(tr("&Left:"), this);
    leftLabel->setBuddy(m_leftCombo);
    auto *rightLabel = new QLabel(tr("&Right:"), this);
    rightLabel->setBuddy(m_rightCombo);
    auto *swapButton = new QPushButton(tr("&Swap"), this);
    swapButton->setObjectName(QStringLiteral("swapButton"));
    swapButton->setAutoDefault(false);
    grid->addWidget(leftLabel, 0, 0);
    grid->addWidget(m_leftCombo, 0, 1);
    grid->addWidget(rightLabel, 0, 2);
    grid->addWidget(m_rightCombo, 0, 3);
    grid->addWidget(swapButton, 0, 4);

    m_matchRows = new QComboBox(this);
    m_matchRows->setObjectName(QStringLiteral("matchRowsCombo"));
    m_matchRows->addItems({tr("Row number"), tr("Key column")});
    m_leftKey = new QComboBox(this);
    m_leftKey->setObjectName(QStringLiteral("leftKeyCombo"));
    m_leftKey->setAccessibleName(tr("Left key column"));
    m_rightKey = new QComboBox(this);
    m_rightKey->setObjectName(QStringLiteral("rightKeyCombo"));
    m_rightKey->setAccessibleName(tr("Right key column"));
    auto *rowsLabel = new QLabel(tr("Match ro&ws by:"), this);
    rowsLabel->setBuddy(m_matchRows);
    grid->addWidget(rowsLabel, 1, 0);
    grid->addWidget(m_matchRows, 1, 1);
    auto *keys = new QHBoxLayout;
    keys->addWidget(m_leftKey, 1);
    keys->addWidget(m_rightKey, 1);
    grid->addLayout(keys, 1, 2, 1, 3);
    m_matchColumns = new QComboBox(this);
    m_matchColumns->setObjectName(QStringLiteral("matchColumnsCombo"));
    m_matchColumns->addItems({tr("Position"), tr("Header")});
    auto *columnsLabel = new QLabel(tr("Match colu&mns by:"), this);
    columnsLabel->setBuddy(m_matchColumns);
    grid->addWidget(columnsLabel, 2, 0);
    grid->addWidget(m_matchColumns, 2, 1);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    layout->addLayout(grid);

    auto *checks = new QHBoxLayout;
    m_caseCheck = new QCheckBox(tr("case sens&itive"), this);
    m_caseCheck->setObjectName(QStringLiteral("caseSensitiveCheck"));
    m_caseCheck->setChecked(true);
    m_whitespaceCheck = new QCheckBox(tr("Ignore leading and trailing w&hitespace"), this);
    m_whitespaceCheck->setObjectName(QStringLiteral("whitespaceCheck"));
    m_numbersCheck = new QCheckBox(tr("Compare num&bers as numbers"), this);
    m_numbersCheck->setObjectName(QStringLiteral("numbersCheck"));
    m_numbersCheck->setToolTip(tr("Two cells that both read as numbers compare by value, so \"1.50\" equals \"1.5\"."));
    checks->addWidget(m_caseCheck);
    checks->addWidget(m_whitespaceCheck);
    checks->addWidget(m_numbersCheck);
    checks->addStretch(1);
    layout->addLayout(checks);

    auto *run = new QHBoxLayout;
    m_compareButton = new QPushButton(tr("&Compare"), this);
    m_compareButton->setObjectName(QStringLiteral("compareButton"));
    m_compareButton->setDefault(true);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_progress->setAccessibleName(tr("Progress"));
    m_stopButton = new QPushButton(tr("St&op"), this);
    m_stopButton->setObjectName(QStringLiteral("stopButton"));
    run->addWidget(m_compareButton);
    run->addWidget(m_progress, 1);
    run->addWidget(m_stopButton);
    run->addStretch(1);
    layout->addLayout(run);

    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("summaryLabel"));
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_summary->setWordWrap(true);
    layout->addWidget(m_summary);

    auto *view = new QHBoxLayout;
    m_showRight = new QCheckBox(tr("Show right &values"), this);
    m_showRight->setObjectName(QStringLiteral("showRightCheck"));
    m_onlyDifferences = new QCheckBox(tr("Only rows with &differences"), this);
    m_onlyDifferences->setObjectName(QStringLiteral("onlyDifferencesCheck"));
    auto *next = new QPushButton(tr("&Next Difference"), this);
    next->setObjectName(QStringLiteral("nextButton"));
    next->setShortcut(QKeySequence(Qt::Key_F8));
    next->setToolTip(tr("Next Difference (F8)"));
    auto *previous = new QPushButton(tr("&Previous Difference"), this);
    previous->setObjectName(QStringLiteral("previousButton"));
    previous->setShortcut(QKeySequence(Qt::SHIFT + Qt::Key_F8));
    previous->setToolTip(tr("Previous Difference (Shift+F8)"));
    for (QPushButton *button : {next, previous, swapButton})
        button->setAutoDefault(false);
    view->addWidget(m_showRight);
    view->addWidget(m_onlyDifferences);
    view->addStretch(1);
    view->addWidget(previous);
    view->addWidget(next);
    layout->addLayout(view);

    m_model = new CompareModel(m_comparison, this);
    m_grid = new QTableView(this);
    m_grid->setObjectName(QStringLiteral("compareGrid"));
    m_grid->setAccessibleName(tr("Compared rows"));
    m_grid->setModel(m_model);
    layout->addWidget(m_grid, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *copy = buttons->addButton(tr("Cop&y Report"), QDialogButtonBox::ActionRole);
    copy->setObjectName(QStringLiteral("copyButton"));
    copy->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(copy, &QPushButton::clicked, this, &CompareDialog::copyReport);
    connect(swapButton, &QPushButton::clicked, this, &CompareDialog::swap);
    connect(m_compareButton, &QPushButton::clicked, this, &CompareDialog::compare);
    connect(m_stopButton, &QPushButton::clicked, this, &CompareDialog::stop);
    connect(next, &QPushButton::clicked, this, &CompareDialog::nextDifference);
    connect(previous, &QPushButton::clicked, this, &CompareDialog::previousDifference);
    connect(m_leftCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CompareDialog::fillKeyCombos);
    connect(m_rightCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &CompareDialog::fillKeyCombos);
    connect(m_matchRows, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this](int index) {
        m_leftKey->setEnabled(index == 1);
        m_rightKey->setEnabled(index == 1);
    });
    connect(m_showRight, &QCheckBox::toggled, this, [this] { m_model->reset(m_showRight->isChecked(), m_onlyDifferences->isChecked()); });
    connect(m_onlyDifferences, &QCheckBox::toggled, this,
        [this] { m_model->reset(m_showRight->isChecked(), m_onlyDifferences->isChecked()); });
    m_leftKey->setEnabled(false);
    m_rightKey->setEnabled(false);
    m_progress->hide();
    m_stopButton->hide();
    reloadItems();
    DialogGeometry::restore(this, QSize(900, 620));
}

CompareDialog::~CompareDialog() = default;

void CompareDialog::done(int result)
{
    m_timer->stop();
    DialogGeometry::save(this);
    QDialog::done(result);
}

void CompareDialog::reloadItems()
{
    const QSignalBlocker leftBlocker(m_leftCombo);
    const QSignalBlocker rightBlocker(m_rightCombo);
    m_leftCombo->clear();
    m_rightCombo->clear();
    if (m_scene) {
        for (Node *node : m_scene->nodes()) {
            if (node->status() != Node::UpToDate || node->typeName() == QLatin1String("Note"))
                continue;
            const QString text = QStringLiteral("%1 (%2)").arg(node->name(), node->displayTypeName());
            m_leftCombo->addItem(text, node->id());
            m_rightCombo->addItem(text, node->id());
        }
    }
    if (m_rightCombo->count() > 1)
        m_rightCombo->setCurrentIndex(1);
    m_compareButton->setEnabled(m_leftCombo->count() > 0);
    if (m_leftCombo->count() < 2)
        m_summary->setText(tr("Run the flow to compare items: fewer than 2 items have data."));
    fillKeyCombos();
}

void CompareDialog::fillKeyCombos()
{
    for (auto pair : {qMakePair(m_leftKey, leftNode()), qMakePair(m_rightKey, rightNode())}) {
        const int previous = pair.first->currentIndex();
        pair.first->clear();
        if (pair.second)
            pair.first->addItems(pair.second->dataset().displayHeaders());
        if (previous >= 0 && previous < pair.first->count())
            pair.first->setCurrentIndex(previous);
    }
}

Node *CompareDialog::leftNode() const
{
    return m_scene && m_leftCombo->currentIndex() >= 0 ? m_scene->node(m_leftCombo->currentData().toInt()) : nullptr;
}

Node *CompareDialog::rightNode() const
{
    return m_scene && m_rightCombo->currentIndex() >= 0 ? m_scene->node(m_rightCombo->currentData().toInt()) : nullptr;
}

void CompareDialog::setItems(Node *left, Node *right)
{
    if (left)
        m_leftCombo->setCurrentIndex(m_leftCombo->findData(left->id()));
    if (right)
        m_rightCombo->setCurrentIndex(m_rightCombo->findData(right->id()));
    fillKeyCombos();
}

void CompareDialog::swap()
{
    const int left = m_leftCombo->currentIndex();
    const int leftKey = m_leftKey->currentIndex();
    const int rightKey = m_rightKey->currentIndex();
    m_leftCombo->setCurrentIndex(m_rightCombo->currentIndex());
    m_rightCombo->setCurrentIndex(left);
    m_leftKey->setCurrentIndex(rightKey);
    m_rightKey->setCurrentIndex(leftKey);
}

bool CompareDialog::isComparing() const
{
    return m_timer->isActive();
}

void CompareDialog::compare()
{
    m_timer->stop();
    Node *left = leftNode();
    Node *right = rightNode();
    if (!left || !right)
        return;
    TableComparison::Options options;
    options.byKey = m_matchRows->currentIndex() == 1;
    options.leftKey = m_leftKey->currentIndex();
    options.rightKey = m_rightKey->currentIndex();
    options.columnsByHeader = m_matchColumns->currentIndex() == 1;
    options.caseSensitive = m_caseCheck->isChecked();
    options.ignoreWhitespace = m_whitespaceCheck->isChecked();
    options.numbersAsNumbers = m_numbersCheck->isChecked();
    if (options.byKey && (options.leftKey < 0 || options.rightKey < 0)) {
        m_summary->setText(tr("Choose a key column on each side."));
        return;
    }
    m_comparison.start(left->dataset(), right->dataset(), options);
    m_model->reset(false, false);
    if (qint64(left->dataset().rowCount()) + right->dataset().rowCount() <= SlicedRows) {
        m_comparison.step(-1);
        showResult();
        return;
    }
    m_summary->setText(tr("Comparing..."));
    m_progress->setValue(0);
    m_progress->show();
    m_stopButton->show();
    m_compareButton->setEnabled(false);
    m_timer->start();
}

void CompareDialog::compareStep()
{
    if (!m_comparison.step(50)) {
        m_progress->setValue(int(m_comparison.progress() * 100));
        return;
    }
    m_timer->stop();
    showResult();
}

void CompareDialog::stop()
{
    if (!m_timer->isActive())
        return;
    m_timer->stop();
    m_comparison = TableComparison();
    m_model->reset(false, false);
    m_progress->hide();
    m_stopButton->hide();
    m_compareButton->setEnabled(true);
    m_summary->setText(tr("Stopped: press Compare to compare the items."));
}

QStringList CompareDialog::summaryLines() const
{
    return m_summaryLines;
}

void CompareDialog::showResult()
{
    m_progress->hide();
    m_stopButton->hide();
    m_compareButton->setEnabled(true);
    const TableComparison &c = m_comparison;
    Node *left = leftNode();
    Node *right = rightNode();
    int leftOnlyRows = 0, rightOnlyRows = 0, leftOnlyColumns = 0, rightOnlyColumns = 0;
    for (const TableComparison::Row &row : c.rows()) {
        leftOnlyRows += row.side() == TableComparison::LeftOnly;
        rightOnlyRows += row.side() == TableComparison::RightOnly;
    }
    for (const TableComparison::Column &column : c.columns()) {
        leftOnlyColumns += column.right < 0;
        rightOnlyColumns += column.left < 0;
    }
    QStringList lines;
    lines << tr("Left: '%1' %2").arg(left ? left->name() : QString(), left ? left->sizeText() : QString());
    lines << tr("Right: '%1' %2").arg(right ? right->name() : QString(), right ? right->sizeText() : QString());
    lines << tr("%1 matched rows, %2 only in left, %3 only in right")
                 .arg(formatCount(c.matchedRows()), formatCount(leftOnlyRows), formatCount(rightOnlyRows));
    lines << tr("%1 matched columns, %2 only in left, %3 only in right")
                 .arg(formatCount(c.matchedColumns()), formatCount(leftOnlyColumns), formatCount(rightOnlyColumns));
    if (!c.options().columnsByHeader) {
        QStringList headers;
        for (int i = 0; i < c.matchedColumns(); ++i) {
            const QString a = c.left().headerText(DataColumnIndex(i));
            const QString b = c.right().headerText(DataColumnIndex(i));
            if (a != b)
                headers << tr("Header of column %1 differs: '%2' and '%3'").arg(i + 1).arg(a, b);
        }
        lines << headers.mid(0, 5);
        if (headers.size() > 5)
            lines << tr("+ %1 more").arg(headers.size() - 5);
    }
    if (c.differentCells() == 0 && leftOnlyRows == 0 && rightOnlyRows == 0 && leftOnlyColumns == 0
        && rightOnlyColumns == 0)
        lines << tr("The datasets are identical");
    else
        lines << tr("%1 cells differ in %2 rows").arg(formatCount(c.differentCells()), formatCount(c.differentRows()));
    for (int i = 0; i < qMin(5, c.repeats().size()); ++i) {
        const TableComparison::Repeat &repeat = c.repeats().at(i);
        lines << tr("Key '%1' occurs %2 times in %3; only its first row is compared")
                     .arg(repeat.key)
                     .arg(repeat.count)
                     .arg(repeat.left ? tr("left") : tr("right"));
    }
    m_summaryLines = lines;
    m_summary->setText(lines.join(QLatin1Char('\n')));
    m_model->reset(m_showRight->isChecked(), m_onlyDifferences->isChecked());
}

void CompareDialog::moveToDifference(int direction)
{
    const int rows = m_model->rowCount();
    const int columns = m_model->columnCount();
    if (rows == 0 || columns < 2)
        return;
    QModelIndex current = m_grid->currentIndex();
    int row = current.isValid() ? current.row() : (direction > 0 ? 0 : rows - 1);
    int column = current.isValid() ? current.column() : (direction > 0 ? 0 : columns);
    for (qint64 steps = 0; steps < qint64(rows) * columns; ++steps) {
        column += direction;
        if (column >= columns) {
            column = 1;
            row = (row + 1) % rows;
        } else if (column < 1) {
            column = columns - 1;
            row = (row - 1 + rows) % rows;
        }
        if (m_model->differs(row, column)) {
            m_grid->setCurrentIndex(m_model->index(row, column));
            m_grid->scrollTo(m_model->index(row, column));
            return;
        }
    }
}

void CompareDialog::nextDifference()
{
    moveToDifference(1);
}

void CompareDialog::previousDifference()
{
    moveToDifference(-1);
}

QString CompareDialog::report() const
{
    QStringList lines = m_summaryLines;
    lines << QString() << QStringList {tr("Row"), tr("Column"), tr("Left"), tr("Right")}.join(QLatin1Char('\t'));
    int written = 0;
    const TableComparison &c = m_comparison;
    if (c.isDone()) {
        for (const TableComparison::Row &row : c.rows()) {
            if (row.differences == 0)
                continue;
            for (int i = 0; i < c.matchedColumns() && written < 10000; ++i) {
                const TableComparison::Column &column = c.columns()[size_t(i)];
                const QString a = c.left().cell(row.left, column.left);
                const QString b = c.right().cell(row.right, column.right);
                if (c.cellsEqual(a, b))
                    continue;
                lines << QStringList {QString::number(row.left + 1),
                             c.left().displayHeaders().value(column.left), a, b}
                             .join(QLatin1Char('\t'));
                ++written;
            }
            if (written >= 10000)
                break;
        }
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

void CompareDialog::copyReport()
{
    QApplication::clipboard()->setText(report());
}
