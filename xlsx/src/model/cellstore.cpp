#include "cellstore.h"

#include "largeblock.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace QXlsx::detail {

namespace {

// A workbook of a few cells touches one page of its first block, a granule; larger
// blocks double up to the size that gets large pages.
constexpr size_t MaxBlockBytes = 2 * LargePageSize;

} // namespace

CellArena::~CellArena()
{
    clear();
}

void CellArena::clear()
{
    for (const Block& block : m_blocks)
        freeLarge(block.data, block.bytes, GranuleBytes);
    m_blocks.clear();
    m_next = m_granuleEnd = m_blockEnd = nullptr;
    std::fill(std::begin(m_free), std::end(m_free), nullptr);
}

int CellArena::sizeClass(quint32 capacity, quint32* rounded)
{
    capacity = std::clamp<quint32>(capacity, 1, MaxColumns);
    if (capacity <= ExactClasses) {
        *rounded = capacity;
        return int(capacity) - 1;
    }
    int bits = 6;   // 64 cells, the smallest rounded class
    while ((quint32(1) << bits) < capacity)
        ++bits;
    *rounded = quint32(1) << bits;
    return ExactClasses + bits - 6;
}

const WorkbookData* CellArena::bookOf(const Cell* cell)
{
    const auto granule = reinterpret_cast<quintptr>(cell) & ~quintptr(GranuleBytes - 1);
    const WorkbookData* book = nullptr;
    std::memcpy(&book, reinterpret_cast<const void*>(granule), sizeof(book));
    return book;
}

// Moves on to the next granule of the current block, if it has one.
bool CellArena::startGranule()
{
    if (m_granuleEnd == m_blockEnd)
        return false;
    std::memcpy(m_granuleEnd, &m_book, sizeof(m_book));
    m_next = m_granuleEnd + GranuleHeaderBytes;
    m_granuleEnd += GranuleBytes;
    return true;
}

void CellArena::startBlock(size_t bytes)
{
    char* block = static_cast<char*>(allocateLarge(bytes, GranuleBytes));
    m_blocks.push_back({block, bytes});
    m_granuleEnd = block;
    m_blockEnd = block + bytes;
    startGranule();
}

Cell* CellArena::allocate(quint32 capacity, quint32* granted)
{
    const int index = sizeClass(capacity, granted);
    if (void* reused = m_free[index]) {
        std::memcpy(&m_free[index], reused, sizeof(void*));
        return static_cast<Cell*>(reused);
    }
    const size_t bytes = size_t(*granted) * sizeof(Cell);
    if (size_t(m_granuleEnd - m_next) < bytes && !startGranule()) {
        const size_t last = m_blocks.empty() ? GranuleBytes / 2 : m_blocks.back().bytes;
        startBlock(std::min(last * 2, MaxBlockBytes));
    }
    Cell* cells = reinterpret_cast<Cell*>(m_next);
    m_next += bytes;
    return cells;
}

void CellArena::release(Cell* cells, quint32 capacity)
{
    if (!cells)
        return;
    quint32 rounded = 0;
    const int index = sizeClass(capacity, &rounded);
    std::memcpy(static_cast<void*>(cells), &m_free[index], sizeof(void*));
    m_free[index] = cells;
}

void CellList::swap(CellList& other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
}

void CellList::reserve(CellArena& arena, size_t capacity)
{
    if (capacity <= m_capacity)
        return;
    quint32 granted = 0;
    Cell* cells = arena.allocate(quint32(std::min<size_t>(capacity, MaxColumns)), &granted);
    if (m_size)
        std::memcpy(static_cast<void*>(cells), m_data, m_size * sizeof(Cell));
    arena.release(m_data, m_capacity);
    m_data = cells;
    m_capacity = granted;
}

Cell& CellList::append(CellArena& arena, const Cell& cell)
{
    if (m_size == m_capacity)
        reserve(arena, std::max<size_t>(4, size_t(m_capacity) * 2));
    m_data[m_size] = cell;
    return m_data[m_size++];
}

Cell* CellList::insert(CellArena& arena, Cell* position, const Cell& cell)
{
    const size_t at = size_t(position - m_data);
    if (m_size == m_capacity)
        reserve(arena, std::max<size_t>(4, size_t(m_capacity) * 2));
    std::memmove(static_cast<void*>(m_data + at + 1), m_data + at, (m_size - at) * sizeof(Cell));
    m_data[at] = cell;
    ++m_size;
    return m_data + at;
}

void CellList::erase(Cell* position)
{
    const size_t at = size_t(position - m_data);
    std::memmove(static_cast<void*>(m_data + at), m_data + at + 1, (m_size - at - 1) * sizeof(Cell));
    --m_size;
}

void CellList::release(CellArena& arena)
{
    arena.release(m_data, m_capacity);
    m_data = nullptr;
    m_size = 0;
    m_capacity = 0;
}

void CellList::shrink(CellArena& arena)
{
    if (m_capacity <= m_size + m_size / 8 + 4)
        return;
    CellList exact;
    if (m_size) {
        exact.reserve(arena, m_size);
        std::memcpy(static_cast<void*>(exact.m_data), m_data, m_size * sizeof(Cell));
        exact.m_size = m_size;
    }
    arena.release(m_data, m_capacity);
    m_data = nullptr;
    m_capacity = 0;
    swap(exact);
}

} // namespace QXlsx::detail
