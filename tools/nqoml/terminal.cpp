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
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <array>
#include <atomic>
#include <csignal>
#endif

namespace nqoml {

namespace {

bool wantsNoColors() {
  const char* const wish = std::getenv("NO_COLOR");
  return wish != nullptr && *wish != '\0';
}

}  // namespace

#if defined(_WIN32)

void prepareStreams() {
  (void)_setmode(_fileno(stdin), _O_BINARY);
  (void)_setmode(_fileno(stdout), _O_BINARY);
}

void cleanUpOnSignals() {}

namespace {

void remember(const char*) {}
void forget(const char*) {}

bool showsColors(DWORD stream) {
  if (wantsNoColors()) return false;
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
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest number is given first, so this opens `stream` itself: the wrong way
    // round, for its use must still fail.
    (void)open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

namespace {

// The names of the temporary files there are; more than these are never needed.
std::array<std::atomic<const char*>, 4> temporaryFiles;

constexpr int kEnding[] = {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ};

void remember(const char* path) {
  for (auto& entry : temporaryFiles) {
    const char* none = nullptr;
    if (entry.compare_exchange_strong(none, path)) return;
  }
}

void forget(const char* path) {
  for (auto& entry : temporaryFiles) {
    const char* known = path;
    if (entry.compare_exchange_strong(known, nullptr)) return;
  }
}

// Holds signals back while a file exists whose name is not remembered.
class SignalsWait {
 public:
  SignalsWait() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : kEnding) sigaddset(&ending, signal);
    pthread_sigmask(SIG_BLOCK, &ending, &before_);
  }
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;
  ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

extern "C" void removeFilesAndEnd(int signal) {
  for (const auto& entry : temporaryFiles) {
    if (const char* const path = entry.load()) (void)unlink(path);
  }
  (void)raise(signal);  // ends the program on return, as the signal does by default
}

bool isCapable(int stream) {
  const char* terminal = std::getenv("TERM");
  return isatty(stream) != 0 && terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

}  // namespace

void cleanUpOnSignals() {
  for (const int signal : kEnding) {
    struct sigaction action;
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
      continue;
    action.sa_handler = removeFilesAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    (void)sigaction(signal, &action, nullptr);
  }
}

bool outputShowsColors() {
  return !wantsNoColors() && isCapable(STDOUT_FILENO);
}

bool errorsShowColors() {
  return !wantsNoColors() && isCapable(STDERR_FILENO);
}

bool errorsShowProgress() {
  return isCapable(STDERR_FILENO);
}

std::optional<TemporaryFile> TemporaryFile::makeBeside(const std::string& path) {
  std::string name = path + ".XXXXXX";
  const SignalsWait wait;
  const int handle = mkstemp(name.data());
  if (handle < 0) return std::nullopt;
  TemporaryFile result(std::move(name));
  struct stat status;
  mode_t mode = 0;
  if (stat(path.c_str(), &status) == 0) {
    // Whoever may not give the file away may still be in its group. What the group
    // was allowed is not for another one.
    const bool grouped = fchown(handle, static_cast<uid_t>(-1), status.st_gid) == 0;
    const bool owned = fchown(handle, status.st_uid, static_cast<gid_t>(-1)) == 0;
    mode = status.st_mode & (grouped && owned ? 07777 : grouped ? 0777 : 0707);
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
  std::optional<TemporaryFile> result;
  int handle = -1;
  {
    const SignalsWait wait;
    handle = mkstemp(name.data());
    if (handle < 0) return std::nullopt;
    result = TemporaryFile(std::move(name));
  }
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

TemporaryFile::TemporaryFile(std::string path) : path_(new std::string(std::move(path))) {
  remember(path_->c_str());
}

bool TemporaryFile::replace(const std::string& path) {
  std::error_code code;
  std::filesystem::rename(*path_, path, code);
  if (code) return false;
  forget(path_->c_str());
  delete path_.release();
  return true;
}

void TemporaryFile::Remover::operator()(const std::string* path) const {
  (void)std::remove(path->c_str());
  forget(path->c_str());
  delete path;
}

}  // namespace nqoml
