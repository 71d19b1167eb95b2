#pragma once
// Replacement: the text that replaces each match, with references to the match's groups as
// grep-like tools write them: `$1` or `${1}` (a group by number, `$0` the whole match), `$name`
// or `${name}` (a group by name) and `$$` (a dollar sign). A name after a bare `$` runs as far
// as letters, digits and `_` go, so `$1a` names a group "1a"; `${1}a` is group 1 followed by
// "a". A `$` that starts no reference stands for itself. A group that took no part in a match
// gives an empty text.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/scan/matcher.h"

namespace host::scan {

class Replacement {
 public:
  // Parses the replacement against the matcher's groups; a reference to a group the patterns
  // do not have raises kInvalidPattern naming the replacement and the group.
  Replacement(std::string_view text, const Matcher& matcher);

  // Whether the replacement refers to no group (every match is replaced by the same text).
  bool IsPlain() const { return pieces_.size() <= 1 && (pieces_.empty() || pieces_[0].group < 0); }

  // Appends what replaces `match` (found in `text`, with its groups) to `out`.
  void Expand(std::string_view text, const Match& match, std::string& out) const;
  std::string Expand(std::string_view text, const Match& match) const {
    std::string out;
    Expand(text, match, out);
    return out;
  }

 private:
  struct Piece {
    std::string literal;  // text that stands for itself, when group < 0
    int group = -1;
  };
  std::vector<Piece> pieces_;
};

// Replaces every match of the matcher in `text` and returns the number of matches replaced.
// When there are any, `out` receives the new text; when there are none, `out` is left alone
// and nothing is allocated.
std::size_t ReplaceAll(Matcher& matcher, std::string_view text, const Replacement& replacement,
                       std::string& out);

}  // namespace host::scan
