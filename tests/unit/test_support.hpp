// Helpers shared by the tests.
#pragma once

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/platform.hpp"

namespace cauce::test {

// A fresh folder under the system's temporary folder, made the working folder while it lives.
class ScratchDir {
  public:
    explicit ScratchDir(const std::string& name)
        : path_(std::filesystem::temp_directory_path() /
                ("cauce-test-" + std::to_string(platform::ProcessId()) + "-" + name)),
          old_(std::filesystem::current_path()) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
        std::filesystem::current_path(path_);
    }
    ~ScratchDir() {
        std::error_code ec;
        std::filesystem::current_path(old_, ec);
        std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_, old_;
};

// Root of f, rising through zero between a and b, by bisection: the tests' independent reference.
inline double Bisect(const std::function<double(double)>& f, double a, double b) {
    for (int i = 0; i < 200; ++i) {
        const double mid = (a + b) / 2;
        (f(mid) < 0 ? a : b) = mid;
    }
    return (a + b) / 2;
}

// Manning's discharge of a section of this area and wetted perimeter.
inline double Manning(double area, double perimeter, double n, double s) {
    return std::sqrt(s) / n * std::pow(area, 5.0 / 3.0) / std::pow(perimeter, 2.0 / 3.0);
}

// How many random cases the identity tests of the fast searches run (fewer under the sanitizers).
inline int IdentityCases() {
    const char* env = std::getenv("CAUCE_IDENTITY_CASES");
    return env ? std::atoi(env) : 100000;
}

// The same double, bit for bit.
inline bool Same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace cauce::test
