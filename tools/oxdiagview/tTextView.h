#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Prints records for a person: what the trace tells of a line in columns, and its text, indented by
// the blocks around it. Times count from the first line. A column is there for lines that have it.
class tTextView : public iRecordSink {
 public:
  // `output` outlives the view.
  tTextView(tOutput& output, bool isColored) : output(output), isColored(isColored) {}

  void take(tRecord const& record) override;
  void finish() override { output.flush(); }

 private:
  void putColumns(tRecord const& record);
  void putTimes(tRecord const& record);
  void putPlace(tRecord const& record);
  void padPlace(size_t begin);
  void putText(tRecord const& record);
  void putRight(std::string_view text, size_t width);
  void putColor(std::string_view color);

  tOutput& output;
  bool const isColored;
  std::optional<uint64_t> firstTime;
  std::optional<uint64_t> lastTime;
  std::string columns;     // of the line
  std::string shown;       // its text without what a terminal would obey
  size_t placeWidth = 20;  // of component, file and line; grows to a limit
  size_t textColumn = 0;   // where the text of the last line with a prefix began
};

}  // namespace oxdiagview
