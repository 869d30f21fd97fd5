// The part generators on a model built in code: what an opened workbook kept goes back
// where the format wants it, without clashing with what the writer sets itself.

#include "model/cellaccess.h"
#include "model/workbookdata.h"
#include "write/packageplan.h"
#include "write/sharedstrings.h"
#include "write/stylelimit.h"
#include "write/stylespart.h"
#include "write/workbookpart.h"
#include "write/worksheetpart.h"
#include "write/xmlsink.h"

#include <gtest/gtest.h>

using namespace QXlsx;
using namespace QXlsx::detail;

namespace {

template<typename Generate>
std::string generated(Generate generate)
{
    QByteArray xml;
    XmlSink out(xml);
    generate(out);
    out.flush();
    return xml.toStdString();
}

// The worksheet part of a sheet whose texts and formats are within Excel's limits.
std::string worksheetXml(const WorkbookData& book, const SheetData& sheet, bool active)
{
    const WrittenStyles styles(book.styles);
    const std::vector<quint32> noCutTexts;
    return generated([&](XmlSink& out) { writeWorksheetPart(out, book, sheet, active, {styles, noCutTexts}); });
}

// True when every tag is in xml, in the order given.
bool inOrder(const std::string& xml, std::initializer_list<const char*> tags)
{
    size_t last = 0;
    for (const char* tag : tags) {
        const size_t at = xml.find(tag);
        if (at == std::string::npos || at < last)
            return false;
        last = at;
    }
    return true;
}

} // namespace

TEST(WriteWorksheetPart, KeptElementsGoWhereTheFormatWantsThem)
{
    WorkbookData book;
    SheetData& sheet = *book.appendSheet("Data", AbstractSheet::ST_WorkSheet);
    CellAccess::setNumber(sheet.cellFor(1, 1), 1);
    sheet.merges << CellRange(2, 1, 2, 3);
    // In file order as a careless writer might leave them.
    sheet.extraElements = {
        {"pageMargins", "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" footer=\"0.3\"/>"},
        {"sheetViews", "<sheetViews><sheetView tabSelected=\"1\" zoomScale=\"85\" workbookViewId=\"0\"/></sheetViews>"},
        {"conditionalFormatting", "<conditionalFormatting sqref=\"A1\"><cfRule type=\"cellIs\" priority=\"1\" operator=\"equal\" dxfId=\"0\"><formula>1</formula></cfRule></conditionalFormatting>"},
        {"sheetPr", "<sheetPr><tabColor rgb=\"FFFF0000\"/></sheetPr>"},
        {"dimension", "<dimension ref=\"A1:Z99\"/>"},
    };
    const std::string xml = worksheetXml(book, sheet, false);

    EXPECT_TRUE(inOrder(xml, {"<sheetPr>", "<dimension ref=\"A1\"/>", "<sheetView ",
                                                   "<sheetData>", "<mergeCells", "<conditionalFormatting",
                                                   "<pageMargins"})) << xml;
    EXPECT_EQ(xml.find("A1:Z99"), std::string::npos);
    // Only the active sheet's tab is selected; the rest of the view stays.
    EXPECT_EQ(xml.find("tabSelected"), std::string::npos);
    EXPECT_NE(xml.find("zoomScale=\"85\""), std::string::npos);
}

TEST(WriteWorksheetPart, APrefixedRootStillHoldsTheCellsInTheMainNamespace)
{
    WorkbookData book;
    SheetData& sheet = *book.appendSheet("Data", AbstractSheet::ST_WorkSheet);
    CellAccess::setBoolean(sheet.cellFor(1, 1), true);
    sheet.rootStartTag = "<x:worksheet xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
    const std::string xml = worksheetXml(book, sheet, true);

    EXPECT_NE(xml.find("<x:worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" xmlns:x="),
              std::string::npos) << xml;
    EXPECT_EQ(xml.substr(xml.size() - 14), "</x:worksheet>");
    EXPECT_NE(xml.find("<sheetView tabSelected=\"1\""), std::string::npos);
}

TEST(WriteWorksheetPart, KeptRowAndColumnAttributesNeverDuplicateWrittenOnes)
{
    WorkbookData book;
    SheetData& sheet = *book.appendSheet("Data", AbstractSheet::ST_WorkSheet);
    RowRecord& row = sheet.rowFor(3);
    row.height = 30;
    row.extraAttributes = "spans=\"1:9\" customHeight=\"1\" ht=\"12\" x14ac:dyDescent=\"0.25\"";
    CellAccess::setNumber(sheet.cellFor(3, 2), 2.5);
    ColumnRecord column;
    column.first = column.last = 2;
    column.width = 20;
    column.extraAttributes = "width=\"9\" customWidth=\"1\" outlineLevel=\"1\"";
    sheet.columns.push_back(column);
    const std::string xml = worksheetXml(book, sheet, true);

    EXPECT_NE(xml.find("<row r=\"3\" ht=\"30\" customHeight=\"1\" x14ac:dyDescent=\"0.25\">"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<col min=\"2\" max=\"2\" width=\"20\" customWidth=\"1\" outlineLevel=\"1\"/>"), std::string::npos) << xml;
    EXPECT_EQ(xml.find("customHeight"), xml.rfind("customHeight"));
    EXPECT_EQ(xml.find("spans"), std::string::npos);
}

TEST(WriteWorksheetPart, ACellNamesItsReferenceOnlyAfterAGap)
{
    WorkbookData book;
    SheetData& sheet = *book.appendSheet("Data", AbstractSheet::ST_WorkSheet);
    for (int column : {2, 3, 5})
        CellAccess::setNumber(sheet.cellFor(1, column), column);
    for (int column : {1, 2})
        CellAccess::setNumber(sheet.cellFor(4, column), column);
    CellAccess::setNumber(sheet.cellFor(5, MaxColumns), 7);
    const std::string xml = worksheetXml(book, sheet, true);

    EXPECT_NE(xml.find("<sheetData>"
                       "<row r=\"1\"><c r=\"B1\"><v>2</v></c><c><v>3</v></c><c r=\"E1\"><v>5</v></c></row>"
                       "<row r=\"4\"><c><v>1</v></c><c><v>2</v></c></row>"
                       "<row r=\"5\"><c r=\"XFD5\"><v>7</v></c></row>"
                       "</sheetData>"),
              std::string::npos) << xml;
}

TEST(WriteSharedStrings, EveryEntryAsTheEscaperGivesItWhateverItsLength)
{
    // Plain texts up to the sink's reserve go a faster way than the others.
    const std::string plain(XmlSink::MaxReserve - 15, 'p');
    const std::vector<std::string> texts = {
        "Feature 1-0", "", "a<b & c>", " lead", "two\nlines", "_x0041_", "caf\xC3\xA9",
        plain, plain + "q", plain + "&", std::string(9000, 'x') + "<"};
    StringPool pool;
    std::string expected;
    for (const std::string& text : texts) {
        pool.append(text.data(), int(text.size()));
        const bool preserve = text == " lead" || text == "two\nlines";
        expected += preserve ? "<si><t xml:space=\"preserve\">" : "<si><t>";
        expected += generated([&](XmlSink& out) { out.appendText(text.data(), text.size()); });
        expected += "</t></si>";
    }
    const std::string xml = generated([&](XmlSink& out) { writeSharedStrings(out, pool, 0); });

    EXPECT_NE(xml.find("uniqueCount=\"11\">" + expected + "</sst>"), std::string::npos);
}

TEST(WriteStylesPart, SharedPiecesAreWrittenOnceAndCustomCodesGetIdsFrom164)
{
    StyleTable styles;
    Format bold;
    bold.setFontBold(true);
    Format boldCentred = bold;
    boldCentred.setHorizontalAlignment(Format::AlignHCenter);
    Format money;
    money.setNumberFormat("#,##0.00 \"EUR\"");
    Format day;
    day.setNumberFormat("dd/mm/yyyy hh:mm");
    Format percent;
    percent.setNumberFormat("0.00%");
    for (const Format& f : {bold, boldCentred, money, day, percent})
        styles.indexOf(f);
    const std::string xml = generated([&](XmlSink& out) { writeStylesPart(out, styles, WrittenStyles(styles)); });

    EXPECT_NE(xml.find("<fonts count=\"2\">"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<numFmt numFmtId=\"164\" formatCode=\"#,##0.00 &quot;EUR&quot;\"/>"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<numFmt numFmtId=\"165\" formatCode=\"dd/mm/yyyy hh:mm\"/>"), std::string::npos);
    EXPECT_NE(xml.find("<xf numFmtId=\"10\""), std::string::npos) << "0.00% is built in";
    EXPECT_NE(xml.find("<cellXfs count=\"6\">"), std::string::npos);
    EXPECT_TRUE(inOrder(xml, {"<numFmts", "<fonts", "<fills", "<borders", "<cellStyleXfs",
                                                   "<cellXfs", "<cellStyles"})) << xml;
}

TEST(WriteWorkbookPart, KeptSettingsFollowTheModel)
{
    WorkbookData book;
    book.appendSheet("One", AbstractSheet::ST_WorkSheet);
    book.appendSheet("Two", AbstractSheet::ST_WorkSheet)->state = AbstractSheet::SS_Hidden;
    book.appendSheet("Three", AbstractSheet::ST_WorkSheet);
    book.activeSheet = 2;
    book.date1904 = true;
    book.workbookExtraElements = {
        {"calcPr", "<calcPr calcId=\"191029\"/>"},
        {"bookViews", "<bookViews><workbookView xWindow=\"0\" firstSheet=\"1\" activeTab=\"1\"/></bookViews>"},
        {"workbookPr", "<workbookPr defaultThemeVersion=\"166925\"/>"},
        {"definedNames", "<definedNames><definedName name=\"Total\">One!$A$1</definedName></definedNames>"},
    };
    const PackagePlan plan = planPackage(book);
    const std::string xml = generated([&](XmlSink& out) { writeWorkbookPart(out, book, plan); });

    EXPECT_NE(xml.find("<workbookPr date1904=\"1\" defaultThemeVersion=\"166925\"/>"), std::string::npos) << xml;
    EXPECT_NE(xml.find("activeTab=\"2\""), std::string::npos);
    EXPECT_NE(xml.find("<sheet name=\"Two\" sheetId=\"2\" state=\"hidden\" r:id=\"rId2\"/>"), std::string::npos);
    EXPECT_TRUE(inOrder(xml, {"<workbookPr", "<bookViews", "<sheets>", "<definedNames", "<calcPr"})) << xml;
}

TEST(WritePackagePlan, NewSheetsTakeFreeNamesAndIds)
{
    WorkbookData book;
    book.packageRelationships = {{"rId1", uri::RelOfficeDocument, "/xl/workbook.xml", false}};
    book.workbookRelationships = {{"rId1", "http://schemas.openxmlformats.org/officeDocument/2006/relationships/theme",
                                   "theme/theme1.xml", false}};
    // The relationships of a deleted sheet1 are still among the kept parts.
    book.keptParts = {{"xl/worksheets/_rels/sheet1.xml.rels", "", "<Relationships/>"},
                      {"xl/theme/theme1.xml", "application/vnd.openxmlformats-officedocument.theme+xml", "<a/>"}};
    SheetData* kept = book.appendSheet("Kept", AbstractSheet::ST_WorkSheet);
    kept->partName = "xl/worksheets/sheet2.xml";
    kept->relationshipId = "rId2";
    kept->sheetId = 7;
    book.appendSheet("New", AbstractSheet::ST_WorkSheet);
    const PackagePlan plan = planPackage(book);

    ASSERT_EQ(plan.sheets.size(), 2u);
    EXPECT_EQ(plan.workbookPart.toStdString(), "xl/workbook.xml");
    EXPECT_EQ(plan.sheets[0].partName.toStdString(), "xl/worksheets/sheet2.xml");
    EXPECT_EQ(plan.sheets[0].relationshipId.toStdString(), "rId2");
    EXPECT_EQ(plan.sheets[1].partName.toStdString(), "xl/worksheets/sheet3.xml");
    EXPECT_EQ(plan.sheets[1].relationshipId.toStdString(), "rId3");
    EXPECT_EQ(plan.sheets[1].sheetId, 8u);
}
