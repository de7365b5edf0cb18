// The setters of IMlkProjectConfigs. Each test restores what it changes.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "projectconfigs/testing/PlainRules.h"
#include "tests/vts/Hal.h"
#include "tests/vts/ProjectQuestions.h"
#include "tests/vts/Restore.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::hardware::hidl_string;

namespace {

using I = IMlkProjectConfigs;

constexpr int32_t kMostProjects = 32;

}  // namespace

class ProjectWrites : public HalWriteTest<IMlkProjectConfigs> {
  protected:
    void SetUp() override {
        HalWriteTest<IMlkProjectConfigs>::SetUp();
        if (service == nullptr || IsSkipped()) {
            return;
        }
        mFormer = set.projectId;
        // The service reads the map of channel plans once, at the first call.
        static_cast<void>(ask(*service, MLK_METHOD(I, getFreqTableList), 0,
                              FreqTableType::DTV_ANTENNA, AtscCableType::AUTO));
    }

    void TearDown() override {
        if (service != nullptr) {
            // Without a model there is no index to restore, but the files are read again.
            EXPECT_EQ(setProjectId(isSelected() ? mFormer : maxIndex() + 1),
                      isSelected() ? "true" : "false")
                    << "setProjectId does not go back";
            mProjectFile.restore();
            mCountryFile.restore();
            // Restores the items of the saved country, and saves nothing.
            EXPECT_EQ(setCountryId(-1), "false") << "setCountryId(-1)";
            check(itemQuestions(service, PlainSet()));
        }
        HalWriteTest<IMlkProjectConfigs>::TearDown();
    }

    /** True if the setters accept the index of the start. */
    bool isSelected() const { return mFormer >= 1 && mFormer <= maxIndex(); }
    int32_t maxIndex() const { return static_cast<int32_t>(set.chain.maxIdx()); }
    std::string setProjectId(int32_t index) {
        return ask(*service, MLK_METHOD(I, setProjectId), index);
    }
    std::string setProjectIdWithPid(int32_t index) {
        return ask(*service, MLK_METHOD(I, setProjectIdWithPid), index,
                   hidl_string("VtsHalMlkConfigsV1_0TargetTest"), getpid());
    }
    std::string setCountryId(int32_t country) {
        return ask(*service, MLK_METHOD(I, setCountryId), country);
    }

    // The service has the items of the model's files, and has saved the index.
    void expectSelected(const std::string& call, int32_t index) {
        SCOPED_TRACE(call + "(" + std::to_string(index) + ")");
        set.selectProject(index);
        check(itemQuestions(service, set));
        if (index != mFormer) {
            EXPECT_EQ(plain::contentOf(set.projectIdPath()),
                      "PROJECT_ID=" + std::to_string(index) + "\n")
                    << call;
        }
    }

  private:
    int32_t mFormer = 0;
    const FileGuard mProjectFile{set.projectIdPath()};
    const FileGuard mCountryFile{set.countryIdPath()};
};

TEST_P(ProjectWrites, EveryModelCanBeSelected) {
    if (!isSelected()) {
        GTEST_SKIP() << "no model is selected, and there would be no way back: " << set.projectId;
    }
    for (int32_t index = 1; index <= std::min(maxIndex(), kMostProjects); ++index) {
        EXPECT_EQ(setProjectId(index), "true") << "setProjectId(" << index << ")";
        expectSelected("setProjectId", index);
    }
    for (int32_t index = std::min(maxIndex(), kMostProjects); index >= 1; --index) {
        EXPECT_EQ(setProjectIdWithPid(index), "true") << "setProjectIdWithPid(" << index << ")";
        expectSelected("setProjectIdWithPid", index);
    }
}

TEST_P(ProjectWrites, AModelThatIsNoneIsRefused) {
    const std::string saved = plain::contentOf(set.projectIdPath());
    const int32_t above = maxIndex() + 1;
    for (const int32_t index : {0, -1, above, 0x7fffffff}) {
        EXPECT_EQ(setProjectIdWithPid(index), "false") << "setProjectIdWithPid(" << index << ")";
    }
    check(itemQuestions(service, set));
    for (const int32_t index : {0, -1}) {
        EXPECT_EQ(setProjectId(index), "false") << "setProjectId(" << index << ")";
    }
    check(itemQuestions(service, set));
    // The files may have changed: for an index above the highest, the service reads them again.
    EXPECT_EQ(setProjectId(above), "false") << "setProjectId(" << above << ")";
    set.readProjectAgain();
    check(itemQuestions(service, set));
    EXPECT_EQ(plain::contentOf(set.projectIdPath()), saved);
}

TEST_P(ProjectWrites, CountriesBringTheirItems) {
    std::vector<int32_t> countries;
    for (const std::string& name :
         plain::listEntries(plain::contentOf(set.value("[COUNTRY]", "COUNTRY_PATH")))) {
        const plain::Names known = plain::countries();
        if (known.count(name) != 0) {
            countries.push_back(known.at(name));
        }
    }
    countries.push_back(14);
    for (const int32_t country : countries) {
        SCOPED_TRACE("setCountryId(" + std::to_string(country) + ")");
        EXPECT_EQ(setCountryId(country), "true") << "setCountryId";
        set.applyCountry(country);
        EXPECT_EQ(plain::contentOf(set.countryIdPath()),
                  "COUNTRY_ID=" + std::to_string(country) + "\n")
                << "setCountryId";
        check(itemQuestions(service, set));
        if (HasFailure()) {
            return;
        }
    }
}

MLK_ON_EVERY_INSTANCE(ProjectWrites, IMlkProjectConfigs);

/**
 * The texts of the AVR have no getters. The test leaves them empty, and the name of an AVR without
 * a file in use, which gives the delays of a start. The AVR sets its texts again when it is
 * announced.
 */
class AvrWrites : public HalWriteTest<IMlkProjectConfigs> {
  protected:
    void TearDown() override {
        if (service != nullptr) {
            const AuxiliaryFile none = {"AVR_none_none.ini", {}};
            for (const char* text : {"none", ""}) {
                EXPECT_EQ(setVendorId(text), "true") << "setAvrVendorId";
                EXPECT_EQ(setOSDName(text), "true") << "setAvrOSDName";
            }
            check(audioQuestions(service, set, none));
        }
        HalWriteTest<IMlkProjectConfigs>::TearDown();
    }

    std::string setVendorId(const std::string& text) {
        return ask(*service, MLK_METHOD(I, setAvrVendorId), hidl_string(text));
    }
    std::string setOSDName(const std::string& text) {
        return ask(*service, MLK_METHOD(I, setAvrOSDName), hidl_string(text));
    }
};

TEST_P(AvrWrites, TheFileOfTheAvrCounts) {
    for (const auto& [vendorId, osdName] : set.avrs()) {
        SCOPED_TRACE("setAvrVendorId(" + vendorId + "), setAvrOSDName(" + osdName + ")");
        EXPECT_EQ(setVendorId(vendorId), "true") << "setAvrVendorId";
        EXPECT_EQ(setOSDName(osdName), "true") << "setAvrOSDName";
        const std::string name = "AVR_" + vendorId + "_" + osdName + ".ini";
        check(audioQuestions(service, set, set.avrFile(name)));
        const std::string dump = dumpOf(service);
        EXPECT_EQ(dump, set.dump(set.furtherAudioFiles(dump))) << "debug after setAvrOSDName";
    }
}

TEST_P(AvrWrites, ATextThatDoesNotFitIsRefused) {
    const AuxiliaryFile avr = avrInUse(service, set);
    for (const size_t size : {129U, 4000U}) {
        EXPECT_EQ(setVendorId(std::string(size, 'v')), kRefused) << "setAvrVendorId";
        EXPECT_EQ(setOSDName(std::string(size, 'o')), kRefused) << "setAvrOSDName";
    }
    check(audioQuestions(service, set, avr));
}

MLK_ON_EVERY_INSTANCE(AvrWrites, IMlkProjectConfigs);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
