#pragma once

// The names styles.xml gives to the Format enumerations, indexed by enum value: the
// reader looks a name up, the writer writes the name of a value.

namespace QXlsx::detail {

inline constexpr const char* BorderStyles[] = {
    "none", "thin", "medium", "dashed", "dotted", "thick", "double", "hair", "mediumDashed",
    "dashDot", "mediumDashDot", "dashDotDot", "mediumDashDotDot", "slantDashDot"};
inline constexpr const char* Patterns[] = {
    "none", "solid", "mediumGray", "darkGray", "lightGray", "darkHorizontal", "darkVertical",
    "darkDown", "darkUp", "darkGrid", "darkTrellis", "lightHorizontal", "lightVertical",
    "lightDown", "lightUp", "lightGrid", "lightTrellis", "gray125", "gray0625"};
inline constexpr const char* HorizontalAlignments[] = {
    "general", "left", "center", "right", "fill", "justify", "centerContinuous", "distributed"};
inline constexpr const char* VerticalAlignments[] = {"top", "center", "bottom", "justify", "distributed"};
inline constexpr const char* Underlines[] = {"none", "single", "double", "singleAccounting", "doubleAccounting"};

} // namespace QXlsx::detail
