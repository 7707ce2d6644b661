// Recordings as SVG, for looking at in a browser or in a review: calls become groups.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_recordingtable.h"
#include "qlx/imaging/qlx_svgwriter.h"

namespace {

[[nodiscard]] QLX_Region Moved(const QLX_Region& region, Cmn_Point<int> by) {
    QLX_Region moved;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        moved.UniteWith(Cmn_Rect<int>(
            Cmn_SaturatingAdd(rect.left, by.x), Cmn_SaturatingAdd(rect.top, by.y),
            Cmn_SaturatingAdd(rect.right, by.x), Cmn_SaturatingAdd(rect.bottom, by.y)));
    return moved;
}

// Whether the call asks for edges without steps between.
[[nodiscard]] bool HasHardEdges(const QLX_RecordedCall& call) {
    const auto smooth = [&](std::size_t i) { return std::get<bool>(call.arguments[i]); };
    switch (call.call) {
    case EPainterCall::DrawRoundRect:
    case EPainterCall::FillRoundRect:
    case EPainterCall::EraseRoundRect:
    case EPainterCall::DrawArc:
        return !smooth(3);
    case EPainterCall::DrawPolygon:
        return !smooth(2);
    case EPainterCall::FillOval:
    case EPainterCall::DrawPath:
        return !smooth(1);
    default:
        return false;
    }
}

} // namespace

std::string QLX_Recording::AsSVG() const { return QLX_SVGWriter(*this).Write(); }

std::string QLX_SVGWriter::RectAttributes(const Cmn_Rect<int>& rect) {
    return Attribute("x", rect.left) + Attribute("y", rect.top) +
           Attribute("width", std::max(0, rect.GetWidth())) +
           Attribute("height", std::max(0, rect.GetHeight()));
}

std::string QLX_SVGWriter::Write() {
    for (const QLX_RecordedCall& call : mRecording.GetCalls())
        if (QLX_Recording::IsDrawing(call.call))
            WriteCall(call);
        else
            FollowCall(call);
    const std::string size =
        Attribute("width", mRecording.GetWidth()) + Attribute("height", mRecording.GetHeight());
    std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                      "xmlns:xlink=\"http://www.w3.org/1999/xlink\"" +
                      size + ">\n" + Notes();
    if (!mDefinitions.empty())
        out += "<defs>\n" + mDefinitions + "</defs>\n";
    return out + Ground() + mCanvases[0] + "</svg>\n";
}

// The first canvas is white before anything is drawn.
std::string QLX_SVGWriter::Ground() const {
    return "<rect" + Attribute("width", mRecording.GetWidth()) +
           Attribute("height", mRecording.GetHeight()) + " fill=\"#FFFFFF\"/>\n";
}

std::string QLX_SVGWriter::Notes() const {
    if (mNotes.empty())
        return "";
    std::string out = "<desc>Not the same pixels:";
    for (const auto& [note, count] : mNotes)
        out += "\n" + std::to_string(count) + " x " + note;
    return out + "</desc>\n";
}

void QLX_SVGWriter::WriteCall(const Call& call) {
    if (call.call == EPainterCall::DrawTextBox && Get<bool>(call, 6)) // erased in any mode
        WriteGroup(call, {},
                   "<rect" + RectAttributes(R(call)) +
                       Paint("fill", call.state.background, call.state.alpha) + "/>");
    mLook = QLX_LookOfCall(call);
    WriteGroup(call, mLook, Shape(call));
}

// Modes, clips and filters belong on one and the same group: inside of a clipped one a blend
// mode would meet nothing but what is in there.
void QLX_SVGWriter::WriteGroup(const Call& call, const QLX_SVGLook& look, std::string shape) {
    if (!look.note.empty())
        ++mNotes[look.note];
    if (shape.empty())
        return;
    const QLX_RecordedState& state = call.state;
    std::string group;
    if (state.origin != Cmn_Point<int>())
        group += Attribute("transform", "translate(" + Number(-double(state.origin.x)) + " " +
                                            Number(-double(state.origin.y)) + ")");
    if (const std::string clip = ClipOf(call); !clip.empty())
        group += Attribute("clip-path", "url(#" + clip + ")");
    if (!look.style.empty())
        group += Attribute("style", look.style);
    if (HasHardEdges(call))
        group += Attribute("shape-rendering", std::string("crispEdges"));
    if (look.isPicture && state.alpha * look.opacity < 1)
        group += Attribute("opacity", state.alpha * look.opacity);
    if (look.isPicture && look.inverted)
        group += Attribute("filter", "url(#" + InvertingFilter() + ")");
    const double unit = UnitOf(call);
    if (unit != 1 && call.call != EPainterCall::LineTo && call.call != EPainterCall::LineOfLength)
        shape = "<g" + Attribute("transform", "scale(" + Number(unit) + ")") + ">" + shape + "</g>";
    if (!look.note.empty())
        shape = "<title>" + look.note + "</title>" + shape;
    std::string& canvas = mCanvases[call.canvas];
    canvas +=
        group.empty() && look.note.empty() ? shape + "\n" : "<g" + group + ">" + shape + "</g>\n";
}

// Logical units in one of the call's: less than 1 for device pixels.
double QLX_SVGWriter::UnitOf(const Call& call) const {
    const std::size_t place = std::string_view(QLX_GetCallEntry(call.call).arguments).find('r');
    return place != std::string_view::npos &&
                   Get<int>(call, place) == QLX_Painter::kResolution_Device
               ? 1 / mRecording.GetScale().GetFactor()
               : 1;
}

// Canvases and origins that later calls refer to.
void QLX_SVGWriter::FollowCall(const Call& call) {
    if (call.call == EPainterCall::SetWindowOrigin) {
        mOrigins[call.canvas] = Get<Cmn_Point<int>>(call, 0);
    } else if (call.call == EPainterCall::CreateImage) {
        const int canvas = Get<QLX_RecordedCanvas>(call, 0).number;
        Take(canvas == QLX_RecordedCanvas::kNone ? call.canvas : canvas,
             Get<QLX_RecordedImage>(call, 1));
    } else if (call.call == EPainterCall::SaveIntoImage) {
        Take(call.canvas, Get<QLX_RecordedImage>(call, 0));
    } else if (call.call == EPainterCall::CreateOffscreenPainter) {
        const int made = Get<QLX_RecordedCanvas>(call, 3).number;
        if (made <= 0 || made == call.canvas)
            return;
        mOrigins[made] = call.state.origin;
        mCorners[made] = {Cmn_ClampTo<int>(std::int64_t{R(call).left} - call.state.origin.x),
                          Cmn_ClampTo<int>(std::int64_t{R(call).top} - call.state.origin.y)};
        Call inMade = call;
        inMade.canvas = made;
        inMade.state.clipped = false;
        if (!Get<bool>(call, 1))
            WriteGroup(inMade, {},
                       "<rect" + RectAttributes(R(call)) + Paint("fill", call.state.background, 1) +
                           "/>");
        if (Get<bool>(call, 2))
            mCanvases[made] += Used(call.canvas);
    }
}

// Definitions

std::string QLX_SVGWriter::Defined(const char* kind, const std::string& before,
                                   const std::string& behind) {
    std::string& name = mNames[before + '\n' + behind];
    if (name.empty()) {
        name = kind + std::to_string(++mLastName);
        mDefinitions += before + Attribute("id", name) + behind + "\n";
    }
    return name;
}

std::string QLX_SVGWriter::ClipOf(const Call& call) {
    const bool scrolled = call.call == EPainterCall::ScrollCanvas;
    const bool cut = (call.call == EPainterCall::DrawTextBox && Get<bool>(call, 5)) ||
                     call.call == EPainterCall::DrawSingleLineTextBox;
    const auto* mask = call.call == EPainterCall::CopyCanvas
                           ? std::get_if<QLX_Region>(&call.arguments[4])
                           : nullptr;
    const std::size_t limitPlace =
        std::string_view(QLX_GetCallEntry(call.call).arguments).find('O');
    const auto* limit = limitPlace != std::string_view::npos
                            ? std::get_if<Cmn_Rect<int>>(&call.arguments[limitPlace])
                            : nullptr;
    if (!call.state.clipped && !cut && !mask && !limit && !scrolled)
        return "";
    const QLX_Region wide(Cmn_Rect<int>(-(1 << 29), -(1 << 29), 1 << 29, 1 << 29));
    QLX_Region clip = call.state.clipped ? call.state.clip : wide;
    if (cut)
        clip = QLX_Region(clip.Intersection(QLX_Region(R(call))));
    if (limit) {
        const auto edge = [&](int place) { return int(std::lround(place * UnitOf(call))); };
        clip = QLX_Region(clip.Intersection(QLX_Region(Cmn_Rect<int>(
            edge(limit->left), edge(limit->top), edge(limit->right), edge(limit->bottom)))));
    }
    if (mask)
        clip = QLX_Region(clip.Intersection(Moved(*mask, Get<Cmn_Point<int>>(call, 5))));
    if (scrolled) { // what comes from within the rectangle and the clip and stays within them
        clip = QLX_Region(clip.Intersection(QLX_Region(R(call))));
        clip = QLX_Region(clip.Intersection(Moved(clip, {Get<int>(call, 1), Get<int>(call, 2)})));
    }
    std::string rects;
    for (const Cmn_Rect<int>& rect : clip.GetRectList())
        rects += "<rect" + RectAttributes(rect) + "/>";
    return Defined("clip", "<clipPath", ">" + rects + "</clipPath>");
}

std::string QLX_SVGWriter::InvertingFilter() {
    std::string functions;
    for (const char channel : {'R', 'G', 'B'})
        functions += std::string("<feFunc") + channel + " type=\"table\" tableValues=\"1 0\"/>";
    return Defined("filter", "<filter color-interpolation-filters=\"sRGB\"",
                   "><feComponentTransfer>" + functions + "</feComponentTransfer></filter>");
}

// A canvas as it is now. It is defined once for every state that is used, so that canvases
// copied to and fro do not double each time.
std::string QLX_SVGWriter::Used(int canvas) {
    const std::string& content = mCanvases[canvas];
    const std::string ground = canvas == 0 ? Ground() : std::string();
    if (content.empty() && ground.empty())
        return "";
    std::string& name = mUsed[{canvas, content.size()}];
    if (name.empty()) {
        name = "canvas" + std::to_string(++mLastName);
        mDefinitions +=
            "<g" + Attribute("id", name) + " style=\"isolation:isolate\">\n" + content + "</g>\n";
    }
    return "<use" + Attribute("xlink:href", "#" + name) + "/>\n";
}

void QLX_SVGWriter::Take(int canvas, QLX_RecordedImage image) {
    if (canvas >= 0 && image.number != 0)
        mTaken[image.number] = {Used(canvas), mCorners[canvas]};
}
