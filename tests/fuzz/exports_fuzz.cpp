// Every endpoint export on the default simulated world. The first byte picks
// the export (sensorctl's route table order), the second the method (bits
// 0-1) and the sensor of the default parameters (bit 2: the built-in sensor
// of LMN27A, else device 8). The rest is split at zero bytes into the texts:
// one piece is the body, two are parameters and body, three add the query,
// four are request, parameters, query and body. "$s" in the parameters
// stands for the chosen sensor's id.
#include <cstdint>
#include <string>
#include <vector>

#include "envelope.h"
#include "sensorcontrol/sensorcontrol.h"

namespace {

char const* const kMethods[] = {"GET", "POST", "PUT", "DELETE"};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Setup();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    if (size < 2) return 0;
    std::vector<std::string> const& names = fuzz::ExportNames();
    fuzz::Endpoint const endpoint = fuzz::FindExport(names[data[0] % names.size()]);
    if (endpoint == nullptr) __builtin_trap(); // the route table names an export the library lacks
    std::string const& sensor = fuzz::SensorId((data[1] & 0x04) != 0);

    std::vector<std::string> pieces(1);
    for (size_t i = 2; i < size; ++i) {
        if (data[i] == '\0' && pieces.size() < 4)
            pieces.emplace_back();
        else
            pieces.back() += static_cast<char>(data[i]);
    }
    std::string request = std::string(R"({"method":")") + kMethods[data[1] & 0x03] + "\"}";
    std::string parameters = "{\"id\":\"$s\"}", query, body;
    switch (pieces.size()) {
    case 1:
        body = pieces[0];
        break;
    case 2:
        parameters = pieces[0], body = pieces[1];
        break;
    case 3:
        parameters = pieces[0], query = pieces[1], body = pieces[2];
        break;
    default:
        request = pieces[0], parameters = pieces[1], query = pieces[2], body = pieces[3];
        break;
    }
    parameters = fuzz::Replace(parameters, "$s", sensor);
    fuzz::CallChecked(endpoint, request.c_str(), parameters.c_str(), query.c_str(), body.c_str());
    return 0;
}
