#include "vygisutil.h"

#include "report/reportsheet.h"
#include "workbook/conventions.h"

#include "tsqtext.h"
#include "tstopology.h"
#include "xlsxdocument.h"

#include <QObject>

#include <algorithm>

namespace {

using VyObjects::toQString;
using VyObjects::TsString;

// One error record as the check result hands it out. The values persist from one
// record to the next: a record that cannot be read leaves the previous one in place,
// and its row repeats it.
struct ErrorRecord
{
    int number = 0;
    int ruleId = 0;
    int featureId = 0;
    int relatedFeatureId = 0;
    int layerId = 0;
    int relatedLayerId = 0;
    TsString layerName;
    TsString relatedLayerName;
    TsString coordinate;
    TsString ruleDescription;
    TsString errorType;
    bool isException = false;

    void readFrom(const VyObjects::TsTopology& topology, int index)
    {
        topology.GetTopoErrorInfo(index, number, ruleId, featureId, relatedFeatureId,
                                  layerId, relatedLayerId, layerName, relatedLayerName,
                                  coordinate, ruleDescription, errorType, isException);
    }

    // A second feature is worth naming only when it is not the first one conflicting
    // with itself, which the check reports as the same feature on the same layer.
    bool hasOtherFeature() const
    {
        return relatedFeatureId > 0
            && (relatedLayerId != layerId || relatedFeatureId != featureId);
    }
};

QString idText(int id)
{
    return id > 0 ? QString::number(id, 10) : QStringLiteral("");
}

void writeErrorRow(QXlsx::Document& document, int row, const ErrorRecord& error,
                   bool attributeCheck, const QXlsx::Format& format)
{
    // Empty texts are written on purpose: they give the cell its border. "Status" (B)
    // is the one column the report leaves for the user to fill in.
    const QString empty = QStringLiteral("");
    const QString errorType =
        attributeCheck && !error.errorType.IsEmpty() ? toQString(error.errorType) : empty;
    document.write(QXlsx::CellReference(row, 1), errorType, format);
    document.write(QXlsx::CellReference(row, 3), QString::number(error.number, 10), format);
    document.write(QXlsx::CellReference(row, 4), toQString(error.layerName), format);
    document.write(QXlsx::CellReference(row, 5), empty, format);
    document.write(QXlsx::CellReference(row, 6), idText(error.featureId), format);
    document.write(QXlsx::CellReference(row, 7),
                   error.hasOtherFeature() ? idText(error.relatedFeatureId) : empty, format);
    document.write(QXlsx::CellReference(row, 8), toQString(error.coordinate), format);
    document.write(QXlsx::CellReference(row, 9), toQString(error.relatedLayerName), format);
}

} // namespace

bool VyExcelUtil::exportExcelByTsTopology(const QString& path, VyObjects::TsTopology* topology)
{
    if (!topology)
        return false;

    QXlsx::Document document;
    const QXlsx::Format format = vygis::centredCellFormat();
    document.setColumnWidth(1, 9, 40.0);
    vygis::writeTranslatedHeader(document, 1,
                                 {QT_TRANSLATE_NOOP("QObject", "Error type"),
                                  QT_TRANSLATE_NOOP("QObject", "Status"),
                                  QT_TRANSLATE_NOOP("QObject", "Number"),
                                  QT_TRANSLATE_NOOP("QObject", "Layer"),
                                  QT_TRANSLATE_NOOP("QObject", "Notes"),
                                  QT_TRANSLATE_NOOP("QObject", "Feature 1"),
                                  QT_TRANSLATE_NOOP("QObject", "Feature 2"),
                                  QT_TRANSLATE_NOOP("QObject", "coordinate"),
                                  QT_TRANSLATE_NOOP("QObject", "Related layer")},
                                 format);

    const bool attributeCheck = topology->GetIsAttributeCheck();
    // A count the sheet cannot hold is cut at its last row; asking for records that
    // could never be written would only spin.
    const int errorCount = std::min(topology->GetTopoErrorCount(), QXlsx::MaxRows - 1);

    ErrorRecord error;
    for (int index = 0; index < errorCount; ++index) {
        error.readFrom(*topology, index);
        writeErrorRow(document, index + 2, error, attributeCheck, format);
    }
    document.saveAs(path);
    return true;
}
