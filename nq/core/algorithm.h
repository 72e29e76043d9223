// algorithm.h -- the skeleton of an algorithm that runs in four steps.

#ifndef NQ_CORE_ALGORITHM_H
#define NQ_CORE_ALGORITHM_H

#include "nq/core/copy_protocol.h"

// A derived class supplies algorithmBody() and whichever other steps it needs;
// users call run().
//
// An algorithm is not a value: it cannot be copy-constructed, assignment and
// copyObject() take over nothing, and a clone is a plain NQObject.
class NQ_EXPORT NQMORAlgorithm : public NQObject {
  NQ_COPY_ROUTINES(NQMORAlgorithm)

 public:
  NQMORAlgorithm() = default;
  const NQMORAlgorithm& operator=(const NQMORAlgorithm& source);
  static NQMORAlgorithm* castDown(const NQObject* object);

  // One whole run: the four steps below, in their order.
  virtual void run();
  // Discards the results of an earlier run.
  virtual void emptyInformation();
  virtual void initialize();
  virtual void algorithmBody() = 0;
  virtual void finalize();

 private:
  NQMORAlgorithm(const NQMORAlgorithm& source) = default;
};

#endif  // NQ_CORE_ALGORITHM_H
