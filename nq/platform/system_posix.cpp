#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <utility>

#include "nq/platform/system_internal.h"

namespace nqdetail {

namespace {

int descriptorOf(Handle handle) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

Handle handleOf(int descriptor) {
  return reinterpret_cast<Handle>(std::intptr_t{descriptor});
}

int accessFlags(Access access) {
  switch (access) {
    case Access::kRead:
    case Access::kSharedRead:
      return O_RDONLY;
    case Access::kWrite:
      return O_WRONLY;
    case Access::kReadWrite:
      break;
  }
  return O_RDWR;
}

// Calls a system function until no signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

// Takes the lock of a regular file. Failing to take it is a failure only when somebody
// else has it: a file system without locks cannot refuse the file to others.
bool lockFile(int descriptor, Access access) {
  const int kind = access == Access::kSharedRead ? LOCK_SH : LOCK_EX;
  return uninterrupted([=] { return flock(descriptor, kind | LOCK_NB); }) == 0 ||
         errno != EWOULDBLOCK;
}

// What remains of opening a file once there is a descriptor. It is emptied only
// when it is ours.
bool prepare(int descriptor, Access access, Creation creation) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  if (S_ISDIR(status.st_mode) || S_ISFIFO(status.st_mode)) return false;
  // The open must not wait; transfers do.
  if (fcntl(descriptor, F_SETFL, accessFlags(access)) != 0) return false;
  if (!S_ISREG(status.st_mode)) return true;
  if (!lockFile(descriptor, access)) return false;
  return creation != Creation::kTruncate ||
         uninterrupted([=] { return ftruncate(descriptor, 0); }) == 0;
}

Handle openFile(const char* name, Access access, Creation creation) {
  int flags = accessFlags(access) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  if (creation != Creation::kExisting) flags |= O_CREAT;
  const int descriptor = uninterrupted([=] { return open(name, flags, 0666); });
  if (descriptor < 0) return noHandle();
  if (!prepare(descriptor, access, creation)) {
    close(descriptor);
    return noHandle();
  }
  return handleOf(descriptor);
}

bool closeFile(Handle handle) {
  // After an interrupted close the descriptor is gone; closing it again could
  // hit somebody else's.
  return close(descriptorOf(handle)) == 0 || errno == EINTR;
}

bool fileExists(const char* name) {
  struct stat status;
  return stat(name, &status) == 0 && !S_ISDIR(status.st_mode);
}

std::int64_t fileSize(Handle handle) {
  struct stat status;
  return fstat(descriptorOf(handle), &status) == 0 && S_ISREG(status.st_mode)
             ? std::int64_t{status.st_size}
             : -1;
}

bool isSameFile(Handle first, Handle second) {
  struct stat one;
  struct stat other;
  return fstat(descriptorOf(first), &one) == 0 &&
         fstat(descriptorOf(second), &other) == 0 && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino;
}

// With the separator at its end; "" for the current directory.
std::string folderOf(const std::string& name) {
  return name.substr(0, name.rfind('/') + 1);
}

bool linkTarget(const char* name, std::string& target) {
  target.clear();
  char text[PATH_MAX];
  const ssize_t length = readlink(name, text, sizeof text);
  if (length < 0) return errno == EINVAL || errno == ENOENT;
  if (length == ssize_t{sizeof text}) return false;
  if (text[0] != '/') target = folderOf(name);
  target.append(text, static_cast<std::size_t>(length));
  return true;
}

// What the new file is allowed must never be more than the old one was.
bool grantRights(int descriptor, const struct stat& old) {
  // Whoever may not give the file away may still be in its group.
  const bool grouped = fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
  const bool owned = fchown(descriptor, old.st_uid, static_cast<gid_t>(-1)) == 0;
  const mode_t kept = grouped && owned ? 07777 : grouped ? 0777 : 0707;
  return fchmod(descriptor, old.st_mode & kept) == 0;
}

Handle createBeside(const char* target, std::string& name) {
  constexpr int kTries = 100;
  name.clear();
  struct stat old;
  const bool replaces = stat(target, &old) == 0;
  if (replaces && S_ISDIR(old.st_mode)) return noHandle();
  // Any name will do that nobody has: the file is created, or the next one tried.
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  auto number = static_cast<std::uint64_t>(now.tv_nsec) ^
                (static_cast<std::uint64_t>(getpid()) << 32);
  std::string path;
  int descriptor = -1;
  errno = EEXIST;
  for (int i = 0; i < kTries && descriptor < 0 && errno == EEXIST; ++i) {
    number = number * 6364136223846793005u + 1442695040888963407u;
    path = folderOf(target) + ".nq-" + std::to_string(number);
    descriptor = uninterrupted([&] {
      return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY,
                  replaces ? 0600 : 0666);
    });
  }
  if (descriptor < 0) return noHandle();
  if (replaces && !grantRights(descriptor, old)) {
    close(descriptor);
    unlink(path.c_str());
    return noHandle();
  }
  name = std::move(path);
  return handleOf(descriptor);
}

bool syncFile(Handle handle) {
  return uninterrupted([=] { return fsync(descriptorOf(handle)); }) == 0;
}

// The lock goes on until the new file is in place.
bool replaceFile(const char* from, const char* to, Handle held) {
  const bool renamed = rename(from, to) == 0;
  if (held != noHandle()) closeFile(held);
  return renamed;
}

bool syncFolder(const char* name) {
  const std::string folder = folderOf(name);
  const int descriptor = uninterrupted([&] {
    return open(folder.empty() ? "." : folder.c_str(),
                O_RDONLY | O_CLOEXEC | O_DIRECTORY);
  });
  if (descriptor < 0) return false;
  const bool synced = syncFile(handleOf(descriptor));
  return closeFile(handleOf(descriptor)) && synced;
}

bool removeFile(const char* name) {
  return unlink(name) == 0;
}

bool readFile(Handle handle, void* data, std::size_t count, std::size_t* transferred) {
  const ssize_t result =
      uninterrupted([=] { return read(descriptorOf(handle), data, count); });
  *transferred = result < 0 ? 0 : static_cast<std::size_t>(result);
  return result >= 0;
}

bool writeFile(Handle handle, const void* data, std::size_t count,
               std::size_t* transferred) {
  const ssize_t result =
      uninterrupted([=] { return write(descriptorOf(handle), data, count); });
  *transferred = result < 0 ? 0 : static_cast<std::size_t>(result);
  return result >= 0;
}

bool seekFileToEnd(Handle handle) {
  return lseek(descriptorOf(handle), 0, SEEK_END) >= 0;
}

bool seekFileBy(Handle handle, std::int64_t distance) {
  return lseek(descriptorOf(handle), distance, SEEK_CUR) >= 0;
}

void currentDirectory(char* buffer, std::size_t size) {
  if (size > 0 && getcwd(buffer, size) == nullptr) buffer[0] = '\0';
}

void* loadModule(const char* name) {
  if (*name == '\0') return nullptr;  // would stand for the program itself
  // A path is made absolute, so that modulePath() holds wherever the program goes.
  const bool isPath = std::strchr(name, '/') != nullptr;
  const std::unique_ptr<char, decltype(&std::free)> absolute(
      isPath ? realpath(name, nullptr) : nullptr, &std::free);
  return dlopen(absolute != nullptr ? absolute.get() : name, RTLD_NOW | RTLD_LOCAL);
}

void unloadModule(void* module) {
  dlclose(module);
}

void* moduleSymbol(void* module, const char* name) {
  return dlsym(module, name);
}

void modulePath(void* module, char* buffer, std::size_t size) {
  if (size == 0) return;
  buffer[0] = '\0';
  const char* name = "/proc/self/exe";
  link_map* map = nullptr;
  if (module != nullptr) {
    if (dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) return;
    if (*map->l_name != '\0') name = map->l_name;  // the program's own is empty
  }
  char* const path = realpath(name, nullptr);
  if (path == nullptr) return;
  const std::size_t length = std::min(std::strlen(path), size - 1);
  std::memcpy(buffer, path, length);
  buffer[length] = '\0';
  std::free(path);
}

constexpr System kPosixSystem = {
    .open = openFile,
    .close = closeFile,
    .exists = fileExists,
    .fileSize = fileSize,
    .isSameFile = isSameFile,
    .read = readFile,
    .write = writeFile,
    .seekToEnd = seekFileToEnd,
    .seekBy = seekFileBy,
    .linkTarget = linkTarget,
    .createBeside = createBeside,
    .sync = syncFile,
    .replace = replaceFile,
    .syncFolder = syncFolder,
    .remove = removeFile,
    .standardInput = [] { return handleOf(STDIN_FILENO); },
    .standardOutput = [] { return handleOf(STDOUT_FILENO); },
    .standardError = [] { return handleOf(STDERR_FILENO); },
    .currentDirectory = currentDirectory,
    .modulePath = modulePath,
    .loadModule = loadModule,
    .unloadModule = unloadModule,
    .symbol = moduleSymbol,
};

}  // namespace

const System& hostSystem() {
  return kPosixSystem;
}

// Whole pages only; a kernel that does not know the request changes nothing.
void prepareMemory([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#if defined(MADV_POPULATE_WRITE)
  static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t before = (page - start % page) % page;
  if (before >= size) return;
  (void)madvise(static_cast<char*>(memory) + before, (size - before) / page * page,
                MADV_POPULATE_WRITE);
#endif
}

}  // namespace nqdetail
