#include "nq/platform/system_internal.h"

#include <gtest/gtest.h>

#include <bit>
#include <csignal>
#include <cstring>
#include <string>

#include "tests/support/fake_system.h"
#include "tests/support/temporary_directory.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#endif

namespace {

using nqdetail::Access;
using nqdetail::Creation;
using nqdetail::Handle;
using nqdetail::noHandle;
using nqdetail::system;

constexpr Access kAccesses[] = {Access::kRead, Access::kSharedRead, Access::kWrite,
                                Access::kReadWrite};
constexpr Creation kCreations[] = {Creation::kExisting, Creation::kTruncate,
                                   Creation::kIfMissing};

TEST(System, OpensExclusivelyAndARefusedOpenChangesNothing) {
  const TemporaryDirectory directory;
  directory.put("a", "text");
  directory.put("b", "text");
  const std::string name = directory.file("a");
  const std::string link = directory.file("link");
  std::filesystem::create_hard_link(name, link);
  const Handle other = system().open(directory.file("b").c_str(), Access::kSharedRead,
                                     Creation::kExisting);
  for (const Access held : kAccesses) {
    const Handle handle = system().open(name.c_str(), held, Creation::kExisting);
    ASSERT_NE(handle, noHandle());
    for (const Access access : kAccesses) {
      for (const Creation creation : kCreations) {
        const bool shared = held == Access::kSharedRead && access == held;
        if (shared && creation != Creation::kExisting) continue;
        const Handle second = system().open(link.c_str(), access, creation);
        EXPECT_EQ(second != noHandle(), shared);
        if (!shared) continue;
        EXPECT_TRUE(system().isSameFile(handle, second));
        EXPECT_FALSE(system().isSameFile(handle, other));
        EXPECT_TRUE(system().close(second));
      }
    }
    EXPECT_TRUE(system().close(handle));
    EXPECT_EQ(directory.contents("a"), "text");
  }
  EXPECT_TRUE(system().close(other));
}

TEST(System, CreatesEmptiesAndKeeps) {
  const TemporaryDirectory directory;
  const struct {
    Creation creation;
    bool opensMissing;
    const char* left;  // of "text" after writing "x" at its front
  } kRows[] = {{Creation::kExisting, false, "xext"},
               {Creation::kTruncate, true, "x"},
               {Creation::kIfMissing, true, "xext"}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.left);
    Handle handle =
        system().open(directory.file("new").c_str(), Access::kWrite, row.creation);
    EXPECT_EQ(handle != noHandle(), row.opensMissing);
    EXPECT_EQ(std::filesystem::exists(directory.file("new")), row.opensMissing);
    if (row.opensMissing) {
      EXPECT_TRUE(system().close(handle));
      std::filesystem::remove(directory.file("new"));
    }
    directory.put("old", "text");
    handle = system().open(directory.file("old").c_str(), Access::kWrite, row.creation);
    std::size_t written = 0;
    EXPECT_TRUE(nqdetail::writeAll(handle, "x", 1, &written));
    EXPECT_TRUE(system().close(handle));
    EXPECT_EQ(directory.contents("old"), row.left);
  }
}

TEST(System, RefusesDirectoriesAndFifosAtOnce) {
  const TemporaryDirectory directory;
  std::string names[] = {directory.path(), directory.file("fifo"), ""};
#if !defined(_WIN32)
  ASSERT_EQ(mkfifo(names[1].c_str(), 0666), 0);
#else
  names[1] = directory.path() + "\\";
#endif
  for (const std::string& name : names) {
    for (const Access access : kAccesses) {
      for (const Creation creation : kCreations) {
        EXPECT_EQ(system().open(name.c_str(), access, creation), noHandle()) << name;
      }
    }
  }
}

TEST(System, DevicesAreReadAndWrittenButNotExclusive) {
#if defined(_WIN32)
  const char* const name = "NUL";
#else
  const char* const name = "/dev/null";
#endif
  const Handle first = system().open(name, Access::kReadWrite, Creation::kTruncate);
  const Handle second = system().open(name, Access::kReadWrite, Creation::kExisting);
  ASSERT_NE(first, noHandle());
  ASSERT_NE(second, noHandle());
  std::size_t moved = 0;
  EXPECT_TRUE(nqdetail::writeAll(first, "text", 4, &moved));
  EXPECT_EQ(moved, 4u);
  char byte;
  EXPECT_TRUE(system().read(second, &byte, 1, &moved));
  EXPECT_EQ(moved, 0u);
#if defined(_WIN32)
  EXPECT_FALSE(system().seekBy(second, 0));  // which nothing could come of
#endif
  EXPECT_TRUE(system().close(first));
  EXPECT_TRUE(system().close(second));
}

TEST(System, ReportsFailingTransfersOfTheHost) {
  const TemporaryDirectory directory;
  directory.put("a", "text");
  const Handle reader =
      system().open(directory.file("a").c_str(), Access::kRead, Creation::kExisting);
  std::size_t moved = 9;
  EXPECT_FALSE(nqdetail::writeAll(reader, "x", 1, &moved));
  EXPECT_EQ(moved, 0u);
  EXPECT_TRUE(system().close(reader));
  EXPECT_FALSE(system().close(noHandle()));
  moved = 9;
  char byte;
  EXPECT_FALSE(system().read(noHandle(), &byte, 1, &moved));
  EXPECT_EQ(moved, 0u);
  EXPECT_FALSE(system().seekToEnd(noHandle()));
#if !defined(_WIN32)
  const Handle full = system().open("/dev/full", Access::kWrite, Creation::kExisting);
  if (full == noHandle()) GTEST_SKIP() << "there is no device that is always full";
  EXPECT_FALSE(nqdetail::writeAll(full, "text", 4, &moved));
  EXPECT_TRUE(system().close(full));
#endif
}

#if !defined(_WIN32)

TEST(System, RefusesFilesWithoutPermission) {
  const TemporaryDirectory directory;
  directory.put("a", "text");
  ASSERT_EQ(chmod(directory.file("a").c_str(), 0), 0);
  const uid_t user = geteuid();
  if (user == 0) {  // to whom nothing is forbidden
    ASSERT_EQ(seteuid(65534), 0);
  }
  for (const Access access : kAccesses) {
    EXPECT_EQ(system().open(directory.file("a").c_str(), access, Creation::kIfMissing),
              noHandle());
  }
  EXPECT_EQ(seteuid(user), 0);
}

// A user who may write the file but neither give files away nor be in its group.
TEST(System, TheFileBesideAnotherIsAllowedNoMoreThanThat) {
  if (geteuid() != 0) GTEST_SKIP() << "takes the rights to give files away";
  const TemporaryDirectory directory;
  directory.put("a", "text");
  const std::string name = directory.file("a");
  ASSERT_EQ(chmod(directory.path().c_str(), 0777), 0);
  ASSERT_EQ(chown(name.c_str(), 65534, 1234), 0);
  ASSERT_EQ(chmod(name.c_str(), 06775), 0);
  for (const bool mayGive : {true, false}) {
    ASSERT_EQ(seteuid(mayGive ? 0 : 65534), 0);
    std::string beside;
    const Handle handle = system().createBeside(name.c_str(), beside);
    EXPECT_EQ(seteuid(0), 0);
    ASSERT_NE(handle, noHandle());
    EXPECT_TRUE(system().close(handle));
    struct stat status;
    ASSERT_EQ(stat(beside.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_mode & 07777, mayGive ? 06775U : 0705U);
    EXPECT_EQ(status.st_gid == 1234, mayGive);
  }
}

int interruptedPipe[2];

// Interrupts come until the read has something to read.
TEST(System, TakesUpAnInterruptedTransfer) {
  ASSERT_EQ(pipe(interruptedPipe), 0);
  struct sigaction action = {};
  struct sigaction previous = {};
  action.sa_handler = [](int) {
    static volatile sig_atomic_t interrupts = 0;
    interrupts = interrupts + 1;
    if (interrupts == 3) (void)!write(interruptedPipe[1], "x", 1);
  };
  ASSERT_EQ(sigaction(SIGALRM, &action, &previous), 0);
  const itimerval every = {{0, 2000}, {0, 2000}};
  const itimerval never = {};
  ASSERT_EQ(setitimer(ITIMER_REAL, &every, nullptr), 0);
  char byte = '\0';
  std::size_t moved = 0;
  const auto handle = std::bit_cast<Handle>(std::intptr_t{interruptedPipe[0]});
  EXPECT_TRUE(system().read(handle, &byte, 1, &moved));
  EXPECT_EQ(byte, 'x');
  ASSERT_EQ(setitimer(ITIMER_REAL, &never, nullptr), 0);
  ASSERT_EQ(sigaction(SIGALRM, &previous, nullptr), 0);
  close(interruptedPipe[0]);
  close(interruptedPipe[1]);
}

#endif

TEST(System, WritesToTheProgramsOwnStreams) {
  std::size_t written = 0;
  testing::internal::CaptureStdout();
  EXPECT_TRUE(nqdetail::writeAll(system().standardOutput(), "out", 3, &written));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "out");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(nqdetail::writeAll(system().standardError(), "err", 3, &written));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "err");
  EXPECT_NE(system().standardInput(), system().standardOutput());
}

TEST(System, WriteAllGoesOnUntilNothingMoves) {
  FakeSystem fake;
  fake.largestTransfer = 3;
  const Handle handle = system().open("a", Access::kWrite, Creation::kTruncate);
  std::size_t written = 9;
  EXPECT_TRUE(nqdetail::writeAll(handle, "0123456", 7, &written));
  EXPECT_EQ(written, 7u);
  EXPECT_EQ(fake.writes, 3);
  fake.diskSpace = 2;
  EXPECT_FALSE(nqdetail::writeAll(handle, "789", 3, &written));
  EXPECT_EQ(written, 2u);
  EXPECT_EQ(fake.files["a"], "012345678");
  EXPECT_TRUE(nqdetail::writeAll(handle, nullptr, 0, &written));
  fake.diskSpace = FakeSystem::kUnlimited;
  fake.largestTransfer = 0;  // success without progress
  EXPECT_FALSE(nqdetail::writeAll(handle, "x", 1, &written));
}

TEST(System, NamesTheCurrentDirectoryWholeOrNotAtAll) {
  char buffer[1024];
  system().currentDirectory(buffer, sizeof buffer);
  EXPECT_EQ(std::string(buffer), std::filesystem::current_path().string());
  const std::size_t length = std::strlen(buffer);
  system().currentDirectory(buffer, length + 1);
  EXPECT_EQ(std::strlen(buffer), length);
  system().currentDirectory(buffer, length);
  EXPECT_STREQ(buffer, "");
}

TEST(System, LoadsModulesAndNamesTheirFiles) {
#if defined(_WIN32)
  const char* const module = "kernel32.dll";
  const char* const function = "GetCurrentProcessId";
#else
  const char* const module = "libm.so.6";
  const char* const function = "cos";
#endif
  for (const char* const bad : {"", "no_such_module"}) {
    EXPECT_EQ(system().loadModule(bad), nullptr) << bad;
  }
  void* const loaded = system().loadModule(module);
  ASSERT_NE(loaded, nullptr);
  EXPECT_NE(system().symbol(loaded, function), nullptr);
  EXPECT_EQ(system().symbol(loaded, "no_such_function"), nullptr);
  char path[1024];
  for (void* const which : {loaded, static_cast<void*>(nullptr)}) {
    system().modulePath(which, path, sizeof path);
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << path;
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    char cut[10];
    system().modulePath(which, cut, sizeof cut);
    EXPECT_EQ(std::string(cut), std::string(path).substr(0, 9));
  }
  system().unloadModule(loaded);
}

}  // namespace
