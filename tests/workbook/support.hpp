// Helpers of the workbook tests: files, the independent tools (openpyxl, xlwt) and the driver.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "forms/guion.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"
#include "tests/unit/test_support.hpp"
#include "workbook/install.hpp"

namespace cauce::test {

namespace fs = std::filesystem;
namespace profile = screens::profile;

// What one line of the driver's JSON shows in a control ("" when absent).
inline std::string Shown(const nlohmann::json& line, std::string_view control) {
    return line.value(std::string(control), std::string());
}

inline std::string Slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

inline void Spit(const fs::path& p, const std::string& bytes) {
    std::ofstream out(p, std::ios::binary);
    out << bytes;
}

// Runs tests/workbook/libros.py with the arguments; returns its exit status, output in out.
inline int Libros(const std::string& args, std::string* out = nullptr) {
    const std::string cmd = std::string(CAUCE_PYTHON) + " " + CAUCE_LIBROS_PY + " " + args + " 2>&1";
    FILE* p = ::popen(cmd.c_str(), "r");
    if (!p) return -1;
    std::string text;
    char buf[4096];
    while (const std::size_t n = std::fread(buf, 1, sizeof buf, p)) text.append(buf, n);
    const int status = ::pclose(p);
    if (out) *out = text;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct GuionRun {
    int status = 0;
    std::string out, err;
};

// Runs a driver script in the current process, as "cauce guion" would.
inline GuionRun Guion(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out, err;
    GuionRun r;
    r.status = forms::RunScript(in, out, err, [](std::string_view n) { return screens::MakeScreen(n); });
    r.out = out.str();
    r.err = err.str();
    return r;
}

// A scratch working folder whose data folder (CAUCE_DATOS) is its subfolder "datos".
class WorkbookTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(info->test_suite_name()) + "-" + info->name();
        for (char& c : name)
            if (c == '/') c = '-';
        scratch_ = std::make_unique<ScratchDir>(name);
        ::setenv("CAUCE_DATOS", (scratch_->path() / "datos").c_str(), 1);
        workbook::Install();
    }
    void TearDown() override { scratch_.reset(); }
    const fs::path& Dir() const { return scratch_->path(); }

  private:
    std::unique_ptr<ScratchDir> scratch_;
};

}  // namespace cauce::test
