#include "findings.h"

#include <cstdio>
#include <set>

namespace {
std::string Quoted(const std::string& text) {
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
        out += "  {\"file\": " + Quoted(finding.mFile) +
               ", \"line\": " + std::to_string(finding.mLine) +
               ", \"column\": " + std::to_string(finding.mColumn) + ", \"level\": \"" +
               Level(finding) + "\", \"rule\": " + Quoted(finding.mRule) +
               ", \"text\": " + Quoted(finding.mText) + "}";
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
                      "    \"tool\": {\"driver\": {\"name\": \"qlxview\", \"rules\": [";
    const char* separator = "";
    for (const std::string& rule : rules) {
        out += separator + std::string("{\"id\": ") + Quoted(rule) + "}";
        separator = ", ";
    }
    out += "]}},\n    \"results\": [";
    separator = "\n";
    for (const Finding& finding : findings) {
        out += separator + std::string("      {\"ruleId\": ") + Quoted(finding.mRule) +
               ", \"level\": \"" + Level(finding) +
               "\", \"message\": {\"text\": " + Quoted(finding.mText) +
               "}, \"locations\": [{\"physicalLocation\": {\"artifactLocation\": {\"uri\": " +
               Quoted(finding.mFile) + "}";
        if (finding.mLine > 0)
            out += ", \"region\": {\"startLine\": " + std::to_string(finding.mLine) +
                   ", \"startColumn\": " + std::to_string(finding.mColumn) + "}";
        out += "}}]}";
        separator = ",\n";
    }
    return out + "\n    ]\n  }]\n}\n";
}
