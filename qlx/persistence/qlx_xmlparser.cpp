// The XML reader. Expat does the parsing, with its own guard against entity expansion left on; what
// is made here is the tree.
#include "qlx/persistence/qlx_sourceformat.h"

#include <algorithm>
#include <cstring>
#include <typeinfo>
#include <utility>

#include <expat.h>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/sys/sys_pages.h"
#include "qlx/persistence/qlx_nodepool.h"
#include "qlx/persistence/qlx_propertysetbuilder.h"

namespace {
constexpr std::size_t kBlockSize = 1024;
constexpr std::size_t kLargestBlock = 1 << 20;
constexpr std::uint64_t kLargestWhole = 64 << 20;
constexpr std::size_t kMostProblems = 1000;
constexpr std::size_t kMostKnownFilters = 8;
constexpr char kProperty[] = "property";
constexpr char kIdentifier[] = "Identifier";

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

template <std::size_t kSize, std::size_t... kAt>
QLX_MERGED inline bool IsAt(const char* text, const char (&literal)[kSize],
                            std::index_sequence<kAt...>) {
    return ((text[kAt] == literal[kAt]) && ...);
}
/// strcmp with a literal, without a call and without a loop: nearly every element and attribute
/// goes through here.
template <std::size_t kSize>
QLX_MERGED inline bool Is(const char* text, const char (&literal)[kSize]) {
    return IsAt(text, literal, std::make_index_sequence<kSize>());
}

template <QLX_PropertyType kType>
using TypeConstant = std::integral_constant<QLX_PropertyType, kType>;

/// Calls with the type of that name, none included, as a constant: all that depends on a property's
/// type is decided by one jump, as a processor guesses such jumps badly.
template <class Function>
QLX_MERGED inline auto CallWithType(const char* name, Function function) {
    switch (name[0]) {
    case 'b':
        if (Is(name, "bool"))
            return function(TypeConstant<qlx_PropType_Bool>());
        break;
    case 'i':
        if (Is(name, "int32"))
            return function(TypeConstant<qlx_PropType_Int32>());
        if (Is(name, "idtype"))
            return function(TypeConstant<qlx_PropType_IDType>());
        if (Is(name, "int64"))
            return function(TypeConstant<qlx_PropType_Int64>());
        break;
    case 'p':
        if (Is(name, "point"))
            return function(TypeConstant<qlx_PropType_Point>());
        break;
    case 'r':
        if (Is(name, "rect"))
            return function(TypeConstant<qlx_PropType_Rect>());
        if (Is(name, "rgbcolor"))
            return function(TypeConstant<qlx_PropType_Color>());
        break;
    case 's':
        if (Is(name, "string"))
            return function(TypeConstant<qlx_PropType_String>());
        if (Is(name, "stringidx"))
            return function(TypeConstant<qlx_PropType_String_Key>());
        break;
    default:
        break;
    }
    return function(TypeConstant<qlx_PropType_None>());
}

// Of a type whose values are numbers, and of one whose values are bytes.
void AddScalar(QLX_PropertySetBuilder& set, QLX_PropertyType type, const char* name,
               std::uint64_t value) {
    set.AddScalar(QLX_PropertyBytes::KeyOf(type, name), value);
}
void AddBytes(QLX_PropertySetBuilder& set, QLX_PropertyType type, const char* name,
              const void* bytes, std::size_t size) {
    set.AddBytes(QLX_PropertyBytes::KeyOf(type, name), bytes, size);
}

/// Adds what the type reads from the text.
template <QLX_PropertyType kType>
QLX_MERGED inline void AddText(QLX_PropertySetBuilder& set, const char* name, const char* text) {
    if constexpr (kType == qlx_PropType_Bool) {
        AddScalar(set, kType, name, Is(text, "true"));
    } else if constexpr (kType == qlx_PropType_Int32) {
        AddScalar(set, kType, name,
                  static_cast<std::uint64_t>(std::int64_t{QLX_TextToInt32(text)}));
    } else if constexpr (kType == qlx_PropType_Int64) {
        AddScalar(set, kType, name, static_cast<std::uint64_t>(QLX_TextToInt64(text)));
    } else if constexpr (kType == qlx_PropType_IDType) {
        AddScalar(set, kType, name, QLX_TextToIDType(text));
    } else if constexpr (kType == qlx_PropType_Color) {
        AddScalar(set, kType, name, QLX_PropertyBytes::PackColor(QLX_TextToColor(text)));
    } else if constexpr (kType == qlx_PropType_Point) {
        const VPoint point = QLX_TextToPoint(text);
        AddBytes(set, kType, name, &point, sizeof point);
    } else if constexpr (kType == qlx_PropType_Rect) {
        const VRect rect = QLX_TextToRect(text);
        AddBytes(set, kType, name, &rect, sizeof rect);
    } else {
        AddBytes(set, kType, name, text, std::strlen(text));
    }
}

/// False, and nothing added, for a type that is not known.
QLX_MERGED inline bool AddText(QLX_PropertySetBuilder& set, const char* name, const char* type,
                               const char* text) {
    return CallWithType(type, [&](auto known) {
        constexpr bool isKnown = known() != qlx_PropType_None;
        if constexpr (isKnown)
            AddText<known()>(set, name, text);
        return isKnown;
    });
}
} // namespace

QLX_SourceObserver::~QLX_SourceObserver() = default;
void QLX_SourceObserver::ContainerStarted(QLX_RawPropertyContainer&, Place) {}
void QLX_SourceObserver::ContainerEnded(QLX_RawPropertyContainer&, Place) {}
void QLX_SourceObserver::PropertyMet(QLX_RawPropertyContainer&, const std::string&,
                                     const std::string&, const std::string&,
                                     const QLX_PropertyFilter&, Place) {}
void QLX_SourceObserver::CommentMet(const std::string&, Place) {}
void QLX_SourceObserver::AttributeMet(QLX_RawPropertyContainer&, const std::string&,
                                      const std::string&, Place) {}

/// What expat calls. Nothing may be thrown through it: an exception is kept and the parser stopped.
struct QLX_XMLParser::Callbacks {
    template <class Body>
    static void Guarded(void* user, Body body) noexcept {
        QLX_XMLParser& parser = *static_cast<QLX_XMLParser*>(user);
        if (parser.mStopped)
            return;
        try {
            body(parser);
        } catch (...) {
            parser.mException = std::current_exception();
            parser.Stop();
        }
    }
    static void Start(void* user, const char* name, const char** attributes) {
        Guarded(user, [&](QLX_XMLParser& parser) { parser.startElement(name, attributes); });
    }
    static void End(void* user, const char* name) {
        Guarded(user, [&](QLX_XMLParser& parser) { parser.endElement(name); });
    }
    static void Comment(void* user, const char* text) {
        Guarded(user, [&](QLX_XMLParser& parser) {
            parser.mObserver->CommentMet(text, parser.GetPlace());
        });
    }
    /// What stands in other files is not read: a description is complete in itself, and reading one
    /// shall not open what it names.
    static int ExternalEntity(XML_Parser expat, const char*, const char*, const char* systemID,
                              const char*) {
        Guarded(XML_GetUserData(expat), [&](QLX_XMLParser& parser) {
            parser.AddProblem(QLX_SourceProblem::kError,
                              std::string("an entity lies outside the file: ") +
                                  (systemID ? systemID : ""));
            parser.mStopped = true;
        });
        return 0;
    }
    static void SkippedEntity(void* user, const char* name, int) {
        Guarded(user, [&](QLX_XMLParser& parser) {
            parser.AddProblem(QLX_SourceProblem::kWarning,
                              std::string("the entity \"") + name + "\" is not known here",
                              /*lost*/ true);
        });
    }
    /// Text between elements means nothing; a tool is told where some stands that is not blank.
    static void Text(void* user, const char* text, int size) {
        Guarded(user, [&](QLX_XMLParser& parser) {
            if (parser.mObserver && !std::all_of(text, text + size, IsBlank))
                parser.AddProblem(QLX_SourceProblem::kWarning, "text between elements is not kept",
                                  /*lost*/ true);
        });
    }
};

QLX_XMLParser::QLX_XMLParser(Sys_File* file, QLX_RawPropertyContainerFactory* factory)
    : mFile(file), mFactory(factory), mPool(std::make_unique<QLX_NodePool>()),
      mRootFilter(QLX_PropertyFilter::RootFilter()),
      mGathered(std::make_unique<QLX_PropertySetBuilder>()),
      mGatheredFilter(QLX_PropertyFilter::DefaultFilter()) {}

QLX_XMLParser::~QLX_XMLParser() {
    for (const OpenContainer& open : mOpen)
        delete open.mContainer;
}

QLX_RawPropertyContainer* QLX_XMLParser::Parse() {
    struct ParserHolder {
        XML_Parser mParser = XML_ParserCreate(nullptr);
        ~ParserHolder() { XML_ParserFree(mParser); }
    } holder;
    if (!holder.mParser)
        throw std::bad_alloc();
    mParser = holder.mParser;
    XML_SetUserData(mParser, this);
    XML_SetElementHandler(mParser, Callbacks::Start, Callbacks::End);
    XML_SetExternalEntityRefHandler(mParser, Callbacks::ExternalEntity);
    XML_SetSkippedEntityHandler(mParser, Callbacks::SkippedEntity);
    if (mObserver) { // nobody else wants to hear of texts, which expat passes on line by line
        XML_SetCharacterDataHandler(mParser, Callbacks::Text);
        XML_SetCommentHandler(mParser, Callbacks::Comment);
    }
    try {
        FeedParser();
    } catch (const Sys_FileError& error) {
        mStopped = true;
        AddProblem(QLX_SourceProblem::kError, error.GetReason());
    }
    mParser = nullptr;
    if (mException)
        std::rethrow_exception(std::exchange(mException, nullptr));
    if (mProblemCount > mProblems.size())
        mProblems.push_back({mFile->GetLoc().GetPath(), 0, 0, QLX_SourceProblem::kWarning,
                             std::to_string(mProblemCount - mProblems.size()) + " further problems",
                             /*lost*/ true});
    if (!mStopped && !mOutermost)
        mProblems.push_back({mFile->GetLoc().GetPath(), 0, 0, QLX_SourceProblem::kError,
                             "the file holds no container"});
    return mStopped ? nullptr : mOutermost.release();
}

/// Reads up to so many bytes into expat's own memory and has them parsed. False when that was all,
/// or nothing more can come of it.
bool QLX_XMLParser::FeedBlock(std::size_t size) {
    void* const room = XML_GetBuffer(mParser, static_cast<int>(size));
    if (room)
        Sys_AdviseLargePages(room, size);
    const std::size_t count = room ? mFile->Read(room, size) : 0;
    const bool last = count < size;
    if (room && XML_ParseBuffer(mParser, static_cast<int>(count), last) != XML_STATUS_ERROR)
        return !last;
    if (!mStopped)
        AddProblem(QLX_SourceProblem::kError, XML_ErrorString(XML_GetErrorCode(mParser)));
    mStopped = true;
    return false;
}

/// Handed over whole, a file costs expat a tenth less than in blocks: it copies nothing, and looks
/// for line ends only where a place is asked for. A file that is too large for that, tells no size
/// or grows meanwhile is read on in blocks. A token that outgrows its block is scanned anew with
/// each block, so blocks grow until it fits.
void QLX_XMLParser::FeedParser() {
    const std::uint64_t start = mFile->GetPosition();
    const std::uint64_t size = mFile->GetSize();
    const std::uint64_t left = size - std::min(size, start);
    mPool->Expect(static_cast<std::size_t>(std::min(left, kLargestWhole))); // trees take more
    if (left > 0 && left < kLargestWhole && !FeedBlock(static_cast<std::size_t>(left) + 1))
        return;
    std::size_t blockSize = kBlockSize;
    while (FeedBlock(blockSize)) {
        const XML_Index reached = XML_GetCurrentByteIndex(mParser);
        const std::uint64_t fed = mFile->GetPosition() - start;
        const bool behind = reached < 0 || fed - static_cast<std::uint64_t>(reached) > blockSize;
        blockSize = behind ? std::min(blockSize * 2, kLargestBlock) : kBlockSize;
    }
}

std::string QLX_XMLParser::PoolString(const std::string& text) {
    return *mStrings.insert(text).first;
}

void QLX_XMLParser::Stop() {
    mStopped = true;
    XML_StopParser(mParser, XML_FALSE);
}

QLX_SourceObserver::Place QLX_XMLParser::GetPlace() const {
    if (!mParser)
        return {0, 0};
    return {static_cast<int>(XML_GetCurrentLineNumber(mParser)),
            static_cast<int>(XML_GetCurrentColumnNumber(mParser)) + 1};
}

void QLX_XMLParser::AddProblem(QLX_SourceProblem::Severity severity, const std::string& reason,
                               bool lost) {
    // An error ends the reading, so there is room for it.
    if (++mProblemCount > kMostProblems && severity != QLX_SourceProblem::kError)
        return;
    const QLX_SourceObserver::Place place = GetPlace();
    mProblems.push_back(
        {mFile->GetLoc().GetPath(), place.mLine, place.mColumn, severity, reason, lost});
}

QLX_MERGED inline void QLX_XMLParser::Gather(QLX_RawPropertyContainer* container,
                                             const QLX_PropertyFilter& filter) {
    if (mGatheredFor != container || !mGatheredFilter.SharesMapWith(filter))
        GatherAnew(container, filter);
}

/// Which of ours an attribute is. Expat keeps one copy of each attribute's name, so that after the
/// first time the address tells.
QLX_XMLParser::OwnAttribute QLX_XMLParser::OwnAttributeOf(const char* name) {
    for (int i = 0; i < kOwnCount; ++i)
        if (mOwnNames[i] == name)
            return static_cast<OwnAttribute>(i);
    const OwnAttribute which = Is(name, "name")    ? kOwnName
                               : Is(name, "type")  ? kOwnType
                               : Is(name, "value") ? kOwnValue
                                                   : kOwnCount;
    if (which != kOwnCount)
        mOwnNames[which] = name;
    return which;
}

QLX_MERGED inline void QLX_XMLParser::StoreProperty(const char* name, const char* type,
                                                    const char* value,
                                                    const QLX_PropertyFilter& filter) {
    if (mObserver)
        TellOfProperty(name, type, value, filter);
    const OpenContainer& open = mOpen.back();
    if (open.mPlain) {
        Gather(open.mContainer, filter);
        if (AddText(*mGathered, name, type, value))
            return;
    }
    StoreBySetter(name, type, value, filter);
}

QLX_MERGED inline void QLX_XMLParser::StartProperty(const char** attributes) {
    const char** const at = attributes;
    // As the writer has them: our three first and in this order, then hardly ever more than one.
    const bool inOrder = at[0] && at[0] == mOwnNames[kOwnName] && at[2] &&
                         at[2] == mOwnNames[kOwnType] && at[4] && at[4] == mOwnNames[kOwnValue] &&
                         (!at[6] || !at[8]);
    if (!inOrder) {
        StartPropertyInAnyOrder(attributes);
        return;
    }
    const QLX_PropertyFilter* const filter = at[6] ? FindOnly(at + 6) : &mRootFilter;
    StoreProperty(at[1], at[3], at[5], filter ? *filter : FilterOf(attributes));
}

void QLX_XMLParser::StartPropertyInAnyOrder(const char** attributes) {
    const char* own[kOwnCount] = {};
    const char** filterAttribute = nullptr;
    int filterAttributes = 0;
    for (const char** at = attributes; *at; at += 2) {
        const OwnAttribute which = OwnAttributeOf(at[0]);
        if (which != kOwnCount) {
            own[which] = at[1];
        } else {
            filterAttribute = at;
            ++filterAttributes;
        }
    }
    const char* const missing = !own[kOwnName]    ? "name"
                                : !own[kOwnType]  ? "type"
                                : !own[kOwnValue] ? "value"
                                                  : nullptr;
    if (missing) {
        AddProblem(QLX_SourceProblem::kWarning,
                   std::string("a property without \"") + missing + "\" is not kept" +
                       (own[kOwnName] ? std::string(": ") + own[kOwnName] : ""),
                   /*lost*/ true);
        return;
    }
    const QLX_PropertyFilter* const filter = filterAttributes == 0   ? &mRootFilter
                                             : filterAttributes == 1 ? FindOnly(filterAttribute)
                                                                     : nullptr;
    StoreProperty(own[kOwnName], own[kOwnType], own[kOwnValue],
                  filter ? *filter : FilterOf(attributes));
}

void QLX_XMLParser::TellOfProperty(const char* name, const char* type, const char* value,
                                   const QLX_PropertyFilter& filter) {
    mObserver->PropertyMet(*mOpen.back().mContainer, name, type, value, filter, GetPlace());
}

/// A subclass has its own say in every setter, and an unknown type its assertions.
void QLX_XMLParser::StoreBySetter(const char* name, const char* type, const char* value,
                                  const QLX_PropertyFilter& filter) {
    mName = name;
    mType = type;
    mValue = value;
    if (QLX_FindPropertyType(mType) == qlx_PropType_None)
        AddProblem(QLX_SourceProblem::kWarning,
                   "the property \"" + mName + "\" has the unknown type \"" + mType +
                       "\" and is not kept",
                   /*lost*/ true);
    mOpen.back().mContainer->SetProperty(mName, mType, mValue, filter);
}

void QLX_XMLParser::startElement(const char* name, const char** attributes) {
    if (++mDepth > mMaximumDepth) {
        AddProblem(QLX_SourceProblem::kError,
                   "elements are nested more than " + std::to_string(mMaximumDepth) + " deep");
        Stop();
        return;
    }
    if (!Is(name, kProperty))
        StartContainer(name, attributes);
    else if (!mOpen.empty())
        StartProperty(attributes);
    else
        AddProblem(QLX_SourceProblem::kWarning, "a property outside any container is not kept",
                   /*lost*/ true);
}

void QLX_XMLParser::endElement(const char*) {
    // The innermost open container is not what ends when something inside it began later.
    const int depth = mDepth--;
    if (mOpen.empty() || mOpen.back().mDepth != depth)
        return;
    StoreGathered();
    std::unique_ptr<QLX_RawPropertyContainer> closed(mOpen.back().mContainer);
    mOpen.pop_back();
    if (mObserver)
        mObserver->ContainerEnded(*closed, GetPlace());
    if (mOpen.empty())
        mOutermost = std::move(closed);
    else
        mOpen.back().mContainer->AddChild(std::move(closed));
}

void QLX_XMLParser::StartContainer(const char* name, const char** attributes) {
    StoreGathered();
    mName = name;
    bool plain = mFactory == nullptr;
    std::unique_ptr<QLX_RawPropertyContainer> made(plain ? nullptr
                                                         : mFactory->MakeContainer(mName));
    if (!made)
        made.reset(new (*mPool) QLX_PooledContainer(mName));
    QLX_RawPropertyContainer& container = *made;
    plain =
        plain || (typeid(container) == typeid(QLX_RawPropertyContainer) && !container.IsFrozen());
    mOpen.push_back({made.get(), plain, mDepth});
    (void)made.release();
    const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
    for (; *attributes; attributes += 2) {
        const bool isIdentifier = Is(attributes[0], kIdentifier);
        if (mObserver)
            mObserver->AttributeMet(container, attributes[0], attributes[1], GetPlace());
        if (plain) {
            Gather(&container, filter);
            if (isIdentifier)
                AddText<qlx_PropType_IDType>(*mGathered, attributes[0], attributes[1]);
            else
                AddText<qlx_PropType_String>(*mGathered, attributes[0], attributes[1]);
        } else if (isIdentifier) {
            container.SetIDTypeProperty(attributes[0], QLX_TextToIDType(attributes[1]), filter);
        } else {
            container.SetStringProperty(attributes[0], attributes[1], filter);
        }
    }
    if (mObserver) {
        StoreGathered();
        mObserver->ContainerStarted(container, GetPlace());
    }
}

namespace {
bool IsOwn(const char* name) { return Is(name, "name") || Is(name, "type") || Is(name, "value"); }

/// The filter attributes as one text; neither byte that separates them can stand in an attribute.
std::string FilterKey(const char** attributes) {
    std::string key;
    for (const char** at = attributes; *at; at += 2)
        if (!IsOwn(at[0]))
            key.append(at[0]).append(1, '\1').append(at[1]).append(1, '\2');
    return key;
}

/// Whether that text is the key, without making it.
bool HasFilterKey(const char** attributes, const std::string& key) {
    const char* rest = key.c_str();
    const auto take = [&rest](const char* text, char end) {
        while (*text && *text == *rest) {
            ++text;
            ++rest;
        }
        return !*text && *rest++ == end;
    };
    for (const char** at = attributes; *at; at += 2)
        if (!IsOwn(at[0]) && !(take(at[0], '\1') && take(at[1], '\2')))
            return false;
    return !*rest;
}
} // namespace

bool QLX_XMLParser::KnownFilter::IsOnly(const char** attribute) const {
    return attribute[0] == mOnlyName && std::strcmp(attribute[1], mOnlyValue.c_str()) == 0;
}

/// The filter met lately that has this one attribute alone; null when there is none.
const QLX_PropertyFilter* QLX_XMLParser::FindOnly(const char** attribute) const {
    for (const KnownFilter& known : mKnownFilters)
        if (known.IsOnly(attribute))
            return &known.mFilter;
    return nullptr;
}

const QLX_PropertyFilter& QLX_XMLParser::FilterOf(const char** attributes) {
    if (mLastKnown >= mKnownFilters.size() ||
        !HasFilterKey(attributes, mKnownFilters[mLastKnown].mKey)) {
        const auto found =
            std::find_if(mKnownFilters.begin(), mKnownFilters.end(), [&](const KnownFilter& known) {
                return HasFilterKey(attributes, known.mKey);
            });
        mLastKnown = static_cast<std::size_t>(found - mKnownFilters.begin());
        if (found == mKnownFilters.end())
            AddKnownFilter(attributes);
    }
    const KnownFilter& known = mKnownFilters[mLastKnown];
    if (!known.mForeign.empty())
        AddProblem(QLX_SourceProblem::kWarning,
                   "the attribute \"" + known.mForeign + "\" is no filter's; no look-up sees it");
    return known.mFilter;
}

void QLX_XMLParser::AddKnownFilter(const char** attributes) {
    std::map<std::string, std::string> map;
    std::string foreign;
    for (std::size_t i = 0; i < FILTER_HIERARCHY_SIZE; ++i)
        map[QLX_GetFilterHierarchyName(i)].clear();
    for (const char** at = attributes; *at; at += 2) {
        if (IsOwn(at[0]))
            continue;
        if (!map.count(at[0]))
            foreign = at[0];
        map[at[0]] = at[1];
    }
    std::string& language = map[QLX_GetFilterHierarchyName(1)];
    if (language == QLX_Language::GetFileCode(QLX_Language::English))
        language.clear();
    KnownFilter known{FilterKey(attributes), QLX_PropertyFilter(map), foreign, nullptr, {}};
    int count = 0;
    for (const char** at = attributes; *at; at += 2) {
        if (IsOwn(at[0]))
            continue;
        known.mOnlyName = count++ == 0 && foreign.empty() ? at[0] : nullptr;
        known.mOnlyValue = at[1];
    }
    if (known.mFilter == QLX_PropertyFilter::RootFilter())
        known.mFilter = QLX_PropertyFilter::RootFilter();
    if (mKnownFilters.size() < kMostKnownFilters) {
        mKnownFilters.push_back(std::move(known));
    } else {
        mLastKnown = mNextReplaced++ % kMostKnownFilters;
        mKnownFilters[mLastKnown] = std::move(known);
    }
}

/// Properties of one container and filter are gathered, and stored when another's begin.
void QLX_XMLParser::GatherAnew(QLX_RawPropertyContainer* container,
                               const QLX_PropertyFilter& filter) {
    StoreGathered();
    mGatheredFor = container;
    mGatheredFilter = filter;
}

void QLX_XMLParser::StoreGathered() {
    if (mGathered->IsEmpty())
        return;
    auto& sets = mGatheredFor->mFilterPropertyMap;
    // Of few sets the one that is meant is known by its filter's address.
    auto stored = sets.size() <= kMostKnownFilters ? sets.begin() : sets.end();
    while (stored != sets.end() && !stored->first.SharesMapWith(mGatheredFilter))
        ++stored;
    if (stored != sets.end()) {
        stored->second.Merge(mGathered->Take(/*pool*/ nullptr));
        return;
    }
    const QLX_PropertySet set = mGathered->Take(mPool.get());
    const std::size_t count = sets.size();
    stored = sets.emplace_hint(sets.end(), mGatheredFilter, set); // we write them in this order
    if (sets.size() == count)
        stored->second.Merge(set);
}
