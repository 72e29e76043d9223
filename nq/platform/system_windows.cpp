#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "nq/platform/system_internal.h"

namespace nqdetail {

namespace {

// One transfer at most this long, so that its count fits the system's 32 bits.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;

DWORD accessFlags(Access access) {
  switch (access) {
    case Access::kRead:
    case Access::kSharedRead:
      return GENERIC_READ;
    case Access::kWrite:
      return GENERIC_WRITE;
    case Access::kReadWrite:
      break;
  }
  return GENERIC_READ | GENERIC_WRITE;
}

DWORD dispositionOf(Creation creation) {
  switch (creation) {
    case Creation::kExisting:
      return OPEN_EXISTING;
    case Creation::kTruncate:
      return CREATE_ALWAYS;
    case Creation::kIfMissing:
      break;
  }
  return OPEN_ALWAYS;
}

Handle openFile(const char* name, Access access, Creation creation) {
  const DWORD sharing = access == Access::kSharedRead ? FILE_SHARE_READ : 0;
  const HANDLE handle =
      CreateFileA(name, accessFlags(access), sharing, nullptr, dispositionOf(creation),
                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle != INVALID_HANDLE_VALUE && GetFileType(handle) == FILE_TYPE_PIPE) {
    CloseHandle(handle);
    return noHandle();
  }
  return handle;
}

bool closeFile(Handle handle) {
  // The invalid handle also stands for the process itself, which closes well.
  return handle != noHandle() && CloseHandle(handle) != 0;
}

bool fileExists(const char* name) {
  const DWORD attributes = GetFileAttributesA(name);
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::int64_t fileSize(Handle handle) {
  LARGE_INTEGER size;
  return GetFileType(handle) == FILE_TYPE_DISK && GetFileSizeEx(handle, &size) != 0
             ? std::int64_t{size.QuadPart}
             : -1;
}

bool isSameFile(Handle first, Handle second) {
  BY_HANDLE_FILE_INFORMATION one;
  BY_HANDLE_FILE_INFORMATION other;
  return GetFileInformationByHandle(first, &one) != 0 &&
         GetFileInformationByHandle(second, &other) != 0 &&
         one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
         one.nFileIndexHigh == other.nFileIndexHigh &&
         one.nFileIndexLow == other.nFileIndexLow;
}

std::string folderOf(const std::string& name) {
  const std::size_t separator = name.find_last_of("/\\:");
  return separator == std::string::npos ? ".\\" : name.substr(0, separator + 1);
}

// The system tells only where a link leads in the end, and only if a file is there.
bool linkTarget(const char* name, std::string& target) {
  target.clear();
  const DWORD attributes = GetFileAttributesA(name);
  if (attributes == INVALID_FILE_ATTRIBUTES ||
      (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return true;
  }
  const HANDLE file =
      CreateFileA(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  char path[1024];
  const DWORD length = GetFinalPathNameByHandleA(file, path, sizeof path, 0);
  CloseHandle(file);
  if (length == 0 || length >= sizeof path) return false;
  if (std::strcmp(path, name) != 0) target = path;
  return true;
}

// The rights come from the old file when it is replaced, else from the folder.
Handle createBeside(const char* target, std::string& name) {
  name.clear();
  char path[MAX_PATH + 1];
  const DWORD attributes = GetFileAttributesA(target);
  const bool isDirectory = attributes != INVALID_FILE_ATTRIBUTES &&
                           (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (isDirectory || GetTempFileNameA(folderOf(target).c_str(), "nq", 0, path) == 0) {
    return noHandle();
  }
  const HANDLE handle = CreateFileA(path, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    DeleteFileA(path);
    return noHandle();
  }
  name = path;
  return handle;
}

bool syncFile(Handle handle) {
  return FlushFileBuffers(handle) != 0;
}

// No file can be replaced while it is open.
bool replaceFile(const char* from, const char* to, Handle held) {
  if (held == noHandle()) {
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  }
  closeFile(held);
  return ReplaceFileA(to, from, nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                      nullptr) != 0;
}

// The system sees to folders itself.
bool syncFolder(const char*) {
  return true;
}

bool removeFile(const char* name) {
  return DeleteFileA(name) != 0;
}

bool readFile(Handle handle, void* data, std::size_t count, std::size_t* transferred) {
  DWORD read = 0;
  const DWORD wanted = static_cast<DWORD>(std::min(count, kMaxTransfer));
  const bool succeeded = ReadFile(handle, data, wanted, &read, nullptr) != 0 ||
                         GetLastError() == ERROR_BROKEN_PIPE;  // the writer has ended
  *transferred = read;
  return succeeded;
}

bool writeFile(Handle handle, const void* data, std::size_t count,
               std::size_t* transferred) {
  DWORD written = 0;
  const DWORD wanted = static_cast<DWORD>(std::min(count, kMaxTransfer));
  const bool succeeded = WriteFile(handle, data, wanted, &written, nullptr) != 0;
  *transferred = written;
  return succeeded;
}

bool seekFile(Handle handle, std::int64_t distance, DWORD from) {
  LARGE_INTEGER bytes;
  bytes.QuadPart = distance;
  return SetFilePointerEx(handle, bytes, nullptr, from) != 0;
}

bool seekFileToEnd(Handle handle) {
  return seekFile(handle, 0, FILE_END);
}

// Some devices accept every move and make none.
bool seekFileBy(Handle handle, std::int64_t distance) {
  return GetFileType(handle) == FILE_TYPE_DISK &&
         seekFile(handle, distance, FILE_CURRENT);
}

Handle standardHandle(DWORD which) {
  const HANDLE handle = GetStdHandle(which);
  return handle == nullptr ? noHandle() : handle;
}

void currentDirectory(char* buffer, std::size_t size) {
  if (size == 0) return;
  const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(size), buffer);
  if (length == 0 || length >= size) buffer[0] = '\0';
}

void modulePath(void* module, char* buffer, std::size_t size) {
  if (size == 0) return;
  const DWORD length =
      GetModuleFileNameA(static_cast<HMODULE>(module), buffer, static_cast<DWORD>(size));
  buffer[std::min<std::size_t>(length, size - 1)] = '\0';
}

void* loadModule(const char* name) {
  return LoadLibraryA(name);
}

void unloadModule(void* module) {
  FreeLibrary(static_cast<HMODULE>(module));
}

void* moduleSymbol(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

constexpr System kWindowsSystem = {
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
    .standardInput = [] { return standardHandle(STD_INPUT_HANDLE); },
    .standardOutput = [] { return standardHandle(STD_OUTPUT_HANDLE); },
    .standardError = [] { return standardHandle(STD_ERROR_HANDLE); },
    .currentDirectory = currentDirectory,
    .modulePath = modulePath,
    .loadModule = loadModule,
    .unloadModule = unloadModule,
    .symbol = moduleSymbol,
};

}  // namespace

const System& hostSystem() {
  return kWindowsSystem;
}

void prepareMemory(void*, std::size_t) {}

}  // namespace nqdetail
