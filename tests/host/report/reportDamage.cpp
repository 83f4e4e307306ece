// Files of statuses that are cut, changed or made up: one sentence, at a byte of the file.

#include <random>

#include "oxdiagreport/jsonFormat.h"
#include "oxdiagreport/tStatusFile.h"
#include "oxdiagreport/textFormat.h"
#include "rounds.h"
#include "slotbus/savedStatuses.h"

using nOXDIAG100::tStatus2;

namespace {

struct tReadFile {
  u32 statuses = 0;
  bool isWhole = false;
  std::string problem;
};

// Reads a file as the tool does, and renders every status. The bytes are in a block of exactly
// their size, so that the address sanitizer sees every read beyond them.
tReadFile readFile(std::string const& bytes) {
  std::unique_ptr<char[]> const kept(new char[bytes.size()]);
  bytes.copy(kept.get(), bytes.size());
  tStatusFile file(std::string_view(kept.get(), bytes.size()));
  tWordFile const words;
  tLanguage const language("english", words);
  tCallStackReader stacks;
  tReadFile done;
  tStatus2 status;
  while (!file.isAtEnd() && file.read(status)) {
    ++done.statuses;
    auto const frames = stacks.framesOf(status, file.getModules());
    EXPECT_FALSE(textOf(status, 1, language, frames).empty());
    EXPECT_FALSE(jsonOf(status, language, frames, file.getModules()).empty());
  }
  done.isWhole = file.isAtEnd();
  done.problem = file.getProblem();
  return done;
}

size_t placeOf(std::string const& problem) {
  std::string const begin = "damaged at byte ";
  EXPECT_EQ(problem.substr(0, begin.size()), begin) << problem;
  return std::strtoul(problem.c_str() + begin.size(), nullptr, 10);
}

std::string const kRack = "1O | 1 | A | d\n4\n1 | 1 | A | d";

}  // namespace

TEST(ReportDamage, WholeFilesAreRead) {
  tReadFile const done = readFile(savedBytes(kRack));
  EXPECT_TRUE(done.isWhole);
  EXPECT_EQ(done.statuses, 2U);
  EXPECT_EQ(done.problem, "");
}

TEST(ReportDamage, AFileCutAtAnyByteIsToldAtAByteInIt) {
  u64 const before = ntoshost::outstandingBlocks();
  std::string const bytes = savedBytes(kRack);
  std::string const first = savedBytes("1O | 1 | A | d\n1 | 1 | A | d");
  for (size_t size = 1; size < bytes.size(); ++size) {
    if (size % kPlaceStep != 0 && size != first.size()) continue;
    tReadFile const done = readFile(bytes.substr(0, size));
    bool const isBetweenStatuses = size == first.size();
    EXPECT_EQ(done.isWhole, isBetweenStatuses) << size;
    EXPECT_EQ(done.statuses, size < first.size() ? 0U : 1U) << size;
    if (done.isWhole) continue;
    EXPECT_LE(placeOf(done.problem), size);
    EXPECT_NE(done.problem.find("the status is cut off"), std::string::npos) << done.problem;
  }
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(ReportDamage, AFileChangedAtAnyByteIsReadOrToldOf) {
  u64 const before = ntoshost::outstandingBlocks();
  std::string const bytes = savedBytes("1O | 1 | A | d\n1 | 1 | A | d", true);
  u32 told = 0;
  for (size_t place = 0; place < bytes.size(); place += kPlaceStep) {
    for (int const change : {0x01, 0x80, 0xFF}) {
      std::string changed = bytes;
      changed[place] = static_cast<char>(changed[place] ^ change);
      tReadFile const done = readFile(changed);
      EXPECT_EQ(done.isWhole, done.problem.empty());
      if (done.isWhole) continue;
      ++told;
      EXPECT_LE(placeOf(done.problem), bytes.size());
    }
  }
  EXPECT_GT(told, 100U / kPlaceStep);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(ReportDamage, AFileWithModulesIsReadAsOneWithout) {
  std::string const bytes = savedBytes(kRack, true);
  EXPECT_GT(bytes.size(), savedBytes(kRack).size());
  tReadFile const done = readFile(bytes);
  EXPECT_TRUE(done.isWhole);
  EXPECT_EQ(done.statuses, 2U);
}

TEST(ReportDamage, BytesBehindAStatusAreNoStatus) {
  std::string const bytes = savedBytes("1O | 1 | A | d\n1 | 1 | A | d");
  tReadFile const done = readFile(bytes + "behind the end");
  EXPECT_EQ(done.statuses, 1U);
  EXPECT_EQ(done.problem,
            "damaged at byte " + std::to_string(bytes.size()) + ": no status begins there");
}

TEST(ReportDamage, AStatusOfALaterVersionIsToldOf) {
  std::string bytes = savedBytes(kRack);
  bytes[4] = 2;
  EXPECT_EQ(readFile(bytes).problem,
            "damaged at byte 0: the status is of a later version than this program knows");
}

TEST(ReportDamage, AnUnknownClassIsToldOf) {
  std::string bytes = savedBytes(kRack);
  size_t const place = bytes.find("tTitleReportable");
  bytes[place] = 'x';
  tReadFile const done = readFile(bytes);
  EXPECT_NE(done.problem.find("an object is of a class that this program does not know"),
            std::string::npos)
      << done.problem;
}

TEST(ReportDamage, RandomBytesAreNoStatus) {
  std::mt19937 random(4);
  for (u32 round = 0; round < 500; ++round) {
    std::string bytes = savedBytes("4").substr(0, 8);
    for (u32 count = random() % 400; count != 0; --count) bytes += static_cast<char>(random());
    tReadFile const done = readFile(bytes);
    EXPECT_EQ(done.isWhole, done.problem.empty());
  }
}
