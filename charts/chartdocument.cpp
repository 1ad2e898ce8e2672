#include "chartdocument.h"

#include "charts/chartnode.h"

#include <cmath>

namespace {

void setDouble(DocumentElement &element, const QString &name, double value)
{
    element.setAttribute(name, QString::number(value, 'g', 15));
}

double doubleValue(const DocumentElement &element, const QString &name, double defaultValue)
{
    bool ok = false;
    const double value = element.attribute(name).toDouble(&ok);
    return ok && std::isfinite(value) ? value : defaultValue;
}

// An enumeration number, or the default when it is outside first..last.
int choice(const DocumentElement &element, const QString &name, int defaultValue, int first, int last)
{
    const int value = element.intValue(name, defaultValue);
    return value >= first && value <= last ? value : defaultValue;
}

QString key(const QString &pattern, const QString &axis)
{
    return pattern.arg(axis);
}

void writeAxis(DocumentElement &element, const ChartAxisOptions &axis, const QString &letter)
{
    element.setBool(key(QStringLiteral("chart_show_%1_axis"), letter), axis.show);
    element.setBool(key(QStringLiteral("chart_show_%1_axis_grid"), letter), axis.showGrid);
    element.setInt(key(QStringLiteral("chart_%1_axis_title_option"), letter), axis.titleOption);
    element.setText(key(QStringLiteral("chart_%1_axis_custom_title"), letter), axis.customTitle);
    element.setInt(key(QStringLiteral("chart_%1_axis_scale"), letter), axis.scale);
    element.setInt(key(QStringLiteral("chart_%1_axis_min_range_option"), letter), axis.minRangeOption);
    setDouble(element, key(QStringLiteral("chart_%1_axis_min_range_custom_value"), letter), axis.minRangeCustomValue);
    element.setInt(key(QStringLiteral("chart_%1_axis_max_range_option"), letter), axis.maxRangeOption);
    setDouble(element, key(QStringLiteral("chart_%1_axis_max_range_custom_value"), letter), axis.maxRangeCustomValue);
    element.setBool(key(QStringLiteral("chart_%1_axis_nice_values"), letter), axis.niceValues);
    element.setBool(key(QStringLiteral("chart_%1_axis_show_labels"), letter), axis.showLabels);
    element.setInt(key(QStringLiteral("chart_%1_axis_label_angle"), letter), axis.labelAngle);
    element.setInt(key(QStringLiteral("chart_%1_axis_label_format"), letter), axis.labelFormat);
    element.setInt(key(QStringLiteral("chart_%1_axis_label_precision"), letter), axis.labelPrecision);
    if (letter == QLatin1String("x"))
        element.setText(QStringLiteral("chart_x_axis_label_date_format"), axis.labelDateFormat);
    else
        element.setBool(QStringLiteral("chart_y_axis_same_range_all_facets"), axis.sameRangeAllFacets);
}

void readAxis(const DocumentElement &element, ChartAxisOptions &axis, const QString &letter)
{
    const ChartAxisOptions defaults;
    axis.show = element.boolValue(key(QStringLiteral("chart_show_%1_axis"), letter), true);
    axis.showGrid = element.boolValue(key(QStringLiteral("chart_show_%1_axis_grid"), letter), true);
    axis.titleOption = choice(element, key(QStringLiteral("chart_%1_axis_title_option"), letter),
        ChartAxisOptions::TitleCustom, ChartAxisOptions::TitleDefault, ChartAxisOptions::TitleCustom);
    axis.customTitle = element.text(key(QStringLiteral("chart_%1_axis_custom_title"), letter),
        letter == QLatin1String("x") ? QStringLiteral("$(X)") : QStringLiteral("$(Y)"));
    axis.scale = choice(element, key(QStringLiteral("chart_%1_axis_scale"), letter), ChartAxisOptions::Linear,
        ChartAxisOptions::Linear, ChartAxisOptions::Log10);
    axis.minRangeOption = choice(element, key(QStringLiteral("chart_%1_axis_min_range_option"), letter),
        ChartAxisOptions::RangeAutomatic, ChartAxisOptions::RangeAutomatic, ChartAxisOptions::RangeCustom);
    axis.minRangeCustomValue = doubleValue(element, key(QStringLiteral("chart_%1_axis_min_range_custom_value"), letter),
        defaults.minRangeCustomValue);
    axis.maxRangeOption = choice(element, key(QStringLiteral("chart_%1_axis_max_range_option"), letter),
        ChartAxisOptions::RangeAutomatic, ChartAxisOptions::RangeAutomatic, ChartAxisOptions::RangeCustom);
    axis.maxRangeCustomValue = doubleValue(element, key(QStringLiteral("chart_%1_axis_max_range_custom_value"), letter),
        defaults.maxRangeCustomValue);
    axis.niceValues = element.boolValue(key(QStringLiteral("chart_%1_axis_nice_values"), letter), defaults.niceValues);
    axis.showLabels = element.boolValue(key(QStringLiteral("chart_%1_axis_show_labels"), letter), true);
    axis.labelAngle = qBound(-90, element.intValue(key(QStringLiteral("chart_%1_axis_label_angle"), letter), 0), 90);
    axis.labelFormat = choice(element, key(QStringLiteral("chart_%1_axis_label_format"), letter), defaults.labelFormat,
        ChartAxisOptions::FormatE, ChartAxisOptions::FormatI);
    axis.labelPrecision = choice(element, key(QStringLiteral("chart_%1_axis_label_precision"), letter), 2, 0, 15);
    if (letter == QLatin1String("x"))
        axis.labelDateFormat = element.text(QStringLiteral("chart_x_axis_label_date_format"), defaults.labelDateFormat);
    else
        axis.sameRangeAllFacets = element.boolValue(QStringLiteral("chart_y_axis_same_range_all_facets"), false);
}

} // namespace

namespace ChartDocument {

DocumentItemType itemType()
{
    DocumentItemType type;
    type.group = QStringLiteral("charts");
    type.element = QStringLiteral("chart");
    type.nodeTypeName = QStringLiteral("Chart");
    type.write = [](const Node &node, DocumentElement &element) {
        if (const auto *chart = qobject_cast<const ChartNode *>(&node))
            write(*chart, element);
    };
    type.read = [](Node &node, const DocumentElement &element, DocumentReadContext &context) {
        if (auto *chart = qobject_cast<ChartNode *>(&node))
            read(*chart, element, context);
    };
    return type;
}

void write(const ChartNode &node, DocumentElement &element)
{
    const ChartOptions &options = node.options();
    element.setInt(QStringLiteral("id"), node.id());
    element.setText(QStringLiteral("comment"), node.comment());
    // A name given in the item pane; empty for the one made from the chart type.
    element.setText(QStringLiteral("name"), node.Node::name());
    Document::writePosition(node, element, false);
    element.setInt(QStringLiteral("chart_type"), options.type);
    element.setInt(QStringLiteral("chart_x_column"), node.xPosition());
    element.setInt(QStringLiteral("chart_x_as"), options.xAs);
    element.setIntList(QStringLiteral("chart_y_columns"), node.yPositions());
    element.setInt(QStringLiteral("chart_layout"), options.layout);
    element.setInt(QStringLiteral("chart_facets_across"), options.facetsAcross);
    element.setBool(QStringLiteral("write_file"), options.writeFile);
    element.setText(QStringLiteral("path"), options.path);
    element.setInt(QStringLiteral("chart_image_type"), options.imageType);
    element.setInt(QStringLiteral("chart_image_width"), options.imageWidth);
    element.setInt(QStringLiteral("chart_image_height"), options.imageHeight);
    element.setText(QStringLiteral("chart_pdf_size"), options.pdfSize);
    element.setInt(QStringLiteral("chart_pdf_orientation"), options.pdfOrientation);
    element.setText(QStringLiteral("alias"), node.alias());
    writeAxis(element, options.xAxis, QStringLiteral("x"));
    writeAxis(element, options.yAxis, QStringLiteral("y"));
    element.setInt(QStringLiteral("chart_theme"), options.theme);
    element.setInt(QStringLiteral("chart_title_option"), options.titleOption);
    element.setText(QStringLiteral("chart_custom_title"), options.customTitle);
    element.setInt(QStringLiteral("chart_legend_position"), options.legendPosition);
    setDouble(element, QStringLiteral("chart_line_thickness"), options.lineThickness);
    element.setInt(QStringLiteral("chart_opacity"), options.opacity);
    element.setBool(QStringLiteral("chart_show_Line_data_points"), options.showLineDataPoints);
    element.setInt(QStringLiteral("chart_point_size_option"), options.pointSizeOption);
    setDouble(element, QStringLiteral("chart_custom_points_size"), options.customPointSize);
    element.setInt(QStringLiteral("chart_pdf_resolution"), options.pdfResolution);
}

void read(ChartNode &node, const DocumentElement &element, DocumentReadContext &context)
{
    Q_UNUSED(context)
    ChartOptions options;
    options.type = choice(element, QStringLiteral("chart_type"), ChartOptions::NoType, ChartOptions::NoType,
        ChartOptions::Donut);
    options.xAs = choice(element, QStringLiteral("chart_x_as"), ChartOptions::XAutomatic, ChartOptions::XAutomatic,
        ChartOptions::XDate);
    options.layout = choice(element, QStringLiteral("chart_layout"), ChartOptions::Grouped, ChartOptions::Grouped,
        ChartOptions::Stacked);
    options.facetsAcross = choice(element, QStringLiteral("chart_facets_across"), 2, 1, ChartOptions::MaxFacetsAcross);
    options.writeFile = element.boolValue(QStringLiteral("write_file"), false);
    options.path = element.text(QStringLiteral("path"));
    options.imageType = choice(element, QStringLiteral("chart_image_type"), ChartOptions::Jpeg, ChartOptions::Jpeg,
        ChartOptions::Pdf);
    options.imageWidth = choice(element, QStringLiteral("chart_image_width"), 1024, 1, 20000);
    options.imageHeight = choice(element, QStringLiteral("chart_image_height"), 1024, 1, 20000);
    const QString pdfSize = element.text(QStringLiteral("chart_pdf_size"));
    if (ChartOptions::pdfSizeNames().contains(pdfSize))
        options.pdfSize = pdfSize;
    options.pdfOrientation = choice(element, QStringLiteral("chart_pdf_orientation"), ChartOptions::Portrait,
        ChartOptions::Portrait, ChartOptions::Landscape);
    readAxis(element, options.xAxis, QStringLiteral("x"));
    readAxis(element, options.yAxis, QStringLiteral("y"));
    options.theme = choice(element, QStringLiteral("chart_theme"), 0, 0, 6);
    options.titleOption = choice(element, QStringLiteral("chart_title_option"), ChartAxisOptions::TitleDefault,
        ChartAxisOptions::TitleDefault, ChartAxisOptions::TitleCustom);
    options.customTitle = element.text(QStringLiteral("chart_custom_title"), QStringLiteral("$(X) vs $(Y)"));
    options.legendPosition = choice(element, QStringLiteral("chart_legend_position"), ChartOptions::LegendAutomatic,
        ChartOptions::LegendAutomatic, ChartOptions::LegendHidden);
    options.lineThickness = qBound(0.0, doubleValue(element, QStringLiteral("chart_line_thickness"), 2.0), 100.0);
    options.opacity = choice(element, QStringLiteral("chart_opacity"), 100, 0, 100);
    options.showLineDataPoints = element.boolValue(QStringLiteral("chart_show_Line_data_points"), false);
    options.pointSizeOption = choice(element, QStringLiteral("chart_point_size_option"),
        ChartOptions::PointSizeAutomatic, ChartOptions::PointSizeAutomatic, ChartOptions::PointSizeCustom);
    options.customPointSize = qBound(0.0, doubleValue(element, QStringLiteral("chart_custom_points_size"), 15.0), 1000.0);
    options.pdfResolution = choice(element, QStringLiteral("chart_pdf_resolution"), 150, 1, 9600);
    node.setOptions(options);
    node.setComment(element.text(QStringLiteral("comment")));
    node.setName(element.text(QStringLiteral("name")));
    node.setAlias(element.text(QStringLiteral("alias")));
    Document::readPosition(node, element);
    node.setPendingColumns(qMax(0, element.intValue(QStringLiteral("chart_x_column"), 0)),
        element.intList(QStringLiteral("chart_y_columns")));
}

} // namespace ChartDocument
