#pragma once

#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tTraceSite.h"

namespace nOXDIAG100 {

// Opens one line of a stream: takes the line lock, judges the line, writes the prefix, and keeps
// nesting and times. A line that is not shown costs its filter and no formatting. Allocates
// nothing.
class tLineOpening {
 public:
  // `origin`: with texts that may be null.
  tLineOpening(tTraceParts& parts, tLineOrigin const& origin, u32 verbosity,
               tTrace::tTraceType type)
      : parts(parts),
        origin{orEmpty(origin.component), orEmpty(origin.file), origin.version, origin.line},
        verbosity(verbosity),
        type(type),
        shape(parts.getShape()) {}

  // Opens the line for its author, who puts text and ends it, shown or not. Reads the counter.
  void open();

  // Opens the line if it is shown, and else does all that there is to such a line, its end
  // included. `site`: whose prefix is copied where the stream's shape allows it; null for none.
  // Reads the counter only for a line that shows a time.
  bool openIfShown(tTraceSite const* site);

  // The same of a line that the rule of a limit may leave out. `leftOut`: as of tLineLimit::admit.
  bool openIfAdmitted(tTraceSite const* site, tLineLimit& limit, tLineLimit::tRule rule, u32 n,
                      u32& leftOut);

 private:
  void begin();
  bool openOrEnd(tTraceSite const* site, bool isShown);
  void readTime();
  void lock();
  bool isPassed() const;
  u64 takeTimeDelta(bool isShown);
  static char const* orEmpty(char const* text) { return text == nullptr ? "" : text; }

  void show(tTraceSite const* site);
  void hide();
  bool isCopied(tTraceSite const* site) const;
  void indent();
  void enterBlock();
  void leaveBlock();

  tTraceParts& parts;
  tLineOrigin const origin;
  u32 const verbosity;
  tTrace::tTraceType const type;
  tLineShape shape;
  u64 startTime = 0;
};

}  // namespace nOXDIAG100
