#pragma once

#include <QtGlobal>

#include <cstddef>

namespace QXlsx::detail {

// The CRC-32 of zip entries, continued over data: start from 0 and feed the pieces in
// order. ISA-L computes it where the engine is built with it, zlib otherwise.
quint32 updateCrc32(quint32 crc, const char* data, size_t size);

} // namespace QXlsx::detail
