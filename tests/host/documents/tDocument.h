#pragma once

#include <string>
#include <vector>

// A document of the project, for tests of what stands in it.
class tDocument {
 public:
  // A block between ``` lines. `kind` is the word behind the opening ones.
  struct tBlock {
    std::string kind;
    std::string text;
    size_t line = 0;  // in the document, from 1
  };

  // A row of a table, without the cells' outer blanks and backquotes, and the last heading before
  // it.
  struct tRow {
    std::string heading;
    std::vector<std::string> cells;
    size_t line = 0;
  };

  // `name` is relative to the top of the sources. A document that is not there is empty.
  explicit tDocument(std::string const& name);

  std::vector<tBlock> const& getBlocks() const { return blocks; }
  std::vector<tRow> const& getRows() const { return rows; }
  std::string const& getText() const { return text; }

 private:
  std::vector<tBlock> blocks;
  std::vector<tRow> rows;
  std::string text;
};

// Whether `text` is what `pattern` shows. "..." in the pattern stands for any text; one line break
// or blank is as good as several.
bool matches(std::string const& text, std::string const& pattern);
