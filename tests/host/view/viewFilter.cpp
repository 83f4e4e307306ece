// The filter of oxdiag-view shows what the library would have shown.

#include <gtest/gtest.h>

#include "oxdiagview/tFilteredSink.h"
#include "support/recordingDestination.h"
#include "trace/startedModules.h"
#include "viewTest.h"

namespace {

using nOXDIAG100::tTrace;

constexpr char kAllFields[] =
    "--compver --filepath --threadid --timestamp --verbosity --prefixwidth 120";

// The lines that a stream with this filter shows, without their times.
std::string write(std::string const& filter) {
  tTextDestination destination;
  tPrivateTrace trace(destination);
  trace.configure((std::string(kAllFields) + " --filter \"" + filter + "\"").c_str());
  u32 number = 0;
  for (char const* component : {"rack", "rackbus"}) {
    for (char const* file : {"folder/a.cpp", "b.cpp"}) {
      for (u32 const verbosity : {60u, 100u, 120u}) {
        tSSVersion const version(1, 2, number % 3, tSSVersion::kPhaseReleased, 4, 0);
        trace.putPrefix(component, version, 10 + 7 * number, file, verbosity, tTrace::kTraceLine);
        trace.put("line ").put(number++, 10).endl();
      }
    }
  }
  return destination.text;
}

std::vector<std::string> textsOf(std::vector<tKeptRecord> const& records) {
  std::vector<std::string> texts;
  for (tKeptRecord const& record : records) texts.push_back(record.text);
  return texts;
}

std::vector<std::string> filtered(std::string const& trace, std::string const& filter) {
  tKeepingSink sink;
  oxdiagview::tFilteredSink filtering(filter, sink);
  oxdiagview::tTraceReader reader(filtering, kTestRate);
  reader.feed(trace);
  reader.finish();
  EXPECT_TRUE(sink.isFinished);
  return textsOf(sink.records);
}

}  // namespace

TEST(ViewFilter, ShowsWhatTheLibraryShows) {
  std::string const whole = write("verbosity>=0");
  size_t shown = 0;
  for (char const* filter :
       {"verbosity>=100", "comp==rack", "comp!=rack && verb<=60", "file==folder/a.cpp", "line<50",
        "compver==1.2.1f4", "thread!=0", "verb>=120 || line==10 && comp==rackbus", "verbosity=60",
        "compname>rack", "linenumber>=0x2D && linenumber<=87"}) {
    std::vector<std::string> const wanted = textsOf(readTrace(write(filter)));
    EXPECT_EQ(filtered(whole, filter), wanted) << filter;
    shown += wanted.size();
  }
  EXPECT_GT(shown, 30u);
}

TEST(ViewFilter, WhatHasNoPrefixGoesWithTheLineBefore) {
  std::string const trace =
      "first\n[rack--1--a.cpp--60----] hidden\ntStatus2 Contents:\n\tError Code = -5\n"
      "[rack--1--a.cpp--100----] shown\nmore\n";
  EXPECT_EQ(filtered(trace, "verb>=100"), (std::vector<std::string>{"first", "shown", "more"}));
}

TEST(ViewFilter, AFieldThatALineDoesNotShowIsNothing) {
  std::string const trace = "[rack--1--a.cpp----] one\n[rack--2--a.cpp----] two\n";
  EXPECT_EQ(filtered(trace, "verb>=100").size(), 0u);
  EXPECT_EQ(filtered(trace, "verb==0 && thread==0").size(), 2u);
}
