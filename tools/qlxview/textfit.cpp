#include "textfit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "app/misc/unumericentrytext.h"
#include "qlx/imaging/qlx_glyphcoverage.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_textlayout.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/upopup.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindow.h"
#include "stage.h"

namespace {
using Rect = Cmn_Rect<int>;

/// Which calls of a recording a view made itself.
struct Span {
    TView* mView;
    std::size_t mBegin;
    std::size_t mEnd;
};

/// Notes how far the recording has come when its view begins or ends drawing itself.
class SpanAdorner : public TAdorner {
  public:
    SpanAdorner(std::vector<Span>& spans, const QLX_Recording* const& recording, bool begins)
        : mSpans(spans), mRecording(recording), mBegins(begins) {
        SetOrder(begins ? INT32_MIN : INT32_MAX);
    }
    void Draw(TView* view, const VRect&) override {
        if (!mRecording)
            return;
        const std::size_t count = mRecording->GetCalls().size();
        if (mBegins)
            mSpans.push_back({view, count, count});
        else if (!mSpans.empty() && mSpans.back().mView == view)
            mSpans.back().mEnd = count;
    }

  private:
    std::vector<Span>& mSpans;
    const QLX_Recording* const& mRecording;
    bool mBegins;
};

/// A text as it was drawn. Rectangles are window coordinates.
struct ShownText {
    TView* mView;
    std::string mText;
    QLX_Font mFont;
    Rect mBox{0, 0, 0, 0};  // what it may take
    Rect mInk{0, 0, 0, 0};  // what it takes
    Rect mClip{0, 0, 0, 0}; // what of that shows
    float mWidth = 0;       // needed
    float mHeight = 0;
    bool mHasBox = false;
    bool mEllipsis = false; // ends in "…" where it is too wide
    bool mPlaced = true;    // false: on a canvas elsewhere, whose place in the window is not known
    std::size_t mCall = 0;
};

/// Something that hides what was there before.
struct Cover {
    TView* mView;
    Rect mRect;
    std::size_t mCall;
};

template <class T>
const T* ArgumentOf(const QLX_RecordedCall& call, std::size_t number) {
    return number < call.arguments.size() ? std::get_if<T>(&call.arguments[number]) : nullptr;
}

Rect ToWindow(const Rect& rect, const QLX_RecordedCall& call) { return rect - call.state.origin; }

Rect Intersect(const Rect& a, const Rect& b) {
    const Rect both(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                    std::min(a.bottom, b.bottom));
    return both.left < both.right && both.top < both.bottom ? both : Rect(0, 0, 0, 0);
}

bool IsEmpty(const Rect& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

/// The widest word that can only be cut between letters. Ideographs may be parted anywhere.
float WidestWord(const QLX_Font& font, const std::string& text) {
    float widest = 0;
    std::string word;
    const auto end = [&] {
        widest = std::max(widest, QLX_TextMeasure::Get().MeasureWidth(font, word));
        word.clear();
    };
    for (const char c : text) {
        if (c == ' ' || c == '\n' || c == '\r' || static_cast<unsigned char>(c) >= 0xE3)
            end();
        else if (static_cast<unsigned char>(c) < 0x80 || static_cast<unsigned char>(c) >= 0xC0 ||
                 !word.empty())
            word += c;
    }
    end();
    return widest;
}

class Reader {
  public:
    Reader(const QLX_Recording& recording, const std::vector<Span>& spans) {
        const Rect canvas(0, 0, recording.GetWidth(), recording.GetHeight());
        for (const Span& span : spans)
            for (std::size_t i = span.mBegin; i < span.mEnd; ++i)
                Read(recording.GetCalls()[i], span.mView, i, canvas);
    }
    std::vector<ShownText> mTexts;
    std::vector<Cover> mCovers;

  private:
    void Read(const QLX_RecordedCall& call, TView* view, std::size_t number, const Rect& canvas) {
        Rect clip = canvas;
        if (call.canvas == 0 && call.state.clipped)
            clip = Intersect(clip, ToWindow(call.state.clip.GetBounds(), call));
        switch (call.call) {
        case EPainterCall::DrawChar:
        case EPainterCall::DrawString:
        case EPainterCall::DrawStringJustified:
        case EPainterCall::DrawTextBox:
        case EPainterCall::DrawSingleLineTextBox:
            return ReadText(call, view, number, clip);
        case EPainterCall::FillRect:
        case EPainterCall::FillRoundRect:
        case EPainterCall::EraseRect:
        case EPainterCall::EraseRoundRect:
        case EPainterCall::OptimizedFillRect:
        case EPainterCall::OptimizedFillRoundRect:
            if (const Rect* rect = ArgumentOf<Rect>(call, 0); rect && call.canvas == 0)
                mCovers.push_back({view, Intersect(ToWindow(*rect, call), clip), number});
            return;
        case EPainterCall::DrawImage:
        case EPainterCall::DrawIcon:
            if (const Rect* rect = ArgumentOf<Rect>(call, 1); rect && call.canvas == 0)
                mCovers.push_back({view, Intersect(ToWindow(*rect, call), clip), number});
            return;
        default:
            return;
        }
    }

    void ReadText(const QLX_RecordedCall& call, TView* view, std::size_t number, const Rect& clip) {
        ShownText shown;
        shown.mView = view;
        shown.mCall = number;
        shown.mFont = call.state.font;
        shown.mClip = clip;
        shown.mPlaced = call.canvas == 0;
        const bool boxed =
            call.call != EPainterCall::DrawString && call.call != EPainterCall::DrawChar;
        if (const int* letter = ArgumentOf<int>(call, 0); letter && !boxed)
            shown.mText = std::string(1, static_cast<char>(*letter));
        else if (const auto* text = ArgumentOf<std::string>(call, boxed ? 1 : 0))
            shown.mText = *text;
        if (shown.mText.find_first_not_of(" \r\n") == std::string::npos)
            return;
        const QLX_FontMetrics metrics = shown.mFont.GetMetrics();
        shown.mWidth = QLX_TextMeasure::Get().MeasureWidth(shown.mFont, shown.mText);
        shown.mHeight = metrics.ascent + metrics.descent;
        const Rect* box = ArgumentOf<Rect>(call, 0);
        if (boxed && box)
            PlaceInBox(call, *box, shown);
        else
            PlaceAtPen(call, metrics, shown);
        mTexts.push_back(shown);
    }

    static void PlaceAtPen(const QLX_RecordedCall& call, const QLX_FontMetrics& metrics,
                           ShownText& shown) {
        const auto [x, y] = call.state.penPlace;
        shown.mInk = ToWindow(Rect(static_cast<int>(std::ceil(x)),
                                   static_cast<int>(std::ceil(y - metrics.ascent)),
                                   static_cast<int>(std::floor(x + shown.mWidth)),
                                   static_cast<int>(std::floor(y + metrics.descent))),
                              call);
        shown.mBox = shown.mClip;
    }

    static void PlaceInBox(const QLX_RecordedCall& call, const Rect& box, ShownText& shown) {
        shown.mHasBox = true;
        shown.mBox = ToWindow(box, call);
        const bool* ellipsis =
            ArgumentOf<bool>(call, call.call == EPainterCall::DrawTextBox ? 4 : 2);
        shown.mEllipsis = ellipsis && *ellipsis;
        int justification = QLX_Painter::kJustify_Left;
        int vertical = QLX_Painter::kJustify_Middle;
        if (call.call == EPainterCall::DrawTextBox) {
            const bool* wrap = ArgumentOf<bool>(call, 3);
            MeasureLines(wrap && *wrap, shown);
            vertical = QLX_Painter::kJustify_Top;
        }
        if (const int* given = ArgumentOf<int>(call, 2))
            justification = *given;
        if (const int* given = ArgumentOf<int>(call, 3))
            vertical = *given;
        const auto width = static_cast<int>(shown.mWidth);
        const auto height = static_cast<int>(shown.mHeight);
        int left = shown.mBox.left;
        int top = shown.mBox.top;
        if (justification == QLX_Painter::kJustify_Center)
            left += (shown.mBox.GetWidth() - width) / 2;
        else if (justification == QLX_Painter::kJustify_Right)
            left += shown.mBox.GetWidth() - width;
        if (vertical == QLX_Painter::kJustify_Middle)
            top += (shown.mBox.GetHeight() - height) / 2;
        else if (vertical == QLX_Painter::kJustify_Bottom)
            top += shown.mBox.GetHeight() - height;
        shown.mInk = Rect(left, top, left + width, top + height);
    }

    static void MeasureLines(bool wrap, ShownText& shown) {
        QLX_TextLayout layout;
        layout.LayOut(shown.mText, shown.mFont, static_cast<float>(shown.mBox.GetWidth()),
                      wrap ? QLX_Painter::kWrap_Word : QLX_Painter::kWrap_None);
        float widest = wrap ? WidestWord(shown.mFont, shown.mText) : 0;
        for (const QLX_TextLayout::Line& line : layout.GetLines())
            widest = std::max(widest, line.width);
        shown.mWidth = widest;
        if (layout.GetLines().size() > 1)
            shown.mHeight = static_cast<float>(layout.GetHeight());
    }
};

class Fitter {
  public:
    Fitter(TWindow& window, const Description& description)
        : mWindow(window), mDescription(description) {
        ListViews(mWindow, mViews);
        for (TView* view : mViews)
            for (const bool begins : {true, false}) {
                auto* adorner = new SpanAdorner(mSpans, mRecording, begins);
                view->AddAdorner(adorner, /*redraw*/ false);
                mAdorners.emplace_back(view, adorner);
            }
    }
    ~Fitter() {
        for (const auto& [view, adorner] : mAdorners) {
            view->RemoveAdorner(adorner, /*redraw*/ false);
            adorner->Free();
        }
    }
    Fitter(const Fitter&) = delete;
    Fitter& operator=(const Fitter&) = delete;

    std::vector<FitProblem> Find() {
        const Reader all = Record(mWindow);
        for (const ShownText& text : all.mTexts)
            Judge(text);
        JudgeCovers(all);
        JudgeFrames();
        for (TView* view : mViews) {
            if (auto* popup = QLX_ObjectCast<TPopup>(view))
                TryChoices(*popup);
            else if (auto* field = QLX_ObjectCast<TNumericEntryText>(view))
                TryValues(*field);
        }
        TryHidden();
        return std::move(mProblems);
    }

  private:
    Reader Record(TView& view) {
        const VPoint size = mWindow.GetSize();
        const Cmn_RefCountPtr<QLX_PainterRecording> painter(new QLX_PainterRecording(
            Cmn_ClampTo<int>(size.h), Cmn_ClampTo<int>(size.v), mWindow.GetScale()));
        mSpans.clear();
        mRecording = &painter->GetRecording();
        mWindow.DrawViewOn(QLX_Painter::Ptr(painter), &view, view.GetExtent());
        mRecording = nullptr;
        return Reader(painter->GetRecording(), mSpans);
    }
    Reader Record(TWindow& window) { return Record(static_cast<TView&>(window)); }

    void JudgeView(TView& view) {
        for (const ShownText& text : Record(view).mTexts)
            Judge(text);
    }

    // What the controls can show besides

    void TryChoices(TPopup& popup) {
        const std::int32_t before = popup.GetValue();
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(popup.GetChoices().size()); ++i) {
            popup.SetValue(i, /*redraw*/ false);
            JudgeView(popup);
        }
        popup.SetValue(before, /*redraw*/ false);
    }

    void TryValues(TNumericEntryText& field) {
        const std::string before = field.GetText();
        if (field.HasLocalFormat()) {
            for (const std::int64_t bound :
                 {field.GetMinIntegerValue(), field.GetMaxIntegerValue()}) {
                if (std::abs(static_cast<double>(bound)) > kMostBound)
                    continue; // no bound was set
                field.SetTextFromIntegerValue(bound);
                JudgeView(field);
            }
        } else {
            const ETimeFormat main = TNumericEntryText::GetDefaultTimeFormat();
            const ETimeFormat second = TNumericEntryText::GetSecondaryDefaultTimeFormat();
            for (int format = kTimeFormat_BarsBeats; format <= kTimeFormat_Samples; ++format) {
                TNumericEntryText::SetDefaultTimeFormat(static_cast<ETimeFormat>(format));
                TNumericEntryText::SetSecondaryDefaultTimeFormat(static_cast<ETimeFormat>(format));
                field.SetTextFromSample(Time_Sample(kLatestSample), /*redraw*/ false);
                JudgeView(field);
            }
            TNumericEntryText::SetDefaultTimeFormat(main);
            TNumericEntryText::SetSecondaryDefaultTimeFormat(second);
        }
        field.SetText(before, /*redraw*/ false, /*asBackup*/ false);
    }

    /// Pages and panels that are shown in turn may lie over each other: only their texts count.
    void TryHidden() {
        for (TView* view : mViews) {
            const bool own = view->IsShown();
            if (own || !view->GetSuperView() || !view->GetSuperView()->IsShown())
                continue;
            view->Show(true, /*redraw*/ false);
            JudgeView(*view);
            view->Show(false, /*redraw*/ false);
        }
    }

    // Judging

    void Judge(const ShownText& shown) {
        for (const char32_t character : QLX_GlyphCoverage::FindMissing(shown.mFont, shown.mText)) {
            char code[24];
            std::snprintf(code, sizeof code, "no font has U+%04X",
                          static_cast<unsigned>(character));
            Add("glyph", shown, code);
        }
        const double factor = mWindow.GetScale().GetFactor();
        const Rect device = mWindow.GetScale().RectToDevice(shown.mBox);
        if (shown.mHasBox) {
            // Half a pixel at either end is what a glyph's own side bearings leave free, but an
            // ellipsis comes at once.
            const double spare = shown.mEllipsis ? kRounding : 1.0;
            if (shown.mWidth * factor > device.GetWidth() + spare)
                return Add("text-width", shown,
                           Needs(shown.mWidth, shown.mBox.GetWidth()) + " in width");
            if (shown.mHeight * factor > device.GetHeight() + 1.0)
                return Add("text-height", shown,
                           Needs(shown.mHeight, shown.mBox.GetHeight()) + " in height");
        }
        if (shown.mPlaced)
            JudgeClip(shown);
    }

    static std::string Needs(float needed, int given) {
        return "needs " + std::to_string(static_cast<int>(std::ceil(needed))) + " of " +
               std::to_string(given);
    }

    void JudgeClip(const ShownText& shown) {
        const bool scrolled = IsScrolled(shown.mView);
        const bool lines = scrolled || QLX_ObjectCast<TTextList>(shown.mView);
        const Rect& ink = shown.mInk;
        const Rect& clip = shown.mClip;
        // A letter's box is higher than the letter.
        const auto spare = static_cast<int>(shown.mHeight / 8) + 1;
        if (!scrolled && (ink.left < clip.left - 1 || ink.right > clip.right + 1))
            Add("text-cut", shown, "is cut at the side");
        else if (!lines && (ink.top < clip.top - spare || ink.bottom > clip.bottom + spare))
            Add("text-cut", shown, "is cut above or below");
    }

    static bool IsScrolled(TView* view) {
        if (QLX_ObjectCast<TEditText>(view))
            return true;
        for (; view; view = view->GetSuperView())
            if (QLX_ObjectCast<TScroller>(view))
                return true;
        return false;
    }

    /// Texts that something later is painted over, and texts that run into each other.
    void JudgeCovers(const Reader& all) {
        for (const ShownText& text : all.mTexts) {
            const Rect ink = Intersect(text.mInk, text.mClip);
            if (!text.mPlaced || IsEmpty(ink))
                continue;
            TView* by = nullptr;
            for (const Cover& cover : all.mCovers)
                if (cover.mCall > text.mCall && cover.mView != text.mView &&
                    !IsEmpty(Intersect(cover.mRect, ink)))
                    by = cover.mView;
            for (const ShownText& other : all.mTexts)
                if (other.mCall > text.mCall && other.mPlaced && RunInto(text, other))
                    by = other.mView;
            if (by)
                Add("text-covered", text, "is painted over by " + ViewLabel(*by));
        }
    }

    /// A field draws what is selected of its text once more.
    static bool RunInto(const ShownText& a, const ShownText& b) {
        if (a.mView == b.mView &&
            (QLX_ObjectCast<TEditText>(a.mView) || QLX_ObjectCast<TNumericEntryText>(a.mView)))
            return false;
        Rect both = Intersect(Intersect(a.mInk, a.mClip), Intersect(b.mInk, b.mClip));
        const auto spare = static_cast<int>(std::min(a.mHeight, b.mHeight) / 4);
        return both.right - both.left > 1 && both.bottom - both.top > spare;
    }

    void JudgeFrames() {
        for (std::size_t i = 0; i < mViews.size(); ++i) {
            TView* const view = mViews[i];
            TView* const around = view->GetSuperView();
            if (!around || !view->IsShown() || view->GetExtent().Empty())
                continue;
            const bool scrolls = IsScrolled(around);
            if (!scrolls && !around->GetExtent().Contains(view->GetFrame()))
                AddFrame(*view, "sticks out of " + ViewLabel(*around));
            for (std::size_t j = 0; j < i; ++j)
                if (mViews[j]->GetSuperView() == around && mViews[j]->IsShown() &&
                    CrossesPartly(view->GetFrame(), mViews[j]->GetFrame()))
                    AddFrame(*view, "overlaps " + ViewLabel(*mViews[j]) + " in part");
        }
    }

    static bool CrossesPartly(const VRect& a, const VRect& b) {
        return !(a & b).Empty() && !a.Contains(b) && !b.Contains(a);
    }

    void AddFrame(TView& view, const std::string& reason) {
        VRect frame = view.GetExtent();
        view.LocalToWindowVRect(frame);
        Keep({"frame", /*error*/ false, PlaceOfView(mDescription, &view), ViewLabel(view), "",
              reason, (frame - mWindow.GetLocalOffset()).ToCmn_Rect()});
    }

    void Add(const std::string& rule, const ShownText& shown, const std::string& reason) {
        Keep({rule, /*error*/ true, PlaceOfView(mDescription, shown.mView), ViewLabel(*shown.mView),
              shown.mText, reason,
              shown.mPlaced && rule != "text-covered" ? shown.mBox : shown.mInk});
    }

    void Keep(const FitProblem& problem) {
        if (mKnown.insert(problem.mView + "\n" + problem.mText + "\n" + problem.mReason).second)
            mProblems.push_back(problem);
    }

    static constexpr double kRounding = 0.01;
    static constexpr double kMostBound = 1e12;
    static constexpr std::int64_t kLatestSample =
        std::int64_t{48000} * (23 * 3600 + 59 * 60 + 59) + 47000; // the last second of a day

    TWindow& mWindow;
    const Description& mDescription;
    std::vector<TView*> mViews;
    std::vector<std::pair<TView*, SpanAdorner*>> mAdorners;
    std::vector<Span> mSpans;
    const QLX_Recording* mRecording = nullptr;
    std::vector<FitProblem> mProblems;
    std::set<std::string> mKnown;
};
} // namespace

std::vector<FitProblem> FindFitProblems(TWindow& window, const Description& description) {
    return Fitter(window, description).Find();
}
