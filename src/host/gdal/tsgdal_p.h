#ifndef VYGIS_TSGDAL_P_H
#define VYGIS_TSGDAL_P_H

// Internal to the GDAL provider.

#include "tsattributecondition.h"
#include "tsgdal.h"
#include "tsqtext.h"

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <QByteArray>
#include <QFileInfo>
#include <QHash>

#include <cstdint>
#include <functional>
#include <unordered_map>

namespace VyObjects {

// --- Text -------------------------------------------------------------------

// GDAL speaks UTF-8, file names included, also on Windows. A null text from
// GDAL reads as empty. (Its text reaches the object library through
// TsString's UTF-8 constructor, which reads null as empty too.)
inline QString gdalText(const char* utf8) { return QString::fromUtf8(utf8 ? utf8 : ""); }

// --- Errors -----------------------------------------------------------------

// Makes sure GDAL's drivers are registered, once per process.
void registerGdalDrivers();

// While alive, GDAL's messages on this thread are collected here instead of
// being printed: the provider hands errors back as text.
class TsGdalErrorTrap
{
public:
    TsGdalErrorTrap();
    ~TsGdalErrorTrap();
    TsGdalErrorTrap(const TsGdalErrorTrap&) = delete;
    TsGdalErrorTrap& operator=(const TsGdalErrorTrap&) = delete;

    // The last failure GDAL reported, empty when there was none.
    QString lastError() const { return m_lastError; }
    // ": <last failure>", or nothing, to end a message with GDAL's reason.
    QString reason() const;

private:
    static void CPL_STDCALL collect(CPLErr level, CPLErrorNum number, const char* message);

    QString m_lastError;
};

inline void setError(QString* error, const QString& message)
{
    if (error)
        *error = message;
}

// --- Bookkeeping shared by the objects over one data source ----------------

class TsGdalLayerState
{
public:
    // An OGR layer reads one sequence of features at a time. Each reader
    // claims the layer; a reader that finds its claim taken starts its
    // sequence again and skips what it had read.
    std::uint64_t newReader() { return ++m_lastReader; }
    bool isReading(const OGRLayer* layer, std::uint64_t reader) const;
    void setReading(const OGRLayer* layer, std::uint64_t reader) { m_readers[layer] = reader; }
    void interruptReading(const OGRLayer* layer) { m_readers.erase(layer); }
    void interruptAllReading() { m_readers.clear(); }

    // The one edit operation or feature writer open on the data source, since
    // a transaction spans all its layers, and how it writes the change it
    // holds back, which every read of the source must see.
    const void* operationOwner() const { return m_operationOwner; }
    void setOperationOwner(const void* owner, std::function<void()> writePending)
    {
        m_operationOwner = owner;
        m_writePending = std::move(writePending);
    }
    void writePending() const
    {
        if (m_writePending)
            m_writePending();
    }

private:
    std::uint64_t m_lastReader = 0;
    std::unordered_map<const OGRLayer*, std::uint64_t> m_readers;
    const void* m_operationOwner = nullptr;
    std::function<void()> m_writePending;
};

// A data source's transaction, or, where the driver has none, a note of it.
// start() answers false only when the driver has transactions and refused one.
class TsGdalTransaction
{
public:
    explicit TsGdalTransaction(GDALDataset& dataset) : m_dataset(dataset) {}
    bool start(QString* reason);
    bool isNative() const { return m_native; }
    bool commit(QString* reason);
    void rollback();

private:
    GDALDataset& m_dataset;
    bool m_native = false;
};

// --- Fields, values and geometries ------------------------------------------

TsLayer::LayerType layerTypeOf(OGRwkbGeometryType type);
TsField::FieldType fieldTypeOf(const OGRFieldDefn& field);

// The host fields of an OGR layer, one per attribute field in OGR's order,
// so a host field index is the OGR field index. aliases by field name fill
// in the alternative names GDAL itself does not read.
TsRefPtr<TsFields> readFields(OGRFeatureDefn& definition, const QHash<QString, QString>& aliases);

TsVariant readValue(const OGRFeature& feature, int index, TsField::FieldType type);
std::vector<TsVariant> readValues(const OGRFeature& feature, const TsFields& fields);
// value has already been converted to the field's host type.
void writeValue(OGRFeature& feature, int index, const TsVariant& value);
// value converted to the host type of field and to what the OGR field keeps
// of it (a date field the day); false for a value the field cannot hold.
bool convertForField(const TsField& field, const OGRFieldDefn& definition, const TsVariant& value,
                     TsVariant& converted);
// Whether field index of feature already holds value, converted for it. A
// null text and an empty one count as equal.
bool holdsValue(const OGRFeature& feature, int index, TsField::FieldType type, const TsVariant& value);

// Null for a missing geometry or one the host has no form for.
TsRefPtr<TsGeometry> readGeometry(const OGRGeometry* geometry);
// Null when the host geometry does not fit the layer's geometry type.
std::unique_ptr<OGRGeometry> makeGeometry(const TsGeometry& geometry, OGRwkbGeometryType layerType);

// A feature as the host sees it; id -1 for an FID beyond the host's ids.
TsRefPtr<TsFeature> makeFeature(const OGRFeature& feature, const TsRefPtr<TsFields>& fields);

// The host fields of a layer of source, aliases included.
TsRefPtr<TsFields> fieldsOfLayer(const TsGdalDataSource& source, OGRLayer& layer);

// Alternative names kept in a GeoPackage's data columns table, by column.
QHash<QString, QString> readGeoPackageAliases(GDALDataset& dataset, const QString& table);
bool writeGeoPackageAliases(GDALDataset& dataset, const QString& table,
                            const std::vector<TsGdalFieldDefinition>& fields, QString* reason);

// --- Filters ----------------------------------------------------------------

// A host query filter split into what OGR evaluates (the where clause
// rewritten as an OGR attribute filter, where the types let OGR compare as
// the host does) and what is evaluated here (other clauses, the predicate).
class TsGdalFilter
{
public:
    // How the data source's driver compares texts in attribute filters:
    // SQLite-based drivers as the host does, by code; the others (OGR's own
    // SQL) ignoring case.
    enum TextComparison { ExactText, TextIgnoringCase };
    static TextComparison textComparisonOf(const TsGdalDataSource& source);

    // False, with *error, when the where clause cannot be read or names a
    // field the layer does not have.
    bool prepare(const TsQueryFilter& filter, const TsFields& fields,
                 const OGRFeatureDefn& definition, TextComparison texts, QString* error);

    // Empty when OGR is given no attribute filter.
    const QByteArray& ogrClause() const { return m_ogrClause; }
    // The field the OGR clause compares, -1 without one.
    int ogrFieldIndex() const { return m_ogrClause.isEmpty() ? -1 : m_fieldIndex; }
    // For a clause OGR refused: compare here instead.
    void evaluateHere();
    // Whether features must be read in full to be admitted.
    bool needsValues() const { return m_hasCondition || static_cast<bool>(m_predicate); }
    bool admits(const TsRow& row) const;

private:
    bool canTranslate(TsField::FieldType type, OGRFieldType ogrType, TextComparison texts) const;
    QByteArray translate(const QString& fieldName) const;

    TsAttributeCondition m_condition;
    int m_fieldIndex = -1;
    bool m_hasCondition = false;   // compared here
    QByteArray m_ogrClause;
    TsQueryFilter::Predicate m_predicate;
};

// --- Reading ----------------------------------------------------------------

// Streams the admitted features of an OGR layer, one GetNextFeature at a time.
class TsGdalFeatureReader
{
public:
    TsGdalFeatureReader(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer,
                        const TsRefPtr<TsFields>& fields, TsGdalFilter filter);
    // Null once every admitted feature has been handed out.
    TsRefPtr<TsFeature> next();
    // The next admitted feature as GDAL read it, without a host feature made
    // of it unless the filter compares its values here; it stays valid until
    // the next call. Null once every admitted feature has been handed out.
    const OGRFeature* nextOgrFeature();

private:
    void resume();
    void restart();

    TsRefPtr<TsGdalDataSource> m_source;
    OGRLayer* m_layer;
    TsRefPtr<TsFields> m_fields;
    TsGdalFilter m_filter;
    std::uint64_t m_reader;
    long long m_consumed = 0;
    bool m_finished = false;
    OGRFeatureUniquePtr m_current;
};

// The ids of the admitted features, in the layer's order.
bool searchIds(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer,
               const TsRefPtr<TsFields>& fields, TsGdalFilter filter, std::vector<int>& ids);

class TsGdalFeatureCursor : public TsFeatureCursor
{
public:
    explicit TsGdalFeatureCursor(std::unique_ptr<TsGdalFeatureReader> reader)
        : m_reader(std::move(reader)) {}
    TsRefPtr<TsFeature> NextFeature() override { return m_reader->next(); }

private:
    std::unique_ptr<TsGdalFeatureReader> m_reader;
};

// --- Objects behind the public classes -------------------------------------

class TsGdalFeatureLayer::Private
{
public:
    Private(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer, const TsRefPtr<TsFields>& fields);
    ~Private();

    QString where() const;
    bool fail(const QString& message);
    bool prepare(const TsQueryFilter& filter, TsGdalFilter& prepared);

    bool start();
    bool commit();
    bool abort();
    // Changes are held in the feature until another feature is edited or
    // the source is read, so a feature whose fields change one after another
    // is written once.
    bool changeAttribute(int featureId, const TsString& field, const TsVariant& value);
    void keepForEditing(OGRFeatureUniquePtr feature);
    void writePending();
    // Inside an operation that TsGdalDataSource::interruptOperations() stopped.
    bool isInterrupted() const;

    TsRefPtr<TsGdalDataSource> source;
    OGRLayer* layer;
    TsRefPtr<TsFields> fields;
    TsQueryFilter filter;
    QString error;
    TsGdalFeatureLayer::UnconvertibleValues unconvertible = TsGdalFeatureLayer::KeepOldValues;
    TsGdalEditSummary summary;

private:
    OGRFeature* featureToEdit(int featureId);
    bool refuse(int featureId, const TsField& field, int width, const TsVariant& value);
    void noteChange(const OGRFeature& feature);
    // Why the commit must not land; empty when it may.
    QString reasonToUndo() const;
    bool undoWith(const QString& reason);
    // Empty when every feature was set back.
    QString undo();
    void close();

    std::unique_ptr<TsGdalTransaction> m_transaction;
    bool m_writeFailed = false;
    QString m_writeError;
    // The features this operation changed; without a transaction, as they
    // were before it first changed them, to write back when it is undone.
    std::unordered_map<GIntBig, OGRFeatureUniquePtr> m_originals;
    // The feature read or edited last, and whether it holds unwritten changes.
    OGRFeatureUniquePtr m_editing;
    bool m_pending = false;
};

// Raw layer handles behind the data source's public calls.
TsRefPtr<TsGdalFeatureLayer> makeGdalFeatureLayer(const TsRefPtr<TsGdalDataSource>& source,
                                                  OGRLayer* layer);
TsRefPtr<TsTable> makeGdalTable(const TsRefPtr<TsGdalDataSource>& source, OGRLayer* layer);
// Null with *error for a band the source does not have or a rotated grid.
TsRefPtr<TsRasterProps> makeGdalRaster(const TsRefPtr<TsGdalDataSource>& source, int band,
                                       QString* error);
TsRefPtr<TsGdalFeatureWriter> makeGdalFeatureWriter(const TsRefPtr<TsGdalDataSource>& source,
                                                    OGRLayer* layer, QString* error);

} // namespace VyObjects

#endif // VYGIS_TSGDAL_P_H
