// Logon and user groups, answered from the host's user, shadow and group databases.
//
// Functions called HX_ behave like the controller library's own: they return its codes, 0 for
// success, and the executor calls them with the fields of their request's record.
#pragma once

#include <cstddef>

#include "hxraid.h"

inline constexpr std::size_t kUserTextSize = 128;  // a name, domain or password, its NUL included

/// The rights of a user in the front end.
enum UserGroup : HX_U32 {
    AdminUser = 1,
    ValidUser = 2,
    UnknownUser = 3,
};

/// The record of HX_LogonUser. Everything except user name and password is ignored.
struct VX_HX_LogonUser {
    HX_U8 RetVal;
    UserGroup UG;
    char lpszUsername[kUserTextSize];
    char lpszDomain[kUserTextSize];
    char lpszPassword[kUserTextSize];
    HX_U32 dwLogonType;
    HX_U32 dwLogonProvider;
    void* phToken;
};
using VX_LogonUser = VX_HX_LogonUser;

/// The record of HX_GetUserGroup.
struct VX_HX_GetUserGroup {
    HX_U8 RetVal;
    UserGroup UG;
    char lpszUsername[kUserTextSize];
    char lpszDomain[kUserTextSize];
};
using VX_GetUserGroup = VX_HX_GetUserGroup;

/// The record of HX_GetUserName.
struct VX_HX_GetUserName {
    char UserName[kUserTextSize];
    char DomaimName[kUserTextSize];  // The interface spells it so.
    HX_U32 nsize;
    HX_U32 dsize;
    HX_U8 RetVal;
};
using VX_GetUserName = VX_HX_GetUserName;

/// Checks a password against the host's shadow database and sets *UG to the user's group.
///
/// Returns 0 when the password is right, 2 when the user has no shadow entry (*UG is UnknownUser),
/// 3 when the password is wrong; a locked or empty stored hash takes none. *UG depends on the user
/// alone, so it is the user's group also when the password is wrong, and UnknownUser when the host
/// has no group "root". A user name that fills its 128 bytes without a NUL has no shadow entry,
/// such a password is wrong. No copy of the password stays in memory; the caller wipes its own.
HX_BOOLEAN HX_LogonUser(HX_U8* lpszUsername, HX_U8* lpszDomain, HX_U8* lpszPassword,
                        HX_U32 dwLogonType, HX_U32 dwLogonProvider, void* phToken, UserGroup* UG);

/// Sets *UG to the user's group by the host's user and group databases: administrators are the user
/// "root" and the listed members of the group "root". Returns 1 when the host has no such group
/// (*UG is UnknownUser), otherwise 0, also for an unknown user.
HX_BOOLEAN HX_GetUserGroup(HX_U8* lpszUsername, HX_U8* lpszDomain, UserGroup* UG);

/// HX_LogonUser and HX_GetUserGroup for the fields of a request. They return false when there was
/// no memory to look up the group: the record may then hold a wrong group and must not be shown.
[[nodiscard]] bool AnswerLogon(VX_LogonUser& record);
[[nodiscard]] bool AnswerUserGroup(VX_GetUserGroup& record);

/// Writes "root" and its NUL to `username`, whatever the sizes say, and returns 0. The domain is
/// left alone.
HX_BOOLEAN HX_GetUserName(HX_U8* username, HX_U32 nsize, HX_U8* domainname, HX_U32 dsize);
