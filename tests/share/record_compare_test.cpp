#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "share/json_utils.h"
#include "share/record_compare.h"
#include "support.h"

using quilljson::Value;
using namespace tovel;

namespace {

Value Add(Value const& v, double delta) {
    return Value(v.asDouble() + delta);
}

struct Change {
    char const* what;
    std::function<void(Value&)> apply;
    bool stillEqual;
};

void ExpectChanges(Value const& base, bool (*equals)(Value const&, Value const&),
                   std::vector<Change> const& cases) {
    EXPECT_TRUE(equals(base, base));
    for (Change const& c : cases) {
        Value changed = Parse(Text(base)); // a private deep copy
        c.apply(changed);
        EXPECT_EQ(equals(base, changed), c.stillEqual) << c.what;
    }
}

} // namespace

TEST(DoubleNearlyEquals, IsStrictAndReadsNumbersLeniently) {
    EXPECT_TRUE(DoubleNearlyEquals(Value(1.0), Value(1.05), 0.1));
    EXPECT_FALSE(DoubleNearlyEquals(Value(1.0), Value(1.1), 0.1));
    EXPECT_FALSE(DoubleNearlyEquals(Value(0.5), Value(0.75), 0.25)); // difference equal to eps
    EXPECT_FALSE(DoubleNearlyEquals(Value(NAN), Value(NAN), 1.0));
    EXPECT_TRUE(DoubleNearlyEquals(Value("2.5"), Value(2), 0.6));
    EXPECT_TRUE(DoubleNearlyEquals(Value(), Value(false), 1e-9)); // missing compares as 0.0
}

TEST(SignificantFigureEquals, RoundsToTheFirstValuesOrderWithItsOffsetRules) {
    EXPECT_TRUE(SignificantFigureEquals(Value(123.4564), Value(123.4559), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(123.4564), Value(123.4554), 6));
    // Below 1 the exponent is one less: 0.05 has order -2 and compares 500000-scale integers.
    EXPECT_TRUE(SignificantFigureEquals(Value(0.0512345), Value(0.05123454), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(0.0512345), Value(0.05123456), 6));
    // Large orders divide instead of multiply.
    EXPECT_TRUE(SignificantFigureEquals(Value(12345678.0), Value(12345660.0), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(12345678.0), Value(12345760.0), 6));
    // A first value without an order (zero, or not a number) matches anything; not the reverse.
    EXPECT_TRUE(SignificantFigureEquals(Value(0), Value(5e10), 6));
    EXPECT_TRUE(SignificantFigureEquals(Value("abc"), Value(1), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(5e10), Value(0), 6));
    // Order -4 compares with five figures, order -3 still with six.
    EXPECT_TRUE(SignificantFigureEquals(Value(0.00012345), Value(0.000123454), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(0.00012345), Value(0.000123456), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(0.0012345), Value(0.00123454), 6));
    // +0.5 for positive, -0.4 for negative scaled values.
    EXPECT_TRUE(SignificantFigureEquals(Value(100000.5), Value(100000.6), 6));
    EXPECT_FALSE(SignificantFigureEquals(Value(-100000.5), Value(-100000.6), 6));
    EXPECT_TRUE(SignificantFigureEquals(Value(-100000.1), Value(-100000.5), 6));
    // Only the low 32 bits of the scaled integers count.
    EXPECT_TRUE(SignificantFigureEquals(Value(4294967297.0), Value(1.0), 10));
}

TEST(DoubleArrayEquals, NeedsEqualShapes) {
    EXPECT_TRUE(DoubleArrayEquals(Parse("[1, [2, 3.00009]]"), Parse("[1.00005, [2, 3]]")));
    EXPECT_FALSE(DoubleArrayEquals(Parse("[1, [2, 3.00011]]"), Parse("[1, [2, 3]]")));
    EXPECT_FALSE(DoubleArrayEquals(Parse("[1, 2]"), Parse("[1, 2, 3]")));
    EXPECT_FALSE(DoubleArrayEquals(Parse("[[1, 2]]"), Parse("[[1]]")));
    EXPECT_FALSE(DoubleArrayEquals(Value(), Value()));
    EXPECT_FALSE(DoubleArraySignificantFigureEquals(Parse("[[123.4564]]"), Parse("[[123.4554]]")));
}

TEST(RecordEquals, SecondGenerationMembersUseTheirOwnRules) {
    MDCSSG2CorrelationDataEx d = Zeroed<MDCSSG2CorrelationDataEx>();
    d.calibrationData.criterionBrightness = 120.0;
    d.calibrationData.criterionTemperature = 6500.0;
    d.calibrationData.coefficientType = 2;
    FillDoubles(&d.calibrationData.calibration, 1.25, 1.5);
    FillDoubles(&d.calibrationData.measurement, 10.25, 1.5);
    FillDoubles(&d.correctionData, 100.25, 1.5);
    d.luminanceLevelCorrection.brightness = 80.0;
    d.luminanceLevelCorrection.dimmerOut = 300;

    auto at = [](Value& root, std::initializer_list<char const*> path) -> Value& {
        Value* v = &root;
        for (char const* key : path)
            v = &(*v)[key];
        return *v;
    };
    auto shift = [at](std::initializer_list<char const*> path, double delta) {
        return [at, path, delta](Value& v) { at(v, path) = Add(at(v, path), delta); };
    };
    ExpectChanges(
        ToJson(d), MDCSSG2CorrelationDataExEquals,
        {
            {"brightness within 0.01", shift({"calibrationData", "criterion", "brightness"}, 0.009), true},
            {"brightness beyond 0.01", shift({"calibrationData", "criterion", "brightness"}, 0.011), false},
            {"coefficient type exact", shift({"calibrationData", "coefficientType"}, 0.0), false},
            {"matrix b", [](Value& v) { v["calibrationData"]["calibration"]["b"][2][2] = 1.0; }, false},
            {"measured white", shift({"calibrationData", "measurement", "XYZ", "white", "Z"}, 0.01), false},
            {"reference black", shift({"calibrationData", "measurement", "reference", "black", "X"}, 0.01),
             false},
            {"gamma within 0.1", shift({"correctionData", "gamma"}, 0.09), true},
            {"gamma beyond 0.1", shift({"correctionData", "gamma"}, 0.11), false},
            {"9th pair", [](Value& v) { v["correctionData"]["correction"][8]["XYZ"]["Y"] = 1.0; }, false},
            {"9th gray", [](Value& v) { v["correctionData"]["measurement"][8]["RGB"]["B"] = 1.0; }, false},
            {"luminance within 0.1", shift({"luminanceLevelCorrection", "brightness"}, 0.09), true},
            {"dimmer output exact", shift({"luminanceLevelCorrection", "dimmerOut"}, 1.0), false},
        });
}

TEST(RecordEquals, FirstGenerationMembersUseTheirOwnRules) {
    MDIFSv3CorrelationData d = Zeroed<MDIFSv3CorrelationData>();
    d.reference =
        R2XC_RefParamFromJson(Parse(R"({"ambientTemperature":25,"setTemperature":6500,"dimmerOut":40,)"
                                    R"("tone":{"red":1,"green":2,"blue":3}})"));
    FillDoubles(&d.referenceTone, 0.75, 1.5);
    FillDoubles(&d.normalizedMeasurement, 5.25, 1.5);
    FillDoubles(&d.toneCorrection, 50.25, 1.5);

    ExpectChanges(
        ToJson(d), MDIFSv3CorrelationDataEquals,
        {
            {"dimmer output as a real", [](Value& v) { v["reference"]["dimmerOut"] = 40.0; }, false},
            {"tone within 0.1", [](Value& v) { v["reference"]["tone"]["blue"] = 3.09; }, true},
            {"tone beyond 0.1", [](Value& v) { v["reference"]["tone"]["blue"] = 3.11; }, false},
            {"gamma length", [](Value& v) { v["referenceTone"]["gamma"].append(Value(1.0)); }, false},
            {"gamma beyond 1e-4", [](Value& v) { v["referenceTone"]["gamma"][0] = 0.7502; }, false},
            {"black RGB", [](Value& v) { v["normalizedMeasurement"]["black"]["G"] = 1.0; }, false},
            {"last tone step", [](Value& v) { v["toneCorrection"][6]["blue"]["X"] = 1.0; }, false},
            {"8 tone steps", [](Value& v) { v["toneCorrection"].append(v["toneCorrection"][0]); }, false},
            {"ignored extra member", [](Value& v) { v["isFactory"] = true; }, true},
        });
}
