// diff.h -- what a new layout changes, as a unified diff.

#ifndef NQ_TOOLS_NQOML_DIFF_H
#define NQ_TOOLS_NQOML_DIFF_H

#include <iosfwd>
#include <string>
#include <string_view>

namespace nqoml {

// Shows on `out` how `before` becomes `after`, in hunks with three lines around
// each change; nothing when they are equal. Made for texts whose lines differ by
// blanks and lost empty lines: it takes time in proportion to their size, and shows
// other differences as one large change.
void unifiedDiff(std::ostream& out, const std::string& name, std::string_view before,
                 std::string_view after);

}  // namespace nqoml

#endif  // NQ_TOOLS_NQOML_DIFF_H
