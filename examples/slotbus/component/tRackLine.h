#pragma once

#include "oxdiagk/tStatus2.h"
#include "slotbus/component/tDevice.h"

namespace nSLOTBUS100 {

// One line of a rack text on its way to becoming a device:
//
//     slot | instance | hardware ids | description
//
// Blanks and tabs around a field do not count. A line of blanks only, and a line whose first
// other character is #, describe nothing and may hold anything.
//
//     tRackLine line(text, 14);
//     if (line.isDevice()) {
//       line.read(device, status);
//     }
//
// Not locked; one object belongs to one thread. Allocates nothing, except that a failure takes its
// detail from the status heap, so IRQL <= APC_LEVEL.
class tRackLine {
 public:
  // `text` is the line without its end; it may hold any bytes. `number` counts from 1.
  tRackLine(tTextSpan text, u32 number);

  bool isDevice() const;

  // Reads the four fields. On success `device` is the line's device, its texts pointing into the
  // line. On failure `device` is unchanged and `status` is one of the codes from
  // kStatusLineTooLong to kStatusDescriptionTooLong: of several faults the first from the left.
  // Does nothing when `status` is an error already.
  void read(tDevice& device, nOXDIAG100::tStatus2& status);

  // The line without the blanks at its ends.
  tTextSpan getText() const { return text; }

  // The part of the line that the last failure is about; the whole line when it is about that or
  // about something that is not there.
  tTextSpan getOffence() const { return offence.isEmpty() ? text : offence; }

 private:
  static constexpr u32 kFieldCount = 4;

  void checkCharacters(nOXDIAG100::tStatus2& status);
  void split(tTextSpan (&fields)[kFieldCount], nOXDIAG100::tStatus2& status);
  void readSlot(tTextSpan field, tDevice& device, nOXDIAG100::tStatus2& status);
  void readInstance(tTextSpan field, tDevice& device, nOXDIAG100::tStatus2& status);
  void readHardwareIds(tTextSpan field, tDevice& device, nOXDIAG100::tStatus2& status);
  void checkHardwareId(tTextSpan id, nOXDIAG100::tStatus2& status);
  void readDescription(tTextSpan field, tDevice& device, nOXDIAG100::tStatus2& status);

  tTextSpan text;  // trimmed
  tTextSpan offence;
  u32 number;
};

}  // namespace nSLOTBUS100
