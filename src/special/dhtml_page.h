#pragma once
// DHTMLPage: the component object of a DHTML page designer. Beside the protocol it offers the
// page's BuildFile and SourceFile (the IDE component's properties, read and written live) and
// HTML: the whole page, read from and written to the file that the page designer names as the
// one holding it. The text is kept nowhere: every read and write goes to that file.

#include <string>

#include "automation/object.h"
#include "components/designed_component.h"

namespace special {

class DHTMLPage : public components::DesignedComponent {
 public:
  DHTMLPage();
  const automation::ClassInfo& Class() const override;

  // The page's lines joined by CR LF: a line ends at CR LF or a lone CR, a lone LF stays in
  // it; an empty file gives "". No file named: "Undefined property."; a file that is not
  // there: -32767 naming it.
  std::string HTML();
  // Lets the component go (mode 0: saved if changed, its designer closed), writes the text and
  // a CR LF over the file, then takes the component up again for writing (mode 2, refused when
  // the IDE holds changes). A failure after the let-go leaves the object in mode 0.
  void SetHTML(const std::string& text);

 private:
  std::string PageFile() const;
};

// The capacity the page's line array grows to when it is full: a quarter more, rounded to the
// nearest (ties to even), plus 64 (0, 64, 144, 244, 369, ...).
std::size_t GrownLineCapacity(std::size_t capacity);

}  // namespace special
