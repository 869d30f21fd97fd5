#pragma once

#include "xlsxcell.h"

#include <QtGlobal>

#include <cstddef>
#include <type_traits>
#include <vector>

namespace QXlsx::detail {

class WorkbookData;

static_assert(std::is_trivially_copyable_v<Cell>, "cells are moved as bytes");

// Where the cells of a workbook's sheets live. A sheet of millions of cells in one heap
// allocation per row would pay a malloc per row and a page fault per 4 KiB of fresh
// memory; here the rows' cell arrays are cut from large blocks, and an array a row
// outgrows, or a deleted sheet leaves, is kept for the next row that needs one of its
// size.
//
// A cell does not carry the address of its workbook: eight bytes more a cell would be a
// third more memory for a sheet of millions. The blocks are cut into granules aligned
// to their size, no array crosses a granule's end, and each granule starts with the
// workbook's address, so a cell finds it from its own. The sheets of a workbook share
// the granules: a workbook of thousands of small sheets takes one granule, not one each.
class CellArena
{
public:
    explicit CellArena(const WorkbookData* book) : m_book(book) {}
    ~CellArena();
    CellArena(const CellArena&) = delete;
    CellArena& operator=(const CellArena&) = delete;

    // Room for at least capacity cells (at most MaxColumns); *granted gets how many.
    Cell* allocate(quint32 capacity, quint32* granted);
    void release(Cell* cells, quint32 capacity);

    // Gives back all the memory; no cell may be left.
    void clear();

    // The workbook of a cell kept in any workbook's arena.
    static const WorkbookData* bookOf(const Cell* cell);

private:
    static int sizeClass(quint32 capacity, quint32* rounded);
    bool startGranule();
    void startBlock(size_t bytes);

    // The widest row, MaxColumns cells, fits a granule beside its header.
    static constexpr size_t GranuleBytes = size_t(512) << 10;
    static constexpr size_t GranuleHeaderBytes = 16;
    static_assert(sizeof(Cell) * MaxColumns + GranuleHeaderBytes <= GranuleBytes);
    static constexpr int ExactClasses = 32;   // arrays of 1 to 32 cells are sized exactly
    static constexpr int ClassCount = ExactClasses + 10;

    struct Block
    {
        char* data;
        size_t bytes;
    };
    std::vector<Block> m_blocks;
    const WorkbookData* m_book;
    char* m_next = nullptr;
    char* m_granuleEnd = nullptr;
    char* m_blockEnd = nullptr;
    void* m_free[ClassCount] = {};   // released arrays, each holding the next one's address
};

// The cells of one row, sorted by column, in memory of the sheet's CellArena. Reading
// needs nothing else; changing the row's length takes the arena.
class CellList
{
public:
    CellList() = default;
    CellList(CellList&& other) noexcept { swap(other); }
    CellList& operator=(CellList&& other) noexcept { swap(other); return *this; }
    CellList(const CellList&) = delete;
    CellList& operator=(const CellList&) = delete;

    Cell* begin() { return m_data; }
    Cell* end() { return m_data + m_size; }
    const Cell* begin() const { return m_data; }
    const Cell* end() const { return m_data + m_size; }
    Cell* data() { return m_data; }
    const Cell* data() const { return m_data; }
    size_t size() const { return m_size; }
    size_t capacity() const { return m_capacity; }
    bool empty() const { return m_size == 0; }
    Cell& front() { return m_data[0]; }
    Cell& back() { return m_data[m_size - 1]; }
    const Cell& front() const { return m_data[0]; }
    const Cell& back() const { return m_data[m_size - 1]; }
    Cell& operator[](size_t i) { return m_data[i]; }
    const Cell& operator[](size_t i) const { return m_data[i]; }

    void reserve(CellArena& arena, size_t capacity);
    Cell& append(CellArena& arena, const Cell& cell);
    Cell* insert(CellArena& arena, Cell* position, const Cell& cell);
    void erase(Cell* position);
    // Gives the arena back the room past size(), when it is worth a move.
    void shrink(CellArena& arena);
    // Gives the arena back all the room, leaving the list empty.
    void release(CellArena& arena);

private:
    void swap(CellList& other) noexcept;

    Cell* m_data = nullptr;
    quint32 m_size = 0;
    quint32 m_capacity = 0;
};

} // namespace QXlsx::detail
