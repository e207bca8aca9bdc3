// Where a command writes: its result, and beside it what people are told. Both may be a terminal, a
// pipe, a file or a text in memory.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

class Output {
public:
    virtual ~Output() = default;
    // A write that failed is remembered, and nothing more is written: a pipe that was closed needs
    // no second try.
    void Write(std::string_view bytes) { failed_ = failed_ || !Put(bytes); }
    // False when anything could not be written.
    bool Finish() { return !failed_ && Flush() && !failed_; }
    bool failed() const { return failed_; }

private:
    virtual bool Put(std::string_view bytes) = 0;
    virtual bool Flush() = 0;

    bool failed_ = false;
};

class TextOutput final : public Output {
public:
    std::string text;

private:
    bool Put(std::string_view bytes) override {
        text += bytes;
        return true;
    }
    bool Flush() override { return true; }
};

// Behind a handle that somebody else closes.
class HandleOutput final : public Output {
public:
    explicit HandleOutput(int file) : file_(file) {}
    ~HandleOutput() override { Flush(); }

private:
    bool Put(std::string_view bytes) override;
    bool Flush() override;
    bool WriteAll(std::string_view bytes);

    const int file_;
    std::string waiting_;
};

struct Console {
    Output& out;
    Output& err;
    bool is_watched = false;  // somebody sits before a terminal and sees what goes to `err`

    void Line(std::string_view text) {
        out.Write(text);
        out.Write("\n");
    }
    void Tell(std::string_view text) {
        err.Write("tolvenar: ");
        err.Write(text);
        err.Write("\n");
        err.Finish();
    }
};

}  // namespace tolvenar::pc
