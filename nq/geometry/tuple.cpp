#include "nq/geometry/tuple.h"

NQ_COPY_FORWARDED_IMPL(NQTuple)
NQ_COPY_FORWARDED_IMPL(NQDTuple)
