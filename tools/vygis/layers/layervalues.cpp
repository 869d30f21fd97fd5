#include "layervalues.h"

using namespace VyObjects;

CountedLayerValues::CountedLayerValues(TsGdalFeatureLayer& layer, long long total, const QString& afterwards,
                                       TerminalProgress& progress)
    : m_layer(layer), m_total(total), m_afterwards(afterwards), m_progress(progress)
{
}

bool CountedLayerValues::start(const TsQueryFilter& filter)
{
    m_reader = TsGdalValueReader::open(m_layer, filter);
    m_read = 0;
    return m_reader != nullptr;
}

bool CountedLayerValues::next()
{
    if (!m_reader->next()) {
        m_progress.step(m_afterwards);
        return false;
    }
    m_progress.count(++m_read, m_total, QStringLiteral("features"));
    return true;
}

QVariant CountedLayerValues::cell(int fieldIndex, const vygis::AttributeCells& cells)
{
    // A text is the same cell whichever values the export writes.
    QString text;
    if (m_reader->readText(fieldIndex, text))
        return text;
    TsVariant value;
    m_reader->readValue(fieldIndex, value);
    return cells.attribute(value);
}
