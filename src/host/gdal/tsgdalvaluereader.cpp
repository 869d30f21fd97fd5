#include "tsgdalvaluereader.h"

#include "tsgdal_p.h"

namespace VyObjects {

std::unique_ptr<TsGdalValueReader> TsGdalValueReader::open(TsGdalFeatureLayer& layer,
                                                           const TsQueryFilter& filter)
{
    TsGdalFeatureLayer::Private& d = *layer.d;
    TsGdalFilter prepared;
    if (!d.prepare(filter, prepared))
        return nullptr;
    std::vector<TsField::FieldType> types;
    types.reserve(static_cast<std::size_t>(d.fields->GetFieldCount()));
    for (int i = 0; i < d.fields->GetFieldCount(); ++i)
        types.push_back(d.fields->GetField(i)->GetFieldType());
    auto reader = std::make_unique<TsGdalFeatureReader>(d.source, d.layer, d.fields, std::move(prepared));
    return std::unique_ptr<TsGdalValueReader>(new TsGdalValueReader(std::move(reader), std::move(types)));
}

TsGdalValueReader::TsGdalValueReader(std::unique_ptr<TsGdalFeatureReader> reader,
                                     std::vector<TsField::FieldType> types)
    : m_reader(std::move(reader)), m_types(std::move(types))
{
}

TsGdalValueReader::~TsGdalValueReader() = default;

bool TsGdalValueReader::next()
{
    m_feature = m_reader->nextOgrFeature();
    return m_feature != nullptr;
}

bool TsGdalValueReader::readText(int index, QString& text) const
{
    if (m_types[static_cast<std::size_t>(index)] != TsField::StringField
        || !m_feature->IsFieldSetAndNotNull(index))
        return false;
    // As readValue makes a host text of it, through QString::fromUtf8.
    const char* utf8 = m_feature->GetFieldAsString(index);
    if (!utf8 || !*utf8)
        return false;
    text = QString::fromUtf8(utf8);
    return true;
}

void TsGdalValueReader::readValue(int index, TsVariant& value) const
{
    value = VyObjects::readValue(*m_feature, index, m_types[static_cast<std::size_t>(index)]);
}

} // namespace VyObjects
