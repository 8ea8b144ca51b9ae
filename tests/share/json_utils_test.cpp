#include <gtest/gtest.h>

#include <cstring>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "share/json_utils.h"

using quilljson::Value;
using namespace tovel;

namespace {

Value Parse(std::string const& text) {
    Value v;
    EXPECT_TRUE(quilljson::Parser().parse(&v, text)) << text;
    return v;
}

std::string Text(Value const& v) {
    return quilljson::Serializer::toText(v);
}

// Gives every double of a record of doubles its own value.
template <typename T> void FillDoubles(T* record, double start) {
    static_assert(sizeof(T) % sizeof(double) == 0, "a record of doubles");
    double* d = reinterpret_cast<double*>(record);
    for (size_t i = 0; i < sizeof(T) / sizeof(double); ++i)
        d[i] = start + 0.125 * static_cast<double>(i) + 1e-9;
}

// The record's JSON text through the serializer and parser and back into a record.
template <typename T, typename Read> T ThroughText(T const& record, Read read) {
    return read(Parse(Text(ToJson(record))));
}

} // namespace

TEST(DateJson, WritesTheRequestedMembers) {
    DateTime const dt(2024, 5, 7, 10, 11, 12, 13);
    EXPECT_EQ(Text(ToJson(dt, false, false, false)),
              R"({"day":7,"hour":10,"minute":11,"month":5,"year":2024})");
    EXPECT_EQ(Text(ToJson(dt, true, true, true)),
              R"({"dateString":"2024-05-07 10:11:12","day":7,"hour":10,)"
              R"("minute":11,"month":5,"msec":13,"second":12,"year":2024})");
    Value const msecOnly = ToJson(dt, false, false, true);
    EXPECT_TRUE(msecOnly.contains("msec"));
    EXPECT_FALSE(msecOnly.contains("second"));
    EXPECT_EQ(ToJson(DateTime(7, 1, 2), true, false, false)["dateString"].toString(""),
              "0007-01-02 00:00:00");
}

TEST(DateJson, ReadsObjectsLenientlyAndStringsByPosition) {
    DateTime const a =
        DateTimeFromJson(Parse(R"({"year":"2024","month":5.6,"msec":99,"dateString":"1999"})"));
    EXPECT_EQ(a.year, 2024);
    EXPECT_EQ(a.month, 6);
    EXPECT_EQ(a.day + a.hour + a.minute + a.second + a.msec, 0);

    DateTime const b = DateTimeFromJson(Value("2023-12-31 23:59:58"));
    EXPECT_EQ(b.toString(), "2023-12-31 23:59:58");

    DateTime const c = DateTimeFromJson(Value(42));
    EXPECT_EQ(c.year + c.month + c.day + c.hour + c.minute + c.second + c.msec, 0);

    DateTime const back = DateTimeFromJson(ToJson(DateTime(2021, 2, 3, 4, 5, 6, 7), true, true, true));
    EXPECT_EQ(back.toString(), "2021-02-03 04:05:06");
    EXPECT_EQ(back.msec, 0);
}

TEST(DateJson, ConvertsTheDeviceDate) {
    CSSG2_Date const date = CSSG2DateFromDateTime(DateTime(2024, 12, 31, 23, 59, 58, 1));
    EXPECT_EQ(date.year, 2024);
    EXPECT_EQ(date.month, 12);
    EXPECT_EQ(date.day, 31);
    EXPECT_EQ(date.hour, 23);
    EXPECT_EQ(date.minute, 59);
    EXPECT_EQ(DateTimeFromCSSG2Date(date).toString(), "2024-12-31 23:59:00");
}

TEST(LenientReading, Doubles) {
    EXPECT_EQ(JsonToDouble(Value("1.5")), 1.5);
    EXPECT_EQ(JsonToDouble(Value("1.5x")), 0.0);
    EXPECT_EQ(JsonToDouble(Value("abc")), 0.0);
    EXPECT_EQ(JsonToDouble(Value(true)), 1.0);
    EXPECT_EQ(JsonToDouble(Value(-3)), -3.0);
    EXPECT_EQ(JsonToDouble(Value::array()), 0.0);
}

TEST(LenientReading, SixteenBitDimmerOutput) {
    EXPECT_EQ(JsonToUInt16(Value(70000)), 0);
    EXPECT_EQ(JsonToUInt16(Value(65535)), 65535);
    EXPECT_EQ(JsonToUInt16(Value(65536)), 0);
    EXPECT_EQ(JsonToUInt16(Value(-3.2)), 0);
    EXPECT_EQ(JsonToUInt16(Value(65535.4)), 65535);
    EXPECT_EQ(JsonToUInt16(Value(65535.5)), 0);
    EXPECT_EQ(JsonToUInt16(Value(2.5)), 3);
    EXPECT_EQ(JsonToUInt16(Value("0x10")), 16);
    EXPECT_EQ(JsonToUInt16(Value("70000")), 0);
    EXPECT_EQ(JsonToUInt16(Value(true)), 1);
}

TEST(LenientReading, Identifiers) {
    EXPECT_EQ(JsonToUInt64(Value("12")), 12u);
    EXPECT_EQ(JsonToUInt64(Value("12a")), 0u);
    EXPECT_EQ(JsonToUInt64(Value("0x1F")), 31u);
    EXPECT_EQ(JsonToUInt64(Value("017")), 15u);
    EXPECT_EQ(JsonToUInt64(Value(3.6)), 4u);
    EXPECT_EQ(JsonToUInt64(Value(-0.6)), 0u);
    EXPECT_EQ(JsonToUInt64(Value(9223372036854775808.0)), 9223372036854775808u);
    EXPECT_EQ(JsonToUInt64(Value(2e19)), 0u);
    EXPECT_EQ(JsonToUInt64(Value(true)), 1u);
    EXPECT_EQ(JsonToUInt64(Value()), 0u);

    EXPECT_EQ(JsonToUInt64Truncating(Value(3.9)), 3u);
    EXPECT_EQ(JsonToUInt64Truncating(Value(-4)), 0u);
    EXPECT_EQ(JsonToUInt64Truncating(Value("7.9")), 7u);
    EXPECT_EQ(JsonToUInt64Truncating(Value("18446744073709551615")), 0u); // beyond the signed reading
    EXPECT_EQ(JsonToUInt64Truncating(Value("7 ")), 0u);
    EXPECT_EQ(JsonToInt64Truncating(Value(-3.9)), -3);
    EXPECT_EQ(JsonToInt64Truncating(Value("305")), 305);
    EXPECT_EQ(JsonToInt64Truncating(Value(1e300)), 0);
}

TEST(ColourJson, WritesTheNamedComponents) {
    colour c;
    FillDoubles(&c, 1.0);
    EXPECT_EQ(Text(ToJson(c, "XYZ")), Text(Parse(R"({"X":1.000000001,"Y":1.125000001,"Z":1.250000001})")));
    Value const all = ToJson(c, "CMYKxyLabhTRGB?");
    EXPECT_EQ(all.size(), 14u);
    EXPECT_EQ(all["C"].getDouble(), c.C);
    EXPECT_EQ(all["M"].getDouble(), c.M);
    EXPECT_EQ(all["K"].getDouble(), c.K);
    EXPECT_EQ(all["h"].getDouble(), c.h);
    EXPECT_EQ(all["T"].getDouble(), c.T);
    EXPECT_EQ(all["b"].getDouble(), c.b);
    EXPECT_EQ(all["B"].getDouble(), c.B);
}

TEST(ArrayJson, FillsAtMostTheArrayAndLeavesTheRest) {
    double out[4] = {9, 9, 9, 9};
    ApplyFromJson(Parse(R"([1, "2.5", true])"), out, 2);
    EXPECT_EQ(out[0], 1.0);
    EXPECT_EQ(out[1], 2.5);
    EXPECT_EQ(out[2], 9.0);
    ApplyFromJson(Parse(R"({"0": 5})"), out, 4);
    EXPECT_EQ(out[0], 1.0);

    double m[3][3] = {};
    ApplyFromJson(Parse("[[1,2,3],[4],[7,8,9,10]]"), &m);
    EXPECT_EQ(Text(ToJson(m)), "[[1,2,3],[4,0.0,0.0],[7,8,9]]");
}

TEST(RecordJson, MapsMeasurementPatchesBlackBeforeWhite) {
    KMCAL_MEASDATA_USERPROOF m = Zeroed<KMCAL_MEASDATA_USERPROOF>();
    m.referenceBlack.X = 1;
    m.referenceWhite.X = 2;
    m.XYZBlack.Y = 3;
    m.XYZWhite.Z = 4;
    m.referenceRed.Z = 5;
    Value const json = ToJson(m);
    EXPECT_EQ(json["reference"]["black"]["X"].getDouble(), 1.0);
    EXPECT_EQ(json["reference"]["white"]["X"].getDouble(), 2.0);
    EXPECT_EQ(json["XYZ"]["black"]["Y"].getDouble(), 3.0);
    EXPECT_EQ(json["XYZ"]["white"]["Z"].getDouble(), 4.0);
    EXPECT_EQ(json["reference"]["red"]["Z"].getDouble(), 5.0);

    KMCAL_MEASDATA_USERPROOF const read = KMCAL_MEASDATA_USERPROOFFromJson(
        Parse(R"({"reference":{"white":{"X":7}},"XYZ":{"black":{"Z":"8"}}})"));
    EXPECT_EQ(read.referenceWhite.X, 7.0);
    EXPECT_EQ(read.referenceBlack.X, 0.0);
    EXPECT_EQ(read.XYZBlack.Z, 8.0);
    EXPECT_EQ(read.XYZWhite.Z, 0.0);
}

TEST(RecordJson, PairsTheRunsOfNinePairRecords) {
    KMCAL_CALDATA_CORRECT c = Zeroed<KMCAL_CALDATA_CORRECT>();
    c.reference[2].Y = 5;
    c.XYZ[2].Z = 6;
    c.XYZ[8].X = 7;
    Value const cj = ToJson(c);
    ASSERT_TRUE(cj.isArray());
    ASSERT_EQ(cj.size(), 9u);
    EXPECT_EQ(cj[2]["reference"]["Y"].getDouble(), 5.0);
    EXPECT_EQ(cj[2]["XYZ"]["Z"].getDouble(), 6.0);
    EXPECT_EQ(cj[8]["XYZ"]["X"].getDouble(), 7.0);

    KMCAL_MEASDATA_CORRECT_GRAY g = Zeroed<KMCAL_MEASDATA_CORRECT_GRAY>();
    g.reference[0].X = 1;
    g.RGB[0].B = 2;
    g.RGB[8].R = 3;
    Value const gj = ToJson(g);
    ASSERT_EQ(gj.size(), 9u);
    EXPECT_EQ(Text(gj[0]), R"({"RGB":{"B":2,"G":0.0,"R":0.0},"reference":{"X":1,"Y":0.0,"Z":0.0}})");
    EXPECT_EQ(gj[8]["RGB"]["R"].getDouble(), 3.0);

    KMCAL_MEASDATA_CORRECT_GRAY const read =
        KMCAL_MEASDATA_CORRECT_GRAYFromJson(Parse(R"([{}, {"RGB":{"G":4}, "reference":{"Y":5}}])"));
    EXPECT_EQ(read.RGB[1].G, 4.0);
    EXPECT_EQ(read.reference[1].Y, 5.0);
    EXPECT_EQ(read.reference[2].Y, 0.0);
}

TEST(RecordJson, WritesFirstGenerationShapes) {
    MDIFSv3CorrelationData d = Zeroed<MDIFSv3CorrelationData>();
    d.reference.ambientTemperature = 25.5;
    d.reference.setTemperature = 6500;
    d.reference.dimmerOut = 120;
    d.reference.toneRed = 0.25;
    d.reference.toneBlue = 0.75;
    d.referenceTone.gamma[7] = 2.2;
    d.toneCorrection.value[6].blue.B = 9;
    Value const json = ToJson(d);
    EXPECT_EQ(Text(json["reference"]), R"({"ambientTemperature":25.5,"dimmerOut":120,"setTemperature":6500,)"
                                       R"("tone":{"blue":0.75,"green":0.0,"red":0.25}})");
    EXPECT_EQ(json["referenceTone"]["tone"].size(), 7u);
    EXPECT_EQ(json["referenceTone"]["gamma"][7].getDouble(), 2.2);
    EXPECT_EQ(json["normalizedMeasurement"].size(), 4u);
    EXPECT_EQ(Text(json["normalizedMeasurement"]["black"]),
              R"({"B":0.0,"G":0.0,"R":0.0,"X":0.0,"Y":0.0,"Z":0.0})");
    ASSERT_TRUE(json["toneCorrection"].isArray());
    EXPECT_EQ(json["toneCorrection"].size(), 7u);
    EXPECT_EQ(json["toneCorrection"][6]["blue"]["B"].getDouble(), 9.0);
}

TEST(RecordJson, WritesSecondGenerationShapes) {
    MDCSSG2CorrelationDataEx d = Zeroed<MDCSSG2CorrelationDataEx>();
    d.calibrationData.criterionBrightness = 120;
    d.calibrationData.criterionTemperature = 6500.5;
    d.calibrationData.coefficientType = 3;
    d.calibrationData.calibration.a[0][1] = 0.5;
    d.calibrationData.calibration.b[2][0] = 1.5;
    d.correctionData.step[8] = 8.5;
    d.correctionData.gamma = 2.2;
    d.luminanceLevelCorrection.brightness = 80.5;
    d.luminanceLevelCorrection.dimmerOut = 65535;
    Value const json = ToJson(d);
    Value const& calibration = json["calibrationData"];
    EXPECT_EQ(Text(calibration["criterion"]), R"({"brightness":120,"temperature":6500.5})");
    EXPECT_TRUE(calibration["coefficientType"].isInteger());
    EXPECT_EQ(calibration["calibration"]["a"][0][1].getDouble(), 0.5);
    EXPECT_EQ(calibration["calibration"]["b"][2][0].getDouble(), 1.5);
    EXPECT_EQ(json["correctionData"]["step"][8].getDouble(), 8.5);
    EXPECT_EQ(json["correctionData"]["gamma"].getDouble(), 2.2);
    EXPECT_EQ(Text(json["luminanceLevelCorrection"]), R"({"brightness":80.5,"dimmerOut":65535})");
}

TEST(RecordJson, RoundTripsEveryNumberThroughText) {
    MDIFSv3CorrelationData ifs = Zeroed<MDIFSv3CorrelationData>();
    ifs.reference.ambientTemperature = 24.75;
    ifs.reference.setTemperature = 5000.0001;
    ifs.reference.dimmerOut = -7;
    ifs.reference.toneRed = 0.1;
    ifs.reference.toneGreen = 0.2;
    ifs.reference.toneBlue = 0.3;
    FillDoubles(&ifs.referenceTone, 1.0);
    FillDoubles(&ifs.normalizedMeasurement, 100.0);
    FillDoubles(&ifs.toneCorrection, -50.0);
    MDIFSv3CorrelationData const ifsBack = ThroughText(ifs, MDIFSv3CorrelationDataFromJson);
    EXPECT_EQ(std::memcmp(&ifs, &ifsBack, sizeof ifs), 0);

    MDCSSG2CorrelationDataEx ex = Zeroed<MDCSSG2CorrelationDataEx>();
    ex.calibrationData.criterionBrightness = 100.5;
    ex.calibrationData.criterionTemperature = 6504.25;
    ex.calibrationData.coefficientType = 2;
    FillDoubles(&ex.calibrationData.calibration, 3.0);
    FillDoubles(&ex.calibrationData.measurement, 30.0);
    FillDoubles(&ex.correctionData, 300.0);
    ex.luminanceLevelCorrection.brightness = 0.5;
    ex.luminanceLevelCorrection.dimmerOut = 4000;
    MDCSSG2CorrelationDataEx const exBack = ThroughText(ex, MDCSSG2CorrelationDataExFromJson);
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
    EXPECT_EQ(l.brightness, 2.0);
    EXPECT_EQ(l.dimmerOut, 0);
}
