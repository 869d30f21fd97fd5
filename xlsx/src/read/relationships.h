#pragma once

#include "model/workbookdata.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace QXlsx::detail {

// The relationships part that belongs to a part: "xl/workbook.xml" ->
// "xl/_rels/workbook.xml.rels"; the package's own is "_rels/.rels" (for "").
QString relationshipsPartName(const QString& sourcePart);

// The part a relationship target names, as an absolute part name without the leading
// "/": relative targets resolve against the source part's folder, "../" included.
// Empty for targets that lead outside the package (URLs, drive paths, "../" above the
// root), which are never followed.
QString resolveTarget(const QString& sourcePart, const QString& target);

// The relationships of a .rels part, in file order; malformed entries are skipped.
std::vector<Relationship> readRelationships(const QByteArray& xml);

// The last segment of a relationship type URI ("worksheet"), so that the transitional
// and strict URIs of a type compare equal.
QString relationshipKind(const QString& type);

} // namespace QXlsx::detail
