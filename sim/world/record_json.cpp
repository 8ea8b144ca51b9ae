// Record converters (see record_json.h): the product's for every record it
// converts itself, and the few the simulator alone writes.
#include "world/record_json.h"

#include <cstring>

#include "share/json_utils.h"

namespace sim {

using quilljson::Value;

Value toJson(colour const& c) {
    return tovel::ToJson(c, "XYZxyLabChTRGBMK");
}

Value toJson(CSSG2_Date const& d) {
    return tovel::ToJson(tovel::DateTimeFromCSSG2Date(d), false, false, false);
}

Value toJson(MDParameterDescription const& d) {
    Value j = Value::object();
    j["date"] = toJson(CSSG2_Date{d.year, d.month, d.day, d.hour, d.minute});
    j["referenceDeviceID"] = d.referenceDeviceID;
    j["referenceSerial"] =
        std::string(d.referenceSerial, strnlen(d.referenceSerial, sizeof d.referenceSerial));
    return j;
}

#define SIM_PRODUCT_CONVERTER(Type)                                                                          \
    Value toJson(Type const& value) {                                                                        \
        return tovel::ToJson(value);                                                                         \
    }
SIM_PRODUCT_CONVERTER(R2XC_RefParam)
SIM_PRODUCT_CONVERTER(R2XC_RefToneParam)
SIM_PRODUCT_CONVERTER(R2XC_ValueRGBK)
SIM_PRODUCT_CONVERTER(R2XC_ToneCorrectionParam)
SIM_PRODUCT_CONVERTER(KMCAL_CALDATA_USERPROOF)
SIM_PRODUCT_CONVERTER(KMCAL_MEASDATA_USERPROOF)
SIM_PRODUCT_CONVERTER(KMCAL_CALDATA_CORRECT)
SIM_PRODUCT_CONVERTER(KMCAL_MEASDATA_CORRECT_GRAY)
SIM_PRODUCT_CONVERTER(MDCSSG2CalibrationData)
SIM_PRODUCT_CONVERTER(MDCSSG2CorrectionData)
SIM_PRODUCT_CONVERTER(MDIFSv3CorrelationData)
SIM_PRODUCT_CONVERTER(MDCSSG2CorrelationDataEx)
#undef SIM_PRODUCT_CONVERTER

Value toJson(double const* values, size_t count) {
    return tovel::ToJson(values, count);
}

MDIFSv3CorrelationData ifsv3FromJson(Value const& json) {
    return tovel::MDIFSv3CorrelationDataFromJson(json);
}

MDCSSG2CorrelationDataEx cssg2FromJson(Value const& json) {
    return tovel::MDCSSG2CorrelationDataExFromJson(json);
}

} // namespace sim
