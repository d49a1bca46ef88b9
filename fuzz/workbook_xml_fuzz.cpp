// The XML of an .xlsx under mutation: the input is the package's parts as text, each one opened by a
// line "@@ name", so that the fuzzer changes the XML itself (a zip's compressed bytes would hide it).
// The parts are zipped in memory and the workbook opened and read whole, as in workbook_fuzz.
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/workbook_check.hpp"
#include "workbook/package.hpp"

namespace {

std::vector<std::pair<std::string, std::string>> Parts(std::string_view in) {
    std::vector<std::pair<std::string, std::string>> parts;
    std::set<std::string> names;
    std::size_t pos = in.rfind("@@ ", 0) == 0 ? 0 : in.find("\n@@ ");
    while (pos != std::string_view::npos && parts.size() < 40) {
        const std::size_t start = in[pos] == '\n' ? pos + 1 : pos;
        const std::size_t eol = in.find('\n', start);
        const std::string name(
            in.substr(start + 3, eol == std::string_view::npos ? std::string_view::npos : eol - start - 3));
        const std::size_t body = eol == std::string_view::npos ? in.size() : eol + 1;
        pos = in.find("\n@@ ", body == 0 ? 0 : body - 1);
        // A zip holds a name once; a nameless part cannot be added.
        if (name.empty() || !names.insert(name).second) continue;
        parts.emplace_back(
            name, std::string(
                      in.substr(body, pos == std::string_view::npos ? std::string_view::npos : pos - body)));
    }
    return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace fz = cauce::fuzz;
    const std::string file = "partes.xlsx";
    const auto parts = Parts(std::string_view(reinterpret_cast<const char*>(data), size));
    std::string zip;
    try {
        zip = cauce::workbook::NewPackage(parts, file);
    } catch (const cauce::Fault&) {
        return 0;  // names libzip refuses: not the reader's business
    }
    fz::Expect(file, [&] { return cauce::workbook::Workbook::FromBytes(zip, file); });
    return 0;
}
