#include "hosttesting.h"

#include "tsgeo.h"

using namespace VyObjects;

using RefPtrTest = ReferenceBalanceTest;

TEST_F(RefPtrTest, CopiesAndUpcastsShareOneObjectAndEachHoldsAReference)
{
    const auto point = TsRefPtr<TsGeoPoint>::create(1.0, 2.0);
    EXPECT_EQ(point->RefCount(), 1);
    {
        const TsRefPtr<TsGeoPoint> copy = point;
        const TsRefPtr<TsGeometry> geometry = point;
        EXPECT_EQ(copy.get(), point.get());
        EXPECT_EQ(geometry.get(), point.get());
        EXPECT_EQ(point->RefCount(), 3);
    }
    EXPECT_EQ(point->RefCount(), 1);
}

TEST_F(RefPtrTest, LastReleaseDestroysTheObjectMoveHandsTheReferenceOverAndAssignmentReleasesTheOld)
{
    const long long before = TsRefBase::LiveObjectCount();
    auto* point = new TsGeoPoint(1.0, 2.0);
    EXPECT_EQ(TsRefBase::LiveObjectCount(), before + 1);
    point->AddRef();
    point->AddRef();
    EXPECT_FALSE(point->Release());
    EXPECT_TRUE(point->Release());
    EXPECT_EQ(TsRefBase::LiveObjectCount(), before);

    auto holder = TsRefPtr<TsGeoPoint>::create(1.0, 2.0);
    const TsRefPtr<TsGeoPoint> moved = std::move(holder);
    EXPECT_TRUE(holder.isNull());
    EXPECT_EQ(moved->RefCount(), 1);
    holder = TsRefPtr<TsGeoPoint>::create(3.0, 4.0);
    holder = TsRefPtr<TsGeoPoint>::create(5.0, 6.0);
    EXPECT_EQ(TsRefBase::LiveObjectCount(), before + 2);
    EXPECT_EQ(holder->GetX(), 5.0);
    holder = holder;   // self-assignment keeps the object
    EXPECT_EQ(holder->RefCount(), 1);
}

TEST_F(RefPtrTest, DynamicCastGivesNullForAnotherKind)
{
    const TsRefPtr<TsGeometry> line = TsRefPtr<TsGeoPath>::create(
        TsGeometry::PolylineGeometry, std::vector<TsPoint>{{0, 0}, {1, 1}});
    EXPECT_TRUE(line.dynamicCast<TsGeoPoint>().isNull());

    const TsRefPtr<TsGeometry> point = TsRefPtr<TsGeoPoint>::create(1.0, 2.0);
    const TsRefPtr<TsGeoPoint> cast = point.dynamicCast<TsGeoPoint>();
    ASSERT_FALSE(cast.isNull());
    EXPECT_EQ(cast->RefCount(), 2);
}
