#pragma once

// The text of one reportable while it grows.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/reportableClass.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class iReportableTranslator;
class iReportableTranslatorForI64;
class iReportableTranslatorTimeAbsolute;
class tStatus2;

// Lives as long as one call of generateReport, whose arguments it keeps. Every operation does
// nothing once the status holds an error; a text that cannot be appended, or whose making ran out
// of memory, records kStatusOutOfMemory under `source`. Stands on the stack; not locked.
//
//     tReportText report(translator, output, status, kSource);
//     report.begin();
//     report.append(translator.translateU32(slot, status));
class OXDIAG_API tReportText {
 public:
  tReportText(iReportableTranslator const& reportTranslator, _STL::wstring& reportOutput,
              tStatus2& reportStatus, tReportableSource const& reportSource);
  tReportText(tReportText const&) = delete;
  tReportText& operator=(tReportText const&) = delete;

  iReportableTranslator const& getTranslator() const { return translator; }
  tStatus2& getStatus() const { return status; }

  // 1 while the status holds no error.
  u32 isGoing() const;

  // The list prefix and the title operation, in front of the first value. Again, it does nothing.
  void begin();

  // The title operation alone.
  void applyTitle();

  void append(_STL::wstring const& text);
  void appendValueSeparator();
  void appendRangeSeparator();

  // The translator's words for a list without values, if it has any.
  void appendEmptyContainer();

  // The text of a value: through the specialised interface, else its low half through translateI32.
  _STL::wstring translateI64(i64 const& value);

  // What the translator implements besides, or null. That it cannot be asked is no failure.
  iReportableTranslatorForI64 const* findTranslatorForI64() const;
  iReportableTranslatorTimeAbsolute const* findTranslatorForTimes() const;

  // Records a failure of the reportable under its source.
  void fail(i32 code);

 private:
  template <class T>
  T const* findTranslator() const;

  iReportableTranslator const& translator;
  _STL::wstring& output;
  tStatus2& status;
  tReportableSource source;
  bool hasBegun = false;
  bool knowsI64 = false;
  iReportableTranslatorForI64 const* i64Translator = nullptr;
};

}  // namespace nOXDIAG100
