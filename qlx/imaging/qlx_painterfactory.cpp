#include "qlx/imaging/qlx_painterfactory.h"

#include <array>

#include "qlx/imaging/qlx_recordingpainter.h"

namespace {

constexpr std::size_t kMostMakers = 16;

// Plain data that needs no construction: makers register from static initialisers.
constinit std::array<QLX_PainterMaker*, kMostMakers> sMakers{}; // not owned
constinit std::size_t sCount = 0;
constinit QLX_PainterMaker* sChosen = nullptr; // not owned

class RecordingMaker final : public QLX_PainterMaker {
  public:
    const char* GetName() const noexcept override { return "recording"; }
    QLX_Painter::Ptr MakeOffscreen(int width, int height, QLX_DeviceScale scale, bool) override {
        return QLX_Painter::Ptr(new QLX_PainterRecording(width, height, scale));
    }
    /// The pixels stay as they are; what is drawn is recorded.
    QLX_Painter::Ptr MakeForBuffer(const QLX_PixelBuffer& buffer, QLX_DeviceScale scale) override {
        const Cmn_Rect<int> size = scale.RectToLogical({0, 0, buffer.width, buffer.height});
        return QLX_Painter::Ptr(new QLX_PainterRecording(size.GetWidth(), size.GetHeight(), scale));
    }
    void Detach(QLX_Painter& painter) override {
        if (auto* recording = dynamic_cast<QLX_PainterRecording*>(&painter))
            recording->Detach();
    }
};

[[nodiscard]] RecordingMaker& Recording() noexcept {
    static RecordingMaker maker;
    return maker;
}

} // namespace

QLX_PainterMaker::~QLX_PainterMaker() = default;

QLX_Painter::Ptr QLX_PainterMaker::MakeForWindow(void*, QLX_DeviceScale) { return nullptr; }

void QLX_PainterFactory::Register(QLX_PainterMaker* maker) noexcept {
    if (!maker)
        return;
    for (std::size_t i = 0; i < sCount; ++i)
        if (std::string_view(sMakers[i]->GetName()) == maker->GetName()) {
            if (sChosen == sMakers[i])
                sChosen = maker;
            sMakers[i] = maker;
            return;
        }
    if (sCount < kMostMakers)
        sMakers[sCount++] = maker;
}

std::vector<std::string> QLX_PainterFactory::GetNames() {
    std::vector<std::string> names{Recording().GetName()};
    for (std::size_t i = 0; i < sCount; ++i)
        names.emplace_back(sMakers[i]->GetName());
    return names;
}

QLX_PainterMaker* QLX_PainterFactory::Find(std::string_view name) noexcept {
    for (std::size_t i = 0; i < sCount; ++i)
        if (name == sMakers[i]->GetName())
            return sMakers[i];
    return name == Recording().GetName() ? &Recording() : nullptr;
}

bool QLX_PainterFactory::Choose(std::string_view name) noexcept {
    QLX_PainterMaker* maker = Find(name);
    if (maker)
        sChosen = maker;
    return maker != nullptr;
}

QLX_PainterMaker& QLX_PainterFactory::Get() noexcept {
    if (sChosen)
        return *sChosen;
    return sCount ? *sMakers[sCount - 1] : static_cast<QLX_PainterMaker&>(Recording());
}
