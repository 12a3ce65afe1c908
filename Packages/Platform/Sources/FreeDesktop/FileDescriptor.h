#pragma once

#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tilewright {

/// Owns a file descriptor: closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Takes one over; a negative number is none.
    explicit FileDescriptor(int number)
        : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : number_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = other.release();
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] bool isOpen() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }
    /// Another one for the same, closed in programs that this one starts; none on failure.
    [[nodiscard]] FileDescriptor duplicate() const {
        return FileDescriptor(::fcntl(number_, F_DUPFD_CLOEXEC, 0));
    }
    /// Hands it over to the caller.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }

private:
    void close() {
        if (isOpen())
            ::close(release());
    }

    int number_ = -1;
};

} // namespace tilewright
