#pragma once

#include "tsraster.h"

#include <QString>

#include <vector>

// A raster that passes every call on to another and notes, read by read, whether the
// cell read held a value. The elevation report takes whatever number a cell gives, a
// no-data number included; the notes let the command put the report's out-of-range
// text in place of those numbers afterwards.
class ReadRecordingRaster : public VyObjects::TsRasterProps
{
public:
    explicit ReadRecordingRaster(VyObjects::TsRefPtr<VyObjects::TsRasterProps> raster);

    // One entry per read, in the order of the reads: true where the cell held a value.
    const std::vector<bool>& reads() const { return m_reads; }
    bool anyReadWithoutValue() const;

    VyObjects::TsRect GetExtent() const override { return m_raster->GetExtent(); }
    double GetPixelSizeX() const override { return m_raster->GetPixelSizeX(); }
    double GetPixelSizeY() const override { return m_raster->GetPixelSizeY(); }
    int GetColumnCount() const override { return m_raster->GetColumnCount(); }
    int GetRowCount() const override { return m_raster->GetRowCount(); }
    VyObjects::TsRefPtr<VyObjects::TsPixelBlock> CreatePixelBlock(
        const VyObjects::TsSize& size) const override;
    bool ReadPixelBlock(VyObjects::TsPoint cell, VyObjects::TsPixelBlock* block,
                        int level) const override;

protected:
    ~ReadRecordingRaster() override;

private:
    VyObjects::TsRefPtr<VyObjects::TsRasterProps> m_raster;
    mutable std::vector<bool> m_reads;
};

// The text the elevation report writes for a point outside the raster.
QString outOfRangeText();

// Rewrites the elevation report at path so that each elevation read from a cell without
// a value shows outOfRangeText() instead, columns B and C sized for the elevations that
// remain. The report writes an elevation in column C exactly for the points whose cell
// it read, in list order, so its n-th elevation row goes with the n-th read. False, with
// the reason, when the report and the reads disagree or the save fails.
bool markCellsWithoutValue(const QString& path, const std::vector<bool>& reads, QString* reason);
