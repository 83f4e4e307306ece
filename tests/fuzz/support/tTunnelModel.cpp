#include "support/tTunnelModel.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/fuzzing.h"

namespace {

// What the kernel does not copy.
constexpr u64 kTooLarge = 0x100001;
constexpr u32 kNone = 0;

template <class T>
T numberAt(std::string const& bytes, size_t offset) {
  T number;
  std::memcpy(&number, bytes.data() + offset, sizeof number);
  return number;
}

template <class T>
std::string bytesOf(T number) {
  return std::string(reinterpret_cast<char const*>(&number), sizeof number);
}

bool begins(std::string const& text, std::string const& with) {
  return text.compare(0, with.size(), with) == 0;
}

}  // namespace

struct tTunnelModel::tRecord {
  explicit tRecord(std::string const& bytes)
      : operation(numberAt<u32>(bytes, 0)),
        first(numberAt<u64>(bytes, 8)),
        second(numberAt<u64>(bytes, 16)),
        third(numberAt<u64>(bytes, 24)) {}

  u32 operation;
  u64 first;
  u64 second;
  u64 third;
};

std::string tTunnelModel::copyIn(u64 address, u64 length) const {
  u64 const first = base - readOnly.size();
  if (address < first || address - first >= readOnly.size() + bytes.size()) return "";
  return (readOnly + bytes).substr(address - first, length);
}

void tTunnelModel::copyOut(u64 address, std::string const& content) {
  if (address < base || address - base >= bytes.size()) return;
  size_t const at = address - base;
  size_t const length = std::min(content.size(), bytes.size() - at);
  bytes.replace(at, length, content, 0, length);
}

void tTunnelModel::dispatch(u64 request) {
  std::string const header = copyIn(request, 8);
  if (header.size() != 8) return;
  u32 const handle = numberAt<u32>(header, 0);
  u64 const count = numberAt<u32>(header, 4);
  for (u64 index = 0; index < count; ++index) {
    std::string const record = copyIn(request + 8 + 32 * index, 32);
    if (record.size() != 32) return;
    serve(handle, tRecord(record));
  }
}

void tTunnelModel::serve(u32 handle, tRecord const& record) {
  bool const isRecorder = handle != kNone && handle == recorder;
  if (record.operation == 1) acquire(record);
  if (record.operation == 2) release(handle);
  if (record.operation == 3 && isRecorder) calls += "default ";
  if (record.operation == 4) configure(handle, record);
  if (record.operation == 5) inquire(handle, record);
  if (record.operation == 6 && isRecorder) calls += "push ";
  if (record.operation == 7 && isRecorder) calls += "pop ";
}

void tTunnelModel::acquire(tRecord const& record) {
  u64 const length = record.third & 0xFFFFFFFF;
  std::string name = "trace";
  if (length < kTooLarge && memory.allocate()) {
    name = std::string(copyIn(record.second, length).c_str());
  }
  copyOut(record.first, bytesOf(acquireNamed(name)));
}

u32 tTunnelModel::acquireNamed(std::string name) {
  if (begins(name, "kernel/")) {
    name.erase(0, 7);
  } else if (begins(name, "kernel")) {
    name.erase(0, 6);
  }
  char const meaning = begins(name, "trace") ? 't' : begins(name, "assert") ? 'a' : 0;
  if (meaning == 0) return kNone;
  u32 const handle = nextHandle++;
  if (!memory.allocate() || !memory.allocate()) return kNone;
  acquired[handle] = meaning;
  return handle;
}

void tTunnelModel::release(u32 handle) {
  if (handle == recorder) recorder = kNone;
  acquired.erase(handle);
}

void tTunnelModel::configure(u32 handle, tRecord const& record) {
  u64 const length = record.second & 0xFFFFFFFF;
  if (length >= kTooLarge || !memory.allocate()) return;
  if (handle == kNone || handle != recorder) return;
  calls += "configure(" + std::string(copyIn(record.first, length).c_str()) + ") ";
}

void tTunnelModel::inquire(u32 handle, tRecord const& record) {
  u32 needed = 0;
  if (handle != kNone && handle == recorder) {
    calls += "measure ";
    needed = sizeof kRecorderSettings;
    u64 const room = record.first == 0 ? 0 : record.second & 0xFFFFFFFF;
    if (room != 0 && memory.allocate()) {
      calls += "inquire ";
      std::string const text(kRecorderSettings);
      copyOut(record.first, text.substr(0, room - 1) + '\0');
    }
  }
  if (record.third != 0) copyOut(record.third, bytesOf(needed));
}
