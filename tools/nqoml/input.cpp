#include "tools/nqoml/input.h"

#include "nq/file/file.h"
#include "nq/oml/encoding/records.h"
#include "tools/nqoml/source.h"

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <istream>
#include <system_error>
#include <utility>

namespace nqoml {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kStart = 16;
constexpr char kUnreadable[] = "cannot be read";

std::string shownName(const std::string& name) {
  return name == "-" ? "<stdin>" : name;
}

std::string directoryOf(const std::string& path) {
  const std::size_t end = path.find_last_of(
#if defined(_WIN32)
      "/\\:"
#else
      '/'
#endif
  );
  return end == std::string::npos ? "." : path.substr(0, end + 1);
}

void copyContent(Input& input, std::string content) {
  input.copy = TemporaryFile::make(content);
  if (!input.copy) {
    input.trouble = "cannot be copied to a temporary file";
    return;
  }
  input.path = input.copy->path();
  input.start = content.substr(0, kStart);
  input.content = std::move(content);
}

}  // namespace

Input openInput(const std::string& name, std::istream& in) {
  Input input;
  input.shownAs = shownName(name);
  std::error_code code;
  if (name != "-" && name.size() < NQFile::kNameSize && fs::is_regular_file(name, code)) {
    std::ifstream file(name, std::ios::binary);
    char bytes[kStart];
    file.read(bytes, sizeof bytes);
    input.start.assign(bytes, static_cast<std::size_t>(file.gcount()));
    input.path = name;
    input.directory = directoryOf(name);
    return input;
  }
  Content content = readContent(name, in);
  input.trouble = std::move(content.trouble);
  if (input.trouble.empty()) copyContent(input, std::move(content.bytes));
  return input;
}

Content readContent(const std::string& name, std::istream& in, std::size_t limit) {
  Content content;
  content.shownAs = shownName(name);
  std::error_code code;
  const bool isNamed = name != "-";
  std::ifstream file;
  if (isNamed) file.open(name, std::ios::binary);
  if (isNamed && (!file.is_open() || fs::is_directory(name, code))) {
    content.trouble = whyClosed(name);
    return content;
  }
  const bool isLarge =
      isNamed && fs::is_regular_file(name, code) && fs::file_size(name, code) > limit;
  std::istream& source = isNamed ? file : in;
  if (!isLarge) content.bytes = readStream(source, limit);
  if (isLarge || content.bytes.size() > limit) {
    content.trouble = "is larger than " + std::to_string(limit >> 20) + " MiB";
  } else if (source.bad() || !source.eof()) {
    content.trouble = kUnreadable;
  }
  return content;
}

std::string whyClosed(const std::string& path) {
  std::error_code code;
  const fs::file_type type = fs::status(path, code).type();
  if (type == fs::file_type::not_found) return "does not exist";
  if (type == fs::file_type::directory) return "is a directory";
  // A file that is there to be read must be open elsewhere.
  const bool mayRead = type == fs::file_type::regular &&
                       path.size() < NQFile::kNameSize && access(path.c_str(), R_OK) == 0;
  return mayRead ? "is in use by another program" : kUnreadable;
}

bool isSurelyBinary(std::string_view content) {
  // The first record of a file is a name, and its index follows: four bytes
  // after a capital letter, the highest of which is 0 in any real grammar, or
  // one byte. A text has neither a zero byte nor a control character there.
  if (content.size() < 2) return false;
  const auto index = static_cast<unsigned char>(content[1]);
  switch (nqdetail::longForm(content[0])) {
    case nqdetail::kObjectTypeRecord:
    case nqdetail::kFieldRecord:
    case nqdetail::kSectionRecord:
      return nqdetail::isLongForm(content[0])
                 ? index == 0
                 : index < ' ' && (index < '\t' || index > '\r');
    default:
      return false;
  }
}

}  // namespace nqoml
