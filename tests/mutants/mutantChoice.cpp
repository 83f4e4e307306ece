// Linked into each woven program: which mutant it is, and which places its tests reach.
//   OXDIAG_MUTANT        the number of the chosen one
//   OXDIAG_MUTANT_PLACES the file to write, a line for a test: its name, its time in microseconds,
//                        the numbers of the places reached. What is reached before the first test
//                        has the name "-"; what is reached after the last, "+".

#include "mutant.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr size_t kNumbers = OXDIAG_MUTANT_NUMBERS;
unsigned char unread[kNumbers];

class tPlaceWriter : public testing::EmptyTestEventListener {
 public:
  explicit tPlaceWriter(char const* name)
      : process(getpid()), file(open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)) {}

  void OnTestStart(testing::TestInfo const& /*test*/) override {
    if (isFirst) write("-", 0);
    isFirst = false;
    start = std::chrono::steady_clock::now();
    std::memset(oxdiagMutantReached, 0, kNumbers);
  }

  void OnTestEnd(testing::TestInfo const& test) override {
    auto const took = std::chrono::steady_clock::now() - start;
    bool const hasFailed = test.result()->Failed() || test.result()->Skipped();
    std::string const name = std::string(test.test_suite_name()) + "." + test.name();
    write((hasFailed ? "!" : "") + name,
          std::chrono::duration_cast<std::chrono::microseconds>(took).count());
    std::memset(oxdiagMutantReached, 0, kNumbers);
  }

  void atEnd() {
    if (getpid() == process) write("+", 0);
  }

 private:
  void write(std::string const& name, long long microseconds) {
    std::string line = name + " " + std::to_string(microseconds);
    for (size_t number = 0; number < kNumbers; ++number) {
      if (oxdiagMutantReached[number] != 0) line += " " + std::to_string(number);
    }
    line += "\n";
    if (::write(file, line.data(), line.size()) < 0) std::abort();
  }

  pid_t process;
  int file;
  bool isFirst = true;
  std::chrono::steady_clock::time_point start;
};

tPlaceWriter* writer = nullptr;

// Children that are forked mark the places of the same memory.
__attribute__((constructor)) void choose() {
  char const* const number = std::getenv("OXDIAG_MUTANT");
  if (number != nullptr) oxdiagMutantChosen = std::atoi(number);
  char const* const places = std::getenv("OXDIAG_MUTANT_PLACES");
  if (places == nullptr) return;
  std::string const name = places;
  unsetenv("OXDIAG_MUTANT_PLACES");  // not for the programs that this one starts
  void* const shared =
      mmap(nullptr, kNumbers, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) std::abort();
  oxdiagMutantReached = static_cast<unsigned char*>(shared);
  writer = new tPlaceWriter(name.c_str());
  testing::UnitTest::GetInstance()->listeners().Append(writer);
  std::atexit([] { writer->atEnd(); });
}

}  // namespace

int oxdiagMutantChosen = 0;
unsigned char* oxdiagMutantReached = unread;
