#include "tsgdal_p.h"

namespace VyObjects {

// Holds its layer, so a buffer kept past the layer's other references still
// edits a live object; the layer holds no buffer, so nothing cycles.
class TsGdalEditBuffer : public TsLayerEditBuffer
{
public:
    explicit TsGdalEditBuffer(TsGdalFeatureLayer* layer) : m_layer(layer) {}

    bool ChangeAttribute(const int& featureId, const TsString& field, const TsVariant& value,
                         bool strict) override
    {
        return m_layer->d->changeAttribute(featureId, field, value, strict);
    }

private:
    TsRefPtr<TsGdalFeatureLayer> m_layer;
};

TsRefPtr<TsGdalFeatureLayer> makeGdalFeatureLayer(const TsRefPtr<TsGdalDataSource>& source,
                                                  OGRLayer* layer)
{
    const TsRefPtr<TsFields> fields = fieldsOfLayer(*source, *layer);
    return TsRefPtr<TsGdalFeatureLayer>(new TsGdalFeatureLayer(
        tsText(layer->GetName()), layerTypeOf(layer->GetGeomType()),
        std::make_unique<TsGdalFeatureLayer::Private>(source, layer, fields)));
}

// --- The layer's state --------------------------------------------------------

TsGdalFeatureLayer::Private::Private(const TsRefPtr<TsGdalDataSource>& dataSource, OGRLayer* ogrLayer,
                                     const TsRefPtr<TsFields>& layerFields)
    : source(dataSource), layer(ogrLayer), fields(layerFields)
{
}

TsGdalFeatureLayer::Private::~Private()
{
    abort();
}

QString TsGdalFeatureLayer::Private::where() const
{
    return QStringLiteral("%1, layer \"%2\"").arg(source->path(), qText(layer->GetName()));
}

bool TsGdalFeatureLayer::Private::fail(const QString& message)
{
    error = where() + QStringLiteral(": ") + message;
    return false;
}

bool TsGdalFeatureLayer::Private::prepare(const TsQueryFilter& query, TsGdalFilter& prepared)
{
    QString reason;
    if (prepared.prepare(query, *fields, *layer->GetLayerDefn(), TsGdalFilter::textComparisonOf(*source),
                         &reason))
        return true;
    return fail(reason);
}

// --- Edit operations ----------------------------------------------------------

bool TsGdalFeatureLayer::Private::start()
{
    if (m_transaction)
        return fail(QStringLiteral("an edit operation is already open"));
    if (source->openMode() == TsGdalDataSource::ReadOnly)
        return fail(QStringLiteral("the data source is opened read-only"));
    if (!layer->TestCapability(OLCRandomWrite))
        return fail(QStringLiteral("the %1 driver cannot change features of this layer")
                        .arg(source->driverName()));
    TsGdalLayerState& state = source->layerState();
    if (state.operationOwner())
        return fail(QStringLiteral("another edit operation is open on the data source"));
    auto transaction = std::make_unique<TsGdalTransaction>(*source->dataset());
    QString reason;
    if (!transaction->start(&reason))
        return fail(reason);
    // Starting and ending transactions may end every statement reading the source.
    state.interruptAllReading();
    state.setOperationOwner(this, [this] { writePending(); });
    m_transaction = std::move(transaction);
    m_writeFailed = false;
    return true;
}

// An operation in which a write failed cannot land whole, so it lands not at all.
bool TsGdalFeatureLayer::Private::commit()
{
    if (!m_transaction)
        return fail(QStringLiteral("no edit operation is open"));
    writePending();
    if (m_writeFailed) {
        const QString reason = m_writeError;
        undo();
        close();
        return fail(QStringLiteral("the edit operation was undone because a change failed: ") + reason);
    }
    QString reason;
    const bool committed = m_transaction->commit(&reason);
    if (!committed)
        undo();
    close();
    return committed || fail(reason);
}

bool TsGdalFeatureLayer::Private::abort()
{
    if (!m_transaction)
        return false;
    undo();
    close();
    return true;
}

void TsGdalFeatureLayer::Private::undo()
{
    TsGdalErrorTrap trap;
    m_editing.reset();
    m_pending = false;
    m_transaction->rollback();
    int lost = 0;
    for (auto& original : m_originals) {
        if (layer->SetFeature(original.second.get()) != OGRERR_NONE)
            ++lost;
    }
    if (!m_originals.empty())
        source->dataset()->FlushCache(false);
    if (lost > 0)
        fail(QStringLiteral("%1 changed features could not be set back").arg(lost) + trap.reason());
}

void TsGdalFeatureLayer::Private::close()
{
    m_editing.reset();
    m_pending = false;
    m_originals.clear();
    m_transaction.reset();
    source->layerState().setOperationOwner(nullptr, nullptr);
    source->layerState().interruptAllReading();
}

bool TsGdalFeatureLayer::Private::changeAttribute(int featureId, const TsString& field,
                                                  const TsVariant& value, bool strict)
{
    if (!m_transaction)
        return fail(QStringLiteral("no edit operation is open"));
    const int index = fields->FindFieldIndex(field);
    if (index < 0)
        return fail(QStringLiteral("no field \"%1\"").arg(qText(field)));
    TsVariant converted;
    if (!fields->GetField(index)->ConvertValue(value, converted) && strict)
        return fail(QStringLiteral("\"%1\" does not fit the field \"%2\"")
                        .arg(qText(value.ToString()), qText(field)));
    OGRFeature* feature = featureToEdit(featureId);
    if (!feature)
        return fail(QStringLiteral("no feature %1").arg(featureId));
    writeValue(*feature, index, converted);
    m_pending = true;
    return true;
}

void TsGdalFeatureLayer::Private::keepForEditing(OGRFeatureUniquePtr feature)
{
    if (m_transaction && !m_pending)
        m_editing = std::move(feature);
}

OGRFeature* TsGdalFeatureLayer::Private::featureToEdit(int featureId)
{
    if (!m_editing || m_editing->GetFID() != featureId) {
        writePending();
        TsGdalErrorTrap trap;
        m_editing.reset(layer->GetFeature(featureId));
        if (!layer->TestCapability(OLCRandomRead))
            source->layerState().interruptReading(layer);
    }
    if (m_editing && !m_transaction->isNative() && !m_originals.count(featureId))
        m_originals.emplace(featureId, OGRFeatureUniquePtr(m_editing->Clone()));
    return m_editing.get();
}

void TsGdalFeatureLayer::Private::writePending()
{
    if (!m_pending || !m_editing)
        return;
    m_pending = false;
    TsGdalErrorTrap trap;
    const OGRErr written = layer->SetFeature(m_editing.get());
    if (!layer->TestCapability(OLCRandomRead))
        source->layerState().interruptReading(layer);
    if (written == OGRERR_NONE)
        return;
    m_editing.reset();
    m_writeFailed = true;
    m_writeError = trap.lastError().isEmpty() ? QStringLiteral("the driver refused the change")
                                              : trap.lastError();
    fail(m_writeError);
}

// --- The public layer ---------------------------------------------------------

TsGdalFeatureLayer::TsGdalFeatureLayer(const TsString& name, LayerType type, std::unique_ptr<Private> data)
    : TsFeatureLayer(name, type), d(std::move(data))
{
}

TsGdalFeatureLayer::~TsGdalFeatureLayer() = default;

TsRefPtr<TsGdalDataSource> TsGdalFeatureLayer::dataSource() const
{
    return d->source;
}

void TsGdalFeatureLayer::SetQueryFilter(const TsQueryFilter& filter)
{
    d->filter = filter;
}

bool TsGdalFeatureLayer::IsReadOnly() const
{
    return d->source->openMode() == TsGdalDataSource::ReadOnly;
}

bool TsGdalFeatureLayer::IsInOperation() const
{
    return d->source->layerState().operationOwner() == d.get();
}

QString TsGdalFeatureLayer::errorString() const
{
    return d->error;
}

TsQueryFilter TsGdalFeatureLayer::query_filter() const
{
    return d->filter;
}

TsRefPtr<TsFields> TsGdalFeatureLayer::GetFields() const
{
    return d->fields;
}

TsRefPtr<TsField> TsGdalFeatureLayer::FindField(const TsString& name) const
{
    return d->fields->GetField(d->fields->FindFieldIndex(name));
}

TsRefPtr<TsFeatureCursor> TsGdalFeatureLayer::GetFeatureCursor(const TsQueryFilter& filter)
{
    TsGdalFilter prepared;
    if (!d->prepare(filter, prepared))
        return nullptr;
    return TsRefPtr<TsFeatureCursor>(new TsGdalFeatureCursor(
        std::make_unique<TsGdalFeatureReader>(d->source, d->layer, d->fields, std::move(prepared))));
}

bool TsGdalFeatureLayer::Search(const TsQueryFilter& filter, std::vector<int>& ids)
{
    ids.clear();
    d->source->layerState().writePending();
    TsGdalFilter prepared;
    return d->prepare(filter, prepared)
        && searchIds(d->source, d->layer, d->fields, std::move(prepared), ids);
}

// Inside an operation the feature read is kept, since the next change is
// most likely to be one of its fields.
TsRefPtr<TsFeature> TsGdalFeatureLayer::GetFeature(int id)
{
    d->source->layerState().writePending();
    TsGdalErrorTrap trap;
    OGRFeatureUniquePtr feature{d->layer->GetFeature(id)};
    if (!d->layer->TestCapability(OLCRandomRead))
        d->source->layerState().interruptReading(d->layer);
    if (!feature)
        return nullptr;
    TsRefPtr<TsFeature> read = makeFeature(*feature, d->fields);
    d->keepForEditing(std::move(feature));
    return read;
}

bool TsGdalFeatureLayer::StartOperation(TsEditor* /*editor*/)
{
    return d->start();
}

TsRefPtr<TsLayerEditBuffer> TsGdalFeatureLayer::layer_edit_buffer()
{
    return TsRefPtr<TsLayerEditBuffer>(new TsGdalEditBuffer(this));
}

bool TsGdalFeatureLayer::CommitOperation()
{
    return d->commit();
}

bool TsGdalFeatureLayer::AbortOperation()
{
    return d->abort();
}

} // namespace VyObjects
