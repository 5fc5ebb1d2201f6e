#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "../support/TempDir.h"

/// A test in an empty directory of its own, which is the working directory while it runs.
class InTempDir : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::current_path(dir); }
    void TearDown() override { std::filesystem::current_path(before_); }

private:
    const std::filesystem::path before_ = std::filesystem::current_path();
    const TempDir directory_;

protected:
    const std::filesystem::path dir = directory_.root();
};

/// A variable of the environment, set or unset for a scope.
class ScopedEnv {
public:
    ScopedEnv(const char* name, std::optional<std::string> value) : name_(name) {
        if (const char* old = std::getenv(name))
            old_ = old;
        set(value);
    }
    ~ScopedEnv() { set(old_); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    void set(const std::optional<std::string>& value) {
        if (value)
            ::setenv(name_.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name_.c_str());
    }
    std::string name_;
    std::optional<std::string> old_;
};

struct ChildResult {
    int status = 0;
    pid_t pid = 0;
    std::string standard_error;
};

/// Runs `body` in a child process and waits for its end. A child that comes to the end of the body exits with
/// 0, or with 1 when an expectation in it failed.
inline ChildResult run_child(const std::function<void()>& body) {
    ChildResult result;
    int ends[2];
    if (::pipe(ends) != 0)
        return result;
    result.pid = ::fork();
    if (result.pid == 0) {
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        body();
        std::fflush(nullptr);
        ::_exit(::testing::Test::HasFailure());
    }
    ::close(ends[1]);
    char bytes[4096];
    for (ssize_t n; (n = ::read(ends[0], bytes, sizeof bytes)) > 0;)
        result.standard_error.append(bytes, static_cast<size_t>(n));
    ::close(ends[0]);
    ::waitpid(result.pid, &result.status, 0);
    return result;
}
