// Writes inputs for the fuzzer of calls: each method as a client calls it, with arguments of the
// sample, and the methods that change something one after the other. Argument: the folder.

#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/BpHwMlkTvConfigs.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <utility>

#include "host/testing/fuzz/Fuzzing.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/fuzz/CallScript.h"

using namespace vendor::morlak::mlkconfigs::V1_0;
namespace fuzzing = mlk::fuzzing;
using android::hardware::IBinder;
using android::hardware::Parcel;
using fuzzing::CallScript;

namespace {

// The arguments of the calls of one round.
struct Arguments {
    uint8_t number;
    const char* text;
    const char* category;
    const char* key;
};

constexpr uint32_t kTogether = 6;

constexpr Arguments kRounds[] = {
        {0, "", "", ""},
        {1, "$/tvconfigs/tv.config", "[LiveTV]", "TvConfig"},
        {2, "ARC", "[SPEAKER]", "HDMI_DELAY"},
        {3, "[AUDIO]", "[MCCS]", "I2C_ADDRESS"},
        {14, "\"$/tvconfigs/customer.ini\"", "[KEYS]", "KEY_POWER"},
        {44, "$/tvconfigs/nothing", "[MICROPHONE]", "MIC_COUNT"},
};

// Writes what a proxy sends as a script.
class Recorder : public IBinder {
  public:
    Recorder(size_t service, const Arguments& arguments)
        : mService(service), mArguments(arguments) {}

    android::status_t transact(uint32_t code, const Parcel& data, Parcel* /* reply */,
                               uint32_t /* flags */, TransactCallback /* callback */) override {
        const std::vector<uint32_t>& codes = fuzzing::codesOf(mService);
        const auto method = std::find(codes.begin(), codes.end(), code) - codes.begin();
        const auto token = strlen(reinterpret_cast<const char*>(data.data().data())) + 1;
        const size_t numbers = (data.data().size() - (token + 3) / 4 * 4) / 4;
        std::vector<uint8_t> bytes;
        for (size_t i = 0; i < numbers; ++i) {
            bytes.insert(bytes.end(), {mArguments.number, 0, 0, 0});
        }
        fuzzing::ScriptWriter objects;
        const size_t count = record(data.objects(), objects);
        mWriter.call(mService, static_cast<size_t>(method), 0, bytes, count);
        mScript += mWriter.bytes() + objects.bytes();
        mWriter = {};
        return android::UNKNOWN_ERROR;
    }
    android::status_t linkToDeath(const android::sp<DeathRecipient>&) override {
        return android::INVALID_OPERATION;
    }
    android::status_t unlinkToDeath(const android::wp<DeathRecipient>&) override {
        return android::INVALID_OPERATION;
    }
    const std::string& script() const { return mScript; }

  private:
    // A struct and the texts in it are one object of a script.
    size_t record(const std::vector<Parcel::Object>& objects, fuzzing::ScriptWriter& out) const {
        size_t count = 0;
        for (size_t i = 0; i < objects.size(); ++count) {
            size_t texts = 0;
            while (i + 1 + texts < objects.size() && objects[i + 1 + texts].hasParent) {
                ++texts;
            }
            if (texts == 1) {
                out.byte(CallScript::TEXT);
                out.text(mArguments.text);
            } else {
                fuzzing::require(texts == 2, "structs have one text or two");
                out.byte(CallScript::KEY);
                out.text(mArguments.category);
                out.text(mArguments.key);
            }
            i += 1 + texts;
        }
        return count;
    }

    const size_t mService;
    const Arguments mArguments;
    fuzzing::ScriptWriter mWriter;
    std::string mScript;
};

class Seeds {
  public:
    explicit Seeds(std::string folder) : mFolder(std::move(folder)) {}

    template <typename Proxy, typename Interface>
    void writeMethods(size_t service) {
        for (size_t round = 0; round < std::size(kRounds); ++round) {
            std::string several;
            for (const auto& row : methodRows<Interface>()) {
                const android::sp<Recorder> recorder = new Recorder(service, kRounds[round]);
                const android::sp<Interface> proxy = new Proxy(recorder);
                int answers = 0;
                (void)row.call(*proxy, &answers);
                const bool isSame = round > 0 && recorder->script() == mWritten[row.name];
                if (!isSame) {
                    write(row.name + ("." + std::to_string(round)), recorder->script());
                }
                mWritten[row.name] = recorder->script();
                // Calls may depend on those before them.
                several += recorder->script();
                if (row.code % kTogether == 0) {
                    write(std::string("to.") + row.name + "." + std::to_string(round), several);
                    several.clear();
                }
            }
        }
    }
    void writeBaseMethods() {
        for (size_t service = 0; service < fuzzing::services().size(); ++service) {
            fuzzing::ScriptWriter script;
            const size_t methods = fuzzing::codesOf(service).size();
            for (size_t method = methods - 10; method < methods; ++method) {
                script.call(service, method, 0, {1, 0, 0, 0}, 3);
                // A handle of one descriptor, and an empty vector.
                for (const int byte : {+CallScript::HANDLE, +CallScript::kNoParent, 0, 1, 0}) {
                    script.byte(static_cast<size_t>(byte));
                }
                script.byte(CallScript::BUFFER);
                script.byte(CallScript::kNoParent);
                script.byte(0);
                script.text(std::string(16, '\0'));
                script.byte(CallScript::BUFFER);
                script.byte(1);
                script.byte(0);
                script.text("");
            }
            write("base." + std::to_string(service), script.bytes());
        }
    }

  private:
    void write(const std::string& name, const std::string& script) const {
        fuzzing::writeFile(mFolder + "/" + name, script);
    }

    const std::string mFolder;
    std::map<std::string, std::string> mWritten;
};

}  // namespace

int main(int argc, char** argv) {
    fuzzing::require(argc == 2, "the argument is a folder");
    Seeds seeds(argv[1]);
    seeds.writeMethods<BpHwMlkProjectConfigs, IMlkProjectConfigs>(0);
    seeds.writeMethods<BpHwMlkTvConfigs, IMlkTvConfigs>(1);
    seeds.writeMethods<BpHwMlkFrameworkConfigs, IMlkFrameworkConfigs>(2);
    seeds.writeBaseMethods();
    return 0;
}
