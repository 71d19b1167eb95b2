// The binary-companion reader and writer: any bytes, read as any kind of record at any
// referenced offset, either read within the file or raise a VB error; a record read gives back
// the file's own bytes, and its content written anew reads back the same; keeping every record
// changes nothing, and a rewrite reads back the same records at their new offsets.
//
// Input: a byte giving the number of references (0 to 7), three bytes per reference (a u16
// offset and the kind to read it as), then the companion's bytes.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "automation/error.h"
#include "fuzz_support.h"
#include "ide/form/companion.h"

namespace {

using ide::form::CompanionRecord;
using Kind = ide::form::CompanionRecordKind;

// The record written anew from what it holds.
CompanionRecord Rewritten(const CompanionRecord& record) {
  switch (record.Kind()) {
    case Kind::kText:
      return CompanionRecord::Text(record.Content());
    case Kind::kLongString:
      return CompanionRecord::LongString(record.Content());
    case Kind::kList:
      return CompanionRecord::List(record.Items());
    case Kind::kPicture:
      return CompanionRecord::Picture(record.Content());
    case Kind::kPropertyPages:
      return CompanionRecord::PropertyPages(record.Items());
    case Kind::kSizedBlob:
      return CompanionRecord::SizedBlob(record.Content());
    case Kind::kOpaque:
      break;
  }
  return CompanionRecord::Opaque(record.Content());
}

bool SameContent(const CompanionRecord& a, const CompanionRecord& b) {
  return a.Kind() == b.Kind() && a.Content() == b.Content() && a.Items() == b.Items();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t count = data[0] & 7;
  if (size < 1 + 3 * count) return 0;
  std::vector<uint32_t> offsets;
  std::vector<Kind> kinds;
  for (std::size_t i = 0; i < count; ++i) {
    const uint8_t* reference = data + 1 + 3 * i;
    offsets.push_back(static_cast<uint32_t>(reference[0] | (reference[1] << 8)));
    kinds.push_back(static_cast<Kind>(reference[2] % 7));
  }
  const std::size_t start = 1 + 3 * count;
  const std::string bytes(reinterpret_cast<const char*>(data) + start, size - start);
  const ide::form::CompanionFile file("fuzz.frx", bytes, offsets);

  std::vector<CompanionRecord> records;
  for (std::size_t i = 0; i < count; ++i) {
    try {
      records.push_back(file.Read(offsets[i], kinds[i]));
    } catch (const automation::Error&) {
      return 0;
    }
    const CompanionRecord& record = records.back();
    QX_FUZZ_CHECK(record.Kind() == kinds[i]);
    QX_FUZZ_CHECK(offsets[i] + record.Bytes().size() <= bytes.size());
    QX_FUZZ_CHECK(bytes.compare(offsets[i], record.Bytes().size(), record.Bytes()) == 0);
    try {
      const CompanionRecord again = Rewritten(record);
      std::string problem;
      const std::optional<CompanionRecord> read =
          CompanionRecord::Read(again.Bytes(), again.Kind(), &problem);
      QX_FUZZ_CHECK(read && SameContent(*read, record) && read->Bytes() == again.Bytes());
    } catch (const automation::Error&) {
      // Content that VB6's record cannot hold (a long-form text of 65535 bytes).
    }
  }

  // Every reference kept: nothing to write, nothing renumbered.
  ide::form::CompanionWriter keep(file);
  for (std::size_t i = 0; i < count; ++i)
    keep.Keep(offsets[i], kinds[i]);
  const ide::form::CompanionLayout kept = keep.Finish();
  QX_FUZZ_CHECK(!kept.changed && kept.offsets == offsets);

  // A new text first, the others kept: packed anew, each record where the layout says.
  ide::form::CompanionWriter grow(file);
  const CompanionRecord added = CompanionRecord::Text("added");
  grow.Add(added, std::nullopt);
  for (std::size_t i = 0; i < count; ++i)
    grow.Add(records[i], offsets[i]);
  const ide::form::CompanionLayout grown = grow.Finish();
  QX_FUZZ_CHECK(grown.changed && grown.offsets.size() == count + 1);
  std::vector<uint32_t> newOffsets(grown.offsets.begin() + 1, grown.offsets.end());
  const ide::form::CompanionFile saved("fuzz.frx", grown.bytes, grown.offsets);
  QX_FUZZ_CHECK(SameContent(saved.Read(grown.offsets[0], Kind::kText), added));
  for (std::size_t i = 0; i < count; ++i)
    QX_FUZZ_CHECK(saved.Read(newOffsets[i], kinds[i]) == records[i]);
  return 0;
}
