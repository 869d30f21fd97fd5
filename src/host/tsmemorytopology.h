#ifndef VYGIS_TSMEMORYTOPOLOGY_H
#define VYGIS_TSMEMORYTOPOLOGY_H

#include "tstopology.h"
#include "vygishost_export.h"

#include <set>
#include <vector>

namespace VyObjects {

// Check results that a caller fills in, e.g. to replay a check.
class VYGIS_HOST_EXPORT TsMemoryTopology : public TsTopology
{
public:
    explicit TsMemoryTopology(bool attributeCheck = false);

    void AddError(const TsTopoError& error);
    // The error at index is reported but cannot be read, as when its feature
    // was deleted after the check.
    void MarkUnreadable(int index);
    // Reports count instead of the number of errors added (a check that
    // stopped part-way may report any count, even a negative one).
    void SetReportedErrorCount(int count);

    bool GetIsAttributeCheck() const override { return m_attributeCheck; }
    int GetTopoErrorCount() const override;
    bool GetTopoErrorInfo(int index, int& number, int& ruleId, int& featureId,
                          int& relatedFeatureId, int& layerId, int& relatedLayerId,
                          TsString& layerName, TsString& relatedLayerName,
                          TsString& coordinate, TsString& ruleDescription,
                          TsString& errorType, bool& isException) const override;

protected:
    ~TsMemoryTopology() override;

private:
    bool m_attributeCheck;
    bool m_countOverridden = false;
    int m_reportedCount = 0;
    std::vector<TsTopoError> m_errors;
    std::set<int> m_unreadable;
};

} // namespace VyObjects

#endif // VYGIS_TSMEMORYTOPOLOGY_H
