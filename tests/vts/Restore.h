#pragma once

#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/**
 * Restores a file, byte for byte, in its destructor; removes a file that was missing. The service
 * may have written other bytes of the same meaning. A failure fails the test.
 */
class FileGuard {
  public:
    explicit FileGuard(std::string path);
    ~FileGuard() { restore(); }
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

    /** Restores the file now. */
    void restore() const;

  private:
    const std::string mPath;
    const bool mExisted;
    const std::string mContent;
};

/**
 * Restores system properties in its destructor. A property that was not set becomes empty, which is
 * the same for the service. A failure fails the test.
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
