// Progress of a long run on standard error, only when it is a terminal: one line rewritten in place
// ("perfil: 37/200 rios-037.xlsx"), cleared when the run ends. Output meant for files and pipes never
// carries it.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace cauce::cli {

class Progress {
  public:
    // what: the command's name; total: the number of steps of the run.
    Progress(std::string what, int total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Step `done` (1-based) is under way; item names it. Redrawn at most ten times a second.
    void Step(int done, std::string_view item = {});
    // Clears the line (before a message is printed on standard error, and at the end).
    void Clear();

  private:
    std::string what_;
    int total_;
    bool active_;
    bool shown_ = false;
    std::chrono::steady_clock::time_point last_{};
};

}  // namespace cauce::cli
