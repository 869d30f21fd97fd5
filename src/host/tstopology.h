#ifndef VYGIS_TSTOPOLOGY_H
#define VYGIS_TSTOPOLOGY_H

#include "tsbase.h"
#include "vygishost_export.h"

namespace VyObjects {

// One finding of a topology or attribute check.
struct TsTopoError
{
    int number = 0;            // the error's number within the check
    int ruleId = 0;            // the rule that found it
    int featureId = 0;         // the offending feature; 0 or less when none
    int relatedFeatureId = 0;  // the feature it conflicts with; 0 or less when none
    int layerId = 0;           // layer of featureId
    int relatedLayerId = 0;    // layer of relatedFeatureId
    TsString layerName;
    TsString relatedLayerName;
    TsString coordinate;       // where it was found, as text
    TsString ruleDescription;
    TsString errorType;        // the failed rule's text in an attribute check
    bool isException = false;  // accepted by the user as an exception
};

// The findings of a finished check. An error that conflicts with itself has
// the same feature and layer on both sides.
class VYGIS_HOST_EXPORT TsTopology : public TsRefBase
{
public:
    virtual bool GetIsAttributeCheck() const = 0;
    virtual int GetTopoErrorCount() const = 0;

    // The out-values follow the members of TsTopoError in order: number,
    // ruleId, featureId, relatedFeatureId, layerId, relatedLayerId,
    // layerName, relatedLayerName, coordinate, ruleDescription, errorType,
    // isException. Returns false, leaving every out-value as it was, when the
    // error cannot be read.
    virtual bool GetTopoErrorInfo(int index, int& number, int& ruleId, int& featureId,
                                  int& relatedFeatureId, int& layerId, int& relatedLayerId,
                                  TsString& layerName, TsString& relatedLayerName,
                                  TsString& coordinate, TsString& ruleDescription,
                                  TsString& errorType, bool& isException) const = 0;

protected:
    ~TsTopology() override;
};

} // namespace VyObjects

#endif // VYGIS_TSTOPOLOGY_H
