#include "description.h"

#include <cstdio>
#include <stdexcept>

#include "basekit/cmn/cmn_string.h"
#include "qlx/persistence/qlx_genericproperty.h"

Description::Description(const std::string& path)
    : mPath(path), mLineEndings(QLX_SourceViewFormat::LineEndingsFor(Sys_FileLoc(path))) {
    const StCurrentLanguage english(QLX_Language::English);
    QLX_SourceViewFormat format{Sys_FileLoc(path)};
    format.SetObserver(this);
    try {
        mMemento = Cmn_RefCountPtr<QLX_ViewMemento>(format.ReadMemento(nullptr));
    } catch (const std::runtime_error& error) {
        QLX_SourceProblem reason{path, 0, 0, QLX_SourceProblem::kError, error.what()};
        for (const QLX_SourceProblem& problem : format.GetProblems())
            if (problem.mSeverity == QLX_SourceProblem::kError)
                reason = problem;
        throw UnreadableError(reason);
    }
    for (const auto& [language, table] : mMemento->GetStringTables())
        (void)QLX_ReadStringTable(Sys_File::ReadAll(GetTableLoc(language)), path, nullptr,
                                  &mTableNotes[language]);
    mProblems.insert(mProblems.begin(), format.GetProblems().begin(), format.GetProblems().end());
}

Description::Place Description::GetPlace(const QLX_RawPropertyContainer* container) const {
    const auto found = mContainers.find(container);
    return found == mContainers.end() ? Place{0, 0} : found->second;
}

Description::Place Description::GetPlace(const PropertyKey& key) const {
    const auto found = mProperties.find(key);
    return found == mProperties.end() ? GetPlace(std::get<0>(key)) : found->second.mPlace;
}

bool Description::GetValueText(const PropertyKey& key, std::string& text) const {
    const auto found = mProperties.find(key);
    if (found == mProperties.end())
        return false;
    text = found->second.mText;
    return true;
}

bool Description::GetIdentifierText(const QLX_RawPropertyContainer* container,
                                    std::string& text) const {
    const auto found = mIdentifiers.find(container);
    if (found == mIdentifiers.end())
        return false;
    text = found->second;
    return true;
}

Sys_FileLoc Description::GetTableLoc(QLX_Language::ELanguage language) const {
    return QLX_SourceViewFormat(Sys_FileLoc(mPath)).GetStringTableFileLoc(language);
}

Description::Place Description::GetKeyPlace(QLX_Language::ELanguage language,
                                            const std::string& key) const {
    const auto& places = GetTableNotes(language).mPlaces;
    const auto found = places.find(key);
    return found == places.end() ? Place{0, 0} : Place{found->second.first, found->second.second};
}

const QLX_StringTableNotes& Description::GetTableNotes(QLX_Language::ELanguage language) const {
    static const QLX_StringTableNotes none;
    const auto found = mTableNotes.find(language);
    return found == mTableNotes.end() ? none : found->second;
}

std::string Description::GetCanonicalText() const {
    const StCurrentLanguage english(QLX_Language::English);
    return QLX_SourceViewFormat::WriteToText(*GetRoot(), mLineEndings, &mComments);
}

std::vector<std::string> Description::FindLosses() const {
    const StCurrentLanguage english(QLX_Language::English);
    std::vector<std::string> losses = mWrapperLosses;
    for (const QLX_SourceProblem& problem : mProblems)
        if (problem.mLost)
            losses.push_back(problem.ToString());
    for (const std::string& property : QLX_SourceViewFormat::FindUnwritable(*GetRoot()))
        losses.push_back(mPath + ": an attribute of the same name hides " + property);
    return losses;
}

void Description::TakePending(std::vector<std::string>& into) {
    into.insert(into.end(), mPending.begin(), mPending.end());
    mPending.clear();
}

std::string Description::WithLineEnds(const std::string& text) const {
    std::string out;
    for (const char c : text) {
        if (c == '\n')
            out += Sys_LineEndText(mLineEndings);
        else
            out += c;
    }
    return out;
}

void Description::ContainerStarted(QLX_RawPropertyContainer& container, Place place) {
    mContainers[&container] = place;
    if (mDepth++ == 0) {
        TakePending(mComments.mFile.mBefore);
        mBehind = nullptr;
        for (const auto& stored : container.GetFilterPropertyMap())
            for (std::size_t i = 0; i < stored.second.GetCount(); ++i)
                if (stored.second.GetAt(i).mName != "name")
                    mWrapperLosses.push_back(
                        mPath + ":" + std::to_string(place.mLine) + ": the wrapper's attribute \"" +
                        std::string(stored.second.GetAt(i).mName) + "\" is not kept");
        return;
    }
    auto& around = mComments.mStart[&container];
    TakePending(around.mBefore);
    mBehind = &around.mBehind;
    mBehindLine = place.mLine;
    mBehindEnd = false;
}

void Description::ContainerEnded(QLX_RawPropertyContainer& container, Place place) {
    if (--mDepth == 0) {
        TakePending(mComments.mFile.mBehind);
        mBehind = &mComments.mFile.mBehind;
    } else {
        auto& around = mComments.mEnd[&container];
        TakePending(around.mBefore);
        mBehind = &around.mBehind;
    }
    mBehindLine = place.mLine;
    mBehindEnd = true;
    mClosingComment = QLX_SourceViewFormat::GetClosingComment(container);
}

void Description::PropertyMet(QLX_RawPropertyContainer& container, const std::string& name,
                              const std::string& typeName, const std::string& valueText,
                              const QLX_PropertyFilter& filter, Place place) {
    const PropertyKey key{&container, filter, QLX_FindPropertyType(typeName), name};
    if (mDepth == 1)
        mWrapperLosses.push_back(mPath + ":" + std::to_string(place.mLine) +
                                 ": the wrapper's property \"" + name + "\" is not kept");
    const auto stored = mProperties.find(key);
    if (stored != mProperties.end())
        mProblems.push_back({mPath, place.mLine, place.mColumn, QLX_SourceProblem::kWarning,
                             "the property \"" + name + "\" stands already in line " +
                                 std::to_string(stored->second.mPlace.mLine) + "; this one counts",
                             /*lost*/ true});
    mProperties[key] = {place, valueText};
    auto& around = mComments.mProperties[key];
    TakePending(around.mBefore);
    mBehind = &around.mBehind;
    mBehindLine = place.mLine;
    mBehindEnd = false;
}

void Description::AttributeMet(QLX_RawPropertyContainer& container, const std::string& name,
                               const std::string& valueText, Place) {
    if (name == "Identifier")
        mIdentifiers[&container] = valueText;
}

void Description::CommentMet(const std::string& text, Place place) {
    if (mBehind && place.mLine == mBehindLine) {
        // The writer's own says what the end tag closes and is written anew. One that says anything
        // else is the author's, or names what the container was called before: it is kept.
        if (!mBehindEnd || text != mClosingComment)
            mBehind->push_back(WithLineEnds(text));
        mBehindEnd = false;
        return;
    }
    if (mDepth == 0 && mBehind)
        mComments.mFile.mBehind.push_back(WithLineEnds(text));
    else
        mPending.push_back(WithLineEnds(text));
}

std::unique_ptr<Description> LoadDescription(const std::string& path) {
    try {
        auto description = std::make_unique<Description>(path);
        for (const QLX_SourceProblem& problem : description->GetProblems())
            std::fprintf(stderr, "qlxview: %s\n", problem.ToString().c_str());
        return description;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qlxview: %s\n", error.what());
        return nullptr;
    }
}

std::string ValueText(const QLX_PropertyView& view) {
    switch (view.mType) {
    case qlx_PropType_Bool:
        return view.mInteger ? "true" : "false";
    case qlx_PropType_IDType:
        return Cmn_IDToString(static_cast<std::uint32_t>(view.mInteger));
    case qlx_PropType_String:
    case qlx_PropType_String_Key:
        return std::string(view.mText);
    case qlx_PropType_Color:
        return QLX_GenericProperty(view.mColor, view.mType).AsString();
    case qlx_PropType_Point:
        return QLX_GenericProperty(view.mPoint, view.mType).AsString();
    case qlx_PropType_Rect:
        return QLX_GenericProperty(view.mRect, view.mType).AsString();
    default:
        return std::to_string(view.mInteger);
    }
}

std::string ElementLabel(const QLX_RawPropertyContainer& container) {
    std::string label = container.GetName();
    const auto& sets = container.GetFilterPropertyMap();
    const auto set = sets.find(QLX_PropertyFilter::RootFilter());
    if (set == sets.end())
        return label;
    std::string text;
    std::uint32_t identifier = 0;
    if (set->second.GetStringProperty("class", text) && !text.empty())
        label += " " + text;
    if (set->second.GetIDTypeProperty("Identifier", identifier) && identifier != 0)
        label += " '" + Cmn_IDToString(identifier) + "'";
    if (set->second.GetStringProperty("name", text) && !text.empty())
        label += " \"" + text + "\"";
    return label;
}

std::string FilterLabel(const QLX_PropertyFilter& filter) {
    std::string label;
    for (const auto& [name, value] : filter.GetAttributes()) {
        if (!value.empty())
            label.append(label.empty() ? " [" : ", ").append(name).append(" ").append(value);
    }
    return label.empty() ? label : label + "]";
}
