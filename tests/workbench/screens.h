#pragma once

// Helpers shared by the screenshot files. A file screens_<topic>.cpp adds its own set of
// shots with TABRELLE_SCREENS(name) { ... }; the sets run in name order after the main
// window's shots, each given the window (open on the example flow) and a scratch folder.

#include <QString>

class GraphScene;
class MainWindow;
class Node;
class QWidget;
class Transform;

namespace screens {

using Shots = void (*)(MainWindow &window, const QString &workFolder);

QString folder();
// Lets events run for about ms milliseconds, so that layouts and repaints settle.
void settle(int ms = 300);
void waitForRun(MainWindow &window);
// Saves the widget's picture as <name>.png in the screenshot folder.
void shoot(QWidget &widget, const QString &name);
Node *nodeNamed(GraphScene *scene, const QString &name);
const Transform *prototype(const QString &id);
int add(const char *name, Shots shots);

} // namespace screens

#define TABRELLE_SCREENS(name)                                                                    \
    static void name(MainWindow &window, const QString &workFolder);                              \
    static const int name##Registered = screens::add(#name, &name);                               \
    static void name(MainWindow &window, const QString &workFolder)
