#include "host/memory/MappedMemory.h"

#include <sys/mman.h>

namespace mlk::host {

using ::android::hardware::Return;
using ::android::hardware::Status;
using ::android::hardware::Void;

MappedMemory::~MappedMemory() {
    (void)munmap(mAddress, mSize);
}

Return<void> MappedMemory::announce(uint64_t start, uint64_t length) const {
    if (start > mSize || length > mSize - start) {
        return Status::fromExceptionCode(Status::EX_ILLEGAL_ARGUMENT,
                                         "the range does not lie in the block");
    }
    return Void();
}

Return<void> MappedMemory::update() {
    return Void();
}

Return<void> MappedMemory::updateRange(uint64_t start, uint64_t length) {
    return announce(start, length);
}

Return<void> MappedMemory::read() {
    return Void();
}

Return<void> MappedMemory::readRange(uint64_t start, uint64_t length) {
    return announce(start, length);
}

Return<void> MappedMemory::commit() {
    return Void();
}

Return<void*> MappedMemory::getPointer() {
    return mAddress;
}

Return<uint64_t> MappedMemory::getSize() {
    return uint64_t{mSize};
}

}  // namespace mlk::host
