#include "CalmMemory.h"

#include <QGuiApplication>
#include <cstdint>
#include <cstdlib>
#include <link.h>
#include <span>
#include <sys/mman.h>
#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace tilewright {
namespace {

using Segments = std::span<const ElfW(Phdr)>;

/// Whether the loader has written into the object's code: its pages are not those of the file then.
bool isCodeRelocated(const dl_phdr_info& object) {
    for (const ElfW(Phdr) & segment : Segments(object.dlpi_phdr, object.dlpi_phnum)) {
        if (segment.p_type != PT_DYNAMIC)
            continue;
        const auto* entry = reinterpret_cast<const ElfW(Dyn)*>(object.dlpi_addr + segment.p_vaddr);
        for (; entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_TEXTREL ||
                (entry->d_tag == DT_FLAGS && (entry->d_un.d_val & DF_TEXTREL) != 0))
                return true;
        }
    }
    return false;
}

int giveBackCodeOf(dl_phdr_info* object, std::size_t /*size*/, void* /*data*/) {
    constexpr int next = 0;
    if (isCodeRelocated(*object))
        return next;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (const ElfW(Phdr) & segment : Segments(object->dlpi_phdr, object->dlpi_phnum)) {
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0)
            continue;
        const std::uintptr_t first = object->dlpi_addr + segment.p_vaddr;
        const std::uintptr_t begin = first / page * page;
        const std::uintptr_t end = (first + segment.p_filesz + page - 1) / page * page;
        // Where the system refuses, as for its own part of the program, all stays as it is.
        static_cast<void>(madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED));
    }
    return next;
}

} // namespace

void giveBackCode() {
    dl_iterate_phdr(giveBackCodeOf, nullptr);
}

void giveBackHeap() {
#ifdef __GLIBC__
    // By itself it gives back only what lies at the heap's end; what was allocated last, and is
    // still in use, lies there.
    malloc_trim(0);
#endif
}

CalmMemory::CalmMemory(MainLoop& loop)
    : loop_(loop) {
    connect(qGuiApp, &QGuiApplication::lastWindowClosed, this, &CalmMemory::begin);
    begin();
}

void CalmMemory::begin() {
    timer_ = ScopedTimer(loop_.scheduleOnce(settling, [] {
        giveBackHeap();
        giveBackCode();
    }));
}

} // namespace tilewright
