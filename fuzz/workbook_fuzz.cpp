// The workbook reader on any file: the bytes are written to a private folder and opened, the zip
// reader and the legacy reader are both given them whatever their first bytes say, and every
// workbook that opens is read whole: every sheet, every cell, the first
// sheet as records, one cell changed and the package written and read back.
//
// Asserts: no crash, no sanitizer report, every failure a cauce::Fault whose message names the file,
// and no cell that reads as inf or nan.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/workbook_check.hpp"
#include "workbook/legacy.hpp"
#include "workbook/workbook.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace fz = cauce::fuzz;
    namespace wb = cauce::workbook;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const fz::PrivateFolder& dir = fz::PrivateFolder::Get();
    // Opening goes by the first bytes, not the name: the reader the first bytes do not choose is
    // given the file directly, so that each input reaches both.
    const std::string xlsx = dir.Write("libro.xlsx", bytes);
    fz::Expect(xlsx, [&] { return wb::Workbook::Open(xlsx); });
    if (bytes.compare(0, 4, "PK\x03\x04", 4) != 0)
        fz::Expect("memoria.xlsx", [&] { return wb::Workbook::FromBytes(bytes, "memoria.xlsx"); });
    if (bytes.compare(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) != 0) {
        const std::string xls = dir.Write("libro.xls", bytes);
        fz::Expect(xls, [&] { return wb::Workbook::FromBytes(wb::ReadLegacyBook(xls).package, xls); });
    }
    return 0;
}
