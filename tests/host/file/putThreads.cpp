// Threads that put their texts at once, without a lock around them.

#include <algorithm>
#include <sstream>
#include <thread>

#include "fileCalls.h"

namespace {

constexpr int kThreads = 4;
constexpr int kLines = 100;

class FileThreads : public tFileTest {
 protected:
  FileThreads() {
    configureWith(file, "C:/one.out", "overwrite");
    EXPECT_EQ(file.open(), 1u);
  }

  // Every thread puts its lines "THREAD-NUMBER".
  void putAll() {
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int index = 0; index < kThreads; ++index) {
      threads.emplace_back([this, index] {
        for (int line = 0; line < kLines; ++line) {
          file.put((std::to_string(index) + "-" + std::to_string(line) + "\n").c_str());
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }

  // The lines in the file, sorted.
  std::vector<std::string> lines() const {
    std::istringstream text(drive.read("one.out"));
    std::vector<std::string> found;
    for (std::string line; std::getline(text, line);) found.push_back(line);
    std::sort(found.begin(), found.end());
    return found;
  }

  tFileTraceDestination file;
};

std::vector<std::string> allLines() {
  std::vector<std::string> all;
  for (int index = 0; index < kThreads; ++index) {
    for (int line = 0; line < kLines; ++line) {
      all.push_back(std::to_string(index) + "-" + std::to_string(line) + "\r");
    }
  }
  std::sort(all.begin(), all.end());
  return all;
}

}  // namespace

TEST_F(FileThreads, EveryLineIsWrittenWhole) {
  putAll();
  EXPECT_EQ(lines(), allLines());
}

TEST_F(FileThreads, ThatMeetAnInvalidHandleAtOnceCloseItOnce) {
  std::vector<std::string> const all = allLines();
  ntoshost::failFileCalls(FileCallKind::Write, 50, 40, STATUS_OBJECT_TYPE_MISMATCH);
  putAll();
  std::vector<std::string> const written = lines();
  EXPECT_TRUE(std::includes(all.begin(), all.end(), written.begin(), written.end()));
  EXPECT_GE(written.size(), 49u);
  EXPECT_LT(written.size(), all.size());
  file.close();
  EXPECT_EQ(ntoshost::outstandingHandles(), 0u);
}
