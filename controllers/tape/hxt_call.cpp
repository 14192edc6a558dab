#include "tape/hxt_call.h"

#include <algorithm>
#include <cstring>

namespace hxtape {
namespace {

using Role = Part::Role;

// Of a list's header: what the caller sets.
constexpr std::size_t kAskedHeader = offsetof(RequestHeader, numReturned);
constexpr std::size_t kPieceHeader = offsetof(Flash_Data, Data);

void Append(std::string& bytes, const Part& part, const char* from, std::size_t records,
            const PseudonymKey* key) {
    const std::size_t begin = bytes.size();
    bytes.append(from, records * part.size);
    if (key == nullptr) return;
    for (std::size_t i = 0; i < records; ++i) {
        for (const Field& field : part.fields) {
            char* const at = bytes.data() + begin + i * part.size + field.offset;
            Pseudonymise(*key, field.identity, {at, field.size});
        }
    }
}

// The number of bytes that count in a piece; never more than it has room for.
std::size_t PieceBytes(const char* piece) {
    HX_U32 length = 0;
    std::memcpy(&length, piece + offsetof(Flash_Data, DataLength), sizeof length);
    return kPieceHeader + std::min<std::size_t>(length, HX_FLASH_PIECE_SIZE);
}

void AppendPiece(std::string& bytes, const char* piece, const PseudonymKey* key) {
    const std::size_t begin = bytes.size();
    bytes.append(piece, PieceBytes(piece));
    if (key == nullptr) return;
    const std::size_t data = begin + kPieceHeader;
    Pseudonymise(*key, Identity::kImage, {bytes.data() + data, bytes.size() - data});
}

std::size_t RecordsOf(const char* header) {
    RequestHeader page;
    std::memcpy(&page, header, sizeof page);
    return std::min(page.numReturned, page.numRequested);
}

// The number of bytes of the part's answer at the beginning of `answer`; more than there are when
// it is too short.
std::size_t AnswerSize(const Part& part, std::string_view answer) {
    switch (part.role) {
        case Role::kNone:
        case Role::kIn:
        case Role::kSent:
            return 0;
        case Role::kOut:
        case Role::kBoth:
            return part.size * part.capacity;
        case Role::kPage:
            if (answer.size() < sizeof(RequestHeader)) return sizeof(RequestHeader);
            return sizeof(RequestHeader) + part.size * RecordsOf(answer.data());
        case Role::kCounted: {
            if (answer.empty()) return 1;
            const std::size_t count = static_cast<unsigned char>(answer.front());
            return 1 + part.size * std::min(count, part.capacity);
        }
        case Role::kPiece:
            return answer.size() < kPieceHeader ? kPieceHeader : PieceBytes(answer.data());
    }
    return 0;
}

// A list's answer must be to a request of as many records: the caller's buffer holds no more.
bool IsToThisRequest(const Part& part, std::string_view answer) {
    return part.role != Role::kPage || std::memcmp(part.at, answer.data(), kAskedHeader) == 0;
}

void Fill(const Part& part, std::string_view answer) {
    if (part.role == Role::kCounted) {
        *part.count = static_cast<HX_U8>(answer.front());
        answer.remove_prefix(1);
    }
    if (!answer.empty()) std::memcpy(part.at, answer.data(), answer.size());
}

}  // namespace

Argument<Flash_Data*> Piece(HX_U8 actions, Flash_Data* piece) {
    Part part = PartOf(Role::kPiece, piece);
    if (actions == HX_FLASH_WRITE) part.role = Role::kSent;
    return {piece, part};
}

bool IsIncomplete(std::span<const Part> parts) {
    return std::ranges::any_of(parts, [](const Part& part) {
        const bool has_no_count = part.role == Role::kCounted && part.count == nullptr;
        const bool has_no_buffer =
            part.role != Role::kNone && part.capacity > 0 && part.at == nullptr;
        return has_no_count || has_no_buffer;
    });
}

std::string RequestOf(std::span<const Part> parts, const PseudonymKey* key) {
    std::string bytes;
    for (const Part& part : parts) {
        switch (part.role) {
            case Role::kIn:
            case Role::kBoth:
                Append(bytes, part, part.at, part.capacity, key);
                break;
            case Role::kSent:
                AppendPiece(bytes, part.at, key);
                break;
            case Role::kPage:
                bytes.append(part.at, kAskedHeader);
                break;
            case Role::kPiece:
                bytes.append(part.at + offsetof(Flash_Data, PageNum), sizeof(Flash_Data::PageNum));
                break;
            case Role::kNone:
            case Role::kOut:
            case Role::kCounted:
                break;
        }
    }
    return bytes;
}

std::string AnswerOf(std::span<const Part> parts, const PseudonymKey* key) {
    std::string bytes;
    for (const Part& part : parts) {
        switch (part.role) {
            case Role::kOut:
            case Role::kBoth:
                Append(bytes, part, part.at, part.capacity, key);
                break;
            case Role::kPage:
                bytes.append(part.at, sizeof(RequestHeader));
                Append(bytes, part, part.at + sizeof(RequestHeader), RecordsOf(part.at), key);
                break;
            case Role::kCounted:
                bytes += static_cast<char>(*part.count);
                Append(bytes, part, part.at, std::min<std::size_t>(*part.count, part.capacity),
                       key);
                break;
            case Role::kPiece:
                AppendPiece(bytes, part.at, key);
                break;
            case Role::kNone:
            case Role::kIn:
            case Role::kSent:
                break;
        }
    }
    return bytes;
}

bool FillIn(std::span<const Part> parts, std::string_view answer) {
    // Looked through before anything is written.
    std::string_view rest = answer;
    for (const Part& part : parts) {
        const std::size_t size = AnswerSize(part, rest);
        if (size > rest.size() || !IsToThisRequest(part, rest)) return false;
        rest.remove_prefix(size);
    }
    if (!rest.empty()) return false;
    rest = answer;
    for (const Part& part : parts) {
        const std::size_t size = AnswerSize(part, rest);
        Fill(part, rest.substr(0, size));
        rest.remove_prefix(size);
    }
    return true;
}

}  // namespace hxtape
