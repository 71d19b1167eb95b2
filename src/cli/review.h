#pragma once
// Review: qx replace --interactive. Each place that the replace changes (a procedure's text, a
// property, a name) is shown as a diff of that text, and the user answers as git add -p asks:
//   y  replace here                     n  leave it as it is
//   a  here and at every later place of this file
//   d  at none of the later places of this file
//   q  at none of the places left       ?  what the answers mean
// An answer is read a line at a time; the end of the input answers q. Only the places accepted
// are written, through the same preview-then-write path as --write.

#include <istream>
#include <ostream>
#include <string>

namespace cli {

class Review {
 public:
  Review(std::istream& in, std::ostream& out) : in_(in), out_(out) {}

  // Whether to replace at one place of the file `path`: `where` names the place
  // ("CStockItem.Value.Let"), before and after are its text before and after the replace.
  bool Accept(const std::string& path, const std::string& where, const std::string& before,
              const std::string& after);

 private:
  enum class Rest { kAsk, kAll, kNone };

  std::istream& in_;
  std::ostream& out_;
  std::string file_;  // the file that an answer a or d holds for
  Rest rest_ = Rest::kAsk;
  bool quit_ = false;
};

}  // namespace cli
