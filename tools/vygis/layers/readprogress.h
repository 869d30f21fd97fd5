#pragma once

#include "terminalprogress.h"
#include "tsraster.h"
#include "tsfeaturelayer.h"
#include "tstable.h"

#include <QString>

// Stand-ins for what a library job reads: every call goes to the real layer, table or
// raster, and on the way the progress line counts what was read, "N of M" where the
// total is known beforehand. Once a cursor has handed out its last record the job's
// own step is all that is left (the save, mostly), and the line says so.

// A feature layer whose cursors count the features they hand out, of total.
class ProgressFeatureLayer : public VyObjects::TsFeatureLayer
{
public:
    ProgressFeatureLayer(const VyObjects::TsRefPtr<VyObjects::TsFeatureLayer>& layer, long long total,
                         const QString& afterwards, TerminalProgress& progress);

    VyObjects::TsQueryFilter query_filter() const override { return m_layer->query_filter(); }
    VyObjects::TsRefPtr<VyObjects::TsFields> GetFields() const override { return m_layer->GetFields(); }
    VyObjects::TsRefPtr<VyObjects::TsField> FindField(const VyObjects::TsString& name) const override;
    VyObjects::TsRefPtr<VyObjects::TsFeatureCursor> GetFeatureCursor(const VyObjects::TsQueryFilter& filter) override;
    bool Search(const VyObjects::TsQueryFilter& filter, std::vector<int>& ids) override;
    VyObjects::TsRefPtr<VyObjects::TsFeature> GetFeature(int id) override { return m_layer->GetFeature(id); }
    bool StartOperation(VyObjects::TsEditor* editor) override { return m_layer->StartOperation(editor); }
    VyObjects::TsRefPtr<VyObjects::TsLayerEditBuffer> layer_edit_buffer() override;
    bool CommitOperation() override { return m_layer->CommitOperation(); }
    bool AbortOperation() override { return m_layer->AbortOperation(); }

private:
    VyObjects::TsRefPtr<VyObjects::TsFeatureLayer> m_layer;
    long long m_total;
    QString m_afterwards;
    TerminalProgress& m_progress;
};

// A table whose cursors count the rows they hand out; their number is not known
// beforehand, since only a second pass over the table would tell.
class ProgressTable : public VyObjects::TsTable
{
public:
    ProgressTable(const VyObjects::TsRefPtr<VyObjects::TsTable>& table, const QString& afterwards,
                  TerminalProgress& progress);

    VyObjects::TsString GetTableName() const override { return m_table->GetTableName(); }
    VyObjects::TsRefPtr<VyObjects::TsFields> GetFields() const override { return m_table->GetFields(); }
    VyObjects::TsRefPtr<VyObjects::TsRowCursor> GetRowCursor(const VyObjects::TsQueryFilter& filter) override;

private:
    VyObjects::TsRefPtr<VyObjects::TsTable> m_table;
    QString m_afterwards;
    TerminalProgress& m_progress;
};

// A raster that counts the cells read, one a point, of total points.
class ProgressRaster : public VyObjects::TsRasterProps
{
public:
    ProgressRaster(VyObjects::TsRefPtr<VyObjects::TsRasterProps> raster, long long total,
                   TerminalProgress& progress);

    VyObjects::TsRect GetExtent() const override { return m_raster->GetExtent(); }
    double GetPixelSizeX() const override { return m_raster->GetPixelSizeX(); }
    double GetPixelSizeY() const override { return m_raster->GetPixelSizeY(); }
    int GetColumnCount() const override { return m_raster->GetColumnCount(); }
    int GetRowCount() const override { return m_raster->GetRowCount(); }
    VyObjects::TsRefPtr<VyObjects::TsPixelBlock> CreatePixelBlock(const VyObjects::TsSize& size) const override;
    bool ReadPixelBlock(VyObjects::TsPoint cell, VyObjects::TsPixelBlock* block, int level) const override;

private:
    VyObjects::TsRefPtr<VyObjects::TsRasterProps> m_raster;
    long long m_total;
    mutable long long m_read = 0;
    TerminalProgress& m_progress;
};
