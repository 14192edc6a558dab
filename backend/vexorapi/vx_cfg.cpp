// The configuration file is read and parsed anew for every section that a service requests.
#include "vx_cfg.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "descriptor.h"
#include "heap_block.h"
#include "read_file.h"
#include "root_path.h"
#include "uninitialized.h"
#include "vx_cfg_parse.h"

namespace {

constexpr char kConfigFile[] = "/vexorapi.ini";

// A file that fills the buffer counts as absent, so the largest one that is read has 65535 bytes.
constexpr std::size_t kWorkBufferSize = 65536;

// Most installations have no file; then a request costs only one call of access. Other errors are
// found when the file is opened.
bool ConfigFileIsAbsent() {
    VEXOR_UNINITIALIZED char path[kRootPathSize];
    if (RootPath(path, kConfigFile) == nullptr) return true;
    return access(path, F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

void ParseSection(const char* text, std::size_t length, void* pCfg, const char* cfgname) {
    XMLElmtCfg elmt{};
    elmt.Ext = pCfg;
    SetCfgName(elmt, cfgname);
    // RunExpat logs a malformed file; what was stored before the error stays.
    RunExpat(text, length, &elmt, elmt.Guard,
             {CFG_StartElement, CFG_EndElement, CFG_CharacterDataHandler,
              DeclarationWatch<XMLElmtCfg>::Doctype});
}

}  // namespace

int VX_CfgLoad(void* pCfg, const char* cfgname) {
    if (ConfigFileIsAbsent()) return 0;
    const auto text = MakeBlock<char>(kWorkBufferSize);
    if (text == nullptr) return 0;
    // Cut to 16 bits on purpose: the length of a file that fills the buffer becomes 0, which means
    // "absent".
    const auto length = static_cast<std::uint16_t>(VX_CfgLoadFile(text.get(), kWorkBufferSize));
    if (length == 0) return 0;
    ParseSection(text.get(), length, pCfg, cfgname);
    return 1;
}

std::size_t VX_CfgLoadFile(char* buf, std::size_t buflen) {
    char path[kRootPathSize];
    if (RootPath(path, kConfigFile) == nullptr) return 0;
    const Descriptor file = OpenForRead(path);
    return file.IsOpen() ? ReadBytes(file.Get(), buf, buflen) : 0;
}
