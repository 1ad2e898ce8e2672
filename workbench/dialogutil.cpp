#include "workbench/dialogutil.h"

#include "core/settings.h"
#include "transforms/transform.h"
#include "workbench/prompts.h"

#include <QDialog>

namespace DialogGeometry {

static QString key(const QDialog *dialog)
{
    return QStringLiteral("geometry/%1").arg(dialog->objectName());
}

void restore(QDialog *dialog, const QSize &defaultSize)
{
    Settings *settings = Transform::settings();
    if (!settings || !settings->contains(key(dialog)) || !dialog->restoreGeometry(settings->byteArrayValue(key(dialog))))
        dialog->resize(defaultSize);
}

void save(const QDialog *dialog)
{
    if (Settings *settings = Transform::settings())
        settings->setValue(key(dialog), dialog->saveGeometry());
}

} // namespace DialogGeometry

namespace DialogRunner {

static Script &script()
{
    static Script s;
    return s;
}

int exec(QDialog *dialog)
{
    // Tests that answer prompts from a script but set no dialog script must never wait
    // on a modal dialog: it counts as closed.
    if (!script() && dynamic_cast<ScriptedPrompts *>(Prompts::instance()))
        return QDialog::Rejected;
    if (!script())
        return dialog->exec();
    dialog->setResult(QDialog::Rejected);
    script()(dialog);
    return dialog->result();
}

void setScript(const Script &s)
{
    script() = s;
}

bool isScripted()
{
    return bool(script());
}

} // namespace DialogRunner
