#include "readprogress.h"

using namespace VyObjects;

namespace {

class ProgressFeatureCursor : public TsFeatureCursor
{
public:
    ProgressFeatureCursor(TsRefPtr<TsFeatureCursor> cursor, long long total, const QString& afterwards,
                          TerminalProgress& progress)
        : m_cursor(std::move(cursor)), m_total(total), m_afterwards(afterwards), m_progress(progress)
    {
    }

    TsRefPtr<TsFeature> NextFeature() override
    {
        TsRefPtr<TsFeature> feature = m_cursor->NextFeature();
        if (feature)
            m_progress.count(++m_read, m_total, QStringLiteral("features"));
        else
            m_progress.step(m_afterwards);
        return feature;
    }

private:
    TsRefPtr<TsFeatureCursor> m_cursor;
    long long m_total;
    long long m_read = 0;
    QString m_afterwards;
    TerminalProgress& m_progress;
};

class ProgressRowCursor : public TsRowCursor
{
public:
    ProgressRowCursor(TsRefPtr<TsRowCursor> cursor, const QString& afterwards, TerminalProgress& progress)
        : m_cursor(std::move(cursor)), m_afterwards(afterwards), m_progress(progress)
    {
    }

    TsRefPtr<TsRow> NextRow() override
    {
        TsRefPtr<TsRow> row = m_cursor->NextRow();
        if (row)
            m_progress.count(++m_read, -1, QStringLiteral("rows"));
        else
            m_progress.step(m_afterwards);
        return row;
    }

private:
    TsRefPtr<TsRowCursor> m_cursor;
    long long m_read = 0;
    QString m_afterwards;
    TerminalProgress& m_progress;
};

} // namespace

ProgressFeatureLayer::ProgressFeatureLayer(const TsRefPtr<TsFeatureLayer>& layer, long long total,
                                           const QString& afterwards, TerminalProgress& progress)
    : TsFeatureLayer(layer->GetLayerName(), layer->GetLayerType()),
      m_layer(layer),
      m_total(total),
      m_afterwards(afterwards),
      m_progress(progress)
{
}

TsRefPtr<TsField> ProgressFeatureLayer::FindField(const TsString& name) const
{
    return m_layer->FindField(name);
}

TsRefPtr<TsFeatureCursor> ProgressFeatureLayer::GetFeatureCursor(const TsQueryFilter& filter)
{
    TsRefPtr<TsFeatureCursor> cursor = m_layer->GetFeatureCursor(filter);
    if (!cursor)
        return cursor;
    return TsRefPtr<ProgressFeatureCursor>::create(std::move(cursor), m_total, m_afterwards, m_progress);
}

bool ProgressFeatureLayer::Search(const TsQueryFilter& filter, std::vector<int>& ids)
{
    return m_layer->Search(filter, ids);
}

TsRefPtr<TsLayerEditBuffer> ProgressFeatureLayer::layer_edit_buffer()
{
    return m_layer->layer_edit_buffer();
}

ProgressTable::ProgressTable(const TsRefPtr<TsTable>& table, const QString& afterwards,
                             TerminalProgress& progress)
    : m_table(table), m_afterwards(afterwards), m_progress(progress)
{
}

TsRefPtr<TsRowCursor> ProgressTable::GetRowCursor(const TsQueryFilter& filter)
{
    TsRefPtr<TsRowCursor> cursor = m_table->GetRowCursor(filter);
    if (!cursor)
        return cursor;
    return TsRefPtr<ProgressRowCursor>::create(std::move(cursor), m_afterwards, m_progress);
}

ProgressRaster::ProgressRaster(TsRefPtr<TsRasterProps> raster, long long total, TerminalProgress& progress)
    : m_raster(std::move(raster)), m_total(total), m_progress(progress)
{
}

TsRefPtr<TsPixelBlock> ProgressRaster::CreatePixelBlock(const TsSize& size) const
{
    return m_raster->CreatePixelBlock(size);
}

bool ProgressRaster::ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const
{
    const bool held = m_raster->ReadPixelBlock(cell, block, level);
    m_progress.count(++m_read, m_total, QStringLiteral("points"));
    return held;
}
