#include "tape/hxt_session.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "codes/status.h"
#include "library/trouble.h"
#include "tape/hxt_player.h"
#include "tape/hxt_tape.h"

namespace hxtape {
namespace {

using hxcodes::NumberOf;
using hxcodes::Status;

struct Session {
    std::optional<Recorder> recorder;
    std::optional<Player> player;
    std::string version;  // that was played back
};

// Made by the first call, freed by HX_API_Finalize.
constinit Session* session = nullptr;

// Never of a process that has more rights than its caller.
std::string Variable(const char* name) {
    const char* const text = secure_getenv(name);
    return text == nullptr ? "" : text;
}

std::unique_ptr<Session> OpenSession() {
    auto opened = std::make_unique<Session>();
    const std::string record = Variable(kRecordVariable), replay = Variable(kReplayVariable);
    const std::string folder = Variable(kFolderVariable);
    if (record.empty() == replay.empty()) {
        throw TapeError(std::string("Either ") + kRecordVariable + " or " + kReplayVariable +
                        " has to name a tape; vexorctl tape sets it.");
    }
    if (!replay.empty()) {
        opened->player.emplace(replay, folder);
        return opened;
    }
    std::optional<PseudonymKey> key;
    const std::string key_text = Variable(kKeyVariable);
    // A key that is none must not end in a tape with the names in it.
    if (!key_text.empty() && !ParseKey(key_text, key.emplace())) {
        throw TapeError(std::string(kKeyVariable) + " is no key of 32 hexadecimal digits.");
    }
    opened->recorder.emplace(Variable(kControllerVariable), record, folder, key);
    return opened;
}

Session& Opened() {
    if (session == nullptr) session = OpenSession().release();
    return *session;
}

HX_U8 PlayBack(Player& player, const char* name, Effect effect, Returned returned,
               std::span<const Part> parts) {
    if (IsIncomplete(parts)) return NumberOf(Status::kNullAddress);
    const std::string request = RequestOf(parts, nullptr);
    const TapeCall* const call = player.Next(name, request, effect);
    const bool is_count = returned == Returned::kCount;
    const bool is_answered =
        call != nullptr && (is_count || call->status != HX_SUCCESS || FillIn(parts, call->answer));
    if (!is_answered) {
        player.Miss(name, request);
        hxlibrary::NoteTrouble((std::string("The tape has no answer to ") + name + ".").c_str());
        return is_count ? HX_U8{0} : NumberOf(Status::kNotOnTape);
    }
    if (!is_count && call->status != HX_SUCCESS) hxlibrary::NoteTrouble(call->answer.c_str());
    return call->status;
}

// Callers are in C. A count that is not known is 0.
template <class Work>
HX_U8 Caught(Returned returned, Work work) {
    Status status = Status::kNoState;
    try {
        return work();
    } catch (const std::bad_alloc&) {
        hxlibrary::NoteTrouble("There is not enough memory.");
        status = Status::kNoMemory;
    } catch (const std::exception& error) {
        hxlibrary::NoteTrouble(error.what());
    }
    return returned == Returned::kCount ? HX_U8{0} : NumberOf(status);
}

}  // namespace

HX_U8 Perform(const char* name, Effect effect, Returned returned, std::span<const Part> parts,
              RealCall call) {
    return Caught(returned, [&]() -> HX_U8 {
        Session& opened = Opened();
        if (opened.recorder) return opened.recorder->Pass(name, returned, parts, call);
        return PlayBack(*opened.player, name, effect, returned, parts);
    });
}

const char* PerformVersion() {
    const char* version = nullptr;
    Caught(Returned::kStatus, [&]() -> HX_U8 {
        Session& opened = Opened();
        if (opened.recorder) {
            version = opened.recorder->PassVersion();
            return HX_SUCCESS;
        }
        const TapeCall* const call = opened.player->Next("HX_API_Version", "", Effect::kReads);
        if (call == nullptr) {
            opened.player->Miss("HX_API_Version", "");
            return HX_SUCCESS;
        }
        opened.version = call->answer;
        version = opened.version.c_str();
        return HX_SUCCESS;
    });
    return version;
}

void PerformFinalize(RealCall call) {
    if (session == nullptr) return;
    Perform("HX_API_Finalize", Effect::kReads, Returned::kStatus, {}, call);
    delete session;
    session = nullptr;
}

}  // namespace hxtape
