#include "qlx/views/udebugdump.h"

#include <algorithm>
#include <vector>

#include "basekit/cmn/cmn_string.h"
#include "qlx/persistence/qlx_genericproperty.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uview.h"

namespace {

std::string Name(const TObject* object, std::uint32_t identifier) {
    return object->GetClassDescDynamic()->GetClassName() + " '" + Cmn_IDToString(identifier) + "'";
}

std::string LineOf(TView* view) {
    std::string text = Name(view, view->GetIdentifier());
    text += " frame " + view->GetFrame().AsString();
    if (!(view->GetLocalOffset() == VPoint())) {
        const VPoint& offset = view->GetLocalOffset();
        text += " offset " + std::to_string(offset.h) + ", " + std::to_string(offset.v);
    }
    if (!view->GetShownFlag())
        text += view->IsHiddenBySuperView() ? " hidden by its superview" : " hidden";
    if (!view->IsEnabled())
        text += " disabled";
    if (view->IsTarget())
        text += " target";
    return text;
}

void DumpView(TView* view, int level, std::string& text) {
    text.append(static_cast<std::size_t>(level) * 2, ' ');
    text += LineOf(view) + "\n";
    for (int i = 1; i <= view->CountSubViews(); ++i)
        DumpView(view->GetSubView(i), level + 1, text);
}

void DumpNode(TView* view, int& number, std::string& text) {
    const int own = number++;
    text +=
        "  n" + std::to_string(own) + " [label=\"" + Name(view, view->GetIdentifier()) + "\"];\n";
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        text += "  n" + std::to_string(own) + " -> n" + std::to_string(number) + ";\n";
        DumpNode(view->GetSubView(i), number, text);
    }
}

std::string TextOf(const QLX_PropertyView& value) {
    switch (value.mType) {
    case qlx_PropType_Bool:
        return value.mInteger != 0 ? "true" : "false";
    case qlx_PropType_IDType:
        return Cmn_IDToString(static_cast<std::uint32_t>(value.mInteger));
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        return std::string(value.mText);
    case qlx_PropType_Color:
        return QLX_GenericProperty(value.mColor, value.mType).AsString();
    case qlx_PropType_Point:
        return QLX_GenericProperty(value.mPoint, value.mType).AsString();
    case qlx_PropType_Rect:
        return QLX_GenericProperty(value.mRect, value.mType).AsString();
    default:
        return std::to_string(value.mInteger);
    }
}

/// The filters whose values the current one sees, the most specific first.
std::vector<QLX_PropertyFilter> ChainOf(const QLX_PropertyFilter& filter) {
    std::vector<QLX_PropertyFilter> chain{filter};
    while (chain.back().HasParent())
        chain.push_back(chain.back().GetParent());
    return chain;
}

/// "Layout=Compact Language=DEU" without what is empty; "common" for the filter that has nothing.
std::string ShortName(const QLX_PropertyFilter& filter) {
    std::string text;
    for (const auto& [name, value] : filter.GetAttributes()) {
        if (!value.empty())
            text.append(text.empty() ? "" : " ").append(name).append("=").append(value);
    }
    return text.empty() ? "common" : text;
}

} // namespace

std::string QLX_DumpView(TView* view) { return view ? LineOf(view) : std::string(); }

std::string QLX_DumpViews(TView* root) {
    std::string text;
    if (root)
        DumpView(root, 0, text);
    return text;
}

std::string QLX_DumpHandlerChain(TEventHandler* handler) {
    std::string text;
    for (; handler; handler = handler->GetNextHandler()) {
        text += Name(handler, handler->GetIdentifier()) + "\n";
        for (TBehavior* each = handler->GetFirstBehavior(); each; each = each->GetNextBehavior()) {
            text += "  behaviour " + Name(each, each->GetIdentifier());
            text += each->IsEnabled() ? "\n" : " disabled\n";
        }
    }
    return text;
}

std::string QLX_DumpProperties(const QLX_RawPropertyContainer* container) {
    if (!container || !container->HasCurrentSet())
        return {};
    const std::vector<QLX_PropertyFilter> chain = ChainOf(container->GetCurrentFilter());
    const auto& stored = container->GetFilterPropertyMap();
    const QLX_PropertySet& current = container->GetCurrentSet();
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < current.GetCount(); ++i) {
        const QLX_PropertyView value = current.GetAt(i);
        std::string line = std::string(value.mName) + " " + QLX_PropertyTypeToString(value.mType) +
                           " = " + TextOf(value);
        for (const QLX_PropertyFilter& filter : chain) {
            const auto set = stored.find(filter);
            if (set != stored.end() && set->second.HasProperty(value.mType, value.mName)) {
                line += " [" + ShortName(filter) + "]";
                break;
            }
        }
        lines.push_back(std::move(line));
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

std::string QLX_DumpViewsAsGraph(TView* root) {
    std::string text = "digraph views {\n";
    int number = 0;
    if (root)
        DumpNode(root, number, text);
    return text + "}\n";
}
