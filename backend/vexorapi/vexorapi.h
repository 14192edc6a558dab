/* The public interface of libvexorapi: one XML command in, one XML result out, and the two logs.
 *
 * Plain C, usable from C++. Requests run one at a time: the library starts no thread and holds no
 * lock, so a process that has several threads serialises its calls itself. Nothing is thrown.
 *
 * After a fork the child has a copy of the library's state, and no file is open between two calls
 * but the service log after InitLog, to which both may append. So the child may go on calling, if
 * no thread of the parent was in a call meanwhile and the controller library allows it. The virtual
 * controller and that of the kernel's arrays notice a fork and open their files anew. Others may
 * not: a program that forks workers calls vexorApiInit in each worker and not before the fork.
 *
 * Every fixed path below ("/vexorapi.ini", "/var/log/hxraidsvc.log", ...) is prefixed with the
 * environment variable VEXORAPI_ROOT when that is set and the process is not set-user-ID.
 */
#ifndef VEXORAPI_H
#define VEXORAPI_H

#include <stdint.h>

/* The version that this header belongs to. One major version has one soname: a program that was
 * compiled with this header runs with every later library of the same major version. */
#define VEXORAPI_VERSION_MAJOR 1
#define VEXORAPI_VERSION_MINOR 2
#define VEXORAPI_VERSION_PATCH 0

/* For comparisons: #if VEXORAPI_VERSION >= VEXORAPI_VERSION_OF(1, 3, 0). */
#define VEXORAPI_VERSION_OF(major, minor, patch) ((major)*10000 + (minor)*100 + (patch))
#define VEXORAPI_VERSION \
    VEXORAPI_VERSION_OF(VEXORAPI_VERSION_MAJOR, VEXORAPI_VERSION_MINOR, VEXORAPI_VERSION_PATCH)

#if defined(__GNUC__)
#define VEXORAPI_PRINTF(text, first) __attribute__((format(printf, text, first)))
#define VEXORAPI_EXPORT __attribute__((visibility("default")))
#else
#define VEXORAPI_PRINTF(text, first)
#define VEXORAPI_EXPORT
#endif

#ifdef __cplusplus
#define VEXORAPI_NOEXCEPT noexcept
extern "C" {
#else
#define VEXORAPI_NOEXCEPT
#endif

/* A result never has more bytes than this, its terminating NUL included: a buffer of this size
 * holds every result. */
#define VEXORAPI_MAX_RESULT 524288u

/** Prepares the process: creates the event semaphore, sets the module versions and initialises the
 *  controller library. Call it once, before the first vexorApi.
 *
 *  Calls are not counted. A second one without a vexorApiShutdown between them initialises the
 *  controller library again and forgets what was read of the event store, which the next request
 *  reads from its files; one vexorApiShutdown ends both. After that it may be called again.
 *
 *  Returns 1 always. A controller library that refuses to start is noted in the debug log only; its
 *  functions then answer with their own error codes. */
VEXORAPI_EXPORT int vexorApiInit(void) VEXORAPI_NOEXCEPT;

/** Finalises the controller library and the event store. Call it once, after the last vexorApi.
 *  Returns 1 always. */
VEXORAPI_EXPORT int vexorApiShutdown(void) VEXORAPI_NOEXCEPT;

/** Carries out one XML command.
 *
 *  XMLCmd     the command, NUL-terminated; read only, owned by the caller.
 *  XMLRet     receives the result, NUL-terminated; owned by the caller.
 *  XMLRetLen  size of XMLRet in bytes. A result of n characters needs n + 2: the document's last
 *             line end is counted although it is not delivered. VEXORAPI_MAX_RESULT is always
 *             enough.
 *
 *  Returns 1 when a function took the command, whatever its RetVal says, with the result in XMLRet;
 *  XMLRet is the empty string when the result did not fit or when there was no memory for it.
 *  Returns 0 otherwise:
 *  - XMLCmd or XMLRet null, XMLCmd empty, XMLRetLen 0, no memory: XMLRet is untouched;
 *  - the command is not well-formed, is longer than 2147483647 bytes, or declares more than 256
 *    items in its document type: XMLRet is untouched;
 *  - the root element names no function, or lacks type="function": XMLRet is the empty string. */
VEXORAPI_EXPORT int vexorApi(const char* XMLCmd, char* XMLRet,
                             uint32_t XMLRetLen) VEXORAPI_NOEXCEPT;

/** Moves the events that wait in the controllers' queues into the event store, which it creates
 * when there is none, and raises the change counters. The event service calls it from time to time.
 *
 *  numOfAdapters  adapters 0 to numOfAdapters - 1 are polled, at most the first four.
 *
 *  A store that can be neither opened nor created ends the check-in; the events taken from the
 *  queue by then are lost. A process that is killed in it loses the events of one call to a
 *  controller, 50, at most. vexorApiInit must have run. */
VEXORAPI_EXPORT void VX_EvFile_CheckIn(uint8_t numOfAdapters) VEXORAPI_NOEXCEPT;

/** Tells the extent of the event store.
 *
 *  SeqStart  receives the store's own sequence number of the oldest event.
 *  Count     receives the number of events; both are 0 when the store's file cannot be opened.
 *
 *  A file that is no event file is not refused: both are what stands in it at their places.
 *  Neither may be null. Both stay unchanged when vexorApiInit has not run. */
VEXORAPI_EXPORT void VX_EvGetInfo(uint32_t* SeqStart, uint32_t* Count) VEXORAPI_NOEXCEPT;

/** Starts the debug log, emptying its file. The section "DebugLogConfig" of "/vexorapi.ini" is read
 *  on the first call and holds for the life of the process.
 *
 *  filename  the log's file, shorter than 128 bytes; null, empty or longer means the configured
 *            one. The name "stderr" is reserved: messages to it go nowhere.
 *
 *  Returns 1 when the log is active, 0 when the configuration leaves it off or no name is known. */
VEXORAPI_EXPORT int VX_DBG_Init(const char* filename) VEXORAPI_NOEXCEPT;

/** Appends one message, whole and without adding a line end, to the debug log.
 *  Returns the number of characters formatted, also when the file cannot be opened; 0 when the log
 *  is off or there is no memory. Files are created with mode 0600. While a request runs the log
 *  takes 16 MiB and a line that says so; what comes beyond is left out and counted. */
VEXORAPI_EXPORT int VX_DBG_Printf(const char* fmt, ...) VEXORAPI_NOEXCEPT VEXORAPI_PRINTF(1, 2);

/** Appends one message to the named file, whether or not the debug log is on. Anything but a
 * regular file or a character device counts as unopenable, and so does the name "stderr". Returns
 * the number of characters formatted; 0 when there is no memory. */
VEXORAPI_EXPORT int VX_DBG_PrintFile(const char* filename, const char* fmt, ...) VEXORAPI_NOEXCEPT
    VEXORAPI_PRINTF(2, 3);

/** Closes what the debug log still holds open. Its settings stay. */
VEXORAPI_EXPORT void VX_DBG_Shutdown(void) VEXORAPI_NOEXCEPT;

/** Opens the service log "/var/log/hxraidsvc.log" for appending. Returns 0, or 1 on failure. */
VEXORAPI_EXPORT int InitLog(void) VEXORAPI_NOEXCEPT;

/** Appends one line to the service log: the local time, ": " and the message. It adds no line end.
 *  Returns the number of characters of the message, also when the log cannot be opened; 0 when
 *  there is no memory. */
VEXORAPI_EXPORT int LogPrintf(const char* fmt, ...) VEXORAPI_NOEXCEPT VEXORAPI_PRINTF(1, 2);

/** Closes the service log. Returns 0, or 1 when it was not open or the close failed. */
VEXORAPI_EXPORT int CloseLog(void) VEXORAPI_NOEXCEPT;

#ifdef __cplusplus
}
#endif
#endif /* VEXORAPI_H */
