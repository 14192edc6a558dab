// The functions of the flash memory: the rows of each.
#pragma once

#include "xml_rapi_flash.h"
#include "xml_rapi_function.h"

// HX_Flash_Erase
inline constexpr Function kHX_Flash_Erase{
    "HX_Flash_Erase",
    &XML_RA_FuncData::HX_Flash_Erase,
    Params{
        Param("AdapterID", &VX_Flash_Erase::AdapterID),
        Param("Page", &VX_Flash_Erase::Page),
    },
    Call<HX_Flash_Erase>(&VX_Flash_Erase::AdapterID, &VX_Flash_Erase::Page),
    StatusOnly<VX_Flash_Erase>(),
};

// HX_Flash_Option
inline constexpr Function kHX_Flash_Option{
    "HX_Flash_Option",
    &XML_RA_FuncData::HX_Flash_Option,
    Params{
        Param("Actions", &VX_Flash_Option::Actions),
        Param("AdapterID", &VX_Flash_Option::AdapterID),
        Param("Type", &VX_Flash_Option::Type),
        WholeTextParam("filepath", &VX_Flash_Option::filepath),
    },
    [](VX_Flash_Option& record) {
        record.RetVal = HX_Flash_Option(record.AdapterID, record.Actions, record.Type,
                                        reinterpret_cast<HX_U8*>(record.filepath));
        return true;
    },
    StatusOnly<VX_Flash_Option>(),
};

// HX_BIOS_Version
inline constexpr Function kHX_BIOS_Version{
    "HX_BIOS_Version",
    &XML_RA_FuncData::HX_BIOS_Version,
    Params{WholeTextParam("filepath", &VX_BIOS_Version::filepath)},
    [](VX_BIOS_Version& record) {
        record.RetVal = HX_BIOS_Version(reinterpret_cast<HX_U8*>(record.filepath), &record);
        return true;
    },
    Result{
        Col("RetVal", kU8, &VX_BIOS_Version::RetVal),
        NestSelf<kVersion_Info_BIOS>("BIOSInfo"),
    },
};
