#include "test_report_support.h"

#include "vygisutil.h"

#include "tsmemorytopology.h"

#include <QFile>

namespace {

using VyObjects::TsMemoryTopology;
using VyObjects::TsRefPtr;
using VyObjects::TsTopoError;

TsTopoError error(int number, int feature, int related, int layer, int relatedLayer,
                  const char* errorType = "name is empty")
{
    TsTopoError e;
    e.number = number;
    e.featureId = feature;
    e.relatedFeatureId = related;
    e.layerId = layer;
    e.relatedLayerId = relatedLayer;
    e.layerName = "roads";
    e.relatedLayerName = "rivers";
    e.coordinate = "12.5,40.25";
    e.errorType = errorType;
    return e;
}

class TopologyReport : public reporttest::ReportTest
{
protected:
    TsRefPtr<TsMemoryTopology> check(bool attributeCheck, std::initializer_list<TsTopoError> errors)
    {
        const auto topology = TsRefPtr<TsMemoryTopology>::create(attributeCheck);
        for (const TsTopoError& e : errors)
            topology->AddError(e);
        return topology;
    }
    void report(const TsRefPtr<TsMemoryTopology>& topology)
    {
        ASSERT_TRUE(VyExcelUtil::exportExcelByTsTopology(path(), topology.get()));
        open(path());
    }
};

TEST_F(TopologyReport, AnEmptyCheckGivesTheTranslatedHeaderInWideColumns)
{
    reporttest::MarkingTranslator translator;
    report(check(false, {}));
    EXPECT_EQ(row(1, 9), QStringList({"~Error type", "~Status", "~Number", "~Layer", "~Notes",
                                      "~Feature 1", "~Feature 2", "~coordinate",
                                      "~Related layer"}));
    for (int column = 1; column <= 9; ++column)
        EXPECT_DOUBLE_EQ(m_book->columnWidth(column), 40.0);
    EXPECT_EQ(m_book->dimension().lastRow(), 1);
}

TEST_F(TopologyReport, ErrorsFollowInIndexOrderAsText)
{
    report(check(false, {error(7, 3, 0, 1, 1), error(8, -2, 0, 1, 1)}));
    EXPECT_EQ(row(2, 9), QStringList({"", "-", "7", "roads", "", "3", "", "12.5,40.25",
                                      "rivers"}));
    EXPECT_EQ(row(3, 6), QStringList({"", "-", "8", "roads", "", ""}));
}

TEST_F(TopologyReport, ErrorTypeIsShownForAnAttributeCheckOnly)
{
    report(check(true, {error(1, 0, 0, 1, 1), error(2, 0, 0, 1, 1, "")}));
    EXPECT_EQ(m_book->read(2, 1), "name is empty");
    EXPECT_EQ(row(3, 1), QStringList({""}));
}

TEST_F(TopologyReport, FeatureTwoNamesOnlyAnotherFeature)
{
    report(check(false, {error(1, 5, 5, 2, 2),     // a feature against itself
                         error(2, 5, 5, 2, 3),     // the same id on another layer
                         error(3, 5, 6, 2, 2),     // another feature of the layer
                         error(4, 5, 0, 2, 3)}));  // none
    EXPECT_EQ(m_book->read(2, 7), "");
    EXPECT_EQ(m_book->read(3, 7), "5");
    EXPECT_EQ(m_book->read(4, 7), "6");
    EXPECT_EQ(m_book->read(5, 7), "");
}

TEST_F(TopologyReport, AnUnreadableErrorRepeatsTheRowBefore)
{
    const auto topology = check(false, {error(1, 5, 0, 1, 1), error(2, 6, 0, 1, 1)});
    topology->MarkUnreadable(1);
    report(topology);
    EXPECT_EQ(row(3, 6), row(2, 6));
}

TEST_F(TopologyReport, TheSaveDoesNotDecideTheResultButAMissingCheckDoes)
{
    EXPECT_TRUE(VyExcelUtil::exportExcelByTsTopology(unwritablePath(), check(false, {}).get()));
    EXPECT_FALSE(VyExcelUtil::exportExcelByTsTopology(path(), nullptr));
    EXPECT_FALSE(QFile::exists(path()));
}

} // namespace
