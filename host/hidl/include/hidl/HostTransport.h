// Visibility of members that only the host's transport and its tests use.
#pragma once

// Begins the members that the real class does not have. They are public for targets built with
// MLK_HOST_TRANSPORT and private for all others, so that code that compiles on a host also compiles
// against the real headers.
#ifdef MLK_HOST_TRANSPORT
#define MLK_HOST_TRANSPORT_ONLY public:
#else
#define MLK_HOST_TRANSPORT_ONLY private:
#endif
