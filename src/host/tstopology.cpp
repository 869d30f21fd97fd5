#include "tsmemorytopology.h"

namespace VyObjects {

TsTopology::~TsTopology() = default;

TsMemoryTopology::TsMemoryTopology(bool attributeCheck)
    : m_attributeCheck(attributeCheck)
{
}

TsMemoryTopology::~TsMemoryTopology() = default;

void TsMemoryTopology::AddError(const TsTopoError& error)
{
    m_errors.push_back(error);
}

void TsMemoryTopology::MarkUnreadable(int index)
{
    m_unreadable.insert(index);
}

void TsMemoryTopology::SetReportedErrorCount(int count)
{
    m_countOverridden = true;
    m_reportedCount = count;
}

int TsMemoryTopology::GetTopoErrorCount() const
{
    return m_countOverridden ? m_reportedCount : static_cast<int>(m_errors.size());
}

bool TsMemoryTopology::GetTopoErrorInfo(int index, int& number, int& ruleId, int& featureId,
                                        int& relatedFeatureId, int& layerId, int& relatedLayerId,
                                        TsString& layerName, TsString& relatedLayerName,
                                        TsString& coordinate, TsString& ruleDescription,
                                        TsString& errorType, bool& isException) const
{
    if (index < 0 || index >= static_cast<int>(m_errors.size()) || m_unreadable.count(index))
        return false;
    const TsTopoError& error = m_errors[static_cast<std::size_t>(index)];
    number = error.number;
    ruleId = error.ruleId;
    featureId = error.featureId;
    relatedFeatureId = error.relatedFeatureId;
    layerId = error.layerId;
    relatedLayerId = error.relatedLayerId;
    layerName = error.layerName;
    relatedLayerName = error.relatedLayerName;
    coordinate = error.coordinate;
    ruleDescription = error.ruleDescription;
    errorType = error.errorType;
    isException = error.isException;
    return true;
}

} // namespace VyObjects
