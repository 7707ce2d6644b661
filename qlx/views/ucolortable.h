// The table that named colours register with. What a name's colour is comes from up to three
// layers: the default that the registering code gives, the theme's, and the user's own; the highest
// one that is there wins. Reading themes is the business of whoever installs the layers.
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "qlx/views/crgbcolor.h"

/// Named colours under one spin lock: colours register from static initialisers and from any
/// thread, and each hold is a look-up long. A process has at most one present table at a time.
class QLX_API CColorTable {
  public:
    /// Who decides a name's colour, weakest first.
    enum class Layer { kDefault, kTheme, kUser };

    struct Entry {
        std::string mName;
        ECRGBColorType mType;
        CRGBColor mColor; ///< of the highest layer that has one
        Layer mLayer;     ///< that layer
    };

    CColorTable();
    /// Stops being the present table if it is.
    ~CColorTable();
    CColorTable(const CColorTable&) = delete;
    CColorTable& operator=(const CColorTable&) = delete;

    // The present table

    /// The table that named colours register with; null until the library's theme, or a test, sets
    /// one.
    [[nodiscard]] static CColorTable* GetPresent() noexcept;
    /// Not owned: the caller keeps the table until another one, or null, takes its place. Colours
    /// constructed before then do not register later. Returns the previous one.
    static CColorTable* SetPresent(CColorTable* table) noexcept;
    /// Registers with the present table, if there is one, and writes the name's components into
    /// color (its flags stay). Returns whether there was a table.
    static bool RegisterWithPresent(const std::string& name, CRGBColor& color, ECRGBColorType type);

    // Entries

    /// Makes the name known with its default, or leaves a known name's default and type as they are
    /// when an earlier registration gave them. Returns the name's colour.
    CRGBColor Register(const std::string& name, const CRGBColor& value, ECRGBColorType type);
    /// Returns false and leaves color untouched for a name that no layer has a colour for.
    bool Find(const std::string& name, CRGBColor& color) const;
    /// Every name that some layer has a colour for, sorted by name.
    [[nodiscard]] std::vector<Entry> GetEntries() const;

    // Layers

    /// Sets a name's colour in the theme's or the user's layer, registered or not yet. The default
    /// layer is set by registering; asking for it here is asserted and changes nothing. Colours
    /// that exist keep their components: who shows colours asks again when the theme changes.
    void SetLayerColor(Layer layer, const std::string& name, const CRGBColor& color);
    /// Forgets all colours of the theme's or the user's layer.
    void ClearLayer(Layer layer);
    /// Grows with every change that may alter what Find answers, so that caches know they are
    /// stale.
    [[nodiscard]] std::uint32_t GetGeneration() const noexcept;

  private:
    struct Slot {
        CRGBColor mColors[3]; // by layer
        bool mHas[3] = {};
        ECRGBColorType mType = kRGBColorType_General;
        [[nodiscard]] Layer GetTop() const noexcept;
        [[nodiscard]] bool IsEmpty() const noexcept { return !mHas[0] && !mHas[1] && !mHas[2]; }
    };
    class Lock;

    mutable std::atomic_flag mLock;
    std::map<std::string, Slot> mSlots;
    std::atomic<std::uint32_t> mGeneration{0};
};
