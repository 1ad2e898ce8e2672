#include "chartoptions.h"

#include <QLocale>

#include <cmath>

double ChartAxisOptions::logBase() const
{
    switch (scale) {
    case LogE:
        return std::exp(1.0);
    case Log2:
        return 2.0;
    case Log10:
        return 10.0;
    default:
        return 0.0;
    }
}

QString ChartAxisOptions::labelPattern() const
{
    const QStringList letters = labelFormatLetters();
    const QString letter = letters.value(labelFormat, QStringLiteral("f"));
    if (letter == QLatin1String("i"))
        return QStringLiteral("%i");
    return QStringLiteral("%.%1%2").arg(qBound(0, labelPrecision, 15)).arg(letter);
}

QStringList ChartAxisOptions::labelFormatLetters()
{
    return {QStringLiteral("e"), QStringLiteral("E"), QStringLiteral("f"), QStringLiteral("g"),
        QStringLiteral("G"), QStringLiteral("i")};
}

QStringList ChartAxisOptions::scaleNames()
{
    return {QStringLiteral("Linear"), QStringLiteral("Log e"), QStringLiteral("Log 2"), QStringLiteral("Log 10")};
}

ChartOptions::ChartOptions()
    : pdfSize(systemPdfSize())
{
    xAxis.customTitle = QStringLiteral("$(X)");
    yAxis.customTitle = QStringLiteral("$(Y)");
}

QString ChartOptions::typeName(int type)
{
    switch (type) {
    case NoType:
        return tr("<None selected>");
    case Scatter:
        return tr("Scatter");
    case Line:
        return tr("Line");
    case SmoothLine:
        return tr("Smooth Line");
    case Area:
        return tr("Area");
    case VerticalBar:
        return tr("Vertical Bar");
    case HorizontalBar:
        return tr("Horizontal Bar");
    case Pie:
        return tr("Pie");
    case Donut:
        return tr("Donut");
    default:
        return QString();
    }
}

int ChartOptions::pointLimit(int type)
{
    switch (type) {
    case NoType:
        return 2147483647;
    case VerticalBar:
    case HorizontalBar:
        return 1000;
    case Pie:
    case Donut:
        return 100;
    default:
        return 10000;
    }
}

QString ChartOptions::xAsName(int xAs)
{
    switch (xAs) {
    case XNumeric:
        return tr("Numeric");
    case XText:
        return tr("Text");
    case XDate:
        return tr("Date");
    default:
        return tr("Automatic");
    }
}

QString ChartOptions::layoutName(int layout)
{
    switch (layout) {
    case Faceted:
        return tr("Faceted");
    case Stacked:
        return tr("Stacked");
    default:
        return tr("Grouped");
    }
}

QString ChartOptions::imageTypeName(int imageType)
{
    switch (imageType) {
    case Png:
        return QStringLiteral("PNG");
    case Pdf:
        return QStringLiteral("PDF");
    default:
        return QStringLiteral("JPEG");
    }
}

int ChartOptions::imageTypeForExtension(const QString &extension)
{
    const QString lower = extension.toLower();
    if (lower == QLatin1String("jpg") || lower == QLatin1String("jpeg"))
        return Jpeg;
    if (lower == QLatin1String("png"))
        return Png;
    if (lower == QLatin1String("pdf"))
        return Pdf;
    return -1;
}

QString ChartOptions::defaultExtension(int imageType)
{
    switch (imageType) {
    case Png:
        return QStringLiteral("png");
    case Pdf:
        return QStringLiteral("pdf");
    default:
        return QStringLiteral("jpg");
    }
}

QStringList ChartOptions::pdfSizeNames()
{
    return {QStringLiteral("A0"), QStringLiteral("A1"), QStringLiteral("A2"), QStringLiteral("A3"),
        QStringLiteral("A4"), QStringLiteral("A5"), QStringLiteral("A6"), QStringLiteral("Ledger"),
        QStringLiteral("Legal"), QStringLiteral("Letter"), QStringLiteral("Tabloid")};
}

QString ChartOptions::systemPdfSize()
{
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? QStringLiteral("Letter")
                                                                      : QStringLiteral("A4");
}

QStringList ChartOptions::themeNames()
{
    return {tr("Light"), tr("Blue NCS"), tr("Blue Icy"), tr("Blue Cerulean"), tr("Qt"), tr("Brown Sand"),
        tr("Dark")};
}

QStringList ChartOptions::legendNames()
{
    return {tr("Automatic"), tr("Bottom"), tr("Left"), tr("Top"), tr("Right"), tr("Hidden")};
}
