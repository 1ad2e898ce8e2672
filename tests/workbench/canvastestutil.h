#pragma once

// Shared by the canvas and window tests: an application with the program's items and
// transforms registered and settings in a throwaway folder, and small flow builders.

#include "app/application.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "transforms/transform.h"

#include <QTemporaryDir>
#include <QtTest>

#define CANVAS_TEST_MAIN(TestClass)                                                                                \
    int main(int argc, char **argv)                                                                                \
    {                                                                                                              \
        QTemporaryDir home;                                                                                        \
        qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());                              \
        qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());                                  \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))                                                        \
            qputenv("QT_QPA_PLATFORM", "offscreen");                                                               \
        Application application(argc, argv, false);                                                                \
        TestClass test;                                                                                            \
        return QTest::qExec(&test, argc, argv);                                                                    \
    }

namespace CanvasTest {

inline const Transform *prototype(const QString &id)
{
    for (const Transform *transform : Application::instance()->transforms()) {
        if (transform->id() == id)
            return transform;
    }
    return nullptr;
}

// A pasted-text input at pos holding a small table.
inline InputNode *addInput(GraphScene &scene, const QPointF &pos, const QString &text = QStringLiteral("a,b\n1,2\n"))
{
    auto *input = new InputNode;
    input->setMedium(IONode::Clipboard);
    input->setText(text);
    input->setPos(pos);
    scene.addNode(input);
    return input;
}

} // namespace CanvasTest
