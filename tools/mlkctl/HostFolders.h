#pragma once

#include <optional>
#include <string>
#include <string_view>

/**
 * Where a Linux host keeps what a device's runtime has of its own, for messages. On a device all
 * texts are empty.
 */
namespace mlk::ctl {

/** The folder of the services' sockets. */
std::string runtimeFolder();

/**
 * The folder of the services' sockets, why it is that one, and what stands in it, for the end of a
 * message: "; sockets are looked for in /run/mlkconfigs (MLK_RUNTIME_DIR), which does not exist".
 */
std::string aboutSockets();

/**
 * The same for one socket: ": no socket NAME in /run/mlkconfigs (MLK_RUNTIME_DIR): the folder is
 * empty".
 */
std::string aboutSocket(const std::string& name);

/** The name of the socket of one of the service's interfaces: "IMlkTvConfigs". */
std::string socketOf(std::string_view interface);

/**
 * The process that has this socket, if it closes a new connection at once: it has too many, or no
 * descriptors are left for them. Nothing for a socket whose process welcomes connections or is
 * silent, for one without a process, and on a device.
 */
std::optional<int> processRefusing(const std::string& name);

/**
 * What that means and what to do, for a message: "process 17 has the socket but refuses the
 * connection, ...".
 */
std::string aboutRefusal(int process);

/** The file of a property. */
std::string propertyFile(const std::string& key);

/**
 * What was looked for if MLK_ROOT names a folder that is no set: one that has neither tvconfigs/
 * nor a property store. Empty for a set.
 */
std::string aboutMissingSet();

/** The folder of the properties, and why there are none: "/x/data/property does not exist". */
std::string aboutProperties();

}  // namespace mlk::ctl
