#include "oxdiagview/tSummary.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "options/utf8Text.h"
#include "oxdiagview/timeText.h"

namespace oxdiagview {
namespace {

std::string counted(uint64_t count, char const* thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string rightOf(std::string const& text, size_t width) {
  return std::string(width - std::min(text.size(), width), ' ') + text;
}

// A tenth of its bytes is more than the eye sees: "µ" has two.
std::string span(uint64_t nanoseconds) {
  std::string const text = spanText(static_cast<int64_t>(nanoseconds));
  bool const hasMicro = text.find("µ") != text.npos;
  return rightOf(text, hasMicro ? 11 : 10);
}

}  // namespace

void tSummary::take(tRecord const& record) {
  ++lines;
  opened += record.hasPrefix ? 1 : 0;
  foreign += record.kind == tKind::kForeign ? 1 : 0;
  cut += record.isCut ? 1 : 0;
  if (!record.component.empty()) count(components, record.component);
  if (record.verbosity) count(verbosities, std::to_string(*record.verbosity));
  if (record.thread && threads.size() < kMostNames) threads.insert(*record.thread);
  if (record.kind == tKind::kAssertion) count(assertions, record.category);
  bool const isStatus = record.kind == tKind::kStatus && record.code;
  if (isStatus && statuses.size() < kMostNames) ++statuses[*record.code];
  takeTime(record);
  if (record.kind == tKind::kBlockBegin) blocks.begin(record);
  if (record.kind == tKind::kBlockEnd) takeBlockEnd(record);
}

// Names beyond the limit go under one.
void tSummary::count(tCounts& counts, std::string_view name) {
  auto const found = counts.find(std::string(name));
  if (found != counts.end()) ++found->second;
  if (found == counts.end()) ++counts[counts.size() < kMostNames ? std::string(name) : "others"];
}

void tSummary::takeTime(tRecord const& record) {
  if (!record.time) return;
  if (!firstTime) firstTime = lastTime = latestTime = *record.time;
  auto const gap = static_cast<long long>(*record.time - lastTime);
  if (gap > 0 && gaps.takes(gap)) gaps.add(gap, {record.number, placeOf(record)});
  lastTime = *record.time;
  latestTime = std::max(latestTime, lastTime);
}

void tSummary::takeBlockEnd(tRecord const& record) {
  bool const isError = record.code.value_or(0) != 0;
  if (isError && blockCodes.size() < kMostNames) ++blockCodes[*record.code];
  tOpenBlocks::tThread const ended = blocks.end(record);
  unbegun += ended.empty() ? 1 : 0;
  if (ended.empty()) return;
  unended += ended.size() - 1;
  takeBlock(ended.front(), record);
}

void tSummary::takeBlock(tOpenBlocks::tBlock const& block, tRecord const& record) {
  if (!block.time || !record.time || *record.time < *block.time) return;
  std::string const name = block.name + (block.place.empty() ? "" : " (" + block.place + ")");
  if (times.size() >= kMostNames && !times.contains(name)) return;
  tBlockTimes& sums = times[name];
  uint64_t const taken = *record.time - *block.time;
  ++sums.count;
  sums.sum += taken;
  if (taken < sums.most) return;
  sums.most = taken;
  sums.mostAt = block.number;
}

void tSummary::finish() {
  putLine(counted(lines, "line") + ", of which " + std::to_string(opened) + " with a prefix and " +
          std::to_string(foreign) + " that are not of the trace");
  if (cut != 0) putLine(counted(cut, "line") + " too long and cut");
  putSpan();
  if (!threads.empty()) putLine(counted(threads.size(), "thread"));
  putCounts("Components", components);
  putCounts("Verbosities", verbosities);
  putCounts("Assertions that did not hold", assertions);
  putStatuses();
  putBlocks();
  putGaps();
  output.flush();
}

void tSummary::putLine(std::string const& text) {
  std::string shown;
  appendForTerminal(shown, text);
  output.put(shown);
  output.put('\n');
}

void tSummary::putSpan() {
  if (!firstTime) return putLine("no times: switch on --timestamp or --timedelta in the trace");
  putLine(spanText(static_cast<int64_t>(latestTime - *firstTime)) +
          " from the first line to the last, " + rate);
}

// The most frequent first.
void tSummary::putCounts(char const* title, tCounts const& counts) {
  if (counts.empty()) return;
  std::vector<std::pair<std::string, uint64_t>> sorted(counts.begin(), counts.end());
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](auto const& one, auto const& other) { return one.second > other.second; });
  putLine(std::string());
  putLine(title);
  for (size_t index = 0; index < std::min(sorted.size(), kShown); ++index) {
    putLine(rightOf(std::to_string(sorted[index].second), 10) + "  " + sorted[index].first);
  }
  if (sorted.size() > kShown) {
    putLine("            and " + std::to_string(sorted.size() - kShown) + " more");
  }
}

void tSummary::putStatuses() {
  tCounts written;
  for (auto const& [code, number] : statuses) written[std::to_string(code)] = number;
  putCounts("Statuses written, by code", written);
  tCounts ends;
  for (auto const& [code, number] : blockCodes) ends[std::to_string(code)] = number;
  putCounts("Statuses at the ends of blocks, by code", ends);
}

void tSummary::putBlocks() {
  if (!times.empty()) {
    tLargest<std::string> slowest(kShown);
    for (auto const& [name, sums] : times) slowest.add(static_cast<long long>(sums.most), name);
    putLine(std::string());
    putLine("Slowest blocks: longest, on average, how often, the line where the longest begins");
    for (auto const& [most, name] : slowest.getItems()) {
      tBlockTimes const& sums = times.at(name);
      putLine(span(static_cast<uint64_t>(most)) + span(sums.sum / sums.count) +
              rightOf(std::to_string(sums.count), 8) + rightOf(std::to_string(sums.mostAt), 10) +
              "  " + name);
    }
  }
  uint64_t open = unended;
  for (auto const& [id, thread] : blocks.getThreads()) open += thread.size();
  if (open != 0) putLine(counted(open, "block") + " without an end in the trace");
  if (unbegun != 0) putLine(counted(unbegun, "block") + " without a beginning in the trace");
}

void tSummary::putGaps() {
  if (gaps.getItems().empty()) return;
  putLine(std::string());
  putLine("Longest times without a line, and the line behind");
  for (auto const& [gap, end] : gaps.getItems()) {
    putLine(span(static_cast<uint64_t>(gap)) + rightOf(std::to_string(end.number), 10) +
            (end.place.empty() ? "" : "  " + end.place));
  }
}

}  // namespace oxdiagview
