#pragma once
// Which components a search can pass over without asking the IDE for them. Before a component is
// loaded, its file's bytes are checked for what every match must contain: the pieces of a plain
// pattern, encoded in the project's code page. A component whose bytes lack them cannot match; it
// counts as searched and shows as a component without a match does, and the IDE never sees it.
//
// The check never passes over a component that could match. What the IDE presents must come
// from the file's bytes for that to hold, so only these are checked:
// - modules and class modules: their procedures are the file's own lines, and their name is the
//   project listing's (matched as the scanner matches it) or the file's;
// - forms, MDI forms, user controls, property pages and user documents searched in their code
//   and names only: a control array member is presented as `cmdAction(0)` while its file says
//   `cmdAction` and `Index = 0`, so brackets and digits split a pattern there.
// Their properties are not all in the file (defaults such as "MS Sans Serif", values kept in
// binary companions), and designers are told apart only by the IDE: those are always asked.
//
// A pattern is split into pieces that must each occur: at quotes (a string property's "" is
// presented as "), at line breaks (a match keeps to one line, and a file's line ends are not the
// presented ones), and, when matching without regard to case, at every letter whose other case
// is not ASCII (`k` also matches the Kelvin sign, `s` the long s, where the code page has them);
// the other letters are compared in both ASCII cases. A regular expression without any
// metacharacter is its own text. Of any other, RE2's filter (FilteredRE2) works out the literals
// a match must hold, as a tree of "all of" and "one of": each literal is split into pieces as a
// pattern is, and compared in both ASCII cases (RE2 gives them in lower case); a literal with
// characters beyond ASCII is taken to be there. An expression that RE2 does not read (a
// lookbehind, a back-reference, PCRE2's own syntax) lets every component through. With several
// patterns, one that could match is enough.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/search_options.h"
#include "host/scan/matcher.h"
#include "platform/codepage.h"

namespace cli {

class Prefilter {
 public:
  Prefilter(const SearchOptions& options, const platform::CodePage& codePage);

  // Whether the component of this collection ("Forms"), named so in the project's listing, whose
  // file holds these bytes, could hold a match of the search.
  bool CouldMatch(std::string_view collection, std::string_view name, std::string_view bytes);

  // False when $QX_NO_PREFILTER is 1: every component is asked of the IDE, as a reference run.
  static bool Enabled();

  // A run of bytes that must occur, compared in both ASCII cases when folded.
  struct Piece {
    std::string bytes;
    bool folded = false;
  };
  // The pieces of one pattern, every one of which must occur; none: anything can match.
  using Needle = std::vector<Piece>;

  // What the bytes of a component must hold: one of the needles. None: nothing in the bytes can
  // match; nullopt: anything can.
  using Needles = std::optional<std::vector<Needle>>;
  const Needles& CodeNeedles() const { return code_; }
  const Needles& DesignedNeedles() const { return designed_; }

  Prefilter(Prefilter&&) noexcept;
  ~Prefilter();

 private:
  struct Expressions;
  bool AnyOccurs(std::string_view bytes, bool code) const;

  Needles code_;      // modules, classes, and the code of form-like components
  Needles designed_;  // form-like components searched in their code and names
  std::unique_ptr<Expressions> expressions_;  // the regular expressions, when RE2 reads them all
  bool designedChecked_ = false;
  bool namesChecked_ = false;
  std::optional<host::scan::Matcher> matcher_;
};

}  // namespace cli
