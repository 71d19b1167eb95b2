#include "host/scan/scan_result.h"

#include <capnp/message.h>
#include <capnp/serialize.h>
#include <kj/exception.h>
#include <kj/io.h>

#include <cstring>
#include <functional>

#include "host/scan/scan_result.capnp.h"

namespace host::scan {
namespace {

capnp::Data::Reader Bytes(std::string_view text) {
  return {reinterpret_cast<const kj::byte*>(text.data()), text.size()};
}

std::string String(capnp::Data::Reader data) {
  return {reinterpret_cast<const char*>(data.begin()), data.size()};
}

void SetError(ScanErrorMessage::Builder out, const ScanError& error) {
  out.setNumber(error.number);
  out.setDescription(Bytes(error.description));
  if (!error.place.empty()) out.setPlace(Bytes(error.place));
}

ScanError ErrorOf(ScanErrorMessage::Reader in) {
  return {in.getNumber(), String(in.getDescription()), String(in.getPlace())};
}

void SetPlace(ScanPlaceMessage::Builder out, const ScanPlace& place) {
  out.setId(Bytes(place.id));
  out.setKind(Bytes(place.kind));
  out.setName(Bytes(place.name));
  if (!place.control.empty()) out.setControl(Bytes(place.control));
  if (!place.property.empty()) out.setProperty(Bytes(place.property));
  out.setText(Bytes(place.text));
  auto matches = out.initMatches(static_cast<unsigned>(place.matches.size()));
  for (unsigned i = 0; i < matches.size(); ++i) {
    const ScanMatch& match = place.matches[i];
    auto m = matches[i];
    m.setLine(match.line);
    m.setStart(match.start);
    m.setEnd(match.end);
    m.setText(Bytes(match.text));
    if (match.replacement) m.setReplacement(Bytes(*match.replacement));
  }
  if (place.replacement) out.setReplacement(Bytes(*place.replacement));
  out.setWritten(place.written);
  if (!place.resets.empty()) out.setResets(Bytes(place.resets));
  if (place.error) SetError(out.initError(), *place.error);
}

ScanPlace PlaceOf(ScanPlaceMessage::Reader in) {
  ScanPlace place;
  place.id = String(in.getId());
  place.kind = String(in.getKind());
  place.name = String(in.getName());
  place.control = String(in.getControl());
  place.property = String(in.getProperty());
  place.text = String(in.getText());
  place.matches.reserve(in.getMatches().size());
  for (const auto m : in.getMatches()) {
    ScanMatch& match = place.matches.emplace_back();
    match.line = m.getLine();
    match.start = m.getStart();
    match.end = m.getEnd();
    match.text = String(m.getText());
    if (m.hasReplacement()) match.replacement = String(m.getReplacement());
  }
  if (in.hasReplacement()) place.replacement = String(in.getReplacement());
  place.written = in.getWritten();
  place.resets = String(in.getResets());
  if (in.hasError()) place.error = ErrorOf(in.getError());
  return place;
}

ComponentScan ScanOf(ComponentScanMessage::Reader in) {
  ComponentScan scan;
  scan.collection = String(in.getCollection());
  scan.component = String(in.getComponent());
  scan.places.reserve(in.getPlaces().size());
  for (const auto place : in.getPlaces())
    scan.places.push_back(PlaceOf(place));
  for (const auto problem : in.getProblems())
    scan.problems.push_back(ErrorOf(problem));
  return scan;
}

std::string Flat(capnp::MessageBuilder& message) {
  std::string out(capnp::computeSerializedSizeInWords(message) * sizeof(capnp::word), '\0');
  kj::ArrayOutputStream stream(kj::arrayPtr(reinterpret_cast<kj::byte*>(out.data()), out.size()));
  capnp::writeMessage(stream, message);
  return out;
}

[[noreturn]] void Unreadable(const std::string& what) {
  throw automation::Error(5, "qx", "The scan results are not readable: " + what);
}

// Hands each message of the bytes (messages one after another) to `each`, in order.
void ForEachMessage(std::string_view bytes,
                    const std::function<void(capnp::MessageReader&)>& each) {
  if (bytes.size() % sizeof(capnp::word) != 0) Unreadable("they are not whole words");
  // The reader needs its words aligned; bytes that arrive otherwise are copied once.
  kj::Array<capnp::word> copy;
  const capnp::word* begin = reinterpret_cast<const capnp::word*>(bytes.data());
  if (reinterpret_cast<std::uintptr_t>(bytes.data()) % alignof(capnp::word) != 0) {
    copy = kj::heapArray<capnp::word>(bytes.size() / sizeof(capnp::word));
    std::memcpy(copy.begin(), bytes.data(), bytes.size());
    begin = copy.begin();
  }
  kj::ArrayPtr<const capnp::word> words(begin, bytes.size() / sizeof(capnp::word));
  capnp::ReaderOptions options;
  // A result holds whole procedure texts: the limit is the size of what came, not a default.
  options.traversalLimitInWords = 2 * words.size() + 1024;
  try {
    while (words.size() > 0) {
      capnp::FlatArrayMessageReader reader(words, options);
      each(reader);
      words = kj::arrayPtr(reader.getEnd(), words.end());
    }
  } catch (const kj::Exception& e) {
    Unreadable(e.getDescription().cStr());
  }
}

std::string Outcome(const std::function<void(AgentOutcomeMessage::Builder)>& fill) {
  capnp::MallocMessageBuilder message;
  fill(message.initRoot<AgentOutcomeMessage>());
  return Flat(message);
}

}  // namespace

std::string EncodeScan(const ComponentScan& scan) {
  capnp::MallocMessageBuilder message;
  auto root = message.initRoot<ComponentScanMessage>();
  root.setCollection(Bytes(scan.collection));
  root.setComponent(Bytes(scan.component));
  auto places = root.initPlaces(static_cast<unsigned>(scan.places.size()));
  for (unsigned i = 0; i < places.size(); ++i)
    SetPlace(places[i], scan.places[i]);
  auto problems = root.initProblems(static_cast<unsigned>(scan.problems.size()));
  for (unsigned i = 0; i < problems.size(); ++i)
    SetError(problems[i], scan.problems[i]);
  return Flat(message);
}

std::vector<ComponentScan> DecodeScans(std::string_view bytes) {
  std::vector<ComponentScan> scans;
  ForEachMessage(bytes, [&](capnp::MessageReader& message) {
    scans.push_back(ScanOf(message.getRoot<ComponentScanMessage>()));
  });
  return scans;
}

bool IsOneScan(std::string_view bytes) {
  try {
    size_t count = 0;
    ForEachMessage(bytes, [&](capnp::MessageReader& message) {
      message.getRoot<ComponentScanMessage>();
      ++count;
    });
    return count == 1;
  } catch (const automation::Error&) {
    return false;
  }
}

std::string EncodeScannedOutcome(std::string_view results) {
  return Outcome([&](AgentOutcomeMessage::Builder out) { out.setScans(Bytes(results)); });
}

std::string EncodeFailedOutcome(const automation::Error& error, bool atFactory) {
  return Outcome([&](AgentOutcomeMessage::Builder out) {
    SetError(atFactory ? out.initFactoryError() : out.initScanError(), ScanError::Of(error));
  });
}

std::vector<AgentOutcome> DecodeOutcomes(std::string_view bytes) {
  std::vector<AgentOutcome> outcomes;
  ForEachMessage(bytes, [&](capnp::MessageReader& message) {
    const auto in = message.getRoot<AgentOutcomeMessage>();
    AgentOutcome& outcome = outcomes.emplace_back();
    if (in.isScans()) {
      const auto scans = in.getScans();
      outcome.scans = DecodeScans({reinterpret_cast<const char*>(scans.begin()), scans.size()});
      return;
    }
    outcome.atFactory = in.isFactoryError();
    const ScanError error = ErrorOf(outcome.atFactory ? in.getFactoryError() : in.getScanError());
    outcome.error = automation::Error(error.number, "", error.description);
  });
  return outcomes;
}

}  // namespace host::scan
