#include "command.h"

#include <QApplication>
#include <QCoreApplication>

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
        "Run 'vygis <command> --help' for a command's arguments."));
}

const Command* findCommand(const QString& name)
{
    for (const Command& command : commands())
        if (command.name == name)
            return &command;
    return nullptr;
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

    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.isEmpty() || arguments.first() == QStringLiteral("--help")
        || arguments.first() == QStringLiteral("-h")) {
        printOverview();
        return arguments.isEmpty() ? ExitUsage : ExitSuccess;
    }
    const Command* command = findCommand(arguments.takeFirst());
    if (!command) {
        printError(QStringLiteral("vygis: unknown command; run 'vygis --help' for the list"));
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
