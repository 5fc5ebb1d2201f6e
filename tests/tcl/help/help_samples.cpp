#include <functional>
#include <map>
#include <stdexcept>

#include "platform/env/HUTEnv.h"
#include "platform/property/HCPProperty.h"
#include "platform/taskcore/help_page.h"
#include "platform/taskcore/task_options_base.h"
#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace {
struct sample_object {};
} // namespace

template <>
struct vek::tcltasks::native_object<sample_object*> {
    static std::string name(const sample_object*) { return "sample"; }
};

// Tasks whose declaration each shows one thing that help has to deal with.
namespace {

template <class T>
class sample : public HTCITaskHelper<T> {
public:
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

struct plain : sample<plain> {
    static constexpr const char* command = "sample_plain";
    static void load_description() {
        in_categories("SampleFirst", "SampleSecond");
        description_instance("Do something plain", "nothing")
            .add_options()
            .add_option("count", options::number(3), "How often it is done")
            .add_option("color", options::text("red"), "The paint")
            .choices({"red", "green"});
    }
};

struct uncategorized : sample<uncategorized> {
    static constexpr const char* command = "sample_uncategorized";
    static void load_description() { description_instance("Be in no category", ""); }
};

struct synthesis : sample<synthesis> {
    static constexpr const char* command = "omu::synth_design";
    static void load_description() {
        in_categories("SampleHidden");
        description_instance("Be internal by its name alone", "");
    }
};

struct hidden : sample<hidden> {
    static constexpr const char* command = "sample_hidden";
    static void load_description() {
        in_categories("SampleHidden");
        description_instance("Be hidden", "");
    }
    bool is_hidden() const override { return true; }
};

struct deprecated : sample<deprecated> {
    static constexpr const char* command = "sample_deprecated";
    static void load_description() {
        in_categories("SampleFirst");
        description_instance("Be old", "");
    }
    bool is_deprecated(std::string& message) const override {
        message = "Use sample_plain.";
        return true;
    }
};

struct elsewhere : sample<elsewhere> {
    static constexpr const char* command = "samples::elsewhere";
    static void load_description() {
        in_categories("SampleFirst");
        description_instance("Lie in a namespace", "");
    }
};

struct tabbed : sample<tabbed> {
    static constexpr const char* command = "sample_tabbed";
    static void load_description() {
        in_categories("SampleFirst");
        description_instance(
            "Hang: \tthe lines below the first one of this long description stand behind the "
            "mark, however many of them there are in the end",
            "");
    }
};

struct placeholder : sample<placeholder> {
    static constexpr const char* command = "sample_placeholder";
    static void load_description() {}
};

// Fails to be made, with words or without.
template <class T, bool words>
struct broken : sample<T> {
    broken() {
        if (words) {
            throw std::runtime_error("the well is dry");
        }
        throw 1;
    }
    static void load_description() {}
};
struct broken_with_words : broken<broken_with_words, true> {
    static constexpr const char* command = "sample_broken";
};
struct broken_without_words : broken<broken_without_words, false> {
    static constexpr const char* command = "sample_shattered";
};

// Registers a factory without making a task.
template <class T>
void add(Tcl_Interp* interp) {
    init_tcltask<typename T::factory>(interp);
}

std::string text(Tcl_Obj* obj) {
    return Tcl_GetString(obj);
}

Tcl_Obj* list_of(const std::vector<std::string>& texts) {
    return native_wrapper<std::vector<std::string>>::convert_to_tcl(texts);
}

// Runs a function behind a Tcl command whose result it returns.
using function = std::function<Tcl_Obj*(Tcl_Interp*, int, Tcl_Obj* const*)>;

int call(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    try {
        Tcl_SetObjResult(interp, (*static_cast<function*>(data))(interp, objc - 1, objv + 1));
        return TCL_OK;
    } catch (const std::exception& failure) {
        Tcl_SetResult(interp, const_cast<char*>(failure.what()), TCL_VOLATILE);
        return TCL_ERROR;
    }
}

const task_options_base& declaration(const std::shared_ptr<itask>& task) {
    return dynamic_cast<const task_options_base&>(*task);
}

// All commands that are no placeholders.
Tcl_Obj* tasks(Tcl_Interp*, int, Tcl_Obj* const*) {
    std::vector<std::string> names, declared;
    task_manager::getTaskNames(names);
    for (const std::string& name : names) {
        if (task_manager::createTask(name)->task_description() != options_description::undeclared) {
            declared.push_back(name);
        }
    }
    return list_of(declared);
}

// The options that a command declares.
Tcl_Obj* declared_options(Tcl_Interp*, int, Tcl_Obj* const* words) {
    std::vector<std::string> names;
    const auto task = task_manager::createTask(text(words[0]));
    for (const auto& option : declaration(task).get_options_description().options()) {
        names.push_back("-" + option.name);
    }
    return list_of(names);
}

// Where the page of a command lies in an application root.
Tcl_Obj* page(Tcl_Interp*, int, Tcl_Obj* const* words) {
    const std::string name = text(words[0]);
    const auto task = task_manager::createTask(name);
    return Tcl_NewStringObj(help_page::place(declaration(task).long_help_name(name)).c_str(), -1);
}

// Registers all samples, or with a word that one.
Tcl_Obj* add_samples(Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    const std::map<std::string, void (*)(Tcl_Interp*)> all = {
        {"plain", register_task<plain>},          {"uncategorized", register_task<uncategorized>},
        {"hidden", register_task<hidden>},        {"deprecated", register_task<deprecated>},
        {"elsewhere", register_task<elsewhere>},  {"tabbed", register_task<tabbed>},
        {"placeholder", add<placeholder>},        {"broken", add<broken_with_words>},
        {"shattered", add<broken_without_words>}, {"synthesis", register_task<synthesis>}};
    for (int i = 0; i < count; ++i) {
        all.at(text(words[i]))(interp);
    }
    return Tcl_NewObj();
}

Tcl_Obj* tcl_debug(Tcl_Interp*, int, Tcl_Obj* const* words) {
    HUTEnv::setTclDebug(text(words[0]) == "1");
    return Tcl_NewObj();
}

// Registers a class of objects without properties and description.
Tcl_Obj* add_class(Tcl_Interp*, int, Tcl_Obj* const*) {
    HCPProperty::registerObjectType<sample_object*>()->setName("sample_class");
    return Tcl_NewObj();
}

// Makes the run mode "tcl", "batch" or "gui" for those who ask.
Tcl_Obj* mode(Tcl_Interp*, int, Tcl_Obj* const* words) {
    static std::string& word = *new std::string;
    word = text(words[0]);
    HTCTclUtils::setModeQuery([] { return word.c_str(); });
    return Tcl_NewObj();
}

} // namespace

extern "C" int Help_samples_Init(Tcl_Interp* interp) {
    static auto& commands = *new std::map<std::string, function>{
        {"help_samples::add", add_samples},          {"help_samples::tasks", tasks},
        {"help_samples::options", declared_options}, {"help_samples::page", page},
        {"help_samples::tcl_debug", tcl_debug},      {"help_samples::mode", mode},
        {"help_samples::add_class", add_class},
    };
    for (auto& [name, run] : commands) {
        Tcl_CreateObjCommand(interp, name.c_str(), call, &run, nullptr);
    }
    return TCL_OK;
}
