#pragma once

// The numbers in the descriptions that the component attaches to its statuses. The files in
// slotbus/words tell what they are called. They are stable, like the status codes: a report may be
// made of statuses that an older driver saved.

#include "ntos/types.h"
#include "qelmk/tGUID.h"

namespace nSLOTBUS100 {

// The usage types. A description begins with a header whose usage type is the status code itself,
// so that its words say what is wrong.
enum tUsageType : i32 {
  kUsageLine = 1,         // u32: the number of the bad line; not for a text that is no rack at all
  kUsageField = 2,        // property ids: the field or fields in question
  kUsageFound = 3,        // wide text: the offending text, as tExcerpt shows it
  kUsageAllowed = 4,      // range of u64: the values that would have been right
  kUsageLength = 5,       // range of u64: the lengths that would have been right, in characters
  kUsageForms = 6,        // enumeration values: the forms of a number that would have been right
  kUsageEarlierLine = 7,  // u32: the number of the line that came first
  kUsageBus = 8,          // GUID: kBusGUID
  kUsageTime = 9,         // absolute time: when it was found
};

enum tProperty : i32 {
  kPropertySlot = 1,
  kPropertyInstance = 2,
  kPropertyHardwareIds = 3,
  kPropertyDescription = 4,
  kPropertyNumberForm = 5,  // values: tNumberForm
};

enum tNumberForm : i32 {
  kNumberFormDecimal = 1,
  kNumberFormHexadecimal = 2,
};

// Which bus a report is about.
constexpr nQELM100::tGUID kBusGUID(0x6D1F20C4, 0x8A57, 0x4B3E,
                                   {0x91, 0x0C, 0x5E, 0x27, 0xB8, 0x44, 0x13, 0xF9});

}  // namespace nSLOTBUS100
