// Builds the example flows in code and saves them, so that they are made the way the
// program makes documents: make_examples [folder], folder defaulting to the source tree's
// examples/. Each flow is what a user would put together on the canvas.

#include "app/application.h"
#include "charts/chartnode.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "flow/nodefactory.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>

#include <cstdio>

namespace {

const QChar Separator(0x1F);

class FlowBuilder
{
public:
    explicit FlowBuilder(NodeFactory &factory)
        : m_factory(factory)
    {
        Node::setNextId(1); // each document numbers its items from 1
    }

    InputNode *input(const QString &path, const QString &alias, QPointF position)
    {
        auto *node = static_cast<InputNode *>(add(QStringLiteral("Input"), position));
        InputOptions options = node->options();
        options.path = path;
        options.hasHeader = 1;
        node->setOptions(options);
        node->setAlias(alias);
        return node;
    }

    OutputNode *output(Node *from, const QString &path, int fileType, QPointF position,
        const std::function<void(OutputOptions &)> &configure = {})
    {
        auto *node = static_cast<OutputNode *>(add(QStringLiteral("Output"), position));
        OutputOptions options = node->options();
        options.path = path;
        options.fileType = fileType;
        if (configure)
            configure(options);
        node->setOptions(options);
        connect(from, node);
        return node;
    }

    // A chart of from's columns: X and Y by position, counted from 1.
    ChartNode *chart(Node *from, int xColumn, const QList<int> &yColumns, QPointF position,
        const std::function<void(ChartOptions &)> &configure)
    {
        auto *node = static_cast<ChartNode *>(add(QStringLiteral("Chart"), position));
        ChartOptions options = node->options();
        configure(options);
        node->setOptions(options);
        connect(from, node);
        node->setPendingColumns(xColumn, yColumns);
        return node;
    }

    // A transform fed by inputs in order, with its options given in their document text.
    TransformNode *transform(const QString &id, const QList<Node *> &inputs, QPointF position,
        const QList<QPair<QString, QString>> &options)
    {
        auto *node = static_cast<TransformNode *>(add(QStringLiteral("Transform:") + id, position));
        for (Node *from : inputs)
            connect(from, node);
        node->createParameters(false);
        for (const auto &option : options) {
            Parameter *parameter = node->transform()->parameter(option.first);
            if (!parameter) {
                std::fprintf(stderr, "%s has no option %s\n", qPrintable(id), qPrintable(option.first));
                std::exit(1);
            }
            parameter->setPendingText(option.second, Document::CurrentVersion);
        }
        return node;
    }

    void save(const QString &path)
    {
        QDir().mkpath(QFileInfo(path).path());
        QString error;
        DocumentProperties properties;
        properties.notes = m_notes;
        if (!Document::writeDocument(path, m_scene, properties, &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            std::exit(1);
        }
        std::printf("Wrote %s\n", qPrintable(QDir::toNativeSeparators(path)));
    }

    void setNotes(const QString &notes) { m_notes = notes; }

private:
    Node *add(const QString &typeName, QPointF position)
    {
        Node *node = m_factory.create(typeName);
        if (!node) {
            std::fprintf(stderr, "No item type %s\n", qPrintable(typeName));
            std::exit(1);
        }
        node->setPos(position);
        m_scene.addNode(node);
        return node;
    }

    void connect(Node *from, Node *to)
    {
        QString reason;
        if (!m_scene.connectNodes(from, to, &reason)) {
            std::fprintf(stderr, "Can't connect: %s\n", qPrintable(reason));
            std::exit(1);
        }
    }

    NodeFactory &m_factory;
    GraphScene m_scene;
    QString m_notes;
};

QString items(const QStringList &parts)
{
    return parts.join(Separator);
}

// Orders without the cancelled and returned ones, with their customers, and the amount
// of each order, written as CSV and as a workbook.
void salesExample(NodeFactory &factory, const QString &folder)
{
    FlowBuilder flow(factory);
    flow.setNotes(QStringLiteral("Keeps the orders that were not cancelled or returned, adds each customer's "
                                 "details and works out the amount of every order. Run it, then look in "
                                 "the output folder."));
    Node *orders = flow.input(QStringLiteral("orders.csv"), QStringLiteral("orders"), {0, 0});
    Node *customers = flow.input(QStringLiteral("customers.csv"), QStringLiteral("customers"), {0, 200});
    // Remove the rows whose Status (column 8) is Cancelled or Returned.
    Node *filter = flow.transform(QStringLiteral("Filter"), {orders}, {200, 0},
        {{QStringLiteral("Columns"), items({"0", "0", "8", "1", "Cancelled", "8", "1", "Returned"})}});
    // Orders on top, matched on Customer ID; orders of customers not in the list stay.
    Node *join = flow.transform(QStringLiteral("Join"), {filter, customers}, {400, 100},
        {{QStringLiteral("By"), QStringLiteral("Key")}, {QStringLiteral("Column_1"), QStringLiteral("3")},
            {QStringLiteral("Column_2"), QStringLiteral("1")},
            {QStringLiteral("Include_Non_Matching_1"), QStringLiteral("1")}});
    // Amount = Quantity (column 6) * Unit price (column 7).
    Node *amount = flow.transform(QStringLiteral("Calculate"), {join}, {600, 100},
        {{QStringLiteral("Auto_New_Name"), QStringLiteral("0")},
            {QStringLiteral("New_Name"), QStringLiteral("Amount")},
            {QStringLiteral("Operation"), QStringLiteral("* Multiply")},
            {QStringLiteral("Type1"), QStringLiteral("Column")},
            {QStringLiteral("Column1"), QStringLiteral("6")},
            {QStringLiteral("Type2"), QStringLiteral("Column")},
            {QStringLiteral("Column2"), QStringLiteral("7")}});
    flow.output(amount, QStringLiteral("{orders.folder}/output/sales-by-customer.csv"), IONode::DelimitedText,
        {800, 0});
    flow.output(amount, QStringLiteral("{orders.folder}/output/sales-by-customer.xlsx"), IONode::ExcelXlsx,
        {800, 200}, [](OutputOptions &options) { options.sheet = QStringLiteral("Sales"); });
    flow.save(folder + QStringLiteral("/sales/clean-and-merge.tflow"));
}

// One address book written in four forms.
void contactsExample(NodeFactory &factory, const QString &folder)
{
    FlowBuilder flow(factory);
    flow.setNotes(QStringLiteral("Writes the contacts list as JSON, XML, YAML and vCard. The vCard output "
                                 "builds each card from the column names."));
    Node *contacts = flow.input(QStringLiteral("contacts.csv"), QStringLiteral("contacts"), {0, 150});
    const QString base = QStringLiteral("{contacts.folder}/output/contacts.");
    flow.output(contacts, base + QStringLiteral("json"), IONode::Json, {250, 0});
    flow.output(contacts, base + QStringLiteral("xml"), IONode::Xml, {250, 100}, [](OutputOptions &options) {
        options.xmlRootName = QStringLiteral("contacts");
        options.xmlRowName = QStringLiteral("contact");
    });
    flow.output(contacts, base + QStringLiteral("yaml"), IONode::Yaml, {250, 200});
    flow.output(contacts, base + QStringLiteral("vcf"), IONode::VCard, {250, 300});
    flow.save(folder + QStringLiteral("/contacts/contacts.tflow"));
}

// Monthly sales of four regions drawn three ways: lines as PNG, stacked bars on a PDF
// page and one area chart per region as JPEG.
void chartsExample(NodeFactory &factory, const QString &folder)
{
    FlowBuilder flow(factory);
    flow.setNotes(QStringLiteral("Draws the monthly sales of each region as lines, as stacked bars and as one "
                                 "area chart per region, and writes them as PNG, PDF and JPEG files. Run it, "
                                 "then look in the output folder."));
    Node *sales = flow.input(QStringLiteral("monthly-sales.csv"), QStringLiteral("sales"), {0, 150});
    const QList<int> regions {2, 3, 4, 5};
    const auto wholeNumbers = [](ChartAxisOptions &axis) {
        axis.labelFormat = ChartAxisOptions::FormatI;
        axis.customTitle = QStringLiteral("Sales");
    };
    flow.chart(sales, 1, regions, {250, 0}, [&](ChartOptions &options) {
        options.type = ChartOptions::Line;
        options.titleOption = ChartAxisOptions::TitleCustom;
        options.customTitle = QStringLiteral("Monthly sales by region");
        options.showLineDataPoints = true;
        wholeNumbers(options.yAxis);
        options.writeFile = true;
        options.path = QStringLiteral("{sales.folder}/output/monthly-sales-lines.png");
        options.imageType = ChartOptions::Png;
        options.imageWidth = 1200;
        options.imageHeight = 800;
    });
    flow.chart(sales, 1, regions, {250, 150}, [&](ChartOptions &options) {
        options.type = ChartOptions::VerticalBar;
        options.layout = ChartOptions::Stacked;
        options.titleOption = ChartAxisOptions::TitleCustom;
        options.customTitle = QStringLiteral("Monthly sales, all regions");
        wholeNumbers(options.yAxis);
        options.writeFile = true;
        options.path = QStringLiteral("{sales.folder}/output/monthly-sales-stacked.pdf");
        options.imageType = ChartOptions::Pdf;
        options.pdfSize = QStringLiteral("A4");
        options.pdfOrientation = ChartOptions::Landscape;
    });
    flow.chart(sales, 1, regions, {250, 300}, [&](ChartOptions &options) {
        options.type = ChartOptions::Area;
        options.layout = ChartOptions::Faceted;
        options.facetsAcross = 2;
        options.titleOption = ChartAxisOptions::TitleCustom;
        options.customTitle = QStringLiteral("$(Y)");
        options.opacity = 70;
        wholeNumbers(options.yAxis);
        options.yAxis.sameRangeAllFacets = true;
        options.writeFile = true;
        options.path = QStringLiteral("{sales.folder}/output/monthly-sales-by-region.jpg");
        options.imageType = ChartOptions::Jpeg;
        options.imageWidth = 1600;
        options.imageHeight = 1000;
    });
    flow.save(folder + QStringLiteral("/charts/monthly-sales.tflow"));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv, true);
    // Documents carry the default locale: the examples' dates and numbers read as in the US.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QStringList arguments = application.arguments();
    const QString folder = QDir(arguments.value(1, QStringLiteral(TABRELLE_EXAMPLES))).absolutePath();
    salesExample(application.nodeFactory(), folder);
    contactsExample(application.nodeFactory(), folder);
    chartsExample(application.nodeFactory(), folder);
    return 0;
}
