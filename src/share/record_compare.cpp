#include "share/record_compare.h"

#include <cmath>
#include <cstdint>

namespace tovel {

using quilljson::Value;

namespace {

// Integers, reals, booleans and wholly numeric strings; 0.0 otherwise.
double Number(Value const& v) {
    return v.asDouble();
}

// A truncating conversion as the processor does it: NaN and values outside the
// signed 64-bit range give the "integer indefinite" value.
int64_t Truncate64(double d) {
    if (!(d >= -9223372036854775808.0 && d < 9223372036854775808.0)) return INT64_MIN;
    return static_cast<int64_t>(d);
}

// The decimal order of x: the number of divisions by 10 that bring |x| below
// 1, or minus the number of multiplications that bring it above 1; 0 for 0.
int DecimalOrder(double x) {
    double m = std::fabs(x);
    int order = 0;
    if (m == 0.0) return 0;
    if (m >= 1.0) {
        for (; m >= 1.0; m /= 10.0)
            ++order;
    } else {
        for (; m <= 1.0; m *= 10.0)
            --order;
    }
    return order;
}

bool EachNearlyEquals(Value const& a, Value const& b, char const* const* keys, int count, double eps) {
    for (int i = 0; i < count; ++i)
        if (!DoubleNearlyEquals(a[keys[i]], b[keys[i]], eps)) return false;
    return true;
}

bool EachSignificantFigureEquals(Value const& a, Value const& b, char const* const* keys, int count) {
    for (int i = 0; i < count; ++i)
        if (!SignificantFigureEquals(a[keys[i]], b[keys[i]], 6)) return false;
    return true;
}

// Both arrays of the same length, leaves compared by leafEquals.
template <typename Leaf> bool ArrayEquals(Value const& a, Value const& b, Leaf leafEquals) {
    if (!a.isArray() || !b.isArray() || a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        Value const& x = a[static_cast<unsigned long>(i)];
        Value const& y = b[static_cast<unsigned long>(i)];
        if (!(x.isArray() ? ArrayEquals(x, y, leafEquals) : leafEquals(x, y))) return false;
    }
    return true;
}

// The members of an R2XC_Value as a tristimulus and as an RGB record.
bool ValueEquals(Value const& a, Value const& b) {
    return KMCAL_G2XYZcntEquals(a, b) && KMCAL_G2RGBemsEquals(a, b);
}

bool EachValueEquals(Value const& a, Value const& b, char const* const* keys, int count) {
    for (int i = 0; i < count; ++i)
        if (!ValueEquals(a[keys[i]], b[keys[i]])) return false;
    return true;
}

char const* const kXYZ[] = {"X", "Y", "Z"};
char const* const kRGB[] = {"R", "G", "B"};
char const* const kToneKeys[] = {"red", "green", "blue", "black"};
char const* const kPatchKeys[] = {"red", "green", "blue", "white", "black"};

} // namespace

bool DoubleNearlyEquals(Value const& a, Value const& b, double eps) {
    return eps > std::fabs(Number(a) - Number(b));
}

bool SignificantFigureEquals(Value const& a, Value const& b, int digits) {
    double const x = Number(a);
    // An infinite or NaN first value has no order: only the same reading matches.
    if (!std::isfinite(x)) return Truncate64(x) == Truncate64(Number(b));
    int const order = DecimalOrder(x);
    if (order < -3) digits = order + 9;
    if (order == 0) return true;

    auto scaled = [order, digits](double v) {
        double s;
        if (order >= digits) {
            s = v / std::pow(10.0, order - digits);
        } else {
            int const e = digits - order - (order < 1 ? 1 : 0);
            s = v * std::pow(10.0, e);
        }
        s += s < 0.0 ? -0.4 : 0.5;
        return static_cast<uint32_t>(static_cast<uint64_t>(Truncate64(s)));
    };
    return scaled(x) == scaled(Number(b));
}

bool DoubleArrayEquals(Value const& a, Value const& b) {
    return ArrayEquals(a, b, [](Value const& x, Value const& y) { return DoubleNearlyEquals(x, y, 0.0001); });
}

bool DoubleArraySignificantFigureEquals(Value const& a, Value const& b) {
    return ArrayEquals(a, b, [](Value const& x, Value const& y) { return SignificantFigureEquals(x, y, 6); });
}

bool KMCAL_G2XYZcntEquals(Value const& a, Value const& b) {
    return EachSignificantFigureEquals(a, b, kXYZ, 3);
}

bool KMCAL_G2RGBemsEquals(Value const& a, Value const& b) {
    return EachSignificantFigureEquals(a, b, kRGB, 3);
}

bool R2XC_RefParamEquals(Value const& a, Value const& b) {
    static char const* const kTemperatures[] = {"ambientTemperature", "setTemperature"};
    return EachNearlyEquals(a, b, kTemperatures, 2, 1e-05) && a["dimmerOut"] == b["dimmerOut"] &&
           EachNearlyEquals(a["tone"], b["tone"], kToneKeys, 3, 0.1);
}

bool R2XC_RefToneParamEquals(Value const& a, Value const& b) {
    return DoubleArrayEquals(a["tone"], b["tone"]) && DoubleArrayEquals(a["gamma"], b["gamma"]);
}

bool R2XC_ValueRGBEquals(Value const& a, Value const& b) {
    return EachValueEquals(a, b, kToneKeys, 3);
}

bool R2XC_ValueRGBKEquals(Value const& a, Value const& b) {
    return EachValueEquals(a, b, kToneKeys, 4);
}

bool KMCAL_CALDATA_USERPROOFEquals(Value const& a, Value const& b) {
    return KMCAL_G2XYZcntEquals(a["XYZ0"], b["XYZ0"]) && KMCAL_G2XYZcntEquals(a["XYZBlack"], b["XYZBlack"]) &&
           DoubleArraySignificantFigureEquals(a["a"], b["a"]) &&
           DoubleArraySignificantFigureEquals(a["b"], b["b"]);
}

bool KMCAL_MEASDATA_USERPROOFEquals(Value const& a, Value const& b) {
    for (char const* group : {"reference", "XYZ"})
        for (char const* patch : kPatchKeys)
            if (!KMCAL_G2XYZcntEquals(a[group][patch], b[group][patch])) return false;
    return true;
}

bool KMCAL_CALDATA_CORRECTEquals(Value const& a, Value const& b) {
    for (int i = 0; i < 9; ++i)
        if (!KMCAL_G2XYZcntEquals(a[i]["reference"], b[i]["reference"]) ||
            !KMCAL_G2XYZcntEquals(a[i]["XYZ"], b[i]["XYZ"]))
            return false;
    return true;
}

bool KMCAL_MEASDATA_CORRECT_GRAYEquals(Value const& a, Value const& b) {
    for (int i = 0; i < 9; ++i)
        if (!KMCAL_G2XYZcntEquals(a[i]["reference"], b[i]["reference"]) ||
            !KMCAL_G2RGBemsEquals(a[i]["RGB"], b[i]["RGB"]))
            return false;
    return true;
}

bool MDCSSG2CalibrationDataEquals(Value const& a, Value const& b) {
    static char const* const kCriterion[] = {"brightness", "temperature"};
    return EachNearlyEquals(a["criterion"], b["criterion"], kCriterion, 2, 0.01) &&
           a["coefficientType"] == b["coefficientType"] &&
           KMCAL_CALDATA_USERPROOFEquals(a["calibration"], b["calibration"]) &&
           KMCAL_MEASDATA_USERPROOFEquals(a["measurement"], b["measurement"]);
}

bool MDCSSG2CorrectionDataEquals(Value const& a, Value const& b) {
    return DoubleNearlyEquals(a["gamma"], b["gamma"], 0.1) &&
           DoubleNearlyEquals(a["threshold"], b["threshold"], 0.01) &&
           DoubleArraySignificantFigureEquals(a["step"], b["step"]) &&
           KMCAL_CALDATA_CORRECTEquals(a["correction"], b["correction"]) &&
           KMCAL_MEASDATA_CORRECT_GRAYEquals(a["measurement"], b["measurement"]);
}

bool MDCSSG2LuminanceLevelCorrectionParamsEquals(Value const& a, Value const& b) {
    return DoubleNearlyEquals(a["brightness"], b["brightness"], 0.1) && a["dimmerOut"] == b["dimmerOut"];
}

bool MDIFSv3CorrelationDataEquals(Value const& a, Value const& b) {
    if (!R2XC_RefParamEquals(a["reference"], b["reference"]) ||
        !R2XC_RefToneParamEquals(a["referenceTone"], b["referenceTone"]) ||
        !R2XC_ValueRGBKEquals(a["normalizedMeasurement"], b["normalizedMeasurement"]))
        return false;
    Value::ArrayType const& x = a["toneCorrection"].arrayRef();
    Value::ArrayType const& y = b["toneCorrection"].arrayRef();
    if (x.size() != y.size()) return false;
    for (size_t i = 0; i < x.size(); ++i)
        if (!R2XC_ValueRGBEquals(x[i], y[i])) return false;
    return true;
}

bool MDCSSG2CorrelationDataExEquals(Value const& a, Value const& b) {
    return MDCSSG2CalibrationDataEquals(a["calibrationData"], b["calibrationData"]) &&
           MDCSSG2CorrectionDataEquals(a["correctionData"], b["correctionData"]) &&
           MDCSSG2LuminanceLevelCorrectionParamsEquals(a["luminanceLevelCorrection"],
                                                       b["luminanceLevelCorrection"]);
}

} // namespace tovel
