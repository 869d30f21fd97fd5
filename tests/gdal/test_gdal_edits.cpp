// Edit operations of the GDAL provider: what becomes of a value that does not
// fit its field, of a value the field already holds, and of an operation that
// is interrupted or refused, in a format with transactions and one without.

#include "gdaltesting.h"

#include <QFileInfo>

namespace {

using namespace VyObjects;
using gdaltest::GdalTest;

// Two features of every kind of field the joins write into.
class GdalEdits : public GdalTest, public ::testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override { m_path = typedFile(QStringLiteral("typed.") + GetParam()); }
    void TearDown() override { TsGdalDataSource::resumeOperations(); }

    QString typedFile(const QString& name) const
    {
        // A shapefile's one layer is named like the file.
        return layerFile(name, QFileInfo(name).completeBaseName(), TsLayer::PointLayer,
                         {{"NAME"}, {"CODE", TsField::IntegerField}, {"SMALL", TsField::SmallIntegerField},
                          {"AREA", TsField::DoubleField, QString(), 2}, {"SINCE", TsField::DateField}},
                         {{"one", 1, TsVariant::fromInt16(1), 1.5, TsVariant::fromDateTime(0)},
                          {TsVariant::null(), 2, TsVariant::fromInt16(2), 2.5, TsVariant::null()}},
                         {point(0, 0, 0), point(1, 1, 0)});
    }

    TsRefPtr<TsGdalFeatureLayer> openForUpdate()
    {
        m_source = open(m_path, TsGdalDataSource::Update);
        return layer(m_source).dynamicCast<TsGdalFeatureLayer>();
    }

    int firstId(TsFeatureLayer& typed)
    {
        std::vector<int> ids;
        EXPECT_TRUE(typed.Search(TsQueryFilter(), ids));
        return ids.at(0);
    }

    QStringList reread(const char* field)
    {
        m_source = nullptr;
        return values(*layer(open(m_path)), field);
    }

    // The bytes of the attributes: the .dbf beside a shapefile, else the file.
    QByteArray attributeBytes() const
    {
        QString path = m_path;
        if (path.endsWith(QLatin1String(".shp")))
            path.replace(path.size() - 3, 3, QStringLiteral("dbf"));
        return bytes(path);
    }

    QString m_path;
    TsRefPtr<TsGdalDataSource> m_source;
};

struct Refusal
{
    const char* field;
    const char* text;
    const char* kept;      // the field's value afterwards, as text
    TsField::FieldType type;
};

class GdalRefusals : public GdalEdits
{
protected:
    void expectRefused(const std::vector<Refusal>& refusals)
    {
        int made = 0;
        for (const Refusal& refusal : refusals) {
            SCOPED_TRACE(refusal.text);
            m_path = typedFile(QStringLiteral("refusal%1.%2").arg(++made).arg(GetParam()));
            {
                const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
                if (typed->FindField(refusal.field)->GetFieldType() != refusal.type)
                    continue; // a shapefile has no 16-bit integers
                const int id = firstId(*typed);
                ASSERT_TRUE(typed->StartOperation(nullptr));
                // strict or not, the old value is never replaced by a null.
                EXPECT_FALSE(typed->layer_edit_buffer()->ChangeAttribute(id, refusal.field, refusal.text, false));
                EXPECT_TRUE(typed->errorString().contains(QStringLiteral("field %1 (").arg(refusal.field)))
                    << typed->errorString().toStdString();
                EXPECT_TRUE(typed->CommitOperation());
                const TsGdalEditSummary summary = typed->editSummary();
                EXPECT_EQ(summary.valuesNotConvertible, 1);
                EXPECT_EQ(summary.valuesWritten, 0);
                ASSERT_EQ(summary.examples.size(), 1u);
                EXPECT_EQ(summary.examples[0].featureId, id);
                EXPECT_EQ(summary.examples[0].field, refusal.field);
                EXPECT_EQ(summary.examples[0].text, refusal.text);
                EXPECT_EQ(summary.examples[0].fieldType, refusal.type);
            }
            EXPECT_EQ(reread(refusal.field).value(0), QString::fromUtf8(refusal.kept));
        }
    }
};

TEST_P(GdalRefusals, ValuesOfTheWrongTypeKeepTheOldValueAndAreCounted)
{
    expectRefused({
        {"CODE", "lots", "1", TsField::IntegerField},
        {"CODE", "20200000000", "1", TsField::IntegerField},
        {"SMALL", "40000", "1", TsField::SmallIntegerField},
        {"AREA", "x", "1.5", TsField::DoubleField},
        {"SINCE", "45000", "1970-01-01 00:00:00", TsField::DateField},
    });
}

// GDAL would cut them with no more than a warning.
TEST_P(GdalRefusals, ValuesWiderThanAShapefileFieldAreRefused)
{
    if (QString::fromUtf8(GetParam()) != QLatin1String("shp"))
        GTEST_SKIP() << "only shapefiles have fixed-width fields";
    expectRefused({
        {"CODE", "2000000000", "1", TsField::IntegerField},
        {"AREA", "1e300", "1.5", TsField::DoubleField},
        {"NAME", QByteArray(81, 'a').constData(), "one", TsField::StringField},
    });
}

TEST(GdalEditSummary, RefusedValueNamesFeatureFieldTypeAndText)
{
    const TsGdalEditSummary::RefusedValue refused{17, "CODE", "lots", TsField::IntegerField};
    EXPECT_EQ(refused.toString(), QStringLiteral("feature 17, field CODE (32-bit integer): \"lots\""));
    const TsGdalEditSummary::RefusedValue wide{3, "CODE", "2000000000", TsField::IntegerField, 9};
    EXPECT_EQ(wide.toString(), QStringLiteral("feature 3, field CODE (32-bit integer of width 9): \"2000000000\""));
}

TEST_P(GdalEdits, EmptyTextIntoAFieldThatIsNotTextIsNull)
{
    {
        const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
        const int id = firstId(*typed);
        ASSERT_TRUE(typed->StartOperation(nullptr));
        for (const char* field : {"CODE", "AREA", "SINCE"})
            EXPECT_TRUE(typed->layer_edit_buffer()->ChangeAttribute(id, field, "", false)) << field;
        ASSERT_TRUE(typed->CommitOperation());
        EXPECT_EQ(typed->editSummary().valuesWritten, 3);
        EXPECT_EQ(typed->editSummary().featuresChanged, 1);
    }
    for (const char* field : {"CODE", "AREA", "SINCE"})
        EXPECT_EQ(reread(field).value(0), QString()) << field;
}

TEST_P(GdalEdits, ValuesTheFieldsHoldAreLeftAndCountedUnchanged)
{
    const QByteArray before = attributeBytes();
    {
        const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
        std::vector<int> ids;
        ASSERT_TRUE(typed->Search(TsQueryFilter(), ids));
        ASSERT_TRUE(typed->StartOperation(nullptr));
        const TsRefPtr<TsLayerEditBuffer> edits = typed->layer_edit_buffer();
        // Compared after conversion; a null text and an empty one look alike in a workbook.
        EXPECT_TRUE(edits->ChangeAttribute(ids[0], "NAME", "one", false));
        EXPECT_TRUE(edits->ChangeAttribute(ids[0], "CODE", "1.0", false));
        EXPECT_TRUE(edits->ChangeAttribute(ids[0], "AREA", "1.50", false));
        EXPECT_TRUE(edits->ChangeAttribute(ids[0], "SINCE", "1970-01-01T00:00:00", false));
        EXPECT_TRUE(edits->ChangeAttribute(ids[1], "NAME", "", false));
        EXPECT_TRUE(edits->ChangeAttribute(ids[1], "SINCE", "", false));
        ASSERT_TRUE(typed->CommitOperation());
        const TsGdalEditSummary summary = typed->editSummary();
        EXPECT_EQ(summary.valuesUnchanged, 6);
        EXPECT_EQ(summary.valuesWritten, 0);
        EXPECT_EQ(summary.featuresChanged, 0);
        EXPECT_EQ(summary.outcome, TsGdalEditSummary::Committed);
    }
    EXPECT_EQ(attributeBytes(), before);
}

TEST_P(GdalEdits, OptInRefusalUndoesTheWholeOperation)
{
    {
        const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
        typed->setUnconvertibleValues(TsGdalFeatureLayer::UndoOperation);
        const int id = firstId(*typed);
        ASSERT_TRUE(typed->StartOperation(nullptr));
        EXPECT_TRUE(typed->layer_edit_buffer()->ChangeAttribute(id, "NAME", "changed", false));
        EXPECT_FALSE(typed->layer_edit_buffer()->ChangeAttribute(id, "CODE", "lots", false));
        EXPECT_FALSE(typed->layer_edit_buffer()->ChangeAttribute(id, "SMALL", "many", false));
        EXPECT_FALSE(typed->CommitOperation());
        EXPECT_TRUE(typed->errorString().endsWith(
            QStringLiteral("the edit operation was undone because 2 value(s) could not be converted to "
                           "their field's type (first: %1)").arg(typed->editSummary().examples.at(0).toString())))
            << typed->errorString().toStdString();
        EXPECT_EQ(typed->editSummary().outcome, TsGdalEditSummary::Undone);
    }
    EXPECT_EQ(reread("NAME").value(0), QStringLiteral("one"));
}

TEST_P(GdalEdits, ByDefaultTheRestOfTheOperationLands)
{
    {
        const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
        const int id = firstId(*typed);
        ASSERT_TRUE(typed->StartOperation(nullptr));
        EXPECT_TRUE(typed->layer_edit_buffer()->ChangeAttribute(id, "NAME", "changed", false));
        EXPECT_FALSE(typed->layer_edit_buffer()->ChangeAttribute(id, "CODE", "lots", false));
        EXPECT_TRUE(typed->CommitOperation());
    }
    EXPECT_EQ(reread("NAME").value(0), QStringLiteral("changed"));
    EXPECT_EQ(reread("CODE").value(0), QStringLiteral("1"));
}

TEST_P(GdalEdits, InterruptedOperationIsUndoneFromTheOldValues)
{
    const QByteArray before = attributeBytes();
    {
        const TsRefPtr<TsGdalFeatureLayer> typed = openForUpdate();
        std::vector<int> ids;
        ASSERT_TRUE(typed->Search(TsQueryFilter(), ids));
        ASSERT_TRUE(typed->StartOperation(nullptr));
        EXPECT_TRUE(typed->layer_edit_buffer()->ChangeAttribute(ids[0], "NAME", "changed", false));
        // Another feature's change writes the first one out.
        EXPECT_TRUE(typed->layer_edit_buffer()->ChangeAttribute(ids[1], "CODE", "7", false));
        TsGdalDataSource::interruptOperations();
        EXPECT_FALSE(typed->layer_edit_buffer()->ChangeAttribute(ids[1], "NAME", "late", false));
        EXPECT_FALSE(typed->GetFeature(ids[0]));
        EXPECT_FALSE(typed->CommitOperation());
        EXPECT_TRUE(typed->editSummary().interrupted);
        EXPECT_TRUE(typed->errorString().contains("interrupted")) << typed->errorString().toStdString();
        EXPECT_FALSE(typed->StartOperation(nullptr));
    }
    TsGdalDataSource::resumeOperations();
    EXPECT_EQ(attributeBytes(), before);
    EXPECT_EQ(reread("NAME"), QStringList({"one", ""}));
}

INSTANTIATE_TEST_SUITE_P(Formats, GdalEdits, ::testing::Values("gpkg", "shp"));
INSTANTIATE_TEST_SUITE_P(Formats, GdalRefusals, ::testing::Values("gpkg", "shp"));

} // namespace
