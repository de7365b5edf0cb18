// Tells the thread sanitizer about Debian's libutils, which counts references and is compiled
// without it. To the sanitizer, an object's destructor would race with everything that another
// thread did with the object before it dropped its reference. The linker replaces the library's
// functions by these (--wrap, see CMakeLists.txt), which report the order.
//
// Only in programs that are built with the sanitizer.
#include <sanitizer/tsan_interface.h>
#include <utils/RefBase.h>

extern "C" {

void __real__ZNK7android7RefBase9decStrongEPKv(const android::RefBase* object, const void* id);
void __real__ZN7android7RefBase15onLastStrongRefEPKv(android::RefBase* object, const void* id);

// RefBase::decStrong
void __wrap__ZNK7android7RefBase9decStrongEPKv(const android::RefBase* object, const void* id) {
    __tsan_release(const_cast<android::RefBase*>(object));
    __real__ZNK7android7RefBase9decStrongEPKv(object, id);
}

// RefBase::onLastStrongRef, called when the count has reached zero and before the destructor
void __wrap__ZN7android7RefBase15onLastStrongRefEPKv(android::RefBase* object, const void* id) {
    __tsan_acquire(object);
    __real__ZN7android7RefBase15onLastStrongRefEPKv(object, id);
}

}  // extern "C"
