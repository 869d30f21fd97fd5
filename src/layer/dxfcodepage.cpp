#include "vygisutil.h"

#include "tsqtext.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <limits>
#include <string_view>

namespace {

// Drawings of tens of megabytes are common, so the file goes through in blocks of this
// size; only the unfinished last line of a block is carried into the next.
constexpr qint64 blockSize = qint64(1) << 20;

constexpr std::string_view codePageMarker = "ANSI_";
constexpr std::string_view codePageLine = "ANSI_936";

// Lines come out with the line end of the platform, as a text-mode write gives them:
// the tools that read the drawing next run on the same machine.
#ifdef Q_OS_WIN
constexpr std::string_view lineEnd = "\r\n";
#else
constexpr std::string_view lineEnd = "\n";
#endif

void append(QByteArray& out, std::string_view bytes)
{
    out.append(bytes.data(), static_cast<int>(bytes.size()));
}

constexpr std::size_t none = std::string_view::npos;
constexpr bool platformEndsWithCr = lineEnd.size() == 2;

// The position of the first "\n" at or after from (a line start) whose line end is not
// the platform's, or none. Most drawings have none at all, so beyond the next line whole
// 64-byte stretches are tested at once in a loop without early exit, which the compiler
// turns into vector code.
std::size_t nextForeignLineEnd(std::string_view text, std::size_t from)
{
    constexpr std::size_t stretch = 64;
    const auto foreignAt = [text](std::size_t i) {
        return text[i] == '\n' && ((i > 0 && text[i - 1] == '\r') != platformEndsWithCr);
    };
    // Where one line end is foreign the next usually is too: try the next one first.
    const std::size_t next = text.find('\n', from);
    if (next == none || foreignAt(next))
        return next;
    std::size_t i = next + 1;
    for (; i + stretch <= text.size(); i += stretch) {
        bool any = false;
        for (std::size_t k = i; k < i + stretch; ++k)
            any |= (text[k] == '\n') & ((text[k - 1] == '\r') != platformEndsWithCr);
        if (any)
            break;
    }
    for (; i < text.size(); ++i) {
        if (foreignAt(i))
            return i;
    }
    return none;
}

// Rewrites the complete lines of text (each ends in "\n") into out: every line holding
// the marker becomes the code page line and every line end the platform's. Only the
// lines that may change are looked at one by one; the runs between them are copied in
// one piece. Returns whether any line differs, and out is complete only then: an
// unchanged text is the caller's to write as it stands.
bool rewriteLines(std::string_view text, QByteArray& out)
{
    bool changed = false;
    std::size_t copyFrom = 0;
    std::size_t marker = text.find(codePageMarker);
    std::size_t foreignEnd = nextForeignLineEnd(text, 0);
    while (marker != none || foreignEnd != none) {
        const std::size_t at = std::min(marker, foreignEnd);
        const std::size_t start = at == 0 ? 0 : text.rfind('\n', at - 1) + 1;
        const std::size_t newline = text.find('\n', at);
        const bool crlf = newline > start && text[newline - 1] == '\r';
        const std::string_view content = text.substr(start, newline - start - (crlf ? 1 : 0));
        const std::string_view wanted = marker < newline ? codePageLine : content;
        if (wanted != content || crlf != platformEndsWithCr) {
            append(out, text.substr(copyFrom, start - copyFrom));
            append(out, wanted);
            append(out, lineEnd);
            copyFrom = newline + 1;
            changed = true;
        }
        if (marker < newline)
            marker = text.find(codePageMarker, newline + 1);
        if (foreignEnd <= newline)
            foreignEnd = nextForeignLineEnd(text, newline + 1);
    }
    if (changed)
        append(out, text.substr(copyFrom));
    return changed;
}

// A binary DXF holds raw numbers whose bytes may read as line ends or as the marker,
// and a UTF-16 text has two-byte line ends: rewriting either by single-byte lines would
// break the drawing, so both are left as they are.
bool isLineText(const QByteArray& head)
{
    return !head.startsWith("AutoCAD Binary DXF") && !head.startsWith("\xFF\xFE")
        && !head.startsWith("\xFE\xFF");
}

// Streams source into target; changed tells whether any line was rewritten. False when
// a read or a write fails.
bool rewriteStream(QFile& source, QSaveFile& target, bool& changed)
{
    QByteArray pending; // the unfinished line of the last block, then the next block
    QByteArray out;
    for (;;) {
        const int kept = pending.size();
        if (kept > std::numeric_limits<int>::max() - blockSize)
            return false; // a line of gigabytes: no drawing, and more than a buffer holds
        pending.resize(kept + static_cast<int>(blockSize));
        const qint64 got = source.read(pending.data() + kept, blockSize);
        if (got < 0)
            return false;
        pending.resize(kept + static_cast<int>(got));
        if (got == 0)
            break;
        const int complete = pending.lastIndexOf('\n') + 1;
        if (complete == 0)
            continue;
        out.clear();
        const std::string_view lines(pending.constData(), static_cast<std::size_t>(complete));
        const bool blockChanged = rewriteLines(lines, out);
        changed |= blockChanged;
        const QByteArray written = blockChanged ? out : QByteArray::fromRawData(lines.data(), complete);
        if (target.write(written) != written.size())
            return false;
        pending.remove(0, complete);
    }
    // The last line is written as it stands, with no line end after it.
    return target.write(pending) == pending.size();
}

} // namespace

void VyUniversalFunction::replaceDxfCodepage(const VyObjects::TsString& path)
{
    const QString fileName = VyObjects::toQString(path);
    if (fileName.isEmpty())
        return;
    QFile source(fileName);
    if (!source.open(QIODevice::ReadOnly)) {
        // Where no file stands, the rewrite of an empty text leaves an empty file; a file
        // that stands there but cannot be read keeps its content.
        if (!QFileInfo::exists(fileName))
            QFile(fileName).open(QIODevice::WriteOnly | QIODevice::NewOnly);
        return;
    }
    if (!isLineText(source.peek(32)))
        return;
    // The new text goes to a file beside the drawing and replaces it only once complete,
    // so a failed write leaves the drawing as it was.
    QSaveFile target(fileName);
    if (!target.open(QIODevice::WriteOnly))
        return;
    bool changed = false;
    const bool written = rewriteStream(source, target, changed);
    source.close();
    // QSaveFile::commit() would rename a file whose last buffered bytes could not be
    // written (a full disk, a file size limit); the flush must succeed first.
    if (written && changed && target.flush() && target.error() == QFileDevice::NoError)
        target.commit();
    else
        target.cancelWriting();
}
