// A minimal host of libsensorcontrol in C++: set up, list the connected
// sensors, open the first, measure it, close it, tear down. Every response is
// fetched in two steps: its length first, then its text. Exits 1 when the
// library answers a status other than the one expected.
#include <sensorcontrol/sensorcontrol.h>

#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Endpoint = uint32_t (*)(char const*, char const*, char const*, char const*);

// Calls an endpoint, fetches its response and throws unless the status is 200.
std::string Call(char const* what, Endpoint endpoint, std::string const& request,
                 std::string const& parameters, std::string const& query = "") {
    uint32_t const id = endpoint(request.c_str(), parameters.c_str(), query.c_str(), "");
    uint32_t length = 0;
    uint32_t status = BridgeHelperGetResponse(id, nullptr, &length); // length counts the closing zero
    if (length == 0) throw std::runtime_error(std::string(what) + ": no response stored");
    std::vector<char> text(length, '\0');
    status = BridgeHelperGetResponse(id, text.data(), &length); // also frees the entry
    std::cout << what << ": " << status << " " << text.data() << "\n";
    if (status != 200) throw std::runtime_error(std::string(what) + ": status " + std::to_string(status));
    return text.data();
}

// The text after "key": up to the next delimiter; a real host would use a
// JSON parser.
std::string Member(std::string const& json, std::string const& key, char const* delimiters) {
    std::string const pattern = "\"" + key + "\":";
    size_t start = json.find(pattern);
    if (start == std::string::npos) return "";
    start += pattern.size();
    if (json[start] == '"') ++start;
    return json.substr(start, json.find_first_of(delimiters, start) - start);
}

} // namespace

int main() {
    Setup();
    int result = 0;
    try {
        std::string const sensors =
            Call("connected sensors", Sensors, R"({"method":"GET"})", "", R"({"connected":true})");
        std::string const deviceID = Member(sensors, "deviceID", ",}");
        if (deviceID.empty()) {
            std::cout << "no sensor connected\n";
        } else {
            std::string const opened =
                Call("open", DeviceID, R"({"method":"POST"})", R"({"deviceID":)" + deviceID + "}");
            std::string const sensor = R"({"id":")" + Member(opened, "value", "\"") + R"("})";
            Call("measure", SensorXYZ, R"({"method":"GET"})", sensor);
            Call("close", Sensor, R"({"method":"DELETE"})", sensor);
        }
    } catch (std::exception const& failure) {
        std::cerr << failure.what() << "\n";
        result = 1;
    }
    TearDown();
    return result;
}
