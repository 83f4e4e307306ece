#pragma once

#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tStatus2Description.h"

// Items of one number each, with the usage types 0, 1, 2 ...
inline void addItems(nOXDIAG100::tStatus2Description& description, u32 count,
                     nOXDIAG100::tStatus2& status) {
  for (u32 index = 0; index < count; ++index) {
    description.addReportItem(static_cast<i32>(index),
                              nOXDIAG100::tIntrinsicTypeReportable<u32>(17u, status), status);
  }
}
