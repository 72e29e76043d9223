#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "nq/platform/system_internal.h"

namespace nqdetail {

namespace {

int descriptorOf(Handle handle) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

Handle handleOf(int descriptor) {
  return reinterpret_cast<Handle>(static_cast<std::intptr_t>(descriptor));
}

int accessFlags(Access access) {
  switch (access) {
    case Access::kRead:
      return O_RDONLY;
    case Access::kWrite:
      return O_WRONLY;
    case Access::kReadWrite:
      break;
  }
  return O_RDWR;
}

// Whether the descriptor is a file or device whose transfers make sense, and
// nobody else has it open exclusively.
bool claim(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return false;
  if (S_ISDIR(status.st_mode) || S_ISFIFO(status.st_mode)) return false;
  int result;
  do {
    result = flock(descriptor, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  // A file system without locks cannot refuse the file to others.
  return result == 0 || errno != EWOULDBLOCK;
}

Handle openFile(const char* name, Access access, Creation creation, bool* missing) {
  if (missing != nullptr) *missing = false;
  int flags = accessFlags(access) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  if (creation != Creation::kExisting) flags |= O_CREAT;
  int descriptor;
  do {
    descriptor = open(name, flags, 0666);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) {
    if (missing != nullptr) *missing = errno == ENOENT;
    return noHandle();
  }
  // O_NONBLOCK kept the open from waiting for a FIFO's other end; transfers
  // wait as usual. The file is emptied only once it is ours.
  bool usable = claim(descriptor) && fcntl(descriptor, F_SETFL, accessFlags(access)) == 0;
  if (usable && creation == Creation::kTruncate) {
    // Devices have no length to cut.
    usable = ftruncate(descriptor, 0) == 0 || errno == EINVAL;
  }
  if (!usable) {
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

bool readFile(Handle handle, void* data, std::size_t count, std::size_t* transferred) {
  ssize_t result;
  do {
    result = read(descriptorOf(handle), data, count);
  } while (result < 0 && errno == EINTR);
  *transferred = result < 0 ? 0 : static_cast<std::size_t>(result);
  return result >= 0;
}

bool writeFile(Handle handle, const void* data, std::size_t count,
               std::size_t* transferred) {
  ssize_t result;
  do {
    result = write(descriptorOf(handle), data, count);
  } while (result < 0 && errno == EINTR);
  *transferred = result < 0 ? 0 : static_cast<std::size_t>(result);
  return result >= 0;
}

bool seekFileToEnd(Handle handle) {
  return lseek(descriptorOf(handle), 0, SEEK_END) >= 0;
}

void currentDirectory(char* buffer, std::size_t size) {
  if (size > 0 && getcwd(buffer, size) == nullptr) buffer[0] = '\0';
}

void* loadModule(const char* name) {
  return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

void unloadModule(void* module) {
  dlclose(module);
}

void* moduleSymbol(void* module, const char* name) {
  return dlsym(module, name);
}

// The module's file, or the program's for a null module.
void modulePath(void* module, char* buffer, std::size_t size) {
  if (size == 0) return;
  buffer[0] = '\0';
  if (module == nullptr) {
    const ssize_t length = readlink("/proc/self/exe", buffer, size - 1);
    buffer[length < 0 ? 0 : length] = '\0';
    return;
  }
  link_map* map = nullptr;
  if (dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) return;
  std::strncpy(buffer, map->l_name, size - 1);
  buffer[size - 1] = '\0';
}

constexpr System kPosixSystem = {
    .open = openFile,
    .close = closeFile,
    .read = readFile,
    .write = writeFile,
    .seekToEnd = seekFileToEnd,
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

}  // namespace nqdetail
