// Replaying: the recorded arguments handed to a painter again.

#include <algorithm>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recording.h"
#include "qlx/imaging/qlx_statesavers.h"

namespace {

using Painter = QLX_Painter;

// One replay: the painters that stand for the recording's canvases, and its images, of which some
// are made anew on the way.
class Player {
  public:
    Player(const QLX_Recording& recording, const Painter::Ptr& painter)
        : mRecording(recording), mCanvases{painter} {}

    void Play(const QLX_RecordedCall& call) {
        mCall = &call;
        const Painter::Ptr painter = Canvas(call.canvas);
        if (!painter)
            return;
        if (call.call <= EPainterCall::LineOfLength)
            PlayState(*painter);
        else if (call.call <= EPainterCall::OptimizedCopyPixelsFromOffscreen)
            PlayOptimized(*painter);
        else if (call.call <= EPainterCall::ScrollCanvas)
            PlayShapes(*painter);
        else
            PlayFills(*painter);
    }

  private:
    template <class T>
    [[nodiscard]] const T& Get(std::size_t i) const {
        return std::get<T>(mCall->arguments[i]);
    }
    [[nodiscard]] bool B(std::size_t i) const { return Get<bool>(i); }
    [[nodiscard]] int I(std::size_t i) const { return Get<int>(i); }
    [[nodiscard]] float F(std::size_t i) const { return Get<float>(i); }
    [[nodiscard]] const std::string& S(std::size_t i) const { return Get<std::string>(i); }
    [[nodiscard]] const Cmn_Rect<int>& R(std::size_t i) const { return Get<Cmn_Rect<int>>(i); }
    [[nodiscard]] const CRGBColor& C(std::size_t i) const { return Get<CRGBColor>(i); }
    [[nodiscard]] const QLX_Region& G(std::size_t i) const { return Get<QLX_Region>(i); }
    template <class T>
    [[nodiscard]] const T* Optional(std::size_t i) const {
        return std::get_if<T>(&mCall->arguments[i]);
    }
    [[nodiscard]] Painter::EResolution Resolution(std::size_t i) const {
        return Painter::EResolution(I(i));
    }
    [[nodiscard]] Painter::EAlphaBlendType Blend(std::size_t i) const {
        return Painter::EAlphaBlendType(I(i));
    }
    [[nodiscard]] Painter::Ptr Canvas(int number) const {
        return number >= 0 && std::size_t(number) < mCanvases.size()
                   ? mCanvases[std::size_t(number)]
                   : nullptr;
    }
    [[nodiscard]] Painter::Ptr K(std::size_t i) const {
        return Canvas(Get<QLX_RecordedCanvas>(i).number);
    }
    [[nodiscard]] Painter::ImagePtr ImageOf(QLX_RecordedImage image) const {
        const auto made = mMade.find(image.number);
        return made != mMade.end() ? made->second : mRecording.GetImage(image);
    }
    [[nodiscard]] Painter::ImagePtr Image(std::size_t i) const {
        return ImageOf(Get<QLX_RecordedImage>(i));
    }
    [[nodiscard]] const int* Numbers(std::size_t i) const {
        const QLX_RecordedNumbers& numbers = Get<QLX_RecordedNumbers>(i);
        return numbers ? numbers->data() : nullptr;
    }
    // The count of a call, held to what its arrays (from one argument to another) really hold.
    [[nodiscard]] int Count(int count, std::size_t first, std::size_t last) const {
        for (std::size_t i = first; i <= last; ++i)
            if (const QLX_RecordedNumbers& numbers = Get<QLX_RecordedNumbers>(i))
                count = std::min(count, Cmn_ClampTo<int>(std::int64_t(numbers->size())));
        return count;
    }
    // As Count, for indexes into a list of colours as well: none when any leads out of it.
    [[nodiscard]] int IndexedCount(int count, std::size_t indexes, std::size_t colors) const {
        const std::size_t size = Get<std::vector<CRGBColor>>(colors).size();
        if (size == 0)
            return 0;
        if (const QLX_RecordedNumbers& numbers = Get<QLX_RecordedNumbers>(indexes))
            for (const int index : *numbers)
                if (index < 0 || std::size_t(index) >= size)
                    return 0;
        return count;
    }
    [[nodiscard]] Cmn_PolyVector<CRGBColor> Colors(std::size_t i) const {
        const auto& colors = Get<std::vector<CRGBColor>>(i);
        return Cmn_PolyVector<CRGBColor>::Borrow(colors.data(), colors.size());
    }

    void PlayState(Painter& p) {
        switch (mCall->call) {
        case EPainterCall::Activate:
            return p.Activate();
        case EPainterCall::Flush:
            return p.Flush();
        case EPainterCall::SetIdentifier:
            return p.SetIdentifier(I(0));
        case EPainterCall::SetWindowOrigin:
            return p.SetWindowOrigin(Get<Cmn_Point<int>>(0));
        case EPainterCall::SetClipRegion:
            return p.SetClip(G(0));
        case EPainterCall::SetClipRect:
            return p.SetClip(R(0));
        case EPainterCall::SetAlpha:
            return p.SetAlpha(F(0));
        case EPainterCall::SetForegroundColor:
            return p.SetForegroundColor(C(0));
        case EPainterCall::SetForeground:
            return p.SetForeground(EThemeColor(I(0)));
        case EPainterCall::SetBackgroundColor:
            return p.SetBackgroundColor(C(0));
        case EPainterCall::SetBackground:
            return p.SetBackground(EThemeColor(I(0)));
        case EPainterCall::SetHighlightColor:
            return p.SetHighlightColor(C(0));
        case EPainterCall::SetPenSize:
            return p.SetPenSize(Cmn_ClampTo<short>(I(0)), Cmn_ClampTo<short>(I(1)));
        case EPainterCall::SetPenMode:
            return p.SetPenMode(EPenMode(I(0)));
        case EPainterCall::SetPenPattern:
            return p.SetPenPattern(EPenPattern(I(0)));
        case EPainterCall::NormalizePen:
            return p.NormalizePen();
        case EPainterCall::SetFont:
            return p.SetFont(Get<QLX_Font>(0));
        case EPainterCall::SetTextMode:
            return p.SetTextMode(EPenMode(I(0)));
        case EPainterCall::MoveTo:
            return p.MoveTo(F(0), F(1), Resolution(2));
        case EPainterCall::LineTo:
            return p.LineTo(F(0), F(1), B(2), Resolution(3), F(4));
        case EPainterCall::LineOfLength:
            return p.LineOfLength(I(0), I(1), B(2), Resolution(3));
        default:
            return;
        }
    }

    void PlayOptimized(Painter& p) {
        switch (mCall->call) {
        case EPainterCall::OptimizedVerticalLine:
            return p.OptimizedVerticalLine(I(0), I(1), I(2), C(3), Resolution(4));
        case EPainterCall::OptimizedHorizontalLine:
            return p.OptimizedHorizontalLine(I(0), I(1), I(2), C(3), Resolution(4));
        case EPainterCall::OptimizedWaveformFill:
            return p.OptimizedWaveformFill(I(0), Count(I(1), 2, 3), Numbers(2), Numbers(3), I(4),
                                           I(5), I(6), C(7), K(8), C(9), I(10), Resolution(11));
        case EPainterCall::OptimizedVerticalLines:
            return p.OptimizedVerticalLines(Count(I(0), 1, 4), Numbers(1), Numbers(2), Numbers(3),
                                            Numbers(4), Colors(5), Blend(6), Resolution(7));
        case EPainterCall::OptimizedIdenticalVerticalLines:
            return p.OptimizedIdenticalVerticalLines(IndexedCount(Count(I(0), 1, 2), 2, 3),
                                                     Numbers(1), Numbers(2),
                                                     Get<std::vector<CRGBColor>>(3).data(), I(4),
                                                     I(5), I(6), Blend(7), Resolution(8), I(9));
        case EPainterCall::OptimizedHorizontalLines:
            return p.OptimizedHorizontalLines(Count(I(0), 1, 4), Numbers(1), Numbers(2), Numbers(3),
                                              Numbers(4), Colors(5), Blend(6), Resolution(7));
        case EPainterCall::OptimizedIdenticalHorizontalLines:
            return p.OptimizedIdenticalHorizontalLines(
                IndexedCount(Count(I(0), 1, 2), 2, 3), Numbers(1), Numbers(2),
                Get<std::vector<CRGBColor>>(3).data(), I(4), I(5), I(6), Resolution(7));
        case EPainterCall::OptimizedWaveformOutline:
            return p.OptimizedWaveformOutline(I(0), Count(I(1), 2, 2), Numbers(2), I(3), B(4), I(5),
                                              I(6), C(7), K(8), C(9), I(10), Resolution(11));
        case EPainterCall::OptimizedDrawImage:
            return p.OptimizedDrawImage(Image(0), R(1), R(2), Optional<Cmn_Rect<int>>(3),
                                        Resolution(4));
        case EPainterCall::OptimizedDrawImageRow: {
            const Painter::Ptr second = K(6);
            return p.OptimizedDrawImage(Image(0), Count(I(1), 2, 2), Numbers(2), I(3),
                                        Optional<Cmn_Rect<int>>(4), Resolution(5),
                                        second ? &second : nullptr);
        }
        case EPainterCall::OptimizedDrawImages: {
            std::vector<Painter::ImagePtr> images;
            for (const QLX_RecordedImage image : Get<std::vector<QLX_RecordedImage>>(0))
                images.push_back(ImageOf(image));
            return p.OptimizedDrawImages(
                Cmn_PolyVector<Painter::ImagePtr>::Borrow(images.data(), images.size()),
                Count(I(1), 2, 4), Numbers(2), Numbers(3), Numbers(4), Resolution(5));
        }
        case EPainterCall::OptimizedDrawBackgroundImage:
            return p.OptimizedDrawBackgroundImage(Image(0), I(1), I(2), I(3), Resolution(4));
        case EPainterCall::OptimizedFillRect:
            return p.OptimizedFillRect(R(0), C(1), Blend(2), Resolution(3), K(4), C(5), Blend(6));
        case EPainterCall::OptimizedFillRoundRect:
            return p.OptimizedFillRoundRect(R(0), I(1), C(2), Blend(3), Resolution(4), K(5), C(6),
                                            Blend(7));
        case EPainterCall::OptimizedCopyPixelsFromOffscreen:
            if (const Painter::ImagePtr image = Image(0))
                p.OptimizedCopyPixelsFromOffscreen(image->GetBounds(), image->GetWritablePixels(),
                                                   image->GetBounds(), R(1), B(2));
            return;
        default:
            return;
        }
    }

    void PlayShapes(Painter& p) {
        switch (mCall->call) {
        case EPainterCall::DrawRect:
            return p.DrawRect(R(0));
        case EPainterCall::DrawRoundRect:
            return p.DrawRoundRect(R(0), I(1), I(2), B(3), B(4));
        case EPainterCall::DrawOval:
            return p.DrawOval(R(0));
        case EPainterCall::DrawArc:
            return p.DrawArc(R(0), I(1), I(2), B(3));
        case EPainterCall::DrawPolygon:
            return p.DrawPolygon(Get<Cmn_Polygon<int>>(0), B(1), B(2));
        case EPainterCall::DrawRegion:
            return p.DrawRegion(G(0));
        case EPainterCall::DrawChar:
            return p.DrawChar(static_cast<char>(I(0)));
        case EPainterCall::DrawString:
            return p.DrawString(S(0));
        case EPainterCall::DrawStringJustified:
            return p.DrawStringJustified(R(0), S(1), Painter::EJustification(I(2)),
                                         Painter::EVerticalJustification(I(3)), Resolution(4));
        case EPainterCall::DrawTextBox:
            (void)p.DrawTextBox(R(0), S(1), Painter::EJustification(I(2)), B(3), B(4), B(5), B(6));
            return;
        case EPainterCall::DrawSingleLineTextBox:
            return p.DrawSingleLineTextBox(R(0), S(1), B(2), K(3));
        case EPainterCall::DrawImage:
            return p.DrawImage(Image(0), R(1), EPenMode(I(2)));
        case EPainterCall::DrawImagePortion:
            return p.DrawImagePortion(Image(0), R(1), R(2), EPenMode(I(3)), Resolution(4));
        case EPainterCall::DrawIcon: {
            QLX_Icon icon;
            for (const QLX_RecordedImage image : Get<std::vector<QLX_RecordedImage>>(0))
                icon.AddImage(ImageOf(image));
            return p.DrawIcon(icon, R(1));
        }
        case EPainterCall::ScrollCanvas: {
            QLX_Region toRepaint;
            return p.ScrollCanvas(R(0), I(1), I(2), toRepaint);
        }
        default:
            return;
        }
    }

    void PlayFills(Painter& p) {
        switch (mCall->call) {
        case EPainterCall::FillRect:
            return p.FillRect(R(0));
        case EPainterCall::FillRoundRect:
            return p.FillRoundRect(R(0), I(1), I(2), B(3), B(4));
        case EPainterCall::FillOval:
            return p.FillOval(R(0), B(1));
        case EPainterCall::FillPolygon:
            return p.FillPolygon(Get<Cmn_Polygon<int>>(0));
        case EPainterCall::FillRegion:
            return p.FillRegion(G(0));
        case EPainterCall::EraseRect:
            return p.EraseRect(R(0));
        case EPainterCall::EraseRoundRect:
            return p.EraseRoundRect(R(0), I(1), I(2), B(3));
        case EPainterCall::EraseRegion:
            return p.EraseRegion(G(0));
        case EPainterCall::BlendRect:
            return p.BlendRect(R(0), C(1), Painter::EBlendMode(I(2)));
        case EPainterCall::BlendRegion:
            return p.BlendRegion(G(0), C(1), Painter::EBlendMode(I(2)));
        case EPainterCall::InvertRect:
            return p.InvertRect(R(0));
        case EPainterCall::InvertRegion:
            return p.InvertRegion(G(0));
        case EPainterCall::HighlightRect:
            return p.HighlightRect(R(0), Optional<CRGBColor>(1));
        case EPainterCall::HighlightRegion:
            return p.HighlightRegion(G(0), Optional<CRGBColor>(1));
        case EPainterCall::DrawPath:
            return p.DrawPath(Get<Painter::PathPtr>(0), B(1), Painter::ELineJoin(I(2)));
        case EPainterCall::FillPath:
            return p.FillPath(Get<Painter::PathPtr>(0));
        case EPainterCall::CopyCanvas:
            if (const Painter::Ptr source = K(0))
                p.CopyCanvas(source, R(1), R(2), EPenMode(I(3)), Optional<QLX_Region>(4),
                             Get<Cmn_Point<int>>(5));
            return;
        default:
            return PlayCanvases(p);
        }
    }

    void PlayCanvases(Painter& p) {
        switch (mCall->call) {
        case EPainterCall::CreateOffscreenPainter: {
            const auto number = std::size_t(std::max(0, Get<QLX_RecordedCanvas>(3).number));
            if (mCanvases.size() <= number)
                mCanvases.resize(number + 1);
            mCanvases[number] = p.CreateOffscreenPainter(R(0), B(1), B(2));
            return;
        }
        case EPainterCall::SaveIntoImage:
            return p.SaveIntoImage(Image(0), I(1));
        case EPainterCall::CreateImage:
            mMade[Get<QLX_RecordedImage>(1).number] = p.CreateImage(K(0));
            return;
        default:
            return;
        }
    }

    const QLX_Recording& mRecording;
    const QLX_RecordedCall* mCall = nullptr;
    std::vector<Painter::Ptr> mCanvases;
    std::map<int, Painter::ImagePtr> mMade;
};

} // namespace

void QLX_Recording::ReplayCalls(const QLX_Painter::Ptr& painter) const {
    Player player(*this, painter);
    // By index: a recording that is replayed into itself grows while it plays.
    for (std::size_t i = 0, count = mCalls.size(); i < count; ++i)
        player.Play(QLX_RecordedCall(mCalls[i]));
}

void QLX_Recording::Replay(const QLX_Painter::Ptr& painter) const {
    if (!painter)
        return;
    const QLX_StPaintState paint(painter);
    const QLX_StClipRgnState clip(painter);
    const QLX_StOriginState origin(painter);
    ReplayCalls(painter);
}
