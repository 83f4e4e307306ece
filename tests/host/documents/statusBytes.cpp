// The bytes of a status as the document explains them, row by row, beside those that are written.

#include <gtest/gtest.h>

#include <sstream>

#include "documents/describedSample.h"
#include "documents/tDocument.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "trace/startedModules.h"

namespace {

std::string writtenBytes(tStatus2 const& status) {
  std::string bytes(4096, '\0');
  i32 code = 0;
  nQELM100::tBinaryObjectWriter writer(bytes.data(), bytes.size());
  status.writeExternal(writer, code);
  writer.finish(code);
  EXPECT_EQ(code, 0);
  return bytes.substr(0, writer.getSize());
}

// "72 00 x 3" is one byte and three.
std::string bytesOf(std::string const& cell) {
  std::istringstream words(cell);
  std::string bytes;
  for (std::string word; words >> word;) {
    if (word == "x") {
      size_t count = 0;
      words >> count;
      bytes.append(count - 1, bytes.back());
    } else {
      bytes += static_cast<char>(std::stoul(word, nullptr, 16));
    }
  }
  return bytes;
}

std::vector<tDocument::tRow> byteRows() {
  std::vector<tDocument::tRow> rows;
  tDocument const document("docs/status.md");
  for (tDocument::tRow const& row : document.getRows()) {
    bool const isOfBytes = row.heading == "The bytes" && row.cells.at(0) != "at" &&
                           row.cells.at(0).find('-') == std::string::npos;
    if (isOfBytes) rows.push_back(row);
  }
  return rows;
}

}  // namespace

TEST(StatusBytes, AreThoseOfTheDocument) {
  std::string const bytes = writtenBytes(describedSample());
  size_t place = 0;
  for (tDocument::tRow const& row : byteRows()) {
    std::string const explained = bytesOf(row.cells.at(1));
    EXPECT_EQ(row.cells.at(0), std::to_string(place)) << "line " << row.line;
    EXPECT_EQ(bytes.substr(place, explained.size()), explained) << "line " << row.line;
    place += explained.size();
  }
  EXPECT_EQ(place, bytes.size());
}

TEST(StatusBytes, AreAsManyAsTheDocumentSays) {
  std::string const count = std::to_string(writtenBytes(describedSample()).size());
  EXPECT_NE(tDocument("docs/status.md").getText().find("\n" + count + " bytes in all"),
            std::string::npos)
      << count;
}

TEST(StatusBytes, NameTheClassesThatTheDocumentSpellsOut) {
  u32 named = 0;
  for (tDocument::tRow const& row : byteRows()) {
    if (row.cells.at(2).rfind("nOXDIAG100::", 0) != 0) continue;
    EXPECT_EQ(bytesOf(row.cells.at(1)), row.cells.at(2)) << "line " << row.line;
    ++named;
  }
  EXPECT_EQ(named, 4U);
}
