#include "app/commandline.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CommandLine", text);
}

} // namespace

QString CommandLine::optionName(const QString &argument)
{
    if (!argument.startsWith(QLatin1Char('-')))
        return QString();
    QString name = argument.toLower().mid(1);
    if (name.startsWith(QLatin1Char('-')))
        name.remove(0, 1);
    return name;
}

bool CommandLine::asksForCli(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (optionName(QString::fromLocal8Bit(argv[i])) == QLatin1String("cli"))
            return true;
    }
    return false;
}

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine line;
    auto fail = [&line](const QString &message) {
        line.error = message;
        return line;
    };
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const QString option = optionName(argument);
        if (option.isEmpty() && !argument.startsWith(QLatin1Char('-'))) {
            if (!line.documentPath.isEmpty())
                continue; // only the first document counts; the rest aren't even checked
            const QFileInfo info(argument);
            if (!info.exists())
                return fail(tr("'%1' not found").arg(argument));
            if (info.suffix() != documentSuffix())
                return fail(tr("Unrecognized file suffix '%1' in '%2'").arg(info.suffix(), argument));
            line.documentPath = argument;
            continue;
        }
        const bool takesValue = option == QLatin1String("log") || option == QLatin1String("verbosity")
            || option == QLatin1String("file");
        if (takesValue && i + 1 >= arguments.size())
            return fail(tr("No value following %1 argument").arg(argument));
        if (option == QLatin1String("cli")) {
            line.cli = true;
        } else if (option == QLatin1String("log")) {
            line.logPath = arguments.at(++i);
        } else if (option == QLatin1String("overwrite")) {
            line.overwriteLog = true;
        } else if (option == QLatin1String("verbose")) {
            line.verbosity = 2;
        } else if (option == QLatin1String("verbosity")) {
            const QString value = arguments.at(++i);
            bool ok = false;
            const int verbosity = value.toInt(&ok, 10);
            if (!ok || verbosity < MinimumVerbosity || verbosity > MaximumVerbosity)
                return fail(tr("Verbosity value '%1' not recognised, %2-%3 expected")
                                .arg(value)
                                .arg(MinimumVerbosity)
                                .arg(MaximumVerbosity));
            line.verbosity = verbosity;
        } else if (option == QLatin1String("new_window")) {
            line.newWindow = true;
        } else if (option == QLatin1String("version")) {
            line.version = true;
        } else if (option == QLatin1String("build")) {
            line.build = true;
        } else if (option == QLatin1String("file")) {
            line.aliasAssignments << arguments.at(++i);
        } else {
            return fail(tr("Unrecognized argument: %1").arg(argument));
        }
    }
    return line;
}

QString verbosityName(int verbosity)
{
    switch (verbosity) {
    case 1:
        return tr("Summary");
    case 2:
        return tr("Normal");
    case 3:
        return tr("Extra");
    case 4:
        return tr("Maximum");
    default:
        return tr("Silent");
    }
}

QString verbosityDescription(int verbosity)
{
    switch (verbosity) {
    case 1:
        return tr("Summary only.");
    case 2:
        return tr("Summary + processing.");
    case 3:
        return tr("Summary + processing + warnings.");
    case 4:
        return tr("Summary + processing + warnings + info.");
    default:
        return tr("No output.");
    }
}
