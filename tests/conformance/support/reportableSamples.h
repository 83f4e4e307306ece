#pragma once

// A reportable of every class with two values, and one of its class with others.

#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "stl/vector.h"

template <class T>
_STL::vector<T> listOf(T const& first, T const& second) {
  _STL::vector<T> list;
  list.push_back(first);
  list.push_back(second);
  return list;
}

constexpr nQELM100::tGUID kFirstGUID(0x7A0C5A9E, 0x31B4, 0x4D0F, {0x9B, 0x1C, 2, 3, 4, 5, 6, 7});
constexpr nQELM100::tGUID kSecondGUID(1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11});

inline tSSTimeAbsolute timeOf(u32 lowest, u32 second, u32 third, u32 highest) {
  tSSTimeAbsolute time;
  time.words[0] = lowest;
  time.words[1] = second;
  time.words[2] = third;
  time.words[3] = highest;
  return time;
}

// How to make the sample of a class: one(status) and other(status). kHasValues says whether the two
// differ, kName is the registered name.
template <class T>
struct tSample;

template <class T>
struct tMarkerSample {
  static constexpr bool kHasValues = false;
  static T one(nOXDIAG100::tStatus2& status) { return T(status); }
  static T other(nOXDIAG100::tStatus2& status) { return T(status); }
};

template <>
struct tSample<nOXDIAG100::tTitleReportable> : tMarkerSample<nOXDIAG100::tTitleReportable> {
  static constexpr char kName[] = "nOXDIAG100::tTitleReportable";
};

template <>
struct tSample<nOXDIAG100::tWhiteSpaceReportable>
    : tMarkerSample<nOXDIAG100::tWhiteSpaceReportable> {
  static constexpr char kName[] = "nOXDIAG100::tWhiteSpaceReportable";
};

template <class T>
struct tSample<nOXDIAG100::tIntrinsicTypeReportable<T>> {
  using tReportable = nOXDIAG100::tIntrinsicTypeReportable<T>;
  static constexpr bool kHasValues = true;
  static constexpr char const* kName = nOXDIAG100::tReportableValue<T>::kIntrinsicName;
  static tReportable one(nOXDIAG100::tStatus2& status) {
    return tReportable(listOf<T>(T(1), T(2)), status);
  }
  static tReportable other(nOXDIAG100::tStatus2& status) {
    return tReportable(listOf<T>(T(2), T(1)), status);
  }
};

template <>
inline nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>
tSample<nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>>::one(nOXDIAG100::tStatus2& status) {
  return tReportable(listOf(_STL::wstring(L"one"), _STL::wstring(L"two")), status);
}
template <>
inline nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>
tSample<nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>>::other(nOXDIAG100::tStatus2& status) {
  return tReportable(listOf(_STL::wstring(L"two"), _STL::wstring(L"one")), status);
}

template <class T>
struct tSample<nOXDIAG100::tBoundedRangeReportable<T>> {
  using tReportable = nOXDIAG100::tBoundedRangeReportable<T>;
  static constexpr bool kHasValues = true;
  static constexpr char const* kName = nOXDIAG100::tReportableValue<T>::kRangeName;
  static tReportable one(nOXDIAG100::tStatus2& status) { return tReportable(1, 2, status); }
  static tReportable other(nOXDIAG100::tStatus2& status) { return tReportable(2, 1, status); }
};

template <>
struct tSample<nOXDIAG100::tPropertyIDReportable> {
  static constexpr bool kHasValues = true;
  static constexpr char kName[] = "nOXDIAG100::tPropertyIDReportable";
  static nOXDIAG100::tPropertyIDReportable one(nOXDIAG100::tStatus2& status) {
    return {listOf<i32>(1, 2), status};
  }
  static nOXDIAG100::tPropertyIDReportable other(nOXDIAG100::tStatus2& status) {
    return {listOf<i32>(2, 1), status};
  }
};

template <>
struct tSample<nOXDIAG100::tEnumPropertyReportable> {
  static constexpr bool kHasValues = true;
  static constexpr char kName[] = "nOXDIAG100::tEnumPropertyReportable";
  static nOXDIAG100::tEnumPropertyReportable one(nOXDIAG100::tStatus2& status) {
    return {7, listOf<i32>(1, 2), status};
  }
  static nOXDIAG100::tEnumPropertyReportable other(nOXDIAG100::tStatus2& status) {
    return {8, listOf<i32>(1, 2), status};
  }
};

template <>
struct tSample<nOXDIAG100::tGUIDReportable> {
  static constexpr bool kHasValues = true;
  static constexpr char kName[] = "nOXDIAG100::tGUIDReportable";
  static nOXDIAG100::tGUIDReportable one(nOXDIAG100::tStatus2& status) {
    return {listOf(kFirstGUID, kSecondGUID), status};
  }
  static nOXDIAG100::tGUIDReportable other(nOXDIAG100::tStatus2& status) {
    return {listOf(kSecondGUID, kFirstGUID), status};
  }
};

template <>
struct tSample<nOXDIAG100::tSSTimeAbsoluteReportable> {
  static constexpr bool kHasValues = true;
  static constexpr char kName[] = "nOXDIAG100::tSSTimeAbsoluteReportable";
  static nOXDIAG100::tSSTimeAbsoluteReportable one(nOXDIAG100::tStatus2& status) {
    return {listOf(timeOf(1, 2, 3, 4), timeOf(5, 6, 7, 8)), status};
  }
  static nOXDIAG100::tSSTimeAbsoluteReportable other(nOXDIAG100::tStatus2& status) {
    return {listOf(timeOf(1, 2, 3, 4), timeOf(5, 6, 7, 9)), status};
  }
};

template <>
struct tSample<nOXDIAG100::tStringProxyReportable> {
  static constexpr bool kHasValues = true;
  static constexpr char kName[] = "nOXDIAG100::tStringProxyReportable";
  static nOXDIAG100::tStringProxyReportable one(nOXDIAG100::tStatus2& status) {
    return {listOf<i32>(1, 2), "nRACK::tTextsOfTheWholeRack", status};
  }
  static nOXDIAG100::tStringProxyReportable other(nOXDIAG100::tStatus2& status) {
    return {listOf<i32>(1, 2), "nRACK::tTextsOfTheWholeRock", status};
  }
};

// Stands for a class in a call of a visitor.
template <class T>
struct tClassTag {
  using tReportable = T;

  static T one() {
    nOXDIAG100::tStatus2 status;
    return tSample<T>::one(status);
  }
  static T other() {
    nOXDIAG100::tStatus2 status;
    return tSample<T>::other(status);
  }
};

// Calls `visit(tClassTag<T>())` for every class of reportables.
template <class tVisitor>
void visitReportables(tVisitor visit) {
  using namespace nOXDIAG100;
  visit(tClassTag<tTitleReportable>());
  visit(tClassTag<tWhiteSpaceReportable>());
  visit(tClassTag<tIntrinsicTypeReportable<i32>>());
  visit(tClassTag<tIntrinsicTypeReportable<u32>>());
  visit(tClassTag<tIntrinsicTypeReportable<i64>>());
  visit(tClassTag<tIntrinsicTypeReportable<u64>>());
  visit(tClassTag<tIntrinsicTypeReportable<_STL::wstring>>());
  visit(tClassTag<tBoundedRangeReportable<i32>>());
  visit(tClassTag<tBoundedRangeReportable<u32>>());
  visit(tClassTag<tBoundedRangeReportable<i64>>());
  visit(tClassTag<tBoundedRangeReportable<u64>>());
  visit(tClassTag<tPropertyIDReportable>());
  visit(tClassTag<tEnumPropertyReportable>());
  visit(tClassTag<tGUIDReportable>());
  visit(tClassTag<tSSTimeAbsoluteReportable>());
  visit(tClassTag<tStringProxyReportable>());
}
