#include "workbench/datasettablemodel.h"

#include "core/values.h"

#include <QBrush>
#include <QLocale>

namespace {

constexpr int MaxToolTipChars = 4000;

QString columnTypeName(ColumnType type)
{
    switch (type) {
    case ColumnType::Number:
        return DatasetTableModel::tr("number");
    case ColumnType::Boolean:
        return DatasetTableModel::tr("boolean");
    case ColumnType::Date:
        return DatasetTableModel::tr("date");
    case ColumnType::Time:
        return DatasetTableModel::tr("time");
    case ColumnType::Text:
        break;
    }
    return DatasetTableModel::tr("text");
}

} // namespace

DatasetTableModel::DatasetTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{ }

void DatasetTableModel::setDataset(const Dataset &dataset, int nodeId)
{
    beginResetModel();
    m_dataset = dataset;
    m_nodeId = nodeId;
    m_columnTypes = QVector<int>(dataset.columnCount(), -1);
    m_windowStart = qBound(0, m_windowStart, qMax(0, dataset.rowCount() - m_windowRows));
    endResetModel();
}

void DatasetTableModel::setWindowStart(int row)
{
    row = qBound(0, row, qMax(0, m_dataset.rowCount() - m_windowRows));
    if (row == m_windowStart)
        return;
    // The row count stays the same, so the views only repaint: no reset, no new header
    // layout.
    const int old = m_windowStart;
    m_windowStart = row;
    const int rows = rowCount();
    const int columns = columnCount();
    if (rows > 0 && columns > 0) {
        emit dataChanged(index(0, 0), index(rows - 1, columns - 1));
        emit headerDataChanged(Qt::Vertical, 0, rows - 1);
    }
    emit windowMoved(old, row);
}

void DatasetTableModel::setWindowRows(int rows)
{
    rows = qMax(1, rows);
    if (rows == m_windowRows)
        return;
    beginResetModel();
    m_windowRows = rows;
    m_windowStart = qBound(0, m_windowStart, qMax(0, m_dataset.rowCount() - m_windowRows));
    endResetModel();
}

int DatasetTableModel::modelRow(int datasetRow) const
{
    const int row = datasetRow - m_windowStart;
    return (row >= 0 && row < rowCount()) ? row : -1;
}

void DatasetTableModel::setMaxCellChars(int chars)
{
    chars = qMax(1, chars);
    if (chars == m_maxCellChars)
        return;
    m_maxCellChars = chars;
    if (rowCount() > 0 && columnCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
}

void DatasetTableModel::setShowWhitespace(bool on)
{
    if (on == m_showWhitespace)
        return;
    m_showWhitespace = on;
    if (rowCount() > 0 && columnCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
}

void DatasetTableModel::setDarkColours(bool dark)
{
    m_dark = dark;
}

int DatasetTableModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return qMin(m_windowRows, m_dataset.rowCount() - m_windowStart);
}

int DatasetTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_dataset.columnCount();
}

QString DatasetTableModel::displayText(const QString &text, int maxChars, bool showWhitespace)
{
    const bool cut = text.size() > maxChars;
    const int length = cut ? maxChars : text.size();
    QString shown;
    shown.reserve(length + 1);
    const QChar *chars = text.constData();
    for (int i = 0; i < length; ++i) {
        const QChar c = chars[i];
        if (c == QLatin1Char('\r')) {
            shown += QChar(0x21B5); // ↵
            if (i + 1 < length && chars[i + 1] == QLatin1Char('\n'))
                ++i;
        } else if (c == QLatin1Char('\n')) {
            shown += QChar(0x21B5);
        } else if (c == QLatin1Char('\t')) {
            shown += QChar(0x21E5); // ⇥
        } else if (showWhitespace && c == QLatin1Char(' ')) {
            shown += QChar(0x00B7); // ·
        } else {
            shown += c;
        }
    }
    if (cut)
        shown += QChar(0x2026); // …
    return shown;
}

QString DatasetTableModel::displayText(int datasetRow, int column) const
{
    return displayText(m_dataset.cell(datasetRow, column), m_maxCellChars, m_showWhitespace);
}

QColor DatasetTableModel::verifyColour(OnVerifyFail severity, bool dark)
{
    switch (severity) {
    case VerifyFailStop:
    case VerifyFailError:
        return dark ? QColor(0x5C, 0x26, 0x22) : QColor(0xF8, 0xD0, 0xCC);
    case VerifyFailWarning:
        return dark ? QColor(0x57, 0x45, 0x17) : QColor(0xFB, 0xE7, 0xB5);
    case VerifyFailNone:
        break;
    }
    return QColor();
}

QString DatasetTableModel::severityName(OnVerifyFail severity)
{
    switch (severity) {
    case VerifyFailWarning:
        return tr("Warning");
    case VerifyFailError:
        return tr("Error");
    case VerifyFailStop:
        return tr("Stop");
    case VerifyFailNone:
        break;
    }
    return tr("None");
}

QString DatasetTableModel::columnRuleName(int rule)
{
    static const char *const names[] = {
        QT_TR_NOOP("Required"),
        QT_TR_NOOP("Unique"),
        QT_TR_NOOP("Type"),
        QT_TR_NOOP("Minimum value"),
        QT_TR_NOOP("Maximum value"),
        QT_TR_NOOP("Minimum length"),
        QT_TR_NOOP("Maximum length"),
        QT_TR_NOOP("Matches regular expression"),
        QT_TR_NOOP("Allowed values"),
        QT_TR_NOOP("No surrounding whitespace"),
    };
    if (rule < 0 || rule >= int(sizeof(names) / sizeof(names[0])))
        return tr("Rule %1").arg(rule);
    return tr(names[rule]);
}

ColumnType DatasetTableModel::typeOfColumn(int column) const
{
    if (column < 0 || column >= m_columnTypes.size())
        return ColumnType::Text;
    int &type = m_columnTypes[column];
    if (type < 0)
        type = int(m_dataset.columnType(column, dateFormats(), nullptr, true));
    return ColumnType(type);
}

QString DatasetTableModel::cellToolTip(int row, int column) const
{
    const QString &text = m_dataset.cell(row, column);
    QString tip = text.size() > MaxToolTipChars ? text.left(MaxToolTipChars) + QChar(0x2026) : text;
    const int links = m_dataset.cellRowLinks(row, column).size();
    if (links > 0)
        tip += tr("\n\n%1 linked row(s). Double-click to show them.").arg(links);
    if (m_dataset.hasVerifyFails()) {
        const OnVerifyFail severity = m_dataset.verifyFail(row, column);
        if (severity != VerifyFailNone) {
            for (VerifyColumnRuleId rule : m_dataset.cellColumnRules(row, column))
                tip += QLatin1Char('\n') + tr("%1: %2").arg(severityName(severity), columnRuleName(rule));
        }
    }
    return tip;
}

QVariant DatasetTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const int row = m_windowStart + index.row();
    const int column = index.column();
    if (row >= m_dataset.rowCount() || column >= m_dataset.columnCount())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
        ++m_cellReads;
        return displayText(row, column);
    case Qt::ToolTipRole:
        return cellToolTip(row, column);
    case Qt::BackgroundRole: {
        if (!m_dataset.hasVerifyFails())
            return QVariant();
        const QColor colour = verifyColour(m_dataset.verifyFail(row, column), m_dark);
        return colour.isValid() ? QVariant(QBrush(colour)) : QVariant();
    }
    case Qt::TextAlignmentRole:
        return int(
            (typeOfColumn(column) == ColumnType::Number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case HasLinksRole:
        return m_dataset.hasCellRowLinks() && !m_dataset.cellRowLinks(row, column).isEmpty();
    default:
        break;
    }
    return QVariant();
}

QVariant DatasetTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal) {
        if (section < 0 || section >= m_dataset.columnCount())
            return QVariant();
        switch (role) {
        case Qt::DisplayRole:
            return m_dataset.headerText(section);
        case Qt::ToolTipRole: {
            // The summary reads only the first rows of the column.
            Dataset firstRows;
            firstRows.setColumnCount(1);
            for (int r = 0; r < qMin(6, m_dataset.rowCount()); ++r)
                firstRows.appendRow({m_dataset.cell(r, section)}, true);
            const QString summary = firstRows.columnSummaries(5).value(0);
            return tr("Column %1 of %2: '%3'\nType: %4\n%5")
                .arg(section + 1)
                .arg(m_dataset.columnCount())
                .arg(m_dataset.headerText(section), columnTypeName(typeOfColumn(section)), summary);
        }
        case Qt::BackgroundRole: {
            if (!m_dataset.hasVerifyFails())
                return QVariant();
            const QColor colour = verifyColour(m_dataset.verifyFail(-1, section), m_dark);
            return colour.isValid() ? QVariant(QBrush(colour)) : QVariant();
        }
        default:
            return QVariant();
        }
    }
    const int row = m_windowStart + section;
    if (section < 0 || row >= m_dataset.rowCount())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return QLocale().toString(qlonglong(row) + 1);
    case Qt::TextAlignmentRole:
        return int(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::BackgroundRole: {
        if (!m_dataset.hasVerifyFails())
            return QVariant();
        const QColor colour = verifyColour(m_dataset.verifyFail(row, -1), m_dark);
        return colour.isValid() ? QVariant(QBrush(colour)) : QVariant();
    }
    default:
        break;
    }
    return QVariant();
}
