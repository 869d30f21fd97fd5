#include "hosttesting.h"

#include "tsmemorylayer.h"

using namespace VyObjects;

namespace {

// Four wells: ID, NAME, DEPTH (two decimals), one without a name.
class MemoryLayerTest : public ReferenceBalanceTest
{
protected:
    void SetUp() override
    {
        ReferenceBalanceTest::SetUp();
        layer = TsRefPtr<TsMemoryFeatureLayer>::create("wells", TsLayer::PointLayer);
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

    void TearDown() override
    {
        layer.reset();
        ReferenceBalanceTest::TearDown();
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

    TsRefPtr<TsMemoryFeatureLayer> layer;
};

} // namespace

TEST_F(MemoryLayerTest, CursorWalksEveryFeatureInInsertionOrder)
{
    EXPECT_EQ(walk(TsQueryFilter()), (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(MemoryLayerTest, WhereClauseAdmitsMatchingFeaturesOnly)
{
    EXPECT_EQ(walk(TsQueryFilter("DEPTH > 12.5")), (std::vector<int>{2, 4}));
    EXPECT_EQ(walk(TsQueryFilter("name = 'South'")), (std::vector<int>{2}));
    EXPECT_EQ(walk(TsQueryFilter("NAME <> 'South'")), (std::vector<int>{1, 4}));
    EXPECT_EQ(walk(TsQueryFilter("NAME IS NULL")), (std::vector<int>{3}));
    EXPECT_EQ(walk(TsQueryFilter("\"ID\" <= 20")), (std::vector<int>{1, 2}));
}

TEST_F(MemoryLayerTest, QuotedLiteralsMayHoldQuotes)
{
    const int id = layer->AddFeature({std::int32_t{50}, "Miller's"});
    EXPECT_EQ(walk(TsQueryFilter("NAME = 'Miller''s'")), (std::vector<int>{id}));
}

TEST_F(MemoryLayerTest, PredicateAndClauseMustBothAdmit)
{
    TsQueryFilter filter("DEPTH >= 12.5");
    filter.SetPredicate([](const TsRow& row) {
        TsVariant id;
        row.GetValue("ID", id);
        return id.GetDouble() < 40;
    });
    EXPECT_EQ(walk(filter), (std::vector<int>{1, 2}));
}

TEST_F(MemoryLayerTest, UnreadableFilterGivesNoCursorAndNoSearch)
{
    for (const char* clause : {"DEPTH >", "DEPTH = 'open", "UNKNOWN = 1", "DEPTH ~ 3", "DEPTH = abc"}) {
        EXPECT_TRUE(layer->GetFeatureCursor(TsQueryFilter(clause)).isNull()) << clause;
        std::vector<int> ids{99};
        EXPECT_FALSE(layer->Search(TsQueryFilter(clause), ids)) << clause;
        EXPECT_TRUE(ids.empty()) << clause;
    }
}

TEST_F(MemoryLayerTest, SearchReplacesIdsWithTheAdmittedOnes)
{
    std::vector<int> ids{99, 98};
    ASSERT_TRUE(layer->Search(TsQueryFilter("DEPTH < 50"), ids));
    EXPECT_EQ(ids, (std::vector<int>{1, 2, 3}));
}

TEST_F(MemoryLayerTest, QueryFilterIsACopy)
{
    layer->SetQueryFilter(TsQueryFilter("ID = 10"));
    TsQueryFilter copy = layer->query_filter();
    copy.SetWhereClause("ID = 20");
    EXPECT_EQ(layer->query_filter().GetWhereClause(), TsString("ID = 10"));
    EXPECT_EQ(walk(layer->query_filter()), (std::vector<int>{1}));
}

TEST_F(MemoryLayerTest, GetFeatureIsNullForUnknownIds)
{
    EXPECT_TRUE(layer->GetFeature(0).isNull());
    EXPECT_TRUE(layer->GetFeature(-1).isNull());
    EXPECT_TRUE(layer->GetFeature(5).isNull());
    EXPECT_FALSE(layer->GetFeature(4).isNull());
}

TEST_F(MemoryLayerTest, FieldsAreFoundWithoutRegardToCase)
{
    const TsRefPtr<TsField> depth = layer->FindField("depth");
    ASSERT_FALSE(depth.isNull());
    EXPECT_EQ(depth->GetName(), TsString("DEPTH"));
    EXPECT_EQ(depth->GetPrecision(), 2u);
    EXPECT_TRUE(layer->FindField("DEPTH ").isNull());
    EXPECT_EQ(layer->GetFields()->GetField(1)->GetAliasName(), TsString("Well name"));
    EXPECT_TRUE(layer->GetFields()->GetField(3).isNull());
}

TEST_F(MemoryLayerTest, ValuesTakeTheTypeOfTheirField)
{
    const TsRefPtr<TsFeature> feature = layer->GetFeature(2);
    TsVariant value;
    ASSERT_TRUE(feature->GetValue("DEPTH", value));
    EXPECT_EQ(value.GetType(), TsVariant::DoubleType);
    EXPECT_EQ(value.GetDouble(), 40.0);
    ASSERT_TRUE(feature->GetValue(0, value));
    EXPECT_EQ(value, TsVariant(std::int32_t{20}));
    EXPECT_FALSE(feature->GetValue("OWNER", value));
    EXPECT_TRUE(value.IsEmpty());
}

TEST_F(MemoryLayerTest, MissingValuesReadAsEmpty)
{
    TsVariant value("stale");
    EXPECT_TRUE(layer->GetFeature(4)->GetValue("NAME", value));
    EXPECT_EQ(value, TsVariant("East"));
    layer->AddField("OWNER", TsField::StringField);
    EXPECT_TRUE(layer->GetFeature(4)->GetValue("OWNER", value));
    EXPECT_TRUE(value.IsEmpty());
}

TEST_F(MemoryLayerTest, TooManyValuesAreRefused)
{
    EXPECT_EQ(layer->AddFeature({1, 2, 3, 4}), -1);
    EXPECT_EQ(layer->FeatureCount(), 4);
}

TEST_F(MemoryLayerTest, PointsReportTheirHeight)
{
    const auto withZ = layer->GetFeature(1)->GetGeometry().dynamicCast<TsGeoPoint>();
    ASSERT_FALSE(withZ.isNull());
    bool hasZ = false;
    ASSERT_TRUE(withZ->HasZ(hasZ));
    EXPECT_TRUE(hasZ);
    double x = 0, y = 0, z = 0;
    withZ->QueryCoordsXYZ(&x, &y, &z);
    EXPECT_EQ(z, 30.0);

    const auto flat = layer->GetFeature(2)->GetGeometry().dynamicCast<TsGeoPoint>();
    ASSERT_FALSE(flat.isNull());
    flat->HasZ(hasZ);
    EXPECT_FALSE(hasZ);
    z = -1.0;
    flat->QueryCoordsXYZ(nullptr, nullptr, &z);
    EXPECT_EQ(z, 0.0);
}

TEST_F(MemoryLayerTest, NonPointsAndMissingShapesAreNotPoints)
{
    EXPECT_TRUE(layer->GetFeature(3)->GetGeometry().dynamicCast<TsGeoPoint>().isNull());
    EXPECT_TRUE(layer->GetFeature(4)->GetGeometry().isNull());
}

TEST_F(MemoryLayerTest, EditsInAnOperationChangeTheFeatures)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    const TsRefPtr<TsLayerEditBuffer> buffer = layer->layer_edit_buffer();
    EXPECT_TRUE(buffer->ChangeAttribute(2, "depth", TsVariant("41.75"), false));
    EXPECT_TRUE(buffer->ChangeAttribute(3, "NAME", TsVariant(""), false));
    ASSERT_TRUE(layer->CommitOperation());

    EXPECT_EQ(valueOf(2, "DEPTH"), TsVariant(41.75));
    EXPECT_EQ(valueOf(3, "NAME"), TsVariant(""));
    EXPECT_EQ(layer->OperationsStarted(), 1);
    EXPECT_EQ(layer->OperationsCommitted(), 1);
    EXPECT_EQ(layer->AttributeChanges(), 2);
    EXPECT_FALSE(layer->IsInOperation());
}

TEST_F(MemoryLayerTest, ChangesOutsideAnOperationFail)
{
    EXPECT_FALSE(layer->layer_edit_buffer()->ChangeAttribute(1, "NAME", TsVariant("West"), false));
    EXPECT_EQ(valueOf(1, "NAME"), TsVariant("North"));
    EXPECT_EQ(layer->AttributeChanges(), 0);
    EXPECT_FALSE(layer->CommitOperation());
}

TEST_F(MemoryLayerTest, ChangesToUnknownFeaturesOrFieldsFail)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    const TsRefPtr<TsLayerEditBuffer> buffer = layer->layer_edit_buffer();
    EXPECT_FALSE(buffer->ChangeAttribute(9, "NAME", TsVariant("x"), false));
    EXPECT_FALSE(buffer->ChangeAttribute(1, "OWNER", TsVariant("x"), false));
    EXPECT_EQ(layer->AttributeChanges(), 0);
}

TEST_F(MemoryLayerTest, OnlyOneOperationIsOpenAtATime)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    EXPECT_FALSE(layer->StartOperation(nullptr));
    EXPECT_EQ(layer->OperationsStarted(), 1);
}

TEST_F(MemoryLayerTest, ReadOnlyLayerRefusesEdits)
{
    layer->SetReadOnly(true);
    EXPECT_FALSE(layer->StartOperation(nullptr));
    EXPECT_FALSE(layer->layer_edit_buffer()->ChangeAttribute(1, "NAME", TsVariant("West"), false));
    EXPECT_FALSE(layer->CommitOperation());
    EXPECT_EQ(valueOf(1, "NAME"), TsVariant("North"));
    EXPECT_EQ(layer->OperationsStarted(), 0);
}

TEST_F(MemoryLayerTest, StrictChangesRefuseValuesThatDoNotFit)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    const TsRefPtr<TsLayerEditBuffer> buffer = layer->layer_edit_buffer();
    EXPECT_FALSE(buffer->ChangeAttribute(1, "DEPTH", TsVariant("deep"), true));
    EXPECT_EQ(valueOf(1, "DEPTH"), TsVariant(12.5));
    EXPECT_TRUE(buffer->ChangeAttribute(1, "DEPTH", TsVariant("deep"), false));
    EXPECT_TRUE(valueOf(1, "DEPTH").IsNull());
}

TEST_F(MemoryLayerTest, AbortRestoresTheOldValues)
{
    ASSERT_TRUE(layer->StartOperation(nullptr));
    const TsRefPtr<TsLayerEditBuffer> buffer = layer->layer_edit_buffer();
    buffer->ChangeAttribute(1, "NAME", TsVariant("West"), false);
    buffer->ChangeAttribute(1, "NAME", TsVariant("Far West"), false);
    ASSERT_TRUE(layer->AbortOperation());
    EXPECT_EQ(valueOf(1, "NAME"), TsVariant("North"));
    EXPECT_EQ(layer->OperationsAborted(), 1);
    EXPECT_EQ(layer->OperationsCommitted(), 0);
}

TEST_F(MemoryLayerTest, FeaturesAlreadyReadKeepTheirValues)
{
    const TsRefPtr<TsFeature> before = layer->GetFeature(1);
    layer->StartOperation(nullptr);
    layer->layer_edit_buffer()->ChangeAttribute(1, "NAME", TsVariant("West"), false);
    layer->CommitOperation();
    TsVariant value;
    before->GetValue("NAME", value);
    EXPECT_EQ(value, TsVariant("North"));
}

TEST_F(MemoryLayerTest, CursorKeepsWhatItsFilterAdmittedWhenOpened)
{
    const TsRefPtr<TsFeatureCursor> cursor = layer->GetFeatureCursor(TsQueryFilter("ID = 10"));
    layer->StartOperation(nullptr);
    layer->layer_edit_buffer()->ChangeAttribute(1, "ID", TsVariant("11"), false);
    layer->CommitOperation();
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
