#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tTraceReader.h"

// Prints a trace as it arrives, in the colors of oxdiag-view: nothing of its text is changed. One
// thread at a time.
class tColoredPrint final : public oxdiagview::iRecordSink {
 public:
  // `file` outlives the object.
  explicit tColoredPrint(std::FILE* file);

  // Prints what is still unfinished.
  ~tColoredPrint() override;

  tColoredPrint(tColoredPrint const&) = delete;
  tColoredPrint& operator=(tColoredPrint const&) = delete;

  // Prints the lines that are whole now; the rest waits for its end.
  void put(std::string_view text);

  void take(oxdiagview::tRecord const& record) override;

 private:
  void printLine(std::string_view line);
  void appendColored(std::string_view color, std::string_view text);
  void print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), output); }

  std::FILE* const output;
  oxdiagview::tTraceReader reader;
  std::string rest;     // of a line that has not ended
  std::string raw;      // what the reader has found in the line
  std::string colored;  // and that in colors
};

// Whether the trace on standard output is to have colors, when the user leaves that to the program:
// on a terminal, unless NO_COLOR is set to something.
bool wantsColors();
