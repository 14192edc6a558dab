// The version registry: the numbers that the management function "VX_Module_GetInfo" reports.
#pragma once

enum ModuleName : int { PRODUCT = 1, PHP_VEXORAPI = 2, VEXORAPI = 3, HXRAIDSVC = 4 };

extern constinit int productVersionMajor, productVersionMinor, productVersionOEM,
    productVersionBuild;
extern constinit int php_vexorapiVersionMajor, php_vexorapiVersionMinor, php_vexorapiVersionOEM,
    php_vexorapiVersionBuild;
extern constinit int vexorapiVersionMajor, vexorapiVersionMinor, vexorapiVersionOEM,
    vexorapiVersionBuild;
extern constinit int eventSvcVersionMajor, eventSvcVersionMinor, eventSvcVersionOEM,
    eventSvcVersionBuild;

/// The path of the event service's version file as last read; empty when it did not fit.
extern constinit char m_VerFile[512];

/// Stores a module's four numbers; any other `module` is ignored.
void STORE_KEY(int module, int Major, int Minor, int OEM, int Build);

/// Stores the built-in versions of all four modules.
void VX_VER_INIT();

/// Reads the event service's version from "/hxraidver.dat" (four numbers joined by dots), or uses
/// the built-in one when that is no regular file or cannot be opened. A number too large for an int
/// becomes the largest int. Fields missing in the file keep their values.
void getEventSvcVersion();
