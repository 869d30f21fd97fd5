#include "tslayer.h"

namespace VyObjects {

TsLayer::TsLayer(const TsString& name, LayerType type)
    : m_name(name), m_type(type)
{
}

TsLayer::~TsLayer() = default;

} // namespace VyObjects
