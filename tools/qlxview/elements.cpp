#include "elements.h"

#include "basekit/cmn/cmn_string.h"

namespace {
std::string ChildName(const QLX_RawPropertyContainer& container) {
    const auto& sets = container.GetFilterPropertyMap();
    const auto set = sets.find(QLX_PropertyFilter::RootFilter());
    std::string text;
    std::uint32_t identifier = 0;
    if (set == sets.end())
        return container.GetName();
    if (set->second.GetIDTypeProperty("Identifier", identifier) && identifier != 0)
        return container.GetName() + " '" + Cmn_IDToString(identifier) + "'";
    if (set->second.GetStringProperty("name", text) && !text.empty())
        return container.GetName() + " \"" + text + "\"";
    if (set->second.GetStringProperty("class", text) && !text.empty())
        return container.GetName() + " " + text;
    return container.GetName();
}
} // namespace

NamedChildren NameChildren(const QLX_RawPropertyContainer& container) {
    NamedChildren children;
    std::map<std::string, int> counts;
    for (auto* child = container.GetFirstChild(); child; child = child->GetNextSibling()) {
        std::string name = ChildName(*child);
        const int number = ++counts[name];
        if (number > 1)
            name += " #" + std::to_string(number);
        children.emplace_back(std::move(name), child);
    }
    return children;
}

PropertyMap PropertiesOf(const QLX_RawPropertyContainer* container) {
    PropertyMap properties;
    if (!container)
        return properties;
    for (const auto& [filter, set] : container->GetFilterPropertyMap())
        for (std::size_t i = 0; i < set.GetCount(); ++i) {
            const QLX_PropertyView view = set.GetAt(i);
            properties[{std::string(view.mName), view.mType, filter}] = view;
        }
    return properties;
}

std::string PropertyLabel(const PropertyID& id) {
    return std::get<0>(id) + " (" + QLX_PropertyTypeToString(std::get<1>(id)) + ")" +
           FilterLabel(std::get<2>(id));
}

std::string QuotedValue(const QLX_PropertyView& view) {
    const bool isText = view.mType == qlx_PropType_String || view.mType == qlx_PropType_String_Key;
    return isText ? "\"" + ValueText(view) + "\"" : ValueText(view);
}

bool SameValue(const QLX_PropertyView& a, const QLX_PropertyView& b) {
    return ValueText(a) == ValueText(b);
}

bool SameTree(const QLX_RawPropertyContainer& a, const QLX_RawPropertyContainer& b) {
    const PropertyMap mine = PropertiesOf(&a);
    const PropertyMap theirs = PropertiesOf(&b);
    if (a.GetName() != b.GetName() || mine.size() != theirs.size())
        return false;
    for (auto i = mine.begin(), j = theirs.begin(); i != mine.end(); ++i, ++j)
        if (i->first != j->first || !SameValue(i->second, j->second))
            return false;
    const auto* child = a.GetFirstChild();
    const auto* other = b.GetFirstChild();
    for (; child && other; child = child->GetNextSibling(), other = other->GetNextSibling())
        if (!SameTree(*child, *other))
            return false;
    return !child && !other;
}
