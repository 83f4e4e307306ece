#pragma once

// What reportables with an ordered list of values share: taking the list over, the stream, the
// report.
//
// The list belongs to the reportable, and nothing here locks it: one thread changes it, or several
// read it. Values come from long-lived memory. Reader, writer and report are the caller's and are
// not kept. IRQL as theirs, <= APC_LEVEL.

#include "compiler/compiler.h"
#include "compiler/types.h"
#include "oxdiagk/reportableClass.h"
#include "oxdiagk/tReportText.h"
#include "oxdiagk/tReportableValue.h"
#include "oxdiagk/tWideTextList.h"
#include "stl/memory.h"
#include "stl/single_vector.h"
#include "stl/utility.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// What a reportable keeps its values of type T in: most reportables have one value, and a small one
// then takes no block of its own.
template <class T>
struct tReportableListOf {
  static constexpr size_t kLargestInPlace = 16;
  static constexpr bool kIsSmall =
      nCompiler::kIsTriviallyCopyable<T> && sizeof(T) <= kLargestInPlace;
  template <bool isSmall, class tValue>
  struct tChoice {
    using type = _STL::vector<tValue>;
  };
  template <class tValue>
  struct tChoice<true, tValue> {
    using type = _STL::single_vector<tValue>;
  };
  using type = typename tChoice<kIsSmall, T>::type;
};
template <>
struct tReportableListOf<_STL::wstring> {
  using type = tWideTextList;
};
template <class T>
using tReportableList = typename tReportableListOf<T>::type;

// Makes `list` a copy of `count` values. Does nothing when `status` holds an error; a list that
// cannot be allocated leaves it as it was and records kStatusOutOfMemory.
template <class tList>
void copyReportableList(tList& list, typename tList::value_type const* values, size_t count,
                        tStatus2& status, tReportableSource const& source) {
  if (holdsError(status)) return;
  if (!list.assign(values, count)) recordReportableFailure(status, kStatusOutOfMemory, source);
}

// The count as unsigned 32-bit value, then each value.
template <class tList>
void writeReportableList(nQELM100::iObjectWriter& writer, tList const& list, i32& status) {
  if (status < 0) return;
  writer.writeU32(static_cast<u32>(list.size()), status);
  for (auto const& value : list) {
    if (status < 0) return;
    tReportableValue<typename tList::value_type>::write(writer, value, status);
  }
}

// Replaces the list by what was written; a failure leaves it as it was. A count of more values than
// can follow is kStatusOutOfMemory. The list grows with what is read, so a count that is not true
// costs no memory, whatever the reader knows of its stream.
template <class tList>
void readReportableList(nQELM100::iObjectReader& reader, tList& list, i32& status) {
  u32 count = 0;
  if (status >= 0) reader.readU32(count, status);
  if (status >= 0 && count > reader.getMostItems()) status = kStatusOutOfMemory;
  tList fresh;
  for (u32 index = 0; index < count && status >= 0; ++index) {
    typename tList::value_type value{};
    tReportableValue<typename tList::value_type>::read(reader, value, status);
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
template <class tList, class tTextOf>
void renderReportableList(tReportText& report, tList const& list, tEmptyTexts emptyTexts,
                          tTextOf textOf) {
  bool const leavesOut = emptyTexts == tEmptyTexts::kLeftOut && !list.empty();
  if (!leavesOut) report.begin();
  size_t left = list.size();
  for (auto const& value : list) {
    if (!report.isGoing()) return;
    --left;
    _STL::wstring const text = textOf(value);
    if (leavesOut && text.empty() && !text.hasFailed()) continue;
    report.begin();
    report.append(text);
    if (left != 0) report.appendValueSeparator();
  }
  if (list.empty()) report.appendEmptyContainer();
}

}  // namespace nOXDIAG100
