#include "instrument/registry_section.h"

#include <cerrno>
#include <nlohmann/json.hpp>

#include "common/registry/registry.h"
#include "instrument/registry_json.h"

namespace host::instrument {
namespace {

void Expect(DWORD error) {
  if (error != ERROR_SUCCESS) throw std::runtime_error("registry: cannot be kept: error " + std::to_string(error));
}

DWORD ErrorCode(int error) {
  if (error == 0) return ERROR_SUCCESS;
  return error == ENOSPC ? ERROR_DISK_FULL : ERROR_REGISTRY_IO_FAILED;
}

}  // namespace

RegistrySection::~RegistrySection() { Registry::Instance().SetKeeper(nullptr); }

Json RegistrySection::ToJson() const { return RegistryToJson(Registry::Instance().Content()); }

void RegistrySection::Check(const Json& patch) const { MergeRegistry(Registry::Instance().Content(), patch); }

// The registry may have changed since Check: the patch is merged into what it holds now.
void RegistrySection::Apply(const Json& patch) {
  Expect(Registry::Instance().Change([&](RegistryContent* content) {
    *content = MergeRegistry(*content, patch);
    return DWORD{ERROR_SUCCESS};
  }));
}

void RegistrySection::Reset() { Expect(Registry::Instance().Replace(DefaultRegistry())); }

void RegistrySection::Restore(const Json& whole) {
  Expect(Registry::Instance().Replace(MergeRegistry(EmptyRegistry(), whole)));
}

void RegistrySection::SetKeeper(const Keeper& keeper) {
  Registry::Instance().SetKeeper(
      [keeper](const RegistryContent& content) { return ErrorCode(keeper(RegistryToJson(content))); });
}

}  // namespace host::instrument
