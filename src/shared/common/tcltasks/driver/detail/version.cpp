#include "tcltasks/driver/detail/version.h"

#include <boost/thread/thread.hpp>
#include <cstdio>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/HUTMemUtils.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/env/sysinfo.h"
#include "platform/msg/ComMsgMgr.h"

namespace driver::detail {

namespace {

std::string megabytes(uint64_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(bytes / 1000000));
    return std::string(text) + " MB";
}

bool is_run_log(const std::string& log) {
    const std::string extension = HUTPathUtils::extension(log);
    const std::string directory = HUTEnv::getPWD();
    return (extension == ".cdi" || extension == ".cds") &&
           (directory.find(".runs/") != std::string::npos || directory.find(".runs\\") != std::string::npos);
}

} // namespace

std::string getVersion(bool shortForm) {
    if (shortForm) {
        return HUTEnv::getProductVersion();
    }
    std::string text;
    const auto add = [&](const std::string& line) {
        if (!line.empty()) {
            text += line + '\n';
        }
    };
    add(HUTEnv::getFullProductStr());
    add(HUTEnv::getFullBuildStr());
    add(HUTEnv::getFullIPBuildStr());
    for (const std::string& line : HUTEnv::getCopyrightLines()) {
        add(line);
    }
    add(HUTEnv::getFullSharedDataBuildStr());
    return text;
}

std::string banner(bool regress) {
    using machine = isl::sysinfo::info_t;
    const std::string rule = '#' + std::string(59, '-') + '\n';
    const HUTMemUtils::MemInfo memory = HUTMemUtils::getMemInfo();
    std::string text = rule;
    const auto add = [&](const char* label, const std::string& value) { text += label + value + '\n'; };
    if (!regress) {
        add("# ", HUTEnv::getFullProductStr());
        add("# ", HUTEnv::getFullBuildStr());
        for (const std::string& line : {HUTEnv::getFullIPBuildStr(), HUTEnv::getFullSharedDataBuildStr()}) {
            if (!line.empty()) {
                add("# ", line);
            }
        }
    }
    add("# Start of session at: ", HUTEnv::getTimeStamp());
    add("# Process ID         : ", std::to_string(HUTEnv::getPid()));
    add("# Current directory  : ", HUTEnv::getPWD());
    add("# Command line       : ", HUTEnv::getShortCmdline());
    add("# Log file           : ", HUTLogFileMgr::getLogFullName());
    add("# Journal file       : ", HUTLogFileMgr::getJournalFullName());
    add("# Running On         : ", HUTEnv::getHostName());
    add("# Platform           : ", machine::osname());
    add("# Operating System   : ", machine::osrelease());
    add("# Processor Detail   : ", machine::processor_architecture(0));
    add("# CPU Frequency      : ", machine::processor_speed(0));
    add("# CPU Physical cores : ", std::to_string(boost::thread::physical_concurrency()));
    add("# CPU Logical cores  : ", std::to_string(boost::thread::hardware_concurrency()));
    add("# Host memory        : ", megabytes(memory.physical));
    add("# Swap memory        : ", megabytes(memory.swap));
    add("# Total Virtual      : ", megabytes(memory.totalVirtual));
    add("# Available Virtual  : ", megabytes(memory.availableVirtual));
    return text + rule;
}

void writeDateMessage(bool regress) {
    const std::string text = banner(regress);
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_HEADER, text);
    if (is_run_log(HUTLogFileMgr::getLogFullName())) {
        std::fputs(text.c_str(), stdout);
        std::fflush(stdout);
    }
}

} // namespace driver::detail
