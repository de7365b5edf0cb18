#pragma once

#include <sstream>
#include <string>

#include "host/testing/TempDir.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The private functions of a ProjectParser. */
struct ProjectParserPeer {
    static void parseProjectIni(ProjectParser& parser, const char* path) {
        parser.mReader.parse_project_ini(path, parser.mItems);
    }
};

/** A small set in its own folder: three mount points and a parser on them. */
class ProjectFiles {
  public:
    /** A customer file, a system file with one model and that model's file. */
    void writeSet(const std::string& projectText) const {
        customer("CUSTOMER_ID=1\nSYS_INI=/tvconfigs/sys.ini\n");
        system("Model_1=/tvconfigs/model/A.ini\n");
        write("model/A.ini", projectText);
    }
    void customer(const std::string& text) const { write("customer.ini", text); }
    void system(const std::string& text) const { write("sys.ini", text); }
    std::string write(const std::string& name, const std::string& text) const {
        return mDir.write("tvconfigs/" + name, text);
    }

    void update(int projectId = 1, const std::string& boardId = "DEFAULT_BOARD_ID") {
        mParser.update((mTvconfigs + "/customer.ini").c_str(), projectId, boardId);
    }
    std::string get(const std::string& category, const std::string& key) const {
        return mParser.getInfo(ConfigKey(category, key));
    }
    /** The items as the stream dump has them: "[S]:key=value;" and so on. */
    std::string items() const {
        std::string text;
        const std::string all = dump();
        for (size_t at = all.find("\n    "); at != std::string::npos; at = all.find("\n    ", at)) {
            at += 5;
            text += all.substr(at, all.find('\n', at) - at) + ";";
            --at;
        }
        return text;
    }
    std::string dump() const {
        std::ostringstream out;
        mParser.dump(out);
        return out.str();
    }
    ProjectParser& parser() { return mParser; }
    const std::string& tvconfigs() const { return mTvconfigs; }
    const std::string& tvdata() const { return mTvdata; }
    const std::string& impdata() const { return mImpdata; }
    const mlk::testing::TempDir& dir() const { return mDir; }

  private:
    const mlk::testing::TempDir mDir;
    const std::string mTvconfigs = mDir.mkdir("tvconfigs");
    const std::string mTvdata = mDir.mkdir("tvdata");
    const std::string mImpdata = mDir.mkdir("impdata");
    ProjectParser mParser{mTvdata.c_str(), mTvconfigs.c_str(), mImpdata.c_str()};
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
