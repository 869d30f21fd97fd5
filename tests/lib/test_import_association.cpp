#include "test_import_support.h"

#include "vygisutil.h"

#include "tsmemorylayer.h"

namespace {

using namespace VyObjects;
using importtest::MessageBoxCloser;

class AttributeAssociation : public ImportTest
{
protected:
    AttributeAssociation()
        : m_layer(TsRefPtr<TsMemoryFeatureLayer>::create("parcels", TsLayer::PolygonLayer))
    {
        m_layer->AddField("CODE", TsField::StringField);
        m_layer->AddField("NAME", TsField::StringField);
        m_layer->AddField("AREA", TsField::DoubleField, TsString(), 2);
        m_layer->AddField("OWNER", TsField::StringField);
        m_layer->AddField("OWNER_NAME", TsField::StringField);
        m_layer->AddField("NUMBER", TsField::IntegerField);
    }

    int addParcel(const char* code, const char* name = "old")
    {
        return m_layer->AddFeature({code, name, 1.0});
    }

    QString value(int id, const char* field) const
    {
        TsVariant result;
        m_layer->GetFeature(id)->GetValue(TsString(field), result);
        return QString::fromStdWString(result.ToString().toStdWString());
    }

    bool join(const QString& file, const QString& keyField = QStringLiteral("code"),
              const QMap<QString, QString>& fieldNames = {})
    {
        return VyExcelUtil::assocationFromExcel(file, keyField, m_layer.get(), fieldNames);
    }

    int operations() const { return m_layer->OperationsStarted(); }

    TsRefPtr<TsMemoryFeatureLayer> m_layer;
};

TEST_F(AttributeAssociation, WritesTheMatchedRowsInOneCommittedEditOperation)
{
    const int a = addParcel("A1");
    const int b = addParcel("B2");
    const int unmatched = addParcel("Z9");
    const QString file = rows({{"Code", "Name", "Area", "Number"},
                               {"A1", "Alder", 12.5, 7},
                               {"B2", QDate(2024, 3, 5), "3", QVariant()},
                               {"C3", "Cedar", 4, 4}});
    MessageBoxCloser closer;

    EXPECT_TRUE(join(file));

    EXPECT_EQ(value(a, "NAME"), "Alder");
    EXPECT_EQ(value(a, "AREA"), "12.5");
    EXPECT_EQ(value(a, "NUMBER"), "7");
    EXPECT_EQ(value(b, "NAME"), "2024-03-05"); // a date cell as the workbook reads it
    EXPECT_EQ(value(b, "AREA"), "3");
    EXPECT_EQ(value(unmatched, "NAME"), "old");
    EXPECT_EQ(m_layer->OperationsStarted(), 1);
    EXPECT_EQ(m_layer->OperationsCommitted(), 1);
    EXPECT_FALSE(m_layer->IsInOperation());
    EXPECT_TRUE(closer.shown().isEmpty());
}

TEST_F(AttributeAssociation, ABlankCellEmptiesTheAttribute)
{
    const int a = addParcel("A1", "Alder");
    EXPECT_TRUE(join(rows({{"Code", "Name", "Area"}, {"A1", QVariant(), 2}})));
    EXPECT_EQ(value(a, "NAME"), "");
    EXPECT_EQ(value(a, "AREA"), "2");
}

TEST_F(AttributeAssociation, HeadersAreTrimmedUpperCasedAndCutBeforeABracket)
{
    const int a = addParcel("A1");
    // "Name (text)" heads "NAME ", which names no field, so NAME stays.
    const QString file = rows({{"  Code(text) ", "Name (text)", " area(m2)"}, {"A1", "Alder", 9}});
    EXPECT_TRUE(join(file));
    EXPECT_EQ(value(a, "NAME"), "old");
    EXPECT_EQ(value(a, "AREA"), "9");
}

TEST_F(AttributeAssociation, AKeyHeaderWithABlankBeforeTheBracketIsMissedWithAWarning)
{
    const int a = addParcel("A1");
    const QString file = rows({{"Code (text)", "Name"}, {"A1", "Alder"}});
    MessageBoxCloser closer;

    EXPECT_FALSE(join(file));

    ASSERT_EQ(closer.shown().size(), 1);
    const importtest::ShownMessage& message = closer.shown().front();
    EXPECT_EQ(message.title, "Assocation Attributes");
    EXPECT_EQ(message.text, "The assocation field is not consistent with the excel key field!");
    EXPECT_EQ(message.icon, QMessageBox::Warning);
    EXPECT_EQ(message.buttonText, "Close");
    EXPECT_EQ(operations(), 0);
    EXPECT_EQ(value(a, "NAME"), "old");
}

TEST_F(AttributeAssociation, ReadsHeadersFromRowTwoBelowATitleElseRowTwoIsData)
{
    const int a = addParcel("A1");
    const int header = addParcel("Code");
    EXPECT_TRUE(join(rows({{"Parcels of 2024"}, {"Code", "Name"}, {"A1", "Alder"}})));
    EXPECT_EQ(value(a, "NAME"), "Alder");
    EXPECT_TRUE(join(rows({{"Code", "Name"}, {"Code", "Name"}})));
    EXPECT_EQ(value(header, "NAME"), "Name");
}

TEST_F(AttributeAssociation, AKeyHeaderBelowRowTwoOrNoWorkbookIsNotFound)
{
    addParcel("A1");
    const QString file = rows({{"Title"}, {"Subtitle"}, {"Code", "Name"}, {"A1", "Alder"}});
    MessageBoxCloser closer;
    EXPECT_FALSE(join(file));
    EXPECT_FALSE(join(path("missing.xlsx")));
    EXPECT_EQ(closer.shown().size(), 2);
    EXPECT_EQ(operations(), 0);
}

TEST_F(AttributeAssociation, TheLowerOfTwoRowsWithTheSameKeyServesEveryMatchingFeature)
{
    const int first = addParcel("A1");
    const int second = addParcel("A1");
    const QString file = rows({{"Code", "Name"}, {"A1", "upper"}, {"A1", "lower"}});
    EXPECT_TRUE(join(file));
    EXPECT_EQ(value(first, "NAME"), "lower");
    EXPECT_EQ(value(second, "NAME"), "lower");
}

TEST_F(AttributeAssociation, FloatingKeysMatchAtTheFieldsPrecision)
{
    auto layer = TsRefPtr<TsMemoryFeatureLayer>::create("wells", TsLayer::PointLayer);
    layer->AddField("WELL", TsField::DoubleField, TsString(), 0);
    layer->AddField("DEPTH", TsField::DoubleField, TsString(), 1);
    layer->AddField("NAME", TsField::StringField);
    const int well = layer->AddFeature({1001.4, 17.3});
    const int deep = layer->AddFeature({5.0, 1001.4});
    const QString file = rows({{"Well", "Depth", "Name"}, {1001, 1001, "matched"}});

    EXPECT_TRUE(VyExcelUtil::assocationFromExcel(file, "well", layer.get(), {}));
    EXPECT_TRUE(VyExcelUtil::assocationFromExcel(file, "depth", layer.get(), {}));

    TsVariant name;
    layer->GetFeature(well)->GetValue("NAME", name);
    EXPECT_EQ(name.ToString().toUtf8(), "matched"); // 1001.4 at 0 decimals reads 1001
    layer->GetFeature(deep)->GetValue("NAME", name);
    EXPECT_EQ(name.ToString().toUtf8(), "");         // 1001.4 at 1 decimal does not
    EXPECT_EQ(layer->OperationsCommitted(), 2);
}

TEST_F(AttributeAssociation, TheFieldNameMapRedirectsColumnsByTheirNormalisedHeader)
{
    const int a = addParcel("A1");
    const QString file = rows({{"Code", "Owner", "Name"}, {"A1", "Smith", "Alder"}});

    EXPECT_TRUE(join(file, "code", {{"OWNER", "OWNER_NAME"}, {"Name", "OWNER"}}));

    EXPECT_EQ(value(a, "OWNER_NAME"), "Smith");
    EXPECT_EQ(value(a, "OWNER"), "");     // "Name" is no normalised header
    EXPECT_EQ(value(a, "NAME"), "Alder");
}

TEST_F(AttributeAssociation, ColumnsWithTheSameHeaderWriteTheLastOnesValueAndTheLastKeyColumnMatches)
{
    const int a = addParcel("A1");
    EXPECT_TRUE(join(rows({{"Name", "Code", "NAME "}, {"first", "A1", "second"}})));
    EXPECT_EQ(value(a, "NAME"), "second");
    // Of two key columns the later matches and the earlier is written to the key field.
    EXPECT_TRUE(join(rows({{"Code", "Name", "Code"}, {"renamed", "Alder", "A1"}})));
    EXPECT_EQ(value(a, "CODE"), "renamed");
    EXPECT_EQ(value(a, "NAME"), "Alder");
}

TEST_F(AttributeAssociation, OnlyFeaturesAdmittedByTheLayersFilterAreJoinedInOneOperation)
{
    m_layer->SetQueryFilter(TsQueryFilter("AREA > 10"));
    EXPECT_TRUE(join(rows({{"Code", "Name"}, {"A1", "joined"}})));   // none admitted yet
    EXPECT_EQ(m_layer->OperationsStarted(), 1);
    EXPECT_EQ(m_layer->OperationsCommitted(), 1);
    EXPECT_EQ(m_layer->AttributeChanges(), 0);
    const int small = m_layer->AddFeature({"A1", "old", 1.0});
    const int large = m_layer->AddFeature({"A1", "old", 50.0});
    EXPECT_TRUE(join(rows({{"Code", "Name"}, {"A1", "joined"}})));
    EXPECT_EQ(value(small, "NAME"), "old");
    EXPECT_EQ(value(large, "NAME"), "joined");
}

TEST_F(AttributeAssociation, RefusesSilentlyWithoutALayerOrItsKeyField)
{
    const int a = addParcel("A1");
    const QString file = rows({{"Code", "Name"}, {"A1", "Alder"}, {" code", "x"}});
    MessageBoxCloser closer;

    EXPECT_FALSE(VyExcelUtil::assocationFromExcel(file, "code", nullptr, {}));
    EXPECT_FALSE(join(file, "PARCEL"));
    EXPECT_FALSE(join(file, " code")); // the key name is not trimmed

    EXPECT_TRUE(closer.shown().isEmpty());
    EXPECT_EQ(operations(), 0);
    EXPECT_EQ(value(a, "NAME"), "old");
}

TEST_F(AttributeAssociation, ALayerThatCannotBeEditedChangesNothing)
{
    const int a = addParcel("A1");
    m_layer->SetReadOnly(true);
    EXPECT_FALSE(join(rows({{"Code", "Name"}, {"A1", "Alder"}})));
    EXPECT_EQ(value(a, "NAME"), "old");
    EXPECT_EQ(m_layer->OperationsCommitted(), 0);
}

} // namespace
