#include "oxdiagk/tBoundedRangeReportable.h"

namespace nOXDIAG100 {

template class OXDIAG_API tBoundedRangeReportable<i32>;
template class OXDIAG_API tBoundedRangeReportable<u32>;
template class OXDIAG_API tBoundedRangeReportable<i64>;
template class OXDIAG_API tBoundedRangeReportable<u64>;

}  // namespace nOXDIAG100
