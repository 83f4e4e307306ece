#include "tRandomUser.h"

#include "macroSites.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tTraceFilter.h"

using nOXDIAG100::tBlockTracer;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceFilter;

namespace {

constexpr u32 kMostOpenLines = 32;  // of which a stream remembers the verdicts
constexpr u32 kMostOpenBlocks = 5;
constexpr u32 kArgumentCount = 24;

char const* const kTexts[] = {
    "",
    "slot",
    "a fan of the rack",
    "0123456789ABCDEF",
    "two\nlines",
    "\n",
    "\x80\xFF\t%s %d",
    "a text of such a length that a conversion of it is wider than most of the widths are"};
wchar_t const* const kWideTexts[] = {L"", L"wide", L"rack \x0141\x20AC", L"two\nwide lines"};

constexpr char kLongName[] =
    "a name of a component that is longer than the prefix is wide, and longer than two of them, "
    "so that it alone fills a line when it is not cut: it has more than two hundred and fifty "
    "five characters, as this one has, which goes on and on until there are enough of them";

// An object that writes itself.
class tDevice : public nOXDIAG100::iTraceable {
 public:
  explicit tDevice(u32 slot) : slot(slot) {}
  void put(tTrace& trace) const override { trace.put("device ").put(slot, 10).put('\n'); }

 private:
  u32 slot;
};

// A made-up address.
void* addressOf(u64 number) {
  return reinterpret_cast<void*>(number & 0x7FFFFFFFFFFF);
}

}  // namespace

void tRandomUser::run(std::vector<tAction> const& actions, u32 steps) {
  reset();
  for (u32 step = 0; step < steps; ++step) {
    (this->*actions[random.below(static_cast<u32>(actions.size()))])();
    pieces.add((static_cast<u64>(trace.getNestingLevel()) << 1) | (trace.isLineShown() ? 1 : 0));
  }
  closeAll();
}

void tRandomUser::reset() {
  trace.configure(
      "--on --compname on --compver off --linenumber on --filename on --filepath off "
      "--timestamp off --timedelta off --threadid off --verbosity off --indent on "
      "--truncation on --mutex off --prefixwidth 50 --filter verbosity>=100");
}

// An exit of a hidden block lowers the level as well.
void tRandomUser::closeAll() {
  for (; openLines != 0; --openLines) trace.endl();
  trace.endl();
  trace.disable();
  while (trace.getNestingLevel() > 0) {
    trace.putPrefix("", tSSVersion(), 0, "", 0, tTrace::kBlockExit).endl();
  }
  trace.enable();
}

// Mostly letters, with newlines and NUL characters at every distance from each other.
std::string tRandomUser::makeText() {
  static char const letters[] = "abcdefghijklmnopqrstuvwxyz\x80\xFF\x0B\x09\x01\x8A";
  static u32 const lengths[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 40, 100, 254, 255, 256};
  std::string text(random.of(lengths), ' ');
  u32 const rarity = 1 + random.below(random.oneIn(4) ? 60 : 2000);
  for (char& character : text) {
    character = letters[random.below(sizeof(letters) - 1)];
    if (random.oneIn(rarity)) character = random.oneIn(3) ? '\0' : '\n';
  }
  return text;
}

char const* tRandomUser::name() {
  static char const* const names[] = {"slotbus",    "rack",   "", nullptr, "a-name--with] dashes",
                                      "two\nlines", kLongName};
  return random.of(names);
}

char const* tRandomUser::file() {
  static char const* const files[] = {"source/io\\port.cpp",
                                      "port.cpp",
                                      "",
                                      nullptr,
                                      "a\\b\\",
                                      "/a/very/long/path/of/a/source/of/the/component/tRack.cpp",
                                      "aFileOfANameThatIsLongerThanThePrefixOfALineIs.cpp"};
  return random.of(files);
}

u32 tRandomUser::verbosity() {
  static u32 const levels[] = {0, 50, 60, 99, 100, 101, 110, 120, 150, 200, 0xFFFFFFFF};
  return random.of(levels);
}

u32 tRandomUser::radix() {
  static u32 const radices[] = {10, 10, 10, 16, 16, 16,  2,   8,
                                3,  36, 37, 0,  1,  200, 300, 0xFFFFFFFF};
  return random.of(radices);
}

void tRandomUser::openLine() {
  if (openLines == (random.oneIn(8) ? kMostOpenLines : 2)) return endLine();
  if (openLines == kMostOpenLines) return endLine();
  ++openLines;
  tSSVersion const version(static_cast<u32>(random.number()));
  u32 const line = static_cast<u32>(random.number());
  tTrace::tTraceType const type =
      random.of({tTrace::kTraceLine, tTrace::kTraceLine, tTrace::kBlockEntry, tTrace::kBlockExit});
  char const* const component = name();
  char const* const source = file();
  u32 const level = verbosity();
  if (random.oneIn(2)) {
    trace.putPrefix(component, version, line, source, level, type);
  } else {
    trace.putPrefix(const_cast<char*>(component), version, line, const_cast<char*>(source), level,
                    type);
  }
}

void tRandomUser::endLine() {
  if (openLines != 0) --openLines;
  trace.endl();
}

void tRandomUser::putText() {
  std::string const text = makeText();
  switch (random.below(5)) {
    case 0:
      trace.put(text.c_str());
      break;
    case 1:
      trace.put(text.data(), static_cast<unsigned int>(text.size()));
      break;
    case 2:
      putCountedText();
      break;
    case 3:
      putWideText();
      break;
    default:
      trace.put(random.of(kTexts));
      break;
  }
}

void tRandomUser::putCountedText() {
  std::string const text = makeText();
  if (random.oneIn(8)) {
    trace.put(static_cast<char const*>(nullptr)).put(static_cast<char const*>(nullptr), 5);
  } else {
    trace.put(_STL::string(text.data(), text.size()));
  }
}

void tRandomUser::putWideText() {
  std::vector<wchar_t> units;
  for (char const character : makeText()) {
    units.push_back(static_cast<wchar_t>(static_cast<u8>(character) | (random.below(3) << 8)));
  }
  units.push_back(0);
  switch (random.below(4)) {
    case 0:
      trace.put(static_cast<wchar_t const*>(nullptr)).put(random.of(kWideTexts));
      break;
    case 1:
      trace.put(units.data());
      break;
    default:
      trace.put(_STL::wstring(units.data(), units.size() - 1));
      break;
  }
}

void tRandomUser::putCharacter() {
  u32 const number = random.below(256);
  switch (random.below(4)) {
    case 0:
      trace.put(static_cast<char>(number));
      break;
    case 1:
      trace.put(static_cast<signed char>(number));
      break;
    case 2:
      trace.put(static_cast<unsigned char>(number));
      break;
    default:
      trace.put(number < 128);
      break;
  }
}

void tRandomUser::putNumber() {
  u64 const number = random.oneIn(2) ? random.number() : 0 - random.number();
  switch (random.below(9)) {
    case 0:
      trace.put(static_cast<short>(number), radix());
      break;
    case 1:
      trace.put(static_cast<unsigned short>(number), radix());
      break;
    case 2:
      trace.put(static_cast<int>(number), radix());
      break;
    case 3:
      trace.put(static_cast<unsigned int>(number), radix());
      break;
    case 4:
      trace.put(static_cast<long>(number), radix());
      break;
    case 5:
      trace.put(static_cast<unsigned long>(number), radix());
      break;
    case 6:
      trace.put(static_cast<long long>(number), radix());
      break;
    case 7:
      trace.put(static_cast<unsigned long long>(number), radix());
      break;
    default:
      trace.put(static_cast<int>(0x80000000), radix()).put(static_cast<int>(random.below(3)), 10);
      break;
  }
}

void tRandomUser::putAddress() {
  void* const address = addressOf(random.number());
  tMemBlockReferenceTemplate<char> empty;
  switch (random.below(5)) {
    case 0:
      trace.put(static_cast<void const*>(address));
      break;
    case 1:
      trace.put(static_cast<int volatile*>(address));
      break;
    case 2:
      trace.put(reinterpret_cast<void (*)(int)>(address));
      break;
    case 3:
      trace.put(empty);
      break;
    default:
      trace.put(address);
      break;
  }
}

void tRandomUser::putObject() {
  i32 const code = static_cast<i32>(random.number());
  tStatus2 status(code);
  tStatus2 const fixedStatus(-code);
  switch (random.below(8)) {
    case 0:
      trace.put(status);
      break;
    case 1:
      trace.put(fixedStatus);
      break;
    case 2:
    case 3:
    case 4:
      trace.put(tDevice(random.below(100)));
      break;
    default:
      trace.put(tSSVersion(static_cast<u32>(random.next())));
      break;
  }
}

// Width or precision: none, digits, or an argument.
std::string tRandomUser::makeStars(std::vector<u64>& arguments) {
  if (random.oneIn(2)) return "";
  u32 const number = random.oneIn(50) ? random.below(1200) : random.below(24);
  if (!random.oneIn(3)) return std::to_string(number);
  arguments.push_back(random.oneIn(3) ? 0 - static_cast<u64>(number) : number);
  return "*";
}

std::string tRandomUser::makeConversion(std::vector<u64>& arguments) {
  static char const letters[] = "ddiiuuooxxXXsssscp%fEgq";
  std::string conversion = "%";
  for (u32 count = random.below(4); count != 0; --count) conversion += "-+ #0"[random.below(5)];
  conversion += makeStars(arguments);
  if (random.oneIn(3)) conversion += "." + makeStars(arguments);
  bool const isWide = random.oneIn(5);
  if (isWide) conversion += 'l';
  if (!isWide && random.oneIn(5)) conversion += "hL"[random.below(2)];
  char const letter = random.oneIn(3) ? 's' : letters[random.below(sizeof(letters) - 2)];
  conversion += random.oneIn(200) ? 'q' : letter;
  char const* const text = random.oneIn(10) ? nullptr : random.of(kTexts);
  u64 const address =
      isWide ? reinterpret_cast<u64>(random.of(kWideTexts)) : reinterpret_cast<u64>(text);
  bool const isTaken = __builtin_strchr("%feEgG", letter) == nullptr;
  if (isTaken) arguments.push_back(letter == 's' ? address : random.number());
  return conversion;
}

// Each argument has 64 bits, of which a number takes the low half.
void tRandomUser::putFormatted() {
  std::vector<u64> arguments;
  std::string format;
  for (u32 count = random.below(6); count != 0; --count) {
    format += random.oneIn(3) ? "" : random.of({" ", "slot ", ", \n", "answered: ", "0x"});
    format += makeConversion(arguments);
  }
  format += random.of({"", ".", " units", "%"});
  arguments.resize(kArgumentCount);
  u64 const* const a = arguments.data();
  trace.putf(random.oneIn(300) ? nullptr : format.c_str(), a[0], a[1], a[2], a[3], a[4], a[5], a[6],
             a[7], a[8], a[9], a[10], a[11], a[12], a[13], a[14], a[15], a[16], a[17], a[18], a[19],
             a[20], a[21], a[22], a[23]);
}

void tRandomUser::putDump() {
  static u32 const units[] = {0, 1, 1, 2, 2, 3, 4, 4, 4, 5, 7, 8, 12, 15, 16, 17, 1000};
  u32 const length = random.below(random.oneIn(8) ? 300 : 40);
  u8 const* const bytes = dumped + random.below(kDumpedSize - 300);
  switch (random.below(16)) {
    case 0:
      trace.put(static_cast<void const*>(nullptr), length, random.of(units));
      break;
    case 1:
      trace.put(const_cast<void*>(static_cast<void const*>(bytes)), length, random.of(units));
      break;
    default:
      trace.put(static_cast<void const*>(bytes), length, random.of(units));
      break;
  }
}

void tRandomUser::traceByMacro() {
  u32 const level = verbosity();
  u32 const slot = random.below(300);
  switch (random.below(12)) {
    case 0:
      return macroSites::hide(trace, slot);
    case 1:
    case 2:
      return macroSites::format(trace, level, slot);
    case 3:
      return macroSites::traceWithin(trace, level, slot);
    case 4:
      return macroSites::block(trace, level, slot);
    case 5:
      return macroSites::objectBlock(trace, level, reinterpret_cast<u64>(addressOf(slot * 99)));
    case 6:
      return macroSites::statusBlock(trace, level, static_cast<i32>(slot) - 150);
    case 7:
      return macroSites::detailBlock(trace, level, static_cast<i32>(slot) - 150);
    default:
      return macroSites::answer(trace, slot);
  }
}

void tRandomUser::traceBlock() {
  if (openBlocks == kMostOpenBlocks) return;
  ++openBlocks;
  i32 code = static_cast<i32>(random.below(5));
  tStatus2 status(code);
  bool const isOld = random.oneIn(2);
  bool const hasStatus = random.oneIn(2);
  char* const blockName = const_cast<char*>(random.of(kTexts));
  char* const component = const_cast<char*>(name());
  char* const source = const_cast<char*>(file());
  u32 const level = verbosity();
  tSSVersion const version(static_cast<u32>(random.number()));
  void* const object = random.oneIn(2) ? nullptr : addressOf(random.number());
  auto const fill = [&] {
    for (u32 count = random.below(4); count != 0; --count) {
      random.oneIn(2) ? traceByMacro() : traceBlock();
    }
    code -= 7;
    status.setCode(code);
  };
  if (isOld) {
    tBlockTracer const block(component, version, 7, source, level, blockName, object,
                             hasStatus ? &code : nullptr, trace);
    fill();
  } else {
    tBlockTracer const block(component, version, 8, source, level, blockName, object,
                             hasStatus ? &status : nullptr, trace);
    fill();
  }
  --openBlocks;
}

void tRandomUser::changeSwitch() {
  struct tSwitch {
    void (tTrace::*enable)();
    void (tTrace::*disable)();
    u32 (tTrace::*get)() const;
  };
  static tSwitch const switches[] = {
      {&tTrace::enableComponentName, &tTrace::disableComponentName,
       &tTrace::componentNameIsEnabled},
      {&tTrace::enableComponentVersion, &tTrace::disableComponentVersion,
       &tTrace::componentVersionIsEnabled},
      {&tTrace::enableLineNumber, &tTrace::disableLineNumber, &tTrace::lineNumberIsEnabled},
      {&tTrace::enableFileName, &tTrace::disableFileName, &tTrace::fileNameIsEnabled},
      {&tTrace::enableFilePath, &tTrace::disableFilePath, &tTrace::filePathIsEnabled},
      {&tTrace::enableVerbosity, &tTrace::disableVerbosity, &tTrace::verbosityIsEnabled},
      {&tTrace::enableIndenting, &tTrace::disableIndenting, &tTrace::indentingIsEnabled},
      {&tTrace::enableTruncation, &tTrace::disableTruncation, &tTrace::truncationIsEnabled}};
  tSwitch const& chosen = random.of(switches);
  (trace.*(random.oneIn(2) ? chosen.enable : chosen.disable))();
  pieces.add((trace.*chosen.get)());
  if (random.oneIn(8)) trace.putPrefixPrototype();
}

void tRandomUser::changeWidth() {
  static u32 const widths[] = {0, 1, 2, 10, 30, 50, 50, 60, 64, 65, 66, 128, 129, 200, 255, 300};
  trace.setMinPrefixWidth(random.of(widths));
  pieces.add(trace.getMinPrefixWidth());
}

std::string tRandomUser::makeTerm() {
  static char const* const terms[] = {"verbosity>=100",
                                      "verbosity>=60",
                                      "verbosity<150",
                                      "verb!=0x78",
                                      "linenumber<500",
                                      "line==2#1000",
                                      "line>16#0",
                                      "compname==rack",
                                      "comp!=slotbus",
                                      "compname>=s",
                                      "compver==1.0.0f1",
                                      "compver<2",
                                      "filename==port.cpp",
                                      "file!=source/io\\port.cpp",
                                      "threadid>0",
                                      "threadid!=0",
                                      "verbosity=5",
                                      "colour==1",
                                      "verbosity>=",
                                      "compname==",
                                      "line"};
  return random.of(terms);
}

std::string tRandomUser::makeFilter() {
  std::string filter = random.oneIn(4) ? random.of({"&& ", "||", " || "}) : "";
  filter += makeTerm();
  for (u32 count = random.below(3); count != 0; --count) {
    filter += random.of({" && ", "||", "||", " ", "  || "});
    filter += makeTerm();
  }
  return filter;
}

void tRandomUser::addTerm(tTraceFilter& filter) {
  char const* const text = random.of({">=100", "== 5", "!=rack", "x"});
  u32 const connector = 1 + random.below(2);
  filter.addTerm(text, connector, static_cast<i32>(random.below(tTraceFilter::kFieldCount)));
}

void tRandomUser::changeFilter() {
  tTraceFilter& filter = *trace.getFilter();
  switch (random.below(6)) {
    case 0:
      filter.removeAll();
      break;
    case 1:
      filter.removeField(static_cast<i32>(random.below(7)));
      break;
    case 2:
      addTerm(filter);
      break;
    case 3:
      filter.parseExpression("verbosity>=100");
      break;
    default:
      filter.parseExpression(makeFilter().c_str());
      break;
  }
}

void tRandomUser::changeMaster() {
  random.oneIn(4) ? trace.disable() : trace.enable();
}

// A line that was opened under the mutex is ended first.
void tRandomUser::changeMutex() {
  if (openBlocks != 0) return;
  for (; openLines != 0; --openLines) trace.endl();
  random.oneIn(2) ? trace.enableMutex() : trace.disableMutex();
}

void tRandomUser::configure() {
  static char const* const words[] = {"--compname",  "--compver",  "--linenumber", "--filename",
                                      "--verbosity", "--filepath", "--indent",     "--truncation"};
  std::string options = random.oneIn(12) ? "--off" : "--on";
  for (u32 count = random.below(4); count != 0; --count) {
    options += " ";
    options += random.of(words);
    options += random.of({"", " on", " off", " on"});
  }
  if (random.oneIn(3)) options += " --prefixwidth " + std::to_string(random.below(90));
  if (random.oneIn(3)) options += " --filter \"" + makeFilter() + "\"";
  if (random.oneIn(3)) options += " --verbosity " + makeTerm();
  trace.configure(options.c_str());
  unsigned int needed = 0;
  trace.inquire(nullptr, 0, &needed);
  std::string text(needed, '#');
  trace.inquire(text.data(), needed, nullptr);
  pieces.add(text.substr(0, text.find(" --calibrate")));
}
