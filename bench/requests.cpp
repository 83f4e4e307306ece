// What it costs to configure the library from another process: one request over the server's
// socket, beside a bare ping-pong of as many bytes between two processes, over such a socket and
// over pipes. Times of the clock: each waits for the other.

#include <benchmark/benchmark.h>

#include "oxdiagctl/host/tSocketChannel.h"
#include "oxdiagctl/tFailure.h"
#include "oxdiagctl/tTunnel.h"
#include "oxdiagk/instanceRegistry.h"
#include "tAnsweringProcess.h"
#include "vexkhost/requestSocket.h"

using namespace nOXDIAG100;

namespace {

constexpr size_t kMessage = sizeof(vexkhost::tRequestMessage);
constexpr size_t kReply = sizeof(vexkhost::tRequestReply);
constexpr size_t kSettings = 384;  // as many bytes as the settings of the trace have, about

void runEmptyRequest(benchmark::State& state) {
  tAnsweringProcess const server;
  tTunnelHeader const request = {kNoHandle, 0};
  try {
    tSocketChannel channel(server.getPath());
    for ([[maybe_unused]] auto run : state) channel.deliver(kTunnelName, &request);
  } catch (tFailure const& failure) {
    state.SkipWithError(failure.sentence.c_str());
  }
}

void runInquire(benchmark::State& state) {
  tAnsweringProcess const server;
  try {
    tSocketChannel channel(server.getPath());
    tTunnel tunnel(channel, "trace");
    for ([[maybe_unused]] auto run : state) benchmark::DoNotOptimize(tunnel.inquire());
  } catch (tFailure const& failure) {
    state.SkipWithError(failure.sentence.c_str());
  }
}

void runConnection(benchmark::State& state) {
  tAnsweringProcess const server;
  tTunnelHeader const request = {kNoHandle, 0};
  try {
    for ([[maybe_unused]] auto run : state) {
      tSocketChannel(server.getPath()).deliver(kTunnelName, &request);
    }
  } catch (tFailure const& failure) {
    state.SkipWithError(failure.sentence.c_str());
  }
}

void runFloor(benchmark::State& state, tAnsweringProcess::tFloor kind, size_t answerSize) {
  tAnsweringProcess other(kind, kMessage, answerSize);
  bool isAnswered = other.isRunning();
  for ([[maybe_unused]] auto run : state) isAnswered = other.ask() && isAnswered;
  if (!isAnswered) state.SkipWithError("there was no answer");
}

constexpr auto kSocket = tAnsweringProcess::tFloor::kSocket;
constexpr auto kPipes = tAnsweringProcess::tFloor::kPipes;

BENCHMARK(runEmptyRequest)->Name("request of a process/ours")->UseRealTime();
BENCHMARK_CAPTURE(runFloor, empty, kSocket, kReply)
    ->Name("request of a process/floor")
    ->UseRealTime();
BENCHMARK_CAPTURE(runFloor, emptyPipes, kPipes, kReply)
    ->Name("request of a process/pipes")
    ->UseRealTime();
BENCHMARK(runInquire)->Name("inquire of a process/ours")->UseRealTime();
BENCHMARK_CAPTURE(runFloor, settings, kSocket, kSettings)
    ->Name("inquire of a process/floor")
    ->UseRealTime();
BENCHMARK_CAPTURE(runFloor, settingsPipes, kPipes, kSettings)
    ->Name("inquire of a process/pipes")
    ->UseRealTime();
BENCHMARK(runConnection)->Name("connection and request of a process")->UseRealTime();

}  // namespace
