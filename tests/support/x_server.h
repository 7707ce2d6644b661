// An X server of a test's own and the programs that stand in for a user in front of it.
#pragma once

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

/// What a shell command prints, without the last line ends.
inline std::string Output(const std::string& command) {
    std::string text;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        std::array<char, 256> buffer{};
        while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe))
            text += buffer.data();
        pclose(pipe);
    }
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

/// An X server on a free display, ended by its process id.
class XServer {
  public:
    XServer() {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        mProcess = fork();
        if (mProcess == 0) {
            const std::string fd = std::to_string(ends[1]);
            (void)!freopen("/dev/null", "w", stderr);
            execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "800x600x24",
                   "-nolisten", "tcp", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(ends[1]);
        std::array<char, 16> number{};
        const ssize_t length = read(ends[0], number.data(), number.size() - 1);
        close(ends[0]);
        if (length > 0)
            mDisplay = ":" + std::to_string(std::atoi(number.data()));
    }
    ~XServer() {
        if (mProcess > 0) {
            kill(mProcess, SIGTERM);
            waitpid(mProcess, nullptr, 0);
        }
    }
    [[nodiscard]] const std::string& GetDisplay() const { return mDisplay; }

  private:
    pid_t mProcess = -1;
    std::string mDisplay; // empty when there is no server
};
