#include "host/scan/dropped_data.h"

namespace host::scan {
namespace {

thread_local std::vector<std::string>* listening = nullptr;

}  // namespace

DroppedData::DroppedData() {
  listening = &said_;
}

DroppedData::~DroppedData() {
  listening = nullptr;
}

std::string DroppedData::Said() const {
  std::string out;
  for (const std::string& what : said_)
    out += (out.empty() ? "" : ", ") + what;
  return out;
}

void DroppedData::Note(std::string what) {
  if (listening != nullptr) listening->push_back(std::move(what));
}

}  // namespace host::scan
