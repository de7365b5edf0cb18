#pragma once

#include <string>

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
