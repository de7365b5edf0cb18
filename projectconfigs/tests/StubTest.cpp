#include "projectconfigs/MlkProjectConfigsStub.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <hidl/Static.h>
#include <vendor/morlak/mlkconfigs/1.0/hwtypes.h>

#include <initializer_list>

#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::BAD_TYPE;
using ::android::BAD_VALUE;
using ::android::OK;
using ::android::sp;
using ::android::status_t;
using ::android::UNKNOWN_ERROR;
using ::android::hardware::hidl_string;
using ::android::hardware::IBinder;
using ::android::hardware::Parcel;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Arguments = std::vector<int32_t>;

// The methods that may give no answer, with arguments that get an answer and arguments that do not.
// The codes are those of the interface.
struct Method {
    uint32_t code;
    const char* name;
    std::vector<Arguments> answered;
    std::vector<Arguments> unanswered;
};

const Method kMethods[] = {
        {14, "getEQPath", {{0}, {1}}, {{2}, {-1}}},
        {15, "getAMPSelection", {{0}, {1}}, {{2}, {-1}}},
        {16, "getAMPAddr", {{0}, {1}}, {{-1}, {2147483647}}},
        {19, "getHDMIEdidPath", {{0, 0}, {3, 2}, {1, 7}, {2, -1}}, {{4, 0}, {-1, 1}}},
        {20, "getHDMIHdcpPath", {{0}, {1}}, {{2}, {-1}}},
        {32, "getTunerConfig", {{0}, {1}}, {{5}, {-1}}},
};
constexpr uint32_t kGetPanelName = 10;
constexpr uint32_t kGetEQPath = 14;
constexpr uint32_t kGetPowerOnMode = 21;
constexpr uint32_t kSetAvrVendorId = 41;
constexpr uint32_t kSetAvrOSDName = 42;

std::string named(const Method& method, const Arguments& arguments) {
    std::string list;
    for (const int32_t argument : arguments) {
        list += (list.empty() ? "" : ", ") + std::to_string(argument);
    }
    return std::string(method.name) + "(" + list + ")";
}

// The result of a transaction.
struct Outcome {
    status_t status = OK;
    int callbacks = 0;
    std::vector<uint8_t> numbers;      // of the reply
    std::vector<std::string> buffers;  // of the reply; pointers inside are left out
};

// Texts and structs of a reply; a struct's first byte is its success flag, its pointers differ from
// call to call.
std::vector<std::string> buffersOf(const Parcel& reply) {
    std::vector<std::string> buffers;
    for (const Parcel::Object& object : reply.objects()) {
        const auto* const bytes = static_cast<const char*>(object.bytes);
        const bool isText = object.hasParent;
        const bool isNumber = object.length == sizeof(OptionalInt32);
        const size_t shown = isText || isNumber ? object.length : 1;
        std::string buffer = std::to_string(object.length) + ":";
        buffer += isNumber ? std::to_string(reinterpret_cast<const OptionalInt32*>(bytes)->value)
                           : std::string(bytes, shown);
        buffers.push_back(buffer);
    }
    return buffers;
}

template <typename Write>
Outcome transactWith(const sp<IBinder>& stub, uint32_t code, const Write& writeArguments,
                     const char* descriptor = IMlkProjectConfigs::descriptor, uint32_t flags = 0) {
    Parcel data;
    data.writeInterfaceToken(descriptor);
    writeArguments(data);
    Parcel reply;
    Outcome outcome;
    outcome.status = stub->transact(code, data, &reply, flags, [&](Parcel& answer) {
        ++outcome.callbacks;
        EXPECT_EQ(&answer, &reply);
        outcome.numbers = answer.data();
        outcome.buffers = buffersOf(answer);
    });
    if (outcome.callbacks == 0) {
        EXPECT_THAT(reply.data(), IsEmpty());
        EXPECT_THAT(reply.objects(), IsEmpty());
    }
    return outcome;
}

Outcome transact(const sp<IBinder>& stub, uint32_t code, const Arguments& arguments,
                 const char* descriptor = IMlkProjectConfigs::descriptor, uint32_t flags = 0) {
    return transactWith(
            stub, code,
            [&](Parcel& data) {
                for (const int32_t argument : arguments) {
                    data.writeInt32(argument);
                }
            },
            descriptor, flags);
}

Outcome transactText(const sp<IBinder>& stub, uint32_t code, const std::string& text) {
    const hidl_string argument = text;
    return transactWith(stub, code, [&](Parcel& data) {
        size_t parent = 0;
        data.writeBuffer(&argument, sizeof argument, &parent);
        writeEmbeddedToParcel(argument, &data, parent, 0);
    });
}

class StubTest : public ServiceOnSet {
  protected:
    void load(const std::string& text) {
        project(text);
        start();
        mStub = new MlkProjectConfigsStub(mService);
        mLog.clear();
    }
    std::vector<std::string> errors() const { return logged(ANDROID_LOG_ERROR); }

    sp<IBinder> mStub;
};

TEST_F(StubTest, AnswersTravelAsThroughTheGeneratedStub) {
    load("[DIGITAL_AMPLIFIER_CFG]\nST_EQ0_NAME=eq0\nST_EQ1_NAME=eq one\nST_AMP_SELECTION=amp\n"
         "ST_AMP_ADDR0=0x34\n[HDMI_EDID_1]\nHDMI_EDID_File_1P4=/tvconfigs/edid.bin\n"
         "[HDMI_EDID_2]\n=odd\n[HDCP_KEY_2X]\nHDCP_KEY_File=key\n[Tuner]\nTP1_FE=fe\n"
         "[PowerOnMode]\nModeStatus=2\n");
    const sp<IBinder> generated = new BnHwMlkProjectConfigs(sp<IMlkProjectConfigs>(mService));
    const auto compare = [&](uint32_t code, const Arguments& arguments) {
        const Outcome expected = transact(generated, code, arguments);
        const Outcome outcome = transact(mStub, code, arguments);
        EXPECT_EQ(outcome.status, OK);
        EXPECT_EQ(outcome.callbacks, 1);
        EXPECT_EQ(outcome.numbers, expected.numbers);
        EXPECT_EQ(outcome.buffers, expected.buffers);
        return outcome.buffers;
    };
    for (const Method& method : kMethods) {
        for (const Arguments& arguments : method.answered) {
            SCOPED_TRACE(named(method, arguments));
            compare(method.code, arguments);
        }
    }
    EXPECT_THAT(compare(kGetEQPath, {1}),
                ElementsAre(std::string("24:\1"), std::string("7:eq one\0", 9)));
    EXPECT_THAT(compare(kGetPowerOnMode, {}), ElementsAre("8:2"));
    EXPECT_THAT(compare(kGetPanelName, {}),
                ElementsAre(std::string("24:\1"), std::string("1:\0", 3)));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(StubTest, UnansweredCallIsRefusedAndReported) {
    load("");
    for (const Method& method : kMethods) {
        for (const Arguments& arguments : method.unanswered) {
            mLog.clear();
            const Outcome outcome = transact(mStub, method.code, arguments);
            EXPECT_EQ(outcome.status, BAD_VALUE);
            EXPECT_EQ(outcome.callbacks, 0);
            EXPECT_THAT(errors(),
                        ElementsAre(named(method, arguments) + " has no answer, call refused"));
        }
    }
}

TEST_F(StubTest, PowerOnModeWithoutAnswerIsRefused) {
    load("[PowerOnMode]\nModeStatus=3\n");
    const Outcome outcome = transact(mStub, kGetPowerOnMode, {});
    EXPECT_EQ(outcome.status, BAD_VALUE);
    EXPECT_EQ(outcome.callbacks, 0);
    EXPECT_THAT(errors(), ElementsAre("getPowerOnMode() has no answer, call refused"));
}

TEST_F(StubTest, OnewayCallIsRefused) {
    load("");
    for (const Method& method : kMethods) {
        const Outcome outcome = transact(mStub, method.code, method.answered.front(),
                                         IMlkProjectConfigs::descriptor, IBinder::FLAG_ONEWAY);
        EXPECT_EQ(outcome.status, UNKNOWN_ERROR) << method.name;
        EXPECT_EQ(outcome.callbacks, 0);
    }
}

TEST_F(StubTest, CallForAnotherInterfaceIsRefused) {
    load("");
    for (const Method& method : kMethods) {
        const Outcome outcome = transact(mStub, method.code, method.answered.front(),
                                         "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs");
        EXPECT_EQ(outcome.status, BAD_TYPE) << method.name;
        EXPECT_EQ(outcome.callbacks, 0);
    }
}

TEST_F(StubTest, MissingArgumentIsRefused) {
    load("");
    for (const Method& method : kMethods) {
        Arguments arguments = method.answered.front();
        arguments.pop_back();
        const Outcome outcome = transact(mStub, method.code, arguments);
        EXPECT_NE(outcome.status, OK) << method.name;
        EXPECT_EQ(outcome.callbacks, 0);
    }
    EXPECT_THAT(errors(), IsEmpty()) << "the method was never called";
}

TEST_F(StubTest, UnknownCodeGoesToTheGeneratedStub) {
    load("");
    EXPECT_EQ(transact(mStub, 53, {}).status, ::android::UNKNOWN_TRANSACTION);
}

TEST_F(StubTest, AvrTextIsTakenAsThroughTheGeneratedStub) {
    load("");
    const sp<IBinder> generated = new BnHwMlkProjectConfigs(sp<IMlkProjectConfigs>(mService));
    for (const uint32_t code : {kSetAvrVendorId, kSetAvrOSDName}) {
        const Outcome expected = transactText(generated, code, "x");
        const Outcome outcome = transactText(mStub, code, "y");
        EXPECT_EQ(outcome.status, OK);
        EXPECT_EQ(outcome.callbacks, 1);
        EXPECT_EQ(outcome.numbers, expected.numbers);
        EXPECT_EQ(outcome.buffers, expected.buffers);
        EXPECT_THAT(outcome.buffers, ElementsAre(std::string("2:\1")));
    }
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre("mAvrVendorId:x", "mAvrVendorId:y", "mAvrOSDName:x",
                            "mAvrName:AVR_y_x.ini", "mAvrOSDName:y", "mAvrName:AVR_y_y.ini"));
}

TEST_F(StubTest, AvrTextThatDoesNotFitIsRefusedAndReported) {
    load("");
    EXPECT_EQ(transactText(mStub, kSetAvrVendorId, std::string(129, 'v')).status, BAD_VALUE);
    EXPECT_EQ(transactText(mStub, kSetAvrVendorId, std::string(100, 'v')).status, OK);
    const Outcome outcome = transactText(mStub, kSetAvrOSDName, std::string(30, 'n'));
    EXPECT_EQ(outcome.status, BAD_VALUE) << "each fits, but not the name that they make";
    EXPECT_EQ(outcome.callbacks, 0);
    EXPECT_THAT(errors(),
                ElementsAre("setAvrVendorId(a text of 129 bytes) has no answer, call refused",
                            "setAvrOSDName(a text of 30 bytes) has no answer, call refused"));
}

TEST_F(StubTest, AvrTextThatIsNotThereIsRefused) {
    load("");
    EXPECT_NE(transact(mStub, kSetAvrVendorId, {}).status, OK);
    EXPECT_NE(transact(mStub, kSetAvrOSDName, {7}).status, OK);
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG), IsEmpty());
}

// A service whose equaliser method answers as a test wants.
class OddService : public MlkProjectConfigs {
  public:
    Return<void> getEQPath(int32_t index, getEQPath_cb _hidl_cb) override {
        ++mCalls;
        for (int32_t i = 0; i < index; ++i) {
            _hidl_cb({true, std::to_string(i)});
        }
        if (index < 0) {
            return ::android::hardware::Status::fromExceptionCode(
                    ::android::hardware::Status::EX_ILLEGAL_STATE);
        }
        return {};
    }
    int mCalls = 0;
};

TEST_F(StubTest, MethodIsCalledOnceWhateverItDoes) {
    const sp<OddService> service = new OddService;
    mStub = new MlkProjectConfigsStub(sp<IMlkProjectConfigs>(service));
    EXPECT_EQ(transact(mStub, kGetEQPath, {0}).status, BAD_VALUE);
    EXPECT_EQ(service->mCalls, 1);
    EXPECT_EQ(transact(mStub, kGetEQPath, {1}).callbacks, 1);
    EXPECT_EQ(service->mCalls, 2);
    const Outcome twice = transact(mStub, kGetEQPath, {2});
    EXPECT_EQ(twice.status, OK);
    EXPECT_EQ(twice.callbacks, 1);
    EXPECT_THAT(twice.buffers, ElementsAre(std::string("24:\1"), std::string("2:0\0", 4)))
            << "the first answer counts";
    EXPECT_EQ(transact(mStub, kGetEQPath, {-1}).status, BAD_VALUE);
    EXPECT_EQ(service->mCalls, 4);
}

TEST_F(StubTest, InstallingMakesItTheStubOfTheInterface) {
    load("");
    installMlkProjectConfigsStub();
    const auto make = ::android::hardware::details::getBnConstructorMap().get(
            IMlkProjectConfigs::descriptor, nullptr);
    ASSERT_TRUE(make);
    const sp<IBinder> made = make(static_cast<IMlkProjectConfigs*>(mService.get()));
    EXPECT_NE(dynamic_cast<MlkProjectConfigsStub*>(made.get()), nullptr);
    EXPECT_EQ(transact(made, kGetEQPath, {2}).status, BAD_VALUE);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
