#include "command.h"
#include "filesafety.h"

#include <QApplication>
#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <memory>

namespace {

void printOverview()
{
    printLine(QStringLiteral("Usage: vygis <command> [arguments]\n\nCommands:"));
    for (const Command& command : commands())
        printLine(QStringLiteral("  %1  %2").arg(command.name, -14).arg(command.summary));
    printLine(QStringLiteral(
        "\nLayers and tables are named PATH (the data source's first layer) or PATH:LAYER,\n"
        "for example countries.gpkg:countries, in any vector format GDAL reads (GeoPackage,\n"
        "shapefile, GeoJSON, TopoJSON, CSV, ...). Exit status: 0 on success, 1 when the\n"
        "operation fails, 2 on wrong usage; messages go to standard error.\n\n"
        "Run 'vygis <command> --help' for a command's arguments, 'vygis --version' for the\n"
        "version."));
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

bool wantsHelp(const QStringList& arguments)
{
    return arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"));
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
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty() || arguments.first() == QStringLiteral("--help")
        || arguments.first() == QStringLiteral("-h")) {
        printOverview();
        return arguments.isEmpty() ? ExitUsage : ExitSuccess;
    }
    if (arguments.first() == QStringLiteral("--version")) {
        printLine(QStringLiteral("vygis ") + QLatin1String(VYGIS_VERSION));
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
    const int status = command->run(arguments);
    standardOutput().flush();
    return status;
}
