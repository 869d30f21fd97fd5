#pragma once

#include <QStringList>

// What the layer commands do, each given the arguments after its name. Their names,
// summaries and usage texts are the executable's (layercommands.cpp), so that the help
// needs no GDAL.
int runExport(const QStringList& arguments);
int runExportTable(const QStringList& arguments);
int runJoin(const QStringList& arguments);
int runElevation(const QStringList& arguments);
int runLayerName(const QStringList& arguments);
int runDemo(const QStringList& arguments);
