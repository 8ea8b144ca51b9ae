// Record converters (see record_json.h). Two orders differ between records and
// JSON: black precedes white in KMCAL_MEASDATA_USERPROOF, and the nine-pair
// records hold the run of first members before the run of second members.
#include "world/record_json.h"

#include <cstring>

namespace sim {

using quilljson::Value;

namespace {

Value xyz(double X, double Y, double Z) {
    Value v = Value::object();
    v["X"] = X;
    v["Y"] = Y;
    v["Z"] = Z;
    return v;
}
Value rgb(double R, double G, double B) {
    Value v = Value::object();
    v["R"] = R;
    v["G"] = G;
    v["B"] = B;
    return v;
}
Value matrix3(double const (*m)[3]) {
    Value rows = Value::array();
    for (int r = 0; r < 3; ++r)
        rows.append(toJson(m[r], 3));
    return rows;
}
template <typename T> Value toXYZ(T const& v) {
    return xyz(v.X, v.Y, v.Z);
}
template <typename T> void fromXYZ(Value const& j, T* v) {
    v->X = j["X"].asDouble();
    v->Y = j["Y"].asDouble();
    v->Z = j["Z"].asDouble();
}

Value toJson(R2XC_Value const& v) {
    Value j = xyz(v.X, v.Y, v.Z);
    j["R"] = v.R;
    j["G"] = v.G;
    j["B"] = v.B;
    return j;
}
R2XC_Value valueFromJson(Value const& j) {
    R2XC_Value v{};
    fromXYZ(j, &v);
    v.R = j["R"].asDouble();
    v.G = j["G"].asDouble();
    v.B = j["B"].asDouble();
    return v;
}
Value toJson(R2XC_ValueRGB const& v) {
    Value j = Value::object();
    j["red"] = toJson(v.red);
    j["green"] = toJson(v.green);
    j["blue"] = toJson(v.blue);
    return j;
}
R2XC_ValueRGB valueRGBFromJson(Value const& j) {
    return R2XC_ValueRGB{valueFromJson(j["red"]), valueFromJson(j["green"]), valueFromJson(j["blue"])};
}

R2XC_RefParam refParamFromJson(Value const& j) {
    R2XC_RefParam v{};
    v.ambientTemperature = j["ambientTemperature"].asDouble();
    v.setTemperature = j["setTemperature"].asDouble();
    v.dimmerOut = static_cast<int32_t>(j["dimmerOut"].asInteger());
    v.toneRed = j["tone"]["red"].asDouble();
    v.toneGreen = j["tone"]["green"].asDouble();
    v.toneBlue = j["tone"]["blue"].asDouble();
    return v;
}

KMCAL_CALDATA_USERPROOF caldataFromJson(Value const& j) {
    KMCAL_CALDATA_USERPROOF v{};
    fromXYZ(j["XYZ0"], &v.XYZ0);
    fromXYZ(j["XYZBlack"], &v.XYZBlack);
    for (int r = 0; r < 3; ++r) {
        realsFromJson(j["a"][r], v.a[r], 3);
        realsFromJson(j["b"][r], v.b[r], 3);
    }
    return v;
}

char const* const kPatches[5] = {"red", "green", "blue", "black", "white"};

KMCAL_MEASDATA_USERPROOF measdataFromJson(Value const& j) {
    KMCAL_MEASDATA_USERPROOF v{};
    KMCAL_StdXYZ* references[5] = {&v.referenceRed, &v.referenceGreen, &v.referenceBlue, &v.referenceBlack,
                                   &v.referenceWhite};
    KMCAL_G2XYZcnt* counts[5] = {&v.XYZRed, &v.XYZGreen, &v.XYZBlue, &v.XYZBlack, &v.XYZWhite};
    for (int i = 0; i < 5; ++i) {
        fromXYZ(j["reference"][kPatches[i]], references[i]);
        fromXYZ(j["XYZ"][kPatches[i]], counts[i]);
    }
    return v;
}

MDCSSG2CalibrationData calibrationFromJson(Value const& j) {
    MDCSSG2CalibrationData v{};
    v.criterionBrightness = j["criterion"]["brightness"].asDouble();
    v.criterionTemperature = j["criterion"]["temperature"].asDouble();
    v.coefficientType = static_cast<int32_t>(j["coefficientType"].asInteger());
    v.calibration = caldataFromJson(j["calibration"]);
    v.measurement = measdataFromJson(j["measurement"]);
    return v;
}

MDCSSG2CorrectionData correctionFromJson(Value const& j) {
    MDCSSG2CorrectionData v{};
    for (int i = 0; i < 9; ++i) {
        fromXYZ(j["correction"][i]["reference"], &v.correction.reference[i]);
        fromXYZ(j["correction"][i]["XYZ"], &v.correction.XYZ[i]);
        fromXYZ(j["measurement"][i]["reference"], &v.measurement.reference[i]);
        Value const& c = j["measurement"][i]["RGB"];
        v.measurement.RGB[i] = KMCAL_G2RGBems{c["R"].asDouble(), c["G"].asDouble(), c["B"].asDouble()};
    }
    realsFromJson(j["step"], v.step, 9);
    v.gamma = j["gamma"].asDouble();
    v.threshold = j["threshold"].asDouble();
    return v;
}

} // namespace

Value toJson(double const* values, size_t count) {
    Value j = Value::array();
    for (size_t i = 0; i < count; ++i)
        j.append(Value(values[i]));
    return j;
}

void realsFromJson(Value const& json, double* out, size_t count) {
    for (size_t i = 0; i < count && i < json.size() && json.isArray(); ++i)
        out[i] = json[static_cast<unsigned long>(i)].asDouble();
}

Value toJson(colour const& c) {
    Value j = xyz(c.X, c.Y, c.Z);
    char const* const names[] = {"x", "y", "L", "a", "b", "C", "h", "T", "R", "G", "B", "M", "K"};
    double const values[] = {c.x, c.y, c.L, c.a, c.b, c.C, c.h, c.T, c.R, c.G, c.B, c.M, c.K};
    for (size_t i = 0; i < sizeof(values) / sizeof(values[0]); ++i)
        j[names[i]] = values[i];
    return j;
}

Value toJson(CSSG2_Date const& d) {
    Value j = Value::object();
    j["year"] = d.year;
    j["month"] = d.month;
    j["day"] = d.day;
    j["hour"] = d.hour;
    j["minute"] = d.minute;
    return j;
}

Value toJson(MDParameterDescription const& d) {
    Value j = Value::object();
    j["date"] = toJson(CSSG2_Date{d.year, d.month, d.day, d.hour, d.minute});
    j["referenceDeviceID"] = d.referenceDeviceID;
    j["referenceSerial"] =
        std::string(d.referenceSerial, strnlen(d.referenceSerial, sizeof d.referenceSerial));
    return j;
}

Value toJson(R2XC_RefParam const& v) {
    Value j = Value::object();
    j["ambientTemperature"] = v.ambientTemperature;
    j["setTemperature"] = v.setTemperature;
    j["dimmerOut"] = v.dimmerOut;
    j["tone"]["red"] = v.toneRed;
    j["tone"]["green"] = v.toneGreen;
    j["tone"]["blue"] = v.toneBlue;
    return j;
}

Value toJson(R2XC_RefToneParam const& v) {
    Value j = Value::object();
    j["tone"] = toJson(v.tone, 7);
    j["gamma"] = toJson(v.gamma, 8);
    return j;
}

Value toJson(R2XC_ValueRGBK const& v) {
    Value j = toJson(R2XC_ValueRGB{v.red, v.green, v.blue});
    j["black"] = toJson(v.black);
    return j;
}

Value toJson(R2XC_ToneCorrectionParam const& v) {
    Value j = Value::array();
    for (auto const& step : v.value)
        j.append(toJson(step));
    return j;
}

Value toJson(KMCAL_CALDATA_USERPROOF const& v) {
    Value j = Value::object();
    j["XYZ0"] = toXYZ(v.XYZ0);
    j["XYZBlack"] = toXYZ(v.XYZBlack);
    j["a"] = matrix3(v.a);
    j["b"] = matrix3(v.b);
    return j;
}

Value toJson(KMCAL_MEASDATA_USERPROOF const& v) {
    KMCAL_StdXYZ const* references[5] = {&v.referenceRed, &v.referenceGreen, &v.referenceBlue,
                                         &v.referenceBlack, &v.referenceWhite};
    KMCAL_G2XYZcnt const* counts[5] = {&v.XYZRed, &v.XYZGreen, &v.XYZBlue, &v.XYZBlack, &v.XYZWhite};
    Value j = Value::object();
    for (int i = 0; i < 5; ++i) {
        j["reference"][kPatches[i]] = toXYZ(*references[i]);
        j["XYZ"][kPatches[i]] = toXYZ(*counts[i]);
    }
    return j;
}

Value toJson(KMCAL_CALDATA_CORRECT const& v) {
    Value j = Value::array();
    for (int i = 0; i < 9; ++i) {
        Value pair = Value::object();
        pair["reference"] = toXYZ(v.reference[i]);
        pair["XYZ"] = toXYZ(v.XYZ[i]);
        j.append(pair);
    }
    return j;
}

Value toJson(KMCAL_MEASDATA_CORRECT_GRAY const& v) {
    Value j = Value::array();
    for (int i = 0; i < 9; ++i) {
        Value pair = Value::object();
        pair["reference"] = toXYZ(v.reference[i]);
        pair["RGB"] = rgb(v.RGB[i].R, v.RGB[i].G, v.RGB[i].B);
        j.append(pair);
    }
    return j;
}

Value toJson(MDCSSG2CalibrationData const& v) {
    Value j = Value::object();
    j["criterion"]["brightness"] = v.criterionBrightness;
    j["criterion"]["temperature"] = v.criterionTemperature;
    j["coefficientType"] = v.coefficientType;
    j["calibration"] = toJson(v.calibration);
    j["measurement"] = toJson(v.measurement);
    return j;
}

Value toJson(MDCSSG2CorrectionData const& v) {
    Value j = Value::object();
    j["correction"] = toJson(v.correction);
    j["step"] = toJson(v.step, 9);
    j["measurement"] = toJson(v.measurement);
    j["gamma"] = v.gamma;
    j["threshold"] = v.threshold;
    return j;
}

Value toJson(MDIFSv3CorrelationData const& v) {
    Value j = Value::object();
    j["reference"] = toJson(v.reference);
    j["referenceTone"] = toJson(v.referenceTone);
    j["normalizedMeasurement"] = toJson(v.normalizedMeasurement);
    j["toneCorrection"] = toJson(v.toneCorrection);
    return j;
}

Value toJson(MDCSSG2CorrelationDataEx const& v) {
    Value j = Value::object();
    j["calibrationData"] = toJson(v.calibrationData);
    j["correctionData"] = toJson(v.correctionData);
    j["luminanceLevelCorrection"]["brightness"] = v.luminanceLevelCorrection.brightness;
    j["luminanceLevelCorrection"]["dimmerOut"] = v.luminanceLevelCorrection.dimmerOut;
    return j;
}

MDIFSv3CorrelationData ifsv3FromJson(Value const& j) {
    MDIFSv3CorrelationData v{};
    v.reference = refParamFromJson(j["reference"]);
    realsFromJson(j["referenceTone"]["tone"], v.referenceTone.tone, 7);
    realsFromJson(j["referenceTone"]["gamma"], v.referenceTone.gamma, 8);
    Value const& n = j["normalizedMeasurement"];
    v.normalizedMeasurement = R2XC_ValueRGBK{valueFromJson(n["red"]), valueFromJson(n["green"]),
                                             valueFromJson(n["blue"]), valueFromJson(n["black"])};
    for (int i = 0; i < 7; ++i)
        v.toneCorrection.value[i] = valueRGBFromJson(j["toneCorrection"][i]);
    return v;
}

MDCSSG2CorrelationDataEx cssg2FromJson(Value const& j) {
    MDCSSG2CorrelationDataEx v{};
    v.calibrationData = calibrationFromJson(j["calibrationData"]);
    v.correctionData = correctionFromJson(j["correctionData"]);
    v.luminanceLevelCorrection.brightness = j["luminanceLevelCorrection"]["brightness"].asDouble();
    int64_t const dimmer = j["luminanceLevelCorrection"]["dimmerOut"].asInteger();
    v.luminanceLevelCorrection.dimmerOut = dimmer >= 0 && dimmer <= 65535 ? static_cast<uint16_t>(dimmer) : 0;
    return v;
}

} // namespace sim
