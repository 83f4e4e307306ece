#pragma once

// The vocabulary of a report.

#include "ntos/types.h"
#include "oxdiagk/api.h"
#include "stl/string.h"

namespace nQELM100 {
class tGUID;
class tObject;
}  // namespace nQELM100

namespace nOXDIAG100 {

class tStatus2;

// Whoever renders descriptions implements one: it turns values into words of a language, and says
// what stands between them. Every text operation returns its text by value; the reportable appends
// it. A translator tells failures through `status`; it does nothing and returns an empty text when
// that holds an error on entry.
//
// A translator that knows more implements specialised interfaces besides, and tells of them by its
// framework object: iReportableTranslatorForI64, iReportableTranslatorForEmptyContainers,
// iReportableTranslatorTimeAbsolute.
//
// The order of the operations is part of the interface on Windows. Threads and IRQL: the
// implementer's matter; the library calls it on the thread, and at the IRQL, of who asks for the
// report.
class OXDIAG_API iReportableTranslator {
 public:
  virtual ~iReportableTranslator() = 0;

  // This translator as an object of the framework, which is asked for the specialised interfaces;
  // null when it has none.
  virtual nQELM100::tObject const* getFrameworkObject(tStatus2& status) const = 0;

  virtual _STL::wstring translateU32(u32 value, tStatus2& status) const = 0;
  virtual _STL::wstring translateU64(u64 const& value, tStatus2& status) const = 0;
  virtual _STL::wstring translateWideString(_STL::wstring const& value, tStatus2& status) const = 0;

  // Also string ids without a converter, and 64-bit values for want of iReportableTranslatorForI64,
  // of which it then gets the low half.
  virtual _STL::wstring translateI32(i32 value, tStatus2& status) const = 0;

  // Not called by the library.
  virtual _STL::wstring translateReserved(i32 value, tStatus2& status) const = 0;

  // What stands between two values of one reportable.
  virtual _STL::wstring getValueSeparator(tStatus2& status) const = 0;

  // The words for a report item's usage type, before the item's own text.
  virtual _STL::wstring translateUsageType(i32 usageType, tStatus2& status) const = 0;

  // What stands between two report items.
  virtual _STL::wstring getItemSeparator(tStatus2& status) const = 0;

  // What stands before the first value of a reportable.
  virtual _STL::wstring getListPrefix(tStatus2& status) const = 0;

  // What stands between the lower and the upper bound of a range.
  virtual _STL::wstring getRangeSeparator(tStatus2& status) const = 0;

  // Edits the report in place: the whole report of a title, and called for every other reportable
  // right after its list prefix.
  virtual void applyTitle(_STL::wstring& output, tStatus2& status) const = 0;

  virtual _STL::wstring translateGUID(nQELM100::tGUID const& value, tStatus2& status) const = 0;

  // The name of a property. A value with an empty text is left out of its list.
  virtual _STL::wstring translatePropertyID(i32 propertyID, tStatus2& status) const = 0;

  // The name of one value of a property that has named values; an empty text as above.
  virtual _STL::wstring translateEnumValue(i32 propertyID, i32 value, tStatus2& status) const = 0;

  // Not called by the library; they keep the places of later operations.
  virtual void reserved1() const = 0;
  virtual void reserved2() const = 0;
  virtual void reserved3() const = 0;
  virtual void reserved4() const = 0;
};

}  // namespace nOXDIAG100
