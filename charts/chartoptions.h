#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

// The options of one axis of a chart. The X and Y sets share this form; the date format
// belongs to X and the common facet range to Y.
struct ChartAxisOptions
{
    enum TitleOption : int { TitleDefault = 0, TitleNone = 1, TitleCustom = 2 };
    enum Scale : int { Linear = 0, LogE = 1, Log2 = 2, Log10 = 3 };
    enum RangeOption : int { RangeAutomatic = 0, RangeCustom = 1 };
    // The label format letters, in their stored order.
    enum LabelFormat : int { FormatE = 0, FormatUpperE = 1, FormatF = 2, FormatG = 3, FormatUpperG = 4, FormatI = 5 };

    bool show = true;
    bool showGrid = true;
    int titleOption = TitleCustom;
    QString customTitle; // "$(X)" or "$(Y)"
    int scale = Linear;
    int minRangeOption = RangeAutomatic;
    double minRangeCustomValue = 0.0;
    int maxRangeOption = RangeAutomatic;
    double maxRangeCustomValue = 100.0;
    bool niceValues = true;
    bool showLabels = true;
    int labelAngle = 0; // degrees, -90 to 90
    int labelFormat = FormatF;
    int labelPrecision = 2;
    QString labelDateFormat = QStringLiteral("yyyy-MM-dd"); // X only
    bool sameRangeAllFacets = false; // Y only

    bool isLog() const { return scale != Linear; }
    // e, 2 or 10 for a log scale, 0 for linear.
    double logBase() const;
    // "%.2f"; "%i" for whole numbers, which take no precision.
    QString labelPattern() const;
    static QStringList labelFormatLetters(); // "e", "E", "f", "g", "G", "i"
    static QStringList scaleNames(); // "Linear", "Log e", "Log 2", "Log 10"
};

// Every option of a chart item, with the defaults of a new one. Enumerations are stored in
// documents by their numbers.
struct ChartOptions
{
    Q_DECLARE_TR_FUNCTIONS(ChartOptions)
public:
    enum Type : int {
        NoType = 0,
        Scatter = 1,
        Line = 2,
        SmoothLine = 3,
        Area = 4,
        VerticalBar = 5,
        HorizontalBar = 6,
        Pie = 7,
        Donut = 8,
        TypeCount = 9,
    };
    enum XAs : int { XAutomatic = 0, XNumeric = 1, XText = 2, XDate = 3 };
    enum Layout : int { Grouped = 0, Faceted = 1, Stacked = 2 };
    enum ImageType : int { Jpeg = 0, Png = 1, Pdf = 2 };
    enum Orientation : int { Portrait = 0, Landscape = 1 };
    enum Legend : int { LegendAutomatic = 0, LegendBottom = 1, LegendLeft = 2, LegendTop = 3, LegendRight = 4, LegendHidden = 5 };
    enum PointSize : int { PointSizeAutomatic = 0, PointSizeCustom = 1 };

    static constexpr int MaxFacetsAcross = 5;
    static constexpr int MaxFacetRows = 5;

    ChartOptions();

    int type = NoType;
    int xAs = XAutomatic;
    int layout = Grouped;
    int facetsAcross = 2;
    bool writeFile = false;
    QString path;
    int imageType = Jpeg;
    int imageWidth = 1024;
    int imageHeight = 1024;
    QString pdfSize; // a page size name; a new chart takes the locale's usual paper
    int pdfOrientation = Portrait;
    int pdfResolution = 150; // dots per inch
    ChartAxisOptions xAxis;
    ChartAxisOptions yAxis;
    int theme = 0; // 0 Light, then Blue NCS, Blue Icy, Blue Cerulean, Qt, Brown Sand, Dark
    int titleOption = ChartAxisOptions::TitleDefault;
    QString customTitle = QStringLiteral("$(X) vs $(Y)");
    int legendPosition = LegendAutomatic;
    double lineThickness = 2.0;
    int opacity = 100; // percent
    bool showLineDataPoints = false;
    int pointSizeOption = PointSizeAutomatic;
    double customPointSize = 15.0;

    // "<None selected>", "Scatter", ... "Donut"; empty beyond the table.
    static QString typeName(int type);
    // The most data points a chart (or one facet) of the type shows.
    static int pointLimit(int type);
    static bool isXYType(int type) { return type >= Scatter && type <= Area; }
    static bool isBarType(int type) { return type == VerticalBar || type == HorizontalBar; }
    static bool isPieType(int type) { return type == Pie || type == Donut; }
    static QString xAsName(int xAs); // "Automatic", "Numeric", "Text", "Date"
    static QString layoutName(int layout); // "Grouped", "Faceted", "Stacked"
    static QString imageTypeName(int imageType); // "JPEG", "PNG", "PDF"
    // The image type a file extension names, or -1.
    static int imageTypeForExtension(const QString &extension);
    static QString defaultExtension(int imageType); // "jpg", "png", "pdf"
    static QStringList pdfSizeNames(); // "A0" ... "A6", "Ledger", "Legal", "Letter", "Tabloid"
    // "Letter" where the default locale measures in inches, else "A4".
    static QString systemPdfSize();
    static QStringList themeNames();
    static QStringList legendNames();
};
