#include "largeblock.h"

#include <QtGlobal>

#if defined(Q_OS_LINUX)
#include <sys/mman.h>
#endif

namespace QXlsx::detail {

namespace {

bool isLarge(std::size_t bytes)
{
    return bytes >= LargePageSize;
}

} // namespace

void* allocateLarge(std::size_t bytes)
{
    if (!isLarge(bytes))
        return ::operator new(bytes);
    void* block = ::operator new(bytes, std::align_val_t(LargePageSize));
#if defined(Q_OS_LINUX) && defined(MADV_HUGEPAGE)
    // Only a hint: where large pages are off or exhausted the block works as it is.
    madvise(block, bytes & ~(LargePageSize - 1), MADV_HUGEPAGE);
#endif
    return block;
}

void freeLarge(void* block, std::size_t bytes) noexcept
{
    if (!isLarge(bytes))
        ::operator delete(block);
    else
        ::operator delete(block, std::align_val_t(LargePageSize));
}

} // namespace QXlsx::detail
