// The console's files, built into the program (generated from console/ by
// embed_assets.cmake), so the page works without anything beside the binary.
#pragma once

#include <cstddef>
#include <string_view>

namespace sensorctl::gateway {

struct ConsoleAsset {
    char const* name; // the file name, "index.html"
    char const* contentType;
    unsigned char const* bytes;
    size_t size;
};

extern ConsoleAsset const kConsoleAssets[];
extern size_t const kConsoleAssetCount;

// Null when there is no such file.
ConsoleAsset const* FindConsoleAsset(std::string_view name);

} // namespace sensorctl::gateway
