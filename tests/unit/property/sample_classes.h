#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/msg/ComMsgMgr.h"
#include "platform/property/HCPPropertyTable.h"
#include "tcltasks/core/task.h"

/// Object classes to try the property layer on. Objects live in pools and are never freed; killing one marks
/// it dead, as a library does whose objects Tcl may still hold.
namespace sample {

struct gate {
    std::string name;
    int fanout = 0;
    std::optional<int> size = {};
    double weight = 1;
    long serial = 0;
    bool keep = false;
    std::string slew = "slow";
    std::string note = {};
    std::string image = {};
    std::vector<std::string> tags = {};
    std::vector<int> levels = {};
    bool alive = true;
};

/// A port: `loc` is a property of inputs only.
struct port {
    std::string name;
    bool input = true;
    std::string loc = {};
};

/// A class without `_default_`; its properties can only be set one by one.
struct wire {
    std::string name;
    std::string a = {};
    std::string b = {};
};

/// A class whose `_default_` has a setter of its own for all properties at once.
struct chip {
    std::string name;
    std::map<std::string, std::string> values = {};
};

/// Gates live until the process ends, as Tcl values may.
inline gate* new_gate(std::string name, int fanout = 0) {
    static std::deque<gate>& gates = *new std::deque<gate>;
    gate& made = gates.emplace_back(gate{std::move(name), fanout});
    made.serial = static_cast<long>(gates.size());
    return &made;
}

} // namespace sample

template <>
struct vek::tcltasks::native_object<sample::gate*> {
    static std::string name(const sample::gate* g) { return g->name; }
};
template <>
struct vek::tcltasks::native_object<sample::port*> {
    static std::string name(const sample::port* p) { return p->name; }
};
template <>
struct vek::tcltasks::native_object<sample::wire*> {
    static std::string name(const sample::wire* w) { return w->name; }
};
template <>
struct vek::tcltasks::native_object<sample::chip*> {
    static std::string name(const sample::chip* c) { return c->name; }
};

namespace sample {

/// What the chip's bulk setter does and has seen.
struct bulk_script {
    int status = 0;          ///< what it returns
    bool sendsError = false; ///< whether it sends an ERROR
    int calls = 0;
    int undone = 0;
    int redone = 0;
    std::vector<std::string> finished = {};
};

inline bulk_script& bulk() {
    static bulk_script script;
    return script;
}

/// Called for each read of `fanout`.
inline std::function<void()>& on_read() {
    static std::function<void()> hook;
    return hook;
}

class chip_setter : public HCPProperty::Setter {
public:
    int set(Tcl_Interp*, const HCPProperty::Objects& objects, const std::string& name,
            HATAttr& value) override {
        for (const auto& object : *objects) {
            vek::tcltasks::any_cast<chip*>(object)->values[name] = HATAttrUtils::getStringValue(value);
        }
        return 0;
    }
    int set(Tcl_Interp* interp, const HCPProperty::Objects& objects,
            const HCPProperty::Pairs& pairs) override {
        ++bulk().calls;
        if (bulk().sendsError) {
            ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_ERROR, "a value was refused");
        }
        if (bulk().status == 0) {
            for (const auto& [name, value] : pairs) {
                HATAttr attr({}, HATAttrTypes::type_string);
                attr.setStringVal(value);
                set(interp, objects, name, attr);
            }
        }
        return bulk().status;
    }
    int reset(const HCPProperty::Objects& objects, const std::string& name, HATAttr&) override {
        for (const auto& object : *objects) {
            vek::tcltasks::any_cast<chip*>(object)->values.erase(name);
        }
        return 0;
    }
    int undo(Tcl_Interp*) override { return ++bulk().undone, 0; }
    int redo(Tcl_Interp*) override { return ++bulk().redone, 0; }
    void finish(const std::string& name) override { bulk().finished.push_back(name); }
};

inline void register_classes() {
    using HCPProperty::Property;
    const Property<gate*> gates[] = {
        {"name", &gate::name, "Name of the gate"},
        {"fanout",
         [](const gate* g) {
             if (on_read()) {
                 on_read()();
             }
             return g->fanout;
         },
         "Number of loads that it drives"},
        {"size",
         &gate::size,
         [](gate* g, std::optional<int> size) {
             if (size == 13 && g->fanout > 50) {
                 throw HTCErrors::command_failed("the gate " + g->name + " does not take the size 13");
             }
             g->size = size;
         },
         "Size in the library, if one was chosen",
         {.byDefault = 1, .range = {{0, 1000}}}},
        {"weight", &gate::weight, [](gate* g, double w) { g->weight = w; }, "Importance", {.byDefault = 1.0}},
        {"serial", &gate::serial, "Number of the gate"},
        {"keep",
         &gate::keep,
         [](gate* g, bool on) { g->keep = on; },
         "Whether it has to stay",
         {.byDefault = "no"}},
        {"slew",
         &gate::slew,
         [](gate* g, const std::string& word) { g->slew = word; },
         "Slew rate",
         {.byDefault = "slow", .words = {"slow", "fast"}}},
        {"note", &gate::note, [](gate* g, const std::string& text) { g->note = text; }, "A remark"},
        {"image",
         &gate::image,
         [](gate* g, const std::string& text) { g->image = text; },
         "A picture of it",
         {.byDefault = "", .files = {"png", "svg"}}},
        {"tags", &gate::tags, [](gate* g, const std::vector<std::string>& tags) { g->tags = tags; },
         "Any words"},
        {"levels",
         &gate::levels,
         [](gate* g, const std::vector<int>& levels) { g->levels = levels; },
         "Any numbers from 0 to 9",
         {.range = {{0, 9}}}},
        {"secret", [](const gate*) { return 42; }, "Not for users", {.hidden = true}},
    };
    auto& info = HCPProperty::registerClass<gate*>("gate", "A gate of the samples.", gates,
                                                   {.alive = [](gate* g) { return g->alive; }});
    info.addDeprecatedName("bulk", "size", [](const std::string& v) { return v == "small" ? "1" : v; });

    const Property<port*> ports[] = {
        {"name", &port::name, "Name of the port"},
        {"direction", [](const port* p) { return p->input ? "in" : "out"; }, "Direction"},
        Property<port*>(
            "loc", &port::loc, [](port* p, const std::string& pin) { p->loc = pin; },
            "Package pin of an input")
            .onlyIf([](const port* p) { return p->input; }),
    };
    HCPProperty::registerClass<port*>("port", "A port of the samples.", ports);

    const Property<wire*> wires[] = {
        {"name", &wire::name, "Name of the wire"},
        {"A", &wire::a, [](wire* w, const std::string& text) { w->a = text; }, "One text", {.byDefault = ""}},
        {"B",
         &wire::b,
         [](wire* w, const std::string& text) { w->b = text; },
         "Another text",
         {.byDefault = "b"}},
    };
    auto& wireInfo =
        HCPProperty::registerClass<wire*>("wire", "A wire of the samples.", wires, {.userProperties = false});
    if (!wireInfo.getSpec("stuck")) {
        wireInfo.createSpec("stuck")->getAttrSpec()->setReadOnly(false);
    }

    const Property<chip*> chips[] = {{"name", &chip::name, "Name of the chip"}};
    auto& chipInfo =
        HCPProperty::registerClass<chip*>("chip", "A chip of the samples.", chips, {.userProperties = false});
    const auto any = chipInfo.createSpec(HCPProperty::defaultSpecName);
    any->setSetterFcn([] { return std::make_shared<chip_setter>(); });
    any->setGetFcn([](const void* object, const std::string& name, HATAttrAny& value) {
        const auto& values = (*static_cast<chip* const*>(object))->values;
        const auto at = values.find(name);
        if (at == values.end()) {
            return false;
        }
        value = at->second;
        return true;
    });
}

} // namespace sample
