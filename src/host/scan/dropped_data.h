#pragma once
// What a write drops that the text written does not show. Rewriting a list box's items as VB6
// does (Clear, then AddItem) sets every ItemData value back to 0: the IDE says so here when it
// clears such a list, and the Scanner, which listens while it writes a place, reports it with
// that place ("ItemData (3 values)"). Both run in the IDE's process, on the thread of the call.

#include <string>
#include <vector>

namespace host::scan {

// Collects what is dropped on this thread while it lives; scopes do not nest.
class DroppedData {
 public:
  DroppedData();
  ~DroppedData();
  DroppedData(const DroppedData&) = delete;
  DroppedData& operator=(const DroppedData&) = delete;

  // What was dropped, joined by ", "; "" when nothing was.
  std::string Said() const;

  // Says what a write drops; nothing happens when nobody listens.
  static void Note(std::string what);

 private:
  std::vector<std::string> said_;
};

}  // namespace host::scan
