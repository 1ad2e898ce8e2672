#include "flow/filenamevariables.h"

#include <QFileInfo>
#include <QSysInfo>

namespace {

QString userName()
{
    QString name = qEnvironmentVariable("USER");
    if (name.isEmpty())
        name = qEnvironmentVariable("USERNAME");
    return name;
}

const FileNameContext::Input *findInput(const FileNameContext &context, const QString &alias)
{
    for (const FileNameContext::Input &input : context.inputs) {
        if (input.alias.trimmed() == alias)
            return &input;
    }
    return nullptr;
}

// The value of one variable name (without braces), or a null string when unknown.
QString variableValue(const QString &name, const FileNameContext &context)
{
    const QDateTime &now = context.now;
    if (name == QLatin1String("date"))
        return now.toString(QStringLiteral("yyyy_MM_dd"));
    if (name == QLatin1String("time"))
        return now.toString(QStringLiteral("HH_mm_ss_zzz"));
    if (name == QLatin1String("datetime"))
        return now.toString(QStringLiteral("yyyy_MM_dd_HH_mm_ss_zzz"));
    if (name == QLatin1String("day"))
        return now.toString(QStringLiteral("dd"));
    if (name == QLatin1String("month"))
        return now.toString(QStringLiteral("MM"));
    if (name == QLatin1String("year"))
        return now.toString(QStringLiteral("yyyy"));
    if (name == QLatin1String("hour"))
        return now.toString(QStringLiteral("HH"));
    if (name == QLatin1String("minute"))
        return now.toString(QStringLiteral("mm"));
    if (name == QLatin1String("second"))
        return now.toString(QStringLiteral("ss"));
    if (name == QLatin1String("version"))
        return QStringLiteral("v%1_%2_%3")
            .arg(context.versionMajor)
            .arg(context.versionMinor)
            .arg(context.versionPatch);
    if (name == QLatin1String("computername"))
        return QSysInfo::machineHostName();
    if (name == QLatin1String("username"))
        return userName();
    if (name == QLatin1String("transformfname"))
        return context.documentPath.isEmpty() ? QString(QLatin1String(""))
                                              : QFileInfo(context.documentPath).completeBaseName();

    // Input aliases: "{alias}", "{alias.fname}", "{alias.folder}", "{alias.ext}", "{alias.sheet}".
    QString alias = name;
    QString part;
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot > 0) {
        const QString suffix = name.mid(dot + 1);
        if (suffix == QLatin1String("fname") || suffix == QLatin1String("folder")
            || suffix == QLatin1String("ext") || suffix == QLatin1String("sheet")) {
            alias = name.left(dot);
            part = suffix;
        }
    }
    const FileNameContext::Input *input = findInput(context, alias.trimmed());
    if (!input)
        return QString();
    const QFileInfo info(input->path);
    if (part.isEmpty()) {
        QString value = info.completeBaseName();
        if (!input->sheet.isEmpty())
            value += QLatin1Char('_') + input->sheet;
        return value.isNull() ? QString(QLatin1String("")) : value;
    }
    QString value;
    if (part == QLatin1String("fname"))
        value = info.completeBaseName();
    else if (part == QLatin1String("folder"))
        value = info.absolutePath();
    else if (part == QLatin1String("ext"))
        value = info.suffix();
    else
        value = input->sheet;
    return value.isNull() ? QString(QLatin1String("")) : value;
}

} // namespace

QString expandFileNameVariables(const QString &text, const FileNameContext &context)
{
    if (!text.contains(QLatin1Char('{')))
        return text;
    QString result;
    result.reserve(text.size());
    int position = 0;
    while (position < text.size()) {
        const int open = text.indexOf(QLatin1Char('{'), position);
        const int close = open < 0 ? -1 : text.indexOf(QLatin1Char('}'), open + 1);
        if (open < 0 || close < 0) {
            result += text.midRef(position);
            break;
        }
        result += text.midRef(position, open - position);
        const QString value = variableValue(text.mid(open + 1, close - open - 1), context);
        if (value.isNull()) {
            // Unknown: keep the brace and look again from the next character, so that
            // "{{date}" still expands its inner variable.
            result += QLatin1Char('{');
            position = open + 1;
        } else {
            result += value;
            position = close + 1;
        }
    }
    return result;
}
