#include "hosttesting.h"

#include "tsmemorytopology.h"

using namespace VyObjects;

namespace {

struct ErrorRecord
{
    int number = -1, ruleId = -1, featureId = -1, relatedFeatureId = -1, layerId = -1, relatedLayerId = -1;
    TsString layerName = "unset", relatedLayerName, coordinate, ruleDescription, errorType;
    bool isException = false;
};

bool read(const TsTopology& topology, int index, ErrorRecord& r)
{
    return topology.GetTopoErrorInfo(index, r.number, r.ruleId, r.featureId, r.relatedFeatureId,
                                     r.layerId, r.relatedLayerId, r.layerName, r.relatedLayerName,
                                     r.coordinate, r.ruleDescription, r.errorType, r.isException);
}

class TopologyTest : public ReferenceBalanceTest
{
protected:
    void SetUp() override
    {
        ReferenceBalanceTest::SetUp();
        topology = TsRefPtr<TsMemoryTopology>::create(true);
        TsTopoError error;
        error.number = 7;
        error.ruleId = 2;
        error.featureId = 11;
        error.relatedFeatureId = 12;
        error.layerId = 3;
        error.relatedLayerId = 4;
        error.layerName = "parcels";
        error.relatedLayerName = "roads";
        error.coordinate = "10.5,20.25";
        error.ruleDescription = "must not overlap";
        error.errorType = "overlap";
        error.isException = true;
        topology->AddError(error);
    }

    void TearDown() override
    {
        topology.reset();
        ReferenceBalanceTest::TearDown();
    }

    TsRefPtr<TsMemoryTopology> topology;
};

} // namespace

TEST_F(TopologyTest, ErrorInfoFillsTheOutValuesInOrder)
{
    ErrorRecord r;
    ASSERT_TRUE(read(*topology, 0, r));
    EXPECT_EQ(r.number, 7);
    EXPECT_EQ(r.ruleId, 2);
    EXPECT_EQ(r.featureId, 11);
    EXPECT_EQ(r.relatedFeatureId, 12);
    EXPECT_EQ(r.layerId, 3);
    EXPECT_EQ(r.relatedLayerId, 4);
    EXPECT_EQ(r.layerName, TsString("parcels"));
    EXPECT_EQ(r.relatedLayerName, TsString("roads"));
    EXPECT_EQ(r.coordinate, TsString("10.5,20.25"));
    EXPECT_EQ(r.ruleDescription, TsString("must not overlap"));
    EXPECT_EQ(r.errorType, TsString("overlap"));
    EXPECT_TRUE(r.isException);
}

TEST_F(TopologyTest, UnreadableErrorsLeaveTheOutValuesAlone)
{
    topology->AddError(TsTopoError());
    topology->MarkUnreadable(1);
    for (int index : {-1, 1, 2}) {
        ErrorRecord r;
        EXPECT_FALSE(read(*topology, index, r)) << index;
        EXPECT_EQ(r.number, -1);
        EXPECT_EQ(r.layerName, TsString("unset"));
    }
}

TEST_F(TopologyTest, CountFollowsTheErrorsUnlessOverridden)
{
    EXPECT_TRUE(topology->GetIsAttributeCheck());
    EXPECT_EQ(topology->GetTopoErrorCount(), 1);
    topology->SetReportedErrorCount(-1);
    EXPECT_EQ(topology->GetTopoErrorCount(), -1);
}
