#include "layersource.h"

#include "tsqtext.h"

#include <QFileInfo>

using namespace VyObjects;

LayerAddress LayerAddress::parse(const QString& text)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    // A colon at position 1 is a drive letter, with nothing but a path after it.
    if (QFileInfo::exists(text) || colon <= 1)
        return {text, QString()};
    return {text.left(colon), text.mid(colon + 1)};
}

TsRefPtr<TsFeatureLayer> openFeatureLayer(const QString& address, TsGdalDataSource::OpenMode mode,
                                          QString* error)
{
    const LayerAddress where = LayerAddress::parse(address);
    const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::open(where.path, mode, error);
    return source ? source->featureLayer(where.layer, error) : TsRefPtr<TsFeatureLayer>();
}

TsRefPtr<TsTable> openTable(const QString& address, QString* error)
{
    const LayerAddress where = LayerAddress::parse(address);
    const TsRefPtr<TsGdalDataSource> source
        = TsGdalDataSource::open(where.path, TsGdalDataSource::ReadOnly, error);
    return source ? source->table(where.layer, error) : TsRefPtr<TsTable>();
}

namespace {

// A clause may be generated and run to many kilobytes; messages quote its start.
QString quotedForMessage(const QString& text)
{
    const int shown = 80;
    return text.size() <= shown ? text : text.left(shown) + QStringLiteral("... (%1 characters)").arg(text.size());
}

} // namespace

bool setLayerFilter(TsFeatureLayer& layer, const QString& whereClause, QString* error)
{
    auto* gdalLayer = dynamic_cast<TsGdalFeatureLayer*>(&layer);
    if (!gdalLayer) {
        *error = QStringLiteral("this layer takes no filter");
        return false;
    }
    gdalLayer->SetQueryFilter(TsQueryFilter(toTsString(whereClause)));
    std::vector<int> ids;
    if (gdalLayer->Search(gdalLayer->query_filter(), ids))
        return true;
    QString reason = gdalLayer->errorString();
    reason.replace(whereClause, quotedForMessage(whereClause));
    *error = QStringLiteral("--where \"%1\" cannot be applied: %2").arg(quotedForMessage(whereClause), reason);
    return false;
}
