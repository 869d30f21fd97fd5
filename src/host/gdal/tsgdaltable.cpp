#include "tsgdal_p.h"

namespace VyObjects {

namespace {

// A feature is a row with a shape; a table's features have none.
class TsGdalRowCursor : public TsRowCursor
{
public:
    explicit TsGdalRowCursor(std::unique_ptr<TsGdalFeatureReader> reader)
        : m_reader(std::move(reader)) {}
    TsRefPtr<TsRow> NextRow() override { return m_reader->next(); }

private:
    std::unique_ptr<TsGdalFeatureReader> m_reader;
};

class TsGdalTable : public TsTable
{
public:
    TsGdalTable(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer, const TsRefPtr<TsFields>& fields)
        : m_source(source), m_layer(layer), m_fields(fields)
    {
    }

    TsString GetTableName() const override { return TsString(m_layer->GetName()); }
    TsRefPtr<TsFields> GetFields() const override { return m_fields; }

    TsRefPtr<TsRowCursor> GetRowCursor(const TsQueryFilter& filter) override
    {
        TsGdalFilter prepared;
        if (!prepared.prepare(filter, *m_fields, *m_layer->GetLayerDefn(),
                              TsGdalFilter::textComparisonOf(*m_source), nullptr))
            return nullptr;
        return TsRefPtr<TsRowCursor>(new TsGdalRowCursor(std::make_unique<TsGdalFeatureReader>(
            m_source, m_layer, m_fields, std::move(prepared))));
    }

private:
    TsRefPtr<TsGdalDataSource> m_source;
    OGRLayer* m_layer;
    TsRefPtr<TsFields> m_fields;
};

} // namespace

TsRefPtr<TsTable> makeGdalTable(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer)
{
    return TsRefPtr<TsTable>(new TsGdalTable(source, layer, fieldsOfLayer(*source, *layer)));
}

} // namespace VyObjects
