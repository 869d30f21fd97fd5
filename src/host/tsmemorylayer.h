#ifndef VYGIS_TSMEMORYLAYER_H
#define VYGIS_TSMEMORYLAYER_H

#include "tsfeaturelayer.h"
#include "vygishost_export.h"

#include <memory>
#include <vector>

namespace VyObjects {

class TsMemoryRecords;

// A feature layer whose features live in memory, for tools that build data
// on the fly and for tests:
//
//     auto roads = TsRefPtr<TsMemoryFeatureLayer>::create("roads", TsLayer::LineLayer);
//     roads->AddField("NAME", TsField::StringField, "Road name");
//     roads->AddField("LENGTH", TsField::DoubleField, TsString(), 2);
//     int id = roads->AddFeature({"Main St", 125.5}, geometry);
//     roads->SetQueryFilter(TsQueryFilter("LENGTH > 100"));
//
// Features get the ids 1, 2, 3, ... in the order they are added, and cursors
// and searches hand them out in that order. A cursor hands out the features
// its filter admitted when it was opened. Edits apply at once; aborting the
// operation restores the values it changed.
class VYGIS_HOST_EXPORT TsMemoryFeatureLayer : public TsFeatureLayer
{
public:
    TsMemoryFeatureLayer(const TsString& name, LayerType type);

    TsRefPtr<TsField> AddField(const TsString& name, TsField::FieldType type,
                               const TsString& aliasName = TsString(), unsigned precision = 0);
    // values[i] goes to field i, converted to its type (a value that does not
    // fit is stored as null); fields without a value stay empty. Returns the
    // new id, or -1 when there are more values than fields.
    int AddFeature(const std::vector<TsVariant>& values,
                   const TsRefPtr<TsGeometry>& geometry = TsRefPtr<TsGeometry>());
    int FeatureCount() const;

    void SetQueryFilter(const TsQueryFilter& filter);
    // A read-only layer opens no edit operation, so every change fails.
    void SetReadOnly(bool readOnly);
    bool IsReadOnly() const { return m_readOnly; }
    // Makes GetFields answer null, as a provider that lost its schema does.
    void SetFieldsAvailable(bool available);

    // What editing has happened, for callers that must prove they edited in
    // one operation: successful starts and commits, aborts, and attribute
    // changes that succeeded.
    int OperationsStarted() const { return m_started; }
    int OperationsCommitted() const { return m_committed; }
    int OperationsAborted() const { return m_aborted; }
    int AttributeChanges() const { return m_changes; }
    bool IsInOperation() const { return m_inOperation; }

    TsQueryFilter query_filter() const override;
    TsRefPtr<TsFields> GetFields() const override;
    TsRefPtr<TsField> FindField(const TsString& name) const override;
    TsRefPtr<TsFeatureCursor> GetFeatureCursor(const TsQueryFilter& filter) override;
    bool Search(const TsQueryFilter& filter, std::vector<int>& ids) override;
    TsRefPtr<TsFeature> GetFeature(int id) override;
    bool StartOperation(TsEditor* editor) override;
    TsRefPtr<TsLayerEditBuffer> layer_edit_buffer() override;
    bool CommitOperation() override;
    bool AbortOperation() override;

protected:
    ~TsMemoryFeatureLayer() override;

private:
    friend class TsMemoryEditBuffer;
    bool changeAttribute(int featureId, const TsString& field, const TsVariant& value, bool strict);

    struct Undo
    {
        int featureId;
        int fieldIndex;
        TsVariant oldValue;
    };

    std::shared_ptr<TsMemoryRecords> m_records;
    TsQueryFilter m_filter;
    std::vector<Undo> m_undo;
    bool m_readOnly = false;
    bool m_fieldsAvailable = true;
    bool m_inOperation = false;
    int m_started = 0;
    int m_committed = 0;
    int m_aborted = 0;
    int m_changes = 0;
};

} // namespace VyObjects

#endif // VYGIS_TSMEMORYLAYER_H
