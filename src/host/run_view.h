#pragma once
// RunView: what the host library's services answer for one run beyond the machine's own state.
//
// The driver checks a project before it opens it: every type or control library it names must be
// registered (RegistryKey.Exists of HKEY_CLASSES_ROOT\TypeLib\{...}) and every component file must
// exist (HostUtility.FileExists). The headless IDE needs neither: it keeps every control of a
// library it does not know byte for byte, and a component whose file is missing reports that
// error for itself alone. So a search run tells the host, for the project it is about to open,
// which library keys to take as present and which missing component files to take as there; it
// has noted each one for the user itself. Only RegistryKey.Exists and HostUtility.FileExists
// answer from the view: the registry file is never written, and nothing else of the platform
// claims that those files exist. Without a view (qx check, the IDE) they answer plainly.

#include <set>
#include <string>
#include <string_view>

namespace host {

class RunView {
 public:
  // The view of this process; empty until a run adds to it.
  static RunView& Current();

  // A registry key to take as present ("HKEY_CLASSES_ROOT\TypeLib\{...}"), compared as the
  // registry compares key paths.
  void AddKey(std::string_view keyPath);
  // A file to take as present, named as the driver names it (Windows or Linux form, relative
  // paths counted from the current folder), compared as Windows compares paths.
  void AddFile(std::string_view path);
  void Clear();

  bool HasKey(std::string_view keyPath) const;
  bool HasFile(std::string_view path) const;
  bool Empty() const { return keys_.empty() && files_.empty(); }

  // Empties the view when the scope ends.
  class Scope {
   public:
    Scope() = default;
    ~Scope() { Current().Clear(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
  };

 private:
  static std::string KeyOf(std::string_view keyPath);
  static std::string FileOf(std::string_view path);

  std::set<std::string> keys_;
  std::set<std::string> files_;
};

}  // namespace host
