// Shows a trace.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "oxdiagview/exitCodes.h"
#include "oxdiagview/standardStreams.h"
#include "oxdiagview/tByteSource.h"
#include "oxdiagview/tOutput.h"
#include "oxdiagview/tTextView.h"
#include "oxdiagview/tTraceReader.h"
#include "oxdiagview/tickRate.h"
#include "oxdiagview/viewOptions.h"

namespace oxdiagview {
namespace {

constexpr useconds_t kFollowPause = 100'000;  // microseconds between two looks at a file

int complain(std::string const& sentence, int exitCode) {
  std::fprintf(stderr, "oxdiag-view: %s.\n", sentence.c_str());
  return exitCode;
}

bool isColored(tColorChoice choice) {
  bool const isTerminal = prepareColors();
  if (choice != tColorChoice::kAuto) return choice == tColorChoice::kAlways;
  char const* const refusal = std::getenv("NO_COLOR");
  return isTerminal && (refusal == nullptr || *refusal == '\0');
}

// What is there goes to the output before the next look at the file.
void follow(tByteSource& source, tTraceReader& reader, tOutput& output) {
  while (output.isGood()) {
    std::string_view const bytes = source.read();
    if (!bytes.empty()) {
      reader.feed(bytes);
      continue;
    }
    reader.flush();
    output.flush();
    if (source.wasReplaced()) {
      reader.restart();
      source.reopen();
    } else {
      usleep(kFollowPause);
    }
  }
}

void readAll(tByteSource& source, tTraceReader& reader, tOutput& output) {
  for (std::string_view bytes = source.read(); !bytes.empty() && output.isGood();
       bytes = source.read()) {
    reader.feed(bytes);
  }
}

int show(tViewOptions const& options) {
  tByteSource source(options.file);
  if (source.hasFailed()) return complain(source.getProblem(), kExitNoFile);
  tOutput output(stdout);
  tTextView view(output, isColored(options.color));
  tTraceReader reader(view, options.ticksPerSecond.value_or(measureTickRate()));
  if (options.follows && options.file != "-") {
    follow(source, reader, output);
  } else {
    readAll(source, reader, output);
  }
  reader.finish();
  output.flush();
  if (!output.isGood()) return complain("cannot write to standard output", kExitNoOutput);
  return source.hasFailed() ? complain(source.getProblem(), kExitNoFile) : int{kExitGood};
}

}  // namespace
}  // namespace oxdiagview

int main(int argc, char** argv) {
  int exitCode = oxdiagview::kExitGood;
  oxdiagview::prepareStandardStreams();
  auto const options = oxdiagview::readOptions(argc, argv, exitCode);
  return options ? oxdiagview::show(*options) : exitCode;
}
