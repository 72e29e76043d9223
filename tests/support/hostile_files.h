// hostile_files.h -- files made to cost a reader more than they should.

#ifndef NQ_TESTS_SUPPORT_HOSTILE_FILES_H
#define NQ_TESTS_SUPPORT_HOSTILE_FILES_H

#include <cstddef>
#include <string>
#include <vector>

struct HostileFile {
  const char* name;
  std::string contents;
  bool binary = false;
};

// All kinds, each of about `size` bytes, for the grammar of oml_reading.h.
inline std::vector<HostileFile> hostileFiles(std::size_t size) {
  // `before`, as many pieces as fit, `after`; "#" in a piece stands for its number.
  const auto repeat = [size](const std::string& before, const std::string& piece,
                             const std::string& after, std::size_t limit = 0) {
    std::string text = before;
    for (std::size_t n = 1; text.size() + after.size() < (limit > 0 ? limit : size);
         ++n) {
      for (const char c : piece) {
        if (c == '#') {
          text += std::to_string(n);
        } else {
          text += c;
        }
      }
    }
    return text + after;
  };
  const std::size_t half = size / 2;
  std::vector<HostileFile> files = {
      {"opening brackets", repeat("", "(", "")},
      {"opening brackets in a skipped block", repeat("skip {", "[", "")},
      {"closing brackets", repeat("", "}", "")},
      {"pairs of different brackets", repeat("", "{)", "")},
      {"a string without end", repeat("graph 1 { title \"", "x", "")},
      {"a string of line ends", repeat("graph 1 { title \"", "\n", "\" }")},
      {"a string of backslashes", repeat("graph 1 { title \"", "\\\\", "\" }")},
      {"a comment without end", repeat("/*", "*", "")},
      {"blanks", repeat("", " \n", "")},
      {"a long name", repeat("graph ", "n", "")},
      {"a long integer", repeat("version ", "9", "")},
      {"a long real", repeat("graph 1 { ratio 0.", "1", " }")},
      {"a long binary value", repeat("graph 1 { blob 0x", "ab", " }")},
      {"binary values in pieces", repeat("graph 1 { blob", " 0x0a", " }")},
      {"a scope of many components", repeat("graph 1 { any a", ",b", " }")},
      {"many scopes of many components",
       repeat("graph 1 { ", "any a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,# ", "}")},
      {"words", repeat("", "graph ", "")},
      {"sections", repeat("graph 1 { ", "layout ", "")},
      {"wildcards", repeat("graph 1 { ", "_ ", "")},
      {"unknown tokens", repeat("", "%", "")},
      {"declared sections", repeat("", "section \"s#\" ", "")},
      {"declared fields", repeat("", "field \"f#\" ", "")},
      {"unchecked names", repeat("graph 1 { comment \"unchecked\" ", "f# 1 ", "}")},
      {"objects", repeat("graph 1 { ", "node # ", "}")},
      {"objects of one id", repeat("graph 1 { ", "node a ", "}")},
      {"objects of two types and one id", repeat("graph 1 { node a ", "group a ", "}")},
      {"objects without ids", repeat("graph 1 { ", "node{}", "}")},
      {"numbers to pass over",
       repeat(repeat("graph 1 { ", "node -# ", "", half), "node{}", "}")},
      {"defaults for many objects",
       repeat(repeat("graph 1 { node defaults { ", "x 1 ", "", half), "node{}", "} }")},
      {"blocks of defaults for one object",
       repeat("graph 1 { ", "node defaults{x 1 node a{}}", "}")},
      {"one list of defaults many times",
       repeat("graph 1 { node defaults{ x 1 ", "node a{}", "} }")},
      {"objects in many blocks", repeat("", "graph 1{node a{node b}}", "")},
      {"references", repeat("graph 1 { ", "any $1 ", "}")},
      {"references to nothing", repeat("graph 1 { ", "any n# ", "}")},
      {"fields for every section", repeat("graph 1 { ", "_ _ depth 1 ", "}")},
      {"values without names", repeat("graph 1 { ", "1 ", "}")},
      {"strings", repeat("graph 1 { ", "title \"#\" ", "}")},
      {"ids of one object", repeat("graph { ", "id # ", "}")},
      {"ignored lines", repeat("field \"f\" ", "f 1 # { \n", "")},
      {"zero bytes", std::string(size, '\0')},
      {"bytes above 127", repeat("", "\xff\xfe", "")},
      {"includes", repeat("", "include \"none\" ", "")},
      {"brackets", repeat("", "{", ""), true},
      {"a skipped binary block", repeat(std::string("s\0{", 3), "{", ""), true},
      {"zero bytes, binary", std::string(size, '\0'), true},
      {"a text without end", repeat("\"", "x", ""), true},
      {"ids", repeat(std::string("o\1N1\"{", 6), std::string("o\3N#\"", 5), "}"), true},
      {"a scope", repeat("N", "1,", "\""), true},
      {"lengths", repeat("", "XI\x7f\xff\xff\xff", ""), true},
      {"binary values", repeat("", std::string("Xi\0", 3), ""), true},
      {"indices", repeat("", "F\x7f\xff\xff\xffS\xff\xff\xff\xff", ""), true},
  };
  return files;
}

#endif  // NQ_TESTS_SUPPORT_HOSTILE_FILES_H
