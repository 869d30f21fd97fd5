#include "hosttesting.h"

#include "tsmap.h"
#include "tsmemorylayer.h"

using namespace VyObjects;

using MapTest = ReferenceBalanceTest;

namespace {
std::vector<TsString> namesOf(const std::vector<TsRefPtr<TsLayer>>& layers)
{
    std::vector<TsString> names;
    for (const TsRefPtr<TsLayer>& layer : layers)
        names.push_back(layer->GetLayerName());
    return names;
}
} // namespace

TEST_F(MapTest, HoldsEachLayerOnceListsHiddenOnesOnlyOnRequestAndLetsRemovedOnesGo)
{
    const auto map = TsRefPtr<TsMap>::create();
    const auto roads = TsRefPtr<TsMemoryFeatureLayer>::create("roads", TsLayer::LineLayer);
    const auto labels = TsRefPtr<TsLayer>::create("labels", TsLayer::AnnotationLayer);
    labels->SetVisible(false);
    map->AddLayer(roads);
    map->AddLayer(labels);
    map->AddLayer(roads);
    map->AddLayer(TsRefPtr<TsLayer>());
    EXPECT_EQ(map->GetLayerCount(), 2);
    EXPECT_EQ(namesOf(map->GetLayers(true)), (std::vector<TsString>{"roads", "labels"}));
    EXPECT_EQ(namesOf(map->GetLayers(false)), (std::vector<TsString>{"roads"}));
    // A removed layer leaves the map and its reference.
    EXPECT_TRUE(map->RemoveLayer(roads));
    EXPECT_FALSE(map->RemoveLayer(roads));
    EXPECT_EQ(namesOf(map->GetLayers(true)), (std::vector<TsString>{"labels"}));
    EXPECT_EQ(roads->RefCount(), 1);
}
