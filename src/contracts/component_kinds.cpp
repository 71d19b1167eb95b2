#include "contracts/component_kinds.h"

namespace contracts {

std::string RefusalOf(const ComponentKind& kind) {
  return "Couldn't save changes safely because the " + std::string(kind.refusalName) +
         " is already open and has pending changes.";
}

const ComponentKind* FindCollectionKind(std::string_view collection) {
  for (const ComponentKind& kind : kComponentKinds) {
    if (kind.collection == collection) return &kind;
  }
  return nullptr;
}

const ComponentKind* FindComponentKind(std::string_view component) {
  for (const ComponentKind& kind : kComponentKinds) {
    if (kind.component == component) return &kind;
  }
  return nullptr;
}

}  // namespace contracts
