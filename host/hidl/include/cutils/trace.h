// The trace marks that generated code makes around each call. A workstation has nobody who reads
// them, so they do nothing here: not even the call that asks whether somebody does.
#pragma once

#include <cutils/compiler.h>  // generated code gets CC_UNLIKELY from here
#include <stdint.h>

/** The tag of interfaces between processes. */
#define ATRACE_TAG_HAL (1U << 11)

/** Begins a mark; does nothing. */
inline void atrace_begin(uint64_t /* tag */, const char* /* name */) {}

/** Ends the mark that began last; does nothing. */
inline void atrace_end(uint64_t /* tag */) {}
