#include "support/tStreamScript.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "qelmk/binaryStream.h"

namespace {

char const* const kClasses[] = {
    "nOXDIAG100::tStatus2Description",
    "nOXDIAG100::tTitleReportable",
    "nOXDIAG100::tWhiteSpaceReportable",
    "nOXDIAG100::tIntrinsicTypeReportable<i32>",
    "nOXDIAG100::tIntrinsicTypeReportable<u32>",
    "nOXDIAG100::tIntrinsicTypeReportable<i64>",
    "nOXDIAG100::tIntrinsicTypeReportable<u64>",
    "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>",
    "nOXDIAG100::tBoundedRangeReportable<i32>",
    "nOXDIAG100::tBoundedRangeReportable<u32>",
    "nOXDIAG100::tBoundedRangeReportable<i64>",
    "nOXDIAG100::tBoundedRangeReportable<u64>",
    "nOXDIAG100::tGUIDReportable",
    "nOXDIAG100::tSSTimeAbsoluteReportable",
    "nOXDIAG100::tPropertyIDReportable",
    "nOXDIAG100::tEnumPropertyReportable",
    "nOXDIAG100::tStringProxyReportable",
    "nOXDIAG100::tReportItem",
    "nOXDIAG100::tStatus2DescriptionImplementation",
};

constexpr size_t kMostBytes = size_t{64} << 10;  // of a file
constexpr u32 kFrontLength = 8;                  // code and flag
constexpr size_t kComponentSize = 24;
constexpr size_t kFileSize = 101;
constexpr size_t kAddresses = 10;
constexpr u32 kDetailLength = 181;

unsigned digitOf(char character) {
  if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
  return static_cast<unsigned>(character | 0x20) - 'a' + 10;
}

std::string bytesOf(std::string const& digits) {
  std::string bytes;
  for (size_t place = 0; place + 1 < digits.size(); place += 2) {
    bytes += static_cast<char>(digitOf(digits[place]) << 4 | (digitOf(digits[place + 1]) & 0xF));
  }
  return bytes;
}

std::string nameOf(std::string const& word) {
  bool const isLetter = word.size() == 1;
  if (!isLetter) return word;
  return kClasses[static_cast<u8>(word[0] - 'A') % std::size(kClasses)];
}

}  // namespace

tStreamScript::tStreamScript(std::string const& input) {
  bool const isFile = input.starts_with(
      std::string(nQELM100::kBinaryStreamMagic, sizeof(nQELM100::kBinaryStreamMagic)));
  if (isFile) bytes = input;
  if (isFile) return;
  for (tScript script(input); bytes.size() < kMostBytes && script.next();) apply(script);
  while (!open.empty()) endObject();
}

void tStreamScript::apply(tScript& script) {
  switch (script.operation("smdo.niltwbxyk")) {
    case 's':
      return beginStream();
    case 'm':
      return putFront(script);
    case 'd':
      return putDetail(script);
    case 'o':
      return beginObject(nameOf(script.text()));
    case '.':
      return endObject();
    case 'n':
      return put(u16{0});
    case 'i':
      return put(static_cast<u32>(script.number()));
    case 'l':
      return put(u64{script.number()} << 32 | script.number());
    case 't':
      return putText(script.text(), false);
    case 'w':
      return putText(script.text(), true);
    case 'b':
      bytes += bytesOf(script.text());
      return;
    case 'x':
      return putRepeated(script);
    case 'y':
      return change(script);
    default:
      bytes.resize(bytes.size() - std::min<size_t>(script.number(), bytes.size()));
  }
}

void tStreamScript::beginStream() {
  while (!open.empty()) endObject();
  bytes.append(nQELM100::kBinaryStreamMagic, sizeof(nQELM100::kBinaryStreamMagic));
  put(nQELM100::kBinaryStreamVersion);
}

// The text behind the code is the list of modules, by its digits.
void tStreamScript::putFront(tScript& script) {
  auto const code = static_cast<i32>(0 - script.number());
  std::string const list = bytesOf(script.text());
  bool const hasModules = !list.empty();
  put(kFrontLength + (hasModules ? static_cast<u32>(8 + list.size()) : 0));
  put(code);
  put(u32{1});
  if (!hasModules) return;
  bytes += "MODS";
  put(static_cast<u32>(list.size()));
  bytes += list;
}

void tStreamScript::putDetail(tScript& script) {
  u32 const line = script.number();
  std::string texts = script.text();
  put(kDetailLength);
  texts.resize(kComponentSize + kFileSize);
  bytes += texts;
  put(line);
  for (u32 index = 0; index < kAddresses; ++index) put(line + index * 0x1000);
  put(i32{-1});
  put(u32{1});
  put(u32{1});
}

void tStreamScript::beginObject(std::string const& name) {
  put(static_cast<u16>(name.size()));
  bytes += name;
  put(u32{0});
  open.push_back(bytes.size());
}

// What cut the stream may have taken the object's beginning.
void tStreamScript::endObject() {
  if (open.empty()) return;
  size_t const content = open.back();
  open.pop_back();
  if (content > bytes.size()) return;
  auto const length = static_cast<u32>(bytes.size() - content);
  std::memcpy(&bytes[content - sizeof(length)], &length, sizeof(length));
}

// A unit a byte; the last bytes become halves of pairs and what lies about them.
void tStreamScript::putText(std::string const& text, bool isWide) {
  put(static_cast<u32>(text.size()));
  if (!isWide) bytes += text;
  if (!isWide) return;
  for (char const character : text) {
    auto const byte = static_cast<u8>(character);
    put(static_cast<u16>(byte < 0xF0 ? byte : 0xD000 + (byte & 0xF) * 0x100));
  }
}

void tStreamScript::putRepeated(tScript& script) {
  size_t count = script.number();
  std::string const part = bytesOf(script.text());
  for (; count != 0 && !part.empty() && bytes.size() < kMostBytes; --count) bytes += part;
}

void tStreamScript::change(tScript& script) {
  size_t const place = script.number();
  if (place < bytes.size()) bytes[bytes.size() - 1 - place] = static_cast<char>(script.number());
}
