// A report of ten items by fmt, into memory that it keeps: the text of "render 10 items".

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <iterator>
#include <string_view>

namespace {

constexpr int kItems = 10;
constexpr std::string_view kBegin = "item 0: 17; item 1: 17; ";

void render(benchmark::State& state) {
  fmt::memory_buffer text;
  unsigned value = 17;
  for ([[maybe_unused]] auto run : state) {
    text.clear();
    benchmark::DoNotOptimize(value);
    for (int index = 0; index < kItems; ++index) {
      fmt::format_to(std::back_inserter(text), "item {}: {}; ", index, value);
    }
    benchmark::DoNotOptimize(text);
  }
  if (std::string_view(text.data(), kBegin.size()) != kBegin) state.SkipWithError("another text");
}

BENCHMARK(render)->Name("render 10 items/fmt");

}  // namespace
