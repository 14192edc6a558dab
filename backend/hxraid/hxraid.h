/*
 * hxraid.h: the interface of libhxraid, the RAID controller's management library.
 *
 * Owns every record and every function that passes between that library and its callers, and
 * nothing else. It compiles as C11 and as C++20.
 *
 * The records are a wire format between two binaries that are built apart, so their bytes are the
 * same on 32 and on 64 bits: every field stands at its natural offset, whatever alignment the
 * platform gives it (i386 would put a 64-bit member at a multiple of 4), and each gap is a named
 * reserved member. The number in front of a field's comment is its offset.
 *
 * What holds for all of them, unless a declaration says otherwise:
 *  - Numbers are little-endian and unsigned. An HX_BOOLEAN is 0 or 1; a reader takes every other
 *    value for 1. Codes (states, levels, actions) are the controller's and pass unchanged.
 *  - Sizes, capacities and block addresses count 512-byte sectors.
 *  - Texts are bytes in a fixed field. A shorter text ends with a NUL; one that fills its field
 *    has none, so nobody may rely on a terminator.
 *  - Reserved members are zero when a record is sent and are not looked at when it is received.
 *  - Functions return 0 for success, else the controller's error code. What a failed call has
 *    written to its output is unspecified, so the caller clears it beforehand.
 *  - Every buffer belongs to the caller. The library keeps no pointer after it has returned.
 *  - One call at a time: the library is not safe against two threads at once.
 *  - A fork: a library need not work in the child of a process that has initialised it, so a
 *    caller initialises after the fork. The virtual controller and that of the kernel's arrays
 *    notice a fork and open their files anew.
 */
#ifndef HXRAID_H
#define HXRAID_H

/* The version of this interface. It rises when a function or a constant is added; layouts and
 * existing functions never change. */
#define HXRAID_VERSION 1

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Scalars ---------------------------------------------------------------------------- */

typedef uint8_t HX_U8;
typedef uint16_t HX_U16;
typedef uint32_t HX_U32;
typedef int32_t HX_I32;
typedef uint8_t HX_BOOLEAN; /* 0 or 1 */

/* 64 bits, or the same as two halves. */
typedef union HX_U64 {
    uint64_t value; /* 0 */
    struct {
        HX_U32 low;  /* 0 */
        HX_U32 high; /* 4 */
    } half;
} HX_U64;
static_assert(sizeof(HX_U64) == 8, "HX_U64 is shared with another binary");
static_assert(offsetof(HX_U64, half.low) == 0, "the low half comes first");
static_assert(offsetof(HX_U64, half.high) == 4, "the high half comes second");

/* ---- Values with a meaning -------------------------------------------------------------- */

#define HX_SUCCESS 0           /* the code of a call that worked */
#define HX_ALL_ADAPTERS 255    /* AdapterID: every adapter; no function here takes it itself */
#define HX_NEW_ID 65535        /* DGID, VDID: make a new disk group or virtual disk */
#define HX_LIST_COMPLETE 65535 /* nextStartingIndex: nothing follows */

#define HX_REQUEST_BY_INDEX 1 /* requestType: entries from an index on */
#define HX_REQUEST_BY_ID 2    /* requestType: the one entry with that ID */

#define HX_MAX_PORTS 8            /* ports of an adapter with a SAS address in Adapter_Info */
#define HX_MAX_HDS 128            /* disks that one record can list */
#define HX_MAX_VD_SLOTS 32        /* virtual-disk slots of a disk group */
#define HX_MAX_DG_SPARES 8        /* spare disks of a disk group */
#define HX_NAME_SIZE 16           /* bytes of a Name field */
#define HX_FLASH_PIECE_SIZE 32768 /* data bytes of one piece of a flash image */
#define HX_EVENTS_PER_CALL 50     /* events that one HX_EVT_GetEvent is asked for */

#define HX_FLASH_WRITE 15 /* HX_Flash_Bin: from the caller to the adapter */
#define HX_FLASH_READ 240 /* HX_Flash_Bin: from the adapter to the caller */

#define HX_BBU_THRESHOLD_TEMPERATURE 1 /* HX_BBU_SetThreshold: bounds in degrees Celsius */
#define HX_BBU_THRESHOLD_VOLTAGE 2     /* HX_BBU_SetThreshold: bounds in millivolts */

/* Element types of an enclosure: the element type codes of SCSI Enclosure Services (SES). */
#define HX_ELEMENT_POWER_SUPPLY 0x02
#define HX_ELEMENT_FAN 0x03
#define HX_ELEMENT_TEMPERATURE 0x04
#define HX_ELEMENT_DOOR 0x05
#define HX_ELEMENT_ALARM 0x06
#define HX_ELEMENT_VOLTAGE 0x12

/* ---- Paging ----------------------------------------------------------------------------- */

/* The head of a list request and of its reply. The caller says what it wants; the library fills
 * in numReturned and nextStartingIndex and puts numReturned records behind the header. */
typedef struct RequestHeader {
    HX_U8 version;            /*  0: 0 */
    HX_U8 requestType;        /*  1: HX_REQUEST_BY_INDEX or HX_REQUEST_BY_ID */
    HX_U16 startingIndexOrId; /*  2: first entry wanted */
    HX_U16 numRequested;      /*  4: entries that the caller has room for */
    HX_U16 numReturned;       /*  6: entries behind the header, at most numRequested */
    HX_U16 nextStartingIndex; /*  8: where the next page starts, or HX_LIST_COMPLETE */
    HX_U8 reserved1[6];       /* 10 */
} RequestHeader;
static_assert(sizeof(RequestHeader) == 16, "RequestHeader is shared with another binary");
static_assert(offsetof(RequestHeader, nextStartingIndex) == 8, "RequestHeader is a wire format");

/* ---- Versions --------------------------------------------------------------------------- */

/* Version of a driver. */
typedef struct Version_Info {
    HX_U32 VerMajor; /*  0 */
    HX_U32 VerMinor; /*  4 */
    HX_U32 VerOEM;   /*  8 */
    HX_U32 VerBuild; /* 12 */
} Version_Info;
static_assert(sizeof(Version_Info) == 16, "Version_Info is shared with another binary");

/* Version of a flash image (BIOS, firmware, boot loader), in the four parts of CIM's software
 * identity. */
typedef struct Version_Info_CIM {
    HX_U16 MajorVersion;   /* 0 */
    HX_U16 MinorVersion;   /* 2 */
    HX_U16 RevisionNumber; /* 4 */
    HX_U16 BuildNumber;    /* 6 */
} Version_Info_CIM;
static_assert(sizeof(Version_Info_CIM) == 8, "Version_Info_CIM is shared with another binary");

/* ---- Links ------------------------------------------------------------------------------ */

/* One end of a link. A SAS address is eight bytes, most significant first, as SAS writes it. */
typedef struct Link_Endpoint {
    HX_U16 DevID;         /*  0: number among the devices of its type */
    HX_U8 DevType;        /*  2: what the device is, a code of the controller */
    HX_U8 PhyCnt;         /*  3: phys of the link, 0 to 8 */
    HX_U8 PhyID[8];       /*  4: their numbers; the first PhyCnt count */
    HX_U8 SAS_Address[8]; /* 12 */
    HX_U16 EnclosureID;   /* 20: the enclosure it sits in */
    HX_U8 Reserved[2];    /* 22 */
} Link_Endpoint;
static_assert(sizeof(Link_Endpoint) == 24, "Link_Endpoint is shared with another binary");
static_assert(offsetof(Link_Endpoint, SAS_Address) == 12, "Link_Endpoint is a wire format");
static_assert(offsetof(Link_Endpoint, EnclosureID) == 20, "Link_Endpoint is a wire format");

/* A device and what it hangs on. */
typedef struct Link_Entity {
    Link_Endpoint Parent; /*  0 */
    Link_Endpoint Self;   /* 24 */
} Link_Entity;
static_assert(sizeof(Link_Entity) == 48, "Link_Entity is shared with another binary");
static_assert(offsetof(Link_Entity, Self) == 24, "Link_Entity is a wire format");

/* ---- Adapters --------------------------------------------------------------------------- */

/* What an adapter is and what it can do. */
typedef struct Adapter_Info {
    Version_Info DriverVersion;            /*   0 */
    Version_Info_CIM BIOSVersion;          /*  16 */
    Version_Info_CIM FirmwareVersion;      /*  24 */
    Version_Info_CIM BootLoaderVersion;    /*  32 */
    HX_U32 SystemIOBusNumber;              /*  40: PCI bus */
    HX_U32 SlotNumber;                     /*  44: PCI slot */
    HX_U32 InterruptLevel;                 /*  48 */
    HX_U32 InterruptVector;                /*  52 */
    HX_U16 VenID;                          /*  56: PCI vendor ID */
    HX_U16 SubVenID;                       /*  58: PCI subsystem vendor ID */
    HX_U16 DevID;                          /*  60: PCI device ID */
    HX_U16 SubDevID;                       /*  62: PCI subsystem ID */
    HX_U8 RevisionID;                      /*  64: PCI revision */
    HX_U8 MaxPDPerVD;                      /*  65: disks of a virtual disk */
    HX_U16 StripeSizeSupported;            /*  66: stripe sizes offered, one bit each */
    HX_U32 AdvancedFeatures;               /*  68: bits of the controller */
    HX_U8 MaxPDPerDG;                      /*  72: disks of a disk group */
    HX_U8 MaxVDPerDG;                      /*  73: virtual disks of a disk group */
    HX_U8 MaxParityDisks;                  /*  74: parity disks of a virtual disk */
    HX_U8 PortCount;                       /*  75: can exceed HX_MAX_PORTS */
    HX_U8 PortSupportType;                 /*  76: what the ports take: bits of the controller */
    HX_U8 Features;                        /*  77: rates that can be set: 0x01 rebuild,
                                                   0x02 initialisation, 0x04 synchronisation,
                                                   0x08 migration, 0x10 media patrol,
                                                   0x40 copy back */
    HX_BOOLEAN AlarmSupport;               /*  78 */
    HX_U8 MaxBlockPerPD;                   /*  79: blocks of a disk */
    HX_U8 MaxHD;                           /*  80: disks, when 255 suffices */
    HX_U8 Reserved1;                       /*  81 */
    HX_U16 MaxHD_Ext;                      /*  82: disks */
    HX_U8 MaxExpander;                     /*  84 */
    HX_U8 MaxPM;                           /*  85: port multipliers */
    HX_U8 MaxLogicalDrive;                 /*  86: virtual disks */
    HX_U8 Reserved2;                       /*  87 */
    HX_U16 LogicalDriverMode;              /*  88: RAID levels offered: 0x0001 RAID 0,
                                                   0x0002 RAID 1, 0x0004 RAID 10,
                                                   0x0008 level code 0x11, 0x0010 RAID 5,
                                                   0x0020 RAID 6, 0x0040 RAID 50,
                                                   0x0100 RAID 60 */
    HX_BOOLEAN DiskGroupSupport;           /*  90 */
    HX_U8 WWN[8];                          /*  91: world wide name, most significant first */
    HX_U8 Reserved3;                       /*  99 */
    HX_U16 MaxBufferSize;                  /* 100: KiB that one call can move; 0 no limit */
    char SerialNo[20];                     /* 102: one that begins with "0" counts as none */
    HX_U8 PortSasAddress[HX_MAX_PORTS][8]; /* 122: the first PortCount count */
    HX_BOOLEAN img_health;                 /* 186: all of the flash */
    HX_BOOLEAN autoload_img_health;        /* 187 */
    HX_BOOLEAN boot_loader_img_health;     /* 188 */
    HX_BOOLEAN firmware_img_health;        /* 189 */
    HX_BOOLEAN boot_rom_img_health;        /* 190 */
    HX_BOOLEAN hba_info_img_health;        /* 191 */
    HX_U8 Reserved4[64];                   /* 192 */
} Adapter_Info;
static_assert(sizeof(Adapter_Info) == 256, "Adapter_Info is shared with another binary");
static_assert(offsetof(Adapter_Info, SystemIOBusNumber) == 40, "Adapter_Info is a wire format");
static_assert(offsetof(Adapter_Info, MaxHD_Ext) == 82, "Adapter_Info is a wire format");
static_assert(offsetof(Adapter_Info, MaxBufferSize) == 100, "Adapter_Info is a wire format");
static_assert(offsetof(Adapter_Info, SerialNo) == 102, "Adapter_Info is a wire format");
static_assert(offsetof(Adapter_Info, PortSasAddress) == 122, "Adapter_Info is a wire format");
static_assert(offsetof(Adapter_Info, img_health) == 186, "Adapter_Info is a wire format");

/* What can be set on an adapter. A rate is the share of its time, in percent (0 to 100), that the
 * controller gives to that activity. */
typedef struct Adapter_Config_V2 {
    HX_BOOLEAN AlarmOn;         /*  0 */
    HX_BOOLEAN AutoRebuildOn;   /*  1: a spare steps in by itself */
    HX_U8 BGARate;              /*  2: background activities at large */
    HX_U8 SyncRate;             /*  3 */
    HX_U8 InitRate;             /*  4 */
    HX_U8 RebuildRate;          /*  5 */
    HX_U8 MigrationRate;        /*  6 */
    HX_U8 CopybackRate;         /*  7 */
    HX_U8 PollSMARTStatus;      /*  8: 0 or 1 */
    HX_U8 MediaPatrolRate;      /*  9 */
    HX_U8 CopyBack;             /* 10: 0 or 1 */
    HX_U8 InterruptCoalescing;  /* 11: 0 or 1 */
    HX_U8 ModuleConsolidate;    /* 12: 0 or 1 */
    HX_BOOLEAN v_atapi_disable; /* 13: the virtual ATAPI device is off */
    HX_U8 port_phy_ctrl[8];     /* 14: per port, a code of the controller */
    HX_U8 Reserved[10];         /* 22 */
} Adapter_Config_V2;
static_assert(sizeof(Adapter_Config_V2) == 32, "Adapter_Config_V2 is shared with another binary");
static_assert(offsetof(Adapter_Config_V2, port_phy_ctrl) == 14, "a wire format");

/* ---- Physical disks --------------------------------------------------------------------- */

/* A disk; Link.Self.DevID is its ID. Model, serial number and firmware version have the widths of
 * ATA's IDENTIFY DEVICE data, which hold the SCSI INQUIRY texts as well. */
typedef struct HD_Info {
    Link_Entity Link;        /*   0 */
    HX_U8 AdapterID;         /*  48 */
    HX_U8 Status;            /*  49 */
    HX_U8 HDType;            /*  50: bits 0 to 2 connection, 3 optical, 4 tape, 5 enclosure;
                                     looked at where ConnectionType or DeviceType is 0 */
    HX_U8 PIOMode;           /*  51: highest mode that the disk offers */
    HX_U8 MDMAMode;          /*  52 */
    HX_U8 UDMAMode;          /*  53 */
    HX_U8 ConnectionType;    /*  54: bits of the controller; 0 when it says it by HDType */
    HX_U8 DeviceType;        /*  55: SCSI peripheral device type; 0 is a disk */
    HX_U32 FeatureSupport;   /*  56: bits of the controller */
    HX_U8 CurrentPIOMode;    /*  60: mode in use */
    HX_U8 CurrentMDMAMode;   /*  61 */
    HX_U8 CurrentUDMAMode;   /*  62 */
    HX_U8 Reserved1;         /*  63 */
    char Model[40];          /*  64: maker, a blank, model */
    char SerialNo[20];       /* 104 */
    char FWVersion[8];       /* 124 */
    HX_U8 WWN[8];            /* 132: world wide name, most significant first */
    HX_U8 Reserved2[4];      /* 140 */
    HX_U64 Size;             /* 144: sectors */
    HX_U8 ActivityLEDStatus; /* 152 */
    HX_U8 LocateLEDStatus;   /* 153 */
    HX_U8 ErrorLEDStatus;    /* 154 */
    HX_U8 Reserved3[93];     /* 155 */
} HD_Info;
static_assert(sizeof(HD_Info) == 248, "HD_Info is shared with another binary");
static_assert(offsetof(HD_Info, FeatureSupport) == 56, "HD_Info is a wire format");
static_assert(offsetof(HD_Info, Model) == 64, "HD_Info is a wire format");
static_assert(offsetof(HD_Info, SerialNo) == 104, "HD_Info is a wire format");
static_assert(offsetof(HD_Info, FWVersion) == 124, "HD_Info is a wire format");
static_assert(offsetof(HD_Info, Size) == 144, "HD_Info is a wire format");
static_assert(offsetof(HD_Info, ActivityLEDStatus) == 152, "HD_Info is a wire format");

/* An expander. The texts are those of SAS's REPORT MANUFACTURER INFORMATION (8, 16, 4 and 8
 * characters) with room for a terminator; the counts are those of REPORT GENERAL. */
typedef struct Exp_Info {
    Link_Entity Link;                  /*   0: Link.Self.DevID is its ID */
    HX_U8 AdapterID;                   /*  48 */
    HX_BOOLEAN Configuring;            /*  49: it is changing its own routing */
    HX_BOOLEAN RouteTableConfigurable; /*  50 */
    HX_U8 PhyCount;                    /*  51 */
    HX_U16 ExpChangeCount;             /*  52: wraps */
    HX_U16 MaxRouteIndexes;            /*  54: per phy */
    char VendorID[9];                  /*  56 */
    char ProductID[17];                /*  65 */
    char ProductRev[5];                /*  82 */
    char ComponentVendorID[9];         /*  87 */
    HX_U16 ComponentID;                /*  96 */
    HX_U8 ComponentRevisionID;         /*  98 */
    HX_U8 Reserved[33];                /*  99 */
} Exp_Info;
static_assert(sizeof(Exp_Info) == 132, "Exp_Info is shared with another binary");
static_assert(offsetof(Exp_Info, VendorID) == 56, "Exp_Info is a wire format");
static_assert(offsetof(Exp_Info, ComponentID) == 96, "Exp_Info is a wire format");

/* A SATA port multiplier: what its general status registers GSCR[0] to GSCR[2] say. */
typedef struct PM_Info {
    Link_Entity Link;      /*  0: Link.Self.DevID is its ID */
    HX_U8 AdapterID;       /* 48 */
    HX_U8 ProductRevision; /* 49 */
    HX_U8 PMSpecRevision;  /* 50: bits, one per revision of the standard */
    HX_U8 NumberOfPorts;   /* 51: 0 to 15 */
    HX_U16 VendorId;       /* 52 */
    HX_U16 DeviceId;       /* 54 */
    HX_U8 Reserved[24];    /* 56 */
} PM_Info;
static_assert(sizeof(PM_Info) == 80, "PM_Info is shared with another binary");
static_assert(offsetof(PM_Info, VendorId) == 52, "PM_Info is a wire format");

/* What is left of a disk. */
typedef struct HD_FreeSpaceInfo {
    HX_U16 ID;          /* 0: the disk */
    HX_U8 AdapterID;    /* 2 */
    HX_BOOLEAN isFixed; /* 3: the disk is not removable */
    HX_U8 Reserved[4];  /* 4 */
    HX_U64 Size;        /* 8: free sectors */
} HD_FreeSpaceInfo;
static_assert(sizeof(HD_FreeSpaceInfo) == 16, "HD_FreeSpaceInfo is shared with another binary");
static_assert(offsetof(HD_FreeSpaceInfo, Size) == 8, "HD_FreeSpaceInfo is a wire format");

/* What can be set on a disk. */
typedef struct HD_Config {
    HX_BOOLEAN WriteCacheOn; /* 0 */
    HX_BOOLEAN SMARTOn;      /* 1 */
    HX_BOOLEAN Online;       /* 2 */
    HX_U8 DriveSpeed;        /* 3: link speed, a code of the controller */
    HX_U16 HDID;             /* 4 */
    HX_U8 Reserved[2];       /* 6 */
} HD_Config;
static_assert(sizeof(HD_Config) == 8, "HD_Config is shared with another binary");
static_assert(offsetof(HD_Config, HDID) == 4, "HD_Config is a wire format");

/* The background activity of a disk. */
typedef struct HD_BGA_Status {
    HX_U16 HDID;        /* 0 */
    HX_U16 Percentage;  /* 2: 0 to 100 */
    HX_U8 Bga;          /* 4: which activity; 0 none */
    HX_U8 Status;       /* 5: of the disk */
    HX_U8 BgaStatus;    /* 6: of the activity */
    HX_U8 Reserved[57]; /* 7 */
} HD_BGA_Status;
static_assert(sizeof(HD_BGA_Status) == 64, "HD_BGA_Status is shared with another binary");
static_assert(offsetof(HD_BGA_Status, BgaStatus) == 6, "HD_BGA_Status is a wire format");

/* Whether a disk announces its failure. */
typedef struct HD_SMART_Status {
    HX_BOOLEAN SmartThresholdExceeded; /* 0 */
    HX_U8 Reserved1;                   /* 1 */
    HX_U16 HDID;                       /* 2 */
    HX_U8 Reserved2[4];                /* 4 */
} HD_SMART_Status;
static_assert(sizeof(HD_SMART_Status) == 8, "HD_SMART_Status is shared with another binary");
static_assert(offsetof(HD_SMART_Status, HDID) == 2, "HD_SMART_Status is a wire format");

/* The part that a disk plays. */
typedef struct HD_RAID_Status {
    HX_U16 HDID;       /* 0 */
    HX_U16 DGID;       /* 2: the disk group or virtual disk that it serves */
    HX_U8 Status;      /* 4: bits; none of 0x04, 0x08, 0x40, 0x80 on a disk free for use */
    HX_U8 Reserved[3]; /* 5 */
} HD_RAID_Status;
static_assert(sizeof(HD_RAID_Status) == 8, "HD_RAID_Status is shared with another binary");
static_assert(offsetof(HD_RAID_Status, Status) == 4, "HD_RAID_Status is a wire format");

/* Which of a list of disks carry a master boot record. */
typedef struct HD_MBR_Info {
    HX_U8 HDCount;                 /*   0: disks asked about, at most 128 */
    HX_U8 Reserved;                /*   1 */
    HX_U16 HDIDs[HX_MAX_HDS];      /*   2: filled by the caller */
    HX_BOOLEAN hasMBR[HX_MAX_HDS]; /* 258: filled by the library, in the order of HDIDs */
} HD_MBR_Info;
static_assert(sizeof(HD_MBR_Info) == 386, "HD_MBR_Info is shared with another binary");
static_assert(offsetof(HD_MBR_Info, hasMBR) == 258, "HD_MBR_Info is a wire format");

/* One run of remapped sectors of a disk. */
typedef struct RCT_Record {
    HX_U64 lba;        /*  0: first sector */
    HX_U32 sec;        /*  8: number of sectors */
    HX_U8 flag;        /* 12: why, a code of the controller */
    HX_U8 Reserved[3]; /* 13 */
} RCT_Record;
static_assert(sizeof(RCT_Record) == 16, "RCT_Record is shared with another binary");
static_assert(offsetof(RCT_Record, lba) == 0, "RCT_Record is a wire format");
static_assert(offsetof(RCT_Record, sec) == 8, "RCT_Record is a wire format");

/* ---- Blocks ----------------------------------------------------------------------------- */

/* A block: a run of sectors of one disk that a virtual disk can use. */
typedef struct Block_Info {
    HX_U16 ID;                        /*  0 */
    HX_U16 HDID;                      /*  2 */
    HX_U16 Flags;                     /*  4: bits of the controller */
    HX_U16 LDID;                      /*  6: its virtual disk; 255 none */
    HX_U8 Status;                     /*  8 */
    HX_U8 Reserved;                   /*  9 */
    HX_U16 BlockSize;                 /* 10: bytes of a sector; 0 means 512 */
    HX_U32 ReservedSpaceForMigration; /* 12: sectors */
    HX_U64 StartLBA;                  /* 16: first sector on the disk */
    HX_U64 Size;                      /* 24: sectors */
} Block_Info;
static_assert(sizeof(Block_Info) == 32, "Block_Info is shared with another binary");
static_assert(offsetof(Block_Info, ReservedSpaceForMigration) == 12, "a wire format");
static_assert(offsetof(Block_Info, StartLBA) == 16, "Block_Info is a wire format");
static_assert(offsetof(Block_Info, Size) == 24, "Block_Info is a wire format");

/* The blocks of one disk. */
typedef struct HD_Block_Info {
    HX_U16 ID;           /*  0: the disk */
    HX_U8 Type;          /*  2 */
    HX_U8 Reserved1;     /*  3 */
    HX_U16 BlockIDs[16]; /*  4: 65535 where there is none */
    HX_U8 Reserved2[4];  /* 36 */
} HD_Block_Info;
static_assert(sizeof(HD_Block_Info) == 40, "HD_Block_Info is shared with another binary");
static_assert(offsetof(HD_Block_Info, BlockIDs) == 4, "HD_Block_Info is a wire format");

/* ---- Virtual disks ---------------------------------------------------------------------- */

/* A virtual disk. */
typedef struct LD_Info {
    HX_U16 ID;                   /*   0 */
    HX_U8 AdapterID;             /*   2 */
    HX_U8 DGID;                  /*   3: its disk group; 255 none */
    HX_U8 Status;                /*   4 */
    HX_U8 BGAStatus;             /*   5 */
    HX_U16 StripeBlockSize;      /*   6: KiB */
    HX_U8 RaidMode;              /*   8: level code: 0x00, 0x01, 0x05, 0x06, 0x10, 0x11, 0x50 or
                                         0x60 */
    HX_U8 HDCount;               /*   9 */
    HX_U8 CacheMode;             /*  10: bits of the controller */
    HX_U8 SectorCoefficient;     /*  11: sectors of 512 bytes in a sector as the host sees it */
    HX_U8 Reserved1[4];          /*  12 */
    HX_U64 Size;                 /*  16: sectors */
    char Name[HX_NAME_SIZE];     /*  24 */
    HX_U16 BlockIDs[HX_MAX_HDS]; /*  40: the first HDCount count */
    HX_U8 SubLDCount;            /* 296: legs of a level such as 50; else 0 */
    HX_U8 NumParityDisk;         /* 297 */
    HX_U8 Reserved2[14];         /* 298 */
} LD_Info;
static_assert(sizeof(LD_Info) == 312, "LD_Info is shared with another binary");
static_assert(offsetof(LD_Info, StripeBlockSize) == 6, "LD_Info is a wire format");
static_assert(offsetof(LD_Info, Size) == 16, "LD_Info is a wire format");
static_assert(offsetof(LD_Info, Name) == 24, "LD_Info is a wire format");
static_assert(offsetof(LD_Info, BlockIDs) == 40, "LD_Info is a wire format");
static_assert(offsetof(LD_Info, SubLDCount) == 296, "LD_Info is a wire format");

/* What a virtual disk is doing. */
typedef struct LD_Status {
    HX_U8 Status;         /* 0: of the virtual disk */
    HX_U8 Bga;            /* 1: its background activity; 0 none */
    HX_U16 BgaPercentage; /* 2: 0 to 100 */
    HX_U8 BgaState;       /* 4: of the activity */
    HX_U8 Reserved;       /* 5 */
    HX_U16 LDID;          /* 6 */
} LD_Status;
static_assert(sizeof(LD_Status) == 8, "LD_Status is shared with another binary");
static_assert(offsetof(LD_Status, LDID) == 6, "LD_Status is a wire format");

/* What can be set on a virtual disk. */
typedef struct LD_Config {
    HX_U8 CacheMode;          /*  0: bits of the controller */
    HX_BOOLEAN AutoRebuildOn; /*  1 */
    HX_U8 Status;             /*  2 */
    HX_U8 Reserved1;          /*  3 */
    HX_U16 LDID;              /*  4 */
    char Name[HX_NAME_SIZE];  /*  6 */
    HX_U8 Reserved2[2];       /* 22 */
} LD_Config;
static_assert(sizeof(LD_Config) == 24, "LD_Config is shared with another binary");
static_assert(offsetof(LD_Config, LDID) == 4, "LD_Config is a wire format");
static_assert(offsetof(LD_Config, Name) == 6, "LD_Config is a wire format");

/* A virtual disk to be made from disks, to be sized or to be migrated. */
typedef struct Create_LD_Param {
    HX_U8 RaidMode;             /*   0: level code, as in LD_Info */
    HX_U8 HDCount;              /*   1: disks in HDIDs, at most 128 */
    HX_U8 RoundingScheme;       /*   2: how the size is rounded, a code of the controller */
    HX_U8 SubLDCount;           /*   3: legs of a level such as 50 */
    HX_U16 StripeBlockSize;     /*   4: KiB */
    HX_U8 NumParityDisk;        /*   6 */
    HX_U8 CachePolicy;          /*   7: bits of the controller */
    HX_U8 InitializationOption; /*   8: a code of the controller */
    HX_U8 SectorCoefficient;    /*   9: as in LD_Info */
    HX_U16 LDID;                /*  10: the one to migrate; its number once it is made */
    HX_U8 SpecifiedBlkSeq;      /*  12: the order of HDIDs is to be kept */
    HX_U8 Reserved2[2];         /*  13 */
    HX_U8 ReservedForApp;       /*  15: left to the caller */
    HX_U16 HDIDs[HX_MAX_HDS];   /*  16 */
    char Name[HX_NAME_SIZE];    /* 272 */
    HX_U64 Size;                /* 288: sectors wanted, 0 as many as fit; or the answer */
    HX_U8 Reserved3[216];       /* 296 */
} Create_LD_Param;
static_assert(sizeof(Create_LD_Param) == 512, "Create_LD_Param is shared with another binary");
static_assert(offsetof(Create_LD_Param, StripeBlockSize) == 4, "a wire format");
static_assert(offsetof(Create_LD_Param, LDID) == 10, "Create_LD_Param is a wire format");
static_assert(offsetof(Create_LD_Param, HDIDs) == 16, "Create_LD_Param is a wire format");
static_assert(offsetof(Create_LD_Param, Name) == 272, "Create_LD_Param is a wire format");
static_assert(offsetof(Create_LD_Param, Size) == 288, "Create_LD_Param is a wire format");

/* ---- Disk groups ------------------------------------------------------------------------ */

/* A disk group: disks joined at one RAID level, on whose space virtual disks are cut. */
typedef struct DG_Info {
    HX_U16 DGID;                         /*   0 */
    HX_U8 Reserved1[2];                  /*   2 */
    char Name[HX_NAME_SIZE];             /*   4 */
    HX_U8 RaidMode;                      /*  20: level code, as in LD_Info */
    HX_U8 SubVDCount;                    /*  21: legs of a level such as 50 */
    HX_U8 NumParityDisk;                 /*  22 */
    HX_U8 AdapterID;                     /*  23 */
    HX_U8 Reserved2[2];                  /*  24 */
    HX_U16 StripeBlockSize;              /*  26: KiB */
    HX_U32 BlockSize;                    /*  28: bytes of a sector */
    HX_U64 TotalManagedSpace;            /*  32: sectors */
    HX_U64 RemainingManagedSpace;        /*  40: sectors */
    HX_U64 SmallestAvailablePDSize;      /*  48: sectors */
    HX_U8 Status;                        /*  56 */
    HX_U8 Reserved3[2];                  /*  57 */
    HX_U8 PDCount;                       /*  59: disks in PDIDs, at most 128 */
    HX_U16 PDIDs[HX_MAX_HDS];            /*  60 */
    HX_U8 Reserved4[3];                  /* 316 */
    HX_U8 VDSlotCount;                   /* 319: slots in use, at most 32 */
    HX_U64 VDSlotSize[HX_MAX_VD_SLOTS];  /* 320: sectors */
    HX_U16 VDIDs[HX_MAX_VD_SLOTS];       /* 576: the virtual disk of each slot; 65535 none */
    HX_U8 SparePDCount;                  /* 640: disks in SparePDIDs, at most 8 */
    HX_U8 Reserved5;                     /* 641 */
    HX_U16 SparePDIDs[HX_MAX_DG_SPARES]; /* 642 */
    HX_U16 BgaType;                      /* 658: its background activity; 0 none */
    HX_U8 BgaState;                      /* 660: of the activity */
    HX_U8 Reserved6[27];                 /* 661 */
} DG_Info;
static_assert(sizeof(DG_Info) == 688, "DG_Info is shared with another binary");
static_assert(offsetof(DG_Info, BlockSize) == 28, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, TotalManagedSpace) == 32, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, RemainingManagedSpace) == 40, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, SmallestAvailablePDSize) == 48, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, PDIDs) == 60, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, VDSlotSize) == 320, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, VDIDs) == 576, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, SparePDIDs) == 642, "DG_Info is a wire format");
static_assert(offsetof(DG_Info, BgaState) == 660, "DG_Info is a wire format");

/* What can be set on a disk group. */
typedef struct DG_Config {
    HX_U16 DGID;             /*  0 */
    HX_BOOLEAN WriteCacheOn; /*  2: of its disks */
    char Name[HX_NAME_SIZE]; /*  3 */
    HX_U8 Reserved[13];      /* 19 */
} DG_Config;
static_assert(sizeof(DG_Config) == 32, "DG_Config is shared with another binary");
static_assert(offsetof(DG_Config, Name) == 3, "DG_Config is a wire format");

/* A disk group to be made, changed, sized or migrated. */
typedef struct CreateOrModify_DG_Param {
    HX_U16 DGID;                /*   0: the group, or HX_NEW_ID; its number once it is made */
    HX_U8 Reserved1[2];         /*   2 */
    char Name[HX_NAME_SIZE];    /*   4 */
    HX_U8 RaidMode;             /*  20: level code, as in LD_Info */
    HX_U8 SubVDCount;           /*  21: legs of a level such as 50 */
    HX_U8 NumParityDisk;        /*  22 */
    HX_U8 Reserved2[7];         /*  23 */
    HX_U16 StripeBlockSize;     /*  30: KiB */
    HX_U64 Size;                /*  32: sectors wanted, 0 as many as fit; or the answer */
    HX_U32 BlockSize;           /*  40: bytes of a sector */
    HX_U8 InitializationOption; /*  44: a code of the controller */
    HX_U8 Reserved3[2];         /*  45 */
    HX_U8 PDCount;              /*  47: disks in PDIDs, at most 128 */
    HX_U16 PDIDs[HX_MAX_HDS];   /*  48 */
    HX_U8 Reserved4[128];       /* 304 */
} CreateOrModify_DG_Param;
static_assert(sizeof(CreateOrModify_DG_Param) == 432, "shared with another binary");
static_assert(offsetof(CreateOrModify_DG_Param, StripeBlockSize) == 30, "a wire format");
static_assert(offsetof(CreateOrModify_DG_Param, Size) == 32, "a wire format");
static_assert(offsetof(CreateOrModify_DG_Param, BlockSize) == 40, "a wire format");
static_assert(offsetof(CreateOrModify_DG_Param, PDIDs) == 48, "a wire format");

/* A virtual disk to be made or changed on a disk group. */
typedef struct CreateOrModify_VD_Param {
    HX_U16 VDID;                /*  0: the virtual disk, or HX_NEW_ID; its number once made */
    HX_U16 DGID;                /*  2 */
    char Name[HX_NAME_SIZE];    /*  4 */
    HX_U8 RaidMode;             /* 20: level code, as in LD_Info */
    HX_U8 SubVDCount;           /* 21: legs of a level such as 50 */
    HX_U8 NumParityDisk;        /* 22 */
    HX_U8 DGSlotNum;            /* 23: the slot of the group, from 0 */
    HX_U8 Reserved1[6];         /* 24 */
    HX_U16 StripeBlockSize;     /* 30: KiB */
    HX_U64 Size;                /* 32: sectors wanted, 0 as many as fit */
    HX_U8 RoundingScheme;       /* 40: as in Create_LD_Param */
    HX_U8 CachePolicy;          /* 41: bits of the controller */
    HX_U8 InitializationOption; /* 42: a code of the controller */
    HX_U8 SectorCoefficient;    /* 43: as in LD_Info */
    HX_U32 BlockSize;           /* 44: bytes of a sector */
    HX_U8 Reserved[256];        /* 48 */
} CreateOrModify_VD_Param;
static_assert(sizeof(CreateOrModify_VD_Param) == 304, "shared with another binary");
static_assert(offsetof(CreateOrModify_VD_Param, StripeBlockSize) == 30, "a wire format");
static_assert(offsetof(CreateOrModify_VD_Param, Size) == 32, "a wire format");
static_assert(offsetof(CreateOrModify_VD_Param, BlockSize) == 44, "a wire format");

/* A rebuild of a virtual disk or disk group onto given disks. */
typedef struct LD_DG_Rebuild_Param {
    HX_U16 ID;                /* 0: the virtual disk or disk group */
    HX_U8 RebuildType;        /* 2: which of the two, a code of the controller */
    HX_U8 PDCount;            /* 3: disks in PDIDs, at most 128 */
    HX_U16 PDIDs[HX_MAX_HDS]; /* 4 */
} LD_DG_Rebuild_Param;
static_assert(sizeof(LD_DG_Rebuild_Param) == 260, "shared with another binary");
static_assert(offsetof(LD_DG_Rebuild_Param, PDIDs) == 4, "LD_DG_Rebuild_Param is a wire format");

/* ---- Enclosures ------------------------------------------------------------------------- */

/* An enclosure. LogicalID is the SES enclosure logical identifier as 16 hexadecimal digits; the
 * other texts are those of SCSI INQUIRY (8, 16 and 4 characters); each has room for a
 * terminator. */
typedef struct Enclosure_Info {
    Link_Entity Link;      /*   0: Link.Self.DevID is its ID */
    HX_U8 AdapterID;       /*  48 */
    HX_U8 Status;          /*  49 */
    char LogicalID[17];    /*  50 */
    char VendorID[9];      /*  67 */
    char ProductID[17];    /*  76 */
    char RevisionLevel[5]; /*  93 */
    HX_U8 ExpanderCount;   /*  98: expanders in ExpanderIDs, at most 8 */
    HX_U8 Reserved1;       /*  99 */
    HX_U16 ExpanderIDs[8]; /* 100 */
    HX_U8 Reserved2[36];   /* 116 */
} Enclosure_Info;
static_assert(sizeof(Enclosure_Info) == 152, "Enclosure_Info is shared with another binary");
static_assert(offsetof(Enclosure_Info, LogicalID) == 50, "Enclosure_Info is a wire format");
static_assert(offsetof(Enclosure_Info, ExpanderIDs) == 100, "Enclosure_Info is a wire format");

/* State of one element of an enclosure. The bytes from 6 on mean what the element's Type says: the
 * groups below lie over each other, so only the group of that type is to be believed. They are the
 * fields of the SES status elements, each flag 0 or 1. */
typedef struct EncElementType_Info {
    HX_U16 EnclosureID; /* 0 */
    HX_U8 Status;       /* 2: SES element status code */
    HX_U8 ElementID;    /* 3: number within the enclosure */
    HX_U8 Type;         /* 4: HX_ELEMENT_POWER_SUPPLY to HX_ELEMENT_VOLTAGE */
    HX_U8 Reserved;     /* 5 */
    __extension__ union {
        HX_U8 ElementData[10];    /*  6: whatever the type */
        __extension__ struct {    /* HX_ELEMENT_POWER_SUPPLY */
            HX_U16 TempWarn;      /*  6 */
            HX_U8 HotSwap;        /*  8 */
            HX_U8 DCOverCurrent;  /*  9 */
            HX_U8 DCOverVoltage;  /* 10 */
            HX_U8 DCUnderVoltage; /* 11 */
        };
        __extension__ struct {   /* HX_ELEMENT_FAN */
            HX_U16 CurSpeedcode; /*  6: SES speed code, 0 stopped to 7 highest */
            HX_U16 CurSpeed;     /*  8: turns per minute */
        };
        __extension__ struct { /* HX_ELEMENT_TEMPERATURE */
            HX_U8 OTFailure;   /*  6 */
            HX_U8 OTWarning;   /*  7 */
            HX_U8 UTFailure;   /*  8 */
            HX_U8 UTWarning;   /*  9 */
            HX_U8 Temperature; /* 10: degrees Celsius plus 20, as SES sends it; 0 unknown */
        };
        __extension__ struct { /* HX_ELEMENT_DOOR */
            HX_U8 Unlocked;    /*  6 */
        };
        __extension__ struct { /* HX_ELEMENT_ALARM */
            HX_U8 Mute;        /*  6 */
            HX_U8 Remind;      /*  7 */
            HX_U8 Character1;  /*  8: the SES tone control bits */
            HX_U8 Mode;        /*  9 */
        };
        __extension__ struct { /* HX_ELEMENT_VOLTAGE */
            HX_U8 WarnOver;    /*  6 */
            HX_U8 WarnUnder;   /*  7 */
            HX_U8 CritOver;    /*  8 */
            HX_U8 CritUnder;   /*  9 */
            HX_U16 Voltage;    /* 10: units of 10 millivolts, as SES sends it */
        };
    };
} EncElementType_Info;
static_assert(sizeof(EncElementType_Info) == 16, "shared with another binary");
static_assert(offsetof(EncElementType_Info, ElementData) == 6, "a wire format");
static_assert(offsetof(EncElementType_Info, TempWarn) == 6, "a wire format");
static_assert(offsetof(EncElementType_Info, DCUnderVoltage) == 11, "a wire format");
static_assert(offsetof(EncElementType_Info, CurSpeed) == 8, "a wire format");
static_assert(offsetof(EncElementType_Info, Temperature) == 10, "a wire format");
static_assert(offsetof(EncElementType_Info, Unlocked) == 6, "a wire format");
static_assert(offsetof(EncElementType_Info, Mode) == 9, "a wire format");
static_assert(offsetof(EncElementType_Info, Voltage) == 10, "a wire format");

/* Thresholds of one element of an enclosure, in the units of the SES threshold page: degrees
 * Celsius plus 20 for temperatures, half percents of the nominal value for voltages. */
typedef struct EncElement_Config {
    HX_U16 EnclosureID;          /* 0 */
    HX_U8 Status;                /* 2: SES element status code */
    HX_U8 ElementID;             /* 3: number within the enclosure */
    HX_U8 Type;                  /* 4: HX_ELEMENT_POWER_SUPPLY to HX_ELEMENT_VOLTAGE */
    HX_U8 highCriticalThreshold; /* 5 */
    HX_U8 highWarningThreshold;  /* 6 */
    HX_U8 lowCriticalThreshold;  /* 7 */
    HX_U8 lowWarningThreshold;   /* 8 */
    HX_U8 Reserved[7];           /* 9 */
} EncElement_Config;
static_assert(sizeof(EncElement_Config) == 16, "shared with another binary");
static_assert(offsetof(EncElement_Config, lowWarningThreshold) == 8, "a wire format");

/* ---- Battery ---------------------------------------------------------------------------- */

/* The battery unit of an adapter. The measures are those of the Smart Battery Data set. */
typedef struct BBU_Info {
    HX_U32 status;             /*  0: bits of the controller */
    HX_U32 prev_status;        /*  4: the bits before the last change */
    HX_U16 voltage;            /*  8: millivolts */
    HX_U16 supportMaxCapacity; /* 10: mAh, the highest maxCapacity that can be set */
    HX_U16 supportMinCapacity; /* 12: mAh, the lowest */
    HX_U16 maxCapacity;        /* 14: mAh when full */
    HX_U16 curCapacity;        /* 16: mAh left */
    HX_U16 time_to_empty;      /* 18: minutes; 65535 when it is not discharging */
    HX_U16 time_to_full;       /* 20: minutes; 65535 when it is not charging */
    HX_U16 recharge_cycle;     /* 22: cycles so far */
    HX_U16 featureSupport;     /* 24: bits of the controller */
    HX_U16 temperature;        /* 26: degrees Celsius */
    HX_U16 volt_lowerbound;    /* 28: millivolts */
    HX_U16 volt_upperbound;    /* 30: millivolts */
    HX_U16 temp_lowerbound;    /* 32: degrees Celsius */
    HX_U16 temp_upperbound;    /* 34: degrees Celsius */
    HX_U8 percentage;          /* 36: charge, 0 to 100 */
    HX_U8 percent_to_charge;   /* 37: the charge below which it is charged, 0 to 100 */
    HX_U8 flags;               /* 38: bits of the controller */
    HX_U8 Reserved[25];        /* 39 */
} BBU_Info;
static_assert(sizeof(BBU_Info) == 64, "BBU_Info is shared with another binary");
static_assert(offsetof(BBU_Info, voltage) == 8, "BBU_Info is a wire format");
static_assert(offsetof(BBU_Info, percentage) == 36, "BBU_Info is a wire format");

/* ---- Flash ------------------------------------------------------------------------------ */

/* One piece of a flash image on its way. */
typedef struct Flash_Data {
    HX_U32 DataLength;               /*  0: bytes in Data, at most HX_FLASH_PIECE_SIZE */
    HX_U16 PageNum;                  /*  4: number of the piece, from 0 */
    HX_BOOLEAN isLastPage;           /*  6: nothing follows */
    HX_U8 Reserved1;                 /*  7 */
    HX_U16 Reserved[2];              /*  8 */
    HX_U8 Data[HX_FLASH_PIECE_SIZE]; /* 12 */
} Flash_Data;
static_assert(sizeof(Flash_Data) == 32780, "Flash_Data is shared with another binary");
static_assert(offsetof(Flash_Data, isLastPage) == 6, "Flash_Data is a wire format");
static_assert(offsetof(Flash_Data, Data) == 12, "Flash_Data is a wire format");

/* ---- Events ----------------------------------------------------------------------------- */

/* Something that happened. */
typedef struct Event {
    HX_U16 Class;          /*  0: 0 adapter, 1 virtual disk, 2 disk, 3 port multiplier,
                                  4 expander, 5 controller metadata, 6 bad sectors, 7 SAS,
                                  8 enclosure, 9 battery, 10 flash, 11 cache,
                                  12 miscellaneous, 13 disk group */
    HX_U16 Code;           /*  2: what, within the class */
    HX_U32 TimeStamp;      /*  4: seconds since 1970-01-01 00:00 UTC */
    HX_U16 DeviceID;       /*  8: which one, within the class */
    HX_U8 Severity;        /* 10: 0 unknown, 1 other, 2 information, 3 warning, 4 minor,
                                  5 major, 6 critical, 7 fatal */
    HX_U8 AdapterID;       /* 11 */
    HX_U32 SequenceNo;     /* 12: rises by one per event of an adapter; 0 is outside the count */
    HX_U32 Params[4];      /* 16: by class and code */
    HX_U8 SenseDataLength; /* 32: bytes of SenseData that count, 0 to 30 */
    HX_U8 Reserved2;       /* 33 */
    HX_U8 SenseData[30];   /* 34: SCSI sense data, or a text by class and code */
} Event;
static_assert(sizeof(Event) == 64, "Event is shared with another binary");
static_assert(offsetof(Event, SequenceNo) == 12, "Event is a wire format");
static_assert(offsetof(Event, Params) == 16, "Event is a wire format");
static_assert(offsetof(Event, SenseData) == 34, "Event is a wire format");

/* ---- List requests ---------------------------------------------------------------------- */

/* A list request and its reply: the header and, right behind it, the records. The array is written
 * with one record; the caller allocates as many as header.numRequested says. */
typedef struct HD_Info_Request {
    RequestHeader header; /*  0 */
    HD_Info hdInfo[1];    /* 16 */
} HD_Info_Request;
static_assert(sizeof(HD_Info_Request) == 264, "HD_Info_Request is a wire format");
static_assert(offsetof(HD_Info_Request, hdInfo) == 16, "HD_Info_Request is a wire format");

typedef struct Exp_Info_Request {
    RequestHeader header; /*  0 */
    Exp_Info expInfo[1];  /* 16 */
} Exp_Info_Request;
static_assert(sizeof(Exp_Info_Request) == 148, "Exp_Info_Request is a wire format");
static_assert(offsetof(Exp_Info_Request, expInfo) == 16, "Exp_Info_Request is a wire format");

typedef struct PM_Info_Request {
    RequestHeader header; /*  0 */
    PM_Info pmInfo[1];    /* 16 */
} PM_Info_Request;
static_assert(sizeof(PM_Info_Request) == 96, "PM_Info_Request is a wire format");
static_assert(offsetof(PM_Info_Request, pmInfo) == 16, "PM_Info_Request is a wire format");

typedef struct HD_FreeSpaceInfo_Request {
    RequestHeader header;                /*  0 */
    HD_FreeSpaceInfo hdFreeSpaceInfo[1]; /* 16 */
} HD_FreeSpaceInfo_Request;
static_assert(sizeof(HD_FreeSpaceInfo_Request) == 32, "a wire format");
static_assert(offsetof(HD_FreeSpaceInfo_Request, hdFreeSpaceInfo) == 16, "a wire format");

typedef struct HD_Config_Request {
    RequestHeader header;  /*  0 */
    HD_Config hdConfig[1]; /* 16 */
} HD_Config_Request;
static_assert(sizeof(HD_Config_Request) == 24, "HD_Config_Request is a wire format");
static_assert(offsetof(HD_Config_Request, hdConfig) == 16, "HD_Config_Request is a wire format");

typedef struct HD_BGA_Status_Request {
    RequestHeader header;         /*  0 */
    HD_BGA_Status hdBgaStatus[1]; /* 16 */
} HD_BGA_Status_Request;
static_assert(sizeof(HD_BGA_Status_Request) == 80, "HD_BGA_Status_Request is a wire format");
static_assert(offsetof(HD_BGA_Status_Request, hdBgaStatus) == 16, "a wire format");

typedef struct HD_SMART_Status_Request {
    RequestHeader header;             /*  0 */
    HD_SMART_Status hdSmartStatus[1]; /* 16 */
} HD_SMART_Status_Request;
static_assert(sizeof(HD_SMART_Status_Request) == 24, "HD_SMART_Status_Request is a wire format");
static_assert(offsetof(HD_SMART_Status_Request, hdSmartStatus) == 16, "a wire format");

typedef struct HD_RAID_Status_Request {
    RequestHeader header;           /*  0 */
    HD_RAID_Status hdRaidStatus[1]; /* 16 */
} HD_RAID_Status_Request;
static_assert(sizeof(HD_RAID_Status_Request) == 24, "HD_RAID_Status_Request is a wire format");
static_assert(offsetof(HD_RAID_Status_Request, hdRaidStatus) == 16, "a wire format");

/* The list of blocks. */
typedef struct Info_Request {
    RequestHeader header;    /*  0 */
    Block_Info blockInfo[1]; /* 16 */
} Info_Request;
static_assert(sizeof(Info_Request) == 48, "Info_Request is a wire format");
static_assert(offsetof(Info_Request, blockInfo) == 16, "Info_Request is a wire format");

typedef struct HD_Block_Info_Request {
    RequestHeader header;         /*  0 */
    HD_Block_Info hdBlockInfo[1]; /* 16 */
} HD_Block_Info_Request;
static_assert(sizeof(HD_Block_Info_Request) == 56, "HD_Block_Info_Request is a wire format");
static_assert(offsetof(HD_Block_Info_Request, hdBlockInfo) == 16, "a wire format");

typedef struct LD_Info_Request {
    RequestHeader header; /*  0 */
    LD_Info ldInfo[1];    /* 16 */
} LD_Info_Request;
static_assert(sizeof(LD_Info_Request) == 328, "LD_Info_Request is a wire format");
static_assert(offsetof(LD_Info_Request, ldInfo) == 16, "LD_Info_Request is a wire format");

typedef struct LD_Status_Request {
    RequestHeader header;  /*  0 */
    LD_Status ldStatus[1]; /* 16 */
} LD_Status_Request;
static_assert(sizeof(LD_Status_Request) == 24, "LD_Status_Request is a wire format");
static_assert(offsetof(LD_Status_Request, ldStatus) == 16, "LD_Status_Request is a wire format");

typedef struct LD_Config_Request {
    RequestHeader header;  /*  0 */
    LD_Config ldConfig[1]; /* 16 */
} LD_Config_Request;
static_assert(sizeof(LD_Config_Request) == 40, "LD_Config_Request is a wire format");
static_assert(offsetof(LD_Config_Request, ldConfig) == 16, "LD_Config_Request is a wire format");

typedef struct DG_Info_Request {
    RequestHeader header; /*  0 */
    DG_Info dgInfo[1];    /* 16 */
} DG_Info_Request;
static_assert(sizeof(DG_Info_Request) == 704, "DG_Info_Request is a wire format");
static_assert(offsetof(DG_Info_Request, dgInfo) == 16, "DG_Info_Request is a wire format");

typedef struct DG_Config_Request {
    RequestHeader header;  /*  0 */
    DG_Config dgConfig[1]; /* 16 */
} DG_Config_Request;
static_assert(sizeof(DG_Config_Request) == 48, "DG_Config_Request is a wire format");
static_assert(offsetof(DG_Config_Request, dgConfig) == 16, "DG_Config_Request is a wire format");

typedef struct Enclosure_Info_Request {
    RequestHeader header;            /*  0 */
    Enclosure_Info enclosureInfo[1]; /* 16 */
} Enclosure_Info_Request;
static_assert(sizeof(Enclosure_Info_Request) == 168, "Enclosure_Info_Request is a wire format");
static_assert(offsetof(Enclosure_Info_Request, enclosureInfo) == 16, "a wire format");

/* ---- The library itself ----------------------------------------------------------------- */

/* Whoever implements these functions exports them, also when built with hidden visibility. */
#pragma GCC visibility push(default)

/* Opens the adapters. Precedes every other call. May be called again: calls are not counted, so one
 * HX_API_Finalize undoes them all, and what is open stays open or is opened anew. */
HX_U8 HX_API_Initialize(void);

/* Closes them. Without an HX_API_Initialize before it, does nothing. */
void HX_API_Finalize(void);

/* The library's version as a NUL-terminated text that it owns and never changes, or null. */
const char* HX_API_Version(void);

/* ---- Adapters --------------------------------------------------------------------------- */

/* The number of adapters, 0 to 255: a count, no code. Adapters are numbered from 0 to one less. */
HX_U8 HX_Adapter_GetCount(void);

/* Fills one record about the adapter and sets *count to the records filled: 1. */
HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info);

/* Fills one record with the adapter's settings and sets *count to the records filled: 1. */
HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8* count, Adapter_Config_V2* config);

/* Sets all of the adapter's settings. */
HX_U8 HX_Adapter_SetConfig(HX_U8 AdapterID, Adapter_Config_V2* config);

/* Silences the alarm that is sounding; the next one sounds again. */
HX_U8 HX_AdapterMute(HX_U8 AdapterID);

/* Switches the locate light of a device. deviceType and ledStatus are codes of the controller. */
HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 deviceType, HX_U16 deviceId, HX_U8 ledStatus);

/* ---- Enclosures ------------------------------------------------------------------------- */

/* Lists enclosures. */
HX_U8 HX_ENC_GetEnclosureInfo(HX_U8 AdapterID, Enclosure_Info_Request* request);

/* Fills the state of every element of the enclosure, at most 255 records, and sets *count. */
HX_U8 HX_ENC_GetElementInfo(HX_U8 AdapterID, HX_U16 ENC_ID, EncElementType_Info* elements,
                            HX_U8* count);

/* Fills the thresholds of every element of the enclosure, at most 255 records, and sets *count. */
HX_U8 HX_ENC_GetElementConfig(HX_U8 AdapterID, HX_U16 ENC_ID, EncElement_Config* elements,
                              HX_U8* count);

/* ---- Physical disks --------------------------------------------------------------------- */

/* Lists disks, as adapters with at most 255 disks number them. */
HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request);

/* Lists disks; an adapter that does not know the call fails it. */
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request);

/* Lists expanders. */
HX_U8 HX_PD_GetExpanderInfo(HX_U8 AdapterID, Exp_Info_Request* request);

/* Lists port multipliers. */
HX_U8 HX_PD_GetPMInfo(HX_U8 AdapterID, PM_Info_Request* request);

/* Lists the free space of disks. */
HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request);

/* Lists the settings of disks. */
HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request);

/* Sets the settings of a disk. */
HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16 HD_ID, HD_Config* config);

/* Lists the background activities of disks. */
HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request);

/* Lists the SMART states of disks. */
HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request);

/* Lists what disks are used for. */
HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request);

/* Sets *count to the number of records in the disk's remap table. */
HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 HD_ID, HX_U32* count);

/* Copies the first count records of the disk's remap table to records. */
HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 HD_ID, RCT_Record* records, HX_U32 count);

/* Wipes the controller's metadata off a disk; Force 1 also while the disk is in use. */
HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Force);

/* Sets a disk's state. Action is a code of the controller (online, offline, free). */
HX_U8 HX_PD_SetHDStatus(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action);

/* Makes a free disk a spare of the whole adapter. */
HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16 HD_ID);

/* Makes a free disk a spare of one disk group. */
HX_U8 HX_PD_FreeHD2DGSpare(HX_U8 AdapterID, HX_U16 HD_ID, HX_U16 DG_ID);

/* Makes a spare of either kind a free disk. */
HX_U8 HX_PD_Spare2FreeHD(HX_U8 AdapterID, HX_U16 HD_ID);

/* Tells which of the disks that info lists carry a master boot record. */
HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info);

/* Tells whether any of count disks holds an operating system: 0 when none does. The second
 * argument is the kind of look, 1 being the only one in use. */
HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs);

/* Starts a media patrol of a disk. */
HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16 HD_ID);

/* Asks whether a media patrol of the disk can be started: 0 when it can. */
HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16 HD_ID);

/* Starts a data scrub of a disk. */
HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16 HD_ID);

/* Controls the background activity of a disk. Action is a code of the controller (pause, resume,
 * abort). */
HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16 HD_ID, HX_U8 Action);

/* ---- Blocks ----------------------------------------------------------------------------- */

/* Lists blocks. */
HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request);

/* Lists, per disk, the blocks on it. */
HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request);

/* ---- Virtual disks ---------------------------------------------------------------------- */

/* Lists virtual disks. */
HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request);

/* Fills the record of one virtual disk. */
HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info);

/* Lists what virtual disks are doing. */
HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request);

/* Lists the settings of virtual disks. */
HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request);

/* Sets the settings of a virtual disk. */
HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16 LD_ID, LD_Config* config);

/* Makes a virtual disk from disks; param->LDID then holds its number. */
HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param* param);

/* Sets param->Size to the sectors that HX_LD_Create could give at most. */
HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param);

/* Deletes a virtual disk; with deleteMBR 1 its master boot record is erased first. */
HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 deleteMBR);

/* Takes a foreign virtual disk over. */
HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16 LD_ID);

/* Pauses the background activities of all virtual disks of the adapter. */
HX_U8 HX_LD_PauseAll(HX_U8 AdapterID);

/* Rebuilds a virtual disk onto a disk. */
HX_U8 HX_LD_StartRebuild(HX_U8 AdapterID, HX_U16 LD_ID, HX_U16 Rebuild_HD_ID);

/* Compares data and redundancy. Type is a code of the controller (check only, or fix as well). */
HX_U8 HX_LD_StartConsistencyCheck(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Type);

/* Initialises a virtual disk. Init_Type is a code of the controller (quick, background,
 * foreground). */
HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Init_Type);

/* Moves the virtual disk param->LDID to another level or other disks. */
HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param* param);

/* Sets param->Size to the sectors that the virtual disk would have after HX_LD_StartMigration. */
HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* param);

/* Controls the background activity of a virtual disk. Actions is a code of the controller (pause,
 * resume, abort). */
HX_U8 HX_LD_BGAControl(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 Actions);

/* ---- Disk groups ------------------------------------------------------------------------ */

/* Lists disk groups. */
HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request);

/* Lists the settings of disk groups. */
HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request);

/* Sets the settings of a disk group. */
HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 DG_ID, DG_Config* config);

/* Makes the disk group param->DGID (HX_NEW_ID) or changes it, and sets param->DGID and
 * param->Size. With sizeOnly 1 it changes nothing and only sets param->Size. */
HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly);

/* Makes the virtual disk param->VDID (HX_NEW_ID) on the disk group param->DGID, or changes it. */
HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param* param);

/* Deletes a disk group and the virtual disks on it. */
HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 DG_ID);

/* Moves the disk group param->DGID to another level or other disks. */
HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* param);

/* Controls the background activity of a disk group. Actions is a code of the controller (pause,
 * resume, abort). */
HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16 DG_ID, HX_U8 Actions);

/* Rebuilds a virtual disk or a disk group onto given disks. */
HX_U8 HX_LD_DG_StartRebuild(HX_U8 AdapterID, LD_DG_Rebuild_Param* param);

/* ---- Battery ---------------------------------------------------------------------------- */

/* Fills the record of the adapter's battery. */
HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* info);

/* Sets the bounds outside which the battery is reported. kind is HX_BBU_THRESHOLD_TEMPERATURE or
 * HX_BBU_THRESHOLD_VOLTAGE. */
HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 kind, HX_U16 lower, HX_U16 upper);

/* Controls the battery's power. action is a code of the controller; 0 starts a relearn cycle. */
HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 action);

/* Switches the use of the battery on (1) or off (0). */
HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN status);

/* ---- Flash ------------------------------------------------------------------------------ */

/* Erases a page of the adapter's flash. Page is a code of the controller. */
HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8 Page);

/* Moves one piece of a flash image. Actions HX_FLASH_WRITE takes *piece; HX_FLASH_READ fills it
 * for the PageNum that it asks for. Type is the image's kind, a code of the controller. */
HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, Flash_Data* piece);

/* ---- Events ----------------------------------------------------------------------------- */

/* Takes the oldest events of the adapter off its queue: at most max of them, into events, which
 * has room for max, and sets *count; 0 when the queue is empty. */
HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
