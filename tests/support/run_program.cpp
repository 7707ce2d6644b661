#include "tests/support/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "basekit/sys/sys_file.h"

namespace {

/// What a program said: standard streams have line ends of their own on Windows.
std::string ReadSaid(const std::string& path) {
    std::string text = ReadText(path);
#ifdef _WIN32
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
#endif
    return text;
}

} // namespace

ProgramRun RunProgram(const std::string& name, const std::string& arguments) {
    std::string program = QLX_TEST_OUTPUT "/../bin/" + name;
#ifdef _WIN32
    std::replace(program.begin(), program.end(), '/', '\\');
#endif
    // Files of their own for every run: programs of other tests run at the same time, and wine
    // starts its desktop with the first window, which keeps the files open that the window's
    // program had.
    static int run = 0;
    std::string said = "program-" + std::to_string(++run);
    if (const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info())
        said = std::string(test->test_suite_name()) + "-" + test->name() + "-" + said;
    std::replace(said.begin(), said.end(), '/', '-'); // of tests with parameters
    said = QLX_TEST_OUTPUT "/" + said;
    const std::string out = said + ".out";
    const std::string err = said + ".err";
    std::filesystem::remove(out);
    std::filesystem::remove(err);
    const std::string command = program + " " + arguments + " >" + out + " 2>" + err;
    int status = std::system(command.c_str());
    // Without the file not even the shell was started, which wine fails at now and then.
    if (!std::filesystem::exists(out))
        status = std::system(command.c_str());
#ifndef _WIN32
    status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return {status, ReadSaid(out), ReadSaid(err)};
}

std::string FreshFolder(const std::string& name) {
    const std::string folder = QLX_TEST_OUTPUT "/" + name;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

std::string ReadText(const std::string& path) { return Sys_File::ReadAll(Sys_FileLoc(path)); }

void WriteText(const std::string& path, const std::string& text) {
    Sys_SafeWriter::Replace(Sys_FileLoc(path), text);
}
