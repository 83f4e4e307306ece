// What the way of a status through bytes costs, by the number of values that explain it: writing it
// into a buffer, and making it again. The floor does the same by hand: it copies the record of the
// status at once, writes names, counts and numbers one after the other, and on reading compares
// each name with the one class that it knows and takes a block for the value. And finding a class
// by its name among many, beside a table of the C++ library under a lock.

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#define OXDIAG_COMPONENT "slotbus"

#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/qelmk.h"

using nOXDIAG100::tPropertyIDReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;

namespace {

constexpr i32 kCode = -61007;
constexpr i32 kUsage = 7;
constexpr size_t kCapacity = 16384;
constexpr std::string_view kName = "nOXDIAG100::tPropertyIDReportable";

void describe(tStatus2& status, u32 values) {
  tStatus2Description description;
  tStatus2 outcome;
  for (u32 index = 0; index < values; ++index) {
    tPropertyIDReportable const value(static_cast<i32>(index), outcome);
    description.addReportItem(kUsage, value, outcome);
  }
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kCode, description);
}

size_t write(tStatus2 const& value, std::vector<u8>& bytes) {
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  i32 status = 0;
  value.writeExternal(writer, status);
  writer.finish(status);
  return status < 0 ? 0 : writer.getSize();
}

void runOurWrite(benchmark::State& state, u32 values) {
  tStatus2 value;
  describe(value, values);
  std::vector<u8> bytes(kCapacity);
  size_t size = 0;
  for ([[maybe_unused]] auto run : state) {
    size = write(value, bytes);
    benchmark::ClobberMemory();
  }
  if (size == 0) state.SkipWithError("nothing was written");
  state.counters["bytes"] = static_cast<double>(size);
}

void runOurRead(benchmark::State& state, u32 values) {
  tStatus2 value;
  describe(value, values);
  std::vector<u8> bytes(kCapacity);
  size_t const size = write(value, bytes);
  i32 status = 0;
  for ([[maybe_unused]] auto run : state) {
    tBinaryObjectReader reader(bytes.data(), size, status);
    tStatus2 read;
    read.readExternal(reader, status);
    benchmark::DoNotOptimize(read);
  }
  if (status < 0 || size == 0) state.SkipWithError("nothing was read");
}

// Code, origin and call stack of a status.
struct tFloorRecord {
  char content[193];
};

struct tFloorValue {
  i32 usage;
  i32 id;
};

// The floor's stream: a count, and of each value usage, name, count and number.
class tFloorBytes {
 public:
  explicit tFloorBytes(std::vector<u8>& buffer) : bytes(buffer) {}

  template <class T>
  void put(T value) {
    std::memcpy(bytes.data() + position, &value, sizeof(value));
    position += sizeof(value);
  }
  void putName() {
    put(static_cast<u16>(kName.size()));
    std::memcpy(bytes.data() + position, kName.data(), kName.size());
    position += kName.size();
  }
  template <class T>
  T get() {
    T value;
    std::memcpy(&value, bytes.data() + position, sizeof(value));
    position += sizeof(value);
    return value;
  }
  bool getName() {
    size_t const length = get<u16>();
    position += length;
    return std::string_view(reinterpret_cast<char*>(bytes.data()) + position - length, length) ==
           kName;
  }

 private:
  std::vector<u8>& bytes;
  size_t position = 0;
};

void writeFloor(std::vector<tFloorValue> const& values, std::vector<u8>& bytes) {
  tFloorBytes stream(bytes);
  stream.put(tFloorRecord{});
  stream.put(static_cast<u32>(values.size()));
  for (tFloorValue const& value : values) {
    stream.put(value.usage);
    stream.putName();
    stream.put(u32{1});
    stream.put(value.id);
  }
}

void runFloorWrite(benchmark::State& state, u32 values) {
  std::vector<tFloorValue> const prepared(values, {kUsage, 1});
  std::vector<u8> bytes(kCapacity);
  for ([[maybe_unused]] auto run : state) {
    writeFloor(prepared, bytes);
    benchmark::ClobberMemory();
  }
}

void runFloorRead(benchmark::State& state, u32 values) {
  std::vector<tFloorValue> const prepared(values, {kUsage, 1});
  std::vector<u8> bytes(kCapacity);
  writeFloor(prepared, bytes);
  bool isWhole = true;
  for ([[maybe_unused]] auto run : state) {
    tFloorBytes stream(bytes);
    auto record = std::make_unique<tFloorRecord>(stream.get<tFloorRecord>());
    benchmark::DoNotOptimize(record.get());
    std::vector<std::unique_ptr<tFloorValue>> read(stream.get<u32>());
    for (auto& value : read) {
      i32 const usage = stream.get<i32>();
      isWhole = isWhole && stream.getName() && stream.get<u32>() == 1;
      value = std::make_unique<tFloorValue>(tFloorValue{usage, stream.get<i32>()});
    }
    benchmark::DoNotOptimize(read.data());
  }
  if (!isWhole) state.SkipWithError("another stream was read");
}

std::vector<std::string> manyNames(u32 classes) {
  std::vector<std::string> names;
  for (u32 index = 0; index < classes; ++index) {
    names.push_back("nBENCH::tClass" + std::to_string(index));
  }
  return names;
}

void runOurName(benchmark::State& state, u32 classes) {
  std::vector<std::string> const names = manyNames(classes);
  std::vector<std::unique_ptr<nQELM100::tClassImplementation>> records;
  i32 status = 0;
  for (std::string const& name : names) {
    records.push_back(
        std::make_unique<nQELM100::tClassImplementation>(name.c_str(), nullptr, nullptr));
    nQELM100::registerClass(*records.back(), status);
  }
  size_t next = 0;
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(nQELM100::tClass::forName(names[next].c_str(), status));
    next = next + 1 == names.size() ? 0 : next + 1;
  }
  if (status < 0) state.SkipWithError("a name was not found");
  for (auto const& record : records) nQELM100::unregisterClass(*record);
}

void runFloorName(benchmark::State& state, u32 classes) {
  std::vector<std::string> const names = manyNames(classes);
  std::unordered_map<std::string_view, std::string const*> table;
  for (std::string const& name : names) table.emplace(name, &name);
  std::mutex lock;
  size_t next = 0;
  for ([[maybe_unused]] auto run : state) {
    std::lock_guard const held(lock);
    benchmark::DoNotOptimize(table.find(names[next].c_str())->second);
    next = next + 1 == names.size() ? 0 : next + 1;
  }
}

// Both sides of one comparison, with the same count.
#define OXDIAG_BENCH_PAIR(ours, floor, count, name)          \
  BENCHMARK_CAPTURE(ours, count, count)->Name(name "/ours"); \
  BENCHMARK_CAPTURE(floor, count, count)->Name(name "/floor")

OXDIAG_BENCH_PAIR(runOurWrite, runFloorWrite, 1, "write a status with 1 value");
OXDIAG_BENCH_PAIR(runOurWrite, runFloorWrite, 10, "write a status with 10 values");
OXDIAG_BENCH_PAIR(runOurWrite, runFloorWrite, 100, "write a status with 100 values");
OXDIAG_BENCH_PAIR(runOurRead, runFloorRead, 1, "read a status with 1 value");
OXDIAG_BENCH_PAIR(runOurRead, runFloorRead, 10, "read a status with 10 values");
OXDIAG_BENCH_PAIR(runOurRead, runFloorRead, 100, "read a status with 100 values");
OXDIAG_BENCH_PAIR(runOurName, runFloorName, 32, "find a class among 32");
OXDIAG_BENCH_PAIR(runOurName, runFloorName, 1024, "find a class among 1024");
OXDIAG_BENCH_PAIR(runOurName, runFloorName, 32768, "find a class among 32768");

}  // namespace
