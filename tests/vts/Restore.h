#pragma once

#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/**
 * Puts a file back, byte for byte, when it goes; one that was missing is removed. The service may
 * have written other bytes of the same meaning. Not being able to fails the test.
 */
class FileGuard {
  public:
    explicit FileGuard(std::string path);
    ~FileGuard() { restore(); }
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

    /** Does it now. */
    void restore() const;

  private:
    const std::string mPath;
    const bool mExisted;
    const std::string mContent;
};

/**
 * Puts system properties back when it goes. One that had no value is left empty, which the service
 * does not tell from none. Not being able to fails the test.
 */
class PropertyGuard {
  public:
    explicit PropertyGuard(const std::vector<std::string>& keys);
    ~PropertyGuard();
    PropertyGuard(const PropertyGuard&) = delete;
    PropertyGuard& operator=(const PropertyGuard&) = delete;

  private:
    std::map<std::string, std::string> mValues;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
