// Reading any text with Val and writing the number back with both patterns: no crash, no sanitizer
// report, and never "inf" or "nan" on screen (an overflow is a Fault instead).
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "forms/format.hpp"
#include "forms/val.hpp"
#include "fuzz/fuzz_support.hpp"
#include "hydraulics/checked_math.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    double v = 0;
    try {
        v = cauce::forms::Val(text);
    } catch (const cauce::Fault&) {
        return 0;
    }
    for (const char* pattern : {"0.00", "0.000"}) {
        std::string shown;
        try {
            shown = cauce::forms::Format(v, pattern);
        } catch (const cauce::Fault&) {
            cauce::fuzz::Fail("Val gave a number Format refuses: " + text);
        }
        if (cauce::fuzz::ShowsNonNumber(shown)) cauce::fuzz::Fail("shown: " + shown);
        // What is shown reads back as a number within half a unit of its last decimal.
        const double back = cauce::forms::Val(shown);
        const double unit = std::string(pattern).size() == 5 ? 0.001 : 0.01;
        if (std::abs(back - v) > unit / 2 * (1 + 1e-9) + std::abs(v) * 1e-14)
            cauce::fuzz::Fail("Format(" + text + ") = " + shown);
    }
    try {
        (void)cauce::forms::CInt(v);
    } catch (const cauce::Fault&) {
    }
    return 0;
}
