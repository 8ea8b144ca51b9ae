// JSON forms of the correlation records of both sensor generations.
#include "share/json_utils.h"

namespace tovel {

using quilljson::Value;

namespace {

template <typename T> Value XYZToJson(T const& v) {
    Value json = Value::object();
    json["X"] = v.X;
    json["Y"] = v.Y;
    json["Z"] = v.Z;
    return json;
}

template <typename T> T XYZFromJson(Value const& json) {
    T v = Zeroed<T>();
    v.X = JsonToDouble(json["X"]);
    v.Y = JsonToDouble(json["Y"]);
    v.Z = JsonToDouble(json["Z"]);
    return v;
}

// The five patches of KMCAL_MEASDATA_USERPROOF in record order: black before white.
char const* const kPatchKeys[5] = {"red", "green", "blue", "black", "white"};

} // namespace

// ---- first generation ----

Value ToJson(R2XC_Value const& v) {
    Value json = XYZToJson(v);
    json["R"] = v.R;
    json["G"] = v.G;
    json["B"] = v.B;
    return json;
}

Value ToJson(R2XC_ValueRGB const& v) {
    Value json = Value::object();
    json["red"] = ToJson(v.red);
    json["green"] = ToJson(v.green);
    json["blue"] = ToJson(v.blue);
    return json;
}

Value ToJson(R2XC_ValueRGBK const& v) {
    Value json = Value::object();
    json["red"] = ToJson(v.red);
    json["green"] = ToJson(v.green);
    json["blue"] = ToJson(v.blue);
    json["black"] = ToJson(v.black);
    return json;
}

Value ToJson(R2XC_RefParam const& v) {
    Value json = Value::object();
    json["ambientTemperature"] = v.ambientTemperature;
    json["setTemperature"] = v.setTemperature;
    json["dimmerOut"] = v.dimmerOut;
    Value tone = Value::object();
    tone["red"] = v.toneRed;
    tone["green"] = v.toneGreen;
    tone["blue"] = v.toneBlue;
    json["tone"] = tone;
    return json;
}

Value ToJson(R2XC_RefToneParam const& v) {
    Value json = Value::object();
    json["tone"] = ToJson(v.tone, 7);
    json["gamma"] = ToJson(v.gamma, 8);
    return json;
}

Value ToJson(R2XC_ToneCorrectionParam const& v) {
    Value json = Value::array();
    for (R2XC_ValueRGB const& step : v.value)
        json.append(ToJson(step));
    return json;
}

Value ToJson(MDIFSv3CorrelationData const& v) {
    Value json = Value::object();
    json["reference"] = ToJson(v.reference);
    json["referenceTone"] = ToJson(v.referenceTone);
    json["normalizedMeasurement"] = ToJson(v.normalizedMeasurement);
    json["toneCorrection"] = ToJson(v.toneCorrection);
    return json;
}

R2XC_Value R2XC_ValueFromJson(Value const& json) {
    R2XC_Value v = XYZFromJson<R2XC_Value>(json);
    v.R = JsonToDouble(json["R"]);
    v.G = JsonToDouble(json["G"]);
    v.B = JsonToDouble(json["B"]);
    return v;
}

R2XC_ValueRGB R2XC_ValueRGBFromJson(Value const& json) {
    R2XC_ValueRGB v = Zeroed<R2XC_ValueRGB>();
    v.red = R2XC_ValueFromJson(json["red"]);
    v.green = R2XC_ValueFromJson(json["green"]);
    v.blue = R2XC_ValueFromJson(json["blue"]);
    return v;
}

R2XC_ValueRGBK R2XC_ValueRGBKFromJson(Value const& json) {
    R2XC_ValueRGBK v = Zeroed<R2XC_ValueRGBK>();
    v.red = R2XC_ValueFromJson(json["red"]);
    v.green = R2XC_ValueFromJson(json["green"]);
    v.blue = R2XC_ValueFromJson(json["blue"]);
    v.black = R2XC_ValueFromJson(json["black"]);
    return v;
}

R2XC_RefParam R2XC_RefParamFromJson(Value const& json) {
    R2XC_RefParam v = Zeroed<R2XC_RefParam>();
    v.ambientTemperature = JsonToDouble(json["ambientTemperature"]);
    v.setTemperature = JsonToDouble(json["setTemperature"]);
    v.dimmerOut = JsonToInt32(json["dimmerOut"]);
    Value const& tone = json["tone"];
    v.toneRed = JsonToDouble(tone["red"]);
    v.toneGreen = JsonToDouble(tone["green"]);
    v.toneBlue = JsonToDouble(tone["blue"]);
    return v;
}

R2XC_RefToneParam R2XC_RefToneParamFromJson(Value const& json) {
    R2XC_RefToneParam v = Zeroed<R2XC_RefToneParam>();
    ApplyFromJson(json["tone"], v.tone, 7);
    ApplyFromJson(json["gamma"], v.gamma, 8);
    return v;
}

R2XC_ToneCorrectionParam R2XC_ToneCorrectionParamFromJson(Value const& json) {
    R2XC_ToneCorrectionParam v = Zeroed<R2XC_ToneCorrectionParam>();
    for (int i = 0; i < 7; ++i)
        v.value[i] = R2XC_ValueRGBFromJson(json[i]);
    return v;
}

MDIFSv3CorrelationData MDIFSv3CorrelationDataFromJson(Value const& json) {
    MDIFSv3CorrelationData v = Zeroed<MDIFSv3CorrelationData>();
    v.reference = R2XC_RefParamFromJson(json["reference"]);
    v.referenceTone = R2XC_RefToneParamFromJson(json["referenceTone"]);
    v.normalizedMeasurement = R2XC_ValueRGBKFromJson(json["normalizedMeasurement"]);
    v.toneCorrection = R2XC_ToneCorrectionParamFromJson(json["toneCorrection"]);
    return v;
}

// ---- second generation ----

Value ToJson(KMCAL_G2XYZcnt const& v) {
    return XYZToJson(v);
}

Value ToJson(KMCAL_StdXYZ const& v) {
    return XYZToJson(v);
}

Value ToJson(KMCAL_G2RGBems const& v) {
    Value json = Value::object();
    json["R"] = v.R;
    json["G"] = v.G;
    json["B"] = v.B;
    return json;
}

Value ToJson(KMCAL_CALDATA_USERPROOF const& v) {
    Value json = Value::object();
    json["XYZ0"] = ToJson(v.XYZ0);
    json["XYZBlack"] = ToJson(v.XYZBlack);
    json["a"] = ToJson(v.a);
    json["b"] = ToJson(v.b);
    return json;
}

Value ToJson(KMCAL_MEASDATA_USERPROOF const& v) {
    KMCAL_StdXYZ const* const references[5] = {&v.referenceRed, &v.referenceGreen, &v.referenceBlue,
                                               &v.referenceBlack, &v.referenceWhite};
    KMCAL_G2XYZcnt const* const counts[5] = {&v.XYZRed, &v.XYZGreen, &v.XYZBlue, &v.XYZBlack, &v.XYZWhite};
    Value reference = Value::object();
    Value xyz = Value::object();
    for (int i = 0; i < 5; ++i) {
        reference[kPatchKeys[i]] = ToJson(*references[i]);
        xyz[kPatchKeys[i]] = ToJson(*counts[i]);
    }
    Value json = Value::object();
    json["reference"] = reference;
    json["XYZ"] = xyz;
    return json;
}

Value ToJson(KMCAL_CALDATA_CORRECT const& v) {
    Value json = Value::array();
    for (int i = 0; i < 9; ++i) {
        Value pair = Value::object();
        pair["reference"] = ToJson(v.reference[i]);
        pair["XYZ"] = ToJson(v.XYZ[i]);
        json.append(pair);
    }
    return json;
}

Value ToJson(KMCAL_MEASDATA_CORRECT_GRAY const& v) {
    Value json = Value::array();
    for (int i = 0; i < 9; ++i) {
        Value pair = Value::object();
        pair["reference"] = ToJson(v.reference[i]);
        pair["RGB"] = ToJson(v.RGB[i]);
        json.append(pair);
    }
    return json;
}

Value ToJson(MDCSSG2CalibrationData const& v) {
    Value criterion = Value::object();
    criterion["brightness"] = v.criterionBrightness;
    criterion["temperature"] = v.criterionTemperature;
    Value json = Value::object();
    json["criterion"] = criterion;
    json["coefficientType"] = v.coefficientType;
    json["calibration"] = ToJson(v.calibration);
    json["measurement"] = ToJson(v.measurement);
    return json;
}

Value ToJson(MDCSSG2CorrectionData const& v) {
    Value json = Value::object();
    json["correction"] = ToJson(v.correction);
    json["step"] = ToJson(v.step, 9);
    json["measurement"] = ToJson(v.measurement);
    json["gamma"] = v.gamma;
    json["threshold"] = v.threshold;
    return json;
}

Value ToJson(MDCSSG2LuminanceLevelCorrectionParams const& v) {
    Value json = Value::object();
    json["brightness"] = v.brightness;
    json["dimmerOut"] = static_cast<int>(v.dimmerOut);
    return json;
}

Value ToJson(MDCSSG2CorrelationDataEx const& v) {
    Value json = Value::object();
    json["calibrationData"] = ToJson(v.calibrationData);
    json["correctionData"] = ToJson(v.correctionData);
    json["luminanceLevelCorrection"] = ToJson(v.luminanceLevelCorrection);
    return json;
}

KMCAL_G2XYZcnt KMCAL_G2XYZcntFromJson(Value const& json) {
    return XYZFromJson<KMCAL_G2XYZcnt>(json);
}

KMCAL_StdXYZ KMCAL_StdXYZFromJson(Value const& json) {
    return XYZFromJson<KMCAL_StdXYZ>(json);
}

KMCAL_G2RGBems KMCAL_G2RGBemsFromJson(Value const& json) {
    KMCAL_G2RGBems v = Zeroed<KMCAL_G2RGBems>();
    v.R = JsonToDouble(json["R"]);
    v.G = JsonToDouble(json["G"]);
    v.B = JsonToDouble(json["B"]);
    return v;
}

KMCAL_CALDATA_USERPROOF KMCAL_CALDATA_USERPROOFFromJson(Value const& json) {
    KMCAL_CALDATA_USERPROOF v = Zeroed<KMCAL_CALDATA_USERPROOF>();
    v.XYZ0 = KMCAL_G2XYZcntFromJson(json["XYZ0"]);
    v.XYZBlack = KMCAL_StdXYZFromJson(json["XYZBlack"]);
    ApplyFromJson(json["a"], &v.a);
    ApplyFromJson(json["b"], &v.b);
    return v;
}

KMCAL_MEASDATA_USERPROOF KMCAL_MEASDATA_USERPROOFFromJson(Value const& json) {
    KMCAL_MEASDATA_USERPROOF v = Zeroed<KMCAL_MEASDATA_USERPROOF>();
    KMCAL_StdXYZ* const references[5] = {&v.referenceRed, &v.referenceGreen, &v.referenceBlue,
                                         &v.referenceBlack, &v.referenceWhite};
    KMCAL_G2XYZcnt* const counts[5] = {&v.XYZRed, &v.XYZGreen, &v.XYZBlue, &v.XYZBlack, &v.XYZWhite};
    Value const& reference = json["reference"];
    Value const& xyz = json["XYZ"];
    for (int i = 0; i < 5; ++i) {
        *references[i] = KMCAL_StdXYZFromJson(reference[kPatchKeys[i]]);
        *counts[i] = KMCAL_G2XYZcntFromJson(xyz[kPatchKeys[i]]);
    }
    return v;
}

KMCAL_CALDATA_CORRECT KMCAL_CALDATA_CORRECTFromJson(Value const& json) {
    KMCAL_CALDATA_CORRECT v = Zeroed<KMCAL_CALDATA_CORRECT>();
    for (int i = 0; i < 9; ++i) {
        v.reference[i] = KMCAL_G2XYZcntFromJson(json[i]["reference"]);
        v.XYZ[i] = KMCAL_StdXYZFromJson(json[i]["XYZ"]);
    }
    return v;
}

KMCAL_MEASDATA_CORRECT_GRAY KMCAL_MEASDATA_CORRECT_GRAYFromJson(Value const& json) {
    KMCAL_MEASDATA_CORRECT_GRAY v = Zeroed<KMCAL_MEASDATA_CORRECT_GRAY>();
    for (int i = 0; i < 9; ++i) {
        v.reference[i] = KMCAL_StdXYZFromJson(json[i]["reference"]);
        v.RGB[i] = KMCAL_G2RGBemsFromJson(json[i]["RGB"]);
    }
    return v;
}

MDCSSG2CalibrationData MDCSSG2CalibrationDataFromJson(Value const& json) {
    MDCSSG2CalibrationData v = Zeroed<MDCSSG2CalibrationData>();
    v.criterionBrightness = JsonToDouble(json["criterion"]["brightness"]);
    v.criterionTemperature = JsonToDouble(json["criterion"]["temperature"]);
    v.coefficientType = JsonToInt32(json["coefficientType"]);
    v.calibration = KMCAL_CALDATA_USERPROOFFromJson(json["calibration"]);
    v.measurement = KMCAL_MEASDATA_USERPROOFFromJson(json["measurement"]);
    return v;
}

MDCSSG2CorrectionData MDCSSG2CorrectionDataFromJson(Value const& json) {
    MDCSSG2CorrectionData v = Zeroed<MDCSSG2CorrectionData>();
    v.correction = KMCAL_CALDATA_CORRECTFromJson(json["correction"]);
    ApplyFromJson(json["step"], v.step, 9);
    v.measurement = KMCAL_MEASDATA_CORRECT_GRAYFromJson(json["measurement"]);
    v.gamma = JsonToDouble(json["gamma"]);
    v.threshold = JsonToDouble(json["threshold"]);
    return v;
}

MDCSSG2LuminanceLevelCorrectionParams MDCSSG2LuminanceLevelCorrectionParamsFromJson(Value const& json) {
    MDCSSG2LuminanceLevelCorrectionParams v = Zeroed<MDCSSG2LuminanceLevelCorrectionParams>();
    v.brightness = JsonToDouble(json["brightness"]);
    v.dimmerOut = JsonToUInt16(json["dimmerOut"]);
    return v;
}

MDCSSG2CorrelationDataEx MDCSSG2CorrelationDataExFromJson(Value const& json) {
    MDCSSG2CorrelationDataEx v = Zeroed<MDCSSG2CorrelationDataEx>();
    v.calibrationData = MDCSSG2CalibrationDataFromJson(json["calibrationData"]);
    v.correctionData = MDCSSG2CorrectionDataFromJson(json["correctionData"]);
    v.luminanceLevelCorrection =
        MDCSSG2LuminanceLevelCorrectionParamsFromJson(json["luminanceLevelCorrection"]);
    return v;
}

} // namespace tovel
