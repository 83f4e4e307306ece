#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Prints an object of JSON for each record, with the field names of OpenTelemetry's log data model:
// SeverityText, SeverityNumber, Body, Attributes, InstrumentationScope. There is no Timestamp,
// since a counter is no time of day; the attributes have the nanoseconds since the first line.
class tJsonLines : public iRecordSink {
 public:
  // `output` outlives the object.
  explicit tJsonLines(tOutput& output) : output(output) {}

  void take(tRecord const& record) override;
  void finish() override { output.flush(); }

 private:
  void putSeverity(tRecord const& record);
  void putScope(tRecord const& record);
  void putAttributes(tRecord const& record);
  void putPlace(tRecord const& record);
  void putTimes(tRecord const& record);
  void putKind(tRecord const& record);

  // `name` with the punctuation around it.
  void putText(std::string_view name, std::string_view text);
  template <class tNumber>
  void putNumber(std::string_view name, tNumber number);

  // A number that is a string, since it may have more digits than a reader's numbers.
  void putDigits(std::string_view name, uint64_t number);

  tOutput& output;
  std::optional<uint64_t> firstTime;
  std::string json;  // of the record
};

}  // namespace oxdiagview
