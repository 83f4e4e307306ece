#include "oxdiagk/tIntrinsicTypeReportable.h"

namespace nOXDIAG100 {

template class OXDIAG_API tIntrinsicTypeReportable<i32>;
template class OXDIAG_API tIntrinsicTypeReportable<u32>;
template class OXDIAG_API tIntrinsicTypeReportable<i64>;
template class OXDIAG_API tIntrinsicTypeReportable<u64>;
template class OXDIAG_API tIntrinsicTypeReportable<_STL::wstring>;

}  // namespace nOXDIAG100
