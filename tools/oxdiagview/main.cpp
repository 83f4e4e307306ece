// Shows a trace.

#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "options/utf8Text.h"
#include "oxdiagview/exitCodes.h"
#include "oxdiagview/page/tPageFormat.h"
#include "oxdiagview/standardStreams.h"
#include "oxdiagview/tByteSource.h"
#include "oxdiagview/tFilteredSink.h"
#include "oxdiagview/tJsonLines.h"
#include "oxdiagview/tOutput.h"
#include "oxdiagview/tPerfetto.h"
#include "oxdiagview/tRingFinder.h"
#include "oxdiagview/tScatteredRings.h"
#include "oxdiagview/tSummary.h"
#include "oxdiagview/tTextView.h"
#include "oxdiagview/tTraceReader.h"
#include "oxdiagview/tickRate.h"
#include "oxdiagview/viewOptions.h"
#include "system/fileNames.h"

namespace oxdiagview {
namespace {

constexpr useconds_t kFollowPause = 100'000;  // microseconds between two looks at a file

int complain(std::string const& sentence, int exitCode) {
  std::string shown;
  appendForTerminal(shown, sentence);
  std::fprintf(stderr, "oxdiag-view: %s.\n", shown.c_str());
  return exitCode;
}

bool isColored(tColorChoice choice) {
  bool const isTerminal = prepareColors();
  if (choice != tColorChoice::kAuto) return choice == tColorChoice::kAlways;
  char const* const refusal = std::getenv("NO_COLOR");
  return isTerminal && (refusal == nullptr || *refusal == '\0');
}

void readAll(tByteSource& source, tTraceReader& reader, tOutput& output) {
  for (std::string_view bytes = source.read(); !bytes.empty() && output.isGood();
       bytes = source.read()) {
    reader.feed(bytes);
  }
}

// What is there goes to the output before the next look at the file. A file that was replaced is
// read to its end once more: its writer may have come between the end and the look.
void follow(tByteSource& source, tTraceReader& reader, tOutput& output) {
  while (output.isGood() && !source.hasFailed()) {
    readAll(source, reader, output);
    reader.flush();
    output.flush();
    if (!source.wasReplaced()) {
      usleep(kFollowPause);
      continue;
    }
    readAll(source, reader, output);
    reader.restart();
    source.reopen();
  }
}

std::string rateText(tViewOptions const& options, uint64_t ticksPerSecond) {
  char text[64];
  std::snprintf(text, sizeof(text), "by a counter of %.4g GHz%s",
                static_cast<double>(ticksPerSecond) / 1e9,
                options.ticksPerSecond ? "" : ", as this computer has");
  return text;
}

std::string titleOf(tViewOptions const& options) {
  return options.file == "-" ? "standard input" : options.file;
}

std::unique_ptr<iRecordSink> makeView(tViewOptions const& options, uint64_t ticksPerSecond,
                                      tOutput& output) {
  if (options.wantsSummary) {
    return std::make_unique<tSummary>(output, rateText(options, ticksPerSecond));
  }
  if (options.wantsJsonLines) return std::make_unique<tJsonLines>(output, options.start);
  if (!options.perfettoFile.empty()) return std::make_unique<tPerfetto>(output);
  if (!options.htmlFile.empty()) return std::make_unique<tPageFormat>(output, titleOf(options));
  return std::make_unique<tTextView>(output, isColored(options.color));
}

using tRings = std::vector<tRingFinder::tRing>;

// From the beginning of the file again. A part of a page at the end is none.
template <class tTake>
void forEachPage(tByteSource& source, tTake const& take) {
  uint64_t place = 0;
  std::string rest;
  source.reopen();
  for (std::string_view bytes = source.read(); !bytes.empty(); bytes = source.read()) {
    rest += bytes;
    size_t used = 0;
    for (; rest.size() - used >= tScatteredRings::kPageSize; used += tScatteredRings::kPageSize) {
      take(place + used, std::string_view(rest).substr(used, tScatteredRings::kPageSize));
    }
    rest.erase(0, used);
    place += used;
  }
}

// What comes from a pipe cannot be looked at again.
tRings joinRings(tByteSource& source, tRings const& rings) {
  tScatteredRings scattered(rings);
  if (!scattered.mayBe() || !source.isFile()) return rings;
  forEachPage(source, [&](uint64_t, std::string_view page) { scattered.findTable(page); });
  if (!scattered.areKnown()) return rings;
  forEachPage(source,
              [&](uint64_t place, std::string_view page) { scattered.takePage(place, page); });
  return scattered.join();
}

tRings findRings(tByteSource& source) {
  tRingFinder finder;
  for (std::string_view bytes = source.read(); !bytes.empty(); bytes = source.read()) {
    finder.feed(bytes);
  }
  finder.finish();
  return joinRings(source, finder.getRings());
}

// The newest text of the recorders in a dump, one behind the other.
void readRings(tRings const& rings, tTraceReader& reader) {
  for (tRingFinder::tRing const& ring : rings) {
    std::fprintf(stderr,
                 "oxdiag-view: a recorder at byte %" PRIu64 ": %" PRIu64 " KiB, %" PRIu64
                 " bytes were written, %zu are here.\n",
                 ring.offset, ring.capacity / 1024, ring.written, ring.text.size());
    reader.feed(ring.text);
    if (!ring.text.ends_with('\n')) reader.feed("\n");
  }
}

int show(tViewOptions const& options, tByteSource& source, tRings const& rings, tOutput& output) {
  uint64_t const ticksPerSecond =
      options.ticksPerSecond ? *options.ticksPerSecond : measureTickRate();
  std::unique_ptr<iRecordSink> const view = makeView(options, ticksPerSecond, output);
  iRecordSink* sink = view.get();
  std::optional<tFilteredSink> filtered;
  if (!options.filter.empty()) sink = &filtered.emplace(options.filter, *sink);
  tTraceReader reader(*sink, ticksPerSecond);
  if (options.isDump) {
    readRings(rings, reader);
  } else if (options.follows && options.file != "-") {
    follow(source, reader, output);
  } else {
    readAll(source, reader, output);
  }
  reader.finish();
  output.flush();
  return source.hasFailed() ? complain(source.getProblem(), kExitNoFile) : int{kExitGood};
}

// The file that was asked for; nothing for standard output.
std::string outputFileOf(tViewOptions const& options) {
  std::string const& name = options.htmlFile.empty() ? options.perfettoFile : options.htmlFile;
  return name == "-" ? "" : name;
}

// Into the file that was asked for, or standard output. That stays as it is until there is
// something to show.
int run(tViewOptions const& options) {
  tByteSource source(options.file);
  if (source.hasFailed()) return complain(source.getProblem(), kExitNoFile);
  std::string const path = outputFileOf(options);
  std::string const name = path.empty() ? "standard output" : "'" + path + "'";
  if (source.isAlso(path)) return complain(name + " is the trace itself", kExitUsage);
  tRings const rings = options.isDump ? findRings(source) : tRings();
  if (options.isDump && rings.empty()) {
    return source.hasFailed() ? complain(source.getProblem(), kExitNoFile)
                              : complain("there is no recorder in the dump", kExitNoRing);
  }
  std::FILE* const file = path.empty() ? stdout : openForWriting(path);
  if (file == nullptr) return complain("cannot write to " + name, kExitNoOutput);
  tOutput output(file);
  int const exitCode = show(options, source, rings, output);
  bool const isClosed = path.empty() || std::fclose(file) == 0;
  return output.isGood() && isClosed ? exitCode
                                     : complain("cannot write to " + name, kExitNoOutput);
}

}  // namespace
}  // namespace oxdiagview

int main(int argc, char** argv) {
  int exitCode = oxdiagview::kExitGood;
  oxdiagview::prepareStandardStreams();
  auto const options = oxdiagview::readOptions(commandWords(argc, argv), exitCode);
  return options ? oxdiagview::run(*options) : exitCode;
}
