#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

/**
 * Writes the files of a set with one project into its partitions: panel "PANEL_ONE", and the TV
 * feature file "/tvconfigs/one/tv.config" unless `tvConfigLine` says otherwise.
 */
void writeProject(const ::mlk::testing::HostSet& set,
                  const std::string& tvConfigLine = "TvConfig = \"/tvconfigs/one/tv.config\"\n");

/** Makes the registration of a name fail: puts something there that cannot be replaced. */
void blockName(const ::mlk::testing::HostSet& set, const std::string& interface);

/**
 * The allocator of shared memory on the set that the environment names, registered. If `starter`
 * is given ("prlimit", "--fsize=4096"), that runs it.
 */
std::unique_ptr<::mlk::testing::Process> startAllocator(std::vector<std::string> starter = {});

/**
 * The real process, on the set that the environment names. It ends with the object. A finding of a
 * sanitizer in it fails the test.
 */
class ServiceProcess {
  public:
    /**
     * `environment` has variables for the process beside those of the test; `starter` runs it when
     * that is given, as with startAllocator.
     */
    ServiceProcess() : ServiceProcess(std::map<std::string, std::string>()) {}
    explicit ServiceProcess(std::map<std::string, std::string> environment,
                            std::vector<std::string> starter = {});
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /**
     * Waits until the last of its services can be reached; false if the process ended, or after
     * half a minute.
     */
    bool waitUntilRegistered();

    ::mlk::testing::Process& process() { return *mProcess; }

    /** Kills it and starts another one, in the test's own environment if `environment` is empty. */
    void restart(std::map<std::string, std::string> environment = {});

  private:
    void end();

    const std::vector<std::string> mStarter;
    std::unique_ptr<::mlk::testing::Process> mProcess;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0
