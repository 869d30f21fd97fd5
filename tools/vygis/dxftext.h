#pragma once

// A text DXF read on its bytes as pairs of lines, a group code and its value, so that
// what is found can be changed without touching any other byte: no text codec, and the
// line ends (CRLF, LF or a mix of both) stay as they are.

#include <cstddef>
#include <string_view>

namespace DxfText {

// Whether bytes start as a text DXF does: after an optional UTF-8 byte order mark and
// any 999 comments, the pair 0 SECTION.
bool looksLikeDrawing(std::string_view bytes);

// Where the value of the $DWGCODEPAGE header variable stands.
struct CodePageValue
{
    enum Status {
        Found,
        NoVariable, // the drawing has no HEADER section or no $DWGCODEPAGE in it
        NoValue,    // $DWGCODEPAGE is not followed by a group code 3
    };

    Status status = NoVariable;
    // The value line without its line end, as an offset into the bytes.
    std::size_t start = 0;
    std::size_t length = 0;
    // The value as written, blanks around it left out.
    std::string_view value;
};

// Looks only through the HEADER section, the drawing's first, and stops at its ENDSEC.
CodePageValue findCodePageValue(std::string_view bytes);

// What a rewrite of every line that holds "ANSI_" would find: how many such lines there
// are, and how many of them are not already the line "ANSI_936". A last line without a
// line end is left out, as that rewrite leaves it as it is.
struct AnsiLines
{
    std::size_t holdingMarker = 0;
    std::size_t toRewrite = 0;
};

AnsiLines countAnsiLines(std::string_view bytes);

inline constexpr std::string_view wantedCodePage = "ANSI_936";

} // namespace DxfText
