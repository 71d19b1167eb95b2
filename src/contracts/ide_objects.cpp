#include "contracts/ide_objects.h"

namespace contracts {

std::string CodeModule::ProcOfLine(int32_t line, int32_t& kind) const {
  // ProcOfLine is a property with arguments whose kind argument is by reference.
  automation::Args args{line, kind};
  const std::string name =
      automation::Invoke(d_.object(), "", "ProcOfLine", automation::MemberKind::Get, args)
          .ToString();
  kind = args[1].ToLong();
  return name;
}

}  // namespace contracts
