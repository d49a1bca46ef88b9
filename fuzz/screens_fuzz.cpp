// Every screen under random typing and clicking: no crash, no sanitizer report, no box or label
// showing inf or nan that the fuzzer did not type itself, and every click finishes within its step
// budget: the marches' budgets end a click, and one that still runs for seconds of processor time
// (CAUCE_FUZZ_CLICK_SECONDS, 3 unless set) is a failure that names the screen, the button and what
// was typed. The input is read as a program: a screen, then operations.
#include <time.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "forms/screen.hpp"
#include "fuzz/fuzz_support.hpp"
#include "screens/registry.hpp"

namespace {

// Texts the fuzzer types besides random bytes: numbers an engineer might enter and edge values.
const char* const kTexts[] = {"0",     "1",    "2",    "100",   "100.5",  "101", "102",    "0.015", "0.03",
                              "0.001", "0.05", "-1",   "1e300", "1e-300", "",    "2,5",    "51",    "50",
                              "3",     "15",   "0.94", "1000",  "28",     "182", "0.0001", "30",    "-0.001"};

class Reader {
  public:
    Reader(const std::uint8_t* d, std::size_t n) : d_(d), n_(n) {}
    bool more() const { return p_ < n_; }
    std::uint8_t byte() { return p_ < n_ ? d_[p_++] : 0; }
    std::string text() {
        const std::uint8_t kind = byte();
        if (kind < 200) return kTexts[kind % (sizeof kTexts / sizeof *kTexts)];
        std::string s;
        for (std::uint8_t len = byte() % 12; len > 0 && more(); --len) s += static_cast<char>(byte());
        return s;
    }

  private:
    const std::uint8_t* d_;
    std::size_t n_, p_ = 0;
};

// Processor time of this thread: other work on the machine does not count against a click.
double CpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double ClickLimit() {
    static const double limit = [] {
        const char* s = std::getenv("CAUCE_FUZZ_CLICK_SECONDS");
        return s && std::atof(s) > 0 ? std::atof(s) : 3.0;
    }();
    return limit;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Reader r(data, size);
    const auto names = cauce::screens::ScreenNames();
    auto screen = cauce::screens::MakeScreen(names[r.byte() % names.size()]);
    std::vector<std::string> boxes, buttons;
    for (const auto& c : screen->Controls()) {
        if (c.kind == cauce::forms::Kind::TextBox) boxes.push_back(c.name);
        if (c.kind == cauce::forms::Kind::CommandButton) buttons.push_back(c.name);
    }
    std::map<std::string, std::string> typed;
    for (int ops = 0; r.more() && ops < 200 && !screen->Closed(); ++ops) {
        if (r.byte() % 4 != 0) {
            const std::string& box = boxes[r.byte() % boxes.size()];
            typed[box] = r.text();
            screen->Type(box, typed[box]);
        } else if (!buttons.empty()) {
            const std::string& button = buttons[r.byte() % buttons.size()];
            const double start = CpuSeconds();
            screen->Click(button);
            if (const double took = CpuSeconds() - start; took > ClickLimit()) {
                std::string what = screen->Name() + " " + button + " took " + std::to_string(took) + " s;";
                for (const auto& [box, text] : typed) what += " " + box + "=" + text;
                cauce::fuzz::Fail(what);
            }
            for (const auto& c : screen->Controls()) {
                const auto t = typed.find(c.name);
                if (t != typed.end() && t->second == c.text) continue;
                if (cauce::fuzz::ShowsNonNumber(c.text)) cauce::fuzz::Fail(c.name + " shows " + c.text);
            }
        }
    }
    return 0;
}
