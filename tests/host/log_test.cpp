// The result line every request leaves in the log.
#include "host/host.h"
#include "host/log_file.h"

namespace {

class ResultLog : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        log.lines(); // set-up's own sentences
    }
    hostlog::Tail log;
};

std::string const kUri = "/sensorbridge.tovelworks.net/";

} // namespace

// With the URI as far as the request got, and the method word as dispatched.
TEST_F(ResultLog, OneLinePerRequest) {
    std::string const id = host::OpenByDeviceID(8);
    log.lines();
    host::Call(::SensorXYZ, "", host::IdParams(id));
    SimInjectResult("MDMeasureXYZ2", static_cast<int32_t>(0x80000001u));
    host::Call(::SensorXYZ, "GET", host::IdParams(id));
    host::Call(::SensorXYZ, "GET", host::IdParams(id + "0"));
    host::Call(::SensorXYZ, "Put", host::IdParams("x"));
    host::Call(::SensorXYZ, "patch");

    std::string const uri = kUri + "Sensors/" + id;
    std::vector<hostlog::Line> const expected = {
        {2, "statusCode:200\tmethod:GET\turi:" + uri + "/XYZ\tmsg:Success"},
        {5, "statusCode:500\tmethod:GET\turi:" + uri +
                "/XYZ\terr:DvError\tmsg:Invalid argument.\tcode:80000001"},
        {5, "statusCode:404\tmethod:GET\turi:" + uri + "0/XYZ\terr:Error\tmsg:Not found."},
        {5, "statusCode:405\tmethod:PUT\turi:" + kUri + "\terr:MethodError\tmsg:PUT method is not allowed."},
        {5, "statusCode:400\tmethod:GET\turi:" + kUri +
                "Sensors//XYZ\terr:BadRequestError\tmsg:URI is invalid."},
    };
    EXPECT_EQ(expected, log.lines());
}
