// Values past what Excel holds, saved by the engine and read back by the engine, openpyxl
// and LibreOffice: texts over 32,767 characters, lone surrogates, days Excel shows no
// date for, non-finite numbers and more than 64,000 cell formats. Each case table says
// what every reader gets.

#include "model/styletable.h"
#include "test_support.h"
#include "write/stylelimit.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

#include <limits>
#include <tuple>
#include <vector>

using namespace QXlsx;
using namespace xlsxtest;

namespace {

const QString Emoji = QString::fromUtf8("\xF0\x9F\x98\x80");

QString lone(ushort unit) { return QString(QChar(unit)); }

// Sheet 1 of the limits workbook: long texts in column A, lone surrogates in B, days in C,
// non-finite numbers in D, one case a row.
enum Column { LongTextColumn = 1, SurrogateColumn, DateColumn, NonFiniteColumn };

struct LongText
{
    const char* name;
    QString text;
    int savedUnits;
};

const std::vector<LongText>& longTexts()
{
    static const std::vector<LongText> cases = {
        {"exactly the limit", QString(32767, 'a'), 32767},
        {"one over", QString(32768, 'b'), 32767},
        {"a hundred thousand", QString(100000, 'c'), 32767},
        {"a pair across the limit is left out whole", QString(32766, 'd') + Emoji + "tail", 32766},
        {"three-byte characters within the limit", QString(20000, QChar(0x4E2D)), 20000},
        {"the same text in a second cell", QString(100000, 'c'), 32767},
    };
    return cases;
}

// LibreOffice holds the surrogate the escape gives it, but its UTF-8 output has no way to
// write one: a high surrogate takes the next character with it into one "?", a low one
// becomes "?", and one at the end is dropped.
struct LoneSurrogate
{
    const char* name;
    QString text;
    QByteArray xml;   // in the shared strings
    QString openpyxl;
    QString libreOffice;
};

const std::vector<LoneSurrogate>& loneSurrogates()
{
    static const std::vector<LoneSurrogate> cases = {
        {"a high one inside", "a" + lone(0xD800) + "b", "a_xD800_b", "a_xD800_b", "a?"},
        {"a low one first", lone(0xDFFF) + " start", "_xDFFF_ start", "_xDFFF_ start", "? start"},
        {"a high one last", "end " + lone(0xDBFF), "end _xDBFF_", "end _xDBFF_", "end "},
        {"between pairs", Emoji + lone(0xDC00) + Emoji, "\xF0\x9F\x98\x80_xDC00_\xF0\x9F\x98\x80",
         Emoji + "_xDC00_" + Emoji, Emoji + "?" + Emoji},
        {"an escape typed as text", "_xD800_", "_x005F_xD800_", "_xD800_", "_xD800_"},
    };
    return cases;
}

// A day Excel shows no date for is saved as ISO text: a QString for every reader.
struct DateCase
{
    const char* name;
    bool date1904;
    QVariant written;
    QVariant engine;            // what read() gives back
    const char* openpyxl;       // the text, or the ISO form of the date or time it gives
    const char* libreOffice;
};

const std::vector<DateCase>& dates()
{
    static const std::vector<DateCase> cases = {
        {"the day before the first", false, QDate(1899, 12, 31), "1899-12-31", "1899-12-31", "1899-12-31"},
        {"a century before", false, QDate(1800, 1, 1), "1800-01-01", "1800-01-01", "1800-01-01"},
        {"after the last", false, QDate(10000, 1, 1), "10000-01-01", "10000-01-01", "10000-01-01"},
        {"before year 1, numbered as ISO does", false, QDate(-44, 3, 15), "-0043-03-15", "-0043-03-15", "-0043-03-15"},
        {"a time on the day before the first", false, QDateTime(QDate(1899, 12, 31), QTime(12, 0)),
         "1899-12-31T12:00:00", "1899-12-31T12:00:00", "1899-12-31T12:00:00"},
        {"milliseconds kept", false, QDateTime(QDate(1800, 1, 1), QTime(6, 30, 0, 250)),
         "1800-01-01T06:30:00.250", "1800-01-01T06:30:00.250", "1800-01-01T06:30:00.250"},
        // LibreOffice counts no 29 February 1900, so its days before March 1900 are one early.
        {"the first day", false, QDate(1900, 1, 1), QDate(1900, 1, 1), "1900-01-01T00:00:00", "12/31/1899"},
        {"the last day", false, QDate(9999, 12, 31), QDate(9999, 12, 31), "9999-12-31T00:00:00", "12/31/9999"},
        {"the last second", false, QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59)),
         QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59)), "9999-12-31T23:59:59", "9999-12-31 23:59:59"},
        {"before the first day of 1904", true, QDate(1903, 12, 31), "1903-12-31", "1903-12-31", "1903-12-31"},
        {"a day of 1900 under 1904", true, QDate(1900, 1, 1), "1900-01-01", "1900-01-01", "1900-01-01"},
        // Serial 0: read() gives a time for every serial below 1, and so does openpyxl.
        {"the first day of 1904", true, QDate(1904, 1, 1), QTime(0, 0), "00:00:00", "01/01/1904"},
        {"the last day under 1904", true, QDate(9999, 12, 31), QDate(9999, 12, 31), "9999-12-31T00:00:00", "12/31/9999"},
    };
    return cases;
}

// The cases of one date system, in the order of their rows.
std::vector<DateCase> datesOf(bool date1904)
{
    std::vector<DateCase> cases;
    for (const DateCase& c : dates())
        if (c.date1904 == date1904)
            cases.push_back(c);
    return cases;
}

const std::vector<std::pair<const char*, double>>& nonFiniteNumbers()
{
    static const std::vector<std::pair<const char*, double>> cases = {
        {"NaN", std::numeric_limits<double>::quiet_NaN()},
        {"infinity", std::numeric_limits<double>::infinity()},
        {"minus infinity", -std::numeric_limits<double>::infinity()},
    };
    return cases;
}

// The dates of one date system, and under 1900 every other case as well.
void fillLimitsWorkbook(Document& doc, bool date1904)
{
    doc.setDate1904(date1904);
    const std::vector<DateCase> cases = datesOf(date1904);
    for (size_t i = 0; i < cases.size(); ++i)
        doc.write(int(i) + 1, DateColumn, cases[i].written);
    if (date1904)
        return;
    for (size_t i = 0; i < longTexts().size(); ++i)
        doc.write(int(i) + 1, LongTextColumn, longTexts()[i].text);
    for (size_t i = 0; i < loneSurrogates().size(); ++i)
        doc.write(int(i) + 1, SurrogateColumn, loneSurrogates()[i].text);
    for (size_t i = 0; i < nonFiniteNumbers().size(); ++i)
        doc.write(int(i) + 1, NonFiniteColumn, nonFiniteNumbers()[i].second);
}

// 64,100 fills, each in a format of its own; most formats only pass through one cell, so
// that the table is full while few cells use it (LibreOffice takes minutes over 64,000
// formats in use). A1 and A2 use kept formats, A3 to A5 formats beyond the limit: a
// plain number, a date, a number format.
const int FormatCount = 64100;

QColor fillOf(int i) { return QColor::fromRgb(QRgb(0x010000 + i)); }

void fillFormatsWorkbook(Document& doc)
{
    const auto filled = [](int i) {
        Format format;
        format.setPatternBackgroundColor(fillOf(i));
        return format;
    };
    doc.write(1, 1, 1, filled(0));
    doc.write(2, 1, 2, filled(63000));
    for (int i = 1; i < FormatCount - 3; ++i)
        if (i != 63000)
            doc.write(10, 1, i, filled(i));
    doc.write(3, 1, 3, filled(FormatCount - 3));
    doc.write(4, 1, QDate(2024, 2, 29), filled(FormatCount - 2));
    Format money = filled(FormatCount - 1);
    money.setNumberFormat(QStringLiteral("#,##0.00"));
    doc.write(5, 1, 5.5, money);
}

QString cellName(int row, int column) { return CellReference(row, column).toString(); }

// Messages logged in the category of what saves changed while it lives.
class SaveWarnings
{
public:
    SaveWarnings() { s_messages.clear(); s_previous = qInstallMessageHandler(&collect); }
    ~SaveWarnings() { qInstallMessageHandler(s_previous); }
    QStringList messages() const { return s_messages; }

private:
    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type == QtWarningMsg && qstrcmp(context.category, "vygis.xlsx.limits") == 0)
            s_messages << message;
    }
    static inline QStringList s_messages;
    static inline QtMessageHandler s_previous = nullptr;
};

// The cells LibreOffice makes of each workbook's one sheet, as "file" -> rows of fields.
using Grid = QList<QStringList>;

QMap<QString, Grid> convertedToCsv(const QStringList& workbooks, QString* error)
{
    const QTemporaryDir out;
    convertByOffice(workbooks, "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1",
                    out.path(), error);
    QMap<QString, Grid> grids;
    for (const QFileInfo& info : QDir(out.path()).entryInfoList({"*.csv"})) {
        QFile file(info.filePath());
        file.open(QIODevice::ReadOnly);
        Grid grid;
        // None of the texts holds a comma, a quote or a line break.
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
            grid << line.split(',');
        grids.insert(info.completeBaseName().remove(QLatin1String("-Sheet1")), grid);
    }
    return grids;
}

QString field(const Grid& grid, int row, int column)
{
    return row <= grid.size() && column <= grid[row - 1].size() ? grid[row - 1][column - 1] : QString();
}

// What openpyxl gives for a cell of a dump: its text, or the ISO form of a date or time.
QString shownByOpenpyxl(const QJsonObject& dump, int row, int column)
{
    const QJsonValue value = dumpedCell(dump, 0, cellName(row, column)).value("value");
    return value.isObject() ? value.toObject().value("datetime").toString() : value.toString();
}

} // namespace

TEST(WriteLimits, TextsOverExcelsLengthAreSavedCutAndTheCutCellsCounted)
{
    Document doc;
    fillLimitsWorkbook(doc, false);
    const SaveWarnings warnings;
    const QString path = saved(doc, "long-texts.xlsx");
    ASSERT_FALSE(path.isEmpty());

    EXPECT_EQ(doc.cutTextCount(), 4);
    EXPECT_EQ(warnings.messages(),
              QStringList{path + ": 4 cell texts longer than 32767 characters were cut to 32767"});
    const Document reopened(path);
    for (size_t i = 0; i < longTexts().size(); ++i) {
        const LongText& c = longTexts()[i];
        EXPECT_EQ(reopened.read(int(i) + 1, LongTextColumn).toString(), c.text.left(c.savedUnits)) << c.name;
        // The document keeps what was written.
        EXPECT_EQ(doc.read(int(i) + 1, LongTextColumn).toString(), c.text) << c.name;
    }
}

TEST(WriteLimits, LoneSurrogatesAreSavedAsEscapesAndReadBack)
{
    Document doc;
    fillLimitsWorkbook(doc, false);
    const QString path = saved(doc, "surrogates.xlsx");
    const QByteArray strings = entry(path, "xl/sharedStrings.xml");
    EXPECT_FALSE(strings.contains("\xEF\xBF\xBD")) << "no replacement character";
    const Document reopened(path);
    for (size_t i = 0; i < loneSurrogates().size(); ++i) {
        const LoneSurrogate& c = loneSurrogates()[i];
        EXPECT_TRUE(strings.contains("<t>" + c.xml + "</t>")) << c.name;
        EXPECT_EQ(reopened.read(int(i) + 1, SurrogateColumn).toString(), c.text) << c.name;
    }
}

TEST(WriteLimits, DaysExcelShowsNoDateForAreSavedAsIsoTextUnderBothDateSystems)
{
    for (const bool date1904 : {false, true}) {
        Document doc;
        fillLimitsWorkbook(doc, date1904);
        const Document reopened(saved(doc, date1904 ? "dates1904.xlsx" : "dates1900.xlsx"));
        const std::vector<DateCase> cases = datesOf(date1904);
        for (size_t i = 0; i < cases.size(); ++i) {
            const DateCase& c = cases[i];
            const int row = int(i) + 1;
            // Text stays text in the document too.
            for (const Document* d : {static_cast<const Document*>(&doc), &reopened}) {
                const QVariant value = d->read(row, DateColumn);
                EXPECT_EQ(value.userType(), c.engine.userType()) << c.name;
                EXPECT_EQ(value, c.engine) << c.name;
            }
            const Cell* cell = reopened.cellAt(row, DateColumn);
            const bool isText = c.engine.userType() == QMetaType::QString;
            EXPECT_EQ(cell->isDateTime(), !isText) << c.name;
            if (!isText) {
                EXPECT_EQ(cell->dateTime().date(), c.written.toDate()) << c.name;
            }
        }
    }
}

TEST(WriteLimits, NonFiniteNumbersAreSavedAsNumErrors)
{
    Document doc;
    fillLimitsWorkbook(doc, false);
    const Document reopened(saved(doc, "non-finite.xlsx"));
    for (size_t i = 0; i < nonFiniteNumbers().size(); ++i) {
        const Cell* cell = reopened.cellAt(int(i) + 1, NonFiniteColumn);
        ASSERT_NE(cell, nullptr) << nonFiniteNumbers()[i].first;
        EXPECT_EQ(cell->cellType(), Cell::ErrorType) << nonFiniteNumbers()[i].first;
        EXPECT_EQ(cell->value(), QVariant(QStringLiteral("#NUM!"))) << nonFiniteNumbers()[i].first;
    }
}

TEST(WriteLimits, FormatsBeyondExcelsCountKeepTheValuesAndTheirNumberFormats)
{
    Document doc;
    fillFormatsWorkbook(doc);
    const SaveWarnings warnings;
    const QString path = saved(doc, "formats.xlsx");
    ASSERT_FALSE(path.isEmpty());

    // The default, 64,099 fills, a fill with a date and one with a number format: 64,102
    // formats. The date and the number format alone take the last two records, after the
    // first 63,998 formats.
    EXPECT_EQ(doc.droppedFormatCount(), 104);
    EXPECT_EQ(warnings.messages(),
              QStringList{path + ": 104 cell formats beyond 64000 were written as their number format alone"});
    EXPECT_TRUE(entry(path, "xl/styles.xml").contains("<cellXfs count=\"64000\">"));
    const Document reopened(path);
    const std::vector<std::tuple<int, QVariant, QColor, QString>> cells = {
        {1, 1.0, fillOf(0), "General"}, {2, 2.0, fillOf(63000), "General"}, {3, 3.0, QColor(), "General"},
        {4, QDate(2024, 2, 29), QColor(), QStringLiteral("mm-dd-yy")}, {5, 5.5, QColor(), QStringLiteral("#,##0.00")}};
    for (const auto& [row, value, fill, numberFormat] : cells) {
        EXPECT_EQ(reopened.read(row, 1), value) << row;
        const Format format = reopened.cellAt(row, 1)->format();
        EXPECT_EQ(format.patternBackgroundColor(), fill) << row;
        EXPECT_EQ(format.numberFormat(), numberFormat) << row;
    }
}

TEST(WriteLimits, FormatsBeyondTheLimitWithNumberFormatsOfTheirOwnStillFit)
{
    detail::StyleTable styles;
    for (int i = 0; i < 64500; ++i) {
        Format format;
        format.setPatternBackgroundColor(fillOf(i));
        // The last thousand have number formats of their own, each needing a record of
        // its own, which pushes more formats past the ones kept.
        if (i >= 63500)
            format.setNumberFormat(QStringLiteral("0.00\" %1\"").arg(i));
        styles.indexOf(format);
    }
    const detail::WrittenStyles written(styles);
    EXPECT_EQ(written.count(), detail::MaxCellFormats);
    for (quint32 style = 0; style < styles.count(); ++style) {
        const Format& format = written.format(written.recordOf(style));
        ASSERT_EQ(format.numberFormat(), styles.format(style).numberFormat()) << style;
    }
}

TEST(WriteLimitsOpenpyxl, ShowsWhatTheEngineSaved)
{
    if (!haveOpenpyxl())
        GTEST_SKIP() << "no Python with openpyxl at " VYGIS_PYTHON3;
    for (const bool date1904 : {false, true}) {
        Document doc;
        fillLimitsWorkbook(doc, date1904);
        const QJsonObject dump = openpyxlDump(saved(doc, date1904 ? "openpyxl1904.xlsx" : "openpyxl1900.xlsx"));
        const std::vector<DateCase> cases = datesOf(date1904);
        for (size_t i = 0; i < cases.size(); ++i)
            EXPECT_EQ(shownByOpenpyxl(dump, int(i) + 1, DateColumn), QLatin1String(cases[i].openpyxl)) << cases[i].name;
        if (date1904)
            continue;
        for (size_t i = 0; i < longTexts().size(); ++i) {
            const LongText& c = longTexts()[i];
            EXPECT_EQ(shownByOpenpyxl(dump, int(i) + 1, LongTextColumn), c.text.left(c.savedUnits)) << c.name;
        }
        for (size_t i = 0; i < loneSurrogates().size(); ++i)
            EXPECT_EQ(shownByOpenpyxl(dump, int(i) + 1, SurrogateColumn), loneSurrogates()[i].openpyxl)
                << loneSurrogates()[i].name;
        for (size_t i = 0; i < nonFiniteNumbers().size(); ++i) {
            const QJsonObject cell = dumpedCell(dump, 0, cellName(int(i) + 1, NonFiniteColumn));
            EXPECT_EQ(cell.value("type").toString(), "e") << nonFiniteNumbers()[i].first;
            EXPECT_EQ(cell.value("value").toString(), "#NUM!") << nonFiniteNumbers()[i].first;
        }
    }

    Document formats;
    fillFormatsWorkbook(formats);
    QString error;
    const QByteArray out = runPython(
        {"-c", "import openpyxl,sys; ws=openpyxl.load_workbook(sys.argv[1]).active\n"
               "for r in range(1, 6): c=ws.cell(r, 1); print(c.value, c.number_format, c.fill.fgColor.rgb)",
         saved(formats, "openpyxl-formats.xlsx")}, &error);
    EXPECT_EQ(out.toStdString(), "1 General FF010000\n2 General FF01F618\n3 General 00000000\n"
                                 "2024-02-29 00:00:00 mm-dd-yy 00000000\n5.5 #,##0.00 00000000\n")
        << error.toStdString();
}

// One LibreOffice run for every workbook, since each start costs seconds.
TEST(WriteLimitsLibreOffice, ShowsWhatTheEngineSaved)
{
    if (!haveOffice())
        GTEST_SKIP() << "LibreOffice (soffice) not found";
    Document book1900, book1904, formats;
    fillLimitsWorkbook(book1900, false);
    fillLimitsWorkbook(book1904, true);
    fillFormatsWorkbook(formats);
    QString error;
    const QMap<QString, Grid> csv = convertedToCsv(
        {saved(book1900, "office1900.xlsx"), saved(book1904, "office1904.xlsx"), saved(formats, "office-formats.xlsx")},
        &error);
    ASSERT_EQ(csv.size(), 3) << error.toStdString();

    const Grid& grid1900 = csv["office1900"];
    for (const bool date1904 : {false, true}) {
        const std::vector<DateCase> cases = datesOf(date1904);
        const Grid& grid = csv[date1904 ? "office1904" : "office1900"];
        for (size_t i = 0; i < cases.size(); ++i)
            EXPECT_EQ(field(grid, int(i) + 1, DateColumn), QLatin1String(cases[i].libreOffice)) << cases[i].name;
    }
    for (size_t i = 0; i < longTexts().size(); ++i) {
        const LongText& c = longTexts()[i];
        EXPECT_EQ(field(grid1900, int(i) + 1, LongTextColumn), c.text.left(c.savedUnits)) << c.name;
    }
    for (size_t i = 0; i < loneSurrogates().size(); ++i)
        EXPECT_EQ(field(grid1900, int(i) + 1, SurrogateColumn), loneSurrogates()[i].libreOffice)
            << loneSurrogates()[i].name;
    for (size_t i = 0; i < nonFiniteNumbers().size(); ++i)
        EXPECT_EQ(field(grid1900, int(i) + 1, NonFiniteColumn), "#NUM!") << nonFiniteNumbers()[i].first;
    const Grid& grid = csv["office-formats"];
    EXPECT_EQ((QStringList{field(grid, 1, 1), field(grid, 2, 1), field(grid, 3, 1), field(grid, 4, 1), field(grid, 5, 1)}),
              (QStringList{"1", "2", "3", "02/29/2024", "5.5"}));
}
