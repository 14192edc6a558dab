/* Proves the event store writable by doing what the library will do: opening both files for update,
 * and reserving the room of the events. A file that is not there yet is tried out under another
 * name.
 */
/* Names that the C library reserves for what is asked of it: fallocate and secure_getenv, and files
 * past 2 GiB on 32 bits. */
#define _GNU_SOURCE          /* NOLINT(bugprone-reserved-identifier) */
#define _FILE_OFFSET_BITS 64 /* NOLINT(bugprone-reserved-identifier) */

#include "event_store_check.h"

#include <errno.h>
#include <expat.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

enum {
    kHead = 512,            /* bytes of the event file before its first slot */
    kSlot = 192,            /* bytes of an event in it */
    kSequenceNumbers = 96,  /* bytes of the other file */
    kLongestPath = 4096,    /* with the NUL */
    kConfiguredPath = 256,  /* longest path of the configuration, with the NUL */
    kConfiguration = 65536, /* a configuration file of this size counts as absent */
};

/* Where a refusal is told. */
struct Complaint {
    char* text;
    size_t size;
};

static int Refuse(struct Complaint to, const char* path, const char* what, int error) {
    snprintf(to.text, to.size, "%s: %s: %s", path, what, strerror(error));
    return 0;
}

/* A fixed path of the library, below VEXORAPI_ROOT when that is set. */
static int FixedPath(struct Complaint to, char path[kLongestPath], const char* fixed) {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    const int length = snprintf(path, kLongestPath, "%s%s", root == NULL ? "" : root, fixed);
    return length < kLongestPath || Refuse(to, fixed, "VEXORAPI_ROOT is too long", ENAMETOOLONG);
}

/* The configuration's place for the event file. ---------------------------------------------- */

struct Section {
    int depth;
    int is_ours;
    char filename[kConfiguredPath];
};

static void XMLCALL Start(void* data, const XML_Char* name, const XML_Char** attributes) {
    struct Section* const section = data;
    if (section->depth == 1) {
        section->is_ours = 0;
        for (const XML_Char** at = attributes; *at != NULL; at += 2) {
            if (strcmp(at[0], "type") == 0 && strcmp(at[1], "config") == 0) {
                section->is_ours = strcmp(name, "EventLogConfig") == 0;
            }
        }
    }
    /* The library reads the attributes of an element within the section as the section's own. */
    if (section->is_ours && (section->depth == 1 || section->depth == 2)) {
        section->filename[0] = '\0';
        for (const XML_Char** at = attributes; *at != NULL; at += 2) {
            if (strcmp(at[0], "Filename") != 0 || strlen(at[1]) >= kConfiguredPath) continue;
            memcpy(section->filename, at[1], strlen(at[1]) + 1);
        }
    }
    ++section->depth;
}

static void XMLCALL End(void* data, const XML_Char* name) {
    struct Section* const section = data;
    (void)name;
    if (--section->depth <= 1) section->is_ours = 0;
}

/* Fills in the configured path, or leaves it as it is where none is configured: a configuration
 * that cannot be read counts as absent for the library, too. */
static void ConfiguredPath(char path[kLongestPath], const char* configuration) {
    static char text[kConfiguration];
    struct Section section = {0, 0, ""};
    const int file = open(configuration, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0) return;
    const ssize_t length = read(file, text, sizeof text);
    close(file);
    if (length <= 0 || length == (ssize_t)sizeof text) return;
    const XML_Parser parser = XML_ParserCreate(NULL);
    if (parser == NULL) return;
    XML_SetUserData(parser, &section);
    XML_SetElementHandler(parser, Start, End);
    XML_Parse(parser, text, (int)length, 1); /* of a malformed one, what stands before the error */
    XML_ParserFree(parser);
    if (section.filename[0] != '\0') memcpy(path, section.filename, kConfiguredPath);
}

/* The files. ----------------------------------------------------------------------------------- */

static int IsTrusted(uid_t owner) { return owner == 0 || owner == geteuid(); }

/* Whether the library takes the file for the one that was meant: in a folder that others may write,
 * only a file of one name that root or this user owns, and no link. */
static int IsGuarded(const char* path, const struct stat* folder, const struct stat* file) {
    const int shared = !IsTrusted(folder->st_uid) || (folder->st_mode & (S_IWGRP | S_IWOTH)) != 0;
    struct stat name;
    if (lstat(path, &name) != 0) return 0;
    if (S_ISLNK(name.st_mode) && (shared || !IsTrusted(name.st_uid))) return 0;
    if (file->st_nlink != 1 && (shared || !IsTrusted(file->st_uid))) return 0;
    return IsTrusted(file->st_uid) || !shared;
}

/* The header at the start of the event file; its numbers are little-endian, as the hosts are. */
struct Header {
    char magic[32];    /* "Ombra Event File v0.1", then zeros */
    uint32_t count;    /* events in the ring */
    uint32_t capacity; /* most events in it; it has one slot more */
    uint32_t start;    /* slot of the oldest */
    uint32_t end;      /* slot of the next */
    uint32_t first;    /* number of the oldest */
};

static const char kMagic[] = "Ombra Event File v0.1";

/* Reads the header, or as much of it as there is. Returns how many bytes, or -1 with errno. */
static ssize_t ReadHeader(int file, struct Header* header) {
    size_t total = 0;
    while (total < sizeof *header) {
        const ssize_t got =
            pread(file, (char*)header + total, sizeof *header - total, (off_t)total);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        total += (size_t)got;
    }
    return (ssize_t)total;
}

/* Whether an event file is sound, as far as its header tells. The library believes the numbers of
 * any file that begins as an event file does, and makes every other file anew. A file of 0 bytes is
 * one whose maker was killed: it holds nothing. */
static int IsSound(struct Complaint to, const char* path, int file) {
    struct Header header;
    const ssize_t length = ReadHeader(file, &header);
    if (length < 0) return Refuse(to, path, "cannot read the event store", errno);
    if (length == 0) return 1;
    const char* damage = NULL;
    if (length != (ssize_t)sizeof header) {
        damage = "it is shorter than its header";
    } else if (memcmp(header.magic, kMagic, sizeof kMagic) != 0) {
        damage = "it does not begin as an event file does";
    } else {
        const uint64_t ring = (uint64_t)header.capacity + 1;
        if (header.count > header.capacity || header.start >= ring ||
            ((uint64_t)header.start + header.count) % ring != header.end) {
            damage = "the numbers of its header contradict each other";
        }
    }
    if (damage == NULL) return 1;
    snprintf(to.text, to.size,
             "%s: the event store is damaged: %s; move it aside, and a new one is made", path,
             damage);
    return 0;
}

/* Reserves the bytes from `from` on without making the file longer. Returns 0 or the error. */
static int Reserve(int file, off_t from, off_t bytes) {
    struct rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
        (rlim_t)(from + bytes) > limit.rlim_cur) {
        return EFBIG;
    }
    if (fallocate(file, FALLOC_FL_KEEP_SIZE, from, bytes) == 0) return 0;
    if (errno != EOPNOTSUPP) return errno;
    struct statvfs space; /* a file system that reserves nothing tells what is free */
    if (fstatvfs(file, &space) != 0) return errno;
    return (fsblkcnt_t)bytes / space.f_frsize < space.f_bavail ? 0 : ENOSPC;
}

/* The bytes of `wanted` that the event file can still grow by: a ring that has been round once is
 * written in place, also where the disk is full. */
static off_t Growth(int file, off_t size, off_t wanted) {
    struct Header header;
    if (ReadHeader(file, &header) != (ssize_t)sizeof header) return wanted;
    const off_t whole = kHead + (off_t)kSlot * ((off_t)header.capacity + 1);
    if (size >= whole) return 0;
    return wanted < whole - size ? wanted : whole - size;
}

/* The folder of a path, which must be there. */
static int FindFolder(struct Complaint to, const char* path, char folder[kLongestPath],
                      struct stat* status) {
    snprintf(folder, kLongestPath, "%s", path);
    char* const slash = strrchr(folder, '/');
    if (slash == NULL) {
        memcpy(folder, ".", 2);
    } else {
        slash[slash == folder] = '\0';
    }
    if (stat(folder, status) != 0) return Refuse(to, folder, "the event store's folder", errno);
    return S_ISDIR(status->st_mode) || Refuse(to, folder, "the event store's folder", ENOTDIR);
}

/* One of the store's two files, which will be `bytes` longer than it is and than `least`. The event
 * file is a ring. */
static int FileTakes(struct Complaint to, const char* path, off_t least, off_t bytes, int is_ring) {
    char folder[kLongestPath];
    struct stat folder_status;
    if (!FindFolder(to, path, folder, &folder_status)) return 0;
    char trial[kLongestPath + sizeof "/.check_in-XXXXXX"] = "";
    int file = open(path, O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat link;
    if (file < 0 && errno == ENOENT && lstat(path, &link) != 0) {
        snprintf(trial, sizeof trial, "%s/.check_in-XXXXXX", folder);
        file = mkstemp(trial);
        if (file < 0)
            return Refuse(to, folder, "cannot make a file in the event store's folder", errno);
        unlink(trial);
    }
    if (file < 0) return Refuse(to, path, "cannot write the event store", errno);
    struct stat status;
    int error = fstat(file, &status) != 0 ? errno : 0;
    const int is_regular = error == 0 && S_ISREG(status.st_mode);
    if (error == 0 && !is_regular) error = EINVAL;
    if (error == 0 && trial[0] == '\0' && !IsGuarded(path, &folder_status, &status)) error = EPERM;
    if (error == 0 && is_ring && !IsSound(to, path, file)) {
        close(file);
        return 0;
    }
    if (error == 0) {
        const off_t end = status.st_size > least ? status.st_size : least;
        const off_t growth = is_ring ? Growth(file, end, bytes) : bytes;
        error = growth == 0 ? 0 : Reserve(file, end, growth);
        if (error != 0) {
            close(file);
            return Refuse(to, path, "the event store has no room for more events", error);
        }
    }
    close(file);
    return error == 0 || Refuse(to, path, "cannot write the event store", error);
}

int EventStoreTakes(uint32_t events, char* complaint, size_t size) {
    const struct Complaint to = {complaint, size};
    char configuration[kLongestPath], event_file[kLongestPath], numbers[kLongestPath];
    if (!FixedPath(to, configuration, "/vexorapi.ini") ||
        !FixedPath(to, event_file, "/opt/kestrel/raid/db/vx_hx_raid.ev") ||
        !FixedPath(to, numbers, "/opt/kestrel/raid/db/vx_hx_seqnum.ev")) {
        return 0;
    }
    ConfiguredPath(event_file, configuration);
    return FileTakes(to, event_file, kHead, (off_t)events * kSlot, 1) &&
           FileTakes(to, numbers, 0, kSequenceNumbers, 0);
}
