#include "workbench/findbar.h"

#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

TableFindBar::TableFindBar(DataTableView *view, QWidget *parent)
    : QWidget(parent)
    , m_view(view)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(4);
    m_edit = new QLineEdit(this);
    m_edit->setPlaceholderText(tr("Find in table"));
    m_edit->setAccessibleName(tr("Find in table"));
    m_edit->setClearButtonEnabled(true);
    auto toggle = [this](const QString &text, const QString &tip) {
        auto *button = new QToolButton(this);
        button->setText(text);
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        button->setCheckable(true);
        button->setAutoRaise(true);
        connect(button, &QToolButton::toggled, this, &TableFindBar::onSettingsChanged);
        return button;
    };
    m_caseButton = toggle(tr("Aa"), tr("Case sensitive"));
    m_wholeButton = toggle(tr("Whole cell"), tr("Match the whole cell"));
    m_regexButton = toggle(tr(".*"), tr("Regular expression"));
    m_columnCombo = new QComboBox(this);
    m_columnCombo->setAccessibleName(tr("Column to search"));
    m_columnCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_columnCombo->setMinimumContentsLength(10);
    m_previousButton = new QToolButton(this);
    m_previousButton->setText(tr("Previous"));
    m_previousButton->setToolTip(tr("Find previous (Shift+F3)"));
    m_nextButton = new QToolButton(this);
    m_nextButton->setText(tr("Next"));
    m_nextButton->setToolTip(tr("Find next (F3)"));
    m_cancelButton = new QToolButton(this);
    m_cancelButton->setText(tr("Cancel"));
    m_cancelButton->setVisible(false);
    m_statusLabel = new QLabel(this);
    m_statusLabel->setMinimumWidth(80);
    auto *closeButton = new QToolButton(this);
    closeButton->setText(QStringLiteral("✕"));
    closeButton->setToolTip(tr("Close the find bar (Escape)"));
    closeButton->setAccessibleName(tr("Close"));
    closeButton->setAutoRaise(true);

    // Two lines, so that the field keeps its room in a narrow pane.
    auto *top = new QHBoxLayout;
    top->addWidget(m_edit, 1);
    top->addWidget(m_previousButton);
    top->addWidget(m_nextButton);
    top->addWidget(m_cancelButton);
    top->addWidget(closeButton);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_caseButton);
    bottom->addWidget(m_wholeButton);
    bottom->addWidget(m_regexButton);
    bottom->addWidget(m_columnCombo);
    bottom->addWidget(m_statusLabel, 1);
    layout->addLayout(top);
    layout->addLayout(bottom);

    m_timer = new QTimer(this);
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &TableFindBar::onSlice);
    connect(m_edit, &QLineEdit::returnPressed, this, &TableFindBar::findNext);
    connect(m_edit, &QLineEdit::textChanged, this, &TableFindBar::onSettingsChanged);
    connect(m_columnCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &TableFindBar::onSettingsChanged);
    connect(m_previousButton, &QToolButton::clicked, this, &TableFindBar::findPrevious);
    connect(m_nextButton, &QToolButton::clicked, this, &TableFindBar::findNext);
    connect(m_cancelButton, &QToolButton::clicked, this, &TableFindBar::cancel);
    connect(closeButton, &QToolButton::clicked, this, [this] {
        cancel();
        hide();
        emit closed();
    });
    updateColumns();
}

QString TableFindBar::text() const
{
    return m_edit->text();
}

void TableFindBar::setText(const QString &text)
{
    m_edit->setText(text);
}

void TableFindBar::setCaseSensitive(bool on)
{
    m_caseButton->setChecked(on);
}

void TableFindBar::setWholeCell(bool on)
{
    m_wholeButton->setChecked(on);
}

void TableFindBar::setRegularExpression(bool on)
{
    m_regexButton->setChecked(on);
}

void TableFindBar::setColumn(int column)
{
    m_columnCombo->setCurrentIndex(qBound(0, column + 1, m_columnCombo->count() - 1));
}

void TableFindBar::updateColumns()
{
    const DatasetTableModel *model = m_view->datasetModel();
    const int current = m_columnCombo->currentIndex();
    const QSignalBlocker blocker(m_columnCombo);
    m_columnCombo->clear();
    m_columnCombo->addItem(tr("All columns"));
    if (model) {
        const QStringList headers = model->dataset().displayHeaders();
        for (const QString &header : headers)
            m_columnCombo->addItem(header);
    }
    m_columnCombo->setCurrentIndex(current >= 0 && current < m_columnCombo->count() ? current : 0);
}

QString TableFindBar::statusText() const
{
    return m_statusLabel->text();
}

void TableFindBar::activate()
{
    show();
    m_edit->setFocus();
    m_edit->selectAll();
}

void TableFindBar::setStatus(const QString &text, bool notFound)
{
    m_statusLabel->setText(text);
    QPalette palette = m_edit->palette();
    if (notFound) {
        QColor tint(0xFC, 0x33, 0x00);
        tint.setAlphaF(0.2);
        palette.setColor(QPalette::Base, tint);
        m_edit->setPalette(palette);
    } else {
        m_edit->setPalette(QPalette());
    }
}

void TableFindBar::onSettingsChanged()
{
    // A changed search starts afresh: the wrap note belongs to one search only.
    cancel();
    m_wrapped = false;
    setStatus(QString());
}

bool TableFindBar::matches(const QString &cell) const
{
    if (m_regexButton->isChecked())
        return m_regex.match(cell).hasMatch();
    const Qt::CaseSensitivity cs = m_caseButton->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (m_wholeButton->isChecked())
        return cell.compare(m_needle, cs) == 0;
    return cell.contains(m_needle, cs);
}

void TableFindBar::findNext()
{
    start(true);
}

void TableFindBar::findPrevious()
{
    start(false);
}

void TableFindBar::start(bool forward)
{
    cancel();
    const DatasetTableModel *model = m_view->datasetModel();
    m_needle = m_edit->text();
    if (!model || m_needle.isEmpty())
        return;
    const Dataset &dataset = model->dataset();
    if (dataset.hasNoRows() || dataset.hasNoColumns()) {
        setStatus(tr("Not found"), true);
        emit searchFinished(false);
        return;
    }
    if (m_regexButton->isChecked()) {
        QString pattern = m_needle;
        if (m_wholeButton->isChecked())
            pattern = QRegularExpression::anchoredPattern(pattern);
        m_regex = QRegularExpression(pattern,
            m_caseButton->isChecked() ? QRegularExpression::NoPatternOption
                                      : QRegularExpression::CaseInsensitiveOption);
        if (!m_regex.isValid()) {
            setStatus(tr("Invalid regular expression: %1").arg(m_regex.errorString()), true);
            emit searchFinished(false);
            return;
        }
    }
    const int searchColumn = m_columnCombo->currentIndex() - 1;
    const QModelIndex current = m_view->currentIndex();
    m_hadCurrent = current.isValid();
    if (current.isValid()) {
        m_startRow = model->datasetRow(current.row());
        m_startColumn = searchColumn >= 0 ? searchColumn : current.column();
    } else {
        // Nothing current: the first step lands on the first (or last) cell.
        m_startRow = forward ? dataset.rowCount() - 1 : 0;
        m_startColumn = forward ? dataset.columnCount() - 1 : 0;
        if (searchColumn >= 0)
            m_startColumn = searchColumn;
    }
    m_row = m_startRow;
    m_column = m_startColumn;
    m_forward = forward;
    m_cellsChecked = 0;
    m_cellsTotal = qint64(dataset.rowCount()) * (searchColumn >= 0 ? 1 : dataset.columnCount());
    m_searching = true;
    m_cancelButton->setVisible(true);
    onSlice();
    if (m_searching)
        m_timer->start();
}

void TableFindBar::onSlice()
{
    const DatasetTableModel *model = m_view->datasetModel();
    if (!m_searching || !model) {
        cancel();
        return;
    }
    const Dataset &dataset = model->dataset();
    const int searchColumn = m_columnCombo->currentIndex() - 1;
    QElapsedTimer clock;
    clock.start();
    int inSlice = 0;
    while (m_cellsChecked < m_cellsTotal) {
        DataRowIndex row(m_row);
        DataColumnIndex column(m_column);
        bool moved;
        if (searchColumn >= 0) {
            const int next = m_forward ? m_row + 1 : m_row - 1;
            moved = next >= 0 && next < dataset.rowCount();
            if (moved)
                row = next;
        } else {
            moved = m_forward ? dataset.nextCell(row, column) : dataset.previousCell(row, column);
        }
        if (!moved) {
            // Past the end: start again from the other end. With no current cell the
            // search starts there, which is no wrap.
            if (m_cellsChecked > 0 || m_hadCurrent)
                m_wrapped = true;
            row = m_forward ? 0 : dataset.rowCount() - 1;
            column = searchColumn >= 0 ? searchColumn : (m_forward ? 0 : dataset.columnCount() - 1);
        }
        m_row = row.toInt();
        m_column = column.toInt();
        ++m_cellsChecked;
        if (matches(dataset.cell(row, column))) {
            finish(true, m_row, m_column);
            return;
        }
        if (++inSlice >= MaxCellsPerSlice || ((inSlice & 1023) == 0 && clock.elapsed() >= SliceMs))
            break;
    }
    if (m_cellsChecked >= m_cellsTotal) {
        finish(false, -1, -1);
        return;
    }
    setStatus(tr("Searching... %1%").arg(int(100 * m_cellsChecked / qMax<qint64>(1, m_cellsTotal))));
}

void TableFindBar::finish(bool found, int row, int column)
{
    m_timer->stop();
    m_searching = false;
    m_cancelButton->setVisible(false);
    if (found) {
        m_view->goToCell(row, column);
        const DatasetTableModel *model = m_view->datasetModel();
        const QString where = tr("Row %1, column '%2'").arg(row + 1).arg(model->dataset().headerText(column));
        setStatus(m_wrapped ? tr("Search wrapped") + QStringLiteral(" – ") + where : where);
    } else {
        setStatus(tr("Not found"), true);
    }
    emit searchFinished(found);
}

void TableFindBar::cancel()
{
    if (!m_searching)
        return;
    m_timer->stop();
    m_searching = false;
    m_cancelButton->setVisible(false);
    setStatus(QString());
}

void TableFindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        if (m_searching) {
            cancel();
        } else {
            hide();
            emit closed();
            m_view->setFocus();
        }
        return;
    }
    if (event->matches(QKeySequence::FindNext)) {
        findNext();
        return;
    }
    if (event->matches(QKeySequence::FindPrevious)) {
        findPrevious();
        return;
    }
    QWidget::keyPressEvent(event);
}
