#include "tsgdal_p.h"

#include <atomic>

namespace VyObjects {

// Holds its layer, so a buffer kept past the layer's other references still
// edits a live object; the layer holds no buffer, so nothing cycles.
class TsGdalEditBuffer : public TsLayerEditBuffer
{
public:
    explicit TsGdalEditBuffer(TsGdalFeatureLayer* layer) : m_layer(layer) {}

    bool ChangeAttribute(const int& featureId, const TsString& field, const TsVariant& value,
                         bool /*strict*/) override
    {
        // A value that does not fit is refused with or without strict: it
        // never replaces the old value by a null.
        return m_layer->d->changeAttribute(featureId, field, value);
    }

private:
    TsRefPtr<TsGdalFeatureLayer> m_layer;
};

TsRefPtr<TsGdalFeatureLayer> makeGdalFeatureLayer(const TsRefPtr<TsGdalDataSource>& source,
                                                  OGRLayer* layer)
{
    const TsRefPtr<TsFields> fields = fieldsOfLayer(*source, *layer);
    return TsRefPtr<TsGdalFeatureLayer>(new TsGdalFeatureLayer(
        TsString(layer->GetName()), layerTypeOf(layer->GetGeomType()),
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
    return QStringLiteral("%1, layer \"%2\"").arg(source->path(), gdalText(layer->GetName()));
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

// --- What an operation did ---------------------------------------------------

QString TsGdalEditSummary::typeName(TsField::FieldType type)
{
    switch (type) {
    case TsField::SmallIntegerField: return QStringLiteral("16-bit integer");
    case TsField::IntegerField: return QStringLiteral("32-bit integer");
    case TsField::BigIntegerField: return QStringLiteral("64-bit integer");
    case TsField::SingleField: return QStringLiteral("single-precision real");
    case TsField::DoubleField: return QStringLiteral("real");
    case TsField::StringField: return QStringLiteral("text");
    case TsField::DateField: return QStringLiteral("date");
    case TsField::BlobField: return QStringLiteral("binary");
    case TsField::GeometryField: return QStringLiteral("geometry");
    }
    return QStringLiteral("unknown");
}

QString TsGdalEditSummary::RefusedValue::toString() const
{
    // A long text is cut, since it stands in a one-line message.
    const int shown = 60;
    const QString quoted = text.size() <= shown ? text : text.left(shown - 3) + QStringLiteral("...");
    const QString type = fieldWidth > 0 ? QStringLiteral("%1 of width %2").arg(typeName(fieldType)).arg(fieldWidth)
                                        : typeName(fieldType);
    return QStringLiteral("feature %1, field %2 (%3): \"%4\"").arg(featureId).arg(field, type, quoted);
}

// --- Interruption ------------------------------------------------------------

namespace {

// Set from signal handlers, so it must be lock-free to be safe there.
std::atomic<bool> interruptionRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the interruption flag must be lock-free");

} // namespace

void TsGdalDataSource::interruptOperations()
{
    interruptionRequested.store(true, std::memory_order_relaxed);
}

bool TsGdalDataSource::operationsInterrupted()
{
    return interruptionRequested.load(std::memory_order_relaxed);
}

void TsGdalDataSource::resumeOperations()
{
    interruptionRequested.store(false, std::memory_order_relaxed);
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
    if (TsGdalDataSource::operationsInterrupted())
        return fail(QStringLiteral("edit operations were interrupted; nothing was changed"));
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
    summary = TsGdalEditSummary();
    return true;
}

// An operation that cannot land whole lands not at all.
bool TsGdalFeatureLayer::Private::commit()
{
    if (!m_transaction)
        return fail(QStringLiteral("no edit operation is open"));
    if (!isInterrupted())
        writePending();
    const QString undoReason = reasonToUndo();
    if (!undoReason.isEmpty())
        return undoWith(undoReason);
    QString reason;
    if (!m_transaction->commit(&reason))
        return undoWith(reason);
    summary.outcome = TsGdalEditSummary::Committed;
    close();
    return true;
}

QString TsGdalFeatureLayer::Private::reasonToUndo() const
{
    if (isInterrupted())
        return QStringLiteral("the edit operation was interrupted and undone");
    if (m_writeFailed)
        return QStringLiteral("the edit operation was undone because a change failed: ") + m_writeError;
    if (unconvertible == TsGdalFeatureLayer::UndoOperation && summary.valuesNotConvertible > 0)
        return QStringLiteral("the edit operation was undone because %1 value(s) could not be converted "
                              "to their field's type (first: %2)")
            .arg(summary.valuesNotConvertible)
            .arg(summary.examples.front().toString());
    return QString();
}

bool TsGdalFeatureLayer::Private::undoWith(const QString& reason)
{
    summary.interrupted = isInterrupted();
    const QString lost = undo();
    summary.outcome = TsGdalEditSummary::Undone;
    close();
    return fail(lost.isEmpty() ? reason : reason + QStringLiteral("; ") + lost);
}

bool TsGdalFeatureLayer::Private::abort()
{
    if (!m_transaction)
        return false;
    const QString lost = undo();
    summary.outcome = TsGdalEditSummary::Undone;
    close();
    if (!lost.isEmpty())
        fail(lost);
    return true;
}

// Neither reads the interruption flag: a second Ctrl-C must not stop the undo.
QString TsGdalFeatureLayer::Private::undo()
{
    TsGdalErrorTrap trap;
    m_editing.reset();
    m_pending = false;
    m_transaction->rollback();
    int lost = 0;
    bool wroteBack = false;
    for (auto& original : m_originals) {
        if (!original.second)
            continue;
        wroteBack = true;
        if (layer->SetFeature(original.second.get()) != OGRERR_NONE)
            ++lost;
    }
    if (wroteBack)
        source->dataset()->FlushCache(false);
    summary.featuresNotSetBack = lost;
    if (lost > 0)
        return QStringLiteral("%1 changed features could not be set back").arg(lost) + trap.reason();
    return QString();
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

bool TsGdalFeatureLayer::Private::isInterrupted() const
{
    return m_transaction && TsGdalDataSource::operationsInterrupted();
}

bool TsGdalFeatureLayer::Private::changeAttribute(int featureId, const TsString& field,
                                                  const TsVariant& value)
{
    if (!m_transaction)
        return fail(QStringLiteral("no edit operation is open"));
    if (isInterrupted())
        return fail(QStringLiteral("the edit operation was interrupted"));
    const int index = fields->FindFieldIndex(field);
    if (index < 0)
        return fail(QStringLiteral("no field \"%1\"").arg(toQString(field)));
    OGRFeature* feature = featureToEdit(featureId);
    if (!feature)
        return fail(QStringLiteral("no feature %1").arg(featureId));
    const TsField& target = *fields->GetField(index);
    TsVariant converted;
    const OGRFieldDefn& definition = *feature->GetFieldDefnRef(index);
    if (!convertForField(target, definition, value, converted))
        return refuse(featureId, target, definition.GetWidth(), value);
    if (holdsValue(*feature, index, target.GetFieldType(), converted)) {
        ++summary.valuesUnchanged;
        return true;
    }
    noteChange(*feature);
    writeValue(*feature, index, converted);
    ++summary.valuesWritten;
    m_pending = true;
    return true;
}

bool TsGdalFeatureLayer::Private::refuse(int featureId, const TsField& field, int width,
                                         const TsVariant& value)
{
    ++summary.valuesNotConvertible;
    const TsGdalEditSummary::RefusedValue refused{featureId, toQString(field.GetName()), toQString(value.ToString()),
                                                  field.GetFieldType(), std::max(width, 0)};
    if (summary.examples.size() < static_cast<std::size_t>(TsGdalEditSummary::MaxExamples))
        summary.examples.push_back(refused);
    return fail(refused.toString() + QStringLiteral(" does not fit the field, which keeps its value"));
}

// The first change of a feature keeps it as it was, where there is no
// transaction to roll back.
void TsGdalFeatureLayer::Private::noteChange(const OGRFeature& feature)
{
    const auto noted = m_originals.try_emplace(feature.GetFID());
    if (!noted.second)
        return;
    ++summary.featuresChanged;
    if (!m_transaction->isNative())
        noted.first->second.reset(feature.Clone());
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

void TsGdalFeatureLayer::setUnconvertibleValues(UnconvertibleValues policy)
{
    d->unconvertible = policy;
}

TsGdalFeatureLayer::UnconvertibleValues TsGdalFeatureLayer::unconvertibleValues() const
{
    return d->unconvertible;
}

TsGdalEditSummary TsGdalFeatureLayer::editSummary() const
{
    return d->summary;
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
    // What is left of an interrupted operation is skipped rather than read.
    if (d->isInterrupted())
        return nullptr;
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
