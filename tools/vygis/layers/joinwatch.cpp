#include "joinwatch.h"

#include "tsqtext.h"
#include "vyapplication.h"

using namespace VyObjects;

namespace {

// As the join matches a feature: floating fields as the application shows them at
// the field's precision, so that 1001.0 matches the cell 1001.
QString keyText(const TsVariant& value, const TsField& keyField)
{
    const TsField::FieldType type = keyField.GetFieldType();
    if (type == TsField::SingleField || type == TsField::DoubleField)
        return VyApplication::doubleToQString(value.GetDouble(), static_cast<int>(keyField.GetPrecision()));
    return toQString(value.ToString());
}

} // namespace

WatchedJoinLayer::WatchedJoinLayer(const TsRefPtr<TsFeatureLayer>& layer, const QString& keyName,
                                   TerminalProgress& progress)
    : TsFeatureLayer(layer->GetLayerName(), layer->GetLayerType()),
      m_layer(layer),
      m_keyName(toTsString(keyName)),
      m_keyField(layer->FindField(m_keyName)),
      m_progress(progress)
{
}

TsQueryFilter WatchedJoinLayer::query_filter() const
{
    return m_layer->query_filter();
}

TsRefPtr<TsFields> WatchedJoinLayer::GetFields() const
{
    return m_layer->GetFields();
}

TsRefPtr<TsField> WatchedJoinLayer::FindField(const TsString& name) const
{
    return m_layer->FindField(name);
}

TsRefPtr<TsFeatureCursor> WatchedJoinLayer::GetFeatureCursor(const TsQueryFilter& filter)
{
    return m_layer->GetFeatureCursor(filter);
}

bool WatchedJoinLayer::Search(const TsQueryFilter& filter, std::vector<int>& ids)
{
    const bool found = m_layer->Search(filter, ids);
    m_featuresToRead = static_cast<long long>(ids.size());
    return found;
}

TsRefPtr<TsFeature> WatchedJoinLayer::GetFeature(int id)
{
    TsRefPtr<TsFeature> feature = m_layer->GetFeature(id);
    if (feature)
        noteKey(*feature);
    m_progress.count(++m_featuresRead, m_featuresToRead, QStringLiteral("features"));
    return feature;
}

void WatchedJoinLayer::noteKey(const TsFeature& feature)
{
    if (!m_keyField)
        return;
    TsVariant key;
    feature.GetValue(m_keyName, key);
    ++m_featuresByKey[keyText(key, *m_keyField)];
}

bool WatchedJoinLayer::StartOperation(TsEditor* editor)
{
    return m_layer->StartOperation(editor);
}

TsRefPtr<TsLayerEditBuffer> WatchedJoinLayer::layer_edit_buffer()
{
    return m_layer->layer_edit_buffer();
}

bool WatchedJoinLayer::CommitOperation()
{
    m_progress.step(QStringLiteral("finishing"));
    return m_layer->CommitOperation();
}

bool WatchedJoinLayer::AbortOperation()
{
    m_progress.step(QStringLiteral("undoing"));
    return m_layer->AbortOperation();
}
