// qlxview schema: the vocabulary of descriptions, for editors that complete and check while one
// types, and as a table of what each class reads.
#include <algorithm>
#include <cstdio>

#include "basekit/cmn/cmn_string.h"
#include "classschema.h"
#include "command.h"
#include "findings.h"
#include "qlx/foundation/uclassdesc.h"
#include "qlx/persistence/qlx_sourceformat.h"

namespace {
struct Options {
    bool mJSON = false;
    std::string mOutput = "-";
};

struct ClassReads {
    const ClassDesc* mClass;
    ReadProperties mReads;
};

/// The classes that read something, by name.
std::map<std::string, ClassReads> GatherClasses(ClassSchema& schema) {
    std::map<std::string, ClassReads> classes;
    for (const ClassDesc* desc = ClassDesc::fgClassDescList; desc;
         desc = desc->GetNextClassDesc()) {
        const ReadProperties& reads = schema.Get(desc->GetClassName());
        if (!reads.empty())
            classes[desc->GetClassName()] = {desc, reads};
    }
    return classes;
}

using PropertyName = std::pair<std::string, QLX_PropertyType>;

/// The class that brings the property in: the highest ancestor, in one piece with the class, that
/// reads it as well. An ancestor that cannot be made by name is passed over.
std::string ReaderOf(const std::map<std::string, ClassReads>& classes, const ClassReads& reads,
                     const PropertyName& property) {
    std::string reader = reads.mClass->GetClassName();
    for (const ClassDesc* base = reads.mClass->GetBaseClass(1); base;
         base = base->GetBaseClass(1)) {
        const auto found = classes.find(base->GetClassName());
        if (found == classes.end())
            continue;
        if (!found->second.mReads.count(property))
            break;
        reader = base->GetClassName();
    }
    return reader;
}

std::string AsJSON(const std::map<std::string, ClassReads>& classes) {
    std::string out = "{";
    const char* separator = "\n";
    for (const auto& [name, reads] : classes) {
        const ClassDesc* const base = reads.mClass->GetBaseClass(1);
        out += separator + ("  " + QuotedJSON(name) + ": {\"base\": ") +
               QuotedJSON(base ? base->GetClassName() : std::string()) + ", \"properties\": [";
        const char* comma = "\n";
        for (const auto& [property, read] : reads.mReads) {
            out += comma + ("    {\"name\": " + QuotedJSON(property.first)) + ", \"type\": \"" +
                   QLX_PropertyTypeToString(property.second) + "\", ";
            if (read.mHasDefault)
                out += "\"default\": " + QuotedJSON(read.mDefault) + ", ";
            out += "\"reader\": " + QuotedJSON(ReaderOf(classes, reads, property)) + "}";
            comma = ",\n";
        }
        out += "\n  ]}";
        separator = ",\n";
    }
    return out + "\n}\n";
}

// RELAX NG (ISO/IEC 19757-2), XML syntax

/// The definition of a type's value, in W3C XML Schema datatypes.
const char* ValuePattern(QLX_PropertyType type) {
    switch (type) {
    case qlx_PropType_Bool:
        return "<choice><value>true</value><value>false</value></choice>";
    case qlx_PropType_Int32:
        return "<data type=\"int\"/>";
    case qlx_PropType_Int64:
        return "<data type=\"long\"/>";
    case qlx_PropType_IDType:
        return "<choice><data type=\"string\"><param name=\"length\">4</param></data>"
               "<data type=\"string\"><param name=\"pattern\">0x[0-9A-Fa-f]{8}</param></data>"
               "</choice>";
    case qlx_PropType_Color:
        return "<data type=\"string\"><param name=\"pattern\">"
               "0x[0-9A-Fa-f]{1,4} 0x[0-9A-Fa-f]{1,4} 0x[0-9A-Fa-f]{1,4}</param></data>";
    case qlx_PropType_Point:
        return "<data type=\"string\"><param name=\"pattern\">-?[0-9]+ -?[0-9]+</param></data>";
    case qlx_PropType_Rect:
        return "<data type=\"string\"><param name=\"pattern\">"
               "-?[0-9]+ -?[0-9]+ -?[0-9]+ -?[0-9]+</param></data>";
    default:
        return "<text/>";
    }
}

class GrammarWriter {
  public:
    explicit GrammarWriter(const std::map<std::string, ClassReads>& classes) : mClasses(classes) {}

    std::string Write() {
        mOut = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<grammar xmlns=\"http://relaxng.org/ns/structure/1.0\"\n"
               "         datatypeLibrary=\"http://www.w3.org/2001/XMLSchema-datatypes\">\n"
               "  <start>\n    <element name=\"container\">\n"
               "      <optional><attribute name=\"name\"/></optional>\n"
               "      <ref name=\"viewhierarchy\"/>\n    </element>\n  </start>\n";
        WriteCommon();
        std::string elements;
        for (const auto& [element, properties] : QLX_SourceViewFormat::GetWellKnownProperties()) {
            WriteElement(element, properties);
            elements += "      <ref name=\"" + element + "\"/>\n";
        }
        mOut += "  <define name=\"elements\">\n    <zeroOrMore><choice>\n" + elements +
                "    </choice></zeroOrMore>\n  </define>\n";
        for (const auto& [name, reads] : mClasses)
            WriteClass(name, reads);
        return mOut + "</grammar>\n";
    }

  private:
    void WriteCommon() {
        mOut += "  <define name=\"filter\">\n"
                "    <optional><attribute name=\"Layout\"/></optional>\n"
                "    <optional><attribute name=\"Language\"><choice>\n";
        for (int i = 0; i < QLX_Language::kLanguageCount; ++i)
            mOut +=
                "      <value>" +
                std::string(QLX_Language::GetFileCode(static_cast<QLX_Language::ELanguage>(i))) +
                "</value>\n";
        mOut += "    </choice></attribute></optional>\n  </define>\n"
                "  <define name=\"any-property\">\n    <zeroOrMore><element name=\"property\">\n"
                "      <attribute name=\"name\"/>\n      <choice>\n";
        for (int type = 1; type < kQLX_PropertyTypeCount; ++type)
            mOut += "        " + TypeAndValue(static_cast<QLX_PropertyType>(type)) + "\n";
        mOut += "      </choice>\n      <ref name=\"filter\"/>\n    </element></zeroOrMore>\n"
                "  </define>\n";
    }

    static std::string TypeAndValue(QLX_PropertyType type) {
        return "<group><attribute name=\"type\"><value>" + QLX_PropertyTypeToString(type) +
               "</value></attribute><attribute name=\"value\">" + ValuePattern(type) +
               "</attribute></group>";
    }

    /// An element's attributes; for one with a class, what the class reads; a class that is not
    /// known here may read anything.
    void WriteElement(const std::string& element,
                      const std::vector<QLX_WellKnownProperty>& properties) {
        mOut += "  <define name=\"" + element + "\">\n    <element name=\"" + element + "\">\n";
        bool hasClass = false;
        for (const QLX_WellKnownProperty& property : properties) {
            if (property.mName == "class") {
                hasClass = true;
                continue;
            }
            const std::string attribute =
                "<attribute name=\"" + property.mName + "\">" +
                (property.mType == qlx_PropType_IDType ? ValuePattern(property.mType) : "<text/>") +
                "</attribute>";
            mOut += "      " +
                    (property.mRequired ? attribute : "<optional>" + attribute + "</optional>") +
                    "\n";
        }
        if (hasClass)
            mOut += "      <ref name=\"" + element + ".classes\"/>\n";
        else
            mOut += "      <ref name=\"any-property\"/>\n";
        mOut += "      <ref name=\"elements\"/>\n    </element>\n  </define>\n";
        if (hasClass)
            WriteClassChoice(element);
    }

    void WriteClassChoice(const std::string& element) {
        mOut += "  <define name=\"" + element + ".classes\">\n    <choice>\n";
        std::string known;
        for (const auto& named : mClasses) {
            mOut += "      <group><attribute name=\"class\"><value>" + named.first +
                    "</value></attribute><ref name=\"class." + named.first + "\"/></group>\n";
            known += "<value>" + named.first + "</value>";
        }
        mOut += "      <group><attribute name=\"class\"><data type=\"string\"><except><choice>" +
                known +
                "</choice></except></data></attribute><ref name=\"any-property\"/></group>\n"
                "    </choice>\n  </define>\n";
    }

    void WriteClass(const std::string& name, const ClassReads& reads) {
        mOut += "  <define name=\"class." + name +
                "\">\n    <zeroOrMore><element name=\"property\">\n      <choice>\n";
        for (const auto& property : reads.mReads)
            mOut += "        <group><attribute name=\"name\"><value>" +
                    Cmn_XML_SimpleEscape(property.first.first) + "</value></attribute>" +
                    TypeAndValue(property.first.second) + "</group>\n";
        mOut += "      </choice>\n      <ref name=\"filter\"/>\n    </element></zeroOrMore>\n"
                "  </define>\n";
    }

    const std::map<std::string, ClassReads>& mClasses;
    std::string mOut;
};

void WriteSchema(const Options& options) {
    ClassSchema schema;
    const std::map<std::string, ClassReads> classes = GatherClasses(schema);
    const std::string text = options.mJSON ? AsJSON(classes) : GrammarWriter(classes).Write();
    if (options.mOutput == "-")
        std::fwrite(text.data(), 1, text.size(), stdout);
    else
        Sys_SafeWriter::Replace(Sys_FileLoc(options.mOutput), text);
}

void AddSchemaCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "The vocabulary of descriptions, taken from what the registered classes read");
    const auto options = std::make_shared<Options>();
    command->add_flag("--json", options->mJSON,
                      "What each class reads, with type, default and the class that brings it in; "
                      "without it RELAX NG");
    command->add_option("-o,--output", options->mOutput, "A file instead of standard output");
    command->footer("Example: qlxview --load ./libhost.so schema -o views.rng");
    command->callback([options] { WriteSchema(*options); });
}
const ToolCommand gSchema(80, "schema", AddSchemaCommand);
} // namespace
