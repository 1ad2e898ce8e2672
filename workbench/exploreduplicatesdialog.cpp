#include "workbench/exploreduplicatesdialog.h"

#include "core/values.h"
#include "flow/graphscene.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/datasettablemodel.h"
#include "workbench/dialogutil.h"
#include "workbench/explorekeysdialog.h"
#include "workbench/undo.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int SlicedRows = 20000;
constexpr int RowRole = Qt::UserRole + 1;
constexpr int GroupRole = Qt::UserRole + 2;

Parameter *namedParameter(const TransformNode *node, QString (Transform::*name)() const)
{
    if (!node || !node->transform())
        return nullptr;
    const QString parameterName = (node->transform()->*name)();
    return parameterName.isEmpty() ? nullptr : node->transform()->parameter(parameterName);
}

void fillSelection(QComboBox *combo, const Parameter *parameter, const QStringList &fallback)
{
    const QStringList choices = parameter ? parameter->selectionOptions() : fallback;
    combo->addItems(choices.isEmpty() ? fallback : choices);
    if (parameter)
        combo->setCurrentIndex(qMax(0, combo->findText(parameter->selectionText())));
}

} // namespace

ExploreDuplicatesDialog::ExploreDuplicatesDialog(TransformNode *node, QWidget *parent, QUndoStack *undoStack)
    : QDialog(parent)
    , m_node(node)
    , m_scene(node ? node->graphScene() : nullptr)
    , m_undoStack(undoStack ? undoStack : ExploreKeysDialog::findUndoStack(parent))
    , m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("ExploreDuplicatesDialog"));
    setWindowTitle(tr("Explore Duplicates - %1").arg(node ? node->name() : QString()));
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &ExploreDuplicatesDialog::findStep);
    m_input = node ? node->inputs().value(0) : nullptr;

    const Parameter *columns = namedParameter(node, &Transform::columnsParameterName);
    const Parameter *matchType = namedParameter(node, &Transform::matchTypeParameterName);
    const Parameter *fuzziness = namedParameter(node, &Transform::fuzzinessParameterName);
    const Parameter *caseSensitive = namedParameter(node, &Transform::caseSensitiveParameterName);
    const Parameter *ignoreSpaces = namedParameter(node, &Transform::ignoreSpacesParameterName);
    const Parameter *ignorePunctuation = namedParameter(node, &Transform::ignorePunctuationParameterName);
    const Parameter *mode = namedParameter(node, &Transform::dedupeModeParameterName);

    auto *layout = new QVBoxLayout(this);
    auto *options = new QHBoxLayout;
    auto *columnsBox = new QVBoxLayout;
    auto *columnsLabel = new QLabel(tr("Co&lumns:"), this);
    m_columnsList = new QListWidget(this);
    m_columnsList->setObjectName(QStringLiteral("columnsList"));
    m_columnsList->setAccessibleName(tr("Columns"));
    if (columns)
        m_columnsList->setToolTip(columns->tooltip());
    m_columnsList->setMinimumHeight(100);
    columnsLabel->setBuddy(m_columnsList);
    const QList<DataColumnIndex> chosen = columns ? columns->columnIndexes() : QList<DataColumnIndex>();
    if (m_input) {
        const QStringList headers = m_input->dataset().displayHeaders();
        for (int c = 0; c < headers.size(); ++c) {
            auto *item = new QListWidgetItem(headers.at(c), m_columnsList);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
            item->setCheckState(chosen.contains(DataColumnIndex(c)) ? Qt::Checked : Qt::Unchecked);
        }
    }
    columnsBox->addWidget(columnsLabel);
    columnsBox->addWidget(m_columnsList);
    options->addLayout(columnsBox, 1);

    auto *form = new QFormLayout;
    m_matchCombo = new QComboBox(this);
    m_matchCombo->setObjectName(QStringLiteral("matchCombo"));
    fillSelection(m_matchCombo, matchType, {QStringLiteral("Exact"), QStringLiteral("Fuzzy")});
    m_fuzzinessSpin = new QSpinBox(this);
    m_fuzzinessSpin->setObjectName(QStringLiteral("fuzzinessSpin"));
    m_fuzzinessSpin->setRange(50, 100);
    m_fuzzinessSpin->setSuffix(QStringLiteral("%"));
    m_fuzzinessSpin->setValue(fuzziness ? fuzziness->intValue() : 90);
    m_caseCheck = new QCheckBox(tr("case &sensitive"), this);
    m_caseCheck->setObjectName(QStringLiteral("caseSensitiveCheck"));
    m_caseCheck->setChecked(caseSensitive && caseSensitive->boolValue());
    m_spacesCheck = new QCheckBox(tr("ignore &whitespace"), this);
    m_spacesCheck->setObjectName(QStringLiteral("ignoreSpacesCheck"));
    m_spacesCheck->setChecked(ignoreSpaces && ignoreSpaces->boolValue());
    m_punctuationCheck = new QCheckBox(tr("ignore &punctuation"), this);
    m_punctuationCheck->setObjectName(QStringLiteral("ignorePunctuationCheck"));
    m_punctuationCheck->setChecked(ignorePunctuation && ignorePunctuation->boolValue());
    m_modeCombo = new QComboBox(this);
    m_modeCombo->setObjectName(QStringLiteral("modeCombo"));
    fillSelection(m_modeCombo, mode,
        {QStringLiteral("Remove duplicates"), QStringLiteral("Keep only duplicates"), QStringLiteral("Mark duplicates")});
    for (auto pair : {qMakePair(static_cast<QWidget *>(m_matchCombo), matchType),
             qMakePair(static_cast<QWidget *>(m_fuzzinessSpin), fuzziness),
             qMakePair(static_cast<QWidget *>(m_caseCheck), caseSensitive),
             qMakePair(static_cast<QWidget *>(m_spacesCheck), ignoreSpaces),
             qMakePair(static_cast<QWidget *>(m_punctuationCheck), ignorePunctuation),
             qMakePair(static_cast<QWidget *>(m_modeCombo), mode)}) {
        if (pair.second) {
            pair.first->setToolTip(pair.second->tooltip());
            pair.first->setAccessibleDescription(pair.second->tooltip());
        }
    }
    m_matchCombo->setAccessibleName(tr("Match"));
    m_fuzzinessSpin->setAccessibleName(tr("Closeness"));
    m_modeCombo->setAccessibleName(tr("Mode"));
    form->addRow(tr("&Match:"), m_matchCombo);
    form->addRow(tr("Clos&eness:"), m_fuzzinessSpin);
    form->addRow(QString(), m_caseCheck);
    form->addRow(QString(), m_spacesCheck);
    form->addRow(QString(), m_punctuationCheck);
    form->addRow(tr("Mo&de:"), m_modeCombo);
    options->addLayout(form);
    layout->addLayout(options);

    auto *findRow = new QHBoxLayout;
    m_findButton = new QPushButton(tr("&Find"), this);
    m_findButton->setObjectName(QStringLiteral("findButton"));
    m_findButton->setToolTip(tr("Find the groups of matching rows with these options. Fuzzy matching compares each "
                                "row with every group found so far, so it suits some tens of thousands of rows."));
    m_orderCombo = new QComboBox(this);
    m_orderCombo->setObjectName(QStringLiteral("orderCombo"));
    m_orderCombo->addItems({tr("Largest first"), tr("First row")});
    auto *orderLabel = new QLabel(tr("&Order:"), this);
    orderLabel->setBuddy(m_orderCombo);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_progress->setAccessibleName(tr("Progress"));
    m_stopButton = new QPushButton(tr("S&top"), this);
    m_stopButton->setObjectName(QStringLiteral("stopButton"));
    findRow->addWidget(m_findButton);
    findRow->addWidget(m_progress, 1);
    findRow->addWidget(m_stopButton);
    findRow->addStretch(1);
    findRow->addWidget(orderLabel);
    findRow->addWidget(m_orderCombo);
    layout->addLayout(findRow);

    m_summaryLabel = new QLabel(this);
    m_summaryLabel->setObjectName(QStringLiteral("summaryLabel"));
    m_summaryLabel->setWordWrap(true);
    m_summaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_summaryLabel);

    auto *splitter = new QSplitter(Qt::Vertical, this);
    m_tree = new QTreeWidget(splitter);
    m_tree->setObjectName(QStringLiteral("groupTree"));
    m_tree->setAccessibleName(tr("Duplicate groups"));
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_rowView = new QTableView(splitter);
    m_rowView->setObjectName(QStringLiteral("rowTable"));
    m_rowView->setAccessibleName(tr("Input row"));
    m_rowModel = new DatasetTableModel(this);
    m_rowView->setModel(m_rowModel);
    m_rowView->verticalHeader()->hide();
    splitter->setStretchFactor(0, 4);
    splitter->setStretchFactor(1, 1);
    layout->addWidget(splitter, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_useButton = buttons->addButton(tr("&Use These Options"), QDialogButtonBox::ApplyRole);
    m_useButton->setObjectName(QStringLiteral("useButton"));
    m_useButton->setToolTip(tr("Give these options to the item."));
    m_copyButton = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    m_copyButton->setObjectName(QStringLiteral("copyButton"));
    m_copyButton->setAutoDefault(false);
    m_findButton->setDefault(true);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_findButton, &QPushButton::clicked, this, &ExploreDuplicatesDialog::find);
    connect(m_stopButton, &QPushButton::clicked, this, &ExploreDuplicatesDialog::stop);
    connect(m_useButton, &QPushButton::clicked, this, &ExploreDuplicatesDialog::useTheseOptions);
    connect(m_copyButton, &QPushButton::clicked, this, &ExploreDuplicatesDialog::copyTree);
    connect(m_orderCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        if (!isFinding() && m_finder.isDone())
            showGroups();
    });
    connect(m_matchCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &ExploreDuplicatesDialog::updateFuzziness);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &ExploreDuplicatesDialog::showSelectedRow);
    connect(UndoNotifier::instance(), &UndoNotifier::aboutToRestore, this, [this](GraphScene *scene) {
        if (scene == m_scene)
            reject();
    });
    updateFuzziness();
    m_progress->hide();
    m_stopButton->hide();
    m_useButton->setEnabled(m_node && columns);

    DialogGeometry::restore(this, QSize(820, 640));
    if (!m_input || m_input->status() != Node::UpToDate) {
        m_summaryLabel->setText(
            tr("Run the flow to explore duplicates: '%1' has no data.").arg(m_input ? m_input->name() : tr("<unset>")));
        m_findButton->setEnabled(false);
    } else if (m_input->dataset().rowCount() <= SlicedRows) {
        find();
    } else {
        m_summaryLabel->setText(tr("Press Find to look for duplicates in %1 rows.")
                                    .arg(formatCount(m_input->dataset().rowCount())));
    }
}

ExploreDuplicatesDialog::~ExploreDuplicatesDialog() = default;

void ExploreDuplicatesDialog::done(int result)
{
    m_timer->stop();
    DialogGeometry::save(this);
    QDialog::done(result);
}

void ExploreDuplicatesDialog::updateFuzziness()
{
    m_fuzzinessSpin->setEnabled(m_matchCombo->currentText() == QLatin1String("Fuzzy"));
}

bool ExploreDuplicatesDialog::isFinding() const
{
    return m_timer->isActive();
}

QString ExploreDuplicatesDialog::summaryText() const
{
    return m_summaryLabel->text();
}

DuplicateFinder::Options ExploreDuplicatesDialog::options() const
{
    DuplicateFinder::Options options;
    for (int c = 0; c < m_columnsList->count(); ++c) {
        if (m_columnsList->item(c)->checkState() == Qt::Checked)
            options.columns << c;
    }
    options.fuzzy = m_matchCombo->currentText() == QLatin1String("Fuzzy");
    options.fuzziness = m_fuzzinessSpin->value();
    options.caseSensitive = m_caseCheck->isChecked();
    options.ignoreSpaces = m_spacesCheck->isChecked();
    options.ignorePunctuation = m_punctuationCheck->isChecked();
    return options;
}

void ExploreDuplicatesDialog::find()
{
    m_timer->stop();
    m_tree->clear();
    m_rowModel->setDataset(Dataset());
    if (!m_input || m_input->status() != Node::UpToDate)
        return;
    const DuplicateFinder::Options working = options();
    if (working.columns.isEmpty()) {
        m_finder = DuplicateFinder();
        m_summaryLabel->setText(tr("Choose the columns to compare."));
        return;
    }
    m_finder.start(m_input->dataset(), working);
    if (m_input->dataset().rowCount() <= SlicedRows && !working.fuzzy) {
        m_finder.step(-1);
        showGroups();
        return;
    }
    m_summaryLabel->setText(tr("Looking for duplicates..."));
    m_progress->setValue(0);
    m_progress->show();
    m_stopButton->show();
    m_findButton->setEnabled(false);
    m_useButton->setEnabled(false);
    m_timer->start();
}

void ExploreDuplicatesDialog::findStep()
{
    if (!m_finder.step(50)) {
        m_progress->setValue(int(m_finder.progress() * 100));
        return;
    }
    m_timer->stop();
    showGroups();
}

void ExploreDuplicatesDialog::stop()
{
    if (!m_timer->isActive())
        return;
    m_timer->stop();
    m_finder = DuplicateFinder();
    m_progress->hide();
    m_stopButton->hide();
    m_findButton->setEnabled(true);
    m_useButton->setEnabled(m_node);
    m_summaryLabel->setText(tr("Stopped: press Find to look for duplicates."));
}

void ExploreDuplicatesDialog::showGroups()
{
    m_progress->hide();
    m_stopButton->hide();
    m_findButton->setEnabled(true);
    m_useButton->setEnabled(m_node);
    m_tree->clear();
    if (!m_input)
        return;
    const Dataset &data = m_input->dataset();
    const DuplicateFinder::Options &used = m_finder.options();
    const std::vector<int> groups = m_finder.duplicateGroups();
    qint64 rowsInGroups = 0;
    for (int g : groups)
        rowsInGroups += qint64(m_finder.groups()[size_t(g)].rows.size());
    if (groups.empty())
        m_summaryLabel->setText(tr("No duplicates found"));
    else
        m_summaryLabel->setText(tr("%1 duplicate group(s) with %2 rows; 'Remove duplicates' would remove %3 rows.")
                                    .arg(formatCount(qint64(groups.size())), formatCount(rowsInGroups),
                                        formatCount(rowsInGroups - qint64(groups.size()))));

    QStringList headers {tr("Row")};
    for (int column : used.columns)
        headers << data.displayHeaders().value(column);
    if (used.fuzzy)
        headers << tr("Closeness");
    m_tree->setColumnCount(headers.size());
    m_tree->setHeaderLabels(headers);

    // Group numbers follow the first rows, whatever the order shown.
    std::vector<int> order(groups.size());
    for (int i = 0; i < int(order.size()); ++i)
        order[size_t(i)] = i;
    if (m_orderCombo->currentIndex() == 0) {
        std::stable_sort(order.begin(), order.end(), [this, &groups](int a, int b) {
            return m_finder.groups()[size_t(groups[size_t(a)])].rows.size() >
                m_finder.groups()[size_t(groups[size_t(b)])].rows.size();
        });
    }
    QList<QTreeWidgetItem *> items;
    const int listed = qMin(int(order.size()), ListedGroupLimit);
    for (int i = 0; i < listed; ++i) {
        const int number = order[size_t(i)];
        const DuplicateFinder::Group &group = m_finder.groups()[size_t(groups[size_t(number)])];
        auto *top = new QTreeWidgetItem;
        top->setText(0, tr("Group %1 (%2 rows)").arg(number + 1).arg(formatCount(qint64(group.rows.size()))));
        top->setFirstColumnSpanned(true);
        top->setData(0, GroupRole, number + 1);
        for (int row : group.rows) {
            auto *child = new QTreeWidgetItem(top);
            child->setText(0, QString::number(row + 1));
            child->setData(0, RowRole, row);
            child->setData(0, GroupRole, number + 1);
            for (int c = 0; c < used.columns.size(); ++c)
                child->setText(c + 1, DatasetTableModel::displayText(data.cell(row, used.columns.at(c)), 1000, true));
            if (used.fuzzy)
                child->setText(used.columns.size() + 1, tr("%1%").arg(m_finder.rowCloseness(row)));
        }
        items << top;
    }
    m_tree->addTopLevelItems(items);
    for (int i = 0; i < qMin(listed, 50); ++i)
        items.at(i)->setExpanded(true);
    for (int c = 0; c < m_tree->columnCount(); ++c) {
        m_tree->resizeColumnToContents(c);
        m_tree->setColumnWidth(c, qMin(m_tree->columnWidth(c) + 12, 320));
    }
    if (int(groups.size()) > listed)
        m_summaryLabel->setText(m_summaryLabel->text() + QLatin1Char('\n') +
            tr("The first %1 groups are listed.").arg(formatCount(listed)));
}

void ExploreDuplicatesDialog::showSelectedRow()
{
    QTreeWidgetItem *item = m_tree->currentItem();
    m_rowModel->setDataset(Dataset());
    if (!item || !m_input || !item->data(0, RowRole).isValid())
        return;
    const Dataset &source = m_input->dataset();
    const int row = item->data(0, RowRole).toInt();
    if (row < 0 || row >= source.rowCount())
        return;
    Dataset one;
    one.setColumnCount(source.columnCount() + 1);
    one.setHeaders(QStringList(tr("Row")) + source.displayHeaders());
    one.appendRow(QStringList(QString::number(row + 1)) + source.row(DataRowIndex(row)), true);
    m_rowModel->setDataset(one);
}

void ExploreDuplicatesDialog::useTheseOptions()
{
    if (!m_node || !m_scene || !m_input)
        return;
    Parameter *columns = namedParameter(m_node, &Transform::columnsParameterName);
    Parameter *matchType = namedParameter(m_node, &Transform::matchTypeParameterName);
    Parameter *fuzziness = namedParameter(m_node, &Transform::fuzzinessParameterName);
    Parameter *caseSensitive = namedParameter(m_node, &Transform::caseSensitiveParameterName);
    Parameter *ignoreSpaces = namedParameter(m_node, &Transform::ignoreSpacesParameterName);
    Parameter *ignorePunctuation = namedParameter(m_node, &Transform::ignorePunctuationParameterName);
    Parameter *mode = namedParameter(m_node, &Transform::dedupeModeParameterName);
    const DuplicateFinder::Options working = options();
    {
        UndoScope scope(m_scene, m_undoStack, tr("explore duplicates"));
        if (columns) {
            QList<ColumnId> ids;
            for (int column : working.columns)
                ids << m_input->dataset().columnId(DataColumnIndex(column));
            columns->setValue(QVariant::fromValue(ids));
        }
        if (matchType)
            matchType->setValue(m_matchCombo->currentText());
        if (fuzziness)
            fuzziness->setValue(working.fuzziness);
        if (caseSensitive)
            caseSensitive->setValue(working.caseSensitive);
        if (ignoreSpaces)
            ignoreSpaces->setValue(working.ignoreSpaces);
        if (ignorePunctuation)
            ignorePunctuation->setValue(working.ignorePunctuation);
        if (mode)
            mode->setValue(m_modeCombo->currentText());
    }
    TransformNode *node = m_node;
    emit node->nodeParametersChanged(node);
    accept();
    m_scene->invalidate(node);
}

void ExploreDuplicatesDialog::copyTree()
{
    QStringList lines;
    QStringList header {tr("Group")};
    for (int c = 0; c < m_tree->columnCount(); ++c)
        header << m_tree->headerItem()->text(c);
    lines << header.join(QLatin1Char('\t'));
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *group = m_tree->topLevelItem(i);
        for (int r = 0; r < group->childCount(); ++r) {
            const QTreeWidgetItem *child = group->child(r);
            const int row = child->data(0, RowRole).toInt();
            QStringList line {group->data(0, GroupRole).toString(), QString::number(row + 1)};
            for (int column : m_finder.options().columns)
                line << m_input->dataset().cell(row, column);
            if (m_finder.options().fuzzy)
                line << child->text(m_tree->columnCount() - 1);
            lines << line.join(QLatin1Char('\t'));
        }
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}
