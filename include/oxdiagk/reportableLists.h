#pragma once

// What reportables with an ordered list of values share: taking the list over, the stream, the
// report.

#include "ntos/types.h"
#include "oxdiagk/reportableClass.h"
#include "oxdiagk/tReportText.h"
#include "oxdiagk/tReportableValue.h"
#include "stl/memory.h"
#include "stl/utility.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// Makes `list` a copy of `count` values. Does nothing when `status` holds an error; a list that
// cannot be allocated leaves it as it was and records kStatusOutOfMemory.
template <class T>
void copyReportableList(_STL::vector<T>& list, T const* values, size_t count, tStatus2& status,
                        tReportableSource const& source) {
  if (holdsError(status)) return;
  if (!list.assign(values, count)) recordReportableFailure(status, kStatusOutOfMemory, source);
}

// The count as unsigned 32-bit value, then each value.
template <class T>
void writeReportableList(nQELM100::iObjectWriter& writer, _STL::vector<T> const& list,
                         i32& status) {
  if (status < 0) return;
  writer.writeU32(static_cast<u32>(list.size()), status);
  for (T const& value : list) {
    if (status < 0) return;
    tReportableValue<T>::write(writer, value, status);
  }
}

// Replaces the list by what was written; a failure leaves it as it was. A count of more values than
// can follow is kStatusOutOfMemory; where the stream cannot tell, the list grows with what is read,
// so that a count that is not true costs no memory either.
template <class T>
void readReportableList(nQELM100::iObjectReader& reader, _STL::vector<T>& list, i32& status) {
  u32 count = 0;
  if (status >= 0) reader.readU32(count, status);
  if (status >= 0 && count > reader.getMostItems()) status = kStatusOutOfMemory;
  _STL::vector<T> fresh;
  for (u32 index = 0; index < count && status >= 0; ++index) {
    T value{};
    tReportableValue<T>::read(reader, value, status);
    if (status >= 0 && !fresh.push_back(_STL::move(value))) status = kStatusOutOfMemory;
  }
  if (status >= 0) list.swap(fresh);
}

// What becomes of values whose text is empty.
enum class tEmptyTexts : u32 {
  kKept,     // they take their place between the separators
  kLeftOut,  // neither text nor separator, and no prefix as long as there was no text
};

// Renders a list: the list prefix, the title, then the values, the text of each made by
// `textOf(value)`, with a value separator behind each but the last of the list; or the words for a
// list without values.
template <class T, class tTextOf>
void renderReportableList(tReportText& report, _STL::vector<T> const& list, tEmptyTexts emptyTexts,
                          tTextOf textOf) {
  bool const leavesOut = emptyTexts == tEmptyTexts::kLeftOut && !list.empty();
  if (!leavesOut) report.begin();
  for (size_t index = 0; index < list.size() && report.isGoing(); ++index) {
    _STL::wstring const text = textOf(list[index]);
    if (leavesOut && text.empty() && !text.hasFailed()) continue;
    report.begin();
    report.append(text);
    if (index + 1 < list.size()) report.appendValueSeparator();
  }
  if (list.empty()) report.appendEmptyContainer();
}

}  // namespace nOXDIAG100
