#include "workbench/parameterwidgets.h"

#include "core/matching.h"
#include "workbench/itemwidget.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QStyleOptionFrame>
#include <QToolButton>
#include <QVBoxLayout>

using namespace parameterwidgets;

namespace {

// A "$" button beside a field that inserts "$(%1)" for a column of the dataset, so that a
// term or a result can use the row's own values.
QToolButton *addVariableButton(
    QLineEdit *edit, const std::function<const Dataset *()> &dataset, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(QStringLiteral("$"));
    button->setToolTip(QObject::tr("Insert column variable"));
    button->setAccessibleName(QObject::tr("Insert column variable"));
    button->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(button);
    button->setMenu(menu);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, edit, dataset] {
        menu->clear();
        const Dataset *data = dataset();
        const QStringList headers = data ? data->displayHeaders() : QStringList();
        for (const QString &header : headers) {
            const QString variable = QStringLiteral("$(%1)").arg(header);
            menu->addAction(variable, edit, [edit, variable] {
                edit->insert(variable);
                emit edit->textEdited(edit->text());
            });
        }
        if (headers.isEmpty())
            menu->addAction(QObject::tr("No columns"))->setEnabled(false);
    });
    return button;
}

// Regular expression operators and terms are checked as they are typed.
void markPattern(QLineEdit *edit, bool isPattern, const QString &pattern, const QString &normalTip)
{
    QString error;
    if (isPattern) {
        const QRegularExpression regex(pattern);
        if (!regex.isValid())
            error = QObject::tr("Invalid regular expression: %1").arg(regex.errorString());
    }
    setMarked(edit, !error.isEmpty(), error, normalTip);
}

// A field that shows its leading and trailing spaces as "·" in the secondary colour while
// it isn't being edited, so that a term of " x " can be told from "x".
class SpaceShowingEdit : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLineEdit::paintEvent(event);
        const QString text = this->text();
        if (hasFocus() || text.isEmpty())
            return;
        int leading = 0;
        while (leading < text.size() && text.at(leading) == QLatin1Char(' '))
            ++leading;
        int trailing = 0;
        while (trailing < text.size() - leading && text.at(text.size() - 1 - trailing) == QLatin1Char(' '))
            ++trailing;
        if (leading == 0 && trailing == 0)
            return;
        QStyleOptionFrame option;
        initStyleOption(&option);
        QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
        contents = contents.marginsRemoved(textMargins());
        const int left = contents.left() + 2; // QLineEdit's own horizontal margin
        const QFontMetrics metrics = fontMetrics();
        const int space = metrics.horizontalAdvance(QLatin1Char(' '));
        QPainter painter(this);
        painter.setClipRect(contents);
        painter.setPen(palette().color(QPalette::PlaceholderText));
        const auto dot = [&](int index) {
            const int x = left + metrics.horizontalAdvance(text.left(index));
            painter.drawText(
                QRect(x, contents.top(), space, contents.height()), Qt::AlignCenter, QStringLiteral("·"));
        };
        for (int i = 0; i < leading; ++i)
            dot(i);
        for (int i = text.size() - trailing; i < text.size(); ++i)
            dot(i);
    }
};

QToolButton *makeRemoveButton(QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(QStringLiteral("✕"));
    button->setToolTip(QObject::tr("Remove"));
    button->setAccessibleName(QObject::tr("Remove"));
    button->setAutoRaise(true);
    return button;
}

// Cell widgets don't size the table: each row is as tall as its tallest widget, and the
// table as tall as its rows, so that the pane scrolls rather than the table.
void fitTableHeight(QTableWidget *table)
{
    int height = table->horizontalHeader()->isHidden() ? 0 : table->horizontalHeader()->sizeHint().height();
    for (int r = 0; r < table->rowCount(); ++r) {
        int row = table->verticalHeader()->defaultSectionSize();
        for (int c = 0; c < table->columnCount(); ++c) {
            if (QWidget *widget = table->cellWidget(r, c))
                row = qMax(row, widget->sizeHint().height());
        }
        table->setRowHeight(r, row);
        height += row;
    }
    table->setFixedHeight(height + 2 * table->frameWidth() + 2);
}

} // namespace

// ConditionTable

ConditionTable::ConditionTable(bool andHeaders, QWidget *parent)
    : QTableWidget(0, 4, parent)
    , m_andHeaders(andHeaders)
{
    setHorizontalHeaderLabels({tr("Column"), tr("Operator"), tr("Term"), QString()});
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(1, QHeaderView::Interactive);
    horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(3, QHeaderView::Fixed);
    verticalHeader()->setVisible(andHeaders);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabKeyNavigation(false);
    setAccessibleName(tr("Conditions"));
    installEventFilter(this);
    ensureEmptyLastRow();
}

void ConditionTable::setConditions(const QList<Condition> &conditions)
{
    const bool blocked = blockSignals(true);
    setRowCount(0);
    for (const Condition &condition : conditions)
        addRow(condition, false);
    ensureEmptyLastRow();
    blockSignals(blocked);
}

void ConditionTable::addRow(const Condition &condition, bool empty)
{
    const int row = rowCount();
    insertRow(row);
    auto *column = new QComboBox(this);
    ignoreWheelWithoutFocus(column);
    column->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    column->setMinimumContentsLength(8);
    column->setAccessibleName(tr("Column"));
    if (!condition.anyColumn && condition.column.isUnset() && !empty) {
        // A condition read with a column the input doesn't have: shown, and kept.
        fillColumnCombo(column, m_dataset, tr("<Any>"), ColumnId());
        column->addItem(tr("<Missing column>"), QVariant::fromValue(ColumnId()));
        column->setItemData(column->count() - 1, markColour(), Qt::ForegroundRole);
        column->setCurrentIndex(column->count() - 1);
    } else {
        fillColumnCombo(column, m_dataset, tr("<Any>"), condition.anyColumn ? ColumnId() : condition.column);
        if (empty)
            column->setCurrentIndex(-1);
    }
    auto *op = new QComboBox(this);
    ignoreWheelWithoutFocus(op);
    op->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    op->setAccessibleName(tr("Operator"));
    // The closed combo shows the start of a label; the list shows them whole.
    op->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    op->setMinimumContentsLength(14);
    op->view()->setMinimumWidth(op->view()->sizeHintForColumn(0) + 24);
    const QList<int> order = operatorDisplayOrder();
    for (int number : order)
        op->addItem(operatorLabel(number), number);
    op->setCurrentIndex(qMax(0, op->findData(condition.op)));
    auto *termCell = new QWidget(this);
    auto *termLayout = new QHBoxLayout(termCell);
    termLayout->setContentsMargins(0, 0, 0, 0);
    termLayout->setSpacing(2);
    auto *term = new QLineEdit(condition.term, termCell);
    term->setAccessibleName(tr("Term"));
    termLayout->addWidget(term, 1);
    termLayout->addWidget(addVariableButton(
        term, [this] { return m_dataset; }, termCell));
    termCell->setFocusProxy(term);
    QToolButton *remove = makeRemoveButton(this);
    setCellWidget(row, 0, column);
    setCellWidget(row, 1, op);
    setCellWidget(row, 2, termCell);
    setCellWidget(row, 3, remove);
    if (row == 0) {
        setColumnWidth(1, op->sizeHint().width());
        setColumnWidth(3, remove->sizeHint().width() + 4);
    }
    setVerticalHeaderItem(row, new QTableWidgetItem(row == 0 || !m_andHeaders ? QString() : tr("and")));
    applyOperator(row);

    connect(column, QOverload<int>::of(&QComboBox::activated), this, [this, column] {
        ensureEmptyLastRow();
        emit changed(false);
        Q_UNUSED(column)
    });
    connect(op, QOverload<int>::of(&QComboBox::activated), this, [this, op] {
        const int row = rowOf(op);
        applyOperator(row);
        if (columnCombo(row)->currentIndex() < 0)
            columnCombo(row)->setCurrentIndex(0);
        ensureEmptyLastRow();
        emit changed(false);
    });
    connect(term, &QLineEdit::textEdited, this, [this, term] {
        const int row = rowOf(term->parentWidget());
        // Typing in the empty row makes it a condition on any column, as its combo shows.
        if (columnCombo(row)->currentIndex() < 0)
            columnCombo(row)->setCurrentIndex(0);
        applyOperator(row);
        ensureEmptyLastRow();
        emit changed(true);
    });
    connect(remove, &QToolButton::clicked, this, [this, remove] { removeConditionRow(rowOf(remove)); });
    fitHeight();
}

void ConditionTable::removeConditionRow(int row)
{
    if (row < 0 || row >= rowCount() || isEmptyRow(row))
        return;
    removeRow(row);
    fitHeight();
    for (int r = 0; r < rowCount(); ++r)
        verticalHeaderItem(r)->setText(r == 0 || !m_andHeaders ? QString() : tr("and"));
    ensureEmptyLastRow();
    if (QWidget *next = cellWidget(qMin(row, rowCount() - 1), 0))
        next->setFocus();
    emit changed(false);
}

void ConditionTable::applyOperator(int row)
{
    QLineEdit *term = termEdit(row);
    const int op = operatorCombo(row)->currentData().toInt();
    // The empty tests take no term: the field is off and shows nothing.
    const bool noTerm = needsNoTerm(op);
    term->setEnabled(!noTerm);
    if (noTerm && !term->text().isEmpty())
        term->clear();
    markPattern(term, op == OperatorMatchesRegex || op == OperatorNotMatchesRegex, term->text(), QString());
    removeButton(row)->setEnabled(!isEmptyRow(row));
}

bool ConditionTable::isEmptyRow(int row) const
{
    return columnCombo(row)->currentIndex() < 0 && termEdit(row)->text().isEmpty();
}

void ConditionTable::ensureEmptyLastRow()
{
    if (rowCount() == 0 || !isEmptyRow(rowCount() - 1))
        addRow(Condition(), true);
    for (int r = 0; r < rowCount(); ++r)
        removeButton(r)->setEnabled(!isEmptyRow(r));
}

QList<Condition> ConditionTable::conditions() const
{
    QList<Condition> conditions;
    for (int r = 0; r < rowCount(); ++r) {
        if (isEmptyRow(r))
            continue;
        Condition condition;
        const QComboBox *column = columnCombo(r);
        condition.anyColumn = column->currentIndex() == 0;
        if (!condition.anyColumn)
            condition.column = column->currentData().value<ColumnId>();
        condition.op = operatorCombo(r)->currentData().toInt();
        condition.term = needsNoTerm(condition.op) ? QString() : termEdit(r)->text();
        conditions << condition;
    }
    return conditions;
}

QComboBox *ConditionTable::columnCombo(int row) const
{
    return qobject_cast<QComboBox *>(cellWidget(row, 0));
}

QComboBox *ConditionTable::operatorCombo(int row) const
{
    return qobject_cast<QComboBox *>(cellWidget(row, 1));
}

QLineEdit *ConditionTable::termEdit(int row) const
{
    QWidget *cell = cellWidget(row, 2);
    return cell ? cell->findChild<QLineEdit *>() : nullptr;
}

QToolButton *ConditionTable::removeButton(int row) const
{
    return qobject_cast<QToolButton *>(cellWidget(row, 3));
}

int ConditionTable::rowOf(QWidget *widget) const
{
    for (int r = 0; r < rowCount(); ++r) {
        for (int c = 0; c < columnCount(); ++c) {
            if (cellWidget(r, c) == widget)
                return r;
        }
    }
    return -1;
}

void ConditionTable::fitHeight()
{
    fitTableHeight(this);
    chainTableTabOrder(this);
}

bool ConditionTable::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == this && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Delete && currentRow() >= 0) {
            removeConditionRow(currentRow());
            return true;
        }
    }
    return QTableWidget::eventFilter(watched, event);
}

// FilterColumns

FilterColumnsParameterWidget::FilterColumnsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *top = new QHBoxLayout;
    m_keep = new QComboBox(this);
    m_keep->addItems({tr("Keep"), tr("Remove")});
    m_keep->setAccessibleName(tr("Keep or remove"));
    ignoreWheelWithoutFocus(m_keep);
    m_match = new QComboBox(this);
    m_match->addItems({tr("all"), tr("any")});
    m_match->setAccessibleName(tr("Match all or any"));
    ignoreWheelWithoutFocus(m_match);
    top->addWidget(m_keep);
    top->addWidget(new QLabel(tr("rows matching"), this));
    top->addWidget(m_match);
    top->addWidget(new QLabel(tr("of these conditions:"), this));
    top->addStretch(1);
    layout->addLayout(top);
    m_table = new ConditionTable(false, this);
    layout->addWidget(m_table);
    connect(
        m_keep, QOverload<int>::of(&QComboBox::activated), this, &FilterColumnsParameterWidget::onChanged);
    connect(
        m_match, QOverload<int>::of(&QComboBox::activated), this, &FilterColumnsParameterWidget::onChanged);
    connect(m_table, &ConditionTable::changed, this, [this](bool burst) { commitChange(burst); });
    updateFromParameter();
}

void FilterColumnsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const FilterColumnsValue value = m_parameter->filterColumns();
        m_keep->setCurrentIndex(value.keep ? 0 : 1);
        m_match->setCurrentIndex(value.matchAll ? 0 : 1);
        m_table->setDataset(m_parameter->upstreamDataset());
        m_table->setConditions(value.conditions);
    });
}

QVariant FilterColumnsParameterWidget::value() const
{
    FilterColumnsValue value;
    value.keep = m_keep->currentIndex() == 0;
    value.matchAll = m_match->currentIndex() == 0;
    value.conditions = m_table->conditions();
    return QVariant::fromValue(value);
}

// If

IfParameterWidget::IfParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_blockLayout = new QVBoxLayout;
    m_blockLayout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_blockLayout);
    auto *add = new QPushButton(tr("Add 'Else if'"), this);
    auto *addRow = new QHBoxLayout;
    addRow->addWidget(add);
    addRow->addStretch(1);
    layout->addLayout(addRow);
    auto *elseRow = new QHBoxLayout;
    auto *elseLabel = new QLabel(tr("Else value:"), this);
    m_else = new QLineEdit(this);
    m_else->setAccessibleName(tr("Else value"));
    elseLabel->setBuddy(m_else);
    elseRow->addWidget(elseLabel);
    elseRow->addWidget(m_else, 1);
    elseRow->addWidget(addVariableButton(
        m_else, [this] { return m_parameter->upstreamDataset(); }, this));
    layout->addLayout(elseRow);
    connect(add, &QPushButton::clicked, this, &IfParameterWidget::addBlock);
    connect(m_else, &QLineEdit::textEdited, this, &IfParameterWidget::onTyped);
    updateFromParameter();
}

void IfParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const IfValue value = m_parameter->ifValue();
        setBlocks(value);
        if (m_else->text() != value.elseText)
            m_else->setText(value.elseText);
    });
}

void IfParameterWidget::setBlocks(const IfValue &value)
{
    // A block's own button may be what asked for this: its frame goes once the click is over.
    for (const Block &block : qAsConst(m_blocks)) {
        block.frame->hide();
        block.frame->deleteLater();
    }
    m_blocks.clear();
    QList<IfBlock> blocks = value.blocks;
    // There is always a first block to fill in.
    if (blocks.isEmpty())
        blocks << IfBlock();
    const Dataset *dataset = m_parameter->upstreamDataset();
    for (int i = 0; i < blocks.size(); ++i) {
        Block block;
        block.frame = new QFrame(this);
        block.frame->setFrameShape(QFrame::StyledPanel);
        auto *layout = new QVBoxLayout(block.frame);
        layout->setContentsMargins(6, 4, 6, 6);
        auto *header = new QHBoxLayout;
        block.title = new QLabel(i == 0 ? tr("If") : tr("Else if"), block.frame);
        QFont bold = block.title->font();
        bold.setBold(true);
        block.title->setFont(bold);
        header->addWidget(block.title);
        header->addStretch(1);
        block.up = new QToolButton(block.frame);
        block.up->setText(tr("Up"));
        block.down = new QToolButton(block.frame);
        block.down->setText(tr("Down"));
        block.remove = makeRemoveButton(block.frame);
        block.up->setEnabled(i > 0);
        block.down->setEnabled(i + 1 < blocks.size());
        block.remove->setEnabled(
            blocks.size() > 1 || !blocks.at(i).conditions.isEmpty() || !blocks.at(i).result.isEmpty());
        header->addWidget(block.up);
        header->addWidget(block.down);
        header->addWidget(block.remove);
        layout->addLayout(header);
        block.table = new ConditionTable(true, block.frame);
        block.table->setDataset(dataset);
        block.table->setConditions(blocks.at(i).conditions);
        layout->addWidget(block.table);
        auto *resultRow = new QHBoxLayout;
        auto *thenLabel = new QLabel(tr("then value:"), block.frame);
        block.result = new QLineEdit(blocks.at(i).result, block.frame);
        block.result->setAccessibleName(tr("then value"));
        thenLabel->setBuddy(block.result);
        resultRow->addWidget(thenLabel);
        resultRow->addWidget(block.result, 1);
        resultRow->addWidget(addVariableButton(
            block.result, [this] { return m_parameter->upstreamDataset(); }, block.frame));
        layout->addLayout(resultRow);
        m_blockLayout->addWidget(block.frame);
        connect(block.table, &ConditionTable::changed, this, [this](bool burst) { commitChange(burst); });
        connect(block.result, &QLineEdit::textEdited, this, &IfParameterWidget::onTyped);
        connect(block.up, &QToolButton::clicked, this, [this] { moveBlock(blockOf(sender()), -1); });
        connect(block.down, &QToolButton::clicked, this, [this] { moveBlock(blockOf(sender()), 1); });
        connect(block.remove, &QToolButton::clicked, this, [this] { removeBlock(blockOf(sender())); });
        m_blocks << block;
    }
    // Tab goes down the blocks in order, and on to the buttons under them.
    QWidget *previous = nullptr;
    for (const Block &block : qAsConst(m_blocks)) {
        const QList<QWidget *> order = {block.up, block.down, block.remove, block.table, block.result};
        for (QWidget *widget : order) {
            if (previous)
                setTabOrder(previous, widget);
            previous = widget;
        }
    }
    for (const Block &block : qAsConst(m_blocks))
        chainTableTabOrder(block.table);
}

int IfParameterWidget::blockOf(QObject *object) const
{
    for (int i = 0; i < m_blocks.size(); ++i) {
        const Block &block = m_blocks.at(i);
        if (object == block.up || object == block.down || object == block.remove)
            return i;
    }
    return -1;
}

IfValue IfParameterWidget::shownValue() const
{
    IfValue value;
    for (const Block &block : m_blocks) {
        IfBlock ifBlock;
        ifBlock.conditions = block.table->conditions();
        ifBlock.result = block.result->text();
        value.blocks << ifBlock;
    }
    value.elseText = m_else->text();
    return value;
}

QVariant IfParameterWidget::value() const
{
    // A block with nothing in it is a place to type, not a block of the value.
    IfValue value = shownValue();
    QList<IfBlock> blocks;
    for (const IfBlock &block : qAsConst(value.blocks)) {
        if (!block.conditions.isEmpty() || !block.result.isEmpty())
            blocks << block;
    }
    value.blocks = blocks;
    return QVariant::fromValue(value);
}

QWidget *IfParameterWidget::focusTarget() const
{
    return m_blocks.isEmpty() ? static_cast<QWidget *>(m_else) : m_blocks.first().table;
}

void IfParameterWidget::addBlock()
{
    IfValue value = shownValue();
    value.blocks << IfBlock();
    setBlocks(value);
    m_blocks.last().table->setFocus();
    commitChange(false);
}

void IfParameterWidget::moveBlock(int block, int by)
{
    IfValue value = shownValue();
    const int to = block + by;
    if (block < 0 || to < 0 || to >= value.blocks.size())
        return;
    value.blocks.move(block, to);
    setBlocks(value);
    (by < 0 ? m_blocks.at(to).up : m_blocks.at(to).down)->setFocus();
    commitChange(false);
}

void IfParameterWidget::removeBlock(int block)
{
    IfValue value = shownValue();
    if (block < 0 || block >= value.blocks.size())
        return;
    value.blocks.removeAt(block);
    setBlocks(value);
    m_blocks.at(qMin(block, m_blocks.size() - 1)).table->setFocus();
    commitChange(false);
}

// ReplaceTerms

namespace {
const int TermTypeCount = 5;
QStringList termTypeNames()
{
    return {QObject::tr("Text"), QObject::tr("Whole value"), QObject::tr("Whole word"), QObject::tr("Regex"),
        QObject::tr("Wildcard")};
}
} // namespace

ReplaceTermsParameterWidget::ReplaceTermsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_table = new QTableWidget(0, 4, this);
    m_table->setHorizontalHeaderLabels({tr("Type"), tr("From"), tr("To"), QString()});
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Interactive);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Fixed);
    m_table->verticalHeader()->setVisible(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_table->setTabKeyNavigation(false);
    m_table->setAccessibleName(tr("Terms"));
    layout->addWidget(m_table);
    auto *buttons = new QHBoxLayout;
    auto *up = new QPushButton(tr("Up"), this);
    auto *down = new QPushButton(tr("Down"), this);
    auto *paste = new QPushButton(tr("Paste Terms"), this);
    paste->setToolTip(tr("Add the clipboard's lines of 'from', a tab and 'to' as Text terms."));
    buttons->addWidget(up);
    buttons->addWidget(down);
    buttons->addStretch(1);
    buttons->addWidget(paste);
    layout->addLayout(buttons);
    connect(up, &QPushButton::clicked, this, [this] { moveCurrent(-1); });
    connect(down, &QPushButton::clicked, this, [this] { moveCurrent(1); });
    connect(paste, &QPushButton::clicked, this, [this] { pasteTerms(QApplication::clipboard()->text()); });
    updateFromParameter();
}

void ReplaceTermsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] { setTerms(m_parameter->replaceTerms()); });
}

void ReplaceTermsParameterWidget::setTerms(const ReplaceTermList &terms)
{
    m_table->setRowCount(0);
    for (const ReplaceTerm &term : terms)
        addRow(term);
    ensureEmptyLastRow();
}

void ReplaceTermsParameterWidget::addRow(const ReplaceTerm &term)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    auto *type = new QComboBox(m_table);
    ignoreWheelWithoutFocus(type);
    type->addItems(termTypeNames());
    type->setCurrentIndex(qBound(0, term.type, TermTypeCount - 1));
    type->setAccessibleName(tr("Type"));
    QLineEdit *from = new SpaceShowingEdit(term.from, m_table);
    from->setAccessibleName(tr("From"));
    QLineEdit *to = new SpaceShowingEdit(term.to, m_table);
    to->setAccessibleName(tr("To"));
    QToolButton *remove = makeRemoveButton(m_table);
    m_table->setCellWidget(row, 0, type);
    m_table->setCellWidget(row, 1, from);
    m_table->setCellWidget(row, 2, to);
    m_table->setCellWidget(row, 3, remove);
    if (row == 0) {
        m_table->setColumnWidth(0, type->sizeHint().width());
        m_table->setColumnWidth(3, remove->sizeHint().width() + 4);
    }
    checkRow(row);
    connect(type, QOverload<int>::of(&QComboBox::activated), this, [this, type] {
        checkRow(rowOf(type));
        ensureEmptyLastRow();
        onChanged();
    });
    const auto typed = [this](QLineEdit *edit) {
        checkRow(rowOf(edit));
        ensureEmptyLastRow();
        onTyped();
    };
    connect(from, &QLineEdit::textEdited, this, [typed, from] { typed(from); });
    connect(to, &QLineEdit::textEdited, this, [typed, to] { typed(to); });
    connect(remove, &QToolButton::clicked, this, [this, remove] { removeTermRow(rowOf(remove)); });
    fitTableHeight(m_table);
    chainTableTabOrder(m_table);
}

void ReplaceTermsParameterWidget::checkRow(int row)
{
    if (row < 0)
        return;
    const int type = typeCombo(row)->currentIndex();
    QString pattern = fromEdit(row)->text();
    if (type == 4)
        pattern = QRegularExpression::wildcardToRegularExpression(pattern);
    markPattern(fromEdit(row), type == 3 || type == 4, pattern, QString());
}

void ReplaceTermsParameterWidget::ensureEmptyLastRow()
{
    const int last = m_table->rowCount() - 1;
    if (last < 0 || !fromEdit(last)->text().isEmpty() || !toEdit(last)->text().isEmpty())
        addRow(ReplaceTerm());
    for (int r = 0; r < m_table->rowCount(); ++r)
        qobject_cast<QToolButton *>(m_table->cellWidget(r, 3))->setEnabled(r + 1 < m_table->rowCount());
}

QVariant ReplaceTermsParameterWidget::value() const
{
    ReplaceTermList terms;
    for (int r = 0; r < m_table->rowCount(); ++r) {
        ReplaceTerm term;
        term.type = typeCombo(r)->currentIndex();
        term.from = fromEdit(r)->text();
        term.to = toEdit(r)->text();
        if (!term.from.isEmpty() || !term.to.isEmpty())
            terms << term;
    }
    return QVariant::fromValue(terms);
}

QWidget *ReplaceTermsParameterWidget::focusTarget() const
{
    return m_table;
}

QComboBox *ReplaceTermsParameterWidget::typeCombo(int row) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(row, 0));
}

QLineEdit *ReplaceTermsParameterWidget::fromEdit(int row) const
{
    return qobject_cast<QLineEdit *>(m_table->cellWidget(row, 1));
}

QLineEdit *ReplaceTermsParameterWidget::toEdit(int row) const
{
    return qobject_cast<QLineEdit *>(m_table->cellWidget(row, 2));
}

int ReplaceTermsParameterWidget::rowOf(QWidget *widget) const
{
    for (int r = 0; r < m_table->rowCount(); ++r) {
        for (int c = 0; c < m_table->columnCount(); ++c) {
            if (m_table->cellWidget(r, c) == widget)
                return r;
        }
    }
    return -1;
}

void ReplaceTermsParameterWidget::removeTermRow(int row)
{
    if (row < 0 || row + 1 >= m_table->rowCount())
        return;
    m_table->removeRow(row);
    fitTableHeight(m_table);
    onChanged();
}

void ReplaceTermsParameterWidget::moveCurrent(int by)
{
    const int row = m_table->currentRow();
    const int to = row + by;
    // The empty last row stays last.
    if (row < 0 || to < 0 || row + 1 >= m_table->rowCount() || to + 1 >= m_table->rowCount())
        return;
    ReplaceTermList terms = value().value<ReplaceTermList>();
    terms.move(row, to);
    setTerms(terms);
    m_table->setCurrentCell(to, 1);
    onChanged();
}

void ReplaceTermsParameterWidget::pasteTerms(const QString &text)
{
    ReplaceTermList terms = value().value<ReplaceTermList>();
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.isEmpty())
            continue;
        ReplaceTerm term;
        term.from = line.section(QLatin1Char('\t'), 0, 0);
        term.to = line.section(QLatin1Char('\t'), 1);
        terms << term;
    }
    setTerms(terms);
    onChanged();
}

// SplitRows

SplitRowsParameterWidget::SplitRowsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QFormLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_mode = new QComboBox(this);
    m_mode->addItems({tr("At text"), tr("At line breaks"), tr("Repeat by count column")});
    ignoreWheelWithoutFocus(m_mode);
    m_text = new QLineEdit(this);
    m_column = new QComboBox(this);
    ignoreWheelWithoutFocus(m_column);
    m_trim = new QCheckBox(tr("trim values"), this);
    m_skip = new QCheckBox(tr("skip empty values"), this);
    m_maximum = new QSpinBox(this);
    m_maximum->setRange(0, Parameter::MaximumInt);
    m_maximum->setSpecialValueText(tr("No limit"));
    ignoreWheelWithoutFocus(m_maximum);
    layout->addRow(tr("Split:"), m_mode);
    layout->addRow(tr("Text:"), m_text);
    layout->addRow(tr("Count column:"), m_column);
    layout->addRow(m_trim);
    layout->addRow(m_skip);
    layout->addRow(tr("Maximum:"), m_maximum);
    m_mode->setAccessibleName(tr("Split"));
    m_text->setAccessibleName(tr("Text"));
    m_column->setAccessibleName(tr("Count column"));
    m_maximum->setAccessibleName(tr("Maximum"));
    connect(m_mode, QOverload<int>::of(&QComboBox::activated), this, [this] {
        applyMode();
        onChanged();
    });
    connect(m_text, &QLineEdit::textEdited, this, &SplitRowsParameterWidget::onTyped);
    connect(m_column, QOverload<int>::of(&QComboBox::activated), this, &SplitRowsParameterWidget::onChanged);
    connect(m_trim, &QCheckBox::toggled, this, &SplitRowsParameterWidget::onChanged);
    connect(m_skip, &QCheckBox::toggled, this, &SplitRowsParameterWidget::onChanged);
    connect(m_maximum, QOverload<int>::of(&QSpinBox::valueChanged), this,
        [this] { commitChange(m_maximum->hasFocus()); });
    connect(m_maximum, &QSpinBox::editingFinished, this, &SplitRowsParameterWidget::onChanged);
    updateFromParameter();
}

void SplitRowsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const SplitRule rule = m_parameter->splitRule();
        m_mode->setCurrentIndex(qBound(0, rule.mode, 2));
        if (m_text->text() != rule.text)
            m_text->setText(rule.text);
        fillColumnCombo(m_column, m_parameter->upstreamDataset(), m_parameter->noneText(), rule.column);
        m_trim->setChecked(rule.trim);
        m_skip->setChecked(rule.skipEmpty);
        m_maximum->setValue(rule.maximum);
        applyMode();
    });
}

void SplitRowsParameterWidget::applyMode()
{
    const int mode = m_mode->currentIndex();
    m_text->setEnabled(mode == 0);
    m_column->setEnabled(mode == 2);
    m_trim->setEnabled(mode != 2);
    m_skip->setEnabled(mode != 2);
    m_maximum->setEnabled(mode != 2);
}

QVariant SplitRowsParameterWidget::value() const
{
    SplitRule rule;
    rule.mode = m_mode->currentIndex();
    rule.text = m_text->text();
    rule.column = m_column->currentData().value<ColumnId>();
    rule.trim = m_trim->isChecked();
    rule.skipEmpty = m_skip->isChecked();
    rule.maximum = m_maximum->value();
    return QVariant::fromValue(rule);
}
