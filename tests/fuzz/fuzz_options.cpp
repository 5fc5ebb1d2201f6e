// Feeds any words to the option engine, against any declaration. A call is either taken, and then every
// option reads as what it was declared, or refused with a message; and the same call again ends the same way.

#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <tcl.h>
#include <vector>

#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclInterp.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace {

using strings = tcl_collection<HSTVector<std::string>>;
using anys = tcl_collection<HSTVector<tclany>>;
using untyped = tcl_collection<detail::untyped_collection>;

class silent : public ComMsgMgrSink {
public:
    void write(std::string_view) override {}
};

void require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

/// A declaration out of the fuzzer's bytes, and a call against it.
class call : public task_options_base {
public:
    call(const options_description& options, const positional_options_description& positional)
        : m_options(options), m_positional(positional) {}
    const options_description& get_options_description() const override { return m_options; }
    const positional_options_description& get_positional_options() const override { return m_positional; }
    std::string categories() const override { return "Fuzz"; }

private:
    const options_description& m_options;
    const positional_options_description& m_positional;
};

// Short names of few letters, so that many begin like others.
std::string name_of(FuzzedDataProvider& bytes) {
    std::string name = bytes.ConsumeBool() ? "a" : "q";
    for (int i = bytes.ConsumeIntegralInRange(0, 4); i > 0; --i) {
        name += "abuieqt-"[bytes.ConsumeIntegralInRange(0, 7)];
    }
    return name;
}

template <class T, class tcltype>
itcl_value_semantic* modified(FuzzedDataProvider& bytes, tcl_value_semantic<T, tcltype>* semantic) {
    if (bytes.ConsumeBool()) {
        return semantic;
    }
    semantic->hidden(bytes.ConsumeBool())->composing(bytes.ConsumeBool())->multi_token(bytes.ConsumeBool());
    if (bytes.ConsumeBool()) {
        semantic->max_list_length(bytes.ConsumeIntegralInRange(0, 3));
    }
    if (bytes.ConsumeBool()) {
        semantic->deprecated("Use another.");
    }
    if (bytes.ConsumeBool()) {
        semantic->default_value(T(), "");
    }
    return semantic;
}

itcl_value_semantic* semantic_of(FuzzedDataProvider& bytes) {
    switch (bytes.ConsumeIntegralInRange(0, 13)) {
    case 0:
        return options::flag();
    case 1:
        return modified(bytes, options::text("x"));
    case 2:
        return modified(bytes, options::number(1));
    case 3:
        return modified(bytes, options::words());
    case 4:
        return modified(bytes, options::list());
    case 5:
        return modified(bytes, options::value<bool>());
    case 6:
        return modified(bytes, options::value<unsigned>());
    case 7:
        return modified(bytes, options::value<long>());
    case 8:
        return modified(bytes, options::value<double>());
    case 9:
        return modified(bytes, options::value<Tcl_Obj*>());
    case 10:
        return modified(bytes, options::value<tclany>());
    case 11:
        return modified(bytes, options::value<strings, tcltypes::tclcoll>());
    case 12:
        return modified(bytes, options::value<anys, tcltypes::tclcoll>());
    default:
        return modified(bytes, options::value<untyped>());
    }
}

void declare(FuzzedDataProvider& bytes, options_description& options,
             positional_options_description& positional) {
    std::vector<std::string> names;
    for (int i = bytes.ConsumeIntegralInRange(0, 8); i > 0; --i) {
        const std::string name = name_of(bytes);
        if (options.find(name) >= 0) {
            continue;
        }
        auto adder = options.add_options().add_option(name.c_str(), semantic_of(bytes), "Help");
        const int refined = bytes.ConsumeIntegralInRange(0, 15);
        if (refined == 1) {
            adder.choices({"a", "ab", "-a"});
        } else if (refined == 2 && !names.empty()) {
            adder.excludes({names.back().c_str()});
        } else if (refined == 3) {
            adder.required();
        } else if (refined == 4) {
            positional.add(name.c_str(), bytes.ConsumeIntegralInRange(-1, 3));
        }
        names.push_back(name);
    }
}

std::vector<tclobj_ref> words_of(FuzzedDataProvider& bytes) {
    std::vector<tclobj_ref> words{tclobj_ref(Tcl_NewStringObj("fuzz", -1))};
    for (int i = bytes.ConsumeIntegralInRange(0, 12); i > 0; --i) {
        switch (bytes.ConsumeIntegralInRange(0, 7)) {
        case 0:
        case 1:
        case 2: {
            const std::string option = "-" + name_of(bytes);
            words.emplace_back(Tcl_NewStringObj(option.c_str(), -1));
            break;
        }
        case 3: {
            const char* special[] = {"--",       "-",     "",       "-1", "-.5", "-quiet",
                                     "-verbose", "-help", "-owner", "-q", "{",   "-a {"};
            words.emplace_back(Tcl_NewStringObj(special[bytes.ConsumeIntegralInRange(0, 11)], -1));
            break;
        }
        case 4: {
            strings collection;
            for (int n = bytes.ConsumeIntegralInRange(0, 3); n > 0; --n) {
                collection->push_back(bytes.ConsumeRandomLengthString(8));
            }
            words.emplace_back(native_wrapper<strings>::convert_to_tcl(collection));
            break;
        }
        case 5:
            words.emplace_back(Tcl_NewIntObj(bytes.ConsumeIntegral<int>()));
            break;
        case 6: {
            const std::vector<uint8_t> raw = bytes.ConsumeBytes<uint8_t>(8);
            words.emplace_back(Tcl_NewByteArrayObj(raw.data(), static_cast<int>(raw.size())));
            break;
        }
        default: {
            const std::string text = bytes.ConsumeRandomLengthString(64);
            words.emplace_back(Tcl_NewStringObj(text.data(), static_cast<int>(text.size())));
        }
        }
    }
    return words;
}

template <class... Types>
void read(const task_options_base& task, const std::string& name, const boost::any& value) {
    const bool known =
        ((value.type() == typeid(Types) && (static_cast<void>(task.get_option<Types>(name)), true)) || ...);
    require(known);
}

std::vector<Tcl_Obj*> pointers_to(const std::vector<tclobj_ref>& words) {
    std::vector<Tcl_Obj*> objv;
    for (const tclobj_ref& word : words) {
        objv.push_back(word.get());
    }
    return objv;
}

int parse(Tcl_Interp* interp, call& task, const std::vector<Tcl_Obj*>& objv) {
    Tcl_ResetResult(interp);
    return task.parse_options(interp, static_cast<int>(objv.size()), objv.data());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Tcl_Interp* const interp = [] {
        Tcl_FindExecutable(nullptr);
        Tcl_Interp* made = Tcl_CreateInterp();
        HTCTclInterp::registerInterp(made);
        ComMsgMgr::setSink(ComMsgMgr::Destination::console, std::make_shared<silent>());
        return made;
    }();
    FuzzedDataProvider bytes(data, size);
    options_description options("Fuzz", "");
    positional_options_description positional;
    declare(bytes, options, positional);
    const std::vector<tclobj_ref> words = words_of(bytes);

    call task(options, positional);
    const std::vector<Tcl_Obj*> objv = pointers_to(words);
    const int code = parse(interp, task, objv);
    const std::string result = Tcl_GetStringResult(interp);
    if (code == TCL_OK) {
        for (const auto& option : options.options()) {
            if (const boost::any* value = task.get_option_value(option.name)) {
                read<bool, int, unsigned, long, double, std::string, std::vector<std::string>, Tcl_Obj*,
                     tclany, strings, anys, untyped>(task, option.name, *value);
            } else {
                require(!task.specified_option(option.name));
            }
        }
    } else {
        require(code == TCL_ERROR && result.rfind("ERROR: [", 0) == 0);
    }
    for (const char* form : {"syntax", "args", "long"}) {
        require(!task.help(interp, "fuzz", form).empty());
    }
    require(!task.cmdline(interp).empty());

    call again(options, positional);
    require(parse(interp, again, objv) == code && result == Tcl_GetStringResult(interp));
    return 0;
}
