// The three services as a whole: they are registered, they serve many clients at once, and clients
// notice their death.

#include <cutils/properties.h>
#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <mutex>
#include <random>
#include <thread>

#include "tests/vts/Hal.h"
#include "tests/vts/ProjectQuestions.h"
#include "tests/vts/TvRows.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::sp;
using ::android::wp;
using ::android::hardware::getAllHalInstanceNames;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hidl::base::V1_0::IBase;

namespace {

constexpr const char* kInitService = "vendor.mlkconfigs-1-0";
constexpr std::chrono::seconds kPatience(60);

template <typename Interface>
void expectRegistered() {
    const std::vector<std::string> names = getAllHalInstanceNames(Interface::descriptor);
    EXPECT_EQ(std::count(names.begin(), names.end(), "default"), 1) << Interface::descriptor;
    const sp<Interface> service = Interface::getService();
    ASSERT_NE(service, nullptr) << Interface::descriptor;
    std::vector<std::string> chain;
    EXPECT_TRUE(service->interfaceChain([&](const hidl_vec<hidl_string>& descriptors) {
                           chain.assign(descriptors.begin(), descriptors.end());
                       })
                        .isOk());
    EXPECT_EQ(chain, (std::vector<std::string>{Interface::descriptor, IBase::descriptor}));
}

class Mourner : public hidl_death_recipient {
  public:
    void serviceDied(uint64_t cookie, const wp<IBase>& /* who */) override {
        mCookie.set_value(cookie);
    }
    std::future<uint64_t> cookie() { return mCookie.get_future(); }

  private:
    std::promise<uint64_t> mCookie;
};

}  // namespace

TEST(Registration, EachInterfaceHasItsDefaultInstance) {
    expectRegistered<IMlkProjectConfigs>();
    expectRegistered<IMlkTvConfigs>();
    expectRegistered<IMlkFrameworkConfigs>();
}

class Load : public HalTest<IMlkProjectConfigs> {};

// Every thread asks all questions in a random order.
TEST_P(Load, ManyThreadsGetTheSameAnswers) {
    constexpr unsigned int kThreads = 16;
    const sp<IMlkTvConfigs> tv = IMlkTvConfigs::getService(GetParam());
    ASSERT_NE(tv, nullptr);
    Questions questions = itemQuestions(service, set);
    for (const Questions& more :
         {listQuestions(service, set), customerFileQuestions(service, set),
          audioQuestions(service, set, avrInUse(service, set)), fileQuestions(service, set),
          tvQuestions(tv, PlainFeatures(set.tvConfigPath()))}) {
        questions.insert(questions.end(), more.begin(), more.end());
    }
    std::mutex mutex;
    std::vector<std::string> wrong;
    std::vector<std::thread> threads;
    for (unsigned int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&, number] {
            std::vector<const Question*> order;
            for (const Question& question : questions) {
                order.push_back(&question);
            }
            std::shuffle(order.begin(), order.end(), std::mt19937(number));
            for (const Question* question : order) {
                const std::string answer = question->ask();
                if (answer != question->expected) {
                    const std::lock_guard<std::mutex> lock(mutex);
                    wrong.push_back(question->call + " answers " + answer);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.size(), 0U) << "the first: " << wrong[0];
}

MLK_ON_EVERY_INSTANCE(Load, IMlkProjectConfigs);

class Death : public HalTest<IMlkProjectConfigs> {
  protected:
    // Ends the process and waits until a new one serves; false after a minute.
    bool restart() {
        const sp<Mourner> mourner = new Mourner;
        auto cookie = mourner->cookie();
        EXPECT_TRUE(service->linkToDeath(mourner, 17).withDefault(false));
        if (options().kill > 0) {
            EXPECT_EQ(kill(options().kill, SIGKILL), 0) << "--kill: there is no such process";
        } else {
            EXPECT_EQ(property_set("ctl.restart", kInitService), 0) << "init refuses a restart";
        }
        if (cookie.wait_for(kPatience) != std::future_status::ready) {
            return false;
        }
        EXPECT_EQ(cookie.get(), 17U);
        EXPECT_TRUE(service->ping().isDeadObject());
        EXPECT_EQ(ask(*service, MLK_METHOD(IMlkProjectConfigs, getPanelName)), "dead object");
        const auto end = std::chrono::steady_clock::now() + kPatience;
        do {
            // A start registers this one last. The name may still belong to the dead process.
            const sp<IMlkFrameworkConfigs> last = IMlkFrameworkConfigs::tryGetService(GetParam());
            service = IMlkProjectConfigs::tryGetService(GetParam());
            if (last != nullptr && last->ping().isOk() && service != nullptr &&
                service->ping().isOk()) {
                return true;
            }
            poll(nullptr, 0, 20);
        } while (std::chrono::steady_clock::now() < end);
        return false;
    }
};

TEST_P(Death, CanBeLinkedAndUnlinked) {
    const sp<Mourner> mourner = new Mourner;
    EXPECT_FALSE(service->unlinkToDeath(mourner).withDefault(false));
    EXPECT_TRUE(service->linkToDeath(mourner, 1).withDefault(false));
    EXPECT_TRUE(service->unlinkToDeath(mourner).withDefault(false));
    EXPECT_FALSE(service->unlinkToDeath(mourner).withDefault(false));
}

TEST_P(Death, IsNoticedAndTheNextOneAnswersTheSame) {
    if (!options().restart && options().kill == 0) {
        GTEST_SKIP() << "ends the service: only with --restart or --kill=PID";
    }
    ASSERT_TRUE(restart()) << "the service does not come back";
    const PlainSet now;
    check(itemQuestions(service, now));
    check(audioQuestions(service, now, {}));
    const sp<IMlkTvConfigs> tv = IMlkTvConfigs::getService(GetParam());
    ASSERT_NE(tv, nullptr);
    check(tvQuestions(tv, PlainFeatures(now.tvConfigPath())));
}

MLK_ON_EVERY_INSTANCE(Death, IMlkProjectConfigs);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
