// Formats of putf with arguments that match them: the formatter against a model in buffers of any
// size, against the C library where both must agree, and in a stream. A line of the input each:
//
//     f TEXT    appends to the format           b NUMBER   the size of the buffer
//     n NUMBER, m NUMBER   a number to be taken, as it is and negative
//     s TEXT    a text to be taken              0          every other text is null

#include <cstdio>
#include <cstring>

#include "oxdiagk/tTrace.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"
#include "support/tFormatModel.h"
#include "support/tScript.h"
#include "support/tWatchedStream.h"
#include "trace/tTraceFormatter.h"

namespace {

using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceFormatter;

constexpr unsigned kMostSize = 1100;
constexpr size_t kMostArguments = 12;  // in the stream, where they are written out
constexpr char kTooLong[] = "!!!Formatted string exceeds kMaxTraceLine characters!!!!";

struct tCase {
  std::string format;
  tFormatValues values;
  size_t size = tTrace::kMaxTraceLine;
};

tCase decode(std::string const& input) {
  tCase result;
  for (tScript script(input); script.next();) {
    switch (script.operation("fnmsb0")) {
      case 'f':
        result.format += upToNul(script.text());
        break;
      case 'n':
        result.values.numbers.push_back(script.number());
        break;
      case 'm':
        result.values.numbers.push_back(0 - u64{script.number()});
        break;
      case 's':
        result.values.texts.push_back(upToNul(script.text()));
        break;
      case 'b':
        result.size = script.number() % kMostSize;
        break;
      default:
        result.values.hasNull = true;
        break;
    }
  }
  return result;
}

// In a block of just its size.
void formatIntoBuffer(tCase const& input, tFormatModel const& model, size_t size) {
  tExactText format(input.format);
  tExactText buffer(std::string(size, '#'), false);
  i32 const length = model.withArguments([&](va_list list) {
    return tTraceFormatter::format(buffer.get(), static_cast<u32>(size), format.get(), list);
  });
  size_t const used = std::min<size_t>(size, tTrace::kMaxTraceLine);
  bool const fits = model.text().size() < used;
  i32 const wanted = fits ? static_cast<i32>(model.text().size()) : -1;
  demand(length == wanted, "the length is that of the text, or -1 when it does not fit",
         [&] { return std::to_string(length) + " for " + readable(input.format); });
  if (size == 0) return;
  std::string const kept = model.text().substr(0, used - 1);
  demandEqual(std::string(buffer.get(), kept.size() + 1), kept + '\0',
              "the text is that of the model");
}

void compareWithLibrary(tCase const& input, tFormatModel const& model) {
  char buffer[tTrace::kMaxTraceLine];
  int const length = model.withArguments([&](va_list list) {
    return std::vsnprintf(buffer, sizeof(buffer), input.format.c_str(), list);
  });
  demandEqual(buffer, upToNul(model.text().substr(0, sizeof(buffer) - 1)),
              "the C library formats the same");
  demand(length >= 0, "the C library formats", [&] { return readable(input.format); });
}

template <size_t... indices>
void putf(tTrace& trace, char const* format, u64 const* slots, std::index_sequence<indices...>) {
  trace.putf(format, slots[indices]...);
}

// Text behind a NUL, which only wide text brings, is not put.
void formatIntoStream(tCase const& input, tFormatModel const& model) {
  u64 slots[kMostArguments] = {};
  for (size_t index = 0; index < model.argumentCount(); ++index) {
    slots[index] = model.argument(index);
  }
  bool const isCut = model.text().size() >= tTrace::kMaxTraceLine;
  std::string const text = upToNul(model.text().substr(0, tTrace::kMaxTraceLine - 1));
  tWatchedStream stream;
  stream.demandPut((isCut ? kTooLong : "") + text, [&](tTrace& trace) {
    putf(trace, input.format.c_str(), slots, std::make_index_sequence<kMostArguments>());
  });
}

}  // namespace

// The sanitizer's look at the C library's arguments wants a terminator behind a text that a
// precision ends, where none needs to be.
extern "C" char const* __asan_default_options() {
  return "check_printf=0";
}

void fuzzInput(std::string const& input) {
  tCase const decoded = decode(input);
  tFormatModel const model(decoded.format, decoded.values);
  formatIntoBuffer(decoded, model, decoded.size);
  formatIntoBuffer(decoded, model, tTrace::kMaxTraceLine);
  size_t const fitting = std::min<size_t>(model.text().size() + 1, kMostSize);
  formatIntoBuffer(decoded, model, fitting - 1);
  formatIntoBuffer(decoded, model, fitting);
  if (model.isCommon()) compareWithLibrary(decoded, model);
  if (model.argumentCount() <= kMostArguments) formatIntoStream(decoded, model);
}
