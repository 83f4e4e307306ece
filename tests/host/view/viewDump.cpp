// oxdiag-view finds the flight recorder in dumps of all kinds, whole and cut.

#include <cstring>
#include <ctime>
#include <sstream>

#include "ntos/bugCheck.h"
#include "ntoshost/bugCheck.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagview/tRingFinder.h"
#include "support/recordingDestination.h"
#include "trace/startedModules.h"
#include "viewProgramTest.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;
using oxdiagview::tRingFinder;

constexpr u64 kKiB = 1024;

class ViewDump : public tViewTest {
 protected:
  void SetUp() override {
    tViewTest::SetUp();
    char word[] = "1";
    char* words[] = {word};
    recorder.configure(1, words);
    ASSERT_EQ(recorder.open(), 1u);
  }

  void traceLines(int count) {
    tPrivateTrace trace(recorder);
    for (int line = 0; line < count; ++line) {
      trace.putPrefix("rack", tSSVersion(), 17, "a.cpp", 100, nOXDIAG100::tTrace::kTraceLine);
      trace.put("line ").put(line, 10).endl();
    }
  }

  std::string ring() const {
    tRecorderRing const* const head = recorder.getRing();
    return std::string(reinterpret_cast<char const*>(head), sizeof(*head) + head->capacity);
  }

  void keepTwoPages() {
    char word[] = "8";
    char* words[] = {word};
    recorder.configure(1, words);
    ASSERT_EQ(recorder.open(), 1u);
  }

  tRun viewDump(std::string const& dump) const { return view({"--dump", write("dump", dump)}); }

  tRecorderTraceDestination recorder;
};

// The ring of two pages behind its head, which ends a page. They lie backwards among others, and a
// page table has them from this entry on.
std::string physicalImage(std::string memory, size_t entry) {
  constexpr u64 kPage = 4096;
  constexpr size_t kPlaces[] = {7, 4, 2};  // of the pages in the image
  constexpr size_t kTable = 5;
  tRecorderRing& head = *reinterpret_cast<tRecorderRing*>(memory.data());
  head.address = 0xFFFF'8000'0000'0000 + (entry + 1) * kPage - sizeof(head);
  memory.insert(0, kPage - sizeof(head), 'x');
  std::string image(10 * kPage, 'z');
  for (size_t page = 0; page < 3; ++page) {
    image.replace(kPlaces[page] * kPage, kPage, memory, page * kPage, kPage);
    u64 const bits = kPlaces[page] * kPage | 0x8000'0000'0000'0063;
    if (entry + page < 512) std::memcpy(&image[kTable * kPage + (entry + page) * 8], &bits, 8);
  }
  return image;
}

std::string lastLine(std::string const& text) {
  size_t const begin = text.rfind('\n', text.size() - 2);
  return text.substr(begin == text.npos ? 0 : begin + 1);
}

// What the program's memory has, but for what the reader of it changes meanwhile.
std::string imageOfThisProgram() {
  std::ifstream maps("/proc/self/maps");
  std::ifstream memory("/proc/self/mem", std::ios::binary);
  std::string image;
  for (std::string line; std::getline(maps, line);) {
    unsigned long begin = 0;
    unsigned long end = 0;
    char rights[8] = "";
    if (std::sscanf(line.c_str(), "%lx-%lx %7s", &begin, &end, rights) != 3) continue;
    if (std::strncmp(rights, "rw", 2) != 0 || end - begin > (64ul << 20)) continue;
    std::string region(end - begin, '\0');
    memory.clear();
    memory.seekg(static_cast<std::streamoff>(begin));
    if (memory.read(region.data(), static_cast<std::streamsize>(region.size()))) image += region;
  }
  return image;
}

std::vector<tRingFinder::tRing> findRings(std::string const& dump, size_t portion) {
  tRingFinder finder;
  for (size_t place = 0; place < dump.size(); place += portion) {
    finder.feed(std::string_view(dump).substr(place, portion));
  }
  finder.finish();
  return finder.getRings();
}

}  // namespace

TEST_F(ViewDump, ShowsTheRingWhereverItLies) {
  traceLines(3);
  for (size_t const before : {0u, 1u, 4096u, 300'000u}) {
    tRun const done = viewDump(std::string(before, 'x') + ring() + std::string(5000, 'y'));
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.output,
              "rack a.cpp:17         line 0\nrack a.cpp:17         line 1\n"
              "rack a.cpp:17         line 2\n");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
    EXPECT_TRUE(contains(done.errors, "at byte " + std::to_string(before) + ": 1 KiB"));
  }
}

TEST_F(ViewDump, OfARingThatCameRoundTheOldestIsFirst) {
  traceLines(100);
  tRun const done = viewDump(ring());
  EXPECT_EQ(lastLine(done.output), "rack a.cpp:17         line 99\n");
  EXPECT_TRUE(contains(done.output, "line 97\nrack a.cpp:17         line 98\n"));
  EXPECT_FALSE(contains(done.output, "line 50\n"));
}

TEST_F(ViewDump, OfAnImageOfPhysicalMemoryThePagesAreFoundByTheirTable) {
  keepTwoPages();
  traceLines(1000);
  std::string const whole = viewDump(ring()).output;
  EXPECT_EQ(lastLine(whole), "rack a.cpp:17         line 999\n");
  EXPECT_EQ(viewDump(physicalImage(ring(), 509)).output, whole);
  EXPECT_EQ(viewDump(physicalImage(ring(), 3)).output, whole);
}

// Each names the page with the head, as a table would, and then pages that are not there.
TEST_F(ViewDump, PagesThatLookLikeTheTableHideNothing) {
  keepTwoPages();
  traceLines(1000);
  std::string const whole = viewDump(ring()).output;
  std::string image = physicalImage(ring(), 3);
  for (size_t const page : {0u, 1u, 3u}) {
    u64 const entries[] = {7 * 4096 | 1, u64{1} << 40 | 1};
    std::memcpy(&image[page * 4096 + 3 * 8], entries, sizeof(entries));
  }
  EXPECT_EQ(viewDump(image).output, whole);
}

TEST_F(ViewDump, BehindTheEndOfThePageTableNothingIsTakenForText) {
  keepTwoPages();
  traceLines(1000);
  tRun const done = viewDump(physicalImage(ring(), 510));
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_GT(countLines(done.output), 50u);
  EXPECT_FALSE(contains(done.output, "zzz"));
}

TEST_F(ViewDump, APipeOfPhysicalMemoryIsReadOnce) {
  keepTwoPages();
  traceLines(10);
  std::string const image = write("image", physicalImage(ring(), 3));
  tRun const done =
      runProgram({"sh", "-c", "cat " + image + " | " + std::string(kView) + " --dump"});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.errors, "8 KiB")) << done.errors;
}

TEST_F(ViewDump, FindsTheRecorderInTheMemoryOfAProgram) {
  traceLines(100);
  std::string const image = imageOfThisProgram();
  tRun const done = viewDump(image);
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "line 98\nrack a.cpp:17         line 99\n")) << image.size();
}

TEST_F(ViewDump, ShowsTheUnfinishedLineOfACrash) {
  std::string const file = pathOf("crash");
  EXPECT_DEATH(
      {
        ntoshost::setDumpFile(file.c_str());
        traceLines(100);
        tPrivateTrace trace(recorder);
        trace.putPrefix("rack", tSSVersion(), 18, "a.cpp", 100, nOXDIAG100::tTrace::kTraceLine);
        trace.put("unfinished");
        KeBugCheckEx(0xDEADDEAD, 1, 2, 3, 4);
      },
      "bug check");
  tRun const done = view({"--dump", file});
  EXPECT_EQ(lastLine(done.output), "rack a.cpp:18         unfinished\n");
  EXPECT_TRUE(contains(done.output, "rack a.cpp:17         line 99\n"));
}

TEST_F(ViewDump, ACutRingIsShownAsFarAsItGoes) {
  traceLines(100);
  std::string const whole = ring();
  size_t const end = recorder.getRing()->written % kKiB;
  for (size_t size = sizeof(tRecorderRing); size <= whole.size(); size += 31) {
    std::vector<tRingFinder::tRing> const rings = findRings(whole.substr(0, size), size);
    ASSERT_EQ(rings.size(), 1u);
    size_t const text = size - sizeof(tRecorderRing);
    EXPECT_EQ(rings[0].missing, kKiB - text);
    EXPECT_TRUE(rings[0].text.ends_with(whole.substr(sizeof(tRecorderRing), std::min(text, end))));
  }
}

TEST_F(ViewDump, PortionsDoNotMatter) {
  traceLines(100);
  std::string const dump = std::string(1000, 'x') + ring() + "oxdiag recorder" + ring();
  std::string const wanted = findRings(dump, dump.size()).at(0).text;
  EXPECT_EQ(wanted.size(), kKiB);
  for (size_t const portion : {1u, 7u, 100u, 1024u}) {
    std::vector<tRingFinder::tRing> const rings = findRings(dump, portion);
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_EQ(rings[0].text, wanted);
    EXPECT_EQ(rings[0].offset, 1000u);
  }
}

TEST_F(ViewDump, OfTwoCopiesTheNewerIsShown) {
  traceLines(2);
  std::string const older = ring();
  traceLines(3);
  std::string const newer = ring();
  for (std::string const& dump : {older + newer, newer + older}) {
    std::vector<tRingFinder::tRing> const rings = findRings(dump, dump.size());
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_EQ(std::count(rings[0].text.begin(), rings[0].text.end(), '\n'), 5);
  }
}

TEST_F(ViewDump, TwoRecordersAreBothShown) {
  traceLines(2);
  std::string other = ring();
  other[offsetof(tRecorderRing, address)] ^= 1;
  EXPECT_EQ(findRings(ring() + other, 100).size(), 2u);
}

TEST_F(ViewDump, ChanceTextsAndDamagedHeadsAreNoRings) {
  traceLines(2);
  std::string const whole = ring();
  EXPECT_TRUE(findRings(std::string("oxdiag recorder\0", 16) + "text", 5).empty());
  EXPECT_TRUE(findRings(whole.substr(0, sizeof(tRecorderRing) - 1), 5).empty());
  for (size_t const place :
       {offsetof(tRecorderRing, headSize) + 1, offsetof(tRecorderRing, layout),
        offsetof(tRecorderRing, capacity) + 3, offsetof(tRecorderRing, inverse)}) {
    std::string damaged = whole;
    damaged[place] = static_cast<char>(damaged[place] ^ 0x55);
    EXPECT_TRUE(findRings(damaged, 100).empty()) << place;
  }
}

// Each head claims the same memory behind it, and is newer than the one before, or another's.
TEST_F(ViewDump, HeadsWithoutNumberTakeNoTimeToSpeakOf) {
  constexpr u64 kCapacity = u64{4} << 20;
  constexpr u64 kHeads = 10'000;
  tRecorderRing head = *recorder.getRing();
  head.capacity = kCapacity;
  head.inverse = ~kCapacity;
  std::clock_t const begin = std::clock();
  for (u64 const step : {u64{0}, u64{1}}) {
    std::string dump;
    for (u64 index = 0; index < kHeads; ++index) {
      head.written = kCapacity + index;
      head.address = index * step;
      dump.append(reinterpret_cast<char const*>(&head), sizeof(head));
    }
    EXPECT_EQ(findRings(dump + std::string(kCapacity, 'x'), 1 << 18).size(), step == 0 ? 1u : 8u);
  }
  EXPECT_LT(std::clock() - begin, 8 * CLOCKS_PER_SEC);
}

TEST_F(ViewDump, WithoutARecorderThereIsOneSentence) {
  for (std::string const& dump : {std::string(), std::string(100'000, '\0')}) {
    tRun const done = viewDump(dump);
    EXPECT_EQ(done.exitCode, 1);
    EXPECT_EQ(done.output, "");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(ViewDump, WhatIsSaidOfTheRecorderGoesIntoNoOutput) {
  traceLines(3);
  std::string const command = std::string(kView) + " --dump --html " + pathOf("page") + " <" +
                              write("dump", ring()) + " 2>&-";
  EXPECT_EQ(runProgram({"sh", "-c", command}).exitCode, 0);
  EXPECT_TRUE(readFile("page").starts_with("<!DOCTYPE html>"));
  EXPECT_FALSE(contains(readFile("page"), "a recorder at byte"));
}

TEST_F(ViewDump, WhatIsFoundGoesIntoEveryOutput) {
  traceLines(3);
  write("dump", ring());
  EXPECT_TRUE(contains(view({"--dump", "--summary", pathOf("dump")}).output, "3 lines, "));
  EXPECT_EQ(countLines(view({"--dump", "--jsonl", pathOf("dump")}).output), 3u);
  EXPECT_EQ(view({"--dump", "--filter", "line==18", pathOf("dump")}).output, "");
}
