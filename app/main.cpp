#include "app/application.h"
#include "app/commandline.h"
#include "app/console.h"
#include "workbench/mainwindow.h"

#include <QStringList>
#include <QtGlobal>

#include <cstdio>

int main(int argc, char **argv)
{
    Application::installNewHandler();
    // Fixed hash order, so that runs repeat exactly.
    qSetGlobalQHashSeed(0);
    const bool cli = CommandLine::asksForCli(argc, argv);
    // A headless run needs no display.
    const bool platformChosen = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (cli && !platformChosen)
        qputenv("QT_QPA_PLATFORM", "offscreen");
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    // Without a display the toolkit would abort with a message about its plugins; say it plainly.
    if (!cli && !platformChosen && qEnvironmentVariableIsEmpty("DISPLAY")
        && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        QStringList arguments;
        for (int i = 1; i < argc; ++i)
            arguments << QString::fromLocal8Bit(argv[i]);
        const CommandLine line = CommandLine::parse(arguments);
        if (!line.error.isEmpty())
            Console().abortProcessing(line.error);
        std::fputs("No display found. Run a flow without a window with: tabrelle -cli flow.tflow\n", stderr);
        return 1;
    }
#endif
    Console::installMessageHandler();
    Console::setToolkitMuted(qgetenv("QT_QPA_PLATFORM") == "offscreen");
    Application application(argc, argv, cli);
    Console::setToolkitMuted(false);
    application.setWindowStarter([&application](const CommandLine &line) {
        MainWindow window(application.settings(), application.transforms());
        window.show();
        window.startUp(line.documentPath);
        return application.exec();
    });
    QCoreApplication::processEvents();
    return application.run();
}
