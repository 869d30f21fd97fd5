#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace QXlsx::detail {

// An allocator whose vectors grow without zeroing what they add. A piece's output is
// sized for the worst case, several times what deflate fills; zeroing the rest would
// touch half a megabyte of fresh memory per piece for nothing.
template <typename T>
struct UninitializedAllocator : std::allocator<T>
{
    template <typename U>
    struct rebind { using other = UninitializedAllocator<U>; };
    UninitializedAllocator() = default;
    template <typename U>
    UninitializedAllocator(const UninitializedAllocator<U>&) noexcept {}
    template <typename U>
    void construct(U* p) noexcept { ::new (static_cast<void*>(p)) U; }
    template <typename U, typename... Args>
    void construct(U* p, Args&&... args) { ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...); }
};

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

    using Output = std::vector<char, UninitializedAllocator<char>>;

    // Deflates size bytes at data into out, which grows as needed and is otherwise
    // reused; *outSize receives the bytes written. False when the library fails.
    bool deflate(const char* data, size_t size, Output& out, size_t* outSize);

    // Whether Library::Fastest is ISA-L in this build.
    static bool fastestIsIsal();

private:
    struct Isal;
    struct Zlib;
    std::unique_ptr<Isal> m_isal;
    std::unique_ptr<Zlib> m_zlib;
};

} // namespace QXlsx::detail
