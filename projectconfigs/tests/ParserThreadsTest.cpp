#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/LogCapture.h"
#include "host/testing/QuietLog.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/tests/ProjectFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

// Threads that read while others rebuild. All that one call sees belongs to one state.
TEST(ParserThreadsTest, ReadersSeeOneWholeSetWhileItIsRebuilt) {
    mlk::testing::LogCapture log;
    ProjectFiles files;
    // The texts are long, because the thread sanitizer does not see the assignment of short ones.
    const std::string customer(60, 'c');
    files.customer("CUSTOMER_ID=" + customer + "\nSYS_INI=/tvconfigs/sys.ini\n");
    files.system("Model_1=/tvconfigs/model/A.ini\nModel_2=/tvconfigs/model/B.ini\n");
    files.write("model/A.ini", "[S]\nk=A\nl=A\n");
    files.write("model/B.ini", "[S]\nk=B\nl=B\n");
    files.update();

    const mlk::testing::QuietLog quiet;
    ItemStore values;
    for (const char* const key : {"k", "l", "absent"}) {
        values.insert(values.section("[S]"), key, std::string(60, 'v'));
    }
    static_cast<void>(values.inOrder());  // sorts them before other threads look
    constexpr int kRounds = 200;
    std::atomic<int> writers = 2;
    std::atomic<int> torn = 0;
    std::vector<std::thread> threads;
    for (int id = 1; id <= 2; ++id) {
        threads.emplace_back([&, id] {
            for (int round = 0; round < kRounds; ++round) {
                files.update(id);
                files.parser().setInfos(values);
            }
            --writers;
        });
    }
    threads.emplace_back([&] {
        while (writers > 0) {
            const auto items = files.parser().getInfosByCategory("[S]");
            torn += items.size() != 2 || items.at("k") != items.at("l") ? 1 : 0;
            log.clear();
        }
    });
    threads.emplace_back([&] {
        while (writers > 0) {
            std::vector<std::string> list;
            files.parser().getProjectIniList(list);
            torn += list != std::vector<std::string>{"A.ini", "B.ini"} ? 1 : 0;
            torn += files.parser().getProjectMaxIdx() != 2 ? 1 : 0;
        }
    });
    threads.emplace_back([&] {
        while (writers > 0) {
            std::ostringstream out;
            files.parser().dump(out);
            files.parser().dump();
            files.parser().dumpDetail();
        }
    });
    // Each of these asks for one thing, so that it is nearly always about to ask.
    threads.emplace_back([&] {
        while (writers > 0) {
            torn += files.get("[S]", "k").empty() ? 1 : 0;
        }
    });
    threads.emplace_back([&] {
        while (writers > 0) {
            torn += files.parser().getCustomerId() != customer ? 1 : 0;
        }
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
}

TEST(ParserThreadsTest, AuxiliaryFilesAreLoadedWhileTheyAreRead) {
    mlk::testing::LogCapture log;
    const mlk::testing::TempDir dir;
    IniProjectParser parser;
    parser.update(dir.write("first.ini", "[S]\nk=v\n").c_str());
    std::atomic<bool> loading = true;
    std::atomic<int> wrong = 0;
    std::thread reader([&] {
        while (loading) {
            wrong += parser.getInfo("first.ini", ConfigKey("[S]", "k")) != "v" ? 1 : 0;
            wrong += parser.findItem("first.ini") ? 0 : 1;
            std::ostringstream out;
            parser.dump(out);
            parser.dumpDetail();
            log.clear();
        }
    });
    for (int i = 0; i < 100; ++i) {
        const std::string name = std::to_string(i) + ".ini";
        parser.update(dir.write(name, "[S]\nk=" + name + "\n").c_str());
        wrong += parser.getInfo(name.c_str(), ConfigKey("[S]", "k")) != name ? 1 : 0;
    }
    loading = false;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
