#include "world.h"

#include <fstream>

#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using HTCLibEdit::detail::complete;
using HTCLibEdit::detail::completion;

namespace {

/// wk::wk_build: an option of every kind.
class build : public HTCITaskHelper<build> {
public:
    static constexpr const char* command = "wk::wk_build";

    static void load_description() {
        description_instance("Build a thing.", "")
            .add_options()
            .add_option("color", options::text(), "Its color")
            .choices({"red", "green", "dark blue", "dark brown"})
            .add_option("count", options::number(1), "How many")
            .add_option("force", options::flag(), "Whatever it takes")
            .add_option("fast", options::flag(), "In a hurry")
            .add_option("plan", options::text(), "The plan")
            .hint("file")
            .add_option("limit", options::text(), "A parameter")
            .hint("param")
            .add_option("severity", options::text(), "How bad")
            .hint("severity")
            .add_option("tool", options::text(), "A command")
            .hint("command")
            .add_option("shiny", options::value<bool>(), "Whether it shines")
            .add_option("secret", options::text()->hidden(), "Not listed")
            .add_option("oldcolor", options::text()->deprecated("Use -color."), "Not listed either")
            .add_option("name", options::text(), "Its name")
            .add_option("material", options::text(), "What it is made of")
            .choices({"wood", "stone", "-none-"})
            .add_option("parts", options::words(), "What goes in");
        positional_instance().add("name", 1).add("material", 1).add("parts", -1);
    }
    int execute(Tcl_Interp* interp) override {
        Tcl_SetVar2(interp, "wk_ran", nullptr, "build", TCL_GLOBAL_ONLY);
        return TCL_OK;
    }
};

/// wk_one: a single option, which takes free text.
class one : public HTCITaskHelper<one> {
public:
    static constexpr const char* command = "wk_one";

    static void load_description() {
        description_instance("Take one thing.", "").add_options().add_option("name", options::text(), "It");
        positional_instance().add("name", 1);
    }
    int execute() override { return TCL_OK; }
};

/// zz_guess: an option whose values come from a source that fails.
class guess : public HTCITaskHelper<guess> {
public:
    static constexpr const char* command = "zz_guess";
    static void load_description() {
        description_instance("Guess.", "")
            .add_options()
            .add_option("it", options::text(), "What")
            .hint("wk_broken");
        positional_instance().add("it", 1);
    }
    int execute() override { return TCL_OK; }
};

/// wk_bare: no option at all.
class bare : public HTCITaskHelper<bare> {
public:
    static constexpr const char* command = "wk_bare";
    static void load_description() { description_instance("Take nothing.", ""); }
    int execute() override { return TCL_OK; }
};

/// wk_common: options with the names of those that every command has.
class common : public HTCITaskHelper<common> {
public:
    static constexpr const char* command = "wk_common";
    static void load_description() {
        description_instance("Name clashes.", "")
            .add_options()
            .add_option("help", options::flag(), "")
            .add_option("helper", options::flag(), "")
            .add_option("quiet", options::flag(), "")
            .add_option("owner", options::flag(), "")
            .add_option("owners", options::flag(), "");
    }
    int execute() override { return TCL_OK; }
};

class secret : public HTCITaskHelper<secret> {
public:
    static constexpr const char* command = "wk_secret";
    static void load_description() {
        description_instance("Hidden.", "").add_options().add_option("key", options::flag(), "");
    }
    bool is_hidden() const override { return true; }
    int execute() override { return TCL_OK; }
};

class old : public HTCITaskHelper<old> {
public:
    static constexpr const char* command = "wk_old";
    static void load_description() { description_instance("Deprecated.", ""); }
    bool is_deprecated(std::string& message) const override {
        message = "Use wk_build.";
        return true;
    }
    int execute() override { return TCL_OK; }
};

const char* const script = R"TCL(
    foreach name {wk_paint wk_polish wk_print wk_x {wk two words} wk_größe wk_grün wk_gray} {
        proc $name args {set ::wk_ran $name}
    }
    namespace eval wk {
        namespace export wk_build
        proc carve args {set ::wk_ran carve}
        proc cut args {set ::wk_ran cut}
        variable nsvar 1 nsval 2
        namespace eval saw {proc rip args {}; variable blade 1}
        namespace eval sand {}
    }
    namespace eval wkempty {}
    namespace import ::wk::wk_build
    set wkvar 1
    set wkvalue 2
    set wkonly 3
    set {wk odd} 4
    array set wkarr {one 1 once 2 two 3 {red wine} 4 {a(b} 5}
    foreach file {wkalpha.tcl wkalpine.tcl wkbeta.v {wk my file.txt} {wkdir/in one.txt} wkdir/only.tcl
        {wkmy dir/inside.txt} {wkdollar$.txt} wk-dash.txt wkstar*.txt wkstarx.txt wkümlaut.txt wkünder.txt
        wkdeep/a/b.txt wkbrace\{.txt {wkcmd[exit].txt} wkquote\".txt .wkhidden} {
        file mkdir [file dirname $file]
        close [open $file w]
    }
    file mkdir wkemptydir
)TCL";

} // namespace

Completion::Completion() : m_before(std::filesystem::current_path()) {
    register_task<build>(interp);
    register_task<one>(interp);
    register_task<bare>(interp);
    register_task<guess>(interp);
    register_task<common>(interp);
    register_task<secret>(interp);
    register_task<old>(interp);
    eval("cd " + m_directory.root().string());
    eval(script);
}

Completion::~Completion() {
    std::filesystem::current_path(m_before);
}

std::string Completion::tab(const std::string& line) {
    const size_t cursor = line.rfind('^');
    const std::string before = line.substr(0, cursor);
    const std::string after = cursor == std::string::npos ? "" : line.substr(cursor + 1);
    const completion result = complete(interp, before);
    std::string text = result.then == completion::outcome::refresh     ? "finished"
                       : result.then == completion::outcome::redisplay ? "redisplayed"
                                                                       : "error";
    if (result.beep) {
        text += " beep";
    } else if (text == "redisplayed") {
        text = "listed";
    }
    if (result.replacement || !result.output.empty()) {
        EXPECT_LE(result.replace, before.size());
        text += "\t" +
                (result.replacement ? before.substr(0, result.replace) + *result.replacement : before) + "^" +
                after;
    }
    if (!result.output.empty()) {
        EXPECT_TRUE(result.output.starts_with("\n") && result.output.ends_with("\n")) << result.output;
        text += "\t" + result.output.substr(1, result.output.size() - 2);
    }
    return text;
}

std::string Completion::finished(const std::string& line) {
    const std::string text = tab(line);
    EXPECT_TRUE(text.starts_with("finished\t")) << line << ": " << text;
    return text.substr(std::min(text.find('\t') + 1, text.size()));
}

std::string Completion::listed(const std::string& line) {
    const std::string text = tab(line);
    EXPECT_TRUE(text.starts_with("listed\t")) << line << ": " << text;
    return text.substr(text.rfind('\t') + 1);
}
