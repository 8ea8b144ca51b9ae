// JSON forms of dates and of the device libraries' records, and the lenient
// readings of numbers that every record reader and endpoint shares.
//
// Writers build a fresh value and never round. Readers never fail: a missing
// member reads as null, and null (or any unusable kind) reads as zero.
//
// Two record orders differ from their JSON on purpose and are mapped by
// position: KMCAL_MEASDATA_USERPROOF stores black before white in both runs,
// and the two nine-pair records store the run of first members before the run
// of second members while their JSON is an array of nine pair objects.
//
// Depends on quilljson, tvl and the device headers only: the simulator links it.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "devices/records.h"
#include "quilljson/value.h"
#include "tvl/date_time.h"

namespace tovel {

// A device record filled with zero bytes, padding included.
template <typename T> T Zeroed() {
    T v;
    std::memset(static_cast<void*>(&v), 0, sizeof v);
    return v;
}

// ---- dates ----

// {"year","month","day","hour","minute"} always; "second" when withSecond,
// "msec" when withMsec, "dateString" (DateTime::toString) when withDateString.
quilljson::Value ToJson(DateTime const& dt, bool withDateString, bool withSecond, bool withMsec);
// A string is read with DateTime::fromString; anything else by its members
// "year" to "second" (JsonToInt32 each, msec always 0).
DateTime DateTimeFromJson(quilljson::Value const& value);

// The device date record and DateTime (seconds and milliseconds zero; the
// other direction narrows each field to the record's width).
DateTime DateTimeFromCSSG2Date(CSSG2_Date const& date);
CSSG2_Date CSSG2DateFromDateTime(DateTime const& dt);

// ---- lenient readings ----

// Boolean 0.0/1.0, integer converted, real itself, a string that is wholly a
// decimal number; 0.0 otherwise.
double JsonToDouble(quilljson::Value const& value);
// Boolean 0/1; an integer below 65536 (narrowed); a real rounded half away
// from zero and kept within 0..65535; a string by JsonToInt32 kept within
// 0..65535; 0 otherwise.
uint16_t JsonToUInt16(quilljson::Value const& value);
// An identifier: boolean 0/1; an integer itself (its two's-complement bits);
// a real rounded half away from zero, 0 when negative or above 2^63; a string
// read by strtoll with base 0 when wholly consumed (in range), else 0; 0 for
// other kinds.
uint64_t JsonToUInt64(quilljson::Value const& value);
// An identifier read by truncation: boolean 0/1; a negative integer 0, other
// integers themselves; a real truncated when within 0 .. 2^64, else 0; a
// string that is wholly a number read as that real; 0 for other kinds.
uint64_t JsonToUInt64Truncating(quilljson::Value const& value);
// A signed number read by truncation: boolean 0/1; an integer itself; a real
// truncated when within the signed 64-bit range, else 0; a string that is
// wholly a number read as that real; 0 for other kinds.
int64_t JsonToInt64Truncating(quilljson::Value const& value);

// ---- measured colours ----

// The members of c named by the letters of components, each under its letter
// as key: X Y Z x y L a b C h T R G B M K ("XYZ" gives {"X","Y","Z"}).
// Other characters are ignored.
quilljson::Value ToJson(colour const& c, std::string const& components);

// ---- arrays ----

quilljson::Value ToJson(double const* values, unsigned long count);
// A 3x3 matrix as three rows of three numbers.
quilljson::Value ToJson(double const (*matrix)[3]);
// Fills at most count elements from a JSON array; elements past the array's
// end are left as they are; a non-array fills nothing.
void ApplyFromJson(quilljson::Value const& json, double* out, unsigned long count);
// Each row of a 3x3 matrix from the rows of a JSON array, as above.
void ApplyFromJson(quilljson::Value const& json, double (*out)[3][3]);

// ---- first-generation correlation records ----

quilljson::Value ToJson(R2XC_Value const& v);
quilljson::Value ToJson(R2XC_ValueRGB const& v);
quilljson::Value ToJson(R2XC_ValueRGBK const& v); // also R2XC_NormalizedMeasurementValue
quilljson::Value ToJson(R2XC_RefParam const& v);
quilljson::Value ToJson(R2XC_RefToneParam const& v);
quilljson::Value ToJson(R2XC_ToneCorrectionParam const& v); // an array of seven
quilljson::Value ToJson(MDIFSv3CorrelationData const& v);

R2XC_Value R2XC_ValueFromJson(quilljson::Value const& json);
R2XC_ValueRGB R2XC_ValueRGBFromJson(quilljson::Value const& json);
R2XC_ValueRGBK R2XC_ValueRGBKFromJson(quilljson::Value const& json);
R2XC_RefParam R2XC_RefParamFromJson(quilljson::Value const& json);
R2XC_RefToneParam R2XC_RefToneParamFromJson(quilljson::Value const& json);
R2XC_ToneCorrectionParam R2XC_ToneCorrectionParamFromJson(quilljson::Value const& json);
MDIFSv3CorrelationData MDIFSv3CorrelationDataFromJson(quilljson::Value const& json);

// ---- second-generation correlation records ----

quilljson::Value ToJson(KMCAL_G2XYZcnt const& v);
quilljson::Value ToJson(KMCAL_StdXYZ const& v);
quilljson::Value ToJson(KMCAL_G2RGBems const& v);
quilljson::Value ToJson(KMCAL_CALDATA_USERPROOF const& v);
quilljson::Value ToJson(KMCAL_MEASDATA_USERPROOF const& v);
quilljson::Value ToJson(KMCAL_CALDATA_CORRECT const& v);       // an array of nine
quilljson::Value ToJson(KMCAL_MEASDATA_CORRECT_GRAY const& v); // an array of nine
quilljson::Value ToJson(MDCSSG2CalibrationData const& v);
quilljson::Value ToJson(MDCSSG2CorrectionData const& v);
quilljson::Value ToJson(MDCSSG2LuminanceLevelCorrectionParams const& v);
quilljson::Value ToJson(MDCSSG2CorrelationDataEx const& v);

KMCAL_G2XYZcnt KMCAL_G2XYZcntFromJson(quilljson::Value const& json);
KMCAL_StdXYZ KMCAL_StdXYZFromJson(quilljson::Value const& json);
KMCAL_G2RGBems KMCAL_G2RGBemsFromJson(quilljson::Value const& json);
KMCAL_CALDATA_USERPROOF KMCAL_CALDATA_USERPROOFFromJson(quilljson::Value const& json);
KMCAL_MEASDATA_USERPROOF KMCAL_MEASDATA_USERPROOFFromJson(quilljson::Value const& json);
KMCAL_CALDATA_CORRECT KMCAL_CALDATA_CORRECTFromJson(quilljson::Value const& json);
KMCAL_MEASDATA_CORRECT_GRAY KMCAL_MEASDATA_CORRECT_GRAYFromJson(quilljson::Value const& json);
MDCSSG2CalibrationData MDCSSG2CalibrationDataFromJson(quilljson::Value const& json);
MDCSSG2CorrectionData MDCSSG2CorrectionDataFromJson(quilljson::Value const& json);
MDCSSG2LuminanceLevelCorrectionParams
MDCSSG2LuminanceLevelCorrectionParamsFromJson(quilljson::Value const& json);
MDCSSG2CorrelationDataEx MDCSSG2CorrelationDataExFromJson(quilljson::Value const& json);

} // namespace tovel
