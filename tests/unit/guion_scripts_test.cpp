// Whole-screen tests: every script under tests/guiones/ is run through the driver, and each line it
// prints must hold the keys and values of the matching line of the .json file beside it (a line may
// list only the controls it checks; "error" absent from the expected line must be absent too).
// A comment "# @copy FILE" copies FILE from tests/guiones/ into the scratch folder the script runs in.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "forms/guion.hpp"
#include "screens/registry.hpp"
#include "tests/unit/test_support.hpp"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> Scripts() {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(CAUCE_GUIONES_DIR))
        if (e.path().extension() == ".guion") names.push_back(e.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string Slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

class GuionScript : public ::testing::TestWithParam<std::string> {};

TEST_P(GuionScript, PrintsTheExpectedControls) {
    const fs::path dir = CAUCE_GUIONES_DIR;
    const fs::path script = dir / (GetParam() + ".guion");
    const std::string text = Slurp(script);
    cauce::test::ScratchDir scratch("guion-" + GetParam());
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("# @copy ", 0) == 0)
            fs::copy_file(dir / line.substr(8), scratch.path() / line.substr(8));

    std::istringstream in(text);
    std::ostringstream out, err;
    const int status = cauce::forms::RunScript(
        in, out, err, [](std::string_view n) { return cauce::screens::MakeScreen(n); });
    ASSERT_EQ(status, 0) << err.str();

    std::istringstream actual(out.str()), expected(Slurp(dir / (GetParam() + ".json")));
    std::string a, e;
    int n = 0;
    while (std::getline(expected, e)) {
        if (e.empty()) continue;
        ++n;
        ASSERT_TRUE(static_cast<bool>(std::getline(actual, a))) << "missing output line " << n;
        const auto want = nlohmann::json::parse(e);
        const auto got = nlohmann::json::parse(a);
        for (const auto& [key, value] : want.items())
            EXPECT_EQ(got.value(key, std::string("<absent>")), value.get<std::string>())
                << "line " << n << ", " << key;
        if (!want.contains("error")) {
            EXPECT_FALSE(got.contains("error")) << "line " << n << ": " << got.value("error", "");
        }
    }
    EXPECT_FALSE(static_cast<bool>(std::getline(actual, a))) << "extra output: " << a;
}

INSTANTIATE_TEST_SUITE_P(Guiones, GuionScript, ::testing::ValuesIn(Scripts()),
                         [](const auto& info) { return info.param; });

}  // namespace
