#include "oxdiagview/tFilteredSink.h"

namespace oxdiagview {

using nOXDIAG100::tTraceFilter;

tFilteredSink::tFilteredSink(std::string const& expression, iRecordSink& next) : next(next) {
  filter.removeAll();
  filter.parseExpression(expression.c_str());
}

void tFilteredSink::take(tRecord const& record) {
  if (record.hasPrefix) wasShown = isShown(record);
  if (wasShown) next.take(record);
}

bool tFilteredSink::isShown(tRecord const& record) {
  component = record.component;
  version = record.version;
  file = record.file;
  return filter.evaluate(component.c_str(), version.c_str(), record.sourceLine.value_or(0),
                         file.c_str(), record.thread.value_or(0), record.verbosity.value_or(0));
}

}  // namespace oxdiagview
