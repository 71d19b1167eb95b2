#pragma once
// One record of a binary companion (.frx, .ctx, .pgx, .dox, .dsx). Nothing in the file says
// what a record holds: its layout follows from the type of the property that points at it, so
// whoever reads a record names its kind. Integers are little-endian; text is ANSI bytes in the
// project's code page, which the caller decodes.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ide::form {

enum class CompanionRecordKind : uint8_t {
  // A string property kept out of line without `$` (a multi-line TextBox's Text, a DHTML page's
  // HTMLDocument): a u8 length, or 0xFF and a u16 length for 255 bytes and more; then the bytes.
  kText,
  // A long string written with `$` (long captions, TextRTF): a u32 length, then the bytes.
  kLongString,
  // A list of strings (a ListBox's or ComboBox's List, and ItemData, whose items are the
  // decimal text of each Long): a u16 count; when not empty, a u16 width (the longest item's
  // length, at least 3) and each item as a u16 length and its bytes.
  kList,
  // A picture (Picture, Icon, MouseIcon, DragIcon, DownPicture, DisabledPicture,
  // ToolboxBitmap): a u32 size N+8, "lt\0\0", a u32 size N, the N bytes of the image as loaded.
  kPicture,
  // A UserControl's PropertyPages: a u32 count, then each name as a u16 length counting a
  // terminating NUL, the name, the NUL.
  kPropertyPages,
  // A blob that says its own size (objects and data of other libraries' controls): a u32 size,
  // then that many bytes, kept as they are.
  kSizedBlob,
  // A record of unknown layout, kept as it is: it ends where the next referenced record begins,
  // or at the end of the file. It is never empty.
  kOpaque,
};

// "text", "long string", "list", ... for messages.
std::string_view CompanionRecordKindName(CompanionRecordKind kind);

class CompanionRecord {
 public:
  // Records as VB6 writes them. A content longer than its length field can say raises 380
  // "Invalid property value" saying so: a text of 65535 bytes or more (VB6's form for such a
  // text is not known, and a guess could write a companion that VB6 misreads), a list item of
  // 65536 bytes or more, a list of 65536 items or more.
  static CompanionRecord Text(std::string_view ansi);
  static CompanionRecord LongString(std::string_view ansi);
  static CompanionRecord List(const std::vector<std::string>& items);
  static CompanionRecord Picture(std::string_view image);
  static CompanionRecord PropertyPages(const std::vector<std::string>& names);
  static CompanionRecord SizedBlob(std::string_view payload);
  static CompanionRecord Opaque(std::string_view bytes);

  // Reads a record of this kind from the start of bytes, which hold everything the record may
  // use (for kOpaque, exactly the record). Returns nullopt when the bytes do not hold a record
  // of that kind, with what is wrong in *problem ("the length runs past the end", ...).
  static std::optional<CompanionRecord> Read(std::string_view bytes, CompanionRecordKind kind,
                                             std::string* problem);

  CompanionRecordKind Kind() const { return kind_; }
  // The record as stored, length fields included.
  const std::string& Bytes() const { return bytes_; }
  // What the record holds: the text of kText and kLongString, the image of kPicture (empty for
  // no picture), the payload of kSizedBlob, all the bytes of kOpaque; empty for lists.
  std::string_view Content() const {
    return std::string_view(bytes_).substr(contentStart_, contentLength_);
  }
  // The items of kList and the names of kPropertyPages; empty for the other kinds.
  const std::vector<std::string>& Items() const { return items_; }

  bool operator==(const CompanionRecord& other) const {
    return kind_ == other.kind_ && bytes_ == other.bytes_;
  }

 private:
  CompanionRecord(CompanionRecordKind kind, std::string bytes, std::size_t contentStart,
                  std::size_t contentLength)
      : kind_(kind),
        bytes_(std::move(bytes)),
        contentStart_(contentStart),
        contentLength_(contentLength) {}

  CompanionRecordKind kind_ = CompanionRecordKind::kOpaque;
  std::string bytes_;
  std::size_t contentStart_ = 0;
  std::size_t contentLength_ = 0;
  std::vector<std::string> items_;
};

}  // namespace ide::form
