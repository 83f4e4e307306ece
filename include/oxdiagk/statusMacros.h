#pragma once

// Sets a status with its origin, in one statement.
//
// Before it uses them a component defines, once for all its sources,
//
//     #define OXDIAG_COMPONENT "slotbus"     // char const*: the component's name
//
// and, if it wants other values than these,
//
//     OXDIAG_STATUS_COMPONENT   char const*: the name in the status; by default OXDIAG_COMPONENT.
//                               A status has no field for the version: a component that wants it
//                               told defines OXDIAG_COMPONENT " 1.0.0f7" here (23 characters)
//     OXDIAG_STATUS_FILE        char const*: the source file; by default __FILE__
//
// Then:
//
//     void tRack::add(tDevice const& device, tStatus2& status) {
//       if (device.slot > kLastSlot) OXDIAG_SET_STATUS(status, kStatusSlotOutOfRange);
//       OXDIAG_SET_STATUS(status, writeToPort(device.slot));   // a result of 0 changes nothing
//     }
//
// The first error wins: a status that holds an error keeps it and its origin. An error replaces a
// warning, and nothing else does. A code of 0 changes nothing, and costs one comparison.
//
// `status` (tStatus2&) and `code` (i32) are evaluated once, in any order. `description`
// (iStatus2Description const&, cloned) is evaluated only when the code is taken, and then once; it
// may be the status' own one.
//
// IRQL <= APC_LEVEL. At a higher level, and when the status heap is full, the code is stored
// without origin; a warning then becomes kStatusOutOfMemory. Threads: as for tStatus2.

#include "compiler/compiler.h"
#include "oxdiagk/tStatus2.h"

#ifndef OXDIAG_STATUS_COMPONENT
#define OXDIAG_STATUS_COMPONENT OXDIAG_COMPONENT
#endif

#ifndef OXDIAG_STATUS_FILE
#define OXDIAG_STATUS_FILE __FILE__
#endif

// With the call stack of the moment: ten return addresses.
#define OXDIAG_SET_STATUS(status, code) \
  OXDIAG_SET_STATUS_BY(setWithStackTrace, status, code, nullptr)

// Without the call stack: for codes that are expected and set often.
#define OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, code) \
  OXDIAG_SET_STATUS_BY(setWithoutStackTrace, status, code, nullptr)

// The same two with a description.
#define OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, code, description) \
  OXDIAG_SET_STATUS_BY(setWithStackTrace, status, code,               \
                       ::nOXDIAG100::tStatusSetter::addressOf(description))
#define OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status, code, description) \
  OXDIAG_SET_STATUS_BY(setWithoutStackTrace, status, code,                                \
                       ::nOXDIAG100::tStatusSetter::addressOf(description))

// What the macros above consist of.
#define OXDIAG_SET_STATUS_BY(operation, status, code, descriptionAddress)                  \
  do {                                                                                     \
    if (::nOXDIAG100::tStatusSetter const oxdiagStatusSetter_((status), (code));           \
        oxdiagStatusSetter_.isNeeded()) [[unlikely]]                                       \
      oxdiagStatusSetter_.operation(OXDIAG_STATUS_COMPONENT, OXDIAG_STATUS_FILE, __LINE__, \
                                    descriptionAddress);                                   \
  } while (false)

namespace nOXDIAG100 {

// A code on its way into a status. For the macros only.
class tStatusSetter {
 public:
  tStatusSetter(tStatus2& target, i32 newCode) : status(target), code(newCode) {}

  // The one comparison of a success, and what else the others need.
  bool isNeeded() const {
    if (code == 0) [[likely]]
      return false;
    return status.code == 0 || (status.code > 0 && code < 0);
  }

  void setWithStackTrace(char const* component, char const* file, u32 line,
                         iStatus2Description const* description) const {
    status._allocateImplementationObject(code, component, file, line, description);
    nCompiler::keepFrame();  // else this function would be missing in the stack trace
  }
  void setWithoutStackTrace(char const* component, char const* file, u32 line,
                            iStatus2Description const* description) const {
    status._allocateImplementationObjectWithoutStackTrace(code, component, file, line, description);
  }

  static iStatus2Description const* addressOf(iStatus2Description const& description) {
    return &description;
  }

 private:
  tStatus2& status;
  i32 code;
};

}  // namespace nOXDIAG100
