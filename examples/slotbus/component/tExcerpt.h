#pragma once

#include "oxdiagk/iTraceable.h"
#include "slotbus/component/tTextSpan.h"
#include "stl/string.h"

namespace nSLOTBUS100 {

// Shows a piece of a text that may hold anything: in double quotes, at most kMaxLength characters
// of it, and a point for what cannot be printed. What is cut off is shown by "..." behind the
// closing quote.
//
//     trace.putPrefix(...).put(tExcerpt(field)).endl();
//
// The text must outlive the object. Any IRQL.
class tExcerpt : public nOXDIAG100::iTraceable {
 public:
  static constexpr size_t kMaxLength = 100;

  explicit tExcerpt(tTextSpan shown) : text(shown) {}

  void put(nOXDIAG100::tTrace& trace) const override;

  // The same as wide text, without the quotes; "..." behind it tells of what is cut off. hasFailed
  // of the result tells that there was no memory for it. IRQL <= DISPATCH_LEVEL.
  _STL::wstring getWide() const;

 private:
  char getShown(size_t index) const;

  tTextSpan text;
};

}  // namespace nSLOTBUS100
