#include "service/tests/InterfaceMethods.h"

#include <gmock/gmock.h>
#include <hwbinder/IBinder.h>
#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkTvConfigs.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::sp;
using ::android::status_t;
using ::android::wp;
using ::android::hardware::IBinder;
using ::android::hardware::Parcel;
using ::testing::ElementsAre;
using ::testing::SizeIs;

/** A remote object that notes the calls and serves none. */
class NotingRemote : public IBinder {
  public:
    status_t transact(uint32_t code, const Parcel&, Parcel*, uint32_t, TransactCallback) override {
        mCodes.push_back(code);
        return ::android::UNKNOWN_TRANSACTION;
    }
    status_t linkToDeath(const sp<DeathRecipient>&) override { return ::android::OK; }
    status_t unlinkToDeath(const wp<DeathRecipient>&) override { return ::android::OK; }

    std::vector<uint32_t> mCodes;
};

/**
 * The methods of an interface in the order of their codes, from the list of what earlier clients
 * send. A line is "IMlkTvConfigs 27 getFlag(ConfigType) OptionalBool".
 */
std::vector<std::string> committedMethods(const std::string& interface) {
    const char* tree = getenv("MLK_SOURCE_DIR");
    std::ifstream list((tree == nullptr ? "." : tree) +
                       std::string("/service/tests/method_codes.txt"));
    std::vector<std::string> names;
    std::string name;
    std::string method;
    std::string rest;
    uint32_t code = 0;
    while (list >> name >> code >> method && std::getline(list, rest)) {
        if (name == interface) {
            names.push_back(method.substr(0, method.find('(')));
            EXPECT_EQ(code, names.size()) << method;
        }
    }
    return names;
}

template <typename Proxy, size_t count>
void expectCodes() {
    using Interface = typename Proxy::Pure;
    const auto& rows = methodRows<Interface>();
    EXPECT_THAT(rows, SizeIs(count));
    const std::string descriptor = Interface::descriptor;
    std::vector<std::string> names;
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    EXPECT_EQ(names, committedMethods(descriptor.substr(descriptor.rfind(':') + 1)));
    uint32_t position = 0;
    for (const auto& row : rows) {
        EXPECT_EQ(row.code, ++position) << row.name;
        const sp<NotingRemote> remote = new NotingRemote;
        const sp<Interface> proxy = new Proxy(remote);
        int answers = 0;
        EXPECT_FALSE(row.call(*proxy, &answers)) << row.name;
        EXPECT_EQ(answers, 0) << row.name;
        EXPECT_THAT(remote->mCodes, ElementsAre(row.code)) << row.name;
    }
}

TEST(InterfaceMethods, OfTheTvServiceKeepTheirCodes) {
    expectCodes<BpHwMlkTvConfigs, 55>();
}

TEST(InterfaceMethods, OfTheFrameworkServiceKeepTheirCodes) {
    expectCodes<BpHwMlkFrameworkConfigs, 25>();
}

TEST(InterfaceMethods, OfTheProjectServiceKeepTheirCodes) {
    expectCodes<BpHwMlkProjectConfigs, 52>();
}

TEST(InterfaceMethods, InterfacesKeepTheirNames) {
    EXPECT_STREQ(IMlkTvConfigs::descriptor, "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs");
    EXPECT_STREQ(IMlkFrameworkConfigs::descriptor,
                 "vendor.morlak.mlkconfigs@1.0::IMlkFrameworkConfigs");
    EXPECT_STREQ(IMlkProjectConfigs::descriptor,
                 "vendor.morlak.mlkconfigs@1.0::IMlkProjectConfigs");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
