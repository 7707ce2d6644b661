// Reading the text form of recordings.

#include <charconv>
#include <limits>
#include <stdexcept>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_recordingtable.h"

namespace {

// Joining rectangles into a region costs more than their number; beyond this a text is no
// recording.
constexpr std::size_t kMostRects = 2048;
constexpr std::size_t kMostPixels = std::size_t{1} << 26;

[[nodiscard]] int HexDigit(char character) noexcept {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return -1;
}

} // namespace

/// One pass over the text. Raw calls are gathered first and then made on a recording painter, which
/// knows the state that each is made in.
class QLX_RecordingReader {
  public:
    QLX_RecordingReader(std::string_view text, const std::string& source)
        : mText(text), mSource(source), mRaw(0, 0, QLX_DeviceScale()) {}

    Cmn_RefCountPtr<QLX_Recording> Read() {
        while (!mText.empty()) {
            const std::size_t end = std::min(mText.find('\n'), mText.size());
            mLine = mText.substr(0, end);
            if (mLine.ends_with('\r'))
                mLine.remove_suffix(1);
            mText.remove_prefix(std::min(end + 1, mText.size()));
            ++mLineNumber;
            mPlace = 0;
            ReadLine();
        }
        Cmn_RefCountPtr<QLX_Recording> recording(
            new QLX_Recording(mRaw.mWidth, mRaw.mHeight, mRaw.mScale));
        mRaw.ReplayCalls(QLX_Painter::Ptr(new QLX_PainterRecording(recording)));
        return recording;
    }

  private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::runtime_error(mSource + ":" + std::to_string(mLineNumber) + ":" +
                                 std::to_string(mPlace + 1) + ": " + reason);
    }

    // Scanning

    void SkipSpaces() {
        while (mPlace < mLine.size() && mLine[mPlace] == ' ')
            ++mPlace;
    }
    [[nodiscard]] bool AtEnd() {
        SkipSpaces();
        return mPlace == mLine.size();
    }
    [[nodiscard]] bool Take(std::string_view expected) {
        SkipSpaces();
        if (!mLine.substr(mPlace).starts_with(expected))
            return false;
        mPlace += expected.size();
        return true;
    }
    void Expect(std::string_view expected) {
        if (!Take(expected))
            Fail("expected \"" + std::string(expected) + "\"");
    }
    [[nodiscard]] std::string_view Word() {
        SkipSpaces();
        const std::size_t begin = mPlace;
        while (mPlace < mLine.size() &&
               std::string_view(" ,()[]{}\"").find(mLine[mPlace]) == std::string_view::npos)
            ++mPlace;
        return mLine.substr(begin, mPlace - begin);
    }
    // The limits of floating numbers are the infinities.
    template <class T>
    static constexpr T kLargest = std::numeric_limits<T>::has_infinity
                                      ? std::numeric_limits<T>::infinity()
                                      : std::numeric_limits<T>::max();
    template <class T>
    static constexpr T kSmallest = std::numeric_limits<T>::has_infinity
                                       ? -std::numeric_limits<T>::infinity()
                                       : std::numeric_limits<T>::lowest();
    template <class T>
    [[nodiscard]] T Number(T smallest = kSmallest<T>, T largest = kLargest<T>) {
        SkipSpaces();
        T value{};
        const auto result =
            std::from_chars(mLine.data() + mPlace, mLine.data() + mLine.size(), value);
        if (result.ec != std::errc())
            Fail("expected a number");
        if (value < smallest || value > largest)
            Fail("the number is out of range");
        mPlace = std::size_t(result.ptr - mLine.data());
        return value;
    }

    // Lines

    void ReadLine() {
        if (AtEnd() || mLine[mPlace] == '#')
            return;
        QLX_RecordedCall call{};
        mMakesCanvas = false;
        if (Take("@"))
            call.canvas = CanvasNumber();
        const std::size_t begin = mPlace;
        const std::string_view name = Word();
        if (name == "canvas")
            return ReadCanvas();
        if (name == "image")
            return ReadImage();
        if (name == "double")
            return ReadDouble();
        for (int i = 0; i < int(EPainterCall::Count); ++i)
            if (name == QLX_Recording::GetName(EPainterCall(i))) {
                call.call = EPainterCall(i);
                return ReadCall(std::move(call));
            }
        mPlace = begin;
        Fail("unknown call \"" + std::string(name) + "\"");
    }

    void ReadCall(QLX_RecordedCall call) {
        for (const char* letter = QLX_GetCallEntry(call.call).arguments; *letter; ++letter) {
            mMakesCanvas = call.call == EPainterCall::CreateOffscreenPainter && *letter == 'K';
            call.arguments.push_back(ReadArgument(*letter));
        }
        if (!AtEnd() && !mLine.substr(mPlace).starts_with("| "))
            Fail("more arguments than the call takes");
        mRaw.Add(std::move(call));
    }

    [[nodiscard]] int CanvasNumber() {
        const int number = Number<int>(0);
        if (mMakesCanvas ? number != mRaw.mLastCanvas + 1 : number > mRaw.mLastCanvas)
            Fail("no such canvas");
        return number;
    }

    void ReadCanvas() {
        if (!mRaw.mCalls.empty() || !mRaw.mImages.empty())
            Fail("the canvas comes first");
        mRaw.mWidth = Number<int>(0);
        Expect("x");
        mRaw.mHeight = Number<int>(0);
        Expect("scale");
        mRaw.mScale = QLX_DeviceScale::From120ths(Number<int>(1));
        ExpectEnd();
    }
    void ExpectEnd() {
        if (!AtEnd())
            Fail("expected the line's end");
    }

    [[nodiscard]] QLX_Image::Ptr ReadPixels() {
        const int width = Number<int>(1, QLX_Image::kMaximumSide);
        Expect("x");
        const int height = Number<int>(1, QLX_Image::kMaximumSide);
        const std::size_t count = std::size_t(width) * std::size_t(height);
        if (count > kMostPixels)
            Fail("the image is too large");
        std::vector<std::uint32_t> pixels;
        while (!AtEnd()) {
            std::size_t run = 1;
            const std::string_view word = mLine.substr(mPlace, mLine.find(' ', mPlace) - mPlace);
            if (word.find('*') != std::string_view::npos) {
                run = Number<std::size_t>(1, count);
                Expect("*");
            }
            std::uint32_t pixel = 0;
            for (int i = 0; i < 8; ++i, ++mPlace) {
                const int digit = mPlace < mLine.size() ? HexDigit(mLine[mPlace]) : -1;
                if (digit < 0)
                    Fail("expected a pixel of eight hexadecimal digits");
                pixel = pixel << 4 | std::uint32_t(digit);
            }
            if (run > count - pixels.size())
                Fail("more pixels than the image has");
            pixels.insert(pixels.end(), run, pixel);
        }
        if (pixels.size() != count)
            Fail("fewer pixels than the image has");
        return QLX_Image::Create(width, height, std::move(pixels));
    }

    void ReadImage() {
        if (Number<int>(1) != int(mRaw.mImages.size()) + 1)
            Fail("images are numbered in their order");
        const QLX_Image::Ptr image = ReadPixels();
        (void)mRaw.NumberOf(image);
    }
    void ReadDouble() {
        const QLX_Image::Ptr image = mRaw.GetImage({Number<int>(1)});
        if (!image)
            Fail("no such image");
        const QLX_Image::Ptr twice = ReadPixels();
        if (twice->GetWidth() != 2 * image->GetWidth() ||
            twice->GetHeight() != 2 * image->GetHeight())
            Fail("not twice as wide and high as the image");
        image->SetDouble(twice);
    }

    // Arguments

    [[nodiscard]] QLX_RecordedArgument ReadArgument(char letter) {
        if (const auto names = QLX_GetEnumerationNames(letter); !names.empty())
            return Enumeration(names);
        const bool mayBeNull = std::string_view("ONQA").find(letter) != std::string_view::npos;
        if (mayBeNull && Take("null"))
            return letter == 'A' ? QLX_RecordedArgument(QLX_RecordedNumbers())
                                 : QLX_RecordedArgument();
        switch (letter) {
        case 'b':
            return Bool();
        case 'i':
            return Number<int>();
        case 'f':
            return Float();
        case 's':
            return Text();
        case 't':
            return Theme();
        case 'P':
            return Point();
        case 'R':
        case 'O':
            return Rect();
        case 'C':
        case 'N':
            return Color();
        case 'F':
            return Font();
        case 'G':
        case 'Q':
            return Region();
        case 'Y':
            return Polygon();
        case 'W':
            return Path();
        case 'I':
            return Image();
        case 'K':
            return Canvas();
        case 'A':
            return QLX_RecordedNumbers(List<int>([&] { return Number<int>(); }));
        case 'L':
            return List<CRGBColor>([&] { return Color(); });
        default:
            return List<QLX_RecordedImage>([&] { return Image(); });
        }
    }

    [[nodiscard]] int Enumeration(std::span<const char* const> names) {
        SkipSpaces();
        const std::size_t begin = mPlace;
        const std::string_view word = Word();
        for (std::size_t i = 0; i < names.size(); ++i)
            if (word == names[i])
                return int(i);
        mPlace = begin;
        // Values without a name are printed as numbers.
        if (!word.empty() && (word[0] == '-' || (word[0] >= '0' && word[0] <= '9')))
            return Number<int>();
        Fail("unknown value \"" + std::string(word) + "\"");
    }
    [[nodiscard]] int Theme() {
        SkipSpaces();
        const std::size_t begin = mPlace;
        EThemeColor color{};
        if (QLX_Theme::FindByName(Word(), color))
            return color;
        mPlace = begin;
        Fail("unknown theme colour");
    }
    [[nodiscard]] bool Bool() {
        if (Take("true"))
            return true;
        Expect("false");
        return false;
    }
    [[nodiscard]] float Float() { return Number<float>(); }
    [[nodiscard]] std::string Text() {
        Expect("\"");
        std::string text;
        for (;; ++mPlace) {
            if (mPlace >= mLine.size())
                Fail("the text is not closed");
            const char character = mLine[mPlace];
            if (character == '"')
                break;
            text += character == '\\' ? Escaped() : character;
        }
        ++mPlace;
        return text;
    }
    // At a backslash; leaves the place at the escape's last character.
    [[nodiscard]] char Escaped() {
        if (++mPlace >= mLine.size())
            Fail("the text is not closed");
        const char kind = mLine[mPlace];
        if (kind == 'n')
            return '\n';
        if (kind == '"' || kind == '\\')
            return kind;
        if (kind != 'x' || mPlace + 2 >= mLine.size() || HexDigit(mLine[mPlace + 1]) < 0 ||
            HexDigit(mLine[mPlace + 2]) < 0)
            Fail("unknown escape");
        mPlace += 2;
        return static_cast<char>(HexDigit(mLine[mPlace - 1]) << 4 | HexDigit(mLine[mPlace]));
    }
    [[nodiscard]] Cmn_Point<int> Point() {
        Expect("(");
        const int x = Number<int>();
        Expect(",");
        const int y = Number<int>();
        Expect(")");
        return {x, y};
    }
    [[nodiscard]] Cmn_Rect<int> Rect() {
        int edges[4];
        for (int i = 0; i < 4; ++i) {
            Expect(i == 0 ? "(" : ",");
            edges[i] = Number<int>();
        }
        Expect(")");
        return {edges[0], edges[1], edges[2], edges[3]};
    }
    [[nodiscard]] CRGBColor Color() {
        SkipSpaces();
        const std::size_t begin = mPlace;
        const std::string_view word = Word();
        CRGBColor color;
        if (QLX_Theme::ParseColor(word, color))
            return color;
        std::uint64_t value = 0;
        const char* end = word.data() + word.size();
        if (word.size() == 17 && word[0] == '#' &&
            std::from_chars(word.data() + 1, end, value, 16).ptr == end)
            return {static_cast<unsigned short>(value >> 48),
                    static_cast<unsigned short>(value >> 32 & 0xFFFF),
                    static_cast<unsigned short>(value >> 16 & 0xFFFF),
                    static_cast<unsigned short>(value & 0xFFFF)};
        mPlace = begin;
        Fail("expected a colour");
    }
    [[nodiscard]] QLX_Font Font() {
        SkipSpaces();
        const std::size_t begin = mPlace;
        QLX_Font font;
        if (QLX_Font::ParseText(Text(), font))
            return font;
        mPlace = begin;
        Fail("expected a font: \"family size style\"");
    }
    [[nodiscard]] QLX_Region Region() {
        Expect("{");
        QLX_Region region;
        for (std::size_t count = 0; !Take("}"); ++count) {
            if (count == kMostRects)
                Fail("too many rectangles");
            region.UniteWith(Rect());
        }
        return region;
    }
    [[nodiscard]] Cmn_Polygon<int> Polygon() {
        return Cmn_Polygon<int>(List<Cmn_Point<int>>([&] { return Point(); }));
    }
    [[nodiscard]] QLX_Painter::PathPtr Path() {
        Expect("path{");
        const QLX_Painter::PathPtr path(new QLX_Path);
        while (!Take("}")) {
            QLX_Path::Element element{};
            SkipSpaces();
            const std::size_t verb =
                std::string_view("MLCZ").find(mPlace < mLine.size() ? mLine[mPlace] : ' ');
            if (verb == std::string_view::npos)
                Fail("expected M, L, C, Z or }");
            ++mPlace;
            element.verb = QLX_Path::EVerb(verb);
            constexpr int kPoints[] = {1, 1, 3, 0};
            for (int i = 0; i < kPoints[verb]; ++i) {
                element.points[i].x = Float();
                element.points[i].y = Float();
            }
            path->Add(element);
        }
        return path;
    }
    [[nodiscard]] QLX_RecordedImage Image() {
        if (Take("null"))
            return {0};
        Expect("image");
        const int number = Number<int>(1);
        if (!mRaw.GetImage({number}))
            Fail("no such image");
        return {number};
    }
    [[nodiscard]] QLX_RecordedCanvas Canvas() {
        if (Take("null"))
            return {QLX_RecordedCanvas::kNone};
        if (Take("foreign"))
            return {QLX_RecordedCanvas::kForeign};
        Expect("@");
        const int number = CanvasNumber();
        if (mMakesCanvas)
            (void)mRaw.NewCanvas();
        return {number};
    }
    template <class T, class Each>
    [[nodiscard]] std::vector<T> List(Each each) {
        Expect("[");
        std::vector<T> values;
        while (!Take("]"))
            values.push_back(each());
        return values;
    }

    std::string_view mText;
    std::string mSource;
    std::string_view mLine;
    int mLineNumber = 0;
    std::size_t mPlace = 0; // in the line
    bool mMakesCanvas = false;
    QLX_Recording mRaw;
};

Cmn_RefCountPtr<QLX_Recording> QLX_Recording::Parse(std::string_view text,
                                                    const std::string& source) {
    return QLX_RecordingReader(text, source).Read();
}
