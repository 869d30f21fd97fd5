#ifndef VYGIS_TSFEATURELAYER_H
#define VYGIS_TSFEATURELAYER_H

// Feature layers as every data provider offers them. The library only sees
// these interfaces; the memory provider (tsmemorylayer.h) and file-backed
// providers implement them.

#include "tsbase.h"
#include "tsfield.h"
#include "tsgeo.h"
#include "tslayer.h"
#include "tsqueryfilter.h"
#include "tstable.h"
#include "vygishost_export.h"

#include <vector>

namespace VyObjects {

class TsEditor;

// A row of a feature layer with its shape.
class VYGIS_HOST_EXPORT TsFeature : public TsRow
{
public:
    TsFeature(int id, const TsRefPtr<TsFields>& fields, std::vector<TsVariant> values,
              const TsRefPtr<TsGeometry>& geometry);

    // Null for a feature without shape.
    TsRefPtr<TsGeometry> GetGeometry() const { return m_geometry; }

private:
    TsRefPtr<TsGeometry> m_geometry;
};

class VYGIS_HOST_EXPORT TsFeatureCursor : public TsRefBase
{
public:
    // Null once every admitted feature has been handed out.
    virtual TsRefPtr<TsFeature> NextFeature() = 0;

protected:
    ~TsFeatureCursor() override;
};

// Attribute edits of the operation that is open on a layer.
class VYGIS_HOST_EXPORT TsLayerEditBuffer : public TsRefBase
{
public:
    // Sets one attribute of one feature, converting value to the field's
    // type. With strict, a value that does not fit fails; without, what
    // happens to it is the provider's: the in-memory layers store a null, the
    // GDAL provider keeps the old value and counts the refusal (see tsgdal.h).
    // Fails as well for an unknown feature or field, outside
    // an edit operation and on a layer that cannot be edited.
    virtual bool ChangeAttribute(const int& featureId, const TsString& field,
                                 const TsVariant& value, bool strict) = 0;

protected:
    ~TsLayerEditBuffer() override;
};

class VYGIS_HOST_EXPORT TsFeatureLayer : public TsLayer
{
public:
    // The layer's own filter, as a copy.
    virtual TsQueryFilter query_filter() const = 0;
    // Null when the provider cannot describe the layer's fields.
    virtual TsRefPtr<TsFields> GetFields() const = 0;
    // Field names ignore case; null when there is no such field.
    virtual TsRefPtr<TsField> FindField(const TsString& name) const = 0;
    // The features filter admits, in the layer's order; null when the
    // filter cannot be applied.
    virtual TsRefPtr<TsFeatureCursor> GetFeatureCursor(const TsQueryFilter& filter) = 0;
    // Replaces ids with the ids of the features filter admits, in the
    // layer's order; false (and no id) when the filter cannot be applied.
    virtual bool Search(const TsQueryFilter& filter, std::vector<int>& ids) = 0;
    // Null for an id the layer does not hold.
    virtual TsRefPtr<TsFeature> GetFeature(int id) = 0;

    // Edits happen inside one operation at a time: StartOperation opens it
    // (the editor may be null), CommitOperation keeps its changes,
    // AbortOperation undoes them. Each returns false when there is no
    // operation to close, one is already open, or the layer cannot be edited.
    virtual bool StartOperation(TsEditor* editor) = 0;
    virtual TsRefPtr<TsLayerEditBuffer> layer_edit_buffer() = 0;
    virtual bool CommitOperation() = 0;
    virtual bool AbortOperation() = 0;

protected:
    TsFeatureLayer(const TsString& name, LayerType type);
    ~TsFeatureLayer() override;
};

} // namespace VyObjects

#endif // VYGIS_TSFEATURELAYER_H
