#include "chartnode.h"

#include "charts/chartwidget.h"
#include "core/values.h"
#include "flow/fileformat.h"
#include "flow/graphscene.h"
#include "flow/ionode.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>

#include <functional>

namespace {

std::function<QString()> &editionCheck()
{
    static std::function<QString()> check;
    return check;
}

QString nativePath(const QString &path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

} // namespace

ChartNode::ChartNode(QGraphicsItem *parent)
    : Node(parent)
{ }

QString ChartNode::name() const
{
    if (!Node::name().isEmpty())
        return Node::name();
    if (m_options.type == ChartOptions::NoType || ChartOptions::typeName(m_options.type).isEmpty())
        return tr("Chart");
    return tr("%1 chart").arg(ChartOptions::typeName(m_options.type));
}

void ChartNode::setOptions(const ChartOptions &options)
{
    m_options = options;
    m_options.facetsAcross = qBound(1, m_options.facetsAcross, ChartOptions::MaxFacetsAcross);
    update();
    emit optionsChanged();
}

void ChartNode::setXColumn(ColumnId column)
{
    m_xColumn = column;
    m_pending = false;
    const Node *above = upstream(false).value(0);
    if (above && above->dataset().hasColumns())
        m_xPosition = above->dataset().columnIndex(column).toInt() + 1;
    emit optionsChanged();
}

void ChartNode::setYColumns(const QList<ColumnId> &columns)
{
    m_yColumns = columns;
    m_pending = false;
    const Node *above = upstream(false).value(0);
    if (above && above->dataset().hasColumns()) {
        m_yPositions.clear();
        for (const ColumnId id : columns)
            m_yPositions << above->dataset().columnIndex(id).toInt() + 1;
    }
    emit optionsChanged();
}

void ChartNode::setPendingColumns(int xPosition, const QList<int> &yPositions)
{
    m_xPosition = qMax(0, xPosition);
    m_yPositions = yPositions;
    m_xColumn = ColumnId();
    m_yColumns.clear();
    m_pending = true;
    resolvePendingColumns();
}

void ChartNode::resolvePendingColumns()
{
    if (!m_pending)
        return;
    const Node *above = upstream(false).value(0);
    if (!above || !above->dataset().hasColumns())
        return;
    const Dataset &data = above->dataset();
    const auto idAt = [&data](int position) {
        return position >= 1 && position <= data.columnCount() ? data.columnId(position - 1) : ColumnId();
    };
    m_xColumn = idAt(m_xPosition);
    m_yColumns.clear();
    for (const int position : qAsConst(m_yPositions)) {
        const ColumnId id = idAt(position);
        if (!id.isUnset())
            m_yColumns << id;
    }
    m_pending = false;
}

int ChartNode::xPosition() const
{
    const Node *above = upstream(false).value(0);
    if (m_pending || !above || above->status() != UpToDate || !above->dataset().hasColumns())
        return m_xPosition;
    const DataColumnIndex index = above->dataset().columnIndex(m_xColumn);
    return index.isValid() ? index.toInt() + 1 : 0;
}

QList<int> ChartNode::yPositions() const
{
    const Node *above = upstream(false).value(0);
    if (m_pending || !above || above->status() != UpToDate || !above->dataset().hasColumns())
        return m_yPositions;
    QList<int> positions;
    for (const ColumnId id : m_yColumns) {
        const DataColumnIndex index = above->dataset().columnIndex(id);
        if (index.isValid())
            positions << index.toInt() + 1;
    }
    return positions;
}

DataColumnIndex ChartNode::xColumnIndex() const
{
    if (m_xColumn.isUnset())
        return DataColumnIndex(-1);
    return m_dataset.columnIndex(m_xColumn);
}

QList<DataColumnIndex> ChartNode::yColumnIndexes() const
{
    QList<DataColumnIndex> indexes;
    for (const ColumnId id : m_yColumns) {
        const DataColumnIndex index = m_dataset.columnIndex(id);
        if (index.isValid())
            indexes << index;
    }
    return indexes;
}

qint64 ChartNode::dataPointCount() const
{
    return qint64(m_dataset.rowCount()) * yColumnIndexes().size();
}

QString ChartNode::statusWord() const
{
    const bool failed = status() == Error;
    if (m_options.writeFile)
        return failed ? tr("Error writing") : tr("Written");
    return failed ? tr("Error plotting") : tr("Plotted");
}

QString ChartNode::sizeText() const
{
    const qint64 points = dataPointCount();
    return tr("%1 series / %2 %3")
        .arg(formatCount(seriesCount()), formatCount(points), points == 1 ? tr("point") : tr("points"));
}

QString ChartNode::summaryText() const
{
    if (status() != UpToDate && status() != Error)
        return noDataText();
    return tr("%1, %2").arg(statusWord(), sizeText());
}

QList<DetailRow> ChartNode::details() const
{
    QStringList yNames;
    for (const DataColumnIndex index : yColumnIndexes())
        yNames << m_dataset.headerText(index);
    const DataColumnIndex x = xColumnIndex();
    QList<DetailRow> rows = Node::details();
    rows << DetailRow {tr("Connections in"), countText(connections(Incoming).size())}
         << DetailRow {tr("Chart data series"), countText(seriesCount())}
         << DetailRow {tr("Chart data points"), countText(dataPointCount())}
         << DetailRow {tr("Chart type"), ChartOptions::typeName(m_options.type)}
         << DetailRow {tr("X axis data"), x.isValid() ? m_dataset.headerText(x) : QString()}
         << DetailRow {tr("Y axis data"), yNames.join(QStringLiteral(" / "))}
         << DetailRow {tr("Chart layout"), ChartOptions::layoutName(m_options.layout)}
         << DetailRow {tr("Write to file"), m_options.writeFile ? tr("Yes") : tr("No")}
         << DetailRow {tr("Image type"), ChartOptions::imageTypeName(m_options.imageType)}
         << DetailRow {tr("Alias"), alias()};
    return rows;
}

void ChartNode::process(bool recursive, bool freeMemory)
{
    Q_UNUSED(recursive) // nothing is downstream of a chart
    if (GraphScene::isStopRequested() || status() == UpToDate)
        return;
    const QList<Node *> above = upstream(false);
    // A chart waits for its input like any item.
    if (above.size() == 1 && above.first()->status() != UpToDate)
        return;
    m_dataset = Dataset();
    m_warnings.clear();
    m_information.clear();
    m_writtenFiles.clear();
    if (above.size() != 1) {
        addWarning(tr("No transforms or inputs connected"));
        setStatus(UpToDate, false);
        return;
    }
    // Drawing needs widgets: a program without them reports it rather than failing.
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        addWarning(tr("Charts can't be drawn in a program without a window system"));
        setStatus(Error, false);
        return;
    }
    setStatus(Updating, false);
    emit processingStart(this);
    QElapsedTimer timer;
    timer.start();
    GraphScene::reportProgress(this, 0);
    m_dataset = above.first()->dataset();
    resolvePendingColumns();

    int result = UpToDate;
    {
        ChartWidget widget;
        widget.setNode(this);
        if (!widget.updateChart(true))
            result = Error;
        else if (m_options.writeFile && !writeFile(widget))
            result = Error;
    }
    setProcessingTime(int(timer.elapsed()));
    setLastProcessed(QDateTime::currentDateTime());
    setStatus(result, false);
    emit processingEnd(this);
    emit nodeDataChanged(this);
    update();
    if (freeMemory)
        GraphScene::freeUpstreamMemory(this);
}

bool ChartNode::writeFile(ChartWidget &widget)
{
    const QString target = expandFileNameVariables(m_options.path, fileNameContext());
    m_lastWrittenPath = target;
    const QString where = nativePath(target);
    if (target.trimmed().isEmpty()) {
        addWarning(tr("Unable to write to file '%1'").arg(where));
        return false;
    }
    const bool existed = QFileInfo::exists(target);
    const int type = m_options.imageType;
    bool written = false;
    if (type == ChartOptions::Pdf) {
        written = widget.writePdf(target, m_options.pdfSize, m_options.pdfOrientation, m_options.pdfResolution);
    } else {
        const QImage image = widget.renderImage(QSize(m_options.imageWidth, m_options.imageHeight));
        written = !image.isNull() && image.save(target, type == ChartOptions::Png ? "PNG" : "JPG");
    }
    if (!written) {
        addWarning(tr("Unable to write to file '%1'").arg(where));
        return false;
    }
    const QFileInfo info(target);
    const int named = ChartOptions::imageTypeForExtension(info.suffix());
    if (named >= 0 && named != type) {
        addWarning(tr("'%1' extension is '%2' but image type is %3")
                       .arg(info.fileName(), info.suffix(), ChartOptions::imageTypeName(type)));
    }
    addInformation(existed ? tr("Overwrote file '%1'").arg(where) : tr("Created file '%1'").arg(where));
    addWrittenFile(target);
    return true;
}

void ChartNode::addWrittenFile(const QString &path)
{
    const QString where = nativePath(path);
    if (!m_writtenFiles.contains(where))
        m_writtenFiles << where;
    GraphScene *scene = graphScene();
    if (!scene)
        return;
    const int times = scene->recordWrite(where);
    if (times > 1)
        addWarning(tr("Overwrote '%1' %2 times").arg(where).arg(times));
}

FileNameContext ChartNode::fileNameContext() const
{
    FileNameContext context;
    const QStringList version = QCoreApplication::applicationVersion().split(QLatin1Char('.'));
    context.versionMajor = version.value(0).toInt();
    context.versionMinor = version.value(1).toInt();
    context.versionPatch = version.value(2).toInt();
    const GraphScene *scene = graphScene();
    if (!scene)
        return context;
    context.documentPath = scene->property("documentPath").toString();
    for (Node *node : scene->nodes()) {
        const auto *input = qobject_cast<IONode *>(node);
        if (!input || input->typeName() != QLatin1String("Input") || input->alias().trimmed().isEmpty())
            continue;
        int type = input->fileType();
        if (type == IONode::NoFileType)
            type = FileFormat::forExtension(QFileInfo(input->path()).suffix());
        const bool excel = type == IONode::ExcelXlsx || type == IONode::ExcelXls;
        context.inputs.append({input->alias(), input->path(), excel ? input->worksheet() : QString()});
    }
    return context;
}

QString ChartNode::editionRefusal()
{
    return editionCheck() ? editionCheck()() : QString();
}

void ChartNode::setEditionCheck(const std::function<QString()> &check)
{
    editionCheck() = check;
}
