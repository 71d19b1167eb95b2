#include "cli/prefilter.h"

#include <re2/filtered_re2.h>
#include <algorithm>
#include <cstdlib>
#include <functional>

#include "automation/casefold.h"
#include "automation/error.h"
#include "automation/utf8.h"

namespace cli {
namespace {

constexpr char32_t kKelvinSign = 0x212A;  // matches k and K without regard to case
constexpr char32_t kLongS = 0x017F;       // matches s and S without regard to case

// The characters that make a regular expression more than its own text.
constexpr std::string_view kMetacharacters = "\\^$.|?*+()[]{}";

bool Has(const std::vector<std::string>& scope, std::string_view place) {
  return std::find(scope.begin(), scope.end(), place) != scope.end();
}

bool Encodable(const platform::CodePage& codePage, char32_t c) {
  std::string text;
  automation::utf8::Append(text, c);
  try {
    codePage.Encode(text);
    return true;
  } catch (const automation::Error&) {
    return false;
  }
}

// Which characters of a pattern's text stand for something that need not be in the bytes.
struct Splits {
  bool caseless = false;
  bool kelvin = false;   // caseless, and the code page has the Kelvin sign
  bool longS = false;    // caseless, and the code page has the long s
  bool indexes = false;  // a control array member's name: brackets and digits

  bool At(char32_t c) const {
    if (c == '"' || c == '\r' || c == '\n' || c == automation::utf8::kInvalid) return true;
    if (indexes && (c == '(' || c == ')' || (c >= '0' && c <= '9'))) return true;
    if (!caseless) return false;
    if (c >= 0x80) return true;
    if (c == 'k' || c == 'K') return kelvin;
    if (c == 's' || c == 'S') return longS;
    return false;
  }
};

// The pieces of a pattern's text, each encoded in the code page: nullopt when a piece has
// characters that the code page cannot represent, which no file of it can then hold; no pieces
// when the bytes cannot be compared for it.
std::optional<Prefilter::Needle> NeedleOf(std::string_view text, const Splits& splits,
                                          const platform::CodePage& codePage) {
  Prefilter::Needle needle;
  bool comparable = true;
  std::string piece;
  const auto end = [&]() -> bool {
    if (piece.empty()) return true;
    Prefilter::Piece encoded;
    encoded.folded = splits.caseless;
    try {
      encoded.bytes = codePage.Encode(piece);
    } catch (const automation::Error&) {
      // Without regard to case, the other case may still be there.
      comparable = comparable && !encoded.folded;
      return encoded.folded;
    }
    // Folding compares ASCII letters byte by byte: only where the code page keeps ASCII as it is.
    if (encoded.folded) {
      comparable = comparable && encoded.bytes == piece;
      std::transform(encoded.bytes.begin(), encoded.bytes.end(), encoded.bytes.begin(),
                     [](char c) { return automation::LowerAscii(c); });
    }
    piece.clear();
    needle.push_back(std::move(encoded));
    return true;
  };
  for (size_t at = 0; at < text.size();) {
    const size_t start = at;
    const char32_t c = automation::utf8::Next(text, at);
    if (!splits.At(c)) {
      piece.append(text.substr(start, at - start));
    } else if (!end()) {
      return std::nullopt;
    }
  }
  if (!end()) return std::nullopt;
  if (!comparable) needle.clear();
  return needle;
}

bool Occurs(std::string_view bytes, const Prefilter::Piece& piece) {
  if (!piece.folded) return bytes.find(piece.bytes) != std::string_view::npos;
  const auto fold = [](char c) { return static_cast<size_t>(automation::LowerAscii(c)); };
  const auto same = [](char a, char b) {
    return automation::LowerAscii(a) == automation::LowerAscii(b);
  };
  const std::boyer_moore_horspool_searcher searcher(piece.bytes.begin(), piece.bytes.end(), fold,
                                                    same);
  return std::search(bytes.begin(), bytes.end(), searcher) != bytes.end();
}

bool AllOccur(std::string_view bytes, const Prefilter::Needle& needle) {
  return std::all_of(needle.begin(), needle.end(),
                     [&](const Prefilter::Piece& piece) { return Occurs(bytes, piece); });
}

}  // namespace

// The regular expressions of the search in RE2's filter, and the pieces of each literal it
// asks for, as the code and as form-like components hold them (nullopt: no file can hold it).
struct Prefilter::Expressions {
  re2::FilteredRE2 filter;
  std::vector<std::optional<Needle>> code;
  std::vector<std::optional<Needle>> designed;

  bool CouldMatch(std::string_view bytes, bool inCode) const {
    const std::vector<std::optional<Needle>>& literals = inCode ? code : designed;
    std::vector<int> found;
    for (size_t i = 0; i < literals.size(); ++i) {
      if (literals[i] && AllOccur(bytes, *literals[i])) found.push_back(static_cast<int>(i));
    }
    std::vector<int> potential;
    filter.AllPotentials(found, &potential);
    return !potential.empty();
  }
};

Prefilter::Prefilter(Prefilter&&) noexcept = default;
Prefilter::~Prefilter() = default;

bool Prefilter::AnyOccurs(std::string_view bytes, bool code) const {
  const Needles& needles = code ? code_ : designed_;
  if (!needles) return true;
  if (std::any_of(needles->begin(), needles->end(),
                  [&](const Needle& needle) { return AllOccur(bytes, needle); })) {
    return true;
  }
  return expressions_ && expressions_->CouldMatch(bytes, code);
}

Prefilter::Prefilter(const SearchOptions& options, const platform::CodePage& codePage) {
  matcher_.emplace(options.patterns, MatchOptionsOf(options));
  Splits splits;
  splits.caseless = matcher_->CaseInsensitive();
  splits.kelvin = splits.caseless && Encodable(codePage, kKelvinSign);
  splits.longS = splits.caseless && Encodable(codePage, kLongS);
  Splits designed = splits;
  designed.indexes = Has(options.scope, "names");
  code_.emplace();
  designed_.emplace();
  auto expressions = std::make_unique<Expressions>();
  re2::RE2::Options reading;
  reading.set_case_sensitive(!splits.caseless);
  reading.set_log_errors(false);
  for (const std::string& pattern : options.patterns) {
    if (!options.literal && pattern.find_first_of(kMetacharacters) != std::string::npos) {
      int id = 0;
      if (expressions->filter.Add(pattern, reading, &id) == re2::RE2::NoError) continue;
      code_.reset();
      designed_.reset();
      return;
    }
    if (std::optional<Needle> needle = NeedleOf(pattern, splits, codePage))
      code_->push_back(std::move(*needle));
    if (std::optional<Needle> needle = NeedleOf(pattern, designed, codePage))
      designed_->push_back(std::move(*needle));
  }
  if (expressions->filter.NumRegexps() > 0) {
    // RE2 gives the literals in lower case, whatever the expression's: they are compared in both
    // cases, so letters beyond ASCII are cut out of them as without regard to case.
    Splits literal = splits;
    literal.caseless = true;
    Splits literalDesigned = designed;
    literalDesigned.caseless = true;
    std::vector<std::string> literals;
    expressions->filter.Compile(&literals);
    for (const std::string& text : literals) {
      expressions->code.push_back(NeedleOf(text, literal, codePage));
      expressions->designed.push_back(NeedleOf(text, literalDesigned, codePage));
    }
    expressions_ = std::move(expressions);
  }
  designedChecked_ = !Has(options.scope, "properties") && !Has(options.scope, "html");
  namesChecked_ = Has(options.scope, "names") || Has(options.scope, "properties");
}

bool Prefilter::CouldMatch(std::string_view collection, std::string_view name,
                           std::string_view bytes) {
  const bool code = collection == "Modules" || collection == "ClassModules";
  const bool designed = collection == "Forms" || collection == "UserControls" ||
                        collection == "PropertyPages" || collection == "UserDocuments";
  if (!code && !(designed && designedChecked_)) return true;
  // The component's name as the listing gives it, which the IDE may present in its letter case.
  if (namesChecked_ && matcher_->IsMatch(name)) return true;
  return AnyOccurs(bytes, code);
}

bool Prefilter::Enabled() {
  const char* off = std::getenv("QX_NO_PREFILTER");
  return off == nullptr || std::string_view(off) != "1";
}

}  // namespace cli
