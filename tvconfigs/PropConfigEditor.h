#pragma once

#include "tvconfigs/ConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// The system properties as a store. Has no state of its own.
class PropConfigEditor : public ConfigEditor {
  public:
    /// Sets the property. False also when the property service refuses it: the key is none, or the
    /// value has more than 91 bytes.
    bool Set(const char* key, const char* value) override;

    /// Reads the property. An empty one counts as absent; `value` is then the empty text.
    bool Get(const char* key, char* value) const override;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
