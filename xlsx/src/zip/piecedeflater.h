#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace QXlsx::detail {

// Deflates the pieces of a zip entry. Each piece becomes raw deflate blocks, none of them
// final, that end on a byte boundary and refer to nothing before the piece, so pieces
// deflated apart (on several threads) join in order into one stream; the entry ends it
// with an empty final block.
//
// ISA-L, where the engine is built with it, deflates XML about seven times as fast as
// zlib at the level the engine used before (2), and a few per cent smaller; zlib is
// the fallback everywhere else. Saving is what users wait for, so neither goes beyond
// the fastest levels.
class PieceDeflater
{
public:
    enum class Library { Fastest, Zlib };

    explicit PieceDeflater(Library library = Library::Fastest);
    ~PieceDeflater();
    PieceDeflater(const PieceDeflater&) = delete;
    PieceDeflater& operator=(const PieceDeflater&) = delete;

    // Deflates size bytes at data into out, which grows as needed and is otherwise
    // reused; *outSize receives the bytes written. False when the library fails.
    bool deflate(const char* data, size_t size, std::vector<char>& out, size_t* outSize);

    // Whether Library::Fastest is ISA-L in this build.
    static bool fastestIsIsal();

private:
    struct Isal;
    struct Zlib;
    std::unique_ptr<Isal> m_isal;
    std::unique_ptr<Zlib> m_zlib;
};

} // namespace QXlsx::detail
