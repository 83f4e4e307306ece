#pragma once

// Records that own their texts, and traces that the library writes for the tests.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tTraceReader.h"

// A record whose texts outlive the call.
struct tKeptRecord : oxdiagview::tRecord {
  explicit tKeptRecord(oxdiagview::tRecord const& record)
      : tRecord(record),
        raw(record.raw),
        component(record.component),
        version(record.version),
        file(record.file),
        text(record.text),
        function(record.function),
        object(record.object),
        category(record.category),
        message(record.message) {}

  std::string raw, component, version, file, text, function, object, category, message;
};

class tKeepingSink : public oxdiagview::iRecordSink {
 public:
  void take(oxdiagview::tRecord const& record) override { records.emplace_back(record); }
  void finish() override { isFinished = true; }

  std::vector<tKeptRecord> records;
  bool isFinished = false;
};

constexpr uint64_t kTicksPerMicrosecond = 1000;
constexpr uint64_t kTestRate = kTicksPerMicrosecond * 1'000'000;

inline std::vector<tKeptRecord> readTrace(std::string_view text, size_t portion = ~size_t{0}) {
  tKeepingSink sink;
  oxdiagview::tTraceReader reader(sink, kTestRate);
  for (size_t place = 0; place < text.size(); place += std::min(portion, text.size() - place)) {
    reader.feed(text.substr(place, portion));
  }
  reader.finish();
  return sink.records;
}

// Keeps what a stream writes.
class tTextDestination : public nOXDIAG100::iTraceDestination {
 public:
  ~tTextDestination() override { leaveStream(); }
  iTraceDestination& put(char const* words) override {
    text += words;
    return *this;
  }
  iTraceDestination& put(char const* words, unsigned int length) override {
    text.append(words, length);
    return *this;
  }
  void configure(int, char** const) override {}
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText(" --destination text", buffer, size, required);
  }
  u32 open() override { return 1; }
  void close() override {}
  char const* getDescription() const override { return "text"; }

  std::string text;
};
