// Binary streams that nobody wrote. What begins like a stream is read as objects, and as a status,
// and so is what lines build that begin with one of "s" (support/tStreamScript.h); everything else
// is the content of an object: its first character says of which class, from 'A' on in the order
// below. Every object and status that comes out is written and read once more. A client's reader
// that cannot tell how much is left reads the same; whichever reads, the memory that it takes is
// bounded by the bytes that were read.

#include <iterator>

#include "ntoshost/executive.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/qelmk.h"
#include "qelmk/tWatchingReader.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"
#include "support/tStreamScript.h"

namespace {

using nOXDIAG100::tStatus2;
using nQELM100::kBinaryStreamHeaderSize;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tClass;
using nQELM100::tObject;

char const* const kClasses[] = {
    "nOXDIAG100::tBoundedRangeReportable<i32>",
    "nOXDIAG100::tBoundedRangeReportable<u32>",
    "nOXDIAG100::tBoundedRangeReportable<i64>",
    "nOXDIAG100::tBoundedRangeReportable<u64>",
    "nOXDIAG100::tEnumPropertyReportable",
    "nOXDIAG100::tGUIDReportable",
    "nOXDIAG100::tIntrinsicTypeReportable<i32>",
    "nOXDIAG100::tIntrinsicTypeReportable<u32>",
    "nOXDIAG100::tIntrinsicTypeReportable<i64>",
    "nOXDIAG100::tIntrinsicTypeReportable<u64>",
    "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>",
    "nOXDIAG100::tPropertyIDReportable",
    "nOXDIAG100::tReportItem",
    "nOXDIAG100::tSSTimeAbsoluteReportable",
    "nOXDIAG100::tStatus2Description",
    "nOXDIAG100::tStatus2DescriptionImplementation",
    "nOXDIAG100::tStringProxyReportable",
    "nOXDIAG100::tTitleReportable",
    "nOXDIAG100::tWhiteSpaceReportable",
    "nOXDIAG100::iVariantReportable",
    "nOXDIAG100::iStatus2Description",
    "nQELM100::iExternalizable",
};

constexpr u64 kFailingAllocations = 3;

std::string header() {
  std::string bytes(kBinaryStreamHeaderSize, '#');
  tBinaryObjectWriter const writer(bytes.data(), bytes.size());
  return bytes;
}

template <class Number>
std::string asBytes(Number number) {
  return std::string(reinterpret_cast<char const*>(&number), sizeof(number));
}

// The stream that write(writer, status) writes; it measures and then fills.
template <class Write>
std::string streamBy(Write write) {
  i32 status = 0;
  tBinaryObjectWriter counter(nullptr, 0);
  write(counter, status);
  std::string bytes(counter.getSize(), '#');
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  write(writer, status);
  writer.finish(status);
  demand(status >= 0 && writer.getSize() == bytes.size(), "what was read can be written",
         [&] { return std::to_string(status); });
  return bytes;
}

std::string streamOf(tObject const& object) {
  return streamBy(
      [&](tBinaryObjectWriter& writer, i32& status) { writer.writeObject(&object, status); });
}

std::string streamOf(tStatus2 const& value) {
  return streamBy(
      [&](tBinaryObjectWriter& writer, i32& status) { value.writeExternal(writer, status); });
}

void destroy(tObject* object) {
  i32 status = 0;
  object->getClass(status).deleteInstance(object, status);
  demand(status == 0, "an object is destroyed by its class",
         [&] { return std::to_string(status); });
}

// The written form of the next object; empty when there is none.
std::string nextObject(tBinaryObjectReader& reader, i32& status) {
  size_t const before = reader.getPosition();
  tObject* const object = reader.readObject(status);
  demand(status >= 0 || object == nullptr, "a failure returns no object", [] { return "one"; });
  demand(reader.getPosition() >= before, "a reader never goes back", [] { return "it did"; });
  if (object == nullptr) return "";
  std::string const bytes = streamOf(*object);
  destroy(object);
  return bytes;
}

void demandSameObject(std::string const& bytes) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tBinaryObjectReader reader(exact.get(), bytes.size(), status);
  demandEqual(nextObject(reader, status), bytes, "an object is read as it was written");
  demand(reader.isAtEnd(), "an object takes all its bytes", [] { return "some are left"; });
}

void readObjects(std::string const& bytes) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tBinaryObjectReader reader(exact.get(), bytes.size(), status);
  while (status >= 0 && !reader.isAtEnd()) {
    std::string const object = nextObject(reader, status);
    if (!object.empty()) demandSameObject(object);
  }
  demand(reader.getFailurePosition() <= bytes.size(), "a failure is inside the stream",
         [&] { return std::to_string(reader.getFailurePosition()); });
}

u64 bytesRead(tBinaryObjectReader const& reader, i32 status) {
  return status < 0 ? reader.getFailurePosition() : reader.getPosition();
}

void demandBounded(u64 taken, u64 read) {
  demand(isBounded(taken, read), "memory grows with what was read",
         [&] { return std::to_string(taken) + " bytes for " + std::to_string(read); });
}

// An object as far as it can be read, without a look at it.
void measureObjects(std::string const& bytes) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tWatchedPool pool;
  tBinaryObjectReader reader(exact.get(), bytes.size(), status);
  while (status >= 0 && !reader.isAtEnd()) {
    nQELM100::destroyThroughClass(reader.readObject(status));
  }
  demandBounded(pool.takePeak(), bytesRead(reader, status));
}

void demandNoFinding(tWatchingReader const& reader) {
  demand(reader.getFinding().empty(), "memory grows with what was read",
         [&] { return reader.getFinding(); });
}

void readObjectsBlindly(std::string const& bytes) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tWatchingReader reader(exact.get(), bytes.size(), status);
  while (status >= 0 && reader.getPosition() < bytes.size()) {
    nQELM100::destroyThroughClass(reader.readObject(status));
  }
  demandNoFinding(reader);
}

void readStatusBlindly(std::string const& bytes) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tWatchingReader reader(exact.get(), bytes.size(), status);
  tStatus2 value;
  value.readExternal(reader, status);
  demandNoFinding(reader);
}

i32 readStatus(std::string const& bytes, tStatus2& value) {
  tExactText exact(bytes, false);
  i32 status = 0;
  tWatchedPool pool;
  tBinaryObjectReader reader(exact.get(), bytes.size(), status);
  value.readExternal(reader, status);
  demandBounded(pool.takePeak(), bytesRead(reader, status));
  return status;
}

void readStatus(std::string const& bytes) {
  tStatus2 value;
  if (readStatus(bytes, value) < 0) return;
  std::string const written = streamOf(value);
  tStatus2 again;
  demand(readStatus(written, again) >= 0, "a written status is read", [] { return "a failure"; });
  demandEqual(streamOf(again), written, "a status is read as it was written");
}

// What fails for want of memory leaves nothing behind, which is looked at behind every input.
void readWithoutMemory(std::string const& bytes) {
  for (u64 n = 1; n <= kFailingAllocations; ++n) {
    tExactText exact(bytes, false);
    i32 status = 0;
    tBinaryObjectReader reader(exact.get(), bytes.size(), status);
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    tObject* const object = reader.readObject(status);
    ntoshost::clearFaults();
    demand(status >= 0 || object == nullptr, "a failure returns no object", [] { return "one"; });
    if (object != nullptr) destroy(object);
  }
}

std::string asObject(std::string const& input) {
  std::string const name = kClasses[static_cast<u8>(input[0] - 'A') % std::size(kClasses)];
  i32 status = 0;
  demand(tClass::forName(name.c_str(), status).isValid(), "the class is registered",
         [&] { return name; });
  std::string const content = input.substr(1);
  return header() + asBytes(static_cast<u16>(name.size())) + name +
         asBytes(static_cast<u32>(content.size())) + content;
}

}  // namespace

void fuzzInput(std::string const& given) {
  std::string const input = given.starts_with("s\n") ? tStreamScript(given).getBytes() : given;
  if (input.empty()) return;
  bool const isStream = input.starts_with(header().substr(0, sizeof(nQELM100::kBinaryStreamMagic)));
  std::string const bytes = isStream ? input : asObject(input);
  readObjects(bytes);
  measureObjects(bytes);
  readObjectsBlindly(bytes);
  readWithoutMemory(bytes);
  std::string const status = isStream ? input : header() + input;
  readStatus(status);
  readStatusBlindly(status);
}
