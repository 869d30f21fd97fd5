#include "elevationnodata.h"

#include "filesafety.h"
#include "xlsxcell.h"
#include "xlsxdocument.h"

#include <QObject>

#include <algorithm>

using namespace VyObjects;

ReadRecordingRaster::ReadRecordingRaster(TsRefPtr<TsRasterProps> raster)
    : m_raster(std::move(raster))
{
}

ReadRecordingRaster::~ReadRecordingRaster() = default;

bool ReadRecordingRaster::anyReadWithoutValue() const
{
    return std::find(m_reads.begin(), m_reads.end(), false) != m_reads.end();
}

TsRefPtr<TsPixelBlock> ReadRecordingRaster::CreatePixelBlock(const TsSize& size) const
{
    return m_raster->CreatePixelBlock(size);
}

bool ReadRecordingRaster::ReadPixelBlock(TsPoint cell, TsPixelBlock* block, int level) const
{
    const bool held = m_raster->ReadPixelBlock(cell, block, level);
    m_reads.push_back(held);
    return held;
}

QString outOfRangeText()
{
    return QObject::tr("Not within the range of Dem data!");
}

namespace {

QString textAt(const QXlsx::Document& report, int row, int column)
{
    const QXlsx::Cell* cell = report.cellAt(row, column);
    return cell ? cell->value().toString() : QString();
}

bool rowsDisagree(const QString& path, QString* reason)
{
    *reason = QStringLiteral("%1: the report's rows do not match the cells read, so its "
                             "no-data cells could not be marked").arg(path);
    return false;
}

} // namespace

bool markCellsWithoutValue(const QString& path, const std::vector<bool>& reads, QString* reason)
{
    QXlsx::Document report(path);
    if (!report.errorString().isEmpty()) {
        *reason = QStringLiteral("%1: the report could not be read back (%2)")
                      .arg(path, report.errorString());
        return false;
    }
    const QString outOfRange = outOfRangeText();
    std::size_t read = 0;
    int longestCoordinate = 0;
    int longestElevation = 0;
    for (int row = 2; row <= report.dimension().lastRow(); ++row) {
        const QString elevation = textAt(report, row, 3);
        if (elevation.isEmpty() || elevation == outOfRange)
            continue;
        if (read == reads.size())
            return rowsDisagree(path, reason);
        if (reads[read++]) {
            longestCoordinate = std::max(longestCoordinate, textAt(report, row, 2).size());
            longestElevation = std::max(longestElevation, elevation.size());
        } else {
            report.write(row, 3, outOfRange, report.cellAt(row, 3)->format());
        }
    }
    if (read != reads.size())
        return rowsDisagree(path, reason);
    // Messages do not widen the columns, as in the report itself.
    if (longestCoordinate > 0) {
        report.setColumnWidth(2, longestCoordinate + 10.0);
        report.setColumnWidth(3, longestElevation + 10.0);
    }
    if (report.saveAs(path))
        return true;
    *reason = QStringLiteral("%1: not saved: %2").arg(path, saveFailureReason(path));
    return false;
}
