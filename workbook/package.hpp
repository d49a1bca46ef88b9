// The zip package of an .xlsx, held in memory: parts are read with a bound on their expanded size,
// and a new package is written in which every part that was not replaced is copied still compressed,
// byte for byte.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cauce::workbook {

class Package {
  public:
    // Opens the zip held in bytes; file names the workbook in messages. Throws Fault.
    Package(std::string bytes, std::string file);
    ~Package();
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    const std::string& File() const { return file_; }
    const std::string& Bytes() const { return bytes_; }
    // Part names as stored, in the package's order.
    const std::vector<std::string>& Names() const { return names_; }
    // The stored name of a part, compared without case as parts are; "" when absent.
    std::string Find(const std::string& name) const;
    // The part expanded; throws Fault when it is missing, damaged or expands beyond the limits.
    std::string Read(const std::string& name);

    // A new package: the parts in replaced take their new contents (added at the end when new),
    // the parts in removed are left out, all others are copied compressed. Throws Fault.
    std::string Write(const std::map<std::string, std::string>& replaced,
                      const std::set<std::string>& removed) const;

  private:
    std::string bytes_, file_;
    std::vector<std::string> names_;
    struct Zip;
    std::unique_ptr<Zip> zip_;
    unsigned long long expanded_ = 0;
};

// Builds a package from scratch with the parts in this order (deflated).
std::string NewPackage(const std::vector<std::pair<std::string, std::string>>& parts,
                       const std::string& file);

}  // namespace cauce::workbook
