// Carries out commands for the model of the requests (request_model_test.py): each comes on
// standard input with the answers that the controller gives to it, and what the library did with
// them goes to standard output. The model reads the same answers, so that both must come to the
// same bytes.
//
// All numbers are little-endian, a text is its u32 length and its bytes. Before the first request
// the driver writes the names of the controller library's functions, one a line, as one text; a
// request names a function by its place in them. Requests come in batches, each batch one text that
// is made of texts, and so do their replies: a process that is woken for every request takes ten
// times as long.
//
//     request  u8 kind, then by the kind
//              'C' a command: u32 size of the result buffer, u8 flags (1: no command is passed, 2:
//                  no buffer is), text command, answers
//              'E' a check-in: u8 adapters, answers
//              'I' VX_EvGetInfo: nothing
//     answers  u16 number, then for each: u8 function, u8 code, u8 parts, then text each part
//     reply    i32 what was returned, u8 what became of the buffer (0 untouched, 1 a text, 2 bytes
//              behind the text were touched), text result, text calls
//
// The parts of an answer fill what the function's pointers point to, in their order; an answer
// without parts writes nothing. A call that has no answer left ends a list, and otherwise writes
// nothing and returns 0.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "hxfake.h"
#include "hxraid.h"
#include "vexorapi.h"

namespace {

// ---- Bytes in and out -------------------------------------------------------------------------

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "request_model_driver: %s\n", what);
    std::exit(2);
}

// A request that is being read. One that is shorter than it says is the model's fault.
class Reader {
public:
    explicit Reader(std::string_view bytes) : left_(bytes) {}

    std::string_view Take(std::size_t count) {
        if (count > left_.size()) Fail("a request is too short");
        const std::string_view taken = left_.substr(0, count);
        left_.remove_prefix(count);
        return taken;
    }
    bool IsAtEnd() const { return left_.empty(); }
    template <class Number>
    Number Get() {
        Number number;
        std::memcpy(&number, Take(sizeof number).data(), sizeof number);
        return number;
    }
    std::string_view Text() { return Take(Get<std::uint32_t>()); }

private:
    std::string_view left_;
};

template <class Number>
void Put(std::string& out, Number number) {
    out.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void PutText(std::string& out, std::string_view text) {
    Put(out, static_cast<std::uint32_t>(text.size()));
    out += text;
}

// Returns false at the end of the input.
bool ReadExactly(char* to, std::size_t size) {
    while (size > 0) {
        const ssize_t got = read(STDIN_FILENO, to, size);
        if (got < 0) Fail("standard input cannot be read");
        if (got == 0) return false;
        to += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

void WriteFrame(std::string_view text) {
    std::string frame;
    PutText(frame, text);
    for (std::string_view left = frame; !left.empty();) {
        const ssize_t written = write(STDOUT_FILENO, left.data(), left.size());
        if (written <= 0) Fail("standard output cannot be written");
        left.remove_prefix(static_cast<std::size_t>(written));
    }
}

// ---- The controller ---------------------------------------------------------------------------

struct Answer {
    HX_U8 code = 0;
    std::vector<std::string> parts;
};

struct Controller {
    std::vector<const char*> names;           // of the functions
    std::vector<std::deque<Answer>> answers;  // by function
    std::string calls;                        // a line a call
    std::string replies;                      // of the batch
};

Controller& TheController() {
    static Controller controller;
    return controller;
}

// The checksum that Python's zlib.crc32 computes.
std::uint32_t Checksum(const void* data, std::size_t size) {
    static const auto table = [] {
        std::array<std::uint32_t, 256> made{};
        for (std::uint32_t i = 0; i < made.size(); ++i) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit) {
                value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320u : value >> 1;
            }
            made[i] = value;
        }
        return made;
    }();
    std::uint32_t sum = 0xFFFFFFFFu;
    for (const std::uint8_t byte : std::span(static_cast<const std::uint8_t*>(data), size)) {
        sum = table[(sum ^ byte) & 0xFF] ^ sum >> 8;
    }
    return ~sum;
}

void NoteBytes(std::string& line, const void* data, std::size_t size) {
    constexpr char kDigits[] = "0123456789abcdef";
    for (const std::uint8_t byte : std::span(static_cast<const std::uint8_t*>(data), size)) {
        line += kDigits[byte >> 4];
        line += kDigits[byte & 15];
    }
}

template <class T>
concept Page = requires(T request) {
    request.header.numRequested;
};

// Records that the library fills in before the call; all others it only receives.
template <class T>
constexpr bool kIsSent =
    std::is_same_v<T, HD_Config> || std::is_same_v<T, HD_MBR_Info> ||
    std::is_same_v<T, LD_Config> || std::is_same_v<T, DG_Config> ||
    std::is_same_v<T, Create_LD_Param> || std::is_same_v<T, CreateOrModify_DG_Param> ||
    std::is_same_v<T, CreateOrModify_VD_Param> || std::is_same_v<T, LD_DG_Rebuild_Param>;

// Whether the function is sent the record; Adapter_Config_V2 goes both ways.
template <auto function, class T>
constexpr bool IsSentTo() {
    if constexpr (std::is_same_v<T, Adapter_Config_V2>) {
        return std::is_same_v<decltype(function), HX_U8 (*)(HX_U8, Adapter_Config_V2*)>;
    } else {
        return kIsSent<T>;
    }
}

template <class Request>
auto& FirstItem(Request& request) {
    auto& [header, items] = request;
    return items[0];
}

// Numbers as such, records that are sent as their bytes, lists as their header and the checksum of
// the room behind it, everything else as "&".
template <auto function, class T>
void NoteArgument(std::string& line, T argument) {
    using Target = std::remove_const_t<std::remove_pointer_t<T>>;
    line += ' ';
    if constexpr (!std::is_pointer_v<T>) {
        line += std::to_string(argument);
    } else if constexpr (Page<Target>) {
        NoteBytes(line, &argument->header, sizeof argument->header);
        line += ':';
        const auto& first = FirstItem(*argument);
        line += std::to_string(
            Checksum(&first, std::size_t{argument->header.numRequested} * sizeof first));
    } else if constexpr (std::is_same_v<Target, Flash_Data>) {
        const std::size_t length =
            std::min<std::size_t>(argument->DataLength, sizeof argument->Data);
        line += std::to_string(argument->PageNum) + '/' + std::to_string(argument->isLastPage) +
                '/' + std::to_string(argument->DataLength) + '/' +
                std::to_string(Checksum(argument->Data, length));
    } else if constexpr (IsSentTo<function, Target>()) {
        NoteBytes(line, argument, sizeof *argument);
    } else if constexpr (std::is_const_v<std::remove_pointer_t<T>>) {
        line += std::to_string(*argument);  // the one disk of HX_DiskHasOS
    } else {
        line += '&';
    }
}

// The header as the controller likes, but for numRequested, which says how much room there is.
template <class Request>
void FillPage(Request& request, std::string_view part) {
    RequestHeader header;
    if (part.size() < sizeof header) Fail("a page has no header");
    std::memcpy(&header, part.data(), sizeof header);
    part.remove_prefix(sizeof header);
    header.numRequested = request.header.numRequested;
    request.header = header;
    auto& first = FirstItem(request);
    std::memcpy(static_cast<void*>(&first), part.data(),
                std::min(part.size(), std::size_t{header.numRequested} * sizeof first));
}

template <class T>
void Fill(T parameter, std::size_t room, const Answer& answer, std::size_t& part) {
    using Target = std::remove_pointer_t<T>;
    if constexpr (!std::is_pointer_v<T> || std::is_const_v<Target>) {
        return;
    } else {
        if (part >= answer.parts.size()) return;
        const std::string_view bytes = answer.parts[part++];
        if constexpr (Page<Target>) {
            FillPage(*parameter, bytes);
        } else {
            const std::size_t records =
                std::is_same_v<Target, RCT_Record> || std::is_same_v<Target, Event>
                    ? room
                    : hxfake::kRoomUnasked<Target>;
            std::memcpy(static_cast<void*>(parameter), bytes.data(),
                        std::min(bytes.size(), records * sizeof(Target)));
        }
    }
}

// The last number of the call: for an array, how many its caller has room for.
template <class... A>
std::size_t RoomOf(A... parameters) {
    std::size_t room = 0;
    [[maybe_unused]] const auto look = [&room](auto parameter) {
        if constexpr (!std::is_pointer_v<decltype(parameter)>) room = parameter;
    };
    (look(parameters), ...);
    return room;
}

template <class T>
void EndList(T parameter) {
    if constexpr (std::is_pointer_v<T>) {
        if constexpr (Page<std::remove_pointer_t<T>>) {
            parameter->header.numReturned = 0;
            parameter->header.nextStartingIndex = HX_LIST_COMPLETE;
        }
    }
}

template <auto function, class... A>
HX_U8 Play(std::size_t number, A... parameters) {
    Controller& controller = TheController();
    controller.calls += controller.names[number];
    (NoteArgument<function>(controller.calls, parameters), ...);
    controller.calls += '\n';
    std::deque<Answer>& answers = controller.answers[number];
    if (answers.empty()) {
        (EndList(parameters), ...);
        return HX_SUCCESS;
    }
    const Answer answer = std::move(answers.front());
    answers.pop_front();
    [[maybe_unused]] std::size_t part = 0;
    [[maybe_unused]] const std::size_t room = RoomOf(parameters...);
    (Fill(parameters, room, answer, part), ...);
    return answer.code;
}

template <auto function>
void Script(const char* name) {
    Controller& controller = TheController();
    const std::size_t number = controller.names.size();
    controller.names.push_back(name);
    controller.answers.emplace_back();
    hxfake::On<function>().Always(
        [number](auto... parameters) { return Play<function>(number, parameters...); });
}

const char* Version(std::size_t number) {
    static std::string text;
    Controller& controller = TheController();
    controller.calls += "HX_API_Version\n";
    std::deque<Answer>& answers = controller.answers[number];
    if (answers.empty() || answers.front().parts.empty()) return nullptr;
    text = answers.front().parts[0];
    return text.c_str();
}

void ScriptAll() {
    hxfake::NoteCalls(false);
    Controller& controller = TheController();
    controller.names.push_back("HX_API_Version");
    controller.answers.emplace_back();
    hxfake::On<&HX_API_Version>().Always([] { return Version(0); });
    Script<&HX_Adapter_GetCount>("HX_Adapter_GetCount");
    Script<&HX_Adapter_GetInfo>("HX_Adapter_GetInfo");
    Script<&HX_Adapter_GetConfig>("HX_Adapter_GetConfig");
    Script<&HX_Adapter_SetConfig>("HX_Adapter_SetConfig");
    Script<&HX_AdapterMute>("HX_AdapterMute");
    Script<&HX_LocateArrayDevice>("HX_LocateArrayDevice");
    Script<&HX_ENC_GetEnclosureInfo>("HX_ENC_GetEnclosureInfo");
    Script<&HX_ENC_GetElementInfo>("HX_ENC_GetElementInfo");
    Script<&HX_ENC_GetElementConfig>("HX_ENC_GetElementConfig");
    Script<&HX_PD_GetHDInfo>("HX_PD_GetHDInfo");
    Script<&HX_PD_GetHDInfo_Ext>("HX_PD_GetHDInfo_Ext");
    Script<&HX_PD_GetExpanderInfo>("HX_PD_GetExpanderInfo");
    Script<&HX_PD_GetPMInfo>("HX_PD_GetPMInfo");
    Script<&HX_PD_GetFreeSpaceInfo>("HX_PD_GetFreeSpaceInfo");
    Script<&HX_PD_GetConfig>("HX_PD_GetConfig");
    Script<&HX_PD_SetConfig>("HX_PD_SetConfig");
    Script<&HX_PD_GetBGAStatus>("HX_PD_GetBGAStatus");
    Script<&HX_PD_GetSmartStatus>("HX_PD_GetSmartStatus");
    Script<&HX_PD_GetHDRaidStatus>("HX_PD_GetHDRaidStatus");
    Script<&HX_PD_RCT_GetCount>("HX_PD_RCT_GetCount");
    Script<&HX_PD_GetRCT>("HX_PD_GetRCT");
    Script<&HX_PD_WipeHDMDD>("HX_PD_WipeHDMDD");
    Script<&HX_PD_SetHDStatus>("HX_PD_SetHDStatus");
    Script<&HX_PD_FreeHD2GlobalSpare>("HX_PD_FreeHD2GlobalSpare");
    Script<&HX_PD_FreeHD2DGSpare>("HX_PD_FreeHD2DGSpare");
    Script<&HX_PD_Spare2FreeHD>("HX_PD_Spare2FreeHD");
    Script<&HX_PD_GetMBRInfo>("HX_PD_GetMBRInfo");
    Script<&HX_DiskHasOS>("HX_DiskHasOS");
    Script<&HX_PD_StartMediaPatrol>("HX_PD_StartMediaPatrol");
    Script<&HX_PD_StartDataScrub>("HX_PD_StartDataScrub");
    Script<&HX_PD_BGAControl>("HX_PD_BGAControl");
    Script<&HX_BLK_GetInfo>("HX_BLK_GetInfo");
    Script<&HX_BLK_GetHDBlock>("HX_BLK_GetHDBlock");
    Script<&HX_LD_GetInfo>("HX_LD_GetInfo");
    Script<&HX_LD_GetTargetLDInfo>("HX_LD_GetTargetLDInfo");
    Script<&HX_LD_GetStatus>("HX_LD_GetStatus");
    Script<&HX_LD_GetConfig>("HX_LD_GetConfig");
    Script<&HX_LD_SetConfig>("HX_LD_SetConfig");
    Script<&HX_LD_Create>("HX_LD_Create");
    Script<&HX_LD_GetMaxSize>("HX_LD_GetMaxSize");
    Script<&HX_LD_Delete>("HX_LD_Delete");
    Script<&HX_LD_Import>("HX_LD_Import");
    Script<&HX_LD_PauseAll>("HX_LD_PauseAll");
    Script<&HX_LD_StartRebuild>("HX_LD_StartRebuild");
    Script<&HX_LD_StartConsistencyCheck>("HX_LD_StartConsistencyCheck");
    Script<&HX_LD_StartINIT>("HX_LD_StartINIT");
    Script<&HX_LD_StartMigration>("HX_LD_StartMigration");
    Script<&HX_LD_GetMigratedLdSize>("HX_LD_GetMigratedLdSize");
    Script<&HX_LD_BGAControl>("HX_LD_BGAControl");
    Script<&HX_DG_GetInfo>("HX_DG_GetInfo");
    Script<&HX_DG_GetConfig>("HX_DG_GetConfig");
    Script<&HX_DG_SetConfig>("HX_DG_SetConfig");
    Script<&HX_CreateOrModify_DG>("HX_CreateOrModify_DG");
    Script<&HX_CreateOrModify_VD>("HX_CreateOrModify_VD");
    Script<&HX_DG_Delete>("HX_DG_Delete");
    Script<&HX_DG_StartMigration>("HX_DG_StartMigration");
    Script<&HX_DG_BGAControl>("HX_DG_BGAControl");
    Script<&HX_LD_DG_StartRebuild>("HX_LD_DG_StartRebuild");
    Script<&HX_BBU_GetInfo>("HX_BBU_GetInfo");
    Script<&HX_BBU_SetThreshold>("HX_BBU_SetThreshold");
    Script<&HX_BBU_ChangePower>("HX_BBU_ChangePower");
    Script<&HX_BBU_SetStatus>("HX_BBU_SetStatus");
    Script<&HX_Flash_Erase>("HX_Flash_Erase");
    Script<&HX_Flash_Bin>("HX_Flash_Bin");
    Script<&HX_EVT_GetEvent>("HX_EVT_GetEvent");
}

void TakeAnswers(Reader& request) {
    Controller& controller = TheController();
    controller.calls.clear();
    for (std::deque<Answer>& answers : controller.answers) answers.clear();
    for (auto left = request.Get<std::uint16_t>(); left > 0; --left) {
        const auto function = request.Get<std::uint8_t>();
        if (function >= controller.answers.size()) Fail("an answer of no function");
        Answer answer{request.Get<std::uint8_t>(), {}};
        for (auto parts = request.Get<std::uint8_t>(); parts > 0; --parts) {
            answer.parts.emplace_back(request.Text());
        }
        controller.answers[function].push_back(std::move(answer));
    }
}

// ---- The requests -----------------------------------------------------------------------------

enum class Buffer : std::uint8_t { Untouched, HoldsText, IsTouchedBehindItsText };

// What a buffer holds that the library has not written to.
constexpr char kFresh = '\xA5';

Buffer LookAt(std::string_view buffer, std::string_view& text) {
    const auto is_fresh = [](std::string_view part) {
        return part.empty() || (part[0] == kFresh &&
                                std::memcmp(part.data(), part.data() + 1, part.size() - 1) == 0);
    };
    if (is_fresh(buffer)) return Buffer::Untouched;
    const std::size_t length = buffer.find('\0');
    if (length == std::string_view::npos) return Buffer::IsTouchedBehindItsText;
    text = buffer.substr(0, length);
    return is_fresh(buffer.substr(length + 1)) ? Buffer::HoldsText : Buffer::IsTouchedBehindItsText;
}

void Reply(int returned, Buffer buffer, std::string_view text) {
    std::string reply;
    Put(reply, static_cast<std::int32_t>(returned));
    Put(reply, buffer);
    PutText(reply, text);
    PutText(reply, TheController().calls);
    PutText(TheController().replies, reply);
}

void CarryOutCommand(Reader& request) {
    const auto size = request.Get<std::uint32_t>();
    const auto flags = request.Get<std::uint8_t>();
    const std::string command(request.Text());
    TakeAnswers(request);
    // Of exactly that size, so that a sanitizer notices a byte too many.
    const std::unique_ptr<char[]> buffer(new char[size]);
    std::memset(buffer.get(), kFresh, size);
    const int returned = vexorApi((flags & 1) != 0 ? nullptr : command.c_str(),
                                  (flags & 2) != 0 ? nullptr : buffer.get(), size);
    std::string_view text;
    const Buffer found = LookAt({buffer.get(), size}, text);
    Reply(returned, found, text);
}

void CheckIn(Reader& request) {
    const auto adapters = request.Get<std::uint8_t>();
    TakeAnswers(request);
    VX_EvFile_CheckIn(adapters);
    Reply(0, Buffer::Untouched, {});
}

void TellExtent() {
    TheController().calls.clear();
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    VX_EvGetInfo(&first, &count);
    Reply(0, Buffer::Untouched, std::to_string(first) + ' ' + std::to_string(count));
}

void CarryOut(Reader request) {
    switch (request.Get<char>()) {
        case 'C':
            CarryOutCommand(request);
            break;
        case 'E':
            CheckIn(request);
            break;
        case 'I':
            TellExtent();
            break;
        default:
            Fail("a request of no kind");
    }
}

}  // namespace

int main() {
    ScriptAll();
    vexorApiInit();
    std::string names;
    for (const char* const name : TheController().names) names.append(name).append("\n");
    WriteFrame(names);
    std::string bytes;
    for (std::uint32_t length = 0; ReadExactly(reinterpret_cast<char*>(&length), sizeof length);) {
        bytes.resize(length);
        if (!ReadExactly(bytes.data(), length)) Fail("the input ends within a batch");
        TheController().replies.clear();
        for (Reader batch(bytes); !batch.IsAtEnd();) CarryOut(Reader(batch.Text()));
        WriteFrame(TheController().replies);
    }
    vexorApiShutdown();
    return 0;
}
