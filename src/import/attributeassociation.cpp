#include "vygisutil.h"

#include "import/attributejoin.h"
#include "tsqtext.h"
#include "tssde.h"

#include <QMessageBox>
#include <QObject>
#include <QPushButton>

using namespace VyObjects;

namespace {

void showKeyColumnMissing()
{
    QMessageBox box(QMessageBox::Warning, QObject::tr("Assocation Attributes"),
                    QObject::tr("The assocation field is not consistent with the excel key field!"),
                    QMessageBox::Close);
    box.button(QMessageBox::Close)->setText(QObject::tr("Close"));
    box.exec();
}

} // namespace

// The checks on the layer come before the workbook is read: a layer without the key
// field gives false without the message box.
bool VyExcelUtil::assocationFromExcel(const QString& path, const QString& keyField,
                                      TsFeatureLayer* layer,
                                      const QMap<QString, QString>& fieldNames)
{
    const QString keyName = keyField.toUpper();
    if (!layer || !layer->FindField(toTsString(keyName)))
        return false;
    vygis::JoinWorkbook workbook;
    if (!workbook.read(path, keyName)) {
        showKeyColumnMissing();
        return false;
    }
    return vygis::joinWorkbook(workbook, layer, fieldNames);
}
