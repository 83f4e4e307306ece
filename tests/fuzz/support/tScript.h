#pragma once

// An input as a sequence of operations, one a line: a letter that says which, and the text behind
// it. So a corpus can be read and written by hand.
//
//     c--filter line==5
//     +
//     pslot 3 answered

#include <string>

class tScript {
 public:
  explicit tScript(std::string const& input) : input(input) {}

  // Goes to the next operation; false behind the last. Empty lines are none.
  bool next();

  // The letter as it is.
  char letter() const { return first; }

  // Which of the `operations` it is; one of them, whatever the letter, so that no byte is wasted.
  char operation(std::string const& operations) const;

  // The text behind the letter, without its newline.
  std::string const& text() const { return rest; }

  // Takes the number that the rest of the text begins with, 0 if none, and what separates it from
  // the next.
  unsigned number();

 private:
  std::string const& input;
  size_t position = 0;
  char first = 0;
  std::string rest;
};
