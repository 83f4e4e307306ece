#pragma once

// The times that a stream keeps, which no operation tells: tests set them and read them, so that a
// time delta can be foretold to the tick. (An explicit instantiation may name private members.)

#include "oxdiagk/tTrace.h"

namespace traceMembers {

template <class Tag, typename Tag::tMember member>
struct tKey {
  friend constexpr typename Tag::tMember find(Tag /*tag*/) { return member; }
};

struct tTime {
  using tMember = u64 nOXDIAG100::tTrace::*;
};

struct tLastLineTime : tTime {
  friend constexpr tMember find(tLastLineTime tag);
};

struct tLineStartTime : tTime {
  friend constexpr tMember find(tLineStartTime tag);
};

struct tCarriedDelta : tTime {
  friend constexpr tMember find(tCarriedDelta tag);
};

struct tCalibrationOffsets {
  using tMember = u64 (nOXDIAG100::tTrace::*)[3];
  friend constexpr tMember find(tCalibrationOffsets tag);
};

template struct tKey<tLastLineTime, &nOXDIAG100::tTrace::lastLineTime>;
template struct tKey<tLineStartTime, &nOXDIAG100::tTrace::lineStartTime>;
template struct tKey<tCarriedDelta, &nOXDIAG100::tTrace::carriedDelta>;
template struct tKey<tCalibrationOffsets, &nOXDIAG100::tTrace::calibrationOffsets>;

// The member that `Tag` stands for.
template <class Tag>
auto& get(nOXDIAG100::tTrace& trace) {
  return trace.*find(Tag{});
}

}  // namespace traceMembers
