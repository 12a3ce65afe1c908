#include "SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>

namespace tilewright {

SharedMemory::SharedMemory(std::size_t size)
    : file_(::memfd_create("tilewright-overlay", MFD_CLOEXEC | MFD_ALLOW_SEALING))
    , size_(size) {
    if (!file_.isOpen() || ::ftruncate(file_.number(), static_cast<off_t>(size)) != 0)
        return;
    // Spares the other side the precautions against memory that goes away beneath it.
    ::fcntl(file_.number(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_SEAL);
    // All of it is about to be painted: made piece by piece, as each is touched, it takes much
    // longer.
    void* data = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                        file_.number(), off_t{0});
    if (data != MAP_FAILED)
        data_ = static_cast<unsigned char*>(data);
}

SharedMemory::~SharedMemory() {
    if (data_)
        ::munmap(data_, size_);
}

} // namespace tilewright
