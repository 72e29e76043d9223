// read_hooks.h -- what the rooms of the reader ask of the application.

#ifndef NQ_OML_READING_READ_HOOKS_H
#define NQ_OML_READING_READ_HOOKS_H

#include "nq/platform/types.h"

class NQObject;
class NQOMLSyntaxField;
class NQOMLSyntaxObject;

namespace nqdetail {

// The hooks of NQOMLFile of the same names.
struct ReadHooks {
  virtual bool checkObject(NQOMLSyntaxObject* object) = 0;
  virtual NQObject* createObject(NQOMLSyntaxObject* syntax,
                                 NQOMLSyntaxObject* ownerSyntax, NQObject* owner) = 0;
  virtual bool readField(NQOMLSyntaxField* field, NQOMLSyntaxObject* syntax,
                         NQObject* object) = 0;
  virtual void preReadFields(NQOMLSyntaxObject* syntax, NQObject* object) = 0;
  virtual void postReadFields(NQOMLSyntaxObject* syntax, NQObject* object) = 0;

 protected:
  ~ReadHooks() = default;
};

}  // namespace nqdetail

#endif  // NQ_OML_READING_READ_HOOKS_H
