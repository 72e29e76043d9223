#include "nq/geometry/tuple.h"

NQ_COPY_OPERATIONS_IMPL(NQTuple)
NQ_COPY_OPERATIONS_IMPL(NQDTuple)
