#include "support/Process.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File temporaryFile() {
    File file(std::tmpfile(), std::fclose);
    if (!file) {
        throw std::system_error(errno, std::generic_category(), "tmpfile");
    }
    return file;
}

std::string contents(FILE* file) {
    std::rewind(file);
    std::string text;
    std::array<char, 4096> block{};
    while (const size_t count = std::fread(block.data(), 1, block.size(), file)) {
        text.append(block.data(), count);
    }
    return text;
}

} // namespace

ProcessResult runProcess(std::vector<std::string> commandLine,
                         const std::vector<std::string>& environment) {
    std::vector<char*> arguments;
    arguments.reserve(commandLine.size() + 1);
    for (std::string& argument : commandLine) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    const File output = temporaryFile();
    const File errors = temporaryFile();

    const pid_t child = fork();
    if (child == 0) {
        dup2(fileno(output.get()), STDOUT_FILENO);
        dup2(fileno(errors.get()), STDERR_FILENO);
        for (const std::string& variable : environment) {
            const size_t equals = variable.find('=');
            const std::string name = variable.substr(0, equals);
            if (equals == std::string::npos) {
                unsetenv(name.c_str());
            } else {
                setenv(name.c_str(), variable.c_str() + equals + 1, 1);
            }
        }
        execvp(arguments.front(), arguments.data());
        std::perror(arguments.front());
        _exit(127);
    }
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contents(output.get()),
            contents(errors.get())};
}
