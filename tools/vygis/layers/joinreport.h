#pragma once

#include "import/attributejoin.h"
#include "tsgdal.h"

#include <QHash>
#include <QStringList>
#include <QVector>

// A key with more than one row in the workbook; the join uses the last.
struct DuplicateKey
{
    QString key;
    QVector<int> rows;
};

// What a join matched and did, for the lines the command prints after it.
struct JoinCounts
{
    long long featuresJoined = 0;
    long long featuresWithoutRow = 0;
    long long rowsWithoutFeature = 0;
    int firstRowWithoutFeature = 0;
    QString firstKeyWithoutFeature;
    QVector<DuplicateKey> duplicates;   // the one whose first row comes first leading
    VyObjects::TsGdalEditSummary edits;

    // featuresByKey: how many features the join read of each key text.
    static JoinCounts of(const vygis::JoinWorkbook& workbook, const QHash<QString, long long>& featuresByKey,
                         const VyObjects::TsGdalEditSummary& edits);

    // One count a line, for standard error:
    //   features joined: 3
    //   features with no row: 1
    //   rows matching no feature: 2 (first: row 7, key "P-9")
    //   duplicate keys: 1 (first: "P-1" in rows 2 and 5; row 5 was used)
    //   values written: 5
    //   values unchanged: 4
    //   values not convertible: 1
    //     feature 3, field CODE (32-bit integer): "lots"
    // When the join was undone, "values written" reads "values to write (undone)".
    QStringList lines() const;
};
