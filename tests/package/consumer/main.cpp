// Includes the library's header and a host header as users write them, and calls the
// library with the host's objects.
#include "vygisutil.h"
#include "tsmap.h"

#include <cstdio>

using namespace VyObjects;

int main()
{
    auto map = TsRefPtr<TsMap>::create();
    map->AddLayer(TsRefPtr<TsLayer>::create(TsString("roads"), TsLayer::LineLayer));
    auto added = TsRefPtr<TsLayer>::create(TsString("roads"), TsLayer::LineLayer);
    VyUniversalFunction::setLayerName(map.get(), added);
    std::printf("%s\n", added->GetLayerName().toUtf8().c_str());
    return 0;
}
