#include "libtesting.h"

#include <string>
#include <vector>

using namespace VyObjects;

namespace {

TsRefPtr<TsLayer> layerNamed(const std::string& name)
{
    return TsRefPtr<TsLayer>::create(TsString(name.c_str()), TsLayer::LineLayer);
}

std::string nameOf(const TsRefPtr<TsLayer>& layer)
{
    return layer->GetLayerName().toUtf8();
}

// Every test also checks that the call gives back each reference it took.
class UniqueLayerName : public ReferenceBalanceTest
{
protected:
    TsRefPtr<TsMap> mapWith(const std::vector<std::string>& names)
    {
        auto map = TsRefPtr<TsMap>::create();
        for (const std::string& name : names)
            map->AddLayer(layerNamed(name));
        return map;
    }
};

TEST_F(UniqueLayerName, NumbersANameAlreadyTaken)
{
    struct Case { std::string base; std::vector<std::string> inMap; std::string expected; };
    const Case cases[] = {
        {"roads", {}, "roads"},
        {"roads", {"rivers", "lakes-1"}, "roads"},
        {"roads", {"roads"}, "roads-1"},
        {"roads", {"roads", "roads-1"}, "roads-2"},
        {"roads", {"ROADS", "Roads-1"}, "roads-2"},
        {"roads", {"roads-5"}, "roads-6"},
        {"roads", {"roads", "roads-2"}, "roads-3"},
        {"roads", {"roads-1"}, "roads-2"},
        {"roads", {"roads", "roads-1", "roads-3"}, "roads-4"},
        {"roads", {"roads", "ROADS", "roads-1"}, "roads-3"},
        {"roads", {"roads-x-1"}, "roads"},
        {"Roads", {"roads"}, "Roads-1"},
        {"main-road", {"main-road-1"}, "main-road"},
        {"main-road", {"main-road"}, "main-road-1"},
        {"roads", {"roads-x"}, "roads-1"},
        {"roads", {"roads-2147483647"}, "roads-2147483648"},
    };
    for (const Case& c : cases) {
        const TsRefPtr<TsLayer> layer = layerNamed(c.base);
        const TsRefPtr<TsMap> map = mapWith(c.inMap);
        VyUniversalFunction::setLayerName(map.get(), layer);
        EXPECT_EQ(nameOf(layer), c.expected) << c.base << " among " << c.inMap.size() << " names";
    }
}

TEST_F(UniqueLayerName, NullMapOrLayerChangesNothing)
{
    const TsRefPtr<TsLayer> layer = layerNamed("roads");
    VyUniversalFunction::setLayerName(nullptr, layer);
    EXPECT_EQ(nameOf(layer), "roads");

    const TsRefPtr<TsMap> map = mapWith({"roads"});
    VyUniversalFunction::setLayerName(map.get(), nullptr);
    EXPECT_EQ(nameOf(map->GetLayers(true).front()), "roads");
}

TEST_F(UniqueLayerName, CountsTheLayerItselfAndHiddenLayers)
{
    const TsRefPtr<TsMap> map = mapWith({"roads-1", "roads"});
    const TsRefPtr<TsLayer> hidden = map->GetLayers(true).back();
    hidden->SetVisible(false);
    const TsRefPtr<TsLayer> layer = layerNamed("roads");
    map->AddLayer(layer);
    VyUniversalFunction::setLayerName(map.get(), layer);
    EXPECT_EQ(nameOf(layer), "roads-3");
    EXPECT_EQ(nameOf(hidden), "roads");
}

} // namespace
