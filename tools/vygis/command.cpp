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

namespace {

// A stream made per line would cost more than the line itself when a command prints a
// sheet of millions of cells.
struct Utf8Output : QTextStream {
    Utf8Output() : QTextStream(stdout) { setCodec("UTF-8"); }
};

} // namespace

QTextStream& standardOutput()
{
    static Utf8Output stream;
    return stream;
}

void printError(const QString& text)
{
    standardOutput().flush();
    QTextStream(stderr) << text << '\n';
}

void printLine(const QString& text)
{
    standardOutput() << text << '\n';
}

namespace {

bool quietRun = false;

} // namespace

void setQuiet(bool quiet)
{
    quietRun = quiet;
}

bool isQuiet()
{
    return quietRun;
}

void printNote(const QString& text)
{
    if (!quietRun)
        printError(text);
}
