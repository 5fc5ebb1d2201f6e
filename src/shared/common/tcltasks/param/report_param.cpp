// common::report_param ?PATTERN? ?-file FILE ?-append?? ?-return_string? ?-non_default?
// A table of parameters, on the console, in a file or as the result. A pattern that nothing matches is warned
// of.
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFileWriteStream.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "tcltasks/core/task.h"
#include "tcltasks/param/detail/param_report.h"

using namespace vek::tcltasks;

namespace report_param {

namespace {

std::string report(const std::string& pattern, bool nonDefault) {
    const bool wide = nonDefault || HUTEnv::isTclDebug() || HUTEnv::isInternalTA();
    std::vector<HPAParam*> params;
    HPAParamMgr::getParamMgr().findMatchingParams(pattern, params, wide, nonDefault);
    if (params.empty()) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-35@%s\n", pattern);
        return {};
    }
    return param_report::table(params, wide);
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::report_param";

    static void load_description() {
        in_categories("PropertyAndParameter", "Report");
        description_instance("Get information about all parameters", "param report")
            .add_options()
            .add_option("pattern", options::text("*"), "Display params matching pattern")
            .add_option("file", options::value<std::string>(),
                        "Filename to output results to. (send output to console if -file is not used)")
            .hint("file")
            .add_option("append", options::flag(),
                        "Append the results to file, don't overwrite the results file")
            .add_option("non_default", options::flag(),
                        "Report only params that are set to a non default value")
            .add_option("return_string", options::flag(), "Return report as string");
        positional_instance().add("pattern", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto file = get_given<std::string>("file");
        const bool append = get_option<bool>("append");
        const bool asResult = get_option<bool>("return_string");
        if (asResult && file) {
            throw HTCErrors::command_failed("'-return_string' and '-file' cannot be used together");
        }
        if (append && !file) {
            throw HTCErrors::command_failed("'-append' requires '-file' option");
        }
        if (file && file->empty()) {
            throw HTCErrors::invalid_option_value("file", *file);
        }
        const std::string text = report(get_option<std::string>("pattern"), get_option<bool>("non_default"));
        if (asResult) {
            return set_result(interp, text);
        }
        if (!file) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_OUTPUT, text + "\n");
            return TCL_OK;
        }
        HUTFileWriteStream stream;
        stream.open(*file, "", append ? HUTFileWriteStream::append : HUTFileWriteStream::overwrite);
        stream.write(text + "\n");
        stream.close();
        return set_result(interp, stream.getCanonicalFilePath());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace report_param
