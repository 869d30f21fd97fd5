#include "commandruns.h"
#include "layerentry.h"

#include <QString>

#include <cstring>
#include <type_traits>

// Named as layerCommandEntryName says: the executable finds it by that name.
extern "C" Q_DECL_EXPORT int vygisRunLayerCommand(const char* name, const QStringList* arguments);

static_assert(std::is_same_v<decltype(&vygisRunLayerCommand), LayerCommandEntry>,
              "the executable calls the entry point through LayerCommandEntry");

namespace {

struct LayerCommandRun
{
    const char* name;
    int (*run)(const QStringList& arguments);
};

constexpr LayerCommandRun layerCommandRuns[] = {
    {"demo", runDemo},           {"export", runExport},       {"export-table", runExportTable},
    {"join", runJoin},           {"elevation", runElevation}, {"layer-name", runLayerName}};

} // namespace

int vygisRunLayerCommand(const char* name, const QStringList* arguments)
{
    for (const LayerCommandRun& command : layerCommandRuns)
        if (std::strcmp(command.name, name) == 0)
            return command.run(*arguments);
    return UnknownLayerCommand;
}
