#include "nq/geometry/permil.h"

NQ_COPY_OPERATIONS_IMPL(NQPerMil)
