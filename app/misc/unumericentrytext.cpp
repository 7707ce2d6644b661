// TNumericEntryText: set-up, formats, the value and the target. Keys and drawing have sources of
// their own.
#include "app/misc/unumericentrytext.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/misc/unumericentryhelper.h"
#include "basekit/cmn/cmn_string.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_comingtarget.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/udescribedpicture.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TNumericEntryText, TControl)
QLX_DEFINE_CLASS(TNoMathEntryModeText, TNumericEntryText)
QLX_DEFINE_CLASS(TGANumericEntryText, TNumericEntryText)

namespace {

// What fields without a format of their own show.
struct DefaultFormats {
    ETimeFormat main = kTimeFormat_BarsBeats;
    ETimeFormat secondary = kTimeFormat_BarsBeats;
    ETimeFormat override = kTimeFormat_BarsBeats;
    bool overrides = false;
    bool subframes = false;
    std::uint32_t changes = 1;
};

constinit DefaultFormats sDefaults;

template <class Value>
void ChangeDefault(Value& field, Value value) {
    if (field == value)
        return;
    field = value;
    ++sDefaults.changes;
}

std::int64_t TruncateToInteger(double value) {
    constexpr double limit = 9223372036854775807.0;
    if (std::isnan(value))
        return 0;
    if (value >= limit)
        return std::numeric_limits<std::int64_t>::max();
    if (value <= -limit)
        return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

} // namespace

// ---- Life ----

TNumericEntryText::TNumericEntryText()
    : mMinInteger(std::numeric_limits<std::int64_t>::min()),
      mMaxInteger(std::numeric_limits<std::int64_t>::max()),
      mMinFloat(static_cast<double>(mMinInteger)), mMaxFloat(static_cast<double>(mMaxInteger)),
      mMostLength(std::numeric_limits<std::int64_t>::max()) {
    SetControlFont(kFont_Counter, kFontSelect_AsRegistered);
    InitializeAlternateColors();
}

TNumericEntryText::~TNumericEntryText() = default;

void TNumericEntryText::Free() {
    mGone = true;
    TControl::Free();
}

// The bytes of a field cannot be copied: a new field of the class takes over what was set.
TObject* TNumericEntryText::Clone() {
    auto* copy = static_cast<TNumericEntryText*>(
        static_cast<TObject*>(ClassDesc::NewByClassID(GetClassID())));
    if (copy == nullptr)
        return nullptr;
    copy->IView(nullptr, GetFrame());
    copy->SetIdentifier(GetIdentifier());
    copy->SetAccessibleName(std::string());
    copy->mText = mText;
    copy->mBackup = mText;
    copy->mHasLocalFormat = mHasLocalFormat;
    copy->mLocalFormat = mLocalFormat;
    copy->mUseSubframes = mUseSubframes;
    copy->mOptional = mOptional;
    copy->mHasLocalTimeCodeFormat = mHasLocalTimeCodeFormat;
    copy->mLocalTimeCodeFormat = mLocalTimeCodeFormat;
    copy->mEditable = mEditable;
    copy->mPassEscapeKey = mPassEscapeKey;
    copy->mPassReturnKey = mPassReturnKey;
    copy->mPassTabKey = mPassTabKey;
    copy->mHandlesTab = mHandlesTab;
    copy->mUpdateWhenResigning = mUpdateWhenResigning;
    copy->mUpdateWhenTabbing = mUpdateWhenTabbing;
    copy->mUpdateWhenKeyPressed = mUpdateWhenKeyPressed;
    copy->mUpdateAfterArrow = mUpdateAfterArrow;
    copy->mUpdateAfterTapEntry = mUpdateAfterTapEntry;
    copy->mUpdateConcurrent = mUpdateConcurrent;
    copy->mNormalArrowMode = mNormalArrowMode;
    copy->mResignOnUnhandled = mResignOnUnhandled;
    copy->mResignAfterTracking = mResignAfterTracking;
    copy->mAllowPreSession = mAllowPreSession;
    copy->mIsSecondary = mIsSecondary;
    copy->mIsDuration = mOldIsDuration;
    copy->mOldIsDuration = mOldIsDuration;
    copy->mAcceptsWildcard = mAcceptsWildcard;
    copy->mVolatileUpdate = mVolatileUpdate;
    copy->mTextCompositing = mTextCompositing;
    copy->mUsingFixedSet = mUsingFixedSet;
    copy->mRightToLeft = mRightToLeft;
    copy->mUseAlternateColors = mUseAlternateColors;
    copy->mHasBounds = mHasBounds;
    copy->mMinInteger = mMinInteger;
    copy->mMaxInteger = mMaxInteger;
    copy->mMinFloat = mMinFloat;
    copy->mMaxFloat = mMaxFloat;
    copy->mLeastLength = mLeastLength;
    copy->mMostLength = mMostLength;
    copy->mFixedSet = mFixedSet;
    copy->mAlternateHilite = mAlternateHilite;
    copy->mAlternateHiliteText = mAlternateHiliteText;
    copy->mPrefix = mPrefix;
    copy->mSuffix = mSuffix;
    copy->mBackgroundName = mBackgroundName;
    copy->mBackgroundImage = mBackgroundImage;
    copy->mJustification = mJustification;
    copy->mHelper = mHelper;
    copy->mFormat = mFormat;
    copy->mTimeCodeFormat = mTimeCodeFormat;
    copy->mSeenRegistry = mSeenRegistry;
    copy->mSeenSession = mSeenSession;
    copy->mSeenDefaults = mSeenDefaults;
    return copy;
}

// ---- Formats ----

bool TNumericEntryText::InitializeNumericEntryText(ETimeFormat format) {
    const ENumericEntryFormat entryFormat = TimeFormatToNumericEntryFormat(format);
    SetLocalFormat(entryFormat, mUseSubframes, mOptional);
    const bool registered =
        CNumericEntryHelper::GetHelperForFormat(entryFormat, mUseSubframes, mOptional) != nullptr;
    if (!registered)
        return false;
    GetHelper()->ResetCurrentText(this);
    mBackup = mText;
    CollapseSelection();
    return true;
}

void TNumericEntryText::SetLocalFormat(ENumericEntryFormat format, bool useSubframes,
                                       bool optional) {
    SetNumericEntryFormatOverride(format, useSubframes, optional, /*useTimeCodeFormat*/ false,
                                  mLocalTimeCodeFormat);
}

void TNumericEntryText::SetNumericEntryFormatOverride(ENumericEntryFormat format, bool useSubframes,
                                                      bool optional, bool useTimeCodeFormat,
                                                      ETimeCodeFormat timeCodeFormat) {
    mHasLocalFormat = true;
    mLocalFormat = format;
    mUseSubframes = useSubframes;
    mOptional = optional;
    mHasLocalTimeCodeFormat = useTimeCodeFormat;
    mLocalTimeCodeFormat = Time_GetFormatInfo(timeCodeFormat).format;
    mSeenDefaults = 0;
    SyncFormat();
}

void TNumericEntryText::ClearLocalFormat() {
    mHasLocalFormat = false;
    mHasLocalTimeCodeFormat = false;
    mSeenDefaults = 0;
    SyncFormat();
}

ENumericEntryFormat TNumericEntryText::GetLocalFormat() {
    SyncFormat();
    return mFormat;
}

ETimeCodeFormat TNumericEntryText::GetLocalTimeCodeFormat() {
    SyncFormat();
    return mTimeCodeFormat;
}

void TNumericEntryText::SetIsSecondaryCounter(bool secondary) {
    mIsSecondary = secondary;
    mSeenDefaults = 0;
    SyncFormat();
}

void TNumericEntryText::SetIsDurationText(bool duration) {
    mIsDuration = duration;
    mOldIsDuration = duration;
}

void TNumericEntryText::LookUpFormat(ENumericEntryFormat& format, bool& subframes) const {
    format = mLocalFormat;
    subframes = mUseSubframes;
    if (mHasLocalFormat)
        return;
    const ETimeFormat followed = mIsSecondary          ? sDefaults.secondary
                                 : sDefaults.overrides ? sDefaults.override
                                                       : sDefaults.main;
    format = TimeFormatToNumericEntryFormat(followed);
    subframes = mUseSubframes || sDefaults.subframes;
}

CNumericEntryHelper* TNumericEntryText::GetHelper() {
    SyncFormat();
    return mHelper;
}

// Fields do not hear of changes of the session or of the process-wide formats: each asks for the
// three change counts whenever it is used, and follows then. An edit under way is kept as far as it
// was typed.
void TNumericEntryText::SyncFormat() {
    const std::uint32_t registry = CNumericEntryHelper::GetRegistryChangeCount();
    const std::uint32_t session =
        Time_Session::GetChangeCount() + Time_SessionMeterMap().GetChangeCount();
    const bool seenAll =
        registry == mSeenRegistry && session == mSeenSession && sDefaults.changes == mSeenDefaults;
    if (mSyncing || (seenAll && mHelper != nullptr))
        return;
    mSyncing = true;
    const bool sessionChanged = session != mSeenSession && mHelper != nullptr;
    mSeenRegistry = registry;
    mSeenSession = session;
    mSeenDefaults = sDefaults.changes;

    ENumericEntryFormat format = kNumericEntry_None;
    bool subframes = false;
    LookUpFormat(format, subframes);
    CNumericEntryHelper* helper =
        CNumericEntryHelper::GetHelperForFormat(format, subframes, mOptional);
    if (helper == nullptr)
        helper = CNumericEntryHelper::GetHelperOfNoFormat();
    const ETimeCodeFormat timeCodeFormat =
        mHasLocalTimeCodeFormat ? mLocalTimeCodeFormat : Time_Session::GetTimeCodeFormat();
    mFormat = format;
    mFormatUsesSubframes = subframes;
    if (mHelper == nullptr || helper != mHelper || timeCodeFormat != mTimeCodeFormat ||
        !mHelper->HasShape(this, mText))
        Convert(helper, timeCodeFormat);
    if (sessionChanged)
        mHelper->SessionChanged(this);
    mSyncing = false;
}

void TNumericEntryText::Convert(CNumericEntryHelper* helper, ETimeCodeFormat timeCodeFormat) {
    StopEditing();
    std::int64_t samples = 0;
    const bool wildcard = IsWildcard();
    const bool isTime = mHelper != nullptr && mHelper->HasShape(this, mText) &&
                        mHelper->TextToSamples(this, samples);
    const bool isNew = helper != mHelper;
    mHelper = helper;
    mTimeCodeFormat = timeCodeFormat;
    if (isNew)
        mHelper->FormatChanged(this);
    std::string text;
    std::string report;
    if (isTime && mHelper->SampleToString(this, samples, text))
        ChangeText(text);
    else if (!wildcard && !mHelper->HasShape(this, mText)) {
        // The format's own shape has changed (a meter with longer beats takes more digits of
        // ticks): the text is read once more as the value that it was.
        if (!isNew && mHelper->ParsePaste(this, mText, text, report))
            ChangeText(text);
        else
            mHelper->ResetCurrentText(this);
    }
    mBackup = mText;
    if (IsTarget() && mEditable)
        mHelper->GetInitialSelection(this);
    else
        CollapseSelection();
    ForceRedraw();
}

// An operand has no meaning of its own: with the arithmetic it goes.
void TNumericEntryText::StopEditing() {
    if (mArithmetic != kArithmetic_None) {
        EndArithmetic();
        ChangeText(mBackup);
    }
    mTypedCount = 0;
}

void TNumericEntryText::SetDefaultValueInt(std::int32_t value) {
    GetHelper()->SetDefaultValueInt(value);
}

void TNumericEntryText::SetDefaultTimeFormat(ETimeFormat format) {
    ChangeDefault(sDefaults.main, format);
}

ETimeFormat TNumericEntryText::GetDefaultTimeFormat() {
    return sDefaults.overrides ? sDefaults.override : sDefaults.main;
}

void TNumericEntryText::SetDefaultTimeFormatOverride(bool on, ETimeFormat format) {
    ChangeDefault(sDefaults.overrides, on);
    ChangeDefault(sDefaults.override, format);
}

void TNumericEntryText::SetSecondaryDefaultTimeFormat(ETimeFormat format) {
    ChangeDefault(sDefaults.secondary, format);
}

ETimeFormat TNumericEntryText::GetSecondaryDefaultTimeFormat() { return sDefaults.secondary; }

void TNumericEntryText::SetDefaultUseSubframes(bool use) {
    ChangeDefault(sDefaults.subframes, use);
}

void TNumericEntryText::RegisterHelperForFormat(ENumericEntryFormat format, bool useSubframes,
                                                bool optional, CNumericEntryHelper* helper) {
    CNumericEntryHelper::RegisterHelperForFormat(format, useSubframes, optional, helper);
}

void TNumericEntryText::RegisterCaptureTimeCallback(Time_SMPTE (*callback)()) {
    CNumericEntryHelper::RegisterCaptureTimeCallback(callback);
}

std::uint32_t TNumericEntryText::MakeHelperMapKey(ENumericEntryFormat format, bool useSubframes,
                                                  bool optional) {
    return CNumericEntryHelper::MakeHelperMapKey(format, useSubframes, optional);
}

ENumericEntryFormat TNumericEntryText::TimeFormatToNumericEntryFormat(ETimeFormat format) {
    switch (format) {
    case kTimeFormat_BarsBeats:
        return kNumericEntry_BarsBeats;
    case kTimeFormat_MinutesSeconds:
        return kNumericEntry_MinutesSeconds;
    case kTimeFormat_FeetFrames:
        return kNumericEntry_FeetFrames;
    case kTimeFormat_Samples:
        return kNumericEntry_Samples;
    case kTimeFormat_TimeCode:
        break;
    }
    return kNumericEntry_TimeCode;
}

ETimeFormat TNumericEntryText::NumericEntryFormatToTimeFormat(ENumericEntryFormat format) {
    switch (format) {
    case kNumericEntry_BarsBeats:
        return kTimeFormat_BarsBeats;
    case kNumericEntry_MinutesSeconds:
        return kTimeFormat_MinutesSeconds;
    case kNumericEntry_FeetFrames:
        return kTimeFormat_FeetFrames;
    case kNumericEntry_Samples:
        return kTimeFormat_Samples;
    default:
        return kTimeFormat_TimeCode;
    }
}

// ---- Bounds ----

void TNumericEntryText::SetMinMaxIntegerValues(std::int64_t minimum, std::int64_t maximum) {
    mMinInteger = std::min(minimum, maximum);
    mMaxInteger = std::max(minimum, maximum);
    mMinFloat = static_cast<double>(mMinInteger);
    mMaxFloat = static_cast<double>(mMaxInteger);
    mHasBounds = true;
}

void TNumericEntryText::SetMinMaxFloatValues(double minimum, double maximum) {
    mMinFloat = std::isnan(minimum) ? 0 : minimum;
    mMaxFloat = std::isnan(maximum) ? 0 : maximum;
    if (mMaxFloat < mMinFloat)
        std::swap(mMinFloat, mMaxFloat);
    mMinInteger = TruncateToInteger(mMinFloat);
    mMaxInteger = TruncateToInteger(mMaxFloat);
    mHasBounds = true;
}

void TNumericEntryText::SetResolutionRange(Time_TickLength least, Time_TickLength most) {
    mLeastLength = std::min(least, most);
    mMostLength = std::max(least, most);
}

bool TNumericEntryText::IsInFixedNumberSet(std::int64_t number) const {
    return mFixedSet.count(number) != 0;
}

std::int64_t TNumericEntryText::GetNextInFixedNumberSet(std::int64_t number) const {
    const auto next = mFixedSet.upper_bound(number);
    return next == mFixedSet.end() ? number : *next;
}

std::int64_t TNumericEntryText::GetPrevInFixedNumberSet(std::int64_t number) const {
    const auto here = mFixedSet.lower_bound(number);
    return here == mFixedSet.begin() ? number : *std::prev(here);
}

// ---- The value ----

bool TNumericEntryText::IsWildcard() const {
    return mAcceptsWildcard && mText == kNumericEntry_Wildcard;
}

// Helpers render a stored number without knowing the field, so in the session's time-code format; a
// field with a format of its own has the same length written in that.
bool TNumericEntryText::WriteOwnLength(std::int64_t samples, std::string& text) {
    if (mFormat != kNumericEntry_TimeCode || mTimeCodeFormat == Time_Session::GetTimeCodeFormat())
        return false;
    const bool wasDuration = std::exchange(mIsDuration, true);
    const bool written = mHelper->SampleToString(this, samples, text);
    mIsDuration = wasDuration;
    return written;
}

void TNumericEntryText::SetTextFromIntegerValue(std::int64_t value) {
    CNumericEntryHelper* const helper = GetHelper();
    std::string text;
    if (!WriteOwnLength(value, text))
        helper->IntegerValueToString(value, text);
    SetText(text, /*redraw*/ true, /*asBackup*/ true);
}

void TNumericEntryText::SetTextFromFloatValue(double value) {
    CNumericEntryHelper* const helper = GetHelper();
    std::string text;
    const double samples = std::floor(value * Time_Session::GetSampleRate() + 0.5);
    if (!WriteOwnLength(TruncateToInteger(samples), text))
        helper->FloatValueToString(value, text);
    SetText(text, /*redraw*/ true, /*asBackup*/ true);
}

bool TNumericEntryText::IsBeingEdited() const {
    return mArithmetic != kArithmetic_None || mTypedCount != 0;
}

void TNumericEntryText::SetTextFromSample(Time_Sample position, bool redraw) {
    CNumericEntryHelper* const helper = GetHelper();
    if (IsBeingEdited())
        return;
    std::string text;
    if (!helper->SampleToString(this, position.GetSamples(), text) || text == mText)
        return;
    if (redraw)
        ChangeText(text);
    else
        mText = text;
    mBackup = mText;
}

bool TNumericEntryText::SetText(const std::string& text, bool redraw, bool asBackup) {
    CNumericEntryHelper* const helper = GetHelper();
    const bool wildcard = mAcceptsWildcard && text == kNumericEntry_Wildcard;
    std::string normal = text;
    if (!wildcard && !helper->HasShape(this, text)) {
        std::string report;
        if (!helper->ParsePaste(this, text, normal, report))
            return false;
    }
    if (redraw)
        ChangeText(normal);
    else
        mText = normal;
    if (asBackup)
        mBackup = mText;
    // What a host sets is not typed: the next digit starts afresh, in a selection that fits.
    mTypedCount = 0;
    if (mSelectionStart != mSelectionEnd &&
        !helper->IsSelection(this, mSelectionStart, mSelectionEnd))
        helper->GetInitialSelection(this);
    return true;
}

void TNumericEntryText::ChangeText(const std::string& text) {
    if (text == mText)
        return;
    const bool sameLength = mText.size() == text.size();
    std::size_t first = 0;
    std::size_t last = text.size();
    if (sameLength) {
        while (text[first] == mText[first])
            ++first;
        while (text[last - 1] == mText[last - 1])
            --last;
    }
    InvalidateCharacters(first, last, /*all*/ !sameLength);
    mText = text; // keeps its memory, so that following a clock allocates nothing
    InvalidateCharacters(first, last, /*all*/ !sameLength);
    const auto length = static_cast<short>(std::min<std::size_t>(mText.size(), 0x7FFF));
    mSelectionStart = std::min(mSelectionStart, length);
    mSelectionEnd = std::min(mSelectionEnd, length);
    AccessibilityNotification(kAccessibility_TextChanged, nullptr);
}

void TNumericEntryText::GetData(CNumericEntryData* data) {
    if (data != nullptr)
        GetHelper()->GetCallbackData(this, data);
}

void TNumericEntryText::SetCallback(ClientCallback callback, void* context) {
    mCallback = callback;
    mCallbackContext = context;
}

void TNumericEntryText::SetMouseEnterExitCallback(MouseEnterExitCallback callback) {
    mMouseCallback = callback;
}

// ---- Selection ----

void TNumericEntryText::GetSelection(short& start, short& end) const {
    start = mSelectionStart;
    end = mSelectionEnd;
}

void TNumericEntryText::SetSelection(short start, short end) {
    const auto length = static_cast<short>(std::min<std::size_t>(mText.size(), 0x7FFF));
    const short heldStart = std::clamp(start, short{0}, length);
    const short heldEnd = std::clamp(end, heldStart, length);
    if (heldStart == mSelectionStart && heldEnd == mSelectionEnd)
        return;
    mSelectionStart = heldStart;
    mSelectionEnd = heldEnd;
    ForceRedraw();
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

void TNumericEntryText::CollapseSelection() { SetSelection(0, 0); }

bool TNumericEntryText::HiliteNextBlock(EBlockHiliteDirection direction, bool wrap) {
    return GetHelper()->HiliteNextBlock(this, direction, wrap);
}

void TNumericEntryText::AddValueToCurrentSelection(std::int64_t delta) {
    CNumericEntryHelper* const helper = GetHelper();
    if (IsWildcard())
        return;
    mTypedCount = 0; // the next digit starts afresh
    helper->AddValueToCurrentSelection(this, delta);
}

// ---- Editing ----

// Its mark stands beside the characters, which may not change with it.
void TNumericEntryText::SetArithmetic(EArithmeticMode mode) {
    if (std::exchange(mArithmetic, mode) != mode)
        ForceRedraw();
}

void TNumericEntryText::EndArithmetic() {
    SetArithmetic(kArithmetic_None);
    mIsDuration = mOldIsDuration;
}

bool TNumericEntryText::Validate() {
    CNumericEntryHelper* const helper = GetHelper();
    mIsDuration = mOldIsDuration;
    if (IsWildcard())
        return true;
    if (mArithmetic != kArithmetic_None) {
        std::string result = mText;
        helper->DoNumericEntryMath(this, mBackup, mText, mArithmetic == kArithmetic_Subtracting,
                                   result);
        ChangeText(result);
    }
    SetArithmetic(kArithmetic_None);
    return helper->Validate(this);
}

void TNumericEntryText::AbortEdit() {
    EndArithmetic();
    ChangeText(mBackup);
    mTypedCount = 0;
    GetHelper()->GetInitialSelection(this);
}

void TNumericEntryText::ClearChar() {
    CNumericEntryHelper* const helper = GetHelper();
    EndArithmetic();
    helper->ResetCurrentText(this);
    helper->GetInitialSelection(this);
    mTypedCount = 0;
}

void TNumericEntryText::UpdateText() {
    ForceRedraw();
    UpdateNow();
}

void TNumericEntryText::UpdateClient(short keyOrStep, bool command, bool shift, bool option,
                                     bool control, bool fromTracking, TrackPhase phase) {
    // Whoever hears of it may free the field: inside the scope it stays readable.
    const StDispatch dispatch;
    mNotified = mInKey;
    if (mUpdateConcurrent)
        UpdateNow();
    CNumericEntryData data;
    GetData(&data);
    CNumericEntryCallbackInfo info(this, data);
    info.mKeyOrStep = keyOrStep;
    info.mCommandKey = command;
    info.mShiftKey = shift;
    info.mOptionKey = option;
    info.mControlKey = control;
    info.mFromTracking = fromTracking;
    info.mTrackPhase = phase;
    AccessibilityNotification(kAccessibility_ValueChanged, nullptr);
    if (mCallback != nullptr && !mGone)
        mCallback(mCallbackContext, info, keyOrStep);
    const bool dragging = fromTracking && phase == kTrack_Continue;
    if (!mGone && !(fromTracking && phase == kTrack_Begin))
        NotifyChange(dragging ? kControlEvent_ValueChanging : kControlEvent_ValueChanged);
}

// ---- The target ----

namespace {

// Sits, disabled, on the handler that is to be the target again, and goes with it: so a handler
// that was freed meanwhile is never touched.
class TOldTargetMark : public TBehavior {
  public:
    TOldTargetMark() {
        SetEnabled(false);
        sMark = this;
    }
    ~TOldTargetMark() override {
        if (sMark == this)
            sMark = nullptr;
    }
    static TOldTargetMark* sMark;
};

TOldTargetMark* TOldTargetMark::sMark = nullptr;

void ForgetOldTarget() {
    TOldTargetMark* const mark = TOldTargetMark::sMark;
    if (mark == nullptr)
        return;
    if (TEventHandler* owner = mark->GetOwner())
        owner->RemoveBehavior(mark);
    mark->Free();
}

} // namespace

void TNumericEntryText::CheckOldTarget(TWindow* window) {
    if (gApplication == nullptr)
        return;
    TEventHandler* const target = gApplication->GetTarget();
    if (QLX_ObjectCast<TNumericEntryText>(target) != nullptr)
        return;
    ForgetOldTarget();
    const bool elsewhere = window != nullptr && target->GetWindow() != window;
    if (target == gApplication || elsewhere)
        return;
    target->AddBehavior(new TOldTargetMark);
}

void TNumericEntryText::RestoreOldTarget() {
    TOldTargetMark* const mark = TOldTargetMark::sMark;
    if (mark == nullptr)
        return;
    TEventHandler* const old = mark->GetOwner();
    ForgetOldTarget();
    if (old != nullptr)
        old->BecomeTarget();
}

bool TNumericEntryText::WantsToBeTarget() { return mEditable && TControl::WantsToBeTarget(); }

bool TNumericEntryText::BecomeTarget() { return mEditable && TControl::BecomeTarget(); }

void TNumericEntryText::BecameTarget() {
    const StDispatch dispatch;
    CNumericEntryHelper* const helper = GetHelper();
    EndArithmetic();
    mBackup = mText;
    mTypedCount = 0;
    mPendingInput.clear();
    mWheelRest = 0;
    helper->PrepareTextForEditing(this);
    helper->GetInitialSelection(this);
    TControl::BecameTarget();
}

// An unfinished edit is finished as Return would: pending arithmetic is carried out and the text
// takes its normal form, so what stays visible is a value.
void TNumericEntryText::ResignedTarget() {
    const StDispatch dispatch;
    if (!Validate()) {
        EndArithmetic();
        ChangeText(mBackup);
    }
    mBackup = mText;
    mTypedCount = 0;
    mPendingInput.clear();
    mComposition.clear();
    CollapseSelection();
    GetHelper()->EditingEnded(this);
    if (mUpdateWhenResigning && !mNotified)
        UpdateClient(0, false, false, false, false, /*fromTracking*/ false, kTrack_End);
    if (mGone)
        return;
    TControl::ResignedTarget();
    // Given up for nobody: whoever was the target before has it again.
    if (!mGone && gApplication != nullptr && gApplication->GetTarget() == gApplication &&
        QLX_GetComingTarget() == nullptr)
        RestoreOldTarget();
}

void TNumericEntryText::SetEnable(bool enable) {
    mEditable = enable;
    TControl::SetEnable(enable);
}

// ---- Accessibility ----

void TNumericEntryText::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "spinbutton";
    info.mValue = GetValueText();
}

std::string TNumericEntryText::GetValueText() const { return mPrefix + mText + mSuffix; }

bool TNumericEntryText::GetSelectedForAccessibility(std::string& text) {
    if (mSelectionStart == mSelectionEnd)
        return false;
    text = mText.substr(static_cast<std::size_t>(mSelectionStart),
                        static_cast<std::size_t>(mSelectionEnd - mSelectionStart));
    return true;
}

void TNumericEntryText::ReadAccessibility(std::string& spoken) {
    spoken = mPrefix;
    if (mArithmetic != kArithmetic_None)
        spoken += mBackup + (mArithmetic == kArithmetic_Adding ? " + " : " - ");
    spoken += mText + mSuffix;
}

bool TNumericEntryText::GetRangeForAccessibility(double& minimum, double& maximum, double& value) {
    CNumericEntryData data;
    GetData(&data);
    GetHelper()->GetValueRange(this, minimum, maximum);
    value = data.mType == kEntryType_Level ? data.mFloatValue : static_cast<double>(data.mValue);
    return !data.mIsEmpty && !data.mIsWildcard;
}

bool TNumericEntryText::SetRangeForAccessibility(double value) {
    if (!mEditable || !std::isfinite(value))
        return false;
    const StDispatch dispatch;
    std::string text;
    if (mFormat == kNumericEntry_Volume)
        GetHelper()->FloatValueToString(value, text);
    else if (!GetHelper()->SampleToString(this, TruncateToInteger(value), text))
        GetHelper()->IntegerValueToString(TruncateToInteger(value), text);
    EndArithmetic();
    if (!SetText(text, /*redraw*/ true, /*asBackup*/ false) || !Validate()) {
        ChangeText(mBackup);
        return false;
    }
    mBackup = mText;
    UpdateClient(0, false, false, false, false, /*fromTracking*/ false, kTrack_End);
    return true;
}

// ---- Descriptions ----

void TNumericEntryText::ReadProperties(QLX_RawPropertyContainer* container,
                                       const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    mEditable = IsEnabled();
    std::string theme = GetControlTheme();
    if (container->GetStringProperty("ControlTheme", theme))
        SetControlTheme(theme, /*redraw*/ false);
    if (container->GetStringProperty("Background_Image", mBackgroundName))
        ReadBackgroundImage(container, memento);
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    const bool hasMinimum = container->GetInt32Property("MinValue", minimum);
    const bool hasMaximum = container->GetInt32Property("MaxValue", maximum);
    if (hasMinimum || hasMaximum)
        SetMinMaxIntegerValues(hasMinimum ? minimum : mMinInteger,
                               hasMaximum ? maximum : mMaxInteger);
    if (container->GetBoolProperty("IsDurationText", mIsDuration))
        mOldIsDuration = mIsDuration;
    container->GetBoolProperty("OldIsDurationText", mOldIsDuration);
    const struct {
        const char* name;
        bool& flag;
    } flags[] = {{"PassEscapeKeyToSupervisor", mPassEscapeKey},
                 {"PassReturnKeyToSupervisor", mPassReturnKey},
                 {"PassTabKeyToSupervisor", mPassTabKey},
                 {"UpdateClientWhenResigningTarget", mUpdateWhenResigning},
                 {"UpdateClientWhenTabbing", mUpdateWhenTabbing},
                 {"AllowPreSessionTimeCode", mAllowPreSession},
                 {"IsUsingFixedNumberSet", mUsingFixedSet},
                 {"UpdateClientWhenKeyPressed", mUpdateWhenKeyPressed},
                 {"ResignedTargetOnUnhandledEvent", mResignOnUnhandled},
                 {"ResignTargetAfterTracking", mResignAfterTracking},
                 {"UpdateClientAfterArrow", mUpdateAfterArrow},
                 {"UpdateClientAfterTapEntry", mUpdateAfterTapEntry},
                 {"UpdateClientConcurrentWithView", mUpdateConcurrent},
                 {"NormalArrowMode", mNormalArrowMode},
                 {"TextCompositing", mTextCompositing},
                 {"UseVolatileUpdate", mVolatileUpdate}};
    for (const auto& entry : flags)
        container->GetBoolProperty(entry.name, entry.flag);
    ReadText(container, memento, "PrefixText", mPrefix);
    ReadText(container, memento, "SuffixText", mSuffix);
    std::int32_t format = 0;
    if (container->GetInt32Property("FormatOverride", format)) {
        bool subframes = false;
        container->GetBoolProperty("FormatOverrideUseSubframes", subframes);
        SetLocalFormat(static_cast<ENumericEntryFormat>(format), subframes, mOptional);
    }
}

void TNumericEntryText::ReadBackgroundImage(QLX_RawPropertyContainer* container,
                                            const MementoPtr& memento) {
    // Where it cannot be read the plain field does as well.
    mBackgroundImage = QLX_ReadDescribedPicture(container, memento, mBackgroundName);
}

// ---- Variants ----

TNoMathEntryModeText::TNoMathEntryModeText() = default;

bool TNoMathEntryModeText::AllowsArithmetic() const { return false; }

bool TNoMathEntryModeText::AllowsCapture() const { return false; }

bool TNoMathEntryModeText::AllowsTap() const { return false; }

TGANumericEntryText::TGANumericEntryText() = default;

void TGANumericEntryText::SetIsEditable(bool editable) {
    if (!editable && IsTarget())
        ResignTarget();
    mEditable = editable;
}
