// system_internal.h -- the one seam between the library and the operating system.
//
// Every operating-system call goes through the table that system() returns.
// There is one source per system that fills it in (system_posix.cpp,
// system_windows.cpp); tests put a table of their own in its place to make
// transfers fail, stop short, or run into a full disk.
//
// Handles are opaque; noHandle(), all bits set, is the invalid one. Counts that
// a call hands back are set in every case, to 0 when nothing was transferred.

#ifndef NQ_PLATFORM_SYSTEM_INTERNAL_H
#define NQ_PLATFORM_SYSTEM_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace nqdetail {

using Handle = void*;

inline Handle noHandle() {
  return reinterpret_cast<Handle>(std::intptr_t{-1});
}

enum class Access {
  kRead,
  kSharedRead,  // beside others that read so
  kWrite,
  kReadWrite,
};

enum class Creation {
  kExisting,   // fail when the file is missing
  kTruncate,   // create it, or empty it
  kIfMissing,  // create it when missing, else leave its contents
};

struct System {
  // Opens a file so that no second open() of it succeeds until it is closed, in
  // this program or in another, except that shared reads go together; a refused open
  // changes nothing. Where the lock is advisory, only those who take it too are kept
  // out.
  // Directories and FIFOs are refused at once; devices are not exclusive.
  Handle (*open)(const char* name, Access access, Creation creation);
  bool (*close)(Handle handle);
  // Whether there is a file of that name, open or not; directories do not count. Takes
  // no lock and opens nothing.
  bool (*exists)(const char* name);
  // How many bytes a plain file has; -1 for a device.
  std::int64_t (*fileSize)(Handle handle);
  // Whether both are handles of one file, by whatever names it was opened.
  bool (*isSameFile)(Handle first, Handle second);

  // One transfer, which may be shorter than asked for; interrupted calls are
  // taken up again. Reading nothing with success is the end of the data.
  bool (*read)(Handle handle, void* data, std::size_t count, std::size_t* transferred);
  bool (*write)(Handle handle, const void* data, std::size_t count,
                std::size_t* transferred);

  // Moves the place of the next transfer: to the end, or by so many bytes.
  bool (*seekToEnd)(Handle handle);
  bool (*seekBy)(Handle handle, std::int64_t distance);

  // The steps of putting one file in the place of another. Each answers false when it
  // failed and then changes nothing.
  //   linkTarget    what the link `name` leads to; "" when it is not a link
  //   createBeside  a new, empty file in the folder of `target`, which may be missing but
  //                 is no directory, for writing. It has the permissions of `target`, and
  //                 if we may its owner and group; without the group, nothing of what
  //                 that was allowed. noHandle() with an empty name on failure.
  //   sync          puts what was written on disk
  //   replace       names the file `from` `to` in one step, in place of the file `held`,
  //                 which is closed in any case; noHandle() where there is none
  //   syncFolder    puts the folder of `name` on disk
  bool (*linkTarget)(const char* name, std::string& target);
  Handle (*createBeside)(const char* target, std::string& name);
  bool (*sync)(Handle handle);
  bool (*replace)(const char* from, const char* to, Handle held);
  bool (*syncFolder)(const char* name);
  bool (*remove)(const char* name);

  // The program's own streams, noHandle() where it has none.
  Handle (*standardInput)();
  Handle (*standardOutput)();
  Handle (*standardError)();

  // Fills `buffer` (of `size` bytes, terminated), with "" when the name does not
  // fit or is not known.
  void (*currentDirectory)(char* buffer, std::size_t size);
  // The same with the full path of a module's file, or of the program's for
  // null; a path that does not fit is cut.
  void (*modulePath)(void* module, char* buffer, std::size_t size);

  void* (*loadModule)(const char* name);  // null on failure
  void (*unloadModule)(void* module);
  void* (*symbol)(void* module, const char* name);  // null when there is none
};

// The table in force.
const System& system();

// The host's own table, whatever is in force.
const System& hostSystem();

// For tests: puts `replacement` in force (borrowed until the next call); null
// restores the host's table. Not to be called while files are open elsewhere.
void replaceSystem(const System* replacement);

// A hint: the `size` bytes from `memory` on, not used yet, will be written soon and
// nearly all. Where the system can, it provides the pages now, which costs less than
// one by one as they are touched. Not in the table, since all that can come of it is
// time.
void prepareMemory(void* memory, std::size_t size);

// Writes all of `data`, in as many transfers as it takes; `written` tells how
// much arrived. False when a transfer fails or makes no progress.
bool writeAll(Handle handle, const char* data, std::size_t count, std::size_t* written);

}  // namespace nqdetail

#endif  // NQ_PLATFORM_SYSTEM_INTERNAL_H
