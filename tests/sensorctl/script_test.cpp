// Reading request lines, variables and the checks made before anything is sent.
#include <gtest/gtest.h>

#include <sstream>

#include "quilljson/parser.h"
#include "request_line.h"
#include "script_runner.h"
#include "variables.h"

namespace sensorctl {
namespace {

RequestLine Parse(std::string const& line) {
    RequestLine request;
    std::string error;
    EXPECT_TRUE(ParseRequestLine(line, &request, &error)) << line << ": " << error;
    return request;
}

TEST(RequestLine, BodyIsTheRestOfTheLineAndABindingIsSplitOff) {
    RequestLine put = Parse(R"(  put /Sensors/$s/Mode?x&k=a=b   {"mode": 1,  "note": "a -> b"}  )");
    EXPECT_EQ(Method::Put, put.method);
    EXPECT_EQ("/Sensors/$s/Mode", put.path);
    ASSERT_EQ(2u, put.query.size());
    EXPECT_EQ("x", put.query[0].key);
    EXPECT_FALSE(put.query[0].value.has_value());
    EXPECT_EQ("a=b", put.query[1].value.value());
    EXPECT_EQ(R"({"mode": 1,  "note": "a -> b"})", put.body);
    EXPECT_TRUE(put.binding.name.empty());

    RequestLine get = Parse("GET /Sensors/$s/Correlation?available  -> $first [0].referenceSensor.serial");
    EXPECT_EQ("", get.body);
    EXPECT_EQ("first", get.binding.name);
    ASSERT_EQ(3u, get.binding.steps.size());
    EXPECT_EQ(SelectorStep(size_t(0)), get.binding.steps[0]);
    EXPECT_EQ(SelectorStep(std::string("serial")), get.binding.steps[2]);
}

TEST(Variables, ExpandReplacesSetNamesOnly) {
    Variables variables;
    variables.set("id", "3f-2a");
    std::string out, error;
    ASSERT_TRUE(variables.expand(R"(/Sensors/$id/${id}x $$id $ $5 ${ "$id")", &out, &error)) << error;
    EXPECT_EQ(R"(/Sensors/3f-2a/3f-2ax $id $ $5 ${ "3f-2a")", out);
    EXPECT_FALSE(variables.expand("$idx", &out, &error));
    EXPECT_NE(std::string::npos, error.find("$idx"));
}

TEST(Variables, CaptureTakesStringsAsTextAndOtherValuesAsJson) {
    quilljson::Value value;
    ASSERT_TRUE(quilljson::Parser().parse(&value, R"([{"id":4,"m":{"serial":"S 1"},"r":[1,2]}])"));
    auto capture = [&](std::string const& selector) {
        std::vector<SelectorStep> steps;
        std::string error, text;
        EXPECT_TRUE(ParseSelector(selector, &steps, &error)) << error;
        return CaptureText(value, steps, &text) ? text : "(nothing)";
    };
    EXPECT_EQ("4", capture("[0].id"));
    EXPECT_EQ("S 1", capture("[0].m.serial"));
    EXPECT_EQ("[1,2]", capture("[0].r"));
    EXPECT_EQ("(nothing)", capture("[1].id"));
}

TEST(PrepareScript, ChecksEveryLineBeforeAnythingRuns) {
    std::istringstream script("# open, then use\n"
                              "\n"
                              "POST /Sensors/8 -> $s\n"
                              "GET /Sensors/$s/XYZ\n"
                              "GET /Sensors/$t/XYZ\n");
    std::vector<ScriptLine> lines = ReadScript(script, "tour.txt");
    ASSERT_EQ(3u, lines.size());
    std::vector<Step> steps;
    std::ostringstream err;
    EXPECT_FALSE(PrepareScript(lines, &steps, err));
    EXPECT_EQ("sensorctl: tour.txt:5: variable $t is not set by an earlier request\n", err.str());

    // A variable is set only for the lines after the one that stores it.
    steps.clear();
    err.str("");
    EXPECT_FALSE(PrepareScript({{"argument 1", "GET /Sensors/$s -> $s", ""}}, &steps, err));
}

} // namespace
} // namespace sensorctl
