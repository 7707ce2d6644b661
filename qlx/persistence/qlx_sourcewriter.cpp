// The writer of XML sources. Equal trees give equal bytes: properties are sorted by name, filters
// stand in the order of the container's map, children in the order of theirs.
#include "qlx/persistence/qlx_sourceformat.h"

#include <stdexcept>

#include "basekit/cmn/cmn_string.h"

namespace {
std::string FilterText(const QLX_PropertyFilter& filter) {
    std::string text;
    const auto append = [&text](const std::string& name, const std::string& value) {
        if (!value.empty())
            text += " " + name + "=\"" + Cmn_XML_SimpleEscape(value) + "\"";
    };
    const auto& attributes = filter.GetAttributes();
    for (std::size_t i = 0; i < FILTER_HIERARCHY_SIZE; ++i) {
        const auto found = attributes.find(QLX_GetFilterHierarchyName(i));
        if (found != attributes.end())
            append(found->first, found->second);
    }
    for (const auto& [name, value] : attributes)
        if (name != QLX_GetFilterHierarchyName(0) && name != QLX_GetFilterHierarchyName(1))
            append(name, value);
    return text;
}

/// The stored value under the default filter, or null.
const QLX_PropertySet* DefaultSet(const QLX_RawPropertyContainer& container) {
    const auto& sets = container.GetFilterPropertyMap();
    const auto found = sets.find(QLX_PropertyFilter::DefaultFilter());
    return found == sets.end() ? nullptr : &found->second;
}

/// Whether the text is UTF-8 made of characters that XML 1.0 allows.
bool CanBeWritten(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const unsigned char first = static_cast<unsigned char>(text[at]);
        if (first < 0x80) {
            if (first < 0x20 && first != '\t' && first != '\n' && first != '\r')
                return false;
            ++at;
            continue;
        }
        const std::size_t start = at;
        const std::uint32_t code = Cmn_DecodeUTF8(text, at);
        if ((code == 0xFFFD && at == start + 1) || code == 0xFFFE || code == 0xFFFF)
            return false;
    }
    return true;
}

/// Whether a tag or an attribute may have this name. Beyond ASCII every character is let through
/// that the text may have: XML excludes few of them.
bool IsXMLName(const std::string& name) {
    if (name.empty() || !CanBeWritten(name))
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const char lower = static_cast<char>(c | 0x20);
        const bool starts = (lower >= 'a' && lower <= 'z') || c == '_' || c == ':' ||
                            static_cast<unsigned char>(c) >= 0x80;
        const bool continues = (c >= '0' && c <= '9') || c == '-' || c == '.';
        if (!starts && (i == 0 || !continues))
            return false;
    }
    return true;
}

[[noreturn]] void Refuse(const QLX_RawPropertyContainer& container, const std::string& what) {
    throw std::runtime_error(container.GetPath() + ": " + what);
}

class Writer {
  public:
    Writer(LineEndings endings, const QLX_SourceComments* comments)
        : mLineEnd(Sys_LineEndText(endings)), mComments(comments) {}

    std::string Write(const QLX_RawPropertyContainer& root) {
        static const QLX_SourceComments::Around none;
        const QLX_SourceComments::Around& file = mComments ? mComments->mFile : none;
        WriteBefore(file, 0);
        std::string name;
        if (const QLX_PropertySet* const set = DefaultSet(root))
            set->GetStringProperty("name", name);
        mOut += "<container name=\"" + Cmn_XML_SimpleEscape(name) + "\">";
        mOut += mLineEnd;
        WriteTree(root);
        mOut += "</container>";
        for (const std::string& text : file.mBehind)
            mOut += mLineEnd + ("<!--" + text + "-->");
        return std::move(mOut);
    }

  private:
    // Without recursion, so that no depth of tree is too much.
    void WriteTree(const QLX_RawPropertyContainer& root) {
        const QLX_RawPropertyContainer* node = &root;
        int depth = 1;
        WriteStart(*node, depth);
        for (;;) {
            if (const QLX_RawPropertyContainer* const child = node->GetFirstChild()) {
                node = child;
                WriteStart(*node, ++depth);
                continue;
            }
            for (;;) {
                WriteEnd(*node, depth);
                if (node == &root)
                    return;
                if (const QLX_RawPropertyContainer* const next = node->GetNextSibling()) {
                    node = next;
                    WriteStart(*node, depth);
                    break;
                }
                node = node->GetParent();
                --depth;
            }
        }
    }

    void Indent(int depth) { mOut.append(static_cast<std::size_t>(depth), '\t'); }

    void WriteBefore(const QLX_SourceComments::Around& around, int depth) {
        for (const std::string& text : around.mBefore) {
            Indent(depth);
            mOut += "<!--" + text + "-->";
            mOut += mLineEnd;
        }
    }

    void WriteBehind(const QLX_SourceComments::Around& around) {
        for (const std::string& text : around.mBehind)
            mOut += " <!--" + text + "-->";
    }

    template <class Map>
    const QLX_SourceComments::Around& AroundOf(const Map& map, const typename Map::key_type& key) {
        static const QLX_SourceComments::Around none;
        const auto found = map.find(key);
        return found == map.end() ? none : found->second;
    }

    void WriteStart(const QLX_RawPropertyContainer& container, int depth) {
        if (!IsXMLName(container.GetName()))
            Refuse(container, "a container of this name cannot be written");
        static const QLX_SourceComments::Around none;
        const QLX_SourceComments::Around& around =
            mComments ? AroundOf(mComments->mStart, &container) : none;
        WriteBefore(around, depth);
        Indent(depth);
        mOut += '<';
        mOut += container.GetName();
        std::set<std::string> excluded;
        WriteWellKnown(container, excluded);
        mOut += '>';
        WriteBehind(around);
        mOut += mLineEnd;
        for (const auto& [filter, set] : container.GetFilterPropertyMap())
            WriteSet(container, filter, set, depth + 1, excluded);
    }

    void WriteWellKnown(const QLX_RawPropertyContainer& container,
                        std::set<std::string>& excluded) {
        const auto& table = QLX_SourceViewFormat::GetWellKnownProperties();
        const auto element = table.find(container.GetName());
        if (element == table.end())
            return;
        const QLX_PropertySet* const set = DefaultSet(container);
        for (const QLX_WellKnownProperty& property : element->second) {
            std::string value;
            std::uint32_t identifier = 0;
            if (set && property.mType == qlx_PropType_IDType) {
                if (set->GetIDTypeProperty(property.mName, identifier) && identifier != 0)
                    value = Cmn_IDToString(identifier);
            } else if (set) {
                set->GetStringProperty(property.mName, value);
            }
            if (value.empty() && !property.mRequired)
                continue;
            CheckText(container, property.mName, value);
            mOut += " " + property.mName + "=\"" + Cmn_XML_SimpleEscape(value) + "\"";
            // One that is required counts as written even when it is empty: reading stores the
            // empty value, which must not come out as a property line the next time.
            excluded.insert(property.mName);
        }
    }

    void WriteSet(const QLX_RawPropertyContainer& container, const QLX_PropertyFilter& filter,
                  const QLX_PropertySet& set, int depth, const std::set<std::string>& excluded) {
        for (const auto& [name, value] : filter.GetAttributes())
            if (!IsXMLName(name) || !CanBeWritten(value))
                Refuse(container, "the filter " + filter.ToString() + " cannot be written");
        for (std::size_t i = 0; i < set.GetCount(); ++i) {
            const QLX_PropertyView view = set.GetAt(i);
            CheckText(container, view.mName, view.mName);
            CheckText(container, view.mName, view.mText);
        }
        const std::string attributes = FilterText(filter);
        if (!mComments) {
            set.AppendXML(mOut, attributes, depth, mLineEnd, excluded, /*sorted*/ true);
            return;
        }
        const auto before = [&](const QLX_PropertyView& view) {
            WriteBefore(AroundOf(mComments->mProperties, KeyOf(container, filter, view)), depth);
        };
        const auto behind = [&](const QLX_PropertyView& view) {
            WriteBehind(AroundOf(mComments->mProperties, KeyOf(container, filter, view)));
        };
        set.AppendXML(mOut, attributes, depth, mLineEnd, excluded, /*sorted*/ true, before, behind);
    }

    static QLX_SourceComments::PropertyKey KeyOf(const QLX_RawPropertyContainer& container,
                                                 const QLX_PropertyFilter& filter,
                                                 const QLX_PropertyView& view) {
        return {&container, filter, view.mType, std::string(view.mName)};
    }

    static void CheckText(const QLX_RawPropertyContainer& container, std::string_view name,
                          std::string_view text) {
        if (!CanBeWritten(text))
            Refuse(container,
                   "the property \"" + std::string(name) +
                       "\" cannot be written: it is no UTF-8, or has characters that XML "
                       "has not");
    }

    void WriteEnd(const QLX_RawPropertyContainer& container, int depth) {
        static const QLX_SourceComments::Around none;
        const QLX_SourceComments::Around& around =
            mComments ? AroundOf(mComments->mEnd, &container) : none;
        WriteBefore(around, depth + 1);
        Indent(depth);
        mOut += "</" + container.GetName() + "> <!--" +
                QLX_SourceViewFormat::GetClosingComment(container) + "-->";
        WriteBehind(around);
        mOut += mLineEnd;
    }

    std::string mOut;
    const char* mLineEnd;
    const QLX_SourceComments* mComments; // not owned; may be null
};
} // namespace

std::string QLX_SourceViewFormat::WriteToText(const QLX_RawPropertyContainer& root,
                                              LineEndings endings,
                                              const QLX_SourceComments* comments) {
    return Writer(endings, comments).Write(root);
}

std::string QLX_SourceViewFormat::GetClosingComment(const QLX_RawPropertyContainer& container) {
    std::string name;
    if (const QLX_PropertySet* const set = DefaultSet(container))
        set->GetStringProperty("name", name);
    std::string text;
    for (const char c : name) {
        // Two hyphens would end the comment, a line end the line.
        if (c == '-' && !text.empty() && text.back() == '-')
            text += ' ';
        text += c == '\r' || c == '\n' ? ' ' : c;
    }
    return text + " ";
}

std::vector<std::string>
QLX_SourceViewFormat::FindUnwritable(const QLX_RawPropertyContainer& root) {
    constexpr std::size_t kMostNamed = 1000;
    std::vector<std::string> found;
    std::size_t further = 0;
    const auto look = [&](const QLX_RawPropertyContainer& container) {
        const auto element = GetWellKnownProperties().find(container.GetName());
        if (element == GetWellKnownProperties().end())
            return;
        const QLX_PropertySet* const written = DefaultSet(container);
        for (const QLX_WellKnownProperty& property : element->second) {
            std::string text;
            std::uint32_t identifier = 0;
            const bool hasValue =
                written &&
                (property.mType == qlx_PropType_IDType
                     ? written->GetIDTypeProperty(property.mName, identifier) && identifier != 0
                     : written->GetStringProperty(property.mName, text) && !text.empty());
            if (!hasValue && !property.mRequired)
                continue;
            for (const auto& [filter, set] : container.GetFilterPropertyMap()) {
                for (int type = 1; type < kQLX_PropertyTypeCount; ++type) {
                    const auto itsType = static_cast<QLX_PropertyType>(type);
                    if ((&set == written && itsType == property.mType) ||
                        !set.HasProperty(itsType, property.mName))
                        continue;
                    if (found.size() >= kMostNamed) {
                        ++further;
                        continue;
                    }
                    found.push_back(container.GetPath() + ": " + property.mName + " (" +
                                    QLX_PropertyTypeToString(itsType) + ", " + filter.ToString() +
                                    ")");
                }
            }
        }
    };
    for (const QLX_RawPropertyContainer* node = &root; node;) {
        look(*node);
        const QLX_RawPropertyContainer* next = node->GetFirstChild();
        for (; !next && node != &root; node = node->GetParent())
            next = node->GetNextSibling();
        node = next;
    }
    if (further > 0)
        found.push_back(root.GetPath() + ": " + std::to_string(further) + " further ones");
    return found;
}
