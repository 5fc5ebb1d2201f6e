// messages_yardstick FILE COUNT THREADS: what a line costs that spdlog's synchronous file logger writes.
// Prints the microseconds for one. bench/group_messages.tcl compiles and runs it.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    const int count = std::atoi(argv[2]), threads = std::atoi(argv[3]);
    const auto logger = spdlog::basic_logger_mt("yardstick", argv[1], true);
    const auto log_many = [&] {
        for (int i = 0; i < count / threads; ++i) {
            logger->warn("The file '{}' cannot be opened for writing; the session continues without it.",
                         "some_file.log");
        }
    };
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> running;
    for (int i = 1; i < threads; ++i) {
        running.emplace_back(log_many);
    }
    log_many();
    for (std::thread& thread : running) {
        thread.join();
    }
    logger->flush();
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    std::printf("%.6f\n", time.count() / count);
}
