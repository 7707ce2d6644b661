#include "qlx/persistence/qlx_treecode.h"

#include <stdexcept>
#include <unordered_map>

#include "qlx/persistence/qlx_nodepool.h"
#include "qlx/persistence/qlx_propertysetbuilder.h"

namespace {
constexpr std::uint64_t kVersion = 1;
// A pooled name may be used by every third byte of a file; longer ones stand where they are used,
// so that few bytes cannot ask for much memory.
constexpr std::size_t kLongestPooled = 255;
// Filters are compared wherever they are used, by three bytes each; so they are short.
constexpr std::size_t kLongestFilter = 4096;

std::uint64_t ZigZag(std::int64_t value) {
    return static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63);
}
std::int64_t UnZigZag(std::uint64_t value) {
    return static_cast<std::int64_t>(value >> 1 ^ (~(value & 1) + 1));
}

void PutNumber(std::string& out, std::uint64_t value) {
    for (; value >= 0x80; value >>= 7)
        out += static_cast<char>(value | 0x80);
    out += static_cast<char>(value);
}
void PutText(std::string& out, std::string_view text) {
    PutNumber(out, text.size());
    out += text;
}
} // namespace

class QLX_TreeCode::Encoder {
  public:
    std::string Encode(const QLX_ViewMemento& memento) {
        PutTree(*memento.GetRoot());
        PutStringTables(memento);
        std::string out;
        PutNumber(out, kVersion);
        PutNumber(out, mNames.size());
        for (const std::string& name : mNames)
            PutText(out, name);
        PutNumber(out, mFilterCount);
        return out + mFilters + mBody;
    }

  private:
    /// 0 and the text, or its place in the pool, counting from 1.
    void PutName(std::string& out, std::string_view name) {
        if (name.size() > kLongestPooled) {
            PutNumber(out, 0);
            PutText(out, name);
            return;
        }
        const auto [found, added] = mPlaces.try_emplace(std::string(name), mNames.size() + 1);
        if (added)
            mNames.emplace_back(name);
        PutNumber(out, found->second);
    }

    std::size_t FilterPlace(const QLX_PropertyFilter& filter) {
        const auto [found, added] = mFilterPlaces.try_emplace(filter, mFilterCount);
        if (added) {
            ++mFilterCount;
            std::size_t size = 0;
            for (const auto& [name, value] : filter.GetAttributes())
                size += name.size() + value.size() + 1;
            if (size > kLongestFilter)
                throw std::runtime_error("a filter's attributes are longer than " +
                                         std::to_string(kLongestFilter) + " bytes");
            PutNumber(mFilters, filter.GetAttributes().size());
            for (const auto& [name, value] : filter.GetAttributes()) {
                PutName(mFilters, name);
                PutName(mFilters, value);
            }
        }
        return found->second;
    }

    void PutTree(const QLX_RawPropertyContainer& root) {
        const QLX_RawPropertyContainer* node = &root;
        while (node) {
            PutContainer(*node);
            const QLX_RawPropertyContainer* next = node->GetFirstChild();
            while (!next && node != &root) {
                next = node->GetNextSibling();
                node = node->GetParent();
            }
            node = next;
        }
    }

    void PutContainer(const QLX_RawPropertyContainer& container) {
        PutName(mBody, container.GetName());
        PutNumber(mBody, container.GetFilterPropertyMap().size());
        for (const auto& [filter, set] : container.GetFilterPropertyMap()) {
            PutNumber(mBody, FilterPlace(filter));
            PutNumber(mBody, set.GetCount());
            for (std::size_t i = 0; i < set.GetCount(); ++i)
                PutProperty(set.GetAt(i));
        }
        PutNumber(mBody, container.CountChildren());
    }

    void PutProperty(const QLX_PropertyView& view) {
        PutNumber(mBody, static_cast<std::uint64_t>(view.mType));
        PutName(mBody, view.mName);
        switch (view.mType) {
        case qlx_PropType_String:
        case qlx_PropType_String_Key:
            PutText(mBody, view.mText);
            break;
        case qlx_PropType_Color:
            PutNumber(mBody, view.mColor.GetRed());
            PutNumber(mBody, view.mColor.GetGreen());
            PutNumber(mBody, view.mColor.GetBlue());
            PutNumber(mBody, view.mColor.GetAlpha());
            break;
        case qlx_PropType_Point:
            PutNumber(mBody, ZigZag(view.mPoint.v));
            PutNumber(mBody, ZigZag(view.mPoint.h));
            break;
        case qlx_PropType_Rect:
            PutNumber(mBody, ZigZag(view.mRect.Top()));
            PutNumber(mBody, ZigZag(view.mRect.Left()));
            PutNumber(mBody, ZigZag(view.mRect.Bottom()));
            PutNumber(mBody, ZigZag(view.mRect.Right()));
            break;
        default:
            PutNumber(mBody, ZigZag(view.mInteger));
        }
    }

    void PutStringTables(const QLX_ViewMemento& memento) {
        PutNumber(mBody, memento.GetStringTables().size());
        for (const auto& [language, table] : memento.GetStringTables()) {
            PutNumber(mBody, static_cast<std::uint64_t>(language));
            PutNumber(mBody, table.size());
            for (const auto& [key, entry] : table) {
                PutText(mBody, key);
                PutText(mBody, entry.mSource);
                PutText(mBody, entry.mLocalized);
            }
        }
    }

    std::vector<std::string> mNames;
    std::unordered_map<std::string, std::size_t> mPlaces;
    std::map<QLX_PropertyFilter, std::size_t> mFilterPlaces;
    std::size_t mFilterCount = 0;
    std::string mFilters;
    std::string mBody;
};

class QLX_TreeCode::Decoder {
    using Key = QLX_PropertyBytes::Key; // of type none, until the type is known

  public:
    Decoder(std::string_view bytes, const std::string& name, int maximumDepth)
        : mBytes(bytes), mName(name), mMaximumDepth(maximumDepth) {}

    std::unique_ptr<QLX_ViewMemento> Decode() {
        if (const std::uint64_t version = GetNumber(); version != kVersion)
            Fail("unknown version " + std::to_string(version));
        mNames.resize(GetCount(1));
        for (Key& name : mNames) {
            name = QLX_PropertyBytes::KeyOf(qlx_PropType_None, GetText());
            if (name.mName.size() > kLongestPooled)
                Fail("a name is too long for the pool");
        }
        const std::size_t filterCount = GetCount(1);
        for (std::size_t i = 0; i < filterCount; ++i)
            mFilters.push_back(GetFilter());
        auto memento = std::make_unique<QLX_ViewMemento>(GetTree().release(), mName);
        GetStringTables(*memento);
        if (mAt != mBytes.size())
            Fail("there is more behind the string tables");
        return memento;
    }

  private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::runtime_error(mName + ": at byte " + std::to_string(mAt) + ": " + reason);
    }

    /// Nearly all numbers take one byte.
    std::uint64_t GetNumber() {
        if (mAt < mBytes.size()) {
            const unsigned char byte = static_cast<unsigned char>(mBytes[mAt]);
            if (byte < 0x80) {
                ++mAt;
                return byte;
            }
        }
        return GetLongNumber();
    }

    std::uint64_t GetLongNumber() {
        std::uint64_t value = 0;
        for (int shift = 0;; shift += 7) {
            if (mAt >= mBytes.size())
                Fail("the bytes end in a number");
            const std::uint64_t byte = static_cast<unsigned char>(mBytes[mAt++]);
            if (shift == 63 && byte > 1)
                Fail("a number is too large");
            value |= (byte & 0x7F) << shift;
            if (byte < 0x80)
                return value;
        }
    }

    /// A count of things of which each takes some bytes.
    std::size_t GetCount(std::size_t bytesEach) {
        const std::uint64_t count = GetNumber();
        if (count > (mBytes.size() - mAt) / bytesEach)
            Fail("a count of " + std::to_string(count) + " is more than the bytes can hold");
        return static_cast<std::size_t>(count);
    }

    std::string_view GetText() {
        const std::size_t size = GetCount(1);
        const std::string_view text = mBytes.substr(mAt, size);
        mAt += size;
        return text;
    }

    /// A name with its hash, which names of the pool have already.
    Key GetKey() {
        const std::uint64_t place = GetNumber();
        if (place == 0)
            return QLX_PropertyBytes::KeyOf(qlx_PropType_None, GetText());
        if (place > mNames.size())
            Fail("there is no name " + std::to_string(place));
        return mNames[static_cast<std::size_t>(place - 1)];
    }
    std::string_view GetName() { return GetKey().mName; }

    QLX_PropertyFilter GetFilter() {
        std::map<std::string, std::string> attributes;
        const std::size_t count = GetCount(2);
        std::size_t size = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string name(GetName());
            std::string& value = attributes[name];
            value = GetName();
            size += name.size() + value.size() + 1;
            if (size > kLongestFilter)
                Fail("a filter's attributes are too long");
        }
        if (attributes == QLX_PropertyFilter::RootFilter().GetAttributes())
            return QLX_PropertyFilter::RootFilter();
        return QLX_PropertyFilter(attributes);
    }

    struct OpenContainer {
        QLX_RawPropertyContainer* mContainer; // owned by its parent or by GetTree
        std::size_t mChildrenLeft;
    };

    std::unique_ptr<QLX_RawPropertyContainer> GetTree() {
        std::vector<OpenContainer> open;
        std::size_t childCount = 0;
        std::unique_ptr<QLX_RawPropertyContainer> root = GetContainer(childCount);
        open.push_back({root.get(), childCount});
        while (!open.empty()) {
            if (open.back().mChildrenLeft == 0) {
                open.pop_back();
                continue;
            }
            --open.back().mChildrenLeft;
            if (open.size() >= static_cast<std::size_t>(mMaximumDepth))
                Fail("containers are nested more than " + std::to_string(mMaximumDepth) + " deep");
            std::unique_ptr<QLX_RawPropertyContainer> child = GetContainer(childCount);
            QLX_RawPropertyContainer* const added = child.get();
            open.back().mContainer->AddChild(std::move(child));
            open.push_back({added, childCount});
        }
        return root;
    }

    std::unique_ptr<QLX_RawPropertyContainer> GetContainer(std::size_t& childCount) {
        mContainerName = GetName();
        std::unique_ptr<QLX_RawPropertyContainer> container(
            new (mPool) QLX_PooledContainer(mContainerName));
        auto& sets = container->GetFilterPropertyMap();
        const std::size_t setCount = GetCount(2);
        for (std::size_t i = 0; i < setCount; ++i) {
            const std::uint64_t filter = GetNumber();
            if (filter >= mFilters.size())
                Fail("there is no filter " + std::to_string(filter));
            const std::size_t count = GetCount(3);
            for (std::size_t n = 0; n < count; ++n)
                GetProperty();
            // They were written in the map's order.
            sets.insert_or_assign(sets.end(), mFilters[static_cast<std::size_t>(filter)],
                                  mSet.Take(&mPool));
        }
        childCount = GetCount(3);
        return container;
    }

    std::int64_t GetSigned() { return UnZigZag(GetNumber()); }

    template <class Int>
    Int GetWithin() {
        const std::int64_t value = GetSigned();
        if (value != static_cast<std::int64_t>(static_cast<Int>(value)))
            Fail("the number " + std::to_string(value) + " is out of its type's range");
        return static_cast<Int>(value);
    }

    std::uint16_t GetComponent() {
        const std::uint64_t value = GetNumber();
        if (value > 0xFFFF)
            Fail("a colour component is out of range");
        return static_cast<std::uint16_t>(value);
    }

    void GetProperty() {
        const std::uint64_t type = GetNumber();
        if (type >= kQLX_PropertyTypeCount)
            Fail("there is no property type " + std::to_string(type));
        const Key key = QLX_PropertyBytes::WithType(GetKey(), static_cast<QLX_PropertyType>(type));
        switch (type) {
        case qlx_PropType_Bool:
            mSet.AddScalar(key, GetSigned() != 0);
            break;
        case qlx_PropType_Int32:
            mSet.AddScalar(key,
                           static_cast<std::uint64_t>(std::int64_t{GetWithin<std::int32_t>()}));
            break;
        case qlx_PropType_Int64:
            mSet.AddScalar(key, static_cast<std::uint64_t>(GetSigned()));
            break;
        case qlx_PropType_IDType:
            mSet.AddScalar(key, GetWithin<std::uint32_t>());
            break;
        case qlx_PropType_String:
        case qlx_PropType_String_Key: {
            const std::string_view text = GetText();
            mSet.AddBytes(key, text.data(), text.size());
            break;
        }
        case qlx_PropType_Color: {
            const std::uint16_t red = GetComponent();
            const std::uint16_t green = GetComponent();
            const std::uint16_t blue = GetComponent();
            mSet.AddColor(key, CRGBColor(red, green, blue, GetComponent()));
            break;
        }
        case qlx_PropType_Point: {
            const std::int64_t vertical = GetSigned();
            const VPoint point(GetSigned(), vertical);
            mSet.AddPoint(key, point);
            break;
        }
        case qlx_PropType_Rect: {
            const std::int64_t top = GetSigned();
            const std::int64_t left = GetSigned();
            const std::int64_t bottom = GetSigned();
            const VRect rect(left, top, GetSigned(), bottom);
            mSet.AddRect(key, rect);
            break;
        }
        default:
            Fail("there is no property type " + std::to_string(type));
        }
    }

    void GetStringTables(QLX_ViewMemento& memento) {
        const std::size_t tableCount = GetCount(2);
        for (std::size_t i = 0; i < tableCount; ++i) {
            const std::uint64_t language = GetNumber();
            if (language >= QLX_Language::kLanguageCount)
                Fail("there is no language " + std::to_string(language));
            QLX_StringTable& table =
                memento.GetStringTables()[static_cast<QLX_Language::ELanguage>(language)];
            const std::size_t entryCount = GetCount(3);
            for (std::size_t n = 0; n < entryCount; ++n) {
                std::string key(GetText());
                QLX_StringTableEntry entry;
                entry.mSource = GetText();
                entry.mLocalized = GetText();
                table.insert_or_assign(table.end(), std::move(key), std::move(entry));
            }
        }
    }

    std::string_view mBytes;
    const std::string& mName;
    int mMaximumDepth;
    std::size_t mAt = 0;
    std::vector<Key> mNames;
    std::vector<QLX_PropertyFilter> mFilters;
    std::string mContainerName;
    QLX_NodePool mPool;
    QLX_PropertySetBuilder mSet; // the one that is being read
};

std::string QLX_TreeCode::Encode(const QLX_ViewMemento& memento) {
    return Encoder().Encode(memento);
}

std::unique_ptr<QLX_ViewMemento> QLX_TreeCode::Decode(std::string_view bytes,
                                                      const std::string& name, int maximumDepth) {
    return Decoder(bytes, name, maximumDepth).Decode();
}
