// Screenshots of named states of the window for people to look at after workbench
// changes. Run through tools/screens.sh, which gives it a virtual display; PNG files go
// into TABRELLE_SCREENS_DIR (default: the current folder).

#include "app/application.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "transforms/transform.h"
#include "workbench/graphview.h"
#include "workbench/mainwindow.h"
#include "workbench/prompts.h"
#include "screens.h"

#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <cstdio>

namespace screens {

namespace {
QString g_folder;
} // namespace

QString folder()
{
    return g_folder;
}

void settle(int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(10);
    }
}

void waitForRun(MainWindow &window)
{
    QElapsedTimer timer;
    timer.start();
    settle(200);
    while (window.scene()->isRunning() && timer.elapsed() < 60000)
        settle(50);
    settle(300);
}

void shoot(QWidget &widget, const QString &name)
{
    const QString path = QDir(g_folder).filePath(name + QStringLiteral(".png"));
    widget.grab().save(path);
    std::printf("%s\n", qPrintable(path));
}

Node *nodeNamed(GraphScene *scene, const QString &name)
{
    for (Node *node : scene->nodes()) {
        if (node->name() == name)
            return node;
    }
    return nullptr;
}

const Transform *prototype(const QString &id)
{
    for (const Transform *transform : Application::instance()->transforms()) {
        if (transform->id() == id)
            return transform;
    }
    return nullptr;
}

static QMap<QString, Shots> &registered()
{
    static QMap<QString, Shots> sets;
    return sets;
}

int add(const char *name, Shots shots)
{
    registered().insert(QString::fromLatin1(name), shots);
    return 0;
}

} // namespace screens

using namespace screens;

int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    Application application(argc, argv, false);
    screens::g_folder = qEnvironmentVariable("TABRELLE_SCREENS_DIR", QDir::currentPath());
    QDir().mkpath(g_folder);

    // The example is copied so that its outputs don't land in the source tree.
    QTemporaryDir work;
    const QString source = QStringLiteral(TABRELLE_EXAMPLES "/sales");
    for (const QString &file : QDir(source).entryList(QDir::Files))
        QFile::copy(QDir(source).filePath(file), work.filePath(file));
    QDir(work.path()).mkpath(QStringLiteral("output"));
    const QString flow = work.filePath(QStringLiteral("clean-and-merge.tflow"));

    ScriptedPrompts prompts;
    prompts.answers << QStringLiteral("Don't Save");
    Prompts::setInstance(&prompts);

    MainWindow window(application.settings(), application.transforms());
    window.resize(1500, 900);
    window.show();
    settle(500);
    shoot(window, QStringLiteral("01-empty"));

    window.openDocument(flow, false);
    waitForRun(window);
    window.view()->zoomToFit();
    settle();
    shoot(window, QStringLiteral("02-example-opened"));

    GraphScene *scene = window.scene();
    QList<Node *> nodes = scene->nodes();
    GraphScene::sortNodes(nodes);
    Node *chosen = nullptr;
    for (Node *node : nodes) {
        if (node->typeName() == QLatin1String("Transform"))
            chosen = node;
    }
    if (!chosen && !nodes.isEmpty())
        chosen = nodes.first();
    if (chosen) {
        scene->clearSelection();
        chosen->setSelected(true);
        window.view()->setCurrentNode(chosen);
        settle();
        shoot(window, QStringLiteral("03-item-selected"));
        if (const Transform *filter = prototype(QStringLiteral("Filter"))) {
            Node *added = window.view()->addTransform(filter);
            waitForRun(window);
            shoot(window, QStringLiteral("04-filter-added"));
            if (added) {
                window.view()->setCurrentNode(added);
                Node *output = window.view()->addOutput(work.filePath(QStringLiteral("output/filtered.csv")));
                Q_UNUSED(output)
                waitForRun(window);
                window.view()->zoomToFit();
                settle();
                shoot(window, QStringLiteral("05-output-connected"));
            }
        }
    }
    window.action(QStringLiteral("autoRunAction"))->trigger(); // off
    window.action(QStringLiteral("runEverythingAction"))->trigger();
    waitForRun(window);
    shoot(window, QStringLiteral("06-after-run"));

    window.action(QStringLiteral("darkThemeAction"))->trigger();
    settle();
    shoot(window, QStringLiteral("07-dark-theme"));
    window.action(QStringLiteral("lightThemeAction"))->trigger();

    const QString saved = work.filePath(QStringLiteral("saved.tflow"));
    window.saveDocumentAs(saved);
    window.newDocument();
    window.openDocument(saved, false);
    waitForRun(window);
    shoot(window, QStringLiteral("08-reopened"));

    // The sets of other screenshot files, by name, each on the reopened example.
    for (auto it = registered().cbegin(); it != registered().cend(); ++it) {
        std::printf("-- %s\n", qPrintable(it.key()));
        // Each set starts from the example, whatever the one before opened.
        window.openDocument(saved, false);
        waitForRun(window);
        it.value()(window, work.path());
        settle();
    }

    window.close();
    Prompts::setInstance(nullptr);
    return 0;
}
