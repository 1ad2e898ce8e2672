#include "transforms/transformunits.h"

namespace {

constexpr double Pi = 3.14159265358979323846;

// A unit with its size in its quantity's base unit. Temperatures have offsets, so they
// go through kelvin by formula and carry no size.
struct Unit
{
    const char *quantity;
    const char *name;
    const char *symbol;
    double size;
};

const Unit Units[] = {
    {"Length", "nanometre", "nm", 1e-9},
    {"Length", "micrometre", "µm", 1e-6},
    {"Length", "millimetre", "mm", 0.001},
    {"Length", "centimetre", "cm", 0.01},
    {"Length", "metre", "m", 1},
    {"Length", "kilometre", "km", 1000},
    {"Length", "inch", "in", 0.0254},
    {"Length", "foot", "ft", 0.3048},
    {"Length", "yard", "yd", 0.9144},
    {"Length", "mile", "mi", 1609.344},
    {"Length", "nautical mile", "nmi", 1852},
    {"Area", "square millimetre", "mm²", 1e-6},
    {"Area", "square centimetre", "cm²", 1e-4},
    {"Area", "square metre", "m²", 1},
    {"Area", "hectare", "ha", 1e4},
    {"Area", "square kilometre", "km²", 1e6},
    {"Area", "square inch", "in²", 6.4516e-4},
    {"Area", "square foot", "ft²", 0.09290304},
    {"Area", "square yard", "yd²", 0.83612736},
    {"Area", "acre", "ac", 4046.8564224},
    {"Area", "square mile", "mi²", 2589988.110336},
    {"Volume", "millilitre", "ml", 0.001},
    {"Volume", "centilitre", "cl", 0.01},
    {"Volume", "litre", "l", 1},
    {"Volume", "cubic metre", "m³", 1000},
    {"Volume", "cubic inch", "in³", 0.016387064},
    {"Volume", "cubic foot", "ft³", 28.316846592},
    {"Volume", "US teaspoon", "tsp", 0.00492892159375},
    {"Volume", "US tablespoon", "tbsp", 0.01478676478125},
    {"Volume", "US fluid ounce", "US fl oz", 0.0295735295625},
    {"Volume", "US cup", "cup", 0.2365882365},
    {"Volume", "US pint", "US pt", 0.473176473},
    {"Volume", "US quart", "US qt", 0.946352946},
    {"Volume", "US gallon", "US gal", 3.785411784},
    {"Volume", "imperial fluid ounce", "imp fl oz", 0.0284130625},
    {"Volume", "imperial pint", "imp pt", 0.56826125},
    {"Volume", "imperial gallon", "imp gal", 4.54609},
    {"Volume", "oil barrel", "bbl", 158.987294928},
    {"Mass", "milligram", "mg", 1e-6},
    {"Mass", "gram", "g", 0.001},
    {"Mass", "kilogram", "kg", 1},
    {"Mass", "tonne", "t", 1000},
    {"Mass", "ounce", "oz", 0.028349523125},
    {"Mass", "troy ounce", "oz t", 0.0311034768},
    {"Mass", "pound", "lb", 0.45359237},
    {"Mass", "stone", "st", 6.35029318},
    {"Mass", "US ton", "sh tn", 907.18474},
    {"Mass", "imperial ton", "long tn", 1016.0469088},
    {"Temperature", "Celsius", "°C", 0},
    {"Temperature", "Fahrenheit", "°F", 0},
    {"Temperature", "kelvin", "K", 0},
    {"Temperature", "Rankine", "°R", 0},
    {"Time", "millisecond", "ms", 0.001},
    {"Time", "second", "s", 1},
    {"Time", "minute", "min", 60},
    {"Time", "hour", "h", 3600},
    {"Time", "day", "d", 86400},
    {"Time", "week", "wk", 604800},
    {"Time", "year of 365.25 days", "yr", 31557600},
    {"Speed", "metre per second", "m/s", 1},
    {"Speed", "kilometre per hour", "km/h", 1 / 3.6},
    {"Speed", "mile per hour", "mph", 0.44704},
    {"Speed", "knot", "kn", 1852.0 / 3600.0},
    {"Speed", "foot per second", "ft/s", 0.3048},
    {"Data", "bit", "bit", 0.125},
    {"Data", "byte", "B", 1},
    {"Data", "kilobyte", "kB", 1e3},
    {"Data", "megabyte", "MB", 1e6},
    {"Data", "gigabyte", "GB", 1e9},
    {"Data", "terabyte", "TB", 1e12},
    {"Data", "kibibyte", "KiB", 1024},
    {"Data", "mebibyte", "MiB", 1048576},
    {"Data", "gibibyte", "GiB", 1073741824},
    {"Data", "tebibyte", "TiB", 1099511627776},
    {"Energy", "joule", "J", 1},
    {"Energy", "kilojoule", "kJ", 1000},
    {"Energy", "calorie", "cal", 4.184},
    {"Energy", "kilocalorie", "kcal", 4184},
    {"Energy", "watt hour", "Wh", 3600},
    {"Energy", "kilowatt hour", "kWh", 3.6e6},
    {"Energy", "British thermal unit", "BTU", 1055.05585262},
    {"Energy", "electronvolt", "eV", 1.602176634e-19},
    {"Pressure", "pascal", "Pa", 1},
    {"Pressure", "kilopascal", "kPa", 1000},
    {"Pressure", "bar", "bar", 1e5},
    {"Pressure", "millibar", "mbar", 100},
    {"Pressure", "atmosphere", "atm", 101325},
    {"Pressure", "pound per square inch", "psi", 6894.757293168361},
    {"Pressure", "millimetre of mercury", "mmHg", 133.322387415},
    {"Pressure", "inch of mercury", "inHg", 3386.388640341},
    {"Power", "watt", "W", 1},
    {"Power", "kilowatt", "kW", 1000},
    {"Power", "megawatt", "MW", 1e6},
    {"Power", "horsepower", "hp", 745.69987158227},
    {"Power", "metric horsepower", "PS", 735.49875},
    {"Angle", "degree", "°", Pi / 180},
    {"Angle", "radian", "rad", 1},
    {"Angle", "gradian", "gon", Pi / 200},
    {"Angle", "turn", "tr", 2 * Pi},
};

// "Length: mile (mi)": stored in documents, so not translated.
QString unitText(const Unit &unit)
{
    return QStringLiteral("%1: %2 (%3)")
        .arg(QString::fromUtf8(unit.quantity), QString::fromUtf8(unit.name), QString::fromUtf8(unit.symbol));
}

QStringList unitChoices()
{
    QStringList choices;
    for (const Unit &unit : Units)
        choices << unitText(unit);
    return choices;
}

} // namespace

void TransformUnits::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to convert."));
    addParameter(columns);

    const QStringList choices = unitChoices();
    auto *fromUnit = new Parameter(ParameterKind::Selection, QStringLiteral("From_Unit"), tr("From"),
        QStringLiteral("Length: mile (mi)"), choices);
    fromUnit->setTooltip(tr("The unit the values are in now."));
    applyDefault(useDefaults, fromUnit);
    addParameter(fromUnit);

    auto *toUnit = new Parameter(ParameterKind::Selection, QStringLiteral("To_Unit"), tr("To"),
        QStringLiteral("Length: kilometre (km)"), choices);
    toUnit->setTooltip(tr("The unit to convert to, of the same quantity."));
    applyDefault(useDefaults, toUnit);
    addParameter(toUnit);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round results to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);

    auto *addSymbol =
        new Parameter(ParameterKind::Bool, QStringLiteral("Add_Symbol"), tr("add unit symbol"), false);
    addSymbol->setTooltip(tr("Check to write the unit's symbol after each result, as in 12.5 km."));
    applyDefault(useDefaults, addSymbol);
    addParameter(addSymbol);
}

Dataset TransformUnits::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
