#include "tests/vts/Restore.h"

#include <cutils/properties.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

#include "projectconfigs/testing/PlainRules.h"
#include "tests/vts/PlainSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

namespace {

// Writes in place, so that owner, mode and label stay.
bool overwrite(const std::string& path, const std::string& content) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) {
        return false;
    }
    const bool written =
            write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    const bool synced = fsync(file) == 0;
    return close(file) == 0 && written && synced;
}

}  // namespace

FileGuard::FileGuard(std::string path)
    : mPath(std::move(path)),
      mExisted(access(mPath.c_str(), F_OK) == 0),
      mContent(plain::contentOf(mPath)) {}

void FileGuard::restore() const {
    const bool exists = access(mPath.c_str(), F_OK) == 0;
    if (!mExisted) {
        EXPECT_TRUE(!exists || unlink(mPath.c_str()) == 0) << mPath << " is left behind";
    } else if (!exists || plain::contentOf(mPath) != mContent) {
        EXPECT_TRUE(overwrite(mPath, mContent)) << mPath << " cannot be put back";
    }
}

PropertyGuard::PropertyGuard(const std::vector<std::string>& keys) {
    for (const std::string& key : keys) {
        mValues[key] = propertyOf(key);
    }
}

PropertyGuard::~PropertyGuard() {
    for (const auto& [key, value] : mValues) {
        if (propertyOf(key) != value) {
            property_set(key.c_str(), value.c_str());
            EXPECT_EQ(propertyOf(key), value) << key << " cannot be put back";
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
