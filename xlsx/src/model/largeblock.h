#pragma once

#include <cstddef>
#include <new>

namespace QXlsx::detail {

// Memory for the engine's big tables: the cells, the rows, the string pool. A sheet of
// millions of cells touches hundreds of megabytes of fresh memory, and on a virtual
// machine each first touch of a 4 KiB page costs several microseconds: more than
// everything else a write does. Blocks of 2 MiB and more are therefore aligned to the
// large page size and, where the system lets a program ask (Linux's transparent huge
// pages in "madvise" mode), asked to be backed by large pages, which a single fault maps.
// Elsewhere they are plain allocations.
constexpr std::size_t LargePageSize = std::size_t(2) << 20;

// alignment: a power of two the block's address must be a multiple of.
void* allocateLarge(std::size_t bytes, std::size_t alignment = alignof(std::max_align_t));
// bytes and alignment as given to allocateLarge.
void freeLarge(void* block, std::size_t bytes,
               std::size_t alignment = alignof(std::max_align_t)) noexcept;

// A standard allocator over allocateLarge, for vectors that grow big.
template <typename T>
struct LargeAllocator
{
    using value_type = T;
    LargeAllocator() = default;
    template <typename U>
    LargeAllocator(const LargeAllocator<U>&) noexcept {}
    T* allocate(std::size_t n) { return static_cast<T*>(allocateLarge(n * sizeof(T))); }
    void deallocate(T* p, std::size_t n) noexcept { freeLarge(p, n * sizeof(T)); }
    template <typename U>
    bool operator==(const LargeAllocator<U>&) const noexcept { return true; }
    template <typename U>
    bool operator!=(const LargeAllocator<U>&) const noexcept { return false; }
};

} // namespace QXlsx::detail
