// The lines of traceLines.cpp by spdlog: a prefix of component, line and file, a text with a
// number, formatted into memory by a sink that then drops it. Of its price a clock reading is part,
// for each message has its time.
//
// This library needs exceptions and type information, so nothing of ours is included.

#include <benchmark/benchmark.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

namespace {

constexpr char kPattern[] = "[%n--%#--%s--------------------] %v";
constexpr char kKnownLine[] =
    "[slotbus--118--tRackReader.cpp--------------------] slot 17 answered\n";

// Counts the lines and keeps the last one.
template <class tMutex>
class tDroppingSink : public spdlog::sinks::base_sink<tMutex> {
 public:
  long getLines() const { return lines; }
  std::string getLast() const { return std::string(last.data(), last.size()); }

 protected:
  void sink_it_(spdlog::details::log_msg const& message) override {
    last.clear();
    this->formatter_->format(message, last);
    ++lines;
  }
  void flush_() override {}

 private:
  spdlog::memory_buf_t last;
  long lines = 0;
};

template <class tMutex>
void runLines(benchmark::State& state) {
  auto const sink = std::make_shared<tDroppingSink<tMutex>>();
  spdlog::logger logger("slotbus", sink);
  logger.set_formatter(std::make_unique<spdlog::pattern_formatter>(kPattern));
  spdlog::source_loc const place("examples/slotbus/component/tRackReader.cpp", 118, "readSlots");
  unsigned slot = 17;
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(slot);
    logger.log(place, spdlog::level::info, "slot {} answered", slot);
    benchmark::ClobberMemory();
  }
  if (sink->getLast() != kKnownLine) state.SkipWithError("another text");
  if (sink->getLines() != state.iterations()) state.SkipWithError("lines went astray");
}

BENCHMARK(runLines<spdlog::details::null_mutex>)->Name("macro, shown/spdlog");
BENCHMARK(runLines<spdlog::details::null_mutex>)->Name("six calls, shown/spdlog");
BENCHMARK(runLines<std::mutex>)->Name("macro, line mutex/spdlog");

}  // namespace
