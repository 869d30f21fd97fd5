// Values that a spreadsheet would take for formulas ("=", "+", "-", "@" first) are
// written by the exports and reports as text cells: LibreOffice, converting each
// workbook to CSV, shows the texts themselves, and no formula runs.

#include "vygisutil.h"

#include "tsmemorylayer.h"
#include "tsmemorytable.h"
#include "tsmemorytopology.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace VyObjects;

namespace {

const QStringList Formulas = {"=1+1", "+1+1", "-1+1", "@SUM(1,1)", "=HYPERLINK(\"http://example.com\",\"x\")"};

// The fields of CSV text, quotes undone.
QStringList csvFields(const QString& csv)
{
    QStringList fields;
    QString field;
    bool quoted = false;
    for (int i = 0; i < csv.size(); ++i) {
        const QChar c = csv[i];
        if (quoted && c == '"' && i + 1 < csv.size() && csv[i + 1] == '"') {
            field += c;
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && (c == ',' || c == '\n')) {
            fields << field;
            field.clear();
        } else if (quoted || c != '\r') {
            field += c;
        }
    }
    return fields << field;
}

// The CSV LibreOffice makes of the first sheet of each workbook, by file name.
QMap<QString, QString> convertedToCsv(const QStringList& workbooks, QString* error)
{
    QTemporaryDir profile;
    QTemporaryDir out;
    QProcess soffice;
    soffice.start(QStringLiteral(VYGIS_SOFFICE),
                  QStringList{"-env:UserInstallation=" + QUrl::fromLocalFile(profile.path()).toString(),
                              "--headless", "--convert-to", "csv:Text - txt - csv (StarCalc):44,34,76,1",
                              "--outdir", out.path()} + workbooks);
    if (!soffice.waitForFinished(300000)) {
        soffice.kill();
        *error = QStringLiteral("soffice did not finish");
        return {};
    }
    QMap<QString, QString> csv;
    for (const QFileInfo& info : QDir(out.path()).entryInfoList({"*.csv"})) {
        QFile file(info.filePath());
        file.open(QIODevice::ReadOnly);
        csv.insert(info.completeBaseName(), QString::fromUtf8(file.readAll()));
    }
    if (csv.size() != workbooks.size())
        *error = QString::fromUtf8(soffice.readAllStandardError());
    return csv;
}

class FormulaText : public ::testing::Test
{
protected:
    // The path of a workbook the test writes, listed for the conversion.
    QString path(const QString& name)
    {
        m_written << m_dir.filePath(name + ".xlsx");
        return m_written.last();
    }

    QTemporaryDir m_dir;
    QStringList m_written;
};

TEST_F(FormulaText, ExportsAndReportsWriteFormulaLikeValuesAsText)
{
    if (!QFileInfo(QStringLiteral(VYGIS_SOFFICE)).isExecutable())
        GTEST_SKIP() << "LibreOffice (soffice) not found";

    QStandardItemModel model(1, Formulas.size());
    for (int column = 0; column < Formulas.size(); ++column)
        model.setItem(0, column, new QStandardItem(Formulas[column]));
    ASSERT_TRUE(VyExcelUtil::export2Excel("=title", path("model"), &model, {}));

    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("roads", TsLayer::LineLayer);
    auto table = TsRefPtr<TsMemoryTable>::create("parcels");
    std::vector<TsVariant> values;
    for (int i = 0; i < Formulas.size(); ++i) {
        layer->AddField(TsString(QStringLiteral("F%1").arg(i).toStdWString()), TsField::StringField);
        table->AddField(TsString(QStringLiteral("F%1").arg(i).toStdWString()), TsField::StringField);
        values.push_back(TsString(Formulas[i].toStdWString()));
    }
    layer->AddFeature(values);
    table->AddRow(values);
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("layer"), layer.get(), false, {}));
    ASSERT_TRUE(VyExcelUtil::export2ExcelHasXYZ(path("points"), layer.get(), {"F0", "F1", "F2", "F3", "F4"}, false, {}));
    ASSERT_TRUE(VyExcelUtil::export2Excel(path("table"), TsRefPtr<TsTable>(table)));

    ASSERT_TRUE(VyExcelUtil::exportErrorTable(Formulas.mid(0, 3) + Formulas.mid(2, 3), path("errors")));
    auto topology = TsRefPtr<TsMemoryTopology>::create(true);
    TsTopoError error;
    error.number = 7;
    error.errorType = TsString(Formulas[0].toStdWString());
    error.layerName = TsString(Formulas[1].toStdWString());
    error.coordinate = TsString(Formulas[2].toStdWString());
    error.relatedLayerName = TsString(Formulas[3].toStdWString());
    topology->AddError(error);
    ASSERT_TRUE(VyExcelUtil::exportExcelByTsTopology(path("topology"), topology.get()));
    QTableWidget widget(1, 4);
    for (int column = 0; column < 4; ++column)
        widget.setItem(0, column, new QTableWidgetItem(Formulas[column + 1]));
    widget.item(0, 0)->setCheckState(Qt::Checked);
    ASSERT_TRUE(VyExcelUtil::exportExcelByTableWidget(path("widget"), &widget));
    const QString fieldTemplate = path("template");
    VyExcelUtil::createExcel(fieldTemplate);
    ASSERT_TRUE(VyExcelUtil::updateFieldsTemplateTableContent(Formulas, fieldTemplate));

    QString problem;
    const QMap<QString, QString> csv = convertedToCsv(m_written, &problem);
    ASSERT_EQ(csv.size(), m_written.size()) << problem.toStdString();
    // The topology report shows four of the texts, the widget report columns 1 to 4.
    const QMap<QString, QStringList> shown = {{"topology", Formulas.mid(0, 4)}, {"widget", Formulas.mid(1, 4)}};
    for (auto it = csv.begin(); it != csv.end(); ++it) {
        SCOPED_TRACE(it.key().toStdString());
        const QStringList fields = csvFields(it.value());
        for (const QString& formula : shown.value(it.key(), Formulas))
            EXPECT_TRUE(fields.contains(formula)) << formula.toStdString() << " in\n" << it.value().toStdString();
    }
}

} // namespace
