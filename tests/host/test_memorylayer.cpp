#include "hosttesting.h"

#include "tsmemorylayer.h"

using namespace VyObjects;

namespace {

// Four wells: ID, NAME, DEPTH (two decimals), one without a name.
class MemoryLayerTest : public ReferenceBalanceTest
{
protected:
    MemoryLayerTest() : layer(TsRefPtr<TsMemoryFeatureLayer>::create("wells", TsLayer::PointLayer))
    {
        layer->AddField("ID", TsField::IntegerField);
        layer->AddField("NAME", TsField::StringField, "Well name");
        layer->AddField("DEPTH", TsField::DoubleField, TsString(), 2);
        layer->AddFeature({std::int32_t{10}, "North", 12.5}, TsRefPtr<TsGeoPoint>::create(1.0, 2.0, 30.0));
        layer->AddFeature({std::int32_t{20}, "South", 40.0}, TsRefPtr<TsGeoPoint>::create(3.0, 4.0));
        layer->AddFeature({std::int32_t{30}, TsVariant(), 7.25},
                          TsRefPtr<TsGeoPath>::create(TsGeometry::PolylineGeometry,
                                                      std::vector<TsPoint>{{0, 0}, {1, 1}}));
        layer->AddFeature({std::int32_t{40}, "East", 55.0});
    }

    std::vector<int> walk(const TsQueryFilter& filter)
    {
        std::vector<int> ids;
        const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(filter);
        if (!cursor)
            return {-1};
        while (const TsRefPtr<TsFeature> feature = cursor->NextFeature())
            ids.push_back(feature->GetID());
        return ids;
    }

    TsVariant valueOf(int id, const char* field)
    {
        TsVariant value;
        layer->GetFeature(id)->GetValue(field, value);
        return value;
    }

    bool change(int id, const char* field, const char* text, bool strict = false)
    {
        return layer->layer_edit_buffer()->ChangeAttribute(id, field, TsVariant(text), strict);
    }

    TsRefPtr<TsMemoryFeatureLayer> layer;
};

} // namespace

TEST_F(MemoryLayerTest, CursorWalksTheFeaturesItsWhereClauseAdmitsInInsertionOrder)
{
    const int quoted = layer->AddFeature({std::int32_t{50}, "Miller's"});
    const struct { const char* clause; std::vector<int> ids; } cases[] = {
        {"", {1, 2, 3, 4, 5}},
        {"DEPTH > 12.5", {2, 4}},
        {"name = 'South'", {2}},
        {"NAME <> 'South'", {1, 4, 5}},
        {"NAME IS NULL", {3}},
        {"\"ID\" <= 20", {1, 2}},
        {"NAME = 'Miller''s'", {quoted}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(walk(TsQueryFilter(c.clause)), c.ids) << c.clause;
}

TEST_F(MemoryLayerTest, PredicateAndClauseMustBothAdmitAndTheLayersFilterIsACopy)
{
    TsQueryFilter filter("DEPTH >= 12.5");
    filter.SetPredicate([](const TsRow& row) {
        TsVariant id;
        row.GetValue("ID", id);
        return id.GetDouble() < 40;
    });
    EXPECT_EQ(walk(filter), (std::vector<int>{1, 2}));
    layer->SetQueryFilter(TsQueryFilter("ID = 10"));
    layer->query_filter().SetWhereClause("ID = 20");
    EXPECT_EQ(walk(layer->query_filter()), (std::vector<int>{1}));
}

TEST_F(MemoryLayerTest, SearchReplacesIdsWithTheAdmittedOnesOrNoneForAnUnreadableFilter)
{
    std::vector<int> ids{99, 98};
    ASSERT_TRUE(layer->Search(TsQueryFilter("DEPTH < 50"), ids));
    EXPECT_EQ(ids, (std::vector<int>{1, 2, 3}));
    for (const char* clause : {"DEPTH >", "DEPTH = 'open", "UNKNOWN = 1", "DEPTH ~ 3", "DEPTH = abc"}) {
        EXPECT_TRUE(layer->GetFeatureCursor(TsQueryFilter(clause)).isNull()) << clause;
        ids = {99};
        EXPECT_FALSE(layer->Search(TsQueryFilter(clause), ids) || !ids.empty()) << clause;
    }
}

TEST_F(MemoryLayerTest, FeaturesAndFieldsAreFoundByIdAndByNameWithoutRegardToCase)
{
    for (int unknown : {0, -1, 5})
        EXPECT_TRUE(layer->GetFeature(unknown).isNull()) << unknown;
    EXPECT_FALSE(layer->GetFeature(4).isNull());
    const TsRefPtr<TsField> depth = layer->FindField("depth");
    ASSERT_FALSE(depth.isNull());
    EXPECT_EQ(depth->GetName(), TsString("DEPTH"));
    EXPECT_EQ(depth->GetPrecision(), 2u);
    EXPECT_TRUE(layer->FindField("DEPTH ").isNull());
    EXPECT_EQ(layer->GetFields()->GetField(1)->GetAliasName(), TsString("Well name"));
    EXPECT_TRUE(layer->GetFields()->GetField(3).isNull());
}

TEST_F(MemoryLayerTest, ValuesTakeTheTypeOfTheirFieldAndMissingOnesReadAsEmpty)
{
    const TsRefPtr<TsFeature> feature = layer->GetFeature(2);
    TsVariant value;
    // Equality compares the type code too.
    EXPECT_TRUE(feature->GetValue("DEPTH", value) && value == TsVariant(40.0));
    EXPECT_TRUE(feature->GetValue(0, value) && value == TsVariant(std::int32_t{20}));
    EXPECT_FALSE(feature->GetValue("OWNER", value));
    EXPECT_TRUE(value.IsEmpty());

    EXPECT_EQ(layer->AddFeature({1, 2, 3, 4}), -1) << "more values than fields";
    EXPECT_EQ(layer->FeatureCount(), 4);

    value = TsVariant("stale");
    EXPECT_TRUE(layer->GetFeature(4)->GetValue("NAME", value) && value == TsVariant("East"));
    layer->AddField("OWNER", TsField::StringField);
    EXPECT_TRUE(layer->GetFeature(4)->GetValue("OWNER", value));
    EXPECT_TRUE(value.IsEmpty());
}

TEST_F(MemoryLayerTest, PointsReportTheirHeightAndOtherShapesAreNoPoints)
{
    const auto withZ = layer->GetFeature(1)->GetGeometry().dynamicCast<TsGeoPoint>();
    const auto flat = layer->GetFeature(2)->GetGeometry().dynamicCast<TsGeoPoint>();
    ASSERT_FALSE(withZ.isNull() || flat.isNull());
    bool hasZ = false, flatHasZ = true;
    ASSERT_TRUE(withZ->HasZ(hasZ) && flat->HasZ(flatHasZ));
    EXPECT_TRUE(hasZ && !flatHasZ);
    double x = 0, y = 0, z = 0, flatZ = -1.0;
    withZ->QueryCoordsXYZ(&x, &y, &z);
    flat->QueryCoordsXYZ(nullptr, nullptr, &flatZ);
    EXPECT_EQ(z, 30.0);
    EXPECT_EQ(flatZ, 0.0);
    EXPECT_TRUE(layer->GetFeature(3)->GetGeometry().dynamicCast<TsGeoPoint>().isNull());
    EXPECT_TRUE(layer->GetFeature(4)->GetGeometry().isNull());
}

TEST_F(MemoryLayerTest, EditsInAnOperationChangeTheFeaturesOnCommitAndNotOnAbort)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    EXPECT_FALSE(layer->StartOperation(nullptr)) << "only one operation is open at a time";
    EXPECT_TRUE(change(2, "depth", "41.75"));
    EXPECT_TRUE(change(3, "NAME", ""));
    ASSERT_TRUE(layer->CommitOperation());
    EXPECT_EQ(valueOf(2, "DEPTH"), TsVariant(41.75));
    EXPECT_EQ(valueOf(3, "NAME"), TsVariant(""));
    EXPECT_EQ(layer->AttributeChanges(), 2);
    EXPECT_FALSE(layer->IsInOperation());

    ASSERT_TRUE(layer->StartOperation(nullptr));
    change(1, "NAME", "West");
    change(1, "NAME", "Far West");
    ASSERT_TRUE(layer->AbortOperation());
    EXPECT_EQ(valueOf(1, "NAME"), TsVariant("North"));
    EXPECT_EQ(std::vector<int>({layer->OperationsStarted(), layer->OperationsCommitted(), layer->OperationsAborted()}),
              std::vector<int>({2, 1, 1}));
}

TEST_F(MemoryLayerTest, ChangesOutsideAnOperationToAReadOnlyLayerOrUnknownPlacesAndStrictMisfitsFail)
{
    EXPECT_FALSE(change(1, "NAME", "West"));
    EXPECT_FALSE(layer->CommitOperation());
    ASSERT_TRUE(layer->StartOperation(nullptr));
    EXPECT_FALSE(change(9, "NAME", "x"));
    EXPECT_FALSE(change(1, "OWNER", "x"));
    EXPECT_FALSE(change(1, "DEPTH", "deep", true));
    EXPECT_EQ(valueOf(1, "DEPTH"), TsVariant(12.5));
    EXPECT_EQ(layer->AttributeChanges(), 0);
    EXPECT_TRUE(change(1, "DEPTH", "deep"));
    EXPECT_TRUE(valueOf(1, "DEPTH").IsNull());
    ASSERT_TRUE(layer->CommitOperation());
    layer->SetReadOnly(true);
    EXPECT_FALSE(layer->StartOperation(nullptr));
    EXPECT_FALSE(change(1, "NAME", "West"));
    EXPECT_FALSE(layer->CommitOperation());
    EXPECT_EQ(valueOf(1, "NAME"), TsVariant("North"));
    EXPECT_EQ(layer->OperationsStarted(), 1);
}

TEST_F(MemoryLayerTest, FeaturesAndCursorsOpenedBeforeAnEditKeepWhatTheyHeld)
{
    const TsRefPtr<TsFeature> before = layer->GetFeature(1);
    const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(TsQueryFilter("ID = 10"));
    layer->StartOperation(nullptr);
    change(1, "NAME", "West");
    change(1, "ID", "11");
    layer->CommitOperation();
    TsVariant value;
    EXPECT_TRUE(before->GetValue("NAME", value) && value == TsVariant("North"));
    EXPECT_FALSE(cursor->NextFeature().isNull());
    EXPECT_TRUE(cursor->NextFeature().isNull());
}

TEST_F(MemoryLayerTest, BufferKeepsItsLayerAlive)
{
    const TsRefPtr<TsLayerEditBuffer> buffer = layer->layer_edit_buffer();
    layer->StartOperation(nullptr);
    TsMemoryFeatureLayer* const raw = layer.get();
    layer.reset();
    EXPECT_TRUE(buffer->ChangeAttribute(1, "NAME", TsVariant("West"), false));
    EXPECT_EQ(raw->AttributeChanges(), 1);
}
