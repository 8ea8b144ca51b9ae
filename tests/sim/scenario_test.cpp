// Loading, writing and rejecting scenarios.
#include <dirent.h>

#include "devices/pallast.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class Scenario : public SimTest {};

TEST_F(Scenario, WrittenWorldLoadsBackUnchanged) {
    // After every kind of state change the world still round-trips.
    void* handle = nullptr;
    ASSERT_EQ(0, MDOpen(8, &handle).code);
    ASSERT_EQ(0, MDSetMode(handle, 3, 1).code);
    ASSERT_EQ(0, MDApplyCorrelationMatrix(handle, 4).code);
    MDParameterDescription description{};
    std::fill(std::begin(description.referenceSerial), std::end(description.referenceSerial), 'S');
    ASSERT_EQ(0, MDSetParameterDescription(handle, description).code);

    std::string const before = WorldText();
    ASSERT_EQ(0, SimLoadScenario(before.c_str()));
    EXPECT_EQ(before, WorldText());
    EXPECT_EQ(Value(std::string(32, 'S')), World()["devices"][0]["parameterDescription"]["referenceSerial"]);

    // Handles outlive a load while their device remains.
    void* colori = nullptr;
    ASSERT_EQ(0, MDOpen(11, &colori).code);
    LoadEdited([](Value& world) { world["devices"] = Array({world["devices"][0]}); });
    EXPECT_STREQ("Lumetra Spectro 8", MDGetName(handle));
    EXPECT_EQ(kNotRegistered, MDCalibrate(colori).code);
}

TEST_F(Scenario, MissingKeysTakeDefaults) {
    ASSERT_EQ(0,
              SimLoadScenario(R"({"devices":[{}],"monitors":[{"product":"P","serial":"S","hidHandle":7}]})"));
    Value const world = World();
    EXPECT_EQ(Value(true), world["devices"][0]["usb"]);
    Value const& monitor = world["monitors"][0];
    EXPECT_EQ(Value(false), monitor["sensor"]["usb"]); // a built-in sensor is not on the bus
    EXPECT_TRUE(monitor["hzePriority"].isNull());
    EXPECT_EQ(monitor["dataSets"]["current"], monitor["dataSets"]["factory"]);
    EXPECT_EQ(2u, monitor["dataSets"].size());
}

TEST_F(Scenario, BadScenarioLeavesTheWorldAsItWas) {
    std::string const before = WorldText();
    char const* const bad[] = {
        "",
        "{\"devices\":[",
        "[]",
        "{\"devics\":[]}",
        "{\"devices\":[{\"deviceID\":\"8\"}]}",
        "{\"devices\":[{\"deviceID\":-1}]}",
        "{\"devices\":[{\"individualID\":\"xyz\"}]}",
        "{\"devices\":[{\"correction\":{\"type\":\"Emission\"}}]}",
        "{\"devices\":[{\"measurement\":{\"rawData\":[1,2,\"3\"]}}]}",
        "{\"monitors\":[{\"product\":\"LMN27A-LONG\",\"serial\":\"S\",\"hidHandle\":1}]}",
        "{\"monitors\":[{\"product\":\"P\",\"serial\":\"S\"}]}",
        "{\"monitors\":[{\"product\":\"P\",\"serial\":\"S\",\"hidHandle\":1},"
        "{\"product\":\"Q\",\"serial\":\"T\",\"hidHandle\":1}]}",
        "{\"monitors\":[{\"product\":\"P\",\"serial\":\"S\",\"hidHandle\":1,\"selectedDataSet\":"
        "\"currentPriority\"}]}",
        "{\"monitors\":[{\"product\":\"P\",\"serial\":\"S\",\"hidHandle\":1,"
        "\"dataSets\":{\"current\":{\"matrix3x3\":[[1,0,0],[0,1,0]]}}}]}",
        "{\"correlationDatabase\":[{\"id\":1},{\"id\":1}]}",
        "{\"correlationDatabase\":[{\"kind\":\"IFSv4\"}]}",
        "{\"modelNames\":{\"x\":\"A\"}}",
    };
    for (char const* text : bad) {
        SCOPED_TRACE(text);
        EXPECT_LT(SimLoadScenario(text), 0);
        EXPECT_EQ(before, WorldText());
    }
    EXPECT_LT(SimLoadScenario(nullptr), 0);
}

// Found by the scenario fuzzer: an unknown key was caught only after its
// object was read, by a throwing destructor, and the half-read device leaked
// in clang builds (the leak checker of a sanitizer build reports it).
TEST_F(Scenario, UnknownKeyRejectedAfterTheRestOfItsObjectWasRead) {
    std::string const before = WorldText();
    std::string const name(64, 'n'); // a text on the heap, for the leak checker to see
    EXPECT_EQ(-2, SimLoadScenario(("{\"devices\":[{\"name\":\"" + name + "\",\"colour\":1}]}").c_str()));
    EXPECT_EQ(-2, SimLoadScenario(("{\"monitors\":[{\"product\":\"P\",\"serial\":\"S\",\"hidHandle\":1,"
                                   "\"sensor\":{\"name\":\"" +
                                   name + "\",\"spectrum\":{\"steps\":2}}}]}")
                                      .c_str()));
    EXPECT_EQ(before, WorldText());
}

TEST_F(Scenario, EveryExampleScenarioLoads) {
    std::string const folder = std::string(TEST_SOURCE_DIR) + "/sim/scenarios";
    DIR* dir = opendir(folder.c_str());
    ASSERT_NE(nullptr, dir);
    int count = 0;
    while (dirent* entry = readdir(dir)) {
        std::string const name = entry->d_name;
        if (name.size() < 5 || name.substr(name.size() - 5) != ".json") continue;
        SCOPED_TRACE(name);
        EXPECT_EQ(0, SimLoadScenario(ReadFile(folder + "/" + name).c_str()));
        ++count;
    }
    closedir(dir);
    EXPECT_GE(count, 3);
}

TEST_F(Scenario, GetterReportsLengthAndCutsToTheBuffer) {
    uint32_t const length = SimGetWorld(nullptr, 0);
    std::string const text = WorldText();
    EXPECT_EQ(text.size() + 1, length);
    char small[8];
    EXPECT_EQ(length, SimGetWorld(small, sizeof small));
    EXPECT_EQ(text.substr(0, 7), std::string(small));
}

} // namespace
