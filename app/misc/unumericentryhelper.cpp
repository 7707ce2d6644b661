#include "app/misc/unumericentryhelper.h"

#include <map>
#include <memory>
#include <vector>

#include "app/misc/unumericentrytext.h"

namespace {

constexpr std::uint32_t cSubframesBit = 0x40000000;
constexpr std::uint32_t cOptionalBit = 0x80000000;

struct Registry {
    std::map<std::uint32_t, CNumericEntryHelper*> byKey;
    std::vector<std::unique_ptr<CNumericEntryHelper>> owned;
    std::uint32_t changes = 1;
    Time_SMPTE (*captureTime)() = nullptr;
};

class CNoFormatHelper : public CNumericEntryHelper {
  public:
    void CalculateHiliteSelection(TNumericEntryText*, const VPoint&) override {}
    void DoTyping(TNumericEntryText*, char) override {}
    void IntegerValueToString(std::int64_t value, std::string& text) override {
        text = std::to_string(value);
    }
    void FloatValueToString(double value, std::string& text) override {
        text = std::to_string(value);
    }
    bool Validate(TNumericEntryText*) override { return true; }
    bool HiliteNextBlock(TNumericEntryText*, EBlockHiliteDirection, bool) override { return true; }
    void AddValueToCurrentSelection(TNumericEntryText*, std::int64_t) override {}
    void ResetCurrentText(TNumericEntryText*) override {}
    void DoNumericEntryMath(TNumericEntryText*, const std::string&, const std::string&, bool,
                            std::string&) override {}
    void PrepareTextForEditing(TNumericEntryText*) override {}
    void GetInitialSelection(TNumericEntryText*) override {}
    void GetCallbackData(TNumericEntryText*, CNumericEntryData* data) override {
        *data = CNumericEntryData();
    }
    bool SupportsCalculation(ENumericEntryCalculationType) override { return false; }
    bool HasShape(TNumericEntryText*, const std::string&) override { return true; }
};

Registry& GetRegistry() {
    static Registry registry;
    return registry;
}

} // namespace

CNumericEntryHelper::~CNumericEntryHelper() = default;

void CNumericEntryHelper::FormatChanged(TNumericEntryText*) {}

void CNumericEntryHelper::CaptureTime(TNumericEntryText*) {}

void CNumericEntryHelper::SessionChanged(TNumericEntryText*) {}

void CNumericEntryHelper::SetDefaultValueInt(std::int32_t value) { mDefaultValue = value; }

void CNumericEntryHelper::Tap(TNumericEntryText*, std::int32_t) {}

void CNumericEntryHelper::EditingEnded(TNumericEntryText*) {}

void CNumericEntryHelper::WillDraw(TNumericEntryText*) {}

bool CNumericEntryHelper::SampleToString(TNumericEntryText*, std::int64_t, std::string&) {
    return false;
}

bool CNumericEntryHelper::TextToSamples(TNumericEntryText*, std::int64_t&) { return false; }

bool CNumericEntryHelper::ParsePaste(TNumericEntryText*, const std::string&, std::string&,
                                     std::string& report) {
    report = "this field takes no pasted text";
    return false;
}

bool CNumericEntryHelper::IsSelection(TNumericEntryText*, short start, short end) {
    return start >= 0 && start <= end;
}

bool CNumericEntryHelper::TypesSigns() const { return false; }

void CNumericEntryHelper::GetValueRange(TNumericEntryText* field, double& minimum,
                                        double& maximum) {
    minimum = field->GetMinFloatValue();
    maximum = field->GetMaxFloatValue();
}

std::uint32_t CNumericEntryHelper::MakeHelperMapKey(ENumericEntryFormat format, bool useSubframes,
                                                    bool optional) {
    const auto key = static_cast<std::uint32_t>(format);
    switch (format) {
    case kNumericEntry_MinutesSeconds:
        return optional ? key | cOptionalBit : key;
    case kNumericEntry_TimeCode:
        if (optional)
            return key | cOptionalBit;
        return useSubframes ? key | cSubframesBit : key;
    case kNumericEntry_FeetFrames:
        return useSubframes ? key | cSubframesBit : key;
    default:
        return key;
    }
}

void CNumericEntryHelper::RegisterHelperForFormat(ENumericEntryFormat format, bool useSubframes,
                                                  bool optional, CNumericEntryHelper* helper) {
    if (helper == nullptr)
        return;
    Registry& registry = GetRegistry();
    bool isOwned = false;
    for (const auto& owned : registry.owned)
        isOwned = isOwned || owned.get() == helper;
    if (!isOwned)
        registry.owned.emplace_back(helper);
    registry.byKey[MakeHelperMapKey(format, useSubframes, optional)] = helper;
    ++registry.changes;
}

CNumericEntryHelper* CNumericEntryHelper::GetHelperForFormat(ENumericEntryFormat format,
                                                             bool useSubframes, bool optional) {
    const Registry& registry = GetRegistry();
    const auto found = registry.byKey.find(MakeHelperMapKey(format, useSubframes, optional));
    return found == registry.byKey.end() ? nullptr : found->second;
}

CNumericEntryHelper* CNumericEntryHelper::GetHelperOfNoFormat() {
    static CNoFormatHelper helper;
    return &helper;
}

std::uint32_t CNumericEntryHelper::GetRegistryChangeCount() { return GetRegistry().changes; }

void CNumericEntryHelper::RegisterCaptureTimeCallback(Time_SMPTE (*callback)()) {
    GetRegistry().captureTime = callback;
}

Time_SMPTE (*CNumericEntryHelper::GetCaptureTimeCallback())() { return GetRegistry().captureTime; }
