// The functions of the host's users: the rows of each.
#pragma once

#include "xml_rapi_function.h"
#include "xml_rapi_user.h"

// HX_LogonUser
inline constexpr Function kHX_LogonUser{
    "HX_LogonUser",
    &XML_RA_FuncData::HX_LogonUser,
    Params{
        WholeTextParam("lpszUsername", &VX_LogonUser::lpszUsername),
        WholeTextParam("lpszDomain", &VX_LogonUser::lpszDomain),
        WholeTextParam("lpszPassword", &VX_LogonUser::lpszPassword),
    },
    AnswerLogon,
    StatusOnly<VX_LogonUser>(),
    Values<XML_RA_UserGroup_Value>(&VX_LogonUser::UG),
};

// HX_GetUserGroup
inline constexpr Function kHX_GetUserGroup{
    "HX_GetUserGroup",
    &XML_RA_FuncData::HX_GetUserGroup,
    Params{
        WholeTextParam("lpszUsername", &VX_GetUserGroup::lpszUsername),
        WholeTextParam("lpszDomain", &VX_GetUserGroup::lpszDomain),
    },
    AnswerUserGroup,
    StatusOnly<VX_GetUserGroup>(),
    Values<XML_RA_UserGroup_Value>(&VX_GetUserGroup::UG),
};

// HX_GetUserName
inline constexpr Function kHX_GetUserName{
    "HX_GetUserName",
    &XML_RA_FuncData::HX_GetUserName,
    NoParams<VX_GetUserName>(),
    [](VX_GetUserName& record) {
        record.nsize = sizeof record.UserName;
        record.dsize = sizeof record.DomaimName;
        record.UserName[0] = '\0';
        record.RetVal = HX_GetUserName(reinterpret_cast<HX_U8*>(record.UserName), record.nsize,
                                       reinterpret_cast<HX_U8*>(record.DomaimName), record.dsize);
        return true;
    },
    StatusOnly<VX_GetUserName>(),
    Values<XML_RA_UserName_Value, VX_GetUserName>(),
};
