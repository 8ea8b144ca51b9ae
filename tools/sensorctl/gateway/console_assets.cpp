#include "console_assets.h"

namespace sensorctl::gateway {

ConsoleAsset const* FindConsoleAsset(std::string_view name) {
    for (size_t i = 0; i < kConsoleAssetCount; ++i)
        if (name == kConsoleAssets[i].name) return &kConsoleAssets[i];
    return nullptr;
}

} // namespace sensorctl::gateway
