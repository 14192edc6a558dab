// A document for the writer's tests.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "XMLWriter.h"

/// How many bytes a document holds before its terminator.
inline constexpr std::uint32_t kCapacity = 524287;

/// An empty document at the very end of its memory: the byte behind it cannot be touched, whatever
/// the build. Its text is filled with '#', so that a byte that nobody wrote is seen.
class Document {
public:
    Document() {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        room_ = (sizeof(XMLWR_Doc) + page - 1) / page * page;
        size_ = room_ + page;
        base_ = mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (base_ == MAP_FAILED) std::abort();
        if (mprotect(base_, room_, PROT_READ | PROT_WRITE) != 0) std::abort();
        doc_ = reinterpret_cast<XMLWR_Doc*>(static_cast<char*>(base_) + room_ - sizeof(XMLWR_Doc));
        std::memset(doc_->Buf, '#', sizeof doc_->Buf);
    }
    ~Document() { munmap(base_, size_); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    operator XMLWR_Doc*() const { return doc_; }
    XMLWR_Doc* operator->() const { return doc_; }

    /// Leaves room for exactly `room` more bytes.
    void LeaveRoom(std::uint32_t room) const { doc_->CurPos = 524287 - room; }

    /// The text from byte `from` up to the cursor.
    std::string_view Text(std::size_t from = 0) const {
        return {doc_->Buf + from, doc_->CurPos - from};
    }

private:
    void* base_;
    std::size_t room_;
    std::size_t size_;
    XMLWR_Doc* doc_;
};
