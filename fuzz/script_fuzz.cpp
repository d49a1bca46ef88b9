// The driver's script reader on any input: it either runs or stops with a message and status 2;
// every line it prints is JSON. Workbooks are not opened here (no file is ever written).
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "forms/guion.hpp"
#include "fuzz/fuzz_support.hpp"
#include "screens/registry.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    std::ostringstream out, err;
    const int status = cauce::forms::RunScript(
        in, out, err, [](std::string_view n) { return cauce::screens::MakeScreen(n); });
    if (status != 0 && status != 1 && status != 2) cauce::fuzz::Fail("status " + std::to_string(status));
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);) {
        const auto j = nlohmann::json::parse(line, nullptr, false);
        if (j.is_discarded() || !j.is_object()) cauce::fuzz::Fail("not JSON: " + line);
    }
    return 0;
}
