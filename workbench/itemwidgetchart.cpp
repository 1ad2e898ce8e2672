#include "workbench/itemwidgetchart.h"

#include "charts/chartnode.h"
#include "charts/chartwidget.h"
#include "core/dataset.h"
#include "flow/graphscene.h"
#include "workbench/prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QComboBox *makeCombo(QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    ignoreWheelWithoutFocus(combo);
    return combo;
}

QSpinBox *makeSpin(QWidget *parent, int minimum, int maximum, const QString &suffix = QString())
{
    auto *spin = new QSpinBox(parent);
    spin->setRange(minimum, maximum);
    spin->setSuffix(suffix);
    ignoreWheelWithoutFocus(spin);
    return spin;
}

const Node *upstreamOf(const ChartNode *chart)
{
    return chart ? chart->upstream(false).value(0) : nullptr;
}

} // namespace

ChartItemWidget::ChartItemWidget(ChartNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    QWidget *form = formWidget();

    m_chartWidget = new ChartWidget(form);
    m_chartWidget->setObjectName(QStringLiteral("m_chartWidget"));
    m_chartWidget->setMinimumHeight(260);
    m_chartWidget->setNode(node, true);
    addFormRow(QString(), m_chartWidget);

    m_typeCombo = makeCombo(form);
    for (int type = ChartOptions::NoType; type < ChartOptions::TypeCount; ++type)
        m_typeCombo->addItem(ChartOptions::typeName(type), type);
    addFormRow(tr("Chart type"), m_typeCombo);

    m_xColumnCombo = makeCombo(form);
    addFormRow(tr("X column"), m_xColumnCombo);
    m_xAsCombo = makeCombo(form);
    for (int xAs = ChartOptions::XAutomatic; xAs <= ChartOptions::XDate; ++xAs)
        m_xAsCombo->addItem(ChartOptions::xAsName(xAs), xAs);
    addFormRow(tr("X as"), m_xAsCombo);

    auto *yWidget = new QWidget(form);
    auto *yLayout = new QHBoxLayout(yWidget);
    yLayout->setContentsMargins(0, 0, 0, 0);
    m_yColumnsList = new QListWidget(yWidget);
    m_yColumnsList->setAccessibleName(tr("Y columns"));
    m_yColumnsList->setToolTip(tr("Check the columns to plot; they are plotted in list order."));
    m_yColumnsList->setFixedHeight(m_yColumnsList->fontMetrics().lineSpacing() * 5 + 12);
    auto *buttons = new QVBoxLayout;
    m_upButton = new QPushButton(tr("Up"), yWidget);
    m_downButton = new QPushButton(tr("Down"), yWidget);
    buttons->addWidget(m_upButton);
    buttons->addWidget(m_downButton);
    buttons->addStretch(1);
    yLayout->addWidget(m_yColumnsList, 1);
    yLayout->addLayout(buttons);
    addFormRow(tr("Y columns"), yWidget);

    m_layoutCombo = makeCombo(form);
    for (int layout = ChartOptions::Grouped; layout <= ChartOptions::Stacked; ++layout)
        m_layoutCombo->addItem(ChartOptions::layoutName(layout), layout);
    addFormRow(tr("Layout"), m_layoutCombo);
    m_facetsSpin = makeSpin(form, 1, ChartOptions::MaxFacetsAcross);
    m_facetsRow = addFormRow(tr("Facets across"), m_facetsSpin);

    m_writeFileCheck = new QCheckBox(tr("Write to file"), form);
    addFormRow(QString(), m_writeFileCheck);
    auto *fileWidget = new QWidget(form);
    auto *fileLayout = new QHBoxLayout(fileWidget);
    fileLayout->setContentsMargins(0, 0, 0, 0);
    m_fileEdit = new QLineEdit(fileWidget);
    m_fileEdit->setAccessibleName(tr("File"));
    m_browseButton = new QPushButton(tr("Browse..."), fileWidget);
    fileLayout->addWidget(m_fileEdit, 1);
    fileLayout->addWidget(m_browseButton);
    m_fileRow = addFormRow(tr("File"), fileWidget);
    m_imageTypeCombo = makeCombo(form);
    for (int type = ChartOptions::Jpeg; type <= ChartOptions::Pdf; ++type)
        m_imageTypeCombo->addItem(ChartOptions::imageTypeName(type), type);
    addFormRow(tr("Image type"), m_imageTypeCombo);
    m_widthSpin = makeSpin(form, 16, 20000, tr(" px"));
    m_widthRow = addFormRow(tr("Width"), m_widthSpin);
    m_heightSpin = makeSpin(form, 16, 20000, tr(" px"));
    m_heightRow = addFormRow(tr("Height"), m_heightSpin);

    // Choices are discrete edits; typed values come in bursts and merge.
    const auto onCombo = [this](QComboBox *combo, const QString &label, int ChartOptions::*member) {
        connect(combo, QOverload<int>::of(&QComboBox::activated), this, [this, combo, label, member](int index) {
            ChartNode *chart = chartNode();
            if (!chart || index < 0)
                return;
            ChartOptions options = chart->options();
            const int value = combo->itemData(index).toInt();
            if (options.*member == value)
                return;
            options.*member = value;
            applyOptions(label, options);
        });
    };
    onCombo(m_typeCombo, tr("Chart type"), &ChartOptions::type);
    onCombo(m_xAsCombo, tr("X as"), &ChartOptions::xAs);
    onCombo(m_layoutCombo, tr("Layout"), &ChartOptions::layout);
    onCombo(m_imageTypeCombo, tr("Image type"), &ChartOptions::imageType);
    const auto onSpin = [this](QSpinBox *spin, const QString &label, int ChartOptions::*member) {
        connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), this, [this, label, member](int value) {
            ChartNode *chart = chartNode();
            if (!chart || chart->options().*member == value)
                return;
            ChartOptions options = chart->options();
            options.*member = value;
            applyOptions(label, options, true);
        });
    };
    onSpin(m_facetsSpin, tr("Facets across"), &ChartOptions::facetsAcross);
    onSpin(m_widthSpin, tr("Width"), &ChartOptions::imageWidth);
    onSpin(m_heightSpin, tr("Height"), &ChartOptions::imageHeight);

    connect(m_xColumnCombo, QOverload<int>::of(&QComboBox::activated), this, [this] { applyXColumn(); });
    connect(m_yColumnsList, &QListWidget::itemChanged, this, [this] { applyYColumns(tr("Y columns")); });
    connect(m_yColumnsList, &QListWidget::currentRowChanged, this, [this](int row) {
        m_upButton->setEnabled(!isRunning() && row > 0);
        m_downButton->setEnabled(!isRunning() && row >= 0 && row < m_yColumnsList->count() - 1);
    });
    connect(m_upButton, &QPushButton::clicked, this, [this] { moveYColumn(-1); });
    connect(m_downButton, &QPushButton::clicked, this, [this] { moveYColumn(1); });

    connect(m_writeFileCheck, &QCheckBox::toggled, this, [this](bool checked) {
        ChartNode *chart = chartNode();
        if (!chart || chart->options().writeFile == checked)
            return;
        ChartOptions options = chart->options();
        options.writeFile = checked;
        applyOptions(tr("Write to file"), options);
    });
    connect(m_fileEdit, &QLineEdit::editingFinished, this, [this] {
        ChartNode *chart = chartNode();
        if (chart && m_fileEdit->text().trimmed() != chart->options().path)
            setFile(m_fileEdit->text().trimmed());
    });
    connect(m_browseButton, &QPushButton::clicked, this, [this] {
        ChartNode *chart = chartNode();
        if (!chart)
            return;
        const QString current = chart->options().path;
        const QString proposed = current.isEmpty()
            ? QStringLiteral("Chart.%1").arg(ChartOptions::defaultExtension(chart->options().imageType))
            : current;
        const QString path = FileDialogs::instance()->saveFile(
            this, tr("Chart File"), proposed, tr("Images (*.png *.jpg *.jpeg);;PDF (*.pdf)"));
        if (!path.isEmpty())
            setFile(path);
    });
}

ChartNode *ChartItemWidget::chartNode() const
{
    return qobject_cast<ChartNode *>(node());
}

QString ChartItemWidget::connectionHint() const
{
    const ChartNode *chart = chartNode();
    if (!chart || !chart->upstream(false).isEmpty())
        return QString();
    return tr("Connect %1 to this item.").arg(tr("1 Input/Transform item"));
}

void ChartItemWidget::applyOptions(const QString &label, const ChartOptions &options, bool burst)
{
    if (!chartNode() || isRunning())
        return;
    recordEdit(
        tr("'%1' change").arg(label),
        [options](Node *node) { qobject_cast<ChartNode *>(node)->setOptions(options); },
        ItemEditCommand::OptionMerge, label);
    updateRows(options);
    if (burst)
        startInvalidateTimer();
    else
        invalidateNow();
}

void ChartItemWidget::applyXColumn()
{
    const ChartNode *chart = chartNode();
    const Node *above = upstreamOf(chart);
    if (!chart || !above || isRunning())
        return;
    const int index = m_xColumnCombo->currentData().toInt();
    const ColumnId id = index >= 0 && index < above->dataset().columnCount()
        ? above->dataset().columnId(DataColumnIndex(index))
        : ColumnId();
    if (id == chart->xColumn())
        return;
    recordEdit(tr("'%1' change").arg(tr("X column")),
        [id](Node *node) { qobject_cast<ChartNode *>(node)->setXColumn(id); });
    invalidateNow();
}

void ChartItemWidget::applyYColumns(const QString &label)
{
    const ChartNode *chart = chartNode();
    const Node *above = upstreamOf(chart);
    if (!chart || !above || isRunning())
        return;
    QList<ColumnId> ids;
    for (int row = 0; row < m_yColumnsList->count(); ++row) {
        const QListWidgetItem *item = m_yColumnsList->item(row);
        const int index = item->data(Qt::UserRole).toInt();
        if (item->checkState() == Qt::Checked && index >= 0 && index < above->dataset().columnCount())
            ids << above->dataset().columnId(DataColumnIndex(index));
    }
    if (ids == chart->yColumns())
        return;
    recordEdit(tr("'%1' change").arg(label),
        [ids](Node *node) { qobject_cast<ChartNode *>(node)->setYColumns(ids); });
    invalidateNow();
}

void ChartItemWidget::moveYColumn(int step)
{
    const int row = m_yColumnsList->currentRow();
    const int target = row + step;
    if (row < 0 || target < 0 || target >= m_yColumnsList->count())
        return;
    {
        const QSignalBlocker blocker(m_yColumnsList);
        QListWidgetItem *item = m_yColumnsList->takeItem(row);
        m_yColumnsList->insertItem(target, item);
        m_yColumnsList->setCurrentRow(target);
    }
    m_upButton->setEnabled(!isRunning() && target > 0);
    m_downButton->setEnabled(!isRunning() && target < m_yColumnsList->count() - 1);
    // Only the order of checked columns is stored; moving an unchecked one changes nothing.
    applyYColumns(tr("Y columns"));
}

void ChartItemWidget::setFile(const QString &path)
{
    ChartNode *chart = chartNode();
    if (!chart)
        return;
    ChartOptions options = chart->options();
    options.path = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    const int type = ChartOptions::imageTypeForExtension(QFileInfo(path).suffix());
    if (type >= 0)
        options.imageType = type;
    applyOptions(tr("File"), options);
    updateFromNode();
}

void ChartItemWidget::updateRows(const ChartOptions &options)
{
    setRowVisible(m_facetsRow, options.layout == ChartOptions::Faceted);
    const bool image = options.imageType != ChartOptions::Pdf;
    setRowVisible(m_widthRow, image);
    setRowVisible(m_heightRow, image);
}

void ChartItemWidget::updateFromNode()
{
    const ChartNode *chart = chartNode();
    if (!chart)
        return;
    blockFormSignals(true);
    const ChartOptions &options = chart->options();
    const auto select = [](QComboBox *combo, int value) { combo->setCurrentIndex(qMax(0, combo->findData(value))); };
    select(m_typeCombo, options.type);
    select(m_xAsCombo, options.xAs);
    select(m_layoutCombo, options.layout);
    select(m_imageTypeCombo, options.imageType);
    m_facetsSpin->setValue(options.facetsAcross);
    m_writeFileCheck->setChecked(options.writeFile);
    m_fileEdit->setText(options.path);
    m_widthSpin->setValue(options.imageWidth);
    m_heightSpin->setValue(options.imageHeight);

    // Columns come from the upstream dataset; without one they can't be chosen.
    const Node *above = upstreamOf(chart);
    const bool columns = above && above->dataset().hasColumns();
    const QStringList headers = columns ? above->dataset().displayHeaders() : QStringList();
    const auto indexOf = [above, columns](ColumnId id) {
        return columns && !id.isUnset() ? above->dataset().columnIndex(id).toInt() : -1;
    };
    m_xColumnCombo->clear();
    m_xColumnCombo->addItem(tr("<None selected>"), -1);
    for (int i = 0; i < headers.size(); ++i)
        m_xColumnCombo->addItem(headers.at(i), i);
    select(m_xColumnCombo, indexOf(chart->xColumn()));

    QList<int> order;
    for (const ColumnId id : chart->yColumns()) {
        const int index = indexOf(id);
        if (index >= 0 && !order.contains(index))
            order << index;
    }
    const int checkedCount = order.size();
    for (int i = 0; i < headers.size(); ++i)
        if (!order.contains(i))
            order << i;
    // Items are reused: this may run from within the list's own itemChanged.
    while (m_yColumnsList->count() > order.size())
        delete m_yColumnsList->takeItem(m_yColumnsList->count() - 1);
    while (m_yColumnsList->count() < order.size()) {
        auto *item = new QListWidgetItem(m_yColumnsList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    }
    for (int row = 0; row < order.size(); ++row) {
        QListWidgetItem *item = m_yColumnsList->item(row);
        item->setText(headers.value(order.at(row)));
        item->setData(Qt::UserRole, order.at(row));
        item->setCheckState(row < checkedCount ? Qt::Checked : Qt::Unchecked);
    }
    m_xColumnCombo->setEnabled(columns && !isRunning());
    m_yColumnsList->setEnabled(columns && !isRunning());
    m_upButton->setEnabled(false);
    m_downButton->setEnabled(false);
    updateRows(options);
    blockFormSignals(false);
}
