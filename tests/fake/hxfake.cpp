// The scripted libhxraid: the registry of scripts, the notes, and one line per faked function.
#include "hxfake.h"

#include <array>
#include <charconv>
#include <concepts>
#include <deque>
#include <span>

namespace hxfake {
namespace {

// One for the whole process, made at its first use: scripts are made by whichever source asks
// first.
struct State {
    std::vector<internal::ScriptBase*> scripts;
    std::vector<std::string> calls;
    std::array<std::deque<Event>, 256> events;  // by adapter
    bool noting = true;
};

State& TheState() {
    static State state;
    return state;
}

// ---- Notes --------------------------------------------------------------------------------

struct DiskList {  // disks passed by address and number
    const HX_U16* ids;
    HX_U8 count;
};

void AppendArgument(std::string& line, std::unsigned_integral auto value) {
    char digits[20];
    const auto end = std::to_chars(digits, std::end(digits), value).ptr;
    line.append(digits, end);
}

template <class T>
void AppendArgument(std::string& line, T* pointer) {
    if (pointer == nullptr) {
        line += "null";
    } else if constexpr (requires { pointer->header.numRequested; }) {
        line += '{';
        AppendArgument(line, pointer->header.requestType);
        line += ", ";
        AppendArgument(line, pointer->header.startingIndexOrId);
        line += ", ";
        AppendArgument(line, pointer->header.numRequested);
        line += '}';
    } else {
        line += '&';
    }
}

void AppendArgument(std::string& line, DiskList disks) {
    if (disks.ids == nullptr) {
        line += "null";
        return;
    }
    line += '[';
    const char* separator = "";
    for (const HX_U16 id : std::span(disks.ids, disks.count)) {
        line += separator;
        AppendArgument(line, id);
        separator = ", ";
    }
    line += ']';
}

void AppendArguments(std::string&) {}

void AppendArguments(std::string& line, auto first, auto... others) {
    AppendArgument(line, first);
    ((line += ", ", AppendArgument(line, others)), ...);
}

void Note(const char* name, auto... args) {
    if (!TheState().noting) return;
    std::string line(name);
    line += '(';
    AppendArguments(line, args...);
    line += ')';
    TheState().calls.push_back(std::move(line));
}

template <auto function>
auto Play(const char* name, auto... args) {
    Note(name, args...);
    return On<function>().Play(args...);
}

HX_U8 DeliverEvents(HX_U8 adapter, HX_U8 max, HX_U8* count, Event* events) {
    std::deque<Event>& queue = TheState().events[adapter];
    const auto taken = static_cast<std::ptrdiff_t>(std::min<std::size_t>(queue.size(), max));
    std::copy_n(queue.begin(), taken, events);
    queue.erase(queue.begin(), queue.begin() + taken);
    *count = static_cast<HX_U8>(taken);
    return HX_SUCCESS;
}

}  // namespace

internal::ScriptBase::ScriptBase() { TheState().scripts.push_back(this); }

void Reset() {
    State& state = TheState();
    for (internal::ScriptBase* script : state.scripts) script->Clear();
    for (std::deque<Event>& queue : state.events) queue.clear();
    state.calls.clear();
    state.noting = true;
}

const std::vector<std::string>& Calls() { return TheState().calls; }

void ForgetCalls() { TheState().calls.clear(); }

void NoteCalls(bool on) { TheState().noting = on; }

std::size_t AnswersLeft() {
    std::size_t left = 0;
    for (const internal::ScriptBase* script : TheState().scripts) left += script->AnswersLeft();
    return left;
}

void QueueEvents(HX_U8 adapter, const std::vector<Event>& events) {
    std::deque<Event>& queue = TheState().events[adapter];
    queue.insert(queue.end(), events.begin(), events.end());
    On<&HX_EVT_GetEvent>().Always(DeliverEvents);
}

}  // namespace hxfake

// ---- The faked functions, in the header's order -------------------------------------------

using hxfake::Play;

HX_U8 HX_API_Initialize() { return Play<&HX_API_Initialize>(__func__); }
void HX_API_Finalize() { return Play<&HX_API_Finalize>(__func__); }
const char* HX_API_Version() { return Play<&HX_API_Version>(__func__); }
HX_U8 HX_Adapter_GetCount() { return Play<&HX_Adapter_GetCount>(__func__); }
HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    return Play<&HX_Adapter_GetInfo>(__func__, AdapterID, count, info);
}
HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8* count, Adapter_Config_V2* config) {
    return Play<&HX_Adapter_GetConfig>(__func__, AdapterID, count, config);
}
HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2* config) {
    return Play<&HX_Adapter_SetConfig>(__func__, AdapterID, config);
}
HX_U8 HX_AdapterMute(HX_U8 AdapterID) { return Play<&HX_AdapterMute>(__func__, AdapterID); }
HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 deviceType, HX_U16 deviceId, HX_U8 ledStatus) {
    return Play<&HX_LocateArrayDevice>(__func__, AdapterID, deviceType, deviceId, ledStatus);
}
HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request) {
    return Play<&HX_ENC_GetEnclosureInfo>(__func__, AdapterID, request);
}
HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count) {
    return Play<&HX_ENC_GetElementInfo>(__func__, AdapterID, ENC_ID, elements, count);
}
HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count) {
    return Play<&HX_ENC_GetElementConfig>(__func__, AdapterID, ENC_ID, elements, count);
}
HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return Play<&HX_PD_GetHDInfo>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return Play<&HX_PD_GetHDInfo_Ext>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request) {
    return Play<&HX_PD_GetExpanderInfo>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request) {
    return Play<&HX_PD_GetPMInfo>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return Play<&HX_PD_GetFreeSpaceInfo>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return Play<&HX_PD_GetConfig>(__func__, AdapterID, request);
}
HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16 HD_ID, HD_Config* config) {
    return Play<&HX_PD_SetConfig>(__func__, AdapterID, HD_ID, config);
}
HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return Play<&HX_PD_GetBGAStatus>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return Play<&HX_PD_GetSmartStatus>(__func__, AdapterID, request);
}
HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return Play<&HX_PD_GetHDRaidStatus>(__func__, AdapterID, request);
}
HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 HD_ID, HX_U32* count) {
    return Play<&HX_PD_RCT_GetCount>(__func__, AdapterID, HD_ID, count);
}
HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 HD_ID, RCT_Record* records, HX_U32 count) {
    return Play<&HX_PD_GetRCT>(__func__, AdapterID, HD_ID, records, count);
}
HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Force) {
    return Play<&HX_PD_WipeHDMDD>(__func__, AdapterID, HD_ID, Force);
}
HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return Play<&HX_PD_SetHDStatus>(__func__, AdapterID, HD_ID, Action);
}
HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Play<&HX_PD_FreeHD2GlobalSpare>(__func__, AdapterID, HD_ID);
}
HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16 HD_ID, HX_U16 DG_ID) {
    return Play<&HX_PD_FreeHD2DGSpare>(__func__, AdapterID, HD_ID, DG_ID);
}
HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Play<&HX_PD_Spare2FreeHD>(__func__, AdapterID, HD_ID);
}
HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info) {
    return Play<&HX_PD_GetMBRInfo>(__func__, AdapterID, info);
}
HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs) {
    // The list is the only thing that tells its calls apart.
    hxfake::Note(__func__, AdapterID, kind, count, hxfake::DiskList{HDIDs, count});
    return hxfake::On<&HX_DiskHasOS>().Play(AdapterID, kind, count, HDIDs);
}
HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Play<&HX_PD_StartMediaPatrol>(__func__, AdapterID, HD_ID);
}
HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Play<&HX_PD_HDMPCheck>(__func__, AdapterID, HD_ID);
}
HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16 HD_ID) {
    return Play<&HX_PD_StartDataScrub>(__func__, AdapterID, HD_ID);
}
HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action) {
    return Play<&HX_PD_BGAControl>(__func__, AdapterID, HD_ID, Action);
}
HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request) {
    return Play<&HX_BLK_GetInfo>(__func__, AdapterID, request);
}
HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    return Play<&HX_BLK_GetHDBlock>(__func__, AdapterID, request);
}
HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    return Play<&HX_LD_GetInfo>(__func__, AdapterID, request);
}
HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    return Play<&HX_LD_GetTargetLDInfo>(__func__, AdapterID, LD_ID, info);
}
HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    return Play<&HX_LD_GetStatus>(__func__, AdapterID, request);
}
HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    return Play<&HX_LD_GetConfig>(__func__, AdapterID, request);
}
HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16 LD_ID, LD_Config* config) {
    return Play<&HX_LD_SetConfig>(__func__, AdapterID, LD_ID, config);
}
HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param* param) {
    return Play<&HX_LD_Create>(__func__, AdapterID, param);
}
HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return Play<&HX_LD_GetMaxSize>(__func__, AdapterID, param);
}
HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 deleteMBR) {
    return Play<&HX_LD_Delete>(__func__, AdapterID, LD_ID, deleteMBR);
}
HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16 LD_ID) {
    return Play<&HX_LD_Import>(__func__, AdapterID, LD_ID);
}
HX_U8 HX_LD_PauseAll(HX_U8 AdapterID) { return Play<&HX_LD_PauseAll>(__func__, AdapterID); }
HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16 LD_ID, HX_U16 Rebuild_HD_ID) {
    return Play<&HX_LD_StartRebuild>(__func__, AdapterID, LD_ID, Rebuild_HD_ID);
}
HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Type) {
    return Play<&HX_LD_StartConsistencyCheck>(__func__, AdapterID, LD_ID, Type);
}
HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Init_Type) {
    return Play<&HX_LD_StartINIT>(__func__, AdapterID, LD_ID, Init_Type);
}
HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param* param) {
    return Play<&HX_LD_StartMigration>(__func__, AdapterID, param);
}
HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return Play<&HX_LD_GetMigratedLdSize>(__func__, AdapterID, param);
}
HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Actions) {
    return Play<&HX_LD_BGAControl>(__func__, AdapterID, LD_ID, Actions);
}
HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    return Play<&HX_DG_GetInfo>(__func__, AdapterID, request);
}
HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return Play<&HX_DG_GetConfig>(__func__, AdapterID, request);
}
HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 DG_ID, DG_Config* config) {
    return Play<&HX_DG_SetConfig>(__func__, AdapterID, DG_ID, config);
}
HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly) {
    return Play<&HX_CreateOrModify_DG>(__func__, AdapterID, param, sizeOnly);
}
HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param* param) {
    return Play<&HX_CreateOrModify_VD>(__func__, AdapterID, param);
}
HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 DG_ID) {
    return Play<&HX_DG_Delete>(__func__, AdapterID, DG_ID);
}
HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* param) {
    return Play<&HX_DG_StartMigration>(__func__, AdapterID, param);
}
HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16 DG_ID, HX_U8 Actions) {
    return Play<&HX_DG_BGAControl>(__func__, AdapterID, DG_ID, Actions);
}
HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param* param) {
    return Play<&HX_LD_DG_StartRebuild>(__func__, AdapterID, param);
}
HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info) {
    return Play<&HX_BBU_GetInfo>(__func__, AdapterID, info);
}
HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 kind, HX_U16 lower, HX_U16 upper) {
    return Play<&HX_BBU_SetThreshold>(__func__, AdapterID, kind, lower, upper);
}
HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 action) {
    return Play<&HX_BBU_ChangePower>(__func__, AdapterID, action);
}
HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN status) {
    return Play<&HX_BBU_SetStatus>(__func__, AdapterID, status);
}
HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8 Page) {
    return Play<&HX_Flash_Erase>(__func__, AdapterID, Page);
}
HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, Flash_Data* piece) {
    return Play<&HX_Flash_Bin>(__func__, AdapterID, Actions, Type, piece);
}
HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events) {
    return Play<&HX_EVT_GetEvent>(__func__, AdapterID, max, count, events);
}
