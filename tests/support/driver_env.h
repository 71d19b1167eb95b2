#pragma once
// The setting of a driver test: a fresh qx home, a fresh process with the host library's and the
// driver's classes loaded (as a host loading the driver has them), and helpers to copy fixture
// projects into a temporary folder and to catch the driver's errors.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "automation/error.h"
#include "automation/process.h"
#include "host/register.h"
#include "special/qxvb60.h"
#include "support/bytes.h"
#include "support/temp_home.h"

namespace qxtest {

class DriverEnv {
 public:
  DriverEnv() : process_(automation::Process::Create("host")), scope_(process_) {
    host::RegisterClasses();
    special::LoadDriver();
  }
  ~DriverEnv() { process_->End(); }

  const std::filesystem::path& home() const { return home_.path(); }
  const std::filesystem::path& work() const { return work_.path(); }

  // Copies tests/fixtures/<name> into the work folder; returns the copy's path.
  std::filesystem::path CopyFixture(const std::string& name) const {
    const auto target = work_.path() / name;
    std::filesystem::copy(std::filesystem::path(QX_FIXTURES) / name, target,
                          std::filesystem::copy_options::recursive);
    return target;
  }

 private:
  TempHome home_;
  TempDir work_;
  std::shared_ptr<automation::Process> process_;
  automation::Process::Scope scope_;
};

}  // namespace qxtest
