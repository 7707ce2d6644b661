#include "po.h"

#include <cstdio>
#include <stdexcept>

namespace {
std::string Quoted(std::string_view text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        char octal[8];
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            // A long text is easier to read with a line of the file a line of its own.
            out += i + 1 < text.size() ? "\\n\"\n\"" : "\\n";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned>(c));
                out += octal;
            } else {
                out += c;
            }
        }
    }
    return out + "\"";
}

void Append(std::string& out, const char* keyword, const std::string& text) {
    out += keyword;
    // Texts of several lines begin below their keyword.
    out += text.find('\n') < text.size() - 1 ? " \"\"\n" : " ";
    out += Quoted(text) + "\n";
}

class Reader {
  public:
    Reader(std::string_view text, const std::string& file) : mText(text), mFile(file) {
        if (mText.substr(0, 3) == "\xEF\xBB\xBF")
            mText.remove_prefix(3);
    }

    std::vector<POEntry> Read() {
        std::string_view line;
        while (NextLine(line))
            ReadLine(line);
        EndEntry();
        return std::move(mEntries);
    }

  private:
    enum Field { kNone, kContext, kSource, kText, kPrevious };

    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::runtime_error(mFile + ":" + std::to_string(mLine) + ": " + reason);
    }

    bool NextLine(std::string_view& line) {
        if (mText.empty())
            return false;
        ++mLine;
        const std::size_t end = mText.find('\n');
        line = mText.substr(0, end);
        mText.remove_prefix(end == std::string_view::npos ? mText.size() : end + 1);
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
            line.remove_suffix(1);
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
            line.remove_prefix(1);
        return true;
    }

    void ReadLine(std::string_view line) {
        if (line.empty())
            return;
        if (line.front() == '#')
            ReadComment(line);
        else if (line.front() == '"')
            Continue(line);
        else if (Takes(line, "msgctxt"))
            Begin(kContext, line);
        else if (Takes(line, "msgid"))
            Begin(kSource, line);
        else if (Takes(line, "msgstr"))
            Begin(kText, line);
        else if (line.rfind("msgid_plural", 0) == 0 || line.rfind("msgstr[", 0) == 0)
            Fail("string tables have no plural forms");
        else
            Fail("expected msgctxt, msgid, msgstr, a text in double quotes or a comment");
    }

    static bool Takes(std::string_view& line, std::string_view keyword) {
        if (line.substr(0, keyword.size()) != keyword)
            return false;
        const std::string_view rest = line.substr(keyword.size());
        if (rest.empty() || (rest.front() != ' ' && rest.front() != '\t' && rest.front() != '"'))
            return false;
        line = rest.substr(std::min(rest.find('"'), rest.size()));
        return true;
    }

    void ReadComment(std::string_view line) {
        if (line.rfind("#~", 0) == 0)
            return; // obsolete
        StartEntryIfDone();
        if (line.rfind("#,", 0) == 0) {
            mEntry.mFuzzy = mEntry.mFuzzy || line.find("fuzzy") != std::string_view::npos;
        } else if (line.rfind("#|", 0) == 0) {
            line.remove_prefix(2);
            while (!line.empty() && line.front() == ' ')
                line.remove_prefix(1);
            if (Takes(line, "msgid")) {
                mField = kPrevious;
                mEntry.mHasPrevious = true;
                mEntry.mPrevious = Unquote(line);
            } else if (mField == kPrevious && !line.empty() && line.front() == '"') {
                mEntry.mPrevious += Unquote(line);
            }
        }
    }

    /// A comment or a context after a complete entry begins the next one.
    void StartEntryIfDone() {
        if (mHasText)
            EndEntry();
    }

    void Begin(Field field, std::string_view line) {
        if (field != kText)
            StartEntryIfDone();
        bool& has = field == kContext ? mHasContext : field == kSource ? mHasSource : mHasText;
        if (has)
            Fail("the same keyword stands twice in an entry");
        if (field == kText && !mHasSource)
            Fail("msgstr without msgid");
        if (!mHasContext && !mHasSource)
            mEntry.mLine = mLine;
        has = true;
        mField = field;
        Target() += Unquote(line);
    }

    void Continue(std::string_view line) {
        if (mField == kNone || mField == kPrevious)
            Fail("a text that belongs to no keyword");
        Target() += Unquote(line);
    }

    std::string& Target() {
        return mField == kContext ? mEntry.mContext
               : mField == kText  ? mEntry.mText
                                  : mEntry.mSource;
    }

    void EndEntry() {
        if (mHasContext || mHasSource) {
            if (!mHasText)
                Fail("the entry that begins in line " + std::to_string(mEntry.mLine) +
                     " has no msgstr");
            const bool isHeader = !mHasContext && mEntry.mSource.empty();
            if (!isHeader)
                mEntries.push_back(std::move(mEntry));
        }
        mEntry = {};
        mField = kNone;
        mHasContext = mHasSource = mHasText = false;
    }

    [[nodiscard]] std::string Unquote(std::string_view line) const {
        if (line.size() < 2 || line.front() != '"' || line.back() != '"')
            Fail("expected a text in double quotes");
        line = line.substr(1, line.size() - 2);
        std::string text;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '"')
                Fail("a double quote inside a text needs a backslash before it");
            if (line[i] != '\\') {
                text += line[i];
                continue;
            }
            if (++i == line.size())
                Fail("the text ends with a lone backslash");
            text += Escaped(line, i);
        }
        return text;
    }

    /// The character behind a backslash; moves to its last byte.
    [[nodiscard]] char Escaped(std::string_view line, std::size_t& at) const {
        switch (line[at]) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case 'a':
            return '\a';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'v':
            return '\v';
        case '"':
        case '\\':
        case '\'':
            return line[at];
        default:
            break;
        }
        int value = 0;
        std::size_t digits = 0;
        while (digits < 3 && at + digits < line.size() && line[at + digits] >= '0' &&
               line[at + digits] <= '7')
            value = value * 8 + (line[at + digits++] - '0');
        if (digits == 0)
            Fail(std::string("the unknown escape \\") + line[at]);
        at += digits - 1;
        return static_cast<char>(value);
    }

    std::string_view mText; // what is still to be read
    const std::string& mFile;
    int mLine = 0;
    std::vector<POEntry> mEntries;
    POEntry mEntry;
    Field mField = kNone;
    bool mHasContext = false, mHasSource = false, mHasText = false;
};
} // namespace

std::string WritePO(const std::vector<POEntry>& entries, const std::string& language,
                    const std::string& project) {
    std::string out = "msgid \"\"\nmsgstr \"\"\n";
    out += Quoted("Project-Id-Version: " + project) + "\n";
    out.insert(out.size() - 2, "\\n");
    out += "\"Language: " + language +
           "\\n\"\n\"MIME-Version: 1.0\\n\"\n"
           "\"Content-Type: text/plain; charset=UTF-8\\n\"\n"
           "\"Content-Transfer-Encoding: 8bit\\n\"\n";
    for (const POEntry& entry : entries) {
        out += "\n";
        for (const std::string& note : entry.mNotes)
            out += "#. " + note + "\n";
        for (const std::string& place : entry.mPlaces)
            out += "#: " + place + "\n";
        if (entry.mFuzzy)
            out += "#, fuzzy\n";
        if (entry.mHasPrevious) {
            std::string previous;
            Append(previous, "msgid", entry.mPrevious);
            for (std::size_t at = 0; at < previous.size();) {
                const std::size_t end = previous.find('\n', at);
                out += "#| " + previous.substr(at, end - at) + "\n";
                at = end + 1;
            }
        }
        Append(out, "msgctxt", entry.mContext);
        Append(out, "msgid", entry.mSource);
        Append(out, "msgstr", entry.mText);
    }
    return out;
}

std::vector<POEntry> ReadPO(std::string_view text, const std::string& file) {
    return Reader(text, file).Read();
}
