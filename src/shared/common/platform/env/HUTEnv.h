#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What the product is called. The defaults are Corvane's; a host that ships another product of the family
/// sets its own before the session starts.
struct HUTProductInfo {
    std::string name = "Corvane";
    std::string version = "2026.1";
    std::string programName = "corvane";
    bool fpgaCompilerFamily = false; ///< a product without a GUI
    bool internal = false;           ///< a build for the team itself
    bool standalone = false;         ///< an installation of this product alone
};

/// A message that the environment has for the user. It is below the message manager, so it hands messages to
/// a sink.
struct HUTEnvMessage {
    uint32_t mask = 0;             ///< severity or kind of output, a ComMsgMgr::MsgMask
    std::string key;               ///< message key with %s arguments only; empty for plain text
    std::vector<std::string> args; ///< the key's arguments
    std::string text;              ///< plain text with its newlines; empty when there is a key
};

/// The process's surroundings: product, application roots, user's directories, command line. Safe from any
/// thread, except where said otherwise; the environment itself must not be changed while others read it.
class HUTEnv {
public:
    /// Product. setProductInfo belongs at the very start, before anything reads it.
    static void setProductInfo(HUTProductInfo info);
    static const std::string& getProductName();
    static const std::string& getProductVersion();
    /// The first two numbers of the version: "2026.1" of "2026.1.3".
    static std::string getProductMajorMinorVersion();
    static const std::string& getProgramName();
    /// The version under which the Tcl packages of this library are provided; always valid to Tcl.
    static std::string getTclPackageVersion();
    static bool isFpgaCompilerProductFamily();
    static bool isInternalTA();
    static bool isStandalone();

    /// Version lines without newlines; the last two are empty when there is nothing to tell.
    static std::string getFullProductStr();
    static std::string getFullBuildStr();
    static std::string getFullIPBuildStr();
    static std::string getFullSharedDataBuildStr();
    /// The day of the build, "2026-11-21", and what it was made from.
    static std::string getBuildDate();
    static std::string getBuildId();
    /// The two copyright lines.
    static const std::vector<std::string>& getCopyrightLines();

    /// True in a session with Tcl debugging: the variable CORVANE_TCL_DEBUG is "1", "yes", "true" or "on" at
    /// the first call, or setTclDebug said so.
    static bool isTclDebug();
    static void setTclDebug(bool on);

    /// Regression mode: output that differs from run to run is left out.
    static bool getRegressMode();
    static void setRegressMode(bool on);

    /// Local time, as "Sat Nov 21 05:03:29 2026".
    static std::string getTimeStamp();
    static int getPid();
    /// The name of the user that runs the process; the number where it has no name.
    static std::string getUserName();
    /// The working directory; empty if it is gone.
    static std::string getPWD();
    static std::string getHostName();

    /// The process's command line on one line. Words that need it are quoted, control characters escaped, so
    /// the text can stand in a comment. The host sets the words; otherwise they are the system's.
    static std::string getCmdline();
    /// The same with only the file name of the program.
    static std::string getShortCmdline();
    static void setCmdline(std::vector<std::string> words);

    /// The variable's value, null when unset. Valid until the environment changes.
    static const char* getEnv(const std::string& name);
    /// The variable's value, `fallback` when unset.
    static std::string getEnv(const std::string& name, const std::string& fallback);

    /// Directory for temporary files: the one set, else $TMPDIR if one can write there, else "/tmp". A
    /// directory that cannot be written to is refused: a warning is posted and the setting stays as it was.
    static std::string getVEKTmpDir();
    static void setVEKTmpDir(const std::string& path);

    /// The user's directory for this product's data, which need not exist: $TANDREL_LOCAL_USER_DATA if that
    /// is an absolute path, else $XDG_DATA_HOME/corvane under the same condition, else
    /// ~/.local/share/corvane; empty without a home.
    static std::string getVEKAppDataDir();

    /// The application roots in search order, absolute and without repetition: the directories of the
    /// ":"-separated list $OMU_APPROOT, then the root that this library lies in, then the root inside it that
    /// has the manual pages of plain Tcl, if they are installed. Relative entries count from the working
    /// directory at the first call.
    static std::vector<std::string> getOMUAppRootList();

    /// The first root under which `relative` exists; empty if none has it. "" gives the first root.
    static std::string getOMUAppRoot(const std::string& relative);

    /// The first directory "data" of a root under which `relative` exists; empty if none has it. "" gives the
    /// first "data".
    static std::string getOMUDataDir(const std::string& relative);

    /// Where messages go once the session can show them. The sink is called without locks held, from the
    /// posting thread.
    static void setMessageSink(std::function<void(const HUTEnvMessage&)> sink);

    /// Sends a message to the sink, or keeps it until issuePendingMesssages() when it is too early for that.
    static void post(HUTEnvMessage message);

    /// Sends the kept messages in order. Those posted later go to the sink at once. Does nothing without a
    /// sink.
    static void issuePendingMesssages();

    /// Shows the product's header: product, build and, with `copyright`, the copyright lines. It goes to the
    /// sink as plain text with mask 0x20000, or to standard output when there is no sink.
    static void printHeader(bool copyright);

    /// Takes over the user's locale for texts, but keeps numbers in C form, since scripts and files depend on
    /// it. A locale that the system does not have gives a warning and C.UTF-8. Call before other threads run.
    static void maybeAdjustLocaleSetting();
};
