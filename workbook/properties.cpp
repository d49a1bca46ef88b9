#include "workbook/properties.hpp"

#include <fstream>
#include <sstream>

#include "base/fault.hpp"
#include "workbook/package.hpp"
#include "workbook/save_file.hpp"
#include "workbook/xml.hpp"

namespace cauce::workbook {

namespace {

constexpr const char* kPart = "docProps/custom.xml";
// The identifier every custom property carries, as the format fixes it.
constexpr const char* kFmtid = "{D5CDD505-2E9C-101B-9397-08002B2CF9AE}";

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) raise(FaultCode::FileNotFound, "No se pudo abrir el libro \"" + path.string() + "\".");
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::map<std::string, std::string> Parse(Package& pkg) {
    std::map<std::string, std::string> out;
    const std::string part = pkg.Find(kPart);
    if (part.empty()) return out;
    pugi::xml_document doc;
    ParseXml(doc, pkg.Read(part), pkg.File(), part);
    for (auto p = doc.document_element().first_child(); p; p = p.next_sibling()) {
        if (LocalName(p) != "property") continue;
        for (auto v = p.first_child(); v; v = v.next_sibling())
            if (v.type() == pugi::node_element) out[p.attribute("name").value()] = v.text().get();
    }
    return out;
}

}  // namespace

std::map<std::string, std::string> ReadCustomProperties(const std::filesystem::path& path) {
    Package pkg(ReadAll(path), path.string());
    return Parse(pkg);
}

void WriteCustomProperties(const std::filesystem::path& path,
                           const std::map<std::string, std::string>& values) {
    Package pkg(ReadAll(path), path.string());
    std::map<std::string, std::string> props = Parse(pkg);
    for (const auto& [name, value] : values) {
        if (value.empty()) {
            props.erase(name);
        } else {
            props[name] = value;
        }
    }

    pugi::xml_document doc;
    auto root = doc.append_child("Properties");
    root.append_attribute("xmlns") =
        "http://schemas.openxmlformats.org/officeDocument/2006/custom-properties";
    root.append_attribute("xmlns:vt") =
        "http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes";
    int pid = 2;  // the format starts property ids at 2
    for (const auto& [name, value] : props) {
        auto p = root.append_child("property");
        p.append_attribute("fmtid") = kFmtid;
        p.append_attribute("pid") = pid++;
        p.append_attribute("name") = name.c_str();
        p.append_child("vt:lpwstr").text().set(value.c_str());
    }
    std::map<std::string, std::string> replaced;
    const std::string existing = pkg.Find(kPart);
    replaced[existing.empty() ? kPart : existing] = WriteNewXml(doc);

    if (existing.empty()) {
        // A new part: the package's list of content types and its relationships must name it.
        const std::string types_part = pkg.Find("[Content_Types].xml");
        const std::string rels_part = pkg.Find("_rels/.rels");
        if (types_part.empty() || rels_part.empty())
            raise(FaultCode::FileDamaged,
                  "El libro \"" + path.string() +
                      "\" no tiene la lista de partes que se esperaba; no se modificó.");
        pugi::xml_document types, rels;
        ParseXml(types, pkg.Read(types_part), pkg.File(), types_part);
        ParseXml(rels, pkg.Read(rels_part), pkg.File(), rels_part);
        auto o = types.document_element().append_child("Override");
        o.append_attribute("PartName") = (std::string("/") + kPart).c_str();
        o.append_attribute("ContentType") =
            "application/vnd.openxmlformats-officedocument.custom-properties+xml";
        int id = 1;
        std::string rid;
        do {
            rid = "rIdCauce" + std::to_string(id++);
        } while (rels.document_element().find_child_by_attribute("Id", rid.c_str()));
        auto r = rels.document_element().append_child("Relationship");
        r.append_attribute("Id") = rid.c_str();
        r.append_attribute("Type") =
            "http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties";
        r.append_attribute("Target") = kPart;
        replaced[types_part] = WriteXml(types);
        replaced[rels_part] = WriteXml(rels);
    }
    ReplaceFile(path, pkg.Write(replaced, {}));
}

}  // namespace cauce::workbook
