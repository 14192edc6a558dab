// A request from command to result, with a controller that answers as it likes.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "backend/vexorapi/fresh_debug_log.h"
#include "hostile_controller.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "vexorapi.h"
#include "vx_dbg.h"

namespace {

// Fixed paths lie in a folder of ours that stays empty. Every debug message is formatted, and goes
// nowhere: that is what the log of this name does.
bool Prepare() {
    static const TemporaryRoot root;
    static const FreshDebugLog log;
    DBG_Ext.Flags = 1;
    DBG_Ext.Cfg.LogEnable = 1;
    VX_DBG_Init("stderr");
    vexorApiInit();
    return true;
}

const char* Send(const std::string& command, char* result, std::uint32_t size) {
    const int ok = vexorApi(command.c_str(), result, size);
    if (ok != 0 && ok != 1) return "neither 0 nor 1 was returned";
    if (ok == 1 && std::memchr(result, '\0', size) == nullptr) {
        return "the result is not terminated";
    }
    return nullptr;
}

}  // namespace

const char* FuzzCommand(const std::uint8_t* data, std::size_t size) {
    static const bool prepared = Prepare();
    (void)prepared;
    std::string command(reinterpret_cast<const char*>(data), size);
    command.resize(std::strlen(command.c_str()));
    // No input may name a file of this machine to be read or written.
    if (command.find("filepath") != std::string::npos) return nullptr;
    const std::size_t behind = std::min(command.size() + 1, size);
    const std::uint8_t* const answers = data + behind;
    const std::size_t answer_count = size - behind;

    AnswerFrom(answers, answer_count);
    static const std::unique_ptr<char[]> whole(new char[VEXORAPI_MAX_RESULT]);
    if (const char* const wrong = Send(command, whole.get(), VEXORAPI_MAX_RESULT)) return wrong;
    // Once more into a buffer that few results fit.
    AnswerFrom(answers, answer_count);
    const std::uint32_t room = answer_count == 0 ? 1 : answers[0] * 4u + 1;
    const std::unique_ptr<char[]> cramped(new char[room]);
    return Send(command, cramped.get(), room);
}
