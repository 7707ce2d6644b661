// View descriptions as XML source files with a string table a language beside them.
#pragma once

#include <exception>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "basekit/sys/sys_file.h"
#include "qlx/persistence/qlx_persistence.h"

class QLX_NodePool;
class QLX_PropertySetBuilder;
struct XML_ParserStruct;

/// Something wrong with a source file, at a place in it.
struct QLX_SourceProblem {
    enum Severity { kWarning, kError };
    std::string mFile;
    int mLine = 0;   ///< from 1; 0 when the file as a whole is meant
    int mColumn = 0; ///< from 1, in bytes
    Severity mSeverity = kError;
    std::string mReason;
    bool mLost = false; ///< something that stands in the file is not kept

    /// "file:line:column: reason".
    [[nodiscard]] QLX_API std::string ToString() const;
};

/// A property that is written as an attribute of its element's start tag.
struct QLX_WellKnownProperty {
    std::string mElement;
    std::string mName;
    bool mRequired;
    QLX_PropertyType mType;
};

/// Is told what the reader meets, with its place, while it meets it. For tools: without an observer
/// the reader keeps no places.
class QLX_API QLX_SourceObserver {
  public:
    struct Place {
        int mLine;
        int mColumn;
    };
    virtual ~QLX_SourceObserver();
    /// After the attributes of the start tag were stored.
    virtual void ContainerStarted(QLX_RawPropertyContainer& container, Place place);
    /// The place of the end tag.
    virtual void ContainerEnded(QLX_RawPropertyContainer& container, Place place);
    /// A property element that has all of name, type and value, before it is stored.
    virtual void PropertyMet(QLX_RawPropertyContainer& container, const std::string& name,
                             const std::string& typeName, const std::string& valueText,
                             const QLX_PropertyFilter& filter, Place place);
    virtual void CommentMet(const std::string& text, Place place);
    /// An attribute of a start tag, before ContainerStarted; the place is the tag's.
    virtual void AttributeMet(QLX_RawPropertyContainer& container, const std::string& name,
                              const std::string& valueText, Place place);
};

/// Reads one source file into containers. Made for one Parse.
class QLX_API QLX_XMLParser {
  public:
    static constexpr int kDefaultMaximumDepth = 512;

    /// Neither is owned; without a factory plain containers are made.
    QLX_XMLParser(Sys_File* file, QLX_RawPropertyContainerFactory* factory);
    ~QLX_XMLParser();
    QLX_XMLParser(const QLX_XMLParser&) = delete;
    QLX_XMLParser& operator=(const QLX_XMLParser&) = delete;

    /// Elements nested deeper make Parse fail.
    void SetMaximumDepth(int depth) { mMaximumDepth = depth; }
    /// Not owned.
    void SetObserver(QLX_SourceObserver* observer) { mObserver = observer; }

    /// The outermost container, which the caller owns; null when the file is not well-formed, nests
    /// too deeply, cannot be read or holds no container. GetProblems tells which.
    [[nodiscard]] QLX_RawPropertyContainer* Parse();
    /// What Parse found wrong, also where it succeeded: properties that were dropped, attributes
    /// that are no filter's. After the first thousand only their number is kept.
    [[nodiscard]] const std::vector<QLX_SourceProblem>& GetProblems() const { return mProblems; }

    /// The one copy of an equal string that this parser keeps.
    std::string PoolString(const std::string& text);

    // Called for each element, inside Parse only.
    void startElement(const char* name, const char** attributes);
    void endElement(const char* name);

  private:
    struct OpenContainer {
        QLX_RawPropertyContainer* mContainer; // owned until it is closed
        bool mPlain;                          // no subclass: its setters need not be called
        int mDepth;                           // how many elements were open with it
    };
    struct KnownFilter {
        std::string mKey;
        QLX_PropertyFilter mFilter;
        std::string mForeign; // an attribute that is no filter's; empty when there is none
        // The one attribute, when there is but one and it is a filter's: where expat keeps its
        // name, and its value.
        const char* mOnlyName;
        std::string mOnlyValue;
        [[nodiscard]] bool IsOnly(const char** attribute) const;
    };
    struct Callbacks;
    enum OwnAttribute { kOwnName, kOwnType, kOwnValue, kOwnCount };
    void FeedParser();
    bool FeedBlock(std::size_t size);
    void StartContainer(const char* name, const char** attributes);
    void StartProperty(const char** attributes);
    void StartPropertyInAnyOrder(const char** attributes);
    void StoreProperty(const char* name, const char* type, const char* value,
                       const QLX_PropertyFilter& filter);
    void StoreBySetter(const char* name, const char* type, const char* value,
                       const QLX_PropertyFilter& filter);
    void TellOfProperty(const char* name, const char* type, const char* value,
                        const QLX_PropertyFilter& filter);
    [[nodiscard]] OwnAttribute OwnAttributeOf(const char* name);
    [[nodiscard]] const QLX_PropertyFilter* FindOnly(const char** attribute) const;
    const QLX_PropertyFilter& FilterOf(const char** attributes);
    void AddKnownFilter(const char** attributes);
    void Gather(QLX_RawPropertyContainer* container, const QLX_PropertyFilter& filter);
    void GatherAnew(QLX_RawPropertyContainer* container, const QLX_PropertyFilter& filter);
    void StoreGathered();
    void AddProblem(QLX_SourceProblem::Severity severity, const std::string& reason,
                    bool lost = false);
    [[nodiscard]] QLX_SourceObserver::Place GetPlace() const;
    void Stop();

    Sys_File* mFile;                           // not owned
    QLX_RawPropertyContainerFactory* mFactory; // not owned; null for plain containers
    std::unique_ptr<QLX_NodePool> mPool;       // the tree's memory
    QLX_SourceObserver* mObserver = nullptr;   // not owned
    XML_ParserStruct* mParser = nullptr;       // made and freed by Parse
    int mMaximumDepth = kDefaultMaximumDepth;
    int mDepth = 0;
    bool mStopped = false;
    std::exception_ptr mException; // thrown below expat's callbacks, passed on when it has returned
    std::vector<OpenContainer> mOpen;
    std::unique_ptr<QLX_RawPropertyContainer> mOutermost;
    std::set<std::string> mStrings;
    std::vector<QLX_SourceProblem> mProblems;
    std::size_t mProblemCount = 0;

    const QLX_PropertyFilter& mRootFilter;
    const char* mOwnNames[kOwnCount] = {}; // where expat keeps them
    // Properties of one container and filter on their way into it.
    std::unique_ptr<QLX_PropertySetBuilder> mGathered;
    QLX_RawPropertyContainer* mGatheredFor = nullptr;
    QLX_PropertyFilter mGatheredFilter;
    // Filters met lately, by their attributes as text; replaced in turn.
    std::vector<KnownFilter> mKnownFilters;
    std::size_t mLastKnown = 0;
    std::size_t mNextReplaced = 0;
    std::string mName, mType, mValue;
};

/// Comments that a tool wants written where they stood. Texts are without their delimiters.
struct QLX_SourceComments {
    using PropertyKey = std::tuple<const QLX_RawPropertyContainer*, QLX_PropertyFilter,
                                   QLX_PropertyType, std::string>;
    /// On lines of their own before something; or behind it, on its line.
    struct Around {
        std::vector<std::string> mBefore;
        std::vector<std::string> mBehind;
    };
    std::map<const QLX_RawPropertyContainer*, Around> mStart; ///< a container's start tag
    std::map<const QLX_RawPropertyContainer*, Around> mEnd;   ///< its end tag
    std::map<PropertyKey, Around> mProperties;
    Around mFile; ///< before the first element; behind the last
};

/// A description on disk: the XML source and the string tables beside it, "<stem>.<CODE>.str".
class QLX_API QLX_SourceViewFormat {
  public:
    explicit QLX_SourceViewFormat(Sys_FileLoc source,
                                  Sys_FileSystem& fileSystem = Sys_FileSystem::Native());

    /// The description, which the caller owns, with the default filter current and every string
    /// table that is there. Throws std::runtime_error: "Malformed XML file: no container returned"
    /// when the XML cannot be read, "Malformed source: nothing in container" when it holds no
    /// description, and the place and reason for a string table that cannot be read. GetProblems
    /// tells more.
    ///
    /// Attributes of start tags are stored under the default filter; read with English current.
    [[nodiscard]] QLX_ViewMemento* ReadMemento(QLX_RawPropertyContainerFactory* factory);
    /// What the last ReadMemento found, whether it succeeded or not.
    [[nodiscard]] const std::vector<QLX_SourceProblem>& GetProblems() const { return mProblems; }
    void SetMaximumDepth(int depth) { mMaximumDepth = depth; }
    void SetObserver(QLX_SourceObserver* observer) { mObserver = observer; }

    /// Writes the source and a file for each string table. All files are complete before the first
    /// old one is replaced. Throws std::runtime_error naming the container or key that cannot be
    /// written (bytes that are no UTF-8, characters that XML has not, a key with a tab), and
    /// Sys_FileError.
    void WriteMemento(const QLX_ViewMemento* memento, LineEndings endings);
    /// The same text without a file. Comments may be null.
    [[nodiscard]] static std::string WriteToText(const QLX_RawPropertyContainer& root,
                                                 LineEndings endings,
                                                 const QLX_SourceComments* comments = nullptr);
    /// The text between "<!--" and "-->" that follows a container's end tag.
    [[nodiscard]] static std::string GetClosingComment(const QLX_RawPropertyContainer& container);
    /// Properties whose names the start tag's attributes keep from being written, because they are
    /// stored under another filter or type; each as "path: name (type, filter)", after the first
    /// thousand only how many further ones there are.
    [[nodiscard]] static std::vector<std::string>
    FindUnwritable(const QLX_RawPropertyContainer& root);

    /// Those of the file's first line; Unix for a file that is not there.
    [[nodiscard]] static LineEndings LineEndingsFor(const Sys_FileLoc& loc);
    /// Appends the source and the string tables that exist.
    void GetSalientFiles(std::list<Sys_FileLoc>& files) const;
    /// Where a language's string table lies; the first language's for a value that is no language.
    [[nodiscard]] const Sys_FileLoc&
    GetStringTableFileLoc(const QLX_Language::ELanguage& language) const;
    /// Copies a source and its string tables to files of the same name with ".bak" behind it.
    static void BackupFiles(const Sys_FileLoc& source);
    [[nodiscard]] static const Sys_FileType& GetSourceFileType();
    /// "Quarry String File", extension "str".
    [[nodiscard]] static const Sys_FileType& GetStringFileType();

    /// By element, in a fixed order.
    [[nodiscard]] static const std::map<std::string, std::vector<QLX_WellKnownProperty>>&
    GetWellKnownProperties();
    /// Whether the element has that property as an attribute; if so, whether it is required.
    [[nodiscard]] static bool IsWellKnownProperty(const std::string& element,
                                                  const std::string& property, bool& required);

  private:
    void ReadStringTables(QLX_ViewMemento& memento);

    Sys_FileLoc mSource;
    Sys_FileSystem& mFileSystem;
    std::map<QLX_Language::ELanguage, Sys_FileLoc> mStringTableLocs;
    int mMaximumDepth = QLX_XMLParser::kDefaultMaximumDepth;
    QLX_SourceObserver* mObserver = nullptr; // not owned
    std::vector<QLX_SourceProblem> mProblems;
};
