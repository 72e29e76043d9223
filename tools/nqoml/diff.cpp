#include "tools/nqoml/diff.h"

#include <algorithm>
#include <ostream>
#include <vector>

namespace nqoml {

namespace {

constexpr std::size_t kContext = 3;

bool isWhite(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The lines of a text with their ends, as tools for patches count them.
std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

bool sameButForBlanks(std::string_view a, std::string_view b) {
  auto i = a.begin();
  auto j = b.begin();
  for (;;) {
    while (i != a.end() && isWhite(*i)) ++i;
    while (j != b.end() && isWhite(*j)) ++j;
    if (i == a.end() || j == b.end()) return i == a.end() && j == b.end();
    if (*i++ != *j++) return false;
  }
}

// A line of both texts (' '), or of one ('-', '+').
struct Line {
  char sign;
  std::string_view text;
};

std::vector<Line> aligned(std::string_view before, std::string_view after) {
  const auto a = linesOf(before);
  const auto b = linesOf(after);
  std::vector<Line> lines;
  std::vector<std::string_view> added;  // in the place of lines just removed
  const auto flush = [&] {
    for (const std::string_view text : added) lines.push_back({'+', text});
    added.clear();
  };
  std::size_t j = 0;
  for (const std::string_view line : a) {
    if (j < b.size() && line == b[j]) {
      flush();
      lines.push_back({' ', line});
      ++j;
      continue;
    }
    lines.push_back({'-', line});
    const bool empty = std::all_of(line.begin(), line.end(), isWhite);
    if (j < b.size() && !empty && sameButForBlanks(line, b[j])) added.push_back(b[j++]);
    if (j < b.size() && empty && sameButForBlanks(line, b[j])) added.push_back(b[j++]);
  }
  for (; j < b.size(); ++j) added.push_back(b[j]);
  flush();
  return lines;
}

}  // namespace

void unifiedDiff(std::ostream& out, const std::string& name, std::string_view before,
                 std::string_view after) {
  if (before == after) return;
  out << "--- " << name << "\n+++ " << name << '\n';
  const std::vector<Line> lines = aligned(before, after);
  std::size_t lineA = 0;  // lines of each text before lines[done]
  std::size_t lineB = 0;
  std::size_t done = 0;
  const auto pass = [&](std::size_t to) {
    for (; done < to; ++done) {
      lineA += lines[done].sign != '+' ? 1 : 0;
      lineB += lines[done].sign != '-' ? 1 : 0;
    }
  };
  const auto nextChange = [&lines](std::size_t from) {
    while (from < lines.size() && lines[from].sign == ' ') ++from;
    return from;
  };
  for (std::size_t change = nextChange(0); change < lines.size();) {
    const std::size_t begin = change > done + kContext ? change - kContext : done;
    // Changes with little between them share a hunk.
    std::size_t end = change;
    for (;;) {
      while (end < lines.size() && lines[end].sign != ' ') ++end;
      change = nextChange(end);
      if (change == lines.size() || change - end > 2 * kContext) break;
      end = change;
    }
    end = std::min(end + kContext, lines.size());
    pass(begin);
    const std::size_t firstA = lineA;
    const std::size_t firstB = lineB;
    pass(end);
    const std::size_t countA = lineA - firstA;
    const std::size_t countB = lineB - firstB;
    out << "@@ -" << firstA + (countA > 0 ? 1 : 0) << ',' << countA << " +"
        << firstB + (countB > 0 ? 1 : 0) << ',' << countB << " @@\n";
    for (std::size_t i = begin; i < end; ++i) {
      out << lines[i].sign << lines[i].text;
      if (lines[i].text.back() != '\n') out << "\n\\ No newline at end of file\n";
    }
  }
}

}  // namespace nqoml
