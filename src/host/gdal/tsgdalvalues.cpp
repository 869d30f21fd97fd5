// How OGR's fields, values and geometries appear as host fields, variants
// and geometries, and back.

#include "tsgdal_p.h"

#include <QDate>
#include <QDateTime>
#include <QTime>

#include <cmath>
#include <limits>

namespace VyObjects {

namespace {

// A floating field that declares no decimals (GeoPackage, GeoJSON) is shown
// with as many as a double holds; the application's number texts drop the
// trailing zeros.
const unsigned UndeclaredPrecision = 15;

unsigned precisionOf(const OGRFieldDefn& field)
{
    if (field.GetType() != OFTReal)
        return 0;
    if (field.GetWidth() == 0 && field.GetPrecision() == 0)
        return UndeclaredPrecision;
    return static_cast<unsigned>(std::max(field.GetPrecision(), 0));
}

// OGR's time zone flag: 0 unknown, 1 local, 100 UTC, 100 + n for n quarter
// hours east. Unknown and local times are taken as UTC, as host dates are.
std::int64_t toMsecsSinceEpoch(int year, int month, int day, int hour, int minute,
                               float second, int zone)
{
    const int wholeSeconds = static_cast<int>(std::floor(second));
    const int msecs = static_cast<int>(std::lround((second - wholeSeconds) * 1000.0f));
    const QDateTime when(QDate(year, month, day), QTime(hour, minute, wholeSeconds), Qt::UTC);
    std::int64_t result = when.addMSecs(msecs).toMSecsSinceEpoch();
    if (zone > 1)
        result -= static_cast<std::int64_t>(zone - 100) * 15 * 60 * 1000;
    return result;
}

TsVariant readDateTime(const OGRFeature& feature, int index)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, zone = 0;
    float second = 0.0f;
    if (!const_cast<OGRFeature&>(feature).GetFieldAsDateTime(index, &year, &month, &day, &hour,
                                                             &minute, &second, &zone))
        return TsVariant::null();
    if (!QDate::isValid(year, month, day))
        return TsVariant::null();
    return TsVariant::fromDateTime(toMsecsSinceEpoch(year, month, day, hour, minute, second, zone));
}

std::vector<TsPoint> verticesOf(const OGRSimpleCurve& curve)
{
    std::vector<TsPoint> vertices;
    vertices.reserve(static_cast<std::size_t>(curve.getNumPoints()));
    for (int i = 0; i < curve.getNumPoints(); ++i)
        vertices.emplace_back(curve.getX(i), curve.getY(i));
    return vertices;
}

// A collection of one part reads as that part; the host has no multi-part shapes.
const OGRGeometry* singlePart(const OGRGeometry* geometry)
{
    const auto* collection = dynamic_cast<const OGRGeometryCollection*>(geometry);
    if (collection && collection->getNumGeometries() == 1)
        return collection->getGeometryRef(0);
    return geometry;
}

OGRLinearRing* ringThrough(const std::vector<TsPoint>& vertices)
{
    auto* ring = new OGRLinearRing;
    for (const TsPoint& vertex : vertices)
        ring->addPoint(vertex.x, vertex.y);
    ring->closeRings();
    return ring;
}

} // namespace

TsLayer::LayerType layerTypeOf(OGRwkbGeometryType type)
{
    const OGRwkbGeometryType flat = wkbFlatten(type);
    if (flat == wkbNone)
        return TsLayer::TableLayer;
    if (flat == wkbPoint)
        return TsLayer::PointLayer;
    if (flat == wkbMultiPoint)
        return TsLayer::MultiPointLayer;
    if (OGR_GT_IsCurve(flat) || flat == wkbMultiLineString || flat == wkbMultiCurve)
        return TsLayer::LineLayer;
    if (OGR_GT_IsSurface(flat) || flat == wkbMultiPolygon || flat == wkbMultiSurface)
        return TsLayer::PolygonLayer;
    return TsLayer::UnknownLayer;
}

TsField::FieldType fieldTypeOf(const OGRFieldDefn& field)
{
    switch (field.GetType()) {
    case OFTInteger:
        return field.GetSubType() == OFSTInt16 || field.GetSubType() == OFSTBoolean
                   ? TsField::SmallIntegerField : TsField::IntegerField;
    case OFTInteger64:
        return TsField::BigIntegerField;
    case OFTReal:
        return field.GetSubType() == OFSTFloat32 ? TsField::SingleField : TsField::DoubleField;
    case OFTDate:
    case OFTDateTime:
        return TsField::DateField;
    case OFTBinary:
        return TsField::BlobField;
    default:
        // Strings, times of day and lists, which read as their text.
        return TsField::StringField;
    }
}

TsRefPtr<TsFields> readFields(OGRFeatureDefn& definition, const QHash<QString, QString>& aliases)
{
    auto fields = TsRefPtr<TsFields>::create();
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *definition.GetFieldDefn(i);
        const QString name = gdalText(field.GetNameRef());
        QString alias = gdalText(field.GetAlternativeNameRef());
        if (alias.isEmpty())
            alias = aliases.value(name);
        fields->AddField(TsRefPtr<TsField>::create(toTsString(name), fieldTypeOf(field), toTsString(alias),
                                                   precisionOf(field)));
    }
    return fields;
}

TsVariant readValue(const OGRFeature& feature, int index, TsField::FieldType type)
{
    if (!feature.IsFieldSetAndNotNull(index))
        return TsVariant::null();
    auto& source = const_cast<OGRFeature&>(feature);
    switch (type) {
    case TsField::SmallIntegerField:
        return TsVariant::fromInt16(static_cast<std::int16_t>(source.GetFieldAsInteger(index)));
    case TsField::IntegerField:
        return TsVariant(static_cast<std::int32_t>(source.GetFieldAsInteger(index)));
    case TsField::BigIntegerField:
        return TsVariant(static_cast<std::int64_t>(source.GetFieldAsInteger64(index)));
    case TsField::SingleField:
        return TsVariant(static_cast<float>(source.GetFieldAsDouble(index)));
    case TsField::DoubleField:
        return TsVariant(source.GetFieldAsDouble(index));
    case TsField::DateField:
        return readDateTime(feature, index);
    case TsField::StringField:
        return TsVariant(TsString(source.GetFieldAsString(index)));
    default:
        return TsVariant();
    }
}

std::vector<TsVariant> readValues(const OGRFeature& feature, const TsFields& fields)
{
    std::vector<TsVariant> values;
    values.reserve(static_cast<std::size_t>(fields.GetFieldCount()));
    for (int i = 0; i < fields.GetFieldCount(); ++i)
        values.push_back(readValue(feature, i, fields.GetField(i)->GetFieldType()));
    return values;
}

void writeValue(OGRFeature& feature, int index, const TsVariant& value)
{
    switch (value.GetType()) {
    case TsVariant::BoolType:
    case TsVariant::Int16Type:
    case TsVariant::Int32Type:
        feature.SetField(index, static_cast<int>(value.GetInt64()));
        return;
    case TsVariant::Int64Type:
        feature.SetField(index, static_cast<GIntBig>(value.GetInt64()));
        return;
    case TsVariant::DoubleType:
    case TsVariant::SingleType:
        feature.SetField(index, value.GetDouble());
        return;
    case TsVariant::StringType:
        feature.SetField(index, value.ToString().toUtf8().c_str());
        return;
    case TsVariant::DateTimeType: {
        const QDateTime when = QDateTime::fromMSecsSinceEpoch(value.GetDateTime(), Qt::UTC);
        const float seconds = static_cast<float>(when.time().second() + when.time().msec() / 1000.0);
        feature.SetField(index, when.date().year(), when.date().month(), when.date().day(),
                         when.time().hour(), when.time().minute(), seconds, 100);
        return;
    }
    default:
        feature.SetFieldNull(index);
        return;
    }
}

namespace {

// Formats with fixed-width fields (a shapefile's) cut a text or a number that
// is longer than the field; the driver at most warns.
bool fitsWidth(const OGRFieldDefn& definition, const TsVariant& value)
{
    const int width = definition.GetWidth();
    if (width <= 0)
        return true;
    switch (definition.GetType()) {
    case OFTInteger:
    case OFTInteger64:
        return QString::number(value.GetInt64()).size() <= width;
    case OFTReal:
        return QString::number(value.GetDouble(), 'f', definition.GetPrecision()).size() <= width;
    case OFTString:
        return static_cast<int>(value.ToString().toUtf8().size()) <= width;
    default:
        return true;
    }
}

} // namespace

bool convertForField(const TsField& field, const OGRFieldDefn& definition, const TsVariant& value,
                     TsVariant& converted)
{
    if (!field.ConvertValue(value, converted))
        return false;
    if (converted.IsNull())
        return true;
    if (!fitsWidth(definition, converted))
        return false;
    if (definition.GetType() == OFTInteger && definition.GetSubType() == OFSTBoolean) {
        const std::int64_t flag = converted.GetInt64();
        return flag == 0 || flag == 1;
    }
    if (definition.GetType() == OFTDate) {
        const std::int64_t msecsPerDay = 86400000;
        const std::int64_t msecs = converted.GetDateTime();
        converted = TsVariant::fromDateTime(msecs - ((msecs % msecsPerDay) + msecsPerDay) % msecsPerDay);
    }
    return true;
}

bool holdsValue(const OGRFeature& feature, int index, TsField::FieldType type, const TsVariant& value)
{
    const TsVariant held = readValue(feature, index, type);
    if (type == TsField::StringField) {
        const auto isBlank = [](const TsVariant& text) { return text.IsNull() || text.ToString().IsEmpty(); };
        if (isBlank(held) && isBlank(value))
            return true;
    }
    return held == value;
}

TsRefPtr<TsGeometry> readGeometry(const OGRGeometry* geometry)
{
    geometry = singlePart(geometry);
    if (!geometry || geometry->IsEmpty())
        return nullptr;
    if (const auto* point = dynamic_cast<const OGRPoint*>(geometry)) {
        if (point->Is3D())
            return TsRefPtr<TsGeometry>(new TsGeoPoint(point->getX(), point->getY(), point->getZ()));
        return TsRefPtr<TsGeometry>(new TsGeoPoint(point->getX(), point->getY()));
    }
    if (const auto* line = dynamic_cast<const OGRSimpleCurve*>(geometry))
        return TsRefPtr<TsGeometry>(new TsGeoPath(TsGeometry::PolylineGeometry, verticesOf(*line)));
    if (const auto* polygon = dynamic_cast<const OGRPolygon*>(geometry)) {
        if (const OGRLinearRing* ring = polygon->getExteriorRing())
            return TsRefPtr<TsGeometry>(new TsGeoPath(TsGeometry::PolygonGeometry, verticesOf(*ring)));
    }
    return nullptr;
}

std::unique_ptr<OGRGeometry> makeGeometry(const TsGeometry& geometry, OGRwkbGeometryType layerType)
{
    const OGRwkbGeometryType flat = wkbFlatten(layerType);
    const bool anyType = flat == wkbUnknown;
    std::unique_ptr<OGRGeometry> made;
    if (const auto* point = dynamic_cast<const TsGeoPoint*>(&geometry)) {
        if (!anyType && flat != wkbPoint)
            return nullptr;
        bool hasZ = false;
        point->HasZ(hasZ);
        double x = 0.0, y = 0.0, z = 0.0;
        point->QueryCoordsXYZ(&x, &y, &z);
        made = hasZ || wkbHasZ(layerType) ? std::make_unique<OGRPoint>(x, y, z)
                                          : std::make_unique<OGRPoint>(x, y);
    } else if (const auto* path = dynamic_cast<const TsGeoPath*>(&geometry)) {
        if (path->GetGeometryType() == TsGeometry::PolygonGeometry) {
            if (!anyType && flat != wkbPolygon && flat != wkbMultiPolygon)
                return nullptr;
            auto polygon = std::make_unique<OGRPolygon>();
            polygon->addRingDirectly(ringThrough(path->GetVertices()));
            made = std::move(polygon);
        } else {
            if (!anyType && flat != wkbLineString && flat != wkbMultiLineString)
                return nullptr;
            auto line = std::make_unique<OGRLineString>();
            for (const TsPoint& vertex : path->GetVertices())
                line->addPoint(vertex.x, vertex.y);
            made = std::move(line);
        }
    }
    if (made && !anyType && OGR_GT_IsSubClassOf(flat, wkbGeometryCollection))
        made.reset(OGRGeometryFactory::forceTo(made.release(), flat));
    if (made && wkbHasZ(layerType))
        made->set3D(TRUE);
    return made;
}

TsRefPtr<TsFeature> makeFeature(const OGRFeature& feature, const TsRefPtr<TsFields>& fields)
{
    const GIntBig fid = feature.GetFID();
    const int id = fid >= 0 && fid <= std::numeric_limits<int>::max() ? static_cast<int>(fid) : -1;
    return TsRefPtr<TsFeature>::create(id, fields, readValues(feature, *fields),
                                       readGeometry(feature.GetGeometryRef()));
}

} // namespace VyObjects
