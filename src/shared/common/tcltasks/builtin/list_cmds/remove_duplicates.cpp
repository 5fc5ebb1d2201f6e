// omu::remove_duplicates varName
// Leaves the first of equal elements in the list or collection of a variable. Fails for other values.
#include <string_view>
#include <unordered_set>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace remove_duplicates {

namespace {

std::vector<tclobj_ref> first_of_each(Tcl_Obj* list) {
    int count = 0;
    Tcl_Obj** elements = nullptr;
    Tcl_ListObjGetElements(nullptr, list, &count, &elements);
    std::vector<tclobj_ref> firsts;
    std::unordered_set<std::string_view> seen;
    for (int i = 0; i < count; ++i) {
        int length = 0;
        const char* text = Tcl_GetStringFromObj(elements[i], &length);
        if (seen.emplace(text, static_cast<size_t>(length)).second) {
            firsts.emplace_back(elements[i]);
        }
    }
    return firsts;
}

void store(Tcl_Interp* interp, Tcl_Obj* variable, Tcl_Obj* value) {
    if (!Tcl_ObjSetVar2(interp, variable, nullptr, value, TCL_LEAVE_ERR_MSG)) {
        throw HTCErrors::command_failed(HTCTclEncoding::tclGetString(Tcl_GetObjResult(interp)));
    }
}

} // namespace

class task : public HTCITaskHelper<task, listcmds_tags> {
public:
    static constexpr const char* command = "omu::remove_duplicates";
    using HTCITaskHelper<task, listcmds_tags>::execute;

    static void load_description() {
        in_categories("Object");
        description_instance("Remove duplicates from a Tcl list", "nothing")
            .add_options()
            .add_option("list", options::value<Tcl_Obj*>(), "List to remove duplicates from")
            .required();
        positional_instance().add("list", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        Tcl_Obj* const variable = get_option<Tcl_Obj*>("list");
        Tcl_Obj* const value = Tcl_ObjGetVar2(interp, variable, nullptr, 0);
        if (!value) {
            throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-90@%s\n", Tcl_GetString(variable)});
        }
        static const Tcl_ObjType* const listType = Tcl_GetObjType("list");
        if (auto* collection = detail::get_collection(value)) {
            of_collection(interp, variable, value->refCount, *collection);
        } else if (value->typePtr == listType) {
            of_list(interp, variable, value);
        } else {
            throw HEXAll({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-89@%s\n", Tcl_GetString(variable)});
        }
        return TCL_OK;
    }

private:
    static void of_collection(Tcl_Interp* interp, Tcl_Obj* variable, int holders,
                              detail::collection_wrapper_base& collection) {
        if (holders < 3) {
            collection.unique();
            return;
        }
        const any_collection copy(collection.clone());
        copy->unique();
        store(interp, variable, detail::get_tclobj(copy.base()));
    }

    static void of_list(Tcl_Interp* interp, Tcl_Obj* variable, Tcl_Obj* list) {
        const bool shared = Tcl_IsShared(list);
        const tclobj_ref copy(shared ? Tcl_DuplicateObj(list) : nullptr);
        Tcl_Obj* const target = shared ? copy.get() : list;
        const std::vector<tclobj_ref> firsts = first_of_each(target);
        std::vector<Tcl_Obj*> elements;
        elements.reserve(firsts.size());
        for (const tclobj_ref& first : firsts) {
            elements.push_back(first.get());
        }
        int count = 0;
        Tcl_ListObjLength(nullptr, target, &count);
        Tcl_ListObjReplace(nullptr, target, 0, count, static_cast<int>(elements.size()), elements.data());
        if (shared) {
            store(interp, variable, target);
        }
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace remove_duplicates
