// The registry as JSON: what the state document shows and the instrument's file keeps.
//
//   {"HKLM/Software/X": {"Level": {"type": "INT", "value": 3}, "": {"type": "STR", "value": "the default value"},
//                        "Raw": {"type": "BIN", "value": "0A1B"}, "Other": {"type": 7, "value": "00"}}}
//
// A key is named from its root on; a "/" inside of a key's name is written "\/". Keys that hold keys only are not
// shown: those below them imply them. What INT, STR and BIN cannot show as it is has the type's number and its bytes,
// so that nothing is lost.
#ifndef QXHOST_INSTRUMENT_REGISTRY_JSON_H
#define QXHOST_INSTRUMENT_REGISTRY_JSON_H

#include "common/registry/registry_tree.h"
#include "instrument/state.h"

namespace host::instrument {

Json RegistryToJson(const RegistryContent& content);

/// The content with a merge patch (RFC 7396) applied, key by key in the patch's order. Throws StateError for a patch
/// that cannot be applied.
RegistryContent MergeRegistry(const RegistryContent& content, const Json& patch);

}  // namespace host::instrument

#endif
