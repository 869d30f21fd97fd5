#include "piecedeflater.h"

#include <zlib.h>

#if defined(VYGIS_XLSX_HAVE_ISAL)
#include <isa-l/igzip_lib.h>
#endif

namespace QXlsx::detail {

struct PieceDeflater::Zlib
{
    // Level 2: levels 1 and 2 cost the same, 2 is 5% smaller, 3 takes half as long again.
    static constexpr int Level = 2;

    z_stream z {};
    bool ready = deflateInit2(&z, Level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) == Z_OK;

    ~Zlib()
    {
        if (ready)
            deflateEnd(&z);
    }

    bool deflate(const char* data, size_t size, Output& out, size_t* outSize)
    {
        if (!ready || deflateReset(&z) != Z_OK)
            return false;
        // The bound covers the data; the sync flush adds an empty stored block of 5 bytes.
        const size_t bound = deflateBound(&z, uLong(size)) + 16;
        if (out.size() < bound)
            out.resize(bound);
        z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        z.avail_in = uInt(size);
        z.next_out = reinterpret_cast<Bytef*>(out.data());
        z.avail_out = uInt(out.size());
        for (;;) {
            if (::deflate(&z, Z_SYNC_FLUSH) == Z_STREAM_ERROR)
                return false;
            if (z.avail_in == 0 && z.avail_out != 0)
                break;
            const size_t used = out.size() - z.avail_out;
            out.resize(out.size() * 2);
            z.next_out = reinterpret_cast<Bytef*>(out.data() + used);
            z.avail_out = uInt(out.size() - used);
        }
        *outSize = out.size() - z.avail_out;
        return true;
    }
};

#if defined(VYGIS_XLSX_HAVE_ISAL)
struct PieceDeflater::Isal
{
    // Level 2 deflates as fast as level 1 and a few per cent smaller; level 3 takes
    // five times as long.
    static constexpr int Level = 2;

    std::vector<unsigned char> levelBuffer = std::vector<unsigned char>(ISAL_DEF_LVL2_DEFAULT);

    bool deflate(const char* data, size_t size, Output& out, size_t* outSize)
    {
        // Stateless deflate needs room for all of it: at worst the data as stored blocks
        // of at most 64 KiB, 5 bytes of header each, then the flush.
        const size_t bound = size + (size / 65535 + 2) * 5 + 64;
        if (out.size() < bound)
            out.resize(bound);
        isal_zstream stream;
        isal_deflate_stateless_init(&stream);
        stream.next_in = reinterpret_cast<uint8_t*>(const_cast<char*>(data));
        stream.avail_in = uint32_t(size);
        stream.next_out = reinterpret_cast<uint8_t*>(out.data());
        stream.avail_out = uint32_t(out.size());
        stream.level = Level;
        stream.level_buf = levelBuffer.data();
        stream.level_buf_size = uint32_t(levelBuffer.size());
        stream.end_of_stream = 0;
        stream.flush = FULL_FLUSH;   // byte aligned, and no history carried on
        if (isal_deflate_stateless(&stream) != COMP_OK || stream.avail_in != 0)
            return false;
        *outSize = out.size() - stream.avail_out;
        return true;
    }
};
#else
struct PieceDeflater::Isal
{
};
#endif

PieceDeflater::PieceDeflater(Library library)
{
#if defined(VYGIS_XLSX_HAVE_ISAL)
    if (library == Library::Fastest) {
        m_isal = std::make_unique<Isal>();
        return;
    }
#else
    (void)library;
#endif
    m_zlib = std::make_unique<Zlib>();
}

PieceDeflater::~PieceDeflater() = default;

bool PieceDeflater::deflate(const char* data, size_t size, Output& out, size_t* outSize)
{
#if defined(VYGIS_XLSX_HAVE_ISAL)
    // Pieces are far below 4 GiB; ISA-L counts in 32 bits.
    if (m_isal && size < (size_t(1) << 31))
        return m_isal->deflate(data, size, out, outSize);
#endif
    if (!m_zlib)
        m_zlib = std::make_unique<Zlib>();
    return m_zlib->deflate(data, size, out, outSize);
}

bool PieceDeflater::fastestIsIsal()
{
#if defined(VYGIS_XLSX_HAVE_ISAL)
    return true;
#else
    return false;
#endif
}

} // namespace QXlsx::detail
