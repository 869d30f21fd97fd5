#include "vygisutil.h"

#include "report/reportsheet.h"
#include "workbook/conventions.h"

#include "xlsxdocument.h"

namespace {

constexpr int FieldsPerError = 3;

// Every triple has to find its row below the header; a list that would run past the
// sheet's last row is refused rather than saved with its tail missing.
bool isWritableErrorList(const QStringList& errors)
{
    const int size = errors.size();
    return size > 0 && size % FieldsPerError == 0
        && size / FieldsPerError <= QXlsx::MaxRows - 1;
}

} // namespace

bool VyExcelUtil::exportErrorTable(QStringList errors, QString path)
{
    if (!isWritableErrorList(errors))
        return false;

    // The list is added to whatever workbook already stands at path, so the user's
    // other sheets and cells go back to disk with it.
    QXlsx::Document document(path);
    // An active chart sheet has no cells to receive the list; saving would only rewrite
    // the file unchanged and claim success.
    if (!document.currentWorksheet())
        return false;

    const QXlsx::Format header = vygis::centredCellFormat();
    document.write(1, 1, QStringLiteral("Error Type"), header);
    document.write(1, 2, QStringLiteral("Layer Count"), header);
    document.write(1, 3, QStringLiteral("Layer Name"), header);

    const QXlsx::Format plain;
    const int errorCount = errors.size() / FieldsPerError;
    for (int k = 0; k < errorCount; ++k) {
        const int row = k + 2;
        for (int field = 0; field < FieldsPerError; ++field)
            document.write(row, field + 1, errors.at(FieldsPerError * k + field), plain);
    }
    return document.saveAs(path);
}
