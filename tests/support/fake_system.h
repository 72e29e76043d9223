// fake_system.h -- an operating system in memory that can be told to fail.
//
// While a FakeSystem lives, every call that the library makes to the system
// reaches it: files are strings by name, and the counters and limits below make
// transfers fail or stop short. One at a time.

#ifndef NQ_TESTS_SUPPORT_FAKE_SYSTEM_H
#define NQ_TESTS_SUPPORT_FAKE_SYSTEM_H

#include <cstddef>
#include <deque>
#include <map>
#include <set>
#include <string>

#include "nq/platform/system_internal.h"

class FakeSystem {
 public:
  static constexpr std::size_t kUnlimited = static_cast<std::size_t>(-1);

  FakeSystem();
  ~FakeSystem();
  FakeSystem(const FakeSystem&) = delete;
  FakeSystem& operator=(const FakeSystem&) = delete;

  std::map<std::string, std::string> files;
  std::set<std::string> devices;  // those files that are none
  std::map<std::string, std::string> links;
  // Files written, and folders of files replaced, since they were last put on disk.
  std::set<std::string> unsynced;

  std::size_t largestTransfer = kUnlimited;  // longer ones stop short
  std::size_t diskSpace = kUnlimited;        // bytes that can still be written
  int readsUntilFailure = -1;                // -1: never; stays at 0, failing
  // Of all calls from now on, the one that fails, from 0 on; -1 for none. With
  // `failingOn` so do all that follow, as when the machine stops.
  int failingCall = -1;
  bool failingOn = false;
  bool failingSeek = false;
  bool failingClose = false;

  int calls = 0;
  int reads = 0;
  int writes = 0;
  int openFiles() const;

  // A handle on a file that somebody else opened; reading starts at its front,
  // writing adds at its end.
  nqdetail::Handle handleOn(const std::string& name);

 private:
  friend struct FakeCalls;
  struct OpenFile {
    std::string name;
    std::size_t position;
    bool readable;
    bool writable;
    bool open;
    bool shared = false;
  };

  nqdetail::System table_;
  std::deque<OpenFile> opened_;  // a handle is the address of an entry
};

#endif  // NQ_TESTS_SUPPORT_FAKE_SYSTEM_H
