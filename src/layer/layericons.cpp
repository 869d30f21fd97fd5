#include "vygisutil.h"

#include "vygiscore.h"

namespace {

// The theme file that stands for a layer type; the theme finds the file itself.
QString iconNameOf(VyObjects::TsLayer::LayerType type)
{
    switch (static_cast<int>(type)) {
    case 1:
    case 2:
        return QStringLiteral("point.png");
    case 3:
        return QStringLiteral("line.png");
    case 4:
        return QStringLiteral("polygon.png");
    case 5:
        return QStringLiteral("annolayer.png");
    default:
        return QStringLiteral("layer.png");
    }
}

} // namespace

QIcon VyUniversalFunction::layertypeToIcon(VyObjects::TsLayer::LayerType type)
{
    return VyApplication::getThemeIcon(iconNameOf(type));
}
