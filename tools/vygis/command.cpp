#include "command.h"

#include <QTextStream>

#include <cstdio>

const QList<Command>& commands()
{
    static const QList<Command> all{
        demoCommand(),   dumpCommand(),     createCommand(),   clearCommand(),
        coordsCommand(), rulesCommand(),    pairsCommand(),    templateCommand(),
        errorsCommand(), topologyCommand(), dxfCodepageCommand()};
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
