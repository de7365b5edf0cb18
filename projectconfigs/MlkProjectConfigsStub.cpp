#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/MlkProjectConfigsStub.h"

#include <hidl/Static.h>
#include <log/log.h>
#include <vendor/morlak/mlkconfigs/1.0/hwtypes.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;
using ::android::status_t;
using ::android::hardware::hidl_string;
using ::android::hardware::IBinder;
using ::android::hardware::Parcel;
using ::android::hardware::Return;

namespace {

struct Transaction {
    const char* method;
    MlkProjectConfigs* implementation;
    const Parcel& data;
    Parcel* reply;
    const IBinder::TransactCallback& callback;
};

// Read arguments as generated code does.

status_t read(const Parcel& data, int32_t& argument) {
    return data.readInt32(&argument);
}

template <typename Enumeration, typename = std::enable_if_t<std::is_enum_v<Enumeration>>>
status_t read(const Parcel& data, Enumeration& argument) {
    uint32_t number = 0;
    const status_t status = data.readUint32(&number);
    argument = static_cast<Enumeration>(number);
    return status;
}

status_t read(const Parcel& data, const hidl_string** argument) {
    size_t parent = 0;
    const status_t status =
            data.readBuffer(sizeof(**argument), &parent, reinterpret_cast<const void**>(argument));
    return status != ::android::OK ? status : readEmbeddedFromParcel(**argument, data, parent, 0);
}

// Write the parts of an answer that are outside its struct, as generated code does.

status_t writeParts(const OptionalBool& /* answer */, Parcel* /* reply */, size_t /* parent */) {
    return ::android::OK;
}

status_t writeParts(const OptionalInt32& /* answer */, Parcel* /* reply */, size_t /* parent */) {
    return ::android::OK;
}

status_t writeParts(const OptionalString& answer, Parcel* reply, size_t parent) {
    return writeEmbeddedToParcel(answer, reply, parent, 0 /* parentOffset */);
}

template <typename Answer>
status_t send(const Transaction& transaction, const Answer& answer) {
    writeToParcel(::android::hardware::Status::ok(), transaction.reply);
    size_t parent = 0;
    status_t status = transaction.reply->writeBuffer(&answer, sizeof(answer), &parent);
    if (status == ::android::OK) {
        status = writeParts(answer, transaction.reply, parent);
    }
    transaction.callback(*transaction.reply);
    return status;
}

status_t refuse(const Transaction& transaction, const std::string& arguments) {
    ALOGE("%s(%s) has no answer, call refused", transaction.method, arguments.c_str());
    return ::android::BAD_VALUE;
}

template <typename... Arguments>
std::string listed(const Arguments&... arguments) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + std::to_string(static_cast<int32_t>(arguments))), ...);
    return list;
}

// Reads the arguments, calls the method and sends its answer. Its last parameter is the callback.
template <typename... Parameters, size_t... kArgument>
status_t call(const Transaction& transaction,
              Return<void> (IMlkProjectConfigs::*method)(Parameters...),
              std::index_sequence<kArgument...> /* all but the last */) {
    using AllParameters = std::tuple<Parameters...>;
    [[maybe_unused]] std::tuple<std::tuple_element_t<kArgument, AllParameters>...> arguments{};
    status_t status = ::android::OK;
    ((status = status == ::android::OK ? read(transaction.data, std::get<kArgument>(arguments))
                                       : status),
     ...);
    if (status != ::android::OK) {
        return status;
    }
    // The answer lives only during the callback, so it is sent there. The method is called only
    // once: the files may change between a trial and the call.
    bool answered = false;
    const auto onAnswer = [&](const auto& answer) {
        if (!answered) {
            answered = true;
            status = send(transaction, answer);
        }
    };
    const Return<void> result =
            (transaction.implementation->*method)(std::get<kArgument>(arguments)..., onAnswer);
    static_cast<void>(result.isOk());  // checked: the client is answered or refused in any case
    return answered ? status : refuse(transaction, listed(std::get<kArgument>(arguments)...));
}

template <typename... Parameters>
constexpr auto argumentsOf(Return<void> (IMlkProjectConfigs::* /* method */)(Parameters...)) {
    return std::make_index_sequence<sizeof...(Parameters) - 1>{};
}

template <auto kMethod>
status_t serve(const Transaction& transaction) {
    return call(transaction, kMethod, argumentsOf(kMethod));
}

// Serves a method that ends the process if its text does not fit. The trySet form checks and sets
// in one step, because another client may set the other text in between.
template <bool (MlkProjectConfigs::*kTrySet)(const hidl_string&)>
status_t serveAvrText(const Transaction& transaction) {
    const hidl_string* text = nullptr;
    const status_t status = read(transaction.data, &text);
    if (status != ::android::OK) {
        return status;
    }
    return (transaction.implementation->*kTrySet)(*text)
                   ? send(transaction, OptionalBool{true, true})
                   : refuse(transaction, "a text of " + std::to_string(text->size()) + " bytes");
}

// The methods that may give no answer or end the process. A code is the method's position in the
// interface, counted from 1.
struct Row {
    uint32_t code;
    const char* method;
    status_t (*serve)(const Transaction&);
};

constexpr Row kRows[] = {
        {14, "getEQPath", serve<&IMlkProjectConfigs::getEQPath>},
        {15, "getAMPSelection", serve<&IMlkProjectConfigs::getAMPSelection>},
        {16, "getAMPAddr", serve<&IMlkProjectConfigs::getAMPAddr>},
        {19, "getHDMIEdidPath", serve<&IMlkProjectConfigs::getHDMIEdidPath>},
        {20, "getHDMIHdcpPath", serve<&IMlkProjectConfigs::getHDMIHdcpPath>},
        {21, "getPowerOnMode", serve<&IMlkProjectConfigs::getPowerOnMode>},
        {32, "getTunerConfig", serve<&IMlkProjectConfigs::getTunerConfig>},
        {41, "setAvrVendorId", serveAvrText<&MlkProjectConfigs::trySetAvrVendorId>},
        {42, "setAvrOSDName", serveAvrText<&MlkProjectConfigs::trySetAvrOSDName>},
};

}  // namespace

status_t MlkProjectConfigsStub::onTransact(uint32_t code, const Parcel& data, Parcel* reply,
                                           uint32_t flags, TransactCallback callback) {
    for (const Row& row : kRows) {
        if (row.code != code) {
            continue;
        }
        if ((flags & IBinder::FLAG_ONEWAY) != 0) {
            return ::android::UNKNOWN_ERROR;
        }
        if (!data.enforceInterface(IMlkProjectConfigs::descriptor)) {
            return ::android::BAD_TYPE;
        }
        const sp<IMlkProjectConfigs> implementation = getImpl();
        return row.serve({row.method, static_cast<MlkProjectConfigs*>(implementation.get()), data,
                          reply, callback});
    }
    return BnHwMlkProjectConfigs::onTransact(code, data, reply, flags, std::move(callback));
}

void installMlkProjectConfigsStub() {
    auto& constructors = ::android::hardware::details::getBnConstructorMap();
    constructors.erase(IMlkProjectConfigs::descriptor);
    constructors.set(IMlkProjectConfigs::descriptor, [](void* interface) -> sp<IBinder> {
        return new MlkProjectConfigsStub(static_cast<IMlkProjectConfigs*>(interface));
    });
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
