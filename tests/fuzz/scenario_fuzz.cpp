// The scenario loader, then a short tour of the world it made: list the
// sensors, open the first devices and monitor sensors, read from them, close
// them; every response is checked. A world that loads must also write itself
// out as a scenario that loads back to the same text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "envelope.h"
#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "sensorcontrol/sensorcontrol.h"
#include "sensorsim.h"

namespace {

std::string WorldText() {
    uint32_t const length = SimGetWorld(nullptr, 0);
    std::string text(length, '\0');
    SimGetWorld(&text[0], length);
    text.resize(length - 1);
    return text;
}

fuzz::Fetched Call(char const* name, char const* method, std::string const& parameters,
                   char const* query = "") {
    std::string const request = std::string(R"({"method":")") + method + "\"}";
    return fuzz::CallChecked(fuzz::FindExport(name), request.c_str(), parameters.c_str(), query, "");
}

// Reads from the sensor, then closes it.
void Visit(std::string const& id) {
    if (id.empty()) return;
    std::string const params = "{\"id\":\"" + id + "\"}";
    for (char const* name : {"Sensor", "SensorXYZ", "SensorMode", "SensorCorrection", "SensorRGB",
                             "SensorCorrelation", "SensorCorrelationMatrix"})
        Call(name, "GET", params);
    Call("Sensor", "DELETE", params);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Setup();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    if (SimLoadScenario(text.c_str()) != 0) return 0;

    std::string const written = WorldText();
    if (SimLoadScenario(written.c_str()) != 0 || WorldText() != written) {
        std::fprintf(stderr, "scenario_fuzz: the written world does not load back the same\n");
        std::abort();
    }

    Call("Sensors", "GET", "", R"({"connected":true})");
    quilljson::Value world;
    quilljson::Parser().parse(&world, written);
    size_t const devices = world["devices"].size(), monitors = world["monitors"].size();
    for (size_t i = 0; i < devices && i < 3; ++i) {
        quilljson::Value const& device = world["devices"][static_cast<unsigned long>(i)];
        Visit(fuzz::IdOf(Call("DeviceID", "POST",
                              "{\"deviceID\":\"" + std::to_string(device["deviceID"].getInteger()) + "\"}")));
    }
    for (size_t i = 0; i < monitors && i < 2; ++i) {
        quilljson::Value const& monitor = world["monitors"][static_cast<unsigned long>(i)];
        quilljson::Value params = quilljson::Value::object();
        params["product"] = monitor["product"];
        params["serial"] = monitor["serial"];
        Visit(fuzz::IdOf(Call("Monitors", "POST", quilljson::Serializer::toText(params))));
    }
    return 0;
}
