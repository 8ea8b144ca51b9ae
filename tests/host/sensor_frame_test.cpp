// Every per-sensor endpoint: the methods it serves resolve the sensor first,
// the others answer 405.
#include <set>

#include "host/sensor_test_util.h"

namespace {

struct EndpointMethods {
    char const* name;
    host::Endpoint endpoint;
    std::set<std::string> methods;
};

EndpointMethods const kEndpoints[] = {
    {"Sensor", ::Sensor, {"GET", "DELETE"}},
    {"SensorMode", ::SensorMode, {"GET", "PUT"}},
    {"SensorCalibration", ::SensorCalibration, {"GET", "PUT"}},
    {"SensorXYZ", ::SensorXYZ, {"GET"}},
    {"SensorRawData", ::SensorRawData, {"GET"}},
    {"SensorRGB", ::SensorRGB, {"GET"}},
    {"SensorIR", ::SensorIR, {"GET"}},
    {"SensorXYZWithoutCorrelation", ::SensorXYZWithoutCorrelation, {"GET"}},
    {"SensorArm", ::SensorArm, {"GET", "PUT"}},
    {"SensorPosition", ::SensorPosition, {"GET"}},
    {"SensorExteriorLight", ::SensorExteriorLight, {"GET", "PUT"}},
    {"SensorParameterDescription", ::SensorParameterDescription, {"GET", "PUT"}},
    {"SensorTargetMarker", ::SensorTargetMarker, {"GET", "PUT"}},
    {"SensorIFSTempCorrectParam", ::SensorIFSTempCorrectParam, {"POST"}},
    {"SensorIFSBrightCorrectParamUpdate", ::SensorIFSBrightCorrectParamUpdate, {"GET", "PUT"}},
    {"SensorDeviceOption", ::SensorDeviceOption, {"GET", "PUT"}},
    {"SensorCorrection", ::SensorCorrection, {"PUT", "DELETE"}},
    {"SensorExCorrection", ::SensorExCorrection, {"GET", "PUT"}},
    {"SensorAmbrelSense", ::SensorAmbrelSense, {"GET", "PUT"}},
    {"SensorAmbrelSenseLevel", ::SensorAmbrelSenseLevel, {"GET", "PUT"}},
};

class SensorFrame : public host::HostTest {};

TEST_F(SensorFrame, ServedMethodsResolveTheSensorOthersAre405) {
    for (auto const& e : kEndpoints) {
        for (std::string method : {"GET", "PUT", "POST", "DELETE"}) {
            SCOPED_TRACE(std::string(e.name) + " " + method);
            host::Response unknown = host::Call(e.endpoint, method, host::IdParams("no-such-sensor"), "", "1");
            host::Response missing = host::Call(e.endpoint, method, "{}", "", "1");
            if (e.methods.count(method) != 0) {
                EXPECT_EQ(404u, unknown.status) << unknown.text;
                EXPECT_EQ("Error", unknown.errorName());
                EXPECT_EQ("Not found.", unknown.errorMessage());
                sensortest::ExpectBadRequest(missing, "URI is invalid.");
            } else {
                EXPECT_EQ(405u, unknown.status) << unknown.text;
                EXPECT_EQ("MethodError", unknown.errorName());
                EXPECT_EQ(method + " method is not allowed.", unknown.errorMessage());
            }
        }
    }
    EXPECT_TRUE(host::Journal().arrayRef().empty()) << "no device call without a sensor";
}

} // namespace
