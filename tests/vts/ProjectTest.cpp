// IMlkProjectConfigs against the files of this set.

#include <cutils/native_handle.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <thread>

#include "tests/vts/Hal.h"
#include "tests/vts/ProjectQuestions.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::sp;
using ::android::hidl::base::V1_0::IBase;

namespace {

/** A native handle of these descriptors. It does not own them. */
class Handle {
  public:
    explicit Handle(const std::vector<int>& descriptors)
        : mHandle(native_handle_create(static_cast<int>(descriptors.size()), 0)) {
        std::copy(descriptors.begin(), descriptors.end(), mHandle->data);
    }
    ~Handle() { native_handle_delete(mHandle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    const native_handle_t* get() const { return mHandle; }

  private:
    native_handle_t* const mHandle;
};

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer;
    ssize_t size = 0;
    while ((size = read(descriptor, buffer.data(), buffer.size())) > 0) {
        text.append(buffer.data(), static_cast<size_t>(size));
    }
    return text;
}

// The first line in which two texts differ.
std::string firstDifference(const std::string& answer, const std::string& expected) {
    const auto [a, e] =
            std::mismatch(answer.begin(), answer.end(), expected.begin(), expected.end());
    const auto lineAt = [](const std::string& text, std::string::const_iterator at) {
        const auto start = std::find(std::make_reverse_iterator(at), text.rend(), '\n').base();
        return std::string(start, std::find(at, text.end(), '\n'));
    };
    return "debug writes\n  " + lineAt(answer, a) + "\nand the set says\n  " + lineAt(expected, e);
}

}  // namespace

std::string dumpOf(const sp<IBase>& service) {
    int ends[2];
    if (pipe(ends) != 0) {
        ADD_FAILURE() << "no pipe";
        return {};
    }
    std::string text;
    std::thread reader([&] { text = readToEnd(ends[0]); });
    {
        const Handle handle({ends[1]});
        EXPECT_TRUE(service->debug(handle.get(), {}).isOk()) << "debug is refused";
    }
    close(ends[1]);
    reader.join();
    close(ends[0]);
    return text;
}

using ProjectTest = HalTest<IMlkProjectConfigs>;

class ProjectItems : public ProjectTest {};
TEST_P(ProjectItems, AreThoseOfTheSet) {
    check(itemQuestions(service, set));
}
MLK_ON_EVERY_INSTANCE(ProjectItems, IMlkProjectConfigs);

class ProjectLists : public ProjectTest {};
TEST_P(ProjectLists, AreThoseOfTheSet) {
    check(listQuestions(service, set));
}
MLK_ON_EVERY_INSTANCE(ProjectLists, IMlkProjectConfigs);

class ProjectCustomerFiles : public ProjectTest {};
TEST_P(ProjectCustomerFiles, AreThoseOfTheSet) {
    check(customerFileQuestions(service, set));
}
MLK_ON_EVERY_INSTANCE(ProjectCustomerFiles, IMlkProjectConfigs);

class ProjectAudio : public ProjectTest {};
TEST_P(ProjectAudio, DelaysAreTheSumsOfTheFiles) {
    check(audioQuestions(service, set, avrInUse(service, set)));
}
MLK_ON_EVERY_INSTANCE(ProjectAudio, IMlkProjectConfigs);

class ProjectFiles : public ProjectTest {};
TEST_P(ProjectFiles, AreDeliveredByteForByte) {
    check(fileQuestions(service, set));
}
MLK_ON_EVERY_INSTANCE(ProjectFiles, IMlkProjectConfigs);

class ProjectFrequencies : public ProjectTest {};
TEST_P(ProjectFrequencies, AreThoseOfEveryCountrysTables) {
    for (const Question& list : listQuestions(service, set)) {
        static_cast<void>(list.ask());
    }
    const Questions questions = frequencyQuestions(service, set);
    for (const Question& question : questions) {
        static_cast<void>(question.ask());
    }
    check(questions);
}
MLK_ON_EVERY_INSTANCE(ProjectFrequencies, IMlkProjectConfigs);

class ProjectDump : public ProjectTest {};
TEST_P(ProjectDump, HoldsTheItemsAndTheAudioFiles) {
    const std::string dump = dumpOf(service);
    const std::string expected = set.dump(set.furtherAudioFiles(dump));
    EXPECT_TRUE(dump == expected) << firstDifference(dump, expected);
}
TEST_P(ProjectDump, WantsExactlyOneDescriptor) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        const Handle none({});
        const Handle both({ends[1], ends[1]});
        EXPECT_TRUE(service->debug(none.get(), {}).isOk());
        EXPECT_TRUE(service->debug(both.get(), {}).isOk());
        EXPECT_TRUE(service->debug(nullptr, {}).isOk());
    }
    close(ends[1]);
    EXPECT_EQ(readToEnd(ends[0]), "");
    close(ends[0]);
}
TEST_P(ProjectDump, CostsNothingWhereNobodyReads) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const Handle handle({ends[1]});
    EXPECT_TRUE(service->debug(handle.get(), {}).isOk());
    close(ends[1]);
    EXPECT_FALSE(dumpOf(service).empty());
}
MLK_ON_EVERY_INSTANCE(ProjectDump, IMlkProjectConfigs);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
