#include "workbench/optiondialogs.h"

#include "inputs/fixedwidthreader.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSet>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

std::function<int(QDialog *)> &dialogRunner()
{
    static std::function<int(QDialog *)> runner;
    return runner;
}

QDialogButtonBox *okCancel(QDialog *dialog)
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    return buttons;
}

QComboBox *choiceCombo(QWidget *parent, const QStringList &items, int current, const QString &name)
{
    auto *combo = new QComboBox(parent);
    combo->addItems(items);
    combo->setCurrentIndex(qBound(0, current, items.size() - 1));
    combo->setAccessibleName(name);
    return combo;
}

} // namespace

int runOptionDialog(QDialog *dialog)
{
    if (dialogRunner())
        return dialogRunner()(dialog);
    return dialog->exec();
}

void setOptionDialogRunner(const std::function<int(QDialog *)> &runner)
{
    dialogRunner() = runner;
}

// ---------------------------------------------------------------------------------------
// Column widths

// The sample in a fixed-pitch font under a ruler of tens, with the boundaries as lines.
class FixedWidthsView : public QWidget
{
public:
    FixedWidthsView(const QStringList &lines, QWidget *parent)
        : QWidget(parent)
        , m_lines(lines)
    {
        setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(FixedWidthsDialog::tr("Sample lines"));
        setAccessibleDescription(
            FixedWidthsDialog::tr("Click a character position to add or remove a column boundary before it."));
        setCursor(Qt::PointingHandCursor);
        for (const QString &line : lines)
            m_columns = qMax(m_columns, line.size());
        m_columns += 4;
    }

    std::function<void(int)> clicked;
    QList<int> boundaries;

    int charWidth() const { return fontMetrics().horizontalAdvance(QLatin1Char('M')); }
    int rulerHeight() const { return fontMetrics().height() * 2; }
    int positionAt(int x) const { return qMax(0, (x - Margin + charWidth() / 2) / qMax(1, charWidth())); }
    QSize sizeHint() const override
    {
        return QSize(Margin * 2 + m_columns * charWidth(),
            rulerHeight() + qMax(1, m_lines.size()) * fontMetrics().lineSpacing() + 8);
    }

protected:
    static constexpr int Margin = 6;

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QPalette &pal = palette();
        painter.fillRect(rect(), pal.color(QPalette::Base));
        const int cw = charWidth();
        const int ruler = rulerHeight();
        painter.fillRect(QRect(0, 0, width(), ruler), pal.color(QPalette::AlternateBase));
        painter.setPen(pal.color(QPalette::Text));
        const QFontMetrics fm = fontMetrics();
        for (int column = 0; column <= m_columns; ++column) {
            const int x = Margin + column * cw;
            const int tick = column % 10 == 0 ? ruler / 2 : (column % 5 == 0 ? ruler / 3 : ruler / 6);
            painter.drawLine(x, ruler - tick, x, ruler - 1);
            if (column % 10 == 0 && column > 0)
                painter.drawText(x + 2, fm.ascent() + 1, QString::number(column));
        }
        int y = ruler + 4 + fm.ascent();
        for (const QString &line : m_lines) {
            painter.drawText(Margin, y, line);
            y += fm.lineSpacing();
        }
        QPen boundary(pal.color(QPalette::Highlight));
        boundary.setWidth(2);
        painter.setPen(boundary);
        for (int position : boundaries) {
            const int x = Margin + position * cw;
            painter.drawLine(x, 0, x, height());
        }
    }
    void mousePressEvent(QMouseEvent *event) override
    {
        if (event->button() == Qt::LeftButton && clicked)
            clicked(positionAt(event->pos().x()));
    }

private:
    QStringList m_lines;
    int m_columns = 0;
};

FixedWidthsDialog::FixedWidthsDialog(const QStringList &sample, const QList<int> &widths, QWidget *parent)
    : QDialog(parent)
    , m_sample(sample.mid(0, 50))
{
    setObjectName(QStringLiteral("FixedWidthsDialog"));
    setWindowTitle(tr("Column Widths"));
    auto *layout = new QVBoxLayout(this);
    auto *help = new QLabel(tr("Click a character position to add or remove a column boundary before it."), this);
    help->setWordWrap(true);
    layout->addWidget(help);
    m_view = new FixedWidthsView(m_sample, this);
    m_view->clicked = [this](int position) { toggleBoundary(position); };
    auto *scroll = new QScrollArea(this);
    m_view->setMinimumSize(m_view->sizeHint());
    scroll->setWidget(m_view);
    scroll->setWidgetResizable(true);
    layout->addWidget(scroll, 1);

    auto *row = new QHBoxLayout;
    auto *label = new QLabel(tr("&Widths:"), this);
    m_widthsEdit = new QLineEdit(this);
    m_widthsEdit->setAccessibleName(tr("Widths"));
    m_widthsEdit->setPlaceholderText(tr("Widths, such as 10, 8, 12"));
    label->setBuddy(m_widthsEdit);
    auto *guessButton = new QPushButton(tr("&Guess"), this);
    guessButton->setToolTip(tr("Guess the widths from the sample lines."));
    guessButton->setAutoDefault(false);
    row->addWidget(label);
    row->addWidget(m_widthsEdit, 1);
    row->addWidget(guessButton);
    layout->addLayout(row);
    layout->addWidget(okCancel(this));

    connect(guessButton, &QPushButton::clicked, this, &FixedWidthsDialog::guess);
    connect(m_widthsEdit, &QLineEdit::textEdited, this, [this](const QString &text) {
        QList<int> boundaries;
        int position = 0;
        for (int width : parseWidths(text))
            boundaries << (position += width);
        m_view->boundaries = boundaries;
        m_view->update();
    });
    setWidths(widths);
    resize(qBound(420, m_view->sizeHint().width() + 40, 1000), 460);
}

QString FixedWidthsDialog::widthsText(const QList<int> &widths)
{
    QStringList parts;
    for (int width : widths)
        parts << QString::number(width);
    return parts.join(QStringLiteral(", "));
}

QList<int> FixedWidthsDialog::parseWidths(const QString &text)
{
    QList<int> widths;
    const QStringList parts = text.split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        bool ok = false;
        const int width = part.toInt(&ok);
        if (ok && width > 0)
            widths << width;
    }
    return widths;
}

QList<int> FixedWidthsDialog::widths() const
{
    return parseWidths(m_widthsEdit->text());
}

void FixedWidthsDialog::setWidths(const QList<int> &widths)
{
    QList<int> boundaries;
    int position = 0;
    for (int width : widths) {
        if (width > 0)
            boundaries << (position += width);
    }
    m_view->boundaries = boundaries;
    showWidths();
}

void FixedWidthsDialog::toggleBoundary(int position)
{
    if (position <= 0)
        return;
    QList<int> &boundaries = m_view->boundaries;
    if (boundaries.contains(position))
        boundaries.removeAll(position);
    else
        boundaries << position;
    std::sort(boundaries.begin(), boundaries.end());
    showWidths();
}

void FixedWidthsDialog::guess()
{
    setWidths(FixedWidthReader::guessWidths(m_sample));
}

void FixedWidthsDialog::showWidths()
{
    QList<int> widths;
    int previous = 0;
    for (int position : qAsConst(m_view->boundaries)) {
        widths << position - previous;
        previous = position;
    }
    m_widthsEdit->setText(widthsText(widths));
    m_view->update();
}

// ---------------------------------------------------------------------------------------
// Schema

bool SchemaDialog::Schema::operator==(const Schema &other) const
{
    return columnNames == other.columnNames && missingValues == other.missingValues
        && missingColumns == other.missingColumns && reorderColumns == other.reorderColumns
        && extraColumns == other.extraColumns;
}

SchemaDialog::SchemaDialog(const Schema &schema, const QStringList &currentColumns, QWidget *parent)
    : QDialog(parent)
    , m_currentColumns(currentColumns)
{
    setObjectName(QStringLiteral("SchemaDialog"));
    setWindowTitle(tr("Schema"));
    auto *layout = new QVBoxLayout(this);
    auto *tableRow = new QHBoxLayout;
    m_table = new QTableWidget(0, 2, this);
    m_table->setHorizontalHeaderLabels({tr("Column"), tr("Value if missing")});
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setAccessibleName(tr("Schema columns"));
    tableRow->addWidget(m_table, 1);
    auto *buttons = new QVBoxLayout;
    auto *addButton = new QPushButton(tr("&Add"), this);
    m_removeButton = new QPushButton(tr("&Remove"), this);
    m_upButton = new QPushButton(tr("&Up"), this);
    m_downButton = new QPushButton(tr("Do&wn"), this);
    auto *fromCurrent = new QPushButton(tr("From &Current Columns"), this);
    fromCurrent->setEnabled(!currentColumns.isEmpty());
    fromCurrent->setToolTip(tr("Fill the names from the input's current headers."));
    for (QPushButton *button : {addButton, m_removeButton, m_upButton, m_downButton, fromCurrent}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    tableRow->addLayout(buttons);
    layout->addLayout(tableRow, 1);

    auto *form = new QFormLayout;
    m_missingCombo = choiceCombo(this, {tr("Add them, filled with their value"), tr("Error")},
        schema.missingColumns, tr("Missing columns"));
    m_orderCombo = choiceCombo(this, {tr("Keep the file's order"), tr("Put in schema order")},
        schema.reorderColumns, tr("Column order"));
    m_extraCombo =
        choiceCombo(this, {tr("Keep"), tr("Remove"), tr("Error")}, schema.extraColumns, tr("Extra columns"));
    form->addRow(tr("&Missing columns:"), m_missingCombo);
    form->addRow(tr("Column &order:"), m_orderCombo);
    form->addRow(tr("E&xtra columns:"), m_extraCombo);
    layout->addLayout(form);
    layout->addWidget(okCancel(this));

    for (int i = 0; i < schema.columnNames.size(); ++i)
        addRow(schema.columnNames.at(i), schema.missingValues.value(i));
    connect(addButton, &QPushButton::clicked, this, [this] {
        addRow();
        m_table->editItem(m_table->item(m_table->rowCount() - 1, 0));
    });
    connect(m_removeButton, &QPushButton::clicked, this, &SchemaDialog::removeCurrentRow);
    connect(m_upButton, &QPushButton::clicked, this, [this] { moveCurrentRow(-1); });
    connect(m_downButton, &QPushButton::clicked, this, [this] { moveCurrentRow(1); });
    connect(fromCurrent, &QPushButton::clicked, this, &SchemaDialog::fillFromCurrentColumns);
    connect(m_table, &QTableWidget::currentCellChanged, this, &SchemaDialog::updateButtons);
    updateButtons();
    resize(520, 420);
}

void SchemaDialog::addRow(const QString &name, const QString &missingValue)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    m_table->setItem(row, 0, new QTableWidgetItem(name));
    m_table->setItem(row, 1, new QTableWidgetItem(missingValue));
    m_table->setCurrentCell(row, 0);
    updateButtons();
}

void SchemaDialog::removeCurrentRow()
{
    const int row = m_table->currentRow();
    if (row < 0)
        return;
    m_table->removeRow(row);
    if (m_table->rowCount() > 0)
        m_table->setCurrentCell(qMin(row, m_table->rowCount() - 1), 0);
    updateButtons();
}

void SchemaDialog::moveCurrentRow(int step)
{
    const int row = m_table->currentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= m_table->rowCount())
        return;
    for (int column = 0; column < 2; ++column) {
        QTableWidgetItem *a = m_table->takeItem(row, column);
        QTableWidgetItem *b = m_table->takeItem(target, column);
        m_table->setItem(row, column, b);
        m_table->setItem(target, column, a);
    }
    m_table->setCurrentCell(target, m_table->currentColumn() < 0 ? 0 : m_table->currentColumn());
    updateButtons();
}

void SchemaDialog::fillFromCurrentColumns()
{
    // Names already listed keep their missing value.
    QHash<QString, QString> values;
    for (int row = 0; row < m_table->rowCount(); ++row)
        values.insert(m_table->item(row, 0)->text(), m_table->item(row, 1)->text());
    m_table->setRowCount(0);
    for (const QString &name : qAsConst(m_currentColumns))
        addRow(name, values.value(name));
}

void SchemaDialog::updateButtons()
{
    const int row = m_table->currentRow();
    m_removeButton->setEnabled(row >= 0);
    m_upButton->setEnabled(row > 0);
    m_downButton->setEnabled(row >= 0 && row < m_table->rowCount() - 1);
}

SchemaDialog::Schema SchemaDialog::schema() const
{
    Schema schema;
    for (int row = 0; row < m_table->rowCount(); ++row) {
        const QString name = m_table->item(row, 0) ? m_table->item(row, 0)->text().trimmed() : QString();
        if (name.isEmpty())
            continue;
        schema.columnNames << name;
        schema.missingValues << (m_table->item(row, 1) ? m_table->item(row, 1)->text() : QString());
    }
    schema.missingColumns = m_missingCombo->currentIndex();
    schema.reorderColumns = m_orderCombo->currentIndex();
    schema.extraColumns = m_extraCombo->currentIndex();
    return schema;
}

// ---------------------------------------------------------------------------------------
// Column types and formats

ColumnChoiceDialog::ColumnChoiceDialog(const QString &title, const QString &choiceHeader,
    const QStringList &choices, const QStringList &columns, const QList<int> &values, QWidget *parent)
    : QDialog(parent)
    , m_initial(values)
{
    setWindowTitle(title);
    auto *layout = new QVBoxLayout(this);
    m_table = new QTableWidget(columns.size(), 2, this);
    m_table->setHorizontalHeaderLabels({tr("Column"), choiceHeader});
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_table->verticalHeader()->setVisible(true);
    m_table->setAccessibleName(title);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int row = 0; row < columns.size(); ++row) {
        auto *name = new QTableWidgetItem(columns.at(row));
        name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        m_table->setItem(row, 0, name);
        auto *combo = choiceCombo(m_table, choices, values.value(row, 0),
            tr("%1 of '%2'").arg(choiceHeader, columns.at(row)));
        m_table->setCellWidget(row, 1, combo);
    }
    if (columns.isEmpty()) {
        auto *none = new QLabel(tr("Connect an item with columns to choose for each of them."), this);
        none->setWordWrap(true);
        layout->addWidget(none);
    }
    layout->addWidget(m_table, 1);
    layout->addWidget(okCancel(this));
    resize(440, 380);
}

QComboBox *ColumnChoiceDialog::combo(int column) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(column, 1));
}

QList<int> ColumnChoiceDialog::values() const
{
    QList<int> values = m_initial;
    for (int row = 0; row < m_table->rowCount(); ++row) {
        while (values.size() <= row)
            values << 0;
        values[row] = combo(row)->currentIndex();
    }
    return values;
}

ColumnTypesDialog::ColumnTypesDialog(const QStringList &columns, const QList<int> &types, QWidget *parent)
    : ColumnChoiceDialog(tr("Column Types"), tr("Type"), typeNames(), columns, types, parent)
{
    setObjectName(QStringLiteral("ColumnTypesDialog"));
}

QStringList ColumnTypesDialog::typeNames()
{
    return {tr("Automatic"), tr("Text"), tr("Number"), tr("Boolean"), tr("JSON")};
}

ColumnFormatsDialog::ColumnFormatsDialog(const QStringList &columns, const QList<int> &formats, QWidget *parent)
    : ColumnChoiceDialog(tr("Column Formats"), tr("Type"), formatNames(), columns, formats, parent)
{
    setObjectName(QStringLiteral("ColumnFormatsDialog"));
}

QStringList ColumnFormatsDialog::formatNames()
{
    return {tr("Automatic"), tr("Text"), tr("Number"), tr("Date"), tr("Time"), tr("Date and time")};
}
