// Shots of the help window: the contents, a transform's page, a search and the find bar.

#include "screens.h"

#include "app/application.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/helpwindow.h"
#include "workbench/itempane.h"
#include "workbench/mainwindow.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

TABRELLE_SCREENS(helpWindow)
{
    Q_UNUSED(workFolder)
    // The picture of the window on the help's first page, help/images/window.png, is this
    // shot with the Join selected, scaled to the width of a help page.
    const auto select = [&window](const QString &name) {
        for (Node *node : window.scene()->nodes())
            node->setSelected(node->name() == name);
        screens::settle(1000);
    };
    select(QStringLiteral("Join"));
    window.grab().scaledToWidth(760, Qt::SmoothTransformation).save(screens::folder() + QStringLiteral("/help-image-window.png"));
    // The item pages show the item pane of the example's orders input and of its Join:
    // help/images/input-pane.png and help/images/transform-pane.png.
    if (ItemPane *pane = window.findChild<ItemPane *>()) {
        select(QStringLiteral("orders.csv"));
        pane->grab().save(screens::folder() + QStringLiteral("/help-image-input-pane.png"));
        select(QStringLiteral("Join"));
        pane->grab().save(screens::folder() + QStringLiteral("/help-image-transform-pane.png"));
    }

    HelpWindow::setTransformPrototypes(Application::instance()->transforms());
    HelpWindow::setShortcutActions(window.findChildren<QAction *>());
    HelpWindow::showContents();
    HelpWindow *help = HelpWindow::existingInstance();
    help->resize(1100, 760);
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-contents"));

    HelpWindow::showTransform(QStringLiteral("Join"));
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-join"));

    HelpWindow::showItem(QStringLiteral("Input"));
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-input"));

    HelpWindow::showTransform(QStringLiteral("Calculate"));
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-calculate"));

    help->searchEdit()->setText(QStringLiteral("unpivot"));
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-search"));
    help->searchEdit()->clear();

    HelpWindow::showTransform(QStringLiteral("Stack"));
    help->findAction()->trigger();
    for (const QChar c : QStringLiteral("header")) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(help->findEdit(), &press);
    }
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-find"));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(help->findEdit(), &escape);

    HelpWindow::showShortcuts();
    screens::settle();
    screens::shoot(*help, QStringLiteral("help-shortcuts"));
    help->close();
}
