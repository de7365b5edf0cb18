// What only the host's transport and its tests see.
#pragma once

// Begins the part of a class that the real one does not have. It is public for targets that are
// built with MLK_HOST_TRANSPORT. For everybody else it is private, so that what compiles on a host
// compiles against the real headers, too.
#ifdef MLK_HOST_TRANSPORT
#define MLK_HOST_TRANSPORT_ONLY public:
#else
#define MLK_HOST_TRANSPORT_ONLY private:
#endif
