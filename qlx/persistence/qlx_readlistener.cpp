#include "qlx/persistence/qlx_readlistener.h"

#include <cstring>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_genericproperty.h"

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

template <class Value>
bool QLX_RawPropertyContainer::GetListenedTo(std::string_view name, QLX_PropertyType type,
                                             Value& value,
                                             bool (QLX_PropertySet::*get)(std::string_view, Value&)
                                                 const) const {
    CMN_ASSERT(mHasCurrentSet);
    const bool found = (mCurrentSet.*get)(name, value);
    if (gQLX_ReadListener)
        gQLX_ReadListener->PropertyRead({this, name, type, found, TextOf(value, type)});
    return found;
}

template bool QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, bool&,
                                                      bool (QLX_PropertySet::*)(std::string_view,
                                                                                bool&) const) const;
template bool
QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, std::int32_t&,
                                        bool (QLX_PropertySet::*)(std::string_view, std::int32_t&)
                                            const) const;
template bool
QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, std::int64_t&,
                                        bool (QLX_PropertySet::*)(std::string_view, std::int64_t&)
                                            const) const;
template bool
QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, std::uint32_t&,
                                        bool (QLX_PropertySet::*)(std::string_view, std::uint32_t&)
                                            const) const;
template bool
QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, std::string&,
                                        bool (QLX_PropertySet::*)(std::string_view, std::string&)
                                            const) const;
template bool
QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, CRGBColor&,
                                        bool (QLX_PropertySet::*)(std::string_view, CRGBColor&)
                                            const) const;
template bool QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, VPoint&,
                                                      bool (QLX_PropertySet::*)(std::string_view,
                                                                                VPoint&)
                                                          const) const;
template bool QLX_RawPropertyContainer::GetListenedTo(std::string_view, QLX_PropertyType, VRect&,
                                                      bool (QLX_PropertySet::*)(std::string_view,
                                                                                VRect&)
                                                          const) const;
