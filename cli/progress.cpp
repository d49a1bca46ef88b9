#include "cli/progress.hpp"

#include <cstdio>

#include "cli/args.hpp"

namespace cauce::cli {

Progress::Progress(std::string what, int total) : what_(std::move(what)), total_(total), active_(ErrorIsTerminal()) {}

Progress::~Progress() { Clear(); }

void Progress::Step(int done, std::string_view item) {
    if (!active_) return;
    const auto now = std::chrono::steady_clock::now();
    if (shown_ && done < total_ && now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    std::string line = what_ + ": " + std::to_string(done) + "/" + std::to_string(total_);
    if (!item.empty()) line += " " + std::string(item.substr(0, 60));
    std::fprintf(stderr, "\r\033[K%s", line.c_str());
    std::fflush(stderr);
    shown_ = true;
}

void Progress::Clear() {
    if (!shown_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    shown_ = false;
}

}  // namespace cauce::cli
