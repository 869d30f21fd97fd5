#pragma once

#include "model/workbookdata.h"

#include <vector>

namespace QXlsx::detail {

class XmlSink;
struct PackagePlan;

// A relationships part (_rels/.rels, xl/_rels/workbook.xml.rels).
void writeRelationships(XmlSink& out, const std::vector<Relationship>& relationships);

// The workbook's relationships: its sheets first, in tab order, then the rest.
std::vector<Relationship> workbookRelationships(const PackagePlan& plan);

} // namespace QXlsx::detail
