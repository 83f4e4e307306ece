// The work of statuses.cpp and descriptions.cpp by absl::Status: a status with a payload for each
// item. Its copies share their content, so what the library does by cloning is done here by a copy
// that then changes one payload. It keeps neither origin nor call stack.
//
// That library needs exceptions and type information, so nothing of ours is included.

#include <absl/status/status.h>
#include <absl/strings/cord.h>
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

// The names under which the payloads are kept, made beforehand: ours are numbers.
std::vector<std::string> namesOf(unsigned count) {
  std::vector<std::string> names;
  for (unsigned index = 0; index < count; ++index) names.push_back("item " + std::to_string(index));
  return names;
}

absl::Status makeStatus(std::vector<std::string> const& names) {
  absl::Status status(absl::StatusCode::kOutOfRange, "slot out of range");
  for (std::string const& name : names) status.SetPayload(name, absl::Cord("17"));
  return status;
}

void describe(benchmark::State& state, unsigned count) {
  std::vector<std::string> const names = namesOf(count);
  for ([[maybe_unused]] auto run : state) {
    absl::Status const made = makeStatus(names);
    absl::Status kept = made;
    kept.SetPayload(names.front(), absl::Cord("18"));
    benchmark::DoNotOptimize(kept);
  }
}

void render(benchmark::State& state, unsigned count) {
  absl::Status const status = makeStatus(namesOf(count));
  for ([[maybe_unused]] auto run : state) {
    std::string text = status.ToString(absl::StatusToStringMode::kWithPayload);
    benchmark::DoNotOptimize(text);
  }
}

// An error with one payload, copied.
void makeAndDrop(benchmark::State& state) {
  for ([[maybe_unused]] auto run : state) {
    absl::Status status(absl::StatusCode::kOutOfRange, "slot out of range");
    status.SetPayload("slot", absl::Cord("17"));
    absl::Status copy(status);
    benchmark::DoNotOptimize(copy);
  }
}

BENCHMARK(makeAndDrop)->Name("error made, copied, dropped/absl");
BENCHMARK_CAPTURE(describe, 1, 1u)->Name("describe an error with 1 item/absl");
BENCHMARK_CAPTURE(describe, 10, 10u)->Name("describe an error with 10 items/absl");
BENCHMARK_CAPTURE(describe, 100, 100u)->Name("describe an error with 100 items/absl");
BENCHMARK_CAPTURE(render, 1, 1u)->Name("render 1 item/absl");
BENCHMARK_CAPTURE(render, 10, 10u)->Name("render 10 items/absl");
BENCHMARK_CAPTURE(render, 100, 100u)->Name("render 100 items/absl");

}  // namespace
