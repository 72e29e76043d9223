#include "nq/file/system_calls.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/fake_system.h"

namespace {

TEST(SystemCalls, AppendsWithoutEverCutting) {
  FakeSystem fake;
  fake.files["old"] = "text";
  for (const char* const name : {"old", "new"}) {
    void* const handle = nqInternalOpenAppend(name, nullptr);
    ASSERT_NE(handle, nqdetail::noHandle());
    EXPECT_EQ(nqInternalOpenAppend(name, nullptr), nqdetail::noHandle()) << "is open";
    unsigned int written = 9;
    EXPECT_EQ(nqInternalWrite(handle, nullptr, "more", &written), 1);
    EXPECT_EQ(written, 4u);
    EXPECT_EQ(nqInternalWrite(handle, nullptr, nullptr, &written), 0);
    EXPECT_EQ(written, 0u);
    fake.diskSpace = 1;
    EXPECT_EQ(nqInternalWrite(handle, nullptr, "!?", &written), 0);
    EXPECT_EQ(written, 1u);
    fake.diskSpace = FakeSystem::kUnlimited;
  }
  EXPECT_EQ(fake.files["old"], "textmore!");
  EXPECT_EQ(fake.files["new"], "more!");
  EXPECT_EQ(nqInternalOpenAppend(nullptr, nullptr), nqdetail::noHandle());
  fake.failingSeek = true;
  EXPECT_EQ(nqInternalOpenAppend("other", nullptr), nqdetail::noHandle());
}

TEST(SystemCalls, NamesTheCurrentDirectoryWithinItsBuffer) {
  const std::string name = std::filesystem::current_path().string();
  const int length = static_cast<int>(name.size());
  char buffer[1024];
  const struct {
    int size;
    int separator;
    std::string expected;
  } kRows[] = {{sizeof buffer, 0, name},
               {sizeof buffer, 1, name + "\\"},
               {length + 1, 0, name},
               {length + 2, 1, name + "\\"},
               {length, 0, ""},
               {length + 1, 1, ""},
               {1, 1, ""},
               {0, 1, "as before"},
               {-1, 0, "as before"}};
  for (const auto& row : kRows) {
    std::strcpy(buffer, "as before");
    EXPECT_EQ(nqGetCurrentWorkingDir(buffer, row.size, row.separator), buffer);
    EXPECT_EQ(buffer, row.expected) << row.size << " " << row.separator;
  }
  EXPECT_EQ(nqGetCurrentWorkingDir(nullptr, 10, 0), nullptr);
}

TEST(SystemCalls, LoadsNamesAndReleasesModules) {
#if defined(_WIN32)
  const char* const name = "kernel32.dll";
  const char* const function = "GetCurrentProcessId";
#else
  const char* const name = "libm.so.6";
  const char* const function = "cos";
#endif
  void* const module = getModuleHandle(name);
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(getModuleHandle(nullptr), nullptr);
  EXPECT_NE(getFunctionHandle(module, function), nullptr);
  EXPECT_EQ(getFunctionHandle(module, nullptr), nullptr);
  EXPECT_EQ(getFunctionHandle(nullptr, function), nullptr);
  char path[255];
  const int length = getModuleFileName(module, path);
  EXPECT_EQ(length, static_cast<int>(std::strlen(path)));
  EXPECT_TRUE(std::filesystem::exists(path)) << path;
  EXPECT_EQ(getModuleFileName(module, nullptr), 0);
  EXPECT_EQ(freeModuleHandle(module), nullptr);
  EXPECT_EQ(freeModuleHandle(nullptr), nullptr);
}

TEST(SystemCalls, HandsOnTheMessageTable) {
  EXPECT_STREQ(getStringResource(0), "Error");
  EXPECT_STREQ(getStringResource(52), "");
}

}  // namespace
