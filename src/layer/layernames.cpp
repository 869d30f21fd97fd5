#include "vygisutil.h"

#include <climits>
#include <string>

using VyObjects::TsLayer;
using VyObjects::TsRefPtr;
using VyObjects::TsString;

namespace {

// How the names of a map's layers stand to one base name: exact matches and numbered
// variants ("base-n") both count, and the variants' numbers give the highest in use.
struct NameUse
{
    int matches = 0;
    int highestNumber = 0;
    bool numberSeen = false;

    void take(const TsString& name, const TsString& base)
    {
        if (name.CompareNoCase(base) == 0) {
            ++matches;
            return;
        }
        // A name with more than one "-" is not a numbered variant of this base, which
        // is why a base that itself holds "-" only ever meets exact matches.
        const std::vector<TsString> parts = name.split(TsString("-"));
        if (parts.size() != 2 || parts[0].CompareNoCase(base) != 0)
            return;
        ++matches;
        const int number = parts[1].ToInt();
        if (!numberSeen || number > highestNumber)
            highestNumber = number;
        numberSeen = true;
    }

    // The number that follows the "-" of the new name. Held in 64 bits so that a
    // variant numbered INT_MAX is followed by INT_MAX + 1 rather than by an overflow.
    long long suffix() const
    {
        if (matches <= highestNumber)
            return static_cast<long long>(highestNumber) + 1;
        return matches;
    }
};

TsString numbered(const TsString& base, long long number)
{
    const TsString stem = base + "-";
    if (number <= INT_MAX)
        return stem + static_cast<int>(number);
    return stem + std::to_string(number).c_str();
}

} // namespace

void VyUniversalFunction::setLayerName(VyObjects::TsMap* map, TsRefPtr<TsLayer> layer)
{
    if (!map || !layer)
        return;
    const TsString base = layer->GetLayerName();
    NameUse use;
    for (const TsRefPtr<TsLayer>& other : map->GetLayers(true)) {
        if (other)
            use.take(other->GetLayerName(), base);
    }
    if (use.matches == 0)
        return;
    layer->SetLayerName(numbered(base, use.suffix()));
}
