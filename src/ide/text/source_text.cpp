#include "ide/text/source_text.h"

#include <algorithm>
#include <array>

#include "platform/codepage.h"
#include "platform/lines.h"

namespace ide {

namespace {

struct Span {
  std::size_t offset;
  std::size_t length;
  LineEnd end;
};

LineEnd LineEndOf(std::string_view bytes) {
  if (bytes == "\r\n") return LineEnd::kCrLf;
  if (bytes == "\n") return LineEnd::kLf;
  if (bytes == "\r") return LineEnd::kCr;
  return LineEnd::kNone;
}

// The lines of a buffer, without decoding.
std::vector<Span> SplitSpans(std::string_view bytes) {
  std::vector<Span> spans;
  platform::LineReader reader(bytes);
  std::string_view line;
  while (reader.Next(line)) {
    spans.push_back({static_cast<std::size_t>(line.data() - bytes.data()), line.size(),
                     LineEndOf(reader.LastLineEnd())});
  }
  return spans;
}

std::size_t TailStart(std::string_view bytes) {
  std::size_t start = bytes.size();
  while (start > 0) {
    char c = bytes[start - 1];
    if (c != '\0' && c != '\x1a' && c != '\r' && c != '\n') break;
    --start;
  }
  // Line ends before the first NUL belong to the text; from the first NUL on it is tail.
  std::size_t tail = bytes.find_first_of(std::string_view("\0\x1a", 2), start);
  return tail == std::string_view::npos ? bytes.size() : tail;
}

}  // namespace

SourceText SplitText(std::string_view bytes, const platform::CodePage& codePage) {
  SourceText text;
  text.tailOffset = TailStart(bytes);
  std::string_view body = bytes.substr(0, text.tailOffset);
  std::vector<Span> spans = SplitSpans(body);
  text.finalBreak = !spans.empty() && spans.back().end != LineEnd::kNone;

  std::array<std::size_t, 4> counts{};
  for (const Span& s : spans)
    ++counts[static_cast<std::size_t>(s.end)];
  text.dominant = LineEnd::kCrLf;
  if (counts[static_cast<std::size_t>(LineEnd::kLf)] > counts[1] &&
      counts[static_cast<std::size_t>(LineEnd::kLf)] >= counts[3]) {
    text.dominant = LineEnd::kLf;
  } else if (counts[static_cast<std::size_t>(LineEnd::kCr)] > counts[1] &&
             counts[static_cast<std::size_t>(LineEnd::kCr)] > counts[2]) {
    text.dominant = LineEnd::kCr;
  }

  text.lines.reserve(spans.size());
  // Text that decodes to itself (ASCII, the common case) is its own text: each line views its
  // bytes.
  if (codePage.DecodesToItself(body)) {
    for (const Span& s : spans)
      text.lines.push_back(
          SourceLine::Read(body.substr(s.offset, s.length), s.offset, s.length, s.end));
    return text;
  }
  // Otherwise the whole text is decoded at once and cut at the same line ends; the ASCII
  // line-end bytes come through decoding unchanged in every code page we read. Should the cut
  // not match the bytes' lines, the lines are decoded one by one into the same buffer instead.
  text.decoded = std::make_unique<std::string>(codePage.Decode(body));
  std::vector<Span> decodedSpans = SplitSpans(*text.decoded);
  bool parallel = decodedSpans.size() == spans.size();
  for (std::size_t i = 0; parallel && i < spans.size(); ++i)
    parallel = decodedSpans[i].end == spans[i].end;
  if (!parallel) {
    std::string& decoded = *text.decoded;
    decoded.clear();
    decodedSpans.clear();
    for (const Span& s : spans) {
      const std::size_t at = decoded.size();
      decoded += codePage.Decode(body.substr(s.offset, s.length));
      decodedSpans.push_back({at, decoded.size() - at, s.end});
    }
  }
  const std::string_view decoded = *text.decoded;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    text.lines.push_back(
        SourceLine::Read(decoded.substr(decodedSpans[i].offset, decodedSpans[i].length),
                         spans[i].offset, spans[i].length, spans[i].end));
  }
  return text;
}

TextWriter::TextWriter(std::string_view original, const platform::CodePage& codePage,
                       LineEnd dominant)
    : original_(original), codePage_(codePage), dominant_(dominant) {
  out_.reserve(original.size() + original.size() / 16);
}

void TextWriter::EndLine() {
  // A lone CR end, then an empty line, then an LF end would read as one CR LF and lose the
  // empty line (an edit can put them so; a file read never has them): the CR is written as CR LF.
  if (pending_ == LineEnd::kLf && !out_.empty() && out_.back() == '\r') out_ += '\n';
  out_ += LineEndBytes(pending_);
}

void TextWriter::Add(const SourceLine& line) {
  if (any_) EndLine();
  if (line.original) {
    out_.append(original_.substr(line.rawOffset, line.rawLength));
  } else {
    out_ += codePage_.Encode(line.Text());
  }
  pending_ = line.end == LineEnd::kNone ? dominant_ : line.end;
  any_ = true;
}

std::string TextWriter::Finish(bool finalBreak, std::string_view tail) {
  if (any_ && finalBreak) EndLine();
  out_.append(tail);
  return std::move(out_);
}

}  // namespace ide
