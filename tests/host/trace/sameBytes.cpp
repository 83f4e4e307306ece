// The bytes of a million pieces of random lines, told by their hash. Whatever is done for the speed
// of the stream, its destination gets the same pieces.
//
// A hash that differs means that some piece differs, in its bytes, in where it was cut, or in which
// put it was handed over by; or a verdict about a line, a nesting level, a setting. A new hash may
// be written here only when a change of behaviour is meant.

#include <sys/mman.h>

#include <memory>

#include "keptLines.h"
#include "startedModules.h"
#include "tRandomUser.h"

using nOXDIAG100::tTrace;

namespace {

using tActions = std::vector<tRandomUser::tAction>;

constexpr u32 kSteps = 100;

// Sanitizers make lines ten times as slow, so they see the first rounds alone.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSlow = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kIsSlow = true;
#else
constexpr bool kIsSlow = false;
#endif
#else
constexpr bool kIsSlow = false;
#endif

// What is known after a number of rounds.
struct tKnown {
  u32 rounds;
  u64 pieces;
  u64 hash;

  bool operator==(tKnown const& other) const {
    return rounds == other.rounds && pieces == other.pieces && hash == other.hash;
  }
};

std::ostream& operator<<(std::ostream& stream, tKnown const& known) {
  return stream << "{" << known.rounds << ", " << known.pieces << ", 0x" << std::hex << known.hash
                << std::dec << "}";
}

// A dump shows where its bytes are, so they are at the same address in every run: one that no
// sanitizer takes for itself.
class tDumped {
 public:
  tDumped()
      : bytes(static_cast<u8*>(mmap(reinterpret_cast<void*>(0x20000000), tRandomUser::kDumpedSize,
                                    PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0))) {
    if (!isThere()) return;
    tRepeatableRandom random(3);
    for (u32 index = 0; index < tRandomUser::kDumpedSize; ++index) {
      bytes[index] = static_cast<u8>(random.next());
    }
  }
  ~tDumped() {
    if (isThere()) munmap(bytes, tRandomUser::kDumpedSize);
  }
  tDumped(tDumped const&) = delete;
  tDumped& operator=(tDumped const&) = delete;

  bool isThere() const { return bytes != MAP_FAILED; }
  u8 const* get() const { return bytes; }

 private:
  u8* bytes;
};

// Does `actions` on the stream, and compares after the rounds of the first known hash and, where
// that does not last too long, after those of the last one.
void expectSame(tTrace& trace, tHashedPieces& pieces, tActions const& actions,
                std::initializer_list<tKnown> knownHashes) {
  tDumped const dumped;
  ASSERT_TRUE(dumped.isThere());
  pieces.traceInto(&trace);
  u32 round = 0;
  for (tKnown const& known : knownHashes) {
    for (; round < known.rounds; ++round) {
      tRandomUser(trace, pieces, dumped.get(), round).run(actions, kSteps);
    }
    EXPECT_EQ((tKnown{round, pieces.getPieces(), pieces.getHash()}), known);
    if (kIsSlow) break;
  }
  pieces.traceInto(nullptr);
}

void expectSame(tActions const& actions, std::initializer_list<tKnown> knownHashes) {
  tHashedPieces pieces;
  tOwnTrace trace(pieces);
  expectSame(trace, pieces, actions, knownHashes);
}

using tUser = tRandomUser;

tActions const kEverything = {
    &tUser::openLine,     &tUser::openLine,     &tUser::openLine,    &tUser::endLine,
    &tUser::endLine,      &tUser::endLine,      &tUser::putText,     &tUser::putText,
    &tUser::putCharacter, &tUser::putNumber,    &tUser::putNumber,   &tUser::putAddress,
    &tUser::putObject,    &tUser::putFormatted, &tUser::putDump,     &tUser::traceByMacro,
    &tUser::traceByMacro, &tUser::traceByMacro, &tUser::traceBlock,  &tUser::changeSwitch,
    &tUser::changeWidth,  &tUser::changeFilter, &tUser::changeMutex, &tUser::changeMaster,
    &tUser::configure};

// Prefixes whose times and threads differ from run to run: a field that is well formed is hashed as
// a mark.
class tTimedPieces : public tHashedPieces {
 protected:
  std::string normalise(std::string const& piece) override {
    size_t const end = piece.find("] ");
    if (piece.empty() || piece[0] != '[' || end == std::string::npos) return piece;
    std::string normal;
    size_t begin = 1;
    while (begin <= end) {
      size_t const next = std::min(piece.find("--", begin), end);
      normal += "--" + normaliseField(piece.substr(begin, next - begin));
      begin = next + 2;
    }
    return normal + piece.substr(end);
  }

 private:
  static std::string normaliseField(std::string const& field) {
    bool const isThread = field.rfind("0x", 0) == 0;
    char const* const digits = isThread ? "0123456789ABCDEF" : "0123456789";
    std::string const number = isThread ? field.substr(2) : field;
    bool const isNumber = !number.empty() && number[0] != '0' &&
                          number.find_first_not_of(digits) == std::string::npos;
    if (!isNumber) return field;
    return isThread ? "<thread>" : "<number>";
  }
};

}  // namespace

TEST(SameBytes, Texts) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::putText, &tUser::putText, &tUser::putText,
              &tUser::putCharacter},
             {{100, 3'533, 0xF5354B508E788FD2}, {1'000, 37'225, 0x45ACA8CE96C9BB65}});
}

TEST(SameBytes, Numbers) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::putNumber, &tUser::putNumber,
              &tUser::putAddress, &tUser::putObject},
             {{100, 3'264, 0xDFB865C55F7E93D5}, {1'000, 32'828, 0x56B1FF6B26DE4002}});
}

TEST(SameBytes, FormattedText) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::putFormatted, &tUser::putFormatted},
             {{100, 4'931, 0x60013B9BD578A011}, {1'000, 49'285, 0x0814792B9C1719EE}});
}

TEST(SameBytes, Dumps) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::putDump},
             {{100, 10'070, 0x34DC4A2CB614557B}, {1'000, 102'656, 0x0F6602766898A10A}});
}

TEST(SameBytes, Prefixes) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::endLine, &tUser::changeSwitch,
              &tUser::changeWidth},
             {{100, 4'036, 0x029B2014A657D5CE}, {1'000, 40'146, 0xC0AACB592895796A}});
}

TEST(SameBytes, MacrosAndBlocks) {
  expectSame({&tUser::traceByMacro, &tUser::traceByMacro, &tUser::traceBlock},
             {{100, 46'779, 0x21A3A427AF396367}, {1'000, 488'533, 0x2FDA1A3ACAAE4A51}});
}

TEST(SameBytes, Filters) {
  expectSame({&tUser::openLine, &tUser::endLine, &tUser::traceByMacro, &tUser::traceByMacro,
              &tUser::changeFilter, &tUser::configure},
             {{100, 8'189, 0x0F8B169FE4125594}, {1'000, 86'223, 0xE3F174556438E252}});
}

TEST(SameBytes, Everything) {
  expectSame(kEverything, {{100, 9'142, 0x2D98928FB6A51220}, {1'000, 91'717, 0x39F246A78CEC841A}});
}

TEST(SameBytes, EverythingOnTheStreamOfTheModule) {
  tHashedPieces pieces;
  tTrace& trace = tTrace::getInstance();
  trace.disable();  // so that the switch is not announced
  nOXDIAG100::iTraceDestination* const former = trace.setDestination(pieces);
  expectSame(trace, pieces, kEverything,
             {{100, 9'142, 0x2D98928FB6A51220}, {1'000, 91'717, 0x39F246A78CEC841A}});
  trace.disable();
  trace.setDestination(*former);
}

TEST(SameBytes, LinesWithTimesAndThread) {
  tTimedPieces pieces;
  tOwnTrace trace(pieces);
  tRepeatableRandom random(5);
  trace.setMinPrefixWidth(0);
  trace.disableTruncation();
  for (u32 line = 0; line < 10'000; ++line) {
    random.oneIn(2) ? trace.enableTimeStamp() : trace.disableTimeStamp();
    random.oneIn(2) ? trace.enableTimeDelta() : trace.disableTimeDelta();
    random.oneIn(2) ? trace.enableThreadId() : trace.disableThreadId();
    random.oneIn(2) ? trace.enableVerbosity() : trace.disableVerbosity();
    u32 const verbosity = 90 + random.below(30);
    trace.putPrefix("slotbus", tSSVersion(), 118, "rack.cpp", verbosity, tTrace::kTraceLine)
        .put("slot ")
        .put(line, 10)
        .endl();
  }
  EXPECT_EQ((tKnown{1, pieces.getPieces(), pieces.getHash()}),
            (tKnown{1, 6'650, 0x40645F336D732218}));
}
