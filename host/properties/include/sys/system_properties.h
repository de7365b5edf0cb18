#pragma once

// Limits of system properties, in bytes including the final NUL; <cutils/properties.h> uses them.

// The former limit of names, kept for buffers of this size. Names may be longer.
#define PROP_NAME_MAX 32

// A value has at most PROP_VALUE_MAX - 1 bytes.
#define PROP_VALUE_MAX 92
