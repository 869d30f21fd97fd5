#pragma once

#include <QtGlobal>

namespace QXlsx::detail {

// Limits that keep a hostile file from taking unbounded time or memory. Both the zip
// layer, which counts inflated bytes, and the package reader, which counts sheets, keep
// to them, so they live below both.
struct ReadLimits
{
    qint64 maxPartSize = qint64(4) << 30;       // inflated bytes of one part
    qint64 maxTotalSize = qint64(16) << 30;     // inflated bytes of all parts read
    // Inflated / compressed, judged once a part passes 1 MiB, and for all parts read
    // together against the size of the package once they pass 64 MiB (entries may share
    // their compressed bytes). Deflate cannot pass about 1030, so a higher limit would
    // not stop anything; real sheets stay far below 100.
    qint64 maxCompressionRatio = 200;
    int maxParts = 100000;
    // Sheets listed by the workbook; each costs about a kilobyte even when its part is
    // missing, so a workbook part listing millions would take gigabytes. Later ones are
    // left out.
    int maxSheets = 65535;
};

} // namespace QXlsx::detail
