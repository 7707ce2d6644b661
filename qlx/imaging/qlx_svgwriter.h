// Writes one recording as SVG.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "qlx/imaging/qlx_svglook.h"
#include "qlx/imaging/qlx_textlayout.h"

/// Every canvas is a picture of its own in window coordinates; the first is shown, the others where
/// CopyCanvas uses them. Lives for one document.
class QLX_SVGWriter {
  public:
    explicit QLX_SVGWriter(const QLX_Recording& recording) : mRecording(recording) {}
    std::string Write();

  private:
    using Call = QLX_RecordedCall;

    template <class T>
    [[nodiscard]] static const T& Get(const Call& call, std::size_t i) {
        return std::get<T>(call.arguments[i]);
    }
    [[nodiscard]] static const Cmn_Rect<int>& R(const Call& call, std::size_t i = 0) {
        return Get<Cmn_Rect<int>>(call, i);
    }
    [[nodiscard]] static std::string Number(double value) { return QLX_SVGNumber(value); }
    template <class Value>
    [[nodiscard]] static std::string Attribute(const char* name, const Value& value) {
        return QLX_SVGAttribute(name, value);
    }
    [[nodiscard]] static std::string Paint(const char* what, const CRGBColor& color, double alpha) {
        return QLX_SVGPaint(what, color, alpha);
    }
    [[nodiscard]] static std::string RectAttributes(const Cmn_Rect<int>& rect);

    // Calls

    /// What is not the same, counted, for who reads the file.
    [[nodiscard]] std::string Notes() const;
    [[nodiscard]] std::string Ground() const;
    void WriteCall(const Call& call);
    void WriteGroup(const Call& call, const QLX_SVGLook& look, std::string shape);
    [[nodiscard]] double UnitOf(const Call& call) const;
    void FollowCall(const Call& call);

    // Definitions, each written once

    [[nodiscard]] std::string Defined(const char* kind, const std::string& before,
                                      const std::string& behind);
    [[nodiscard]] std::string ClipOf(const Call& call);
    [[nodiscard]] std::string PatternOf(const QLX_RecordedState& state);
    [[nodiscard]] std::string InvertingFilter();
    /// A canvas as it is now.
    [[nodiscard]] std::string Used(int canvas);
    /// Remembers that an image holds what a canvas shows now.
    void Take(int canvas, QLX_RecordedImage image);

    // Paints

    [[nodiscard]] std::string PenPaint(const char* what, const Call& call);
    [[nodiscard]] std::string Fill(const Call& call);
    [[nodiscard]] std::string Stroke(const Call& call);
    [[nodiscard]] static std::string FamilyPaint(const Call& call, CRGBColor color, int blend);
    [[nodiscard]] std::string Round(const Call& call, double rx, double ry, bool topOnly,
                                    bool frame, const std::string& paint);

    // Shapes: the elements of one call, "" where nothing shows

    [[nodiscard]] static std::string Rects(const QLX_Region& region, const std::string& paint);
    [[nodiscard]] static std::string Points(const Cmn_Polygon<int>& polygon);
    [[nodiscard]] std::string Shape(const Call& call);
    [[nodiscard]] std::string OtherShape(const Call& call);
    [[nodiscard]] std::string TextOrImage(const Call& call);
    [[nodiscard]] std::string Line(const Call& call);
    [[nodiscard]] std::string Lines(const Call& call) const;
    [[nodiscard]] std::string Waveform(const Call& call) const;
    [[nodiscard]] std::string Outline(const Call& call) const;

    // Texts, images and canvases

    [[nodiscard]] std::string Text(const Call& call, std::string_view text, double x, double y);
    [[nodiscard]] std::string TextBox(const Call& call);
    [[nodiscard]] std::string Image(QLX_RecordedImage number, const Cmn_Rect<int>& rect) const;
    [[nodiscard]] std::string Portion(QLX_RecordedImage number, const Cmn_Rect<int>& source,
                                      const Cmn_Rect<int>& rect) const;
    [[nodiscard]] std::string ManyImages(const Call& call) const;
    [[nodiscard]] std::string NineParts(const Call& call) const;
    [[nodiscard]] std::string Icon(const Call& call) const;
    [[nodiscard]] std::string Copied(const Call& call);
    [[nodiscard]] std::string Scrolled(const Call& call);
    /// A part of some content, stretched to a rectangle.
    [[nodiscard]] static std::string View(const std::string& content, double left, double top,
                                          double width, double height, const Cmn_Rect<int>& to);

    const QLX_Recording& mRecording; // not owned
    std::map<int, std::string> mCanvases;
    struct Taken {
        std::string content;
        Cmn_Point<int> corner;
    };
    std::map<int, Cmn_Point<int>> mOrigins;                   // of canvases' painters
    std::map<int, Cmn_Point<int>> mCorners;                   // of canvases, in window coordinates
    std::map<int, Taken> mTaken;                              // images that canvases were copied to
    std::map<std::pair<int, std::size_t>, std::string> mUsed; // by canvas and length
    std::map<std::string, std::string> mNames;                // of definitions, by their text
    std::map<std::string, int> mNotes;                        // how often
    std::string mDefinitions;
    int mLastName = 0;
    QLX_SVGLook mLook; // of the call that is written
    QLX_TextLayout mLayout;
};
