#include "zip/inflater.h"

#if defined(VYGIS_XLSX_HAVE_ISAL)
#include <isa-l/igzip_lib.h>
#else
#include <zlib.h>
#endif

namespace QXlsx::detail {

#if defined(VYGIS_XLSX_HAVE_ISAL)

struct Inflater::State
{
    inflate_state stream;
    bool damaged = false;
};

Inflater::Inflater() : m_state(new State)
{
    isal_inflate_init(&m_state->stream);
    m_state->stream.crc_flag = ISAL_DEFLATE;   // raw deflate; the zip reader checks the CRC
}

Inflater::~Inflater() = default;

bool Inflater::isValid() const { return true; }

bool Inflater::needsInput() const { return m_state->stream.avail_in == 0; }

void Inflater::setInput(const char* data, size_t size)
{
    m_state->stream.next_in = reinterpret_cast<uint8_t*>(const_cast<char*>(data));
    m_state->stream.avail_in = quint32(size);
}

Inflater::Status Inflater::inflate(char* output, size_t capacity, size_t* produced)
{
    inflate_state& stream = m_state->stream;
    stream.next_out = reinterpret_cast<uint8_t*>(output);
    stream.avail_out = quint32(capacity);
    const int status = isal_inflate(&stream);
    *produced = capacity - stream.avail_out;
    if (status < 0)
        return Damaged;
    return stream.block_state == ISAL_BLOCK_FINISH ? Ended : More;
}

#else

struct Inflater::State
{
    z_stream stream{};
    bool valid = false;
};

Inflater::Inflater() : m_state(new State)
{
    m_state->valid = inflateInit2(&m_state->stream, -MAX_WBITS) == Z_OK;
}

Inflater::~Inflater()
{
    if (m_state->valid)
        inflateEnd(&m_state->stream);
}

bool Inflater::isValid() const { return m_state->valid; }

bool Inflater::needsInput() const { return m_state->stream.avail_in == 0; }

void Inflater::setInput(const char* data, size_t size)
{
    m_state->stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    m_state->stream.avail_in = uInt(size);
}

Inflater::Status Inflater::inflate(char* output, size_t capacity, size_t* produced)
{
    z_stream& stream = m_state->stream;
    stream.next_out = reinterpret_cast<Bytef*>(output);
    stream.avail_out = uInt(capacity);
    const int status = ::inflate(&stream, Z_NO_FLUSH);
    *produced = capacity - stream.avail_out;
    if (status == Z_STREAM_END)
        return Ended;
    return status == Z_OK ? More : Damaged;
}

#endif

} // namespace QXlsx::detail
