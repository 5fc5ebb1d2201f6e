// omu::main ?OPTION ...? ?project?
// Turns the interpreter into a session of the product: mode, log, journal, init scripts, the user's scripts.
// What stands behind -tclargs is left to these scripts. A refused command line throws before anything is
// made.
#include <csignal>
#include <iostream>
#include <vector>

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HSTVector.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/HUTMemUtils.h"
#include "platform/env/HUTMemWatcher.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/taskcore/DefaultSignalHandlers.h"
#include "platform/tcl/HTCTclChannel.h"
#include "platform/tcl/HTCTclInit.h"
#include "platform/tcl/tcl_guard.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/core/task.h"
#include "tcltasks/driver/detail/GuiEventLoop.h"
#include "tcltasks/driver/detail/RunMode.h"
#include "tcltasks/driver/detail/driver.h"
#include "tcltasks/driver/detail/product_scripts.h"
#include "tcltasks/driver/detail/session_events.h"
#include "tcltasks/driver/detail/version.h"

// Tcl's own, exported for its extensions: makes the interpreter take commands again after an interrupt whose
// unwinding would otherwise reach up to the outermost evaluation.
extern "C" int TclResetCancellation(Tcl_Interp* interp, int force);

using namespace vek::tcltasks;
using driver::detail::getLowerProductName;

namespace omumain {

namespace {

bool sNoTrace = false;
bool sQuiet = false;

HPAParamMgr& params() {
    return HPAParamMgr::getParamMgr();
}

bool product_is(const char* name) {
    return HUTEnv::getProductName() == name;
}

const char* mode_help() {
    if (HUTEnv::isFpgaCompilerProductFamily()) {
        return "Invocation mode, allowed values are 'tcl', and 'batch'";
    }
    return product_is("norrim") ? "Invocation mode, allowed values are 'gui', 'tcl', and 'batch'"
                                : "Invocation mode, allowed values are 'gui', 'tcl', 'batch', and 'py'";
}

bool python_is_enabled() {
    const std::string value = HUTEnv::getEnv("_enable_pymode_", "");
    return HSTStringUtils::iequals(value, "yes") || HSTStringUtils::iequals(value, "true");
}

void uninitOmuTcl(ClientData) {
    tcl_guard(nullptr, [] {
        if (RunMode::sMode == RunMode::gui) {
            task_manager::eval_in_tcl("stop_gui -force", "", false);
        }
        HTCTclInit::uninit();
        driver::uninit(sQuiet);
        return TCL_OK;
    });
}

void show_environment_message(const HUTEnvMessage& message) {
    if (message.key.empty()) {
        ComMsgMgr::sendMsgString("common", message.mask, message.text);
        return;
    }
    ComMsgMgr::sendMsg(ComMsgMgrInstance::fromKey("common", message.mask, message.key,
                                                  {message.args.begin(), message.args.end()}));
}

// Opens the log or the journal; a session without it is better than none.
void open_file(void (*open)(const std::string&, bool), const std::string& name, bool append) {
    try {
        open(name, append);
    } catch (const HUTLogFileError&) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-138@%s\n", name);
    }
}

void set_flag_variable(Tcl_Interp* interp, const char* name, bool value) {
    Tcl_SetVar2(interp, name, nullptr, value ? "1" : "0", TCL_GLOBAL_ONLY);
}

// Shows the failure of a command that the session issued, and makes the interpreter ready for the next one.
void show_failure(Tcl_Interp* interp) {
    TclResetCancellation(interp, 1);
    driver::detail::writeTclErrorMessage(interp);
    HUTLogFileMgr::flush();
}

// Changes argv0 for as long as a script runs.
class script_name {
public:
    script_name(Tcl_Interp* interp, const std::string& name)
        : m_interp(interp), m_saved(Tcl_GetVar2Ex(interp, "argv0", nullptr, TCL_GLOBAL_ONLY)) {
        Tcl_SetVar2Ex(interp, "argv0", nullptr, HTCTclEncoding::tclNewStringObj(name), TCL_GLOBAL_ONLY);
    }
    ~script_name() {
        if (m_saved) {
            Tcl_SetVar2Ex(m_interp, "argv0", nullptr, m_saved.get(), TCL_GLOBAL_ONLY);
        } else {
            Tcl_UnsetVar2(m_interp, "argv0", nullptr, TCL_GLOBAL_ONLY);
        }
    }
    script_name(const script_name&) = delete;
    script_name& operator=(const script_name&) = delete;

private:
    Tcl_Interp* m_interp;
    tclobj_ref m_saved;
};

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::main";

    static void load_description() {
        const std::string& p = getLowerProductName();
        const bool analyzer = product_is("meldrin_analyzer");
        const bool notForOthers = analyzer || product_is("norrim");
        in_categories("Tools");
        auto options = description_instance(driver::detail::getVersion(false), "").add_options();
        const auto flag = [&](const char* name, bool hidden, const std::string& help) {
            options.add_option(name, options::flag()->hidden(hidden), help);
        };
        const auto text = [&](const char* name, const std::string& byDefault, bool hidden,
                              const std::string& help) {
            options.add_option(name, options::text(byDefault)->hidden(hidden), help);
        };
        const auto words = [&](const char* name, bool hidden, const std::string& help) {
            options.add_option(name, options::words()->hidden(hidden), help);
        };
        text("mode", HUTEnv::isFpgaCompilerProductFamily() ? "tcl" : "gui", analyzer, mode_help());
        flag("init", notForOthers, "Source " + p + ".tcl file");
        words("source", notForOthers, "Source the specified Tcl file");
        options.hint("file");
        words("script", analyzer, "Execute the specified script file");
        options.hint("file");
        text("project", "", notForOthers,
             product_is("corvane_bench")
                 ? "Load the specified project (.npr) file"
                 : "Load the specified project (.tpr) or design checkpoint (.dcp) file");
        options.hint("file");
        flag("nojournal", notForOthers, "Do not create a journal file");
        flag("appjournal", notForOthers, "Open journal file in append mode");
        text("journal", p + ".jou", notForOthers, "Journal file name");
        flag("nolog", notForOthers, "Do not create a log file");
        flag("applog", notForOthers, "Open log file in append mode");
        text("log", p + ".log", notForOthers, "Log file name");
        text("messageDb", "", true, "Message file name");
        flag("version", false, "Output version information and exit");
        flag("regress", true, "Filter Log output for regressions");
        flag("metrics", true, "Generate metrics data (e.g., runtime, memory) for application run");
        flag("quiet", true, "Unimplemented and hidden");
        words("jvm", true,
              "Specify options for jvm, e.g. \"" + p + " -jvm Xss320k -jvm Xmx2048m -jvm Xms8m ...\"");
        flag("java", true, p + " is started from java side (for IDEA developers)");
        words("tclargs", notForOthers, "Arguments passed on to tcl argc argv");
        flag("notrace", true, "Don't trace commands in tcl scripts that are sourced from the command line");
        options.add_option("stack", options::number(20)->hidden(),
                           "Stack size (MB) for thread running the main Tcl interpreter");
        text("product", HUTEnv::getProductName(), true, "Name of product that called this task");
        flag("noupdatecheck", true, "Prevent TandrelNotify pop-up");
        text("tempDir", "", notForOthers, "Temporary directory name.");
        text("robot", "", true, "Robot JAR file name.");
        flag("record_robot", true, "Robot recording mode.");
        flag("server_mode", true, "Corvane server mode (headless/no display).");
        flag("nointernaltcl", true, "Don't load internal Tcl task libraries.");
        flag("notclinit", true, "Do not source product init Tcl files");
        if (product_is("corvane_bench")) {
            flag("m32", false, "Run 32bit binary version");
            flag("m64", false, "Run 64bit binary version");
        }
        if (HUTEnv::isInternalTA()) {
            flag("hard_verbose", true,
                 "It will provide the detailed level logging info during the implementation process");
        }
        if (analyzer) {
            text("test", "", true, "Path to GUI tests");
            flag("listener", true, "Listen for files to open after launch");
            words("open", false, "Open the specified design, constraint, waveform or report file");
        } else if (!product_is("norrim")) {
            positional_instance().add("project", 1);
        }
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }
    std::string task_help_name(const std::string&) const override { return getLowerProductName(); }
    // The status is what the scripts deserve; a message that one of them has sent changes nothing about it.
    bool halt_flow_if_error_msg_detected() const override { return false; }

    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        // To its user this command is the program.
        const tclobj_ref program(HTCTclEncoding::tclNewStringObj(getLowerProductName()));
        std::vector<Tcl_Obj*> words{program.get()};
        int at = 1;
        const auto is_tclargs = [&] { return std::string_view(Tcl_GetString(objv[at])) == "-tclargs"; };
        for (; at < objc && !is_tclargs(); ++at) {
            words.push_back(objv[at]);
        }
        for (; at < objc; ++at) {
            if (!is_tclargs()) {
                m_tclargs.push_back(HTCTclEncoding::tclGetString(objv[at]));
            }
        }
        return HTCITaskHelper::execute(interp, static_cast<int>(words.size()), words.data());
    }

    int execute(Tcl_Interp* interp) override {
        static bool called = false;
        if (called) {
            return TCL_ERROR;
        }
        called = true;
        if (get_option<bool>("version")) {
            std::cout << driver::detail::getVersion(false) << '\n' << std::flush;
            Tcl_Eval(interp, "exit");
        }
        if (RunMode::sMode != RunMode::no_mode) {
            return TCL_OK;
        }
        sNoTrace = get_option<bool>("notrace");
        sQuiet = get_option<bool>("quiet");
        if (get_option<bool>("noupdatecheck")) {
            params().setBoolValue("gui.noUpdateCheck", true);
        }
        resolve_mode(interp);
        start_messages();
        set_parameters(interp);
        open_files();
        HUTEnv::issuePendingMesssages();
        driver::detail::init(get_option<bool>("regress"), m_mode == RunMode::gui, sQuiet);
        if (get_option<bool>("metrics")) {
            HUTMemUtils::setMemLogMode();
        }
        Tcl_CreateExitHandler(uninitOmuTcl, nullptr);
        if (RunMode::sMode == RunMode::py) {
            set_arguments(interp);
        }
        const bool initScripts = !get_option<bool>("notclinit");
        if (initScripts && sourceProgramInitScript(interp) != TCL_OK) {
            return TCL_ERROR;
        }
        HTCTclInit::init();
        std::signal(SIGINT, DefaultSignalHandlers::SigIntHandler);
        task_manager::enableTaskInterruptHandling();
        HTCTclChannel::initConsoleChannels();
        if (leaves_init_scripts_to_gui()) {
            if (initScripts) {
                set_flag_variable(interp, "::omu::dotclinit", true);
            }
            set_flag_variable(interp, "::omu::notrace", sNoTrace);
            set_flag_variable(interp, "::omu::quiet", sQuiet);
        } else if (initScripts && sourceProdInitTclScripts(interp, sNoTrace, sQuiet) != TCL_OK) {
            return TCL_ERROR;
        }
        if (HUTEnv::isInternalTA() && get_option<bool>("hard_verbose")) {
            raise_verbosity();
        }
        remove_old_backups();
        if (RunMode::sMode != RunMode::py) {
            set_arguments(interp);
        }
        if (m_mode == RunMode::gui) {
            start_gui(interp);
        }
        const std::vector<std::string> scripts = collect_scripts();
        if (product_is("meldrin_analyzer")) {
            hand_files_to_analyzer();
        }
        return finish(interp, run(interp, scripts));
    }

private:
    void resolve_mode(Tcl_Interp* interp) {
        const std::string word = get_option<std::string>("mode");
        m_mode = RunMode::find(word);
        if (m_mode == RunMode::no_mode || (m_mode == RunMode::py && !python_is_enabled())) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-203@%s\n", word});
        }
        if (m_mode == RunMode::gui && HUTEnv::isFpgaCompilerProductFamily()) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-3944@%s", HUTEnv::getProductName()});
        }
        RunMode::set(interp, m_mode, true);
        if (m_mode == RunMode::gui) {
            RunMode::set(interp, RunMode::tcl, false); // until the windows are really up
        }
    }

    void start_messages() const {
        const std::string database = get_option<std::string>("messageDb");
        try {
            if (m_mode == RunMode::batch) {
                ComMsgMgr::init(ComMsgMgr::MSGCACHE_LATEST, database);
                if (!database.empty()) {
                    HTCTclChannel::setAllMsg2Stdout();
                }
            } else {
                ComMsgMgr::init(ComMsgMgr::MSGCACHE_ON, "");
            }
        } catch (const ComMsgMgrInstance& failure) {
            std::cout << failure.getMessage() << std::flush;
        }
        HTCTclChannel::forwardMsg2Stdout();
        HUTEnv::setMessageSink(show_environment_message);
    }

    void set_parameters(Tcl_Interp* interp) const {
        if (const std::string directory = get_option<std::string>("tempDir"); !directory.empty()) {
            HUTEnv::setVEKTmpDir(directory);
        }
        if (const std::string robot = get_option<std::string>("robot"); !robot.empty()) {
            params().setStringValue("gui.robotFile", robot);
        }
        constexpr std::pair<const char*, const char*> switches[] = {
            {"record_robot", "gui.record_robot"},
            {"nointernaltcl", "tcl.dontLoadInternalLibraries"},
            {"server_mode", "gui.server_mode"},
        };
        for (const auto& [option, parameter] : switches) {
            if (get_option<bool>(option)) {
                params().setBoolValue(parameter, true);
            }
        }
        if (get_option<bool>("java")) {
            RunMode::set(interp, "java", false);
        }
    }

    void open_files() const {
        if (!get_option<bool>("nojournal")) {
            open_file(HUTLogFileMgr::createJournalFile, get_option<std::string>("journal"),
                      get_option<bool>("appjournal"));
        }
        if (!get_option<bool>("nolog")) {
            open_file(HUTLogFileMgr::createLogFile, get_option<std::string>("log"),
                      get_option<bool>("applog"));
        }
    }

    void set_arguments(Tcl_Interp* interp) const {
        std::vector<std::string> words = get_option<std::vector<std::string>>("tclargs");
        words.insert(words.end(), m_tclargs.begin(), m_tclargs.end());
        const tclobj_ref argv(Tcl_NewListObj(0, nullptr));
        for (const std::string& word : words) {
            Tcl_ListObjAppendElement(nullptr, argv.get(), HTCTclEncoding::tclNewStringObj(word));
        }
        Tcl_SetVar2Ex(interp, "argv", nullptr, argv.get(), TCL_GLOBAL_ONLY);
        Tcl_SetVar2Ex(interp, "argc", nullptr, Tcl_NewWideIntObj(static_cast<Tcl_WideInt>(words.size())),
                      TCL_GLOBAL_ONLY);
    }

    bool leaves_init_scripts_to_gui() const {
        return m_mode == RunMode::gui && !HUTEnv::getEnv("OMU_BENCHTOOLS_STANDALONE_MODE") &&
               !HUTEnv::getEnv("SYSTEM_VIEW_MODE") && !HUTEnv::getEnv("DISABLE_GUI_TIME_IMPROVEMENT");
    }

    static void raise_verbosity() {
        params().setIntValue("place.hardVerbose", 0xd00bf);
        params().setIntValue("place.oldMsgVerbose", 1);
        params().setIntValue("route.flowDbg", 1);
        params().setIntValue("route.oldMsgVerbose", 1);
        params().setIntValue("route.timingDbg", 1);
    }

    void remove_old_backups() const {
        if (!get_option<bool>("nolog")) {
            HUTLogFileMgr::RemoveOldBackups(get_option<std::string>("log"));
        }
        if (!get_option<bool>("nojournal")) {
            HUTLogFileMgr::RemoveOldBackups(get_option<std::string>("journal"));
        }
    }

    static bool has_gui(Tcl_Interp* interp) {
        return Tcl_FindCommand(interp, "common::start_gui", nullptr, TCL_GLOBAL_ONLY) != nullptr;
    }

    // In a regression run the windows source the scripts themselves; an installation without any has to do it
    // here.
    bool hands_scripts_to_gui(Tcl_Interp* interp) const {
        return m_mode == RunMode::gui && get_option<bool>("regress") && has_gui(interp);
    }

    static void start_gui(Tcl_Interp* interp) {
        if (!has_gui(interp)) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5250@%s\n", getLowerProductName());
        } else if (task_manager::eval_in_tcl(interp, "common::start_gui -return", "start_gui", false) ==
                   TCL_ERROR) {
            show_failure(interp);
        }
    }

    std::vector<std::string> collect_scripts() const {
        std::vector<std::string> scripts;
        if (get_option<bool>("init")) {
            scripts.push_back(getLowerProductName() + ".tcl");
            params().setStringValue("project.runInitFile", HUTFile::getCanonicalName(scripts.back()));
        }
        for (const char* option : {"source", "script"}) {
            const auto names = get_option<std::vector<std::string>>(option);
            scripts.insert(scripts.end(), names.begin(), names.end());
        }
        return scripts;
    }

    void hand_files_to_analyzer() const {
        std::string files;
        for (const std::string& file : get_option<std::vector<std::string>>("open")) {
            files += (files.empty() ? "" : ";") + file;
        }
        params().setStringValue("gui.meldrinAnalyzerFiles", files);
        params().setStringValue("gui.meldrinTestLocation", get_option<std::string>("test"));
        params().setBoolValue("gui.meldrinListenerMode", get_option<bool>("listener"));
    }

    // Opens the project, then sources the scripts. Returns the code of the first that failed, or TCL_OK.
    int run(Tcl_Interp* interp, const std::vector<std::string>& scripts) const {
        const std::string project = get_option<std::string>("project");
        if (!project.empty()) {
            const int code = open_project(interp, project, scripts);
            const bool sourcedByOpener = m_mode == RunMode::gui && !product_is("corvane_bench");
            if (code != TCL_OK || sourcedByOpener) {
                return code;
            }
        }
        if (project.empty() && hands_scripts_to_gui(interp)) {
            HSTVector<std::string> names(scripts);
            HUTGuiEvent::fire<driver::detail::source_in_gui>(&names);
            return TCL_OK;
        }
        for (const std::string& script : scripts) {
            if (const int code = source(interp, script); code != TCL_OK) {
                return code;
            }
        }
        return TCL_OK;
    }

    int open_project(Tcl_Interp* interp, const std::string& project,
                     const std::vector<std::string>& scripts) const {
        const bool bench = product_is("corvane_bench");
        const char* const opener = bench ? "hw::open_project" : "omu::open_bpr_or_dcp";
        if (!Tcl_FindCommand(interp, opener, nullptr, TCL_GLOBAL_ONLY)) {
            const HEXError failure({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5251@%s\n", project});
            Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(failure.what()));
            return TCL_ERROR;
        }
        tclcmdobj command(interp, opener);
        command.append("-file").append(project);
        if (m_mode == RunMode::gui && !bench) {
            const tclobj_ref list(Tcl_NewListObj(0, nullptr));
            for (const std::string& script : scripts) {
                Tcl_ListObjAppendElement(nullptr, list.get(), HTCTclEncoding::tclNewStringObj(script));
            }
            command.append("-source").append(list.get());
        }
        const task_manager::top_level scope(command.text());
        const int code = command.eval();
        Tcl_DeleteCommand(interp, "omu::open_bpr_or_dcp"); // the opener serves once
        return code;
    }

    static int source(Tcl_Interp* interp, const std::string& script) {
        HSTVector<std::string> progress;
        progress.push_back("Sourcing Tcl script '" + script + "'");
        HUTGuiEvent::fire<driver::detail::start_progress_dialog>(&progress);
        const int code = source_as_argv0(interp, script);
        HUTGuiEvent::fire<driver::detail::stop_progress_dialog>(static_cast<void*>(nullptr));
        return code;
    }

    static int source_as_argv0(Tcl_Interp* interp, const std::string& script) {
        const script_name named(interp, script);
        tclcmdobj command(interp, "source");
        command.append(script);
        if (sNoTrace) {
            command.append("-notrace");
        }
        const task_manager::top_level scope(command.text());
        if (!sQuiet) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_SESSION_COMMAND, command.text() + "\n");
        }
        const HUTMemWatcher watch("source " + script);
        return command.eval(TCL_EVAL_GLOBAL);
    }

    // Ends the start in the way that the mode prescribes.
    int finish(Tcl_Interp* interp, int status) const {
        const bool failed = status == TCL_ERROR;
        if (failed) {
            show_failure(interp);
        }
        if (m_mode == RunMode::gui && RunMode::sMode == RunMode::gui) {
            GuiEventLoop::start(GuiEventLoop::falseFcn);
        }
        if (m_mode == RunMode::batch || get_option<bool>("regress")) {
            Tcl_Eval(interp, failed ? "exit 1" : "exit");
        }
        return m_mode == RunMode::tcl || m_mode == RunMode::gui ? TCL_OK : status;
    }

    std::vector<std::string> m_tclargs;
    RunMode::MODE m_mode = RunMode::no_mode; // of the session; it stays gui when windows come and go
};

extern const task_entry entry = entry_of<task>;

} // namespace omumain
