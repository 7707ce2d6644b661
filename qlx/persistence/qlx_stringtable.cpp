#include "qlx/persistence/qlx_stringtable.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "qlx/persistence/qlx_sourceformat.h"

namespace {
constexpr std::string_view kHeading = "// String table for ";
constexpr std::size_t kMostProblems = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The position of the first byte that belongs to no well-formed character; npos when there is
/// none.
std::size_t FindBadUTF8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        // U+FFFD written as such takes three bytes; a bad byte moves by one.
        if (Cmn_DecodeUTF8(text, at) == 0xFFFD && at == start + 1)
            return start;
    }
    return std::string_view::npos;
}

void AppendQuoted(std::string& out, std::string_view text) {
    out += '"';
    std::size_t run = 0;
    for (const char c : text) {
        if (c == '"') {
            out.append(run, '\\');
            out += '\\';
        }
        run = c == '\\' ? run + 1 : 0;
        out += c;
    }
    out.append(run, '\\');
    out += '"';
}

void CheckKey(const std::string& key, const std::string& table) {
    std::string reason;
    if (key.empty())
        reason = "is empty";
    else if (key.find('\t') != std::string::npos)
        reason = "has a tab";
    else if (key.find_first_of("\r\n") != std::string::npos)
        reason = "has a line end";
    else if (const std::size_t start = key.find_first_not_of(' ');
             start != std::string::npos && key.compare(start, 2, "//") == 0)
        reason = "begins as a comment does";
    else if (FindBadUTF8(key) != std::string::npos)
        reason = "is no UTF-8";
    if (!reason.empty())
        throw std::runtime_error("string table " + table + ": the key \"" + key + "\" " + reason +
                                 " and cannot be written");
}

void CheckText(const std::string& text, const std::string& key, const std::string& table) {
    if (FindBadUTF8(text) != std::string::npos)
        throw std::runtime_error("string table " + table + ": a text of the key \"" + key +
                                 "\" is no UTF-8");
}

/// Walks the file's text and knows where it is.
class Reader {
  public:
    Reader(std::string_view text, const std::string& file, std::vector<QLX_SourceProblem>* problems,
           QLX_StringTableNotes* notes)
        : mText(text), mFile(file), mProblems(problems), mNotes(notes) {}

    QLX_StringTable Read() {
        const std::size_t bad = FindBadUTF8(mText);
        if (bad != std::string_view::npos) {
            mAt = bad;
            Fail("this is no UTF-8");
        }
        if (mText.substr(0, kByteOrderMark.size()) == kByteOrderMark)
            mAt = kByteOrderMark.size();
        SkipToContent();
        if (!mComments.empty() && mComments.front().rfind(kHeading, 0) == 0)
            mComments.erase(mComments.begin());
        if (!TakeLine("{"))
            Fail(AtEnd() ? "the table's { is missing" : "expected the table's {");
        while (SkipToContent(), !AtEnd()) {
            if (TakeLine("}")) {
                SkipToContent();
                if (!AtEnd())
                    Fail("there is more after the table's }");
                if (mNotes)
                    TakeComments({});
                return std::move(mTable);
            }
            ReadEntry();
        }
        Fail("the table's } is missing");
    }

  private:
    [[nodiscard]] bool AtEnd() const { return mAt >= mText.size(); }
    [[nodiscard]] static bool IsBlank(char c) { return c == ' ' || c == '\t'; }
    [[nodiscard]] static bool IsLineEnd(char c) { return c == '\n' || c == '\r'; }

    [[noreturn]] void Fail(const std::string& reason) {
        QLX_SourceProblem problem = ProblemAt(mAt, QLX_SourceProblem::kError, reason);
        if (mProblems)
            mProblems->push_back(problem);
        throw std::runtime_error(problem.ToString());
    }

    [[nodiscard]] QLX_SourceProblem ProblemAt(std::size_t at, QLX_SourceProblem::Severity severity,
                                              const std::string& reason) {
        const auto [line, column] = PlaceOf(at);
        return {mFile, line, column, severity, reason};
    }

    /// Counts on from the last place that was asked for.
    std::pair<int, int> PlaceOf(std::size_t at) {
        if (at < mCountedTo) {
            mCountedTo = 0;
            mCounted = {1, 1};
        }
        for (; mCountedTo < at && mCountedTo < mText.size(); ++mCountedTo) {
            const std::size_t i = mCountedTo;
            const bool pair = mText[i] == '\r' && i + 1 < mText.size() && mText[i + 1] == '\n';
            if (IsLineEnd(mText[i]) && !pair)
                mCounted = {mCounted.first + 1, 1};
            else
                ++mCounted.second;
        }
        return mCounted;
    }

    void SkipLine() {
        while (!AtEnd() && !IsLineEnd(mText[mAt]))
            ++mAt;
    }

    /// Of a key that stands twice both comments are kept.
    void TakeComments(const std::string& key) {
        if (mComments.empty())
            return;
        std::vector<std::string>& comments = mNotes->mComments[key];
        comments.insert(comments.end(), mComments.begin(), mComments.end());
        mComments.clear();
    }

    /// Over blank lines and comment lines, to the start of a line that has something to say.
    void SkipToContent() {
        for (;;) {
            std::size_t at = mAt;
            while (at < mText.size() && (IsBlank(mText[at]) || IsLineEnd(mText[at]))) {
                if (IsLineEnd(mText[at]))
                    mAt = at + 1;
                ++at;
            }
            if (at >= mText.size()) {
                mAt = at;
                return;
            }
            if (mText.substr(at, 2) != "//")
                return;
            mAt = at;
            SkipLine();
            if (mNotes)
                mComments.emplace_back(mText.substr(at, mAt - at));
        }
    }

    /// Moves past a line that holds this alone, blanks around it aside.
    bool TakeLine(std::string_view wanted) {
        std::size_t at = mAt;
        while (at < mText.size() && IsBlank(mText[at]))
            ++at;
        if (mText.substr(at, wanted.size()) != wanted)
            return false;
        at += wanted.size();
        while (at < mText.size() && IsBlank(mText[at]))
            ++at;
        if (at < mText.size() && !IsLineEnd(mText[at]))
            return false;
        mAt = at;
        return true;
    }

    void SkipBlanks() {
        while (!AtEnd() && IsBlank(mText[mAt]))
            ++mAt;
    }

    void ReadEntry() {
        // The writer puts a tab before the key; a line indented otherwise is taken as well.
        if (mText[mAt] == '\t')
            while (mText[mAt] == '\t')
                ++mAt;
        else
            SkipBlanks();
        const std::size_t keyStart = mAt;
        while (!AtEnd() && mText[mAt] != '\t' && !IsLineEnd(mText[mAt]))
            ++mAt;
        const std::string key(mText.substr(keyStart, mAt - keyStart));
        SkipBlanks();
        if (AtEnd() || mText[mAt] != '"')
            Fail("the key \"" + key + "\" has no text: expected a tab and a text in double quotes");
        QLX_StringTableEntry entry;
        entry.mLocalized = ReadQuoted();
        SkipBlanks();
        if (!AtEnd() && mText[mAt] == '"') {
            entry.mSource = std::move(entry.mLocalized);
            entry.mLocalized = ReadQuoted();
            SkipBlanks();
        }
        if (!AtEnd() && !IsLineEnd(mText[mAt]))
            Fail("expected the line's end after the text of the key \"" + key + "\"");
        if (mNotes) {
            mNotes->mPlaces[key] = PlaceOf(keyStart);
            TakeComments(key);
        }
        if (!mTable.insert_or_assign(key, std::move(entry)).second && mProblems &&
            mProblems->size() < kMostProblems)
            mProblems->push_back(
                ProblemAt(keyStart, QLX_SourceProblem::kWarning,
                          "the key \"" + key + "\" stands twice; this one counts"));
    }

    std::string ReadQuoted() {
        const std::size_t start = mAt++;
        std::string text;
        while (!AtEnd()) {
            if (mText[mAt] != '\\' && mText[mAt] != '"') {
                const std::size_t end = std::min(mText.find_first_of("\\\"", mAt), mText.size());
                text += mText.substr(mAt, end - mAt);
                mAt = end;
                continue;
            }
            std::size_t run = 0;
            while (!AtEnd() && mText[mAt] == '\\') {
                ++run;
                ++mAt;
            }
            const bool beforeQuote = !AtEnd() && mText[mAt] == '"';
            text.append(beforeQuote ? run / 2 : run, '\\');
            if (!beforeQuote)
                continue;
            ++mAt;
            if (run % 2 == 0)
                return text;
            text += '"';
        }
        mAt = start;
        Fail("this text is not closed by a double quote");
    }

    std::string_view mText;
    const std::string& mFile;
    std::vector<QLX_SourceProblem>* mProblems; // not owned; may be null
    QLX_StringTableNotes* mNotes;              // likewise
    std::vector<std::string> mComments;        // those that wait for a key
    std::size_t mAt = 0;
    std::size_t mCountedTo = 0;
    std::pair<int, int> mCounted{1, 1};
    QLX_StringTable mTable;
};
} // namespace

std::string QLX_WriteStringTable(const QLX_StringTable& table, const std::string& name,
                                 LineEndings endings, const QLX_StringTableNotes* notes) {
    const char* const lineEnd = Sys_LineEndText(endings);
    const auto writeComments = [&](std::string& to, const std::string& key) {
        if (!notes || !notes->mComments.count(key))
            return;
        for (const std::string& comment : notes->mComments.at(key))
            to += "\t" + comment + lineEnd;
    };
    std::string out(kHeading);
    for (const char c : name)
        out += c == '\r' || c == '\n' ? ' ' : c;
    CheckText(name, "name of the description", name);
    out += lineEnd;
    out += '{';
    out += lineEnd;
    for (const auto& [key, entry] : table) {
        CheckKey(key, name);
        CheckText(entry.mSource, key, name);
        CheckText(entry.mLocalized, key, name);
        writeComments(out, key);
        out += '\t';
        out += key;
        if (!entry.mSource.empty()) {
            out += '\t';
            AppendQuoted(out, entry.mSource);
        }
        out += '\t';
        AppendQuoted(out, entry.mLocalized);
        out += lineEnd;
    }
    writeComments(out, {});
    out += '}';
    out += lineEnd;
    return out;
}

QLX_StringTable QLX_ReadStringTable(std::string_view text, const std::string& file,
                                    std::vector<QLX_SourceProblem>* problems,
                                    QLX_StringTableNotes* notes) {
    return Reader(text, file, problems, notes).Read();
}

std::string QLX_GetStringTableName(std::string_view text) {
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        text.remove_prefix(kByteOrderMark.size());
    if (text.substr(0, kHeading.size()) != kHeading)
        return {};
    text.remove_prefix(kHeading.size());
    return std::string(text.substr(0, text.find_first_of("\r\n")));
}
