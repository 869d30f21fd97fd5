// Streaming features out of an OGR layer. An OGR layer has one reading
// position and one attribute filter, shared by every reader of the layer; a
// reader that finds another has used the layer since it last read sets its
// filter again, starts over and skips the features it had already read.

#include "tsgdal_p.h"

#include <limits>

namespace VyObjects {

namespace {

// Applies filter's OGR part to layer, or, where OGR cannot read the clause,
// leaves the comparison to the filter.
void applyAttributeFilter(OGRLayer& layer, TsGdalFilter& filter)
{
    TsGdalErrorTrap trap;
    const QByteArray& clause = filter.ogrClause();
    if (layer.SetAttributeFilter(clause.isEmpty() ? nullptr : clause.constData()) == OGRERR_NONE)
        return;
    filter.evaluateHere();
    layer.SetAttributeFilter(nullptr);
}

// Reading only the ids skips the attributes and shapes, which most of a
// search's time goes to on wide layers. Drivers that leave the attribute
// filter to OGR still need the field it compares.
void ignoreFields(OGRLayer& layer, bool ignore, int filteredField)
{
    if (!ignore) {
        layer.SetIgnoredFields(nullptr);
        return;
    }
    OGRFeatureDefn& definition = *layer.GetLayerDefn();
    CPLStringList names;
    for (int i = 0; i < definition.GetFieldCount(); ++i) {
        if (i != filteredField)
            names.AddString(definition.GetFieldDefn(i)->GetNameRef());
    }
    names.AddString("OGR_GEOMETRY");
    names.AddString("OGR_STYLE");
    layer.SetIgnoredFields(const_cast<const char**>(names.List()));
}

} // namespace

bool TsGdalLayerState::isReading(const OGRLayer* layer, std::uint64_t reader) const
{
    const auto found = m_readers.find(layer);
    return found != m_readers.end() && found->second == reader;
}

TsGdalFeatureReader::TsGdalFeatureReader(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer,
                                         const TsRefPtr<TsFields>& fields, TsGdalFilter filter)
    : m_source(source),
      m_layer(layer),
      m_fields(fields),
      m_filter(std::move(filter)),
      m_reader(source->layerState().newReader())
{
}

TsRefPtr<TsFeature> TsGdalFeatureReader::next()
{
    if (m_finished)
        return nullptr;
    resume();
    TsGdalErrorTrap trap;
    while (OGRFeatureUniquePtr feature{m_layer->GetNextFeature()}) {
        ++m_consumed;
        TsRefPtr<TsFeature> made = makeFeature(*feature, m_fields);
        if (m_filter.admits(*made))
            return made;
    }
    m_finished = true;
    return nullptr;
}

const OGRFeature* TsGdalFeatureReader::nextOgrFeature()
{
    m_current.reset();
    if (m_finished)
        return nullptr;
    resume();
    TsGdalErrorTrap trap;
    while ((m_current = OGRFeatureUniquePtr{m_layer->GetNextFeature()})) {
        ++m_consumed;
        if (!m_filter.needsValues() || m_filter.admits(*makeFeature(*m_current, m_fields)))
            return m_current.get();
    }
    m_finished = true;
    return nullptr;
}

// Another reader of the same layer may have moved GDAL's cursor, and edits may wait to
// be written; either way this reader goes on where it stopped.
void TsGdalFeatureReader::resume()
{
    m_source->layerState().writePending();
    if (!m_source->layerState().isReading(m_layer, m_reader))
        restart();
}

void TsGdalFeatureReader::restart()
{
    TsGdalErrorTrap trap;
    m_layer->SetSpatialFilter(nullptr);
    applyAttributeFilter(*m_layer, m_filter);
    m_layer->ResetReading();
    for (long long skipped = 0; skipped < m_consumed; ++skipped)
        OGRFeatureUniquePtr{m_layer->GetNextFeature()};
    m_source->layerState().setReading(m_layer, m_reader);
}

bool searchIds(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer,
               const TsRefPtr<TsFields>& fields, TsGdalFilter filter, std::vector<int>& ids)
{
    TsGdalErrorTrap trap;
    ids.clear();
    TsGdalLayerState& state = source->layerState();
    state.writePending();
    state.interruptReading(layer);
    layer->SetSpatialFilter(nullptr);
    applyAttributeFilter(*layer, filter);
    const bool idsOnly = !filter.needsValues();
    ignoreFields(*layer, idsOnly, filter.ogrFieldIndex());
    layer->ResetReading();
    while (OGRFeatureUniquePtr feature{layer->GetNextFeature()}) {
        const GIntBig fid = feature->GetFID();
        if (fid < 0 || fid > std::numeric_limits<int>::max())
            continue;
        if (idsOnly || filter.admits(*makeFeature(*feature, fields)))
            ids.push_back(static_cast<int>(fid));
    }
    if (idsOnly)
        ignoreFields(*layer, false, -1);
    return true;
}

} // namespace VyObjects
