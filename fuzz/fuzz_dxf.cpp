// The DXF code page rewrite against a plain model of what it must give: every complete
// line holding "ANSI_" becomes "ANSI_936", every line end the platform's, the text after
// the last line end stays as it is; binary drawings and UTF-16 texts, and texts in which
// no line changes, are not touched. Any difference stops the run.

#include "vygisutil.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

#ifdef Q_OS_WIN
const QByteArray LineEnd = "\r\n";
#else
const QByteArray LineEnd = "\n";
#endif

QByteArray expectedRewrite(const QByteArray& text)
{
    if (text.startsWith("AutoCAD Binary DXF") || text.startsWith("\xFF\xFE") || text.startsWith("\xFE\xFF"))
        return text;
    QByteArray out;
    int start = 0;
    for (int newline = text.indexOf('\n'); newline >= 0; newline = text.indexOf('\n', start)) {
        QByteArray line = text.mid(start, newline - start);
        if (line.endsWith('\r'))
            line.chop(1);
        out += (line.contains("ANSI_") ? QByteArray("ANSI_936") : line) + LineEnd;
        start = newline + 1;
    }
    out += text.mid(start);
    return out;
}

QString inputPath()
{
    // In memory where the system has such a folder: the rewrite syncs what it saves,
    // which on a disk would take most of each run.
    static QTemporaryDir folder(QDir(QStringLiteral("/dev/shm")).exists()
                                    ? QStringLiteral("/dev/shm/vygis-fuzz-XXXXXX") : QString());
    return folder.filePath(QStringLiteral("drawing.dxf"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), int(size));
    const QString path = inputPath();
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(text);
    }
    VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(path.toStdWString()));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.readAll() != expectedRewrite(text))
        __builtin_trap();
    return 0;
}
