#include "xlsxdocument.h"

#include "model/sheetdata.h"
#include "model/workbookdata.h"
#include "read/packagereader.h"
#include "write/packagewriter.h"

#include <QFile>
#include <QLoggingCategory>
#include <QSaveFile>

namespace QXlsx {

// Callers that only learn "not saved" (the library's functions answer with a bool) find
// the reason in the log: a full disk, a read-only file, a missing folder.
Q_LOGGING_CATEGORY(lcDocumentSave, "vygis.xlsx.save", QtWarningMsg)
// What a save that succeeded changed to keep within Excel's limits, apart from the
// failures, so that a caller can tell the two.
Q_LOGGING_CATEGORY(lcDocumentLimits, "vygis.xlsx.limits", QtWarningMsg)

namespace {

bool saveFailed(QString& errorString, const QString& path, const QString& reason)
{
    errorString = reason;
    qCWarning(lcDocumentSave, "%s: %s", qUtf8Printable(path), qUtf8Printable(reason));
    return false;
}

// A save that had to change what it wrote to keep within Excel's limits says so, since
// the caller learns no more than that the save succeeded.
void warnOfLimits(const QString& target, const detail::SaveReport& report)
{
    if (report.cutTexts > 0)
        qCWarning(lcDocumentLimits, "%s: %llu cell texts longer than 32767 characters were cut to 32767",
                  qUtf8Printable(target), static_cast<unsigned long long>(report.cutTexts));
    if (report.droppedFormats > 0)
        qCWarning(lcDocumentLimits,
                  "%s: %u cell formats beyond 64000 were written as their number format alone",
                  qUtf8Printable(target), report.droppedFormats);
}

QString deviceName(const QIODevice& device)
{
    const auto* file = qobject_cast<const QFileDevice*>(&device);
    return file && !file->fileName().isEmpty() ? file->fileName() : QStringLiteral("device");
}

constexpr int MaxSheetNameLength = 31;

bool isAllowedSheetName(const QString& name)
{
    if (name.isEmpty() || name.size() > MaxSheetNameLength)
        return false;
    if (name.startsWith(QLatin1Char('\'')) || name.endsWith(QLatin1Char('\'')))
        return false;
    for (QChar c : name) {
        switch (c.unicode()) {
        case '[': case ']': case ':': case '*': case '?': case '/': case '\\':
            return false;
        default:
            // Control characters cannot be typed into a tab and most cannot be stored.
            if (c.unicode() < 0x20)
                return false;
        }
    }
    return true;
}

} // namespace

Document::Document(QObject* parent)
    : QObject(parent), d(std::make_unique<detail::WorkbookData>())
{
}

Document::Document(const QString& path, QObject* parent)
    : QObject(parent), d(std::make_unique<detail::WorkbookData>()), m_path(path)
{
    QFile file(path);
    if (!file.exists()) {
        d->errorString = tr("%1 does not exist").arg(path);
    } else if (!file.open(QIODevice::ReadOnly)) {
        d->errorString = file.errorString();
    } else {
        openFrom(file);
        return;
    }
    startEmptyWorkbook();
}

Document::Document(QIODevice* device, QObject* parent)
    : QObject(parent), d(std::make_unique<detail::WorkbookData>())
{
    if (!device) {
        d->errorString = tr("No device to read from");
    } else if (!device->isOpen() && !device->open(QIODevice::ReadOnly)) {
        d->errorString = device->errorString();
    } else if (!device->isReadable()) {
        d->errorString = tr("The device is not readable");
    } else {
        openFrom(*device);
        return;
    }
    startEmptyWorkbook();
}

Document::~Document() = default;

void Document::openFrom(QIODevice& device)
{
    QString error;
    if (!detail::readPackage(device, *d, &error)) {
        d->clear();
        d->errorString = error;
        startEmptyWorkbook();
        return;
    }
    d->errorString.clear();
    // A damaged package may have given no sheet, or an active tab that does not exist.
    if (d->sheets.empty()) {
        startEmptyWorkbook();
        return;
    }
    if (d->activeSheet < 0 || d->activeSheet >= int(d->sheets.size()))
        d->activeSheet = 0;
    d->currentSheet = d->activeSheet;
}

void Document::startEmptyWorkbook()
{
    if (d->sheets.empty())
        d->appendSheet(QStringLiteral("Sheet1"), AbstractSheet::ST_WorkSheet);
    d->activeSheet = 0;
    d->currentSheet = 0;
}

Worksheet* Document::ensureWorksheet()
{
    if (d->sheets.empty())
        startEmptyWorkbook();
    return currentWorksheet();
}

bool Document::write(int row, int column, const QVariant& value, const Format& format)
{
    if (row < 1 || row > MaxRows || column < 1 || column > MaxColumns)
        return false;
    Worksheet* sheet = ensureWorksheet();
    return sheet && sheet->write(row, column, value, format);
}

bool Document::write(const CellReference& cell, const QVariant& value, const Format& format)
{
    return write(cell.row(), cell.column(), value, format);
}

QVariant Document::read(int row, int column) const
{
    const Worksheet* sheet = currentWorksheet();
    return sheet ? sheet->read(row, column) : QVariant();
}

QVariant Document::read(const CellReference& cell) const
{
    return read(cell.row(), cell.column());
}

Cell* Document::cellAt(int row, int column) const
{
    const Worksheet* sheet = currentWorksheet();
    return sheet ? sheet->cellAt(row, column) : nullptr;
}

Cell* Document::cellAt(const CellReference& cell) const
{
    return cellAt(cell.row(), cell.column());
}

bool Document::mergeCells(const CellRange& range, const Format& format)
{
    if (!range.isValid())
        return false;
    Worksheet* sheet = ensureWorksheet();
    return sheet && sheet->mergeCells(range, format);
}

bool Document::unmergeCells(const CellRange& range)
{
    Worksheet* sheet = currentWorksheet();
    return sheet && sheet->unmergeCells(range);
}

bool Document::setRowHeight(int row, double height)
{
    return setRowHeight(row, row, height);
}

bool Document::setRowHeight(int firstRow, int lastRow, double height)
{
    if (firstRow < 1 || lastRow > MaxRows || firstRow > lastRow)
        return false;
    Worksheet* sheet = ensureWorksheet();
    return sheet && sheet->setRowHeight(firstRow, lastRow, height);
}

bool Document::setColumnWidth(int column, double width)
{
    return setColumnWidth(column, column, width);
}

bool Document::setColumnWidth(int firstColumn, int lastColumn, double width)
{
    if (firstColumn < 1 || lastColumn > MaxColumns || firstColumn > lastColumn)
        return false;
    Worksheet* sheet = ensureWorksheet();
    return sheet && sheet->setColumnWidth(firstColumn, lastColumn, width);
}

double Document::rowHeight(int row)
{
    const Worksheet* sheet = currentWorksheet();
    return sheet ? sheet->rowHeight(row) : 0.0;
}

double Document::columnWidth(int column)
{
    const Worksheet* sheet = currentWorksheet();
    return sheet ? sheet->columnWidth(column) : 0.0;
}

CellRange Document::dimension() const
{
    const Worksheet* sheet = currentWorksheet();
    return sheet ? sheet->dimension() : CellRange();
}

QStringList Document::sheetNames() const
{
    QStringList names;
    names.reserve(int(d->sheets.size()));
    for (const auto& sheet : d->sheets)
        names.append(sheet->name);
    return names;
}

int Document::sheetIndex(const QString& name) const
{
    for (size_t i = 0; i < d->sheets.size(); ++i) {
        if (d->sheets[i]->name.compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    }
    return -1;
}

// Only worksheets can be made from nothing; the other kinds are kept from files.
bool Document::addSheet(const QString& name, AbstractSheet::SheetType type)
{
    if (type != AbstractSheet::ST_WorkSheet)
        return false;
    QString sheetName = name;
    if (sheetName.trimmed().isEmpty()) {
        int n = int(d->sheets.size()) + 1;
        do {
            sheetName = QStringLiteral("Sheet%1").arg(n++);
        } while (sheetIndex(sheetName) >= 0);
    }
    if (!isAllowedSheetName(sheetName) || sheetIndex(sheetName) >= 0)
        return false;
    d->appendSheet(sheetName, type);
    d->currentSheet = int(d->sheets.size()) - 1;
    d->activeSheet = d->currentSheet;
    return true;
}

// The selected sheet becomes the tab the saved workbook opens on, unless it is hidden.
bool Document::selectSheet(const QString& name)
{
    const int index = sheetIndex(name);
    if (index < 0)
        return false;
    d->currentSheet = index;
    if (d->sheets[size_t(index)]->state == AbstractSheet::SS_Visible)
        d->activeSheet = index;
    return true;
}

// Formulas and defined names that mention the old name are not rewritten.
bool Document::renameSheet(const QString& oldName, const QString& newName)
{
    const int index = sheetIndex(oldName);
    if (index < 0 || !isAllowedSheetName(newName))
        return false;
    const int taken = sheetIndex(newName);
    if (taken >= 0 && taken != index)
        return false;
    d->sheets[size_t(index)]->name = newName;
    return true;
}

// The last visible sheet cannot go while hidden ones remain: a workbook must show a tab.
bool Document::deleteSheet(const QString& name)
{
    const int index = sheetIndex(name);
    if (index < 0)
        return false;
    int visible = 0;
    for (const auto& sheet : d->sheets)
        visible += sheet->state == AbstractSheet::SS_Visible;
    if (d->sheets.size() > 1 && visible == 1
        && d->sheets[size_t(index)]->state == AbstractSheet::SS_Visible)
        return false;
    d->sheetObjects.erase(d->sheetObjects.begin() + index);
    d->sheets[size_t(index)]->releaseCells();
    d->sheets.erase(d->sheets.begin() + index);
    const int count = int(d->sheets.size());
    auto adjust = [&](int& position) {
        if (position > index || position >= count)
            --position;
    };
    adjust(d->currentSheet);
    adjust(d->activeSheet);
    if (count == 0) {
        d->currentSheet = -1;
        d->activeSheet = 0;
    } else if (d->activeSheet < 0) {
        d->activeSheet = 0;
    }
    if (count > 0 && d->sheets[size_t(d->activeSheet)]->state != AbstractSheet::SS_Visible) {
        for (int i = 0; i < count; ++i) {
            if (d->sheets[size_t(i)]->state == AbstractSheet::SS_Visible) {
                d->activeSheet = i;
                break;
            }
        }
    }
    return true;
}

AbstractSheet* Document::sheet(const QString& name) const
{
    const int index = sheetIndex(name);
    return index >= 0 ? d->sheetObjects[size_t(index)].get() : nullptr;
}

AbstractSheet* Document::currentSheet() const
{
    const int index = d->currentSheet;
    if (index < 0 || index >= int(d->sheets.size()))
        return nullptr;
    return d->sheetObjects[size_t(index)].get();
}

Worksheet* Document::currentWorksheet() const
{
    AbstractSheet* sheet = currentSheet();
    if (!sheet || sheet->sheetType() != AbstractSheet::ST_WorkSheet)
        return nullptr;
    return static_cast<Worksheet*>(sheet);
}

bool Document::isDate1904() const { return d->date1904; }
void Document::setDate1904(bool date1904) { d->date1904 = date1904; }

bool Document::save() const
{
    if (m_path.isEmpty()) {
        d->errorString = tr("The document has no path to save to");
        return false;
    }
    return saveAs(m_path);
}

// QSaveFile writes a temporary file beside the target and renames it over the target
// only on commit, on Windows as well, so a failed save leaves the old file as it was.
bool Document::saveAs(const QString& path) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return saveFailed(d->errorString, path, file.errorString());
    QString error;
    detail::SaveReport report;
    if (!detail::writePackage(*d, file, &error, &report)) {
        file.cancelWriting();
        return saveFailed(d->errorString, path, error.isEmpty() ? file.errorString() : error);
    }
    // QSaveFile::commit() renames the file over the target even when the last buffered
    // bytes could not be written (a file size limit, a full disk): it only remembers
    // failed writes, and the final flush is not one. Flushing first catches them.
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        // Qt often has no text for the failed flush.
        const QString reason = file.error() == QFileDevice::WriteError || file.errorString() == QLatin1String("Unknown error")
            ? tr("the file could not be written whole (the disk is full or a file size limit was reached)")
            : file.errorString();
        file.cancelWriting();
        return saveFailed(d->errorString, path, reason);
    }
    if (!file.commit())
        return saveFailed(d->errorString, path, file.errorString());
    d->errorString.clear();
    keepReport(report);
    warnOfLimits(path, report);
    return true;
}

bool Document::saveAs(QIODevice* device) const
{
    if (!device) {
        d->errorString = tr("No device to write to");
        return false;
    }
    if (!device->isOpen() && !device->open(QIODevice::WriteOnly)) {
        d->errorString = device->errorString();
        return false;
    }
    QString error;
    detail::SaveReport report;
    if (!detail::writePackage(*d, *device, &error, &report)) {
        d->errorString = error.isEmpty() ? device->errorString() : error;
        return false;
    }
    d->errorString.clear();
    keepReport(report);
    warnOfLimits(deviceName(*device), report);
    return true;
}

void Document::keepReport(const detail::SaveReport& report) const
{
    m_cutTexts = qint64(report.cutTexts);
    m_droppedFormats = int(report.droppedFormats);
}

qint64 Document::cutTextCount() const { return m_cutTexts; }

int Document::droppedFormatCount() const { return m_droppedFormats; }

QString Document::errorString() const { return d->errorString; }

} // namespace QXlsx
