#include "workbench/itemwidgetchart.h"

#include "charts/chartdocument.h"
#include "charts/chartnode.h"
#include "core/dataset.h"
#include "core/settings.h"
#include "flow/documentelement.h"
#include "flow/graphscene.h"
#include "workbench/prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

const char GeneralTab[] = "General";
const char XTab[] = "X Axis";
const char YTab[] = "Y Axis";

QComboBox *makeCombo(QWidget *parent, const QStringList &items = QStringList())
{
    auto *combo = new QComboBox(parent);
    for (int i = 0; i < items.size(); ++i)
        combo->addItem(items.at(i), i);
    // Long entries (codec names, column names) don't widen the pane.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(8);
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

QDoubleSpinBox *makeDouble(QWidget *parent, double minimum, double maximum, double step, int decimals)
{
    auto *spin = new QDoubleSpinBox(parent);
    spin->setRange(minimum, maximum);
    spin->setSingleStep(step);
    spin->setDecimals(decimals);
    ignoreWheelWithoutFocus(spin);
    return spin;
}

// A choice and the value it enables, side by side.
QWidget *pair(QWidget *parent, QWidget *first, QWidget *second)
{
    auto *widget = new QWidget(parent);
    auto *layout = new QHBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(first);
    layout->addWidget(second, 1);
    return widget;
}

// The title choices in the order offered; the stored values are those of ChartAxisOptions.
void fillTitleCombo(QComboBox *combo)
{
    combo->addItem(ChartItemWidget::tr("Default"), int(ChartAxisOptions::TitleDefault));
    combo->addItem(ChartItemWidget::tr("Custom"), int(ChartAxisOptions::TitleCustom));
    combo->addItem(ChartItemWidget::tr("None"), int(ChartAxisOptions::TitleNone));
}

const Node *upstreamOf(const ChartNode *chart)
{
    return chart ? chart->upstream(false).value(0) : nullptr;
}

// Attributes of a chart's element that are not defaults: its place, columns and file.
bool isDefaultKey(const QString &name)
{
    static const QStringList excluded = {QStringLiteral("id"), QStringLiteral("comment"), QStringLiteral("x"),
        QStringLiteral("y"), QStringLiteral("pos"), QStringLiteral("position"), QStringLiteral("chart_x_column"),
        QStringLiteral("chart_y_columns"), QStringLiteral("path"), QStringLiteral("alias")};
    return name.startsWith(QLatin1String("chart_")) ? !excluded.contains(name) : name == QLatin1String("write_file");
}

QString defaultsGroup()
{
    return QStringLiteral("defaults/charts");
}

} // namespace

ChartItemWidget::ChartItemWidget(ChartNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : ItemWidget(node, scene, undoStack, parent)
{
    m_optionTabs = new QTabWidget(formWidget());
    m_optionTabs->setObjectName(QStringLiteral("chartOptionTabs"));
    m_optionTabs->setAccessibleName(tr("Chart options"));
    m_optionTabs->addTab(buildGeneralTab(), tr("General"));
    m_optionTabs->addTab(buildAxisTab(true), tr("X Axis"));
    m_optionTabs->addTab(buildAxisTab(false), tr("Y Axis"));
    addFormRow(QString(), m_optionTabs);
}

QGridLayout *ChartItemWidget::group(QWidget *page, const QString &title)
{
    auto *box = new QGroupBox(title, page);
    auto *grid = new QGridLayout(box);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(8);
    page->layout()->addWidget(box);
    return grid;
}

void ChartItemWidget::addRow(QGridLayout *grid, const QString &tab, const QString &label, QWidget *widget,
    QWidget *accessible)
{
    const int row = grid->rowCount();
    Row entry;
    entry.tab = tab;
    QWidget *named = accessible ? accessible : widget;
    if (label.isEmpty()) {
        grid->addWidget(widget, row, 0, 1, 2);
        if (auto *check = qobject_cast<QCheckBox *>(named))
            entry.name = check->text().remove(QLatin1Char('&'));
        else
            entry.name = named->accessibleName();
    } else {
        auto *labelWidget = new QLabel(tr("%1:").arg(label), grid->parentWidget());
        labelWidget->setBuddy(named);
        const bool tall = qobject_cast<QListWidget *>(named) != nullptr;
        labelWidget->setAlignment(Qt::AlignLeft | (tall ? Qt::AlignTop : Qt::AlignVCenter));
        grid->addWidget(labelWidget, row, 0);
        grid->addWidget(widget, row, 1);
        entry.widgets << labelWidget;
        named->setAccessibleName(label);
        if (!named->toolTip().isEmpty())
            named->setAccessibleDescription(named->toolTip());
        entry.name = label;
    }
    entry.widgets << widget;
    m_rows << entry;
}

QWidget *ChartItemWidget::control(const QString &tab, const QString &name) const
{
    for (const Row &row : m_rows) {
        if (row.tab == tab && row.name == name) {
            QWidget *widget = row.widgets.last();
            // A choice beside its value: the choice.
            if (!qobject_cast<QComboBox *>(widget) && !qobject_cast<QAbstractButton *>(widget)
                && !qobject_cast<QAbstractSpinBox *>(widget)) {
                const QList<QWidget *> children = widget->findChildren<QWidget *>();
                for (QWidget *child : children) {
                    if (child->accessibleName() == name)
                        return child;
                }
            }
            return widget;
        }
    }
    // A value beside its choice, such as "Custom maximum".
    for (int index = 0; index < m_optionTabs->count(); ++index) {
        if (m_optionTabs->tabText(index) != tab)
            continue;
        const QList<QWidget *> children = m_optionTabs->widget(index)->findChildren<QWidget *>();
        for (QWidget *child : children) {
            if (child->accessibleName() == name)
                return child;
        }
    }
    return nullptr;
}

bool ChartItemWidget::isControlShown(const QString &tab, const QString &name) const
{
    for (const Row &row : m_rows) {
        if (row.tab == tab && row.name == name) {
            // Up to the tab's page: a page not shown still counts its rows as shown.
            for (QWidget *w = row.widgets.last(); w && m_optionTabs->indexOf(w) < 0; w = w->parentWidget()) {
                if (w->isHidden())
                    return false;
            }
            return true;
        }
    }
    return false;
}

QWidget *ChartItemWidget::buildGeneralTab()
{
    // Made inside the tabs, so that Tab reaches the tab bar before the options.
    auto *page = new QWidget(m_optionTabs);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 6, 4, 4);
    const QString tab = QLatin1String(GeneralTab);

    // Data
    QGridLayout *data = group(page, tr("Data"));
    QWidget *box = data->parentWidget();
    m_typeCombo = makeCombo(box);
    for (int type = ChartOptions::NoType; type < ChartOptions::TypeCount; ++type)
        m_typeCombo->addItem(ChartOptions::typeName(type), type);
    addRow(data, tab, tr("Chart type"), m_typeCombo);
    m_xColumnCombo = makeCombo(box);
    addRow(data, tab, tr("X column"), m_xColumnCombo);
    m_xAsCombo = makeCombo(box);
    for (int xAs = ChartOptions::XAutomatic; xAs <= ChartOptions::XDate; ++xAs)
        m_xAsCombo->addItem(ChartOptions::xAsName(xAs), xAs);
    addRow(data, tab, tr("X as"), m_xAsCombo);

    auto *yWidget = new QWidget(box);
    auto *yLayout = new QHBoxLayout(yWidget);
    yLayout->setContentsMargins(0, 0, 0, 0);
    m_yColumnsList = new QListWidget(yWidget);
    m_yColumnsList->setToolTip(tr("Check the columns to plot; they are plotted in list order."));
    m_yColumnsList->setFixedHeight(m_yColumnsList->fontMetrics().lineSpacing() * 5 + 12);
    auto *buttons = new QVBoxLayout;
    m_upButton = new QPushButton(tr("Up"), yWidget);
    m_downButton = new QPushButton(tr("Down"), yWidget);
    m_upButton->setAccessibleName(tr("Move Y column up"));
    m_downButton->setAccessibleName(tr("Move Y column down"));
    buttons->addWidget(m_upButton);
    buttons->addWidget(m_downButton);
    buttons->addStretch(1);
    yLayout->addWidget(m_yColumnsList, 1);
    yLayout->addLayout(buttons);
    addRow(data, tab, tr("Y columns"), yWidget, m_yColumnsList);

    m_layoutCombo = makeCombo(box);
    for (int layoutType = ChartOptions::Grouped; layoutType <= ChartOptions::Stacked; ++layoutType)
        m_layoutCombo->addItem(ChartOptions::layoutName(layoutType), layoutType);
    addRow(data, tab, tr("Layout"), m_layoutCombo);
    auto *facets = makeSpin(box, 1, ChartOptions::MaxFacetsAcross);
    addRow(data, tab, tr("Facets across"), facets);

    bindCombo(m_typeCombo, tr("Chart type"), QString(), [](ChartOptions &o) -> int & { return o.type; });
    bindCombo(m_xAsCombo, tr("X as"), QString(), [](ChartOptions &o) -> int & { return o.xAs; });
    bindCombo(m_layoutCombo, tr("Layout"), QString(), [](ChartOptions &o) -> int & { return o.layout; });
    bindSpin(facets, tr("Facets across"), QString(), [](ChartOptions &o) -> int & { return o.facetsAcross; });
    connect(m_xColumnCombo, QOverload<int>::of(&QComboBox::activated), this, [this] { applyXColumn(); });
    connect(m_yColumnsList, &QListWidget::itemChanged, this, [this] { applyYColumns(tr("Y columns")); });
    connect(m_yColumnsList, &QListWidget::currentRowChanged, this, [this](int row) {
        m_upButton->setEnabled(!isRunning() && row > 0);
        m_downButton->setEnabled(!isRunning() && row >= 0 && row < m_yColumnsList->count() - 1);
    });
    connect(m_upButton, &QPushButton::clicked, this, [this] { moveYColumn(-1); });
    connect(m_downButton, &QPushButton::clicked, this, [this] { moveYColumn(1); });

    // Appearance
    QGridLayout *look = group(page, tr("Appearance"));
    box = look->parentWidget();
    auto *theme = makeCombo(box, ChartOptions::themeNames());
    addRow(look, tab, tr("Theme"), theme);
    auto *titleCombo = makeCombo(box);
    fillTitleCombo(titleCombo);
    auto *titleEdit = new QLineEdit(box);
    titleEdit->setAccessibleName(tr("Custom title"));
    titleEdit->setToolTip(tr("$(X) and $(Y) stand for the names of the X and Y columns."));
    addRow(look, tab, tr("Title"), pair(box, titleCombo, titleEdit), titleCombo);
    auto *legend = makeCombo(box, ChartOptions::legendNames());
    addRow(look, tab, tr("Legend"), legend);
    auto *thickness = makeDouble(box, 0.5, 20, 0.5, 1);
    addRow(look, tab, tr("Line thickness"), thickness);
    auto *opacity = makeSpin(box, 0, 100, tr("%"));
    addRow(look, tab, tr("Opacity"), opacity);
    auto *points = new QCheckBox(tr("Show line data points"), box);
    addRow(look, tab, QString(), points);
    auto *pointCombo = makeCombo(box, {tr("Automatic"), tr("Custom")});
    auto *pointSize = makeDouble(box, 1, 100, 1, 1);
    pointSize->setAccessibleName(tr("Custom point size"));
    addRow(look, tab, tr("Point size"), pair(box, pointCombo, pointSize), pointCombo);

    bindCombo(theme, tr("Theme"), QString(), [](ChartOptions &o) -> int & { return o.theme; });
    bindCombo(titleCombo, tr("Title"), QString(), [](ChartOptions &o) -> int & { return o.titleOption; });
    bindText(titleEdit, tr("Title"), QString(), [](ChartOptions &o) -> QString & { return o.customTitle; });
    bindCombo(legend, tr("Legend"), QString(), [](ChartOptions &o) -> int & { return o.legendPosition; });
    bindDouble(thickness, tr("Line thickness"), QString(),
        [](ChartOptions &o) -> double & { return o.lineThickness; });
    bindSpin(opacity, tr("Opacity"), QString(), [](ChartOptions &o) -> int & { return o.opacity; });
    bindCheck(points, tr("Show line data points"), QString(),
        [](ChartOptions &o) -> bool & { return o.showLineDataPoints; });
    bindCombo(pointCombo, tr("Point size"), QString(), [](ChartOptions &o) -> int & { return o.pointSizeOption; });
    bindDouble(pointSize, tr("Point size"), QString(), [](ChartOptions &o) -> double & { return o.customPointSize; });
    m_loaders << [titleEdit, pointSize](ChartOptions &o) {
        titleEdit->setEnabled(o.titleOption == ChartAxisOptions::TitleCustom);
        pointSize->setEnabled(o.pointSizeOption == ChartOptions::PointSizeCustom);
    };

    // File
    QGridLayout *file = group(page, tr("File"));
    box = file->parentWidget();
    m_writeFileCheck = new QCheckBox(tr("Write to file"), box);
    addRow(file, tab, QString(), m_writeFileCheck);
    auto *fileWidget = new QWidget(box);
    auto *fileLayout = new QHBoxLayout(fileWidget);
    fileLayout->setContentsMargins(0, 0, 0, 0);
    m_fileEdit = new QLineEdit(fileWidget);
    m_fileEdit->setToolTip(tr("File name variables such as {date} are allowed."));
    m_browseButton = new QPushButton(tr("Browse..."), fileWidget);
    fileLayout->addWidget(m_fileEdit, 1);
    fileLayout->addWidget(m_browseButton);
    addRow(file, tab, tr("File"), fileWidget, m_fileEdit);
    m_imageTypeCombo = makeCombo(box);
    for (int type = ChartOptions::Jpeg; type <= ChartOptions::Pdf; ++type)
        m_imageTypeCombo->addItem(ChartOptions::imageTypeName(type), type);
    addRow(file, tab, tr("Image type"), m_imageTypeCombo);
    m_pdfNote = new QLabel(tr("Please note that the Mac Preview application cannot display PDF gradients.\n"
                              "Try opening your PDF in Chrome or a PDF viewer."),
        box);
    m_pdfNote->setWordWrap(true);
    m_pdfNote->setAccessibleName(tr("PDF note"));
    addRow(file, tab, QString(), m_pdfNote);
    m_widthSpin = makeSpin(box, 16, 20000, tr(" px"));
    addRow(file, tab, tr("Width"), m_widthSpin);
    m_heightSpin = makeSpin(box, 16, 20000, tr(" px"));
    addRow(file, tab, tr("Height"), m_heightSpin);
    auto *pageSize = makeCombo(box);
    pageSize->addItems(ChartOptions::pdfSizeNames());
    addRow(file, tab, tr("Page size"), pageSize);
    auto *orientation = makeCombo(box, {tr("Portrait"), tr("Landscape")});
    addRow(file, tab, tr("Orientation"), orientation);
    auto *resolution = makeSpin(box, 72, 1200, tr(" dpi"));
    addRow(file, tab, tr("Resolution"), resolution);

    bindCheck(m_writeFileCheck, tr("Write to file"), QString(), [](ChartOptions &o) -> bool & { return o.writeFile; });
    bindSpin(m_widthSpin, tr("Width"), QString(), [](ChartOptions &o) -> int & { return o.imageWidth; });
    bindSpin(m_heightSpin, tr("Height"), QString(), [](ChartOptions &o) -> int & { return o.imageHeight; });
    bindCombo(orientation, tr("Orientation"), QString(), [](ChartOptions &o) -> int & { return o.pdfOrientation; });
    bindSpin(resolution, tr("Resolution"), QString(), [](ChartOptions &o) -> int & { return o.pdfResolution; });
    connect(pageSize, QOverload<int>::of(&QComboBox::activated), this, [this, pageSize] {
        ChartNode *chart = chartNode();
        if (!chart || chart->options().pdfSize == pageSize->currentText())
            return;
        ChartOptions options = chart->options();
        options.pdfSize = pageSize->currentText();
        applyOptions(tr("Page size"), options);
    });
    m_loaders << [pageSize](ChartOptions &o) {
        const QString size = o.pdfSize.isEmpty() ? ChartOptions::systemPdfSize() : o.pdfSize;
        pageSize->setCurrentIndex(qMax(0, pageSize->findText(size)));
    };
    connect(m_imageTypeCombo, QOverload<int>::of(&QComboBox::activated), this,
        [this] { setImageType(m_imageTypeCombo->currentData().toInt()); });
    connect(m_fileEdit, &QLineEdit::editingFinished, this, [this] {
        ChartNode *chart = chartNode();
        if (chart && m_fileEdit->text().trimmed() != chart->options().path)
            setFile(m_fileEdit->text().trimmed(), true);
    });
    connect(m_browseButton, &QPushButton::clicked, this, [this] {
        ChartNode *chart = chartNode();
        if (!chart)
            return;
        const QString current = chart->options().path;
        const QString proposed = current.isEmpty()
            ? QStringLiteral("Chart.%1").arg(ChartOptions::defaultExtension(chart->options().imageType))
            : current;
        // The chooser confirms replacing a file itself.
        const QString path = FileDialogs::instance()->saveFile(
            this, tr("Chart File"), proposed, tr("Images (*.png *.jpg *.jpeg);;PDF (*.pdf)"));
        if (!path.isEmpty())
            setFile(path);
    });
    layout->addStretch(1);
    return page;
}

QWidget *ChartItemWidget::buildAxisTab(bool x)
{
    // Made inside the tabs, so that Tab reaches the tab bar before the options.
    auto *page = new QWidget(m_optionTabs);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(4, 6, 4, 4);
    const QString tab = QLatin1String(x ? XTab : YTab);
    const QString key = x ? QStringLiteral("x") : QStringLiteral("y");
    const QString letter = x ? QStringLiteral("X") : QStringLiteral("Y");
    const auto axis = [x](ChartOptions &o) -> ChartAxisOptions & { return x ? o.xAxis : o.yAxis; };

    QWidget *options = page;
    if (x) {
        m_noXAxisLabel = new QLabel(tr("No X axis options for this chart type"), page);
        m_noXAxisLabel->setWordWrap(true);
        layout->addWidget(m_noXAxisLabel);
        m_xAxisOptions = new QWidget(page);
        auto *inner = new QVBoxLayout(m_xAxisOptions);
        inner->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(m_xAxisOptions);
        options = m_xAxisOptions;
    }
    auto *box = new QWidget(options);
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(8);
    options->layout()->addWidget(box);

    auto *show = new QCheckBox(tr("Show axis"), box);
    addRow(grid, tab, QString(), show);
    auto *showGrid = new QCheckBox(tr("Show grid"), box);
    addRow(grid, tab, QString(), showGrid);
    auto *titleCombo = makeCombo(box);
    fillTitleCombo(titleCombo);
    auto *titleEdit = new QLineEdit(box);
    titleEdit->setAccessibleName(tr("Custom title"));
    titleEdit->setToolTip(tr("$(%1) stands for the name of the %1 column.").arg(letter));
    addRow(grid, tab, tr("Title"), pair(box, titleCombo, titleEdit), titleCombo);
    auto *scale = makeCombo(box, ChartAxisOptions::scaleNames());
    addRow(grid, tab, tr("Scale"), scale);
    auto *minCombo = makeCombo(box, {tr("Automatic"), tr("Custom")});
    auto *minValue = makeDouble(box, -1e15, 1e15, 1, 3);
    minValue->setAccessibleName(tr("Custom minimum"));
    // The range's widest number would size the spin box, and with it the whole pane.
    minValue->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    minValue->setMinimumWidth(90);
    addRow(grid, tab, tr("Minimum"), pair(box, minCombo, minValue), minCombo);
    auto *maxCombo = makeCombo(box, {tr("Automatic"), tr("Custom")});
    auto *maxValue = makeDouble(box, -1e15, 1e15, 1, 3);
    maxValue->setAccessibleName(tr("Custom maximum"));
    maxValue->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    maxValue->setMinimumWidth(90);
    addRow(grid, tab, tr("Maximum"), pair(box, maxCombo, maxValue), maxCombo);
    auto *nice = new QCheckBox(tr("Nice values"), box);
    nice->setToolTip(tr("Check to use %1 axis values that are multiples of 10^n, 2x10^n and 5x10^n.\n"
                        "This may increase the axis range.")
                         .arg(letter));
    addRow(grid, tab, QString(), nice);
    auto *labels = new QCheckBox(tr("Show labels"), box);
    addRow(grid, tab, QString(), labels);
    auto *angle = makeSpin(box, -90, 90, tr("°"));
    addRow(grid, tab, tr("Label angle"), angle);
    auto *format = makeCombo(box, ChartAxisOptions::labelFormatLetters());
    format->setToolTip(tr("Set the label format:\ne=exponent e.g.: 1.230e+06\nE=exponent e.g.: 1.230E+06\n"
                          "f=fixed point e.g.: 1230000.00\ng=shorter of e and f\nG=shorter of E and f\n"
                          "i=integer e.g.: 1230000"));
    addRow(grid, tab, tr("Label format"), format);
    auto *precision = makeSpin(box, 0, 15);
    precision->setToolTip(tr("Digits after the decimal point; whole numbers take none."));
    addRow(grid, tab, tr("Precision"), precision);

    bindCheck(show, tr("Show axis"), key, [axis](ChartOptions &o) -> bool & { return axis(o).show; });
    bindCheck(showGrid, tr("Show grid"), key, [axis](ChartOptions &o) -> bool & { return axis(o).showGrid; });
    bindCombo(titleCombo, tr("Title"), key, [axis](ChartOptions &o) -> int & { return axis(o).titleOption; });
    bindText(titleEdit, tr("Title"), key, [axis](ChartOptions &o) -> QString & { return axis(o).customTitle; });
    bindCombo(scale, tr("Scale"), key, [axis](ChartOptions &o) -> int & { return axis(o).scale; });
    bindCombo(minCombo, tr("Minimum"), key, [axis](ChartOptions &o) -> int & { return axis(o).minRangeOption; });
    bindDouble(
        minValue, tr("Minimum"), key, [axis](ChartOptions &o) -> double & { return axis(o).minRangeCustomValue; });
    bindCombo(maxCombo, tr("Maximum"), key, [axis](ChartOptions &o) -> int & { return axis(o).maxRangeOption; });
    bindDouble(
        maxValue, tr("Maximum"), key, [axis](ChartOptions &o) -> double & { return axis(o).maxRangeCustomValue; });
    bindCheck(nice, tr("Nice values"), key, [axis](ChartOptions &o) -> bool & { return axis(o).niceValues; });
    bindCheck(labels, tr("Show labels"), key, [axis](ChartOptions &o) -> bool & { return axis(o).showLabels; });
    bindSpin(angle, tr("Label angle"), key, [axis](ChartOptions &o) -> int & { return axis(o).labelAngle; });
    bindCombo(format, tr("Label format"), key, [axis](ChartOptions &o) -> int & { return axis(o).labelFormat; });
    bindSpin(precision, tr("Precision"), key, [axis](ChartOptions &o) -> int & { return axis(o).labelPrecision; });

    QWidget *dateFormat = nullptr;
    if (x) {
        auto *edit = new QLineEdit(box);
        edit->setToolTip(tr("How dates are written on the axis, such as yyyy-MM-dd or d MMM yyyy."));
        addRow(grid, tab, tr("Date format"), edit);
        bindText(edit, tr("Date format"), key, [](ChartOptions &o) -> QString & { return o.xAxis.labelDateFormat; });
        dateFormat = edit;
    } else {
        auto *same = new QCheckBox(tr("Same range for all facets"), box);
        same->setToolTip(tr("Give every facet the Y range of the whole chart, so that facets compare."));
        addRow(grid, tab, QString(), same);
        bindCheck(same, tr("Same range for all facets"), key,
            [](ChartOptions &o) -> bool & { return o.yAxis.sameRangeAllFacets; });
    }
    m_loaders << [axis, titleEdit, minValue, maxValue, precision, dateFormat](ChartOptions &o) {
        const ChartAxisOptions &a = axis(o);
        titleEdit->setEnabled(a.titleOption == ChartAxisOptions::TitleCustom);
        minValue->setEnabled(a.minRangeOption == ChartAxisOptions::RangeCustom);
        maxValue->setEnabled(a.maxRangeOption == ChartAxisOptions::RangeCustom);
        precision->setEnabled(a.labelFormat != ChartAxisOptions::FormatI);
        Q_UNUSED(dateFormat)
    };
    layout->addStretch(1);
    return page;
}

void ChartItemWidget::bindCombo(QComboBox *combo, const QString &label, const QString &key, const IntField &field)
{
    connect(combo, QOverload<int>::of(&QComboBox::activated), this, [this, combo, label, key, field](int index) {
        ChartNode *chart = chartNode();
        if (!chart || index < 0)
            return;
        ChartOptions options = chart->options();
        const int value = combo->itemData(index).toInt();
        if (field(options) == value)
            return;
        field(options) = value;
        applyOptions(label, options, false, key);
    });
    m_loaders << [combo, field](ChartOptions &o) { combo->setCurrentIndex(qMax(0, combo->findData(field(o)))); };
}

void ChartItemWidget::bindCheck(QCheckBox *check, const QString &label, const QString &key, const BoolField &field)
{
    connect(check, &QCheckBox::toggled, this, [this, label, key, field](bool on) {
        ChartNode *chart = chartNode();
        if (!chart)
            return;
        ChartOptions options = chart->options();
        if (field(options) == on)
            return;
        field(options) = on;
        applyOptions(label, options, false, key);
    });
    m_loaders << [check, field](ChartOptions &o) { check->setChecked(field(o)); };
}

void ChartItemWidget::bindSpin(QSpinBox *spin, const QString &label, const QString &key, const IntField &field)
{
    connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), this, [this, spin, label, key, field](int value) {
        ChartNode *chart = chartNode();
        if (!chart)
            return;
        ChartOptions options = chart->options();
        if (field(options) == value)
            return;
        field(options) = value;
        applyOptions(label, options, spin->hasFocus(), key);
    });
    m_loaders << [spin, field](ChartOptions &o) { spin->setValue(field(o)); };
}

void ChartItemWidget::bindDouble(QDoubleSpinBox *spin, const QString &label, const QString &key, const DoubleField &field)
{
    connect(spin, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
        [this, spin, label, key, field](double value) {
            ChartNode *chart = chartNode();
            if (!chart)
                return;
            ChartOptions options = chart->options();
            if (qFuzzyCompare(field(options) + 1.0, value + 1.0))
                return;
            field(options) = value;
            applyOptions(label, options, spin->hasFocus(), key);
        });
    m_loaders << [spin, field](ChartOptions &o) { spin->setValue(field(o)); };
}

void ChartItemWidget::bindText(QLineEdit *edit, const QString &label, const QString &key, const TextField &field)
{
    connect(edit, &QLineEdit::textEdited, this, [this, label, key, field](const QString &text) {
        ChartNode *chart = chartNode();
        if (!chart)
            return;
        ChartOptions options = chart->options();
        if (field(options) == text)
            return;
        field(options) = text;
        applyOptions(label, options, true, key);
    });
    m_loaders << [edit, field](ChartOptions &o) {
        if (!edit->hasFocus() && edit->text() != field(o))
            edit->setText(field(o));
    };
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

void ChartItemWidget::applyOptions(const QString &label, const ChartOptions &options, bool burst, const QString &mergeKey)
{
    if (!chartNode() || isRunning())
        return;
    recordEdit(
        tr("'%1' change").arg(label),
        [options](Node *node) { qobject_cast<ChartNode *>(node)->setOptions(options); }, ItemEditCommand::OptionMerge,
        mergeKey + QLatin1Char('/') + label);
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

void ChartItemWidget::setFile(const QString &path, bool askReplace)
{
    ChartNode *chart = chartNode();
    if (!chart)
        return;
    ChartOptions options = chart->options();
    const QString absolute = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    if (askReplace && !absolute.isEmpty() && QFileInfo(absolute).isFile()
        && Prompts::instance()->ask(this, tr("Chart File"),
               tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo(absolute).fileName()), QString(),
               {tr("&Yes"), tr("&No")}, 1, 1)
            != 0) {
        updateFromNode();
        return;
    }
    options.path = absolute;
    const int type = ChartOptions::imageTypeForExtension(QFileInfo(path).suffix());
    if (type >= 0 && type != options.imageType
        && Prompts::instance()->ask(this, tr("Chart File"),
               tr("Change file type to '%1'?").arg(ChartOptions::imageTypeName(type)), QString(),
               {tr("&Yes"), tr("&No")}, 0, 1)
            == 0)
        options.imageType = type;
    applyOptions(tr("File"), options);
    updateFromNode();
}

void ChartItemWidget::setImageType(int type)
{
    ChartNode *chart = chartNode();
    if (!chart || chart->options().imageType == type)
        return;
    ChartOptions options = chart->options();
    options.imageType = type;
    const QFileInfo info(options.path);
    const int named = ChartOptions::imageTypeForExtension(info.suffix());
    const QString extension = ChartOptions::defaultExtension(type);
    if (!options.path.isEmpty() && named >= 0 && named != type
        && Prompts::instance()->ask(this, tr("Chart File"), tr("Change file extension to '%1'?").arg(extension),
               QString(), {tr("&Yes"), tr("&No")}, 0, 1)
            == 0)
        options.path = options.path.left(options.path.size() - info.suffix().size()) + extension;
    applyOptions(tr("Image type"), options);
    updateFromNode();
}

void ChartItemWidget::updateRows(const ChartOptions &options)
{
    const auto show = [this](const char *tab, const QString &name, bool visible) {
        for (const Row &row : qAsConst(m_rows)) {
            if (row.tab == QLatin1String(tab) && row.name == name) {
                for (QWidget *widget : row.widgets)
                    widget->setVisible(visible);
            }
        }
    };
    const bool pdf = options.imageType == ChartOptions::Pdf;
    show(GeneralTab, tr("Facets across"), options.layout == ChartOptions::Faceted);
    show(GeneralTab, tr("Width"), !pdf);
    show(GeneralTab, tr("Height"), !pdf);
    show(GeneralTab, tr("Page size"), pdf);
    show(GeneralTab, tr("Orientation"), pdf);
    show(GeneralTab, tr("Resolution"), pdf);
    show(GeneralTab, tr("PDF note"), pdf);
    show(GeneralTab, tr("Show line data points"), !ChartOptions::isPieType(options.type));
    show(YTab, tr("Same range for all facets"), options.layout == ChartOptions::Faceted);
    show(XTab, tr("Date format"), options.xAs != ChartOptions::XNumeric);
    const bool pie = ChartOptions::isPieType(options.type);
    m_noXAxisLabel->setVisible(pie);
    m_xAxisOptions->setVisible(!pie);
}

void ChartItemWidget::updateFromNode()
{
    const ChartNode *chart = chartNode();
    if (!chart)
        return;
    blockFormSignals(true);
    ChartOptions options = chart->options();
    for (const auto &load : qAsConst(m_loaders))
        load(options);
    const auto select = [](QComboBox *combo, int value) { combo->setCurrentIndex(qMax(0, combo->findData(value))); };
    if (!m_fileEdit->hasFocus())
        m_fileEdit->setText(options.path);

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

ChartOptions ChartItemWidget::defaultOptions(const Settings *settings)
{
    ChartNode factory;
    if (!settings)
        return factory.options();
    DocumentElement element(QStringLiteral("chart"));
    ChartDocument::write(factory, element);
    const QStringList keys = settings->childKeys(defaultsGroup());
    for (const QString &key : keys) {
        if (isDefaultKey(key))
            element.setAttribute(key, settings->value(defaultsGroup() + QLatin1Char('/') + key).toString());
    }
    ChartNode reader;
    DocumentReadContext readContext;
    ChartDocument::read(reader, element, readContext);
    return reader.options();
}

void ChartItemWidget::rememberDefaults(const ChartOptions &options, Settings *settings)
{
    if (!settings)
        return;
    ChartNode holder;
    holder.setOptions(options);
    DocumentElement element(QStringLiteral("chart"));
    ChartDocument::write(holder, element);
    for (const auto &attribute : element.attributes()) {
        if (isDefaultKey(attribute.first))
            settings->setValue(defaultsGroup() + QLatin1Char('/') + attribute.first, attribute.second);
    }
}

void ChartItemWidget::saveDefaults()
{
    if (chartNode() && scene() && scene()->settings())
        rememberDefaults(chartNode()->options(), scene()->settings());
}

void ChartItemWidget::restoreDefaults(bool factoryOnly)
{
    ChartNode *chart = chartNode();
    if (!chart || isRunning())
        return;
    const ChartOptions current = chart->options();
    ChartOptions options = defaultOptions(factoryOnly || !scene() ? nullptr : scene()->settings());
    // The file stays where it was; only how the chart looks and is written goes back.
    options.path = current.path;
    recordEdit(tr("restore defaults"), [options](Node *node) { qobject_cast<ChartNode *>(node)->setOptions(options); });
    if (factoryOnly)
        offerToForgetDefaults(defaultsGroup(), chart->displayTypeName());
    updateFromNode();
    invalidateNow();
}
