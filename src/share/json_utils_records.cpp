// JSON forms of the correlation records of both sensor generations.
//
// Most records are a fixed set of members, each under its own key; they are
// written and read through one table of (key, member) per record. The two
// nine-pair records and the records of mixed members are spelt out.
#include "share/json_utils.h"

#include <cstddef>

namespace tovel {

using quilljson::Value;

namespace {

// One member of a record and its key.
template <typename Record, typename Member> struct Field {
    char const* key;
    Member Record::*member;
};

Value Write(double v) {
    return Value(v);
}
template <typename Record> Value Write(Record const& v) {
    return ToJson(v);
}

void Read(Value const& json, double* out) {
    *out = JsonToDouble(json);
}
void Read(Value const& json, R2XC_Value* out) {
    *out = R2XC_ValueFromJson(json);
}
void Read(Value const& json, KMCAL_G2XYZcnt* out) {
    *out = KMCAL_G2XYZcntFromJson(json);
}
void Read(Value const& json, KMCAL_StdXYZ* out) {
    *out = KMCAL_StdXYZFromJson(json);
}
void Read(Value const& json, KMCAL_G2RGBems* out) {
    *out = KMCAL_G2RGBemsFromJson(json);
}

template <typename Record, typename Member, size_t N>
Value FieldsToJson(Record const& v, Field<Record, Member> const (&fields)[N]) {
    Value json = Value::object();
    for (auto const& f : fields)
        json[f.key] = Write(v.*f.member);
    return json;
}

template <typename Record, typename Member, size_t N>
void FieldsFromJson(Value const& json, Field<Record, Member> const (&fields)[N], Record* v) {
    for (auto const& f : fields)
        Read(json[f.key], &(v->*f.member));
}

template <typename Record, typename Member, size_t N>
Record RecordFromJson(Value const& json, Field<Record, Member> const (&fields)[N]) {
    Record v = Zeroed<Record>();
    FieldsFromJson(json, fields, &v);
    return v;
}

// Nine pairs stored as two runs: element i of the JSON array pairs the i-th of each run.
template <typename First, typename Second>
Value PairsToJson(char const* firstKey, First const (&first)[9], char const* secondKey,
                  Second const (&second)[9]) {
    Value json = Value::array();
    for (int i = 0; i < 9; ++i) {
        Value pair = Value::object();
        pair[firstKey] = ToJson(first[i]);
        pair[secondKey] = ToJson(second[i]);
        json.append(pair);
    }
    return json;
}

template <typename First, typename Second>
void PairsFromJson(Value const& json, char const* firstKey, First (&first)[9], char const* secondKey,
                   Second (&second)[9]) {
    for (int i = 0; i < 9; ++i) {
        Read(json[i][firstKey], &first[i]);
        Read(json[i][secondKey], &second[i]);
    }
}

Field<R2XC_Value, double> const kR2XCValue[] = {
    {"X", &R2XC_Value::X}, {"Y", &R2XC_Value::Y}, {"Z", &R2XC_Value::Z},
    {"R", &R2XC_Value::R}, {"G", &R2XC_Value::G}, {"B", &R2XC_Value::B},
};
Field<R2XC_ValueRGB, R2XC_Value> const kValueRGB[] = {
    {"red", &R2XC_ValueRGB::red}, {"green", &R2XC_ValueRGB::green}, {"blue", &R2XC_ValueRGB::blue}};
Field<R2XC_ValueRGBK, R2XC_Value> const kValueRGBK[] = {{"red", &R2XC_ValueRGBK::red},
                                                        {"green", &R2XC_ValueRGBK::green},
                                                        {"blue", &R2XC_ValueRGBK::blue},
                                                        {"black", &R2XC_ValueRGBK::black}};
Field<R2XC_RefParam, double> const kRefTemperatures[] = {
    {"ambientTemperature", &R2XC_RefParam::ambientTemperature},
    {"setTemperature", &R2XC_RefParam::setTemperature}};
Field<R2XC_RefParam, double> const kRefTone[] = {{"red", &R2XC_RefParam::toneRed},
                                                 {"green", &R2XC_RefParam::toneGreen},
                                                 {"blue", &R2XC_RefParam::toneBlue}};

Field<KMCAL_G2XYZcnt, double> const kG2XYZcnt[] = {
    {"X", &KMCAL_G2XYZcnt::X}, {"Y", &KMCAL_G2XYZcnt::Y}, {"Z", &KMCAL_G2XYZcnt::Z}};
Field<KMCAL_StdXYZ, double> const kStdXYZ[] = {
    {"X", &KMCAL_StdXYZ::X}, {"Y", &KMCAL_StdXYZ::Y}, {"Z", &KMCAL_StdXYZ::Z}};
Field<KMCAL_G2RGBems, double> const kG2RGBems[] = {
    {"R", &KMCAL_G2RGBems::R}, {"G", &KMCAL_G2RGBems::G}, {"B", &KMCAL_G2RGBems::B}};

// The five patches of KMCAL_MEASDATA_USERPROOF in record order: black before white.
using MeasData = KMCAL_MEASDATA_USERPROOF;
Field<MeasData, KMCAL_StdXYZ> const kReferencePatches[] = {
    {"red", &MeasData::referenceRed},     {"green", &MeasData::referenceGreen},
    {"blue", &MeasData::referenceBlue},   {"black", &MeasData::referenceBlack},
    {"white", &MeasData::referenceWhite},
};
Field<MeasData, KMCAL_G2XYZcnt> const kMeasuredPatches[] = {
    {"red", &MeasData::XYZRed},     {"green", &MeasData::XYZGreen}, {"blue", &MeasData::XYZBlue},
    {"black", &MeasData::XYZBlack}, {"white", &MeasData::XYZWhite},
};

} // namespace

// ---- first generation ----

Value ToJson(R2XC_Value const& v) {
    return FieldsToJson(v, kR2XCValue);
}

Value ToJson(R2XC_ValueRGB const& v) {
    return FieldsToJson(v, kValueRGB);
}

Value ToJson(R2XC_ValueRGBK const& v) {
    return FieldsToJson(v, kValueRGBK);
}

Value ToJson(R2XC_RefParam const& v) {
    Value json = FieldsToJson(v, kRefTemperatures);
    json["dimmerOut"] = v.dimmerOut;
    json["tone"] = FieldsToJson(v, kRefTone);
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
    return RecordFromJson(json, kR2XCValue);
}

R2XC_ValueRGB R2XC_ValueRGBFromJson(Value const& json) {
    return RecordFromJson(json, kValueRGB);
}

R2XC_ValueRGBK R2XC_ValueRGBKFromJson(Value const& json) {
    return RecordFromJson(json, kValueRGBK);
}

R2XC_RefParam R2XC_RefParamFromJson(Value const& json) {
    R2XC_RefParam v = RecordFromJson(json, kRefTemperatures);
    v.dimmerOut = JsonToInt32(json["dimmerOut"]);
    FieldsFromJson(json["tone"], kRefTone, &v);
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
    return FieldsToJson(v, kG2XYZcnt);
}

Value ToJson(KMCAL_StdXYZ const& v) {
    return FieldsToJson(v, kStdXYZ);
}

Value ToJson(KMCAL_G2RGBems const& v) {
    return FieldsToJson(v, kG2RGBems);
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
    Value json = Value::object();
    json["reference"] = FieldsToJson(v, kReferencePatches);
    json["XYZ"] = FieldsToJson(v, kMeasuredPatches);
    return json;
}

Value ToJson(KMCAL_CALDATA_CORRECT const& v) {
    return PairsToJson("reference", v.reference, "XYZ", v.XYZ);
}

Value ToJson(KMCAL_MEASDATA_CORRECT_GRAY const& v) {
    return PairsToJson("reference", v.reference, "RGB", v.RGB);
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
    return RecordFromJson(json, kG2XYZcnt);
}

KMCAL_StdXYZ KMCAL_StdXYZFromJson(Value const& json) {
    return RecordFromJson(json, kStdXYZ);
}

KMCAL_G2RGBems KMCAL_G2RGBemsFromJson(Value const& json) {
    return RecordFromJson(json, kG2RGBems);
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
    KMCAL_MEASDATA_USERPROOF v = RecordFromJson(json["reference"], kReferencePatches);
    FieldsFromJson(json["XYZ"], kMeasuredPatches, &v);
    return v;
}

KMCAL_CALDATA_CORRECT KMCAL_CALDATA_CORRECTFromJson(Value const& json) {
    KMCAL_CALDATA_CORRECT v = Zeroed<KMCAL_CALDATA_CORRECT>();
    PairsFromJson(json, "reference", v.reference, "XYZ", v.XYZ);
    return v;
}

KMCAL_MEASDATA_CORRECT_GRAY KMCAL_MEASDATA_CORRECT_GRAYFromJson(Value const& json) {
    KMCAL_MEASDATA_CORRECT_GRAY v = Zeroed<KMCAL_MEASDATA_CORRECT_GRAY>();
    PairsFromJson(json, "reference", v.reference, "RGB", v.RGB);
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
