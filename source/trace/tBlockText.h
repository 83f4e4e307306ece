#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class tStatus2;
class tTrace;

// The text of the two lines of a block. What is null is left out.
class tBlockText {
 public:
  tBlockText(char const* blockName, i32 const* legacyStatus, tStatus2 const* statusObject)
      : blockName(blockName), legacyStatus(legacyStatus), statusObject(statusObject) {}

  // Puts the text into the line that is open, and ends it.
  void endEntry(tTrace& line, void const* object) const;
  void endExit(tTrace& line) const;

 private:
  void putStatus(tTrace& line, char const* end) const;

  char const* const blockName;
  i32 const* const legacyStatus;
  tStatus2 const* const statusObject;
};

}  // namespace nOXDIAG100
