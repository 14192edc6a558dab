// A file descriptor that closes itself, so that an early return leaves no file open. Depends on the
// system only, so that every part of the tree can use it.
#pragma once

#include <unistd.h>

#include <utility>

/// Owns one open file descriptor, or none.
class Descriptor {
public:
    Descriptor() = default;
    /// Takes ownership of the result of open; -1 is none.
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() { Close(); }

    Descriptor(Descriptor&& other) noexcept : descriptor_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            Close();
            descriptor_ = other.Release();
        }
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }

    /// The descriptor, still owned by this object; -1 when there is none.
    int Get() const { return descriptor_; }

    /// Passes ownership of the descriptor to the caller; -1 when there is none.
    [[nodiscard]] int Release() { return std::exchange(descriptor_, -1); }

    /// Closes the file, if there is one. Returns false on failure: then written data may not be in
    /// the file.
    bool Close() { return !IsOpen() || close(Release()) == 0; }

private:
    int descriptor_ = -1;
};
