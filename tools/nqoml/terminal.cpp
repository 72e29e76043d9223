#include "tools/nqoml/terminal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#include <filesystem>
#include <system_error>
#endif

namespace nqoml {

#if defined(_WIN32)

void useBinaryStreams() {
  (void)_setmode(_fileno(stdin), _O_BINARY);
  (void)_setmode(_fileno(stdout), _O_BINARY);
}

bool outputShowsColors() {
  if (std::getenv("NO_COLOR") != nullptr) return false;
  constexpr DWORD kEscapeSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | kEscapeSequences) != 0;
}

std::optional<TemporaryFile> TemporaryFile::make(const std::string& content) {
  char directory[MAX_PATH + 1];
  char name[MAX_PATH + 1];
  if (GetTempPathA(sizeof directory, directory) == 0 ||
      GetTempFileNameA(directory, "nqo", 0, name) == 0) {
    return std::nullopt;
  }
  TemporaryFile result{std::string(name)};
  std::FILE* file = std::fopen(name, "wb");
  if (file == nullptr) return std::nullopt;
  const bool written =
      std::fwrite(content.data(), 1, content.size(), file) == content.size();
  if (std::fclose(file) != 0 || !written) return std::nullopt;
  return result;
}

#else

void useBinaryStreams() {}

bool outputShowsColors() {
  const char* terminal = std::getenv("TERM");
  return std::getenv("NO_COLOR") == nullptr && isatty(STDOUT_FILENO) != 0 &&
         terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

std::optional<TemporaryFile> TemporaryFile::make(const std::string& content) {
  std::error_code code;
  std::string name =
      (std::filesystem::temp_directory_path(code) / "nqoml-XXXXXX").string();
  if (code) return std::nullopt;
  const int handle = mkstemp(name.data());
  if (handle < 0) return std::nullopt;
  TemporaryFile result(std::move(name));
  std::size_t written = 0;
  while (written < content.size()) {
    const ssize_t count =
        write(handle, content.data() + written, content.size() - written);
    if (count <= 0) break;
    written += static_cast<std::size_t>(count);
  }
  if (close(handle) != 0 || written != content.size()) return std::nullopt;
  return result;
}

#endif

TemporaryFile::TemporaryFile(std::string path) : path_(std::move(path)) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_(std::exchange(other.path_, {})) {}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) (void)std::remove(path_.c_str());
}

}  // namespace nqoml
