#include "arguments.h"
#include "command.h"
#include "layersource.h"
#include "tsqtext.h"
#include "vygisutil.h"

using namespace VyObjects;

namespace {

const QString commandName = QStringLiteral("layer-name");

int runLayerName(const QStringList& arguments)
{
    Arguments parsed;
    if (!parsed.parse(commandName, arguments, {{}, {}, {}, 2, 2}))
        return ExitUsage;
    if (parsed.positional(1).trimmed().isEmpty())
        return usageError(commandName, QStringLiteral("NAME must not be empty"));
    QString error;
    const TsRefPtr<TsGdalDataSource> source
        = TsGdalDataSource::open(parsed.positional(0), TsGdalDataSource::ReadOnly, &error);
    if (!source)
        return failure(commandName, error);
    const TsRefPtr<TsMap> map = source->map();
    const auto layer = TsRefPtr<TsLayer>::create(toTsString(parsed.positional(1)), TsLayer::UnknownLayer);
    VyUniversalFunction::setLayerName(map.get(), layer);
    printLine(toQString(layer->GetLayerName()));
    return ExitSuccess;
}

} // namespace

Command layerNameCommand()
{
    Command command;
    command.name = commandName;
    command.summary = QStringLiteral("a unique name for a layer added to a data source's map");
    command.usage = QStringLiteral(
        "Usage: vygis layer-name SOURCE NAME\n\n"
        "Prints the name a layer called NAME gets when it is added to a map of the layers\n"
        "of the data source SOURCE: NAME itself when no layer is called so (ignoring\n"
        "case), otherwise NAME-n with n one above the highest number in use (roads,\n"
        "roads-1, roads-2, ...). Exit status 1 when SOURCE cannot be opened.");
    command.run = runLayerName;
    return command;
}
