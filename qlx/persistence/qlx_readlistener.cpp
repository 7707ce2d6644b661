// The listener inside the getters of containers.
#include <cstring>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_genericproperty.h"
#include "qlx/persistence/qlx_persistence.h"

QLX_PropertyReadListener* gQLX_ReadListener = nullptr;

QLX_PropertyReadListener::~QLX_PropertyReadListener() = default;

QLX_PropertyReadListener*
QLX_PropertyReadListener::SetListener(QLX_PropertyReadListener* listener) {
    return std::exchange(gQLX_ReadListener, listener);
}

namespace {
template <class Value>
std::string TextOf(const Value& value, QLX_PropertyType type) {
    return QLX_GenericProperty(value, type).AsString();
}
/// A caller may leave the output unset when it only looks at the answer; its bytes are read as
/// bytes.
std::string TextOf(const bool& value, QLX_PropertyType) {
    unsigned char byte;
    std::memcpy(&byte, &value, 1);
    return byte ? "true" : "false";
}
std::string TextOf(const std::int64_t& value, QLX_PropertyType) { return std::to_string(value); }
} // namespace

template <class Value, QLX_RawPropertyContainer::SetGetter<Value> kGet>
bool QLX_RawPropertyContainer::GetListenedTo(std::string_view name, QLX_PropertyType type,
                                             Value& value) const {
    CMN_ASSERT(mHasCurrentSet);
    const bool found = (mCurrentSet.*kGet)(name, value);
    if (gQLX_ReadListener)
        gQLX_ReadListener->PropertyRead({this, name, type, found, TextOf(value, type)});
    return found;
}

template bool QLX_RawPropertyContainer::GetListenedTo<bool, &QLX_PropertySet::GetBoolProperty>(
    std::string_view, QLX_PropertyType, bool&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::int32_t, &QLX_PropertySet::GetInt32Property>(
    std::string_view, QLX_PropertyType, std::int32_t&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::int64_t, &QLX_PropertySet::GetInt32Property>(
    std::string_view, QLX_PropertyType, std::int64_t&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::int64_t, &QLX_PropertySet::GetInt64Property>(
    std::string_view, QLX_PropertyType, std::int64_t&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::uint32_t, &QLX_PropertySet::GetIDTypeProperty>(
    std::string_view, QLX_PropertyType, std::uint32_t&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::string, &QLX_PropertySet::GetStringProperty>(
    std::string_view, QLX_PropertyType, std::string&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<std::string, &QLX_PropertySet::GetStringKeyProperty>(
    std::string_view, QLX_PropertyType, std::string&) const;
template bool
QLX_RawPropertyContainer::GetListenedTo<CRGBColor, &QLX_PropertySet::GetColorProperty>(
    std::string_view, QLX_PropertyType, CRGBColor&) const;
template bool QLX_RawPropertyContainer::GetListenedTo<VPoint, &QLX_PropertySet::GetPointProperty>(
    std::string_view, QLX_PropertyType, VPoint&) const;
template bool QLX_RawPropertyContainer::GetListenedTo<VRect, &QLX_PropertySet::GetRectProperty>(
    std::string_view, QLX_PropertyType, VRect&) const;
