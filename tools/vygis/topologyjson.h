#pragma once

#include "tsmemorytopology.h"

#include <QString>

// Reads the findings of a topology or attribute check written as JSON, into the host's
// in-memory check result. The shape:
//
//     {
//       "attributeCheck": false,            optional, default false
//       "reportedCount": 3,                 optional, default the number of errors
//       "errors": [
//         { "number": 1, "ruleId": 2, "featureId": 15, "relatedFeatureId": 16,
//           "layerId": 1, "relatedLayerId": 1,
//           "layerName": "countries", "relatedLayerName": "countries",
//           "coordinate": "12.5,41.9", "ruleDescription": "Must not overlap",
//           "errorType": "", "isException": false,
//           "unreadable": false }
//       ]
//     }
//
// Every member of an error is optional (numbers default to 0, texts to "", flags to
// false); "unreadable": true makes the error one that is counted but cannot be read, as
// when its feature was deleted after the check. Unknown members and values of the wrong
// type are errors, so that a misspelt member is not silently dropped.
//
// Null, with a message in error naming the file and the place, for a file that cannot
// be read or does not have this shape.
VyObjects::TsRefPtr<VyObjects::TsMemoryTopology> readTopologyJson(const QString& path, QString* error);
