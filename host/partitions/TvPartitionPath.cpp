#include "TvPartitionPath.h"

#include <stdlib.h>

#include <map>
#include <mutex>

TvPartitionPath::TvPartitionPath(const std::string& root)
    : mTvconfigs(root + "/tvconfigs"), mTvdata(root + "/tvdata"), mImpdata(root + "/impdata") {}

TvPartitionPath* TvPartitionPath::GetInstance() {
    static std::mutex lock;
    // Never freed: callers keep the texts.
    static auto& instances = *new std::map<std::string, TvPartitionPath*>;
    const char* variable = getenv("MLK_ROOT");
    const std::string root = variable == nullptr ? "" : variable;
    const std::lock_guard<std::mutex> guard(lock);
    TvPartitionPath*& instance = instances[root];
    if (instance == nullptr) {
        instance = new TvPartitionPath(root);
    }
    return instance;
}
