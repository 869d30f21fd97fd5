#include "command.h"

#include <QTextStream>

#include <cstdio>

const QList<Command>& commands()
{
    static const QList<Command> all{
        demoCommand(),      exportCommand(),   exportTableCommand(), joinCommand(),
        elevationCommand(), errorsCommand(),   topologyCommand(),    dumpCommand(),
        coordsCommand(),    rulesCommand(),    pairsCommand(),       templateCommand(),
        createCommand(),    clearCommand(),    dxfCodepageCommand(), layerNameCommand()};
    return all;
}

void printError(const QString& text)
{
    QTextStream(stderr) << text << '\n';
}

void printLine(const QString& text)
{
    QTextStream(stdout) << text << '\n';
}
