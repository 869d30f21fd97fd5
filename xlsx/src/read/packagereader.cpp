#include "read/packagereader.h"

#include "model/workbookdata.h"
#include "read/contenttypes.h"
#include "read/relationships.h"
#include "read/sharedstrings.h"
#include "read/stylespart.h"
#include "read/workbookpart.h"
#include "read/worksheetpart.h"
#include "read/xmlreader.h"
#include "zip/zipreader.h"
#include "xlsxabstractsheet.h"

#include <QFile>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <cstring>

namespace QXlsx::detail {

namespace {

// Streams a part through a parser as it inflates. A part cut off by a limit or broken
// part way leaves in the model what was read before; the reason goes to error.
bool parsePart(ZipReader& zip, int index, XmlHandler& handler, QString* error)
{
    XmlReader reader(handler);
    QString zipError;
    const bool complete = zip.stream(index, [&](const char* data, int size) {
        return reader.feed(data, size, false);
    }, &zipError);
    if (!complete) {
        *error = zipError;
        return false;
    }
    if (!reader.feed(nullptr, 0, true)) {
        *error = QStringLiteral("%1: %2").arg(zip.entryName(index), reader.errorString());
        return false;
    }
    return true;
}

// The same for the two parts that hold nearly all of a workbook's bytes, worksheets and
// shared strings, read by the scanner: readers with feed, finish and errorString.
template <typename Reader>
bool scanPart(ZipReader& zip, int index, Reader& reader, QString* error)
{
    QString zipError;
    const bool complete = zip.stream(index, [&](const char* data, int size) {
        return reader.feed(data, size_t(size));
    }, &zipError);
    if (!complete) {
        *error = zipError;
        return false;
    }
    if (!reader.finish()) {
        *error = QStringLiteral("%1: %2").arg(zip.entryName(index), reader.errorString());
        return false;
    }
    return true;
}

bool readPart(ZipReader& zip, int index, QByteArray* data, QString* error)
{
    QString zipError;
    if (zip.readAll(index, data, &zipError))
        return true;
    if (error)   // readPackage may be asked for no reason
        *error = zipError;
    return false;
}

AbstractSheet::SheetType sheetType(const QString& kind)
{
    if (kind == QLatin1String("chartsheet"))
        return AbstractSheet::ST_ChartSheet;
    if (kind == QLatin1String("dialogsheet"))
        return AbstractSheet::ST_DialogSheet;
    if (kind == QLatin1String("xlMacrosheet") || kind == QLatin1String("xlIntlMacrosheet"))
        return AbstractSheet::ST_MacroSheet;
    return AbstractSheet::ST_WorkSheet;
}

// Sheet names in a file are trusted except for what would break the model: an empty
// name or one taken already (names compare without regard to case). The names taken
// and the last number given to each base are kept, so that a workbook listing
// thousands of sheets of one name is named in linear time.
class SheetNames
{
public:
    QString usable(const QString& name, int position)
    {
        const QString base = name.trimmed().isEmpty() ? QStringLiteral("Sheet%1").arg(position) : name;
        QString candidate = base;
        int& number = m_lastNumber[base.toCaseFolded()];
        while (m_taken.contains(candidate.toCaseFolded()))
            candidate = QStringLiteral("%1 (%2)").arg(base.left(26)).arg(number = qMax(number, 1) + 1);
        m_taken.insert(candidate.toCaseFolded());
        return candidate;
    }

private:
    QSet<QString> m_taken;
    QHash<QString, int> m_lastNumber;
};

// A compound document (OLE2) is what Excel writes for a workbook with a password to
// open, and for the binary format of Excel 97-2003.
bool isCompoundDocument(const char* data, qint64 size)
{
    static const char signature[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    return size >= 8 && std::memcmp(data, signature, 8) == 0;
}

class PackageReader
{
public:
    PackageReader(WorkbookData& book, const ReadLimits& limits)
        : m_book(book), m_zip(limits), m_maxSheets(limits.maxSheets) {}

    bool read(const char* data, qint64 size, QString* error);

private:
    int consume(const QString& partName)
    {
        const int index = m_zip.indexOf(partName);
        if (index >= 0)
            m_consumed.insert(index);
        return index;
    }
    void note(const QString& problem)
    {
        if (m_problem.isEmpty())
            m_problem = problem;
    }
    QString findWorkbookPart();
    void readWorkbookRelationships(const QString& workbookPart);
    void readStyles();
    void readSharedStrings();
    void readSheet(const SheetEntry& entry);
    void keepOtherParts();

    WorkbookData& m_book;
    ZipReader m_zip;
    ContentTypes m_contentTypes;
    QSet<int> m_consumed;
    QString m_problem;
    QString m_workbookPart;
    QHash<QString, Relationship> m_sheetRelationships;   // by id; a later duplicate wins
    quint32 m_firstString = 0;
    quint32 m_stringCount = 0;
    std::vector<quint32> m_styles;
    QString m_stylesPart;
    QString m_sharedStringsPart;
    SheetNames m_sheetNames;
    int m_maxSheets;
};

bool PackageReader::read(const char* data, qint64 size, QString* error)
{
    if (isCompoundDocument(data, size)) {
        if (error)
            *error = QStringLiteral("an encrypted workbook or one in the Excel 97-2003 format, which cannot be read");
        return false;
    }
    if (!m_zip.open(data, size, error))
        return false;

    QByteArray xml;
    const int contentTypes = consume(QStringLiteral("[Content_Types].xml"));
    if (contentTypes >= 0 && readPart(m_zip, contentTypes, &xml, &m_problem))
        m_contentTypes.read(xml);
    m_book.contentTypeDefaults = m_contentTypes.defaults();

    m_workbookPart = findWorkbookPart();
    const int workbookIndex = m_workbookPart.isEmpty() ? -1 : consume(m_workbookPart);
    if (workbookIndex < 0 || !readPart(m_zip, workbookIndex, &xml, error)) {
        if (error && workbookIndex < 0)
            *error = m_zip.indexOf(QStringLiteral("mimetype")) >= 0
                ? QStringLiteral("an OpenDocument file, not a workbook package")
                : QStringLiteral("the package holds no workbook");
        m_book.clear();
        return false;
    }
    WorkbookPart workbook = readWorkbookPart(xml);
    m_book.date1904 = workbook.date1904;
    m_book.workbookRootStartTag = workbook.rootStartTag;
    m_book.workbookExtraElements = std::move(workbook.extraElements);

    readWorkbookRelationships(m_workbookPart);
    readStyles();
    readSharedStrings();
    for (const SheetEntry& entry : workbook.sheets) {
        if (int(m_book.sheets.size()) >= m_maxSheets) {
            note(QStringLiteral("the workbook lists more than %1 sheets").arg(m_maxSheets));
            break;
        }
        readSheet(entry);
    }
    keepOtherParts();

    const int sheetCount = int(m_book.sheets.size());
    m_book.activeSheet = sheetCount > 0 ? qBound(0, workbook.activeTab, sheetCount - 1) : 0;
    m_book.currentSheet = sheetCount > 0 ? m_book.activeSheet : -1;
    if (error)
        *error = m_problem;
    return true;
}

QString PackageReader::findWorkbookPart()
{
    const int index = consume(QStringLiteral("_rels/.rels"));
    QByteArray xml;
    if (index >= 0 && readPart(m_zip, index, &xml, &m_problem))
        m_book.packageRelationships = readRelationships(xml);
    for (const Relationship& relationship : m_book.packageRelationships) {
        if (!relationship.external && relationshipKind(relationship.type) == QLatin1String("officeDocument"))
            return resolveTarget(QString(), relationship.target);
    }
    // Packages without relationships still put the workbook where everybody does.
    return QStringLiteral("xl/workbook.xml");
}

void PackageReader::readWorkbookRelationships(const QString& workbookPart)
{
    const int index = consume(relationshipsPartName(workbookPart));
    QByteArray xml;
    if (index < 0 || !readPart(m_zip, index, &xml, &m_problem))
        return;
    for (Relationship& relationship : readRelationships(xml)) {
        const QString kind = relationshipKind(relationship.type);
        const QString target = relationship.external ? QString() : resolveTarget(workbookPart, relationship.target);
        if (kind == QLatin1String("styles") && m_stylesPart.isEmpty() && !target.isEmpty()) {
            m_stylesPart = target;
        } else if (kind == QLatin1String("sharedStrings") && m_sharedStringsPart.isEmpty() && !target.isEmpty()) {
            m_sharedStringsPart = target;
        } else if (kind == QLatin1String("worksheet") || kind == QLatin1String("chartsheet")
                   || kind == QLatin1String("dialogsheet") || kind == QLatin1String("xlMacrosheet")
                   || kind == QLatin1String("xlIntlMacrosheet")) {
            if (!relationship.external)
                m_sheetRelationships.insert(relationship.id, std::move(relationship));
        } else {
            m_book.workbookRelationships.push_back(std::move(relationship));
        }
    }
}

void PackageReader::readStyles()
{
    const int index = m_stylesPart.isEmpty() ? -1 : consume(m_stylesPart);
    if (index < 0)
        return;
    StylesHandler handler(m_book.styles);
    QString problem;
    if (!parsePart(m_zip, index, handler, &problem))
        note(problem);
    m_styles = handler.takeIndexes();
}

void PackageReader::readSharedStrings()
{
    const int index = m_sharedStringsPart.isEmpty() ? -1 : consume(m_sharedStringsPart);
    if (index < 0)
        return;
    SharedStringsReader reader(m_book.strings);
    QString problem;
    if (!scanPart(m_zip, index, reader, &problem))
        note(problem);
    m_firstString = reader.first;
    m_stringCount = reader.count;
}

void PackageReader::readSheet(const SheetEntry& entry)
{
    const auto found = m_sheetRelationships.constFind(entry.relationshipId);
    const Relationship* relationship = found == m_sheetRelationships.constEnd() ? nullptr : &found.value();
    const QString partName = relationship ? resolveTarget(m_workbookPart, relationship->target) : QString();
    const int index = partName.isEmpty() ? -1 : consume(partName);
    AbstractSheet::SheetType type = relationship ? sheetType(relationshipKind(relationship->type))
                                                 : AbstractSheet::ST_WorkSheet;
    // A sheet whose part is missing keeps its name and place as an empty worksheet; so
    // does a chart, dialog or macro sheet whose part cannot be read whole, which is kept
    // as its bytes and would be saved again broken.
    if (index < 0) {
        note(QStringLiteral("the part of sheet %1 is missing").arg(entry.name));
        type = AbstractSheet::ST_WorkSheet;
    }
    QByteArray rawPart;
    QString problem;
    if (type != AbstractSheet::ST_WorkSheet && !readPart(m_zip, index, &rawPart, &problem)) {
        note(problem);
        rawPart.clear();
        type = AbstractSheet::ST_WorkSheet;
    }

    SheetData* sheet = m_book.appendSheet(m_sheetNames.usable(entry.name, int(m_book.sheets.size()) + 1), type);
    sheet->state = entry.state;
    sheet->sheetId = entry.sheetId;
    sheet->relationshipId = entry.relationshipId;
    sheet->partName = index >= 0 ? m_zip.entryName(index) : QString();
    sheet->rawPart = std::move(rawPart);
    if (index < 0 || type != AbstractSheet::ST_WorkSheet)
        return;

    WorksheetReader reader(m_book, *sheet, CellIndexes{m_firstString, m_stringCount, &m_styles});
    if (!scanPart(m_zip, index, reader, &problem))
        note(problem);
}

void PackageReader::keepOtherParts()
{
    for (int index = 0; index < m_zip.entryCount(); ++index) {
        const QString name = m_zip.entryName(index);
        if (m_consumed.contains(index) || name.isEmpty() || name.endsWith(QLatin1Char('/')))
            continue;
        KeptPart part;
        part.name = name.startsWith(QLatin1Char('/')) ? name.mid(1) : name;
        part.contentType = m_contentTypes.of(part.name);
        QString problem;
        if (!readPart(m_zip, index, &part.data, &problem)) {
            note(problem);
            continue;
        }
        m_book.keptParts.push_back(std::move(part));
    }
}

} // namespace

bool readPackage(QIODevice& device, WorkbookData& book, QString* error, const ReadLimits& limits)
{
    if (!device.isOpen() && !device.open(QIODevice::ReadOnly)) {
        if (error)
            *error = device.errorString();
        return false;
    }
    // A file is mapped rather than copied where the platform allows it.
    QByteArray bytes;
    const char* data = nullptr;
    qint64 size = 0;
    auto* file = qobject_cast<QFile*>(&device);
    uchar* mapped = nullptr;
    if (file && !file->isSequential() && file->size() > 0)
        mapped = file->map(0, file->size());
    if (mapped) {
        data = reinterpret_cast<const char*>(mapped);
        size = file->size();
    } else {
        bytes = device.readAll();
        data = bytes.constData();
        size = bytes.size();
    }
    bool ok;
    {
        PackageReader reader(book, limits);
        ok = reader.read(data, size, error);
    }
    if (mapped)
        file->unmap(mapped);
    return ok;
}

} // namespace QXlsx::detail
