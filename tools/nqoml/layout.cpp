#include "tools/nqoml/layout.h"

#include "nq/oml/encoding/records.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <set>
#include <vector>

namespace nqoml {

using namespace nqdetail;

namespace {

// Levels that are indented, so that blanks are not many times what stands on lines.
constexpr std::size_t kDeepest = 64;

enum class Kind {
  kOpen,
  kClose,
  kColon,
  kEquals,
  kSemicolon,
  kString,
  kNumber,  // what can only be a value
  kWord,    // a name, or anything else that is written without a blank
  kLineComment,
  kBlockComment,
  kUnread,
};

// Cuts a text into tokens, as coarsely as layout allows: a word reaches to the
// next character that ends every token.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool atEnd(std::size_t at) const { return at >= text_.size(); }
  char at(std::size_t position) const {
    return position < text_.size() ? text_[position] : '\0';
  }

  // Behind the line end that begins at `at`.
  std::size_t lineEnd(std::size_t at) const {
    const char other = text_[at] == '\n' ? '\r' : '\n';
    return at + (this->at(at + 1) == other ? 2 : 1);
  }
  // Where the line ends in which `at` stands.
  std::size_t restOfLine(std::size_t at) const {
    return std::min(text_.find_first_of("\n\r", at), text_.size());
  }

  // The kind of the token at `at`, which is no blank, and where it ends; npos when
  // it does not.
  Kind scan(std::size_t at, std::size_t& end) const {
    const char c = text_[at];
    end = at + 1;
    if (isOf(c, kOpening)) return Kind::kOpen;
    if (isOf(c, kClosing)) return Kind::kClose;
    if (c == ':') return Kind::kColon;
    if (c == '=') return Kind::kEquals;
    if (c == ';') return Kind::kSemicolon;
    if (c == kQuote) {
      end = endOfString(at);
      return Kind::kString;
    }
    if (beginsComment(at)) {
      const bool block = this->at(at + 1) == '*' && c == '/';
      end = block ? text_.find("*/", at + 2) : restOfLine(at);
      if (block && end != std::string_view::npos) end += 2;
      return block ? Kind::kBlockComment : Kind::kLineComment;
    }
    end = endOfWord(at);
    return isOf(c, kNumberPart) || c == '+' || c == '-' ? Kind::kNumber : Kind::kWord;
  }

  // Behind the bracket that closes the one at `at`: when every bracket counts, and
  // when those in strings and comments do not. npos when there is none.
  std::size_t endOfUnread(std::size_t at) const {
    long depth = 0;
    for (; at < text_.size(); ++at) {
      if (isOf(text_[at], kOpening)) ++depth;
      if (isOf(text_[at], kClosing) && --depth == 0) return at + 1;
    }
    return std::string_view::npos;
  }
  std::size_t endOfRead(std::size_t at) const {
    long depth = 0;
    while (at < text_.size()) {
      if (isOf(text_[at], kBlank | kLineEnd)) {
        ++at;
        continue;
      }
      std::size_t end = at;
      const Kind kind = scan(at, end);
      if (kind == Kind::kOpen) ++depth;
      if (kind == Kind::kClose && --depth == 0) return end;
      if (end == std::string_view::npos) return end;
      at = end;
    }
    return std::string_view::npos;
  }

  // Whether the rest of the line at `at` means as much read as unread: nothing in
  // it reaches beyond it.
  bool isNeutral(std::size_t at) const {
    const std::size_t stop = restOfLine(at);
    long depth = 0;
    while (at < stop) {
      if (isOf(text_[at], kBlank)) {
        ++at;
        continue;
      }
      std::size_t end = at;
      const Kind kind = scan(at, end);
      if (end > stop) return false;  // npos too
      if (kind == Kind::kOpen) ++depth;
      if (kind == Kind::kClose && --depth < 0) return false;
      at = end;
    }
    return depth == 0;
  }

 private:
  bool beginsComment(std::size_t at) const {
    return text_[at] == '#' ||
           (text_[at] == '/' && (this->at(at + 1) == '/' || this->at(at + 1) == '*'));
  }

  std::size_t endOfString(std::size_t at) const {
    for (++at; at < text_.size(); ++at) {
      if (text_[at] == kQuote) return at + 1;
      if (text_[at] == kEscape) ++at;
    }
    return std::string_view::npos;
  }

  std::size_t endOfWord(std::size_t at) const {
    std::size_t end = at;
    while (end < text_.size() && text_[end] == '0') ++end;
    if (end > at && this->at(end) == 'x') {
      // Digits go in pairs, and the second of a pair may be any character.
      for (at = end + 1; at < text_.size() && hexValue(text_[at]) >= 0;) {
        ++at;
        if (at < text_.size()) at = isOf(text_[at], kLineEnd) ? lineEnd(at) : at + 1;
      }
    }
    constexpr int kEnds = kBlank | kLineEnd | kOpening | kClosing;
    while (at < text_.size() && !isOf(text_[at], kEnds) && text_[at] != kQuote &&
           text_[at] != ':' && text_[at] != '=' && text_[at] != ';' &&
           !beginsComment(at)) {
      ++at;
    }
    return at;
  }

  std::string_view text_;
};

class Layouter {
 public:
  Layouter(std::string_view text, int indent)
      : text_(text),
        scanner_(text),
        indent_(indent == 0 ? "\t" : std::string(static_cast<std::size_t>(indent), ' ')) {
    const std::size_t end = scanner_.restOfLine(0);
    if (end < text.size()) lineEnd_ = text.substr(end, scanner_.lineEnd(end) - end);
  }

  Layout layOut() {
    while (result_.trouble.empty() && !scanner_.atEnd(at_)) {
      const char c = text_[at_];
      if (isOf(c, kBlank)) {
        ++blanks_;
        ++at_;
      } else if (isOf(c, kLineEnd)) {
        if (lineIsEmpty_) emptyLine_ = true;
        lineIsEmpty_ = true;
        blanks_ = 0;
        at_ = scanner_.lineEnd(at_);
      } else {
        token();
      }
    }
    if (result_.trouble.empty() && !brackets_.empty()) {
      refuse(brackets_.back().place, "this bracket is not closed");
    }
    if (!result_.trouble.empty()) {
      result_.text.clear();
    } else if (!result_.text.empty()) {
      result_.text += lineEnd_;
    }
    return std::move(result_);
  }

 private:
  // What stands in a bracket declares names, when a field that does stands before
  // the bracket.
  struct Bracket {
    std::size_t place;
    char character;
    bool declaresFields;
    bool declaresSections;
  };

  void token() {
    const std::size_t start = at_;
    std::size_t end = start;
    const Kind kind = scanner_.scan(start, end);
    if (end == std::string_view::npos) {
      refuse(start, kind == Kind::kString ? "this string has no end"
                                          : "this comment has no end");
      return;
    }
    if (kind == Kind::kOpen && ignored_) {
      refuse(start, "how far a block of an ignored field is read cannot be told");
    } else if (kind == Kind::kOpen && run_.skips) {
      unreadBlock(start, end);
    } else if (kind == Kind::kOpen) {
      emit(kind, end);
      open(start);
    } else if (kind == Kind::kClose) {
      close(start, end);
    } else {
      emit(kind, end);
      note(kind, text_.substr(start, end - start));
    }
  }

  void open(std::size_t start) {
    const Bracket* const outer = brackets_.empty() ? nullptr : &brackets_.back();
    brackets_.push_back(
        {start, text_[start],
         run_.declaresFields || (outer != nullptr && outer->declaresFields),
         run_.declaresSections || (outer != nullptr && outer->declaresSections)});
    run_ = Run();
  }

  void close(std::size_t start, std::size_t end) {
    if (brackets_.empty()) {
      refuse(start, "this bracket closes nothing");
      return;
    }
    if (closingOf(brackets_.back().character) != text_[start]) {
      refuse(start, "this bracket closes one of another kind");
      return;
    }
    emit(Kind::kClose, end);
    brackets_.pop_back();
    run_ = Run();
    ignored_ = false;
  }

  void unreadBlock(std::size_t start, std::size_t end) {
    const std::size_t unread = scanner_.endOfUnread(start);
    const std::size_t read = scanner_.endOfRead(start);
    const bool certain = run_.lastSkips && !sawUnchecked_;
    if (unread != read && !certain) {
      refuse(start, "whether this block is read cannot be told without a grammar");
    } else if (unread == std::string_view::npos) {
      refuse(start, "this bracket is not closed");
    } else {
      end = unread;
      emit(Kind::kUnread, end);
      run_ = Run();
    }
  }

  // What a token says about those after it.
  void note(Kind kind, std::string_view token) {
    switch (kind) {
      case Kind::kWord:
        if (ignored_) {
          restOfLine(false);
        } else {
          noteWord(upperCase(token));
        }
        break;
      case Kind::kNumber:
      case Kind::kString:
        if (kind == Kind::kString) declare(token.substr(1, token.size() - 2));
        if (ignored_) restOfLine(true);
        run_ = Run();
        break;
      case Kind::kSemicolon:
        if (ignored_) restOfLine(true);
        run_ = Run();
        break;
      default:
        break;
    }
  }

  void noteWord(const std::string& word) {
    if (word == "FIELD") run_.declaresFields = true;
    if (word == "SECTION") run_.declaresSections = true;
    run_.lastSkips = word == "SKIP" || sections_.count(word) > 0;
    run_.skips = run_.skips || run_.lastSkips;
    ignored_ = fields_.count(word) > 0;
  }

  void declare(std::string_view name) {
    const Bracket* const in = brackets_.empty() ? nullptr : &brackets_.back();
    if (run_.declaresFields || (in != nullptr && in->declaresFields)) {
      fields_.insert(upperCase(name));
    }
    if (run_.declaresSections || (in != nullptr && in->declaresSections)) {
      sections_.insert(upperCase(name));
    }
    sawUnchecked_ = sawUnchecked_ || name == "unchecked";
  }

  // Copies what stands behind the value of an ignored field. A word may also be a
  // section before the value.
  void restOfLine(bool isValue) {
    ignored_ = false;
    if (!isValue && !scanner_.isNeutral(at_)) {
      refuse(at_, "how far this line is read cannot be told without a grammar");
      return;
    }
    run_ = Run();
    while (at_ < text_.size() && isOf(text_[at_], kBlank)) {
      ++at_;
      ++blanks_;
    }
    std::size_t end = scanner_.restOfLine(at_);
    const std::size_t next = end;
    while (end > at_ && isOf(text_[end - 1], kBlank)) --end;
    if (end > at_) emit(Kind::kUnread, end);
    at_ = next;
  }

  // Writes the token from here to `end`.
  void emit(Kind kind, std::size_t end) {
    std::string_view token = text_.substr(at_, end - at_);
    if (kind == Kind::kLineComment) {
      token = token.substr(0, token.find_last_not_of(" \t") + 1);
    }
    if (lineIsEmpty_) {
      beginLine();
    } else {
      result_.text += separator(kind);
    }
    std::string copy;
    for (std::size_t i = 0; i < token.size();) {
      const std::size_t stop = std::min(token.find_first_of("\n\r", i), token.size());
      copy += token.substr(i, stop - i);
      if (stop == token.size()) break;
      copy += lineEnd_;
      i = scanner_.lineEnd(at_ + stop) - at_;
    }
    for (const char c : copy) digest(c);
    digest('\0');
    result_.text += copy;
    last_ = kind;
    lineIsEmpty_ = false;
    blanks_ = 0;
    at_ = end;
  }

  void beginLine() {
    if (!result_.text.empty()) {
      result_.text += lineEnd_;
      if (emptyLine_) result_.text += lineEnd_;
    }
    emptyLine_ = false;
    // Brackets that the line closes first of all end the indentation too.
    std::size_t depth = brackets_.size();
    for (std::size_t i = at_; depth > 0 && i < text_.size(); ++i) {
      if (isOf(text_[i], kClosing)) {
        --depth;
      } else if (!isOf(text_[i], kBlank) && text_[i] != ';') {
        break;
      }
    }
    for (depth = std::min(depth, kDeepest); depth > 0; --depth) result_.text += indent_;
  }

  std::string separator(Kind kind) const {
    const bool emptyPair = last_ == Kind::kOpen && kind == Kind::kClose;
    if (kind == Kind::kColon || kind == Kind::kSemicolon || emptyPair) return "";
    if (kind == Kind::kLineComment) {
      return std::string(std::max(blanks_, std::size_t{2}), ' ');
    }
    if (kind == Kind::kEquals || last_ == Kind::kColon || last_ == Kind::kEquals)
      return " ";
    return blanks_ > 1 ? "  " : " ";
  }

  void digest(char c) {
    // G. Fowler, L. C. Noll, K.-P. Vo: the hash FNV-1a.
    constexpr std::uint64_t kPrime = 1099511628211U;
    result_.tokens = (result_.tokens ^ static_cast<unsigned char>(c)) * kPrime;
  }

  void refuse(std::size_t place, const char* trouble) {
    if (!result_.trouble.empty()) return;
    result_.trouble = trouble;
    result_.line = 1;
    std::size_t start = 0;
    for (std::size_t i = scanner_.restOfLine(0); i < place;
         i = scanner_.restOfLine(start)) {
      start = scanner_.lineEnd(i);
      if (start > place) break;
      ++result_.line;
    }
    result_.column = static_cast<long>(place - start) + 1;
  }

  // The names since the last value or bracket.
  struct Run {
    bool declaresFields = false;
    bool declaresSections = false;
    bool skips = false;      // one of them names what is not read
    bool lastSkips = false;  // the last one does
  };

  std::string_view text_;
  Scanner scanner_;
  std::string indent_;
  std::string_view lineEnd_ = "\n";
  Layout result_;
  std::size_t at_ = 0;
  std::size_t blanks_ = 0;  // before what stands at at_
  bool lineIsEmpty_ = true;
  bool emptyLine_ = false;  // at least one stood before this line
  Kind last_ = Kind::kWord;
  std::vector<Bracket> brackets_;
  Run run_;
  bool ignored_ = false;  // the value of an ignored field is due
  bool sawUnchecked_ = false;
  std::set<std::string> fields_;    // declared as ignored, in upper case
  std::set<std::string> sections_;  // declared, in upper case
};

}  // namespace

Layout layOut(std::string_view text, int indent) {
  return Layouter(text, indent).layOut();
}

}  // namespace nqoml
