#pragma once

#include "common/Properties.h"
#include "tvconfigs/ConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The system properties of a set as a store. Has no state of its own. */
class PropConfigEditor : public ConfigEditor {
  public:
    /** @param properties  must outlive the object */
    explicit PropConfigEditor(Properties& properties) : mProperties(properties) {}

    /**
     * Sets the property. Gives false also if the set refuses it, which the log says: if the key is
     * not valid, or the value has more than 91 bytes.
     */
    bool Set(const char* key, const char* value) override;

    /** Reads the property. An empty one counts as absent; `value` is then the empty text. */
    bool Get(const char* key, char* value) const override;

  private:
    Properties& mProperties;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
