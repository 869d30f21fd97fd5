#include "tsgdal_p.h"

#include <limits>

namespace VyObjects {

class TsGdalFeatureWriter::Private
{
public:
    Private(const TsRefPtr<TsGdalDataSource>& dataSource, OGRLayer* ogrLayer)
        : source(dataSource),
          layer(ogrLayer),
          fields(fieldsOfLayer(*dataSource, *ogrLayer)),
          transaction(*dataSource->dataset()),
          feature(OGRFeature::CreateFeature(ogrLayer->GetLayerDefn()))
    {
    }

    ~Private() { close(false); }

    bool fail(const QString& message)
    {
        error = QStringLiteral("%1, layer \"%2\": %3").arg(source->path(), gdalText(layer->GetName()), message);
        return false;
    }

    // Every field gets a value, so the one feature is reused for every row.
    // Values of the field's own type, as bulk loads hand them, need no
    // conversion.
    void setValues(const std::vector<TsVariant>& values)
    {
        for (int i = 0; i < fields->GetFieldCount(); ++i) {
            const auto position = static_cast<std::size_t>(i);
            if (position >= values.size()) {
                feature->SetFieldNull(i);
                continue;
            }
            const TsVariant& value = values[position];
            const TsField& field = *fields->GetField(i);
            if (hasTypeOf(field, value)) {
                writeValue(*feature, i, value);
                continue;
            }
            TsVariant converted;
            field.ConvertValue(value, converted);
            writeValue(*feature, i, converted);
        }
    }

    static bool hasTypeOf(const TsField& field, const TsVariant& value)
    {
        switch (field.GetFieldType()) {
        case TsField::IntegerField: return value.GetType() == TsVariant::Int32Type;
        case TsField::BigIntegerField: return value.GetType() == TsVariant::Int64Type;
        case TsField::DoubleField: return value.GetType() == TsVariant::DoubleType;
        case TsField::StringField: return value.GetType() == TsVariant::StringType;
        case TsField::DateField: return value.GetType() == TsVariant::DateTimeType;
        default: return false;
        }
    }

    bool setGeometry(const TsGeometry* geometry)
    {
        if (!geometry) {
            feature->SetGeometryDirectly(nullptr);
            return true;
        }
        std::unique_ptr<OGRGeometry> made = makeGeometry(*geometry, layer->GetGeomType());
        if (!made)
            return fail(QStringLiteral("the shape does not fit a layer of %1 geometries")
                            .arg(gdalText(OGRGeometryTypeToName(layer->GetGeomType()))));
        feature->SetGeometryDirectly(made.release());
        return true;
    }

    void close(bool committed)
    {
        if (!open)
            return;
        open = false;
        if (!committed)
            transaction.rollback();
        source->layerState().setOperationOwner(nullptr, nullptr);
        source->layerState().interruptAllReading();
    }

    TsRefPtr<TsGdalDataSource> source;
    OGRLayer* layer;
    TsRefPtr<TsFields> fields;
    TsGdalTransaction transaction;
    OGRFeatureUniquePtr feature;
    QString error;
    bool open = false;
};

TsRefPtr<TsGdalFeatureWriter> makeGdalFeatureWriter(const TsRefPtr<TsGdalDataSource>& source,
                                                    OGRLayer* layer, QString* error)
{
    const QString place = QStringLiteral("%1, layer \"%2\": ").arg(source->path(), gdalText(layer->GetName()));
    if (source->openMode() == TsGdalDataSource::ReadOnly) {
        setError(error, place + QStringLiteral("the data source is opened read-only"));
        return nullptr;
    }
    if (!layer->TestCapability(OLCSequentialWrite)) {
        setError(error, place + QStringLiteral("the %1 driver cannot add features to it").arg(source->driverName()));
        return nullptr;
    }
    TsGdalLayerState& state = source->layerState();
    if (state.operationOwner()) {
        setError(error, place + QStringLiteral("another edit operation is open on the data source"));
        return nullptr;
    }
    auto d = std::make_unique<TsGdalFeatureWriter::Private>(source, layer);
    QString reason;
    if (!d->transaction.start(&reason)) {
        setError(error, place + reason);
        return nullptr;
    }
    d->open = true;
    state.setOperationOwner(d.get(), nullptr);
    state.interruptAllReading();
    return TsRefPtr<TsGdalFeatureWriter>(new TsGdalFeatureWriter(std::move(d)));
}

TsGdalFeatureWriter::TsGdalFeatureWriter(std::unique_ptr<Private> data)
    : d(std::move(data))
{
}

TsGdalFeatureWriter::~TsGdalFeatureWriter() = default;

int TsGdalFeatureWriter::addFeature(const std::vector<TsVariant>& values, const TsRefPtr<TsGeometry>& geometry)
{
    const int failed = -1;
    if (!d->open) {
        d->fail(QStringLiteral("the writer has been committed"));
        return failed;
    }
    if (values.size() > static_cast<std::size_t>(d->fields->GetFieldCount())) {
        d->fail(QStringLiteral("%1 values for %2 fields").arg(values.size()).arg(d->fields->GetFieldCount()));
        return failed;
    }
    TsGdalErrorTrap trap;
    d->setValues(values);
    if (!d->setGeometry(geometry.get()))
        return failed;
    d->feature->SetFID(OGRNullFID);
    if (d->layer->CreateFeature(d->feature.get()) != OGRERR_NONE) {
        d->fail(QStringLiteral("the feature could not be added") + trap.reason());
        return failed;
    }
    // CSV and GeoJSON number their features only when they are read.
    const GIntBig fid = d->feature->GetFID();
    return fid >= 0 && fid <= std::numeric_limits<int>::max() ? static_cast<int>(fid) : 0;
}

bool TsGdalFeatureWriter::commit(QString* error)
{
    if (!d->open) {
        d->fail(QStringLiteral("the writer has been committed"));
        setError(error, d->error);
        return false;
    }
    QString reason;
    const bool committed = d->transaction.commit(&reason);
    d->close(committed);
    if (!committed) {
        d->fail(reason);
        setError(error, d->error);
    }
    return committed;
}

QString TsGdalFeatureWriter::errorString() const
{
    return d->error;
}

} // namespace VyObjects
