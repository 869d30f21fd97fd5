#pragma once

#include "model/rawelement.h"

#include <QByteArray>

#include <functional>
#include <initializer_list>
#include <vector>

namespace QXlsx::detail {

class XmlSink;

// Small surgery on XML the engine kept without modelling it. The texts are well formed
// (a reader serialised them), so a plain scan of the tags is enough.

// The name after any prefix: "x:sheetView" -> "sheetView".
QByteArray localNameOf(const QByteArray& qualifiedName);

// The top-level elements of a sequence of sibling elements ("<b/><sz val="11"/>").
std::vector<RawElement> splitElements(const QByteArray& xml);
// What lies between an element's start and end tag; empty for an empty element.
QByteArray innerXml(const QByteArray& element);
// Elements with this local name anywhere in xml.
int countElements(const QByteArray& xml, const QByteArray& localName);

// The value of attribute on the first start tag with the local name element, or a null
// array when that tag or attribute is missing.
QByteArray attributeValue(const QByteArray& xml, const QByteArray& element,
                          const QByteArray& attribute);
// Sets (value not null) or removes (value null) attribute on the first start tag with
// the local name element.
QByteArray withAttribute(const QByteArray& xml, const QByteArray& element,
                         const QByteArray& attribute, const QByteArray& value);
// Replaces the value of every occurrence of attribute (on any tag) by what map returns.
QByteArray mapAttribute(const QByteArray& xml, const QByteArray& attribute,
                        const std::function<QByteArray(const QByteArray&)>& map);

// Writes the children of a part in the order its schema lays down: for each rank of
// order, first generate(rank), then the kept elements of that local name in file order.
// A kept element of a name the order does not know follows the element before it.
void writeInSchemaOrder(std::initializer_list<const char*> order,
                        const std::vector<RawElement>& kept,
                        const std::function<void(int rank)>& generate,
                        const std::function<void(const RawElement&)>& writeKept);

// The rank of a local name in order, or -1.
int schemaRank(std::initializer_list<const char*> order, const QByteArray& localName);

} // namespace QXlsx::detail

namespace QXlsx::detail {

// The start and end tag of a part's root element: the one read (with its namespace
// declarations and mc:Ignorable list) when it is a transitional SpreadsheetML root,
// made sure to put unprefixed children in the main namespace and to bind the prefix r
// when asked; otherwise fallback.
struct RootTag
{
    QByteArray start;
    QByteArray end;
};
RootTag rootTag(const QByteArray& kept, const QByteArray& localName, const QByteArray& fallback,
                bool bindRelationshipPrefix);

} // namespace QXlsx::detail

namespace QXlsx::detail {

// An attribute list as kept from a tag (' outlineLevel="1" x14ac:dyDescent="0.25"')
// without the attributes named, which the writer sets itself.
QByteArray withoutAttributes(const QByteArray& attributes, std::initializer_list<const char*> names);

} // namespace QXlsx::detail
