#ifndef VYGIS_TSGDALVALUEREADER_H
#define VYGIS_TSGDALVALUEREADER_H

// For bulk readers built in this tree (the vygis tool's export); not installed.

#include "tsgdal.h"

#include <QString>

#include <memory>
#include <vector>

class OGRFeature;

namespace VyObjects {

class TsGdalFeatureReader;

// Reads the features a layer's GetFeatureCursor(filter) hands out, one after another,
// straight from GDAL's feature: no host feature, no geometry, and a text reaches the
// caller as the one QString it becomes. For millions of features, where making a host
// feature of each costs more than what the caller does with its values.
class VYGIS_GDAL_EXPORT TsGdalValueReader
{
public:
    // Null where GetFeatureCursor(filter) would be null; the layer's errorString() says why.
    static std::unique_ptr<TsGdalValueReader> open(TsGdalFeatureLayer& layer, const TsQueryFilter& filter);
    ~TsGdalValueReader();

    TsGdalValueReader(const TsGdalValueReader&) = delete;
    TsGdalValueReader& operator=(const TsGdalValueReader&) = delete;

    // Moves to the next feature; false once every feature has been read.
    bool next();

    // True when the field at index of the current feature is a text field holding a
    // text that is not empty: text is then the text of the value a host feature holds.
    // False otherwise, and readValue gives the value.
    bool readText(int index, QString& text) const;
    // The value the host feature would hold in the field at index.
    void readValue(int index, TsVariant& value) const;

private:
    TsGdalValueReader(std::unique_ptr<TsGdalFeatureReader> reader, std::vector<TsField::FieldType> types);

    std::unique_ptr<TsGdalFeatureReader> m_reader;
    std::vector<TsField::FieldType> m_types;   // by field index
    const OGRFeature* m_feature = nullptr;
};

} // namespace VyObjects

#endif // VYGIS_TSGDALVALUEREADER_H
