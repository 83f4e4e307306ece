#pragma once

#include <string>

#include "oxdiagk/tTraceFilter.h"
#include "oxdiagview/iRecordSink.h"

namespace oxdiagview {

// Hands on the records that a filter of the library shows. A field that a line does not have counts
// as empty or 0. A record without prefix goes the way of the one before it.
class tFilteredSink : public iRecordSink {
 public:
  // `next` outlives the sink.
  tFilteredSink(std::string const& expression, iRecordSink& next);

  void take(tRecord const& record) override;
  void finish() override { next.finish(); }

 private:
  bool isShown(tRecord const& record);

  iRecordSink& next;
  nOXDIAG100::tTraceFilter filter;
  bool wasShown = true;
  std::string component;  // with their ends marked, as the filter takes them
  std::string version;
  std::string file;
};

}  // namespace oxdiagview
