#include "support.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

const char* const trial_messages = R"(
subsystem trial 90 "Trial"
message 90-1 ERROR "Plain." description "d" resolution "r"
message 90-2 ERROR "One '%s'." description "d" resolution "r"
message 90-3 WARNING "%s has %d of %u, %.2f, %c." description "d" resolution "r"
message 90-4 INFO "%2$s before %1$s." description "d" resolution "r"
message 90-5 INFO "100%% of [%5d|%-5s|%05d|%x|%+d|%.3s]" description "d" resolution "r"
message 90-6 INFO "%s and %s" description "d" resolution "r"
message 90-7 INFO "%d" description "d" resolution "r"
message 90-8 STATUS "first\nsecond" description "d" resolution "r"
)";

/// Puts a root with the trial messages in front of the installed one, before anything asks for the roots.
class TrialRoot : public ::testing::Environment {
public:
    void SetUp() override {
        write_file(m_dir.path("data/msg/trial.msg"), trial_messages);
        write_file(m_dir.path("data/msg/xx/trial.msg"),
                   "subsystem trial 90 \"Trial\"\n"
                   "message 90-2 ERROR \"Uno '%s'.\" description \"d\" resolution \"r\"\n");
        write_file(m_dir.path("data/msg/broken.msg"),
                   "subsystem broken 91 \"Broken\"\n"
                   "message 91-1 ERROR \"Sound.\" description \"d\" resolution \"r\"\n"
                   "message 91-2 EROR \"Unsound.\"\n");
        const std::string roots = m_dir.root().string() + ':' + CORVANE_ROOT;
        ::setenv("OMU_APPROOT", roots.c_str(), 1);
    }

private:
    TempDir m_dir;
};

const ::testing::Environment* const s_root = ::testing::AddGlobalTestEnvironment(new TrialRoot);

} // namespace

void write_file(const std::string& path, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string read_file(const std::string& path) {
    std::ostringstream out;
    out << std::ifstream(path, std::ios::binary).rdbuf();
    return out.str();
}

MsgTest::MsgTest() {
    ComMsgMgr::uninit();
    ComMsgMgr::setSink(ComMsgMgr::Destination::console, console);
    ComMsgMgr::setSink(ComMsgMgr::Destination::log, log);
    ComMsgMgr::setSink(ComMsgMgr::Destination::journal, journal);
}

MsgTest::~MsgTest() {
    ComMsgMgr::uninit();
    ComMsgMgr::setSink(ComMsgMgr::Destination::log, nullptr);
    ComMsgMgr::setSink(ComMsgMgr::Destination::journal, nullptr);
}
