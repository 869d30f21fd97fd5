#ifndef VYGIS_TSGDAL_H
#define VYGIS_TSGDAL_H

// Host objects over files that GDAL reads and writes: feature layers and
// tables over OGR layers, raster properties over raster bands, maps over all
// the layers of a data source.
//
//     QString error;
//     auto source = TsGdalDataSource::open("parcels.gpkg", TsGdalDataSource::Update, &error);
//     if (!source)
//         return fail(error);               // names the file and what is wrong
//     TsRefPtr<TsFeatureLayer> parcels = source->featureLayer("parcels", &error);
//
// Every object keeps its data source open for as long as it lives. Errors are
// handed back as text; nothing is printed.

#include "tsfeaturelayer.h"
#include "tsmap.h"
#include "tsraster.h"
#include "tstable.h"
#include "vygisgdal_export.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class GDALDataset;

namespace VyObjects {

class TsGdalFeatureWriter;
class TsGdalLayerState;

// One field of a layer created from code.
struct TsGdalFieldDefinition
{
    TsGdalFieldDefinition(const QString& fieldName, TsField::FieldType fieldType = TsField::StringField,
                          const QString& alias = QString(), unsigned decimals = 0)
        : name(fieldName), type(fieldType), aliasName(alias), precision(decimals)
    {
    }

    QString name;
    TsField::FieldType type;
    QString aliasName;       // kept where the format has alternative names
    unsigned precision;      // decimals of a floating field
};

// An opened GDAL data source (vector or raster), counted like the other host objects.
class VYGIS_GDAL_EXPORT TsGdalDataSource : public TsRefBase
{
public:
    enum OpenMode { ReadOnly, Update };
    // Whether a new layer gets a spatial index where the format has one.
    // Building it costs more than writing the features (about ten seconds
    // per million points in a GeoPackage), and nothing the library does
    // searches by location.
    enum SpatialIndex { WithSpatialIndex, WithoutSpatialIndex };

    // Null, with *error naming the file and the problem, when path does not
    // exist, no driver reads it, or it cannot be opened in mode.
    static TsRefPtr<TsGdalDataSource> open(const QString& path, OpenMode mode, QString* error);
    // A new, empty vector data source opened for update. The driver follows
    // the suffix (.gpkg, .shp, .csv, .geojson or .json) unless driverName
    // names a GDAL driver. Refuses to replace an existing file.
    static TsRefPtr<TsGdalDataSource> create(const QString& path, QString* error,
                                             const QString& driverName = QString());
    // Writes a one-band raster of doubles spread evenly over extent, values
    // row by row from the top (maximum y), as a GeoTIFF unless driverName
    // names another GDAL driver that can create files. Refuses to replace an
    // existing file.
    static bool createRaster(const QString& path, const TsRect& extent, int columns, int rows,
                             const std::vector<double>& values, double noDataValue,
                             QString* error, const QString& driverName = QString());

    QString path() const;
    QString driverName() const;
    OpenMode openMode() const { return m_mode; }
    QStringList layerNames() const;
    int rasterBandCount() const;

    // A layer by name (the first layer when name is empty); null with *error
    // set when the layer is missing or, for a feature layer, is not spatial.
    // A table is the attribute view of any layer, spatial or not. In a CSV
    // file, columns named like coordinates also make points; in a source
    // opened read-only they stay fields too.
    TsRefPtr<TsFeatureLayer> featureLayer(const QString& name, QString* error) const;
    TsRefPtr<TsTable> table(const QString& name, QString* error) const;
    // A band of a raster data source (1-based).
    TsRefPtr<TsRasterProps> raster(int band, QString* error) const;
    // All the data source's layers as a map, in the source's order: spatial
    // layers as feature layers, attribute-only layers as feature layers of
    // type TableLayer, and a raster as one RasterLayer named after the file.
    TsRefPtr<TsMap> map() const;

    // Adds a layer to a source opened for update. PointLayer makes points
    // with heights, LineLayer lines, PolygonLayer polygons, TableLayer a
    // layer without geometry (where the format has such layers).
    bool createLayer(const QString& name, TsLayer::LayerType type,
                     const std::vector<TsGdalFieldDefinition>& fields, QString* error,
                     SpatialIndex index = WithSpatialIndex);
    // Appends features to a layer inside one transaction; see TsGdalFeatureWriter.
    TsRefPtr<TsGdalFeatureWriter> featureWriter(const QString& layerName, QString* error);

    // Asks every open edit operation of the process to stop, for a handler
    // of SIGINT or SIGTERM: it only sets a lock-free flag, so it is safe to
    // call from a signal handler. While the request stands, a change given
    // to an operation fails, reading a feature inside one gives nothing, no
    // operation starts, and committing an open operation undoes it whole (a
    // transaction rolled back, or the old values written back where the
    // format has no transactions) and returns false. resumeOperations()
    // withdraws the request.
    static void interruptOperations();
    static bool operationsInterrupted();
    static void resumeOperations();

    // Internal to the provider: the GDAL dataset and the bookkeeping shared
    // by the objects over its layers.
    GDALDataset* dataset() const { return m_dataset; }
    TsGdalLayerState& layerState() const { return *m_state; }

protected:
    ~TsGdalDataSource() override;

private:
    TsGdalDataSource(GDALDataset* dataset, const QString& path, OpenMode mode);

    GDALDataset* m_dataset;
    QString m_path;
    OpenMode m_mode;
    std::unique_ptr<TsGdalLayerState> m_state;
};

// What the open or the last edit operation of a TsGdalFeatureLayer did with
// the values it was given, counted from StartOperation on. An operation that
// was undone keeps its counts: they say what it would have written.
struct VYGIS_GDAL_EXPORT TsGdalEditSummary
{
    // A value that could not be converted to its field's type.
    struct RefusedValue
    {
        int featureId;
        QString field;
        QString text;                   // the value as it was given
        TsField::FieldType fieldType;
        int fieldWidth = 0;             // the width of the file's field (a shapefile's digits, or bytes
                                        // of UTF-8 text); 0 when the format has none

        // feature 17, field CODE (32-bit integer): "lots"
        // feature 17, field CODE (32-bit integer of width 9): "2000000000"
        QString toString() const;
    };
    enum Outcome { Open, Committed, Undone };
    static constexpr int MaxExamples = 5;

    Outcome outcome = Open;
    // Undone because TsGdalDataSource::interruptOperations() was called.
    bool interrupted = false;
    long long featuresChanged = 0;      // features with at least one value written
    long long valuesWritten = 0;
    long long valuesUnchanged = 0;      // equal to what the field held: not written
    long long valuesNotConvertible = 0; // not written: the field kept its value
    long long featuresNotSetBack = 0;   // undone, yet these could not be written back
    std::vector<RefusedValue> examples; // the first MaxExamples values not convertible

    // "32-bit integer", "date", "text", ... for messages.
    static QString typeName(TsField::FieldType type);
};

// A feature layer over one OGR layer of a data source. Cursors read features
// from the file as they are asked for. Edit operations are transactions of
// the data source where the driver has them; elsewhere the layer keeps the
// old values and writes them back when the operation is aborted or fails.
// Changes of one feature are written together, when another feature is
// edited or the source is read; a change the source refuses (a constraint of
// its table) makes the whole operation fail: committing it undoes it and
// returns false.
//
// A value is converted to its field's type first (TsField::ConvertValue):
// empty text into a field that is not text is null. A value that cannot be
// converted (a word or 20200000000 for a 32-bit integer, 45000 for a date),
// or that is longer than the file's field is wide (a shapefile's), is never
// stored in its place, whatever strict says: ChangeAttribute
// returns false, the field keeps its value and editSummary() counts it. A
// value equal to what the field holds is not written and counted as
// unchanged; a null text and an empty one count as equal, since a workbook
// cannot tell them apart. So an exported workbook joined back changes nothing.
class VYGIS_GDAL_EXPORT TsGdalFeatureLayer : public TsFeatureLayer
{
public:
    class Private;

    TsRefPtr<TsGdalDataSource> dataSource() const;
    void SetQueryFilter(const TsQueryFilter& filter);
    bool IsReadOnly() const;
    bool IsInOperation() const;
    // The reason the last refused call failed, naming the file.
    QString errorString() const;

    // What committing does with an operation in which values could not be converted.
    enum UnconvertibleValues {
        KeepOldValues,   // the rest is kept; those fields keep their old values (the default)
        UndoOperation    // the whole operation is undone and CommitOperation returns false,
                         // errorString() naming the count and the first value
    };
    void setUnconvertibleValues(UnconvertibleValues policy);
    UnconvertibleValues unconvertibleValues() const;
    // The counts of the open operation, or of the last one once it is closed.
    TsGdalEditSummary editSummary() const;

    TsQueryFilter query_filter() const override;
    TsRefPtr<TsFields> GetFields() const override;
    TsRefPtr<TsField> FindField(const TsString& name) const override;
    TsRefPtr<TsFeatureCursor> GetFeatureCursor(const TsQueryFilter& filter) override;
    bool Search(const TsQueryFilter& filter, std::vector<int>& ids) override;
    TsRefPtr<TsFeature> GetFeature(int id) override;
    bool StartOperation(TsEditor* editor) override;
    TsRefPtr<TsLayerEditBuffer> layer_edit_buffer() override;
    bool CommitOperation() override;
    bool AbortOperation() override;

    // Made by TsGdalDataSource.
    TsGdalFeatureLayer(const TsString& name, LayerType type, std::unique_ptr<Private> d);

protected:
    ~TsGdalFeatureLayer() override;

private:
    friend class TsGdalEditBuffer;
    friend class TsGdalValueReader;

    std::unique_ptr<Private> d;
};

// Appends features to one layer of a data source inside one transaction of
// the data source, for loading many features quickly. Nothing is kept
// unless commit() succeeds where the driver has transactions; without them
// the features are written as they are added.
class VYGIS_GDAL_EXPORT TsGdalFeatureWriter : public TsRefBase
{
public:
    class Private;

    // values[i] goes to field i, converted to its type (a value that does
    // not fit is stored as null). Returns the new feature's id, or -1 with
    // errorString() set.
    int addFeature(const std::vector<TsVariant>& values,
                   const TsRefPtr<TsGeometry>& geometry = TsRefPtr<TsGeometry>());
    bool commit(QString* error);
    QString errorString() const;

    // Made by TsGdalDataSource.
    explicit TsGdalFeatureWriter(std::unique_ptr<Private> d);

protected:
    ~TsGdalFeatureWriter() override;   // rolls back what was not committed

private:

    std::unique_ptr<Private> d;
};

} // namespace VyObjects

#endif // VYGIS_TSGDAL_H
