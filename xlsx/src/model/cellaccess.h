#pragma once

#include "xlsxcell.h"

namespace QXlsx::detail {

// The engine's own door into Cell records, which the public API keeps read-only.
struct CellAccess
{
    static Cell make(int column)
    {
        Cell c;
        c.m_column = quint16(column);
        return c;
    }
    static void setBlank(Cell& c) { c.m_type = Cell::BlankType; c.m_value.number = 0; }
    static void setNumber(Cell& c, double v) { c.m_type = Cell::NumberType; c.m_value.number = v; }
    static void setBoolean(Cell& c, bool v) { c.m_type = Cell::BooleanType; c.m_value.number = 0; c.m_value.boolean = v; }
    static void setString(Cell& c, quint32 index) { c.m_type = Cell::StringType; c.m_value.number = 0; c.m_value.index = index; }
    static void setError(Cell& c, quint32 index) { c.m_type = Cell::ErrorType; c.m_value.number = 0; c.m_value.index = index; }
    static void setStyle(Cell& c, quint32 style) { c.m_style = style; }
    static void setFlags(Cell& c, quint8 flags) { c.m_flags = flags; }

    static double number(const Cell& c) { return c.m_value.number; }
    static bool boolean(const Cell& c) { return c.m_value.boolean; }
    static quint32 stringIndex(const Cell& c) { return c.m_value.index; }
    static quint32 style(const Cell& c) { return c.m_style; }
    static quint8 flags(const Cell& c) { return c.m_flags; }
};

} // namespace QXlsx::detail
