// qlxview fit: which texts do not fit into the boxes that show them, in every look.
#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

#include "command.h"
#include "contactsheet.h"
#include "qlx/imaging/qlx_devicescale.h"
#include "stage.h"
#include "textfit.h"

namespace {
struct Options {
    std::vector<std::string> mFiles;
    std::string mSheet;
    LookOptions mLooks;
    int mWidth = 0;
    bool mForce = false;
    bool mJSON = false;
    bool mSARIF = false;
    bool mStrict = false;
};

class FitRun {
  public:
    explicit FitRun(const Options& options) : mOptions(options) {}

    void FitFile(const std::string& path) {
        const auto description = LoadDescription(path);
        const auto widest = description ? LoadDescription(path) : nullptr;
        if (!description || !widest) {
            gExitStatus = kExitFailed;
            return;
        }
        TakeWidestTexts(*widest);
        LookOptions options = mOptions.mLooks;
        const std::vector<double> scales = options.mScales;
        options.mScales.clear();
        const std::vector<Look> looks = ChooseLooks(*description, options);
        mColumns = std::max(mColumns, CountColumns(looks));
        for (const Look& look : looks)
            FitLook(look.mWidest ? *widest : *description, look, scales);
    }

    [[nodiscard]] std::vector<Finding> TakeFindings() {
        std::vector<Finding> findings = std::move(mServerProblems);
        for (const auto& [key, found] : mFound) {
            Finding finding = found.mFinding;
            finding.mText += " (" + found.mWhere + ")";
            findings.push_back(finding);
        }
        std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
            return std::tie(a.mFile, a.mLine, a.mColumn) < std::tie(b.mFile, b.mLine, b.mColumn);
        });
        return findings;
    }

    [[nodiscard]] const std::vector<SheetCell>& GetCells() const { return mCells; }
    [[nodiscard]] int GetColumns() const { return mColumns; }
    [[nodiscard]] std::size_t CountLooks() const { return mLookCount; }

  private:
    struct Found {
        Finding mFinding;
        std::string mWhere; // "Compact, DEU, at 1 1.25; ..."
        std::string mLook;  // the last one in mWhere
    };

    void FitLook(const Description& description, const Look& look,
                 const std::vector<double>& scales) {
        std::vector<Finding> problems;
        Stage stage(description, look, problems);
        SheetCell cell{nullptr, look.GetLayoutName() + ", " + look.GetLanguageName(), {}};
        std::size_t bad = 0;
        for (const double scale : scales) {
            ++mLookCount;
            stage.SetScale(static_cast<int>(std::lround(scale * 120)));
            const bool first = !cell.mPicture && !mOptions.mSheet.empty();
            if (first)
                cell.mPicture = stage.GetPicture();
            for (const FitProblem& problem : FindFitProblems(stage.GetWindow(), description)) {
                Add(description, look, scale, problem);
                if (first && problem.mError) {
                    cell.mMarks.push_back(QLX_DeviceScale(scale).RectToDevice(problem.mBox));
                    ++bad;
                }
            }
        }
        if (cell.mPicture) {
            if (bad > 0)
                cell.mCaption += ": " + std::to_string(bad) + " do not fit";
            mCells.push_back(cell);
        }
        for (const Finding& problem : problems)
            if (std::none_of(mServerProblems.begin(), mServerProblems.end(),
                             [&problem](const Finding& known) {
                                 return known.mLine == problem.mLine &&
                                        known.mText == problem.mText &&
                                        known.mFile == problem.mFile;
                             }))
                mServerProblems.push_back(problem);
    }

    /// One finding for a text that fails in several looks.
    void Add(const Description& description, const Look& look, double scale,
             const FitProblem& problem) {
        std::string text = problem.mView;
        if (!problem.mText.empty())
            text += ": \"" + OneLine(problem.mText) + "\"";
        text += " " + problem.mReason;
        Found& found = mFound[{description.GetPath(), problem.mPlace.mLine, problem.mRule, text}];
        const std::string name = look.GetLayoutName() + ", " + look.GetLanguageName();
        if (found.mLook != name)
            found.mWhere += (found.mWhere.empty() ? "" : "; ") + name + " at";
        found.mLook = name;
        found.mWhere += " " + ScaleText(static_cast<int>(std::lround(scale * 120)));
        found.mFinding = {description.GetPath(), problem.mPlace.mLine, problem.mPlace.mColumn,
                          problem.mError,        problem.mRule,        text};
    }

    static std::string OneLine(std::string text) {
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text;
    }

    const Options& mOptions;
    std::map<std::tuple<std::string, int, std::string, std::string>, Found> mFound;
    std::vector<Finding> mServerProblems;
    std::vector<SheetCell> mCells;
    int mColumns = 1;
    std::size_t mLookCount = 0;
};

void Fit(const Options& options) {
    if (!options.mSheet.empty())
        CheckMayWrite(options.mSheet, options.mForce);
    FitRun run(options);
    for (const std::string& path : options.mFiles)
        run.FitFile(path);
    const std::vector<Finding> findings = run.TakeFindings();
    const std::string text = options.mSARIF  ? FindingsAsSARIF(findings)
                             : options.mJSON ? FindingsAsJSON(findings)
                                             : FindingsAsText(findings);
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (!options.mSheet.empty() && !run.GetCells().empty())
        SavePicture(MakeContactSheet(run.GetCells(), run.GetColumns(), options.mWidth),
                    options.mSheet, options.mForce);
    for (const Finding& finding : findings)
        if ((finding.mError || options.mStrict) && gExitStatus == kExitWell)
            gExitStatus = kExitFound;
}

void AddFitCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "Tells which texts do not fit into the boxes that show them, in every look");
    const auto options = std::make_shared<Options>();
    options->mLooks.mLayouts = {"all"};
    options->mLooks.mLanguages = {"all", "widest"};
    options->mLooks.mScales = {1, 1.25, 1.5, 2};
    command->add_option("FILE", options->mFiles, "XML sources")->required();
    options->mLooks.AddTo(*command, /*themes*/ false);
    command->add_option("--sheet", options->mSheet,
                        "A contact sheet (PNG) with what does not fit in red, at the first scale");
    command->add_option("--width", options->mWidth, "Pictures on the sheet are at most this wide")
        ->check(CLI::Range(16, 16384));
    command->add_flag("-f,--force", options->mForce, "Replace a sheet that is there");
    CLI::Option* const json = command->add_flag("--json", options->mJSON, "The findings as JSON");
    command->add_flag("--sarif", options->mSARIF, "The findings as SARIF 2.1.0")->excludes(json);
    command->add_flag("--strict", options->mStrict, "Warnings, too, make the exit status 1");
    command->footer("Without options: all layouts, all languages and the widest texts of all, at "
                    "1, 1.25, 1.5 and 2.\nExit status 1 when something does not fit.\n"
                    "Example: qlxview --load ./libhost.so fit --sheet /tmp/fit.png "
                    "views/Transport.xml");
    command->callback([options] { Fit(*options); });
}
const ToolCommand gFit(61, "fit", AddFitCommand);
} // namespace
