// Requests that their program changes while they are served.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <atomic>
#include <cstring>
#include <new>
#include <thread>

#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kRounds = 2000;
constexpr u32 kLong = 8000;
constexpr u32 kShort = 1;

// An object with a long text, which fills the whole buffer it is given.
class tFillingConfigurable : public tRecordingConfigurable {
 public:
  void inquire(char* buffer, unsigned int size, unsigned int* required) override {
    if (buffer != nullptr) std::memset(buffer, 'f', size);
    if (required != nullptr) *required = kLong;
  }
  void configure(char const* options) override { longest = std::strlen(options); }
  using tRecordingConfigurable::configure;

  std::atomic<size_t> longest = 0;
};

// Memory that the tunnel reads through the system while a thread writes it.
class tChangingRequest {
 public:
  tChangingRequest(u32 handle, u32 operation, u64 address) {
    request = new (mmap(nullptr, sizeof(tTestRequest), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0))
        tTestRequest(handle, makeRecord(operation, address, kShort), makeRecord(6));
    changer = std::thread([this] { change(); });
  }
  ~tChangingRequest() {
    isOver = true;
    changer.join();
    munmap(request, sizeof(tTestRequest));
  }
  tChangingRequest(tChangingRequest const&) = delete;
  tChangingRequest& operator=(tChangingRequest const&) = delete;

  void send() const { request->send(); }

 private:
  void change() {
    auto* const length = reinterpret_cast<std::atomic<u64>*>(&request->records[0].source);
    while (!isOver) {
      *length = kLong;
      *length = kShort;
    }
  }

  tTestRequest* request;
  std::atomic<bool> isOver = false;
  std::thread changer;
};

}  // namespace

// The pool's guards tell when a length was believed twice.
TEST(TunnelThreads, AChangingSizeIsTheBuffersAsWellAsTheCopys) {
  static char buffer[kLong];
  tFillingConfigurable filling;
  i32 status = 0;
  u32 const handle = tInstanceRegistry::getInstance().acquire(filling, status);
  {
    tChangingRequest const request(handle, 5, addressOf(buffer));
    for (u32 round = 0; round < kRounds; ++round) request.send();
  }
  ntoshost::verifyPool();
  EXPECT_EQ(buffer[0], 'f');
  releaseInstance(handle);
}

TEST(TunnelThreads, AChangingLengthIsTheTextsAsWellAsTheCopys) {
  static char text[kLong];
  std::memset(text, 'x', sizeof(text));
  tFillingConfigurable filling;
  i32 status = 0;
  u32 const handle = tInstanceRegistry::getInstance().acquire(filling, status);
  {
    tChangingRequest const request(handle, 4, addressOf(text));
    for (u32 round = 0; round < kRounds; ++round) {
      request.send();
      EXPECT_TRUE(filling.longest == kShort || filling.longest == kLong);
    }
  }
  ntoshost::verifyPool();
  releaseInstance(handle);
}
