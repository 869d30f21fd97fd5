// The CRC-32 of zip entries, from ISA-L or zlib as the engine is built: the value every
// other zip reader checks, however the bytes are split.

#include "zip/crc32.h"
#include "zip/zipwriter.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <zip.h>
#include <zlib.h>

#include <memory>

using namespace QXlsx::detail;

namespace {

QByteArray sheetLikeBytes(int size)
{
    QByteArray bytes;
    for (int i = 0; bytes.size() < size; ++i)
        bytes += "<c r=\"A" + QByteArray::number(i) + "\"><v>" + QByteArray::number(i * 7919 % 10007) + "</v></c>";
    bytes.resize(size);
    return bytes;
}

quint32 zlibCrc(const QByteArray& bytes)
{
    return quint32(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.constData()), size_t(bytes.size())));
}

quint32 crcInPieces(const QByteArray& bytes, int piece)
{
    quint32 crc = 0;
    for (int at = 0; at < bytes.size(); at += piece)
        crc = updateCrc32(crc, bytes.constData() + at, size_t(qMin(piece, bytes.size() - at)));
    return crc;
}

} // namespace

TEST(ZipCrc, GivesTheStandardValueWholeOrContinuedOverPieces)
{
    const QByteArray big = sheetLikeBytes(1 << 20);
    const struct
    {
        const char* label;
        QByteArray bytes;
        quint32 crc;
    } cases[] = {
        {"nothing", QByteArray(), 0},
        {"the check value of CRC-32", "123456789", 0xCBF43926u},
        {"a megabyte of sheet XML", big, zlibCrc(big)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(updateCrc32(0, c.bytes.constData(), size_t(c.bytes.size())), c.crc);
        for (int piece : {1, 7, 4096, 256 * 1024})
            EXPECT_EQ(crcInPieces(c.bytes, piece), c.crc) << "pieces of " << piece;
    }
}

TEST(ZipCrc, WrittenEntriesCarryTheCrcLibzipChecks)
{
    const QByteArray text = sheetLikeBytes(3 << 20);
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    ZipWriter writer(device);
    ASSERT_TRUE(writer.beginEntry("xl/worksheets/sheet1.xml"));
    for (int at = 0; at < text.size(); at += 99991)
        ASSERT_TRUE(writer.write(text.constData() + at, qMin(99991, text.size() - at)));
    ASSERT_TRUE(writer.finish());

    const QByteArray bytes = device.data();
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(bytes.constData(), zip_uint64_t(bytes.size()), 0, &error);
    ASSERT_NE(source, nullptr);
    std::unique_ptr<zip_t, void (*)(zip_t*)> archive(zip_open_from_source(source, ZIP_RDONLY, &error), zip_discard);
    ASSERT_NE(archive, nullptr);
    zip_stat_t stat;
    ASSERT_EQ(zip_stat_index(archive.get(), 0, 0, &stat), 0);
    EXPECT_EQ(stat.crc, zlibCrc(text));
    // libzip compares the CRC of what it inflated with the recorded one at the end.
    std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(zip_fopen_index(archive.get(), 0, 0), zip_fclose);
    ASSERT_NE(file, nullptr);
    QByteArray read(text.size() + 1, '\0');
    EXPECT_EQ(zip_fread(file.get(), read.data(), zip_uint64_t(read.size())), text.size());
}
