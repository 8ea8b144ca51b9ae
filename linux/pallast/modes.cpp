#include "modes.h"

namespace pallast {

namespace {

// Index = mode number. The display types first, then ambient, then reflective.
char const* const kModes[] = {
    "lcd",                    // 0
    "crt",                    // 1
    "projector",              // 2
    "led",                    // 3
    "plasma",                 // 4
    "lcd-ccfl",               // 5
    "lcd-rgb-led",            // 6
    "lcd-white-led",          // 7
    "wide-gamut-lcd-ccfl",    // 8
    "wide-gamut-lcd-rgb-led", // 9
    "ambient",                // 10
    "printer",                // 11
    "spot",                   // 12
};

constexpr int32_t kModeCount = static_cast<int32_t>(sizeof kModes / sizeof kModes[0]);

} // namespace

char const* capForMode(int32_t mode) {
    return mode >= 0 && mode < kModeCount ? kModes[mode] : nullptr;
}

int32_t defaultModeFor(SensorInfo const& info) {
    for (int32_t mode = 0; mode < kModeCount; ++mode)
        if (info.has(kModes[mode])) return mode;
    return -1;
}

bool measuresReflectance(SensorInfo const& info) {
    return info.has("printer") || info.has("spot");
}

} // namespace pallast
