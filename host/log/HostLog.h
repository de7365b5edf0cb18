#pragma once

// Sends the Android log of a host to standard error, in logcat's brief form, filtered by
// ANDROID_LOG_TAGS (LogFilter.h). Linking the library is enough; it installs itself before main. It
// reads the variable once.
//
// A message of several lines is written with one write(2), each line with its prefix, so that
// messages of different threads do not mix. When standard error is closed, broken or not read, the
// message is lost; the process is neither stopped nor killed (LogOutput.h). What one client can
// make a service log is limited (LogClient.h, ClientLimits.h): the rest is left out and counted.

/**
 * Makes this the logger of liblog, with the lowest priority that the filter lets through. Use it to
 * restore the logger after setting another one. Thread-safe.
 */
extern "C" void mlk_host_log_install();
