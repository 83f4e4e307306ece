#pragma once

#include "oxdiagk/iTraceable.h"
#include "slotbus/component/tTextSpan.h"

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

 private:
  tTextSpan text;
};

}  // namespace nSLOTBUS100
