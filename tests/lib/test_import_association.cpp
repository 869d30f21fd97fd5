#include "test_import_support.h"

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

    int addParcel(const char* code, const char* name = "old") { return m_layer->AddFeature({code, name, 1.0}); }

    // The texts of CODE, NAME, AREA, OWNER, OWNER_NAME and NUMBER.
    QStringList feature(int id) const
    {
        QStringList texts;
        for (int field = 0; field < 6; ++field) {
            TsVariant value;
            m_layer->GetFeature(id)->GetValue(field, value);
            texts << QString::fromStdWString(value.ToString().toStdWString());
        }
        return texts;
    }

    bool join(const QString& file, const QString& keyField = QStringLiteral("code"),
              const QMap<QString, QString>& fieldNames = {})
    {
        return VyExcelUtil::assocationFromExcel(file, keyField, m_layer.get(), fieldNames);
    }

    TsRefPtr<TsMemoryFeatureLayer> m_layer;
};

TEST_F(AttributeAssociation, WritesTheMatchedRowsInOneCommittedEditOperation)
{
    const int a = addParcel("A1");
    const int b = addParcel("B2");
    const int c = addParcel("C3", "Cedar");
    const int unmatched = addParcel("Z9");
    const QString file = rows({{"Code", "Name", "Area", "Number"},
                               {"A1", "Alder", 12.5, 7},
                               {"B2", QDate(2024, 3, 5), "3", QVariant()},
                               {"C3", QVariant(), 4, 4},
                               {"D4", "Dogwood", 4, 4}});
    MessageBoxCloser closer;
    EXPECT_TRUE(join(file));
    EXPECT_EQ(feature(a), QStringList({"A1", "Alder", "12.5", "", "", "7"}));
    EXPECT_EQ(feature(b), QStringList({"B2", "2024-03-05", "3", "", "", ""})); // a date as the workbook reads it
    EXPECT_EQ(feature(c), QStringList({"C3", "", "4", "", "", "4"}));           // a blank cell empties
    EXPECT_EQ(feature(unmatched), QStringList({"Z9", "old", "1", "", "", ""}));
    EXPECT_EQ(m_layer->OperationsStarted(), 1);
    EXPECT_EQ(m_layer->OperationsCommitted(), 1);
    EXPECT_FALSE(m_layer->IsInOperation());
    EXPECT_TRUE(closer.shown().isEmpty());
}

TEST_F(AttributeAssociation, AKeyHeaderWithABlankBeforeTheBracketIsMissedWithAWarning)
{
    const int a = addParcel("A1");
    const QString file = rows({{"Code (text)", "Name"}, {"A1", "Alder"}});
    MessageBoxCloser closer;
    EXPECT_FALSE(join(file));
    ASSERT_EQ(closer.shown().size(), 1);
    const importtest::ShownMessage& message = closer.shown().front();
    EXPECT_EQ(QStringList({message.title, message.text, message.buttonText}),
              QStringList({"Assocation Attributes", "The assocation field is not consistent with the excel key field!",
                           "Close"}));
    EXPECT_EQ(message.icon, QMessageBox::Warning);
    EXPECT_EQ(m_layer->OperationsStarted(), 0);
    EXPECT_EQ(feature(a)[1], "old");
}

TEST_F(AttributeAssociation, ReadsHeadersFromRowTwoBelowATitleButNoLowerElseRowTwoIsData)
{
    const int a = addParcel("A1");
    const int header = addParcel("Code");
    EXPECT_TRUE(join(rows({{"Parcels of 2024"}, {"Code", "Name"}, {"A1", "Alder"}})));
    EXPECT_EQ(feature(a)[1], "Alder");
    EXPECT_TRUE(join(rows({{"Code", "Name"}, {"Code", "Name"}})));
    EXPECT_EQ(feature(header)[1], "Name");
    MessageBoxCloser closer;
    EXPECT_FALSE(join(rows({{"Title"}, {"Subtitle"}, {"Code", "Name"}, {"A1", "Alder"}})));
    EXPECT_FALSE(join(path("missing.xlsx")));
    EXPECT_EQ(closer.shown().size(), 2);
    EXPECT_EQ(m_layer->OperationsStarted(), 2);
}

// The lower of two rows with one key serves every matching feature; of columns with one
// header the last writes, and of two key columns the later matches while the earlier is
// written to the key field.
TEST_F(AttributeAssociation, TheLastOfRowsAndColumnsThatRepeatWins)
{
    const int first = addParcel("A1");
    const int second = addParcel("A1");
    EXPECT_TRUE(join(rows({{"Code", "Name"}, {"A1", "upper"}, {"A1", "lower"}})));
    EXPECT_EQ(feature(first)[1], "lower");
    EXPECT_EQ(feature(second)[1], "lower");
    EXPECT_TRUE(join(rows({{"Name", "Code", "NAME "}, {"first", "A1", "second"}})));
    EXPECT_EQ(feature(first)[1], "second");
    EXPECT_TRUE(join(rows({{"Code", "Name", "Code"}, {"renamed", "Alder", "A1"}})));
    EXPECT_EQ(feature(first), QStringList({"renamed", "Alder", "1", "", "", ""}));
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

// Headers are trimmed, upper-cased and cut before a bracket: "Name (text)" heads "NAME ",
// which names no field. The field name map redirects columns by that normalised header,
// so "Name" redirects nothing.
TEST_F(AttributeAssociation, HeadersAreNormalisedAndTheFieldNameMapRedirectsColumnsByThem)
{
    const int a = addParcel("A1");
    EXPECT_TRUE(join(rows({{"  Code(text) ", "Name (text)", " area(m2)"}, {"A1", "Alder", 9}})));
    EXPECT_EQ(feature(a), QStringList({"A1", "old", "9", "", "", ""}));
    EXPECT_TRUE(join(rows({{"Code", "Owner", "Name"}, {"A1", "Smith", "Alder"}}), "code",
                     {{"OWNER", "OWNER_NAME"}, {"Name", "OWNER"}}));
    EXPECT_EQ(feature(a), QStringList({"A1", "Alder", "9", "", "Smith", ""}));
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
    EXPECT_EQ(feature(small)[1], "old");
    EXPECT_EQ(feature(large)[1], "joined");
}

TEST_F(AttributeAssociation, RefusesSilentlyWithoutALayerItsKeyFieldOrAnEditableLayer)
{
    const int a = addParcel("A1");
    const QString file = rows({{"Code", "Name"}, {"A1", "Alder"}, {" code", "x"}});
    MessageBoxCloser closer;
    EXPECT_FALSE(VyExcelUtil::assocationFromExcel(file, "code", nullptr, {}));
    EXPECT_FALSE(join(file, "PARCEL"));
    EXPECT_FALSE(join(file, " code")); // the key name is not trimmed
    EXPECT_TRUE(closer.shown().isEmpty());
    EXPECT_EQ(m_layer->OperationsStarted(), 0);
    m_layer->SetReadOnly(true);
    EXPECT_FALSE(join(file));
    EXPECT_EQ(m_layer->OperationsCommitted(), 0);
    EXPECT_EQ(feature(a)[1], "old");
}

} // namespace
