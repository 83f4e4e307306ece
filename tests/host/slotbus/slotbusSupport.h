#pragma once

// What the tests of the slotbus component share: running modules, a stream that keeps its text,
// and short ways to a parsed line and a read rack.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "slotbus/component/tRackLine.h"
#include "slotbus/component/tRackReader.h"
#include "trace/startedModules.h"

class tKeepingDestination : public nOXDIAG100::iTraceDestination {
 public:
  ~tKeepingDestination() override = default;
  iTraceDestination& put(char const* more) override {
    text += more;
    return *this;
  }
  iTraceDestination& put(char const* more, unsigned int length) override {
    text.append(more, length);
    return *this;
  }
  void configure(int argc, char** const argv) override { iTraceDestination::configure(argc, argv); }
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText("", buffer, size, required);
  }
  u32 open() override { return 1; }
  void close() override {}
  char const* getDescription() const override { return "kept"; }

  std::string text;
};

// A stream of the test's own, so that the module's stream stays out of it. Without prefixes by
// default: the texts are what matters here.
class tKeepingStream : public nOXDIAG100::tTrace {
 public:
  explicit tKeepingStream(tKeepingDestination& kept) : tTrace(kept) {
    setMinPrefixWidth(0);
    disableIndenting();
  }
};

struct tParsedLine {
  nSLOTBUS100::tDevice device;
  nOXDIAG100::tStatus2 status;
  std::string offence;
};

// The text is kept in a block of exactly its size, so that the address sanitizer sees every read
// beyond it.
inline tParsedLine parseLine(std::string const& text, u32 number = 1) {
  static std::unique_ptr<char[]> kept;
  kept.reset(new char[text.size()]);
  text.copy(kept.get(), text.size());
  nSLOTBUS100::tRackLine line(nSLOTBUS100::tTextSpan(kept.get(), text.size()), number);
  tParsedLine parsed;
  line.read(parsed.device, parsed.status);
  parsed.offence.assign(line.getOffence().getText(), line.getOffence().getLength());
  return parsed;
}

inline i32 codeOf(std::string const& line) {
  return parseLine(line).status.getCode();
}

inline std::string textOf(nSLOTBUS100::tTextSpan span) {
  return std::string(span.getText(), span.getLength());
}

// A rack read from a text, with what was traced.
class tReadRack {
 public:
  explicit tReadRack(std::string const& text, char const* filter = nullptr)
      : kept(new char[text.size()]),
        length(text.size()),
        stream(destination),
        reader(rack, stream) {
    text.copy(kept.get(), length);
    if (filter != nullptr) stream.getFilter()->parseExpression(filter);
    result = reader.read(nSLOTBUS100::tTextSpan(kept.get(), length));
  }

  std::string const& traced() const { return destination.text; }
  bool hasTraced(std::string const& wanted) const {
    return destination.text.find(wanted) != std::string::npos;
  }

 private:
  std::unique_ptr<char[]> kept;
  size_t length;
  tKeepingDestination destination;
  tKeepingStream stream;

 public:
  nSLOTBUS100::tRack rack;
  nSLOTBUS100::tRackReader reader;
  u32 result = 0;
};
