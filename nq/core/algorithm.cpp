#include "nq/core/algorithm.h"

void NQMORAlgorithm::NQMORAlgorithmdeepCopy(const NQMORAlgorithm& source) {
  NQCopyAccess::deep<NQObject>(*this, source);
}

void NQMORAlgorithm::NQMORAlgorithmattributeCopy(const NQMORAlgorithm& source) {
  NQCopyAccess::attributes<NQObject>(*this, source);
}

const NQMORAlgorithm& NQMORAlgorithm::operator=(const NQMORAlgorithm&) {
  return *this;
}

NQMORAlgorithm* NQMORAlgorithm::castDown(const NQObject* object) {
  return NQCopyAccess::castDown<NQMORAlgorithm>(object);
}

void NQMORAlgorithm::run() {
  emptyInformation();
  initialize();
  algorithmBody();
  finalize();
}

void NQMORAlgorithm::emptyInformation() {}

void NQMORAlgorithm::initialize() {}

void NQMORAlgorithm::finalize() {}
