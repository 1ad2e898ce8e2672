#include "app/headlessrun.h"

#include "app/application.h"
#include "app/buildinfo.h"
#include "app/console.h"
#include "flow/aliasassignment.h"
#include "flow/document.h"
#include "flow/filenamevariables.h"
#include "flow/graphscene.h"
#include "flow/maxmemoryexception.h"
#include "flow/nodefactory.h"
#include "flow/runreport.h"
#include "outputs/outputnode.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HeadlessRun", text);
}

} // namespace

HeadlessRun::HeadlessRun(const CommandLine &line, Console &console)
    : m_line(line)
    , m_console(console)
{ }

int HeadlessRun::exec()
{
    m_console.setCli(true);
    openLogFile();
    printHeader();
    if (m_line.documentPath.isEmpty())
        m_console.abortProcessing(tr("No .%1 file specified.").arg(CommandLine::documentSuffix()));

    Application *application = Application::instance();
    GraphScene scene;
    // The run adds its rows to the lifetime counter and reads the memory limit there; a
    // headless run has no one to ask for more memory, so going over the limit ends it.
    if (application)
        scene.setSettings(application->settings());
    QString reason;
    QString readWarnings;
    DocumentProperties properties;
    if (!Document::openDocument(scene, m_line.documentPath, &reason, &readWarnings, &properties))
        m_console.abortProcessing(tr("Unable to open '%1': %2").arg(m_line.documentPath, reason));
    // The file name variables of outputs ("{transformfname}") name the document.
    scene.setProperty("documentPath", QFileInfo(m_line.documentPath).absoluteFilePath());
    if (!properties.locale.isEmpty())
        QLocale::setDefault(QLocale(properties.locale));
    applyAliasAssignments(scene);

    if (m_line.verbosity >= 2) {
        m_console.logInfo(tr("File: '%1'").arg(m_line.documentPath));
        m_console.logInfo(tr("Started: %1").arg(QDateTime::currentDateTime().toString()));
    }
    for (Node *node : scene.nodes()) {
        if (auto *output = qobject_cast<OutputNode *>(node)) {
            OutputOptions options = output->options();
            options.confirmMultiFile = false;
            output->setOptions(options);
        }
    }

    QCoreApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    // Auto Run is on whatever the document says: switching it on runs what isn't up to date.
    scene.setAutoRun(true);
    try {
        scene.runIfAuto();
    } catch (const MaxMemoryException &) {
        for (Node *node : scene.nodes()) {
            node->setDataset(Dataset());
            node->setStatus(Node::NeedsUpdating, false);
        }
        m_console.logError(tr("Maximum memory exceeded"));
        m_console.closeLogFile();
        return 1;
    }
    const qint64 elapsed = timer.nsecsElapsed();
    if (!readWarnings.isEmpty())
        m_console.logError(readWarnings);

    // A silent run tells nothing, not even by its return value.
    if (m_line.verbosity <= 0) {
        m_console.closeLogFile();
        return 0;
    }
    const int errors = report(scene, elapsed);
    const QString logPath = m_console.logFilePath();
    m_console.closeLogFile();
    if (!logPath.isEmpty() && m_line.verbosity >= 2)
        m_console.logInfo(tr("Log: %1").arg(QDir::toNativeSeparators(QFileInfo(logPath).absoluteFilePath())));
    return errors == 0 ? 0 : 1;
}

void HeadlessRun::applyAliasAssignments(GraphScene &scene)
{
    const QList<Node *> nodes = scene.nodes();
    for (const QString &assignment : qAsConst(m_line.aliasAssignments)) {
        // A value holding "=" is refused rather than guessed at.
        const QStringList pieces = assignment.split(QLatin1Char('='));
        if (pieces.size() != 2)
            m_console.abortProcessing(tr("Expected <alias>=<value> for %1 argument").arg(assignment));
        const QString error = AliasAssignment::apply(nodes, pieces.at(0), pieces.at(1));
        if (!error.isEmpty())
            m_console.abortProcessing(error);
    }
}

int HeadlessRun::report(GraphScene &scene, qint64 elapsedNanoseconds)
{
    Application *application = Application::instance();
    const bool charts = !application || application->nodeFactory().contains(QStringLiteral("Chart"));
    RunReport report(m_line.verbosity, charts);
    const QList<Node *> nodes = scene.nodes();
    report.count(nodes, scene.overwrittenPaths());
    for (const RunReport::Line &line : report.itemLines()) {
        if (line.error)
            m_console.logError(line.text);
        else
            m_console.logInfo(line.text);
    }
    if (m_line.verbosity >= 2)
        m_console.logInfo(tr("Finished: %1").arg(QDateTime::currentDateTime().toString()));
    for (const RunReport::Line &line : report.summaryLines(elapsedNanoseconds))
        m_console.logInfo(line.text);
    return report.errorCount();
}

void HeadlessRun::openLogFile()
{
    if (m_line.logPath.isEmpty())
        return;
    FileNameContext context;
    context.documentPath = m_line.documentPath;
    context.versionMajor = BuildInfo::versionMajor();
    context.versionMinor = BuildInfo::versionMinor();
    context.versionPatch = BuildInfo::versionPatch();
    const QString path = expandFileNameVariables(m_line.logPath, context);
    if (!m_console.openLogFile(path, m_line.overwriteLog))
        m_console.logError(tr("Could not open log file at '%1'").arg(path));
}

void HeadlessRun::printHeader()
{
    if (m_line.verbosity > 0 || m_line.version || m_line.build || m_line.documentPath.isEmpty())
        m_console.logInfo(QString());
    if (m_line.version)
        m_console.logInfo(tr("Version: %1 %2").arg(BuildInfo::productName(), BuildInfo::version()));
    if (m_line.build)
        m_console.logInfo(tr("Build: %1").arg(BuildInfo::buildDateTime()));
}
