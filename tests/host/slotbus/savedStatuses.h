#pragma once

// What a rack's statuses look like when they were saved and read back.

#include <map>
#include <string>
#include <vector>

#include "oxdiagk/tStatus2Description.h"
#include "oxdiagreport/inputFile.h"
#include "oxdiagreport/reportText.h"
#include "oxdiagreport/tWordFile.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/tBinaryObjectReader.h"
#include "slotbus/slotbusSupport.h"
#include "translators/english/tEnglishTranslator.h"

// The words of the slot bus in a language.
inline nTRANSLATORS100::tVocabulary slotbusWords(std::string const& language) {
  static std::map<std::string, tWordFile> files;
  auto const [place, isNew] = files.try_emplace(language);
  std::string problem;
  if (isNew) {
    auto const text =
        readInput(OXDIAG_SOURCE_DIR "/examples/slotbus/words/" + language + ".words", problem);
    EXPECT_TRUE(text && place->second.add(*text, problem)) << problem;
  }
  return place->second.find("slotbus");
}

// The bytes that reading a rack's text saves.
inline std::string savedBytes(std::string const& text, bool hasModules = false) {
  tKeepingDestination destination;
  tKeepingStream stream(destination);
  nSLOTBUS100::tRack rack;
  nSLOTBUS100::tStatusRecord record(hasModules);
  EXPECT_TRUE(record.allocate());
  nSLOTBUS100::tRackReader reader(rack, stream, &record);
  reader.read(nSLOTBUS100::tTextSpan(text.data(), text.size()));
  EXPECT_EQ(record.getMissingCount(), 0U);
  return std::string(reinterpret_cast<char const*>(record.getBytes()), record.getLength());
}

// Reads one status after the other: the status heap has room for about forty at a time.
template <class tAction>
void forEachStatus(std::string const& bytes, tAction action) {
  size_t position = 0;
  i32 code = 0;
  while (position < bytes.size() && code >= 0) {
    nQELM100::tBinaryObjectReader reader(bytes.data() + position, bytes.size() - position, code);
    nOXDIAG100::tStatus2 status;
    status.readExternal(reader, code);
    if (code >= 0) action(status);
    position += reader.getPosition();
  }
  EXPECT_EQ(code, 0);
}

inline std::vector<nOXDIAG100::tStatus2> statusesIn(std::string const& bytes) {
  std::vector<nOXDIAG100::tStatus2> statuses;
  forEachStatus(bytes, [&](nOXDIAG100::tStatus2 const& status) { statuses.push_back(status); });
  return statuses;
}

// The English report of a status, with "; " between its items.
inline std::string reportOf(nOXDIAG100::tStatus2 const& status) {
  auto const* const description =
      nQELM100::dynamicCast<nOXDIAG100::tStatus2Description>(status.getDescription());
  if (description == nullptr) return "(no description)";
  nTRANSLATORS100::tEnglishTranslator const translator(slotbusWords("english"), L"; ");
  nOXDIAG100::tStatus2 rendering;
  _STL::wstring report;
  description->generateReport(translator, report, rendering);
  EXPECT_EQ(rendering.getCode(), 0);
  return utf8Of(report);
}
