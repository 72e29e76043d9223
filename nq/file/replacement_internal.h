// replacement_internal.h -- a file that takes the place of another one when it is whole.
//
// The new file is made in the folder of the old one and gets its rights. Until commit()
// the old file is held open, so that others are kept out as from any file that is
// written. Without a commit the new file is removed and the old one is as it was.
//
// How it works
//   What is written goes to the new file; commit() sends it to disk and renames it, which
//   the system does in one step. After a crash there is one of the two under the old
//   name, whole, and at worst the new one beside it.

#ifndef NQ_FILE_REPLACEMENT_INTERNAL_H
#define NQ_FILE_REPLACEMENT_INTERNAL_H

#include <memory>
#include <string>

#include "nq/platform/system_internal.h"

namespace nqdetail {

class Replacement {
 public:
  // For the file of that name, be it there or not, or that a link of that name leads to.
  // A device cannot be replaced: it is written itself. Null when the file cannot be
  // opened for writing, or none be made beside it.
  static std::unique_ptr<Replacement> begin(const char* name);

  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement();

  // Where to write.
  Handle handle() const { return isDevice() ? old_ : new_; }
  // Has commit() fail.
  void abandon() { abandoned_ = true; }
  // Puts the new file in the place of the old one. False when that is as it was.
  bool commit();

 private:
  Replacement() = default;
  bool isDevice() const { return newName_.empty(); }
  bool closeNew();

  std::string name_;
  std::string newName_;      // "" for a device, and when there is no such file any more
  Handle old_ = noHandle();  // none where there is no file to replace
  Handle new_ = noHandle();
  bool abandoned_ = false;
};

}  // namespace nqdetail

#endif  // NQ_FILE_REPLACEMENT_INTERNAL_H
