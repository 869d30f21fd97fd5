#include "clitesting.h"

#include "xlsxdocument.h"

#include <QDate>

// vygis dump prints what VyExcelUtil::getExcelData reads, as CSV, and reads it cell by
// cell as it prints.
class ToolDump : public ToolTest
{
protected:
    QString workbook(const QString& name, const std::function<void(QXlsx::Document&)>& fill) const
    {
        QXlsx::Document document;
        fill(document);
        EXPECT_TRUE(document.saveAs(file(name)));
        return file(name);
    }

    // The CSV of what getExcelData reads from path, quoted as the tool quotes.
    static QString csvOfExcelData(const QString& path)
    {
        std::vector<QStringList> rows;
        VyExcelUtil::getExcelData(path, rows);
        QString csv;
        for (const QStringList& row : rows) {
            QStringList fields;
            for (QString field : row) {
                const bool quoted = field.contains(QLatin1Char(',')) || field.contains(QLatin1Char('"'))
                                    || field.contains(QLatin1Char('\n')) || field.contains(QLatin1Char('\r'));
                fields.append(quoted ? QLatin1Char('"') + field.replace(QLatin1Char('"'), "\"\"") + QLatin1Char('"')
                                     : field);
            }
            csv += fields.join(QLatin1Char(',')) + QLatin1Char('\n');
        }
        return csv;
    }
};

TEST_F(ToolDump, PrintsEveryCellFromA1AsGetExcelDataReadsIt)
{
    const QString path = workbook("cells.xlsx", [](QXlsx::Document& document) {
        document.write(2, 2, "a, b");
        document.write(2, 4, "say \"hi\"\nthen go");
        document.write(3, 2, 1500000.0);
        document.write(3, 3, -0.125);
        document.write(3, 4, 1e21);
        document.write(4, 3, true);
        document.write(4, 4, QDate(2021, 7, 14));
        document.write(5, 2, QString::fromUcs4(U"Zo\u00EB \U0001F332"));
        // Whole numbers, which the tool prints without asking Qt, beside the ones it leaves
        // to Qt: zero, six zeros at the end, 2^53 and beyond.
        const double numbers[] = {150013.0, -42.0, 0.0, -0.0, 1e6, 1200000.0, 123456789012345.0,
                                  9007199254740991.0, 9007199254740992.0, -1e17, 2.5};
        int column = 1;
        for (const double number : numbers)
            document.write(6, column++, number);
    });
    const ToolRun run = vygis({"dump", path});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, csvOfExcelData(path));
    EXPECT_TRUE(run.out.startsWith(",,,,,,,,,,\n,\"a, b\",,\"say \"\"hi\"\"\nthen go\",,,,,,,\n"))
        << run.out.toStdString();
}

// The output is written a chunk at a time; no line, and no character of two UTF-16
// units, is cut where one chunk ends.
TEST_F(ToolDump, LongSheetsComeOutWhole)
{
    const QString tree = QString::fromUcs4(U"\U0001F332");
    const QString path = workbook("long.xlsx", [&](QXlsx::Document& document) {
        for (int row = 1; row <= 20000; ++row) {
            document.write(row, 1, tree + QString::number(row));
            document.write(row, 2, row * 0.5);
        }
    });
    const ToolRun run = vygis({"dump", path});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(run.out.count(tree), 20000);
    EXPECT_EQ(run.out, csvOfExcelData(path));
}

TEST_F(ToolDump, AnEmptySheetIsAFailureThatSaysSo)
{
    const QString path = workbook("empty.xlsx", [](QXlsx::Document& document) {
        document.addSheet("Nothing");
    });
    const ToolRun run = vygis({"dump", path});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.contains("no sheet data")) << run.err.toStdString();
}
