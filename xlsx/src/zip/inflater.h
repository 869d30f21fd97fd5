#pragma once

#include <QtGlobal>

#include <memory>

namespace QXlsx::detail {

// A raw deflate stream inflated piece by piece: ISA-L where the engine is built with it,
// zlib otherwise. Inflating the sheet and the shared strings is a sixth of opening a big
// workbook through zlib; ISA-L takes about a third of zlib's time for the same bytes.
class Inflater
{
public:
    enum Status { More, Ended, Damaged };

    Inflater();
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    bool isValid() const;
    bool needsInput() const;
    // The next compressed bytes; they must stay where they are until consumed.
    void setInput(const char* data, size_t size);
    // Inflates into output up to capacity bytes; *produced gets how many were written.
    Status inflate(char* output, size_t capacity, size_t* produced);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace QXlsx::detail
