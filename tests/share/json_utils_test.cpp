#include <gtest/gtest.h>

#include <cstring>

#include "share/json_utils.h"
#include "support.h"

using quilljson::Value;
using namespace tovel;

TEST(DateJson, WritesTheRequestedMembersAndReadsLeniently) {
    DateTime const dt(2024, 5, 7, 10, 11, 12, 13);
    EXPECT_EQ(Text(ToJson(dt, false, false, false)),
              R"({"day":7,"hour":10,"minute":11,"month":5,"year":2024})");
    EXPECT_EQ(Text(ToJson(dt, true, true, true)),
              R"({"dateString":"2024-05-07 10:11:12","day":7,"hour":10,)"
              R"("minute":11,"month":5,"msec":13,"second":12,"year":2024})");
    EXPECT_FALSE(ToJson(dt, false, false, true).contains("second"));

    DateTime const a =
        DateTimeFromJson(Parse(R"({"year":"2024","month":5.6,"msec":99,"dateString":"1999"})"));
    EXPECT_EQ("2024-06-00 00:00:00", a.toString());
    EXPECT_EQ("2023-12-31 23:59:58", DateTimeFromJson(Value("2023-12-31 23:59:58")).toString());
    EXPECT_EQ("0000-00-00 00:00:00", DateTimeFromJson(Value(42)).toString());
}

TEST(LenientReading, NumbersOfEachWidth) {
    EXPECT_EQ(JsonToDouble(Value("1.5")), 1.5);
    EXPECT_EQ(JsonToDouble(Value("1.5x")), 0.0);
    EXPECT_EQ(JsonToDouble(Value(true)), 1.0);

    EXPECT_EQ(JsonToUInt16(Value(65535)), 65535);
    EXPECT_EQ(JsonToUInt16(Value(65536)), 0);
    EXPECT_EQ(JsonToUInt16(Value(-3.2)), 0);
    EXPECT_EQ(JsonToUInt16(Value(65535.4)), 65535);
    EXPECT_EQ(JsonToUInt16(Value(65535.5)), 0);
    EXPECT_EQ(JsonToUInt16(Value("0x10")), 16);
    EXPECT_EQ(JsonToUInt16(Value("70000")), 0);

    EXPECT_EQ(JsonToUInt64(Value("12a")), 0u);
    EXPECT_EQ(JsonToUInt64(Value("0x1F")), 31u);
    EXPECT_EQ(JsonToUInt64(Value("017")), 15u);
    EXPECT_EQ(JsonToUInt64(Value(3.5)), 4u);
    EXPECT_EQ(JsonToUInt64(Value(-0.6)), 0u);
    EXPECT_EQ(JsonToUInt64(Value(9223372036854775808.0)), 9223372036854775808u);
    EXPECT_EQ(JsonToUInt64(Value(2e19)), 0u);

    EXPECT_EQ(JsonToUInt64Truncating(Value(3.9)), 3u);
    EXPECT_EQ(JsonToUInt64Truncating(Value(-4)), 0u);
    EXPECT_EQ(JsonToUInt64Truncating(Value("7.9")), 7u);
    EXPECT_EQ(JsonToUInt64Truncating(Value("7 ")), 0u);
    EXPECT_EQ(JsonToInt64Truncating(Value(-3.9)), -3);
    EXPECT_EQ(JsonToInt64Truncating(Value(1e300)), 0);
}

TEST(ColourJson, WritesTheNamedComponents) {
    colour c;
    FillDoubles(&c, 1.0);
    EXPECT_EQ(Text(ToJson(c, "XYZ")), R"({"X":1,"Y":2,"Z":3})");
    EXPECT_EQ(Text(ToJson(c, "CMYKxyLabhTRGB?")), R"({"B":14,"C":9,"G":13,"K":16,"L":6,"M":15,"R":12,)"
                                                  R"("T":11,"Y":2,"a":7,"b":8,"h":10,"x":4,"y":5})");
}

TEST(ArrayJson, FillsAtMostTheArrayAndLeavesTheRest) {
    double out[4] = {9, 9, 9, 9};
    ApplyFromJson(Parse(R"([1, "2.5", true])"), out, 2);
    ApplyFromJson(Parse(R"({"0": 5})"), out, 4);
    EXPECT_EQ(Text(ToJson(out, 4)), "[1,2.5,9,9]");

    double m[3][3] = {};
    ApplyFromJson(Parse("[[1,2,3],[4],[7,8,9,10]]"), &m);
    EXPECT_EQ(Text(ToJson(m)), "[[1,2,3],[4,0.0,0.0],[7,8,9]]");
}

// Record i-th doubles are numbered 0, 1, 2, ...: the JSON shows which position each key maps.
TEST(RecordJson, MapsMeasurementPatchesBlackBeforeWhite) {
    KMCAL_MEASDATA_USERPROOF m;
    FillDoubles(&m, 0.0);
    Value const json = ToJson(m);
    EXPECT_EQ(Text(json["reference"]["red"]), R"({"X":0.0,"Y":1,"Z":2})");
    EXPECT_EQ(Text(json["reference"]["black"]), R"({"X":9,"Y":10,"Z":11})");
    EXPECT_EQ(Text(json["reference"]["white"]), R"({"X":12,"Y":13,"Z":14})");
    EXPECT_EQ(Text(json["XYZ"]["black"]), R"({"X":24,"Y":25,"Z":26})");
    EXPECT_EQ(Text(json["XYZ"]["white"]), R"({"X":27,"Y":28,"Z":29})");
}

TEST(RecordJson, PairsTheRunsOfNinePairRecords) {
    KMCAL_CALDATA_CORRECT c;
    FillDoubles(&c, 0.0);
    Value const cj = ToJson(c);
    ASSERT_EQ(cj.size(), 9u);
    EXPECT_EQ(Text(cj[1]), R"({"XYZ":{"X":30,"Y":31,"Z":32},"reference":{"X":3,"Y":4,"Z":5}})");
    EXPECT_EQ(Text(cj[8]), R"({"XYZ":{"X":51,"Y":52,"Z":53},"reference":{"X":24,"Y":25,"Z":26}})");

    KMCAL_MEASDATA_CORRECT_GRAY g;
    FillDoubles(&g, 0.0);
    Value const gj = ToJson(g);
    EXPECT_EQ(Text(gj[2]), R"({"RGB":{"B":35,"G":34,"R":33},"reference":{"X":6,"Y":7,"Z":8}})");
}

TEST(RecordJson, WritesTheShapesOfBothGenerations) {
    MDIFSv3CorrelationData d = Zeroed<MDIFSv3CorrelationData>();
    d.reference.ambientTemperature = 25.5;
    d.reference.setTemperature = 6500;
    d.reference.dimmerOut = 120;
    d.reference.toneRed = 0.25;
    d.reference.toneBlue = 0.75;
    FillDoubles(&d.referenceTone, 0.0);
    FillDoubles(&d.toneCorrection.value[6], 0.0);
    Value const json = ToJson(d);
    EXPECT_EQ(Text(json["reference"]), R"({"ambientTemperature":25.5,"dimmerOut":120,"setTemperature":6500,)"
                                       R"("tone":{"blue":0.75,"green":0.0,"red":0.25}})");
    EXPECT_EQ(Text(json["referenceTone"]), R"({"gamma":[7,8,9,10,11,12,13,14],"tone":[0.0,1,2,3,4,5,6]})");
    EXPECT_EQ(Text(json["normalizedMeasurement"]["black"]),
              R"({"B":0.0,"G":0.0,"R":0.0,"X":0.0,"Y":0.0,"Z":0.0})");
    ASSERT_TRUE(json["toneCorrection"].isArray());
    ASSERT_EQ(json["toneCorrection"].size(), 7u);
    EXPECT_EQ(Text(json["toneCorrection"][6]["green"]), R"({"B":11,"G":10,"R":9,"X":6,"Y":7,"Z":8})");

    MDCSSG2CorrelationDataEx e = Zeroed<MDCSSG2CorrelationDataEx>();
    e.calibrationData.criterionBrightness = 120;
    e.calibrationData.criterionTemperature = 6500.5;
    e.calibrationData.coefficientType = 3;
    FillDoubles(&e.calibrationData.calibration, 0.0);
    e.correctionData.step[8] = 8.5;
    e.correctionData.gamma = 2.2;
    e.luminanceLevelCorrection.brightness = 80.5;
    e.luminanceLevelCorrection.dimmerOut = 65535;
    Value const ex = ToJson(e);
    Value const& calibration = ex["calibrationData"];
    EXPECT_EQ(Text(calibration["criterion"]), R"({"brightness":120,"temperature":6500.5})");
    EXPECT_EQ(Text(calibration["coefficientType"]), "3");
    EXPECT_EQ(Text(calibration["calibration"]),
              R"({"XYZ0":{"X":0.0,"Y":1,"Z":2},"XYZBlack":{"X":3,"Y":4,"Z":5},)"
              R"("a":[[6,7,8],[9,10,11],[12,13,14]],)"
              R"("b":[[15,16,17],[18,19,20],[21,22,23]]})");
    EXPECT_EQ(ex["correctionData"]["step"][8].getDouble(), 8.5);
    EXPECT_EQ(ex["correctionData"]["gamma"].getDouble(), 2.2);
    EXPECT_EQ(Text(ex["luminanceLevelCorrection"]), R"({"brightness":80.5,"dimmerOut":65535})");
}

TEST(RecordJson, RoundTripsEveryNumberThroughText) {
    MDIFSv3CorrelationData ifs = Zeroed<MDIFSv3CorrelationData>();
    ifs.reference.ambientTemperature = 24.75;
    ifs.reference.setTemperature = 5000.0001;
    ifs.reference.dimmerOut = -7;
    FillDoubles(&ifs.referenceTone, 1.0, 0.125);
    FillDoubles(&ifs.normalizedMeasurement, 100.0 + 1e-9, 0.125);
    FillDoubles(&ifs.toneCorrection, -50.0, 0.1);
    MDIFSv3CorrelationData const ifsBack = MDIFSv3CorrelationDataFromJson(Parse(Text(ToJson(ifs))));
    EXPECT_EQ(std::memcmp(&ifs, &ifsBack, sizeof ifs), 0);

    MDCSSG2CorrelationDataEx ex = Zeroed<MDCSSG2CorrelationDataEx>();
    ex.calibrationData.coefficientType = 2;
    FillDoubles(&ex.calibrationData.calibration, 3.0, 0.1);
    FillDoubles(&ex.calibrationData.measurement, 30.0 + 1e-9, 0.125);
    FillDoubles(&ex.correctionData, 300.0, 0.3);
    ex.luminanceLevelCorrection.brightness = 0.5;
    ex.luminanceLevelCorrection.dimmerOut = 4000;
    MDCSSG2CorrelationDataEx const exBack = MDCSSG2CorrelationDataExFromJson(Parse(Text(ToJson(ex))));
    EXPECT_EQ(std::memcmp(&ex, &exBack, sizeof ex), 0);
}

TEST(RecordJson, ReadsMissingOrUnusableMembersAsZero) {
    MDCSSG2CorrelationDataEx const zero = Zeroed<MDCSSG2CorrelationDataEx>();
    MDCSSG2CorrelationDataEx const fromNull = MDCSSG2CorrelationDataExFromJson(Value());
    EXPECT_EQ(std::memcmp(&zero, &fromNull, sizeof zero), 0);

    Value const json = Parse(R"({"reference":{"ambientTemperature":"1.5","setTemperature":"abc",)"
                             R"("dimmerOut":"0x20","tone":{"green":true}},"toneCorrection":{"red":{}}})");
    MDIFSv3CorrelationData const d = MDIFSv3CorrelationDataFromJson(json);
    EXPECT_EQ(d.reference.ambientTemperature, 1.5);
    EXPECT_EQ(d.reference.setTemperature, 0.0);
    EXPECT_EQ(d.reference.dimmerOut, 32);
    EXPECT_EQ(d.reference.toneGreen, 1.0);

    MDCSSG2LuminanceLevelCorrectionParams const l =
        MDCSSG2LuminanceLevelCorrectionParamsFromJson(Parse(R"({"brightness":"2","dimmerOut":70000})"));
    EXPECT_EQ(l.dimmerOut, 0);
}
