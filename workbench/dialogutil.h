#pragma once

#include <QSize>

class QDialog;

// What every dialog of the window shares: its size is remembered under
// "geometry/<object name>" in the settings, so that it opens as the user left it.
namespace DialogGeometry {
// Restores the remembered size, or resizes to defaultSize the first time.
void restore(QDialog *dialog, const QSize &defaultSize);
void save(const QDialog *dialog);
} // namespace DialogGeometry

#include <functional>

// Runs a modal dialog of the window. Tests set a script that answers the dialog through
// its own controls instead of waiting on it; the result is the dialog's result then.
namespace DialogRunner {
int exec(QDialog *dialog);
using Script = std::function<void(QDialog *dialog)>;
// Takes effect for every dialog run until reset with an empty script.
void setScript(const Script &script);
bool isScripted();
} // namespace DialogRunner
