#include "instrument/stored_sections.h"

#include "instrument/kept_section.h"
#include "instrument/parameter_blocks.h"
#include "instrument/parameters.h"
#include "instrument/store.h"

namespace host::instrument {
namespace {

ParameterValues StandardParameters() { return {}; }
StoreItems StandardStore() { return StandardStoreItems(); }
ParameterBlocks NoParameterBlocks() { return {}; }

template <class Value>
std::unique_ptr<StateSection> Make(Kept<Value>& kept, KeptForm<Value> form) {
  return std::make_unique<KeptSection<Value>>(&kept, std::move(form));
}

}  // namespace

std::unique_ptr<StateSection> MakeParametersSection() {
  return Make(Parameters(), {"parameters", ParametersToJson, MergeParameters, StandardParameters, StandardParameters});
}

std::unique_ptr<StateSection> MakeStoreSection() {
  return Make(Store(), {"store", StoreToJson, MergeStore, StandardStore, StandardStore});
}

std::unique_ptr<StateSection> MakeParameterBlocksSection() {
  return Make(ParameterBlock(), {"parameter_blocks", ParameterBlocksToJson, MergeParameterBlocks,
                                 StandardParameterBlocks, NoParameterBlocks});
}

}  // namespace host::instrument
