#include "oxdiagview/tPerfetto.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "oxdiagview/jsonText.h"

namespace oxdiagview {
namespace {

constexpr uint64_t kNanosecondsPerLine = 1000;
constexpr size_t kMostThreads = 100'000;
constexpr char kNoEnd[] = "its end is not in the trace";
constexpr char kNoBeginning[] = "its beginning is not in the trace";

std::string hexadecimal(uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%" PRIX32, number);
  return text;
}

// With a comma in front of all members but the first; nothing in the name is escaped.
void appendName(std::string& json, std::string_view name) {
  json += json.back() == '{' ? "\"" : ",\"";
  json += name;
  json += "\":";
}

void appendMember(std::string& json, std::string_view name, std::string_view text) {
  appendName(json, name);
  appendJsonText(json, text);
}

// As a string.
template <class tNumber>
void appendDigits(std::string& json, std::string_view name, tNumber number) {
  appendName(json, name);
  json += '"';
  appendNumber(json, number);
  json += '"';
}

}  // namespace

tPerfetto::tPerfetto(tOutput& output) : output(output) {
  output.put("{\"displayTimeUnit\":\"ns\",\"traceEvents\":[\n");
}

void tPerfetto::take(tRecord const& given) {
  if (!given.hasPrefix) return;
  tRecord record = given;
  noteTime(record);
  noteThread(record.thread.value_or(0));
  if (record.kind == tKind::kBlockBegin) {
    blocks.begin(record);
  } else if (record.kind == tKind::kBlockEnd) {
    takeBlockEnd(record);
  } else {
    putInstant(record);
  }
}

// A counter that goes back, of another processor, stands still here.
void tPerfetto::noteTime(tRecord& record) {
  uint64_t const time = record.time.value_or(record.number * kNanosecondsPerLine);
  if (!firstTime) firstTime = time;
  lastTime = std::max(lastTime, time < *firstTime ? 0 : time - *firstTime);
  record.time = lastTime;
}

void tPerfetto::noteThread(uint32_t thread) {
  if (threads.size() >= kMostThreads || !threads.insert(thread).second) return;
  beginEvent("thread_name", "M", thread);
  json += ",\"args\":{";
  appendMember(json, "name", thread == 0 ? "trace" : "thread " + hexadecimal(thread));
  json += '}';
  endEvent();
}

void tPerfetto::takeBlockEnd(tRecord const& record) {
  uint32_t const thread = record.thread.value_or(0);
  tOpenBlocks::tThread const ended = blocks.end(record);
  if (ended.empty()) {
    tOpenBlocks::tBlock const* const around = blocks.getInnermost(thread);
    auto const begin = around != nullptr ? around->time : 0;
    tOpenBlocks::tBlock const block = {std::string(record.function), placeOf(record), 0, begin};
    return putSlice(block, thread, kNoBeginning, record.code);
  }
  putSlice(ended.front(), thread, nullptr, record.code);
  for (size_t index = 1; index < ended.size(); ++index) {
    putSlice(ended[index], thread, kNoEnd, std::nullopt);
  }
}

void tPerfetto::putSlice(tOpenBlocks::tBlock const& block, uint32_t thread, char const* remark,
                         std::optional<int32_t> code) {
  uint64_t const begin = block.time.value_or(0);
  beginEvent(block.name.empty() ? "(block)" : block.name, "X", thread);
  putMicroseconds("ts", begin);
  putMicroseconds("dur", lastTime - begin);
  json += ",\"cat\":\"block\",\"args\":{";
  if (!block.place.empty()) appendMember(json, "place", block.place);
  if (code) appendDigits(json, "status", *code);
  if (remark != nullptr) appendMember(json, "remark", remark);
  json += '}';
  endEvent();
}

void tPerfetto::putInstant(tRecord const& record) {
  beginEvent(record.text, "i", record.thread.value_or(0));
  putMicroseconds("ts", *record.time);
  json += record.kind == tKind::kAssertion ? ",\"s\":\"t\",\"cat\":\"assertion\""
                                           : ",\"s\":\"t\",\"cat\":\"line\"";
  json += ",\"args\":{";
  setPlace(place, record);
  if (!place.empty()) appendMember(json, "place", place);
  if (record.verbosity) appendDigits(json, "verbosity", *record.verbosity);
  json += '}';
  endEvent();
}

// `name` is from the trace, `phase` is not.
void tPerfetto::beginEvent(std::string_view name, char const* phase, uint32_t thread) {
  json = hasEvents ? ",\n{\"name\":" : "{\"name\":";
  hasEvents = true;
  appendJsonText(json, name);
  json += ",\"ph\":\"";
  json += phase;
  json += "\",\"pid\":1,\"tid\":";
  appendNumber(json, thread);
}

void tPerfetto::putMicroseconds(char const* member, uint64_t nanoseconds) {
  unsigned int const behind = static_cast<unsigned int>(nanoseconds % 1000);
  json += ",\"";
  json += member;
  json += "\":";
  appendNumber(json, nanoseconds / 1000);
  json += '.';
  for (unsigned int unit : {100u, 10u, 1u}) json += static_cast<char>('0' + behind / unit % 10);
}

void tPerfetto::endEvent() {
  json += '}';
  output.put(json);
}

void tPerfetto::finish() {
  for (auto const& [thread, open] : blocks.getThreads()) {
    for (tOpenBlocks::tBlock const& block : open) putSlice(block, thread, kNoEnd, std::nullopt);
  }
  output.put("\n]}\n");
  output.flush();
}

}  // namespace oxdiagview
