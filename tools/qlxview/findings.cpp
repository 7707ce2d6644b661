#include "findings.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <set>

std::string QuotedJSON(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        char escape[8];
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
                out += escape;
            } else {
                out += c;
            }
        }
    }
    return out + "\"";
}

namespace {
/// A path as a URI reference: what a URI may not hold is percent-encoded (RFC 3986).
std::string URIOf(const std::string& path) {
    std::string out;
    for (const char c : path) {
        char escape[4];
        const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                           (c >= 'A' && c <= 'Z') || (c && std::strchr("-._~/:@!$&'()*+,;=", c));
        if (plain) {
            out += c;
        } else {
            std::snprintf(escape, sizeof escape, "%%%02X",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            out += escape;
        }
    }
    return out;
}

/// What a rule is about, for those who read a report.
const char* Explain(const std::string& rule) {
    static const std::map<std::string, const char*> texts = {
        {"unreadable", "The file cannot be read"},
        {"source", "Something in the source is dropped or odd"},
        {"well-known", "An attribute that an element needs is missing, empty or of another type"},
        {"hidden", "An attribute keeps a property of the same name from being written"},
        {"filter", "A layout or language that no look-up selects"},
        {"value", "A text is taken as another value than it says"},
        {"view", "Something that a view could not make of its properties"},
        {"class", "A class that is not registered"},
        {"unread", "A property that its class does not read"},
        {"string-missing", "A key without a text"},
        {"string-unused", "A text that no property uses"},
        {"string-untranslated", "An empty text"},
        {"string-stale", "A translation of an English text that changed"}};
    const auto found = texts.find(rule);
    return found == texts.end() ? "" : found->second;
}

const char* Level(const Finding& finding) { return finding.mError ? "error" : "warning"; }
} // namespace

std::string FindingsAsText(const std::vector<Finding>& findings) {
    std::string out;
    for (const Finding& finding : findings) {
        out += finding.mFile;
        if (finding.mLine > 0)
            out += ":" + std::to_string(finding.mLine) + ":" + std::to_string(finding.mColumn);
        out += std::string(": ") + Level(finding) + ": " + finding.mText + " [" + finding.mRule +
               "]\n";
    }
    return out;
}

std::string FindingsAsJSON(const std::vector<Finding>& findings) {
    std::string out = "[";
    const char* separator = "\n";
    for (const Finding& finding : findings) {
        out += separator;
        out += "  {\"file\": " + QuotedJSON(finding.mFile) +
               ", \"line\": " + std::to_string(finding.mLine) +
               ", \"column\": " + std::to_string(finding.mColumn) + ", \"level\": \"" +
               Level(finding) + "\", \"rule\": " + QuotedJSON(finding.mRule) +
               ", \"text\": " + QuotedJSON(finding.mText) + "}";
        separator = ",\n";
    }
    return out + "\n]\n";
}

std::string FindingsAsSARIF(const std::vector<Finding>& findings) {
    std::set<std::string> rules;
    for (const Finding& finding : findings)
        rules.insert(finding.mRule);
    std::string out = "{\n  \"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
                      "  \"version\": \"2.1.0\",\n  \"runs\": [{\n"
                      "    \"columnKind\": \"unicodeCodePoints\",\n"
                      "    \"tool\": {\"driver\": {\"name\": \"qlxview\", \"rules\": [";
    const char* separator = "";
    for (const std::string& rule : rules) {
        out += separator + std::string("\n      {\"id\": ") + QuotedJSON(rule) +
               ", \"shortDescription\": {\"text\": " + QuotedJSON(Explain(rule)) + "}}";
        separator = ",";
    }
    out += "]}},\n    \"results\": [";
    separator = "\n";
    for (const Finding& finding : findings) {
        out += separator + std::string("      {\"ruleId\": ") + QuotedJSON(finding.mRule) +
               ", \"level\": \"" + Level(finding) +
               "\", \"message\": {\"text\": " + QuotedJSON(finding.mText) +
               "}, \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": " +
               QuotedJSON(URIOf(finding.mFile)) + "}";
        if (finding.mLine > 0)
            out += ", \"region\": {\"startLine\": " + std::to_string(finding.mLine) +
                   ", \"startColumn\": " + std::to_string(finding.mColumn) + "}";
        out += "}}]}";
        separator = ",\n";
    }
    return out + "\n    ]\n  }]\n}\n";
}
