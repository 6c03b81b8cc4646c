// Runs the ct600 command, or a shell command, as a user would, capturing what it prints.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct CliOutcome {
    int status = -1;  // exit status, -1 if the command did not exit normally
    std::string out;  // standard output, and standard error where the command sends it there
};

inline CliOutcome RunShell(const std::string& command) {
    CliOutcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return outcome;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) outcome.out.append(buffer, n);
    const int raw = pclose(pipe);
    outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return outcome;
}

// environment: assignments put in front of the command, such as "TZ=UTC".
inline CliOutcome RunCli(const std::string& arguments, const std::string& environment = "") {
    return RunShell(environment + " " + std::string(CT600_CLI) + " " + arguments + " 2>&1");
}
