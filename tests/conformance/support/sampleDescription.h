#pragma once

// A description with an item of every kind, some of them with several values.

#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"

namespace sample {

using namespace nOXDIAG100;

template <class T>
bool addRange(tStatus2Description& description, i32 usageType, T lower, T upper) {
  tStatus2 status;
  tBoundedRangeReportable<T> const range(lower, upper, status);
  description.addReportItem(usageType, range, status);
  return !status.isError();
}

// One value, two values, no value.
template <class tReportable, class T>
bool addLists(tStatus2Description& description, i32 usageType, T const& first, T const& second) {
  tStatus2 status;
  _STL::vector<T> values;
  tReportable const none(status);
  tReportable const one(first, status);
  if (!values.push_back(first) || !values.push_back(second)) return false;
  tReportable const two(values, status);
  description.addReportItem(usageType, one, status);
  description.addReportItem(usageType + 1, two, status);
  description.addReportItem(usageType + 2, none, status);
  return !status.isError();
}

inline bool addMarkers(tStatus2Description& description) {
  tStatus2 status;
  description.addHeader(1, status);
  description.addNewline(status);
  return !status.isError();
}

inline bool addRanges(tStatus2Description& description) {
  return addRange<i32>(description, 2, -5, 5) && addRange<u32>(description, 3, 0, 0xFFFFFFFF) &&
         addRange<i64>(description, 4, -1, 1) && addRange<u64>(description, 5, 1, ~u64{0});
}

inline bool addNumbers(tStatus2Description& description) {
  return addLists<tIntrinsicTypeReportable<i32>>(description, 10, i32{-1}, i32{1}) &&
         addLists<tIntrinsicTypeReportable<u32>>(description, 20, u32{1}, u32{0x80000000}) &&
         addLists<tIntrinsicTypeReportable<i64>>(description, 30, i64{-1}, i64{1} << 40) &&
         addLists<tIntrinsicTypeReportable<u64>>(description, 40, u64{1}, ~u64{0});
}

inline bool addTexts(tStatus2Description& description) {
  return addLists<tIntrinsicTypeReportable<_STL::wstring>>(
      description, 50, _STL::wstring(L"slot 12"), _STL::wstring());
}

inline bool addIdentities(tStatus2Description& description) {
  constexpr nQELM100::tGUID kBus(0x7A0C5A9E, 0x31B4, 0x4D0F, {1, 2, 3, 4, 5, 6, 7, 8});
  constexpr tSSTimeAbsolute kTime = {{1, 2, 3, 4}};
  return addLists<tGUIDReportable>(description, 60, kBus, nQELM100::tGUID()) &&
         addLists<tSSTimeAbsoluteReportable>(description, 70, kTime, tSSTimeAbsolute()) &&
         addLists<tPropertyIDReportable>(description, 80, i32{7}, i32{8});
}

inline bool addProxies(tStatus2Description& description) {
  tStatus2 status;
  tEnumPropertyReportable const choice(9, 10, status);
  tStringProxyReportable const proxy(11, "nNOBODY::tConverter", status);
  description.addReportItem(90, choice, status);
  description.addReportItem(91, proxy, status);
  return !status.isError();
}

// False when there is no memory.
inline bool describeEverything(tStatus2Description& description) {
  return addMarkers(description) && addRanges(description) && addNumbers(description) &&
         addTexts(description) && addIdentities(description) && addProxies(description);
}

}  // namespace sample
