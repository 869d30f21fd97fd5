#include "arguments.h"
#include "command.h"
#include "commandruns.h"
#include "layersource.h"
#include "tsqtext.h"
#include "vygisutil.h"

using namespace VyObjects;

namespace {

const QString commandName = QStringLiteral("layer-name");

} // namespace

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
