// One registry value as JSON (see registry_json.h).
#ifndef QXHOST_INSTRUMENT_REGISTRY_VALUE_JSON_H
#define QXHOST_INSTRUMENT_REGISTRY_VALUE_JSON_H

#include "common/registry/registry_tree.h"
#include "instrument/state.h"

namespace host::instrument {

/// Without the value's name.
Json RegistryValueToJson(const RegistryValue& value);

/// A value without a name. Throws StateError.
RegistryValue RegistryValueFromJson(const Json& json);

}  // namespace host::instrument

#endif
