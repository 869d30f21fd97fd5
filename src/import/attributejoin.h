#pragma once

// The join of a workbook's columns into a layer's attributes in two steps, reading the
// workbook and joining what was read, for the programs built with the library in this
// tree (the vygis tool); not part of the installed API and not exported from the shared
// library, like export/attributeexports.h. VyExcelUtil::assocationFromExcel is these two
// steps and the message box for a missing key column: a program that reads first can
// check the workbook and report on it before the layer is touched, and the join reads
// nothing a second time.

#include "tssde.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

namespace vygis {

// A workbook's current sheet as the join reads it: the row (1 or 2) whose headers
// include the key, the key column and the other columns with their headers.
class JoinWorkbook
{
public:
    JoinWorkbook();
    ~JoinWorkbook();

    JoinWorkbook(const JoinWorkbook&) = delete;
    JoinWorkbook& operator=(const JoinWorkbook&) = delete;

    // Reads the workbook at path and finds the column headed keyName, which is compared
    // as it is (the join's key field name in upper case): the last so headed in row 1,
    // else in row 2 below a title. False when no column is headed so, also for a path
    // without a workbook or a chart sheet; the workbook then counts as not read.
    bool read(const QString& path, const QString& keyName);

    QString keyName() const;
    // 1 or 2; 0 when the workbook was not read. The data rows follow it to lastRow().
    int headerRow() const;
    int lastRow() const;
    // The key cell's text of a data row, which features are matched against.
    QString keyText(int row) const;
    // The last data row whose key cell reads key; 0 for none.
    int rowOf(const QString& key) const;

    // The columns besides the key column, in column order, and their headers compared
    // as the join compares them (normalisedHeader).
    const QVector<int>& dataColumns() const;
    const QStringList& dataHeaders() const;
    // The text the join writes from a cell; an empty text for a blank one.
    QString cellText(int row, int column) const;

    // A header as the join compares it: trimmed, in upper case and cut before the first
    // "(", so "Code(text)" reads CODE; what stands before the bracket is not trimmed
    // again, so "Code (text)" reads "CODE ".
    static QString normalisedHeader(const QString& text);
    // The field a column with the normalised header goes to: fieldNames[header] where
    // the map has it, the header itself otherwise.
    static QString fieldFor(const QString& header, const QMap<QString, QString>& fieldNames);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// VyExcelUtil::assocationFromExcel once its workbook is read: joins the rows of
// workbook into the features of layer that its query filter admits, matched on the
// layer's field workbook.keyName(), in one edit operation. True when that operation
// ran; false, changing nothing, for a workbook not read, a null layer, a layer without
// the key field, or one that cannot list its features or open an edit operation.
bool joinWorkbook(const JoinWorkbook& workbook, VyObjects::TsFeatureLayer* layer,
                  const QMap<QString, QString>& fieldNames);

} // namespace vygis
