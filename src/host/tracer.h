#pragma once
// Tracer: the call tracer, one per process. The driver reports the entry and exit of its traced
// operations; the tracer writes them as an indented call tree, one line per event:
//
//   > qxvb60.Forms.ICollection_GetObject
//     > qxvb60.Project.Activate
//     < qxvb60.Project.Activate
//   < qxvb60.Forms.ICollection_GetObject
//
// Tracing is on when the environment variable QX_TRACE is "1" when the tracer is made (qx's
// --trace sets it). The lines go to standard error, or to the end of the file named by
// QX_TRACE_FILE. While tracing is off, Enter and Leave write nothing.

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"

namespace host {

class Tracer : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.Tracer";

  // Reads QX_TRACE and QX_TRACE_FILE.
  Tracer();
  ~Tracer() override;

  // The tracer of the current process, made on first use.
  static std::shared_ptr<Tracer> Instance();

  const automation::ClassInfo& Class() const override;

  // Flushes the output and forgets every open level.
  void Finish();
  void Enter(std::string& siteName);
  // Closes the most recent open level; without one it does nothing.
  void Leave();
  bool IsEnabled() const { return enabled_; }

  // For tests and for qx: where the lines go (null: back to the default), and the switch.
  void SetSink(std::ostream* sink);
  void SetEnabled(bool enabled) { enabled_ = enabled; }

 private:
  void WriteLine(char mark, const std::string& siteName);

  bool enabled_ = false;
  std::unique_ptr<std::ostream> file_;  // the QX_TRACE_FILE stream, when there is one
  std::ostream* defaultSink_ = nullptr;
  std::ostream* sink_ = nullptr;
  std::vector<std::string> open_;  // the site names of the open levels, innermost last
};

}  // namespace host
