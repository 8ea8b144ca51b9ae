// Tolerant comparison of correlation records in their JSON forms (json_utils.h).
//
// Numbers read back from a device never match bit for bit, so each member is
// compared by its own rule: an absolute tolerance for physical quantities, a
// significant-figure rule for measured tristimulus values, exact equality for
// integers. A missing member compares as null, that is as 0.0. Nothing here
// reports an error.
#pragma once

#include "quilljson/value.h"

namespace tovel {

// eps > |a - b|, strictly; NaN is never equal.
bool DoubleNearlyEquals(quilljson::Value const& a, quilljson::Value const& b, double eps);
// Both values scaled by the decimal order of a to `digits` figures and
// compared as integers. A first value of 0 (or not a number) matches anything;
// orders below -3 compare with order + 9 figures instead.
bool SignificantFigureEquals(quilljson::Value const& a, quilljson::Value const& b, int digits);
// Arrays of equal length whose elements (nested arrays recursively) agree
// within 0.0001, or to six significant figures.
bool DoubleArrayEquals(quilljson::Value const& a, quilljson::Value const& b);
bool DoubleArraySignificantFigureEquals(quilljson::Value const& a, quilljson::Value const& b);

bool KMCAL_G2XYZcntEquals(quilljson::Value const& a, quilljson::Value const& b);
bool KMCAL_G2RGBemsEquals(quilljson::Value const& a, quilljson::Value const& b);
bool R2XC_RefParamEquals(quilljson::Value const& a, quilljson::Value const& b);
bool R2XC_RefToneParamEquals(quilljson::Value const& a, quilljson::Value const& b);
bool R2XC_ValueRGBEquals(quilljson::Value const& a, quilljson::Value const& b);
bool R2XC_ValueRGBKEquals(quilljson::Value const& a, quilljson::Value const& b);
bool KMCAL_CALDATA_USERPROOFEquals(quilljson::Value const& a, quilljson::Value const& b);
bool KMCAL_MEASDATA_USERPROOFEquals(quilljson::Value const& a, quilljson::Value const& b);
bool KMCAL_CALDATA_CORRECTEquals(quilljson::Value const& a, quilljson::Value const& b);
bool KMCAL_MEASDATA_CORRECT_GRAYEquals(quilljson::Value const& a, quilljson::Value const& b);
bool MDCSSG2CalibrationDataEquals(quilljson::Value const& a, quilljson::Value const& b);
bool MDCSSG2CorrectionDataEquals(quilljson::Value const& a, quilljson::Value const& b);
bool MDCSSG2LuminanceLevelCorrectionParamsEquals(quilljson::Value const& a, quilljson::Value const& b);
// "toneCorrection" is an array of seven R2XC_ValueRGB objects: compared pair
// by pair; arrays of different length differ.
bool MDIFSv3CorrelationDataEquals(quilljson::Value const& a, quilljson::Value const& b);
bool MDCSSG2CorrelationDataExEquals(quilljson::Value const& a, quilljson::Value const& b);

} // namespace tovel
