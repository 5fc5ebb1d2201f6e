// Objects with properties to test and measure with. `load libproperty_samples.so Property_samples` registers
// the classes and makes commands in the namespace sample.
#include "../../unit/property/sample_classes.h"

#include "platform/gui/HDGUIStatus.h"
#include "platform/gui/HUTGuiEventBroker.h"
#include "platform/taskcore/HTCCollectionContextMgr.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/core/native_types.h"
#include "tcltasks/property/detail/options.h"
#include "tcltasks/property/detail/setting.h"

using namespace vek::tcltasks;
using namespace HCPProperty;

namespace {

std::vector<std::string> events;

std::string text(Tcl_Obj* obj) {
    return HTCTclEncoding::tclGetString(obj);
}

int number(Tcl_Obj* obj) {
    return native_wrapper<int>::convert_to_native(nullptr, obj);
}

template <class T>
Tcl_Obj* made(T* object) {
    return native_wrapper<T*>::convert_to_tcl(object);
}

// Makes a command of a function of its words, the name left out, that gives a value or null.
using body = Tcl_Obj* (*)(Tcl_Interp*, int, Tcl_Obj* const*);

int run(ClientData data, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        if (Tcl_Obj* result = reinterpret_cast<body>(data)(interp, objc - 1, objv + 1)) {
            Tcl_SetObjResult(interp, result);
        }
        return TCL_OK;
    });
}

Tcl_Obj* gates(Tcl_Interp*, int, Tcl_Obj* const* words) {
    tcl_collection<HSTVector<sample::gate*>> all;
    const int count = number(words[0]);
    all->reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        all->push_back(sample::new_gate("g" + std::to_string(i), i % 100));
    }
    return native_wrapper<tcl_collection<HSTVector<sample::gate*>>>::convert_to_tcl(all);
}

Tcl_Obj* gate(Tcl_Interp*, int count, Tcl_Obj* const* words) {
    return made(sample::new_gate(text(words[0]), count > 1 ? number(words[1]) : 0));
}

Tcl_Obj* port(Tcl_Interp*, int, Tcl_Obj* const* words) {
    return made(new sample::port{text(words[0]), text(words[1]) == "in"});
}

Tcl_Obj* wire(Tcl_Interp*, int, Tcl_Obj* const* words) {
    return made(new sample::wire{text(words[0])});
}

Tcl_Obj* chip(Tcl_Interp*, int, Tcl_Obj* const* words) {
    return made(new sample::chip{text(words[0])});
}

Tcl_Obj* kill(Tcl_Interp* interp, int, Tcl_Obj* const* words) {
    native_wrapper<sample::gate*>::convert_to_native(interp, words[0])->alive = false;
    return nullptr;
}

// bulk STATUS ?SENDS_ERROR?: what the bulk setter of chips shall do; without words, what it has seen.
Tcl_Obj* bulk(Tcl_Interp*, int count, Tcl_Obj* const* words) {
    if (count > 0) {
        sample::bulk() = {.status = number(words[0]), .sendsError = count > 1 && number(words[1]) != 0};
        return nullptr;
    }
    const auto& seen = sample::bulk();
    return native_wrapper<std::vector<std::string>>::convert_to_tcl(
        {std::to_string(seen.calls), std::to_string(seen.undone), std::to_string(seen.redone)});
}

Tcl_Obj* finished(Tcl_Interp*, int, Tcl_Obj* const*) {
    Tcl_Obj* names = native_wrapper<std::vector<std::string>>::convert_to_tcl(sample::bulk().finished);
    sample::bulk().finished.clear();
    return names;
}

Tcl_Obj* take_events(Tcl_Interp*, int, Tcl_Obj* const*) {
    return native_wrapper<std::vector<std::string>>::convert_to_tcl(std::exchange(events, {}));
}

// cancel_at N: the user cancels at the Nth read of a fanout; 0 puts all back.
Tcl_Obj* cancel_at(Tcl_Interp*, int, Tcl_Obj* const* words) {
    const int at = number(words[0]);
    HTCGuiStatusAccess::getGuiStatus()->setState(HDGUIStatus::idle);
    sample::on_read() = nullptr;
    if (at > 0) {
        sample::on_read() = [left = at]() mutable {
            if (--left == 0) {
                HTCGuiStatusAccess::getGuiStatus()->setState(HDGUIStatus::cancelled);
            }
        };
    }
    return nullptr;
}

class silent_context : public HTCICollectionContext {
public:
    std::string string_rep() const override { return "silent"; }
    bool is_silent() const override { return true; }
    void add(Tcl_Obj*) override {}
    void add(const HTCICollectionContext&) override {}
};

// silent OBJECTS: a collection of them whose changes windows do not hear of.
Tcl_Obj* silent(Tcl_Interp* interp, int, Tcl_Obj* const* words) {
    auto objects = native_wrapper<Objects>::convert_to_native(interp, words[0]);
    objects = Objects(*objects);
    objects.body().set_collection_context(std::make_shared<silent_context>());
    return native_wrapper<Objects>::convert_to_tcl(objects);
}

// attribute VALUE: a typed value, an integer.
Tcl_Obj* attribute(Tcl_Interp*, int, Tcl_Obj* const* words) {
    auto* attr = new HATAttr({}, HATAttrTypes::type_int);
    attr->setValue(number(words[0]));
    return made(attr);
}

// names OBJECTS, fanouts OBJECTS: what get_property gives, by a loop over the structures.
template <class Read>
Tcl_Obj* filled(Tcl_Obj* collection, Read read) {
    const auto all =
        native_wrapper<tcl_collection<HSTVector<sample::gate*>>>::convert_to_native(nullptr, collection);
    Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
    for (const sample::gate* g : *all) {
        Tcl_ListObjAppendElement(nullptr, list, read(*g));
    }
    return list;
}

Tcl_Obj* names(Tcl_Interp*, int, Tcl_Obj* const* words) {
    return filled(words[0], [](const sample::gate& g) {
        return Tcl_NewStringObj(g.name.data(), static_cast<int>(g.name.size()));
    });
}

Tcl_Obj* fanouts(Tcl_Interp*, int, Tcl_Obj* const* words) {
    return filled(words[0], [](const sample::gate& g) { return Tcl_NewIntObj(g.fanout); });
}

// The same words as get_property, and nothing done.
class empty_task : public HTCITaskHelper<empty_task> {
public:
    static constexpr const char* command = "sample::empty_task";
    static void load_description() {
        description_instance("Do nothing.", "")
            .add_options()
            .add_option("min", options::flag(), "Nothing")
            .add_option("max", options::flag(), "Nothing")
            .add_option("name", options::value<std::string>(), "Nothing")
            .required()
            .add_option("object", options::value<Tcl_Obj*>(), "Nothing")
            .required();
        positional_instance().add("name", 1).add("object", 1);
    }
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

std::string words_of(const std::string& kind, const tclany& first, const Objects& objects,
                     const std::string& context, const std::string& rest) {
    return kind + " " + first.get_as_string() + " " + std::to_string(objects.size()) + " {" + context + "} " +
           rest;
}

void listen() {
    auto& broker = HUTGuiEventBroker::instance();
    static_cast<void>(broker.addListener<HTCSetPropertyMultipleObjects>([](const auto& e) {
        events.push_back(
            words_of("property", e.first, e.objects, e.context, e.name + " " + std::to_string(e.count)));
    }));
    static_cast<void>(broker.addListener<HTCSetMultiplePropertiesDictionary>([](const auto& e) {
        std::string pairs;
        for (const auto& [name, value] : e.pairs) {
            pairs += name + "=" + value + ";";
        }
        events.push_back(words_of("dictionary", e.first, e.objects, e.context, pairs));
    }));
}

} // namespace

extern "C" DLLEXPORT int Property_samples_Init(Tcl_Interp* interp) {
    return tcl_guard(interp, [&] {
        sample::register_classes();
        listen();
        register_task<empty_task>(interp);
        const std::pair<const char*, body> commands[] = {
            {"sample::gates", gates},        {"sample::gate", gate},
            {"sample::port", port},          {"sample::wire", wire},
            {"sample::chip", chip},          {"sample::kill", kill},
            {"sample::bulk", bulk},          {"sample::finished", finished},
            {"sample::events", take_events}, {"sample::cancel_at", cancel_at},
            {"sample::silent", silent},      {"sample::attribute", attribute},
            {"sample::names", names},        {"sample::fanouts", fanouts},
        };
        for (const auto& [name, function] : commands) {
            Tcl_CreateObjCommand(interp, name, run, reinterpret_cast<ClientData>(function), nullptr);
        }
        return TCL_OK;
    });
}
