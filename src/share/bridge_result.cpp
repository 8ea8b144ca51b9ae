#include "share/bridge_result.h"

bool BridgeError::empty() const {
    if (!name.empty() || !message.empty()) return false;
    switch (value.type()) {
    case quilljson::Value::String:
        return value.stringRef().empty();
    case quilljson::Value::Array:
    case quilljson::Value::Object:
        return value.size() == 0;
    default: // null, boolean, numbers
        return true;
    }
}
