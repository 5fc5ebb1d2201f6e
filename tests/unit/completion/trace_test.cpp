// Whatever stands in the line: Tab evaluates the listing commands and nothing else.
#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include <gmock/gmock.h>

#include "world.h"

using HTCLibEdit::detail::complete;

namespace {

using ::testing::IsEmpty;

// The commands that list something; Tcl runs `info vars` as ::tcl::info::vars in turn.
bool lists(const std::string& command, const std::string& first) {
    static const std::vector<std::string> known = {"info commands",
                                                   "info vars",
                                                   "namespace children",
                                                   "array exists",
                                                   "array names",
                                                   "trace info",
                                                   "glob",
                                                   "omu::info_commands",
                                                   "omu::match_options",
                                                   "::tcl::info::commands",
                                                   "::tcl::info::vars",
                                                   "::tcl::namespace::children",
                                                   "::tcl::array::exists",
                                                   "::tcl::array::names",
                                                   "::tcl::trace::info"};
    return std::find(known.begin(), known.end(), command) != known.end() ||
           std::find(known.begin(), known.end(), command + " " + first) != known.end();
}

struct evaluations {
    std::map<std::string, int> other; // what ran and lists nothing
    int listings = 0;
};

int note(ClientData data, Tcl_Interp*, int, const char*, Tcl_Command, int objc, Tcl_Obj* const* objv) {
    auto& seen = *static_cast<evaluations*>(data);
    const std::string command = Tcl_GetString(objv[0]);
    if (lists(command, objc > 1 ? Tcl_GetString(objv[1]) : "")) {
        ++seen.listings;
    } else {
        ++seen.other[command];
    }
    return TCL_OK;
}

// Lines of random pieces, with commands that must not run in every place where a line could run one.
class random_lines {
public:
    std::string next() {
        std::string line;
        const size_t pieces = 1 + m_random() % 7;
        for (size_t i = 0; i < pieces; ++i) {
            line += one_of(m_pieces);
        }
        return line;
    }

private:
    const std::string& one_of(const std::vector<std::string>& from) { return from[m_random() % from.size()]; }

    std::mt19937 m_random{20240229};
    const std::vector<std::string> m_pieces = {
        "wk_bomb",
        "wk_b",
        "wk_build",
        "wk::",
        "wk::s",
        "wk_one",
        "puts",
        "set_param",
        " ",
        " ",
        " ",
        "  ",
        "\t",
        ";",
        "; ",
        "\n",
        "[",
        "]",
        "[wk_bomb]",
        "[wk_bomb",
        "[wk_bomb ",
        "{",
        "}",
        "{[wk_bomb]}",
        "\"",
        "\"[wk_bomb]",
        "$",
        "${",
        "$wkvar",
        "$wkarr(",
        "$wkarr([wk_bomb])",
        ")",
        "(",
        "$wkwatched",
        "$wkwatched(",
        "-",
        "--",
        "-c",
        "-color ",
        "-help",
        "-quiet",
        "-tool ",
        "wkal",
        "wkdir/",
        "wk*",
        "?",
        "*",
        "\\",
        "\\ ",
        "\\[wk_bomb]",
        "#",
        "~",
        "/",
        "..",
        "<",
        "<name>",
        "{*}",
        "{*}[wk_bomb]",
        "[;wk_bomb]",
        "[\nwk_bomb\n]",
        "ü",
        "\xF0\x9F\x99\x82",
        "\xFF",
        "$wkarr(${wkx",
        "a\"b",
        "}x",
        "[wk_bomb;",
        "-x[wk_bomb]",
        "\\\n",
        "% s",
        "a",
        "1",
    };
};

class NothingRuns : public Completion {
protected:
    NothingRuns() {
        eval(R"TCL(
            set wk_bombs 0
            proc wk_bomb args {incr ::wk_bombs}
            proc unknown args {incr ::wk_bombs}
            set wkwatched 1
            array set wkwatchedtoo {a 1}
            foreach name {wkwatched wkwatchedtoo} {
                trace add variable $name {read write unset array} wk_bomb
            }
        )TCL");
        m_trace = Tcl_CreateObjTrace(interp, 0, 0, note, &seen, nullptr);
    }
    ~NothingRuns() override { Tcl_DeleteTrace(interp, m_trace); }

    void expect_nothing_ran() {
        std::string others;
        for (const auto& [command, count] : seen.other) {
            others += command + ": " + std::to_string(count) + "\n";
        }
        EXPECT_THAT(others, IsEmpty());
        EXPECT_EQ(std::string(Tcl_GetVar(interp, "wk_bombs", TCL_GLOBAL_ONLY)), "0");
    }

    evaluations seen;

private:
    Tcl_Trace m_trace;
};

TEST_F(NothingRuns, InAHundredThousandRandomLines) {
    random_lines lines;
    Tcl_SetObjResult(interp, Tcl_NewStringObj("the user's", -1));
    for (int i = 0; i < 100000; ++i) {
        const std::string line = lines.next();
        const auto result = complete(interp, line);
        ASSERT_LE(result.replace, line.size()) << line;
        if (!seen.other.empty()) {
            FAIL() << seen.other.begin()->first << " ran for the line: " << line;
        }
    }
    EXPECT_STREQ(Tcl_GetStringResult(interp), "the user's");
    EXPECT_GT(seen.listings, 50000);
    expect_nothing_ran();
}

TEST_F(NothingRuns, InLinesMadeToRunSomething) {
    for (const char* line : {"foo [wk_bomb]",
                             "[wk_bomb]",
                             "puts [wk_bomb] wk",
                             "puts \"a [wk_bomb] wk",
                             "puts $a([wk_bomb])",
                             "puts $a([wk_bomb]",
                             "puts {*}[wk_bomb] wk",
                             "wk_build -color [wk_bomb]",
                             "wk_build [wk_bomb] -c",
                             "[wk_bomb] -c",
                             "wk_build -c[wk_bomb]",
                             "wk; [wk_bomb]",
                             "wk\n[wk_bomb] x",
                             "puts [wk_bomb;wk_bomb] wk",
                             "puts {a} [wk_bomb] wk",
                             "if 1 {[wk_bomb]} wk",
                             "puts ${[wk_bomb]}",
                             "puts x\\[[wk_bomb] wk",
                             "puts $wkwatched",
                             "puts $wkwatchedt",
                             "puts $wkwatchedtoo(",
                             "puts $wkwatchedtoo(a",
                             "wk_build -limit [wk_bomb]",
                             "wk_build -tool [wk_bomb",
                             "wk_build -tool \"[wk_bomb]",
                             "glob; wk_bomb"}) {
        complete(interp, line);
        expect_nothing_ran();
    }
}

} // namespace
