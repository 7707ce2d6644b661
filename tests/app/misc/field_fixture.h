// A numeric field under test: typed into through the application, as a user does.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"

/// The end of the chain, so that keys which a field passes on are seen to arrive.
class KeyCounter : public TApplication {
  public:
    void DoKeyEvent(TToolboxEvent* event) override {
        mPassed.push_back(event->mCharacterCode);
        TApplication::DoKeyEvent(event);
    }
    std::vector<std::uint32_t> mPassed;
};

/// Someone who had the keyboard before the field.
class OtherView : public TView {
  public:
    bool WantsToBeTarget() override { return true; }
};

class FieldTest : public testing::Test {
  protected:
    FieldTest() {
        QLX_Init::Init();
        Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
        Time_Session::SetFrameOffset(0);
        Time_Session::SetSampleRate(48000);
        mApplication = new KeyCounter;
        mRoot = new TView;
        mRoot->IView(nullptr, VRect(0, 0, 400, 300));
        mRoot->IEventHandler(mApplication);
        mOther = new OtherView;
        mOther->IView(mRoot, VRect(0, 200, 100, 220));
        mField = new TNumericEntryText;
        mField->IView(mRoot, VRect(10, 10, 160, 34));
        mField->SetCallback(&FieldTest::OnClient, this);
    }
    ~FieldTest() override {
        if (mRoot != nullptr)
            mRoot->Free();
        mApplication->Free();
        Time_SessionMeterMap() = Time_MeterMap();
    }

    void Use(ENumericEntryFormat format, bool subframes = false, bool optional = false) {
        mField->SetLocalFormat(format, subframes, optional);
    }
    /// Gives the field a text and the keyboard, with the format's first selection.
    void Edit(const std::string& text) {
        EXPECT_TRUE(mField->SetText(text, /*redraw*/ true, /*asBackup*/ true)) << text;
        EXPECT_TRUE(mField->BecomeTarget());
    }
    /// Sends a key down the target's chain; answers whether somebody used it.
    bool Key(std::uint32_t code, std::uint32_t modifiers = 0) {
        TToolboxEvent event;
        event.IToolboxEvent(mField, QLX_MakeKeyEvent(8, code, code, modifiers));
        if (code == kDAW_Key_Escape)
            event.mKeyState = kKeyState_RealEscape;
        return mApplication->HandleKeyDownEvent(&event);
    }
    void Type(const std::string& keys) {
        for (const char key : keys)
            Key(static_cast<unsigned char>(key));
    }
    std::string Text() const { return mField->GetText(); }
    /// "start..end" of the selection.
    std::string Selection() const {
        short start = 0;
        short end = 0;
        mField->GetSelection(start, end);
        return std::to_string(start) + ".." + std::to_string(end);
    }

    static void OnClient(void* context, CNumericEntryCallbackInfo& info, int key) {
        auto* test = static_cast<FieldTest*>(context);
        test->mKeys.push_back(key);
        test->mData = info.GetData();
        test->mLastMilliSeconds = info.GetMilliSeconds();
        if (test->mOnClient)
            test->mOnClient(info);
    }

    KeyCounter* mApplication = nullptr;
    TView* mRoot = nullptr;
    OtherView* mOther = nullptr;
    TNumericEntryText* mField = nullptr;
    std::vector<int> mKeys; // of the client's calls
    CNumericEntryData mData;
    std::int64_t mLastMilliSeconds = 0;
    std::function<void(CNumericEntryCallbackInfo&)> mOnClient;
};
