#pragma once

#include <QString>
#include <QStringList>

// Runs a command that reads or writes layers (export, join, ...) with the arguments
// after its name. Those commands, and GDAL with the hundred libraries it brings, are in
// a module of their own, loaded here and only here: resolving GDAL alone takes the
// dynamic loader longer than most other commands take to run. When the module cannot be
// loaded the command fails with a message naming the module's file and the reason.
int runLayerCommand(const QString& name, const QStringList& arguments);
