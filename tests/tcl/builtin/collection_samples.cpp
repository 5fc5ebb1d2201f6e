// Collections to test and measure with. `load libcollection_samples.so Collection_samples` makes commands in
// the namespace samples, each described at its procedure.

#include <deque>
#include <map>
#include <string>

#include "platform/param/HPAParamMgr.h"
#include "platform/taskcore/task_manager.h"
#include "platform/tcl/tcl_guard.h"
#include "tcltasks/core/tcl_collection.h"

using namespace vek::tcltasks;

namespace samples {

struct sample {
    std::string name;
};

struct gadget {
    std::string name;
};

// An object that can be deleted while Tcl holds it. Its memory stays, so that it can tell that it is gone.
struct mortal {
    std::string name;
    bool alive = true;
};

// The objects of a type, made when their name is first asked for.
template <class T>
T* object_named(const std::string& name) {
    static auto& all = *new std::map<std::string, T>;
    return &all.try_emplace(name, T{name}).first->second;
}

} // namespace samples

template <>
struct vek::tcltasks::native_object<samples::sample*> {
    static std::string name(const samples::sample* s) { return s->name; }
    static samples::sample* find(const std::string& name) {
        return samples::object_named<samples::sample>(name);
    }
};

template <>
struct vek::tcltasks::native_object<samples::gadget*> {
    static std::string name(const samples::gadget* g) { return g->name; }
    static samples::gadget* find(const std::string& name) {
        return samples::object_named<samples::gadget>(name);
    }
};

template <>
struct vek::tcltasks::native_object<samples::mortal*> {
    static std::string name(const samples::mortal* m) {
        if (m->name == "unspeakable") {
            throw HTCErrors::command_failed("the name cannot be told");
        }
        return m->alive ? m->name : m->name + " (gone)";
    }
};

namespace samples {
namespace {

template <class E>
int give(Tcl_Interp* interp, const tcl_collection<HSTVector<E>>& collection) {
    Tcl_SetObjResult(interp, native_wrapper<tcl_collection<HSTVector<E>>>::convert_to_tcl(collection));
    return TCL_OK;
}

// samples::objects ?name ...?, samples::gadgets ?name ...?: a collection of objects of these names
template <class T>
int objects(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        tcl_collection<HSTVector<T*>> collection;
        for (int i = 1; i < objc; ++i) {
            collection->push_back(object_named<T>(HTCTclEncoding::tclGetString(objv[i])));
        }
        return give(interp, collection);
    });
}

// samples::object name: one object
int object(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        sample* const found = object_named<sample>(HTCTclEncoding::tclGetString(objv[1]));
        Tcl_SetObjResult(interp, native_wrapper<sample*>::convert_to_tcl(found));
        return TCL_OK;
    });
}

// samples::strings ?text ...?: a collection of texts
int strings(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        tcl_collection<HSTVector<std::string>> collection;
        for (int i = 1; i < objc; ++i) {
            collection->push_back(HTCTclEncoding::tclGetString(objv[i]));
        }
        return give(interp, collection);
    });
}

// samples::many count: a collection of fresh objects
int many(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        int count = 0;
        if (Tcl_GetIntFromObj(interp, objv[1], &count) != TCL_OK) {
            return TCL_ERROR;
        }
        static auto& all = *new std::deque<sample>;
        tcl_collection<HSTVector<sample*>> collection;
        for (int i = 0; i < count; ++i) {
            all.push_back({"top/block_" + std::to_string(i / 1000) + "/cell_" + std::to_string(i)});
            collection->push_back(&all.back());
        }
        return give(interp, collection);
    });
}

// samples::with_null name: a collection of an object, no object, and the object again
int with_null(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        sample* const one = object_named<sample>(HTCTclEncoding::tclGetString(objv[1]));
        tcl_collection<HSTVector<sample*>> collection;
        collection->push_back(one);
        collection->push_back(nullptr);
        collection->push_back(one);
        return give(interp, collection);
    });
}

// samples::context value ?set?: whether a collection has a context; gives it one first
int context(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        auto* collection = detail::get_collection(objv[1]);
        if (collection && objc > 2) {
            collection->set_collection_context(HTCCollectionContextMgr::createListCollectionContext());
        }
        Tcl_SetObjResult(interp, Tcl_NewBooleanObj(collection && collection->collection_context()));
        return TCL_OK;
    });
}

// samples::is_collection value
int is_collection(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    Tcl_SetObjResult(interp, Tcl_NewBooleanObj(detail::get_collection(objv[1]) != nullptr));
    return TCL_OK;
}

// samples::mortals ?name ...?: a collection of objects that samples::kill can delete
// samples::kill name: deletes the object
int kill(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        mortal* const dying = object_named<mortal>(HTCTclEncoding::tclGetString(objv[1]));
        native_cache<mortal*>::forget(dying);
        dying->alive = false;
        return TCL_OK;
    });
}

// samples::is_native value: whether it carries an object
int is_native(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    Tcl_SetObjResult(interp, Tcl_NewBooleanObj(native_cache_base::type_behind(objv[1]) != nullptr));
    return TCL_OK;
}

// samples::shrink value: takes the last element out of the collection itself
int shrink(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        auto* collection = detail::get_collection(objv[1]);
        collection->remove_element_at_index(collection->size() - 1);
        return TCL_OK;
    });
}

// samples::interrupt: what the user's Control-C does
int interrupt(ClientData, Tcl_Interp*, int, Tcl_Obj* const*) {
    task_manager::requestInterrupt();
    return TCL_OK;
}

// samples::parameter name value: sets a parameter of the tool
int parameter(ClientData, Tcl_Interp* interp, int, Tcl_Obj* const* objv) {
    return tcl_guard(interp, [&] {
        HPAParamMgr::getParamMgr().setValue(Tcl_GetString(objv[1]), Tcl_GetString(objv[2]));
        return TCL_OK;
    });
}

} // namespace
} // namespace samples

extern "C" int Collection_samples_Init(Tcl_Interp* interp) {
    using namespace samples;
    const std::pair<const char*, Tcl_ObjCmdProc*> commands[] = {
        {"samples::objects", objects<sample>},
        {"samples::gadgets", objects<gadget>},
        {"samples::object", object},
        {"samples::strings", strings},
        {"samples::many", many},
        {"samples::with_null", with_null},
        {"samples::context", context},
        {"samples::is_collection", is_collection},
        {"samples::mortals", objects<mortal>},
        {"samples::kill", kill},
        {"samples::is_native", is_native},
        {"samples::shrink", shrink},
        {"samples::interrupt", interrupt},
        {"samples::parameter", parameter},
    };
    for (const auto& [name, command] : commands) {
        Tcl_CreateObjCommand(interp, name, command, nullptr, nullptr);
    }
    return TCL_OK;
}
