// The canvas far out and close in, a note edited in place, the chooser that opens where a
// connection is dropped, and a table longer than the data table's window.

#include "screens.h"

#include "core/dataset.h"
#include "flow/graphscene.h"
#include "flow/notenode.h"
#include "inputs/inputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/datapanel.h"
#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"
#include "workbench/graphview.h"
#include "workbench/graphviewchooser.h"
#include "workbench/graphviewpainter.h"
#include "workbench/mainwindow.h"

#include <QApplication>
#include <QGraphicsTextItem>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>

namespace {

// The screenshot program has no test library: keys and the mouse are sent as events.
void key(QWidget *widget, int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString &text = {})
{
    QKeyEvent press(QEvent::KeyPress, code, modifiers, text);
    QApplication::sendEvent(widget, &press);
    QKeyEvent release(QEvent::KeyRelease, code, modifiers, text);
    QApplication::sendEvent(widget, &release);
}

void type(QWidget *widget, const QString &text)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            key(widget, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
        else
            key(widget, 0, Qt::NoModifier, QString(c));
    }
}

void mouse(QWidget *widget, QEvent::Type type, const QPoint &pos, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, pos, widget->mapToGlobal(pos), Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

} // namespace

TABRELLE_SCREENS(canvas)
{
    Q_UNUSED(workFolder)
    GraphView *view = window.view();
    GraphScene *scene = window.scene();

    // Far out: plain tiles in their status colours; the glyphs and captions come back
    // closer in.
    for (int percent : {10, 30, 50, 100}) {
        view->zoomToFit();
        view->setZoom(percent / 100.0);
        screens::settle();
        screens::shoot(*view, QStringLiteral("canvas-zoom-%1").arg(percent, 3, 10, QLatin1Char('0')));
    }
    view->setZoom(1.0);

    // A note, and the same note being edited in place.
    Node *note = view->addNote();
    if (auto *editor = view->noteEditor()) {
        type(view, QStringLiteral("Check the totals\nbefore sending"));
        screens::settle();
        view->centerOn(note);
        screens::settle();
        screens::shoot(*view, QStringLiteral("canvas-note-editing"));
        Q_UNUSED(editor)
        key(view, Qt::Key_Return, Qt::ControlModifier);
        screens::settle();
        screens::shoot(*view, QStringLiteral("canvas-note-done"));
    }

    // The chooser at the end of a connection dropped on empty canvas.
    Node *from = nullptr;
    for (Node *node : scene->nodes()) {
        if (node->maxDownstream() > node->connections(Node::Outgoing).size()) {
            from = node;
            break;
        }
    }
    if (from) {
        view->centerOn(from);
        screens::settle();
        const QPoint port = view->mapFromScene(from->mapToScene(GraphViewPainter::outPortPos()));
        const QPoint empty = port + QPoint(160, 140);
        mouse(view->viewport(), QEvent::MouseMove, port, Qt::NoButton);
        mouse(view->viewport(), QEvent::MouseButtonPress, port, Qt::LeftButton);
        mouse(view->viewport(), QEvent::MouseMove, empty, Qt::LeftButton);
        mouse(view->viewport(), QEvent::MouseButtonRelease, empty, Qt::NoButton);
        screens::settle();
        if (auto *popup = view->findChild<ItemChooserPopup *>()) {
            screens::shoot(*popup, QStringLiteral("canvas-chooser"));
            type(popup->searchEdit(), QStringLiteral("ch"));
            screens::settle();
            screens::shoot(*popup, QStringLiteral("canvas-chooser-chart"));
            popup->close();
        }
    }

    // 3,000,000 rows: the view's window of rows follows the scroll bar over all of them.
    Dataset big;
    big.setColumnCount(4);
    big.setHeaders({QStringLiteral("Order"), QStringLiteral("Date"), QStringLiteral("Customer"),
        QStringLiteral("Amount")});
    const QStringList row = {QStringLiteral("100234"), QStringLiteral("2021-03-04"), QStringLiteral("Acme Ltd"),
        QStringLiteral("19.99")};
    big.reserveRows(3000000);
    for (int i = 0; i < 3000000; ++i)
        big.appendRow(row);
    GraphScene bigScene;
    auto *bigInput = new InputNode;
    bigScene.addNode(bigInput);
    bigInput->setDataset(big);
    bigInput->setStatus(Node::UpToDate, false);
    DataPanel panel;
    panel.resize(700, 420);
    panel.setNode(bigInput, &bigScene);
    panel.show();
    screens::settle();
    panel.goToRow(1999990);
    screens::settle();
    screens::shoot(panel, QStringLiteral("table-3m-rows-middle"));
    panel.view()->scrollToBottom();
    screens::settle();
    screens::shoot(panel, QStringLiteral("table-3m-rows-end"));
    panel.setNode(nullptr, nullptr);
    panel.close();
}
