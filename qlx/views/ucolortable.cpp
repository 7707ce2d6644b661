#include "qlx/views/ucolortable.h"

#include "basekit/cmn/cmn_assert.h"

namespace {

constinit std::atomic<CColorTable*> sPresent{nullptr};

constexpr std::size_t Index(CColorTable::Layer layer) noexcept {
    return static_cast<std::size_t>(layer);
}

// The components alone: whether a colour is named is a matter of that colour, not of the entry.
constexpr CRGBColor Plain(const CRGBColor& color) noexcept {
    return {color.GetRed(), color.GetGreen(), color.GetBlue(), color.GetAlpha()};
}

} // namespace

class CColorTable::Lock {
  public:
    explicit Lock(std::atomic_flag& flag) noexcept : mFlag(flag) {
        while (mFlag.test_and_set(std::memory_order_acquire)) {
            while (mFlag.test(std::memory_order_relaxed)) {
            }
        }
    }
    ~Lock() { mFlag.clear(std::memory_order_release); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

  private:
    std::atomic_flag& mFlag;
};

CColorTable::Layer CColorTable::Slot::GetTop() const noexcept {
    if (mHas[Index(Layer::kUser)])
        return Layer::kUser;
    return mHas[Index(Layer::kTheme)] ? Layer::kTheme : Layer::kDefault;
}

CColorTable::CColorTable() = default;

CColorTable::~CColorTable() {
    CColorTable* self = this;
    sPresent.compare_exchange_strong(self, nullptr);
}

CColorTable* CColorTable::GetPresent() noexcept { return sPresent.load(std::memory_order_acquire); }

CColorTable* CColorTable::SetPresent(CColorTable* table) noexcept {
    return sPresent.exchange(table, std::memory_order_acq_rel);
}

bool CColorTable::RegisterWithPresent(const std::string& name, CRGBColor& color,
                                      ECRGBColorType type) {
    CColorTable* table = GetPresent();
    if (!table)
        return false;
    const CRGBColor entry = table->Register(name, color, type);
    color.SetRed(entry.GetRed());
    color.SetGreen(entry.GetGreen());
    color.SetBlue(entry.GetBlue());
    color.SetAlpha(entry.GetAlpha());
    return true;
}

CRGBColor CColorTable::Register(const std::string& name, const CRGBColor& value,
                                ECRGBColorType type) {
    const Lock lock(mLock);
    Slot& slot = mSlots[name];
    if (!slot.mHas[Index(Layer::kDefault)]) {
        slot.mColors[Index(Layer::kDefault)] = Plain(value);
        slot.mHas[Index(Layer::kDefault)] = true;
        slot.mType = type;
        ++mGeneration;
    }
    return slot.mColors[Index(slot.GetTop())];
}

bool CColorTable::Find(const std::string& name, CRGBColor& color) const {
    const Lock lock(mLock);
    const auto found = mSlots.find(name);
    if (found == mSlots.end())
        return false;
    color = found->second.mColors[Index(found->second.GetTop())];
    return true;
}

std::vector<CColorTable::Entry> CColorTable::GetEntries() const {
    const Lock lock(mLock);
    std::vector<Entry> entries;
    entries.reserve(mSlots.size());
    for (const auto& [name, slot] : mSlots)
        entries.push_back({name, slot.mType, slot.mColors[Index(slot.GetTop())], slot.GetTop()});
    return entries;
}

void CColorTable::SetLayerColor(Layer layer, const std::string& name, const CRGBColor& color) {
    CMN_ASSERT(layer != Layer::kDefault);
    if (layer == Layer::kDefault)
        return;
    const Lock lock(mLock);
    Slot& slot = mSlots[name];
    slot.mColors[Index(layer)] = Plain(color);
    slot.mHas[Index(layer)] = true;
    ++mGeneration;
}

void CColorTable::ClearLayer(Layer layer) {
    CMN_ASSERT(layer != Layer::kDefault);
    if (layer == Layer::kDefault)
        return;
    const Lock lock(mLock);
    for (auto slot = mSlots.begin(); slot != mSlots.end();) {
        slot->second.mHas[Index(layer)] = false;
        slot = slot->second.IsEmpty() ? mSlots.erase(slot) : std::next(slot);
    }
    ++mGeneration;
}

std::uint32_t CColorTable::GetGeneration() const noexcept {
    return mGeneration.load(std::memory_order_relaxed);
}
