#include "nq/oml/token.h"

#include "nq/oml/bin_value.h"

void NQOMLToken::deleteValue() {
  delete pBinValue();
  if (tag == NQ_OML_BINARY_VALUE) word = 0;
}
