#pragma once

/// Limits of system properties, in bytes with the NUL at the end; <cutils/properties.h> builds on
/// them.

/// Once the longest name; only still there for buffers that are sized by it. Names may be longer.
#define PROP_NAME_MAX 32

/// A value has at most PROP_VALUE_MAX - 1 bytes.
#define PROP_VALUE_MAX 92
