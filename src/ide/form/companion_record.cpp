#include "ide/form/companion_record.h"

#include <algorithm>
#include <limits>

#include "automation/error.h"

namespace ide::form {
namespace {

using automation::err::kInvalidPropertyValue;

// The picture stream's own mark, "lt" and two NULs, after the record's outer size.
constexpr std::string_view kPictureMark("lt\0\0", 4);

// The one-byte text length that says a u16 length follows.
constexpr uint32_t kTextEscape = 0xFF;

void PutU16(std::string& out, uint32_t value) {
  out += static_cast<char>(value & 0xFF);
  out += static_cast<char>((value >> 8) & 0xFF);
}

void PutU32(std::string& out, uint64_t value) {
  for (int shift = 0; shift < 32; shift += 8)
    out += static_cast<char>((value >> shift) & 0xFF);
}

[[noreturn]] void TooLong(std::string_view what, std::size_t size, std::size_t most) {
  automation::Raise(kInvalidPropertyValue, std::string(what) + " of " + std::to_string(size) +
                                               " is more than a binary companion record holds (" +
                                               std::to_string(most) + ")");
}

// Reads little-endian fields from the front of a record, never past its bytes.
class Cursor {
 public:
  explicit Cursor(std::string_view bytes) : bytes_(bytes) {}

  std::size_t Position() const { return at_; }
  std::size_t Left() const { return bytes_.size() - at_; }

  bool U8(uint32_t& value) { return Number(1, value); }
  bool U16(uint32_t& value) { return Number(2, value); }
  bool U32(uint32_t& value) { return Number(4, value); }
  bool Take(std::size_t count, std::string_view& taken) {
    if (count > Left()) return false;
    taken = bytes_.substr(at_, count);
    at_ += count;
    return true;
  }

 private:
  bool Number(std::size_t width, uint32_t& value) {
    if (width > Left()) return false;
    value = 0;
    for (std::size_t i = 0; i < width; ++i)
      value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes_[at_ + i])) << (8 * i);
    at_ += width;
    return true;
  }

  std::string_view bytes_;
  std::size_t at_ = 0;
};

bool Fail(std::string* problem, std::string text) {
  if (problem != nullptr) *problem = std::move(text);
  return false;
}

std::string CutShort(uint64_t wanted, std::size_t left) {
  return "says it holds " + std::to_string(wanted) + " bytes, but only " + std::to_string(left) +
         " follow";
}

// Reads items of a list (u16 length and bytes each) into items.
bool ReadItems(Cursor& cursor, uint32_t count, bool nulTerminated, std::vector<std::string>& items,
               std::string* problem) {
  // Every item takes at least its two-byte length: a count that cannot fit is refused before
  // anything is reserved for it.
  if (uint64_t{count} * 2 > cursor.Left())
    return Fail(problem, "says it holds " + std::to_string(count) +
                             " items, which do not fit in the bytes that follow");
  items.reserve(count);
  for (uint32_t i = 0; i < count; ++i) {
    uint32_t length = 0;
    std::string_view item;
    if (!cursor.U16(length) || !cursor.Take(length, item))
      return Fail(problem, "has an item (number " + std::to_string(i + 1) +
                               ") that runs past the end of the file");
    if (nulTerminated) {
      if (item.empty() || item.back() != '\0')
        return Fail(problem, "has a name (number " + std::to_string(i + 1) +
                                 ") without its terminating NUL");
      item.remove_suffix(1);
    }
    items.emplace_back(item);
  }
  return true;
}

}  // namespace

std::string_view CompanionRecordKindName(CompanionRecordKind kind) {
  switch (kind) {
    case CompanionRecordKind::kText:
      return "text";
    case CompanionRecordKind::kLongString:
      return "long string";
    case CompanionRecordKind::kList:
      return "list";
    case CompanionRecordKind::kPicture:
      return "picture";
    case CompanionRecordKind::kPropertyPages:
      return "property pages";
    case CompanionRecordKind::kSizedBlob:
      return "sized blob";
    case CompanionRecordKind::kOpaque:
      break;
  }
  return "opaque";
}

CompanionRecord CompanionRecord::Text(std::string_view ansi) {
  // 65535 itself would read as the escape of a longer form that VB6 is not known to write.
  if (ansi.size() >= 0xFFFF) TooLong("A text", ansi.size(), 0xFFFE);
  std::string bytes;
  if (ansi.size() < kTextEscape) {
    bytes += static_cast<char>(ansi.size());
  } else {
    bytes += static_cast<char>(kTextEscape);
    PutU16(bytes, static_cast<uint32_t>(ansi.size()));
  }
  const std::size_t start = bytes.size();
  bytes += ansi;
  return CompanionRecord(CompanionRecordKind::kText, std::move(bytes), start, ansi.size());
}

CompanionRecord CompanionRecord::LongString(std::string_view ansi) {
  if (ansi.size() > std::numeric_limits<uint32_t>::max())
    TooLong("A string", ansi.size(), std::numeric_limits<uint32_t>::max());
  std::string bytes;
  PutU32(bytes, ansi.size());
  bytes += ansi;
  return CompanionRecord(CompanionRecordKind::kLongString, std::move(bytes), 4, ansi.size());
}

CompanionRecord CompanionRecord::List(const std::vector<std::string>& items) {
  if (items.size() > 0xFFFF) TooLong("A list", items.size(), 0xFFFF);
  std::size_t width = 3;
  for (const std::string& item : items) {
    if (item.size() > 0xFFFF) TooLong("A list item", item.size(), 0xFFFF);
    width = std::max(width, item.size());
  }
  std::string bytes;
  PutU16(bytes, static_cast<uint32_t>(items.size()));
  if (!items.empty()) {
    PutU16(bytes, static_cast<uint32_t>(width));
    for (const std::string& item : items) {
      PutU16(bytes, static_cast<uint32_t>(item.size()));
      bytes += item;
    }
  }
  CompanionRecord record(CompanionRecordKind::kList, std::move(bytes), 0, 0);
  record.items_ = items;
  return record;
}

CompanionRecord CompanionRecord::Picture(std::string_view image) {
  if (image.size() > std::numeric_limits<uint32_t>::max() - 8)
    TooLong("A picture", image.size(), std::numeric_limits<uint32_t>::max() - 8);
  std::string bytes;
  PutU32(bytes, image.size() + 8);
  bytes += kPictureMark;
  PutU32(bytes, image.size());
  bytes += image;
  return CompanionRecord(CompanionRecordKind::kPicture, std::move(bytes), 12, image.size());
}

CompanionRecord CompanionRecord::PropertyPages(const std::vector<std::string>& names) {
  std::string bytes;
  PutU32(bytes, names.size());
  for (const std::string& name : names) {
    if (name.size() >= 0xFFFF) TooLong("A property page's name", name.size(), 0xFFFE);
    PutU16(bytes, static_cast<uint32_t>(name.size() + 1));
    bytes += name;
    bytes += '\0';
  }
  CompanionRecord record(CompanionRecordKind::kPropertyPages, std::move(bytes), 0, 0);
  record.items_ = names;
  return record;
}

CompanionRecord CompanionRecord::SizedBlob(std::string_view payload) {
  if (payload.size() > std::numeric_limits<uint32_t>::max())
    TooLong("A blob", payload.size(), std::numeric_limits<uint32_t>::max());
  std::string bytes;
  PutU32(bytes, payload.size());
  bytes += payload;
  return CompanionRecord(CompanionRecordKind::kSizedBlob, std::move(bytes), 4, payload.size());
}

CompanionRecord CompanionRecord::Opaque(std::string_view bytes) {
  return CompanionRecord(CompanionRecordKind::kOpaque, std::string(bytes), 0, bytes.size());
}

std::optional<CompanionRecord> CompanionRecord::Read(std::string_view bytes,
                                                     CompanionRecordKind kind,
                                                     std::string* problem) {
  Cursor cursor(bytes);
  const auto cutShort = [&] {
    Fail(problem, "is cut short by the end of the file");
    return std::nullopt;
  };
  // The record's first `size` bytes, its content starting at `start`.
  const auto record = [&](std::size_t size, std::size_t start) {
    return CompanionRecord(kind, std::string(bytes.substr(0, size)), start, size - start);
  };
  switch (kind) {
    case CompanionRecordKind::kText: {
      uint32_t length = 0;
      if (!cursor.U8(length)) return cutShort();
      if (length == kTextEscape) {
        if (!cursor.U16(length)) return cutShort();
        if (length == 0xFFFF) {
          Fail(problem, "has a length escape (FF FF FF) of a form VB6 is not known to write");
          return std::nullopt;
        }
      }
      std::string_view text;
      const std::size_t start = cursor.Position();
      if (!cursor.Take(length, text)) {
        Fail(problem, CutShort(length, cursor.Left()));
        return std::nullopt;
      }
      return record(cursor.Position(), start);
    }
    case CompanionRecordKind::kLongString:
    case CompanionRecordKind::kSizedBlob: {
      uint32_t length = 0;
      std::string_view content;
      if (!cursor.U32(length)) return cutShort();
      if (!cursor.Take(length, content)) {
        Fail(problem, CutShort(length, cursor.Left()));
        return std::nullopt;
      }
      return record(cursor.Position(), 4);
    }
    case CompanionRecordKind::kPicture: {
      uint32_t outer = 0;
      uint32_t inner = 0;
      std::string_view stream;
      if (!cursor.U32(outer)) return cutShort();
      if (!cursor.Take(outer, stream)) {
        Fail(problem, CutShort(outer, cursor.Left()));
        return std::nullopt;
      }
      Cursor picture(stream);
      std::string_view mark;
      if (!picture.Take(kPictureMark.size(), mark) || mark != kPictureMark || !picture.U32(inner)) {
        Fail(problem, "does not hold a picture (no \"lt\" mark)");
        return std::nullopt;
      }
      if (inner != picture.Left()) {
        Fail(problem, "has sizes that disagree: " + std::to_string(outer) + " bytes in all, " +
                          std::to_string(inner) + " of image");
        return std::nullopt;
      }
      return record(cursor.Position(), 12);
    }
    case CompanionRecordKind::kList:
    case CompanionRecordKind::kPropertyPages: {
      const bool pages = kind == CompanionRecordKind::kPropertyPages;
      uint32_t count = 0;
      uint32_t width = 0;
      if (!(pages ? cursor.U32(count) : cursor.U16(count))) return cutShort();
      if (!pages && count != 0 && !cursor.U16(width)) return cutShort();
      std::vector<std::string> items;
      if (!ReadItems(cursor, count, pages, items, problem)) return std::nullopt;
      CompanionRecord result = record(cursor.Position(), 0);
      result.contentLength_ = 0;
      result.items_ = std::move(items);
      return result;
    }
    case CompanionRecordKind::kOpaque:
      break;
  }
  return Opaque(bytes);
}

}  // namespace ide::form
