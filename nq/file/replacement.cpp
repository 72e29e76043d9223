#include <utility>

#include "nq/file/replacement_internal.h"

namespace nqdetail {

namespace {

// Goes where the links from `name` on lead, whether a file is there or not. False when
// that is nowhere.
bool followLinks(std::string& name) {
  constexpr int kMostLinks = 40;
  std::string target;
  for (int i = 0; i < kMostLinks; ++i) {
    if (!system().linkTarget(name.c_str(), target)) return false;
    if (target.empty()) return true;
    name = std::exchange(target, {});
  }
  return false;
}

}  // namespace

std::unique_ptr<Replacement> Replacement::begin(const char* name) {
  std::unique_ptr<Replacement> result(new Replacement);
  result->name_ = name;
  if (!followLinks(result->name_)) return nullptr;
  const char* const path = result->name_.c_str();
  result->old_ = system().open(path, Access::kWrite, Creation::kExisting);
  if (result->old_ == noHandle() && system().exists(path)) return nullptr;
  if (result->old_ != noHandle() && system().fileSize(result->old_) < 0) return result;
  result->new_ = system().createBeside(path, result->newName_);
  if (result->new_ == noHandle()) return nullptr;
  return result;
}

Replacement::~Replacement() {
  (void)closeNew();
  if (!newName_.empty()) (void)system().remove(newName_.c_str());
  if (old_ != noHandle()) (void)system().close(old_);
}

bool Replacement::commit() {
  if (isDevice()) return system().close(std::exchange(old_, noHandle())) && !abandoned_;
  if (abandoned_ || !system().sync(new_) || !closeNew()) return false;
  const Handle held = std::exchange(old_, noHandle());
  if (!system().replace(newName_.c_str(), name_.c_str(), held)) return false;
  newName_.clear();
  // Where this fails, a power failure may bring the old file back, whole.
  (void)system().syncFolder(name_.c_str());
  return true;
}

bool Replacement::closeNew() {
  return new_ == noHandle() || system().close(std::exchange(new_, noHandle()));
}

}  // namespace nqdetail
