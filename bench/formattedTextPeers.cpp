// The texts of formattedText.cpp by other formatters: fmt into a buffer, and spdlog to a sink that
// does nothing. Of spdlog's price a clock reading is part, for each message has its time.
//
// These libraries need exceptions and type information, so nothing of ours is included.

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/ostream_sink.h>

#include <memory>
#include <sstream>
#include <string>

#include "replies.h"

namespace {

constexpr size_t kTextSize = 1024;

void formatReply(char* text, tReply const& reply) {
  *fmt::format_to_n(text, kTextSize - 1, kReplyBraces, reply.slot, reply.device, reply.duration,
                    reply.control)
       .out = '\0';
}

void formatNumbers(char* text, tReply const& reply) {
  *fmt::format_to_n(text, kTextSize - 1, kNumbersBraces, reply.slot, reply.duration, reply.control,
                    reply.control)
       .out = '\0';
}

void logReply(spdlog::logger& logger, tReply const& reply) {
  logger.info(kReplyBraces, reply.slot, reply.device, reply.duration, reply.control);
}

void logNumbers(spdlog::logger& logger, tReply const& reply) {
  logger.info(kNumbersBraces, reply.slot, reply.duration, reply.control, reply.control);
}

template <class tFormat>
void runFmt(benchmark::State& state, tFormat format, std::string const& knownText) {
  char text[kTextSize];
  format(text, kKnownReply);
  if (text != knownText) return state.SkipWithError("another text");

  tReplies replies;
  for ([[maybe_unused]] auto run : state) {
    format(text, replies.next());
    benchmark::DoNotOptimize(text);
    benchmark::ClobberMemory();
  }
}

// What the logger writes when somebody listens.
template <class tLog>
std::string getLoggedText(tLog log) {
  std::ostringstream stream;
  auto const sink = std::make_shared<spdlog::sinks::ostream_sink_st>(stream);
  spdlog::logger logger("checked", sink);
  logger.set_formatter(std::make_unique<spdlog::pattern_formatter>(
      "%v", spdlog::pattern_time_type::local, std::string()));
  log(logger, kKnownReply);
  return stream.str();
}

template <class tLog>
void runSpdlog(benchmark::State& state, tLog log, std::string const& knownText) {
  if (getLoggedText(log) != knownText) return state.SkipWithError("another text");

  spdlog::logger logger("timed", std::make_shared<spdlog::sinks::null_sink_st>());
  tReplies replies;
  for ([[maybe_unused]] auto run : state) {
    log(logger, replies.next());
    benchmark::ClobberMemory();
  }
}

BENCHMARK_CAPTURE(runFmt, reply, formatReply, kKnownReplyText)->Name("formatted line/fmt");
BENCHMARK_CAPTURE(runSpdlog, reply, logReply, kKnownReplyText)->Name("formatted line/spdlog");
BENCHMARK_CAPTURE(runFmt, numbers, formatNumbers, kKnownNumbersText)->Name("formatted numbers/fmt");
BENCHMARK_CAPTURE(runSpdlog, numbers, logNumbers, kKnownNumbersText)
    ->Name("formatted numbers/spdlog");

}  // namespace
