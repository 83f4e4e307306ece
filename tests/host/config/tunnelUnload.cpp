// The end of the module beside a request that runs: one test, as an image has one life.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <thread>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "vexk/iLib.h"
#include "vexk/module.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kBillions = 0xFFFFFFFF;
constexpr std::chrono::seconds kPatience{20};

// An object that tells when a request has come to it.
class tReachedConfigurable : public tRegisteredRecorder {
 public:
  void configure() override { ++reached; }
  using tRecordingConfigurable::configure;

  void await(u32 count) const {
    while (reached < count) std::this_thread::yield();
  }

  std::atomic<u32> reached = 0;
};

// A request of as many records as its header can name: the first and the last configure an object,
// those in between, hours of them, do nothing. Of its memory only what is written exists, and
// nothing else counts as the program's data, of which it may not have as much.
class tLongestRequest {
 public:
  explicit tLongestRequest(u32 handle)
      : memory(
            mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (!isMapped()) return;
    auto* const header = static_cast<tTunnelHeader*>(memory);
    auto* const records = reinterpret_cast<tTunnelRecord*>(header + 1);
    letWrite(header);
    letWrite(&records[kBillions - 1]);
    *header = {handle, kBillions};
    records[0].operation = records[kBillions - 1].operation = kTunnelConfigure;
  }
  ~tLongestRequest() {
    if (isMapped()) munmap(memory, kSize);
  }
  tLongestRequest(tLongestRequest const&) = delete;
  tLongestRequest& operator=(tLongestRequest const&) = delete;

  bool isMapped() const { return memory != MAP_FAILED; }

  void send() const {
    i32 status = 0;
    iLib::deliver(kTunnelName, std::strlen(kTunnelName), addressOf(memory), status);
    EXPECT_EQ(status, 0);
  }

  // Ends the request at its next record, as one that cannot be read.
  void takeMemory() const { mprotect(memory, kSize, PROT_NONE); }

 private:
  static constexpr size_t kSize = sizeof(tTunnelHeader) + kBillions * sizeof(tTunnelRecord);
  static constexpr u64 kPage = 4096;

  // The page that this is in.
  static void letWrite(void* place) {
    u64 const page = addressOf(place) & ~(kPage - 1);
    EXPECT_EQ(mprotect(reinterpret_cast<void*>(page), kPage, PROT_READ | PROT_WRITE), 0);
  }

  void* const memory;
};

}  // namespace

TEST(TunnelUnload, EndsARequestOfBillionsOfRecordsAtItsNextOne) {
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  tReachedConfigurable object;
  tLongestRequest const request(object.handle);
  ASSERT_TRUE(request.isMapped());
  std::thread caller([&] { request.send(); });
  object.await(1);
  auto unload = std::async(std::launch::async, &oxdiagkUnload);
  EXPECT_EQ(unload.wait_for(kPatience), std::future_status::ready);
  request.takeMemory();
  EXPECT_EQ(unload.get(), STATUS_SUCCESS);
  caller.join();
  EXPECT_EQ(object.reached, 1u);
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the request");
}
