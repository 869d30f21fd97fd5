#pragma once

#include "export/attributeexports.h"
#include "terminalprogress.h"
#include "tsgdalvaluereader.h"

#include <QString>

#include <memory>

// The features of a GDAL layer for an export, read straight from GDAL one at a time
// instead of as host features (see TsGdalValueReader), and counted on the progress line
// as ProgressFeatureLayer counts them: "N of total features", then afterwards once the
// last feature has been read.
class CountedLayerValues : public vygis::FeatureValues
{
public:
    CountedLayerValues(VyObjects::TsGdalFeatureLayer& layer, long long total, const QString& afterwards,
                       TerminalProgress& progress);

    bool start(const VyObjects::TsQueryFilter& filter) override;
    bool next() override;
    QVariant cell(int fieldIndex, const vygis::AttributeCells& cells) override;

private:
    VyObjects::TsGdalFeatureLayer& m_layer;
    std::unique_ptr<VyObjects::TsGdalValueReader> m_reader;
    long long m_total;
    long long m_read = 0;
    QString m_afterwards;
    TerminalProgress& m_progress;
};
