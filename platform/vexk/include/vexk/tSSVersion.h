#pragma once

// A version number of the family: major.minor.update, a phase and a build, in 32 bits.
//
//     constexpr tSSVersion kOldest(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);   // 1.0.0f7
//
// A value type: copied freely, compared, passed by value. Nothing here allocates; any IRQL.

#include "compiler/types.h"
#include "vexk/api.h"

class VEX_API tSSVersion {
 public:
  // How far a release was. The written letter stands between update and build. Order of release is
  // development, alpha, beta, released, which is not the order of the values. The values 4 to 15
  // have no meaning yet: they are written `x` and lie below development.
  enum tPhase : u32 {
    kPhaseDevelopment = 0,  // d
    kPhaseReleased = 1,     // f
    kPhaseBeta = 2,         // b
    kPhaseAlpha = 3,        // a
  };

  // Room for the longest text, "255.15.15f4095", with its terminator.
  static constexpr u32 kMaxTextSize = 16;

  // Version 0.0.0d0, below every other but those of unknown phase.
  constexpr tSSVersion() = default;

  // The packed form, from the most significant bit: major 8 bits, minor 4, update 4, phase 4,
  // build 12.
  explicit constexpr tSSVersion(u32 packedForm) : packed(packedForm) {}

  // Each number keeps the bits that its field has: major 0 to 255, minor, update and phase 0 to 15,
  // build 0 to 4095. `reserved` is for later use; pass 0.
  constexpr tSSVersion(u32 major, u32 minor, u32 update, tPhase phase, u32 build, u32 /*reserved*/)
      : packed(((major & 0xFF) << 24) | ((minor & 0xF) << 20) | ((update & 0xF) << 16) |
               ((static_cast<u32>(phase) & 0xF) << 12) | (build & 0xFFF)) {}

  constexpr u32 getPacked() const { return packed; }
  constexpr u32 getMajor() const { return packed >> 24; }
  constexpr u32 getMinor() const { return (packed >> 20) & 0xF; }
  constexpr u32 getUpdate() const { return (packed >> 16) & 0xF; }
  constexpr tPhase getPhase() const { return static_cast<tPhase>((packed >> 12) & 0xF); }
  constexpr u32 getBuild() const { return packed & 0xFFF; }

  // Negative, 0 or positive as this version is older than, equal to or newer than `other`: by
  // major, minor, update, phase in order of release, build.
  i32 compare(tSSVersion other) const;

  constexpr bool operator==(tSSVersion other) const { return packed == other.packed; }
  bool operator<(tSSVersion other) const { return compare(other) < 0; }
  bool operator<=(tSSVersion other) const { return compare(other) <= 0; }
  bool operator>(tSSVersion other) const { return compare(other) > 0; }
  bool operator>=(tSSVersion other) const { return compare(other) >= 0; }

  // Whether what a client wants, [oldestWanted, newestWanted], meets what is installed,
  // [oldestCompatible, current]; all bounds belong to their range. Returns 0, or
  // kStatusVersionMismatch when the oldest wanted is newer than the current version or the newest
  // wanted is older than the oldest compatible one.
  static i32 check(tSSVersion newestWanted, tSSVersion oldestWanted, tSSVersion current,
                   tSSVersion oldestCompatible);

  // Writes the text, such as "1.0.0f7", into `buffer` of `size` bytes, cut to fit and always
  // terminated. Nothing is written when the buffer is null or the size 0.
  void toStringInterface(char* buffer, u32 size) const;

  // The same, as an argument of a print:
  //
  //     char text[tSSVersion::kMaxTextSize];
  //     ssprintf("running %s\n", version.toString(text));
  char const* toString(char (&buffer)[kMaxTextSize]) const {
    toStringInterface(buffer, kMaxTextSize);
    return buffer;
  }

 private:
  u32 packed = 0;
};
static_assert(sizeof(tSSVersion) == 4, "crosses module borders by value");
