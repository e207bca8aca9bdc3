// Programs that tests start on a device, and waiting for what they do.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "simulator/programs/programs.h"
#include "tests/support/device_test.h"

namespace tests {

// Puts a program that was built beside the tests ("probe.exe") on the device.
void InstallProgram(sim::Device& device, const std::string& name, const std::wstring& path);

// Whether `done` comes true within twenty seconds, whatever asking takes.
bool Eventually(const std::function<bool()>& done);

// Asks until the answer is what is waited for, and returns it. When it never is, the test fails and
// tells the last answer, which is returned all the same.
template <typename Ask, typename IsIt>
auto Await(const Ask& ask, const IsIt& is_it) {
    auto answer = ask();
    EXPECT_TRUE(Eventually([&] { return is_it(answer) || is_it(answer = ask()); }))
        << "there was instead: " << ::testing::PrintToString(answer);
    return answer;
}

// For EXPECT_SOON_EQ.
template <typename Expected, typename Ask>
::testing::AssertionResult Becomes(const char* text, const Expected& expected, const Ask& ask) {
    auto answer = ask();
    if (Eventually([&] { return answer == expected || (answer = ask()) == expected; })) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << text << " stayed " << ::testing::PrintToString(answer) << " and should become "
           << ::testing::PrintToString(expected);
}

// What another process does comes a while after it was asked for: these ask again until it is so.
#define EXPECT_SOON(...) EXPECT_TRUE(::tests::Eventually([&] { return bool(__VA_ARGS__); }))
#define ASSERT_SOON(...) ASSERT_TRUE(::tests::Eventually([&] { return bool(__VA_ARGS__); }))
#define EXPECT_SOON_EQ(expected, actual) \
    EXPECT_TRUE(::tests::Becomes(#actual, expected, [&] { return actual; }))

// A started program; ended and let go of with this object.
class Program {
public:
    // Throws when it cannot be started.
    Program(sim::Device& device, const std::wstring& path, const std::wstring& arguments);
    ~Program();
    Program(Program&& other) noexcept;
    Program& operator=(Program&&) = delete;

    std::uint32_t pid() const { return started_.pid; }
    // Its exit code; -1 when it does not end within twenty seconds.
    int ExitCode();
    bool Runs();

private:
    sim::Device& device_;
    sim::processes::Started started_;
};

// Another device beside the one of the test.
class SecondDevice {
public:
    SecondDevice();
    ~SecondDevice();
    sim::Device& sim() { return *device_; }

private:
    std::wstring folder_;
    std::unique_ptr<sim::Device> device_;
};

}  // namespace tests
