#include "command.h"
#include "filesafety.h"
#include "vywaitdialog.h"

#include <QApplication>
#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <memory>

namespace {

QString overview()
{
    QStringList lines{QStringLiteral("Usage: vygis [--quiet] <command> [arguments]\n\nCommands:")};
    for (const Command& command : commands())
        lines.append(QStringLiteral("  %1  %2").arg(command.name, -14).arg(command.summary));
    lines.append(QStringLiteral(
        "\nLayers and tables are named PATH (the data source's first layer) or PATH:LAYER,\n"
        "for example countries.gpkg:countries, in any vector format GDAL reads\n"
        "(GeoPackage, shapefile, GeoJSON, TopoJSON, CSV, ...). Options that take a list\n"
        "take it separated by commas (--columns X,Y,NAME). Exit status: 0 on success, 1\n"
        "when the operation fails, 2 on wrong usage; messages go to standard error.\n\n"
        "Every command takes --quiet (-q): no progress and no notes, only the output and\n"
        "the errors. Long jobs show their progress only when standard error is a\n"
        "terminal.\n\n"
        "Run 'vygis <command> --help' for a command's arguments, 'vygis --version' (or\n"
        "'vygis <command> --version') for the version."));
    return lines.join(QLatin1Char('\n'));
}

const Command* findCommand(const QString& name)
{
    for (const Command& command : commands())
        if (command.name == name)
            return &command;
    return nullptr;
}

// A file size limit or a full disk must fail the write that meets it, so that the
// command can keep the old file and say why, rather than end the process.
void failWritesInsteadOfStopping()
{
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

// The arguments that may be options: those before "--".
QStringList optionPart(const QStringList& arguments)
{
    return arguments.mid(0, arguments.indexOf(QStringLiteral("--")));
}

bool wantsHelp(const QStringList& arguments)
{
    const QStringList options = optionPart(arguments);
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

bool wantsVersion(const QStringList& arguments)
{
    return optionPart(arguments).contains(QStringLiteral("--version"));
}

// Takes --quiet and -q out of the arguments, wherever they stand before "--", so that
// every command accepts them without knowing of them.
bool takeQuiet(QStringList& arguments)
{
    const int end = optionPart(arguments).size();
    bool quiet = false;
    for (int i = end - 1; i >= 0; --i) {
        if (arguments[i] == QStringLiteral("--quiet") || arguments[i] == QStringLiteral("-q")) {
            arguments.removeAt(i);
            quiet = true;
        }
    }
    return quiet;
}

QtMessageHandler handlerBeforeQuiet = nullptr;

// The engine logs what a save changed to stay within Excel's limits as a note; a quiet
// run drops it and passes on everything else.
void dropNotesWhenQuiet(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (isQuiet() && context.category && qstrcmp(context.category, "vygis.xlsx.limits") == 0)
        return;
    if (handlerBeforeQuiet)
        handlerBeforeQuiet(type, context, message);
}

void printVersion()
{
    printLine(QStringLiteral("vygis ") + QLatin1String(VYGIS_VERSION));
}

} // namespace

int main(int argc, char** argv)
{
    // A widget application only where a display is there, so that the tool also runs on
    // servers; without one the long jobs report progress on the terminal.
    std::unique_ptr<QCoreApplication> app;
    if (qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        app = std::make_unique<QApplication>(argc, argv);
    else
        app = std::make_unique<QCoreApplication>(argc, argv);

    failWritesInsteadOfStopping();
    keepSaveErrorsForMessages();
    handlerBeforeQuiet = qInstallMessageHandler(dropNotesWhenQuiet);
    // The commands show their own progress, with counts where they know the total.
    VyWaitDialog::setShownOnTerminal(false);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    setQuiet(takeQuiet(arguments));
    if (arguments.isEmpty()) {
        printError(overview());
        return ExitUsage;
    }
    if (arguments.first() == QStringLiteral("--help") || arguments.first() == QStringLiteral("-h")) {
        printLine(overview());
        return ExitSuccess;
    }
    if (arguments.first() == QStringLiteral("--version")) {
        printVersion();
        return ExitSuccess;
    }
    const QString commandName = arguments.takeFirst();
    const Command* command = findCommand(commandName);
    if (!command) {
        printError(QStringLiteral("vygis: unknown command \"%1\"; run 'vygis --help' for the list")
                       .arg(commandName));
        return ExitUsage;
    }
    if (wantsHelp(arguments)) {
        printLine(command->usage);
        return ExitSuccess;
    }
    if (wantsVersion(arguments)) {
        printVersion();
        return ExitSuccess;
    }
    const int status = command->run(arguments);
    standardOutput().flush();
    return status;
}
