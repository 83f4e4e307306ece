#pragma once

#include "oxdiagk/tStatus2.h"
#include "vexk/tMemBlockReferenceTemplate.h"

namespace nSLOTBUS100 {

// Statuses as bytes, to be saved in a file and read by oxdiagreport: streams of
// "qelmk/binaryStream.h", one a status, with nothing between them.
//
//     tStatusRecord record(false);
//     if (record.allocate()) readRackText(text, length, trace, &record);
//     save(record.getBytes(), record.getLength());
//
// Not locked. IRQL <= APC_LEVEL.
class tStatusRecord {
 public:
  static constexpr size_t kSize = 0x10000;  // bytes; enough for the traced failures of a rack

  // `hasModules`: each status is kept with the modules on its call stack, for
  // "oxdiagreport --symbols".
  explicit tStatusRecord(bool hasModules) : keepsModules(hasModules) {}

  // Returns false when memory is exhausted.
  bool allocate();

  // Appends one status. What does not fit, or cannot be written, is only counted.
  void add(nOXDIAG100::tStatus2 const& status);

  // Belong to this object.
  u8 const* getBytes() const { return block.get(); }
  size_t getLength() const { return length; }

  u32 getMissingCount() const { return missingCount; }

 private:
  void write(nOXDIAG100::tStatus2 const& status, nQELM100::iObjectWriter& writer, i32& code) const;

  tMemBlockReferenceTemplate<u8> block;
  bool keepsModules;
  size_t length = 0;
  u32 missingCount = 0;
};

}  // namespace nSLOTBUS100
