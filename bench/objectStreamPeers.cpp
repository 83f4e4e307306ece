// The way of a described status through bytes by MessagePack's C library: code, origin, call stack,
// and of each value its usage, the name of its class and a list of one number. Reading gives the
// library's own tree of objects, and looks at every value in it. The values alone are also cloned,
// by the C++ library, which copies such a tree into one block.

#include <benchmark/benchmark.h>
#include <msgpack.h>

#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

#include <cstdint>
#include <string_view>

namespace {

constexpr int kCode = -61007;
constexpr int kUsage = 7;
constexpr unsigned kFields = 6;
constexpr unsigned kStackTraceLength = 10;
constexpr std::string_view kComponent = "slotbus";
constexpr std::string_view kFile = "bench/objectStreams.cpp";
constexpr std::string_view kClass = "nOXDIAG100::tPropertyIDReportable";

void packText(msgpack_packer& packer, std::string_view text) {
  msgpack_pack_str(&packer, text.size());
  msgpack_pack_str_body(&packer, text.data(), text.size());
}

void packValue(msgpack_packer& packer, unsigned id) {
  msgpack_pack_array(&packer, 3);
  msgpack_pack_int(&packer, kUsage);
  packText(packer, kClass);
  msgpack_pack_array(&packer, 1);
  msgpack_pack_unsigned_int(&packer, id);
}

void packStatus(msgpack_packer& packer, unsigned values) {
  msgpack_pack_array(&packer, kFields);
  msgpack_pack_int(&packer, kCode);
  packText(packer, kComponent);
  packText(packer, kFile);
  msgpack_pack_unsigned_int(&packer, 49);
  msgpack_pack_array(&packer, kStackTraceLength);
  for (unsigned frame = 0; frame < kStackTraceLength; ++frame) {
    msgpack_pack_uint64(&packer, 0x00005640E3C8C55Eu + frame);
  }
  msgpack_pack_array(&packer, values);
  for (unsigned id = 0; id < values; ++id) packValue(packer, id);
}

// A buffer that keeps its memory between two statuses.
struct tBuffer {
  msgpack_sbuffer bytes;
  msgpack_packer packer;

  tBuffer() {
    msgpack_sbuffer_init(&bytes);
    msgpack_packer_init(&packer, &bytes, msgpack_sbuffer_write);
  }
  ~tBuffer() { msgpack_sbuffer_destroy(&bytes); }
  tBuffer(tBuffer const&) = delete;
  tBuffer& operator=(tBuffer const&) = delete;
};

std::uint64_t sumOfIds(msgpack_object const& status) {
  msgpack_object const& values = status.via.array.ptr[kFields - 1];
  std::uint64_t sum = 0;
  for (unsigned index = 0; index < values.via.array.size; ++index) {
    msgpack_object const* const value = values.via.array.ptr[index].via.array.ptr;
    std::string_view const name(value[1].via.str.ptr, value[1].via.str.size);
    if (name == kClass) sum += value[2].via.array.ptr[0].via.u64;
  }
  return sum;
}

void runWrite(benchmark::State& state, unsigned values) {
  tBuffer buffer;
  for ([[maybe_unused]] auto run : state) {
    msgpack_sbuffer_clear(&buffer.bytes);
    packStatus(buffer.packer, values);
    benchmark::ClobberMemory();
  }
  state.counters["bytes"] = static_cast<double>(buffer.bytes.size);
}

void runRead(benchmark::State& state, unsigned values) {
  tBuffer buffer;
  packStatus(buffer.packer, values);
  std::uint64_t sum = 0;
  for ([[maybe_unused]] auto run : state) {
    msgpack_unpacked read;
    msgpack_unpacked_init(&read);
    if (msgpack_unpack_next(&read, buffer.bytes.data, buffer.bytes.size, nullptr) ==
        MSGPACK_UNPACK_SUCCESS) {
      sum = sumOfIds(read.data);
    }
    msgpack_unpacked_destroy(&read);
  }
  if (sum != std::uint64_t{values} * (values - 1) / 2) state.SkipWithError("values went astray");
}

void runClone(benchmark::State& state, unsigned values) {
  tBuffer buffer;
  msgpack_pack_array(&buffer.packer, values);
  for (unsigned id = 0; id < values; ++id) packValue(buffer.packer, id);
  msgpack::object_handle const read = msgpack::unpack(buffer.bytes.data, buffer.bytes.size);
  for ([[maybe_unused]] auto run : state) {
    msgpack::object_handle const copy = msgpack::clone(read.get());
    benchmark::DoNotOptimize(copy);
    if (copy->via.array.size != values) return state.SkipWithError("values went astray");
  }
}

BENCHMARK_CAPTURE(runClone, 10, 10)->Name("clone 10 items/msgpack");
BENCHMARK_CAPTURE(runWrite, 1, 1)->Name("write a status with 1 value/msgpack");
BENCHMARK_CAPTURE(runWrite, 10, 10)->Name("write a status with 10 values/msgpack");
BENCHMARK_CAPTURE(runWrite, 100, 100)->Name("write a status with 100 values/msgpack");
BENCHMARK_CAPTURE(runRead, 1, 1)->Name("read a status with 1 value/msgpack");
BENCHMARK_CAPTURE(runRead, 10, 10)->Name("read a status with 10 values/msgpack");
BENCHMARK_CAPTURE(runRead, 100, 100)->Name("read a status with 100 values/msgpack");

}  // namespace
