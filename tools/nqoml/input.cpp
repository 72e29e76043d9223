#include "tools/nqoml/input.h"

#include "tools/nqoml/source.h"

#include <filesystem>
#include <fstream>
#include <istream>
#include <iterator>
#include <system_error>
#include <utility>

namespace nqoml {

namespace {

constexpr std::size_t kLargest = std::size_t{1} << 30;  // bytes held in memory
constexpr std::size_t kStart = 16;

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
  namespace fs = std::filesystem;
  Input input;
  input.shownAs = shownName(name);
  input.directory = name == "-" ? "." : directoryOf(name);
  std::error_code code;
  if (name != "-" && fs::is_regular_file(name, code)) {
    std::ifstream file(name, std::ios::binary);
    char bytes[kStart];
    file.read(bytes, sizeof bytes);
    input.start.assign(bytes, static_cast<std::size_t>(file.gcount()));
    input.path = name;
    return input;
  }
  Content content = readContent(name, in);
  input.trouble = std::move(content.trouble);
  if (input.trouble.empty()) copyContent(input, std::move(content.bytes));
  return input;
}

Content readContent(const std::string& name, std::istream& in) {
  namespace fs = std::filesystem;
  Content content;
  content.shownAs = shownName(name);
  std::error_code code;
  if (name == "-") {
    content.bytes.assign(std::istreambuf_iterator<char>(in), {});
  } else if (fs::is_directory(name, code)) {
    content.trouble = "is a directory";
  } else if (fs::is_regular_file(name, code) && fs::file_size(name, code) > kLargest) {
    content.trouble = "is larger than 1 GiB";
  } else if (auto bytes = readFile(name, kLargest)) {
    content.bytes = *std::move(bytes);
  } else {
    content.trouble = "cannot be read";
  }
  return content;
}

bool isSurelyBinary(std::string_view content) {
  // The first record of a file is a name, and its index follows: four bytes
  // after a capital letter, the highest of which is 0 in any real grammar, or
  // one byte. A text has neither a zero byte nor a control character there.
  if (content.size() < 2) return false;
  const auto index = static_cast<unsigned char>(content[1]);
  switch (content[0]) {
    case 'O':
    case 'F':
    case 'S':
      return index == 0;
    case 'o':
    case 'f':
    case 's':
      return index < ' ' && (index < '\t' || index > '\r');
    default:
      return false;
  }
}

}  // namespace nqoml
