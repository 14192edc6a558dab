// The function table: its names, their order, and the handlers that each installs.
#include "vexorapi_functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "vexorapi_element.h"

namespace {

struct Entry {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
};

constexpr Entry kEntries[] = {
    {"HX_API_Version", XML_HX_API_Version_SEH, XML_HX_API_Version_EEH},
    {"HX_Adapter_GetCount", XML_HX_Adapter_GetCount_SEH, XML_HX_Adapter_GetCount_EEH},
    {"HX_Adapter_GetInfo", XML_HX_Adapter_GetInfo_SEH, XML_HX_Adapter_GetInfo_EEH},
    {"HX_Adapter_SetConfig", XML_HX_Adapter_SetConfig_SEH, XML_HX_Adapter_SetConfig_EEH},
    {"HX_Adapter_GetConfig", XML_HX_Adapter_GetConfig_SEH, XML_HX_Adapter_GetConfig_EEH},
    {"HX_AdapterMute", XML_HX_AdapterMute_SEH, XML_HX_AdapterMute_EEH},
    {"HX_PD_GetHDInfo", XML_HX_PD_GetHDInfo_SEH, XML_HX_PD_GetHDInfo_EEH},
    {"HX_PD_GetHDInfo_Ext", XML_HX_PD_GetHDInfo_Ext_SEH, XML_HX_PD_GetHDInfo_Ext_EEH},
    {"HX_PD_GetExpanderInfo", XML_HX_PD_GetExpanderInfo_SEH, XML_HX_PD_GetExpanderInfo_EEH},
    {"HX_PD_GetPMInfo", XML_HX_PD_GetPMInfo_SEH, XML_HX_PD_GetPMInfo_EEH},
    {"HX_PD_GetFreeSpaceInfo", XML_HX_PD_GetFreeSpaceInfo_SEH, XML_HX_PD_GetFreeSpaceInfo_EEH},
    {"HX_PD_GetConfig", XML_HX_PD_GetConfig_SEH, XML_HX_PD_GetConfig_EEH},
    {"HX_PD_GetSmartStatus", XML_HX_PD_GetSmartStatus_SEH, XML_HX_PD_GetSmartStatus_EEH},
    {"HX_PD_GetRCT", XML_HX_PD_GetRCT_SEH, XML_HX_PD_GetRCT_EEH},
    {"HX_PD_SetConfig", XML_HX_PD_SetConfig_SEH, XML_HX_PD_SetConfig_EEH},
    {"HX_LocateArrayDevice", XML_HX_LocateArrayDevice_SEH, XML_HX_LocateArrayDevice_EEH},
    {"HX_ENC_GetEnclosureInfo", XML_HX_ENC_GetEnclosureInfo_SEH, XML_HX_ENC_GetEnclosureInfo_EEH},
    {"HX_ENC_GetElementInfo", XML_HX_ENC_GetElementInfo_SEH, XML_HX_ENC_GetElementInfo_EEH},
    {"HX_ENC_GetElementConfig", XML_HX_ENC_GetElementConfig_SEH, XML_HX_ENC_GetElementConfig_EEH},
    {"HX_PD_WipeHDMDD", XML_HX_PD_WipeHDMDD_SEH, XML_HX_PD_WipeHDMDD_EEH},
    {"HX_PD_SetHDStatus", XML_HX_PD_SetHDStatus_SEH, XML_HX_PD_SetHDStatus_EEH},
    {"HX_PD_FreeHD2GlobalSpare", XML_HX_PD_FreeHD2GlobalSpare_SEH,
     XML_HX_PD_FreeHD2GlobalSpare_EEH},
    {"HX_PD_Spare2FreeHD", XML_HX_PD_Spare2FreeHD_SEH, XML_HX_PD_Spare2FreeHD_EEH},
    {"HX_PD_GetHDRaidStatus", XML_HX_PD_GetHDRaidStatus_SEH, XML_HX_PD_GetHDRaidStatus_EEH},
    {"HX_PD_GetMBRInfo", XML_HX_PD_GetMBRInfo_SEH, XML_HX_PD_GetMBRInfo_EEH},
    {"HX_BLK_GetInfo", XML_HX_BLK_GetInfo_SEH, XML_HX_BLK_GetInfo_EEH},
    {"HX_BLK_GetHDBlock", XML_HX_BLK_GetHDBlock_SEH, XML_HX_BLK_GetHDBlock_EEH},
    {"HX_LD_GetInfo", XML_HX_LD_GetInfo_SEH, XML_HX_LD_GetInfo_EEH},
    {"HX_LD_GetTargetLDInfo", XML_HX_LD_GetTargetLDInfo_SEH, XML_HX_LD_GetTargetLDInfo_EEH},
    {"HX_LD_Delete", XML_HX_LD_Delete_SEH, XML_HX_LD_Delete_EEH},
    {"HX_LD_Create", XML_HX_LD_Create_SEH, XML_HX_LD_Create_EEH},
    {"HX_LD_QuickCreate", XML_HX_LD_QuickCreate_SEH, XML_HX_LD_QuickCreate_EEH},
    {"HX_LD_GetMaxSize", XML_HX_LD_GetMaxSize_SEH, XML_HX_LD_GetMaxSize_EEH},
    {"HX_LD_PauseAll", XML_HX_LD_PauseAll_SEH, XML_HX_LD_PauseAll_EEH},
    {"HX_LD_GetStatus", XML_HX_LD_GetStatus_SEH, XML_HX_LD_GetStatus_EEH},
    {"HX_LD_GetConfig", XML_HX_LD_GetConfig_SEH, XML_HX_LD_GetConfig_EEH},
    {"HX_LD_SetConfig", XML_HX_LD_SetConfig_SEH, XML_HX_LD_SetConfig_EEH},
    {"HX_LD_StartRebuild", XML_HX_LD_StartRebuild_SEH, XML_HX_LD_StartRebuild_EEH},
    {"HX_LD_StartConsistencyCheck", XML_HX_LD_StartConsistencyCheck_SEH,
     XML_HX_LD_StartConsistencyCheck_EEH},
    {"HX_LD_StartINIT", XML_HX_LD_StartINIT_SEH, XML_HX_LD_StartINIT_EEH},
    {"HX_LD_StartMigration", XML_HX_LD_StartMigration_SEH, XML_HX_LD_StartMigration_EEH},
    {"HX_LD_GetMigratedLdSize", XML_HX_LD_GetMigratedLdSize_SEH, XML_HX_LD_GetMigratedLdSize_EEH},
    {"HX_LD_BGAControl", XML_HX_LD_BGAControl_SEH, XML_HX_LD_BGAControl_EEH},
    {"HX_LD_Import", XML_HX_LD_Import_SEH, XML_HX_LD_Import_EEH},
    {"HX_Flash_Erase", XML_HX_Flash_Erase_SEH, XML_HX_Flash_Erase_EEH},
    {"HX_LogonUser", XML_HX_LogonUser_SEH, XML_HX_LogonUser_EEH},
    {"HX_GetUserName", XML_HX_GetUserName_SEH, XML_HX_GetUserName_EEH},
    {"HX_GetUserGroup", XML_HX_GetUserGroup_SEH, XML_HX_GetUserGroup_EEH},
    {"HX_DG_Create", XML_HX_DG_Create_SEH, XML_HX_DG_Create_EEH},
    {"HX_DG_GetSizeOnly", XML_HX_DG_GetSizeOnly_SEH, XML_HX_DG_GetSizeOnly_EEH},
    {"HX_DG_Modify", XML_HX_DG_Modify_SEH, XML_HX_DG_Modify_EEH},
    {"HX_DG_GetInfo", XML_HX_DG_GetInfo_SEH, XML_HX_DG_GetInfo_EEH},
    {"HX_DG_Delete", XML_HX_DG_Delete_SEH, XML_HX_DG_Delete_EEH},
    {"HX_CreateOrModify_VD", XML_HX_CreateOrModify_VD_SEH, XML_HX_CreateOrModify_VD_EEH},
    {"HX_LD_DG_StartRebuild", XML_HX_LD_DG_StartRebuild_SEH, XML_HX_LD_DG_StartRebuild_EEH},
    {"HX_DG_StartMigration", XML_HX_DG_StartMigration_SEH, XML_HX_DG_StartMigration_EEH},
    {"HX_DG_BGAControl", XML_HX_DG_BGAControl_SEH, XML_HX_DG_BGAControl_EEH},
    {"HX_DG_GetConfig", XML_HX_DG_GetConfig_SEH, XML_HX_DG_GetConfig_EEH},
    {"HX_DG_SetConfig", XML_HX_DG_SetConfig_SEH, XML_HX_DG_SetConfig_EEH},
    {"HX_Flash_Option", XML_HX_Flash_Option_SEH, XML_HX_Flash_Option_EEH},
    {"HX_BIOS_Version", XML_HX_BIOS_Version_SEH, XML_HX_BIOS_Version_EEH},
    {"HX_PD_FreeHD2DGSpare", XML_HX_PD_FreeHD2DGSpare_SEH, XML_HX_PD_FreeHD2DGSpare_EEH},
    {"HX_BBU_GetInfo", XML_HX_BBU_GetInfo_SEH, XML_HX_BBU_GetInfo_EEH},
    {"HX_BBU_SetThreshold", XML_HX_BBU_SetThreshold_SEH, XML_HX_BBU_SetThreshold_EEH},
    {"HX_BBU_ChangePower", XML_HX_BBU_ChangePower_SEH, XML_HX_BBU_ChangePower_EEH},
    {"HX_BBU_SetStatus", XML_HX_BBU_SetStatus_SEH, XML_HX_BBU_SetStatus_EEH},
    {"HX_BBU_SetMaxCapacity", XML_HX_BBU_SetMaxCapacity_SEH, XML_HX_BBU_SetMaxCapacity_EEH},
    {"HX_BBU_ActRelearn", XML_HX_BBU_ActRelearn_SEH, XML_HX_BBU_ActRelearn_EEH},
    {"HX_PD_StartDataScrub", XML_HX_PD_StartDataScrub_SEH, XML_HX_PD_StartDataScrub_EEH},
    {"HX_LD_Create_OnDG", XML_HX_LD_Create_OnDG_SEH, XML_HX_LD_Create_OnDG_EEH},
    {"HX_LD_Modify_OnDG", XML_HX_LD_Modify_OnDG_SEH, XML_HX_LD_Modify_OnDG_EEH},
    {"HX_PD_GetSpareInfo", XML_HX_PD_GetSpareInfo_SEH, XML_HX_PD_GetSpareInfo_EEH},
    {"HX_PD_GetBGAStatus", XML_HX_PD_GetBGAStatus_SEH, XML_HX_PD_GetBGAStatus_EEH},
    {"HX_PD_BGAControl", XML_HX_PD_BGAControl_SEH, XML_HX_PD_BGAControl_EEH},
    {"HX_PD_StartMediaPatrol", XML_HX_PD_StartMediaPatrol_SEH, XML_HX_PD_StartMediaPatrol_EEH},
};
static_assert(std::size(kEntries) == 75);

// ---- what the compiler can tell ----------------------------------------------------------------

#define NAME(function) #function,
constexpr const char* kListed[] = {VENDOR_FUNCTIONS(NAME)};
#undef NAME
static_assert(std::ranges::equal(
    kEntries, kListed, {}, [](const Entry& entry) { return std::string_view(entry.name); },
    [](const char* name) { return std::string_view(name); }));

constexpr bool NamesAreDistinct() {
    for (const Entry& one : kEntries) {
        for (const Entry& other : kEntries) {
            if (&one != &other && std::string_view(one.name) == other.name) return false;
        }
    }
    return true;
}
static_assert(NamesAreDistinct());

// ---- the lookup --------------------------------------------------------------------------------

int Offer(XMLElement& elmt, const char* name) {
    const char* none[] = {nullptr};
    return RA_FuncElementDispatcher(&elmt, name, none);
}

TEST(FunctionTable, InstallsTheHandlersOfEachFunction) {
    for (const Entry& entry : kEntries) {
        XMLElement elmt{};
        EXPECT_EQ(1, Offer(elmt, entry.name)) << entry.name;
        EXPECT_EQ(entry.start, elmt.StartHandler) << entry.name;
        EXPECT_EQ(entry.end, elmt.EndHandler) << entry.name;
        EXPECT_EQ(nullptr, elmt.CharDataHandler) << entry.name;
    }
}

TEST(FunctionTable, HasAnEndHandlerOfItsOwnForEachFunction) {
    std::set<XML_EndElementHandler> handlers;
    for (const Entry& entry : kEntries) handlers.insert(entry.end);
    EXPECT_EQ(75u, handlers.size());
}

TEST(FunctionTable, DeclinesNamesThatDifferInTheirLetterCase) {
    for (const Entry& entry : kEntries) {
        std::string name = entry.name;
        for (char& letter : name) {
            const char kept = letter;
            if (letter == '_' || (letter >= '0' && letter <= '9')) continue;
            letter = static_cast<char>(letter ^ 0x20);
            XMLElement elmt{};
            EXPECT_EQ(0, Offer(elmt, name.c_str())) << name;
            EXPECT_EQ(nullptr, elmt.StartHandler) << name;
            EXPECT_EQ(nullptr, elmt.EndHandler) << name;
            letter = kept;
        }
    }
}

TEST(FunctionTable, DeclinesNamesThatAreShorterOrLonger) {
    for (const Entry& entry : kEntries) {
        const std::string name = entry.name;
        XMLElement elmt{};
        EXPECT_EQ(0, Offer(elmt, (name + "_").c_str())) << name;
        EXPECT_EQ(0, Offer(elmt, (" " + name).c_str())) << name;
        // One name is the beginning of another, and itself without "_Ext".
        EXPECT_EQ(0, Offer(elmt, name.substr(0, name.size() - 1).c_str())) << name;
        EXPECT_EQ(0, Offer(elmt, name.substr(1).c_str())) << name;
    }
}

TEST(FunctionTable, TakesEachNameExactlyOnly) {
    for (const char* name :
         {"hx_api_version", "HX_API_VERSION", "HX_API_Versio", "HX_API_Version ", " HX_API_Version",
          "HX_API_Version2", "API_Version", "HX_", "", "VX_Module_GetInfo"}) {
        XMLElement elmt{};
        EXPECT_EQ(0, Offer(elmt, name)) << name;
    }
}

TEST(FunctionTable, HasNoEntryForWhatOnlyHasARecord) {
    XMLElement elmt{};
    EXPECT_EQ(0, Offer(elmt, "HX_PD_HDMPCheck"));
    EXPECT_EQ(0, Offer(elmt, "HX_CreateOrModify_DG"));
}

TEST(FunctionTable, ChangesNothingWhenItDeclines) {
    const auto start = [](void*, const XML_Char*, const XML_Char**) {};
    const auto end = [](void*, const XML_Char*) {};
    XMLElement elmt{};
    elmt.StartHandler = start;
    elmt.EndHandler = end;
    EXPECT_EQ(0, Offer(elmt, "HX_PD_HDMPCheck"));
    EXPECT_EQ(+start, elmt.StartHandler);
    EXPECT_EQ(+end, elmt.EndHandler);
    EXPECT_EQ(nullptr, elmt.Ext);
}

TEST(FunctionTable, LeavesTheTextHandlerAsItIs) {
    const auto text = [](void*, const XML_Char*, int) {};
    XMLElement elmt{};
    elmt.CharDataHandler = text;
    EXPECT_EQ(1, Offer(elmt, "HX_Adapter_GetInfo"));
    EXPECT_EQ(+text, elmt.CharDataHandler);
}

}  // namespace
