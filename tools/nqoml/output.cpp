#include "tools/nqoml/output.h"

#include <filesystem>
#include <fstream>
#include <ostream>
#include <system_error>

namespace nqoml {

namespace fs = std::filesystem;

namespace {

// Where the links from `path` on lead, whether a file is there or not.
std::string followLinks(fs::path path) {
  constexpr int kMostLinks = 40;
  std::error_code code;
  for (int i = 0; i < kMostLinks && fs::is_symlink(path, code); ++i) {
    path = path.parent_path() / fs::read_symlink(path, code);
  }
  return path.string();
}

}  // namespace

Output::Output(const std::string& target, std::ostream& out)
    : target_(target), out_(out) {
  std::error_code code;
  const fs::file_status status = fs::status(target, code);
  if (target == "-") {
    kind_ = Target::kStream;
  } else if (status.type() == fs::file_type::directory) {
    trouble_ = "is a directory";
    return;
  } else if (status.type() == fs::file_type::regular) {
    const bool isProtected =
        (status.permissions() & fs::perms::owner_write) == fs::perms::none;
    if (isProtected || !std::ofstream(target, std::ios::app)) {
      trouble_ = "is protected from writing";
      return;
    }
  } else if (status.type() != fs::file_type::not_found) {
    kind_ = Target::kDevice;
  }
  if (kind_ == Target::kFile) target_ = followLinks(target);
  file_ = kind_ == Target::kFile ? TemporaryFile::makeBeside(target_)
                                 : TemporaryFile::make({});
  if (!file_) {
    trouble_ = kind_ == Target::kFile ? "no file can be made in its directory"
                                      : "no temporary file can be made";
  }
}

bool Output::fail(const char* trouble) {
  trouble_ = trouble;
  return false;
}

bool Output::write(std::string_view content) {
  std::ofstream file(path(), std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  return file ? true : fail("cannot be written");
}

bool Output::commit() {
  if (kind_ == Target::kFile) {
    return file_->replace(target_) ? true : fail("cannot be replaced");
  }
  std::ifstream written(path(), std::ios::binary);
  if (!written) return fail("cannot be written");
  std::ofstream device;
  if (kind_ == Target::kDevice) device.open(target_, std::ios::binary);
  std::ostream& out = kind_ == Target::kDevice ? device : out_;
  char piece[65536];
  while (written.read(piece, sizeof piece) || written.gcount() > 0) {
    out.write(piece, written.gcount());
  }
  out.flush();
  return !written.bad() && out ? true : fail("cannot be written");
}

}  // namespace nqoml
