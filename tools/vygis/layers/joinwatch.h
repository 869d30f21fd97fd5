#pragma once

#include "terminalprogress.h"
#include "tsfeaturelayer.h"

#include <QHash>
#include <QString>

// Stands in for the layer a join writes to: every call goes to that layer, and on the
// way it notes the key text of each feature the join reads, matched as the join
// matches it, and shows how many of the features it has read on a terminal.
class WatchedJoinLayer : public VyObjects::TsFeatureLayer
{
public:
    WatchedJoinLayer(const VyObjects::TsRefPtr<VyObjects::TsFeatureLayer>& layer, const QString& keyName,
                     TerminalProgress& progress);

    // How many features the join read, by key text.
    const QHash<QString, long long>& featuresByKey() const { return m_featuresByKey; }

    VyObjects::TsQueryFilter query_filter() const override;
    VyObjects::TsRefPtr<VyObjects::TsFields> GetFields() const override;
    VyObjects::TsRefPtr<VyObjects::TsField> FindField(const VyObjects::TsString& name) const override;
    VyObjects::TsRefPtr<VyObjects::TsFeatureCursor> GetFeatureCursor(const VyObjects::TsQueryFilter& filter) override;
    bool Search(const VyObjects::TsQueryFilter& filter, std::vector<int>& ids) override;
    VyObjects::TsRefPtr<VyObjects::TsFeature> GetFeature(int id) override;
    bool StartOperation(VyObjects::TsEditor* editor) override;
    VyObjects::TsRefPtr<VyObjects::TsLayerEditBuffer> layer_edit_buffer() override;
    bool CommitOperation() override;
    bool AbortOperation() override;

private:
    void noteKey(const VyObjects::TsFeature& feature);

    VyObjects::TsRefPtr<VyObjects::TsFeatureLayer> m_layer;
    VyObjects::TsString m_keyName;
    VyObjects::TsRefPtr<VyObjects::TsField> m_keyField;
    QHash<QString, long long> m_featuresByKey;
    long long m_featuresRead = 0;
    long long m_featuresToRead = 0;
    TerminalProgress& m_progress;
};
