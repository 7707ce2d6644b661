// A description as the tool reads it: the memento with the places and comments of its source.
#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/persistence/qlx_stringtable.h"

/// What makes a description unreadable, with its place; what() is its text.
class UnreadableError : public std::runtime_error {
  public:
    explicit UnreadableError(QLX_SourceProblem problem)
        : std::runtime_error(problem.ToString()), mProblem(std::move(problem)) {}
    [[nodiscard]] const QLX_SourceProblem& GetProblem() const { return mProblem; }

  private:
    QLX_SourceProblem mProblem;
};

/// A stored property: where, under which filter, of which type and name.
using PropertyKey = QLX_SourceComments::PropertyKey;

class Description : private QLX_SourceObserver {
  public:
    /// Reads with English current. Throws UnreadableError.
    explicit Description(const std::string& path);

    [[nodiscard]] const std::string& GetPath() const { return mPath; }
    [[nodiscard]] QLX_RawPropertyContainer* GetRoot() const { return mMemento->GetRoot(); }
    [[nodiscard]] QLX_ViewMemento& GetMemento() const { return *mMemento; }
    [[nodiscard]] const Cmn_RefCountPtr<QLX_ViewMemento>& GetMementoPtr() const { return mMemento; }
    /// What the readers noticed, and properties that stand twice.
    [[nodiscard]] const std::vector<QLX_SourceProblem>& GetProblems() const { return mProblems; }

    /// Where something stands; line 0 when it does not stand in the file.
    [[nodiscard]] Place GetPlace(const QLX_RawPropertyContainer* container) const;
    [[nodiscard]] Place GetPlace(const PropertyKey& key) const;
    /// Whether it stands in the file as a property element; text is its value as it stands there.
    /// False for an attribute of a start tag.
    bool GetValueText(const PropertyKey& key, std::string& text) const;
    /// The text of the "Identifier" attribute as it stands in the start tag; false without one.
    bool GetIdentifierText(const QLX_RawPropertyContainer* container, std::string& text) const;
    /// Where a language's string table lies.
    [[nodiscard]] Sys_FileLoc GetTableLoc(QLX_Language::ELanguage language) const;
    /// Where a key stands in a language's string table; line 0 when it does not.
    [[nodiscard]] const QLX_StringTableNotes& GetTableNotes(QLX_Language::ELanguage language) const;
    [[nodiscard]] Place GetKeyPlace(QLX_Language::ELanguage language, const std::string& key) const;

    [[nodiscard]] LineEndings GetLineEndings() const { return mLineEndings; }
    [[nodiscard]] QLX_SourceComments& GetComments() { return mComments; }
    /// The canonical text, with the author's comments.
    [[nodiscard]] std::string GetCanonicalText() const;
    /// Why writing would lose something; empty when it would not.
    [[nodiscard]] std::vector<std::string> FindLosses() const;

  private:
    void ContainerStarted(QLX_RawPropertyContainer& container, Place place) override;
    void ContainerEnded(QLX_RawPropertyContainer& container, Place place) override;
    void PropertyMet(QLX_RawPropertyContainer& container, const std::string& name,
                     const std::string& typeName, const std::string& valueText,
                     const QLX_PropertyFilter& filter, Place place) override;
    void CommentMet(const std::string& text, Place place) override;
    void AttributeMet(QLX_RawPropertyContainer& container, const std::string& name,
                      const std::string& valueText, Place place) override;
    void TakePending(std::vector<std::string>& into);
    [[nodiscard]] std::string WithLineEnds(const std::string& text) const;

    struct StoredProperty {
        Place mPlace;
        std::string mText;
    };

    std::string mPath;
    LineEndings mLineEndings;
    Cmn_RefCountPtr<QLX_ViewMemento> mMemento;
    std::vector<QLX_SourceProblem> mProblems;
    std::map<const QLX_RawPropertyContainer*, Place> mContainers;
    std::map<PropertyKey, StoredProperty> mProperties;
    std::map<const QLX_RawPropertyContainer*, std::string> mIdentifiers;
    std::map<QLX_Language::ELanguage, QLX_StringTableNotes> mTableNotes;
    std::vector<std::string> mWrapperLosses;

    QLX_SourceComments mComments;
    std::vector<std::string> mPending;           // comments that wait for what follows them
    std::vector<std::string>* mBehind = nullptr; // those behind what was met last, in mComments
    int mBehindLine = 0;
    std::string mClosingComment; // the writer's own behind the end tag that was met last
    bool mBehindEnd = false;     // nothing was met behind that end tag
    int mDepth = 0;
};

/// Reads a file; a problem becomes a message on standard error and null.
[[nodiscard]] std::unique_ptr<Description> LoadDescription(const std::string& path);

/// The value as the source format writes it.
[[nodiscard]] std::string ValueText(const QLX_PropertyView& view);

/// "name 'identifier'" or "name \"name property\"": how people know an element.
[[nodiscard]] std::string ElementLabel(const QLX_RawPropertyContainer& container);

/// " [Layout Compact, Language DEU]"; empty for the common filter.
[[nodiscard]] std::string FilterLabel(const QLX_PropertyFilter& filter);
