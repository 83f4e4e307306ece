#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Prints an object of JSON for each record, with the field names of OpenTelemetry's log data model:
// Timestamp, SeverityText, SeverityNumber, Body, Attributes, InstrumentationScope. A counter is no
// time of day, so there is a Timestamp only if somebody says when the trace began; the attributes
// have the nanoseconds since the first line that is printed.
class tJsonLines : public iRecordSink {
 public:
  // `output` outlives the object. `start` is the time of the first line of the trace that has one,
  // in nanoseconds since 1970.
  explicit tJsonLines(tOutput& output, std::optional<uint64_t> start = std::nullopt)
      : output(output), start(start) {}

  void take(tRecord const& record) override;
  void finish() override { output.flush(); }

 private:
  void putTimestamp(tRecord const& record);
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
  std::optional<uint64_t> const start;
  std::optional<uint64_t> firstTime;
  std::string json;  // of the record
};

}  // namespace oxdiagview
