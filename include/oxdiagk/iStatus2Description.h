#pragma once

// What explains a status.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/iCloneableExternalizable.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// The face of a structured description as tStatus2 holds it: an object of the framework that can be
// cloned, written to a stream and read back. A class of descriptions derives from it:
//
//     class tSlotDescription : public iStatus2Description {
//       QELM_DECLARE_CLASS(tSlotDescription, nOXDIAG100::iStatus2Description)
//      public:
//       nQELM100::iCloneable* clone(i32& status) const override;
//       void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
//       void readExternal(nQELM100::iObjectReader& reader, i32& status) override;
//     };
//
// Descriptions are not locked. Those made with `new` come from the status heap: IRQL <= APC_LEVEL,
// and none may be left when the library stops. A description may as well stand on the stack or in a
// larger object; tStatus2 always keeps a clone.
class OXDIAG_API iStatus2Description : public virtual nQELM100::iCloneableExternalizable {
  QELM_DECLARE_INTERFACE(iStatus2Description, nQELM100::iCloneableExternalizable)

 public:
  // Memory from the status heap; null when it is full (so the new expression yields null).
  static void* operator new(size_t size) noexcept;
  static void* operator new[](size_t size) noexcept;

  // The same; `flags` are ignored, the status heap has one kind of memory.
  static void* operator new(size_t size, tMemAllocationFlags flags) noexcept;
  static void* operator new[](size_t size, tMemAllocationFlags flags) noexcept;

  // The same, with the outcome in `*status`: with an error in it on entry the result is null at
  // once; on failure it becomes kStatusOutOfMemory; a success leaves it alone. A null `status` is
  // fine and tells nothing.
  //
  //     i32 code = 0;
  //     auto* description = new (kMemLongLived, &code) tSlotDescription;
  static void* operator new(size_t size, tMemAllocationFlags flags, i32* status) noexcept;
  static void* operator new[](size_t size, tMemAllocationFlags flags, i32* status) noexcept;

  static void operator delete(void* block) noexcept;
  static void operator delete[](void* block) noexcept;

  // Writes the description as text for tStatus2::toString into `buffer` of `size` bytes, always
  // terminated. This one writes an empty text, and nothing when the buffer is null or the size 0. A
  // class may override it; it must keep to the buffer.
  virtual void toString(char* buffer, u32 size) const;
};

}  // namespace nOXDIAG100
