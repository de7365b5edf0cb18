#pragma once

#include <hidl/HidlSupport.h>
#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0 {

/**
 * Random arguments: numbers at the edges of the valid ranges, names that a set has and names that
 * it does not have, paths of files of the set, long texts, odd bytes. A seed gives the same ones.
 */
class RandomArguments {
  public:
    /** `tvconfigs` is the mount point of the configuration partition, for paths of its files. */
    RandomArguments(unsigned int seed, const std::string& tvconfigs);

    void operator()(bool& argument) { argument = mRandom() % 2 == 0; }
    void operator()(int32_t& argument);
    void operator()(::android::hardware::hidl_string& argument);
    void operator()(ProjectConfigKey& argument);
    template <typename Enumeration, typename = std::enable_if_t<std::is_enum_v<Enumeration>>>
    void operator()(Enumeration& argument) {
        int32_t number = 0;
        (*this)(number);
        argument = static_cast<Enumeration>(number);
    }

    /** A number from 0 to limit - 1. */
    size_t below(size_t limit) { return mRandom() % limit; }

  private:
    const std::string& oneOf(const std::vector<std::string>& texts) {
        return texts[below(texts.size())];
    }

    std::mt19937 mRandom;
    std::vector<std::string> mTexts;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0
