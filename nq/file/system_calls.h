// system_calls.h -- files, modules and directories of the system, the same on
// every platform.
//
// A file handle is the system's own: on Windows what CreateFileA gives,
// elsewhere the file descriptor as a pointer; all bits set is the invalid one.
// The byte order is passed along and never changed; it may be null.

#ifndef NQ_FILE_SYSTEM_CALLS_H
#define NQ_FILE_SYSTEM_CALLS_H

#include "nq/core/message_table.h"  // getStringResource
#include "nq/core/string_handle.h"
#include "nq/file/file_codes.h"
#include "nq/platform/export.h"

// Opens a file for reading and writing at its end, creating it only when there
// is none; no other open of it succeeds until it is closed. The invalid handle
// on failure. A file that opens but cannot be positioned is left open on
// purpose: nobody else can then write where this caller could not.
NQ_EXPORT void* nqInternalOpenAppend(const char* name, NQByteOrderEnum* byteOrder);

// Reads one line, byte by byte and never further than its end. A line ends with
// "\r" or with "\n\r", which stay in `out`; a "\n" that is followed by any other
// byte fails, with both stored. `count` receives the number of bytes read, `end`
// 1 when there were no more (a zero byte counts as the end) or the system
// failed. Returns 0 on failure, else 1. `count` and `end` may be null.
NQ_EXPORT int nqInternalRead(void* handle, NQByteOrderEnum* byteOrder,
                             NQStringHandle& out, unsigned int* count, int* end);

// Writes a text without its terminator; `written` (may be null) receives the
// number of bytes that arrived. Returns 0 on failure or for a null text, else 1.
NQ_EXPORT int nqInternalWrite(void* handle, NQByteOrderEnum* byteOrder, const char* text,
                              unsigned int* written);

// Fills `buffer` (of `size` bytes) with the current directory, followed by "\"
// when `separator` is not 0, and returns it. "" when that does not fit.
NQ_EXPORT char* nqGetCurrentWorkingDir(char* buffer, int size, int separator);

// Loads the named library; null when that fails.
NQ_EXPORT void* getModuleHandle(const char* name);
// Unloads the module and returns null: h = freeModuleHandle(h).
NQ_EXPORT void* freeModuleHandle(void* module);
// The address of an exported symbol; null when there is none.
NQ_EXPORT void* getFunctionHandle(void* module, const char* name);
// Fills `buffer` (of 255 bytes) with the full path of the module's file, or of
// the program's for null, cut after 254 characters. Returns its length.
NQ_EXPORT int getModuleFileName(void* module, char* buffer);

#endif  // NQ_FILE_SYSTEM_CALLS_H
