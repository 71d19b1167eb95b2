// Binary companions: each kind of record written and read back, VB6's length forms at their
// boundaries, broken records refused without reading past the file, and rewriting that
// renumbers when a record changes length and leaves an unchanged companion alone.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "automation/error.h"
#include "ide/form/companion.h"
#include "ide/model/component_file.h"
#include "support/bytes.h"
#include "support/errors.h"

namespace {

using ide::form::CompanionFile;
using ide::form::CompanionRecord;
using ide::form::CompanionWriter;
using Kind = ide::form::CompanionRecordKind;
using testing::HasSubstr;

// Bytes from numbers and text pieces: Bytes({0x05, 0x00}) + "List" ...
std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (int value : values)
    bytes += static_cast<char>(value);
  return bytes;
}

using qxtest::Le16;
using qxtest::Le32;

// A record written, then read back from a file that holds it after some other bytes.
CompanionRecord RoundTrip(const CompanionRecord& record) {
  const std::string before = "\x01\x02\x03";
  CompanionFile file("Form1.frx", before + record.Bytes(), {3});
  return file.Read(3, record.Kind());
}

automation::Error ReadError(const std::string& bytes, uint32_t offset, Kind kind,
                            std::vector<uint32_t> references = {}) {
  CompanionFile file("Broken.frx", bytes, std::move(references));
  return qxtest::Caught([&] { file.Read(offset, kind); });
}

TEST(CompanionFile, NamedAfterTheComponentByItsKind) {
  EXPECT_EQ(ide::CompanionFileName("Forms\\frmMain.FRM", ide::FileKind::kForm), "frmMain.frx");
  EXPECT_EQ(ide::CompanionFileName("ctl/Gauge.ctl", ide::FileKind::kUserControl), "Gauge.ctx");
  EXPECT_EQ(ide::CompanionFileName("Page", ide::FileKind::kPropertyPage), "Page.pgx");
  EXPECT_EQ(ide::CompanionFileName("Doc.dob", ide::FileKind::kUserDocument), "Doc.dox");
  EXPECT_EQ(ide::CompanionFileName("v1.0\\Page.Dsr", ide::FileKind::kDesigner), "Page.dsx");
  EXPECT_EQ(ide::CompanionFileName("Module1.bas", ide::FileKind::kModule), "");
}

TEST(CompanionRecord, EachKindRoundTripsWithVb6sLayout) {
  const std::string text = "line one\r\nline two";
  auto record = CompanionRecord::Text(text);
  EXPECT_EQ(record.Bytes(), Bytes({18}) + text);
  EXPECT_EQ(RoundTrip(record).Content(), text);

  record = CompanionRecord::LongString(std::string(153, 'x'));
  EXPECT_EQ(record.Bytes(), Bytes({0x99, 0, 0, 0}) + std::string(153, 'x'));
  EXPECT_EQ(RoundTrip(record), record);
  EXPECT_EQ(RoundTrip(record).Content(), std::string(153, 'x'));

  record = CompanionRecord::Picture("");
  EXPECT_EQ(record.Bytes(), Bytes({8, 0, 0, 0, 'l', 't', 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(RoundTrip(record).Content(), "");
  const std::string icon = Bytes({0, 0, 1, 0, 1, 0}) + std::string(40, '\x7f');
  record = CompanionRecord::Picture(icon);
  EXPECT_EQ(record.Bytes(), Le32(46 + 8) + "lt" + Bytes({0, 0}) + Le32(46) + icon);
  EXPECT_EQ(RoundTrip(record).Content(), icon);

  record = CompanionRecord::PropertyPages({"List", "StandardFont"});
  EXPECT_EQ(record.Bytes(),
            Le32(2) + Le16(5) + "List" + Bytes({0}) + Le16(13) + "StandardFont" + Bytes({0}));
  EXPECT_THAT(RoundTrip(record).Items(), testing::ElementsAre("List", "StandardFont"));

  const std::string blob("\x00{GUID}\xff", 8);
  record = CompanionRecord::SizedBlob(blob);
  EXPECT_EQ(record.Bytes(), Le32(8) + blob);
  EXPECT_EQ(RoundTrip(record).Content(), blob);
  EXPECT_EQ(RoundTrip(record).Bytes(), record.Bytes());

  // An ANSI text keeps every byte, NULs and bytes above 0x7F included.
  const std::string ansi("\x00\xe4\xf6\x81\x40\"", 6);
  EXPECT_EQ(RoundTrip(CompanionRecord::Text(ansi)).Content(), ansi);
  EXPECT_EQ(RoundTrip(CompanionRecord::LongString(ansi)).Content(), ansi);
}

TEST(CompanionRecord, ListsWriteTheirWidthAsVb6Does) {
  // ItemData as VB6 writes it for a three-item list.
  auto itemData = CompanionRecord::List({"0", "1", "2"});
  EXPECT_EQ(itemData.Bytes(), Le16(3) + Le16(3) + Le16(1) + "0" + Le16(1) + "1" + Le16(1) + "2");
  EXPECT_EQ(CompanionRecord::List({}).Bytes(), Le16(0));
  EXPECT_TRUE(RoundTrip(CompanionRecord::List({})).Items().empty());

  auto list = CompanionRecord::List({"Red", "", "Dark green"});
  EXPECT_EQ(list.Bytes(), Le16(3) + Le16(10) + Le16(3) + "Red" + Le16(0) + Le16(10) + "Dark green");
  EXPECT_THAT(RoundTrip(list).Items(), testing::ElementsAre("Red", "", "Dark green"));

  // A width that VB6 would not write is read all the same: the items say their own lengths.
  CompanionFile odd("Form1.frx", Le16(1) + Le16(0) + Le16(2) + "ab", {0});
  EXPECT_THAT(odd.Read(0, Kind::kList).Items(), testing::ElementsAre("ab"));
}

TEST(CompanionRecord, ShortTextLengthFormsAtTheirBoundaries) {
  const auto text = [](std::size_t n) { return CompanionRecord::Text(std::string(n, 'a')); };
  EXPECT_EQ(text(254).Bytes().substr(0, 1), Bytes({0xFE}));
  EXPECT_EQ(text(254).Bytes().size(), 255u);
  EXPECT_EQ(text(255).Bytes().substr(0, 3), Bytes({0xFF, 0xFF, 0x00}));
  EXPECT_EQ(text(255).Bytes().size(), 258u);
  EXPECT_EQ(text(877).Bytes().substr(0, 3), Bytes({0xFF, 0x6D, 0x03}));
  EXPECT_EQ(text(65534).Bytes().substr(0, 3), Bytes({0xFF, 0xFE, 0xFF}));
  for (std::size_t n : {0, 254, 255, 256, 65534})
    EXPECT_EQ(RoundTrip(text(n)).Content().size(), n);

  // 65535 bytes and more: the form VB6 would use is not known, so nothing is guessed.
  const auto tooLong = qxtest::Caught([&] { text(65535); });
  EXPECT_EQ(tooLong.Number(), automation::err::kInvalidPropertyValue);
  EXPECT_THAT(tooLong.Description(), HasSubstr("65535"));
  EXPECT_EQ(ReadError(Bytes({0xFF, 0xFF, 0xFF}) + Le32(3) + "abc", 0, Kind::kText).Number(),
            automation::err::kInvalidFileFormat);
  // A short length in the long form is read as it says.
  CompanionFile longForm("Form1.frx", Bytes({0xFF, 3, 0}) + "abc", {0});
  EXPECT_EQ(longForm.Read(0, Kind::kText).Content(), "abc");

  EXPECT_EQ(qxtest::ErrorOf([] { CompanionRecord::List({std::string(65536, 'x')}); }),
            automation::err::kInvalidPropertyValue);
  EXPECT_EQ(qxtest::ErrorOf([] { CompanionRecord::List(std::vector<std::string>(65536)); }),
            automation::err::kInvalidPropertyValue);
}

TEST(CompanionFile, BrokenRecordsAreRefusedWithTheFileAndOffset) {
  const auto error = ReadError(
      "\x05"
      "abc",
      0, Kind::kText);
  EXPECT_EQ(error.Number(), automation::err::kInvalidFileFormat);
  EXPECT_EQ(error.Description(),
            "Invalid file format: Broken.frx: the text record at 0000 says it holds 5 bytes, but "
            "only 3 follow");
  EXPECT_THAT(ReadError("abc", 0xA6, Kind::kLongString).Description(),
              HasSubstr("the long string record at 00A6 lies past the end of the file (3 bytes)"));

  struct Case {
    std::string bytes;
    Kind kind;
    const char* problem;
  };
  const std::vector<Case> cases = {
      {"", Kind::kText, "lies past the end of the file (0 bytes)"},
      {Bytes({0xFF, 0x01}), Kind::kText, "cut short"},
      {Bytes({0x40, 0, 0}), Kind::kLongString, "cut short"},
      {Le32(10) + "abc", Kind::kLongString, "says it holds 10 bytes"},
      {Le32(0xFFFFFFFF), Kind::kSizedBlob, "says it holds 4294967295 bytes"},
      {Le16(5), Kind::kList, "cut short"},
      {Le16(0xFFFF) + Le16(3) + Le16(1) + "a", Kind::kList, "65535 items, which do not fit"},
      {Le16(2) + Le16(3) + Le16(1) + "a" + Le16(9) + "abc", Kind::kList, "item (number 2)"},
      {Le32(0x40000000) + Le16(2), Kind::kPropertyPages, "which do not fit"},
      {Le32(1) + Le16(4) + "List", Kind::kPropertyPages, "without its terminating NUL"},
      {Le32(1) + Le16(0), Kind::kPropertyPages, "without its terminating NUL"},
      {Le32(12) + "BM" + Bytes({0, 0}) + Le32(4) + "abcd", Kind::kPicture, "no \"lt\" mark"},
      {Le32(4) + "lt" + Bytes({0, 0}), Kind::kPicture, "no \"lt\" mark"},
      {Le32(12) + "lt" + Bytes({0, 0}) + Le32(9) + "abcd", Kind::kPicture, "sizes that disagree"},
      {Le32(30) + "lt" + Bytes({0, 0}) + Le32(22), Kind::kPicture, "says it holds 30 bytes"},
  };
  for (const Case& c : cases) {
    const auto e = ReadError(c.bytes, 0, c.kind);
    EXPECT_EQ(e.Number(), automation::err::kInvalidFileFormat) << c.problem;
    EXPECT_THAT(e.Description(), HasSubstr(c.problem));
  }
}

TEST(CompanionFile, RecordsAreDelimitedByTheOtherReferences) {
  // Two opaque records and a text: each opaque one ends where the next referenced one begins.
  const std::string bytes = std::string("OPAQUE1") + "BLOB" + Bytes({3}) + "abc";
  CompanionFile file("Form1.frx", bytes, {7, 0, 11});
  EXPECT_EQ(file.Read(0, Kind::kOpaque).Content(), "OPAQUE1");
  EXPECT_EQ(file.Read(7, Kind::kOpaque).Content(), "BLOB");
  EXPECT_EQ(file.Read(11, Kind::kOpaque).Bytes(), Bytes({3}) + "abc");
  // Nothing is a record: an opaque one at the very end would be empty.
  EXPECT_THAT(qxtest::Caught([&] { file.Read(15, Kind::kOpaque); }).Description(),
              HasSubstr("the opaque record at 000F lies past the end of the file (15 bytes)"));
  EXPECT_EQ(file.Read(11, Kind::kText).Content(), "abc");

  // A length that runs into the next referenced record lies, even inside the file.
  CompanionFile lying("Form1.frx", Bytes({9}) + "abc" + Bytes({5}) + "defgh", {0, 4});
  EXPECT_THAT(qxtest::Caught([&] { lying.Read(0, Kind::kText); }).Description(),
              HasSubstr("the text record at 0000 runs into the record at 0004"));
  EXPECT_EQ(lying.Read(4, Kind::kText).Content(), "defgh");
}

// A form's companion as VB6 packs it: a multi-line Text, a long caption, ItemData and List.
struct PackedForm {
  CompanionRecord text = CompanionRecord::Text(std::string(254, 't'));
  CompanionRecord caption = CompanionRecord::LongString(std::string(140, 'c'));
  CompanionRecord itemData = CompanionRecord::List({"0", "1"});
  CompanionRecord list = CompanionRecord::List({"First", "Second"});
  std::vector<uint32_t> offsets;
  std::string bytes;

  PackedForm() {
    for (const CompanionRecord* r : {&text, &caption, &itemData, &list}) {
      offsets.push_back(static_cast<uint32_t>(bytes.size()));
      bytes += r->Bytes();
    }
  }
};

TEST(CompanionWriter, AnUnchangedCompanionIsLeftAlone) {
  PackedForm form;
  CompanionFile file("Form1.frx", form.bytes, form.offsets);
  CompanionWriter writer(file);
  writer.Keep(form.offsets[0], Kind::kText);
  writer.Add(CompanionRecord::LongString(std::string(140, 'c')), form.offsets[1]);  // same value
  writer.Keep(form.offsets[2], Kind::kList);
  writer.Add(file.Read(form.offsets[3], Kind::kList), form.offsets[3]);
  const auto layout = writer.Finish();
  EXPECT_FALSE(layout.changed);
  EXPECT_TRUE(layout.bytes.empty());
  EXPECT_EQ(layout.offsets, form.offsets);

  // Laid out unlike VB6 (a gap, records out of order, one offset referenced twice, an opaque
  // record): still left alone while every reference reads what it read.
  const std::string odd = "GAP" + form.list.Bytes() + "OPAQUE" + form.text.Bytes();
  const uint32_t list = 3;
  const auto opaque = static_cast<uint32_t>(3 + form.list.Bytes().size());
  const auto text = static_cast<uint32_t>(opaque + 6);
  CompanionFile oddFile("Form1.frx", odd, {text, list, opaque, list});
  CompanionWriter oddWriter(oddFile);
  oddWriter.Keep(text, Kind::kText);
  oddWriter.Keep(list, Kind::kList);
  oddWriter.Keep(opaque, Kind::kOpaque);
  oddWriter.Keep(list, Kind::kList);
  const auto oddLayout = oddWriter.Finish();
  EXPECT_FALSE(oddLayout.changed);
  EXPECT_EQ(oddLayout.offsets, (std::vector<uint32_t>{text, list, opaque, list}));

  // No companion before and none now.
  CompanionFile none("Form1.frx", "", {});
  EXPECT_FALSE(CompanionWriter(none).Finish().changed);
}

TEST(CompanionWriter, ALengthChangeRenumbersEveryLaterRecord) {
  PackedForm form;
  CompanionFile file("Form1.frx", form.bytes, form.offsets);
  // The text grows from 254 to 255 bytes: its length field grows from one byte to three.
  const auto longer = CompanionRecord::Text(std::string(255, 't'));
  CompanionWriter writer(file);
  writer.Add(longer, form.offsets[0]);
  writer.Keep(form.offsets[1], Kind::kLongString);
  writer.Keep(form.offsets[2], Kind::kList);
  writer.Keep(form.offsets[3], Kind::kList);
  const auto layout = writer.Finish();
  ASSERT_TRUE(layout.changed);
  EXPECT_EQ(layout.bytes,
            longer.Bytes() + form.caption.Bytes() + form.itemData.Bytes() + form.list.Bytes());
  const uint32_t shift = 258 - 255;
  EXPECT_EQ(layout.offsets,
            (std::vector<uint32_t>{0, form.offsets[1] + shift, form.offsets[2] + shift,
                                   form.offsets[3] + shift}));
  EXPECT_EQ(layout.offsets[1], 0x102u);

  // The new companion reads back at the new offsets, and writing it again changes nothing.
  CompanionFile saved("Form1.frx", layout.bytes, layout.offsets);
  EXPECT_EQ(saved.Read(layout.offsets[0], Kind::kText).Content(), std::string(255, 't'));
  EXPECT_EQ(saved.Read(layout.offsets[1], Kind::kLongString), form.caption);
  EXPECT_THAT(saved.Read(layout.offsets[3], Kind::kList).Items(),
              testing::ElementsAre("First", "Second"));
  CompanionWriter again(saved);
  again.Keep(layout.offsets[0], Kind::kText);
  again.Keep(layout.offsets[1], Kind::kLongString);
  again.Keep(layout.offsets[2], Kind::kList);
  again.Keep(layout.offsets[3], Kind::kList);
  EXPECT_FALSE(again.Finish().changed);
}

TEST(CompanionWriter, ARewriteIsPackedInTheDescriptionsOrder) {
  // Out of order, with a gap and a shared offset: a rewrite drops the gap and gives each
  // reference its own record, in the order the description lists them.
  const auto a = CompanionRecord::Text("aaa");
  const auto b = CompanionRecord::LongString("bb");
  const std::string bytes = b.Bytes() + "GAP" + a.Bytes();
  const auto aAt = static_cast<uint32_t>(b.Bytes().size() + 3);
  CompanionFile file("Form1.frx", bytes, {aAt, 0, aAt});
  const auto c = CompanionRecord::Text("c");
  CompanionWriter writer(file);
  writer.Keep(aAt, Kind::kText);
  writer.Keep(0, Kind::kLongString);
  writer.Keep(aAt, Kind::kText);
  writer.Add(c, std::nullopt);  // a property that now goes to the companion
  const auto layout = writer.Finish();
  ASSERT_TRUE(layout.changed);
  EXPECT_EQ(layout.bytes, a.Bytes() + b.Bytes() + a.Bytes() + c.Bytes());
  EXPECT_EQ(layout.offsets, (std::vector<uint32_t>{0, 4, 10, 14}));

  // A reference removed is a change too; none left gives an empty companion.
  CompanionWriter fewer(file);
  fewer.Keep(aAt, Kind::kText);
  fewer.Keep(0, Kind::kLongString);
  EXPECT_TRUE(fewer.Finish().changed);
  const auto empty = CompanionWriter(file).Finish();
  EXPECT_TRUE(empty.changed);
  EXPECT_TRUE(empty.bytes.empty());

  // An opaque record cut shorter is a change, though its bytes begin the same.
  CompanionFile blobs("Form1.frx", "ABCDEF", {0});
  CompanionWriter shorter(blobs);
  shorter.Add(CompanionRecord::Opaque("ABC"), 0);
  EXPECT_TRUE(shorter.Finish().changed);
  CompanionWriter nothing(blobs);
  EXPECT_EQ(qxtest::ErrorOf([&] { nothing.Add(CompanionRecord::Opaque(""), 0); }),
            automation::err::kInvalidCall);
}

TEST(CompanionWriter, ABrokenRecordIsNeverCarriedIntoARewrite) {
  const auto good = CompanionRecord::Text("ok");
  CompanionFile file("Form1.frx", good.Bytes() + Bytes({200}) + "short", {0, 3});
  CompanionWriter writer(file);
  writer.Add(CompanionRecord::Text("changed"), 0);
  const auto error = qxtest::Caught([&] { writer.Keep(3, Kind::kText); });
  EXPECT_EQ(error.Number(), automation::err::kInvalidFileFormat);
  EXPECT_THAT(error.Description(), HasSubstr("Form1.frx: the text record at 0003"));
}

}  // namespace
