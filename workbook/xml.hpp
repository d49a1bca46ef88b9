// Reading and writing the XML parts of a package with pugixml. Parts are matched by local name, so
// that a prefixed document ("x:row") reads like a plain one; document type declarations, and with
// them every entity trick, are refused.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace cauce::workbook {

// Parses a part; throws Fault naming the file and the part when it is not well-formed XML or declares
// a document type (entities).
void ParseXml(pugi::xml_document& doc, const std::string& text, const std::string& file,
              const std::string& part);

// The XML text of a document as it was parsed (declaration kept, no reformatting), in UTF-8.
std::string WriteXml(pugi::xml_document& doc);

// The text of a document made here: the declaration (version 1.0, UTF-8, standalone) first.
std::string WriteNewXml(pugi::xml_document& doc);

// The element's name without its namespace prefix.
std::string_view LocalName(const pugi::xml_node& node);
// The prefix of the element's name with its colon ("x:"), "" when it has none.
std::string Prefix(const pugi::xml_node& node);
// The first child element with the local name, or an empty node.
pugi::xml_node Child(const pugi::xml_node& node, std::string_view local);
// An attribute by local name ("id" finds "r:id"), or an empty attribute.
pugi::xml_attribute Attr(const pugi::xml_node& node, std::string_view local);

// Text of a string item (<si>, <is>): its <t>, or its runs' <t> joined; phonetic runs are skipped.
// The _xHHHH_ escapes of the format are decoded.
std::string ItemText(const pugi::xml_node& item);
// Escapes a text for a <t> element: characters XML cannot carry as _xHHHH_, and "_x" itself.
std::string EscapeItemText(const std::string& text);

}  // namespace cauce::workbook
