// The rewrite of a legacy .xls's workbook stream on any bytes. It runs in the reader's child, where
// a crash would only refuse the file, so it is checked here in-process, under the sanitizers.
//
// Asserts: no crash, no sanitizer report; what it writes is a compound file it can follow again,
// with no sheet left out the second time and no text too long for a record.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.hpp"
#include "workbook/xls_stream.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace wb = cauce::workbook;
    const auto once = wb::SimplifyXls(std::string(reinterpret_cast<const char*>(data), size));
    if (!once) return 0;
    const auto twice = wb::SimplifyXls(once->bytes);
    if (!twice) cauce::fuzz::Fail("the rewritten file cannot be followed again");
    if (!twice->omitted.empty() || !twice->long_texts.empty())
        cauce::fuzz::Fail("the rewritten file still has what the rewrite leaves out");
    return 0;
}
