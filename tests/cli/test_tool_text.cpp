#include "layertesting.h"

#include "tsqtext.h"

using namespace VyObjects;

// Names and values pass from the command line through the object library into
// GDAL and the workbook and back. Characters beyond the Basic Multilingual
// Plane are two UTF-16 code units, and four bytes in a 32-bit wchar_t's
// stead, so they show whether every crossing keeps text whole.
class ToolText : public ToolTest
{
protected:
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    const QString riverLayer = QString::fromUcs4(U"\u6CB3\u6D41") + clef;          // 河流𝄞
    const QString streetField = QString::fromUcs4(U"Stra\u00DFe") + clef;          // Straße𝄞
    const QString streetValue = QString::fromUcs4(U"\u8DEF ") + clef + QStringLiteral(" 7");

    // A GeoPackage with one point layer named riverLayer: a feature whose streetField
    // holds streetValue, and one whose streetField holds "plain".
    QString riverPackage()
    {
        return pointLayer(file("rivers.gpkg"), riverLayer, {{streetField}},
                          {{toTsString(streetValue)}, {TsString("plain")}});
    }
};

TEST_F(ToolText, LayerNameComparesAndPrintsNamesBeyondTheBmpWhole)
{
    const QString package = riverPackage();
    EXPECT_EQ(vygis({"layer-name", package, riverLayer}).out, riverLayer + QStringLiteral("-1\n"));
    EXPECT_EQ(vygis({"layer-name", package, clef}).out, clef + QLatin1Char('\n'));
}

TEST_F(ToolText, ExportWritesFieldNamesAndValuesBeyondTheBmpWhole)
{
    const QString workbook = file("rivers.xlsx");
    const ToolRun run = vygis({"export", riverPackage(), workbook});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].value(0), riverLayer + QStringLiteral("_attribute table"));
    EXPECT_EQ(rows[1], QStringList{streetField});
    EXPECT_EQ(rows[2], QStringList{streetValue});
}

TEST_F(ToolText, ExportFiltersByAValueBeyondTheBmp)
{
    const QString workbook = file("rivers.xlsx");
    const ToolRun run = vygis({"export", riverPackage(), workbook, "--where",
                               QStringLiteral("\"%1\" = '%2'").arg(streetField, streetValue)});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    const std::vector<QStringList> rows = sheet(workbook);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[2], QStringList{streetValue});
}
