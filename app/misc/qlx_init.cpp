#include "app/misc/qlx_init.h"

#include "app/misc/udurationentryhelper.h"
#include "app/misc/ufeetframesentryhelper.h"
#include "app/misc/uintegerentryhelpers.h"
#include "app/misc/uminsecsentryhelper.h"
#include "app/misc/utimecodeentryhelper.h"
#include "app/misc/uvolumeentryhelper.h"
#include "qlx/foundation/uclassdesc.h"

namespace {

// Only where the host has not been first.
void Register(ENumericEntryFormat format, bool useSubframes, bool optional,
              CNumericEntryHelper* helper) {
    if (CNumericEntryHelper::GetHelperForFormat(format, useSubframes, optional) != nullptr) {
        delete helper;
        return;
    }
    CNumericEntryHelper::RegisterHelperForFormat(format, useSubframes, optional, helper);
}

void RegisterNumericEntryHelpers() {
    Register(kNumericEntry_BarsBeats, false, false, new CBarsBeatsEntryHelper);
    Register(kNumericEntry_MinutesSeconds, false, false, new CMinutesAndSecondsEntryHelper);
    Register(kNumericEntry_MinutesSeconds, false, true, new COptionalMinsSecsEntryHelper);
    Register(kNumericEntry_TimeCode, false, false, new CTimeCodeEntryHelper);
    Register(kNumericEntry_TimeCode, true, false, new CTimeCodeWSubsEntryHelper);
    Register(kNumericEntry_TimeCode, false, true, new COptionalTimeCodeEntryHelper);
    Register(kNumericEntry_FeetFrames, false, false, new CFeetAndFramesEntryHelper);
    Register(kNumericEntry_FeetFrames, true, false, new CFeetFramesWSubsEntryHelper);
    Register(kNumericEntry_Samples, false, false, new CDecimalSamplesEntryHelper);
    Register(kNumericEntry_Integer, false, false, new CIntegerValueEntryHelper);
    Register(kNumericEntry_Volume, false, false, new CVolumeEntryHelper);
    Register(kNumericEntry_SignedInteger, false, false, new CSignedIntegerValueEntryHelper);
    Register(kNumericEntry_MeterDenominator, false, false, new CMeterDenominatorEntryHelper);
    Register(kNumericEntry_Duration, false, false, new CDurationEntryHelper);
    Register(kNumericEntry_PlusValue, false, false, new CPlusValueEntryHelper);
}

} // namespace

void QLX_Init::Init() {
    static bool done = false;
    if (done)
        return;
    done = true;
    ClassDesc::InitUClassDesc();
    RegisterNumericEntryHelpers();
}
