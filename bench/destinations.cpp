// What a line costs on its way into a destination.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "ntoshost/files.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"

namespace {

constexpr char kLine[] =
    "[slotbus-118-tRackReader.cpp---------------------] slot 17 answered with 64 bytes\n";
constexpr u32 kLineLength = sizeof(kLine) - 1;
constexpr u64 kBytesInFile = kLineLength + 1;  // with the carriage return

// A folder that is drive C, removed with its files at the end.
class tDrive {
 public:
  tDrive() {
    std::string name = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) folder = name;
    ntoshost::mountDrive('C', folder.c_str());
  }
  ~tDrive() {
    ntoshost::unmountDrive('C');
    std::filesystem::remove_all(folder);
  }
  tDrive(tDrive const&) = delete;
  tDrive& operator=(tDrive const&) = delete;

  std::string pathOf(char const* name) const { return (folder / name).string(); }

 private:
  std::filesystem::path folder;
};

// Runs `putLine(text, length)` and checks that the file grew by what was put.
template <class tPutLine>
void runLines(benchmark::State& state, std::string const& path, tPutLine putLine) {
  char const* text = kLine;
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(text);
    putLine(text, kLineLength);
  }
  u64 const wanted = static_cast<u64>(state.iterations()) * kBytesInFile;
  if (std::filesystem::file_size(path) != wanted) state.SkipWithError("lines went astray");
}

void runFile(benchmark::State& state) {
  tDrive const drive;
  nOXDIAG100::tFileTraceDestination destination;
  char name[] = "C:/line.out";
  char* words[] = {name};
  destination.configure(1, words);
  if (destination.open() == 0) {
    state.SkipWithError("the file does not open");
    return;
  }
  runLines(state, drive.pathOf("line.out"),
           [&](char const* text, u32 length) { destination.put(text, length); });
}

// What a patient author would write for the same file: the line feeds translated into a buffer and
// one write a line at the end of the file.
class tFloorFile {
 public:
  explicit tFloorFile(std::string const& path)
      : descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666)) {}
  ~tFloorFile() { close(descriptor); }
  tFloorFile(tFloorFile const&) = delete;
  tFloorFile& operator=(tFloorFile const&) = delete;

  void putLine(char const* text, u32 length) {
    u32 used = 0;
    for (u32 index = 0; index < length; ++index) {
      if (text[index] == '\n') buffer[used++] = '\r';
      buffer[used++] = text[index];
    }
    if (write(descriptor, buffer, used) != static_cast<ssize_t>(used)) abort();
  }

 private:
  int descriptor;
  char buffer[512];
};

void runFloorFile(benchmark::State& state) {
  tDrive const drive;
  std::string const path = drive.pathOf("line.out");
  tFloorFile floor(path);
  runLines(state, path, [&](char const* text, u32 length) { floor.putLine(text, length); });
}

// The buffer is captured anew for each line.
constexpr i32 kCaptureSize = 4096;

template <class tPutLine>
void runCaptures(benchmark::State& state, i32& position, tPutLine putLine) {
  char const* text = kLine;
  for ([[maybe_unused]] auto run : state) {
    benchmark::DoNotOptimize(text);
    position = 0;
    putLine(text);
    benchmark::ClobberMemory();
  }
  if (position != static_cast<i32>(kLineLength)) state.SkipWithError("lines went astray");
}

void runCapture(benchmark::State& state) {
  static char buffer[kCaptureSize];
  i32 position = 0;
  nOXDIAG100::tCTFTraceDestination capture(buffer, position, kCaptureSize, nullptr);
  nOXDIAG100::iTraceDestination* destination = &capture;
  benchmark::DoNotOptimize(destination);
  runCaptures(state, position, [&](char const* text) { destination->put(text); });
}

void runFloorCapture(benchmark::State& state) {
  static char buffer[kCaptureSize];
  i32 position = 0;
  runCaptures(state, position, [&](char const* text) {
    size_t const room = static_cast<size_t>(kCaptureSize - 1 - position);
    size_t const length = strnlen(text, room);
    memcpy(buffer + position, text, length);
    position += static_cast<i32>(length);
    if (length < room) buffer[position] = 0;
  });
}

BENCHMARK(runCapture)->Name("captured line/ours");
BENCHMARK(runFloorCapture)->Name("captured line/floor");
BENCHMARK(runFile)->Name("file line/ours");
BENCHMARK(runFloorFile)->Name("file line/floor");

}  // namespace
