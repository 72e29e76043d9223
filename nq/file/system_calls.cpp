#include "nq/file/system_calls.h"

#include <cstring>
#include <string>

#include "nq/file/transfer_internal.h"
#include "nq/platform/system_internal.h"

using nqdetail::system;

void* nqInternalOpenAppend(const char* name, NQByteOrderEnum*) {
  if (name == nullptr) return nqdetail::noHandle();
  const nqdetail::Handle handle =
      system().open(name, nqdetail::Access::kReadWrite, nqdetail::Creation::kIfMissing);
  if (handle == nqdetail::noHandle() || system().seekToEnd(handle)) return handle;
  return nqdetail::noHandle();
}

int nqInternalRead(void* handle, NQByteOrderEnum*, NQStringHandle& out,
                   unsigned int* count, int* end) {
  return nqdetail::readTerminatedLine({handle}, nullptr, out, count, end);
}

int nqInternalWrite(void* handle, NQByteOrderEnum*, const char* text,
                    unsigned int* written) {
  std::size_t arrived = 0;
  const bool succeeded =
      text != nullptr && nqdetail::writeAll(handle, text, std::strlen(text), &arrived);
  if (written != nullptr) *written = static_cast<unsigned int>(arrived);
  return succeeded ? 1 : 0;
}

char* nqGetCurrentWorkingDir(char* buffer, int size, int separator) {
  if (buffer == nullptr || size <= 0) return buffer;
  // Room is kept for the separator, so that it never hides that the name is cut.
  const auto room = static_cast<std::size_t>(size) - (separator != 0 ? 1 : 0);
  buffer[0] = '\0';
  system().currentDirectory(buffer, room);
  if (separator != 0 && buffer[0] != '\0') std::strcat(buffer, "\\");
  return buffer;
}

void* getModuleHandle(const char* name) {
  return name == nullptr ? nullptr : system().loadModule(std::string(name).c_str());
}

void* freeModuleHandle(void* module) {
  if (module != nullptr) system().unloadModule(module);
  return nullptr;
}

void* getFunctionHandle(void* module, const char* name) {
  return module == nullptr || name == nullptr ? nullptr : system().symbol(module, name);
}

int getModuleFileName(void* module, char* buffer) {
  constexpr std::size_t kPathSize = 255;
  if (buffer == nullptr) return 0;
  system().modulePath(module, buffer, kPathSize);
  return static_cast<int>(std::strlen(buffer));
}
