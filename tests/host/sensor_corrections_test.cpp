// Applying and releasing corrections; the extra corrections of a device.
#include "host/sensor_test_util.h"

namespace {

using quilljson::Value;
using namespace sensortest;

class SensorCorrections : public host::HostTest {
protected:
    void SetUp() override {
        host::HostTest::SetUp();
        id = host::OpenByDeviceID(8);
        host::ClearJournal();
    }
    host::Response put(host::Endpoint e, std::string const& body) {
        return host::Call(e, "PUT", host::IdParams(id), "", body);
    }
    std::string id;
};

TEST_F(SensorCorrections, TypeSelectsTheCorrectionPlainByDefault) {
    struct {
        char const* body;
        char const* function;
    } const cases[] = {
        {"{\"type\":\"paperWhite\",\"observerKey\":2}", "MDApplyPaperWhiteCorrection"},
        {"{\"type\":\"10degFor2deg\"}", "MDApply10DegCorrectionFor2DegCorrelatedMeasurement"},
        {"{\"type\":\"plainFor2deg\"}", "MDApplyPlainCorrectionFor2DegCorrelatedMeasurement"},
        {"{\"type\":\"Emission\"}", "MDApplyPlainCorrection"},
        {"{}", "MDApplyPlainCorrection"},
        {"\"emission\"", "MDApplyPlainCorrection"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        host::ClearJournal();
        ExpectOK(put(::SensorCorrection, c.body), Value());
        EXPECT_EQ(std::vector<std::string>{c.function}, Functions());
    }
    ExpectOK(host::Call(::SensorCorrection, "DELETE", host::IdParams(id)), Value());
    EXPECT_TRUE(Called("MDReleaseCorrection"));
    SimInjectResult("MDReleaseCorrection", kInvalidArgument);
    ExpectDvError(host::Call(::SensorCorrection, "DELETE", host::IdParams(id)), 0x80000001, "Release correction.");
}

TEST_F(SensorCorrections, EmissionChecksInOrderThenConvertsPanelRevision) {
    ExpectBadRequest(put(::SensorCorrection, "{\"type\":\"emission\",\"observerKey\":\"1\",\"product\":5}"),
                     "data must have observerKey.");
    ExpectBadRequest(put(::SensorCorrection, "{\"type\":\"emission\",\"observerKey\":1,\"product\":5}"),
                     "data must have product.");
    ExpectBadRequest(put(::SensorCorrection, "{\"type\":\"emission\",\"observerKey\":1,\"product\":\"X\"}"),
                     "data must have panelRevision.");
    ExpectBadRequest(put(::SensorCorrection, "{\"type\":\"paperWhite\"}"), "data must have observerKey.");
    EXPECT_TRUE(host::Journal().arrayRef().empty()) << JournalText();

    struct {
        char const* panelRevision;
        int64_t expected;
    } const revisions[] = {{"65535", 65535}, {"65536", 0}, {"-1", 0}, {"2.5", 3}, {"65535.6", 0}, {"-0.4", 0}};
    for (auto const& c : revisions) {
        SCOPED_TRACE(c.panelRevision);
        host::ClearJournal();
        ExpectOK(put(::SensorCorrection, std::string("{\"type\":\"emission\",\"observerKey\":1.5,\"product\":\"VX2710\","
                                                     "\"panelRevision\":") +
                                             c.panelRevision + "}"),
                 Value());
        Value const args = FirstCall("MDApplyEmissionCorrection")["args"];
        EXPECT_EQ(Value(2), args[1]);
        EXPECT_EQ(Value("VX2710"), args[2]);
        EXPECT_EQ(Value(c.expected), args[3]);
    }
    SimInjectResult("MDApplyEmissionCorrection", kInvalidArgument);
    ExpectDvError(put(::SensorCorrection, "{\"type\":\"emission\",\"observerKey\":1,\"product\":\"\",\"panelRevision\":1}"),
                  0x80000001, "Apply emission correction.");
}

TEST_F(SensorCorrections, ExCorrectionListsAndSelects) {
    auto get = [&](std::string const& query) { return host::Call(::SensorExCorrection, "GET", host::IdParams(id), query); };
    ExpectOK(get("{\"count\":0,\"name\":0}"), Value(3));
    Value names = Value::array();
    for (char const* n : {"Wide gamut LED", "Standard LED", "CCFL"})
        names.append(Value(n));
    ExpectOK(get("{\"name\":null}"), names);

    ExpectBadRequest(put(::SensorExCorrection, "\"1\""), "data must be number.");
    ExpectOK(put(::SensorExCorrection, "2.4"), Value());
    ExpectOK(get(""), Value(2));
    host::ClearJournal();
    ExpectOK(put(::SensorExCorrection, "-1"), Value());
    ExpectOK(put(::SensorExCorrection, "4294967296"), Value());
    Value const journal = host::Journal();
    ASSERT_EQ(2u, journal.size()) << JournalText();
    EXPECT_EQ(Value(0), journal[0]["args"][1]);
    EXPECT_EQ(Value(0), journal[1]["args"][1]);

    // A failure while collecting names abandons the list.
    SimInjectResult("MDGetExCorrectionName", static_cast<int32_t>(0x80000003));
    ExpectDvError(get("{\"name\":1}"), 0x80000003, "Get correction name.");
    SimInjectResult("MDGetExCorrectionIndex", kInvalidArgument);
    ExpectDvError(get(""), 0x80000001, "Get correction index.");
}

} // namespace
