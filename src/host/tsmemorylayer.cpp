#include "tsmemorylayer.h"

#include "tsmemoryrecords_p.h"

namespace VyObjects {

// Holds the layer, so a buffer kept past its layer's last other reference
// still edits a live object; the layer holds no buffer, so nothing cycles.
class TsMemoryEditBuffer : public TsLayerEditBuffer
{
public:
    explicit TsMemoryEditBuffer(TsMemoryFeatureLayer* layer) : m_layer(layer) {}

    bool ChangeAttribute(const int& featureId, const TsString& field,
                         const TsVariant& value, bool strict) override
    {
        return m_layer->changeAttribute(featureId, field, value, strict);
    }

private:
    TsRefPtr<TsMemoryFeatureLayer> m_layer;
};

TsMemoryFeatureLayer::TsMemoryFeatureLayer(const TsString& name, LayerType type)
    : TsFeatureLayer(name, type), m_records(std::make_shared<TsMemoryRecords>())
{
}

TsMemoryFeatureLayer::~TsMemoryFeatureLayer() = default;

TsRefPtr<TsField> TsMemoryFeatureLayer::AddField(const TsString& name, TsField::FieldType type,
                                                 const TsString& aliasName, unsigned precision)
{
    return m_records->AddField(name, type, aliasName, precision);
}

int TsMemoryFeatureLayer::AddFeature(const std::vector<TsVariant>& values,
                                     const TsRefPtr<TsGeometry>& geometry)
{
    return m_records->AddRecord(values, geometry);
}

int TsMemoryFeatureLayer::FeatureCount() const
{
    return m_records->Count();
}

void TsMemoryFeatureLayer::SetQueryFilter(const TsQueryFilter& filter)
{
    m_filter = filter;
}

void TsMemoryFeatureLayer::SetReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
}

void TsMemoryFeatureLayer::SetFieldsAvailable(bool available)
{
    m_fieldsAvailable = available;
}

TsQueryFilter TsMemoryFeatureLayer::query_filter() const
{
    return m_filter;
}

TsRefPtr<TsFields> TsMemoryFeatureLayer::GetFields() const
{
    return m_fieldsAvailable ? m_records->Fields() : nullptr;
}

TsRefPtr<TsField> TsMemoryFeatureLayer::FindField(const TsString& name) const
{
    return m_records->Fields()->GetField(m_records->Fields()->FindFieldIndex(name));
}

TsRefPtr<TsFeatureCursor> TsMemoryFeatureLayer::GetFeatureCursor(const TsQueryFilter& filter)
{
    std::vector<int> ids;
    if (!m_records->Select(filter, ids))
        return nullptr;
    return TsRefPtr<TsFeatureCursor>(new TsMemoryCursor(m_records, std::move(ids)));
}

bool TsMemoryFeatureLayer::Search(const TsQueryFilter& filter, std::vector<int>& ids)
{
    return m_records->Select(filter, ids);
}

TsRefPtr<TsFeature> TsMemoryFeatureLayer::GetFeature(int id)
{
    return m_records->Read(id);
}

bool TsMemoryFeatureLayer::StartOperation(TsEditor* /*editor*/)
{
    if (m_readOnly || m_inOperation)
        return false;
    m_inOperation = true;
    m_undo.clear();
    ++m_started;
    return true;
}

TsRefPtr<TsLayerEditBuffer> TsMemoryFeatureLayer::layer_edit_buffer()
{
    return TsRefPtr<TsLayerEditBuffer>(new TsMemoryEditBuffer(this));
}

bool TsMemoryFeatureLayer::CommitOperation()
{
    if (!m_inOperation)
        return false;
    m_inOperation = false;
    m_undo.clear();
    ++m_committed;
    return true;
}

bool TsMemoryFeatureLayer::AbortOperation()
{
    if (!m_inOperation)
        return false;
    for (auto undo = m_undo.rbegin(); undo != m_undo.rend(); ++undo)
        m_records->SetValue(undo->featureId, undo->fieldIndex, undo->oldValue);
    m_inOperation = false;
    m_undo.clear();
    ++m_aborted;
    return true;
}

bool TsMemoryFeatureLayer::changeAttribute(int featureId, const TsString& field,
                                           const TsVariant& value, bool strict)
{
    const int fieldIndex = m_records->Fields()->FindFieldIndex(field);
    if (!m_inOperation || fieldIndex < 0 || !m_records->Contains(featureId))
        return false;
    TsVariant converted;
    const bool fits = m_records->Fields()->GetField(fieldIndex)->ConvertValue(value, converted);
    if (!fits && strict)
        return false;
    m_undo.push_back({featureId, fieldIndex, m_records->Value(featureId, fieldIndex)});
    m_records->SetValue(featureId, fieldIndex, converted);
    ++m_changes;
    return true;
}

} // namespace VyObjects
