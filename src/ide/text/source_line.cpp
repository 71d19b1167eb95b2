#include "ide/text/source_line.h"

#include <cstring>
#include <utility>

namespace ide {

std::string_view LineEndBytes(LineEnd end) {
  switch (end) {
    case LineEnd::kCrLf:
      return "\r\n";
    case LineEnd::kLf:
      return "\n";
    case LineEnd::kCr:
      return "\r";
    case LineEnd::kNone:
      break;
  }
  return {};
}

SourceLine SourceLine::Read(std::string_view text, std::size_t rawOffset, std::size_t rawLength,
                            LineEnd end) {
  SourceLine line;
  line.data_ = text.data();
  line.length_ = static_cast<uint32_t>(text.size());
  line.rawOffset = static_cast<uint32_t>(rawOffset);
  line.rawLength = static_cast<uint32_t>(rawLength);
  line.end = end;
  line.original = true;
  return line;
}

SourceLine SourceLine::New(std::string_view text) {
  SourceLine line;
  line.Own(text);
  return line;
}

SourceLine::SourceLine(const SourceLine& other)
    : rawOffset(other.rawOffset),
      rawLength(other.rawLength),
      end(other.end),
      original(other.original) {
  if (other.owned_) {
    Own(other.Text());
  } else {
    data_ = other.data_;
    length_ = other.length_;
  }
}

SourceLine& SourceLine::operator=(const SourceLine& other) {
  if (this != &other) *this = SourceLine(other);
  return *this;
}

SourceLine::SourceLine(SourceLine&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      length_(std::exchange(other.length_, 0)),
      rawOffset(other.rawOffset),
      rawLength(other.rawLength),
      end(other.end),
      original(other.original),
      owned_(std::exchange(other.owned_, false)) {}

SourceLine& SourceLine::operator=(SourceLine&& other) noexcept {
  if (this != &other) {
    Release();
    data_ = std::exchange(other.data_, nullptr);
    length_ = std::exchange(other.length_, 0);
    owned_ = std::exchange(other.owned_, false);
    rawOffset = other.rawOffset;
    rawLength = other.rawLength;
    end = other.end;
    original = other.original;
  }
  return *this;
}

void SourceLine::SetText(std::string_view text) {
  // The new text may be a view of the old one: copy it before letting the old one go.
  SourceLine changed = New(text);
  Release();
  data_ = std::exchange(changed.data_, nullptr);
  length_ = std::exchange(changed.length_, 0);
  owned_ = std::exchange(changed.owned_, false);
  original = false;
}

void SourceLine::Own(std::string_view text) {
  data_ = nullptr;
  length_ = static_cast<uint32_t>(text.size());
  owned_ = false;
  if (text.empty()) return;
  char* copy = new char[text.size()];
  std::memcpy(copy, text.data(), text.size());
  data_ = copy;
  owned_ = true;
}

void SourceLine::Release() {
  if (owned_) delete[] data_;
  data_ = nullptr;
  length_ = 0;
  owned_ = false;
}

}  // namespace ide
