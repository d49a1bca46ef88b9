// Helpers of the workbook tests: files, the independent tools (openpyxl, xlwt) and the driver.
#pragma once

#include <gtest/gtest.h>
#include <zip.h>

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
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {

namespace fs = std::filesystem;
namespace profile = screens::profile;

// What one line of the driver's JSON shows in a control ("" when absent).
inline std::string Shown(const nlohmann::json& line, std::string_view control) {
    return line.value(std::string(control), std::string());
}

// The bundled example workbook.
inline const fs::path kRios = fs::path(CAUCE_EXAMPLES_DIR) / "Rios.xlsx";

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

// Runs tests/workbook/workbooks.py with the arguments; returns its exit status, output in out.
inline int Workbooks(const std::string& args, std::string* out = nullptr) {
    const std::string cmd = std::string(CAUCE_PYTHON) + " " + CAUCE_WORKBOOKS_PY + " " + args + " 2>&1";
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

// The text of a record's cell, read back from the file.
inline std::string CellOf(const fs::path& file, const std::string& sheet, int record,
                          const std::string& column) {
    return workbook::SheetRecords(workbook::Workbook::Open(file), sheet).Get(record, column);
}

// One part of the package, expanded ("" when it is not there).
inline std::string Part(const fs::path& file, const std::string& part) {
    int err = 0;
    zip_t* z = zip_open(file.c_str(), ZIP_RDONLY, &err);
    std::string text;
    if (!z) return text;
    if (zip_file_t* f = zip_fopen(z, part.c_str(), 0)) {
        char buf[4096];
        for (zip_int64_t n; (n = zip_fread(f, buf, sizeof buf)) > 0;)
            text.append(buf, static_cast<std::size_t>(n));
        zip_fclose(f);
    }
    zip_close(z);
    return text;
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
