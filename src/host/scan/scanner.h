#pragma once
// Scanner: the host's scanning engine for one component. A component object creates one in its
// own process and calls ScanObject with itself; the Scanner finds the scan buffer that qx
// registered under a name, reads the request (scan_request.h), walks the component's places
// (places.h), matches, and, when the request writes and the component can be written, switches
// the component to writing (IObject.SetMode 2) once, before its first write, and writes every
// place whose text changes. All it found goes to the buffer in one AddResult call, as one
// ComponentScan (scan_result.h): the component's collection and name, its places with their
// text, matches, replacement, written flag and error, and its problems.
//
// Only places with a match are listed, in the order of the component's file; a match's line is
// 1-based within the place's text, its start and end are byte offsets in that line. A place's id
// (component, kind and name) is the same in every scan of the component as long as its names are,
// so that a request can name the places it writes ("only", scan_request.h). A place that cannot
// be read, or a kind of place that cannot be enumerated, is a problem; a write that fails (the
// refusal of mode 2, the procedure-list check, any other error), a change of a component that
// cannot be written (its file is read-only) and a pattern that needs more backtracking than PCRE2
// allows on the place's text are the error of the place; either way the walk goes on. A refused
// switch to mode 2 is the error of every place that would have changed, and nothing is written.
//
// ScanObject itself raises only when there is no buffer under the name, the request is not
// valid, a pattern or the replacement does not compile, or the buffer does not take the result.

#include <string>

#include "automation/object.h"

namespace host::scan {

class Scanner : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.Scanner";

  const automation::ClassInfo& Class() const override;

  void ScanObject(const std::string& projectName, const std::string& collectionName,
                  const std::string& objectName, bool objectIsUpdatable,
                  const automation::ObjectRef& object, const std::string& scanBufferName);
};

}  // namespace host::scan
