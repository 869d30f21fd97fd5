// The CRC-32 of zip entries from each library that offers it: zlib (crc32_z), ISA-L
// (crc32_gzip_refl) and libdeflate (libdeflate_crc32) where they are installed, over one
// buffer whole and in the 256 KiB pieces the zip reader and writer check. The buffer is
// sheet XML as saves write it; all must agree. Median of five runs, in GB/s.
//
//     bench_crc [megabytes]        (150 by default)

#include "benchclock.h"

#include <zlib.h>
#if defined(VYGIS_BENCH_HAVE_ISAL)
#include <isa-l/crc.h>
#endif
#if defined(VYGIS_BENCH_HAVE_LIBDEFLATE)
#include <libdeflate.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr size_t Piece = 256 * 1024;
constexpr int Runs = 5;

using Crc = unsigned (*)(unsigned crc, const unsigned char* data, size_t size);

std::string sheetXml(size_t bytes)
{
    std::string xml;
    xml.reserve(bytes + 64);
    for (unsigned row = 3; xml.size() < bytes; ++row) {
        xml += "<row r=\"" + std::to_string(row) + "\">";
        for (char column = 'A'; column <= 'J'; ++column)
            xml += std::string("<c r=\"") + column + std::to_string(row) + "\" s=\"1\" t=\"s\"><v>"
                + std::to_string(row * 10 + unsigned(column - 'A')) + "</v></c>";
        xml += "</row>";
    }
    xml.resize(bytes);
    return xml;
}

unsigned withZlib(unsigned crc, const unsigned char* data, size_t size)
{
    return unsigned(crc32_z(crc, data, size));
}
#if defined(VYGIS_BENCH_HAVE_ISAL)
unsigned withIsal(unsigned crc, const unsigned char* data, size_t size)
{
    return crc32_gzip_refl(crc, data, size);
}
#endif
#if defined(VYGIS_BENCH_HAVE_LIBDEFLATE)
unsigned withLibdeflate(unsigned crc, const unsigned char* data, size_t size)
{
    return libdeflate_crc32(crc, data, size);
}
#endif

unsigned checksum(Crc crc, const std::string& buffer, size_t piece)
{
    const auto* data = reinterpret_cast<const unsigned char*>(buffer.data());
    unsigned value = 0;
    for (size_t from = 0; from < buffer.size(); from += piece)
        value = crc(value, data + from, std::min(piece, buffer.size() - from));
    return value;
}

void measure(const char* library, Crc crc, const std::string& buffer, unsigned expected)
{
    for (const size_t piece : {buffer.size(), Piece}) {
        std::vector<double> seconds;
        unsigned value = 0;
        for (int run = 0; run < Runs; ++run) {
            bench::Stopwatch clock;
            value = checksum(crc, buffer, piece);
            seconds.push_back(clock.cpuSeconds());
        }
        std::sort(seconds.begin(), seconds.end());
        const double median = seconds[Runs / 2];
        std::printf("%-11s %-14s %8.4f s %7.2f GB/s%s\n", library,
                    piece == buffer.size() ? "whole buffer" : "256 KiB pieces", median,
                    double(buffer.size()) / median / 1e9, value == expected ? "" : "  WRONG CRC");
    }
}

} // namespace

int main(int argc, char** argv)
{
    const long megabytes = argc > 1 ? std::atol(argv[1]) : 150;
    if (megabytes <= 0)
        return std::fprintf(stderr, "usage: bench_crc [megabytes]\n"), 2;
    const std::string buffer = sheetXml(size_t(megabytes) << 20);
    const unsigned expected = checksum(withZlib, buffer, buffer.size());
    std::printf("%ld MiB of sheet XML, CRC-32 %08x\n", megabytes, expected);
    measure("zlib", withZlib, buffer, expected);
#if defined(VYGIS_BENCH_HAVE_ISAL)
    measure("ISA-L", withIsal, buffer, expected);
#endif
#if defined(VYGIS_BENCH_HAVE_LIBDEFLATE)
    measure("libdeflate", withLibdeflate, buffer, expected);
#endif
    return 0;
}
