#include "workbook/xml.hpp"

#include <sstream>

#include "base/fault.hpp"

namespace cauce::workbook {

namespace {

constexpr unsigned kParse =
    pugi::parse_default | pugi::parse_declaration | pugi::parse_doctype | pugi::parse_ws_pcdata;

bool HasDoctype(const pugi::xml_node& doc) {
    for (auto n = doc.first_child(); n; n = n.next_sibling())
        if (n.type() == pugi::node_doctype) return true;
    return false;
}

// What the parser found wrong, in the user's words (pugixml describes it in English).
std::string Problem(pugi::xml_parse_status status) {
    switch (status) {
        case pugi::status_out_of_memory:
            return "no hay memoria suficiente para leerla";
        case pugi::status_unrecognized_tag:
            return "una etiqueta no se reconoce";
        case pugi::status_bad_pi:
            return "una declaración o instrucción de proceso está mal formada";
        case pugi::status_bad_comment:
            return "un comentario está mal formado";
        case pugi::status_bad_cdata:
            return "una sección CDATA está mal formada";
        case pugi::status_bad_doctype:
            return "una declaración de tipo de documento está mal formada";
        case pugi::status_bad_pcdata:
            return "un texto está mal formado";
        case pugi::status_bad_start_element:
            return "una etiqueta de apertura está mal formada";
        case pugi::status_bad_attribute:
            return "un atributo está mal formado";
        case pugi::status_bad_end_element:
            return "una etiqueta de cierre está mal formada";
        case pugi::status_end_element_mismatch:
            return "una etiqueta de cierre no corresponde a la que abre";
        case pugi::status_no_document_element:
            return "no tiene elemento raíz";
        default:
            return "error de lectura número " + std::to_string(static_cast<int>(status));
    }
}

bool IsHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

void AppendUtf8(std::string& out, unsigned cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::string DecodeEscapes(const std::string& s) {
    if (s.find("_x") == std::string::npos) return s;
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '_' && i + 6 < s.size() && s[i + 1] == 'x' && IsHex(s[i + 2]) && IsHex(s[i + 3]) &&
            IsHex(s[i + 4]) && IsHex(s[i + 5]) && s[i + 6] == '_') {
            AppendUtf8(out, static_cast<unsigned>(std::stoul(s.substr(i + 2, 4), nullptr, 16)));
            i += 6;
        } else {
            out += s[i];
        }
    }
    return out;
}

}  // namespace

void ParseXml(pugi::xml_document& doc, const std::string& text, const std::string& file,
              const std::string& part) {
    // A document type is where entity definitions live (the "billion laughs", external entities);
    // no part of a workbook has one, so its presence alone is refused, before anything is expanded.
    const pugi::xml_parse_result r = doc.load_buffer(text.data(), text.size(), kParse, pugi::encoding_auto);
    if (HasDoctype(doc) || (!r && r.status == pugi::status_bad_doctype))
        raise(FaultCode::FileDamaged, "El libro \"" + file + "\" se rechaza: la parte " + part +
                                          " declara un tipo de documento con entidades XML, que un libro de "
                                          "Excel no usa. El archivo no se "
                                          "modificó.");
    if (!r)
        raise(FaultCode::FileDamaged, "El libro \"" + file + "\" está dañado: la parte " + part +
                                          " no es XML válido (" + Problem(r.status) + ", posición " +
                                          std::to_string(r.offset) + "). El archivo no se modificó.");
    if (!doc.document_element())
        raise(FaultCode::FileDamaged,
              "El libro \"" + file + "\" está dañado: la parte " + part + " está vacía.");
}

std::string WriteXml(pugi::xml_document& doc) {
    // The text is written in UTF-8 whatever it was read in; the declaration must say so.
    for (auto n = doc.first_child(); n; n = n.next_sibling())
        if (n.type() == pugi::node_declaration && n.attribute("encoding"))
            n.attribute("encoding").set_value("UTF-8");
    std::ostringstream out;
    doc.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return out.str();
}

std::string WriteNewXml(pugi::xml_document& doc) {
    auto decl = doc.prepend_child(pugi::node_declaration);
    decl.append_attribute("version") = "1.0";
    decl.append_attribute("encoding") = "UTF-8";
    decl.append_attribute("standalone") = "yes";
    return WriteXml(doc);
}

std::string_view LocalName(const pugi::xml_node& node) {
    std::string_view n = node.name();
    const auto colon = n.find(':');
    return colon == std::string_view::npos ? n : n.substr(colon + 1);
}

std::string Prefix(const pugi::xml_node& node) {
    std::string_view n = node.name();
    const auto colon = n.find(':');
    return colon == std::string_view::npos ? "" : std::string(n.substr(0, colon + 1));
}

pugi::xml_node Child(const pugi::xml_node& node, std::string_view local) {
    for (auto c = node.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && LocalName(c) == local) return c;
    return {};
}

pugi::xml_attribute Attr(const pugi::xml_node& node, std::string_view local) {
    for (auto a = node.first_attribute(); a; a = a.next_attribute()) {
        std::string_view n = a.name();
        const auto colon = n.find(':');
        if ((colon == std::string_view::npos ? n : n.substr(colon + 1)) == local) return a;
    }
    return {};
}

std::string ItemText(const pugi::xml_node& item) {
    std::string s;
    for (auto c = item.first_child(); c; c = c.next_sibling()) {
        if (c.type() != pugi::node_element) continue;
        if (LocalName(c) == "t") {
            s += c.text().get();
        } else if (LocalName(c) == "r") {
            if (auto t = Child(c, "t")) s += t.text().get();
        }
    }
    return DecodeEscapes(s);
}

std::string EscapeItemText(const std::string& text) {
    std::string out;
    char buf[8];
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        const bool control = c < 0x20 && c != '\t' && c != '\n';  // a CR would be lost as a line end
        const bool literal_escape = c == '_' && i + 1 < text.size() && text[i + 1] == 'x';
        if (control || literal_escape) {
            std::snprintf(buf, sizeof buf, "_x%04X_", static_cast<unsigned>(c));
            out += buf;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

}  // namespace cauce::workbook
