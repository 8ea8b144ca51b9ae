// Applying and releasing corrections; the extra corrections of a device.
#include "host/sensor_test_util.h"

namespace {

using namespace sensortest;

class SensorCorrections : public SensorTest {
protected:
    host::Response getEx(std::string const& query) { return get(::SensorExCorrection, query); }
    Value correction() { return host::World()["devices"][0]["correction"]; }
};

TEST_F(SensorCorrections, TypeSelectsTheCorrectionPlainByDefault) {
    struct {
        char const *body, *function, *type;
    } const cases[] = {
        {R"({"type":"paperWhite","observerKey":2.5})", "MDApplyPaperWhiteCorrection", "paperWhite"},
        {R"({"type":"10degFor2deg"})", "MDApply10DegCorrectionFor2DegCorrelatedMeasurement", "10degFor2deg"},
        {R"({"type":"plainFor2deg"})", "MDApplyPlainCorrectionFor2DegCorrelatedMeasurement", "plainFor2deg"},
        {R"({"type":"Emission"})", "MDApplyPlainCorrection", "plain"},
        {"{}", "MDApplyPlainCorrection", "plain"},
        {R"("emission")", "MDApplyPlainCorrection", "plain"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.body);
        host::ClearJournal();
        ExpectOK(put(::SensorCorrection, c.body), Value());
        EXPECT_EQ(std::vector<std::string>{c.function}, Functions());
        EXPECT_EQ(Value(c.type), correction()["type"]);
    }
    EXPECT_EQ(Value(3), correction()["observerKey"]);
    ExpectOK(host::Call(::SensorCorrection, "DELETE", host::IdParams(id)), Value());
    EXPECT_EQ(Value("none"), correction()["type"]);
}

TEST_F(SensorCorrections, EmissionChecksInOrderThenConvertsPanelRevision) {
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":"1","product":5})"),
                     "data must have observerKey.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":1,"product":5})"),
                     "data must have product.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"emission","observerKey":1,"product":"X"})"),
                     "data must have panelRevision.");
    ExpectBadRequest(put(::SensorCorrection, R"({"type":"paperWhite"})"), "data must have observerKey.");
    EXPECT_TRUE(Functions().empty()) << JournalText();

    struct {
        char const* panelRevision;
        int64_t expected;
    } const revisions[] = {{"65535", 65535}, {"65536", 0},   {"-1", 0},
                           {"2.5", 3},       {"65535.6", 0}, {"-0.4", 0}};
    for (auto const& c : revisions) {
        SCOPED_TRACE(c.panelRevision);
        std::string const body =
            R"({"type":"emission","observerKey":-1.5,"product":"LMN27A","panelRevision":)";
        ExpectOK(put(::SensorCorrection, body + c.panelRevision + "}"), Value());
        EXPECT_EQ(Json(R"({"type":"emission","observerKey":-2,"product":"LMN27A","panelRevision":)" +
                       std::to_string(c.expected) + "}"),
                  correction());
    }
}

TEST_F(SensorCorrections, ExCorrectionListsAndSelects) {
    ExpectOK(getEx(R"({"count":0,"name":0})"), Value(3));
    ExpectOK(getEx(R"({"name":null})"), Json(R"(["Wide gamut LED","Standard LED","CCFL"])"));

    ExpectBadRequest(put(::SensorExCorrection, "\"1\""), "data must be number.");
    // Reals are rounded; what does not fit in 32 bits selects 0.
    struct {
        char const* body;
        int64_t index;
    } const cases[] = {{"2.4", 2}, {"-1", 0}, {"1", 1}, {"4294967296", 0}};
    for (auto const& c : cases) {
        ExpectOK(put(::SensorExCorrection, c.body), Value());
        ExpectOK(getEx(""), Value(c.index));
    }
}

// Names are read into a buffer of 256 bytes: a longer one is refused, not overrun.
TEST_F(SensorCorrections, ExCorrectionNameLongerThanTheBufferFails) {
    std::string const name(255, 'n');
    LoadEditedWorld([&](Value& world) { world["devices"][0]["exCorrections"]["names"] = Json("[]"); });
    for (std::string const& added : {name, name + "!"}) {
        LoadEditedWorld(
            [&](Value& world) { world["devices"][0]["exCorrections"]["names"].append(Value(added)); });
        id = host::OpenByDeviceID(8);
        host::ClearJournal();
        if (added == name) {
            ExpectOK(getEx(R"({"name":1})"), Json("[\"" + name + "\"]"));
        } else {
            ExpectDvError(getEx(R"({"name":1})"), 0x80000003, "Get correction name.");
            EXPECT_EQ(Value(256), host::Journal()[4]["args"][2]) << JournalText();
        }
    }
}

} // namespace
