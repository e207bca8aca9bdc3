// The program as a process whose output is read while it runs. Header only.
#pragma once

#include <csignal>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tolvenar::pc {

class Child {
public:
    // What it tells beside its output goes to the file `told`.
    Child(std::vector<std::string> arguments, const std::string& told) {
        arguments.insert(arguments.begin(), PC_PROGRAM);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        int out[2];
        if (::pipe(out) != 0) {
            return;
        }
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::close(out[0]);
            ::close(out[1]);
            if (std::freopen(told.c_str(), "w", stderr) != nullptr) {
                ::execv(PC_PROGRAM, pointers.data());
            }
            ::_exit(127);
        }
        ::close(out[1]);
        out_ = out[0];
    }
    ~Child() { ::close(out_); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Up to the end of the line, or of the output.
    std::string ReadLine() const {
        std::string line;
        for (char letter = 0; letter != '\n' && ::read(out_, &letter, 1) == 1;) {
            line += letter;
        }
        return line;
    }
    // As Ctrl-C does.
    void Interrupt() const { ::kill(process_, SIGINT); }
    // Reads what is left of the output; the exit code, or -1.
    int End() const {
        std::vector<char> rest(64 * 1024);
        while (::read(out_, rest.data(), rest.size()) > 0) {
        }
        int status = 0;
        ::waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t process_ = -1;
    int out_ = -1;
};

}  // namespace tolvenar::pc
