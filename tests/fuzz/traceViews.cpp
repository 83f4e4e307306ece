// What the viewer makes of traces that nobody wrote: the first line is a filter, the rest the
// trace. Whatever they are, JSON is JSON, a page has no markup of the trace's, and nothing steers a
// terminal.

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>

#include "options/utf8Text.h"
#include "oxdiagview/page/pageParts.h"
#include "oxdiagview/page/tPageFormat.h"
#include "oxdiagview/tFilteredSink.h"
#include "oxdiagview/tJsonLines.h"
#include "oxdiagview/tPerfetto.h"
#include "oxdiagview/tSummary.h"
#include "oxdiagview/tTextView.h"
#include "oxdiagview/tTraceReader.h"
#include "support/fuzzing.h"
#include "support/steering.h"

namespace {

using namespace oxdiagview;

constexpr uint64_t kTicksPerSecond = 2'000'000'000;
constexpr uint64_t kStart = 1'795'000'000'000'000'000;  // in nanoseconds since 1970
constexpr uint64_t kMostLines = 5;                      // of a page that leaves lines out

// A file in memory.
class tMemoryFile {
 public:
  tMemoryFile() : file(open_memstream(&bytes, &size)) {
    if (file == nullptr) fail("there is a file in memory", "none");
  }
  ~tMemoryFile() {
    std::fclose(file);
    std::free(bytes);
  }
  tMemoryFile(tMemoryFile const&) = delete;
  tMemoryFile& operator=(tMemoryFile const&) = delete;

  std::FILE* get() const { return file; }

  std::string text() const {
    std::fflush(file);
    return std::string(bytes, size);
  }

 private:
  char* bytes = nullptr;
  size_t size = 0;
  std::FILE* file;
};

class tCountingSink : public iRecordSink {
 public:
  explicit tCountingSink(iRecordSink& next) : next(next) {}
  void take(tRecord const& record) override {
    ++count;
    next.take(record);
  }
  void finish() override { next.finish(); }

  size_t count = 0;

 private:
  iRecordSink& next;
};

// One input, shown in one way after the other.
class tShown {
 public:
  explicit tShown(std::string const& input) {
    size_t const end = std::min(input.find('\n'), input.size());
    filter = input.substr(0, end);
    trace = input.substr(std::min(end + 1, input.size()));
  }

  // What `tView` writes that is made with an output and these arguments.
  template <class tView, class... tArguments>
  std::string by(tArguments const&... arguments) {
    tMemoryFile file;
    tOutput output(file.get());
    tView view(output, arguments...);
    tCountingSink counting(view);
    show(counting);
    output.flush();
    records = counting.count;
    demand(output.isGood(), "a file in memory takes everything", [] { return "it does not"; });
    return file.text();
  }

  size_t records = 0;  // of the last view

 private:
  void show(iRecordSink& view) const {
    tFilteredSink filtered(filter, view);
    tTraceReader reader(filter.empty() ? view : static_cast<iRecordSink&>(filtered),
                        kTicksPerSecond);
    reader.feed(trace);
    reader.finish();
  }

  std::string filter;
  std::string trace;
};

void demandJson(std::string const& text, char const* what) {
  demand(nlohmann::json::accept(text), what, [&] { return readable(text); });
}

void demandLines(tShown& shown, std::string const& lines) {
  size_t count = 0;
  for (size_t begin = 0; begin < lines.size(); ++count) {
    size_t const end = lines.find('\n', begin);
    demand(end != lines.npos, "the last line of JSON has an end", [&] { return readable(lines); });
    demandJson(lines.substr(begin, end - begin), "a line is JSON");
    begin = end + 1;
  }
  demand(count == shown.records, "a record is a line",
         [&] { return std::to_string(count) + " of " + std::to_string(shown.records); });
  demandNoSteering(lines);
}

size_t sizeOf(std::vector<std::string_view> const& pieces) {
  size_t size = 0;
  for (std::string_view const piece : pieces) size += piece.size();
  return size;
}

void demandPage(std::string const& page) {
  size_t const before = sizeOf(getPageBeforeTrace());
  size_t const behind = sizeOf(getPageBehindTrace());
  demand(page.size() > before + behind, "a page is whole", [&] { return readable(page); });
  std::string const object = page.substr(before, page.size() - before - behind);
  demandJson(object, "the trace of a page is JSON");
  demand(object.find('<') == object.npos, "a trace is no markup", [&] { return readable(object); });
}

}  // namespace

void fuzzInput(std::string const& input) {
  tShown shown(input);
  demandNoSteering(shown.by<tTextView>(false));
  shown.by<tTextView>(true);
  demandNoSteering(shown.by<tSummary>(std::string("by a counter")));
  demandLines(shown,
              shown.by<tJsonLines>(input.size() % 2 == 0 ? std::optional(kStart) : std::nullopt));
  std::string const events = shown.by<tPerfetto>();
  demandJson(events, "the events are JSON");
  demandNoSteering(events);
  demandPage(shown.by<tPageFormat>(std::string("title"), kMostLines));
}
