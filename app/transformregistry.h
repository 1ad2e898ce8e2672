#pragma once

#include <QList>

class Transform;

// One new prototype of every transform class, in the order the transform pane lists
// them and the document reader looks ids up; the caller owns them.
QList<Transform *> createTransformPrototypes();
