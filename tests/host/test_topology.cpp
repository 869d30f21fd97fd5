#include "hosttesting.h"

#include "tsmemorytopology.h"

#include <tuple>

using namespace VyObjects;

namespace {

bool read(const TsTopology& topology, int index, TsTopoError& r)
{
    return topology.GetTopoErrorInfo(index, r.number, r.ruleId, r.featureId, r.relatedFeatureId,
                                     r.layerId, r.relatedLayerId, r.layerName, r.relatedLayerName,
                                     r.coordinate, r.ruleDescription, r.errorType, r.isException);
}

auto fields(const TsTopoError& e)
{
    return std::make_tuple(e.number, e.ruleId, e.featureId, e.relatedFeatureId, e.layerId, e.relatedLayerId,
                           e.layerName, e.relatedLayerName, e.coordinate, e.ruleDescription, e.errorType,
                           e.isException);
}

const TsTopoError Overlap{7, 2, 11, 12, 3, 4, "parcels", "roads", "10.5,20.25", "must not overlap", "overlap", true};

class TopologyTest : public ReferenceBalanceTest
{
protected:
    TopologyTest() { topology->AddError(Overlap); }

    const TsRefPtr<TsMemoryTopology> topology = TsRefPtr<TsMemoryTopology>::create(true);
};

} // namespace

TEST_F(TopologyTest, ErrorInfoFillsTheOutValuesInOrderAndTheCountFollowsTheErrorsUnlessOverridden)
{
    TsTopoError r;
    ASSERT_TRUE(read(*topology, 0, r));
    EXPECT_EQ(fields(r), fields(Overlap));
    EXPECT_TRUE(topology->GetIsAttributeCheck());
    EXPECT_EQ(topology->GetTopoErrorCount(), 1);
    topology->SetReportedErrorCount(-1);
    EXPECT_EQ(topology->GetTopoErrorCount(), -1);
}

TEST_F(TopologyTest, UnreadableErrorsLeaveTheOutValuesAlone)
{
    topology->AddError(TsTopoError());
    topology->MarkUnreadable(1);
    for (int index : {-1, 1, 2}) {
        TsTopoError r;
        r.number = -1;
        r.layerName = "unset";
        EXPECT_FALSE(read(*topology, index, r)) << index;
        EXPECT_EQ(r.number, -1);
        EXPECT_EQ(r.layerName, TsString("unset"));
    }
}
