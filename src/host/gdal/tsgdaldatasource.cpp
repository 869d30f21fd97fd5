#include "tsgdal_p.h"

namespace VyObjects {

namespace {

QString driverForSuffix(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("gpkg"))
        return QStringLiteral("GPKG");
    if (suffix == QLatin1String("shp"))
        return QStringLiteral("ESRI Shapefile");
    if (suffix == QLatin1String("csv"))
        return QStringLiteral("CSV");
    if (suffix == QLatin1String("geojson") || suffix == QLatin1String("json"))
        return QStringLiteral("GeoJSON");
    return QString();
}

// Why GDAL opened nothing: a format it does not know, or one it knows but
// cannot open as asked.
QString openFailure(const QString& path, TsGdalDataSource::OpenMode mode, const TsGdalErrorTrap& trap)
{
    const QByteArray name = path.toUtf8();
    GDALDriverH driver = GDALIdentifyDriverEx(name.constData(), GDAL_OF_VECTOR | GDAL_OF_RASTER,
                                              nullptr, nullptr);
    if (!driver)
        return path + QStringLiteral(": not a format GDAL reads");
    const QString format = gdalText(GDALGetDriverShortName(driver));
    if (mode == TsGdalDataSource::Update)
        return path + QStringLiteral(": the %1 driver cannot open it for update (a read-only file or format)")
                          .arg(format) + trap.reason();
    return path + QStringLiteral(": the %1 driver cannot open it").arg(format) + trap.reason();
}

bool isCsv(const QString& path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0;
}

// Text files of points open as point layers when their columns are named
// like coordinates (the columns CSV point layers are written with among
// them), and as tables otherwise. Read, the coordinate columns stay fields
// as well: they are the file's data, which an export of the layer or its
// table must show whole. Opened for update they stay the points' alone: the
// driver writes those columns from the points, so a change made to them as
// fields would be reported as done and then lost.
CPLStringList openOptionsFor(const QString& path, TsGdalDataSource::OpenMode mode)
{
    CPLStringList options;
    if (isCsv(path)) {
        options.SetNameValue("X_POSSIBLE_NAMES", "X,LON,LONG,LONGITUDE,EASTING");
        options.SetNameValue("Y_POSSIBLE_NAMES", "Y,LAT,LATITUDE,NORTHING");
        options.SetNameValue("Z_POSSIBLE_NAMES", "Z,HEIGHT,ELEVATION");
        options.SetNameValue("KEEP_GEOM_COLUMNS", mode == TsGdalDataSource::ReadOnly ? "YES" : "NO");
    }
    return options;
}

// A CSV file of regularly spaced points would otherwise open as a grid.
unsigned openFlagsFor(const QString& path, TsGdalDataSource::OpenMode mode)
{
    const unsigned kinds = isCsv(path) ? GDAL_OF_VECTOR : GDAL_OF_VECTOR | GDAL_OF_RASTER;
    return kinds | (mode == TsGdalDataSource::Update ? GDAL_OF_UPDATE : GDAL_OF_READONLY);
}

OGRwkbGeometryType geometryTypeFor(TsLayer::LayerType type)
{
    switch (type) {
    case TsLayer::PointLayer: return wkbPoint25D;
    case TsLayer::MultiPointLayer: return wkbMultiPoint25D;
    case TsLayer::LineLayer: return wkbLineString;
    case TsLayer::PolygonLayer: return wkbPolygon;
    case TsLayer::TableLayer: return wkbNone;
    default: return wkbUnknown;
    }
}

bool driverHasFieldType(GDALDriver& driver, const char* type)
{
    const QString types = gdalText(driver.GetMetadataItem(GDAL_DMD_CREATIONFIELDDATATYPES));
    return types.split(QLatin1Char(' ')).contains(QLatin1String(type));
}

void describeField(const TsGdalFieldDefinition& field, GDALDriver& driver, OGRFieldDefn& definition)
{
    switch (field.type) {
    case TsField::SmallIntegerField:
        definition.SetType(OFTInteger);
        definition.SetSubType(OFSTInt16);
        break;
    case TsField::IntegerField:
        definition.SetType(OFTInteger);
        break;
    case TsField::BigIntegerField:
        definition.SetType(OFTInteger64);
        break;
    case TsField::SingleField:
    case TsField::DoubleField:
        definition.SetType(OFTReal);
        if (field.type == TsField::SingleField)
            definition.SetSubType(OFSTFloat32);
        if (field.precision > 0) {
            definition.SetWidth(24);
            definition.SetPrecision(static_cast<int>(std::min(field.precision, 15u)));
        }
        break;
    case TsField::DateField:
        definition.SetType(driverHasFieldType(driver, "DateTime") ? OFTDateTime : OFTDate);
        break;
    case TsField::BlobField:
        definition.SetType(OFTBinary);
        break;
    default:
        break;
    }
    if (!field.aliasName.isEmpty())
        definition.SetAlternativeName(field.aliasName.toUtf8().constData());
}

CPLStringList layerOptionsFor(const QString& driverName, TsLayer::LayerType type,
                              TsGdalDataSource::SpatialIndex index)
{
    CPLStringList options;
    if (driverName == QLatin1String("CSV") && type != TsLayer::TableLayer)
        options.SetNameValue("GEOMETRY", type == TsLayer::PointLayer ? "AS_XYZ" : "AS_WKT");
    if (driverName == QLatin1String("GPKG") && index == TsGdalDataSource::WithoutSpatialIndex)
        options.SetNameValue("SPATIAL_INDEX", "NO");
    return options;
}

} // namespace

// --- Opening and creating -----------------------------------------------------

TsGdalDataSource::TsGdalDataSource(GDALDataset* dataset, const QString& path, OpenMode mode)
    : m_dataset(dataset), m_path(path), m_mode(mode), m_state(std::make_unique<TsGdalLayerState>())
{
}

TsGdalDataSource::~TsGdalDataSource()
{
    TsGdalErrorTrap trap;
    GDALClose(m_dataset);
}

TsRefPtr<TsGdalDataSource> TsGdalDataSource::open(const QString& path, OpenMode mode, QString* error)
{
    registerGdalDrivers();
    if (path.isEmpty()) {
        setError(error, QStringLiteral("no data source was named"));
        return nullptr;
    }
    if (!QFileInfo::exists(path)) {
        setError(error, path + QStringLiteral(": no such file"));
        return nullptr;
    }
    TsGdalErrorTrap trap;
    const CPLStringList options = openOptionsFor(path, mode);
    auto* dataset = static_cast<GDALDataset*>(GDALOpenEx(
        path.toUtf8().constData(), openFlagsFor(path, mode), nullptr, options.List(), nullptr));
    if (!dataset) {
        setError(error, openFailure(path, mode, trap));
        return nullptr;
    }
    return TsRefPtr<TsGdalDataSource>(new TsGdalDataSource(dataset, path, mode));
}

TsRefPtr<TsGdalDataSource> TsGdalDataSource::create(const QString& path, QString* error,
                                                    const QString& driverName)
{
    registerGdalDrivers();
    const QString name = driverName.isEmpty() ? driverForSuffix(path) : driverName;
    if (name.isEmpty()) {
        setError(error, path + QStringLiteral(": no format goes with this suffix; name a GDAL driver"));
        return nullptr;
    }
    if (QFileInfo::exists(path)) {
        setError(error, path + QStringLiteral(": a file already stands there"));
        return nullptr;
    }
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(name.toUtf8().constData());
    if (!driver || !driver->GetMetadataItem(GDAL_DCAP_CREATE) || !driver->GetMetadataItem(GDAL_DCAP_VECTOR)) {
        setError(error, path + QStringLiteral(": GDAL has no driver \"%1\" that creates vector data").arg(name));
        return nullptr;
    }
    TsGdalErrorTrap trap;
    GDALDataset* dataset = driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!dataset) {
        setError(error, path + QStringLiteral(": the data source could not be created") + trap.reason());
        return nullptr;
    }
    return TsRefPtr<TsGdalDataSource>(new TsGdalDataSource(dataset, path, Update));
}

// --- What the source holds ------------------------------------------------------

QString TsGdalDataSource::path() const
{
    return m_path;
}

QString TsGdalDataSource::driverName() const
{
    GDALDriver* driver = m_dataset->GetDriver();
    return driver ? gdalText(driver->GetDescription()) : QString();
}

QStringList TsGdalDataSource::layerNames() const
{
    QStringList names;
    for (int i = 0; i < m_dataset->GetLayerCount(); ++i)
        names.append(gdalText(m_dataset->GetLayer(i)->GetName()));
    return names;
}

int TsGdalDataSource::rasterBandCount() const
{
    return m_dataset->GetRasterCount();
}

namespace {

// The layer called name (the first when name is empty), or null with *error.
OGRLayer* findLayer(const TsGdalDataSource& source, const QString& name, QString* error)
{
    GDALDataset& dataset = *source.dataset();
    if (dataset.GetLayerCount() == 0) {
        setError(error, source.path() + QStringLiteral(": holds no vector layers"));
        return nullptr;
    }
    TsGdalErrorTrap trap;
    OGRLayer* layer = name.isEmpty() ? dataset.GetLayer(0) : dataset.GetLayerByName(name.toUtf8().constData());
    if (!layer)
        setError(error, source.path() + QStringLiteral(": no layer \"%1\" (it has: %2)")
                            .arg(name, source.layerNames().join(QStringLiteral(", "))));
    return layer;
}

QString layerPlace(const TsGdalDataSource& source, OGRLayer& layer)
{
    return QStringLiteral("%1, layer \"%2\"").arg(source.path(), gdalText(layer.GetName()));
}

} // namespace

TsRefPtr<TsFeatureLayer> TsGdalDataSource::featureLayer(const QString& name, QString* error) const
{
    OGRLayer* layer = findLayer(*this, name, error);
    if (!layer)
        return nullptr;
    if (layer->GetGeomType() == wkbNone) {
        setError(error, layerPlace(*this, *layer)
                            + QStringLiteral(": has no geometry, so it opens as a table, not a feature layer"));
        return nullptr;
    }
    return makeGdalFeatureLayer(TsRefPtr<TsGdalDataSource>(const_cast<TsGdalDataSource*>(this)), layer);
}

TsRefPtr<TsTable> TsGdalDataSource::table(const QString& name, QString* error) const
{
    // Any layer's attributes make a table; the shapes of a spatial one are left out.
    OGRLayer* layer = findLayer(*this, name, error);
    if (!layer)
        return nullptr;
    return makeGdalTable(TsRefPtr<TsGdalDataSource>(const_cast<TsGdalDataSource*>(this)), layer);
}

TsRefPtr<TsRasterProps> TsGdalDataSource::raster(int band, QString* error) const
{
    return makeGdalRaster(TsRefPtr<TsGdalDataSource>(const_cast<TsGdalDataSource*>(this)), band, error);
}

TsRefPtr<TsMap> TsGdalDataSource::map() const
{
    const TsRefPtr<TsGdalDataSource> self(const_cast<TsGdalDataSource*>(this));
    auto layers = TsRefPtr<TsMap>::create();
    for (int i = 0; i < m_dataset->GetLayerCount(); ++i)
        layers->AddLayer(makeGdalFeatureLayer(self, m_dataset->GetLayer(i)));
    if (m_dataset->GetRasterCount() > 0)
        layers->AddLayer(TsRefPtr<TsLayer>::create(toTsString(QFileInfo(m_path).completeBaseName()),
                                                   TsLayer::RasterLayer));
    return layers;
}

// --- Writing ------------------------------------------------------------------

bool TsGdalDataSource::createLayer(const QString& name, TsLayer::LayerType type,
                                   const std::vector<TsGdalFieldDefinition>& fields, QString* error,
                                   SpatialIndex index)
{
    if (m_mode == ReadOnly) {
        setError(error, m_path + QStringLiteral(": opened read-only, so no layer can be added"));
        return false;
    }
    TsGdalErrorTrap trap;
    if (m_dataset->GetLayerByName(name.toUtf8().constData())) {
        setError(error, m_path + QStringLiteral(": already has a layer \"%1\"").arg(name));
        return false;
    }
    const CPLStringList options = layerOptionsFor(driverName(), type, index);
    OGRLayer* layer = m_dataset->CreateLayer(name.toUtf8().constData(), nullptr, geometryTypeFor(type),
                                             const_cast<char**>(options.List()));
    if (!layer) {
        setError(error, m_path + QStringLiteral(": the layer \"%1\" could not be created").arg(name)
                            + trap.reason());
        return false;
    }
    GDALDriver& driver = *m_dataset->GetDriver();
    for (const TsGdalFieldDefinition& field : fields) {
        if (field.type == TsField::GeometryField)
            continue;
        OGRFieldDefn definition(field.name.toUtf8().constData(), OFTString);
        describeField(field, driver, definition);
        if (layer->CreateField(&definition, TRUE) != OGRERR_NONE) {
            setError(error, m_path + QStringLiteral(": the field \"%1\" could not be added to \"%2\"")
                                .arg(field.name, name) + trap.reason());
            return false;
        }
    }
    QString reason;
    if (driverName() == QLatin1String("GPKG")
        && !writeGeoPackageAliases(*m_dataset, gdalText(layer->GetName()), fields, &reason)) {
        setError(error, m_path + QStringLiteral(": ") + reason);
        return false;
    }
    m_state->interruptAllReading();
    return true;
}

TsRefPtr<TsGdalFeatureWriter> TsGdalDataSource::featureWriter(const QString& layerName, QString* error)
{
    OGRLayer* layer = findLayer(*this, layerName, error);
    if (!layer)
        return nullptr;
    return makeGdalFeatureWriter(TsRefPtr<TsGdalDataSource>(this), layer, error);
}

} // namespace VyObjects
