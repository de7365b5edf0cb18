#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "service/tests/ServiceProcess.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

inline constexpr const char* kProperties[] = {
        "persist.vendor.mlk.tv.enable_pvr", "persist.vendor.mlk.tv.enable_vga",
        "persist.vendor.mlk.tv.dtv_system", "persist.vendor.mlk.forcestr"};
inline constexpr int kNorway = 29;

/** The content of the files that the process writes, as the next start reads it. */
using State = std::map<std::string, std::string>;

/** A set with two models and two countries, one call of each kind, and the answers. */
class Scenario {
  public:
    Scenario() {
        write("customer.ini", "CUSTOMER_ID=1\nSYS_INI=/tvconfigs/sys.ini\n");
        write("sys.ini", "Model_1=/tvconfigs/model/A.ini\nModel_2=/tvconfigs/model/B.ini\n");
        for (const char* model : {"A", "B"}) {
            write(std::string("model/") + model + ".ini",
                  std::string("[PANEL]\nm_pPanelName=") + model +
                          "\n[LiveTV]\nTvConfig=/tvconfigs/tv.config\n[COUNTRY]\n"
                          "tvSysMap=/tvconfigs/tvsys.xml\nCOUNTRY_PATH=/tvconfigs/list\n"
                          "[KARAOKE]\nKARAOKE_CONFIG_PATH=/tvconfigs/karaoke.ini\n");
        }
        write("karaoke.ini", "[S]\nk=1\n");
        write("list", "GERMANY\nNORWAY\n");
        write("tvsys.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration><TvSystem type=\"DVB\">"
              "<Item category=\"[PANEL]\" key=\"m_pPanelName\" value=\"DVB\"/>"
              "</TvSystem></TvSystemConfigration>");
        write("countries.xml", country("GERMANY", "de") + country("NORWAY", "no"));
        write("tv_de.config", kTvConfig);
        write("tv_no.config", kTvConfig);
        write("other.config",
              "persist.vendor.mlk.tv.enable_vga=true\npersist.vendor.mlk.tv.enable_pvr=true\n"
              "persist.vendor.mlk.tv.dtv_system=4\n");
        mSet.dir().write("impdata/project_id.bin", "PROJECT_ID=1\n");
    }

    /**
     * Starts the process and makes the calls. Gives their answers; after the end of the process
     * "dead". `states` receives the content of the files after each call.
     */
    std::vector<std::string> run(const std::map<std::string, std::string>& environment,
                                 std::vector<State>* states = nullptr) {
        std::vector<std::string> answers;
        const auto next = [&](std::string answer) {
            answers.push_back(std::move(answer));
            if (states != nullptr) {
                states->push_back(state());
            }
        };
        if (states != nullptr) {
            states->push_back(state());
        }
        ServiceProcess server(environment);
        next(server.waitUntilRegistered() ? "started" : "dead");
        const auto project = IMlkProjectConfigs::tryGetService();
        const auto tv = IMlkTvConfigs::tryGetService();
        const auto framework = IMlkFrameworkConfigs::tryGetService();
        if (project != nullptr && tv != nullptr && framework != nullptr) {
            next(asked(*project, &IMlkProjectConfigs::setProjectId, 2));
            next(asked(*project, &IMlkProjectConfigs::setCountryId, kNorway));
            next(asked(*tv, &IMlkTvConfigs::setPvrEnabled, true));
            next(asked(*tv, &IMlkTvConfigs::reloadTvConfig, mSet.tvconfigs() + "/other.config"));
            next(asked(*tv, &IMlkTvConfigs::setVgaEnabled, false));
            next(asked(*framework, &IMlkFrameworkConfigs::setForceStrEnabled, false));
            next(asked(*project, &IMlkProjectConfigs::getProjectId));
            next(asked(*project, &IMlkProjectConfigs::getPanelName));
            next(asked(*tv, &IMlkTvConfigs::pvrEnabled));
            next(delivered(*project, mSet.tvconfigs() + "/list"));
        }
        if (mEnds) {
            server.process().wait();  // clients learn of the end before it is complete
        }
        mRuns = server.process().running();
        // The whole output of the process is here only after its end.
        server.process().kill(SIGKILL);
        server.process().wait();
        mLog = server.process().err();
        return answers;
    }
    /** To be called before a run in which the process ends. */
    void expectEnd() { mEnds = true; }
    void expectNoEnd() { mEnds = false; }
    bool runs() const { return mRuns; }
    const std::string& log() const { return mLog; }

    State state() const {
        const ::mlk::testing::LogCapture quiet;
        State state;
        state["project"] = read("impdata/project_id.bin");
        state["country"] = read("tvdata/tvsysmap/country_id.bin");
        for (const char* file : {"tv_de.config", "tv_no.config"}) {
            implementation::FileConfigEditor editor((mSet.tvconfigs() + "/" + file).c_str());
            state[file] = implementation::entriesOf(editor);
        }
        for (const char* property : kProperties) {
            state[property] = read(std::string("data/property/") + property);
        }
        return state;
    }
    std::string read(const std::string& file) const {
        return std::filesystem::exists(mSet.dir().path(file)) ? mSet.dir().read(file) : "none";
    }
    const ::mlk::testing::HostSet& set() const { return mSet; }

  private:
    static constexpr const char* kTvConfig =
            "# as delivered\npersist.vendor.mlk.tv.enable_pvr=false\n"
            "persist.vendor.mlk.tv.dtv_system=1\n";

    static std::string country(const std::string& name, const std::string& file) {
        return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name +
               "</COUNTRY_NAME><TV_SYSTEM>DVB</TV_SYSTEM><TV_CONFIG>/tvconfigs/tv_" + file +
               ".config</TV_CONFIG></COUNTRY_TVCONFIG_MAP>";
    }
    void write(const std::string& name, const std::string& text) const {
        mSet.dir().write("tvconfigs/" + name, text);
    }

    template <typename Interface, typename... Parameters, typename... Arguments>
    static std::string asked(Interface& object,
                             ::android::hardware::Return<void> (Interface::*method)(Parameters...),
                             const Arguments&... arguments) {
        std::string answer;
        const auto status = (object.*method)(arguments..., [&](const auto& got) {
            std::ostringstream text;
            text << got.success << " " << textOf(got.value);
            answer = text.str();
        });
        return status.isOk() ? answer : status.isDeadObject() ? "dead" : status.description();
    }
    static std::string delivered(IMlkProjectConfigs& project, const std::string& path) {
        std::string answer;
        const auto status = project.getTvFile(
                path, [&](const auto& bytes) { answer.assign(bytes.begin(), bytes.end()); });
        return status.isOk() ? answer : status.isDeadObject() ? "dead" : status.description();
    }
    static std::string textOf(const ::android::hardware::hidl_string& text) { return text; }
    static std::string textOf(int32_t number) { return std::to_string(number); }

    ::mlk::testing::HostSet mSet;
    bool mEnds = false;
    bool mRuns = false;
    std::string mLog;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0
