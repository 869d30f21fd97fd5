// What each of the engine's two XML readers costs on the parts of a workbook: expat and
// the chunked scanner over the same inflated XML, bare (handlers that do nothing) and as
// the engine reads the part, beside inflating it. Parts are inflated once, untimed, and
// fed in the chunks the zip reader hands over. Every figure is the median CPU time of
// five runs.
//
//     bench_xml_readers <input.xlsx>

#include "benchclock.h"

#include "model/workbookdata.h"
#include "read/contenttypes.h"
#include "read/relationships.h"
#include "read/sharedstrings.h"
#include "read/stylespart.h"
#include "read/workbookpart.h"
#include "read/worksheetpart.h"
#include "read/xmlreader.h"
#include "read/xmlscanner.h"
#include "zip/zipreader.h"

#include <QFile>

#include <expat.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

using namespace QXlsx::detail;

namespace {

constexpr size_t Chunk = 256 * 1024;   // what the zip reader inflates at a time
constexpr int Runs = 5;

template <typename Work>
double medianCpu(Work&& work)
{
    std::vector<double> seconds;
    for (int run = 0; run < Runs; ++run) {
        bench::Stopwatch clock;
        work();
        seconds.push_back(clock.cpuSeconds());
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds[Runs / 2];
}

template <typename Feed>
void inChunks(const std::string& xml, Feed&& feed)
{
    for (size_t from = 0; from < xml.size(); from += Chunk)
        feed(xml.data() + from, std::min(Chunk, xml.size() - from));
}

void parseWithBareExpat(const std::string& xml)
{
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    bool ok = true;
    inChunks(xml, [&](const char* data, size_t size) {
        ok = ok && XML_Parse(parser, data, int(size), XML_FALSE) == XML_STATUS_OK;
    });
    ok = ok && XML_Parse(parser, nullptr, 0, XML_TRUE) == XML_STATUS_OK;
    XML_ParserFree(parser);
    if (!ok)
        std::fprintf(stderr, "expat refused the part\n");
}

class NothingHandler : public XmlHandler
{
public:
    void startElement(XmlReader&, std::string_view, const XmlAttributes&) override {}
    void endElement(XmlReader&, std::string_view) override {}
};

void parseWithXmlReader(const std::string& xml, XmlHandler& handler)
{
    XmlReader reader(handler);
    bool ok = true;
    inChunks(xml, [&](const char* data, size_t size) { ok = ok && reader.feed(data, int(size), false); });
    if (!ok || !reader.feed(nullptr, 0, true))
        std::fprintf(stderr, "expat refused the part\n");
}

class NothingScanned : public ScanHandler
{
public:
    void startElement(const ScannedTag&) override {}
    void endElement(std::string_view, std::string_view, std::string_view) override {}
    void text(std::string_view, std::string_view) override {}
};

template <typename Reader>
void scanWith(const std::string& xml, Reader& reader)
{
    bool ok = true;
    inChunks(xml, [&](const char* data, size_t size) { ok = ok && reader.feed(data, size); });
    if (!ok || !reader.finish())
        std::fprintf(stderr, "the scanner refused the part\n");
}

void scanBare(const std::string& xml)
{
    NothingScanned handler;
    XmlScanner scanner(handler);
    scanWith(xml, scanner);
}

struct Package
{
    std::string contentTypes, relationships, workbook, workbookRelationships, styles, strings;
    std::vector<std::string> sheets;
};

// The parts by the names this engine's saves give them; enough for a measurement.
bool inflate(const QString& path, Package& package)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    ZipReader zip{ReadLimits()};
    QString error;
    if (!zip.open(bytes.constData(), bytes.size(), &error))
        return std::fprintf(stderr, "%s\n", qPrintable(error)), false;
    for (int index = 0; index < zip.entryCount(); ++index) {
        QByteArray data;
        if (!zip.readAll(index, &data, &error))
            return std::fprintf(stderr, "%s\n", qPrintable(error)), false;
        const QString name = zip.entryName(index);
        std::string xml = data.toStdString();
        if (name == QLatin1String("[Content_Types].xml")) package.contentTypes = xml;
        else if (name == QLatin1String("_rels/.rels")) package.relationships = xml;
        else if (name == QLatin1String("xl/workbook.xml")) package.workbook = xml;
        else if (name == QLatin1String("xl/_rels/workbook.xml.rels")) package.workbookRelationships = xml;
        else if (name == QLatin1String("xl/styles.xml")) package.styles = xml;
        else if (name == QLatin1String("xl/sharedStrings.xml")) package.strings = xml;
        else if (name.startsWith(QLatin1String("xl/worksheets/sheet"))) package.sheets.push_back(xml);
    }
    return !package.sheets.empty();
}

double inflateTime(const QByteArray& bytes, const QString& partName)
{
    return medianCpu([&] {
        ZipReader zip{ReadLimits()};
        QString error;
        zip.open(bytes.constData(), bytes.size(), &error);
        zip.stream(zip.indexOf(partName), [](const char*, int) { return true; }, &error);
    });
}

// The sheet as opening reads it, after the shared strings, which are not timed.
double readSheetTime(const Package& package)
{
    std::vector<double> seconds;
    for (int run = 0; run < Runs; ++run) {
        WorkbookData book;
        SharedStringsReader strings(book.strings);
        scanWith(package.strings, strings);
        SheetData* sheet = book.appendSheet(QStringLiteral("Sheet1"), QXlsx::AbstractSheet::ST_WorkSheet);
        const std::vector<quint32> styles(64, 0);
        bench::Stopwatch clock;
        WorksheetReader reader(book, *sheet, CellIndexes{strings.first, strings.count, &styles});
        scanWith(package.sheets.front(), reader);
        seconds.push_back(clock.cpuSeconds());
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds[Runs / 2];
}

void report(const char* part, const std::string& xml, double inflated, double engine)
{
    NothingHandler nothing;
    const double expat = medianCpu([&] { parseWithBareExpat(xml); });
    const double expatReader = medianCpu([&] { parseWithXmlReader(xml, nothing); });
    const double scanner = medianCpu([&] { scanBare(xml); });
    std::printf("%-15s %11zu %10.3f %10.3f %10.3f %10.3f %10.3f\n", part, xml.size(), inflated * 1e3,
                expat * 1e3, expatReader * 1e3, scanner * 1e3, engine * 1e3);
    std::fflush(stdout);
}

void measureBigParts(const QByteArray& bytes, const Package& package)
{
    report("first sheet", package.sheets.front(),
           inflateTime(bytes, QStringLiteral("xl/worksheets/sheet1.xml")), readSheetTime(package));
    report("shared strings", package.strings, inflateTime(bytes, QStringLiteral("xl/sharedStrings.xml")),
           medianCpu([&] {
               WorkbookData book;
               SharedStringsReader strings(book.strings);
               scanWith(package.strings, strings);
           }));
}

// The small parts, each read by its own reader over expat.
void measureSmallParts(const QByteArray& bytes, const Package& package)
{
    report("content types", package.contentTypes, inflateTime(bytes, QStringLiteral("[Content_Types].xml")),
           medianCpu([&] { ContentTypes().read(QByteArray::fromStdString(package.contentTypes)); }));
    report("package rels", package.relationships, inflateTime(bytes, QStringLiteral("_rels/.rels")),
           medianCpu([&] { readRelationships(QByteArray::fromStdString(package.relationships)); }));
    report("workbook", package.workbook, inflateTime(bytes, QStringLiteral("xl/workbook.xml")),
           medianCpu([&] { readWorkbookPart(QByteArray::fromStdString(package.workbook)); }));
    report("workbook rels", package.workbookRelationships,
           inflateTime(bytes, QStringLiteral("xl/_rels/workbook.xml.rels")),
           medianCpu([&] { readRelationships(QByteArray::fromStdString(package.workbookRelationships)); }));
    report("styles", package.styles, inflateTime(bytes, QStringLiteral("xl/styles.xml")), medianCpu([&] {
               StyleTable table;
               StylesHandler handler(table);
               parseWithXmlReader(package.styles, handler);
           }));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return std::fprintf(stderr, "usage: bench_xml_readers <input.xlsx>\n"), 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    Package package;
    if (!inflate(path, package))
        return std::fprintf(stderr, "cannot read %s\n", argv[1]), 1;
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    const QByteArray bytes = file.readAll();
    std::printf("CPU ms, median of %d runs; \"expat\" and \"scanner\" with handlers that do nothing,\n"
                "\"expat+XmlReader\" through the engine's wrapper, \"engine\" as opening reads the part\n", Runs);
    std::printf("%-15s %11s %10s %10s %10s %10s %10s\n", "part", "bytes", "inflate", "expat", "+XmlReader",
                "scanner", "engine");
    measureBigParts(bytes, package);
    measureSmallParts(bytes, package);
    return 0;
}
