#include "tools/nqoml/keys.h"
#include "tools/nqoml/output.h"

#include "tests/tools/tool_test.h"

#include <cstdio>

#if !defined(_WIN32)
#include <sys/resource.h>
#include <csignal>
#endif

namespace nqoml {
namespace {

using KeysTest = ToolTest;

// A limit to the size of files stands for a full disk. Wherever writing breaks off,
// the older header stays.
TEST_F(KeysTest, DeliversOnlyWholeHeaders) {
  const KeysOptions options{NQ_SAMPLES "graph.grammar", pathOf("keys.h")};
  std::ostringstream out;
  std::ostringstream err;
  ASSERT_EQ(runKeys(options, out, err), kClean) << err.str();
  const std::string whole = content("keys.h");
#if !defined(_WIN32)
  const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  for (const std::size_t lost : {std::size_t{1}, std::size_t{2}, whole.size() / 2}) {
    write("keys.h", "older");
    const rlimit limit{static_cast<rlim_t>(whole.size() - lost), before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const int exitCode = runKeys(options, out, err);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(exitCode, kTrouble) << lost;
    EXPECT_EQ(content("keys.h"), "older") << lost;
    EXPECT_EQ(files(), 1) << lost;
  }
  (void)std::signal(SIGXFSZ, ignored);
#endif
}

// What was written is gone before it is handed on.
TEST_F(KeysTest, TellsThatStandardOutputGotNothing) {
  std::ostringstream out;
  Output output("-", out);
  ASSERT_TRUE(output.write("text"));
  ASSERT_EQ(std::remove(output.path().c_str()), 0);
  EXPECT_FALSE(output.commit());
  EXPECT_EQ(output.trouble(), "cannot be written");
  EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace nqoml
