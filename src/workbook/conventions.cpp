#include "workbook/conventions.h"

#include "tsbase.h"
#include "tsqtext.h"
#include "vygiscore.h"

#include <QColor>
#include <QObject>

namespace vygis {

bool fileExists(const QString& path)
{
    return VyObjects::TsFile::Exists(VyObjects::toTsString(path));
}

QXlsx::Format centredCellFormat()
{
    QXlsx::Format format;
    format.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    format.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    format.setBorderStyle(QXlsx::Format::BorderThin);
    return format;
}

QXlsx::Format greyHeaderFormat()
{
    QXlsx::Format format;
    format.setHorizontalAlignment(QXlsx::Format::AlignHCenter);
    format.setVerticalAlignment(QXlsx::Format::AlignVCenter);
    format.setPatternBackgroundColor(QColor(QStringLiteral("#cccccc")));
    format.setBorderStyle(QXlsx::Format::BorderThin);
    return format;
}

void writeTitleRow(QXlsx::Document& document, const QString& title, int width)
{
    const QXlsx::Format centred = centredCellFormat();
    // A one-cell range is not a merge; the title still goes to A1.
    if (width > 1)
        document.mergeCells(QXlsx::CellRange(1, 1, 1, width), QXlsx::Format());
    document.setRowHeight(1, 30.0);
    document.write(1, 1, title, centred);
}

QString attributeText(const VyObjects::TsVariant& value)
{
    const auto code = value.GetType();
    if (code == VyObjects::TsVariant::DoubleType || code == VyObjects::TsVariant::SingleType)
        return VyApplication::doubleToQString(value.GetDouble(), 8);
    return VyObjects::toQString(value.ToString());
}

bool writeRowsAndSave(QXlsx::Document& document, const QString& path,
                      const std::function<void()>& writeRows)
{
    VyWaitDialog dialog(QObject::tr("Exporting..."), nullptr);
    dialog.WaitFor(writeRows);
    return document.saveAs(path);
}

bool writeRowsAndSaveIfComplete(QXlsx::Document& document, const QString& path,
                                const std::function<bool()>& writeRows)
{
    VyWaitDialog dialog(QObject::tr("Exporting..."), nullptr);
    bool complete = true;
    dialog.WaitFor([&] { complete = writeRows(); });
    return complete && document.saveAs(path);
}

} // namespace vygis
