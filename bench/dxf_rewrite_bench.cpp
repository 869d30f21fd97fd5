// The DXF code page rewrite of a 50 MB drawing against copying the same file, once with
// "\n" and once with "\r\n" line ends (one of the two changes every line end on any
// platform). Usage: bench_dxf_rewrite [folder for the temporary files]

#include "vygisutil.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

const qint64 drawingSize = 50LL * 1000 * 1000;
const int runs = 5;

// A header that names its code page, then LINE entities until the size is reached: the
// short group code and value lines of a real drawing.
QByteArray drawing(const QByteArray& lineEnd)
{
    QByteArray text;
    text.reserve(static_cast<int>(drawingSize + 4096));
    for (const char* line : {"  0", "SECTION", "  2", "HEADER", "  9", "$ACADVER", "  1", "AC1015",
                             "  9", "$DWGCODEPAGE", "  3", "ANSI_1252", "  0", "ENDSEC", "  0",
                             "SECTION", "  2", "ENTITIES"})
        text += line + lineEnd;
    for (int i = 0; text.size() < drawingSize; ++i) {
        const QByteArray x = QByteArray::number(1000.0 + i * 0.25, 'f', 4);
        const QByteArray y = QByteArray::number(2000.0 - i * 0.5, 'f', 4);
        for (const QByteArray& line : {QByteArray("  0"), QByteArray("LINE"), QByteArray("  8"),
                                       QByteArray("roads"), QByteArray(" 10"), x, QByteArray(" 20"), y,
                                       QByteArray(" 11"), y, QByteArray(" 21"), x})
            text += line + lineEnd;
    }
    text += "  0" + lineEnd + "ENDSEC" + lineEnd + "  0" + lineEnd + "EOF" + lineEnd;
    return text;
}

// The median of runs timings in milliseconds; prepare runs untimed before each.
double medianMs(const std::function<void()>& prepare, const std::function<void()>& work)
{
    std::vector<double> ms;
    for (int run = 0; run < runs; ++run) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        work();
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}

void measure(const QString& folder, const char* label, const QByteArray& lineEnd)
{
    const QString original = folder + QStringLiteral("/original.dxf");
    const QString work = folder + QStringLiteral("/work.dxf");
    const QString copy = folder + QStringLiteral("/copy.dxf");
    {
        QFile file(original);
        if (!file.open(QIODevice::WriteOnly) || file.write(drawing(lineEnd)) < drawingSize) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(original));
            return;
        }
    }
    const auto restore = [&] { QFile::remove(work); QFile::copy(original, work); };
    const auto clearCopy = [&] { QFile::remove(copy); };

    const double rewrite = medianMs(restore, [&] {
        VyUniversalFunction::replaceDxfCodepage(VyObjects::TsString(work.toStdWString()));
    });
    const double cp = medianMs(clearCopy, [&] {
        QProcess::execute(QStringLiteral("cp"), {original, copy});
    });
    const double qtCopy = medianMs(clearCopy, [&] { QFile::copy(original, copy); });

    std::printf("%-6s %5.1f MB  rewrite %7.1f ms   cp %7.1f ms   QFile::copy %7.1f ms   rewrite/cp %.2f\n",
                label, static_cast<double>(QFile(original).size()) / 1e6, rewrite, cp, qtCopy,
                rewrite / cp);
    QFile::remove(original);
    QFile::remove(work);
    QFile::remove(copy);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir scratch(argc > 1 ? QString::fromLocal8Bit(argv[1]) + QStringLiteral("/dxfbench-XXXXXX")
                                   : QString());
    if (!scratch.isValid()) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    std::printf("median of %d runs, warm file cache\n", runs);
    measure(scratch.path(), "LF", "\n");
    measure(scratch.path(), "CRLF", "\r\n");
    return 0;
}
