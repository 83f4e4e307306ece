#pragma once

#include "ntos/types.h"

namespace nSLOTBUS100 {

// What can be wrong with a rack. Every code is negative, so it is an error wherever a status is
// looked at; `kWarningEmptyRack` is positive and does not make a run fail. The codes are stable:
// reports and tests may compare them.
enum tStatusCode : i32 {
  kStatusTextNotPlain = -61001,        // the whole text: UTF-16, not lines of plain characters
  kStatusTextTooLong = -61002,         // the whole text: more than kMaxRackTextLength bytes
  kStatusLineTooLong = -61003,         // more than kMaxLineLength bytes in one line
  kStatusBadCharacter = -61004,        // NUL, a control character or a byte above 0x7E
  kStatusMissingField = -61005,        // fewer than the four fields of a device
  kStatusExtraField = -61006,          // more than three separators
  kStatusSlotNotANumber = -61007,      // the slot is empty or holds more than digits
  kStatusSlotOutOfRange = -61008,      // the slot is not in kFirstSlot..kLastSlot
  kStatusInstanceNotANumber = -61009,  // the instance is neither decimal nor 0x hexadecimal
  kStatusInstanceTooLarge = -61010,    // the instance needs more than 64 bits
  kStatusNoHardwareId = -61011,        // no hardware id, or an empty one between two commas
  kStatusBlankInHardwareId = -61012,   // a hardware id with a blank in its middle
  kStatusHardwareIdTooLong = -61013,   // one hardware id longer than kMaxHardwareIdLength
  kStatusHardwareIdsTooLong = -61014,  // all hardware ids together do not fit a multi-string
  kStatusNoDescription = -61015,       // the description is empty
  kStatusDescriptionTooLong = -61016,  // longer than kMaxDescriptionLength
  kStatusSlotTaken = -61017,           // an earlier line has put a device into this slot
  kStatusInstanceTaken = -61018,       // an earlier line has given this instance number
  kWarningEmptyRack = 61001,           // no line describes a device
};

constexpr u32 kFirstSlot = 1;
constexpr u32 kLastSlot = 99;
constexpr u32 kMaxLineLength = 2000;       // bytes, without the end of the line
constexpr u32 kMaxHardwareIdLength = 201;  // characters of one id
constexpr u32 kMaxHardwareIdsLength =
    1024;                                   // characters of all, each with its terminator, plus one
constexpr u32 kMaxDescriptionLength = 120;  // characters
constexpr u32 kMaxRackTextLength = 1024 * 1024;  // bytes of a whole rack text

// One sentence part for people, without a full stop: "the slot number is not a number". Never
// null; an unknown code gives "an unexpected failure". Any IRQL.
char const* describeStatusCode(i32 code);

}  // namespace nSLOTBUS100
