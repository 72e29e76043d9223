#include "tools/nqoml/terminal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>
#endif

namespace nqoml {

#if defined(_WIN32)

void prepareStreams() {
  (void)_setmode(_fileno(stdin), _O_BINARY);
  (void)_setmode(_fileno(stdout), _O_BINARY);
}

namespace {

bool showsColors(DWORD stream) {
  if (std::getenv("NO_COLOR") != nullptr) return false;
  constexpr DWORD kEscapeSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  const HANDLE console = GetStdHandle(stream);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | kEscapeSequences) != 0;
}

}  // namespace

bool outputShowsColors() {
  return showsColors(STD_OUTPUT_HANDLE);
}

bool errorsShowColors() {
  return showsColors(STD_ERROR_HANDLE);
}

bool errorsShowProgress() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::optional<TemporaryFile> TemporaryFile::makeBeside(const std::string& path) {
  const std::string directory = std::filesystem::path(path).parent_path().string();
  char name[MAX_PATH + 1];
  if (GetTempFileNameA(directory.empty() ? "." : directory.c_str(), "nqo", 0, name) ==
      0) {
    return std::nullopt;
  }
  return TemporaryFile{std::string(name)};
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

void prepareStreams() {
  (void)std::signal(SIGPIPE, SIG_IGN);
}

namespace {

bool isCapable(int stream) {
  const char* terminal = std::getenv("TERM");
  return isatty(stream) != 0 && terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

}  // namespace

bool outputShowsColors() {
  return std::getenv("NO_COLOR") == nullptr && isCapable(STDOUT_FILENO);
}

bool errorsShowColors() {
  return std::getenv("NO_COLOR") == nullptr && isCapable(STDERR_FILENO);
}

bool errorsShowProgress() {
  return isCapable(STDERR_FILENO);
}

std::optional<TemporaryFile> TemporaryFile::makeBeside(const std::string& path) {
  std::string name = path + ".XXXXXX";
  const int handle = mkstemp(name.data());
  if (handle < 0) return std::nullopt;
  TemporaryFile result(std::move(name));
  struct stat status;
  mode_t mode = 0;
  if (stat(path.c_str(), &status) == 0) {
    mode = status.st_mode & 07777;
  } else {
    mode = umask(0);
    (void)umask(mode);
    mode = 0666 & ~mode;
  }
  const bool allowed = fchmod(handle, mode) == 0;
  if (close(handle) != 0 || !allowed) return std::nullopt;
  return result;
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

bool TemporaryFile::replace(const std::string& path) {
  std::error_code code;
  std::filesystem::rename(path_, path, code);
  if (code) return false;
  path_.clear();
  return true;
}

TemporaryFile::TemporaryFile(std::string path) : path_(std::move(path)) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_(std::exchange(other.path_, {})) {}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept {
  std::swap(path_, other.path_);
  return *this;
}

TemporaryFile::~TemporaryFile() {
  if (!path_.empty()) (void)std::remove(path_.c_str());
}

}  // namespace nqoml
