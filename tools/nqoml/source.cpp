#include "tools/nqoml/source.h"

#include "nq/oml/encoding/lines.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <deque>
#include <fstream>
#include <utility>

namespace nqoml {

namespace {

constexpr std::size_t kLargestShown = std::size_t{1} << 30;  // bytes of a file
constexpr std::size_t kCached = std::size_t{64} << 20;       // bytes of all files
constexpr long kStride = 256;
// Of a long line.
constexpr int kShown = 100;            // columns shown
constexpr int kBefore = 60;            // of them before the mark
constexpr std::size_t kWindow = 1024;  // bytes looked at on either side of the mark

// A character as it is shown.
struct Shown {
  std::string_view bytes;
  int width;
};

Shown shownAt(std::string_view line, std::size_t position) {
  // No character has more than four bytes.
  const Character character = firstCharacter(line.substr(position, 4));
  const bool tab = line[position] == '\t';
  return {line.substr(position, character.length), tab ? 8 : character.width};
}

void appendShown(std::string& out, std::string_view bytes) {
  if (bytes == "\t") {
    out += bytes;
  } else {
    appendPrintable(out, bytes);
  }
}

}  // namespace

std::string readStream(std::istream& in, std::size_t limit) {
  std::string text;
  char piece[65536];
  while (text.size() <= limit && (in.read(piece, sizeof piece) || in.gcount() > 0)) {
    text.append(piece, static_cast<std::size_t>(in.gcount()));
  }
  return text;
}

std::optional<std::string> readFile(const std::string& path, std::size_t limit) {
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) return std::nullopt;
  std::string text = readStream(file, limit);
  if (file.bad() || !file.eof() || text.size() > limit) return std::nullopt;
  return text;
}

SourceText::SourceText(std::string text) : text_(std::move(text)) {
  std::size_t length = 0;
  long number = 0;
  for (std::size_t start = 0; start < text_.size();
       start = nqdetail::nextLine(text_, start, length)) {
    if (number++ % kStride == 0) starts_.push_back(start);
  }
}

std::string_view SourceText::line(long number) const {
  const std::size_t stride = static_cast<std::size_t>((number - 1) / kStride);
  if (number < 1 || stride >= starts_.size()) return {};
  if (number == lastNumber_) return lastLine_;
  const std::string_view text = text_;
  std::size_t start = starts_[stride];
  std::size_t length = 0;
  for (long i = (number - 1) % kStride; i > 0; --i)
    start = nqdetail::nextLine(text, start, length);
  nqdetail::nextLine(text, start, length);
  lastNumber_ = number;
  return lastLine_ = text.substr(start, length);
}

void SourceCache::hold(const std::string& name, std::string text) {
  given_[name] = std::make_unique<SourceText>(std::move(text));
}

const SourceText* SourceCache::find(const std::string& name) {
  const auto given = given_.find(name);
  if (given != given_.end()) return given->second.get();
  const auto known = read_.find(name);
  if (known != read_.end()) return known->second.get();

  auto text = readFile(name, kLargestShown);
  if (readBytes_ > kCached) {
    read_.clear();
    readBytes_ = 0;
  }
  auto& entry = read_[name];
  if (text) {
    readBytes_ += text->size();
    entry = std::make_unique<SourceText>(*std::move(text));
  }
  return entry.get();
}

Excerpt excerpt(std::string_view line, long column) {
  std::size_t at =
      std::min(static_cast<std::size_t>(std::max(column, 1L) - 1), line.size());
  // A column inside a character marks the character.
  for (std::size_t back = 1; back < 4 && back <= at && at < line.size(); ++back) {
    const Character character = firstCharacter(line.substr(at - back, 4));
    if (character.valid && character.length > back) {
      at -= back;
      break;
    }
  }

  // A few characters on both sides, from a start that splits none of them.
  std::size_t begin = at > kWindow ? at - kWindow : 0;
  while (begin > 0 && begin < at && (line[begin] & '\xc0') == '\x80') ++begin;
  std::deque<Shown> before;
  std::deque<Shown> after;
  int widthBefore = 0;
  int widthAfter = 0;
  for (std::size_t i = begin; i < at;) {
    before.push_back(shownAt(line.substr(0, at), i));
    widthBefore += before.back().width;
    i += before.back().bytes.size();
  }
  std::size_t end = at;
  while (end < line.size() && widthAfter < kShown && end - at < kWindow) {
    after.push_back(shownAt(line, end));
    widthAfter += after.back().width;
    end += after.back().bytes.size();
  }
  // What is too much goes in front down to kBefore columns, then behind.
  while (widthBefore > kBefore && widthBefore + widthAfter > kShown) {
    begin += before.front().bytes.size();
    widthBefore -= before.front().width;
    before.pop_front();
  }
  while (after.size() > 1 && widthBefore + widthAfter > kShown) {
    end -= after.back().bytes.size();
    widthAfter -= after.back().width;
    after.pop_back();
  }

  Excerpt result;
  if (begin > 0) {
    result.text = "...";
    result.mark = "   ";
  }
  for (const Shown& shown : before) {
    appendShown(result.text, shown.bytes);
    if (shown.bytes == "\t") {
      result.mark += '\t';
    } else {
      result.mark.append(static_cast<std::size_t>(shown.width), ' ');
    }
  }
  for (const Shown& shown : after) appendShown(result.text, shown.bytes);
  if (end < line.size()) result.text += "...";

  result.mark += '^';
  const std::size_t name = nameAt(line.substr(0, end), at).size();
  if (name > 1) result.mark.append(name - 1, '~');
  return result;
}

}  // namespace nqoml
