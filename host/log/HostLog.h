#pragma once

/// Where the Android log goes on a host: to standard error, in logcat's brief form, as far as
/// ANDROID_LOG_TAGS lets it through (LogFilter.h). Linking the library is enough; it installs
/// itself before main. The variable is read once.
///
/// A message of several lines is written with one write(2), each line with its prefix, so that
/// messages of different threads do not mix. When standard error is closed, broken or not read, the
/// message is lost; the process is neither stopped nor killed (LogOutput.h). What one client has a
/// service say is limited (LogClient.h, ClientLimits.h): the rest is left out, and counted.

/// Makes this the logger of liblog, with the least priority that the filter lets through; for
/// whoever has set another logger and puts things back. May be called from any thread.
extern "C" void mlk_host_log_install();
