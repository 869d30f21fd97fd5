#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>

// Exit statuses of every subcommand.
enum ExitStatus { ExitSuccess = 0, ExitFailure = 1, ExitUsage = 2 };

// A subcommand: its name, a one-line summary, its usage text and what it runs.
struct Command
{
    QString name;
    QString summary;
    QString usage;
    std::function<int(const QStringList& arguments)> run;
};

// The commands the tool offers, in the order the help lists them.
const QList<Command>& commands();

// Standard output as UTF-8 through one buffer for the whole run; flushed before a
// message goes to standard error and when the tool ends.
QTextStream& standardOutput();
// Writes a line to standard error.
void printError(const QString& text);
// Writes a line to standard output.
void printLine(const QString& text);

// --quiet, given anywhere before "--": no progress and no notes, only the output a
// command exists for and its errors.
void setQuiet(bool quiet);
bool isQuiet();
// Writes a line to standard error that tells something worth knowing but is no
// failure, such as lines passed over or a file left as it was; nothing when quiet.
void printNote(const QString& text);

// The subcommands, one file each.
Command dumpCommand();
Command createCommand();
Command clearCommand();
Command demoCommand();
Command coordsCommand();
Command rulesCommand();
Command pairsCommand();
Command templateCommand();
Command errorsCommand();
Command topologyCommand();
Command dxfCodepageCommand();
Command exportCommand();
Command exportTableCommand();
Command joinCommand();
Command elevationCommand();
Command layerNameCommand();
