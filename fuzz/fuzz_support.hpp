// Checks shared by the fuzz targets.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>

namespace cauce::fuzz {

// A text that shows inf or nan as a word: a number the program should never have written.
inline bool ShowsNonNumber(const std::string& text) {
    static const std::regex word(R"((^|[^A-Za-z])(inf|infinity|nan)($|[^A-Za-z]))", std::regex::icase);
    return std::regex_search(text, word);
}

[[noreturn]] inline void Fail(const std::string& what) {
    std::fprintf(stderr, "fuzz: %s\n", what.c_str());
    std::abort();
}

}  // namespace cauce::fuzz
