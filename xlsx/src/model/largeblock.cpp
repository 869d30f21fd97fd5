#include "largeblock.h"

#include <QtGlobal>

#include <algorithm>

#if defined(Q_OS_LINUX)
#include <sys/mman.h>
#endif

namespace QXlsx::detail {

namespace {

bool isLarge(std::size_t bytes)
{
    return bytes >= LargePageSize;
}

std::size_t blockAlignment(std::size_t bytes, std::size_t alignment)
{
    return isLarge(bytes) ? std::max(alignment, LargePageSize) : alignment;
}

} // namespace

void* allocateLarge(std::size_t bytes, std::size_t alignment)
{
    alignment = blockAlignment(bytes, alignment);
    if (alignment <= alignof(std::max_align_t))
        return ::operator new(bytes);
    void* block = ::operator new(bytes, std::align_val_t(alignment));
#if defined(Q_OS_LINUX) && defined(MADV_HUGEPAGE)
    // Only a hint: where large pages are off or exhausted the block works as it is.
    if (isLarge(bytes))
        madvise(block, bytes & ~(LargePageSize - 1), MADV_HUGEPAGE);
#endif
    return block;
}

void freeLarge(void* block, std::size_t bytes, std::size_t alignment) noexcept
{
    alignment = blockAlignment(bytes, alignment);
    if (alignment <= alignof(std::max_align_t))
        ::operator delete(block);
    else
        ::operator delete(block, std::align_val_t(alignment));
}

} // namespace QXlsx::detail
