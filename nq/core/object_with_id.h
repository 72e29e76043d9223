// object_with_id.h -- the base of objects that carry an identity in files.

#ifndef NQ_CORE_OBJECT_WITH_ID_H
#define NQ_CORE_OBJECT_WITH_ID_H

#include "nq/core/copy_protocol.h"

// Adds no data: it only marks its objects, whose local id is 0 unless a derived
// class knows better.
class NQ_EXPORT NQObjectWithID : public NQObject {
  NQ_COPY_PROTOCOL(NQObjectWithID)

 public:
  NQObjectWithID() = default;

  nqLong localID() const override;

 protected:
  void init() {}
};

#endif  // NQ_CORE_OBJECT_WITH_ID_H
