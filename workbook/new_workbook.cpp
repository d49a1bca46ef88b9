#include "workbook/new_workbook.hpp"

#include <pugixml.hpp>

#include "workbook/package.hpp"
#include "workbook/ref.hpp"
#include "workbook/xml.hpp"

namespace cauce::workbook {

namespace {

constexpr const char* kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr const char* kRelNs = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr const char* kPkgRels = "http://schemas.openxmlformats.org/package/2006/relationships";
constexpr const char* kSheetType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";

std::string SheetXml(const SheetValues& s) {
    pugi::xml_document doc;
    auto ws = doc.append_child("worksheet");
    ws.append_attribute("xmlns") = kMain;
    auto data = ws.append_child("sheetData");
    pugi::xml_node row;
    int row_number = 0;
    for (const auto& [key, cell] : s.cells) {
        if (cell.kind == CellKind::Empty) continue;
        if (key.first != row_number) {
            row_number = key.first;
            row = data.append_child("row");
            row.append_attribute("r") = row_number;
        }
        auto c = row.append_child("c");
        c.append_attribute("r") = RefName(key.first, key.second).c_str();
        switch (cell.kind) {
            case CellKind::Number:
                c.append_child("v").text().set(NumberText(cell.number).c_str());
                break;
            case CellKind::Text: {
                c.append_attribute("t") = "inlineStr";
                auto t = c.append_child("is").append_child("t");
                t.append_attribute("xml:space") = "preserve";
                t.text().set(EscapeItemText(cell.text).c_str());
                break;
            }
            case CellKind::Boolean:
                c.append_attribute("t") = "b";
                c.append_child("v").text().set(cell.number != 0 ? "1" : "0");
                break;
            case CellKind::Error:
                c.append_attribute("t") = "e";
                c.append_child("v").text().set(cell.text.c_str());
                break;
            case CellKind::Empty:
                break;
        }
    }
    return WriteNewXml(doc);
}

}  // namespace

std::string NewWorkbookBytes(const std::vector<SheetValues>& sheets, const std::string& file) {
    pugi::xml_document types, rels, book, book_rels, styles;

    auto t = types.append_child("Types");
    t.append_attribute("xmlns") = "http://schemas.openxmlformats.org/package/2006/content-types";
    auto def = [&](const char* ext, const char* type) {
        auto d = t.append_child("Default");
        d.append_attribute("Extension") = ext;
        d.append_attribute("ContentType") = type;
    };
    auto over = [&](const std::string& part, const char* type) {
        auto o = t.append_child("Override");
        o.append_attribute("PartName") = ("/" + part).c_str();
        o.append_attribute("ContentType") = type;
    };
    def("rels", "application/vnd.openxmlformats-package.relationships+xml");
    def("xml", "application/xml");
    over("xl/workbook.xml", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml");
    over("xl/styles.xml", "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml");

    auto r = rels.append_child("Relationships");
    r.append_attribute("xmlns") = kPkgRels;
    auto rel = r.append_child("Relationship");
    rel.append_attribute("Id") = "rId1";
    rel.append_attribute("Type") =
        "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
    rel.append_attribute("Target") = "xl/workbook.xml";

    auto b = book.append_child("workbook");
    b.append_attribute("xmlns") = kMain;
    b.append_attribute("xmlns:r") = kRelNs;
    auto list = b.append_child("sheets");
    auto br = book_rels.append_child("Relationships");
    br.append_attribute("xmlns") = kPkgRels;

    std::vector<std::pair<std::string, std::string>> parts;
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const std::string n = std::to_string(i + 1);
        const std::string part = "xl/worksheets/sheet" + n + ".xml";
        over(part, kSheetType);
        auto s = list.append_child("sheet");
        s.append_attribute("name") = sheets[i].name.c_str();
        s.append_attribute("sheetId") = n.c_str();
        s.append_attribute("r:id") = ("rId" + n).c_str();
        auto x = br.append_child("Relationship");
        x.append_attribute("Id") = ("rId" + n).c_str();
        x.append_attribute("Type") =
            "http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet";
        x.append_attribute("Target") = ("worksheets/sheet" + n + ".xml").c_str();
        parts.emplace_back(part, SheetXml(sheets[i]));
    }
    auto x = br.append_child("Relationship");
    x.append_attribute("Id") = ("rId" + std::to_string(sheets.size() + 1)).c_str();
    x.append_attribute("Type") = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles";
    x.append_attribute("Target") = "styles.xml";

    // The smallest style sheet that spreadsheet programs accept: one font, the two required fills.
    styles.load_string(
        "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
        "<fonts count=\"1\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
        "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
        "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
        "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
        "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" "
        "borderId=\"0\"/></cellStyleXfs>"
        "<cellXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" "
        "xfId=\"0\"/></cellXfs>"
        "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>"
        "</styleSheet>");

    std::vector<std::pair<std::string, std::string>> all = {
        {"[Content_Types].xml", WriteNewXml(types)}, {"_rels/.rels", WriteNewXml(rels)},
        {"xl/workbook.xml", WriteNewXml(book)},      {"xl/_rels/workbook.xml.rels", WriteNewXml(book_rels)},
        {"xl/styles.xml", WriteNewXml(styles)},
    };
    all.insert(all.end(), parts.begin(), parts.end());
    return NewPackage(all, file);
}

}  // namespace cauce::workbook
