// The functions that the library answers itself, alone or by composing calls of the controller
// library: users, page sizes, disk groups and virtual disks, flash images.
//
// Those called HX_ stand beside the controller library's own in every respect: they return its
// codes, 0 for success, and the executor calls them with the fields of their request's record.
#pragma once

#include <cstddef>
#include <cstring>

#include "hxraid.h"

// Texts of a request -----------------------------------------------------------------------------

inline constexpr std::size_t kUserTextSize = 128;
inline constexpr std::size_t kFilePathSize = 256;

/// The text in a request's field of `size` bytes.
///
/// Null when there is none, or when no NUL ends it within the field: what was sent was longer, and
/// a name, password or path is never taken for a prefix of itself.
inline const char* WholeText(const HX_U8* field, std::size_t size) {
    if (field == nullptr || std::memchr(field, '\0', size) == nullptr) return nullptr;
    return reinterpret_cast<const char*>(field);
}

// Users ------------------------------------------------------------------------------------------

/// What a user may do with the front end.
enum UserGroup : HX_U32 {
    AdminUser = 1,
    ValidUser = 2,
    UnknownUser = 3,
};

/// The record of HX_LogonUser. Everything but user name and password is carried and ignored.
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
    char DomaimName[kUserTextSize];  // The m is how the field's users spell it.
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
/// has no group "root". A user name that fills its 128 bytes without a NUL is nobody's, such a
/// password is wrong. The texts remain the caller's: it wipes the password, of which no copy stays
/// behind here.
HX_BOOLEAN HX_LogonUser(HX_U8* lpszUsername, HX_U8* lpszDomain, HX_U8* lpszPassword,
                        HX_U32 dwLogonType, HX_U32 dwLogonProvider, void* phToken, UserGroup* UG);

/// Sets *UG to the user's group by the host's user and group databases: administrators are the user
/// "root" and the listed members of the group "root". Returns 1 when the host has no such group
/// (*UG is UnknownUser), otherwise 0, also for an unknown user.
HX_BOOLEAN HX_GetUserGroup(HX_U8* lpszUsername, HX_U8* lpszDomain, UserGroup* UG);

/// Writes "root" and its NUL to `username`, whatever the sizes say, and returns 0. The domain is
/// left alone.
HX_BOOLEAN HX_GetUserName(HX_U8* username, HX_U32 nsize, HX_U8* domainname, HX_U32 dsize);

// Paging -----------------------------------------------------------------------------------------
// Counts are entries. Each of the four changes the header and nothing else.

/// Asks for `numRequested` entries from `startingIndexOrId` on; every other field becomes 0.
void setRequestHeader(RequestHeader* pReq, HX_U8 requestType, HX_U16 startingIndexOrId,
                      HX_U16 numRequested);

/// Goes back to the first entry of the list.
void ResetRequestHeader(RequestHeader* pReq);

/// Cuts numRequested to what the adapter and the interface can move in one call.
void AdjustRequestNum(RequestHeader* pReq, HX_U16 maxAdapterSupport, HX_U16 maxAPISupport);

/// Sizes the next page when `numreturned` of the `maxRequested` entries wanted have come: what is
/// missing, cut as by AdjustRequestNum; 0 when nothing is. A complete list is left as it is.
void ResetnumRequestOfRequestHead(RequestHeader* pReq, HX_U16 maxAdapterSupport,
                                  HX_U16 maxRequested, HX_U16 numreturned, HX_U16 maxAPISupport);

/// KiB that the adapter can move in one call; 0 when it names no limit, when it does not answer,
/// and for all adapters together.
HX_U16 Get_Adapter_MaxBuffersize(HX_U8 AdapterID);

// Disk groups and virtual disks ------------------------------------------------------------------

/// Makes a disk group. The controller puts its number into DGID.
HX_U8 HX_DG_Create(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Sizes a disk group without making it. The controller puts the answer into Size.
HX_U8 HX_DG_GetSizeOnly(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Changes the disk group DGID.
HX_U8 HX_DG_Modify(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Makes a virtual disk on the disk group DGID, with that group's level, parity disks, legs and
/// sector size, and with its stripe size when the caller gives none. Whatever the group cannot be
/// asked for is 0.
HX_U8 HX_LD_Create_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam);

/// Changes the virtual disk VDID.
HX_U8 HX_LD_Modify_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam);

/// Overwrites the parameter's sector and stripe size with those of the disk group DGID, with 0 when
/// it cannot be asked.
void HX_DG_Set_DefaultValue(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam);

/// Whether a new virtual disk can have the disk: 0 when it can.
///
/// 73 when a block of a virtual disk lies on it, as far as the last page of the adapter's blocks
/// tells; 159 when it holds an operating system; 4 when there is no memory; else the code with
/// which that page failed.
HX_U8 HDisFreeDiskForSkua(HX_U8 AdapterID, HX_U16 DiskID);

/// A RAID level and the disks that it can be made of.
struct RaidSupport {
    HX_U8 raidmode;    // level code of the controller
    HX_U8 minhdcount;  // the fewest disks that it takes
    HX_BOOLEAN isEvenNum;
    HX_BOOLEAN isOddNum;
    HX_BOOLEAN isExactNum;  // never more than minhdcount
};

/// Chooses the level for a virtual disk of HDCount disks: 0 when `type` is false or nothing better
/// can be made of them, otherwise the best that the adapter offers. A level of a fixed number of
/// disks cuts HDCount to that number.
HX_U8 GetRaidMode(HX_U8 AdapterID, HX_BOOLEAN type, Create_LD_Param* ldParams);

/// Makes one virtual disk of all free disks (of the first 128 that the adapter lists), at the level
/// that GetRaidMode chooses. Returns the controller's code, or 4 when there is no memory.
HX_U8 HX_LD_QuickCreate(HX_U8 AdapterID, HX_BOOLEAN type);

// Calls by another name --------------------------------------------------------------------------

/// The controller keeps a battery's capacity to itself: does nothing and returns 0.
HX_U8 HX_BBU_SetMaxCapacity(HX_U8 BBU_ID, HX_U16 maxCapacity);

/// Starts a learning cycle of the battery, which is power action 0.
HX_U8 HX_BBU_ActRelearn(HX_U8 AdapterID);

/// Lists spare disks: the list of what disks are used for, which holds them too.
HX_U8 HX_PD_GetSpareInfo(HX_U8 AdapterID, HD_RAID_Status_Request* pHdRaidStatusReq);

/// The record of HX_PD_StartDataScrub.
struct VX_PD_StartDataScrub {
    HX_U16 HD_ID;
    HX_U8 AdapterID;
    HX_U8 RetVal;
};

/// Sets the disk and the adapter of a request to 0.
void HX_PD_StartDataScrub_Init(VX_PD_StartDataScrub* pData);

// Flash images -----------------------------------------------------------------------------------

/// The record of HX_Flash_Option.
struct VX_Flash_Option {
    char filepath[kFilePathSize];
    HX_U32 reserv;
    HX_U8 AdapterID;
    HX_U8 Actions;
    HX_U8 Type;
    HX_U8 RetVal;
};

/// The record of HX_BIOS_Version.
struct VX_BIOS_Version {
    char filepath[kFilePathSize];
    Version_Info_CIM VersionInfo;
    HX_U16 SubVenID;
    HX_U16 SubDevID;
    HX_U32 reserv;
    HX_U8 RetVal;
};

/// Moves a flash image in pieces of 32768 bytes: from the file to the adapter when `Actions` is 15,
/// from the adapter to the file when it is 240; every other action does nothing and returns 0.
///
/// Returns 1 without a path (also one that fills its 256 bytes without a NUL), when the file cannot
/// be opened, when it ends before the piece that is marked last, when the pieces cannot be numbered
/// in 16 bits and when there is no memory; otherwise the controller's code for the last piece.
///
/// Only regular files are opened. The file of an image that is read is made when it is missing, and
/// its mode becomes 0644. It is overwritten from its start and not shortened, and a failed write is
/// not reported. A symbolic link that somebody else owns is not followed to it.
HX_U8 HX_Flash_Option(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, HX_U8* filename);

/// Reads version and subsystem IDs from the header of the BIOS image `filename`. Returns 0, or 1
/// with the record untouched when the path is missing or too long, the file cannot be opened or is
/// shorter than 64 bytes.
HX_U8 HX_BIOS_Version(HX_U8* filename, VX_BIOS_Version* BiosVersion);

// Files, by descriptor ---------------------------------------------------------------------------

/// Writes `size` bytes where the file stands. Returns 1 when fewer were written, otherwise 0.
HX_U8 WriteToFile(int file, HX_U8* Data, HX_U32 size);

/// Reads up to `len` bytes from where the file stands and sets *ReadBytes to their number: fewer at
/// the end of the file or at an error. Returns 0.
HX_U8 ReadFromFile(int file, HX_U8* buf, HX_U32 len, HX_U32* ReadBytes);

/// The file's length; 0xFFFFFFFF when it has none or 32 bits do not hold it. The file stands where
/// it stood.
HX_U32 GetFileLen(int file);

/// lseek. Returns the new position; 0xFFFFFFFF when it fails or 32 bits do not hold it.
HX_U32 FileSeek(int file, HX_I32 offset, HX_U32 whence);
