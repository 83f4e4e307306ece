#pragma once

// The vocabulary of a report.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "stl/string.h"

namespace nQELM100 {
class tGUID;
class tObject;
}  // namespace nQELM100

namespace nOXDIAG100 {

class tStatus2;

// Whoever renders descriptions implements one: it turns values into words of a language, and has
// the text between them. Every text operation returns its text by value; the reportable appends it.
//
// Errors: an operation that fails stores its code in `status` and returns an empty text; the report
// ends with what there is by then. With an error in `status` on entry an operation does nothing and
// returns an empty text. A text whose hasFailed is true counts as exhausted memory: the reportable
// records kStatusOutOfMemory.
//
// Owner and life time: the translator belongs to its caller and lives as long as the call of
// generateReport, which keeps nothing of it. Threads and IRQL: the operations are called on the
// thread of that call and at its IRQL, <= APC_LEVEL for the reportables of the library. Two reports
// at the same time may call one translator; one without state of its own needs no lock for that.
//
// A translator that knows more implements specialised interfaces besides:
// iReportableTranslatorForI64, iReportableTranslatorForEmptyContainers and
// iReportableTranslatorTimeAbsolute. Their errors, threads and IRQL are the same.
//
// The order of the operations is part of the interface on Windows.
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

  // Edits the report in place. It is the whole report of a tTitleReportable, which applies the
  // title alone, without a list prefix. The other reportables of the library call it right after
  // their list prefix, but for those that have neither: a tWhiteSpaceReportable, properties of
  // which none has a text, and times without an iReportableTranslatorTimeAbsolute. A reportable of
  // a client calls it through tReportText::begin.
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
