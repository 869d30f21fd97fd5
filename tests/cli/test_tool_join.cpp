// vygis join as a user runs it: what it refuses before touching the layer, the
// counts it gives, values that do not fit, Ctrl-C, and exported workbooks joined back.

#include "layertesting.h"

#include "xlsxdocument.h"

#include <QFileInfo>
#include <QThread>

using namespace VyObjects;

namespace {

// The bytes of a layer's attributes: a shapefile's .dbf, or the whole file.
QByteArray attributeBytes(const QString& path)
{
    if (!path.endsWith(QLatin1String(".shp")))
        return bytesOf(path);
    return bytesOf(path.left(path.size() - 3) + QStringLiteral("dbf"));
}

} // namespace

class ToolJoin : public ToolTest, public ::testing::WithParamInterface<const char*>
{
protected:
    // Parcels: PARCEL (key), OWNER, CODE (32-bit), AREA (2 decimals), SINCE (date).
    QString parcels()
    {
        return pointLayer(file(QStringLiteral("parcels.") + QString::fromLatin1(GetParam())), "parcels",
                          {{"PARCEL"}, {"OWNER"}, {"CODE", TsField::IntegerField},
                           {"AREA", TsField::DoubleField, QString(), 2}, {"SINCE", TsField::DateField}},
                          {{"P-1", "Ann", 1, 10.5, TsVariant::fromDateTime(0)},
                           {"P-2", TsVariant::null(), 2, 20.25, TsVariant::null()},
                           {"P-3", "Bob", 3, 30.0, TsVariant::null()},
                           {"P-4", "Cy", 4, 40.0, TsVariant::null()}});
    }

    // A sheet whose rows hold the given values from A1.
    QString workbook(const QList<QVariantList>& rows, const QString& name = QStringLiteral("join.xlsx"))
    {
        QXlsx::Document document;
        for (int r = 0; r < rows.size(); ++r)
            for (int c = 0; c < rows[r].size(); ++c)
                document.write(r + 1, c + 1, rows[r][c]);
        EXPECT_TRUE(document.saveAs(file(name)));
        return file(name);
    }

    static ToolRun join(const QString& workbook, const QString& layer, const QStringList& more = {})
    {
        return vygis(QStringList{"join", workbook, layer, "--key", "parcel"} + more);
    }
};

TEST_P(ToolJoin, CountsWhatMatchedAndWhatWasWritten)
{
    const QString layer = parcels();
    const QString book = workbook({{"PARCEL", "OWNER", "CODE"},
                                   {"P-1", "Ann", "1"},        // both unchanged
                                   {"P-9", "Nobody", "9"},     // no feature
                                   {"P-2", "Dora", "20"},
                                   {"P-3", "Eve", "3"},
                                   {"P-2", "Dora", "22"}});    // the later P-2 wins
    const ToolRun run = join(book, layer);
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(lines(run.err), (QStringList{
                                  QStringLiteral("vygis join: %1 from %2:").arg(layer, book),
                                  "  features joined: 3",
                                  "  features with no row: 1",
                                  "  rows matching no feature: 1 (first: row 3, key \"P-9\")",
                                  "  duplicate keys: 1 (first: \"P-2\" in rows 4 and 6; row 6 was used)",
                                  "  values written: 3",
                                  "  values unchanged: 3",
                                  "  values not convertible: 0",
                              }));
    EXPECT_EQ(layerValues(layer, "OWNER"), (QStringList{"Ann", "Dora", "Eve", "Cy"}));
    EXPECT_EQ(layerValues(layer, "CODE"), (QStringList{"1", "22", "3", "4"}));
}

TEST_P(ToolJoin, UnconvertibleValuesUndoTheJoin)
{
    const QString layer = parcels();
    const QByteArray before = attributeBytes(layer);
    const QString book = workbook({{"PARCEL", "OWNER", "CODE", "SINCE"},
                                   {"P-1", "Zed", "lots", "2020-01-02"},
                                   {"P-2", "Yan", "20200000000", "45000"}});
    const ToolRun run = join(book, layer);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains("values not convertible: 3\n")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("field CODE (32-bit integer")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("field SINCE (date") && run.err.contains("\"45000\""))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("3 value(s) could not be converted to their field's type; "
                                                "the join was undone and %1 was left as it was").arg(layer)))
        << run.err.toStdString();
    EXPECT_EQ(attributeBytes(layer), before);
}

TEST_P(ToolJoin, KeepGoingWritesTheRestAndKeepsTheOldValuesOfThose)
{
    const QString layer = parcels();
    const QString book = workbook({{"PARCEL", "OWNER", "CODE"}, {"P-1", "Zed", "lots"}, {"P-2", "Yan", "20"}});
    const ToolRun run = join(book, layer, {"--keep-going"});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("values not convertible: 1\n")) << run.err.toStdString();
    EXPECT_EQ(layerValues(layer, "OWNER"), (QStringList{"Zed", "Yan", "Bob", "Cy"}));
    EXPECT_EQ(layerValues(layer, "CODE"), (QStringList{"1", "20", "3", "4"}));
}

TEST_P(ToolJoin, MapsToAFieldOrFromAHeaderThatIsNotThereAreRefused)
{
    const QString layer = parcels();
    const QByteArray before = attributeBytes(layer);
    const QString book = workbook({{"PARCEL", "HOLDER"}, {"P-1", "Zed"}});
    const struct
    {
        const char* map;
        QString message;
    } maps[] = {
        {"holder=nosuchfield", QStringLiteral("--map HOLDER=nosuchfield: %1 has no field nosuchfield").arg(layer)},
        {"Keeper=OWNER",
         QStringLiteral("--map KEEPER=OWNER: %1 has no column headed KEEPER (its headers: \"HOLDER\")").arg(book)},
    };
    for (const auto& map : maps) {
        const ToolRun run = join(book, layer, {"--map", QString::fromLatin1(map.map)});
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(run.err.contains(map.message)) << run.err.toStdString();
        EXPECT_EQ(attributeBytes(layer), before);
    }
}

TEST_P(ToolJoin, MapHeadersAreComparedAsTheWorkbooksHeadersAre)
{
    const QString layer = parcels();
    const QString book = workbook({{"PARCEL", " Holder(name)"}, {"P-1", "Zed"}});
    const ToolRun run = join(book, layer, {"--map", " holder(text)=OWNER"});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_EQ(layerValues(layer, "OWNER").value(0), "Zed");
}

TEST_P(ToolJoin, WorkbookWithNoColumnForAFieldIsRefused)
{
    const QString layer = parcels();
    const QByteArray before = attributeBytes(layer);
    const QString book = workbook({{"PARCEL", "Holder", "Size (m2)"}, {"P-1", "Zed", "5"}});
    const ToolRun run = join(book, layer);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("no column goes to a field of %1 (headers besides the key: "
                                                "\"HOLDER\", \"SIZE \"); nothing was changed").arg(layer)))
        << run.err.toStdString();
    EXPECT_EQ(attributeBytes(layer), before);
}

TEST_P(ToolJoin, InputsThatAreNoWorkbooksLeaveTheLayerAlone)
{
    const QString layer = parcels();
    const QByteArray before = attributeBytes(layer);
    struct Input
    {
        QString name;
        QByteArray bytes;
        const char* kind;
    };
    const QList<Input> inputs = {
        {"owners.csv", "PARCEL,OWNER\nP-1,Zed\n", "text file"},
        {"owners.xls", compoundDocument({"Root Entry", "Workbook"}), "Excel 97-2003"},
        {"locked.xlsx", compoundDocument({"Root Entry", "EncryptionInfo", "EncryptedPackage"}), "encrypted"},
        {"empty.xlsx", QByteArray(), "empty file"},
        {"owners.ods", QByteArray(), "OpenDocument"},
    };
    for (const Input& input : inputs) {
        if (input.name.endsWith(QLatin1String(".ods")))
            writeOpenDocumentSpreadsheet(file(input.name));
        else
            writeBytes(file(input.name), input.bytes);
        const ToolRun run = join(file(input.name), layer);
        EXPECT_EQ(run.status, 1) << input.kind;
        EXPECT_TRUE(run.err.contains(input.name) && run.err.contains(input.kind)) << run.err.toStdString();
        EXPECT_EQ(attributeBytes(layer), before) << input.kind;
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, ToolJoin, ::testing::Values("gpkg", "shp"));

// Every kind of value a layer holds survives being exported and joined back.
class ToolJoinRoundTrip : public ToolJoin
{
protected:
    static constexpr const char* Fields[] = {"NAME", "COUNT", "BIG", "SINCE", "AT", "AREA", "RATIO"};

    QString everyKindOfValue()
    {
        const std::int64_t beyondDoubles = (std::int64_t(1) << 53) + 1;
        const std::int64_t leapDay = 1582934400000;     // 2020-02-29
        const std::int64_t afternoon = 1625060710000;   // 2021-06-30 13:45:10
        const TsVariant null = TsVariant::null();
        return pointLayer(file(QStringLiteral("values.") + QString::fromLatin1(GetParam())), "values",
                          {{"PARCEL"}, {"NAME"}, {"COUNT", TsField::IntegerField}, {"BIG", TsField::BigIntegerField},
                           {"SINCE", TsField::DateField}, {"AT", TsField::DateField},
                           {"AREA", TsField::DoubleField, QString(), 2}, {"RATIO", TsField::DoubleField}},
                          {{"P-1", "Zürich – 東京", 7, beyondDoubles, TsVariant::fromDateTime(leapDay),
                            TsVariant::fromDateTime(afternoon), 12.34, 0.1 + 0.2},
                           {"P-2", null, null, null, null, null, null, null},
                           {"P-3", "", -7, -beyondDoubles, TsVariant::fromDateTime(0),
                            TsVariant::fromDateTime(afternoon + 999), -0.5, 1.0 / 3.0}});
    }
};

TEST_P(ToolJoinRoundTrip, ExportedWorkbookJoinedBackChangesNothing)
{
    const QString layer = everyKindOfValue();
    std::map<const char*, QStringList> before;
    for (const char* field : Fields)
        before[field] = layerValues(layer, field);
    const QByteArray bytes = attributeBytes(layer);
    const QString book = file("values.xlsx");
    const ToolRun exported = vygis({"export", layer, book});
    ASSERT_EQ(exported.status, 0) << exported.err.toStdString();

    const ToolRun run = join(book, layer);
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("features joined: 3\n")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("values written: 0\n  values unchanged: 21\n")) << run.err.toStdString();
    for (const char* field : Fields)
        EXPECT_EQ(layerValues(layer, field), before[field]) << field;
    EXPECT_EQ(attributeBytes(layer), bytes);
}

INSTANTIATE_TEST_SUITE_P(Formats, ToolJoinRoundTrip, ::testing::Values("gpkg", "shp"));

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/types.h>

// A shapefile has no transactions: an interrupted join must write the old values back.
class ToolJoinInterrupted : public ToolJoin
{
protected:
    static constexpr int Features = 200000;

    QString manyParcels()
    {
        std::vector<std::vector<TsVariant>> rows;
        for (int i = 0; i < Features; ++i)
            rows.push_back({TsString(QStringLiteral("P-%1").arg(i).toStdWString()), "old"});
        return pointLayer(file("many.shp"), "many", {{"PARCEL"}, {"OWNER"}}, rows);
    }

    QString newOwners()
    {
        QXlsx::Document document;
        document.write(1, 1, "PARCEL");
        document.write(1, 2, "OWNER");
        for (int i = 0; i < Features; ++i) {
            document.write(i + 2, 1, QStringLiteral("P-%1").arg(i));
            document.write(i + 2, 2, "new");
        }
        EXPECT_TRUE(document.saveAs(file("owners.xlsx")));
        return file("owners.xlsx");
    }

    // The first records of a .dbf, which the join rewrites first.
    static QByteArray firstRecords(const QString& dbf)
    {
        QFile file(dbf);
        return file.open(QIODevice::ReadOnly) ? file.read(1 << 16) : QByteArray();
    }
};

TEST_P(ToolJoinInterrupted, CtrlCDuringTheJoinLeavesTheShapefileAsItWas)
{
    const QString layer = manyParcels();
    const QString dbf = file("many.dbf");
    const QByteArray before = bytesOf(dbf);
    const QString book = newOwners();

    QProcess process;
    process.start(QStringLiteral(VYGIS_TOOL), {"join", book, layer, "--key", "parcel"});
    ASSERT_TRUE(process.waitForStarted());
    // Once the first records have changed, the join is under way.
    const QByteArray untouched = before.left(1 << 16);
    while (process.state() == QProcess::Running && firstRecords(dbf) == untouched)
        QThread::msleep(5);
    ASSERT_EQ(process.state(), QProcess::Running) << "the join ended before it could be interrupted";
    const auto pid = static_cast<pid_t>(process.processId());
    ::kill(pid, SIGINT);
    // A second signal must not cut the undo short.
    QThread::msleep(2);
    ::kill(pid, SIGTERM);
    ASSERT_TRUE(process.waitForFinished(120000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    const QString err = QString::fromUtf8(process.readAllStandardError());
    EXPECT_TRUE(err.contains(QStringLiteral("interrupted; %1 was left as it was").arg(layer))) << err.toStdString();
    EXPECT_TRUE(bytesOf(dbf) == before) << "the .dbf changed";
}

INSTANTIATE_TEST_SUITE_P(Formats, ToolJoinInterrupted, ::testing::Values("shp"));
#endif
