// Commands for bench/group_messages.tcl: `load libbench_messages.so Bench_messages` makes them in the
// namespace bench.

#include <chrono>
#include <climits>
#include <thread>
#include <vector>

#include "platform/env/HUTLogFileMgr.h"
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace {

class NoConsole : public ComMsgMgrSink {
    void write(std::string_view) override {}
};

void send_many(int count) {
    for (int i = 0; i < count; ++i) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-138@%s\n", "some_file.log");
    }
}

} // namespace

// Sends messages from C++ on some threads; answers with the microseconds that one takes.
namespace send_from_threads {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "bench::send_from_threads";

    static void load_description() {
        description_instance("Send messages.", "microseconds for one")
            .add_options()
            .add_option("count", options::number(1), "How many messages in all.")
            .add_option("threads", options::number(1), "On how many threads.");
        positional_instance().add("count", 1).add("threads", 1);
    }

    int execute(Tcl_Interp* interp) override {
        const int count = get_option<int>("count"), threads = get_option<int>("threads");
        ComMsgMgr::setMsgLimit(UINT_MAX, "Common 17-138");
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::thread> running;
        for (int i = 1; i < threads; ++i) {
            running.emplace_back(send_many, count / threads);
        }
        send_many(count / threads);
        for (std::thread& thread : running) {
            thread.join();
        }
        HUTLogFileMgr::flush();
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        return set_result(interp, time.count() / count);
    }
};

} // namespace send_from_threads

// Takes the arguments of send_msg_id and sends nothing.
namespace send_nothing {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "bench::send_nothing";

    static void load_description() {
        description_instance("Do nothing.", "")
            .add_options()
            .add_option("continue", options::flag(), "Ignored.")
            .add_option("id", options::text(""), "Ignored.")
            .add_option("severity", options::value<std::string>(), "Ignored.")
            .add_option("msg", options::value<std::string>(), "Ignored.");
        positional_instance().add("id", 1).add("severity", 1).add("msg", 1);
    }

    int execute(Tcl_Interp*) override {
        const bool flag = get_option<bool>("continue");
        const auto id = get_option<std::string>("id"), severity = get_option<std::string>("severity"),
                   text = get_option<std::string>("msg");
        return flag && id.empty() && severity.empty() && text.empty() ? TCL_ERROR : TCL_OK;
    }
};

} // namespace send_nothing

// Throws away what would go to the console, so that only the log is measured.
namespace no_console {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "bench::no_console";
    static void load_description() { description_instance("Turn the console off.", ""); }
    int execute(Tcl_Interp*) override {
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, std::make_shared<NoConsole>());
        return TCL_OK;
    }
};

} // namespace no_console

extern "C" DLLEXPORT int Bench_messages_Init(Tcl_Interp* interp) {
    register_task<send_from_threads::task>(interp);
    register_task<send_nothing::task>(interp);
    register_task<no_console::task>(interp);
    return TCL_OK;
}
