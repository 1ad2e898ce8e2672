#pragma once

#include <QApplication>
#include <QList>

#include <functional>
#include <memory>

class QMessageBox;
class Settings;
class NodeFactory;
struct CommandLine;
class Transform;

// The process: settings, the registries of items, and the last-resort handlers that
// keep an exhausted memory or an escaped exception from losing the user's flow.
class Application : public QApplication
{
    Q_OBJECT
public:
    Application(int &argc, char **argv, bool cli);
    ~Application() override;

    static Application *instance() { return static_cast<Application *>(QCoreApplication::instance()); }

    bool isCli() const { return m_cli; }
    Settings *settings() const { return m_settings; }
    NodeFactory &nodeFactory() { return *m_nodeFactory; }
    // One prototype of every transform, in the order the transform pane lists them; a new
    // item's transform is a clone of one.
    const QList<Transform *> &transforms() const { return m_transforms; }
    // Where the portable settings file and relative start-up documents are looked for.
    QString applicationDirectory() const { return m_applicationDirectory; }

    // Runs the program with its arguments: a headless run, or the window.
    int run();
    // Opens the window for a command line without -cli and returns the event loop's
    // result. Set by the executable that has a workbench; without one, run() says so.
    using WindowStarter = std::function<int(const CommandLine &line)>;
    void setWindowStarter(WindowStarter starter) { m_startWindow = std::move(starter); }

    // Every event passes through here, so that memory exhaustion and escaped exceptions
    // end in a message and a recovery file rather than a lost flow.
    bool notify(QObject *receiver, QEvent *event) override;

    // Called before a fatal message: frees every item's data and writes a recovery file.
    void setNodeResetHandler(std::function<void()> handler) { m_resetNodes = std::move(handler); }
    void setRecoveryHandler(std::function<void()> handler) { m_writeRecovery = std::move(handler); }

    // Allocation failure: gives back the reserve once so that the handlers can work.
    static void installNewHandler();
    static bool releaseReserve();

private:
    void registerItems();
    void applySettings();
    int endAfterFailure(const QString &warning, const QString &message, int result);

    bool m_cli = false;
    QString m_applicationDirectory;
    Settings *m_settings = nullptr;
    std::unique_ptr<NodeFactory> m_nodeFactory;
    QList<Transform *> m_transforms;
    QMessageBox *m_outOfMemoryBox = nullptr;
    std::function<void()> m_resetNodes;
    WindowStarter m_startWindow;
    std::function<void()> m_writeRecovery;
};
