#pragma once

#include "tsgdal.h"

#include <QString>

// Layers are named on the command line as PATH (the data source's first layer) or
// PATH:LAYER. A text that names an existing file is a path as it stands, so that
// "C:\data\roads.gpkg" and file names holding a colon need no layer part.
struct LayerAddress
{
    QString path;
    QString layer;   // empty for the first layer

    static LayerAddress parse(const QString& text);
};

using VyObjects::TsGdalDataSource;
using VyObjects::TsRefPtr;

// The feature layer at address (its data source stays open while the layer lives);
// null with a message naming the file and the layer in error.
TsRefPtr<VyObjects::TsFeatureLayer> openFeatureLayer(const QString& address,
                                                     TsGdalDataSource::OpenMode mode,
                                                     QString* error);

// The attribute table at address, opened for reading.
TsRefPtr<VyObjects::TsTable> openTable(const QString& address, QString* error);

// Applies an attribute filter ("FIELD = 'text'", see the host's query filters) to a
// layer of this provider. False, with the reason in error, for a clause the layer
// cannot apply (the exports would otherwise write no rows without telling why).
bool setLayerFilter(VyObjects::TsFeatureLayer& layer, const QString& whereClause, QString* error);
