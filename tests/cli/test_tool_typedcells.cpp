// What a user who computes with an exported workbook finds in its cells: numbers, dates,
// empty cells and texts as openpyxl reads them, the cells ogr2ogr writes for the same
// layer, and with --text number texts that read back as the same numbers.

#include "clitesting.h"

#include "tsgdal.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <cstdint>
#include <map>
#include <utility>

using namespace VyObjects;

namespace {

constexpr std::int64_t k2To53 = std::int64_t(1) << 53;

TsVariant utc(int year, int month, int day, int hour, int minute, int second, int msec)
{
    const QDateTime when(QDate(year, month, day), QTime(hour, minute, second, msec), Qt::UTC);
    return TsVariant::fromDateTime(when.toMSecsSinceEpoch());
}

// A column of the test layer: its field, its four values in feature order, and what
// openpyxl reads in its typed cells ("type repr").
struct Column
{
    const char* name;
    TsField::FieldType type;
    std::vector<TsVariant> values;
    QStringList typedCells;
};

const std::vector<Column>& layerColumns()
{
    static const std::vector<Column> columns{
        {"COUNT", TsField::IntegerField, {TsVariant(42), TsVariant::null(), TsVariant(-7), TsVariant(0)},
         {"int 42", "NoneType None", "int -7", "int 0"}},
        // A GeoPackage boolean reads as a 16-bit integer: the host has no boolean field.
        {"FLAG", TsField::SmallIntegerField,
         {TsVariant::fromInt16(1), TsVariant::null(), TsVariant::fromInt16(0), TsVariant::fromInt16(1)},
         {"int 1", "NoneType None", "int 0", "int 1"}},
        {"BIG", TsField::BigIntegerField,
         {TsVariant(k2To53 + 1), TsVariant::null(), TsVariant(k2To53), TsVariant(-k2To53 - 1)},
         {"str '9007199254740993'", "NoneType None", "int 9007199254740992", "str '-9007199254740993'"}},
        {"REAL", TsField::DoubleField,
         {TsVariant(258.5801598495534), TsVariant::null(), TsVariant(1623819823.81), TsVariant(0.1 + 0.2)},
         {"float 258.5801598495534", "NoneType None", "float 1623819823.81", "float 0.30000000000000004"}},
        // A single is the number its own text names, not the float widened to a double.
        {"SHARE", TsField::SingleField, {TsVariant(0.1f), TsVariant::null(), TsVariant(2.5f), TsVariant(-1e-5f)},
         {"float 0.1", "NoneType None", "float 2.5", "float -1e-05"}},
        {"WHEN", TsField::DateField, {utc(2021, 6, 16, 4, 57, 3, 810), TsVariant::null(), utc(2021, 6, 16, 0, 0, 0, 0),
          utc(1999, 12, 31, 23, 59, 59, 0)},
         {"datetime datetime.datetime(2021, 6, 16, 4, 57, 3, 810000)", "NoneType None",
          "datetime datetime.datetime(2021, 6, 16, 0, 0)", "datetime datetime.datetime(1999, 12, 31, 23, 59, 59)"}},
        {"NAME", TsField::StringField, {TsVariant("hello"), TsVariant::null(), TsVariant("007"), TsVariant("=1+1")},
         {"str 'hello'", "NoneType None", "str '007'", "str '=1+1'"}},
    };
    return columns;
}

// The points of the four features; precision 8 would round both.
const double pointX[] = {123.456789012345, 0.5, -179.99999999999, 1e-9};
const double pointY[] = {-1.234e-09, 45.000000001, 89.123456789012, 2.0 / 3.0};

} // namespace

class ToolTypedCells : public ToolTest
{
protected:
    // A GeoPackage point layer "facts" of four features holding layerColumns().
    QString factsPackage()
    {
        const QString path = file("facts.gpkg");
        QString error;
        const TsRefPtr<TsGdalDataSource> source = TsGdalDataSource::create(path, &error);
        std::vector<TsGdalFieldDefinition> fields;
        for (const Column& column : layerColumns())
            fields.emplace_back(QString::fromLatin1(column.name), column.type);
        EXPECT_TRUE(source && source->createLayer("facts", TsLayer::PointLayer, fields, &error))
            << error.toStdString();
        const TsRefPtr<TsGdalFeatureWriter> writer = source->featureWriter("facts", &error);
        for (std::size_t feature = 0; feature < 4; ++feature) {
            std::vector<TsVariant> values;
            for (const Column& column : layerColumns())
                values.push_back(column.values[feature]);
            writer->addFeature(values, TsRefPtr<TsGeoPoint>::create(pointX[feature], pointY[feature]));
        }
        EXPECT_TRUE(writer->commit(&error)) << error.toStdString();
        return path;
    }

    // What cellvalues.py prints for the workbook whose column names are in headerRow.
    static QJsonObject cellValues(const QString& workbook, int headerRow)
    {
        QProcess python;
        python.start(QStringLiteral(VYGIS_PYTHON3),
                     {QStringLiteral(VYGIS_TEST_SOURCE_DIR "/cellvalues.py"), workbook, QString::number(headerRow)});
        EXPECT_TRUE(python.waitForFinished(60000) && python.exitCode() == 0)
            << python.readAllStandardError().toStdString();
        return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    }

    // "type repr" of each data cell of a column, or one part alone: 0 the type, 1 the
    // repr, 2 the number format.
    static QStringList column(const QJsonObject& cells, const char* name, int part = -1)
    {
        QStringList texts;
        for (const QJsonValue& cell : cells.value(QLatin1String(name)).toArray()) {
            const QJsonArray read = cell.toArray();
            texts.append(part >= 0 ? read.at(part).toString()
                                   : read.at(0).toString() + QLatin1Char(' ') + read.at(1).toString());
        }
        return texts;
    }

    // A list as one line per entry, for messages a person can read.
    static std::string lines(const QStringList& list)
    {
        return list.join(QLatin1Char('\n')).toStdString();
    }

    static void expectSaved(const ToolRun& run)
    {
        EXPECT_EQ(run.status, 0) << run.err.toStdString();
    }
};

TEST_F(ToolTypedCells, ExportsWriteNumbersDatesNullsAndTextsAsTypedCells)
{
    const QString layer = factsPackage();
    const struct {
        const char* command;
        QStringList options;
        int headerRow;
    } exports[] = {
        {"export", {}, 2},
        {"export-table", {}, 2},
        {"export", {"--columns", "COUNT", "FLAG", "BIG", "REAL", "SHARE", "WHEN", "NAME"}, 1},
    };
    for (const auto& exported : exports) {
        SCOPED_TRACE(exported.command + (' ' + exported.options.join(' ')).toStdString());
        const QString workbook = file("typed.xlsx");
        expectSaved(vygis(QStringList{exported.command, layer, workbook, "--overwrite"} + exported.options));
        const QJsonObject cells = cellValues(workbook, exported.headerRow);
        for (const Column& expected : layerColumns())
            EXPECT_EQ(lines(column(cells, expected.name)), lines(expected.typedCells)) << expected.name;
    }
}

TEST_F(ToolTypedCells, CoordinatesAreExactNumbers)
{
    const QString workbook = file("points.xlsx");
    expectSaved(vygis({"export", factsPackage(), workbook, "--columns", "X", "Y"}));
    const QJsonObject cells = cellValues(workbook, 1);
    EXPECT_EQ(lines(column(cells, "X")),
              lines({"float 123.456789012345", "float 0.5", "float -179.99999999999", "float 1e-09"}));
    EXPECT_EQ(lines(column(cells, "Y")),
              lines({"float -1.234e-09", "float 45.000000001", "float 89.123456789012", "float 0.6666666666666666"}));
}

TEST_F(ToolTypedCells, DateTimesShowTheirTimeAndMidnightsOnlyTheirDate)
{
    const QString workbook = file("dates.xlsx");
    expectSaved(vygis({"export", factsPackage(), workbook}));
    const QStringList formats = column(cellValues(workbook, 2), "WHEN", 2);
    ASSERT_EQ(formats.size(), 4);
    EXPECT_TRUE(formats[0].contains(QLatin1String("hh:mm:ss"))) << formats[0].toStdString();
    EXPECT_FALSE(formats[2].contains(QLatin1Char('h'), Qt::CaseInsensitive)) << formats[2].toStdString();
    EXPECT_TRUE(formats[3].contains(QLatin1String("hh:mm:ss"))) << formats[3].toStdString();
}

// ogr2ogr writes the same cell types and values, except in three ways: a 64-bit integer
// beyond 2^53 as a number, which a spreadsheet shows rounded; a double cut to 15
// significant digits where the 16th and 17th are what is left of a sum (0.1 + 0.2 as
// 0.3); and a single as the float widened to a double (0.1 as 0.1000000014901161).
TEST_F(ToolTypedCells, TypedCellsAreTheCellsOgr2ogrWrites)
{
    const QString ogr2ogr = QStandardPaths::findExecutable("ogr2ogr");
    if (ogr2ogr.isEmpty())
        GTEST_SKIP() << "needs GDAL's ogr2ogr";
    const QString layer = factsPackage();
    const QString ours = file("vygis.xlsx");
    const QString theirs = file("gdal.xlsx");
    expectSaved(vygis({"export", layer, ours}));
    ASSERT_EQ(QProcess::execute(ogr2ogr, {"-f", "XLSX", theirs, layer}), 0);
    const std::map<std::pair<QString, int>, QString> gdalDiffers{
        {{"BIG", 0}, "int 9007199254740993"}, {{"BIG", 3}, "int -9007199254740993"}, {{"REAL", 3}, "float 0.3"},
        {{"SHARE", 0}, "float 0.1000000014901161"}, {{"SHARE", 3}, "float -9.999999747378752e-06"}};

    const QJsonObject ourCells = cellValues(ours, 2);
    const QJsonObject gdalCells = cellValues(theirs, 1);
    for (const Column& expected : layerColumns()) {
        QStringList gdalColumn = column(ourCells, expected.name);
        for (int row = 0; row < gdalColumn.size(); ++row) {
            const auto differs = gdalDiffers.find({QLatin1String(expected.name), row});
            if (differs != gdalDiffers.end())
                gdalColumn[row] = differs->second;
        }
        EXPECT_EQ(lines(column(gdalCells, expected.name)), lines(gdalColumn)) << expected.name;
    }
}

TEST_F(ToolTypedCells, TextOptionWritesNumbersAsTheShortestTextsThatReadBackTheSame)
{
    const QString layer = factsPackage();
    const QStringList realTexts{"258.5801598495534", "", "1623819823.81", "0.30000000000000004"};
    const std::vector<double> reals{258.5801598495534, 0.0, 1623819823.81, 0.1 + 0.2};
    const struct {
        const char* command;
        QStringList options;
        int headerRow;
        const char* column;
        QStringList texts;
        std::vector<double> numbers;
    } exports[] = {
        {"export", {}, 2, "REAL", realTexts, reals},
        {"export-table", {}, 2, "REAL", realTexts, reals},
        {"export", {"--columns", "X"}, 1, "X",
         {"123.456789012345", "0.5", "-179.99999999999", "1e-09"}, {std::begin(pointX), std::end(pointX)}},
        {"export", {"--columns", "Y"}, 1, "Y",
         {"-1.234e-09", "45.000000001", "89.123456789012", "0.6666666666666666"}, {std::begin(pointY), std::end(pointY)}},
    };
    for (const auto& exported : exports) {
        SCOPED_TRACE(exported.command + (' ' + exported.options.join(' ')).toStdString());
        const QString workbook = file("texts.xlsx");
        expectSaved(vygis(QStringList{exported.command, layer, workbook, "--text", "--overwrite"} + exported.options));
        const QJsonObject cells = cellValues(workbook, exported.headerRow);
        EXPECT_EQ(lines(column(cells, exported.column, 0)), lines({"str", "str", "str", "str"}));
        // repr() puts a text in quotes.
        QStringList texts;
        for (const QString& repr : column(cells, exported.column, 1))
            texts.append(repr.mid(1, repr.size() - 2));
        ASSERT_EQ(lines(texts), lines(exported.texts));
        for (int row = 0; row < texts.size(); ++row) {
            if (texts[row].isEmpty())
                continue;
            EXPECT_EQ(texts[row].toDouble(), exported.numbers[std::size_t(row)]) << texts[row].toStdString();
        }
    }
}
