#include "app/application.h"

#include "app/buildinfo.h"
#include "app/commandline.h"
#include "app/console.h"
#include "app/headlessrun.h"
#include "app/transformregistry.h"
#include "charts/chartdocument.h"
#include "charts/chartnode.h"
#include "core/dataset.h"
#include "core/settings.h"
#include "core/values.h"
#include "flow/document.h"
#include "flow/maxmemoryexception.h"
#include "flow/nodefactory.h"
#include "flow/notenode.h"
#include "inputs/inputdocument.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"
#include "outputs/outputdocument.h"
#include "outputs/outputnode.h"
#include "outputs/writerregistry.h"
#include "transforms/transform.h"
#include "transforms/transformdocument.h"
#include "transforms/transformnode.h"

#include <QDate>
#include <QDebug>
#include <QLocale>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace {

// Kept unused so that the handlers of a memory failure have something to work with.
constexpr size_t ReserveSize = 262144;
char *g_reserve = nullptr;

void onAllocationFailure()
{
    if (Application::releaseReserve())
        throw std::bad_alloc(); // reaches Application::notify, which tells the user
    std::fputs("Out of memory\n", stderr);
    std::abort();
}

} // namespace

void Application::installNewHandler()
{
    if (!g_reserve)
        g_reserve = new char[ReserveSize];
    std::set_new_handler(onAllocationFailure);
}

bool Application::releaseReserve()
{
    if (!g_reserve)
        return false;
    delete[] g_reserve;
    g_reserve = nullptr;
    return true;
}

Application::Application(int &argc, char **argv, bool cli)
    : QApplication(argc, argv)
    , m_cli(cli)
    , m_nodeFactory(std::make_unique<NodeFactory>())
{
    installNewHandler();
    setApplicationName(BuildInfo::productName());
    setApplicationVersion(BuildInfo::version());
    setOrganizationName(BuildInfo::productName());
    if (!m_cli) {
        // Built now because nothing can be built once memory is gone.
        m_outOfMemoryBox = new QMessageBox(QMessageBox::Critical, tr("Out of memory"),
            tr("%1 ran out of memory!").arg(BuildInfo::productName()));
    }
    m_applicationDirectory = applicationDirPath();
    QFont base = font();
    if (base.pointSize() > 0 && base.pointSize() < 10) {
        base.setPointSize(base.pointSize() + 1);
        setFont(base);
    }
    setAttribute(Qt::AA_UseHighDpiPixmaps, true);
    setAttribute(Qt::AA_DontShowIconsInMenus, true);

    m_settings = Settings::openFor(m_applicationDirectory, this);
    Transform::setSettings(m_settings);
    applySettings();
    m_transforms = createTransformPrototypes();
    registerItems();
}

Application::~Application()
{
    Transform::setSettings(nullptr);
    qDeleteAll(m_transforms);
    delete m_outOfMemoryBox;
}

void Application::applySettings()
{
    // The memory mode is fixed for the life of the process: tables built under one
    // mode must never meet the other.
    Dataset::setMemoryMode(m_settings->intValue(QStringLiteral("optimize_for")));
    const QString localeName = m_settings->stringValue(QStringLiteral("locale"));
    if (!localeName.isEmpty())
        QLocale::setDefault(QLocale(localeName));
    setDateFormats(m_settings->dateFormats());
    m_settings->recordUsage(QDate::currentDate());
}

void Application::registerItems()
{
    registerInputReaders();
    registerOutputWriters();
    m_nodeFactory->registerCreator(QStringLiteral("Input"), [] { return new InputNode; });
    m_nodeFactory->registerCreator(QStringLiteral("Output"), [] { return new OutputNode; });
    m_nodeFactory->registerCreator(QStringLiteral("Chart"), [] { return new ChartNode; });
    m_nodeFactory->registerCreator(QStringLiteral("Note"), [] { return new NoteNode; });
    for (const Transform *prototype : qAsConst(m_transforms)) {
        m_nodeFactory->registerCreator(QStringLiteral("Transform:%1").arg(prototype->id()),
            [prototype] { return new TransformNode(prototype->clone()); });
    }
    // Documents make their items through the same factory; the one edition is "Free".
    Document::setNodeFactory(m_nodeFactory.get());
    Document::setProgram(BuildInfo::productName(), QStringLiteral("Free"), BuildInfo::versionMajor(),
                         BuildInfo::versionMinor(), BuildInfo::versionPatch());
    Document::registerItemType(InputDocument::itemType());
    Document::registerItemType(TransformDocument::itemType());
    Document::registerItemType(OutputDocument::itemType());
    Document::registerItemType(ChartDocument::itemType());
}

int Application::run()
{
    Console console;
    CommandLine line = CommandLine::parse(arguments().mid(1));
    if (!line.error.isEmpty())
        console.abortProcessing(line.error);
    if (line.cli) {
        HeadlessRun headless(line, console);
        return headless.exec();
    }
    if (m_startWindow)
        return m_startWindow(line);
    console.logInfo(tr("Version: %1 %2").arg(BuildInfo::productName(), BuildInfo::version()));
    console.logInfo(
        tr("The workbench window is not part of this build yet. Run a flow with: %1 -cli flow.tflow")
            .arg(QStringLiteral("tabrelle")));
    return 0;
}

int Application::endAfterFailure(const QString &warning, const QString &message, int result)
{
    releaseReserve();
    if (m_resetNodes)
        m_resetNodes();
    qWarning().noquote() << warning;
    if (!m_cli)
        QMessageBox::critical(nullptr, BuildInfo::productName(), message);
    if (m_writeRecovery)
        m_writeRecovery();
    if (m_cli) {
        // A headless run has no event loop to leave: end here with the same result.
        std::fflush(stdout);
        std::fflush(stderr);
        std::exit(result);
    }
    exit(result);
    return result;
}

bool Application::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::bad_alloc &e) {
        releaseReserve();
        if (m_resetNodes)
            m_resetNodes();
        qWarning().noquote() << QStringLiteral("bad_alloc exception: ") + QString::fromLocal8Bit(e.what());
        if (m_outOfMemoryBox)
            m_outOfMemoryBox->exec();
        std::abort();
    } catch (const MaxMemoryException &) {
        endAfterFailure(tr("Maximum memory exceeded"),
            tr("%1 has exceeded the memory allocation set in 'Preferences' and will close.")
                .arg(BuildInfo::productName()),
            1);
    } catch (const std::exception &e) {
        endAfterFailure(QStringLiteral("exception: ") + QString::fromLocal8Bit(e.what()),
            tr("%1 has to close due to an exception. Please contact support at %2.")
                .arg(BuildInfo::productName(), BuildInfo::supportAddress()),
            2);
    } catch (...) {
        endAfterFailure(QStringLiteral("exception"),
            tr("%1 has to close. Please contact support at %2.")
                .arg(BuildInfo::productName(), BuildInfo::supportAddress()),
            3);
    }
    return false;
}
