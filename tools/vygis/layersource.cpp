#include "layersource.h"

#include "hosttext.h"

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

bool setLayerFilter(TsFeatureLayer& layer, const QString& whereClause, QString* error)
{
    auto* gdalLayer = dynamic_cast<TsGdalFeatureLayer*>(&layer);
    if (!gdalLayer) {
        *error = QStringLiteral("this layer takes no filter");
        return false;
    }
    gdalLayer->SetQueryFilter(TsQueryFilter(tsText(whereClause)));
    std::vector<int> ids;
    if (gdalLayer->Search(gdalLayer->query_filter(), ids))
        return true;
    *error = QStringLiteral("--where \"%1\" cannot be applied: %2").arg(whereClause, gdalLayer->errorString());
    return false;
}
