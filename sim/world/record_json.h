// JSON forms of the device records. The correlation records travel in the
// product's own wire form (its converters are used, so scenarios and the
// journal read like the product's requests); readers are lenient: a missing
// member reads as zero.
#pragma once

#include <cstddef>

#include "devices/records.h"
#include "quilljson/value.h"

namespace sim {

quilljson::Value toJson(colour const& value);
quilljson::Value toJson(CSSG2_Date const& value);
quilljson::Value toJson(MDParameterDescription const& value);
quilljson::Value toJson(R2XC_RefParam const& value);
quilljson::Value toJson(R2XC_RefToneParam const& value);
quilljson::Value toJson(R2XC_ValueRGBK const& value);
quilljson::Value toJson(R2XC_ToneCorrectionParam const& value);
quilljson::Value toJson(KMCAL_CALDATA_USERPROOF const& value);
quilljson::Value toJson(KMCAL_MEASDATA_USERPROOF const& value);
quilljson::Value toJson(KMCAL_CALDATA_CORRECT const& value);
quilljson::Value toJson(KMCAL_MEASDATA_CORRECT_GRAY const& value);
quilljson::Value toJson(MDCSSG2CalibrationData const& value);
quilljson::Value toJson(MDCSSG2CorrectionData const& value);
quilljson::Value toJson(MDIFSv3CorrelationData const& value);
quilljson::Value toJson(MDCSSG2CorrelationDataEx const& value);
quilljson::Value toJson(double const* values, size_t count);

MDIFSv3CorrelationData ifsv3FromJson(quilljson::Value const& json);
MDCSSG2CorrelationDataEx cssg2FromJson(quilljson::Value const& json);

} // namespace sim
