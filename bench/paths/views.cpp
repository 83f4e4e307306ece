// A trace that oxdiag-view reads and shows. The five lines have 408 bytes: 100 MB of them at 20,000
// instructions each time are 4,900 million instructions, about a second.

#include <cstdio>
#include <string>

#include "measure.h"
#include "oxdiagview/tJsonLines.h"
#include "oxdiagview/tOutput.h"
#include "oxdiagview/tPerfetto.h"
#include "oxdiagview/tSummary.h"
#include "oxdiagview/tTextView.h"
#include "oxdiagview/tTraceReader.h"

using oxdiagview::iRecordSink;
using oxdiagview::tOutput;

namespace {

// A block with a line in it and a status, every field in the prefix.
constexpr char kLines[] =
    "[slotbus--33--tRackBus.cpp--0x2D36--101378332591234--4518--60----------------------] "
    "  this=0x7FFC03A8; show; tStatus2 code=0 {\n"
    "[slotbus--119--tRackReader.cpp--0x2D36--101378332595892--4658--140-----------------] "
    "    line 32: the slot is not a number: \"1O\"\n"
    "tStatus2 Contents:\n"
    "\tError Code = -61007\n"
    "[slotbus--40--tRackBus.cpp--0x2D36--101378332608554--12662--60---------------------] "
    "  } tStatus2 code=0; show\n";
constexpr u32 kLineCount = 5;
constexpr u32 kLearned = 2'000;  // lines, behind which the reader knows the fields
constexpr u64 kRate = 2'000'000'000;

void measureView(char const* path, std::FILE* file, iRecordSink& sink) {
  oxdiagview::tTraceReader reader(sink, kRate);
  for (u32 line = 0; line < kLearned; line += kLineCount) reader.feed(kLines);
  reader.flush();
  long const before = std::ftell(file);
  measurePath(path, [&] { reader.feed(kLines); });
  reader.finish();
  demand(before >= 0 && std::ftell(file) > before, path);
}

}  // namespace

void measureViews() {
  std::FILE* const file = std::tmpfile();
  demand(file != nullptr, "the views");
  tOutput output(file);
  oxdiagview::tTextView text(output, false);
  measureView("five lines viewed as text", file, text);
  oxdiagview::tJsonLines lines(output);
  measureView("five lines viewed as JSON", file, lines);
  oxdiagview::tPerfetto events(output);
  measureView("five lines viewed as trace events", file, events);
  oxdiagview::tSummary summary(output, "");
  measureView("five lines summed up", file, summary);
  std::fclose(file);
}
