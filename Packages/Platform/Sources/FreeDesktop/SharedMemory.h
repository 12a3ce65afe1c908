#pragma once

#include "FileDescriptor.h"

#include <cstddef>

namespace tilewright {

/// Memory that another process can be given, zeroed, and ready to be written to.
class SharedMemory {
public:
    /// Not even a byte on failure: `data()` is null then.
    explicit SharedMemory(std::size_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    [[nodiscard]] unsigned char* data() const { return data_; }
    [[nodiscard]] std::size_t size() const { return size_; }
    /// To be handed to the other process. It cannot be made smaller.
    [[nodiscard]] const FileDescriptor& file() const { return file_; }

private:
    FileDescriptor file_;
    std::size_t size_;
    unsigned char* data_ = nullptr;
};

} // namespace tilewright
