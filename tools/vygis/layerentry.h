#pragma once

#include <QStringList>

// The one function the layer module exports, found by its name once the module is
// loaded: runs the layer command called name (UTF-8) with the arguments after the name
// and gives its exit status, or UnknownLayerCommand for a name the module does not know.
// A C name and a plain function pointer, so that no C++ name mangling has to agree
// between the two files.
using LayerCommandEntry = int (*)(const char* name, const QStringList* arguments);
constexpr const char* layerCommandEntryName = "vygisRunLayerCommand";
constexpr int UnknownLayerCommand = -1;
