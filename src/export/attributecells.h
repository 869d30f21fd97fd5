#pragma once

// What goes into the data cells of an attribute export: the value of each attribute
// and coordinate, as text or as a cell of its own type.

#include <QVariant>

namespace VyObjects { class TsVariant; }

namespace vygis {

// The ways an attribute export can fill its data cells. Only the cells' values differ:
// the title, the header and the cell formats are the same for all of them.
enum class CellValues {
    // Text cells: floating values with at most 8 decimals, as the application's number
    // texts show them; every other value as its own text. The application's layer and
    // coordinate exports write these.
    RoundedTexts,
    // Text cells holding each value's own text, a floating value as the shortest text
    // that reads back as the same number. The application's table export writes these.
    ExactTexts,
    // Cells of the value's own type, for computing in the workbook: numbers (the exact
    // double), booleans, dates (with a date format; a date-time with no time of day as a
    // date), an empty cell for a null, a text cell for a text. What a number cell cannot
    // hold stays text: a 64-bit integer beyond 2^53, NaN and the infinities.
    TypedCells
};

// Turns attribute values and coordinates into the cell values of one of the ways above.
class AttributeCells
{
public:
    explicit AttributeCells(CellValues values) : m_values(values) {}

    QVariant attribute(const VyObjects::TsVariant& value) const;
    QVariant coordinate(double value) const;

private:
    CellValues m_values;
};

} // namespace vygis
