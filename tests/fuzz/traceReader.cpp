// Texts for the reader of traces: whatever they are, each line becomes records, the portions in
// which the bytes arrive change nothing, and what a record shows lies in its line.

#include <vector>

#include "oxdiagview/tTraceReader.h"
#include "support/fuzzing.h"

namespace {

using oxdiagview::tRecord;
using oxdiagview::tTraceReader;

constexpr uint64_t kTicksPerSecond = 2'000'000'000;

// What a record says, as a text that outlives it.
class tTelling : public oxdiagview::iRecordSink {
 public:
  void take(tRecord const& record) override {
    demandWithin(record);
    tell(record.number);
    tell(static_cast<uint64_t>(record.kind));
    tell(record.depth);
    tell(record.sourceLine.value_or(0));
    tell(record.thread.value_or(0));
    tell(record.stamp.value_or(0));
    tell(static_cast<uint64_t>(record.delta.value_or(0)));
    tell(record.verbosity.value_or(0));
    tell(record.time.value_or(0));
    for (std::string_view const part : partsOf(record)) told.append(part) += '|';
    told += record.category;
    told += '\n';
    last = record.number;
  }

  std::string told;
  uint64_t last = 0;

 private:
  void tell(uint64_t number) { told += std::to_string(number) + " "; }

  static std::vector<std::string_view> partsOf(tRecord const& record) {
    return {record.raw,  record.component, record.version, record.file,
            record.text, record.function,  record.object,  record.message};
  }

  static void demandWithin(tRecord const& record) {
    char const* const begin = record.raw.data();
    char const* const end = begin + record.raw.size();
    for (std::string_view const part : partsOf(record)) {
      bool const isWithin =
          part.empty() || (part.data() >= begin && part.data() + part.size() <= end);
      demand(isWithin, "what a record shows lies in its line", [&] { return std::string(part); });
    }
  }
};

tTelling readInPortions(std::string const& input, size_t portion) {
  tTelling sink;
  tTraceReader reader(sink, kTicksPerSecond);
  for (size_t place = 0; place < input.size(); place += portion) {
    reader.feed(std::string_view(input).substr(place, portion));
  }
  reader.finish();
  return sink;
}

}  // namespace

void fuzzInput(std::string const& input) {
  tTelling const whole = readInPortions(input, input.size() + 1);
  demandEqual(readInPortions(input, 7).told, whole.told, "portions change nothing");
  size_t ends = 0;
  for (char const character : input) ends += character == '\n' ? 1 : 0;
  bool const areAll = whole.last == ends || whole.last == ends + 1;
  demand(areAll, "every line is counted", [&] { return std::to_string(whole.last); });
}
