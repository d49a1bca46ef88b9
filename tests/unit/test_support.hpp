// Helpers shared by the tests.
#pragma once

#include <filesystem>
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

}  // namespace cauce::test
