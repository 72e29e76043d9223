#include "tests/support/fake_system.h"

#include <algorithm>

namespace {
FakeSystem* inForce = nullptr;
}

// The functions of the table.
struct FakeCalls {
  using Access = nqdetail::Access;
  using Creation = nqdetail::Creation;
  using Handle = nqdetail::Handle;

  static FakeSystem::OpenFile* find(Handle handle) {
    for (FakeSystem::OpenFile& file : inForce->opened_) {
      if (&file == handle && file.open) return &file;
    }
    return nullptr;
  }

  // Whether the call that begins is to fail.
  static bool fails() {
    const int call = inForce->calls++;
    const int first = inForce->failingCall;
    return first >= 0 && (inForce->failingOn ? call >= first : call == first);
  }

  static Handle open(const char* name, Access access, Creation creation) {
    if (fails()) return nqdetail::noHandle();
    const bool shared = access == Access::kSharedRead;
    for (const FakeSystem::OpenFile& file : inForce->opened_) {
      if (file.open && file.name == name && !(shared && file.shared)) {
        return nqdetail::noHandle();
      }
    }
    if (creation == Creation::kExisting && !inForce->files.contains(name)) {
      return nqdetail::noHandle();
    }
    std::string& contents = inForce->files[name];
    if (creation == Creation::kTruncate) contents.clear();
    const bool reads = shared || access == Access::kRead;
    inForce->opened_.push_back({name, 0, access != Access::kWrite, !reads, true, shared});
    return &inForce->opened_.back();
  }

  static bool close(Handle handle) {
    FakeSystem::OpenFile* const file = find(handle);
    if (file == nullptr) return false;
    file->open = false;
    return !fails() && !inForce->failingClose;
  }

  static bool exists(const char* name) {
    return !fails() && inForce->files.contains(name);
  }

  static bool linkTarget(const char* name, std::string& target) {
    const auto found = inForce->links.find(name);
    target = found == inForce->links.end() ? "" : found->second;
    return !fails();
  }

  static Handle createBeside(const char* target, std::string& name) {
    name.clear();
    if (fails()) return nqdetail::noHandle();
    name = std::string(target) + ".new";
    inForce->files[name].clear();
    inForce->opened_.push_back({name, 0, false, true, true});
    return &inForce->opened_.back();
  }

  static bool sync(Handle handle) {
    if (fails()) return false;
    inForce->unsynced.erase(find(handle)->name);
    return true;
  }

  static bool replace(const char* from, const char* to, Handle held) {
    if (held != nqdetail::noHandle()) find(held)->open = false;
    if (fails()) return false;
    inForce->files[to] = inForce->files[from];
    inForce->files.erase(from);
    if (inForce->unsynced.erase(from) != 0) inForce->unsynced.insert(to);
    inForce->unsynced.insert("folder");
    return true;
  }

  static bool syncFolder(const char*) {
    if (fails()) return false;
    inForce->unsynced.erase("folder");
    return true;
  }

  static bool remove(const char* name) {
    return !fails() && inForce->files.erase(name) != 0;
  }

  static std::int64_t fileSize(Handle handle) {
    const FakeSystem::OpenFile* const file = find(handle);
    return file != nullptr && !inForce->devices.contains(file->name)
               ? static_cast<std::int64_t>(inForce->files[file->name].size())
               : -1;
  }

  static bool isSameFile(Handle first, Handle second) {
    const FakeSystem::OpenFile* const one = find(first);
    const FakeSystem::OpenFile* const other = find(second);
    return one != nullptr && other != nullptr && one->name == other->name;
  }

  static bool read(Handle handle, void* data, std::size_t count, std::size_t* moved) {
    *moved = 0;
    ++inForce->reads;
    FakeSystem::OpenFile* const file = find(handle);
    if (file == nullptr || !file->readable || inForce->readsUntilFailure == 0) {
      return false;
    }
    if (inForce->readsUntilFailure > 0) --inForce->readsUntilFailure;
    const std::string& contents = inForce->files[file->name];
    const std::size_t left = contents.size() - std::min(file->position, contents.size());
    *moved = std::min({count, left, inForce->largestTransfer});
    std::copy_n(contents.data() + file->position, *moved, static_cast<char*>(data));
    file->position += *moved;
    return true;
  }

  // A full disk takes what fits, then nothing.
  static bool write(Handle handle, const void* data, std::size_t count,
                    std::size_t* moved) {
    *moved = 0;
    ++inForce->writes;
    if (fails()) return false;
    FakeSystem::OpenFile* const file = find(handle);
    if (file == nullptr || !file->writable) return false;
    *moved = std::min({count, inForce->largestTransfer, inForce->diskSpace});
    if (inForce->diskSpace != FakeSystem::kUnlimited) inForce->diskSpace -= *moved;
    inForce->unsynced.insert(file->name);
    std::string& contents = inForce->files[file->name];
    contents.resize(std::max(contents.size(), file->position + *moved));
    contents.replace(file->position, *moved, static_cast<const char*>(data), *moved);
    file->position += *moved;
    return *moved > 0 || count == 0;
  }

  static bool seekToEnd(Handle handle) {
    FakeSystem::OpenFile* const file = find(handle);
    if (file == nullptr || inForce->failingSeek) return false;
    file->position = inForce->files[file->name].size();
    return true;
  }

  static bool seekBy(Handle handle, std::int64_t distance) {
    FakeSystem::OpenFile* const file = find(handle);
    if (file == nullptr || inForce->failingSeek) return false;
    file->position += static_cast<std::size_t>(distance);
    return true;
  }
};

FakeSystem::FakeSystem() : table_(nqdetail::hostSystem()) {
  table_.open = FakeCalls::open;
  table_.close = FakeCalls::close;
  table_.exists = FakeCalls::exists;
  table_.linkTarget = FakeCalls::linkTarget;
  table_.createBeside = FakeCalls::createBeside;
  table_.sync = FakeCalls::sync;
  table_.replace = FakeCalls::replace;
  table_.syncFolder = FakeCalls::syncFolder;
  table_.remove = FakeCalls::remove;
  table_.fileSize = FakeCalls::fileSize;
  table_.isSameFile = FakeCalls::isSameFile;
  table_.read = FakeCalls::read;
  table_.write = FakeCalls::write;
  table_.seekToEnd = FakeCalls::seekToEnd;
  table_.seekBy = FakeCalls::seekBy;
  inForce = this;
  nqdetail::replaceSystem(&table_);
}

FakeSystem::~FakeSystem() {
  nqdetail::replaceSystem(nullptr);
  inForce = nullptr;
}

int FakeSystem::openFiles() const {
  return static_cast<int>(std::count_if(opened_.begin(), opened_.end(),
                                        [](const OpenFile& file) { return file.open; }));
}

nqdetail::Handle FakeSystem::handleOn(const std::string& name) {
  opened_.push_back({name, 0, true, true, true});
  return &opened_.back();
}
