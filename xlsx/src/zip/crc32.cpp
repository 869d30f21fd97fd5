#include "zip/crc32.h"

#if defined(VYGIS_XLSX_HAVE_ISAL)
#include <isa-l/crc.h>
#else
#include <zlib.h>
#endif

namespace QXlsx::detail {

// Every byte a save writes or an open reads is checked, so the speed shows on big
// workbooks: ISA-L's CRC runs at about 23 GB/s here, zlib's at about 5 (libdeflate's,
// used before, at 10); bench/README.md has the figures.
quint32 updateCrc32(quint32 crc, const char* data, size_t size)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
#if defined(VYGIS_XLSX_HAVE_ISAL)
    return crc32_gzip_refl(crc, bytes, size);
#else
    return quint32(crc32_z(crc, bytes, size));
#endif
}

} // namespace QXlsx::detail
