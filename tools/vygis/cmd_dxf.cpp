#include "arguments.h"
#include "command.h"
#include "dxftext.h"
#include "filesafety.h"
#include "tsqtext.h"
#include "vygisutil.h"

#include <QFile>
#include <QSaveFile>

#include <string_view>

namespace {

const char* const commandName = "dxf-codepage";

QString name()
{
    return QString::fromLatin1(commandName);
}

// The drawing's bytes, mapped where the file system allows it and read whole where not,
// so that a drawing of tens of megabytes is read once and never split into lines.
class DrawingBytes
{
public:
    bool open(const QString& path)
    {
        m_file.setFileName(path);
        if (!m_file.open(QIODevice::ReadOnly))
            return false;
        const qint64 size = m_file.size();
        if (uchar* mapped = size > 0 ? m_file.map(0, size) : nullptr) {
            m_bytes = std::string_view(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(size));
            return true;
        }
        m_read = m_file.readAll();
        m_bytes = std::string_view(m_read.constData(), static_cast<std::size_t>(m_read.size()));
        return m_file.error() == QFileDevice::NoError;
    }

    // Lets go of the file: on Windows a file still open cannot be replaced.
    void close()
    {
        m_bytes = {};
        m_read.clear();
        m_file.close();
    }

    std::string_view bytes() const { return m_bytes; }
    QString errorString() const { return m_file.errorString(); }

private:
    QFile m_file;
    QByteArray m_read;
    std::string_view m_bytes;
};

// Reports a file left untouched although nothing went wrong.
int leftAlone(const QString& path, const QString& why)
{
    printNote(QStringLiteral("vygis %1: %2: %3; it is left as it is").arg(name(), path, why));
    return ExitSuccess;
}

int refused(const QString& path, const QString& why)
{
    return failure(name(), QStringLiteral("%1: %2; it is left as it is").arg(path, why));
}

// ExitSuccess when path is a text DXF drawing, its bytes then in drawing; otherwise
// the failure status, reported.
int openDrawing(const QString& path, DrawingBytes& drawing)
{
    const FileKind found = inspectFile(path);
    if (!found.exists())
        return failure(name(), QStringLiteral("%1: no such file").arg(path));
    if (found.kind == FileKind::Folder)
        return failure(name(), QStringLiteral("%1: is a folder, not a file").arg(path));
    if (!drawing.open(path))
        return failure(name(), QStringLiteral("%1: cannot be read (%2)").arg(path, drawing.errorString()));
    if (found.kind != FileKind::Text)
        return refused(path, QStringLiteral("%1; only a text DXF drawing is changed").arg(found.description));
    if (!DxfText::looksLikeDrawing(drawing.bytes()))
        return refused(path, QStringLiteral("a text file that does not look like a DXF drawing "
                                            "(it does not begin with the group code 0 and SECTION)"));
    return ExitSuccess;
}

int saveFailed(const QString& path, const QString& detail)
{
    QString reason = saveFailureReason(path);
    if (!detail.isEmpty())
        reason += QStringLiteral(": ") + detail;
    return failure(name(), QStringLiteral("%1: could not be saved: %2; it is left as it was").arg(path, reason));
}

// A write cut short by a file size limit or a full disk reports no reason; the write
// of the rest that follows fails with the system's reason.
bool writeBytes(QSaveFile& target, std::string_view bytes)
{
    while (!bytes.empty()) {
        const qint64 written = target.write(bytes.data(), static_cast<qint64>(bytes.size()));
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Writes the drawing again with only the code page value replaced. The new file takes
// the place of the old one only once it is complete.
int replaceCodePageValue(const QString& path, DrawingBytes& drawing, const DxfText::CodePageValue& value)
{
    const std::string_view bytes = drawing.bytes();
    QSaveFile target(path);
    if (!target.open(QIODevice::WriteOnly))
        return saveFailed(path, target.errorString());
    const bool written = writeBytes(target, bytes.substr(0, value.start))
        && writeBytes(target, DxfText::wantedCodePage)
        && writeBytes(target, bytes.substr(value.start + value.length)) && target.flush();
    // The system's reason for a failed write is read before the cancelled save drops it.
    if (!written)
        return saveFailed(path, target.errorString());
    drawing.close();
    if (!target.commit())
        return saveFailed(path, target.errorString());
    return ExitSuccess;
}

int setCodePageVariable(const QString& path, DrawingBytes& drawing)
{
    const DxfText::CodePageValue value = DxfText::findCodePageValue(drawing.bytes());
    if (value.status == DxfText::CodePageValue::NoVariable)
        return refused(path, QStringLiteral("its HEADER section has no $DWGCODEPAGE variable, "
                                            "so the drawing declares no code page to change"));
    if (value.status == DxfText::CodePageValue::NoValue)
        return refused(path, QStringLiteral("$DWGCODEPAGE in its header is not followed by a "
                                            "code page value (group code 3)"));
    if (value.value == DxfText::wantedCodePage)
        return leftAlone(path, QStringLiteral("the code page is already ANSI_936"));
    const QString refusal = outputRefusal(path, {}, OutputUse::Rewrite, true);
    if (!refusal.isEmpty())
        return failure(name(), refusal + QStringLiteral("; it is left as it is"));
    return replaceCodePageValue(path, drawing, value);
}

int rewriteEveryAnsiLine(const QString& path, DrawingBytes& drawing)
{
    const DxfText::AnsiLines lines = DxfText::countAnsiLines(drawing.bytes());
    if (lines.holdingMarker == 0)
        return refused(path, QStringLiteral("no line holds \"ANSI_\", so there is nothing to rewrite"));
    if (lines.toRewrite == 0)
        return leftAlone(path, QStringLiteral("every line that holds \"ANSI_\" is already ANSI_936"));
    const QString refusal = outputRefusal(path, {}, OutputUse::Rewrite, true);
    if (!refusal.isEmpty())
        return failure(name(), refusal + QStringLiteral("; it is left as it is"));
    drawing.close();
    VyUniversalFunction::replaceDxfCodepage(VyObjects::toTsString(path));
    // The library function reports nothing; whether its save landed shows in the file.
    DrawingBytes rewritten;
    if (!rewritten.open(path) || DxfText::countAnsiLines(rewritten.bytes()).toRewrite != 0)
        return saveFailed(path, QString());
    return ExitSuccess;
}

int runDxfCodepage(const QStringList& arguments)
{
    const QString everyAnsiLine = QStringLiteral("--every-ansi-line");
    Arguments parsed;
    if (!parsed.parse(name(), arguments, {{everyAnsiLine}, {}, {}, 1, 1}))
        return ExitUsage;
    const QString path = parsed.positional(0);
    DrawingBytes drawing;
    if (const int status = openDrawing(path, drawing); status != ExitSuccess)
        return status;
    return parsed.isSet(everyAnsiLine) ? rewriteEveryAnsiLine(path, drawing) : setCodePageVariable(path, drawing);
}

} // namespace

Command dxfCodepageCommand()
{
    Command command;
    command.name = name();
    command.summary = QStringLiteral("set a text DXF drawing's code page ($DWGCODEPAGE) to ANSI_936");
    command.usage = QStringLiteral(
        "Usage: vygis dxf-codepage [--every-ansi-line] FILE\n\n"
        "Makes the text DXF drawing FILE declare the code page ANSI_936, in place.\n\n"
        "By default only the value of the header variable $DWGCODEPAGE (the group code 3\n"
        "line after the $DWGCODEPAGE line in the HEADER section) becomes ANSI_936. Every\n"
        "other byte stays as it was: the line ends (CRLF, LF or a mix), text in any\n"
        "encoding, and other values that hold \"ANSI_\", such as the paper size\n"
        "ANSI_A_(8.50_x_11.00_Inches).\n\n"
        "  --every-ansi-line  rewrite as the library's replaceDxfCodepage does: every line\n"
        "                     that holds \"ANSI_\" anywhere, paper sizes included, becomes\n"
        "                     the line ANSI_936, and every line end becomes this system's\n"
        "                     (LF; CRLF on Windows). Only a last line with no line end\n"
        "                     after it is left as it is.\n\n"
        "FILE is left byte for byte as it was, not even saved again, when there is nothing\n"
        "to change (the code page is already ANSI_936, or no line holds \"ANSI_\"), and when\n"
        "it is not a text DXF drawing: a binary DXF, a zip, a GeoPackage or another binary\n"
        "file, or text that does not begin with the group code 0 and SECTION. The new\n"
        "drawing is written beside FILE and takes its place, with its permissions, only\n"
        "when complete: a failed or interrupted write (a read-only file or folder, a full\n"
        "disk, a file size limit, a kill) leaves FILE as it was.\n\n"
        "Exit status 0 when FILE declares ANSI_936 afterwards, changed or already so. Exit\n"
        "status 1 when FILE is left as it was for any other reason: no such file, not a\n"
        "text DXF, a write that failed, and also a header with no $DWGCODEPAGE variable\n"
        "(with --every-ansi-line: no line that holds \"ANSI_\"), because such a drawing\n"
        "still declares no code page and a script should learn which ones those are.");
    command.run = runDxfCodepage;
    return command;
}
